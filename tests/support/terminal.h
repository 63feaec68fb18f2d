// A program on a terminal of its own, typed to.
#ifndef VXNLS_TESTS_SUPPORT_TERMINAL_H
#define VXNLS_TESTS_SUPPORT_TERMINAL_H

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/process.h"

namespace vxtest {

class Terminal {
 public:
  /// The program is looked for in PATH of `variables`, which are its whole environment.
  Terminal(std::vector<std::string> words, const Environment& variables);
  /// Hangs up.
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  void type(std::string_view text);
  /// What appears until `text` has, that included; line ends are "\r\n". After half a minute, or at the program's end:
  /// what has appeared so far.
  std::string until(std::string_view text);

 private:
  int terminal_ = -1;
  pid_t child_ = -1;
  std::string unread_;
};

}  // namespace vxtest

#endif
