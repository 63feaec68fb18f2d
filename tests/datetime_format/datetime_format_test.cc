// Dates, times and datetimes written by patterns, names and zones of every kind. tests/datetime_parse has all patterns
// of one and two directives, and of three numbers with every character between them.
#include <vector>

#include "tests/datetime_format/writer.h"
#include "tests/support/null_arguments.h"

namespace vxtest {

namespace {

constexpr double day = 86400;

class DatetimeFormat : public testing::Test, protected Writer {
 protected:
  DatetimeFormat() : Writer{record} {}

  /// A zone service that answers what is set here, and keeps what it was asked.
  static VXStatus describe(VXZoneService*, VXZone* zone, int32_t direction, double seconds, VXChar* out,
                           int64_t* length, int32_t* seconds_east) {
    auto& test = *reinterpret_cast<DatetimeFormat*>(zone);
    EXPECT_EQ(direction, VX_ZONE_FROM_LOCAL);
    EXPECT_EQ(*length, 50);
    test.asked.push_back(seconds);
    if (test.failing) return 0x803fe83c;
    std::copy(test.zone.begin(), test.zone.end(), out);
    *length = test.length_told.value_or(static_cast<int64_t>(test.zone.size()));
    *seconds_east = test.offset;
    return 0;
  }
  void use_zone() {
    static const VXZoneServiceOps ops = {nullptr, nullptr, nullptr, describe};
    plain.zones.ops = &ops;
    plain.context.zones = &plain.zones;
    plain.locale.timeZone = reinterpret_cast<VXZone*>(this);  // opaque to the library
  }

