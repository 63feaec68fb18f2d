// Every rule seen red: a record that keeps them all, broken in one place at a time.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "host/locale_database/cldr_pattern.h"
#include "host/locale_database/rules.h"
#include "host/locale_database/text.h"
#include "tests/locale_database/every_locale.h"
#include "tests/support/plain_locale.h"

using namespace vxnlsldb;
using vxtest::set_name;

namespace {

std::vector<std::string> broken_rules(const VXLocaleData& record) {
  std::vector<std::string> rules;
  check_record(record, [&](const std::string& entry, const Violation& violation) {
    rules.push_back(label(violation.rule) + ' ' + entry);
    return true;
  });
  return rules;
}

}  // namespace

TEST(Rules, EveryLocaleKeepsThem) {
  ASSERT_GT(vxtest::every_locale().size(), 800u);
  for (const auto& locale : vxtest::every_locale()) {
    EXPECT_EQ(locale.status, 0u) << locale.name;
    EXPECT_EQ(broken_rules(*locale.data), std::vector<std::string>()) << locale.name;
  }
}

#define AT(member) offsetof(VXLocaleData, member)

TEST(Rules, EachBrokenInTurn) {
  const struct {
    const char* expected;
    size_t entry;
    std::vector<std::u32string> texts;
  } cases[] = {
      {"R0 datePattern1",
       AT(datePattern1),
       {U"%#m/%#d/%Y", U"%b %#d, %y", U"%b %#d, %#Y", U"%b %#d", U"%b %#d, %Y %", U"%b %#d, %1Y"}},
      {"R0 timePattern1", AT(timePattern1), {U"%l:%M %p", U"%H"}},
      {"R1 datePattern", AT(datePattern), {U"%m/%#d/%Y"}},
      {"R2 timePattern", AT(timePattern), {U"%H:%#M:%S", U"%H:%M"}},
      {"R2 timePattern1", AT(timePattern1), {U"%H:%M:%S:%S", U"%H%M"}},
      {"R3 amMarker", AT(pmMarker), {U"", U"am2"}},
      {"R4 timePattern1", AT(timePattern1), {U"%p %I:%M", U"%I:%M", U"%H:%M %p"}},
      {"R5 datetimePattern", AT(datetimePattern), {U"%m/%d/%Y, %I:%M:%S %p"}},
      {"R6 datePattern2", AT(monthNames[11]), {U"januarye"}},
      {"R6 datePattern1", AT(altMonthNames[11]), {U"JANA"}},
      {"R6 datePattern1", AT(altMonthNames[4]), {U"May."}},  // full names are tried first
      {"R6 datePattern2", AT(datePattern2), {U"%A, %B %#d, %Y", U"%d%B, %Y", U"%B %#d1, %Y"}},
      {"R6 quarterNames", AT(quarterNames[1]), {U"q11"}},
      {"R7 datePattern1", AT(datePattern1), {U"%m / %d / %Y", U"%m/%d/%Y.", U"%d/%m/%Y"}},
      {"R7 datePattern2", AT(datePattern2), {U"%b %#d, %Y AD", U"%b %#d, %Y 1%%"}},
      {"R8 datePattern2", AT(datePattern2), {U"%a, %B %#d, %Y"}},
      {"R9 monthNames", AT(monthNames[0]), {U"January\u00A0"}},
      {"R9 altDayNames", AT(altDayNames[6]), {U""}},
      {"R9 timePattern", AT(timePattern), {U"%I:%M:%S\u202F%p"}},
      {"R9 currencySymbol", AT(currencySymbol), {U"\u200B"}},
      {"R10 dayNames", AT(dayNames[0]), {std::u32string(61, U'x'), std::u32string(46, U'\U0001E900')}},
      {"R10 groupingPattern", AT(groupingPattern), {U""}},
      {"R12 weekPattern2", AT(weekPattern2), {U"%Y-W%V"}},
      {"R12 monthYearPattern2", AT(monthYearPattern2), {U"%b/%Y"}},
      {"R12 quarterPattern1", AT(quarterPattern1), {U"Q%q %Y"}},
  };
  const vxtest::PlainLocale good;
  VXLocaleData unusual = good.data;
  set_name(unusual.dayNames[6], U"Sundays"), set_name(unusual.monthNames[3], U"4月");  // in no pattern of its own
  const auto expect_broken = [](const VXLocaleData& record, const char* expected, const std::string& by) {
    EXPECT_EQ(std::ranges::count(broken_rules(record), expected), 1) << expected << " by " << by;
  };
  for (const auto& [expected, entry, texts] : cases) {
    for (const std::u32string& text : texts) {
      VXLocaleData record = unusual;
      set_name(*reinterpret_cast<NLSName*>(reinterpret_cast<uint8_t*>(&record) + entry), text);
      expect_broken(record, expected, utf8(text));
    }
  }
  for (const auto& [point, separator] : {std::pair(U',', U','), std::pair(U'.', U'\u202F')}) {
    VXLocaleData record = good.data;
    record.decimalPoint = point, record.groupSeparator = separator;
    expect_broken(record, "R11 decimalPoint", "separators");
  }
  for (const auto* record : {&good.data, &unusual}) EXPECT_EQ(broken_rules(*record), std::vector<std::string>());
}

