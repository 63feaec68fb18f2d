// Dates, times and datetimes written in both flavours, up against untouchable pages, in rooms of every kind.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <vector>

#include "tests/datetime_format/expander.h"
#include "tests/support/guard_page.h"
#include "tests/support/null_arguments.h"
#include "tests/support/plain_locale.h"

namespace vxtest {

namespace {

constexpr double day = 86400;

class DatetimeFormat : public testing::Test {
 protected:
  /// A zone service that answers what is set here, and keeps what it was asked.
  static VXStatus describe(VXZoneService*, VXZone* zone, int32_t direction, double seconds, VXChar* out,
                           int64_t* length, int32_t* seconds_east) {
    auto& test = *reinterpret_cast<DatetimeFormat*>(zone);
    EXPECT_EQ(direction, VX_ZONE_FROM_LOCAL);
    EXPECT_EQ(*length, 50);
    test.asked.push_back(seconds);
    if (test.failing) return 0x803fe83c;
    std::copy(test.name.begin(), test.name.end(), out);
    *length = test.length_told.value_or(static_cast<int64_t>(test.name.size()));
    *seconds_east = test.offset;
    return 0;
  }
  void use_zone() {
    static const VXZoneServiceOps ops = {nullptr, nullptr, nullptr, describe};
    plain.zones.ops = &ops;
    plain.context.zones = &plain.zones;
    plain.locale.timeZone = reinterpret_cast<VXZone*>(this);  // opaque to the library
  }

  auto date(uint32_t month, uint32_t of_month, uint32_t year, int32_t style = 0) {
    return [=, this](auto* b, int64_t n, int64_t* l) {
      if constexpr (sizeof *b == 1) return NLSDateFormatU(plain.get(), month, of_month, year, style, b, n, l);
      else return NLSDateFormat(plain.get(), month, of_month, year, style, b, n, l);
    };
  }
  auto time_by(int32_t flag, double value) {
    return [=, this](auto* b, int64_t n, int64_t* l) {
      if constexpr (sizeof *b == 1) return NLSTimeFormatU(plain.get(), flag, b, n, l, value);
      else return NLSTimeFormat(plain.get(), flag, b, n, l, value);
    };
  }
  auto datetime(double value) {
    return [=, this](auto* b, int64_t n, int64_t* l) {
      if constexpr (sizeof *b == 1) return NLSDatetimeFormatU(plain.get(), 99, b, n, l, value);
      else return NLSDatetimeFormat(plain.get(), 99, b, n, l, value);
    };
  }

  /// The whole text with its status where there is room, else its front; with another status nothing at all. Of its
  /// units the low bits that the flavour has count.
  template <class Unit>
  void expect_units(auto call, const auto& text, VXStatus status = 0) {
    static GuardedBuffer<Unit> memory(6000);
    const bool refused = status != 0 && status != VX_E_TRUNCATED;
    const auto size = static_cast<int64_t>(text.size());
    for (const int64_t capacity :
         {int64_t{-1}, int64_t{0}, int64_t{1}, size / 2, size - 1, size, size + 1, int64_t{48}, int64_t{5500}}) {
      const int64_t room = std::max<int64_t>(capacity, 0), expected = refused ? 0 : std::min(size, room);
      Unit* const out = memory.at(static_cast<size_t>(room));
      std::fill_n(out, room, Unit{0x55});
      int64_t length = -77;
      ASSERT_EQ(call(out, capacity, &length), expected < size ? VX_E_TRUNCATED : status) << capacity << " of " << size;
      ASSERT_EQ(length, refused ? -77 : expected);
      const auto is_same = [](Unit a, auto b) { return a == static_cast<Unit>(b); };
      ASSERT_TRUE(std::equal(out, out + expected, text.begin(), is_same)) << std::string(out, out + expected);
      ASSERT_EQ(std::count(out + expected, out + room, Unit{0x55}), room - expected);
    }
  }
  void expect(auto call, std::u32string_view text, VXStatus status = 0) {
    expect_units<VXChar>(call, text, status);
    expect_units<uint8_t>(call, utf8(text), status);
  }
  void expect_as_expanded(auto call, Expander expander, std::u32string_view pattern) {
    const auto text = expander.expand(pattern);
    expect(call, text.value_or(U""), text ? 0 : VX_E_DIRECTIVE);
  }
  Expander of_seconds(double value) { return Expander::of_seconds(plain.data, value, name, offset); }

