#include "tests/support/terminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace vxtest {

Terminal::Terminal(std::vector<std::string> words, const Environment& variables) {
  std::vector<std::string> environment;
  for (const auto& [name, value] : variables) environment.push_back(name + '=' + value);
  const auto pointers = [](std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (std::string& one : texts) all.push_back(one.data());
    all.push_back(nullptr);
    return all;
  };
  std::vector<char*> arguments = pointers(words);
  std::vector<char*> settings = pointers(environment);
  winsize size{.ws_row = 50, .ws_col = 200, .ws_xpixel = 0, .ws_ypixel = 0};
  child_ = forkpty(&terminal_, nullptr, nullptr, &size);
  if (child_ < 0) throw std::runtime_error("no terminal");
  if (child_ == 0) {
    environ = settings.data();
    execvp(arguments[0], arguments.data());
    _exit(127);
  }
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
  for (;;) {
    const size_t at = unread_.find(text);
    pollfd wanted{terminal_, POLLIN, 0};
    std::array<char, 4096> block{};
    ssize_t count = 0;
    if (at == std::string::npos && poll(&wanted, 1, half_a_minute) > 0)
      count = read(terminal_, block.data(), block.size());
    if (count <= 0) {
      const size_t end = at == std::string::npos ? unread_.size() : at + text.size();
      std::string told = unread_.substr(0, end);
      unread_.erase(0, end);
      return told;
    }
    unread_.append(block.data(), static_cast<size_t>(count));
  }
}

}  // namespace vxtest
