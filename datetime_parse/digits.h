// Numbers of a fixed or greatest width, read strictly or leniently.
#ifndef VXNLS_DATETIME_PARSE_DIGITS_H
#define VXNLS_DATETIME_PARSE_DIGITS_H

#include "datetime_parse/input.h"
#include "vxnls/explain.h"

namespace vxnls {

/// How wide a number is and what it may be. Widths stay below 10, so that no value overflows.
struct Digits {
  int32_t width, minimum, maximum;

  bool admits(int32_t value) const { return value >= minimum && value <= maximum; }
};

/// Reads exactly `width` positions: blanks, each of which counts, then digits, fewer only where the text ends. A text
/// that ends before the first digit reads as 0, unless blanks filled the width. Stores `out` on success only.
template <class Text>
VXReason extractdigits(Input<Text>& in, Digits number, int32_t* out) {
  int32_t positions = number.width;
  while (positions > 0 && in.stands_at(' ')) {
    in.skip(1);
    --positions;
  }
  if (positions <= 0) return in.empty() ? VX_REASON_TEXT_ENDED : VX_REASON_BLANK_FIELD;
  if (in.empty()) {
    if (!number.admits(0)) return VX_REASON_TEXT_ENDED;
    *out = 0;
    return VX_REASON_NONE;
  }
  int32_t value = 0;
  const int64_t before = in.left;
  for (; positions > 0 && !in.empty(); --positions) {
    if (!stands_at_digit(in)) return in.left == before ? VX_REASON_NO_DIGIT : VX_REASON_WIDTH;
    value = value * 10 + static_cast<int32_t>(*in.at - '0');
    in.skip(1);
  }
  if (!number.admits(value)) return VX_REASON_RANGE;
  *out = value;
  return VX_REASON_NONE;
}

/// Reads one to `width` digits after any number of blanks; another digit right after them is a refusal.
template <class Text>
VXReason lenient_extractdigits(Input<Text>& in, Digits number, int32_t* out) {
  skip_blanks(in);
  int32_t value = 0;
  const int64_t before = in.left;
  for (int32_t i = 0; i < number.width && stands_at_digit(in); ++i) {
    value = value * 10 + static_cast<int32_t>(*in.at - '0');
    in.skip(1);
  }
  if (in.left == before) return in.empty() ? VX_REASON_TEXT_ENDED : VX_REASON_NO_DIGIT;
  if (stands_at_digit(in)) return VX_REASON_TOO_MANY_DIGITS;
  if (!number.admits(value)) return VX_REASON_RANGE;
  *out = value;
  return VX_REASON_NONE;
}

/// The value of two or four digits; negative when one of them is none. They are there.
inline int32_t two_digits_at(const uint8_t* at) {
  const uint32_t digits = (at[0] | uint32_t{at[1]} << 8) - 0x3030;
  return (((digits + 0x0606) | digits) & 0xFFFFF0F0) != 0 ? -1
                                                          : static_cast<int32_t>(10 * (digits & 0xF) + (digits >> 8));
}

inline int32_t two_digits_at(const VXChar* at) {
  const uint32_t tens = at[0] - uint32_t{'0'}, ones = at[1] - uint32_t{'0'};
  return tens > 9 || ones > 9 ? -1 : static_cast<int32_t>(10 * tens + ones);
}

template <class Unit>
int32_t four_digits_at(const Unit* at) {
  // A character below "0" borrows from its neighbour, but shows itself; the lowest byte is the first digit.
  uint32_t digits = static_cast<uint32_t>(take_four(at)) - 0x30303030;
  if ((((digits + 0x06060606) | digits) & 0xF0F0F0F0) != 0) return -1;
  digits = (10 * digits + (digits >> 8)) & 0x00FF00FF;
  return static_cast<int32_t>((100 * digits + (digits >> 16)) & 0xFFFF);
}

}  // namespace vxnls

#endif
