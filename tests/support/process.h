// Programs run as a user runs them, in an environment of nothing but given variables, whose PATH they are looked for in.
#ifndef VXNLS_TESTS_SUPPORT_PROCESS_H
#define VXNLS_TESTS_SUPPORT_PROCESS_H

#include <sys/types.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vxtest {

struct ProcessResult {
  int code = -1;  // of exit; 128 and the signal's number when one ended it
  std::string out;
  std::string err;
};

using Environment = std::vector<std::pair<std::string, std::string>>;

/// Runs a line of the shell, with `input` coming out of a pipe as its standard input, to the end. What it prints is read
/// while `input` is written, so both may be of any length.
ProcessResult run_shell(const std::string& line, std::string_view input, const Environment& variables);

/// A program on a terminal of its own, typed to.
class Terminal {
 public:
  Terminal(const std::vector<std::string>& words, const Environment& variables);
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
