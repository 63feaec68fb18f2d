// Exact decimal digits of a double, as ASCII.
#ifndef VXNLS_NUMBER_FORMAT_DIGITS_H
#define VXNLS_NUMBER_FORMAT_DIGITS_H

#include <bit>
#include <cstdint>

namespace vxnls {

inline constexpr int32_t most_integer_digits = 309;    // of the largest double
inline constexpr int32_t most_fraction_digits = 1074;  // of the smallest subnormal, leading zeros counted

/// A finite double's magnitude taken apart: value = mantissa * 2^exponent.
struct BinaryParts {
  uint64_t mantissa;
  int32_t exponent;
};

constexpr BinaryParts binary_parts(double value) {
  const auto bits = std::bit_cast<uint64_t>(value);
  const auto biased = static_cast<int32_t>(bits >> 52 & 0x7FF);
  const uint64_t fraction = bits & 0xFFFFFFFFFFFFFu;
  if (biased == 0) return {fraction, -1074};
  return {fraction | 1ull << 52, biased - 1075};
}

/// Writes the digits of the integer part of |value|, without leading zeros; gives their count, 0 for a value below 1.
/// `out` has room for most_integer_digits. `value` is finite.
int32_t integer_digits(double value, uint8_t* out);

/// Digits of a fraction part: value = 0.<leading_zeros zeros><digits>.
struct FractionDigits {
  int32_t count;
  int32_t leading_zeros;
};

/// Writes up to `limit` digits of the fraction part of |value|, beginning with the first that is not zero, cut and not
/// rounded. Fewer are written only when the expansion ends: the last digit of a whole expansion is never zero. An
/// integral value has none. `value` is finite.
FractionDigits fraction_digits(double value, uint8_t* out, int32_t limit);

/// Writes exactly `count` decimal digits of `value`, leading zeros included. value < 10^count.
void write_digits(uint8_t* out, int32_t count, uint64_t value);

/// Writes the digits of `value` without leading zeros (none for 0) so that they end before `end`; gives the first.
uint8_t* write_digits_before(uint8_t* end, uint64_t value);

}  // namespace vxnls

#endif
