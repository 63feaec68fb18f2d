#include "tests/host/failing_new.h"

#include <execinfo.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <new>
#include <string_view>

namespace {

std::atomic<bool> counting{false};
std::atomic<int64_t> count;
std::atomic<int64_t> first_failed;
int64_t spared_ones;
bool keeps_failing;
vxtest::Ways* known_ways;

bool fails(const void* caller) {
  if (!counting.load(std::memory_order_acquire)) return false;
  const int64_t number = ++count;
  if (first_failed != 0) return keeps_failing;
  if (number <= spared_ones || (known_ways != nullptr && !known_ways->add(caller))) return false;
  int64_t none = 0;
  return first_failed.compare_exchange_strong(none, number) || keeps_failing;
}

}  // namespace

namespace vxtest {

bool Ways::add(const void* caller) {
  void* callers[48];
  void** const end = callers + backtrace(callers, static_cast<int>(std::size(callers)));
  void** const first = std::find(callers, end, caller);  // how many calls lie before it is the compiler's to say
  const size_t depth = std::min(callers_, static_cast<size_t>(end - first));
  const uint64_t way = std::hash<std::string_view>()({reinterpret_cast<char*>(first), depth * sizeof *callers}) | 1;
  for (size_t i = way % std::size(slots_);; i = (i + 1) % std::size(slots_)) {
    uint64_t there = 0;
    if (slots_[i].compare_exchange_strong(there, way)) return true;
    if (there == way) return false;
  }
}

void fail_new(int64_t spared, bool lasting, Ways* ways) {
  count = first_failed = 0;
  spared_ones = spared;
  keeps_failing = lasting;
  known_ways = ways;
  counting.store(true, std::memory_order_release);
}

int64_t stop_failing_new() {
  counting = false;
  return first_failed;
}

}  // namespace vxtest

void* operator new(size_t bytes, const std::nothrow_t&) noexcept {
  return fails(__builtin_return_address(0)) ? nullptr : std::malloc(bytes != 0 ? bytes : 1);
}
void* operator new(size_t bytes) {
  void* const block = fails(__builtin_return_address(0)) ? nullptr : std::malloc(bytes != 0 ? bytes : 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, size_t) noexcept { std::free(block); }
