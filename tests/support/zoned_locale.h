// A plain locale whose host knows a few zones by name, for tests of texts that name one.
#ifndef VXNLS_TESTS_SUPPORT_ZONED_LOCALE_H
#define VXNLS_TESTS_SUPPORT_ZONED_LOCALE_H

#include "tests/support/plain_locale.h"

namespace vxtest {

struct ZonedLocale : PlainLocale {
  ZonedLocale() { use_zone(U""); }
  /// Makes a zone the locale's own.
  void use(std::u32string_view name) { use_zone(name); }
};

}  // namespace vxtest

#endif
