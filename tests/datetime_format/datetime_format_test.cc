#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "tests/datetime_format/expander.h"
#include "tests/support/guard_page.h"
#include "tests/support/null_arguments.h"
#include "tests/support/plain_locale.h"

namespace {

using vxtest::Expander;
using vxtest::GuardedBuffer;
using vxtest::PlainLocale;
using vxtest::set_name;
using vxtest::utf8;

constexpr double day = 86400;

/// The zone service of these tests: what it answers can be set, what it was asked is kept.
struct AnsweringZone {
  explicit AnsweringZone(PlainLocale& plain) {
    static const VXZoneServiceOps ops = {nullptr, nullptr, nullptr, &describe};
    plain.zones.ops = &ops;
    plain.context.zones = &plain.zones;
    plain.locale.timeZone = reinterpret_cast<VXZone*>(&name);  // opaque to the library
    name = U"Europe/Berlin";
    offset = 3600;
    failing = false;
    length_told.reset();
    asked.clear();
  }
  static VXStatus describe(VXZoneService*, VXZone*, int32_t direction, double seconds, VXChar* out, int64_t* length,
                           int32_t* seconds_east) {
    EXPECT_EQ(direction, VX_ZONE_FROM_LOCAL);
    EXPECT_EQ(*length, 50);
    asked.push_back(seconds);
    if (failing) return 0x803fe83c;
    for (size_t i = 0; i < name.size() && i < 50; ++i) out[i] = name[i];
    *length = length_told.value_or(static_cast<int64_t>(name.size()));
    *seconds_east = offset;
    return 0;
  }
  static inline std::u32string name;
  static inline std::optional<int64_t> length_told;
  static inline int32_t offset;
  static inline bool failing;
  static inline std::vector<double> asked;
};

/// One call in both flavours.
struct Call {
  std::function<VXStatus(VXChar*, int64_t, int64_t*)> units;
  std::function<VXStatus(uint8_t*, int64_t, int64_t*)> bytes;
};

Call datetime(PlainLocale& plain, double value) {
  return {
      [&plain, value](VXChar* b, int64_t n, int64_t* l) { return NLSDatetimeFormat(plain.get(), 99, b, n, l, value); },
      [&plain, value](uint8_t* b, int64_t n, int64_t* l) {
        return NLSDatetimeFormatU(plain.get(), 99, b, n, l, value);
      }};
}

Call time_by(PlainLocale& plain, int32_t flag, double value) {
  return {[=, &plain](VXChar* b, int64_t n, int64_t* l) { return NLSTimeFormat(plain.get(), flag, b, n, l, value); },
          [=, &plain](uint8_t* b, int64_t n, int64_t* l) { return NLSTimeFormatU(plain.get(), flag, b, n, l, value); }};
}

Call date(PlainLocale& plain, uint32_t month, uint32_t of_month, uint32_t year, int32_t style = 0) {
  return {[=, &plain](VXChar* b, int64_t n, int64_t* l) {
            return NLSDateFormat(plain.get(), month, of_month, year, style, b, n, l);
          },
          [=, &plain](uint8_t* b, int64_t n, int64_t* l) {
            return NLSDateFormatU(plain.get(), month, of_month, year, style, b, n, l);
          }};
}

template <class Unit>
void expect_text(const std::function<VXStatus(Unit*, int64_t, int64_t*)>& call, const std::basic_string<Unit>& text,
                 VXStatus with_room = 0) {
  static GuardedBuffer<Unit> memory(6000);
  const auto size = static_cast<int64_t>(text.size());
  for (const int64_t capacity :
       {int64_t{-1}, int64_t{0}, int64_t{1}, size / 2, size - 1, size, size + 1, int64_t{48}, int64_t{5500}}) {
    const int64_t room = std::max<int64_t>(capacity, 0);
    Unit* const out = memory.at(static_cast<size_t>(room));
    std::fill_n(out, room, Unit{0x55});
    int64_t length = -1;
    const VXStatus status = call(out, capacity, &length);
    const int64_t expected = std::min(size, room);
    ASSERT_EQ(status, expected < size ? VX_E_TRUNCATED : with_room) << "capacity " << capacity << " of " << size;
    ASSERT_EQ(length, expected);
    ASSERT_EQ((std::basic_string<Unit>(out, out + length)), text.substr(0, static_cast<size_t>(expected)));
    for (int64_t i = length; i < room; ++i) ASSERT_EQ(out[i], Unit{0x55}) << i;
  }
}

template <class Unit, class Text>
std::basic_string<Unit> as(const Text& text) {
  return {text.begin(), text.end()};
}

void expect_in_both_flavours(const Call& call, const std::u32string& text) {
  expect_text<VXChar>(call.units, as<VXChar>(text));
  expect_text<uint8_t>(call.bytes, as<uint8_t>(utf8(text)));
}

void expect_refused(const Call& call, VXStatus status) {
  for (const int64_t capacity : {8, 64}) {
    std::vector<VXChar> units(64, 0x55);
    std::vector<uint8_t> bytes(64, 0x55);
    int64_t length = -77;
    EXPECT_EQ(call.units(units.data(), capacity, &length), status);
    EXPECT_EQ(length, -77);
    EXPECT_EQ(call.bytes(bytes.data(), capacity, &length), status);
    EXPECT_EQ(length, -77);
    EXPECT_EQ(units, std::vector<VXChar>(64, 0x55));
    EXPECT_EQ(bytes, std::vector<uint8_t>(64, 0x55));
  }
}

void expect_as_expanded(const Call& call, Expander expander, std::u32string_view pattern) {
  SCOPED_TRACE(utf8(pattern));
  if (const auto text = expander.expand(pattern)) {
    expect_in_both_flavours(call, *text);
  } else {
    expect_refused(call, VX_E_DIRECTIVE);
  }
}

Expander of_seconds(const PlainLocale& plain, double value) {
  return Expander::of_seconds(plain.data, value, AnsweringZone::name, AnsweringZone::offset);
}

PlainLocale& accented() {
  static PlainLocale plain;
  set_name(plain.data.dayNames[6], U"Sábado");
  set_name(plain.data.monthNames[2], U"März");
  set_name(plain.data.altMonthNames[7], U"8月");
  set_name(plain.data.amMarker, U"𝐚𝐦");
  set_name(plain.data.pmMarker, U"م");
  return plain;
}

/// A pattern as that of dates, of times and of datetimes.
void expect_everywhere(PlainLocale& plain, double value, std::u32string_view pattern) {
  for (NLSName* name :
       {&plain.data.timePattern, &plain.data.timePattern1, &plain.data.datetimePattern, &plain.data.datePattern}) {
    set_name(*name, pattern);
  }
  const Expander expander = of_seconds(plain, value);
  expect_as_expanded(time_by(plain, 0, value), expander, pattern);
  expect_as_expanded(time_by(plain, -1, value), expander, pattern);
  expect_as_expanded(datetime(plain, value), expander, pattern);
  const auto at = std::chrono::sys_days{std::chrono::year{1960} / 1 / 1} +
                  std::chrono::days{static_cast<int>(std::floor(value / day))};
  const std::chrono::year_month_day ymd{at};
  expect_as_expanded(date(plain, static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()),
                          static_cast<uint32_t>(static_cast<int>(ymd.year()))),
                     Expander(plain.data, at, AnsweringZone::name, AnsweringZone::offset), pattern);
}

