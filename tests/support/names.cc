#include <algorithm>
#include <iterator>

#include "tests/support/zoned_locale.h"
#include "unicode/text_flavour.h"

namespace vxtest {

namespace {

struct KnownZone {
  std::u32string_view name;
  int32_t before, after;  // offset for values below 0, and from 0 on
};
KnownZone known_zones[] = {
    {U"Test/Zone", 0, 0}, {U"Zone/East", 7200, 7200}, {U"Zone/West", -19800, -19800}, {U"Zone/Summer", 3600, 7200}};

int32_t offset_of(VXZoneService*, VXZone* zone, int32_t, double seconds) {
  const auto* const known = reinterpret_cast<const KnownZone*>(zone);
  return seconds < 0 ? known->before : known->after;
}

constexpr VXZoneServiceOps zone_ops = {
    [](VXZoneService*, const VXChar* id, int64_t length, uint64_t) -> VXZone* {
      const std::u32string name(id, id + length);
      auto* const found = std::find_if(std::begin(known_zones), std::end(known_zones),
                                       [&](const KnownZone& zone) { return zone.name == name; });
      return found != std::end(known_zones) ? reinterpret_cast<VXZone*>(found) : nullptr;
    },
    [](VXZoneService*, VXZone*) -> VXStatus { return 0; },
    offset_of,
    [](VXZoneService*, VXZone* zone, int32_t, double seconds, VXChar* name, int64_t* length,
       int32_t* offset) -> VXStatus {
      const std::u32string_view id = reinterpret_cast<const KnownZone*>(zone)->name;
      std::copy(id.begin(), id.end(), name);
      *length = static_cast<int64_t>(id.size());
      *offset = offset_of(nullptr, zone, 0, seconds);
      return 0;
    },
};

}  // namespace

std::u32string utf32(std::string_view text) {
  const own::Text units = own::decoded(text);
  return {units.begin(), units.end()};
}

std::string utf8(std::u32string_view text) {
  std::string result;
  for (const char32_t c : text) {
    uint8_t bytes[4];
    result.append(bytes, bytes + vxnls::Utf8Text::append(c, bytes));
  }
  return result;
}

void set_name(NLSName& name, std::u32string_view text) {
  name.length = static_cast<int64_t>(text.size());
  for (size_t i = 0; i < text.size() && i < 60; ++i) name.text[i] = text[i];
  if (text.size() < 60) name.text[text.size()] = '#';  // shows where a pattern is read behind its end
}

void PlainLocale::use_zone(std::u32string_view name) {
  zones.ops = &zone_ops;
  context.zones = &zones;
  const auto* const id = reinterpret_cast<const VXChar*>(name.data());
  locale.timeZone = zone_ops.open(&zones, id, static_cast<int64_t>(name.size()), 0);
}

void PlainLocale::use_fixed_zone(int32_t seconds_east) {
  known_zones[0].before = known_zones[0].after = seconds_east;
  use_zone(known_zones[0].name);
}

}  // namespace vxtest
