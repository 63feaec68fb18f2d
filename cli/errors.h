// How the command ends, and the two kinds of bad news on the way there.
#ifndef VXNLS_CLI_ERRORS_H
#define VXNLS_CLI_ERRORS_H

#include <fmt/format.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace vxcli {

enum class ExitCode : int {
  done = 0,
  some_unread = 1,  // finished, but some values could not be read (or some locales broke a rule)
  usage = 2,        // wrong command, option, locale, zone or pattern
  io = 3,           // reading or writing failed
  host = 4          // the host, its library or its extensions failed, or memory is exhausted
};

/// Ends the command: one line on standard error, nothing more on standard output.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

template <class... Parts>
[[noreturn]] void fail(ExitCode code, fmt::format_string<Parts...> text, Parts&&... parts) {
  throw Failure(code, fmt::format(text, std::forward<Parts>(parts)...));
}

/// A value that cannot be read. The message does not repeat the value.
class ValueError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

template <class... Parts>
[[noreturn]] void refuse(fmt::format_string<Parts...> text, Parts&&... parts) {
  throw ValueError(fmt::format(text, std::forward<Parts>(parts)...));
}

}  // namespace vxcli

#endif
