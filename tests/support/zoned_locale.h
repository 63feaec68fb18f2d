// A plain locale whose host knows a few zones by name, for tests of texts that name one.
#ifndef VXNLS_TESTS_SUPPORT_ZONED_LOCALE_H
#define VXNLS_TESTS_SUPPORT_ZONED_LOCALE_H

#include <deque>
#include <string>

#include "tests/support/plain_locale.h"

namespace vxtest {

/// "Zone/East" lies 2 hours east of UTC, "Zone/West" 5 hours and 30 minutes west. "Zone/Summer" is 1 hour east, from
/// the value 0 on 2 hours: for a local value the step lies at local 0, for UTC at UTC 0. The locale's own zone is
/// chosen with `use`. Identifiers lose trailing blanks on their way to the zones, as a normalising host does it.
struct ZonedLocale : PlainLocale {
  ZonedLocale() {
    static const HostContextOps context_ops = {
        nullptr,
        [](HostContext*, const VXChar* id, int64_t length, VXZoneIdOptions, VXChar* out, int64_t* out_length,
           uint64_t*) -> VXStatus {
          while (length > 0 && id[length - 1] == ' ') --length;
          if (length > *out_length) return VX_E_ZONE;
          for (int64_t i = 0; i < length; ++i) out[i] = id[i];
          *out_length = length;
          return 0;
        },
        nullptr,
    };
    static const VXTrackOps track_ops = {
        [](VXTrack* track, uint32_t, uint64_t, const void* key, int64_t key_bytes) -> VXTrackEntry* {
          const auto* const text = static_cast<const VXChar*>(key);
          const std::u32string id(text, text + key_bytes / 4);
          for (Known& known : reinterpret_cast<Track*>(track)->zones) {
            if (known.name == id) return &known.entry;
          }
          return nullptr;
        },
        nullptr,
        [](VXTrack*, VXTrackEntry*) -> VXStatus { return 0; },
        nullptr,
        nullptr,
    };
    static const VXLockOps lock_ops = {[](VXLock*, uint32_t, uint32_t) -> VXStatus { return 0; },
                                       [](VXLock*) -> VXStatus { return 0; }, nullptr};
    static const VXZoneServiceOps zone_ops = {
        [](VXZoneService*, const VXChar*, int64_t, uint64_t) -> VXZone* { return nullptr; },
        nullptr,
        [](VXZoneService*, VXZone* zone, int32_t, double seconds) -> int32_t {
          const auto* const known = reinterpret_cast<const Known*>(zone);
          return seconds < 0 ? known->before : known->after;
        },
        [](VXZoneService*, VXZone* zone, int32_t, double seconds, VXChar* name, int64_t* length,
           int32_t* offset) -> VXStatus {
          const auto* const known = reinterpret_cast<const Known*>(zone);
          for (size_t i = 0; i < known->name.size(); ++i) name[i] = known->name[i];
          *length = static_cast<int64_t>(known->name.size());
          *offset = seconds < 0 ? known->before : known->after;
          return 0;
        },
    };
    track_.head.ops = &track_ops;
    lock_.ops = &lock_ops;
    zones.ops = &zone_ops;
    context.ops = &context_ops;
    context.zones = &zones;
    locale.zoneTrack = &track_.head;
    locale.zoneLock = &lock_;
    add(U"Zone/East", 7200, 7200);
    add(U"Zone/West", -19800, -19800);
    add(U"Zone/Summer", 3600, 7200);
  }

  /// Makes a zone the locale's own.
  void use(const std::u32string& name) {
    for (Known& known : track_.zones) {
      if (known.name == name) locale.timeZone = known.record.zone;
    }
  }

 private:
  struct Known {
    std::u32string name;
    int32_t before, after;  // offset for values below 0, and from 0 on
    ZoneRecord record;
    VXTrackEntry entry;
  };
  struct Track {
    VXTrack head;
    std::deque<Known> zones;
  };

  void add(const std::u32string& name, int32_t before, int32_t after) {
    track_.zones.push_back({name, before, after, {}, {}});
    Known& known = track_.zones.back();
    known.record.zone = reinterpret_cast<VXZone*>(&known);
    known.entry.payload = &known.record;
  }

  Track track_{};
  VXLock lock_{};
};

}  // namespace vxtest

#endif
