// The plain body, built under a name of its own.
#include "tests/unicode/blocks.h"

#define VXNLS_BLOCKS_BY_SSE2 0
#define vxnls vxnls_plain
#include "unicode/eight_units.h"

namespace vxtest {

const Blocks plain_blocks = {vxnls_plain::take_four,
                             vxnls_plain::take_eight,
                             vxnls_plain::put_four,
                             vxnls_plain::put_eight,
                             vxnls_plain::narrow<16>,
                             vxnls_plain::put_units<20, VXChar>,
                             vxnls_plain::put_units<20, uint8_t>};

}  // namespace vxtest
