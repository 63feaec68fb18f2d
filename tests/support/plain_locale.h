// A locale made by hand, for tests of single rooms: an English record and, where a test wants one, a zone of fixed
// rules.
#ifndef VXNLS_TESTS_SUPPORT_PLAIN_LOCALE_H
#define VXNLS_TESTS_SUPPORT_PLAIN_LOCALE_H

#include <memory>
#include <string>
#include <string_view>

#include "vxnls/vxnls.h"

namespace vxtest {

std::u32string utf32(std::string_view utf8);  // of well-formed text
std::string utf8(std::u32string_view text);
void set_name(NLSName& name, std::u32string_view text);

/// English names and patterns, "." and ",", groups of 3, "$". `data` is open to changes. Without a zone service.
/// plain_locale.cc takes it from the file of the example host; tests/examples/own_host_locale.cc has that host make it,
/// so that the same tests run through the host too.
struct PlainLocale {
  PlainLocale();
  PlainLocale(const PlainLocale&) = delete;
  PlainLocale& operator=(const PlainLocale&) = delete;
  ~PlainLocale();

  VXLocale* get() { return &locale; }
  /// Gives the locale a zone service whose one zone "Test/Zone" lies `seconds_east` of UTC always.
  void use_fixed_zone(int32_t seconds_east);
  /// Gives it a service of a few zones (zoned_locale.h), and one of them, or none, as its own.
  void use_zone(std::u32string_view name);

  struct Parts;
  const std::unique_ptr<Parts> parts;
  VXLocaleData& data;
  VXLocale& locale;
  HostContext& context;
  VXZoneService& zones;
};

}  // namespace vxtest

#endif
