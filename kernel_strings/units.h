// VXChar texts at the door of an entry point, and the block operations over their units.
#ifndef VXNLS_KERNEL_STRINGS_UNITS_H
#define VXNLS_KERNEL_STRINGS_UNITS_H

#include <string.h>
#include <wchar.h>

#include <algorithm>
#include <type_traits>

#include "unicode/counted_name.h"

namespace vxnls {

inline constexpr VXChar blank = 0x20;

/// A caller's text: a null one, or one with a negative length, is empty.
constexpr TextView text_of(const VXChar* text, int64_t length) {
  return {text, text != nullptr && length > 0 ? length : 0};
}

/// Copies `count` units; the two places may overlap.
inline void move_units(VXChar* out, const VXChar* in, int64_t count) {
  if (count > 0) memmove(out, in, static_cast<size_t>(count) * sizeof(VXChar));
}

inline void fill_units(VXChar* out, VXChar unit, int64_t count) {
  if (count > 0) std::fill_n(out, count, unit);
}

/// -1, 0 or 1 at the first difference of `count` units, which are taken as signed.
inline int32_t compare_units(const VXChar* a, const VXChar* b, int64_t count) {
  if constexpr (sizeof(wchar_t) == sizeof(VXChar) && std::is_signed_v<wchar_t>) {
    if (count <= 0) return 0;
    const int order =
        wmemcmp(reinterpret_cast<const wchar_t*>(a), reinterpret_cast<const wchar_t*>(b), static_cast<size_t>(count));
    return (order > 0) - (order < 0);
  } else {
    for (int64_t i = 0; i < count; ++i) {
      if (a[i] != b[i]) return static_cast<int32_t>(a[i]) < static_cast<int32_t>(b[i]) ? -1 : 1;
    }
    return 0;
  }
}

/// The index of the first unit equal to `unit`, or -1.
inline int64_t find_unit(TextView text, VXChar unit) {
  for (int64_t i = 0; i < text.length; ++i) {
    if (text.text[i] == unit) return i;
  }
  return -1;
}

/// The length without trailing blanks.
inline int64_t length_without_blanks(TextView text) {
  int64_t length = text.length;
  while (length > 0 && text.text[length - 1] == blank) --length;
  return length;
}

}  // namespace vxnls

#endif
