// Dates, periods, times and datetimes of every kind, through the entry points.
#include <cmath>
#include <ctime>
#include <vector>

#include "tests/datetime_parse/reading.h"
#include "tests/support/day_counter.h"
#include "tests/support/null_arguments.h"

namespace vxtest {

namespace {

/// "2021-03-04 8", "10:20:30.25 11" or both, and the units that were read; nothing of a refusal.
std::string described(uint32_t what, const Read& read) {
  if (read.consumed < 0) return "";
  const auto value = static_cast<int64_t>(std::floor(read.value));
  char text[64];
  if (what == VX_EXPLAIN_DATETIME) {
    const time_t at = value - 315619200;  // of 1960, since 1970
    tm fields{};
    std::strftime(text, sizeof text, "%F %T", gmtime_r(&at, &fields));
  } else {
    const long base = what == VX_EXPLAIN_DATE ? 100 : 60;
    std::snprintf(text, sizeof text, what == VX_EXPLAIN_DATE ? "%04ld-%02ld-%02ld" : "%02ld:%02ld:%02ld",
                  value / (base * base), value / base % base, value % base);
  }
  const std::string fraction = std::to_string(read.value - static_cast<double>(value)).substr(1, 3);
  return std::string(text).append(fraction == ".00" ? "" : fraction).append(" ") + std::to_string(read.consumed);
}

/// Runs a script whose results are such descriptions, with the source and the row of the candidate or without.
void expect_read(const std::string& script, bool by_candidate = false) {
  run(script, [&](uint32_t what, const Read& read, const VXExplanation& out) {
    const VXExplainCandidate& by = out.match.candidate;
    const std::string text = described(what, read);
    return by_candidate ? text + " by " + std::to_string(by.source) + '.' + std::to_string(by.row) : text;
  });
}

/// No text holds "~": a pattern with it is out of the way.
const std::string no_pattern_of_its_own = R"(
  datePattern ~; datePattern1 ~; datePattern2 ~; quarterPattern1 ~; quarterPattern2 ~
  monthYearPattern1 ~; monthYearPattern2 ~; weekPattern1 ~; weekPattern2 ~
)";

TEST(ParseDate, ByOnePattern) {
  expect_read(R"(
    datePattern %Y-%m-%d; datePattern1 %m/%d/%Y; datePattern2 %#d. %B %Y
    date 1; 12/25/2020 and more = 2020-12-25 10; __12/25/2020 = 2020-12-25 12; 1/25/2020 =; 12/25/99 =
    date 2; 3. march 2020 = 2020-03-03 13
    // Any other kind reads by the main pattern, leniently where it has one of the lenient bits.
    date 0; 2020-02-03 = 2020-02-03 10; 2020-02-0 =; =; ____ =; date 3; 2020-2-03 =; 2020-02-03 = 2020-02-03 10
    date 5; 2020-2-3 = 2020-02-03 8; date 12; 20-2-3! = 2020-02-03 6; date 0x7FFFFE03; 2020-02-03 = 2020-02-03 10
    date 0x80000004; 20-2-3 = 2020-02-03 6; date 33; 59-2-3 = 2059-02-03 6; 60-2-3 = 1960-02-03 6; 1581-2-3 =
    // The month's length is not checked. A match that holds no full date succeeds with zeros.
    date 0; 2020-02-31 = 2020-02-31 10; datePattern %m/%d; 12/25 = 0000-00-00 5
    datePattern %m/%Y; 12/2020 = 0000-00-00 7; datePattern; = 0000-00-00 0
  )");
}

// Each row of the common forms by a text that no earlier candidate takes.
TEST(ParseDate, EveryCommonRow) {
  expect_read(no_pattern_of_its_own + R"(
    date 4; 31/03/2020 = 2020-03-31 10 by 13.0; 31-3-2020 = 2020-03-31 9 by 13.1; 31. 3.2020 = 2020-03-31 10 by 13.2
    2020/3/31 = 2020-03-31 9 by 13.3; 2020-03-31T = 2020-03-31 10 by 13.4; 2020.03.31 = 2020-03-31 10 by 13.5
    2020/mar/31 = 2020-03-31 11 by 13.6; 2020-Mar-31 = 2020-03-31 11 by 13.7; 2020.March.31 = 2020-03-31 13 by 13.8
    MAR 31 2020 = 2020-03-31 11 by 13.9; mar/31/20 = 2020-03-31 9 by 13.10; Mar.31.2020 = 2020-03-31 11 by 13.11
    Mar-31-2020 = 2020-03-31 11 by 13.12; Thu, Mar 31, 2020 = 2020-03-31 17 by 13.13
    3/31/20 = 2020-03-31 7 by 13.14; 3-31-20 = 2020-03-31 7 by 13.15; 3.31.20 = 2020-03-31 7 by 13.16
    datePattern %m%d%Y~; 03/31/2020 = 2020-03-31 10 by 13.0; 3-31-2020 = 2020-03-31 9 by 13.1
    3.31.2020 = 2020-03-31 9 by 13.2; 31.12.99 = 1999-12-31 8 by 13.14; 31-12-99 = 1999-12-31 8 by 13.15
    31/12/99 = 1999-12-31 8 by 13.16
    date 16; Month7, 2022 = 2022-07-01 12 by 14.0; month 7 2022 = 2022-07-01 12 by 14.1; m7,2022 = 2022-07-01 7 by 14.2
    M12 2022 = 2022-12-01 8 by 14.3; jul-2022 = 2022-07-01 8 by 14.4; july/22 = 2022-07-01 7 by 14.5
    7/2022__ = 2022-07-01 6 by 14.6; 07-2022 = 2022-07-01 7 by 14.7; _7.2022 = 2022-07-01 7 by 14.8
    Jul.2022 = 2022-07-01 8 by 14.9
    date 8; quarter2 2021 = 2021-04-01 13 by 15.0; quarter2, 2021 = 2021-04-01 14 by 15.1
    QTR 1 2021 = 2021-01-01 10 by 15.2; qtr4,2021_ = 2021-10-01 9 by 15.3; Q3 2021 = 2021-07-01 7 by 15.4
    q3, 2021 = 2021-07-01 8 by 15.5
    date 64; Week1 2021 = 2021-01-03 10 by 16.0; week1, 2021 = 2021-01-03 11 by 16.1; w1 2021 = 2021-01-03 7 by 16.2
    W1,2021_ = 2021-01-03 7 by 16.3
    date 128; Week53 2020 = 2020-12-28 11 by 17.0; Week 1, 2020 = 2019-12-30 12 by 17.1
    W53 2020 = 2020-12-28 8 by 17.2; W53, 2020 = 2020-12-28 9 by 17.3
    date 256; WEEK1 2021 = 2021-01-04 10 by 18.0; WEEK1, 2021 = 2021-01-04 11 by 18.1; W0 2021 = 2020-12-28 7 by 18.2
    W1, 2021 = 2021-01-04 8 by 18.3
  )",
              true);
  // A period must use the whole text but for blanks.
  expect_read(no_pattern_of_its_own + R"(
    date 4; 2020-13-40 =; 5/ =; date 16; 7/2022 x =; 13/2022 =; =; 7/1581 =
    date 8; Q5 2021 =; Q12 2021 =; Q0 2021 =; Q3 2021 x =; =
    date 32; W54 2021 =; 2021 =; date 64; W54 2021 =; W1 =; date 128; W1 2021 x =; W1 1581 =; date 256; 2021 =; =
  )");
}

