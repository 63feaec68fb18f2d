// The C++ face: texts held against ICU, moments against std::chrono, values written and read back, results, refusals.
// What docs/cpp.md shows is run by tests/docs; tests/number_format takes numbers through every locale by the face.
#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include <cmath>
#include <memory>

#include "vxnls/vxnls.hpp"

namespace {

using namespace std::chrono_literals;
using namespace std::chrono;
using vxnls::code_points;
using vxnls::form;

vxnls::host& host() {
  static vxnls::host opened = vxnls::host::open().value();
  return opened;
}
vxnls::locale locale_of(std::string_view name, std::string_view zone = "UTC") {
  return host().locale(name, zone).value();
}

static_assert(!std::constructible_from<code_points<char>, std::string&&>);
static_assert(std::ranges::forward_range<code_points<char8_t>> && std::ranges::view<code_points<char8_t>> &&
              std::ranges::borrowed_range<code_points<char8_t>>);

bool are_of_icu(const auto& points, const icu::UnicodeString& text) {
  UErrorCode status = U_ZERO_ERROR;
  std::vector<UChar32> wanted(static_cast<size_t>(text.length()) + 1);
  wanted.resize(static_cast<size_t>(text.toUTF32(wanted.data(), text.length() + 1, status)));
  return std::ranges::equal(points, wanted, [](char32_t a, UChar32 b) { return a == static_cast<char32_t>(b); });
}

TEST(CodePoints, AreThoseOfIcu) {
  for (uint32_t bytes = 0; bytes < 0x10000; ++bytes) {
    for (const char* tail : {"", "\x80", "\xBF\x80", "z", "\xBFz", "\x80\xBF\xBF"}) {
      const std::string text = std::string{static_cast<char>(bytes >> 8), static_cast<char>(bytes)} + tail;
      const code_points points(text);
      ASSERT_TRUE(are_of_icu(points, icu::UnicodeString::fromUTF8(text))) << testing::PrintToString(text);
      const auto fault = std::ranges::find_if(points.begin(), points.end(), [](char32_t c) { return c == 0xFFFD; });
      ASSERT_EQ(vxnls::well_formed_prefix(text), static_cast<size_t>(fault.base() - text.data()));
      ASSERT_TRUE(vxnls::is_well_formed(text) ? fault == points.end() : !fault.well_formed());
    }
  }
  constexpr char16_t units[] = {'a', 0xE9, 0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFF};
  for (uint32_t i = 0; i < 9 * 9 * 9 * 9; ++i) {
    const std::u16string wide{units[i % 9], units[i / 9 % 9], units[i / 81 % 9], units[i / 729]};
    ASSERT_TRUE(are_of_icu(code_points(wide), icu::UnicodeString(wide.data(), 4))) << testing::PrintToString(wide);
  }
  const std::u32string any{0x41, 0xD800, 0x10FFFF, 0x110000, 0xFFFFFFFF};
  EXPECT_TRUE(std::ranges::equal(code_points(any), std::u32string_view(U"A\uFFFD\U0010FFFF\uFFFD\uFFFD")));
}

TEST(Text, StopsAtAFaultAndKeepsToTheRoom) {
  static const std::tuple<std::string, VXStatus, size_t> cases[] = {
      {"", 0, 0}, {"aé€😀", 0, 10}, {"aé\xFFz", VX_E_SEQUENCE, 3}, {"aé€\xF0\x9F", VX_E_INCOMPLETE, 6}};
  for (const auto& [text, status, good] : cases) {
    const auto wide = vxnls::to_utf32(text);
    const auto middle = vxnls::to_utf16(text);
    EXPECT_EQ(std::tuple(wide.status(), wide.consumed(), middle.status()), std::tuple(status, good, status));
    EXPECT_EQ(vxnls::to_utf8(*middle).value(), text.substr(0, good));
    EXPECT_EQ(vxnls::to_utf16(*wide).value(), *middle);
  }
  host();
  EXPECT_EQ(vxnls::upper(U"àÿ") + vxnls::lower(U"ÀŸ"), U"ÀŸàÿ");
  EXPECT_EQ(vxnls::upper("\x80é") + vxnls::lower("ȺȺȺ"), "\x80Éⱥⱥⱥ");  // two bytes become three
  char room[5];
  const auto cut = vxnls::lower_to(room, "ȺȺ");
  EXPECT_EQ(std::pair(*cut, cut.status()), std::pair(std::string_view("ⱥ"), VX_E_ROOM));
  EXPECT_EQ(vxnls::upper_to(std::span<char>(), "a").status(), VX_E_ROOM);
  EXPECT_TRUE(std::is_gt(vxnls::compare(U"abc ", U"abc")) && std::is_gt(vxnls::compare_caseless(U"é", U"É")));
  EXPECT_TRUE(vxnls::equal_caseless(U"É ", U"é"));
}

TEST(Result, CountsInUnitsOfTheText) {
  const auto german = locale_of("de_DE");
  EXPECT_EQ(german.parse<year_month_day>("5. Märzx2021", form::long_date).why().position, 8u);
  EXPECT_EQ(german.parse<double>("é").why().length, 2u);
  EXPECT_EQ(german.parse<double>(U"é").why().length, 1u);
  EXPECT_EQ(german.parse<double>("é", {.explain = false}).why().what, nullptr);
  EXPECT_EQ(german.parse<year_month_day>("x", {.explain = false}).why().what, nullptr);
  EXPECT_EQ(*vxnls::result<std::unique_ptr<int>>(0, std::make_unique<int>(7)).value(), 7);  // moved out
  const std::string day = "5. März 2021";
  for (size_t room = 0; room <= day.size() + 1; ++room) {
    std::string bytes(room, 'x');
    const auto done = german.format_to(bytes, 2021y / 3 / 5, form::long_date);
    EXPECT_EQ(done.status(), room < day.size() ? VX_E_TRUNCATED : 0);
    EXPECT_EQ(*done, day.substr(0, room));
    // Amounts go through UTF-32 and are cut at whole characters.
    EXPECT_EQ(*german.format_to(bytes, vxnls::money{5.0}), room < 3 ? "" : std::string("€5,00").substr(0, room));
  }
}

TEST(Host, HasLocalesZonesAndAJournal) {
  const std::string longish(300, 'd');  // nor must a NUL cut a name short
  for (const std::string_view none : {std::string_view("de_DE\0x", 7), {"UTC\0x", 5}, {longish}}) {
    EXPECT_EQ(host().locale(none).status(), VX_E_NOMATCH);
    EXPECT_EQ(host().locale("de_DE", none).status(), VX_E_ZONE);
    EXPECT_EQ(host().resolve(none).status(), VX_E_NOMATCH);
    EXPECT_EQ(host().zone_at(none, sys_seconds{}).status(), VX_E_ZONE);
  }
  EXPECT_EQ(host().zone_at("", sys_seconds::max()).status(), VX_E_RANGE);
  EXPECT_EQ(host().locale("en_US", "UTC", {.date = std::string(61, 'x')}).status(), VX_E_LENGTH);
  for (const char* const none : {"\xFF", "\xE2\x28\xA1%H"}) {
    EXPECT_EQ(host().locale("en_US", "UTC", {.time = none}).status(), VX_E_SEQUENCE);
  }
  const auto nowhere = vxnls::host::open("/nowhere");
  EXPECT_FALSE(vxnls::host::open("/elsewhere"));
  EXPECT_NE(nowhere.why().message().find("/nowhere/"), std::string::npos);
  const auto before = vxhostAlive();
  {
    auto opened = vxnls::host::open().value();
    std::string journal;
    opened.on_journal([&](const vxnls::journal_entry& entry) { journal.append(entry.text); });
    vxnls::host moved = std::move(opened);
    setenv("TZ", "No/Such/Zone", 1);
    EXPECT_TRUE(moved.locale("fr_FR") && !journal.empty());
    unsetenv("TZ");
    moved = vxnls::host();
  }
  EXPECT_EQ(vxhostAlive(), before);
}

/// A value comes back from what was written of it, in both flavours, and the whole text belongs to it.
template <class T, class... Style>
void expect_back(const vxnls::locale& locale, const T& value, form as, Style... style) {
  const auto narrow = locale.format(value, style...).value();
  const auto wide = locale.format<std::u32string>(value, style...).value();
  EXPECT_EQ(vxnls::to_utf8(wide).value(), narrow);
  EXPECT_EQ(locale.format<vxnls::buffer<vxnls::text_room>>(value, style...)->view(), narrow);
  const auto read = locale.parse<T>(narrow, as);
  EXPECT_EQ(*read, value) << narrow << ": " << read.why().message();
  EXPECT_EQ(read.consumed(), narrow.size());
  EXPECT_EQ(locale.parse<T>(std::u32string_view(wide), as).value(), value) << narrow;
}

TEST(Values, MomentsComeBackInEveryForm) {
  for (const char* name : {"en_US", "ja_JP", "ar_EG"}) {
    SCOPED_TRACE(name);
    const auto locale = locale_of(name, "America/New_York");
    for (const form as : {form::main, form::medium_date, form::long_date}) {
      for (sys_days day = 1999y / 12 / 1; day < sys_days{2000y / 3 / 5}; day += days{1}) {
        expect_back(locale, year_month_day{day}, as, as);
        expect_back(locale, day, as, as);
        EXPECT_EQ(locale.format(local_days{day.time_since_epoch()}).value(), locale.format(day).value());
      }
    }
    for (seconds time{0}; time < 24h; time += 1009s) {
      expect_back(locale, time, form::main);
      expect_back(locale, floor<minutes>(time), form::short_time, form::short_time);
      EXPECT_EQ(locale.parse<hh_mm_ss<seconds>>(*locale.format(hh_mm_ss{time})).value().to_duration(), time);
    }
    for (local_seconds at = local_days{2026y / 3 / 7}; at < local_days{2026y / 3 / 10}; at += 997s) {
      expect_back(locale, at, form::main);
      expect_back(locale, locale.to_sys(at), form::main);
    }
  }
}

TEST(Values, InstantsHaveFractionsAndFollowTheZone) {
  const auto fine = host().locale("en_US", "UTC", {.datetime = "%Y %m %d %H:%M:%S.%s"}).value();
  const auto late = sys_days{2026y / 11 / 21} + 23h + 59min + 59s;
  EXPECT_EQ(fine.parse<sys_time<milliseconds>>("2026 11 21 23:59:59.999").value(), late + 999ms);
  // The last nanosecond of a day is not rounded into the next one, and before 1960 time does not run backwards.
  EXPECT_EQ(locale_of("de_DE").format(late + 999999999ns).value(), "21.11.2026 23:59:59");
  EXPECT_EQ(locale_of("de_DE").format(sys_days{1959y / 12 / 31} - 1ns).value(), "30.12.1959 23:59:59");
  const auto berlin = host().locale("de_DE", "UTC", vxnls::patterns{}).value();
  EXPECT_EQ(berlin.set_zone("Europe/Berlin"), 0u);
  for (sys_seconds at = sys_days{1950y / 1 / 1}; at < sys_days{2090y / 1 / 1}; at += 1234567s) {
    const local_seconds local{at.time_since_epoch() + host().zone_at("Europe/Berlin", at).value().offset};
    EXPECT_EQ(berlin.to_local(at), local);
    EXPECT_EQ(berlin.format(at).value(), berlin.format(local).value());
    const sys_seconds back = berlin.to_sys(local);  // earlier, when the local time comes twice
    EXPECT_TRUE(back <= at && berlin.to_local(back) == local);
  }
  // A local time that is skipped takes the offset before.
  EXPECT_EQ(berlin.parse<sys_seconds>("29.03.2026 02:30:00").value(), sys_days{2026y / 3 / 29} + 1h + 30min);
}

// The library knows no leap day in years divisible by 4000; std::chrono does.
TEST(Values, TheTwoCalendarsMeet) {
  const auto locale = locale_of("en_US");
  double number = -138061;
  for (sys_days day = 1582y / 1 / 1; day <= sys_days{20000y / 12 / 31}; day += days{1}) {
    const year_month_day date = day;
    const auto counted = vxnls::detail::seconds_1960(day.time_since_epoch() + 5h);
    if (static_cast<int>(date.year()) % 4000 == 0 && date.month() == February && date.day() == std::chrono::day{29}) {
      EXPECT_FALSE(vxnls::detail::exists(date) || counted || locale.format(day + 24h - 1s) || locale.format(date));
      continue;
    }
    ASSERT_EQ(counted, number++ * 86400 + 5 * 3600);
    ASSERT_EQ(vxnls::detail::since_1970(*counted), day.time_since_epoch() + 5h);
  }
  EXPECT_EQ(locale.parse<year_month_day>("02/29/4000").status(), VX_E_RANGE);
}

TEST(Values, RefusesWhatIsNoneOrNotAllOfIt) {
  const auto locale = locale_of("en_US");
  const auto refused = [&](auto... values) { return ((locale.format(values).status() == VX_E_RANGE) && ...); };
  EXPECT_TRUE(refused(1581y / 12 / 31, 50y / 1 / 1, 2023y / 2 / 29, 20001y / 1 / 1, 2023y / 13 / 1));
  EXPECT_TRUE(refused(-1s, 86400s, seconds::max(), seconds::min(), hours::max(), duration<double>(NAN)));
  EXPECT_TRUE(refused(sys_seconds::max(), sys_seconds::min(), sys_days::min(), sys_days::max()));
  const vxnls::locale empty;
  EXPECT_TRUE(empty.format(1).status() == VX_E_NULL && empty.parse<int>("1").status() == VX_E_NULL);
  EXPECT_EQ(locale.format(vxnls::money{1}, {.width = 513}).status(), VX_E_WIDTH);
  EXPECT_EQ(locale.format(1.0, {.decimals = 351}).status(), VX_E_WIDTH);
  // All of a text, or what stands before more of it.
  EXPECT_FALSE(locale.parse<year_month_day>("12/25/2020x", form::any));
  EXPECT_EQ(locale.parse<year_month_day>("12/25/2020x", {.as = form::any, .prefix = true}).consumed(), 10u);
  EXPECT_EQ(locale.parse<int>({"12\0", 3}).status(), VX_E_NOTNUMBER);
  EXPECT_EQ(locale.parse<int>("- kg", {.prefix = true}).status(), VX_E_NOTNUMBER);
  EXPECT_EQ(locale.parse<int>("9999999999 kg", {.prefix = true}).status(), VX_E_OVERFLOW);
  EXPECT_EQ(locale.parse<unsigned>("ff kg", {.prefix = true, .hex = true}).value(), 255u);
  EXPECT_EQ(locale.parse<int>("12.50", {.fraction = true}).status(), VX_E_TRUNCATED);
  EXPECT_EQ(locale.parse<int>("12.75kg", {.prefix = true, .fraction = true}).status(), VX_E_TRUNCATED);
  EXPECT_EQ(locale.parse<int>("+,kg", {.prefix = true}).status(), VX_E_NOTNUMBER);
  // What a type has no room for, and a time by a pattern that adds 12 to whatever stands before it.
  EXPECT_EQ(locale.parse<sys_time<nanoseconds>>("12/31/9999 12:00:00 AM").status(), VX_E_RANGE);
  EXPECT_EQ((locale.parse<duration<int8_t>>("10:20:30 AM").status()), VX_E_RANGE);
  EXPECT_EQ(locale.parse<hh_mm_ss<minutes>>("10:20:30 PM").value().to_duration(), 22h + 20min);
  const auto own = host().locale("en_US", "UTC", {.time = "%H:%M:%S %p"}).value();
  EXPECT_EQ(own.parse<seconds>("23:00:00 PM").status(), VX_E_RANGE);
}

TEST(Values, NumbersHaveTheLeastWidth) {
  const auto locale = locale_of("de_DE");
  const auto expect = [&](auto value, const vxnls::number_style& style, const char* text) {
    EXPECT_EQ(locale.format(value, style).value(), text);
  };
  expect(0, {.width = -8, .zero_pad = true}, "0       ");
  expect(0, {.width = 1, .plus = true, .zero_pad = true}, "+0");
  expect(7, {.width = 4, .flags = NLS_FORMAT_ZERO_PAD}, "0007");
  expect(HUGE_VAL, {.width = -5}, "Inf  ");
  expect(-HUGE_VAL, {.width = 2}, "-Inf");
  expect(vxnls::missing('B'), {.width = 5}, "    B");
  expect(vxnls::percent{0.5}, {.width = -5}, "50%  ");
  expect(vxnls::percent{-0.5}, {.width = 7, .parentheses = true}, "  (50%)");
  expect(vxnls::percent{-HUGE_VAL}, {.parentheses = true}, "(Inf%)");
  expect(vxnls::percent{1e307}, {}, "Inf%");
  expect(vxnls::money{1234.5}, {.width = 6}, "€1.234,50");
  expect(vxnls::money{-1234.5}, {.width = -12}, "€-1.234,50  ");
  char room[4];
  EXPECT_EQ(*locale.format_to(room, HUGE_VAL, {.width = 5}), "****");
}

// The rooms of the header hold the longest numbers that can be asked for.
TEST(Values, RoomsHoldTheLongestNumbers) {
  const auto locale = host().locale("en_US", "UTC", vxnls::patterns{}).value();
  VXLocaleData& data = *locale.get()->localeData;
  data.groupSeparator = data.decimalPoint = 0x1F600;
  data.groupingPattern.text[0] = '1';
  data.currencySymbol.length = 60;
  std::fill_n(data.currencySymbol.text, 60, 0x1F600);
  const double largest = -std::numeric_limits<double>::max();
  EXPECT_EQ(locale.format(largest, {.decimals = 350, .group = true}).value().size(), 1u + 309 + 308 * 4 + 4 + 350);
  EXPECT_EQ(locale.format(vxnls::money{largest}, {.decimals = 350}).value().size(), 240u + 1 + 309 + 308 * 4 + 4 + 350);
  EXPECT_EQ(locale.format(0u, {.width = 512, .zero_pad = true, .flags = NLS_FORMAT_HEX_LOWER | NLS_FORMAT_HEX_PREFIX})
                ->size(),
            514u);
  EXPECT_TRUE(locale.format(INT64_MIN, {.group = true}));
  EXPECT_EQ(*locale.format(0, {.zero_pad = true}), "0");
  EXPECT_EQ(*locale.format(vxnls::percent{HUGE_VAL}), "Inf%");
}

}  // namespace