// Every directive with every modifier, in patterns of up to 14 pieces, over the days that the standard library's
// calendar has in common with this one, the first of which index the tables of names truly. tests/datetime_parse has
// all patterns of one and two directives.
TEST(DatetimeFormat, RandomPatternsAndValues) {
  PlainLocale& plain = accented();
  AnsweringZone zone(plain);
  constexpr std::u32string_view literals[] = {U"%%", U"-", U" ", U"  ", U"年", U"😀"};
  constexpr std::u32string_view two_digits[] = {U"%Y", U"%m", U"%d", U"%H", U"%M", U"%S"};
  constexpr std::u32string_view letters = U"AaBbCcDdEeFfHhIiKkLlMmNnOoPpSsUuWwYyZz", wrong = U"GJQRTVX1@[`{éŉſ\xFF";
  std::mt19937 random(7);
  const auto one_of = [&](const auto& from) { return from[random() % std::size(from)]; };
  for (int round = 0; round < 30000; ++round) {
    std::u32string pattern;
    const bool plain_numbers = random() % 2 == 0;
    for (auto n = random() % 14; n > 0; --n) {
      if (random() % 4 == 0) pattern += one_of(literals);
      else if (plain_numbers && random() % 16 != 0) pattern += one_of(two_digits);
      else pattern += std::u32string(one_of(std::array{U"%", U"%?", U"%#"})) + one_of(letters);
    }
    if (random() % 8 == 0) pattern += std::u32string(one_of(std::array{U"%", U"%#"})) + one_of(wrong);
    if (random() % 16 == 0) pattern += one_of(std::array{U"%", U"%#", U"%?"});
    const auto days = static_cast<int>(random() % 880000) - 138061;
    const double value = days * day + static_cast<double>(random() % 86400) + (random() % 2 != 0 ? 0.25 : 0);
    expect_everywhere(plain, value, pattern);
    if (HasFatalFailure() || HasNonfatalFailure()) FAIL() << value;
  }
}

