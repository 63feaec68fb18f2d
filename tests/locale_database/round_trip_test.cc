// What a locale's patterns write, its readers take back: every pattern of every locale, in both flavours.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <set>

#include "host/locale_database/cldr_pattern.h"
#include "host/locale_database/text.h"
#include "tests/locale_database/every_locale.h"
#include "tests/support/plain_locale.h"
#include "vxnls/locale_blocks.h"

namespace {

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

Date date_of(std::chrono::sys_days at) {
  const std::chrono::year_month_day day{at};
  return {static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()), static_cast<uint32_t>(int{day.year()})};
}

std::vector<Date> days_of(std::initializer_list<int> years) {
  using namespace std::chrono;
  std::vector<Date> days;
  for (const int y : years) {
    for (sys_days at = year{y} / January / 1; at < sys_days{year{y + 1} / January / 1}; at += std::chrono::days{1}) {
      days.push_back(date_of(at));
    }
  }
  return days;
}

struct DateRow {
  int32_t style;
  uint32_t kind;
  const char* entry;
};
constexpr DateRow date_rows[] = {{0, 0, "datePattern"}, {1, 1, "datePattern1"}, {2, 2, "datePattern2"}};

/// Failures by entry and reading, the first text of each and how many.
class Failures {
 public:
  void add(const std::string& where, const std::string& text) {
    auto& [first, count] = failures_[where];
    if (count++ == 0) first = text;
  }
  bool any_of(const std::string& entry) const {
    const auto has_entry = [&](const auto& failure) { return failure.first.find(entry + ' ') != std::string::npos; };
    return std::any_of(failures_.begin(), failures_.end(), has_entry);
  }
  std::string report() const {
    std::string text;
    for (const auto& [where, what] : failures_) {
      text += where + ": \"" + what.first + "\" and " + std::to_string(what.second - 1) + " more\n";
    }
    return text;
  }

 private:
  std::map<std::string, std::pair<std::string, int>> failures_;
};

/// Texts of a locale in both flavours, which are the same, and what both read of them.
struct Walk {
  VXLocale* locale;
  const std::string& name;
  Failures& failures;
  VXChar wide[512];
  uint8_t bytes[512];
  int64_t units = 0, octets = 0;

  std::string text() const { return std::string(bytes, bytes + octets); }
  bool written(VXStatus status, VXStatus of_bytes, const char* entry) {
    const bool good = status == 0 && of_bytes == 0 && vxnlsldb::utf8(std::u32string(wide, wide + units)) == text();
    if (!good) failures.add(name + ' ' + entry, "written as " + text());
    return good;
  }

  void read(auto reader, const auto* at, int64_t length, uint32_t kind, Date& got, int64_t& consumed) {
    reader(locale, at, length, kind, &got.month, &got.day, &got.year, &consumed);
  }
  void read(auto reader, const auto* at, int64_t length, uint32_t kind, double& got, int64_t& consumed) {
    reader(locale, at, length, kind, &got, &consumed);
  }
  template <class Value>
  void expect(const Value& value, std::initializer_list<uint32_t> kinds, const char* entry, auto reader,
              auto reader_of_bytes) {
    for (const uint32_t kind : kinds) {
      Value got{}, of_bytes{};
      int64_t consumed = -1, consumed_bytes = -1;
      read(reader, wide, units, kind, got, consumed);
      read(reader_of_bytes, bytes, octets, kind, of_bytes, consumed_bytes);
      if (got == value && of_bytes == value && consumed == units && consumed_bytes == octets) continue;
      failures.add(name + ' ' + entry + " kind " + std::to_string(kind), text());
    }
  }

  void dates() {
    static const std::vector<Date> days = days_of({2000, 2024});
    for (const auto& [style, kind, entry] : date_rows) {
      for (const Date& d : days) {
        if (!written(NLSDateFormat(locale, d.month, d.day, d.year, style, wide, 512, &units),
                     NLSDateFormatU(locale, d.month, d.day, d.year, style, bytes, 512, &octets), entry))
          break;
        expect(d, {kind, lenient}, entry, NLSBufToDate, NLSBufToDateU);
      }
    }
  }
  void times() {
    for (const auto& [flag, entry] : {std::pair(0, "timePattern"), std::pair(1, "timePattern1")}) {
      for (int minute = 0; minute < 24 * 60; ++minute) {
        const double value = minute * 60 + (flag == 0 ? minute % 60 : 0);
        if (!written(NLSTimeFormat(locale, flag, wide, 512, &units, value),
                     NLSTimeFormatU(locale, flag, bytes, 512, &octets, value), entry))
          break;
        expect(value, {static_cast<uint32_t>(flag), lenient}, entry, NLSBufToTime, NLSBufToTimeU);
      }
    }
  }
  void datetimes() {
    for (int day = 0; day < 731; ++day) {
      const double value = (14610.0 + day) * 86400 + day * 1187 % 86400;  // 2000 and 2001, over the whole dial
      if (!written(NLSDatetimeFormat(locale, 0, wide, 512, &units, value),
                   NLSDatetimeFormatU(locale, 0, bytes, 512, &octets, value), "datetimePattern"))
        break;
      expect(value, {0, lenient}, "datetimePattern", NLSBufToDatetime, NLSBufToDatetimeU);
    }
  }
  void period(const char* entry, uint32_t kind, const std::u32string& text, const Date& wanted) {
    const std::string utf8 = vxnlsldb::utf8(text);
    units = std::copy(text.begin(), text.end(), wide) - wide;
    octets = std::copy(utf8.begin(), utf8.end(), bytes) - bytes;
    expect(wanted, {kind}, entry, NLSBufToDate, NLSBufToDateU);
  }
};