// What no locale has, or not where it would be seen.
TEST(Rules, PatternsBeyondTheDataOfCldr) {
  const std::pair<const char32_t*, const char32_t*> translations[] = {{U" d\u00A0 'o''clock' y''", U"%#d o'clock %Y'"},
                                                                      {U"d '100%' y G", U"%#d 100%% %Y n. %%Chr."},
                                                                      {U"LL.y H:m:s", U"%m.%Y %#H:%#M:%S"},
                                                                      {U"hh a", U"%I %p"}};
  for (const auto& [cldr, stored] : translations) {
    const Translation got = translate(cldr, Padding::as_cldr, U"n. %Chr.");
    EXPECT_EQ(utf8(got.stored), utf8(stored));
    EXPECT_EQ(got.obstacle, "");
  }
  for (const char32_t* const cldr : {U"", U"B h:mm", U"K:mm a", U"k:mm", U"EEEE d", U"d. MMMMM", U"LLLL", U"yyyyy"}) {
    EXPECT_NE(translate(cldr, Padding::as_cldr, U"").obstacle, "") << utf8(cldr);
  }
  for (const char32_t* broken : {U"%", U"100%", U"%#", U"%1", U"%#%", U"%?d", U"%%%"}) {
    EXPECT_FALSE(take_apart(broken)) << utf8(broken);
  }
  const std::tuple<const char32_t*, const char32_t*, Overlap> overlaps[] = {
      {U"%d DE %b", U"%d de %B", Overlap::none},      {U"%d.%m.%Y g", U"%d.%m.%Y", Overlap::none},
      {U"%d. %m. %Y", U"%#d.%m.%Y", Overlap::blanks}, {U"%d %b %Y", U"%d %B %Yg", Overlap::part},
      {U"%Y/%m/%d", U"%Y/%d/%m", Overlap::order},     {U"%Y/%m/%d", U"%d/%m/%Y", Overlap::none}};
  for (const auto& [earlier, later, wanted] : overlaps) {
    EXPECT_EQ(overlap(*take_apart(earlier), *take_apart(later)), wanted) << utf8(earlier) << " before " << utf8(later);
  }
}

TEST(Rules, WhateverBytesTheRecordHolds) {
  auto record = std::make_unique<VXLocaleData>();
  for (const int byte : {0x00, 0x25, 0x7F, 0x80, 0xFF}) {
    std::memset(static_cast<void*>(record.get()), byte, sizeof *record);
    EXPECT_FALSE(broken_rules(*record).empty()) << byte;
  }
}