// Patterns of plain numbers have a road of their own, where they are short and there is room.
TEST(DatetimeFormat, PlainNumbersOfEveryLengthWithAFaultAtEveryPlace) {
  PlainLocale& plain = accented();
  AnsweringZone zone(plain);
  constexpr std::u32string_view numbers = U"%Y-%m.%d%H%M:%S";
  const double value = 20089 * day + 36000 + 300 + 9;
  for (size_t length = 0; length <= 60; ++length) {
    std::u32string whole;
    while (whole.size() < length) whole += numbers[(whole.size() + length) % numbers.size()];
    for (size_t place = 0; place <= length; ++place) {
      for (const char32_t fault : U"A% #?é\x80") {
        std::u32string pattern = whole;
        if (place < length) pattern[place] = fault;
        set_name(plain.data.datetimePattern, pattern);
        expect_as_expanded(datetime(plain, value), of_seconds(plain, value), pattern);
        if (HasFailure()) return;
      }
    }
  }
}

// Patterns of three numbers are written without a walk, whatever stands between the numbers.
TEST(DatetimeFormat, ThreeNumbersWithEveryCharacterBetween) {
  PlainLocale& plain = accented();
  AnsweringZone zone(plain);
  std::mt19937 random(8);
  constexpr std::u32string_view triples[][3] = {{U"%d", U"%m", U"%Y"},
                                                {U"%m", U"%d", U"%Y"},
                                                {U"%Y", U"%m", U"%d"},
                                                {U"%H", U"%M", U"%S"},
                                                {U"%d", U"%H", U"%b"}};
  const auto any = [&] { return static_cast<char32_t>(random() % 8 != 0 ? random() % 0x90 : random()); };
  const auto of_triple = [&](const auto& triple, char32_t first) {
    return std::u32string(triple[0]) + first + std::u32string(triple[1]) + any() + std::u32string(triple[2]);
  };
  for (unsigned round = 0; round < 1500; ++round) {
    std::u32string pattern = of_triple(triples[random() % 5], round % 0x180);
    if (round % 2 != 0) pattern += any() + of_triple(triples[random() % 8 != 0 ? 3 : 0], any());
    const double value = static_cast<double>(static_cast<int>(random() % 880000) - 138061) * day +
                         static_cast<double>(random() % 86400) + 0.5;
    expect_everywhere(plain, value, pattern);
    if (HasFatalFailure() || HasNonfatalFailure()) FAIL() << value;
  }
}

TEST(DatetimeFormat, ChosenPattern) {
  PlainLocale plain;
  set_name(plain.data.datePattern, U"main");
  set_name(plain.data.datePattern1, U"one");
  set_name(plain.data.datePattern2, U"two");
  set_name(plain.data.timePattern, U"zero");
  set_name(plain.data.timePattern1, U"nonzero");
  set_name(plain.data.datetimePattern, U"both");
  for (const int32_t style : {0, 3, -1, INT32_MIN}) expect_in_both_flavours(date(plain, 1, 1, 2000, style), U"main");
  expect_in_both_flavours(date(plain, 1, 1, 2000, 1), U"one");
  expect_in_both_flavours(date(plain, 1, 1, 2000, 2), U"two");
  expect_in_both_flavours(time_by(plain, 0, 0), U"zero");
  for (const int32_t flag : {1, -1, INT32_MIN}) expect_in_both_flavours(time_by(plain, flag, 0), U"nonzero");
  expect_in_both_flavours(datetime(plain, 0), U"both");
  set_name(plain.data.datetimePattern, U"");
  expect_in_both_flavours(datetime(plain, 0), U"");
}