// Month first only when the month stands before both others; what has no "%m" stands before all others.
TEST(ParseDate, OrderOfTheLocale) {
  expect_read(no_pattern_of_its_own + R"(
    date 4; datePattern %m/%d/%Y~; 03/04/2020 = 2020-03-04 10; datePattern %d/%m/%Y~; 03/04/2020 = 2020-04-03 10
    datePattern %Y/%m/%d~; 03/04/2020 = 2020-04-03 10; datePattern %o %e %y~; 03/04/2020 = 2020-03-04 10
    datePattern %m %b %Y~; 03/04/2020 = 2020-03-04 10; datePattern %m %Y~; 03/04/2020 = 2020-04-03 10
    datePattern ~; 03/04/2020 = 2020-04-03 10; datePattern %Y %d~; 03/04/2020 = 2020-03-04 10
    datePattern %#m %d %Y~; 03/04/2020 = 2020-03-04 10; datePattern %d %b %Y~; 03/04/2020 = 2020-03-04 10
  )");
  ZonedLocale locale;
  set_name(locale.data.datePattern, U"%Y %d~%m");
  locale.data.datePattern.length -= 1;  // a letter behind the pattern is no part of it
  EXPECT_EQ(read(VX_EXPLAIN_DATE, locale.get(), U"03/04/2020", 4).value, 20200304);
}

