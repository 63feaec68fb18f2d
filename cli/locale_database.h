// The host's locale database, past the locales that are made of it.
#ifndef VXNLS_CLI_LOCALE_DATABASE_H
#define VXNLS_CLI_LOCALE_DATABASE_H

#include <string>
#include <vector>

#include "vxnls/vxhost.h"

namespace vxcli {

class LocaleDatabase {
 public:
  struct Fallback {
    std::string entry;   // the field of VXLocaleData
    std::string used;    // what stands there
    std::string reason;  // why not what CLDR has
  };
  struct Violation {
    std::string rule;  // "R6"
    std::string entry;
    std::string text;
  };

  explicit LocaleDatabase(VXHost* host) : host_(host) {}

  /// Every locale, in byte order.
  std::vector<std::string> names() const;
  /// Throws Failure (ExitCode::host) when the database has nothing for the name.
  void fill(const std::string& name, VXLocaleData& record) const;
  /// Likewise.
  std::vector<Fallback> fallbacks(const std::string& name) const;
  std::vector<Violation> violations(const VXLocaleData& record) const;

 private:
  [[noreturn]] void fail_unread(const std::string& name, VXStatus status) const;

  VXHost* host_;
};

}  // namespace vxcli

#endif
