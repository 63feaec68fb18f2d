// The short road of the readers of numbers: digits eight at a time, from the right, so that their count decides no
// branch but how many blocks there are. It takes texts that are nothing but a sign, digits, and separators every three
// digits.
#ifndef VXNLS_NUMBER_PARSE_DIGIT_BLOCKS_H
#define VXNLS_NUMBER_PARSE_DIGIT_BLOCKS_H

#include "unicode/eight_units.h"

namespace vxnls {

/// The last `count` units, 1 to 8, of a run, in the high bytes, against what is wanted there: a byte is 0 where they
/// are the same, and below them.
template <class Unit>
Eight last_units(const Unit* at, int64_t count, Eight wanted) {
  const int64_t free = 8 * (8 - count);
  if (count == 8) return take_eight(at) ^ wanted;
  Eight units;
  if (count >= 4) units = take_four(at) | take_four(at + count - 4) << 8 * (count - 4);
  else units = take_one(at) | take_one(at + count / 2) << 8 * (count / 2) | take_one(at + count - 1) << 8 * (count - 1);
  return (units << free) ^ (wanted >> free << free);
}

/// Whether all bytes are 0 to 9.
constexpr bool are_digits(Eight bytes) { return (((bytes + eight_of(0x76)) | bytes) & eight_of(0x80)) == 0; }

/// The number that eight digits make, the first one lowest, or two groups of three digits, each after a 0.
template <uint64_t second_weight>
constexpr uint64_t number_of(Eight digits) {
  digits = digits * (10 * 0x100 + 1) >> 8 & UINT64_C(0x00FF00FF00FF00FF);
  digits = digits * (100 * 0x10000 + 1) >> 16 & UINT64_C(0x0000FFFF0000FFFF);
  return digits * (second_weight * UINT64_C(0x100000000) + 1) >> 32;
}

/// Whether a separator cannot be taken for a part of a number itself.
constexpr bool is_no_digit_or_sign(VXChar separator) {
  return separator - '0' > 9 && separator != '-' && separator != '+' && separator != 0;
}

struct BlockNumber {
  uint64_t value;
  bool is_number;
};

/// Reads `count` units as digits, or as digits in groups of three. `most` is how many digits may be read, 19 or fewer.
/// How many there are decides no branch from eight units on.
template <bool grouped, int64_t most, class Unit>
BlockNumber read_blocks(const Unit* at, int64_t count, VXChar separator) {
  constexpr int64_t most_units = grouped ? most + (most - 1) / 3 : most;
  constexpr uint64_t weight = grouped ? 1000 : 10000;
  constexpr Eight separator_places = grouped ? 0x000000FF000000FF : 0;
  const Eight wanted =
      grouped ? UINT64_C(0x3030300030303000) | separator * UINT64_C(0x0000000100000001) : eight_of('0');
  if (count < 1 || count > most_units || (grouped && count % 4 == 0)) return {0, false};
  if (count < 8) {
    const Eight difference = last_units(at, count, wanted);
    return {number_of<weight>(difference), are_digits(difference) && (difference & separator_places) == 0};
  }
  uint64_t number = 0, power = 1;
  Eight faults = 0;
  for (int64_t end = count, i = 0; i < most_units; i += 8, end -= 8, power *= weight * weight) {
    // What reaches before the first unit takes that one and those after it, and shifts out what is too much.
    const int64_t missing = end >= 8 ? 0 : end <= 0 ? 8 : 8 - end;
    const auto shifted = [missing](Eight bytes) { return bytes << 4 * missing << 4 * missing; };
    const Eight digits = (shifted(take_eight(at + (end >= 8 ? end - 8 : 0))) ^ wanted) & shifted(~Eight{0});
    faults |= (((digits + eight_of(0x76)) | digits) & eight_of(0x80)) | (digits & separator_places);
    number += number_of<weight>(digits) * power;
  }
  return {number, faults == 0};
}

}  // namespace vxnls

#endif