TEST(ParseDate, OwnPatternsComeFirst) {
  // The first match wins, though it has no year. The locale's own quarters meet the text with its trailing blanks, the
  // common rows without them. Of a family of weeks, the rows come before the patterns.
  expect_read(R"(
    datePattern %Y/%d/%m; datePattern1 %d %b; datePattern2 %b %d%#Y !; monthYearPattern1 %Y年%m月
    date 4; 2020/3/4 = 2020-04-03 8 by 1.0; 3 may 2020 = 0000-00-00 5 by 2.0; may 3 2020 ! = 2020-05-03 12 by 3.0
    may 3 2020 = 2020-05-03 10 by 13.9; date 16; 2022年7月_ = 2022-07-01 7 by 9.0; 7/2022 = 2022-07-01 6 by 10.0
    date 8; Q1 2021 = 2021-01-01 7 by 7.0; 2021 Q4 = 2021-10-01 7 by 8.0; Q4 2021__ = 2021-10-01 7 by 15.4
    date 32; W1 2021 = 2021-01-03 7 by 11.0; 2021-W1 = 2021-01-03 7 by 12.0; W1, 2021 = 2021-01-03 8 by 16.3
    date 128; 2021-W1 = 2021-01-03 7 by 12.0; W1 2021 = 2021-01-04 7 by 17.2
    // The family that the locale counts is told by its first week pattern.
    date 32; weekPattern1 %V~; W1 2021 = 2021-01-04 7 by 17.2; weekPattern1 %W~; W1 2021 = 2021-01-04 7 by 18.2
    weekPattern1 %U~; W1 2021 = 2021-01-03 7 by 16.2; weekPattern1 %W%V~; W1 2021 = 2021-01-04 7 by 17.2
    weekPattern1 ~; W1 2021 = 2021-01-03 7 by 16.2
  )",
              true);
  // Patterns that match, but read no quarter, no week or no year.
  expect_read(R"(
    date 8; 2021 Q4_ =; quarterPattern1 %m %Y; 4 2021 =; date 32; weekPattern1 W%U; W5 =; weekPattern1 %Y; 2021 =
  )");
}

// Up to the last year of four digits; the days are counted, not computed.
TEST(ParseDate, EveryPeriodOfEveryYear) {
  ZonedLocale locale;
  std::vector<DayCounter> days;
  for (int32_t day = 22; day <= 31; ++day) days.push_back({1581, 12, day});
  for (DayCounter at; at.year < 10001; at.next()) days.push_back(at);
  for (size_t new_year = 10; days[new_year].year < 10000; new_year += days[new_year].leap() ? 366 : 365) {
    const int32_t y = days[new_year].year, w = days[new_year].week_day;
    const auto expect = [&](uint32_t kind, char letter, int number, const DayCounter& day) {
      const std::string text = letter + std::to_string(number) + ' ' + std::to_string(y);
      const Read wanted{date_value(day.year, day.month, day.day), static_cast<int64_t>(text.size())};
      ASSERT_EQ(read(VX_EXPLAIN_DATE, locale.get(), utf32(text), kind), day.year < 1582 ? Read() : wanted) << text;
    };
    // Week 1 holds the first Sunday, the first Thursday from its Monday on, the first Monday; week 0 is before it.
    const std::pair<uint32_t, int32_t> families[] = {{64, (7 - w) % 7}, {128, (11 - w) % 7 - 3}, {256, (8 - w) % 7}};
    for (const auto& [kind, first] : families) {
      for (int week = 0; week <= 53; ++week) {
        expect(kind, 'W', week, days[new_year + static_cast<size_t>(first + 7 * week - 7)]);
      }
    }
    for (int m = 1; m <= 12; ++m) expect(16, 'M', m, {y, m, 1});
    for (int q = 1; q <= 4; ++q) expect(8, 'Q', q, {y, 3 * q - 2, 1});
    if (HasFatalFailure()) return;
  }
}

