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

constexpr const char32_t* days[] = {U"Sunday",   U"Monday", U"Tuesday", U"Wednesday",
                                    U"Thursday", U"Friday", U"Saturday"};
constexpr const char32_t* months[] = {U"January", U"February", U"March",     U"April",   U"May",      U"June",
                                      U"July",    U"August",   U"September", U"October", U"November", U"December"};

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
}

PlainLocale::PlainLocale() : data{}, locale{}, context{}, zones{} {
  set_name(data.localeName, U"en_US");
  for (size_t i = 0; i < 7; ++i) {
    set_name(data.dayNames[i], days[i]);
    set_name(data.altDayNames[i], std::u32string_view(days[i]).substr(0, 3));
  }
  for (size_t i = 0; i < 12; ++i) {
    set_name(data.monthNames[i], months[i]);
    set_name(data.altMonthNames[i], std::u32string_view(months[i]).substr(0, 3));
  }
  set_name(data.datePattern, U"%m/%d/%Y");
  set_name(data.datePattern1, U"%b %#d, %Y");
  set_name(data.datePattern2, U"%B %#d, %Y");
  set_name(data.datetimePattern, U"%m/%d/%Y %I:%M:%S %p");
  set_name(data.timePattern1, U"%#I:%M %p");
  set_name(data.timePattern, U"%I:%M:%S %p");
  set_name(data.amMarker, U"AM");
  set_name(data.pmMarker, U"PM");
  set_name(data.quarterPattern1, U"%q %Y");
  set_name(data.quarterPattern2, U"%Y %q");
  set_name(data.monthYearPattern1, U"%b %Y");
  set_name(data.monthYearPattern2, U"%m/%Y");
  set_name(data.weekPattern1, U"W%U %Y");
  set_name(data.weekPattern2, U"%Y-W%U");
  constexpr const char32_t* quarters[] = {U"Q1", U"Q2", U"Q3", U"Q4"};
  for (size_t i = 0; i < 4; ++i) set_name(data.quarterNames[i], quarters[i]);
  set_name(data.groupingPattern, U"3");
  data.decimalPoint = '.';
  data.groupSeparator = ',';
  set_name(data.currencySymbol, U"$");
  locale.eyeCatcher = 0x6f76656eu;
  locale.typeName = "VXLocale handle";
  locale.host = &context;
  locale.localeData = &data;
}

void PlainLocale::use_fixed_zone(int32_t seconds_east) {
  the_zone.offset = seconds_east;
  zones.ops = &fixed_zone_ops;
  context.zones = &zones;
  locale.timeZone = &the_zone;
}

}  // namespace vxtest
