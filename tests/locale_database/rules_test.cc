// What a locale's patterns write, its readers take back: every pattern of every locale, in both flavours. And the rules
// that make it so, each seen red.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <set>

#include "host/locale_database/cldr_pattern.h"
#include "host/locale_database/rules.h"
#include "host/locale_database/text.h"
#include "tests/locale_database/every_locale.h"
#include "tests/support/plain_locale.h"

using namespace vxnlsldb;
using vxtest::set_name;

namespace {

using namespace std::chrono;

/// A text of a locale in both flavours, which are the same, and what both read of it: seconds, or a date as YYYYMMDD.
struct Walk {
  vxtest::PlainLocale plain;
  VXLocale* locale = plain.get();
  VXChar wide[512];
  uint8_t bytes[512];
  int64_t units = 0, octets = 0;

  template <class Unit>
  std::pair<double, int64_t> read(auto reader, const Unit* at, int64_t length, uint32_t kind) {
    double value = 0;
    int64_t consumed = -1;
    uint32_t month = 0, day = 0, year = 0;
    if constexpr (std::is_invocable_v<decltype(reader), VXLocale*, const Unit*, int64_t, uint32_t, double*, int64_t*>) {
      reader(locale, at, length, kind, &value, &consumed);
    } else {
      reader(locale, at, length, kind, &month, &day, &year, &consumed);
      value = year * 1e4 + month * 100 + day;
    }
    return {value, consumed};
  }
  void expect(double value, std::initializer_list<uint32_t> kinds, VXStatus status, VXStatus of_bytes, auto reader,
              auto reader_of_bytes) {
    const std::string text(bytes, bytes + octets);
    ASSERT_TRUE(status == 0 && of_bytes == 0 && utf8(std::u32string(wide, wide + units)) == text) << text;
    for (const uint32_t kind : kinds) {
      ASSERT_EQ(read(reader, wide, units, kind), std::pair(value, units)) << text << " as kind " << kind;
      ASSERT_EQ(read(reader_of_bytes, bytes, octets, kind), std::pair(value, octets)) << text << " as kind " << kind;
    }
  }
  void date(sys_days at, int32_t style, std::initializer_list<uint32_t> kinds, sys_days wanted) {
    const year_month_day on{at}, read{wanted};
    const auto month = static_cast<unsigned>(on.month()), day = static_cast<unsigned>(on.day());
    const auto year = static_cast<uint32_t>(int{on.year()});
    expect(int{read.year()} * 1e4 + static_cast<unsigned>(read.month()) * 100 + static_cast<unsigned>(read.day()),
           kinds, NLSDateFormat(locale, month, day, year, style, wide, 512, &units),
           NLSDateFormatU(locale, month, day, year, style, bytes, 512, &octets), NLSBufToDate, NLSBufToDateU);
  }

  /// Every day of two leap years, every minute of a day.
  void dates_and_times() {
    constexpr uint32_t lenient = 4;
    for (int i = 0; i < 24 * 60; ++i) {
      const sys_days at = sys_days{(i < 720 ? 2000y : 2024y) / January / 1} + days{i % 720};
      for (const int32_t style : {0, 1, 2}) date(at, style, {static_cast<uint32_t>(style), lenient}, at);
      for (const int32_t flag : {0, 1}) {
        const double value = i * 60 + (flag == 0 ? i % 60 : 0);
        expect(value, {static_cast<uint32_t>(flag), lenient}, NLSTimeFormat(locale, flag, wide, 512, &units, value),
               NLSTimeFormatU(locale, flag, bytes, 512, &octets, value), NLSBufToTime, NLSBufToTimeU);
      }
      const auto moment =
          static_cast<double>((at - sys_days{1960y / January / 1}).count() * 86400 + int64_t{i} * 60 + i % 60);
      expect(moment, {0, lenient}, NLSDatetimeFormat(locale, 0, wide, 512, &units, moment),
             NLSDatetimeFormatU(locale, 0, bytes, 512, &octets, moment), NLSBufToDatetime, NLSBufToDatetimeU);
    }
  }

