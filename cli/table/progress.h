// How far a long run is, in one line on a terminal.
#ifndef VXNLS_CLI_TABLE_PROGRESS_H
#define VXNLS_CLI_TABLE_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <string>

namespace vxcli::table {

/// "12.3 MB of 100.0 MB, 12%, 240.1 MB/s"; without the total where `size` is 0.
std::string progress_text(uint64_t bytes, uint64_t size, std::chrono::duration<double> elapsed);

/// Whether the command writes while it reads.
enum class Meanwhile { silence, output };

/// A line on standard error that is rewritten, at most ten times a second and not before half a second has gone by;
/// nothing when standard error is no terminal. That it cannot be written changes nothing.
class Progress {
 public:
  /// `quiet`: nothing in any case. Nor when there is output to a terminal, among which the line would stand.
  explicit Progress(bool quiet, Meanwhile meanwhile = Meanwhile::silence);
  ~Progress() { wipe(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// After each block: bytes read so far, and the size of the input or 0.
  void show(uint64_t bytes, uint64_t size);
  /// Takes the line away: before a message is written, and at the end.
  void wipe();

 private:
  using Clock = std::chrono::steady_clock;

  const bool shown_;
  const Clock::time_point begin_;
  Clock::time_point due_;
  bool on_screen_ = false;
};

}  // namespace vxcli::table

#endif
