// Preloaded into a program: one of its calls on standard input, standard output or a file of a folder fails, is
// interrupted or falls short. The variables of the environment:
//   FAULTY_FOLDER  path of the folder
//   FAULTY_CALL    read, write or close
//   FAULTY_AT      which of these calls, from 1; 0 for none
//   FAULTY_ERROR   its errno; 0: it takes or gives a single byte
//   FAULTY_MOST    bytes that any read gives at most; then no input is ever ready, so that each read is waited for
//   FAULTY_COUNT   file into which the number of these calls is written at the end
#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

std::string setting(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

struct Plan {
  std::string folder = setting("FAULTY_FOLDER");
  std::string call = setting("FAULTY_CALL");
  long at = std::atol(setting("FAULTY_AT").c_str());
  int error = std::atoi(setting("FAULTY_ERROR").c_str());
  size_t most = std::strtoul(setting("FAULTY_MOST").c_str(), nullptr, 10);
  std::string count = setting("FAULTY_COUNT");
  std::atomic<long> calls = 0;

  ~Plan() {
    if (count.empty()) return;
    const std::string text = std::to_string(calls);
    const int file = open(count.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (syscall(SYS_write, file, text.data(), text.size()) < 0) std::abort();
  }

  bool watches(int descriptor) const {
    if (descriptor == STDIN_FILENO || descriptor == STDOUT_FILENO) return true;
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = readlink(link.c_str(), path, sizeof path);
    return length > 0 && !folder.empty() && std::string_view(path, static_cast<size_t>(length)).starts_with(folder);
  }
  /// Whether it is this call's turn.
  bool hits(std::string_view name, int descriptor) { return name == call && watches(descriptor) && ++calls == at; }
};

Plan& plan() {
  static Plan only;
  return only;
}

/// Calls `number`, or fails or falls short when it is its turn.
ssize_t transfer(const char* name, long number, int descriptor, const void* bytes, size_t count) {
  if (plan().hits(name, descriptor)) {
    if (plan().error != 0) {
      errno = plan().error;
      return -1;
    }
    count = std::min<size_t>(count, 1);
  }
  return syscall(number, descriptor, bytes, count);
}

}  // namespace

extern "C" {

ssize_t read(int descriptor, void* bytes, size_t count) {
  if (plan().most > 0 && plan().watches(descriptor)) count = std::min(count, plan().most);
  return transfer("read", SYS_read, descriptor, bytes, count);
}

ssize_t write(int descriptor, const void* bytes, size_t count) {
  return transfer("write", SYS_write, descriptor, bytes, count);
}

int close(int descriptor) {
  const bool hit = plan().hits("close", descriptor);
  const auto result = static_cast<int>(syscall(SYS_close, descriptor));
  if (!hit) return result;
  errno = plan().error;
  return -1;
}

int poll(pollfd* descriptors, nfds_t count, int timeout) {
  if (plan().most > 0 && timeout == 0) return 0;
  return static_cast<int>(syscall(SYS_poll, descriptors, count, timeout));
}
}
