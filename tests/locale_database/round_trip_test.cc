// What a locale's patterns write, its readers take back: every pattern of every locale, in both flavours.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <set>

#include "host/locale_database/text.h"
#include "tests/locale_database/every_locale.h"
#include "tests/support/plain_locale.h"

namespace {

using namespace std::chrono;

constexpr uint32_t lenient = 4;

/// One representative of the locales whose names and patterns are the same.
std::vector<const vxtest::FilledLocale*> distinct_locales() {
  std::set<std::string> seen;
  std::vector<const vxtest::FilledLocale*> distinct;
  for (const auto& locale : vxtest::every_locale()) {
    const auto* const from = reinterpret_cast<const char*>(locale.data->dayNames);
    const auto* const to = reinterpret_cast<const char*>(locale.data->quarterNames);
    if (seen.emplace(from, to).second) distinct.push_back(&locale);
  }
  return distinct;
}

struct Date {
  uint32_t month, day, year;
  bool operator==(const Date&) const = default;
};

Date date_of(sys_days at) {
  const year_month_day day{at};
  return {static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()), static_cast<uint32_t>(int{day.year()})};
}

/// Texts of a locale in both flavours, which are the same, and what both read of them.
struct Walk {
  vxtest::PlainLocale plain;
  VXLocale* locale = plain.get();
  std::map<std::string, std::string> failures;  // by entry and kind, the first text of each
  VXChar wide[512];
  uint8_t bytes[512];
  int64_t units = 0, octets = 0;

  explicit Walk(const VXLocaleData& data) { plain.data = data; }

  void fail(const std::string& entry, const std::string& why) {
    failures.emplace(entry, why + std::string(bytes, bytes + octets));
  }
  bool written(VXStatus status, VXStatus of_bytes, const std::string& entry) {
    const std::string text = vxnlsldb::utf8(std::u32string(wide, wide + units));
    const bool good = status == 0 && of_bytes == 0 && text == std::string(bytes, bytes + octets);
    if (!good) fail(entry, "written ");
    return good;
  }
  void read(auto reader, const auto* at, int64_t length, uint32_t kind, Date& got, int64_t& consumed) {
    reader(locale, at, length, kind, &got.month, &got.day, &got.year, &consumed);
  }
  void read(auto reader, const auto* at, int64_t length, uint32_t kind, double& got, int64_t& consumed) {
    reader(locale, at, length, kind, &got, &consumed);
  }
  template <class Value>
  void expect(const Value& value, std::initializer_list<uint32_t> kinds, const std::string& entry, auto reader,
              auto reader_of_bytes) {
    for (const uint32_t kind : kinds) {
      Value got{}, of_bytes{};
      int64_t consumed = -1, consumed_bytes = -1;
      read(reader, wide, units, kind, got, consumed);
      read(reader_of_bytes, bytes, octets, kind, of_bytes, consumed_bytes);
      if (got == value && of_bytes == value && consumed == units && consumed_bytes == octets) continue;
      fail(entry + " kind " + std::to_string(kind), "");
    }
  }
  bool write_date(const Date& d, int32_t style, const std::string& entry) {
    return written(NLSDateFormat(locale, d.month, d.day, d.year, style, wide, 512, &units),
                   NLSDateFormatU(locale, d.month, d.day, d.year, style, bytes, 512, &octets), entry);
  }

