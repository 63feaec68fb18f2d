#include "tests/support/plain_locale.h"

namespace vxtest {

namespace {

constexpr const char32_t* days[] = {U"Sunday",   U"Monday", U"Tuesday", U"Wednesday",
                                    U"Thursday", U"Friday", U"Saturday"};
constexpr const char32_t* months[] = {U"January", U"February", U"March",     U"April",   U"May",      U"June",
                                      U"July",    U"August",   U"September", U"October", U"November", U"December"};

// A zone that a text names is not there.
constexpr HostContextOps knows_no_zone = {
    nullptr,
    [](HostContext*, const VXChar*, int64_t, VXZoneIdOptions, VXChar*, int64_t*, uint64_t*) { return VX_E_ZONE; },
    nullptr};

}  // namespace

struct PlainLocale::Parts {
  VXLocaleData data;
  VXLocale locale;
  HostContext context;
  VXZoneService zones;
};

PlainLocale::~PlainLocale() = default;

PlainLocale::PlainLocale()
    : parts(new Parts{}), data(parts->data), locale(parts->locale), context(parts->context), zones(parts->zones) {
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
  context.ops = &knows_no_zone;
  locale.host = &context;
  locale.localeData = &data;
}

}  // namespace vxtest
