// Bytes and lines from a file descriptor, in bounded memory.
#ifndef VXNLS_CLI_INPUT_H
#define VXNLS_CLI_INPUT_H

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace vxcli {

using Read = ssize_t (*)(int descriptor, void* bytes, size_t count);

/// Reads once, waiting where there is nothing to read yet: at least one byte, or 0 at the end. `name` as messages
/// should have it. Throws Failure (ExitCode::io).
size_t read_some(int descriptor, const std::string& name, void* bytes, size_t count, Read read);

/// Whether reading would not wait.
bool is_readable(int descriptor);

/// The bytes of a regular file that are still to be read; of anything else 0.
uint64_t bytes_left(int descriptor);

/// Splits at "\n"; a "\r" before it goes too. A last line needs no "\n". Any other byte, NUL too, belongs to the line.
class LineReader {
 public:
  static constexpr size_t longest_line = size_t{1} << 16;
  struct Line {
    std::string_view text;  // until the next call
    uint64_t number = 0;    // from 1
    bool too_long = false;  // `text` is its beginning; the rest was passed over
  };

  /// `name` as messages should have it; `before_waiting` is called before each read, which may take its time.
  LineReader(int descriptor, std::string name, std::function<void()> before_waiting);
  LineReader(int descriptor, std::string name, std::function<void()> before_waiting, Read read);
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  /// False at the end. Throws Failure (ExitCode::io) when reading fails.
  bool next(Line& line);

 private:
  bool fill();

  const int descriptor_;
  const std::string name_;
  const std::function<void()> before_waiting_;
  const Read read_;
  std::string buffer_;
  size_t begin_ = 0;  // of what was not given out yet
  uint64_t number_ = 0;
  bool at_end_ = false;
};

}  // namespace vxcli

#endif
