// From decimal digits to a double, in extended precision.
#ifndef VXNLS_NUMBER_PARSE_CALC_DOUBLE_H
#define VXNLS_NUMBER_PARSE_CALC_DOUBLE_H

#include <float.h>

#include <algorithm>
#include <type_traits>

#include "number_parse/soft_extended.h"
#include "vxnls/bytes.h"

namespace vxnls {

inline constexpr bool long_double_is_extended = LDBL_MANT_DIG == 64 && LDBL_MAX_EXP == 16384;
using Extended = std::conditional_t<long_double_is_extended, long double, SoftExtended>;

/// 10^0 to 10^308, each the nearest value of the 80-bit format. Only meaningful where long double is that format.
extern const long double VXPOWTENTABLE[309];

/// The largest double divided by 10.
inline constexpr double MacBigDivBy10 = DBL_MAX / 10;

/// 10^exponent for an exponent from 0 to 308.
template <class Number>
const Number& extended_power_of_ten(int64_t exponent) {
  if constexpr (std::is_same_v<Number, long double>) return VXPOWTENTABLE[exponent];
  else return soft_powers_of_ten.entry[exponent];
}

/// A whole number below 2^63; as a signed one, which the processor converts in one instruction.
template <class Number>
Number exactly(uint64_t whole) {
  if constexpr (std::is_same_v<Number, long double>) return static_cast<long double>(static_cast<int64_t>(whole));
  else return Number(whole);
}

/// The greatest whole mantissa whose product with 10^exponent, from 293 to 308, is a double still. The exact limit is
/// this and a fraction, never whole (5 does not divide the largest double), and mantissas are whole: so none is equal
/// to it, and comparing with the whole part decides.
constexpr uint64_t mantissa_limit(int64_t exponent) {
  constexpr uint64_t limits[] = {1797693134862315,
                                 179769313486231,
                                 17976931348623,
                                 1797693134862,
                                 179769313486,
                                 17976931348,
                                 1797693134,
                                 179769313,
                                 17976931,
                                 1797693,
                                 179769,
                                 17976,
                                 1797,
                                 179,
                                 17,
                                 1};
  return limits[exponent - 293];
}

inline double ordinary_missing_value() { return std::bit_cast<double>(qmmissv_struct[2]); }

/// ±(high and low) × 10^exponent, rounded in extended precision at every step and once more to double.
///   high      the first 15 significant digits; 0 gives 0, whatever `low` is
///   low       digits 16 to 30; none when there are fewer than 16
///   digits    how many there were, those past the thirtieth counted
///   exponent  of ten, for the last of the `digits`
/// Returns 0, VX_E_OVERFLOW, or VX_E_UNDERFLOW when the result is 0; then `value` is the ordinary missing value.
template <class Number>
VXStatus calc_double(uint64_t high, uint64_t low, int32_t digits, int32_t exponent, bool negative, double* value) {
  const auto failed = [value](VXStatus status) {
    *value = ordinary_missing_value();
    return status;
  };
  const auto power = extended_power_of_ten<Number>;
  if (high == 0) {
    // Kept on purpose: a zero has its minus only with an exponent from -22 to 22.
    *value = negative && digits <= 15 && exponent >= -22 && exponent <= 22 ? -0.0 : 0.0;
    return 0;
  }
  Number mantissa(high);
  int64_t used = std::max(digits, 0);  // digits of the mantissa
  int64_t scale = exponent;
  if (digits > 15) {
    const int64_t more = std::min(digits - 15, 15);
    mantissa = mantissa * power(more) + Number(low);
    used = 15 + more;
    scale += digits - used;
  }
  Number result = mantissa;
  if (scale < -616) return failed(VX_E_UNDERFLOW);
  if (scale < -308) {
    result = mantissa / power(308) / power(-scale - 308);
  } else if (scale < 0) {
    result = mantissa / power(-scale);
  } else {
    if (scale > 308 || (scale > 292 && mantissa > Number(mantissa_limit(scale)))) return failed(VX_E_OVERFLOW);
    if (scale + used <= 307) {
      result = mantissa * power(scale);
    } else {
      result = mantissa * power(307 - used);
      for (int64_t steps = scale + used - 307; steps > 0; --steps) {
        if (result > Number(MacBigDivBy10)) return failed(VX_E_OVERFLOW);
        result = result * power(1);
      }
    }
  }
  const auto magnitude = static_cast<double>(result);
  if (magnitude == 0) return failed(VX_E_UNDERFLOW);
  *value = negative ? -magnitude : magnitude;
  return 0;
}

/// The conversion that the readers use.
VXStatus vxnlsCalcDouble(uint64_t high, uint64_t low, int32_t digits, int32_t exponent, int32_t negative,
                         double* value);

}  // namespace vxnls

#endif
