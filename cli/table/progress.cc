#include "cli/table/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

namespace vxcli::table {

namespace {

constexpr std::string_view wiped = "\r\x1b[K";

std::string megabytes(double bytes) { return fmt::format("{:.1f} MB", bytes / 1e6); }

bool is_terminal(int descriptor) { return isatty(descriptor) != 0; }

void to_terminal(std::string_view text) {
  // A terminal takes a line whole; what it does not take is not worth waiting for.
  if (write(STDERR_FILENO, text.data(), text.size()) < 0) return;
}

}  // namespace

std::string progress_text(uint64_t bytes, uint64_t size, std::chrono::duration<double> elapsed) {
  const double done = static_cast<double>(bytes);
  std::string text = megabytes(done);
  if (size > 0) {
    // A file may grow while it is read.
    text += fmt::format(" of {}, {}%", megabytes(static_cast<double>(size)),
                        static_cast<int>(std::min(1.0, done / static_cast<double>(size)) * 100));
  }
  if (elapsed.count() > 0) text += fmt::format(", {}/s", megabytes(done / elapsed.count()));
  return text;
}

Progress::Progress(bool quiet, Meanwhile meanwhile)
    : shown_(!quiet && is_terminal(STDERR_FILENO) && !(meanwhile == Meanwhile::output && is_terminal(STDOUT_FILENO))),
      begin_(Clock::now()),
      due_(begin_ + std::chrono::milliseconds{500}) {}

void Progress::show(uint64_t bytes, uint64_t size) {
  if (!shown_) return;
  const Clock::time_point now = Clock::now();
  if (now < due_) return;
  due_ = now + std::chrono::milliseconds{100};
  to_terminal(fmt::format("{}{}", wiped, progress_text(bytes, size, now - begin_)));
  on_screen_ = true;
}

void Progress::wipe() {
  if (!on_screen_) return;
  to_terminal(wiped);
  on_screen_ = false;
}

}  // namespace vxcli::table
