// Up to sixteen significant digits of a double by one multiplication of 64 bits with 64.
#ifndef VXNLS_NUMBER_FORMAT_SHORT_DECIMAL_H
#define VXNLS_NUMBER_FORMAT_SHORT_DECIMAL_H

#include <cstdint>

namespace vxnls {

inline constexpr int32_t most_short_digits = 16;

/// value = d.ddd * 10^exponent, rounded half up as the digits of the exact value say.
struct ShortDecimal {
  uint64_t digits;  // as many as were asked for
  int32_t exponent;
};

/// Gives false where the product does not decide how the value is rounded, and for values outside 1e-290 to the largest
/// double: then the exact digits have to be made. `count` is from 1 to most_short_digits.
bool short_decimal(double magnitude, int32_t count, ShortDecimal* decimal);

}  // namespace vxnls

#endif
