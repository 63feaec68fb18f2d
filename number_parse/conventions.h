// What the readers of numbers take from a locale.
#ifndef VXNLS_NUMBER_PARSE_CONVENTIONS_H
#define VXNLS_NUMBER_PARSE_CONVENTIONS_H

#include "vxnls/number_parse.h"
#include "vxnls/table.h"

namespace vxnls {

inline constexpr VXChar no_break_space = 0xA0;

/// The decimal point and the group separator, as code points.
struct Conventions {
  VXChar point = '.';
  VXChar separator = ',';
  bool space_separates = false;  // an ordinary space is a group separator too
};

inline Conventions conventions_of(const VXLocale* locale, uint32_t flags) {
  Conventions conventions;
  if (locale != nullptr && locale->localeData != nullptr) {
    conventions.point = locale->localeData->decimalPoint;
    conventions.separator = locale->localeData->groupSeparator;
  }
  conventions.space_separates = (flags & NLS_READ_SPACE_SEPARATOR) != 0 && conventions.separator == no_break_space;
  return conventions;
}

}  // namespace vxnls

#endif
