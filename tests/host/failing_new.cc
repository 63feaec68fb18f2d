#include "tests/host/failing_new.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<bool> counting{false};
std::atomic<bool> keeps_failing{false};
std::atomic<int64_t> left{0};  // below 0 once one has failed

void* allocate(size_t bytes) {
  if (counting.load(std::memory_order_relaxed)) {
    const int64_t before = left.fetch_sub(1, std::memory_order_relaxed);
    if (before == 0 || (before < 0 && keeps_failing.load(std::memory_order_relaxed))) return nullptr;
  }
  return std::malloc(bytes != 0 ? bytes : 1);
}

}  // namespace

namespace vxtest {

void fail_new(int64_t allocations, bool lasting) {
  left = allocations;
  keeps_failing = lasting;
  counting = true;
}

bool stop_failing_new() {
  counting = false;
  return left < 0;
}

}  // namespace vxtest

void* operator new(size_t bytes) {
  void* const block = allocate(bytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new(size_t bytes, const std::nothrow_t&) noexcept { return allocate(bytes); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, size_t) noexcept { std::free(block); }