TEST(DatetimeFormat, WhatOnlyThisCalendarHas) {
  PlainLocale plain;
  static const struct {
    double value;
    const char32_t* pattern;
    const char32_t* text;
  } cases[] = {
      {-11928470400, U"%Y-%m-%d %a %w %F", U"1582-01-01 Fri 5 Friday"},  // the first nine days index the tables truly
      {-11928470400 + 8 * day, U"%Y-%m-%d %a %w %F", U"1582-01-09 Sat 6 Saturday"},
      {745153 * day, U"%Y-%m-%d", U"4000-02-28"},
      {745154 * day, U"%Y-%m-%d", U"4000-03-01"},
      {569318630399, U"%Y-%m-%d %H:%M:%S", U"0000-12-31 23:59:59"},  // the last four digits of 20000
      {569318630399, U"%#Y|", U"00|"},
      {16437 * day, U"%#Y|%Y", U"205|2005"},
      {0, U"%K %H %I %L %p", U"24 24 12 12 PM"},  // 24 stays
      {0, U"%H %K %#l", U"00 24 12"},
      {86399.9999999, U"%d %H:%M:%S", U"02 23:59:59"},  // the day is rounded, the time is not
      {-1e-9, U"%d %H:%M:%S", U"01 00:00:00"},
      {3 * day, U"%U %u %#U", U"7 7 7"},
      {0, U"%m/%d  \u00A0  ", U"01/01  \u00A0"},  // only U+0020 is a trailing blank
      {0, U"   ", U""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << utf8(c.pattern) << " of " << c.value);
    set_name(plain.data.datetimePattern, c.pattern);
    expect_in_both_flavours(datetime(plain, c.value), c.text);
  }
  set_name(plain.data.datePattern, U"%A %#d %B %Y");
  expect_in_both_flavours(date(plain, 1, 1, 1582), U"Friday 1 January 1582");
  expect_in_both_flavours(date(plain, 2, 29, 24), U"Thursday 29 February 2024");
  expect_in_both_flavours(date(plain, 12, 31, 50), U"Sunday 31 December 1950");
  expect_in_both_flavours(date(plain, 12, 31, 20000), U"Tuesday 31 December 0000");
}

TEST(DatetimeFormat, RefusedValues) {
  PlainLocale plain;
  constexpr double infinity = std::numeric_limits<double>::infinity();
  for (const double value : {std::nan(""), std::bit_cast<double>(uint64_t{0xFFFFFD0000000000})}) {
    expect_refused(datetime(plain, value), VX_E_MISSING);
    expect_refused(time_by(plain, 0, value), VX_E_MISSING);
  }
  for (const double value : {-11928470400.5, 569318630400.0, infinity, -infinity}) {
    expect_refused(datetime(plain, value), VX_E_RANGE);
    expect_refused(time_by(plain, 1, value), VX_E_RANGE);
  }
  static constexpr uint32_t dates[][3] = {
      {2, 30, 2024},      {2, 29, 2023},         {2, 29, 4000},         {0, 1, 2000}, {13, 1, 2000},
      {1, 0, 2000},       {1, 32, 2000},         {1, 1, 100},           {1, 1, 1581}, {1, 1, 20001},
      {1, 1, 0xFFFFFFFF}, {0xFFFFFFFF, 1, 2000}, {1, 0x80000001, 2000}, {2, 29, 1}};
  for (const auto& d : dates) {
    SCOPED_TRACE(testing::Message() << d[0] << "/" << d[1] << "/" << d[2]);
    expect_refused(date(plain, d[0], d[1], d[2]), VX_E_RANGE);
  }
  // A refused value comes before the pattern, and a bad directive before room.
  set_name(plain.data.datetimePattern, U"%1");
  expect_refused(datetime(plain, std::nan("")), VX_E_MISSING);
  set_name(plain.data.datetimePattern, U"a long text, then %J");
  expect_refused(datetime(plain, 0), VX_E_DIRECTIVE);
}

TEST(DatetimeFormat, NullPointers) {
  PlainLocale plain;
  VXChar unit;
  int64_t length = -77;
  uint8_t byte;
  VX_EXPECT_NULLS_REFUSED(NLSDateFormat, plain.get(), 1u, 1u, 2000u, 0, &unit, 1, &length);
  VX_EXPECT_NULLS_REFUSED(NLSDateFormatU, plain.get(), 1u, 1u, 2000u, 0, &byte, 1, &length);
  VX_EXPECT_NULLS_REFUSED(NLSTimeFormat, plain.get(), 0, &unit, 1, &length, 0);
  VX_EXPECT_NULLS_REFUSED(NLSTimeFormatU, plain.get(), 0, &byte, 1, &length, 0);
  VX_EXPECT_NULLS_REFUSED(NLSDatetimeFormat, plain.get(), 0u, &unit, 1, &length, 0);
  VX_EXPECT_NULLS_REFUSED(NLSDatetimeFormatU, plain.get(), 0u, &byte, 1, &length, 0);
  EXPECT_EQ(length, -77);
  EXPECT_EQ(NLSDatetimeFormat(plain.get(), 0, nullptr, 0, &length, 0), VX_E_TRUNCATED);
  EXPECT_EQ(length, 0);
}

