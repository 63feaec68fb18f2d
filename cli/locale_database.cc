#include "cli/locale_database.h"

#include "cli/session.h"
#include "cli/text.h"

namespace vxcli {

namespace {

VXLocaleDatabase* database(VXHost* host) { return vxhostContext(host)->localeDatabase; }

}  // namespace

std::vector<std::string> LocaleDatabase::names() const {
  std::vector<std::string> names;
  vxhostForEachLocale(
      host_,
      [](void* user, const char* name) {
        static_cast<std::vector<std::string>*>(user)->emplace_back(name);
        return 0;
      },
      &names);
  return names;
}

void LocaleDatabase::fail_unread(const std::string& name, VXStatus status) const {
  fail_with_status(host_, "the data of " + name + " cannot be read", status);
}

void LocaleDatabase::fill(const std::string& name, VXLocaleData& record) const {
  const std::u32string wide = utf32(name).value_or(U"");
  const std::basic_string<VXChar> units(wide.begin(), wide.end());
  VXLocaleDatabase* const self = database(host_);
  const VXStatus status = self->ops->fill(self, &record, units.data(), static_cast<int64_t>(units.size()));
  if (status != 0 && status != VX_W_FILL) fail_unread(name, status);
}

std::vector<LocaleDatabase::Fallback> LocaleDatabase::fallbacks(const std::string& name) const {
  std::vector<Fallback> all;
  const VXStatus status = vxhostForEachFallback(
      host_, name.c_str(),
      [](void* user, const char* entry, const char* used, const char* reason) {
        static_cast<std::vector<Fallback>*>(user)->push_back({entry, used, reason});
        return 0;
      },
      &all);
  if (status != 0 && status != VX_W_SUBSTITUTE) fail_unread(name, status);
  return all;
}

std::vector<LocaleDatabase::Violation> LocaleDatabase::violations(const VXLocaleData& record) const {
  std::vector<Violation> all;
  const VXStatus status = vxhostCheckRecord(
      host_, &record,
      [](void* user, const char* rule, const char* entry, const char* text) {
        static_cast<std::vector<Violation>*>(user)->push_back({rule, entry, text});
        return 0;
      },
      &all);
  if (status != 0) fail_with_status(host_, "a record cannot be checked", status);
  return all;
}

}  // namespace vxcli
