#include "cli/output.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include "cli/errors.h"
#include "cli/text.h"

namespace vxcli {

namespace {

constexpr size_t buffer_size = size_t{1} << 16;

void wait_until_writable(int descriptor) {
  pollfd wanted{descriptor, POLLOUT, 0};
  poll(&wanted, 1, -1);
}

void to_standard_error(std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(STDERR_FILENO, text.data(), text.size());
    if (count >= 0) {
      text.remove_prefix(static_cast<size_t>(count));
    } else if (errno == EAGAIN) {
      wait_until_writable(STDERR_FILENO);
    } else if (errno != EINTR) {
      return;
    }
  }
}

}  // namespace

void occupy_standard_descriptors() {
  // Lowest first: open() gives the lowest descriptor that is free. Each one is opened for what it is not used for.
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) != -1 || errno != EBADF) continue;
    const int mode = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (open("/dev/null", mode) != descriptor) _exit(static_cast<int>(ExitCode::io));
  }
}

Output::Output(int descriptor, std::string name) : Output(descriptor, std::move(name), ::write) {}

Output::Output(int descriptor, std::string name, Write write)
    : descriptor_(descriptor), name_(std::move(name)), write_(write) {}

void Output::put(std::string_view text) {
  if (text.size() >= buffer_size) {
    flush();
    write_all(text);  // as it is, without a copy
    return;
  }
  buffer_ += text;
  if (buffer_.size() >= buffer_size) flush();
}

void Output::line(std::string_view text) {
  buffer_ += text;
  put("\n");
}

void Output::flush() {
  write_all(buffer_);
  buffer_.clear();
}

void Output::write_all(std::string_view rest) {
  while (!rest.empty()) {
    const ssize_t count = write_(descriptor_, rest.data(), rest.size());
    if (count > 0) {
      rest.remove_prefix(static_cast<size_t>(count));
    } else if (count < 0 && errno == EAGAIN) {
      wait_until_writable(descriptor_);
    } else if (count < 0 && errno != EINTR) {
      give_up(errno);
    }
  }
}

void Output::finish() {
  flush();
  // Linux has closed the descriptor also when the call was interrupted.
  if (close(descriptor_) != 0 && errno != EINTR) give_up(errno);
}

void Output::give_up(int error) {
  discard();
  fail(ExitCode::io, "cannot write {}: {}", name_, std::strerror(error));
}

void Messages::error(std::string_view text) const noexcept {
  try {
    to_standard_error(fmt::format("{} {}\n", colors_.paint(Tint::error, "vxnls:"), visible(text)));
  } catch (const std::bad_alloc&) {
    for (const std::string_view part : {std::string_view("vxnls: "), text, std::string_view("\n")}) {
      to_standard_error(part);
    }
  }
}

void Messages::note(std::string_view text) const {
  if (!quiet_) to_standard_error(fmt::format("vxnls: {} {}\n", colors_.paint(Tint::note, "note:"), visible(text)));
}

}  // namespace vxcli
