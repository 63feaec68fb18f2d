#include "cli/input.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "cli/errors.h"

namespace vxcli {

namespace {

constexpr size_t block_size = size_t{1} << 16;

bool wait_until_readable(int descriptor, int milliseconds) {
  pollfd wanted{descriptor, POLLIN, 0};
  return poll(&wanted, 1, milliseconds) != 0;
}

}  // namespace

size_t read_some(int descriptor, const std::string& name, void* bytes, size_t count, Read read) {
  for (;;) {
    const ssize_t taken = read(descriptor, bytes, count);
    if (taken >= 0) return static_cast<size_t>(taken);
    if (errno == EAGAIN) {
      wait_until_readable(descriptor, -1);
    } else if (errno != EINTR) {
      fail(ExitCode::io, "cannot read {}: {}", name, std::strerror(errno));
    }
  }
}

bool is_readable(int descriptor) { return wait_until_readable(descriptor, 0); }

uint64_t bytes_left(int descriptor) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  // A file may be handed over with its first part already read.
  const off_t begin = std::max<off_t>(lseek(descriptor, 0, SEEK_CUR), 0);
  return static_cast<uint64_t>(std::max<off_t>(status.st_size - begin, 0));
}

LineReader::LineReader(int descriptor, std::string name, std::function<void()> before_waiting)
    : LineReader(descriptor, std::move(name), std::move(before_waiting), ::read) {}

LineReader::LineReader(int descriptor, std::string name, std::function<void()> before_waiting, Read read)
    : descriptor_(descriptor), name_(std::move(name)), before_waiting_(std::move(before_waiting)), read_(read) {}

/// Reads a block behind what is left in the buffer. False at the end of the input.
bool LineReader::fill() {
  if (at_end_) return false;
  buffer_.erase(0, begin_);
  begin_ = 0;
  if (before_waiting_) before_waiting_();
  const size_t held = buffer_.size();
  buffer_.resize(held + block_size);
  const size_t count = read_some(descriptor_, name_, buffer_.data() + held, block_size, read_);
  buffer_.resize(held + count);
  at_end_ = count == 0;
  return !at_end_;
}

bool LineReader::next(Line& line) {
  line.too_long = false;
  size_t searched = 0;
  for (;;) {
    const size_t end = buffer_.find('\n', begin_ + searched);
    const bool complete = end != std::string::npos;
    if (!complete) {
      searched = buffer_.size() - begin_;
      if (searched > longest_line) {
        // Only its beginning is kept, so that a line without end takes no memory.
        line.too_long = true;
        searched = longest_line;
        buffer_.resize(begin_ + longest_line);
      }
      if (fill()) continue;
      if (begin_ == buffer_.size()) return false;
    }
    const size_t stop = complete ? end : buffer_.size();
    line.text = std::string_view(buffer_).substr(begin_, stop - begin_);
    if (line.text.size() > longest_line) line.too_long = true;
    if (line.too_long) {
      line.text = line.text.substr(0, longest_line);
    } else if (complete && line.text.ends_with('\r')) {
      line.text.remove_suffix(1);
    }
    begin_ = complete ? stop + 1 : stop;
    line.number = ++number_;
    return true;
  }
}

}  // namespace vxcli
