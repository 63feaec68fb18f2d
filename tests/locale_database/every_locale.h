// The records of all locales, filled once for all tests of a program.
#ifndef VXNLS_TESTS_LOCALE_DATABASE_EVERY_LOCALE_H
#define VXNLS_TESTS_LOCALE_DATABASE_EVERY_LOCALE_H

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

inline const std::vector<FilledLocale>& every_locale() {
  static const std::vector<FilledLocale> locales = [] {
    std::vector<FilledLocale> all;
    for (const std::string& name : vxnlsldb::available_locales()) all.push_back(filled(name));
    return all;
  }();
  return locales;
}

}  // namespace vxtest

#endif
