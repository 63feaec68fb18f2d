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

/// A text of one flavour, and the entry points of that flavour.
struct Wide {
  using Unit = VXChar;
  static constexpr auto write_date = &NLSDateFormat;
  static constexpr auto write_time = &NLSTimeFormat;
  static constexpr auto write_datetime = &NLSDatetimeFormat;
  static constexpr auto read_date = &NLSBufToDate;
  static constexpr auto read_time = &NLSBufToTime;
  static constexpr auto read_datetime = &NLSBufToDatetime;
  static std::string utf8(const Unit* text, int64_t length) {
    return vxnlsldb::utf8(std::u32string(text, text + length));
  }
};
struct Bytes {
  using Unit = uint8_t;
  static constexpr auto write_date = &NLSDateFormatU;
  static constexpr auto write_time = &NLSTimeFormatU;
  static constexpr auto write_datetime = &NLSDatetimeFormatU;
  static constexpr auto read_date = &NLSBufToDateU;
  static constexpr auto read_time = &NLSBufToTimeU;
  static constexpr auto read_datetime = &NLSBufToDatetimeU;
  static std::string utf8(const Unit* text, int64_t length) { return {text, text + length}; }
};

struct Date {
  uint32_t month, day, year;
  bool operator==(const Date&) const = default;
};

