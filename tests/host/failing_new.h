// An operator new for the whole program that can be told to fail.
#ifndef VXNLS_TESTS_HOST_FAILING_NEW_H
#define VXNLS_TESTS_HOST_FAILING_NEW_H

#include <cstdint>

namespace vxtest {

/// The allocation after the next `allocations` fails; with `lasting`, all after it too.
void fail_new(int64_t allocations, bool lasting);
/// All work again. Whether one has failed.
bool stop_failing_new();

}  // namespace vxtest

#endif