  /// A pattern as that of dates, of times and of datetimes.
  void expect_everywhere(double value, std::u32string_view pattern) {
    SCOPED_TRACE(utf8(pattern) + " of " + std::to_string(value));
    for (NLSName* const each :
         {&plain.data.timePattern, &plain.data.timePattern1, &plain.data.datetimePattern, &plain.data.datePattern})
      set_name(*each, pattern);
    expect_as_expanded(time_by(0, value), of_seconds(value), pattern);
    expect_as_expanded(time_by(-1, value), of_seconds(value), pattern);
    expect_as_expanded(datetime(value), of_seconds(value), pattern);
    const Expander of_date(plain.data, of_seconds(value).ymd, name, offset);
    expect_as_expanded(date(static_cast<unsigned>(of_date.ymd.month()), static_cast<unsigned>(of_date.ymd.day()),
                            static_cast<uint32_t>(static_cast<int>(of_date.ymd.year()))),
                       of_date, pattern);
  }

  void use_names_beyond_ascii() {
    use_zone();
    set_name(plain.data.dayNames[6], U"Sábado");
    set_name(plain.data.monthNames[2], U"März");
    set_name(plain.data.altMonthNames[7], U"8月");
    set_name(plain.data.amMarker, U"𝐚𝐦");
    set_name(plain.data.pmMarker, U"م");
  }