TEST(ParseTime, ByPatternsAndCommonForms) {
  expect_read(R"(
    timePattern %H:%M:%S; timePattern1 %H.%M; time 1; 10.30 x = 10:30:00 5; 9.30 =
    time 0; 10:30:15 trailing = 10:30:15 8; =; time 2; _10:30:15 = 10:30:15 9; 9:5:1 =; time 5; 9:5:1 = 09:05:01 5
    time 4; __ =; 10:30 = 10:30:00 5; 10:30:__ = 10:30:00 6; 10:30:15 trailing =; 24:00:00 =
    timePattern ~; timePattern1 ~; _10:30:15Z = 10:30:15 10; 10:30:15z = 10:30:15 9; 10:30 =
    // Patterns cut to nothing match nothing but nothing.
    timePattern %S%M; = 00:00:00 0
    time 0; timePattern %H:%M:%S.%s; 01:02:03.250 = 01:02:03.25 12; timePattern; x = 00:00:00 0; = 00:00:00 0
  )");
}

TEST(ParseTime, Markers) {
  expect_read(R"(
    // Read leniently by one pattern, the marker is not applied. Strictly, 12 is added to whatever stands.
    timePattern %I:%M:%S %p; timePattern1 ~; time 0; 01:00:00 PM = 13:00:00 11; time 8; 01:00:00 PM = 01:00:00 11
    time 4; 12:05:00 am = 00:05:00 11; 12:05 am = 00:05:00 8; 12:05: am = 00:05:00 9; 12:05pm__ = 12:05:00 7
    11:59 PM = 23:59:00 8; 1:00 pm = 13:00:00 7; 00:05 pm =; 00:05 am = 00:05:00 8; 13:00 pm =; 13:00 am =
    // The copy without "%p" keeps hours up to 23. "%#p" is not "%p".
    13:00 = 13:00:00 5; timePattern %H %p; time 0; 13 PM = 25:00:00 5; time 4; timePattern %H %#p; 01 PM = 01:00:00 5
    // "%p" before the minutes: one copy loses all from the minutes to the seconds, the other the seconds only.
    timePattern %p %I:%M:%S; pm 1:05 = 13:05:00 7; pm 1:05: = 13:05:00 8
    timePattern %p %I:%M:%S Uhr; pm 1:05 uhr = 13:05:00 11; pm 1:05:uhr = 13:05:00 11
    timePattern %p %S-%M %H; am -5 3 = 03:05:00 7
    // The pattern of kind 1 is cut after "%M" or "%#M" and before "%S", without a marker. The main one needs "%M".
    timePattern %H-%#M %S; 10-3 =; timePattern ~; timePattern1 %H-%#M %S; 10-3 = 10:03:00 4
    timePattern1 %H.%M.%S; 10.30 = 10:30:00 5; 10.30. = 10:30:00 6; timePattern1 %I.%M.%S %p; 1.30 pm =
    // An empty marker is found in the nothing that follows the text.
    timePattern %H:%M:%S; timePattern1 ~; 12:05 = 12:05:00 5; amMarker; 12:05 = 00:05:00 5; 13:05 =
    pmMarker; 12:05 = 00:05:00 5; amMarker AM; 1:05 = 13:05:00 4; 00:05 =
  )");
}

// Copies of a pattern of full length do not outgrow it; one that ends in "%" matches nothing.
TEST(ParseTime, LongestPattern) {
  const std::string x(51, 'x');
  expect_read("time 4; timePattern " + x + "%H:%M%S%p; " + x + "1:05 pm = 13:05:00 58");
  // Cut before the seconds, 58 units and " %p" are one too many: what is left ends in "%".
  expect_read("time 4; timePattern xxx" + x + "%M%p%S; xxx" + x + "05am am =; xxx" + x + "05am = 00:05:00 58");
}

