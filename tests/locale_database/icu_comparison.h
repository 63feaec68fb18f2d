// What ICU's own formatters write beside what the library writes by the record, and why the two differ.
#ifndef VXNLS_TESTS_LOCALE_DATABASE_ICU_COMPARISON_H
#define VXNLS_TESTS_LOCALE_DATABASE_ICU_COMPARISON_H

#include <string>
#include <vector>

#include "tests/locale_database/every_locale.h"

namespace vxtest {

/// One entry of one locale, at the first moment where the two texts differ.
struct Difference {
  std::string entry;  // "datePattern1"
  std::string icu, record;
  std::vector<std::string> reasons;
  std::string unexplained;  // not empty: what ICU writes once every reason is allowed for, still not the record's text
};

/// Compares the date, time and datetime patterns of a locale with ICU's formatters of the same styles, at moments that
/// show every month, both halves of the day and numbers of one and two digits.
std::vector<Difference> differences_from_icu(const FilledLocale& locale);

}  // namespace vxtest

#endif
