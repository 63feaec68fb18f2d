#include "tests/support/process.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace vxtest {

namespace {

/// What is in a file from its place on, or comes out of a pipe until nobody holds its other end.
std::string read_all(int end) {
  std::string text;
  std::array<char, 65536> block;
  for (ssize_t count; (count = read(end, block.data(), block.size())) > 0;) {
    text.append(block.data(), static_cast<size_t>(count));
  }
  close(end);
  return text;
}

}  // namespace

ProcessResult run_shell(const std::string& line, std::string_view input, const Environment& variables) {
  const int in = memfd_create("in", MFD_CLOEXEC), err = memfd_create("err", MFD_CLOEXEC);
  std::array<int, 2> out{};
  if (write(in, input.data(), input.size()) != std::ssize(input) || lseek(in, 0, SEEK_SET) != 0 ||
      pipe2(out.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no files for a process");
  }
  const pid_t child = fork();
  if (child == 0) {
    dup2(in, STDIN_FILENO), dup2(out[1], STDOUT_FILENO), dup2(err, STDERR_FILENO);
    clearenv();
    for (const auto& [name, value] : variables) setenv(name.c_str(), value.c_str(), 1);
    execl("/bin/sh", "sh", "-c", ("/bin/cat 2>&- | {\n" + line + "\n}").c_str(), nullptr);
    _exit(127);
  }
  close(in), close(out[1]);
  ProcessResult result{-1, read_all(out[0]), {}};
  int status = 0;
  waitpid(child, &status, 0);
  lseek(err, 0, SEEK_SET);
  result.err = read_all(err);
  result.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

}  // namespace vxtest
