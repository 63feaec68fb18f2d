#include "number_format/short_decimal.h"

#include <bit>

#include "number_format/digits.h"
#include "number_format/draft.h"
#include "number_parse/soft_extended.h"

namespace vxnls {

namespace {

__extension__ using Wide = unsigned __int128;

constexpr int32_t lowest_power = -308, highest_power = 309;
constexpr int32_t highest_exact_power = 27;  // 5^27 has 63 bits

/// The first 64 bits of 10^lowest_power to 10^highest_power; the error is one in the last place at most.
struct Significands {
  uint64_t of[highest_power - lowest_power + 1];
};

constexpr Significands significands = [] {
  Significands table{};
  for (int32_t power = lowest_power; power < highest_power; ++power) {
    const SoftExtended value =
        power < 0 ? SoftExtended(uint64_t{1}) / soft_powers_of_ten.entry[-power] : soft_powers_of_ten.entry[power];
    table.of[power - lowest_power] = value.significand();
  }
  table.of[highest_power - lowest_power] =
      (soft_powers_of_ten.entry[highest_power - 1] * SoftExtended(uint64_t{10})).significand();
  return table;
}();

constexpr uint64_t significand(int32_t power) { return significands.of[power - lowest_power]; }

/// floor(log2(10^power)) and floor(log10(2^exponent)) in this range.
constexpr int32_t binary_exponent(int32_t power) { return power * 1741647 >> 19; }
constexpr int32_t decimal_exponent(int32_t exponent) { return exponent * 1262611 >> 22; }

}  // namespace

bool short_decimal(double magnitude, int32_t count, ShortDecimal* decimal) {
  if (!(magnitude >= 1e-290 && magnitude <= 0x1.fffffffffffffp+1023)) return false;
  const auto [mantissa, last_bit] = binary_parts(magnitude);
  const uint64_t top = mantissa << 11;
  const int32_t exponent = last_bit + 52;
  int32_t tens = decimal_exponent(exponent);
  tens +=
      static_cast<int32_t>(binary_exponent(tens + 1) == exponent) & static_cast<int32_t>(top >= significand(tens + 1));

  const int32_t power = count - 1 - tens;
  const Wide product = static_cast<Wide>(top) * significand(power);
  const auto high = static_cast<uint64_t>(product >> 64), low = static_cast<uint64_t>(product);
  const int32_t shift = 62 - exponent - binary_exponent(power);  // from 9 to 62: the digits are what is left of `high`
  const uint64_t fraction = high << (64 - shift) | low >> shift;
  if (power < 0 || power > highest_exact_power) {
    constexpr uint64_t half = UINT64_C(1) << 63;
    const uint64_t error = UINT64_C(1) << (67 - shift);  // more than what the significand brings
    if (fraction - half + error <= 2 * error) return false;
  }
  uint64_t digits = (high >> shift) + (fraction >> 63);
  if (digits == powers_of_ten[count]) {
    digits = powers_of_ten[count - 1];
    ++tens;
  }
  *decimal = {digits, tens};
  return true;
}

}  // namespace vxnls
