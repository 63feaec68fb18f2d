#include "tests/support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>

namespace vxtest {

namespace {

struct Pipe {
  Pipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    read = ends[0];
    write = ends[1];
  }
  ~Pipe() {
    close_end(read);
    close_end(write);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  static void close_end(int& end) {
    if (end >= 0) close(end);
    end = -1;
  }
  int read;
  int write;
};

/// Takes what there is to read; closes the end at the end.
void drain(int& end, std::string& text) {
  std::array<char, 65536> block;
  const ssize_t count = read(end, block.data(), block.size());
  if (count > 0) {
    text.append(block.data(), static_cast<size_t>(count));
  } else if (count == 0 || errno != EINTR) {
    Pipe::close_end(end);
  }
}

}  // namespace

ProcessResult run_shell(const std::string& line, std::string_view input, const Environment& variables) {
  std::vector<std::string> environment;
  for (const auto& [name, value] : variables) environment.push_back(name + '=' + value);
  std::vector<char*> pointers;
  for (std::string& one : environment) pointers.push_back(one.data());
  pointers.push_back(nullptr);

  Pipe in;
  Pipe out;
  Pipe err;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in.read, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out.write, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, err.write, STDERR_FILENO);
  std::string shell = "sh";
  std::string option = "-c";
  std::string text = line;
  std::array<char*, 4> arguments{shell.data(), option.data(), text.data(), nullptr};
  pid_t child = 0;
  const int failed = posix_spawn(&child, "/bin/sh", &actions, nullptr, arguments.data(), pointers.data());
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) throw std::runtime_error("no shell");
  Pipe::close_end(in.read);
  Pipe::close_end(out.write);
  Pipe::close_end(err.write);

  // The program may end before it has read everything.
  const auto old_action = std::signal(SIGPIPE, SIG_IGN);
  fcntl(in.write, F_SETFL, O_NONBLOCK);
  ProcessResult result;
  while (out.read >= 0 || err.read >= 0) {
    if (input.empty()) Pipe::close_end(in.write);
    std::array<pollfd, 3> ends{{{in.write, POLLOUT, 0}, {out.read, POLLIN, 0}, {err.read, POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), -1) < 0) continue;
    if (ends[0].revents != 0) {
      const ssize_t count = write(in.write, input.data(), input.size());
      if (count >= 0) {
        input.remove_prefix(static_cast<size_t>(count));
      } else if (errno != EINTR && errno != EAGAIN) {
        input = {};
      }
    }
    if (ends[1].revents != 0) drain(out.read, result.out);
    if (ends[2].revents != 0) drain(err.read, result.err);
  }
  std::signal(SIGPIPE, old_action);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  result.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

}  // namespace vxtest
