// Programs run as a user runs them, in an environment of nothing but given variables.
#ifndef VXNLS_TESTS_SUPPORT_PROCESS_H
#define VXNLS_TESTS_SUPPORT_PROCESS_H

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

/// Runs a line of the shell, with `input` coming out of a pipe as its standard input, to the end. What it prints is
/// read while `input` is written, so both may be of any length.
ProcessResult run_shell(const std::string& line, std::string_view input, const Environment& variables);

}  // namespace vxtest

#endif
