// An English locale for tests of single rooms, and, where a test wants them, a few zones of fixed rules.
#ifndef VXNLS_TESTS_SUPPORT_PLAIN_LOCALE_H
#define VXNLS_TESTS_SUPPORT_PLAIN_LOCALE_H

#include <string>
#include <string_view>

#include "examples/own_host/own_host.h"

namespace vxtest {

std::u32string utf32(std::string_view utf8);  // of well-formed text
std::string utf8(std::u32string_view text);
inline const VXChar* units(std::u32string_view text) { return reinterpret_cast<const VXChar*>(text.data()); }
void set_name(NLSName& name, std::u32string_view text);

/// Zones: "Zone/East" lies 2 hours east of UTC, "Zone/West" 5 hours and 30 minutes west; "Zone/Summer" is 1 hour east,
/// from the value 0 on 2 hours: for a local value the step lies at local 0, for UTC at UTC 0; "America/New_York" is 5
/// hours west, "Asia/Kolkata" 5:30 east; and "UTC".
extern const VXZoneServiceOps zone_rules;
/// Takes trailing blanks off an identifier and gives the zone's name.
VXStatus normalise_zone(HostContext*, const VXChar* id, int64_t length, VXZoneIdOptions, VXChar* out, int64_t* written,
                        uint64_t*);

/// English names and patterns, "." and ",", groups of 3, "$": a copy of a locale that the example host made from its
/// text file. `data` is open to changes. Without a zone service.
struct PlainLocale {
  PlainLocale();
  PlainLocale(const PlainLocale&) = delete;
  PlainLocale& operator=(const PlainLocale&) = delete;

  VXLocale* get() { return &locale; }
  /// Gives the locale a zone service whose one zone "Test/Zone" lies `seconds_east` of UTC always.
  void use_fixed_zone(int32_t seconds_east);
  /// Gives it the service of the zones above, and one of them, or none, as its own.
  void use_zone(std::u32string_view name);

  VXLocaleData data;
  VXLocale locale;
  HostContext context;
  VXZoneService zones{&zone_rules};
  own::Pool pool;
  own::Track track;
  own::Lock lock;
};

}  // namespace vxtest

#endif
