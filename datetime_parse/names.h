// Names of the locale: which lists there are, and the first entry that stands in the text.
#ifndef VXNLS_DATETIME_PARSE_NAMES_H
#define VXNLS_DATETIME_PARSE_NAMES_H

#include "datetime_parse/input.h"
#include "unicode/case_mapping.h"
#include "unicode/counted_name.h"
#include "vxnls/explain.h"
#include "vxnls/locale.h"

namespace vxnls {

/// False for most pairs that differ, without a look at the tables: two ASCII characters that are one letter in two
/// cases differ in one bit.
constexpr bool may_be_same_letter(VXChar a, VXChar b) { return ((a ^ b) & ~VXChar{0x20}) == 0 || (a | b) >= 0x80; }

/// Equal, or equal in lower case by the built-in tables: vxzseqn on one character.
constexpr bool same_letter(VXChar a, VXChar b) {
  return a == b || (may_be_same_letter(a, b) && lower_by_tables(a) == lower_by_tables(b));
}

/// A run of counted names in the locale's record.
struct NameList {
  uint16_t offset;  // bytes into VXLocaleData
  uint8_t count;

  const NLSName* in(const VXLocaleData& data) const {
    return reinterpret_cast<const NLSName*>(reinterpret_cast<const char*>(&data) + offset);
  }
};

inline constexpr NameList no_names{0, 0};
inline constexpr NameList day_names{offsetof(VXLocaleData, dayNames), 7};
inline constexpr NameList alternate_day_names{offsetof(VXLocaleData, altDayNames), 7};
inline constexpr NameList month_names{offsetof(VXLocaleData, monthNames), 12};
inline constexpr NameList alternate_month_names{offsetof(VXLocaleData, altMonthNames), 12};
inline constexpr NameList markers{offsetof(VXLocaleData, amMarker), 2};
inline constexpr NameList quarter_names{offsetof(VXLocaleData, quarterNames), 4};
static_assert(offsetof(VXLocaleData, pmMarker) == offsetof(VXLocaleData, amMarker) + sizeof(NLSName));

/// The units of the text that `name` takes, in any case; negative when it does not stand there.
template <class Text>
[[gnu::noinline]] int64_t units_of_name(Input<Text> in, TextView name) {
  const auto* const start = in.at;
  for (int64_t i = 0; i < name.length; ++i) {
    if (in.empty()) return -1;
    const Character here = character_at(in);
    if (here.units == 0 || !same_letter(here.code_point, name.text[i])) return -1;
    in.skip(here.units);
  }
  return in.at - start;
}

/// The first eight characters of a text, NUL behind its end.
template <class Text>
Eight up_to_eight(const Input<Text>& in) {
  if (in.left >= 8) [[likely]]
    return take_eight(in.at);
  Eight bytes = 0;
  for (int i = 0; i < in.left; ++i) bytes |= take_one(in.at + i) << 8 * i;
  return bytes;
}

/// Whether a name stands at the front of eight characters to the letter; false: find out.
inline bool stands_plainly(TextView name, Eight text) {
  if (name.length > 8) return false;
  const Eight bytes = take_eight(name.text), ones = eight_of(1), unused = ~Eight{0} << 1 << (8 * name.length - 1);
  // What is not ASCII, or NUL, which may be no character of the text, is not plain.
  const Eight others = (bytes | (bytes - ones)) & eight_of(0x80);
  return ((others | (bytes ^ text)) & ~unused) == 0;
}

/// A name that stands in the text.
struct FoundName {
  int32_t index;  // negative: none does
  int64_t units;  // that it takes
};

/// The first of `count` names, in the order of the list, that stands in the text whatever its case; not the longest.
/// An empty name stands everywhere, kept on purpose.
template <class Text>
FoundName find_name(Input<Text> in, const NLSName* names, int32_t count) {
  const VXChar first = in.empty() ? 0 : character_at(in).code_point;
  const Eight text = up_to_eight(in);
  for (int32_t i = 0; i < count; ++i) {
    const NLSName& name = names[i];
    if (name.length <= 0) return {i, 0};
    if (!may_be_same_letter(name.text[0], first)) continue;
    const int64_t units = stands_plainly(view(name), text) ? name.length : units_of_name(in, view(name));
    if (units >= 0) return {i, units};
  }
  return {-1, 0};
}

}  // namespace vxnls

#endif
