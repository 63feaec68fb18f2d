#include "tests/support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace vxtest {

namespace {

/// Makes this process, a child, the program.
[[noreturn]] void become(std::vector<std::string> words, const Environment& variables) {
  clearenv();
  for (const auto& [name, value] : variables) setenv(name.c_str(), value.c_str(), 1);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

/// False at an end that takes nothing.
bool write_all(int end, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(end, text.data(), text.size());
    if (count < 0 && errno != EINTR) return false;
    text.remove_prefix(static_cast<size_t>(count < 0 ? 0 : count));
  }
  return true;
}

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
    become({"sh", "-c", line}, variables);
  }
  close(in[0]), close(out[1]);
  const pid_t writer = fork();
  if (writer == 0) write_all(in[1], input), _exit(0);  // a signal ends it when the program ends before it has read all
  close(in[1]);
  ProcessResult result{-1, read_all(out[0]), {}};
  const int status = status_of(child);
  status_of(writer);
  result.err = read_all(err);
  result.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

Terminal::Terminal(const std::vector<std::string>& words, const Environment& variables) {
  const winsize size{.ws_row = 50, .ws_col = 200, .ws_xpixel = 0, .ws_ypixel = 0};
  child_ = forkpty(&terminal_, nullptr, nullptr, &size);
  if (child_ < 0) throw std::runtime_error("no terminal");
  if (child_ == 0) become(words, variables);
}

Terminal::~Terminal() {
  close(terminal_);
  kill(child_, SIGKILL);
  status_of(child_);
}

void Terminal::type(std::string_view text) {
  if (!write_all(terminal_, text)) throw std::runtime_error("the terminal takes nothing");
}

std::string Terminal::until(std::string_view text) {
  constexpr int half_a_minute = 30'000;
  pollfd wanted{terminal_, POLLIN, 0};
  std::array<char, 4096> block{};
  size_t end = 0;
  while ((end = unread_.find(text)) == std::string::npos) {
    const ssize_t count = poll(&wanted, 1, half_a_minute) > 0 ? read(terminal_, block.data(), block.size()) : 0;
    if (count <= 0) return std::exchange(unread_, {});
    unread_.append(block.data(), static_cast<size_t>(count));
  }
  std::string told = unread_.substr(0, end + text.size());
  unread_.erase(0, told.size());
  return told;
}

}  // namespace vxtest
