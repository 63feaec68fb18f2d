// Memory that ends, or begins, exactly at a page that may not be touched: one step outside is a crash.
#ifndef VXNLS_TESTS_SUPPORT_GUARD_PAGE_H
#define VXNLS_TESTS_SUPPORT_GUARD_PAGE_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace vxtest {

enum class Guard { behind, before };

/// Room for `most` elements between two untouchable pages. `at(n)` is an area of n elements that touches one of them,
/// or lies `away` elements from it; each area lies in the same memory as the one before it.
template <class T>
class GuardedBuffer {
 public:
  explicit GuardedBuffer(size_t most) {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    inner_ = (most * sizeof(T) + page - 1) / page * page;
    whole_ = inner_ + 2 * page;
    memory_ = static_cast<uint8_t*>(mmap(nullptr, whole_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (memory_ == MAP_FAILED) std::abort();
    begin_ = memory_ + page;
    if (mprotect(begin_, inner_, PROT_READ | PROT_WRITE) != 0) std::abort();
  }
  ~GuardedBuffer() { munmap(memory_, whole_); }
  GuardedBuffer(const GuardedBuffer&) = delete;
  GuardedBuffer& operator=(const GuardedBuffer&) = delete;

  T* at(size_t n, Guard guard = Guard::behind, size_t away = 0) {
    if ((n + away) * sizeof(T) > inner_) std::abort();
    T* const memory = reinterpret_cast<T*>(guard == Guard::before ? begin_ : begin_ + inner_ - (n + away) * sizeof(T));
    return guard == Guard::before ? memory + away : memory;
  }
  /// An area that holds a copy of `n` elements.
  T* copy(const T* from, size_t n, Guard guard = Guard::behind, size_t away = 0) {
    T* const to = at(n, guard, away);
    if (n > 0) std::memcpy(to, from, n * sizeof(T));
    return to;
  }

 private:
  size_t inner_, whole_;
  uint8_t *memory_, *begin_;
};

}  // namespace vxtest

#endif
