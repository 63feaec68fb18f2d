// Times and datetimes through NLSBufToTime, NLSBufToDatetime and their UTF-8 twins.
#include <chrono>

#include "tests/datetime_parse/both_flavours.h"
#include "tests/support/null_arguments.h"

namespace vxtest {

namespace {

constexpr ValueRead value(double seconds, int64_t consumed) { return {0, seconds, consumed}; }

struct TimeCase {
  const char32_t *main, *other, *am, *pm;
  const char32_t* text;
  uint32_t kind;
  ValueRead wanted;
};

void expect(const TimeCase& c) {
  PlainLocale locale;
  set_name(locale.data.timePattern, c.main);
  set_name(locale.data.timePattern1, c.other);
  set_name(locale.data.amMarker, c.am);
  set_name(locale.data.pmMarker, c.pm);
  EXPECT_EQ(read_time(locale.get(), c.text, c.kind), c.wanted)
      << utf8(c.main) << ", " << utf8(c.other) << " of \"" << utf8(c.text) << "\" kind " << c.kind;
}

constexpr const char32_t *hms = U"%H:%M:%S", *dial = U"%I:%M:%S %p", *front = U"%p %I:%M:%S", *never = U"\x7F";

TEST(ParseTime, KindsOfOnePattern) {
  static constexpr TimeCase cases[] = {
      {hms, U"%H.%M", U"AM", U"PM", U"10.30 x", 1, value(37800, 5)},
      {hms, U"%H.%M", U"AM", U"PM", U"9.30", 1, refused_value},
      {hms, U"%H.%M", U"AM", U"PM", U"10:30:15 trailing", 0, value(37815, 8)},
      {hms, U"%H.%M", U"AM", U"PM", U" 10:30:15", 2, value(37815, 9)},
      {hms, U"%H.%M", U"AM", U"PM", U"9:5:1", 2, refused_value},
      {hms, U"%H.%M", U"AM", U"PM", U"9:5:1", 5, value(32701, 5)},
      {U"%H:%M:%S.%s", never, U"AM", U"PM", U"01:02:03.456", 0, value(3723.456, 12)},
      {dial, never, U"AM", U"PM", U"01:00:00 PM", 0, value(46800, 11)},
      {dial, never, U"AM", U"PM", U"01:00:00 PM", 8, value(3600, 11)},  // read leniently, the marker is not applied
      {U"%H %p", never, U"AM", U"PM", U"13 PM", 0, value(90000, 5)},    // strictly, 12 is added to whatever stands
      {U"", never, U"AM", U"PM", U"x", 0, value(0, 0)},
      {U"", never, U"AM", U"PM", U"", 0, value(0, 0)},
      {hms, never, U"AM", U"PM", U"", 0, refused_value},
      {hms, never, U"AM", U"PM", U"  ", 4, refused_value},
  };
  for (const TimeCase& c : cases) expect(c);
}

TEST(ParseTime, CandidatesAndMarkers) {
  static constexpr TimeCase cases[] = {
      {hms, never, U"AM", U"PM", U"10:30", 4, value(37800, 5)},
      {hms, never, U"AM", U"PM", U"10:30:  ", 4, value(37800, 6)},
      {never, never, U"AM", U"PM", U" 10:30:15Z", 4, value(37815, 10)},
      {never, never, U"AM", U"PM", U"10:30:15z", 4, value(37815, 9)},
      {never, never, U"AM", U"PM", U"10:30", 4, refused_value},
      {hms, never, U"AM", U"PM", U"10:30:15 trailing", 4, refused_value},
      {hms, never, U"AM", U"PM", U"24:00:00", 4, refused_value},
      // Markers of a candidate with "%p".
      {dial, never, U"AM", U"PM", U"12:05:00 am", 4, value(300, 11)},
      {dial, never, U"AM", U"PM", U"12:05 am", 4, value(300, 8)},
      {dial, never, U"AM", U"PM", U"12:05: am", 4, value(300, 9)},
      {dial, never, U"AM", U"PM", U"12:05pm  ", 4, value(43500, 7)},
      {dial, never, U"AM", U"PM", U"11:59 PM", 4, value(86340, 8)},
      {dial, never, U"AM", U"PM", U"1:00 pm", 4, value(46800, 7)},
      {dial, never, U"AM", U"PM", U"00:05 pm", 4, refused_value},
      {dial, never, U"AM", U"PM", U"00:05 am", 4, value(300, 8)},
      {dial, never, U"AM", U"PM", U"13:00 pm", 4, refused_value},
      {dial, never, U"AM", U"PM", U"13:00 am", 4, refused_value},
      {dial, never, U"AM", U"PM", U"13:00", 4, value(46800, 5)},      // the copy without "%p" keeps hours up to 23
      {U"%H %#p", never, U"AM", U"PM", U"01 PM", 4, value(3600, 5)},  // "%#p" is not "%p"
      // "%p" before the minutes: one copy loses all from the minutes to the seconds, the other the seconds only.
      {front, never, U"AM", U"PM", U"pm 1:05", 4, value(47100, 7)},
      {front, never, U"AM", U"PM", U"pm 1:05:", 4, value(47100, 8)},
      {U"%p %I:%M:%S Uhr", never, U"AM", U"PM", U"pm 1:05 uhr", 4, value(47100, 11)},
      {U"%p %I:%M:%S Uhr", never, U"AM", U"PM", U"pm 1:05:uhr", 4, value(47100, 11)},
      {U"%p %S-%M %H", never, U"AM", U"PM", U"am -5 3", 4, value(11100, 7)},  // seconds first: both copies drop "%S"
      // The pattern of kind 1 is cut after "%M" or "%#M", and before "%S".
      {never, U"%H.%M.%S", U"AM", U"PM", U"10.30", 4, value(37800, 5)},
      {never, U"%H.%M.%S", U"AM", U"PM", U"10.30.", 4, value(37800, 6)},
      {never, U"%H-%#M %S", U"AM", U"PM", U"10-3", 4, value(36180, 4)},
      {U"%H-%#M %S", never, U"AM", U"PM", U"10-3", 4, refused_value},       // the main pattern only after "%M"
      {never, U"%I.%M.%S %p", U"AM", U"PM", U"1.30 pm", 4, refused_value},  // and no marker is kept there
      // An empty marker is found in the nothing that follows the text.
      {hms, never, U"", U"PM", U"12:05", 4, value(300, 5)},
      {hms, never, U"", U"PM", U"13:05", 4, refused_value},
      {hms, never, U"AM", U"", U"1:05", 4, value(47100, 4)},
      {hms, never, U"AM", U"", U"00:05", 4, refused_value},
      {hms, never, U"", U"", U"12:05", 4, value(300, 5)},
      {hms, never, U"AM", U"PM", U"12:05", 4, value(43500, 5)},
      // Patterns cut to nothing match nothing but nothing.
      {U"%S%M", never, U"AM", U"PM", U"", 4, value(0, 0)},
  };
  for (const TimeCase& c : cases) expect(c);
}

// Copies of a pattern of full length do not outgrow it; one that ends in "%" matches nothing.
TEST(ParseTime, LongestPattern) {
  const std::u32string filler(51, U'x');
  for (const size_t n : {51u, 50u, 49u, 48u}) {
    const std::u32string main = std::u32string(filler, 0, n) + U"%H:%M%S%p";
    const std::u32string text = std::u32string(filler, 0, n) + U"1:05 pm";
    PlainLocale locale;
    set_name(locale.data.timePattern, main.substr(0, 60));
    const bool fits = n + 8 <= 60;
    EXPECT_EQ(read_time(locale.get(), text, 4), fits ? value(47100, static_cast<int64_t>(text.size())) : refused_value)
        << n;
  }
  // Cut before the seconds, 58 units and " %p" are one too many: what is left ends in "%".
  PlainLocale locale;
  const std::u32string front(54, U'x');
  set_name(locale.data.timePattern, front + U"%M%p%S");
  EXPECT_EQ(read_time(locale.get(), front + U"05am am", 4), refused_value);
  EXPECT_EQ(read_time(locale.get(), front + U"05am", 4), value(300, 58));
}

TEST(ParseTime, HostileLengthsAndNulls) {
  PlainLocale locale;
  double seconds = -1;
  int64_t consumed = -1;
  EXPECT_EQ(NLSBufToTime(locale.get(), nullptr, INT64_MIN, 4, &seconds, &consumed), VX_E_NOMATCH);
  EXPECT_EQ(NLSBufToDatetimeU(locale.get(), nullptr, -1, 0, &seconds, &consumed), VX_E_NOMATCH);
  EXPECT_EQ(NLSBufToTimeU(locale.get(), nullptr, 0, 4, &seconds, &consumed), VX_E_NOMATCH);  // empty, not missing
  const VXChar units[] = {'5'};
  const uint8_t bytes[] = {'5'};
  const auto refuse_nulls = [&](auto* text, auto date, auto time, auto datetime) {
    uint32_t month = 0, day = 0, year = 0;
    VX_EXPECT_NULLS_REFUSED(date, locale.get(), text, 1, 4u, &month, &day, &year, &consumed);
    VX_EXPECT_NULLS_REFUSED(time, locale.get(), text, 1, 4u, &seconds, &consumed);
    VX_EXPECT_NULLS_REFUSED(datetime, locale.get(), text, 1, 4u, &seconds, &consumed);
  };
  refuse_nulls(units, NLSBufToDate, NLSBufToTime, NLSBufToDatetime);
  refuse_nulls(bytes, NLSBufToDateU, NLSBufToTimeU, NLSBufToDatetimeU);
  EXPECT_EQ(seconds + static_cast<double>(consumed), -2);
}

/// Seconds from 1960-01-01.
constexpr double at(int year, unsigned month, unsigned day, double seconds) {
  using namespace std::chrono;
  const auto epoch = sys_days(std::chrono::year(1960) / 1 / 1);
  return static_cast<double>(
             (sys_days(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day)) - epoch).count()) *
             86400 +
         seconds;
}

TEST(ParseDatetime, ByPatternAndByParts) {
  PlainLocale locale;
  set_name(locale.data.datetimePattern, U"%Y%m%d-%H%M%S.%s");
  static constexpr struct {
    uint32_t kind;
    const char32_t* text;
    ValueRead wanted;
  } cases[] = {
      {0, U"20210304-102030.250 rest", value(at(2021, 3, 4, 37230.25), 19)},
      {0, U" 19590304-000000.000", value(at(1959, 3, 4, 0), 20)},
      {0, U"20210231-102030.250", refused_value},  // the pattern matched: no other form is asked
      {0, U"03/04/2021 12:20:30 PM", value(at(2021, 3, 4, 44430), 22)},
      {0, U"03/04/2021 01:20:30 PM", refused_value},  // the strict reader added 12, and 13 PM is refused
      {0, U"3/4/2021 10:20:30 AM", refused_value},
      {8, U"3/4/2021 10:20:30 AM", value(at(2021, 3, 4, 37230), 20)},
      {4, U"2021-03-04T10:20:30", value(at(2021, 3, 4, 37230), 19)},
      {4, U"2021-03-04T, - 10:20:30 ", value(at(2021, 3, 4, 37230), 23)},
      {4, U"2021-03-04\u00A0\u2014\u300010:20:30", value(at(2021, 3, 4, 37230), 21)},
      {4, U"2021-03-04TT10:20:30", refused_value},
      {4, U"2021-03-04 T10:20:30", refused_value},
      {4, U"2021-03-04t10:20:30", refused_value},
      {4, U"2021-03-0410:20:30", refused_value},
      {4, U"20210304-102030.250", refused_value},  // bit 4 does not ask the datetime pattern
      {4, U"mar 4 2021 1:20 pm", value(at(2021, 3, 4, 48000), 18)},
      {4, U"12/31/99 0:00:00", value(at(1999, 12, 31, 0), 16)},
      {12, U"12/31/9999 23:59:59", value(at(9999, 12, 31, 86399) - 2 * 86400, 19)},  // 4000 and 8000 are common years
      {4, U"2021-03-04", refused_value},
      {4, U"2021-03-04 x", refused_value},
      {4, U"2021-02-29 10:20:30", refused_value},
      {4, U"10:20:30", refused_value},
      {4, U"", refused_value},
  };
  for (const auto& c : cases) EXPECT_EQ(read_datetime(locale.get(), c.text, c.kind), c.wanted) << utf8(c.text);
  // A date alone is a datetime only where an empty time pattern is tried.
  set_name(locale.data.timePattern, U"");
  EXPECT_EQ(read_datetime(locale.get(), U"2021-03-04 ", 4), value(at(2021, 3, 4, 0), 11));
  // Without a year, the year is 2000.
  set_name(locale.data.datetimePattern, U"%d.%m");
  EXPECT_EQ(read_datetime(locale.get(), U"29.02", 0), value(at(2000, 2, 29, 0), 5));
}

TEST(ParseDatetime, ResultsAreInTheZoneOfTheLocale) {
  ZonedLocale locale;
  set_name(locale.data.datetimePattern, U"%Y-%m-%d %H:%M:%S %Z");
  set_name(locale.data.timePattern, U"%H:%M:%S %z");
  locale.use(U"Zone/West");
  static constexpr struct {
    uint32_t kind;
    const char32_t* text;
    double wanted;
  } cases[] = {
      {4, U"2021-03-04, 10:20:30 +0100", at(2021, 3, 4, 37230 - 3600 - 19800)},
      {4, U"2021-03-04, 10:20:30 -02", at(2021, 3, 4, 37230 + 7200 - 19800)},
      {4, U"2021-03-04, 10:20:30Z", at(2021, 3, 4, 37230)},  // a "Z" that is a literal says nothing
      {0, U"2021-03-04 10:20:30 Zone/East", at(2021, 3, 4, 37230 - 7200 - 19800)},
      {0, U"2021-03-04 10:20:30 XST", at(2021, 3, 4, 37230)},
      {0, U"2021-03-04 10:20:30 Zone/West ", at(2021, 3, 4, 37230)},
      // The offset of a zone is that of the local time in it: 1 hour before 1960, 2 hours from then on.
      {0, U"1960-01-01 00:00:00 Zone/Summer", at(1960, 1, 1, -7200 - 19800)},
      {0, U"1959-12-31 23:59:59 Zone/Summer", at(1960, 1, 1, -1 - 3600 - 19800)},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(read_datetime(locale.get(), c.text, c.kind).value, c.wanted) << utf8(c.text);
  }
  // The locale's own offset is that of the moment in UTC.
  locale.use(U"Zone/Summer");
  EXPECT_EQ(read_datetime(locale.get(), U"1960-01-01 02:00:00 Zone/East", 0).value, at(1960, 1, 1, 7200));
  EXPECT_EQ(read_datetime(locale.get(), U"1960-01-01 01:59:59 Zone/East", 0).value, at(1960, 1, 1, -1 + 3600));
  EXPECT_EQ(read_datetime(locale.get(), U"1960-01-01 01:59:59 +02:00", 4).value, at(1960, 1, 1, 3599));
  // A zone and an offset: the zone counts.
  set_name(locale.data.datetimePattern, U"%Y-%m-%d %H:%M:%S %z, %Z");
  EXPECT_EQ(read_datetime(locale.get(), U"1970-01-01 12:00:00 -01:00, Zone/East", 0).value, at(1970, 1, 1, 43200));
}

}  // namespace

}  // namespace vxtest
