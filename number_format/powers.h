// Powers of ten as doubles, each the nearest one.
#ifndef VXNLS_NUMBER_FORMAT_POWERS_H
#define VXNLS_NUMBER_FORMAT_POWERS_H

#include <cstdint>

namespace vxnls {

/// 10^exponent for an exponent from 0 to 308.
double power_of_ten(int32_t exponent);

}  // namespace vxnls

#endif
