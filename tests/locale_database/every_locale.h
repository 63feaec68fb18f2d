// The records of all locales, filled once for all tests of a program.
#ifndef VXNLS_TESTS_LOCALE_DATABASE_EVERY_LOCALE_H
#define VXNLS_TESTS_LOCALE_DATABASE_EVERY_LOCALE_H

#include <unicode/uloc.h>

#include <memory>

#include "host/locale_database/mapping.h"

namespace vxtest {

struct FilledLocale {
  explicit FilledLocale(const std::string& of) : name(of), data(std::make_unique<VXLocaleData>()) {
    status = vxnlsldb::fill_record(name.c_str(), data.get(), &fallbacks);
  }
  std::string name;
  std::unique_ptr<VXLocaleData> data;
  std::vector<vxnlsldb::Fallback> fallbacks;
  VXStatus status;
};

/// All locales that ICU has data for, aliases such as zh_TW included, root not.
inline const std::vector<FilledLocale>& every_locale() {
  static const std::vector<FilledLocale> locales = [] {
    std::vector<FilledLocale> all;
    UErrorCode status = U_ZERO_ERROR;
    UEnumeration* const names = uloc_openAvailableByType(ULOC_AVAILABLE_WITH_LEGACY_ALIASES, &status);
    while (const char* name = uenum_next(names, nullptr, &status)) all.emplace_back(name);
    uenum_close(names);
    return all;
  }();
  return locales;
}

}  // namespace vxtest

#endif
