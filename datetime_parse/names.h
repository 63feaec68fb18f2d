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

/// Steps over `name`, whose first character may stand here. On a difference `in` stays. Kept apart, so that the search
/// for a name is a short loop.
template <class Text>
[[gnu::noinline]] bool skip_name(Input<Text>& in, TextView name) {
  Input<Text> rest = in;
  for (int64_t i = 0; i < name.length; ++i) {
    if (rest.empty()) return false;
    const Character here = character_at(rest);
    if (here.units == 0 || !same_letter(here.code_point, name.text[i])) return false;
    rest.skip(here.units);
  }
  in = rest;
  return true;
}

/// The first of `count` names, in the order of the list, that stands in the text whatever its case; not the longest.
/// An empty name stands everywhere, kept on purpose.
template <class Text>
VXReason extractstring(Input<Text>& in, const NLSName* names, int32_t count, int32_t* index) {
  const VXChar first = in.empty() ? 0 : character_at(in).code_point;
  for (int32_t i = 0; i < count; ++i) {
    const NLSName& name = names[i];
    if (name.length > 0 && (!may_be_same_letter(name.text[0], first) || !skip_name(in, view(name)))) continue;
    *index = i;
    return VX_REASON_NONE;
  }
  return VX_REASON_NO_NAME;
}

}  // namespace vxnls

#endif
