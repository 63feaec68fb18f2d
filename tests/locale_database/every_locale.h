// The records of all locales, filled once for all tests of a program.
#ifndef VXNLS_TESTS_LOCALE_DATABASE_EVERY_LOCALE_H
#define VXNLS_TESTS_LOCALE_DATABASE_EVERY_LOCALE_H

#include <unicode/uenum.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "host/locale_database/cldr.h"
#include "host/locale_database/mapping.h"

namespace vxtest {

struct FilledLocale {
  std::string name;
  VXStatus status;
  std::unique_ptr<VXLocaleData> data;
  std::vector<vxnlsldb::Fallback> fallbacks;
};

inline FilledLocale filled(const std::string& name) {
  FilledLocale locale{name, 0, std::make_unique<VXLocaleData>(), {}};
  locale.status = vxnlsldb::fill_record(name.c_str(), locale.data.get(), &locale.fallbacks);
  return locale;
}

/// All locales that ICU has data for, aliases such as zh_TW included, root not; in byte order of their names.
inline const std::vector<FilledLocale>& every_locale() {
  static const std::vector<FilledLocale> locales = [] {
    std::vector<FilledLocale> all;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UEnumeration, decltype(&uenum_close)> names(
        uloc_openAvailableByType(ULOC_AVAILABLE_WITH_LEGACY_ALIASES, &status), &uenum_close);
    while (const char* name = uenum_next(names.get(), nullptr, &status)) all.push_back(filled(name));
    std::ranges::sort(all, {}, &FilledLocale::name);
    return all;
  }();
  return locales;
}

}  // namespace vxtest

#endif