  PlainLocale record;
  std::optional<int64_t> length_told;
  bool failing = false;
  std::vector<double> asked;
};

// Patterns of plain numbers have a road of their own, where they are short and there is room.
TEST_F(DatetimeFormat, PlainNumbersOfEveryLengthWithAFaultAtEveryPlace) {
  set_name(plain.data.dayNames[6], U"Sábado");
  constexpr std::u32string_view numbers = U"%Y-%m.%d%H%M:%S";
  for (size_t length = 0; length <= 60 && !HasFailure(); ++length) {
    std::u32string whole;
    while (whole.size() < length) whole += numbers[(whole.size() + length) % numbers.size()];
    for (size_t place = 0; place <= length; ++place) {
      for (const char32_t fault : U"A% #?é\x80") {
        std::u32string pattern = whole;
        if (place < length) pattern[place] = fault;
        set_name(plain.data.datetimePattern, pattern);
        const double value = 20089 * day + 36000 + 300 + 9;
        expect_expanded(datetime(value), false, value, pattern);
      }
    }
  }
}

TEST_F(DatetimeFormat, Datetimes) {
  static const struct {
    double value;
    const char32_t *pattern, *text;
    VXStatus status = 0;
  } cases[] = {
      {-11928470400, U"%Y-%m-%d %a %w %F", U"1582-01-01 Fri 5 Friday"},  // the first nine days index the tables truly
      {745154 * day, U"%Y-%m-%d", U"4000-03-01"},
      {569318630399, U"%Y-%m-%d %H:%M:%S", U"0000-12-31 23:59:59"},  // the last four digits of 20000
      {0, U"%K %H %I %L %p", U"24 24 12 12 PM"},                     // 24 stays
      {0, U"%H %K %#l", U"00 24 12"},
      {86399.9999999, U"%d %H:%M:%S", U"02 23:59:59"},  // the day is rounded, the time is not
      {-1e-9, U"%d %H:%M:%S", U"01 00:00:00"},
      {0, U"%m/%d  \u00A0  ", U"01/01  \u00A0"},  // only U+0020 is a trailing blank
      {std::nan(""), U"%1", U"", VX_E_MISSING},   // before the pattern, and that before room
      {-11928470400.5, U"%Y", U"", VX_E_RANGE},
      {569318630400, U"%Y", U"", VX_E_RANGE},
      {0, U"a long text, then %J", U"", VX_E_DIRECTIVE},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << utf8(c.pattern) << " of " << c.value);
    for (NLSName* const each : {&plain.data.datetimePattern, &plain.data.timePattern}) set_name(*each, c.pattern);
    expect(datetime(c.value), c.text, c.status);
    expect(time(0, c.value), c.text, c.status);
  }
}

TEST_F(DatetimeFormat, Dates) {
  constexpr std::u32string_view pattern = U"%A %#d %B %Y";
  set_name(plain.data.datePattern, pattern);
  for (const uint32_t year : {0u, 49u, 50u, 99u, 100u, 1581u, 1582u, 1900u, 2000u, 2023u, 0x7FFFFFFFu})
    for (const uint32_t month : {0u, 1u, 2u, 4u, 12u, 13u, 0xFFFFFFFFu})
      for (const uint32_t of_month : {0u, 1u, 28u, 29u, 30u, 31u, 32u, 0x80000001u}) {
        SCOPED_TRACE(testing::Message() << month << "/" << of_month << "/" << year);
        const auto whole_year = static_cast<int>(year < 50 ? year + 2000 : year < 100 ? year + 1900 : year);
        const auto ymd = std::chrono::year{whole_year % 9999} / static_cast<int>(month) / static_cast<int>(of_month);
        const bool exists = whole_year >= 1582 && whole_year < 4000 && month < 13 && of_month < 32 && ymd.ok();
        if (!exists) {
          expect(date(month, of_month, year), U"", VX_E_RANGE);
          continue;
        }
        const auto days = (std::chrono::sys_days{ymd} - std::chrono::sys_days{std::chrono::year{1960} / 1 / 1}).count();
        expect_expanded(date(month, of_month, year), true, static_cast<double>(days) * day, pattern);
      }
  expect(date(1, 1, 20001), U"", VX_E_RANGE);
  set_name(plain.data.datePattern1, U"%y");
  expect(date(12, 31, 12345, 1), U"2345");  // of five digits the last four
  set_name(plain.data.datePattern2, U"2");
  for (const int32_t style : {-1, 1, 2, 3}) {
    expect(date(12, 31, 20000, style), style == 1 ? U"0000" : style == 2 ? U"2" : U"Tuesday 31 December 0000");
  }
}

TEST_F(DatetimeFormat, NullPointers) {
  VXChar unit;
  uint8_t byte;
  int64_t length = -77;
  VX_EXPECT_NULLS_REFUSED(NLSDateFormat, plain.get(), 1u, 1u, 2000u, 0, &unit, 1, &length);
  VX_EXPECT_NULLS_REFUSED(NLSDateFormatU, plain.get(), 1u, 1u, 2000u, 0, &byte, 1, &length);
  VX_EXPECT_NULLS_REFUSED(NLSTimeFormat, plain.get(), 0, &unit, 1, &length, 0);
  VX_EXPECT_NULLS_REFUSED(NLSTimeFormatU, plain.get(), 0, &byte, 1, &length, 0);
  VX_EXPECT_NULLS_REFUSED(NLSDatetimeFormat, plain.get(), 0u, &unit, 1, &length, 0);
  VX_EXPECT_NULLS_REFUSED(NLSDatetimeFormatU, plain.get(), 0u, &byte, 1, &length, 0);
  EXPECT_EQ(length, -77);
  EXPECT_EQ(NLSDatetimeFormat(plain.get(), 0, nullptr, 0, &length, 0), VX_E_TRUNCATED);
}

TEST_F(DatetimeFormat, ZoneNamesAndOffsets) {
  set_name(plain.data.timePattern, U"%Z%z");
  expect(time(0, 0), U"XST+0000");
  use_zone();
  const std::u32string fifty(50, U'z');  // as many as there is room for
  const struct {
    std::u32string zone;
    std::optional<int64_t> length_told;
    std::u32string text;
    int32_t offset;
    bool failing = false;
  } cases[] = {
      {U"", {}, U"XST-0000", -1},       {fifty, {}, fifty + U"-0530", -19800}, {fifty, 51, fifty + U"+0545", 20700},
      {fifty, -1, U"XST+9959", 359999}, {fifty, {}, fifty + U"+0000", 360000}, {U"A", {}, U"A+2314", INT32_MAX},
      {U"A", {}, U"A-2314", INT32_MIN}, {U"A", {}, U"XST+0000", 3600, true}};
  for (const auto& c : cases) {
    zone = c.zone, length_told = c.length_told, offset = c.offset, failing = c.failing;
    expect(time(0, 0), c.text);
  }
  failing = false;
  // In UTF-8 a unit of the name is its low eight bits.
  zone = U"\u00C5\u013A\u0421!";
  set_name(plain.data.timePattern, U"%Z");
  expect_units<VXChar>(time(0, 0), zone);
  expect_units<uint8_t>(time(0, 0), zone);
  // A zone is asked once a directive, at the value.
  set_name(plain.data.datePattern, U"%Z %d %?Z");
  set_name(plain.data.timePattern, U"%H");
  set_name(plain.data.timePattern1, U"%z");
  asked.clear();
  VXChar out[80];
  int64_t length;
  date(1, 2, 1960)(out, 80, &length);
  time(0, 45296.5)(out, 80, &length);
  time(1, 45296.5)(out, 80, &length);
  EXPECT_EQ(asked, (std::vector<double>{day, day, 45296.5}));
}

// The scratch holds 512 units. The zone's name stays below its end or gives way to XST. In UTF-8 a pattern or name
// counts up to 180 bytes, whole characters only; UTF-32 has them all.
TEST_F(DatetimeFormat, LongTexts) {
  use_zone();
  zone = U"0123456789";
  const auto m = [](size_t count) { return std::u32string(count, U'm'); };
  const auto faces = [](size_t count) { return std::u32string(count, U'😀'); };
  const std::u32string b8 = U"%B%B%B%B%B%B%B%B";
  const struct {
    std::u32string month, pattern, text;
    VXStatus status = 0, status_in_utf8 = status;
    std::u32string in_utf8 = text;
  } cases[] = {
      {m(60), b8 + m(32), m(512)},
      {m(60), b8 + m(33), m(512), VX_E_TRUNCATED},
      {m(60), b8 + b8 + b8, m(512), VX_E_TRUNCATED},
      {m(60), b8 + m(30) + U"%d", m(510) + U"01"},
      {m(60), b8 + m(31) + U"%d", m(511) + U"0", VX_E_TRUNCATED},
      {m(60), b8 + std::u32string(33, U' ') + U"%d", m(480), VX_E_TRUNCATED},  // blanks are dropped after the cut
      {m(60), b8 + m(21) + U"%Z", m(501) + U"0123456789"},
      {m(60), b8 + m(22) + U"%Z", m(502) + U"XST"},
      {m(60), b8 + b8 + U"%J", U"", VX_E_DIRECTIVE},  // refused all the same
      {faces(60), U"%B.", faces(60) + U".", 0, 0, faces(45) + U"."},
      {U"é" + faces(59), U"%B.", U"é" + faces(59) + U".", 0, 0, U"é" + faces(44) + U"."},
      {U"", faces(60), faces(60), 0, 0, faces(45)},
      // The cut can leave a directive without its letter.
      {U"", U"123" + faces(44) + U"%d", U"123" + faces(44) + U"01", 0, VX_E_DIRECTIVE, U""},
  };
  for (const auto& c : cases) {
    set_name(plain.data.monthNames[0], c.month);
    set_name(plain.data.datePattern, c.pattern);
    expect_units<VXChar>(date(1, 1, 2000), c.text, c.status);
    expect_units<uint8_t>(date(1, 1, 2000), utf8(c.in_utf8), c.status_in_utf8);
  }
}

}  // namespace

}  // namespace vxtest
