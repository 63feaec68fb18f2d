// Without the wide instructions nothing is done at once: the steps do it all.
#include "utf8/runs.h"

constinit const vxnls::Utf8Runs vxnls::generic_utf8_runs = {
    .count = [](const uint8_t*, int64_t, int64_t*) -> int64_t { return 0; },
    .lower = [](const uint8_t*, int64_t, uint8_t*) -> int64_t { return 0; },
    .upper = [](const uint8_t*, int64_t, uint8_t*) -> int64_t { return 0; },
};
