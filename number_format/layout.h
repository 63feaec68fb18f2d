// How the parts of a number are laid out in a field: blanks, sign or prefix, zeros, grouped digits, point, fraction.
// Integers and doubles share this step; what they decide differently (group sizes, which sign) is given in the parts.
#ifndef VXNLS_NUMBER_FORMAT_LAYOUT_H
#define VXNLS_NUMBER_FORMAT_LAYOUT_H

#include <cstring>

#include "unicode/counted_name.h"
#include "unicode/text_flavour.h"
#include "vxnls/table.h"

namespace vxnls {

// Option bits that the number formatters share.
inline constexpr uint32_t flag_plus = 0x10000;
inline constexpr uint32_t flag_group = 0x20000;
inline constexpr uint32_t flag_left = 0x40000;
inline constexpr uint32_t flag_zero_pad = 0x80000;
inline constexpr uint32_t flag_blank = 0x200000;

/// The sizes of the groups of a number's digits, from the right; the last one repeats. A size below 1 ends grouping,
/// and so does an empty list.
struct Grouping {
  int32_t sizes[longest_name];
  int32_t count = 0;

  void add(int32_t size) { sizes[count++] = size; }
};

/// Where separators stand among `digits` digits: each entry counts the digits to the right of a separator, ascending.
/// A separator is only there when another digit follows it.
struct SeparatorPlaces {
  static constexpr int32_t most = 310;
  int32_t digits_to_the_right[most];
  int32_t count = 0;

  SeparatorPlaces(const Grouping& grouping, int64_t digits) {
    int64_t place = 0;
    for (int32_t i = 0; i < grouping.count;) {
      const int32_t size = grouping.sizes[i];
      if (size < 1) break;
      place += size;
      if (place >= digits) break;
      digits_to_the_right[count++] = static_cast<int32_t>(place);
      if (i + 1 < grouping.count) ++i;
    }
  }
};

/// A run of ASCII.
struct Run {
  const uint8_t* text = nullptr;
  int64_t length = 0;
};

struct NumberParts {
  Run prefix;         // a sign, a blank, "0x", "0"
  int64_t zeros = 0;  // between the prefix and the digits, never grouped
  Run whole;          // the integer digits
  Run fraction;       // what follows the decimal point; empty: no point
  Run tail;           // an exponent
};

/// The separators of a locale; a null locale has "." and ",".
struct Separators {
  VXChar decimal_point = '.';
  VXChar group = ',';

  explicit Separators(const VXLocale* locale) {
    if (locale == nullptr || locale->localeData == nullptr) return;
    decimal_point = locale->localeData->decimalPoint;
    group = locale->localeData->groupSeparator;
  }
};

template <class Unit>
Unit* put(Unit* out, Run run) {
  if constexpr (sizeof(Unit) == 1) {
    if (run.length > 0) std::memcpy(out, run.text, static_cast<size_t>(run.length));
  } else {
    for (int64_t i = 0; i < run.length; ++i) out[i] = run.text[i];
  }
  return out + run.length;
}

template <class Unit>
Unit* fill(Unit* out, int64_t count, char with) {
  for (int64_t i = 0; i < count; ++i) out[i] = static_cast<Unit>(static_cast<uint8_t>(with));
  return out + (count > 0 ? count : 0);
}

/// The units that the parts take, without padding.
template <class Flavour>
int64_t units_of(const NumberParts& parts, const Separators& separators, const SeparatorPlaces& places) {
  const int64_t point = parts.fraction.length > 0 ? Flavour::units(separators.decimal_point) : 0;
  return parts.prefix.length + parts.zeros + parts.whole.length + places.count * Flavour::units(separators.group) +
         point + parts.fraction.length + parts.tail.length;
}

/// Writes the parts from `out` on, where they have room; gives the end.
template <class Flavour>
typename Flavour::Unit* put_parts(typename Flavour::Unit* out, const NumberParts& parts, const Separators& separators,
                                  const SeparatorPlaces& places) {
  out = put(out, parts.prefix);
  out = fill(out, parts.zeros, '0');
  const uint8_t* digits = parts.whole.text;
  int64_t left = parts.whole.length;
  for (int32_t i = places.count; i > 0; --i) {
    const int64_t stop = places.digits_to_the_right[i - 1];
    out = put(out, {digits, left - stop});
    digits += left - stop;
    left = stop;
    out += Flavour::append(separators.group, out);
  }
  out = put(out, {digits, left});
  if (parts.fraction.length > 0) {
    out += Flavour::append(separators.decimal_point, out);
    out = put(out, parts.fraction);
  }
  return put(out, parts.tail);
}

/// Writes the parts in a field of `width` units: blanks before them, or after them when `left`. A width below what the
/// parts take grows to it. Gives the units written, or -1, with nothing written, when `room` is too small.
template <class Flavour>
int64_t put_field(typename Flavour::Unit* out, int64_t room, int64_t width, bool left, const NumberParts& parts,
                  const Separators& separators, const SeparatorPlaces& places) {
  const int64_t units = units_of<Flavour>(parts, separators, places);
  const int64_t field = width > units ? width : units;
  if (field > room) return -1;
  if (!left) out = fill(out, field - units, ' ');
  out = put_parts<Flavour>(out, parts, separators, places);
  if (left) fill(out, field - units, ' ');
  return field;
}

}  // namespace vxnls

#endif
