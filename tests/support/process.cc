#include "tests/support/process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <future>
#include <stdexcept>

namespace vxtest {

namespace {

/// What comes out of a pipe until nobody holds its other end.
std::string read_all(int end) {
  std::string text;
  std::array<char, 65536> block;
  for (ssize_t count; (count = read(end, block.data(), block.size())) != 0;) {
    if (count > 0) text.append(block.data(), static_cast<size_t>(count));
    else if (errno != EINTR) break;
  }
  close(end);
  return text;
}

}  // namespace

ProcessResult run_shell(const std::string& line, std::string_view input, const Environment& variables) {
  std::array<int, 2> in{}, out{}, err{};
  for (auto* const ends : {&in, &out, &err}) {
    if (pipe2(ends->data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  }
  const pid_t child = fork();
  if (child == 0) {
    dup2(in[0], STDIN_FILENO);
    dup2(out[1], STDOUT_FILENO);
    dup2(err[1], STDERR_FILENO);
    clearenv();
    for (const auto& [name, value] : variables) setenv(name.c_str(), value.c_str(), 1);
    execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
    _exit(127);
  }
  for (const int end : {in[0], out[1], err[1]}) close(end);
  auto told = std::async(std::launch::async, read_all, out[0]),
       complained = std::async(std::launch::async, read_all, err[0]);
  const auto old_action = std::signal(SIGPIPE, SIG_IGN);  // the program may end before it has read everything
  while (!input.empty()) {
    const ssize_t count = write(in[1], input.data(), input.size());
    if (count < 0 && errno != EINTR) break;
    input.remove_prefix(static_cast<size_t>(count < 0 ? 0 : count));
  }
  std::signal(SIGPIPE, old_action);
  close(in[1]);
  ProcessResult result{-1, told.get(), complained.get()};
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  result.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

}  // namespace vxtest