  /// A day by the pattern of a period, in which the quarter and the week are written by hand: no writer has them.
  void period(uint32_t kind, const NLSName& stored, sys_days at, int week, sys_days wanted) {
    std::u32string pattern = text_of(stored);
    const unsigned month = static_cast<unsigned>(year_month_day{at}.month());
    for (const auto& [directive, text] :
         {std::pair(U"%q", text_of(plain.data.quarterNames[(month - 1) / 3])),
          std::pair(U"%U", from_ascii(std::to_string(week))), std::pair(U"%V", from_ascii(std::to_string(week)))}) {
      const size_t place = pattern.find(directive);
      if (place != pattern.npos) pattern.replace(place, 2, text);
    }
    set_name(plain.data.datePattern2, pattern);
    date(at, 2, {kind}, wanted);
  }
  /// Where abbreviated months do not read back in dates, they do not in "%b %Y" either, which is every locale's.
  void periods(bool months_read_back) {
    const VXLocaleData& data = plain.data;
    for (const year y : {1999y, 2000y, 2024y}) {
      for (int month = 1; month <= 12; ++month) {
        const sys_days at = y / month / 1, quarter = y / ((month - 1) / 3 * 3 + 1) / 1;
        if (months_read_back) period(16, data.monthYearPattern1, at, 0, at);
        period(16, data.monthYearPattern2, at, 0, at);
        for (const auto& pattern : {data.quarterPattern1, data.quarterPattern2}) period(8, pattern, at, 0, quarter);
      }
      const bool iso = text_of(data.weekPattern1).find(U"%V") != std::u32string::npos;
      const sys_days first = iso ? sys_days{y / January / Thursday[1]} - days{3} : sys_days{y / January / Sunday[1]};
      for (int week = 1; week <= 53; ++week) {
        for (const auto& pattern : {data.weekPattern1, data.weekPattern2})
          period(32, pattern, y / July / 1, week, first + weeks{week - 1});
      }
    }
  }
};

// No exceptions: what would not read back is not stored.
TEST(RoundTrip, EveryPatternOfEveryLocale) {
  Walk walk;
  std::set<std::string> seen;
  size_t without_months = 0;
  for (const auto& locale : vxtest::every_locale()) {
    SCOPED_TRACE(locale.name);
    const VXLocaleData& data = *locale.data;
    if (!seen.emplace(reinterpret_cast<const char*>(data.dayNames), reinterpret_cast<const char*>(data.quarterNames))
             .second)
      continue;  // the same names and patterns
    walk.plain.data = data;
    ASSERT_NO_FATAL_FAILURE(walk.dates_and_times());
    const auto fell_back = [](const auto& f) { return f.entry == "datePattern1" && f.reason.starts_with("R6"); };
    const bool months_read_back = std::ranges::none_of(locale.fallbacks, fell_back);
    without_months += !months_read_back;
    ASSERT_NO_FATAL_FAILURE(walk.periods(months_read_back));
  }
  EXPECT_LT(without_months, 15u);
}

std::vector<std::string> broken_rules(const VXLocaleData& record) {
  std::vector<std::string> rules;
  check_record(record, [&](const std::string& entry, const Violation& violation) {
    rules.push_back(label(violation.rule) + ' ' + entry);
    return true;
  });
  return rules;
}

#define AT(member) offsetof(VXLocaleData, member)

// A record that keeps them all, broken in one place at a time. The command finds that every locale's keeps them.
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
      {"R9 currencySymbol", AT(currencySymbol), {U"\u200B"}},
      {"R10 dayNames", AT(dayNames[0]), {std::u32string(61, U'x'), std::u32string(46, U'\U0001E900')}},
      {"R10 groupingPattern", AT(groupingPattern), {U""}},
      {"R11 decimalPoint", AT(decimalPoint), {U","}},
      {"R12 weekPattern2", AT(weekPattern2), {U"%Y-W%V"}},
      {"R12 monthYearPattern2", AT(monthYearPattern2), {U"%b/%Y"}},
      {"R12 quarterPattern1", AT(quarterPattern1), {U"Q%q %Y"}},
  };
  VXLocaleData good = vxtest::PlainLocale().data;
  set_name(good.dayNames[6], U"Sundays"), set_name(good.monthNames[3], U"4月");  // in no pattern of its own
  EXPECT_EQ(broken_rules(good), std::vector<std::string>());
  VXLocaleData record;
  for (const auto& [expected, entry, texts] : cases) {
    for (const std::u32string& text : texts) {
      record = good;
      if (entry == AT(decimalPoint)) record.decimalPoint = text[0];
      else set_name(*reinterpret_cast<NLSName*>(reinterpret_cast<uint8_t*>(&record) + entry), text);
      EXPECT_EQ(std::ranges::count(broken_rules(record), expected), 1) << expected << " by " << utf8(text);
    }
  }
  for (const int byte : {0x00, 0x25, 0x7F, 0x80, 0xFF}) {  // whatever it holds
    std::memset(static_cast<void*>(&record), byte, sizeof record);
    EXPECT_FALSE(broken_rules(record).empty()) << byte;
  }
}

// What no locale has, or not where it would be seen.
TEST(Rules, PatternsBeyondTheDataOfCldr) {
  const std::pair<const char32_t*, const char32_t*> translations[] = {{U" d\u00A0 'o''clock' y''", U"%#d o'clock %Y'"},
                                                                      {U"d '100%' y G", U"%#d 100%% %Y n. %%Chr."},
                                                                      {U"LL.y H:m:s", U"%m.%Y %#H:%#M:%S"},
                                                                      {U"hh a", U"%I %p"}};
  for (const auto& [cldr, stored] : translations) {
    EXPECT_EQ(utf8(translate(cldr, Padding::as_cldr, U"n. %Chr.").stored), utf8(stored));
  }
  for (const char32_t* const cldr : {U"", U"B h:mm", U"K:mm a", U"k:mm", U"EEEE d", U"d. MMMMM", U"LLLL", U"yyyyy"}) {
    EXPECT_NE(translate(cldr, Padding::as_cldr, U"").obstacle, "") << utf8(cldr);
  }
  for (const char32_t* broken : {U"%", U"100%", U"%#", U"%#%", U"%?d"}) EXPECT_FALSE(take_apart(broken));
  const std::tuple<const char32_t*, const char32_t*, Overlap> overlaps[] = {
      {U"%d DE %b", U"%d de %B", Overlap::none},      {U"%d.%m.%Y g", U"%d.%m.%Y", Overlap::none},
      {U"%d. %m. %Y", U"%#d.%m.%Y", Overlap::blanks}, {U"%d %b %Y", U"%d %B %Yg", Overlap::part},
      {U"%Y/%m/%d", U"%Y/%d/%m", Overlap::order},     {U"%Y/%m/%d", U"%d/%m/%Y", Overlap::none}};
  for (const auto& [earlier, later, wanted] : overlaps) {
    EXPECT_EQ(overlap(*take_apart(earlier), *take_apart(later)), wanted) << utf8(earlier) << " before " << utf8(later);
  }
}

}  // namespace
