// The short road of the number formatters. A number's text is laid out in a scratch whose places are fixed: the integer
// digits end, with all their leading zeros, where the decimal point stands, and the text begins wherever its first
// digit is. Everything is written in whole blocks, so that no branch depends on how many digits there are.
#ifndef VXNLS_NUMBER_FORMAT_DRAFT_H
#define VXNLS_NUMBER_FORMAT_DRAFT_H

#include "number_format/layout.h"
#include "unicode/eight_units.h"

namespace vxnls {

inline constexpr uint64_t powers_of_ten[20] = {1u,
                                               10u,
                                               100u,
                                               1'000u,
                                               10'000u,
                                               100'000u,
                                               1'000'000u,
                                               10'000'000u,
                                               100'000'000u,
                                               1'000'000'000u,
                                               10'000'000'000u,
                                               100'000'000'000u,
                                               1'000'000'000'000u,
                                               10'000'000'000'000u,
                                               100'000'000'000'000u,
                                               1'000'000'000'000'000u,
                                               10'000'000'000'000'000u,
                                               100'000'000'000'000'000u,
                                               1'000'000'000'000'000'000u,
                                               10'000'000'000'000'000'000u};

/// How many decimal digits a number has; 0 has none.
constexpr int32_t count_digits(uint64_t value) {
  const int32_t estimate = static_cast<int32_t>(std::bit_width(value | 1)) * 1233 >> 12;
  return estimate + (value >= powers_of_ten[estimate]);
}

/// The digits of a number below 10^8, one a byte, the first lowest; not yet ASCII.
constexpr Eight eight_digits(uint64_t value) {
  const uint64_t fours = value / 10000 | value % 10000 << 32;
  const uint64_t hundreds = (fours * 10486 >> 20) & UINT64_C(0x0000007F0000007F);  // exact below 10,000
  const uint64_t pairs = hundreds | (fours - 100 * hundreds) << 16;
  const uint64_t tens = (pairs * 103 >> 10) & UINT64_C(0x000F000F000F000F);  // exact below 100
  return tens | (pairs - 10 * tens) << 8;
}

/// The digits of 0 to 999 in ASCII, after a byte that is free.
struct ThreeDigits {
  uint32_t of[1000];
};

inline constexpr ThreeDigits three_digits = [] {
  ThreeDigits table{};
  for (uint32_t i = 0; i < 1000; ++i) {
    table.of[i] = 0x30303000u | i / 100 << 8 | i / 10 % 10 << 16 | i % 10 << 24;
  }
  return table;
}();

/// Whether the locale's digits go in groups of three throughout, with a separator of one unit.
template <class Flavour>
bool has_plain_groups(const VXLocale* locale) {
  if (locale == nullptr || locale->localeData == nullptr) return false;
  const NLSName& pattern = locale->localeData->groupingPattern;
  return pattern.length == 1 && pattern.text[0] == '3' && Flavour::units(locale->localeData->groupSeparator) == 1;
}

/// The scratch. Its functions are given and give places in it.
template <class Flavour>
struct Draft {
  using Unit = typename Flavour::Unit;
  static constexpr int64_t widest = 32;  // of a field

  Unit* point() { return area + before_point; }

  /// Writes groups of three digits of `value` so that they end before `end`, `step` units apart: as many as `digits`
  /// digits need. The unit before each group is free for a separator. The value has no more digits.
  template <int32_t step>
  static void put_groups(Unit* end, uint64_t value, int64_t digits, VXChar separator) {
    for (; digits > 0; digits -= 3, value /= 1000) {
      put_four(end - 4, three_digits.of[digits > 3 ? value % 1000 : value]);
      end -= step;
      if constexpr (step > 3) *end = static_cast<Unit>(separator);
    }
  }

  /// Writes the digits of an integer that has at most `most` before the point.
  template <int32_t most>
  void put_whole(uint64_t value) {
    put_groups<3>(point(), value, most, 0);
  }

  /// The same with a separator of one unit between groups.
  template <int32_t most>
  void put_grouped(uint64_t value, VXChar separator) {
    put_groups<4>(point(), value, most, separator);
  }

  /// Writes a point of one unit and `count` digits of `value` after it; gives the end. Comes before the integer digits.
  Unit* put_fraction(uint64_t value, int64_t count, VXChar decimal_point) {
    Unit* const end = point() + 1 + count;
    put_groups<3>(end, value, count, 0);
    *point() = static_cast<Unit>(decimal_point);
    return end;
  }

  /// `sign` is 0 where there is none. Gives where the text begins.
  static Unit* put_sign(Unit* first, char sign) {
    first[-1] = static_cast<uint8_t>(sign);
    return first - (sign != 0);
  }

  /// Puts blanks before a text where the field is wider, and gives where the field begins.
  static const Unit* pad(Unit* first, const Unit* end, int64_t field) {
    if (field > end - first) {
      for (int64_t at = 8; at <= widest; at += 8) put_eight(first - at, eight_of(' '));
    }
    return end - field;
  }

  static constexpr int64_t integer_room = 32;  // seven groups with their separators, a sign
  static constexpr int64_t before_point = widest + integer_room;

  Unit area[before_point + 2 * widest];  // blocks reach beyond the end
};

}  // namespace vxnls

#endif