  PlainLocale plain;
  std::u32string name = U"Europe/Berlin";
  std::optional<int64_t> length_told;
  int32_t offset = 3600;
  bool failing = false;
  std::vector<double> asked;
};

// Every directive with every modifier, in patterns of up to 14 pieces, and three numbers, which are written without a
// walk, with every character between them; over the days that the standard library's calendar has in common with this
// one. tests/datetime_parse has all patterns of one and two directives.
TEST_F(DatetimeFormat, RandomPatternsAndValues) {
  use_names_beyond_ascii();
  constexpr std::u32string_view literals[] = {U"%%", U"-", U" ", U"  ", U"年", U"😀"};
  constexpr std::u32string_view numbers[] = {U"%Y", U"%m", U"%d", U"%H", U"%M", U"%S"};
  constexpr std::u32string_view triples[] = {U"%d%m%Y", U"%m%d%Y", U"%Y%m%d", U"%H%M%S", U"%d%H%b"};
  constexpr std::u32string_view letters = U"AaBbCcDdEeFfHhIiKkLlMmNnOoPpSsUuWwYyZz", wrong = U"GJQRTVX1@[`{éŉſ\xFF?#";
  std::mt19937 random(7);
  const auto one_of = [&](const auto& from) { return from[random() % std::size(from)]; };
  for (unsigned round = 0; round < 32000 && !HasFailure(); ++round) {
    std::u32string pattern;
    const auto add_triple = [&](char32_t between) {
      pattern += one_of(triples);
      pattern.insert(pattern.size() - 2, 1, static_cast<char32_t>(random() % 0x90));
      pattern.insert(pattern.size() - 5, 1, between);
    };
    const auto pieces = random() % 14;
    if (round % 16 == 0) add_triple(round / 16 % 0x180);
    if (round % 32 == 0) pattern += static_cast<char32_t>(random() % 0x90), add_triple(U':');
    while (round % 16 != 0 && pattern.size() < 2 * pieces) {
      if (random() % 4 == 0) pattern += one_of(literals);
      else if (round % 2 == 0 && random() % 16 != 0) pattern += one_of(numbers);
      else
        pattern.append(one_of(std::array{U"%", U"%?", U"%#"})) += random() % 64 != 0 ? one_of(letters) : one_of(wrong);
    }
    if (random() % 16 == 0) pattern += one_of(std::array{U"%", U"%#", U"%?", U"%?#d", U"%##d"});
    const auto days = static_cast<int>(random() % 880000) - 138061;
    expect_everywhere(days * day + static_cast<double>(random() % 86400) + (random() % 2 != 0 ? 0.25 : 0), pattern);
  }
}

// Patterns of plain numbers have a road of their own, where they are short and there is room.
TEST_F(DatetimeFormat, PlainNumbersOfEveryLengthWithAFaultAtEveryPlace) {
  use_names_beyond_ascii();
  constexpr std::u32string_view numbers = U"%Y-%m.%d%H%M:%S";
  const double value = 20089 * day + 36000 + 300 + 9;
  for (size_t length = 0; length <= 60 && !HasFailure(); ++length) {
    std::u32string whole;
    while (whole.size() < length) whole += numbers[(whole.size() + length) % numbers.size()];
    for (size_t place = 0; place <= length; ++place) {
      for (const char32_t fault : U"A% #?é\x80") {
        std::u32string pattern = whole;
        if (place < length) pattern[place] = fault;
        set_name(plain.data.datetimePattern, pattern);
        expect_as_expanded(datetime(value), of_seconds(value), pattern);
      }
    }
  }
}

TEST_F(DatetimeFormat, ChosenPattern) {
  set_name(plain.data.datePattern, U"main");
  set_name(plain.data.datePattern1, U"one");
  set_name(plain.data.datePattern2, U"two");
  set_name(plain.data.timePattern, U"zero");
  set_name(plain.data.timePattern1, U"nonzero");
  set_name(plain.data.datetimePattern, U"both");
  for (const int32_t style : {0, 1, 2, 3, -1, INT32_MIN}) {
    expect(date(1, 1, 2000, style), style == 1 ? U"one" : style == 2 ? U"two" : U"main");
    expect(time_by(style, 0), style == 0 ? U"zero" : U"nonzero");
  }
  expect(datetime(0), U"both");
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
      {-HUGE_VAL, U"%Y", U"", VX_E_RANGE},
      {0, U"a long text, then %J", U"", VX_E_DIRECTIVE},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << utf8(c.pattern) << " of " << c.value);
    set_name(plain.data.datetimePattern, c.pattern);
    set_name(plain.data.timePattern, c.pattern);
    expect(datetime(c.value), c.text, c.status);
    expect(time_by(0, c.value), c.text, c.status);
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
        const auto day = std::chrono::year{whole_year % 9999} / static_cast<int>(month) / static_cast<int>(of_month);
        const bool exists = whole_year >= 1582 && whole_year < 4000 && month < 13 && of_month < 32 && day.ok();
        if (exists) expect_as_expanded(date(month, of_month, year), Expander(plain.data, day, name, offset), pattern);
        else expect(date(month, of_month, year), U"", VX_E_RANGE);
      }
  expect(date(12, 31, 20000), U"Tuesday 31 December 0000");
  expect(date(1, 1, 20001), U"", VX_E_RANGE);
}

TEST_F(DatetimeFormat, NullPointers) {
  VXChar unit;
  uint8_t byte;
  int64_t length = -77;
  VX_EXPECT_NULLS_REFUSED(NLSDateFormatU, plain.get(), 1u, 1u, 2000u, 0, &byte, 1, &length);
  VX_EXPECT_NULLS_REFUSED(NLSTimeFormat, plain.get(), 0, &unit, 1, &length, 0);
  VX_EXPECT_NULLS_REFUSED(NLSDatetimeFormat, plain.get(), 0u, &unit, 1, &length, 0);
  EXPECT_EQ(length, -77);
  EXPECT_EQ(NLSDatetimeFormat(plain.get(), 0, nullptr, 0, &length, 0), VX_E_TRUNCATED);
}