TEST(DatetimeFormat, ZoneIsAskedOnceADirectiveAtTheValue) {
  PlainLocale plain;
  AnsweringZone zone(plain);
  set_name(plain.data.datePattern, U"%Z %z %d %?Z");
  expect_in_both_flavours(date(plain, 1, 2, 1960), U"Europe/Berlin +0100 02 +0100");
  AnsweringZone::asked.clear();
  VXChar out[80];
  int64_t length;
  NLSDateFormat(plain.get(), 1, 2, 1960, 0, out, 80, &length);
  EXPECT_EQ(AnsweringZone::asked, (std::vector<double>{day, day, day}));
  AnsweringZone::asked.clear();
  set_name(plain.data.timePattern, U"%H");
  NLSTimeFormat(plain.get(), 0, out, 80, &length, 45296.5);
  EXPECT_TRUE(AnsweringZone::asked.empty());
  set_name(plain.data.timePattern, U"%z");
  NLSTimeFormat(plain.get(), 0, out, 80, &length, 45296.5);
  EXPECT_EQ(AnsweringZone::asked, (std::vector<double>{45296.5}));
}

TEST(DatetimeFormat, ZoneNamesAndOffsets) {
  PlainLocale plain;
  AnsweringZone zone(plain);
  set_name(plain.data.timePattern, U"%Z%z");
  static const struct {
    int32_t offset;
    const char32_t* text;
  } offsets[] = {{0, U"+0000"},      {-1, U"-0000"},        {59, U"+0000"},       {-19800, U"-0530"},
                 {20700, U"+0545"},  {50400, U"+1400"},     {-43200, U"-1200"},   {359999, U"+9959"},
                 {360000, U"+0000"}, {INT32_MAX, U"+2314"}, {INT32_MIN, U"-2314"}};
  for (const auto& c : offsets) {
    SCOPED_TRACE(c.offset);
    AnsweringZone::offset = c.offset;
    expect_in_both_flavours(time_by(plain, 0, 0), U"Europe/Berlin" + std::u32string(c.text));
  }
  AnsweringZone::offset = 0;
  set_name(plain.data.timePattern, U"%Z");
  AnsweringZone::name = U"";
  expect_in_both_flavours(time_by(plain, 0, 0), U"XST");
  AnsweringZone::name = std::u32string(50, U'z');
  expect_in_both_flavours(time_by(plain, 0, 0), AnsweringZone::name);
  AnsweringZone::length_told = 51;  // more than there is room for
  expect_in_both_flavours(time_by(plain, 0, 0), AnsweringZone::name);
  AnsweringZone::length_told = -1;
  expect_in_both_flavours(time_by(plain, 0, 0), U"XST");
  AnsweringZone::length_told.reset();
  AnsweringZone::failing = true;
  set_name(plain.data.timePattern, U"%Z%z");
  expect_in_both_flavours(time_by(plain, 0, 0), U"XST+0000");
  AnsweringZone::failing = false;
  // In UTF-8 a unit of the name is its low eight bits.
  set_name(plain.data.timePattern, U"%Z");
  AnsweringZone::name = U"Åé\x3BA!";
  expect_text<VXChar>(time_by(plain, 0, 0).units, as<VXChar>(AnsweringZone::name));
  expect_text<uint8_t>(time_by(plain, 0, 0).bytes, {0xC5, 0xE9, 0xBA, '!'});
  PlainLocale without;
  set_name(without.data.timePattern, U"%Z%z");
  expect_in_both_flavours(time_by(without, 0, 0), U"XST+0000");
}

