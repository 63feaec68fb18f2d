// The exponent form of a fixed field, worked out in double arithmetic as it always was.
#ifndef VXNLS_NUMBER_FORMAT_EXPONENT_FORM_H
#define VXNLS_NUMBER_FORMAT_EXPONENT_FORM_H

#include <cstdint>

namespace vxnls {

inline constexpr int32_t widest_field = 32;

/// Mantissa digits and exponent text of a number. The point stands after `digits_before_point` digits (0 to 2) and only
/// when digits follow it.
struct ExponentForm {
  uint8_t digits[widest_field];
  int32_t digit_count;
  int32_t digits_before_point;
  uint8_t exponent[8];  // "E", sign, digits
  int32_t exponent_length;
};

/// Fits |value| into `room` units, of which the point takes `point_units`.
///   digits   significant digits asked for; 0: as many as fit ("E5", without "+" and leading zeros)
/// Gives false when there is no room for a digit. `value` is finite.
bool exponent_form(double value, int32_t room, int32_t digits, int32_t point_units, ExponentForm* form);

}  // namespace vxnls

#endif
