// Extended precision in integers: the positive numbers of the 80-bit format, and their arithmetic to nearest, ties to
// even, bit for bit. For machines whose long double is another type.
#ifndef VXNLS_NUMBER_PARSE_SOFT_EXTENDED_H
#define VXNLS_NUMBER_PARSE_SOFT_EXTENDED_H

#include <stdint.h>

#include <bit>

namespace vxnls {

/// significand × 2^exponent, with the top bit of the significand set; or 0. The exponent has no limits here: the
/// conversion of a number stays far within those of the format.
class SoftExtended {
 public:
  constexpr SoftExtended() = default;
  explicit constexpr SoftExtended(uint64_t whole) : SoftExtended(rounded(whole, 0, false)) {}
  /// A positive double that is not subnormal.
  explicit constexpr SoftExtended(double value) {
    const auto bits = std::bit_cast<uint64_t>(value);
    significand_ = (bits | hidden_bit) << 11;
    exponent_ = static_cast<int32_t>(bits >> 52) - 1023 - 63;
  }

  __extension__ using Wide = unsigned __int128;

  /// value × 2^exponent, and a little more when there is a `rest`, rounded.
  static constexpr SoftExtended rounded(Wide value, int32_t exponent, bool rest) {
    if (value == 0) return {};
    const auto top = static_cast<uint64_t>(value >> 64);
    const int zeros = top != 0 ? std::countl_zero(top) : 64 + std::countl_zero(static_cast<uint64_t>(value));
    value <<= zeros;
    const auto lost = static_cast<uint64_t>(value);
    const bool tie = lost == top_bit && !rest;
    return SoftExtended(static_cast<uint64_t>(value >> 64), exponent - zeros + 64, lost >= top_bit, tie);
  }

  friend constexpr SoftExtended operator*(SoftExtended a, SoftExtended b) {
    return rounded(static_cast<Wide>(a.significand_) * b.significand_, a.exponent_ + b.exponent_, false);
  }

  /// The divisor is not 0.
  friend constexpr SoftExtended operator/(SoftExtended a, SoftExtended b) {
    const int shift = a.significand_ < b.significand_ ? 64 : 63;  // gives a quotient of exactly 64 bits
    const Wide dividend = static_cast<Wide>(a.significand_) << shift;
    const auto quotient = static_cast<uint64_t>(dividend / b.significand_);
    const auto remainder = static_cast<uint64_t>(dividend % b.significand_);
    // Never a tie: twice the quotient and 1, an odd number of 65 bits, would have to divide a significand of 64.
    return SoftExtended(quotient, a.exponent_ - b.exponent_ - shift, remainder >= b.significand_ - remainder, false);
  }

  friend constexpr SoftExtended operator+(SoftExtended a, SoftExtended b) {
    if (b > a) return b + a;
    if (b.significand_ == 0) return a;
    const int32_t apart = a.exponent_ - b.exponent_;
    const Wide small = static_cast<Wide>(b.significand_) << 63;
    const Wide shifted = apart < 127 ? small >> apart : 0;
    const bool rest = apart >= 127 || shifted << apart != small;
    return rounded((static_cast<Wide>(a.significand_) << 63) + shifted, a.exponent_ - 63, rest);
  }

  friend constexpr bool operator>(SoftExtended a, SoftExtended b) {
    if (a.significand_ == 0 || b.significand_ == 0) return a.significand_ > b.significand_;
    return a.exponent_ != b.exponent_ ? a.exponent_ > b.exponent_ : a.significand_ > b.significand_;
  }
  friend constexpr bool operator==(SoftExtended a, SoftExtended b) = default;

  /// The nearest double, of a value that is not 0. The largest double must be the next one at most.
  explicit constexpr operator double() const {
    const int32_t top = exponent_ + 63;
    constexpr int32_t smallest_normal = -1022;
    const int32_t below = top < smallest_normal ? smallest_normal - top : 0;
    const int32_t dropped = 11 + below;
    if (dropped > 64) return 0;
    const uint64_t kept = dropped < 64 ? significand_ >> dropped : 0;
    const uint64_t lost = significand_ << (64 - dropped);
    const uint64_t mantissa = kept + (lost > top_bit || (lost == top_bit && (kept & 1) != 0) ? 1 : 0);
    // The hidden bit adds 1 to the exponent field, and so does a carry out of the mantissa.
    const auto field = static_cast<uint64_t>(top + below - smallest_normal);
    return std::bit_cast<double>((field << 52) + mantissa);
  }

  constexpr uint64_t significand() const { return significand_; }
  constexpr int32_t exponent() const { return exponent_; }

 private:
  static constexpr uint64_t top_bit = UINT64_C(1) << 63;
  static constexpr uint64_t hidden_bit = UINT64_C(1) << 52;

  constexpr SoftExtended(uint64_t significand, int32_t exponent, bool up, bool tie)
      : significand_(significand), exponent_(exponent) {
    if (!up || (tie && (significand & 1) == 0)) return;
    if (++significand_ == 0) {
      significand_ = top_bit;
      ++exponent_;
    }
  }

  uint64_t significand_ = 0;
  int32_t exponent_ = 0;
};

struct SoftPowers {
  SoftExtended entry[309];
};

/// 10^0 to 10^308, each rounded once: the powers of five are exact here.
inline constexpr SoftPowers soft_powers_of_ten = [] {
  constexpr int limbs = 12;  // 5^308 has 716 bits
  uint64_t five[limbs] = {1};
  SoftPowers powers{};
  for (int32_t power = 0;; ++power) {
    int top = limbs - 1;
    while (top > 0 && five[top] == 0) --top;
    using Wide = SoftExtended::Wide;
    const Wide head = static_cast<Wide>(five[top]) << 64 | (top > 0 ? five[top - 1] : 0);
    bool rest = false;
    for (int i = 0; i < top - 1; ++i) rest = rest || five[i] != 0;
    powers.entry[power] = SoftExtended::rounded(head, power + 64 * (top - 1), rest);
    if (power == 308) return powers;
    uint64_t carry = 0;
    for (uint64_t& digit : five) {
      const Wide product = static_cast<Wide>(digit) * 5 + carry;
      digit = static_cast<uint64_t>(product);
      carry = static_cast<uint64_t>(product >> 64);
    }
  }
}();

}  // namespace vxnls

#endif