TEST(DatetimeFormat, TextsBeyondTheScratch) {
  PlainLocale plain;
  AnsweringZone zone(plain);
  const std::u32string sixty(60, U'm');
  set_name(plain.data.monthNames[0], sixty);
  const auto pattern_of = [&](std::u32string_view pattern) { set_name(plain.data.datePattern, pattern); };
  const auto expect = [&](size_t units, VXStatus status, std::u32string_view tail = U"") {
    const auto text = std::u32string(units, U'm') + std::u32string(tail);
    expect_text<VXChar>(date(plain, 1, 1, 2000).units, as<VXChar>(text), status);
    expect_text<uint8_t>(date(plain, 1, 1, 2000).bytes, as<uint8_t>(utf8(text)), status);
  };
  pattern_of(U"%B%B%B%B%B%B%B%Bmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm");
  expect(512, 0);
  pattern_of(U"%B%B%B%B%B%B%B%Bmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm");
  expect(512, VX_E_TRUNCATED);
  pattern_of(U"%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B%B");
  expect(512, VX_E_TRUNCATED);
  pattern_of(U"%B%B%B%B%B%B%B%Bmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm%d");  // 510 and two digits
  expect(510, 0, U"01");
  pattern_of(U"%B%B%B%B%B%B%B%Bmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm%d");  // the second digit is one too many
  expect(511, VX_E_TRUNCATED, U"0");
  pattern_of(U"%B%B%B%B%B%B%B%B%B%J");  // refused all the same
  expect_refused(date(plain, 1, 1, 2000), VX_E_DIRECTIVE);
  pattern_of(U"%B%B%B%B%B%B%B%B                                 %d");  // blanks are dropped after the cut
  expect(480, VX_E_TRUNCATED);
  // The zone's name stays below the end of the scratch or gives way to XST.
  AnsweringZone::name = U"0123456789";
  pattern_of(U"%B%B%B%B%B%B%B%Bmmmmmmmmmmmmmmmmmmmmm%Z");
  expect(501, 0, U"0123456789");
  pattern_of(U"%B%B%B%B%B%B%B%Bmmmmmmmmmmmmmmmmmmmmmm%Z");
  expect(502, 0, U"XST");
}

TEST(DatetimeFormat, HostileRecords) {
  PlainLocale plain;
  AnsweringZone zone(plain);
  for (VXChar& unit : plain.data.datePattern.text) unit = '%';
  plain.data.datePattern.length = 60;
  expect_in_both_flavours(date(plain, 1, 1, 2000), std::u32string(30, U'%'));
  plain.data.datePattern.length = 61;
  expect_in_both_flavours(date(plain, 1, 1, 2000), std::u32string(30, U'%'));
  plain.data.datePattern.length = 59;
  expect_refused(date(plain, 1, 1, 2000), VX_E_DIRECTIVE);
  for (const char32_t* pattern : {U"%", U"x%", U"%#", U"%?", U"%?#d", U"%#?d", U"%##d"}) {
    set_name(plain.data.datePattern, pattern);
    expect_refused(date(plain, 1, 1, 2000), VX_E_DIRECTIVE);
  }
}

// In UTF-8 a pattern or name counts up to 180 bytes, whole characters only; UTF-32 has them all.
TEST(DatetimeFormat, LongTextsInUtf8) {
  PlainLocale plain;
  const std::u32string sixty(60, U'😀'), counted(45, U'😀'), odd = U"é" + std::u32string(59, U'😀');
  set_name(plain.data.monthNames[0], sixty);
  set_name(plain.data.datePattern, U"%B.");
  expect_text<VXChar>(date(plain, 1, 1, 2000).units, as<VXChar>(sixty + U"."));
  expect_text<uint8_t>(date(plain, 1, 1, 2000).bytes, as<uint8_t>(utf8(counted + U".")));
  set_name(plain.data.monthNames[0], odd);
  expect_text<uint8_t>(date(plain, 1, 1, 2000).bytes, as<uint8_t>(utf8(odd.substr(0, 45) + U".")));
  set_name(plain.data.datePattern, sixty);
  expect_text<VXChar>(date(plain, 1, 1, 2000).units, as<VXChar>(sixty));
  expect_text<uint8_t>(date(plain, 1, 1, 2000).bytes, as<uint8_t>(utf8(counted)));
  // The cut can leave a directive without its letter.
  set_name(plain.data.datePattern, U"123" + std::u32string(44, U'😀') + U"%d");
  expect_text<VXChar>(date(plain, 1, 1, 2000).units, as<VXChar>(U"123" + std::u32string(44, U'😀') + U"01"));
  uint8_t out[400];
  int64_t length = -77;
  EXPECT_EQ(NLSDateFormatU(plain.get(), 1, 1, 2000, 0, out, 400, &length), VX_E_DIRECTIVE);
  EXPECT_EQ(length, -77);
}

}  // namespace
