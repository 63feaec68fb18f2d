#include "tests/support/terminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace vxtest {

Terminal::Terminal(std::vector<std::string> words, const Environment& variables) {
  const winsize size{.ws_row = 50, .ws_col = 200, .ws_xpixel = 0, .ws_ypixel = 0};
  child_ = forkpty(&terminal_, nullptr, nullptr, &size);
  if (child_ < 0) throw std::runtime_error("no terminal");
  if (child_ != 0) return;
  clearenv();
  for (const auto& [name, value] : variables) setenv(name.c_str(), value.c_str(), 1);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

Terminal::~Terminal() {
  close(terminal_);
  kill(child_, SIGKILL);
  waitpid(child_, nullptr, 0);
}

void Terminal::type(std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(terminal_, text.data(), text.size());
    if (count <= 0) throw std::runtime_error("the terminal takes nothing");
    text.remove_prefix(static_cast<size_t>(count));
  }
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
