// Dates and periods through NLSBufToDate and its UTF-8 twin.
#include <vector>

#include "tests/datetime_parse/both_flavours.h"
#include "tests/support/day_counter.h"

namespace vxtest {

namespace {

constexpr DateRead date(uint32_t year, uint32_t month, uint32_t day, int64_t consumed) {
  return {0, month, day, year, consumed};
}

/// What no reader matches: stands where a test wants a pattern of the locale out of the way.
constexpr const char32_t* never = U"\x7F";

/// English names, but none of the locale's own patterns ever matches a date.
struct CommonForms : PlainLocale {
  explicit CommonForms(const char32_t* main = never) {
    for (NLSName* name : {&data.datePattern1, &data.datePattern2, &data.quarterPattern1, &data.quarterPattern2,
                          &data.monthYearPattern1, &data.monthYearPattern2, &data.weekPattern1, &data.weekPattern2}) {
      set_name(*name, never);
    }
    set_name(data.datePattern, main);
  }
};

TEST(ParseDate, KindsOfOnePattern) {
  PlainLocale locale;
  set_name(locale.data.datePattern, U"%Y-%m-%d");
  set_name(locale.data.datePattern1, U"%m/%d/%Y");
  set_name(locale.data.datePattern2, U"%#d. %B %Y");
  static constexpr struct {
    uint32_t kind;
    const char32_t* text;
    DateRead wanted;
  } cases[] = {
      {1, U"12/25/2020 and more", date(2020, 12, 25, 10)},
      {1, U"  12/25/2020", date(2020, 12, 25, 12)},
      {1, U"1/25/2020", refused_date},
      {1, U"12/25/99", refused_date},
      {2, U"3. märz 2020", refused_date},
      {2, U"3. march 2020", date(2020, 3, 3, 13)},
      {0, U"2020-02-31", date(2020, 2, 31, 10)},  // the month's length is not checked
      {3, U"2020-2-03", refused_date},
      {5, U"2020-2-3", date(2020, 2, 3, 8)},  // a lenient kind
      {12, U"20-2-3!", date(2020, 2, 3, 6)},
      {0x7FFFFE03, U"2020-02-03", date(2020, 2, 3, 10)},
      {0x80000004, U"20-2-3", date(2020, 2, 3, 6)},
      {33, U"59-2-3", date(2059, 2, 3, 6)},
      {33, U"60-2-3", date(1960, 2, 3, 6)},
      {33, U"1581-2-3", refused_date},
      {0, U"", refused_date},
      {0, U"    ", refused_date},
      {0, U"2020-02-0", refused_date},
  };
  for (const auto& c : cases) EXPECT_EQ(read_date(locale.get(), c.text, c.kind), c.wanted) << utf8(c.text);
}

// A match that holds no full date succeeds with zeros.
TEST(ParseDate, NoFullDate) {
  PlainLocale locale;
  set_name(locale.data.datePattern1, U"%m/%d");
  EXPECT_EQ(read_date(locale.get(), U"12/25", 1), date(0, 0, 0, 5));
  set_name(locale.data.datePattern1, U"%m/%Y");
  EXPECT_EQ(read_date(locale.get(), U"12/2020", 1), date(0, 0, 0, 7));
  set_name(locale.data.datePattern1, U"");
  EXPECT_EQ(read_date(locale.get(), U"", 1), date(0, 0, 0, 0));
  uint32_t m = 1, d = 1, y = 1;
  int64_t consumed = 1;
  EXPECT_EQ(NLSBufToDate(locale.get(), nullptr, -1, 1, &m, &d, &y, &consumed), 0u);
  EXPECT_EQ(NLSBufToDateU(locale.get(), nullptr, INT64_MIN, 0, &m, &d, &y, &consumed), VX_E_NOMATCH);
  EXPECT_EQ(m + d + y, 0u);
  EXPECT_EQ(consumed, 0);
}

struct RowCase {
  uint32_t row;
  const char* text;
  DateRead wanted;
};

void expect_rows(PlainLocale& locale, uint32_t kind, uint32_t source, const RowCase& c) {
  SCOPED_TRACE(c.text);
  EXPECT_EQ(read_date(locale.get(), utf32(c.text), kind), c.wanted);
  VXExplanation explanation{};
  explanation.size = sizeof explanation;
  ASSERT_EQ(vxnlsExplain(locale.get(), VX_EXPLAIN_DATE, kind, reinterpret_cast<const uint8_t*>(c.text),
                         static_cast<int64_t>(std::strlen(c.text)), &explanation),
            0u);
  EXPECT_EQ(explanation.match.candidate.source, source);
  EXPECT_EQ(explanation.match.candidate.row, c.row);
}

// Each row by a text that no earlier candidate takes.
TEST(ParseDate, EveryCommonRow) {
  static constexpr RowCase day_first[] = {
      {0, "03/04/2020", date(2020, 4, 3, 10)},    {1, "3-4-2020", date(2020, 4, 3, 8)},
      {2, "3. 4.2020 x", date(2020, 4, 3, 9)},    {3, "2020/3/4", date(2020, 3, 4, 8)},
      {4, "2020-03-04T", date(2020, 3, 4, 10)},   {5, "2020.03.04", date(2020, 3, 4, 10)},
      {6, "2020/mar/04", date(2020, 3, 4, 11)},   {7, "2020-Mar-05", date(2020, 3, 5, 11)},
      {8, "2020.March.05", date(2020, 3, 5, 13)}, {9, "MAR 5 2020", date(2020, 3, 5, 10)},
      {10, "mar/5/20", date(2020, 3, 5, 8)},      {11, "Mar.5.2020", date(2020, 3, 5, 10)},
      {12, "Mar-5-2020", date(2020, 3, 5, 10)},   {13, "Thu, Mar 5, 2020", date(2020, 3, 5, 16)},
      {14, "12/31/99", date(1999, 12, 31, 8)},    {15, "12-31-99", date(1999, 12, 31, 8)},
      {16, "12.31.60", date(1960, 12, 31, 8)},
  };
  static constexpr RowCase month_first[] = {
      {0, "03/04/2020", date(2020, 3, 4, 10)}, {1, "3-4-2020", date(2020, 3, 4, 8)},
      {2, "3.4.2020", date(2020, 3, 4, 8)},    {14, "31.12.99", date(1999, 12, 31, 8)},
      {15, "31-12-99", date(1999, 12, 31, 8)}, {16, "31/12/99", date(1999, 12, 31, 8)},
  };
  CommonForms day, month(U"%m%d%Y\x7F");
  for (const RowCase& c : day_first) expect_rows(day, 4, VX_SOURCE_COMMON_DATE, c);
  for (const RowCase& c : month_first) expect_rows(month, 4, VX_SOURCE_COMMON_DATE, c);
  EXPECT_EQ(read_date(day.get(), U"2020-13-40", 4), refused_date);
  EXPECT_EQ(read_date(day.get(), U"5/", 4), refused_date);
}

// Month first only when the month stands before both others, by "%m" or "%o", "%Y" or "%y", and "%d", "%e" or "%b".
TEST(ParseDate, OrderOfTheLocale) {
  static constexpr struct {
    const char32_t* main;
    bool month_first;
  } cases[] = {
      {U"%m/%d/%Y\x7F", true},  {U"%d/%m/%Y\x7F", false}, {U"%Y/%m/%d\x7F", false}, {U"%o %e %y\x7F", true},
      {U"%m %b %Y\x7F", true},  {U"%m %Y\x7F", false},    {never, false},           {U"%Y %d\x7F", true},
      {U"%#m %d %Y\x7F", true}, {U"%d %b %Y\x7F", true},  // no "%m" counts as a place before all others
      {U"%Y %d\x7F%", true},
  };
  for (const auto& c : cases) {
    CommonForms locale(c.main);
    locale.data.datePattern.text[locale.data.datePattern.length] = 'm';  // behind the pattern, no part of it
    const DateRead wanted = c.month_first ? date(2020, 3, 4, 10) : date(2020, 4, 3, 10);
    EXPECT_EQ(read_date(locale.get(), U"03/04/2020", 4), wanted) << utf8(c.main);
  }
}

TEST(ParseDate, OwnPatternsComeFirst) {
  PlainLocale locale;
  set_name(locale.data.datePattern, U"%Y/%d/%m");
  set_name(locale.data.datePattern1, U"%d %b");
  set_name(locale.data.datePattern2, U"%b %d%#Y !");
  EXPECT_EQ(read_date(locale.get(), U"2020/3/4", 4), date(2020, 4, 3, 8));
  EXPECT_EQ(read_date(locale.get(), U"3 may 2020", 4),
            date(0, 0, 0, 5));  // the first match wins, though it has no year
  EXPECT_EQ(read_date(locale.get(), U"may 3 2020 !", 4), date(2020, 5, 3, 12));
  EXPECT_EQ(read_date(locale.get(), U"may 3 2020", 4), date(2020, 5, 3, 10));
}

TEST(ParseDate, MonthForms) {
  static constexpr RowCase rows[] = {
      {0, "Month7, 2022", date(2022, 7, 1, 12)}, {1, "month 7 2022", date(2022, 7, 1, 12)},
      {2, "m7,2022", date(2022, 7, 1, 7)},       {3, "M12 2022", date(2022, 12, 1, 8)},
      {4, "jul-2022", date(2022, 7, 1, 8)},      {5, "july/22", date(2022, 7, 1, 7)},
      {6, "7/2022", date(2022, 7, 1, 6)},        {7, "07-2022  ", date(2022, 7, 1, 7)},
      {8, " 7.2022", date(2022, 7, 1, 7)},       {9, "Jul.2022", date(2022, 7, 1, 8)},
  };
  CommonForms common;
  for (const RowCase& c : rows) expect_rows(common, 16, VX_SOURCE_COMMON_MONTH, c);
  for (const char32_t* text : {U"7/2022 x", U"13/2022", U"", U"  ", U"7/1581"}) {
    EXPECT_EQ(read_date(common.get(), text, 16), refused_date) << utf8(text);
  }
  PlainLocale locale;
  set_name(locale.data.monthYearPattern1, U"%Y年%m月");
  expect_rows(locale, 16, VX_SOURCE_MONTH_1, {0, "2022年7月 ", date(2022, 7, 1, 7)});
  expect_rows(locale, 16, VX_SOURCE_MONTH_2, {0, "7/2022", date(2022, 7, 1, 6)});
}

TEST(ParseDate, QuarterForms) {
  static constexpr RowCase rows[] = {
      {0, "quarter2 2021", date(2021, 4, 1, 13)}, {1, "quarter2, 2021", date(2021, 4, 1, 14)},
      {2, "QTR 1 2021", date(2021, 1, 1, 10)},    {3, "qtr4,2021 ", date(2021, 10, 1, 9)},
      {4, "Q3 2021", date(2021, 7, 1, 7)},        {5, "q3, 2021", date(2021, 7, 1, 8)},
  };
  CommonForms common;
  for (const RowCase& c : rows) expect_rows(common, 8, VX_SOURCE_COMMON_QUARTER, c);
  for (const char32_t* text : {U"Q5 2021", U"Q12 2021", U"Q0 2021", U"Q3 2021 x", U""}) {
    EXPECT_EQ(read_date(common.get(), text, 8), refused_date) << utf8(text);
  }
  PlainLocale locale;
  for (uint32_t q = 1; q <= 4; ++q) {
    const char text[] = {'Q', static_cast<char>('0' + q), ' ', '2', '0', '2', '1', 0};
    expect_rows(locale, 8, VX_SOURCE_QUARTER_1, {0, text, date(2021, 3 * q - 2, 1, 7)});
  }
  expect_rows(locale, 8, VX_SOURCE_QUARTER_2, {0, "2021 Q4", date(2021, 10, 1, 7)});
  // The locale's own patterns meet the text with its trailing blanks, the common rows without them.
  expect_rows(locale, 8, VX_SOURCE_COMMON_QUARTER, {4, "Q4 2021  ", date(2021, 10, 1, 7)});
  EXPECT_EQ(read_date(locale.get(), U"2021 Q4 ", 8), refused_date);
  set_name(locale.data.quarterPattern1, U"%m %Y");  // matches, but reads no quarter
  EXPECT_EQ(read_date(locale.get(), U"4 2021", 8), refused_date);
}

TEST(ParseDate, WeekForms) {
  struct Case {
    uint32_t kind, source, row;
    const char* text;
    DateRead wanted;
  };
  static constexpr Case cases[] = {
      {64, VX_SOURCE_SUNDAY_WEEK, 0, "Week1 2021", date(2021, 1, 3, 10)},
      {64, VX_SOURCE_SUNDAY_WEEK, 1, "week1, 2021", date(2021, 1, 3, 11)},
      {64, VX_SOURCE_SUNDAY_WEEK, 2, "w1 2021", date(2021, 1, 3, 7)},
      {64, VX_SOURCE_SUNDAY_WEEK, 3, "W1,2021 ", date(2021, 1, 3, 7)},
      {128, VX_SOURCE_ISO_WEEK, 0, "Week53 2020", date(2020, 12, 28, 11)},
      {128, VX_SOURCE_ISO_WEEK, 1, "Week 1, 2020", date(2019, 12, 30, 12)},
      {128, VX_SOURCE_ISO_WEEK, 2, "W53 2020", date(2020, 12, 28, 8)},
      {128, VX_SOURCE_ISO_WEEK, 3, "W53, 2020", date(2020, 12, 28, 9)},
      {256, VX_SOURCE_MONDAY_WEEK, 0, "WEEK1 2021", date(2021, 1, 4, 10)},
      {256, VX_SOURCE_MONDAY_WEEK, 1, "WEEK1, 2021", date(2021, 1, 4, 11)},
      {256, VX_SOURCE_MONDAY_WEEK, 2, "W0 2021", date(2020, 12, 28, 7)},
      {256, VX_SOURCE_MONDAY_WEEK, 3, "W1, 2021", date(2021, 1, 4, 8)},
      {32, VX_SOURCE_WEEK_1, 0, "W1 2021", date(2021, 1, 3, 7)},
      {32, VX_SOURCE_WEEK_2, 0, "2021-W1", date(2021, 1, 3, 7)},
      {32, VX_SOURCE_SUNDAY_WEEK, 3, "W1, 2021", date(2021, 1, 3, 8)},
      {128, VX_SOURCE_WEEK_2, 0, "2021-W1", date(2021, 1, 3, 7)},  // the locale's patterns come last there
  };
  PlainLocale locale;
  for (const Case& c : cases) expect_rows(locale, c.kind, c.source, {c.row, c.text, c.wanted});
  static constexpr struct {
    const char32_t* pattern;
    uint32_t source;
    uint32_t day;
  } families[] = {
      {U"%V\x7F", VX_SOURCE_ISO_WEEK, 4},    {U"%W\x7F", VX_SOURCE_MONDAY_WEEK, 4},
      {U"%U\x7F", VX_SOURCE_SUNDAY_WEEK, 3}, {U"%W%V\x7F", VX_SOURCE_ISO_WEEK, 4},
      {never, VX_SOURCE_SUNDAY_WEEK, 3},
  };
  for (const auto& f : families) {
    set_name(locale.data.weekPattern1, f.pattern);
    expect_rows(locale, 32, f.source, {2, "W1 2021", date(2021, 1, f.day, 7)});
  }
  for (const uint32_t kind : {32u, 64u, 128u, 256u}) {
    for (const char32_t* text : {U"W54 2021", U"W1 2021 x", U"W1", U"2021", U"W1 1581", U""}) {
      EXPECT_EQ(read_date(locale.get(), text, kind), refused_date) << utf8(text);
    }
  }
  // The first days of the calendar: 1 January 1582 was a Friday, and week 0 lies before it.
  EXPECT_EQ(read_date(locale.get(), U"W1 1582", 256), date(1582, 1, 4, 7));
  EXPECT_EQ(read_date(locale.get(), U"W0 1582", 256), refused_date);
  EXPECT_EQ(read_date(locale.get(), U"W1 1582", 64), date(1582, 1, 3, 7));
  EXPECT_EQ(read_date(locale.get(), U"W0 1582", 64), refused_date);
  EXPECT_EQ(read_date(locale.get(), U"W1 1582", 128), date(1582, 1, 4, 7));
  // Week patterns of the locale that read no year, or no week.
  set_name(locale.data.weekPattern1, U"W%U");
  EXPECT_EQ(read_date(locale.get(), U"W5", 32), refused_date);
  set_name(locale.data.weekPattern1, U"%Y");
  EXPECT_EQ(read_date(locale.get(), U"2021", 32), refused_date);
}

// Up to the last year of four digits; the days are counted, not computed.
TEST(ParseDate, EveryPeriodOfEveryYear) {
  CommonForms locale;
  DayCounter new_year;
  for (int32_t y = 1582; y <= 9999; ++y) {
    // From 22 December of the year before on, which holds week 0.
    constexpr int32_t before = 10;
    std::vector<DayCounter> days;
    for (int32_t day = 22; day <= 31; ++day) days.push_back({y - 1, 12, day});
    for (DayCounter at = new_year; days.size() < before + 384; at.next()) days.push_back(at);
    const auto read = [&](char letter, int number, uint32_t kind) {
      return read_date(locale.get(), utf32(letter + std::to_string(number) + ' ' + std::to_string(y)), kind);
    };
    // The first Sunday, the first Monday, and the Monday before the first Thursday.
    const int32_t w = new_year.week_day, sunday = (7 - w) % 7, monday = (8 - w) % 7, iso = (11 - w) % 7 - 3;
    for (int week = 0; week <= 53; ++week) {
      const struct {
        uint32_t kind;
        int32_t first;
      } families[] = {{64, sunday}, {128, iso}, {256, monday}};
      for (const auto& family : families) {
        const int32_t place = family.first + 7 * (week - 1);
        const DayCounter& day = days[static_cast<size_t>(before + place)];
        const DateRead wanted = date(static_cast<uint32_t>(day.year), static_cast<uint32_t>(day.month),
                                     static_cast<uint32_t>(day.day), week < 10 ? 7 : 8);
        ASSERT_EQ(read('W', week, family.kind), y == 1582 && place < 0 ? refused_date : wanted)
            << y << " week " << week;
      }
    }
    const auto year = static_cast<uint32_t>(y);
    for (uint32_t m = 1; m <= 12; ++m) {
      ASSERT_EQ(read('M', static_cast<int>(m), 16), date(year, m, 1, m < 10 ? 7 : 8)) << y;
    }
    for (uint32_t q = 1; q <= 4; ++q) ASSERT_EQ(read('Q', static_cast<int>(q), 8), date(year, 3 * q - 2, 1, 7)) << y;
    while (new_year.year == y) new_year.next();
  }
}

}  // namespace

}  // namespace vxtest
