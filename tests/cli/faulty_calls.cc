#include "tests/cli/faulty_calls.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <string_view>

namespace {

using vxtest::Call;

vxtest::FaultyCalls plan;
char watched_folder[4096];  // no text of the heap, which may be told to fail, too
std::atomic<long> calls;

bool watches(int descriptor) {
  if (descriptor <= STDERR_FILENO) return true;
  char link[64];
  char path[4096];
  static_cast<void>(snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor));
  const ssize_t length = readlink(link, path, sizeof path);
  return length > 0 && std::string_view(path, static_cast<size_t>(length)).starts_with(watched_folder);
}

/// Whether it is this call's turn.
bool hits(Call call, int descriptor) { return call == plan.call && watches(descriptor) && ++calls == plan.at; }

/// Makes the call, or fails or falls short when it is its turn.
ssize_t transfer(Call call, long number, int descriptor, const void* bytes, size_t count) {
  if (hits(call, descriptor)) {
    if (plan.error != 0) {
      errno = plan.error;
      return -1;
    }
    count = std::min<size_t>(count, 1);
  }
  return syscall(number, descriptor, bytes, count);
}

}  // namespace

namespace vxtest {

void make_faulty(const FaultyCalls& wanted, const std::string& folder) {
  plan = {};
  watched_folder[folder.copy(watched_folder, sizeof watched_folder - 1)] = '\0';
  calls = 0;
  plan = wanted;
}

long calls_made() { return calls; }

}  // namespace vxtest

extern "C" {

ssize_t read(int descriptor, void* bytes, size_t count) {
  if (plan.most > 0 && watches(descriptor)) count = std::min(count, plan.most);
  return transfer(Call::read, SYS_read, descriptor, bytes, count);
}

ssize_t write(int descriptor, const void* bytes, size_t count) {
  return transfer(descriptor == STDERR_FILENO ? Call::tell : Call::write, SYS_write, descriptor, bytes, count);
}

int close(int descriptor) {
  const bool hit = hits(Call::close, descriptor);
  const auto result = static_cast<int>(syscall(SYS_close, descriptor));
  if (!hit) return result;
  errno = plan.error;
  return -1;
}

int rename(const char* from, const char* to) noexcept {
  if (hits(Call::rename, STDIN_FILENO)) {
    errno = plan.error;
    return -1;
  }
  return static_cast<int>(syscall(SYS_rename, from, to));
}

int poll(pollfd* descriptors, nfds_t count, int timeout) {
  if (plan.most > 0 && timeout == 0) return 0;
  return static_cast<int>(syscall(SYS_poll, descriptors, count, timeout));
}
}
