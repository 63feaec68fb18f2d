#include "tests/support/process.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>

namespace vxtest {

namespace {

/// What is in a file, or comes out of a pipe until nobody holds its other end.
std::string read_all(int end) {
  std::string text;
  std::array<char, 65536> block;
  lseek(end, 0, SEEK_SET);
  for (ssize_t count; (count = read(end, block.data(), block.size())) != 0;) {
    if (count > 0) text.append(block.data(), static_cast<size_t>(count));
    else if (errno != EINTR) break;
  }
  close(end);
  return text;
}

int status_of(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

}  // namespace

ProcessResult run_shell(const std::string& line, std::string_view input, const Environment& variables) {
  std::array<int, 2> in{}, out{};
  const int err = memfd_create("err", MFD_CLOEXEC);
  if (err < 0 || pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  const pid_t child = fork();
  if (child == 0) {
    dup2(in[0], STDIN_FILENO), dup2(out[1], STDOUT_FILENO), dup2(err, STDERR_FILENO);
    clearenv();
    for (const auto& [name, value] : variables) setenv(name.c_str(), value.c_str(), 1);
    execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
    _exit(127);
  }
  close(in[0]), close(out[1]);
  const pid_t writer = fork();
  if (writer == 0) {  // a signal ends it when the program ends before it has read all
    while (!input.empty()) {
      const ssize_t count = write(in[1], input.data(), input.size());
      if (count < 0 && errno != EINTR) break;
      input.remove_prefix(static_cast<size_t>(count < 0 ? 0 : count));
    }
    _exit(0);
  }
  close(in[1]);
  ProcessResult result{-1, read_all(out[0]), {}};
  const int status = status_of(child);
  status_of(writer);
  result.err = read_all(err);
  result.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

}  // namespace vxtest
