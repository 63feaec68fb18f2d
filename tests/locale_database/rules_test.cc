// Every rule seen red: a record that keeps them all, broken in one place at a time.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>

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

TEST(Rules, EachBrokenInTurn) {
  const struct {
    const char* expected;
    std::function<void(VXLocaleData&)> spoil;
  } cases[] = {
      {"R0 datePattern1", [](auto& r) { set_name(r.datePattern1, U"%#m/%#d/%Y"); }},
      {"R0 datePattern1", [](auto& r) { set_name(r.datePattern1, U"%b %#d, %y"); }},
      {"R0 datePattern1", [](auto& r) { set_name(r.datePattern1, U"%b %#d, %#Y"); }},
      {"R0 datePattern1", [](auto& r) { set_name(r.datePattern1, U"%b %#d"); }},
      {"R0 datePattern1", [](auto& r) { set_name(r.datePattern1, U"%b %#d, %Y %"); }},
      {"R0 datePattern1", [](auto& r) { set_name(r.datePattern1, U"%b %#d, %1Y"); }},
      {"R0 timePattern1", [](auto& r) { set_name(r.timePattern1, U"%l:%M %p"); }},
      {"R0 timePattern1", [](auto& r) { set_name(r.timePattern1, U"%H"); }},
      {"R1 datePattern", [](auto& r) { set_name(r.datePattern, U"%m/%#d/%Y"); }},
      {"R2 timePattern", [](auto& r) { set_name(r.timePattern, U"%H:%#M:%S"); }},
      {"R2 timePattern", [](auto& r) { set_name(r.timePattern, U"%H:%M"); }},
      {"R2 timePattern1", [](auto& r) { set_name(r.timePattern1, U"%H:%M:%S:%S"); }},
      {"R2 timePattern1", [](auto& r) { set_name(r.timePattern1, U"%H%M"); }},
      {"R3 amMarker", [](auto& r) { r.pmMarker.length = 0; }},
      {"R3 amMarker", [](auto& r) { set_name(r.pmMarker, U"am2"); }},
      {"R4 timePattern1", [](auto& r) { set_name(r.timePattern1, U"%p %I:%M"); }},
      {"R4 timePattern1", [](auto& r) { set_name(r.timePattern1, U"%I:%M"); }},
      {"R4 timePattern1", [](auto& r) { set_name(r.timePattern1, U"%H:%M %p"); }},
      {"R5 datetimePattern", [](auto& r) { set_name(r.datetimePattern, U"%m/%d/%Y, %I:%M:%S %p"); }},
      {"R6 datePattern2", [](auto& r) { set_name(r.monthNames[11], U"januarye"); }},
      {"R6 datePattern1", [](auto& r) { set_name(r.altMonthNames[11], U"JANA"); }},
      {"R6 datePattern1", [](auto& r) { set_name(r.altMonthNames[4], U"May."); }},  // full names are tried first
      {"R6 datePattern2",
       [](auto& r) { set_name(r.datePattern2, U"%A, %B %#d, %Y"), set_name(r.dayNames[6], U"Sundays"); }},
      {"R6 datePattern2", [](auto& r) { set_name(r.datePattern2, U"%d%B, %Y"), set_name(r.monthNames[3], U"4月"); }},
      {"R6 datePattern2", [](auto& r) { set_name(r.datePattern2, U"%B %#d1, %Y"); }},
      {"R6 quarterNames", [](auto& r) { set_name(r.quarterNames[1], U"q11"); }},
      {"R7 datePattern1", [](auto& r) { set_name(r.datePattern1, U"%m / %d / %Y"); }},
      {"R7 datePattern1", [](auto& r) { set_name(r.datePattern1, U"%m/%d/%Y."); }},
      {"R7 datePattern2", [](auto& r) { set_name(r.datePattern2, U"%b %#d, %Y AD"); }},
      {"R7 datePattern2", [](auto& r) { set_name(r.datePattern2, U"%b %#d, %Y 1%%"); }},
      {"R7 datePattern1", [](auto& r) { set_name(r.datePattern1, U"%d/%m/%Y"); }},
      {"R8 datePattern2", [](auto& r) { set_name(r.datePattern2, U"%a, %B %#d, %Y"); }},
      {"R9 monthNames", [](auto& r) { set_name(r.monthNames[0], U"January\u00A0"); }},
      {"R9 altDayNames", [](auto& r) { r.altDayNames[6].length = 0; }},
      {"R9 timePattern", [](auto& r) { set_name(r.timePattern, U"%I:%M:%S\u202F%p"); }},
      {"R9 currencySymbol", [](auto& r) { set_name(r.currencySymbol, U"\u200B"); }},
      {"R10 dayNames", [](auto& r) { r.dayNames[0].length = 61; }},
      {"R10 dayNames", [](auto& r) { set_name(r.dayNames[0], std::u32string(46, U'\U0001E900')); }},
      {"R10 groupingPattern", [](auto& r) { set_name(r.groupingPattern, U""); }},
      {"R11 decimalPoint", [](auto& r) { r.decimalPoint = ','; }},
      {"R11 decimalPoint", [](auto& r) { r.groupSeparator = 0x202F; }},
      {"R12 weekPattern2", [](auto& r) { set_name(r.weekPattern2, U"%Y-W%V"); }},
      {"R12 monthYearPattern2", [](auto& r) { set_name(r.monthYearPattern2, U"%b/%Y"); }},
      {"R12 quarterPattern1", [](auto& r) { set_name(r.quarterPattern1, U"Q%q %Y"); }},
  };
  const vxtest::PlainLocale good;
  ASSERT_EQ(broken_rules(good.data), std::vector<std::string>());
  for (const auto& c : cases) {
    SCOPED_TRACE(c.expected);
    VXLocaleData record = good.data;
    c.spoil(record);
    const std::vector<std::string> rules = broken_rules(record);
    EXPECT_NE(std::find(rules.begin(), rules.end(), c.expected), rules.end())
        << (rules.empty() ? "nothing" : rules.front());
  }
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
