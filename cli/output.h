// Standard output and standard error, with every failure noticed.
#ifndef VXNLS_CLI_OUTPUT_H
#define VXNLS_CLI_OUTPUT_H

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/color.h"

namespace vxcli {

/// A file descriptor that is closed at the start of a program is given to the next file that is opened, and what the
/// program prints would go there. Occupies closed standard descriptors in a way that makes their use fail.
void occupy_standard_descriptors();

/// Text on its way to a file descriptor. Nothing is written before the buffer is full or flush() is called.
/// Writing throws Failure (ExitCode::io).
class Output {
 public:
  using Write = ssize_t (*)(int descriptor, const void* bytes, size_t count);

  /// `name` as messages should have it: "standard output".
  Output(int descriptor, std::string name);
  Output(int descriptor, std::string name, Write write);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void put(std::string_view text);
  void line(std::string_view text);
  void flush();
  /// Forgets what was not written yet.
  void discard() { buffer_.clear(); }
  /// Flushes and closes: some file systems report a full disk only now.
  void finish();

 private:
  void write_all(std::string_view rest);
  [[noreturn]] void give_up(int error);

  const int descriptor_;
  const std::string name_;
  const Write write_;
  std::string buffer_;
};

/// Lines for people, on standard error, each written at once. That they cannot be written changes nothing.
class Messages {
 public:
  /// Without colour and in parts when memory is exhausted.
  void error(std::string_view text) const noexcept;
  /// Something to know, not a failure; not shown when quiet.
  void note(std::string_view text) const;
  void be_quiet() { quiet_ = true; }
  void use_colors(Colors colors) { colors_ = colors; }

 private:
  bool quiet_ = false;
  Colors colors_;
};

}  // namespace vxcli

#endif
