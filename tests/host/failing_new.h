// An operator new for the whole program that can be told to fail.
#ifndef VXNLS_TESTS_HOST_FAILING_NEW_H
#define VXNLS_TESTS_HOST_FAILING_NEW_H

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace vxtest {

/// The ways, by the nearest callers, that led to allocations that failed.
class Ways {
 public:
  explicit Ways(int callers) : callers_(static_cast<size_t>(callers)) {}  // at most 32
  /// `caller`: where operator new returns to. False when that way was there before.
  bool add(const void* caller);

 private:
  const size_t callers_;
  std::atomic<uint64_t> slots_[size_t{1} << 16] = {};
};

/// Counts allocations from 1. The one after the next `spared` fails; with `lasting`, all after it too. With `ways`, the
/// first after those that comes on a new way.
void fail_new(int64_t spared, bool lasting, Ways* ways = nullptr);
/// All work again. The number of the first that failed; 0: none did.
int64_t stop_failing_new();

}  // namespace vxtest

#endif
