#include "tests/support/plain_locale.h"

#include <cstring>

#include "unicode/text_flavour.h"

struct VXZone {
  int32_t offset;
};

namespace vxtest {

namespace {

VXZone the_zone{0};

bool is_test_zone(const VXChar* id, int64_t length) { return std::u32string(id, id + length) == U"Test/Zone"; }

const VXZoneServiceOps fixed_zone_ops = {
    [](VXZoneService*, const VXChar* id, int64_t length, uint64_t) -> VXZone* {
      return is_test_zone(id, length) ? &the_zone : nullptr;
    },
    [](VXZoneService*, VXZone*) -> VXStatus { return 0; },
    [](VXZoneService*, VXZone* zone, int32_t, double) -> int32_t { return zone->offset; },
    [](VXZoneService*, VXZone* zone, int32_t, double, VXChar* name, int64_t* length, int32_t* offset) -> VXStatus {
      const std::u32string text = U"Test/Zone";
      for (size_t i = 0; i < text.size(); ++i) name[i] = text[i];
      *length = static_cast<int64_t>(text.size());
      *offset = zone->offset;
      return 0;
    },
};

}  // namespace

std::u32string utf32(std::string_view text) {
  std::u32string result;
  auto at = reinterpret_cast<const uint8_t*>(text.data());
  for (auto left = static_cast<int64_t>(text.size()); left > 0;) {
    const auto c = vxnls::Utf8Text::decode(at, left);
    result += static_cast<char32_t>(c.code_point);
    at += c.consumed;
    left -= c.consumed;
  }
  return result;
}

std::string utf8(std::u32string_view text) {
  std::string result;
  for (const char32_t c : text) {
    uint8_t bytes[4];
    const auto n = vxnls::Utf8Text::append(c, bytes);
    result.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(n));
  }
  return result;
}

void set_name(NLSName& name, std::u32string_view text) {
  name.length = static_cast<int64_t>(text.size());
  for (size_t i = 0; i < text.size() && i < 60; ++i) name.text[i] = text[i];
  if (text.size() < 60) name.text[text.size()] = '#';  // shows where a pattern is read behind its end
}

void PlainLocale::use_fixed_zone(int32_t seconds_east) {
  the_zone.offset = seconds_east;
  zones.ops = &fixed_zone_ops;
  context.zones = &zones;
  locale.timeZone = &the_zone;
}

}  // namespace vxtest