TEST_F(DatetimeFormat, ZoneNamesAndOffsets) {
  constexpr std::u32string_view both = U"%Z%z";
  set_name(plain.data.timePattern, both);
  expect(time_by(0, 0), U"XST+0000");
  use_zone();
  for (const int32_t seconds : {0, -1, 59, -19800, 20700, 50400, -43200, 359999, 360000, INT32_MAX, -INT32_MAX}) {
    offset = seconds;
    expect_as_expanded(time_by(0, 0), of_seconds(0), both);
  }
  const std::u32string fifty(50, U'z');
  const auto expect_name = [&](std::u32string_view given, std::optional<int64_t> told, std::u32string_view shown) {
    name = given;
    length_told = told;
    expect(time_by(0, 0), std::u32string(shown) + U"-2314");
  };
  offset = INT32_MIN;
  expect_name(U"", {}, U"XST");
  expect_name(fifty, {}, fifty);
  expect_name(fifty, 51, fifty);  // more than there is room for
  expect_name(fifty, -1, U"XST");
  length_told.reset();
  failing = true;
  expect(time_by(0, 0), U"XST+0000");
  failing = false;
  // In UTF-8 a unit of the name is its low eight bits.
  name = U"\u00C5\u013A\u0421!";
  set_name(plain.data.timePattern, U"%Z");
  expect_units<VXChar>(time_by(0, 0), name);
  expect_units<uint8_t>(time_by(0, 0), name);
  // A zone is asked once a directive, at the value.
  set_name(plain.data.datePattern, U"%Z %z %d %?Z");
  set_name(plain.data.timePattern, U"%H");
  set_name(plain.data.timePattern1, U"%z");
  asked.clear();
  VXChar out[80];
  int64_t length;
  date(1, 2, 1960)(out, 80, &length);
  time_by(0, 45296.5)(out, 80, &length);
  time_by(1, 45296.5)(out, 80, &length);
  EXPECT_EQ(asked, (std::vector<double>{day, day, day, 45296.5}));
}

// The scratch holds 512 units. The zone's name stays below its end or gives way to XST.
TEST_F(DatetimeFormat, TextsBeyondTheScratch) {
  use_zone();
  name = U"0123456789";
  set_name(plain.data.monthNames[0], std::u32string(60, U'm'));
  static const struct {
    size_t names, more;  // of 60 units each, and units after them
    const char32_t* end;
    size_t units;
    const char32_t* tail;
    VXStatus status;
  } cases[] = {
      {8, 32, U"", 512, U"", 0},
      {8, 33, U"", 512, U"", VX_E_TRUNCATED},
      {30, 0, U"", 512, U"", VX_E_TRUNCATED},
      {8, 30, U"%d", 510, U"01", 0},
      {8, 31, U"%d", 511, U"0", VX_E_TRUNCATED},
      {8, 0, U"                                 %d", 480, U"", VX_E_TRUNCATED},  // blanks are dropped after the cut
      {8, 21, U"%Z", 501, U"0123456789", 0},
      {8, 22, U"%Z", 502, U"XST", 0},
      {10, 0, U"%J", 0, U"", VX_E_DIRECTIVE},  // refused all the same
  };
  for (const auto& c : cases) {
    std::u32string pattern;
    for (size_t i = 0; i < c.names; ++i) pattern += U"%B";
    set_name(plain.data.datePattern, pattern + std::u32string(c.more, U'm') + c.end);
    expect(date(1, 1, 2000), std::u32string(c.units, U'm') + c.tail, c.status);
  }
}

// In UTF-8 a pattern or name counts up to 180 bytes, whole characters only; UTF-32 has them all.
TEST_F(DatetimeFormat, LongTextsInUtf8) {
  const std::u32string sixty(60, U'😀'), counted(45, U'😀'), odd = U"é" + std::u32string(59, U'😀');
  const std::u32string cut = U"123" + std::u32string(44, U'😀');
  const struct {
    std::u32string month, pattern, units, in_utf8;
    VXStatus status = 0;
  } cases[] = {
      {sixty, U"%B.", sixty + U".", counted + U"."},
      {odd, U"%B.", odd + U".", odd.substr(0, 45) + U"."},
      {odd, sixty, sixty, counted},
      {odd, cut + U"%d", cut + U"01", U"", VX_E_DIRECTIVE},  // the cut can leave a directive without its letter
  };
  for (const auto& c : cases) {
    set_name(plain.data.monthNames[0], c.month);
    set_name(plain.data.datePattern, c.pattern);
    expect_units<VXChar>(date(1, 1, 2000), c.units);
    expect_units<uint8_t>(date(1, 1, 2000), utf8(c.in_utf8), c.status);
  }
}

}  // namespace

}  // namespace vxtest