/// What a pattern of a period says, put together by hand: no writer has quarters and weeks.
std::u32string period_text(const VXLocaleData& data, const NLSName& pattern, int year, size_t month, int week) {
  std::u32string text;
  const std::u32string stored = vxnlsldb::text_of(pattern);
  const auto number = [&](int value) {
    for (const char digit : std::to_string(value)) text += static_cast<char32_t>(digit);
  };
  for (size_t i = 0; i < stored.size(); ++i) {
    if (stored[i] != '%') {
      text += stored[i];
      continue;
    }
    if (stored[++i] == '#') ++i;
    switch (stored[i]) {
      case 'Y': number(year); break;
      case 'm': number(static_cast<int>(month)); break;
      case 'b': text += vxnlsldb::text_of(data.altMonthNames[month - 1]); break;
      case 'B': text += vxnlsldb::text_of(data.monthNames[month - 1]); break;
      case 'q': text += vxnlsldb::text_of(data.quarterNames[(month - 1) / 3]); break;
      case 'U':
      case 'V':
      case 'W': number(week); break;
      default: text += U"?";
    }
  }
  return text;
}

/// The first day of a week as the letter of the pattern counts it, by the standard library.
Date first_day_of_week(int year, int week, const std::u32string& pattern) {
  using namespace std::chrono;
  const std::chrono::year y{year};
  const sys_days first = pattern.find(U"%V") != std::u32string::npos   ? sys_days{y / January / Thursday[1]} - days{3}
                         : pattern.find(U"%W") != std::u32string::npos ? sys_days{y / January / Monday[1]}
                                                                       : sys_days{y / January / Sunday[1]};
  return date_of(first + weeks{week - 1});
}

/// Months, quarters and weeks by the patterns of a locale, read in both flavours. Where abbreviated months do not read
/// back in dates, they do not in "%b %Y" either, which is every locale's.
void walk_periods(VXLocale* locale, const std::string& name, bool months_read_back, Failures& failures) {
  const VXLocaleData& data = *locale->localeData;
  Walk steps{locale, name, failures, {}, {}};
  for (const int year : {1999, 2000, 2024}) {
    const auto y = static_cast<uint32_t>(year);
    for (uint32_t month = 1; month <= 12; ++month) {
      const auto of = [&](const NLSName& pattern) { return period_text(data, pattern, year, month, 0); };
      if (months_read_back) steps.period("monthYearPattern1", 16, of(data.monthYearPattern1), {month, 1, y});
      steps.period("monthYearPattern2", 16, of(data.monthYearPattern2), {month, 1, y});
      const uint32_t first = (month - 1) / 3 * 3 + 1;
      steps.period("quarterPattern1", 8, of(data.quarterPattern1), {first, 1, y});
      steps.period("quarterPattern2", 8, of(data.quarterPattern2), {first, 1, y});
    }
    for (int week = 1; week <= 53; ++week) {
      for (const NLSName* pattern : {&data.weekPattern1, &data.weekPattern2}) {
        steps.period(pattern == &data.weekPattern1 ? "weekPattern1" : "weekPattern2", 32,
                     period_text(data, *pattern, year, 1, week),
                     first_day_of_week(year, week, vxnlsldb::text_of(*pattern)));
      }
    }
  }
}

void walk(VXLocale* locale, const std::string& name, Failures& failures) {
  Walk steps{locale, name, failures, {}, {}};
  steps.dates(), steps.times(), steps.datetimes();
}

}  // namespace

TEST(RoundTrip, NamesThatFellBackWouldNotReadBack) {
  vxtest::PlainLocale plain;
  int held = 0;
  for (const vxtest::FilledLocale* const locale : distinct_locales()) {
    for (const auto& fallback : locale->fallbacks) {
      if (!fallback.reason.starts_with("R6") || !fallback.entry.starts_with("datePattern")) continue;
      plain.data = *locale->data;
      VXLocaleTexts texts;
      std::memcpy(&texts, plain.data.block9, sizeof texts);
      const bool medium = fallback.entry == "datePattern1";
      const std::u32string own = vxnlsldb::text_of(texts.cldrDatePatterns[medium ? 2 : 1]);
      vxtest::set_name(medium ? plain.data.datePattern1 : plain.data.datePattern2,
                       vxnlsldb::translate(own, vxnlsldb::Padding::as_cldr, U"").stored);
      Failures failures;
      walk(plain.get(), locale->name, failures);
      EXPECT_TRUE(failures.any_of(fallback.entry)) << locale->name << ' ' << fallback.entry << ": " << fallback.reason;
      ++held;
    }
  }
  EXPECT_GT(held, 0);
}

TEST(RoundTrip, EveryPatternOfEveryLocale) {
  Failures failures;
  size_t with_months = 0;
  vxtest::PlainLocale plain;
  for (const vxtest::FilledLocale* const locale : distinct_locales()) {
    plain.data = *locale->data;
    walk(plain.get(), locale->name, failures);
    const auto fell_back = [](const auto& f) { return f.entry == "datePattern1" && f.reason.starts_with("R6"); };
    const bool months_read_back = std::none_of(locale->fallbacks.begin(), locale->fallbacks.end(), fell_back);
    with_months += months_read_back;
    walk_periods(plain.get(), locale->name, months_read_back, failures);
  }
  EXPECT_GT(with_months + 15, distinct_locales().size());
  // No exceptions: what would not read back is not stored.
  EXPECT_EQ(failures.report(), "");
}