std::vector<Date> days_of(std::initializer_list<uint32_t> years) {
  std::vector<Date> days;
  for (const uint32_t year : years) {
    for (uint32_t month = 1; month <= 12; ++month) {
      const uint32_t length = month == 2 ? (year % 4 == 0 ? 29 : 28) : 30 + ((month + month / 8) & 1);
      for (uint32_t day = 1; day <= length; ++day) days.push_back({month, day, year});
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

template <class Flavour>
struct Walk {
  VXLocale* locale;
  const std::string& name;
  Failures& failures;
  std::vector<std::string>& texts;  // in the order written, to compare the flavours
  typename Flavour::Unit buffer[512];
  int64_t length = 0;

  bool written(VXStatus status, const char* entry) {
    if (status != 0) failures.add(name + ' ' + entry, "cannot be written");
    if (status == 0) texts.push_back(Flavour::utf8(buffer, length));
    return status == 0;
  }
  void expect(bool right, int64_t consumed, const char* entry, const char* reading) {
    if (!right || consumed != length) failures.add(name + ' ' + entry + ' ' + reading, texts.back());
  }

  void dates(const std::vector<Date>& days) {
    for (const auto& [style, strict, entry] : date_rows) {
      for (const Date& day : days) {
        if (!written(Flavour::write_date(locale, day.month, day.day, day.year, style, buffer, 512, &length), entry))
          break;
        for (const uint32_t kind : {strict, lenient}) {
          Date got{};
          int64_t consumed = -1;
          Flavour::read_date(locale, buffer, length, kind, &got.month, &got.day, &got.year, &consumed);
          expect(got == day, consumed, entry, kind == lenient ? "leniently" : "strictly");
        }
      }
    }
  }

  void times() {
    constexpr struct {
      int32_t flag;
      uint32_t kind;
      const char* entry;
    } rows[] = {{0, 0, "timePattern"}, {1, 1, "timePattern1"}};
    for (const auto& [flag, strict, entry] : rows) {
      for (int minute = 0; minute < 24 * 60; ++minute) {
        const double value = minute * 60 + (flag == 0 ? minute % 60 : 0);
        if (!written(Flavour::write_time(locale, flag, buffer, 512, &length, value), entry)) break;
        for (const uint32_t kind : {strict, lenient}) {
          double got = -1;
          int64_t consumed = -1;
          Flavour::read_time(locale, buffer, length, kind, &got, &consumed);
          expect(got == value, consumed, entry, kind == lenient ? "leniently" : "strictly");
        }
      }
    }
  }

  void datetimes() {
    for (int day = 0; day < 731; ++day) {
      const double value = (14610.0 + day) * 86400 + day * 1187 % 86400;  // 2000 and 2001, over the whole dial
      if (!written(Flavour::write_datetime(locale, 0, buffer, 512, &length, value), "datetimePattern")) break;
      for (const uint32_t kind : {0u, lenient}) {
        double got = -1;
        int64_t consumed = -1;
        Flavour::read_datetime(locale, buffer, length, kind, &got, &consumed);
        expect(got == value, consumed, "datetimePattern", kind == lenient ? "leniently" : "strictly");
      }
    }
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
  const year_month_day day{first + weeks{week - 1}};
  return {static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
          static_cast<uint32_t>(static_cast<int>(day.year()))};
}

/// Months, quarters and weeks by the patterns of a locale, read in both flavours. Where abbreviated months do not read
/// back in dates, they do not in "%b %Y" either, which is every locale's.
void walk_periods(VXLocale* locale, const std::string& name, bool months_read_back, Failures& failures) {
  const VXLocaleData& data = *locale->localeData;
  const auto expect = [&](const char* entry, uint32_t kind, const std::u32string& text, const Date& wanted) {
    const std::string utf8 = vxnlsldb::utf8(text);
    const std::vector<VXChar> units(text.begin(), text.end());
    Date wide{}, bytes{};
    int64_t consumed = -1, consumed_bytes = -1;
    NLSBufToDate(locale, units.data(), static_cast<int64_t>(units.size()), kind, &wide.month, &wide.day, &wide.year,
                 &consumed);
    NLSBufToDateU(locale, reinterpret_cast<const uint8_t*>(utf8.data()), static_cast<int64_t>(utf8.size()), kind,
                  &bytes.month, &bytes.day, &bytes.year, &consumed_bytes);
    if (!(wide == wanted && consumed == static_cast<int64_t>(units.size()))) failures.add(name + ' ' + entry, utf8);
    if (!(bytes == wanted && consumed_bytes == static_cast<int64_t>(utf8.size())))
      failures.add(name + " UTF-8 " + entry, utf8);
  };
  for (const int year : {1999, 2000, 2024}) {
    const auto y = static_cast<uint32_t>(year);
    for (uint32_t month = 1; month <= 12; ++month) {
      const auto of = [&](const NLSName& pattern) { return period_text(data, pattern, year, month, 0); };
      if (months_read_back) expect("monthYearPattern1", 16, of(data.monthYearPattern1), {month, 1, y});
      expect("monthYearPattern2", 16, of(data.monthYearPattern2), {month, 1, y});
      const uint32_t first = (month - 1) / 3 * 3 + 1;
      expect("quarterPattern1", 8, of(data.quarterPattern1), {first, 1, y});
      expect("quarterPattern2", 8, of(data.quarterPattern2), {first, 1, y});
    }
    for (int week = 1; week <= 53; ++week) {
      for (const NLSName* pattern : {&data.weekPattern1, &data.weekPattern2}) {
        expect(pattern == &data.weekPattern1 ? "weekPattern1" : "weekPattern2", 32,
               period_text(data, *pattern, year, 1, week), first_day_of_week(year, week, vxnlsldb::text_of(*pattern)));
      }
    }
  }
}

template <class Flavour>
std::vector<std::string> walk(VXLocale* locale, const std::string& name, Failures& failures) {
  static const std::vector<Date> days = days_of({2000, 2024});
  std::vector<std::string> texts;
  Walk<Flavour> steps{locale, name, failures, texts, {}};
  steps.dates(days);
  steps.times();
  steps.datetimes();
  return texts;
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
      walk<Bytes>(plain.get(), locale->name, failures);
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
    const std::vector<std::string> wide = walk<Wide>(plain.get(), locale->name, failures);
    const std::vector<std::string> bytes = walk<Bytes>(plain.get(), locale->name + " UTF-8", failures);
    EXPECT_TRUE(wide == bytes) << locale->name << ": the flavours write different texts";
    const auto fell_back = [](const auto& f) { return f.entry == "datePattern1" && f.reason.starts_with("R6"); };
    const bool months_read_back = std::none_of(locale->fallbacks.begin(), locale->fallbacks.end(), fell_back);
    with_months += months_read_back;
    walk_periods(plain.get(), locale->name, months_read_back, failures);
  }
  EXPECT_GT(with_months + 15, distinct_locales().size());
  // No exceptions: what would not read back is not stored.
  EXPECT_EQ(failures.report(), "");
}