  void dates() {
    for (const int32_t style : {0, 1, 2}) {
      const std::string entry = "datePattern" + (style == 0 ? "" : std::to_string(style));
      for (const int y : {2000, 2024}) {
        for (sys_days at = year{y} / January / 1; at < sys_days{year{y + 1} / January / 1}; at += days{1}) {
          if (!write_date(date_of(at), style, entry)) return;
          expect(date_of(at), {static_cast<uint32_t>(style), lenient}, entry, NLSBufToDate, NLSBufToDateU);
        }
      }
    }
  }
  void times() {
    for (const auto& [flag, entry] : {std::pair(0, "timePattern"), std::pair(1, "timePattern1")}) {
      for (int minute = 0; minute < 24 * 60; ++minute) {
        const double value = minute * 60 + (flag == 0 ? minute % 60 : 0);
        if (!written(NLSTimeFormat(locale, flag, wide, 512, &units, value),
                     NLSTimeFormatU(locale, flag, bytes, 512, &octets, value), entry))
          return;
        expect(value, {static_cast<uint32_t>(flag), lenient}, entry, NLSBufToTime, NLSBufToTimeU);
      }
    }
  }
  void datetimes() {
    for (int day = 0; day < 731; ++day) {
      const double value = (14610.0 + day) * 86400 + day * 1187 % 86400;  // 2000 and 2001, over the whole dial
      if (!written(NLSDatetimeFormat(locale, 0, wide, 512, &units, value),
                   NLSDatetimeFormatU(locale, 0, bytes, 512, &octets, value), "datetimePattern"))
        return;
      expect(value, {0, lenient}, "datetimePattern", NLSBufToDatetime, NLSBufToDatetimeU);
    }
  }

  /// A day by the pattern of a period, in which the quarter and the week are written by hand: no writer has them.
  void period(uint32_t kind, const char* entry, const NLSName& stored, sys_days at, int week, const Date& wanted) {
    const Date d = date_of(at);
    std::u32string pattern = vxnlsldb::text_of(stored);
    const auto replace = [&](std::u32string_view directive, const std::u32string& text) {
      const size_t place = pattern.find(directive);
      if (place != pattern.npos) pattern.replace(place, directive.size(), text);
    };
    replace(U"%q", vxnlsldb::text_of(plain.data.quarterNames[(d.month - 1) / 3]));
    for (const auto* const directive : {U"%U", U"%V"}) replace(directive, vxnlsldb::from_ascii(std::to_string(week)));
    vxtest::set_name(plain.data.datePattern2, pattern);
    if (write_date(d, 2, entry)) expect(wanted, {kind}, entry, NLSBufToDate, NLSBufToDateU);
  }

  /// Months, quarters and weeks. Where abbreviated months do not read back in dates, they do not in "%b %Y" either,
  /// which is every locale's.
  void periods(bool months_read_back) {
    const VXLocaleData& data = plain.data;
    for (const int y : {1999, 2000, 2024}) {
      const year the_year{y};
      for (int month = 1; month <= 12; ++month) {
        const sys_days at = the_year / month / 1;
        const Date first = date_of(at), quarter = date_of(the_year / ((month - 1) / 3 * 3 + 1) / 1);
        if (months_read_back) period(16, "monthYearPattern1", data.monthYearPattern1, at, 0, first);
        period(16, "monthYearPattern2", data.monthYearPattern2, at, 0, first);
        period(8, "quarterPattern1", data.quarterPattern1, at, 0, quarter);
        period(8, "quarterPattern2", data.quarterPattern2, at, 0, quarter);
      }
      const bool iso = vxnlsldb::text_of(data.weekPattern1).find(U"%V") != std::u32string::npos;
      const sys_days first =
          iso ? sys_days{the_year / January / Thursday[1]} - days{3} : sys_days{the_year / January / Sunday[1]};
      for (int week = 1; week <= 53; ++week) {
        const Date wanted = date_of(first + weeks{week - 1});
        period(32, "weekPattern1", data.weekPattern1, the_year / July / 1, week, wanted);
        period(32, "weekPattern2", data.weekPattern2, the_year / July / 1, week, wanted);
      }
    }
  }
};

}  // namespace

// The names that do not read back stand in docs/locale-data.md, which another test compares with what fell back.
TEST(RoundTrip, EveryPatternOfEveryLocale) {
  size_t with_months = 0;
  for (const vxtest::FilledLocale* const locale : distinct_locales()) {
    Walk walk(*locale->data);
    walk.dates(), walk.times(), walk.datetimes();
    const auto fell_back = [](const auto& f) { return f.entry == "datePattern1" && f.reason.starts_with("R6"); };
    const bool months_read_back = std::ranges::none_of(locale->fallbacks, fell_back);
    with_months += months_read_back;
    walk.periods(months_read_back);
    // No exceptions: what would not read back is not stored.
    EXPECT_EQ(walk.failures, (std::map<std::string, std::string>())) << locale->name;
  }
  EXPECT_GT(with_months + 15, distinct_locales().size());
}
