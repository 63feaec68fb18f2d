// A plain locale whose host knows a few zones by name, for tests of texts that name one.
#ifndef VXNLS_TESTS_SUPPORT_ZONED_LOCALE_H
#define VXNLS_TESTS_SUPPORT_ZONED_LOCALE_H

#include "examples/own_host/own_host.h"
#include "tests/support/plain_locale.h"

namespace vxtest {

/// "Zone/East" lies 2 hours east of UTC, "Zone/West" 5 hours and 30 minutes west. "Zone/Summer" is 1 hour east, from
/// the value 0 on 2 hours: for a local value the step lies at local 0, for UTC at UTC 0. The locale's own zone is
/// chosen with `use`. Identifiers lose trailing blanks on their way to the zones, as a normalising host does it.
struct ZonedLocale : PlainLocale {
  ZonedLocale() {
    static constexpr HostContextOps context_ops = {
        nullptr,
        [](HostContext*, const VXChar* id, int64_t length, VXZoneIdOptions, VXChar* out, int64_t* out_length,
           uint64_t*) -> VXStatus {
          while (length > 0 && id[length - 1] == ' ') --length;
          if (length > *out_length) return VX_E_ZONE;
          std::copy(id, id + length, out);
          *out_length = length;
          return 0;
        },
        nullptr,
    };
    track_.ops = &own::Track::operations;
    lock_.ops = &own::Lock::operations;
    pool_.ops = &own::Pool::operations;
    use_zone(U"");
    context.ops = &context_ops;
    context.pool = &pool_;
    locale.zoneTrack = &track_;
    locale.zoneLock = &lock_;
  }

  /// Makes a zone the locale's own.
  void use(std::u32string_view name) { use_zone(name); }

 private:
  own::Pool pool_;
  own::Track track_;
  own::Lock lock_;
};

}  // namespace vxtest

#endif