TEST(ParseDatetime, ByPatternAndByParts) {
  expect_read(R"(
    datetimePattern %Y%m%d-%H%M%S.%s; datetime 0; 20210304-102030.250 rest = 2021-03-04 10:20:30.25 19
    _19590304-000000.000 = 1959-03-04 00:00:00 20; 03/04/2021 12:20:30 PM = 2021-03-04 12:20:30 22
    // A pattern that matched asks for no other form. The strict reader has added 12, and 13 PM is refused.
    20210231-102030.250 =; 03/04/2021 01:20:30 PM =; 3/4/2021 10:20:30 AM =
    datetime 8; 3/4/2021 10:20:30 AM = 2021-03-04 10:20:30 20
    // Bit 4 does not ask the pattern. One "T" right after the date, then blanks and punctuation.
    datetime 4; 20210304-102030.250 =; 2021-03-04T10:20:30 = 2021-03-04 10:20:30 19; 2021-03-0410:20:30 =
    2021-03-04T, - 10:20:30_ = 2021-03-04 10:20:30 23; 2021-03-04 —　10:20:30 = 2021-03-04 10:20:30 21
    2021-03-04TT10:20:30 =; 2021-03-04 T10:20:30 =; 2021-03-04t10:20:30 =; 2021-03-04 =; 2021-03-04 x =; 10:20:30 =; =
    mar 4 2021 1:20 pm = 2021-03-04 13:20:00 18; 12/31/99 0:00:00 = 1999-12-31 00:00:00 16; 2021-02-29 10:20:30 =
    // 4000 and 8000 are common years.
    datetime 12; 12/31/9999 23:59:59 = 9999-12-29 23:59:59 19
    // A date alone is a datetime only where an empty time pattern is tried. Without a year, the year is 2000.
    datetime 4; timePattern; 2021-03-04_ = 2021-03-04 00:00:00 11
    datetime 0; datetimePattern %d.%m; 29.02 = 2000-02-29 00:00:00 5
  )");
}

TEST(ParseDatetime, ResultsAreInTheZoneOfTheLocale) {
  // A "Z" that is a literal says nothing. The offset of a zone is that of the local time in it. The locale's own offset
  // is that of the moment in UTC. Of a zone and an offset, the zone counts.
  expect_read(R"(
    zone Zone/West; datetimePattern %Y-%m-%d %H:%M:%S %Z; timePattern %H:%M:%S %z; datetime 4
    2021-03-04, 10:20:30 +0100 = 2021-03-04 03:50:30 26; 2021-03-04, 10:20:30 -02 = 2021-03-04 06:50:30 24
    2021-03-04, 10:20:30Z = 2021-03-04 10:20:30 21; datetime 0; 2021-03-04 10:20:30 XST = 2021-03-04 10:20:30 23
    2021-03-04 10:20:30 Zone/East = 2021-03-04 02:50:30 29; 2021-03-04 10:20:30 Zone/West_ = 2021-03-04 10:20:30 30
    1960-01-01 00:00:00 Zone/Summer = 1959-12-31 16:30:00 31; 1959-12-31 23:59:59 Zone/Summer = 1959-12-31 17:29:59 31
    zone Zone/Summer; datetime 0; 1960-01-01 02:00:00 Zone/East = 1960-01-01 02:00:00 29
    1960-01-01 01:59:59 Zone/East = 1960-01-01 00:59:59 29
    datetime 4; 1960-01-01 01:59:59 +02:00 = 1960-01-01 00:59:59 26
    datetime 0; datetimePattern %Y-%m-%d %H:%M:%S %z, %Z
    1970-01-01 12:00:00 -01:00, Zone/East = 1970-01-01 12:00:00 37
  )");
}

TEST(ParseArguments, LengthsBelowZeroAndNulls) {
  PlainLocale locale;
  uint32_t m = 1, d = 1, y = 1;
  double value = -1;
  int64_t consumed = -1;
  EXPECT_EQ(NLSBufToDateU(locale.get(), nullptr, INT64_MIN, 0, &m, &d, &y, &consumed), VX_E_NOMATCH);
  EXPECT_EQ(NLSBufToTime(locale.get(), nullptr, INT64_MIN, 4, &value, &consumed), VX_E_NOMATCH);
  EXPECT_EQ(NLSBufToDatetimeU(locale.get(), nullptr, 0, 0, &value, &consumed), VX_E_NOMATCH);  // empty, not missing
  const auto refuse_nulls = [&](auto* text, auto date, auto time, auto datetime) {
    VX_EXPECT_NULLS_REFUSED(date, locale.get(), text, 1, 4u, &m, &d, &y, &consumed);
    VX_EXPECT_NULLS_REFUSED(time, locale.get(), text, 1, 4u, &value, &consumed);
    VX_EXPECT_NULLS_REFUSED(datetime, locale.get(), text, 1, 4u, &value, &consumed);
  };
  const VXChar units[] = {'5'};
  const uint8_t bytes[] = {'5'};
  refuse_nulls(units, NLSBufToDate, NLSBufToTime, NLSBufToDatetime);
  refuse_nulls(bytes, NLSBufToDateU, NLSBufToTimeU, NLSBufToDatetimeU);
  EXPECT_EQ(value + static_cast<double>(consumed), -2);
}

}  // namespace

}  // namespace vxtest
