#include "tests/support/plain_locale.h"

#include <utility>

namespace vxtest {

namespace {

struct KnownZone {
  std::u32string_view name;
  int32_t before, after;  // offset for values below 0, and from 0 on
};
KnownZone known_zones[] = {{U"Test/Zone", 0, 0},
                           {U"Zone/East", 7200, 7200},
                           {U"Zone/West", -19800, -19800},
                           {U"Zone/Summer", 3600, 7200},
                           {U"America/New_York", -18000, -18000},
                           {U"Asia/Kolkata", 19800, 19800},
                           {U"UTC", 0, 0}};

VXZone* open(VXZoneService*, const VXChar* id, int64_t length, uint64_t) {
  while (length > 0 && id[length - 1] == ' ') --length;
  auto* const found = std::ranges::find(known_zones, std::u32string(id, id + length), &KnownZone::name);
  return found != std::end(known_zones) ? reinterpret_cast<VXZone*>(found) : nullptr;
}

int32_t offset_of(VXZoneService*, VXZone* zone, int32_t, double seconds) {
  const auto* const known = reinterpret_cast<const KnownZone*>(zone);
  return seconds < 0 ? known->before : known->after;
}

VXStatus describe(VXZoneService*, VXZone* zone, int32_t, double seconds, VXChar* name, int64_t* length, int32_t* east) {
  *length = static_cast<int64_t>(reinterpret_cast<const KnownZone*>(zone)->name.copy(reinterpret_cast<char32_t*>(name),
                                                                                     static_cast<size_t>(*length)));
  return *east = offset_of(nullptr, zone, 0, seconds), 0;
}

const VXLocale& english() {
  VXHandle* const stored = std::exchange(Exported_VXHandle, nullptr);
  static own::Host host(VX_EXAMPLE_LOCALES);
  static const VXLocale& made = *host.locale("en_US", "UTC");
  Exported_VXHandle = stored;
  return made;
}

}  // namespace

const VXZoneServiceOps zone_rules = {open, [](VXZoneService*, VXZone*) -> VXStatus { return 0; }, offset_of, describe};

VXStatus normalise_zone(HostContext*, const VXChar* id, int64_t length, VXZoneIdOptions, VXChar* out, int64_t* written,
                        uint64_t*) {
  VXZone* const zone = open(nullptr, id, length, 0);
  int32_t east = 0;
  return zone != nullptr ? describe(nullptr, zone, 0, 0, out, written, &east) : VX_E_ZONE;
}

PlainLocale::PlainLocale() : data(*english().localeData), locale(english()), context(*locale.host) {
  static constexpr HostContextOps context_ops = {nullptr, normalise_zone, nullptr};
  pool.ops = &own::Pool::operations;
  track.ops = &own::Track::operations;
  lock.ops = &own::Lock::operations;
  context.ops = &context_ops;
  context.pool = &pool;
  context.zones = nullptr;
  locale.host = &context;
  locale.localeData = &data;
  locale.timeZone = nullptr;
  locale.zoneTrack = &track;
  locale.zoneLock = &lock;
}

void PlainLocale::use_zone(std::u32string_view name) {
  context.zones = &zones;
  locale.timeZone = open(&zones, units(name), std::ssize(name), 0);
}

void PlainLocale::use_fixed_zone(int32_t seconds_east) {
  known_zones[0].before = known_zones[0].after = seconds_east;
  use_zone(known_zones[0].name);
}

}  // namespace vxtest
