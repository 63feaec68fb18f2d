// The C++ face: values written and read, held against the C interface, std::chrono and each other; code points, coders,
// case; results and their explanations; the host's own calls. What docs/cpp.md shows is run by tests/docs.
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
using vxnls::money;
using vxnls::number_style;
using vxnls::percent;

vxnls::host& host() {
  static vxnls::host opened = vxnls::host::open().value();
  return opened;
}
vxnls::locale locale_of(std::string_view name, std::string_view zone = "UTC") {
  return host().locale(name, zone).value();
}

static_assert(std::ranges::forward_range<code_points<char8_t>> && std::ranges::view<code_points<char8_t>> &&
              std::ranges::borrowed_range<code_points<char8_t>>);

template <class Text>
void expect_points(const Text& text, const icu::UnicodeString& wanted) {
  int32_t at = 0;
  for (const char32_t point : code_points(text)) {
    const UChar32 by_icu = wanted.char32At(at);
    ASSERT_EQ(point, U_IS_SURROGATE(by_icu) ? 0xFFFD : static_cast<uint32_t>(by_icu)) << testing::PrintToString(text);
    at = wanted.moveIndex32(at, 1);
  }
  ASSERT_EQ(at, wanted.length()) << testing::PrintToString(text);
}

void expect_points(const std::string& text) {
  ASSERT_NO_FATAL_FAILURE(expect_points(text, icu::UnicodeString::fromUTF8(text)));
  const size_t good = vxnls::well_formed_prefix(text);
  ASSERT_EQ(vxnls::is_well_formed(text), good == text.size());
  const code_points points(text);
  for (auto point = points.begin(); point != points.end(); ++point) {
    const auto place = static_cast<size_t>(point.base() - text.data());
    ASSERT_TRUE(place > good || point.well_formed() == (place < good)) << testing::PrintToString(text);
  }
}

TEST(CodePoints, AreThoseOfIcu) {
  for (uint32_t bytes = 0; bytes < 0x10000; ++bytes) {
    const std::string pair{static_cast<char>(bytes >> 8), static_cast<char>(bytes)};
    for (const char* tail : {"", "\x80", "\xBF\x80", "z", "\xBFz", "\x80\xBF\xBF"}) {
      ASSERT_NO_FATAL_FAILURE(expect_points(pair + tail));
    }
  }
  constexpr char16_t units[] = {'a', 0xE9, 0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFF};
  for (uint32_t i = 0; i < 9 * 9 * 9 * 9; ++i) {
    const std::u16string wide{units[i % 9], units[i / 9 % 9], units[i / 81 % 9], units[i / 729]};
    ASSERT_NO_FATAL_FAILURE(expect_points(wide, icu::UnicodeString(wide.data(), 4)));
  }
  EXPECT_TRUE(std::ranges::equal(code_points(std::u32string{0x41, 0xD800, 0x10FFFF, 0x110000, 0xFFFFFFFF}),
                                 std::u32string_view(U"A\uFFFD\U0010FFFF\uFFFD\uFFFD")));
}

TEST(Coders, StopAtAFault) {
  static const std::tuple<std::string, VXStatus, size_t> cases[] = {
      {"", 0, 0}, {"aé€😀", 0, 10}, {"aé\xFFz", VX_E_SEQUENCE, 3}, {"aé€\xF0\x9F", VX_E_INCOMPLETE, 6}};
  for (const auto& [text, status, good] : cases) {
    const auto wide = vxnls::to_utf32(text);
    const auto middle = vxnls::to_utf16(text);
    EXPECT_EQ(std::tuple(wide.status(), wide.consumed(), middle.status()), std::tuple(status, good, status));
    EXPECT_EQ(vxnls::to_utf8(*middle).value(), text.substr(0, good));
    EXPECT_EQ(vxnls::to_utf8(vxnls::to_utf32(*middle).value()).value(), text.substr(0, good));
    EXPECT_EQ(vxnls::to_utf16(*wide).value(), *middle);
  }
  EXPECT_EQ(vxnls::to_utf8(std::u16string{u"\xD83D"}).status(), VX_E_INCOMPLETE);
}

TEST(Case, GrowsAndKeepsToTheRoom) {
  host();
  EXPECT_EQ(vxnls::upper(U"àÿ") + vxnls::lower(U"ÀŸ"), U"ÀŸàÿ");
  EXPECT_EQ(vxnls::upper("\x80é") + vxnls::lower("ȺȺȺ"), "\x80Éⱥⱥⱥ");  // two bytes become three
  char room[5];
  for (const auto& [text, written] : {std::pair{"ÉÀA", "éàa"}, {"ȺȺ", "ⱥ"}, {"", ""}}) {
    const auto done = vxnls::lower_to(room, text);
    EXPECT_EQ(*done, written);
    EXPECT_EQ(done.status(), *written == "ⱥ"[0] ? VX_E_ROOM : 0);
  }
  EXPECT_EQ(vxnls::upper_to(std::span<char>(), "a").status(), VX_E_ROOM);
  EXPECT_TRUE(vxnls::compare(U"abc ", U"abc") > 0 && vxnls::compare_caseless(U"é", U"É") > 0);
  EXPECT_TRUE(vxnls::equal_caseless(U"É ", U"é"));
}

TEST(Result, ExplainsInUnitsOfTheText) {
  static const std::tuple<const char*, form, std::string, size_t, size_t> cases[] = {
      {"5. Märzx2021", form::long_date, "another character is wanted", 8, 7},
      {"2021-02-31", form::any, "the month has no such day", 0, 0},
      {"2021-02-28é x", form::any, "more text follows", 10, 10},
      {"", form::any, "the text ends too early, reading %d", 0, 0}};
  const auto german = locale_of("de_DE");
  for (const auto& [text, as, message, bytes, units] : cases) {
    const auto wide = vxnls::to_utf32(text).value();
    const std::u32string_view view(wide);
    const std::string why = ": " + message;
    EXPECT_EQ(german.parse<year_month_day>(text, as).why().message(), "at " + std::to_string(bytes) + why);
    EXPECT_EQ(german.parse<year_month_day>(view, as).why().message(), "at " + std::to_string(units) + why);
  }
  EXPECT_EQ(german.parse<double>("é").why().length, 2u);
  EXPECT_EQ(german.parse<double>(U"é").why().length, 1u);
  EXPECT_EQ(german.parse<double>("é", {.explain = false}).why().what, nullptr);
  EXPECT_EQ(german.parse<year_month_day>("x", {.explain = false}).why().what, nullptr);
  EXPECT_EQ(*vxnls::result<std::unique_ptr<int>>(0, std::make_unique<int>(7)).value(), 7);  // moved out
}

TEST(Result, FormatsIntoWhatTheCallerHas) {
  const auto german = locale_of("de_DE");
  const std::string narrow = "5. März 2021";
  const auto wide = vxnls::to_utf32(narrow).value();
  for (size_t room = 0; room <= narrow.size() + 1; ++room) {
    std::string bytes(room, 'x');
    std::u32string units(room, 'x');
    const auto done = german.format_to(std::span<char>(bytes), 2021y / 3 / 5, form::long_date);
    EXPECT_EQ(done.status(), room < narrow.size() ? VX_E_TRUNCATED : 0);
    EXPECT_EQ(*done, narrow.substr(0, room));
    EXPECT_EQ(*german.format_to(std::span<char32_t>(units), 2021y / 3 / 5, form::long_date), wide.substr(0, room));
    // Amounts go through UTF-32 and are cut at whole characters.
    EXPECT_EQ(*german.format_to(std::span<char>(bytes), vxnls::money{5.0}),
              room < 3 ? "" : std::string("€5,00").substr(0, room));
  }
}

TEST(Host, HasLocalesZonesAndAJournal) {
  const std::string longish(300, 'd');  // nor must a NUL cut a name short
  for (const std::string_view none : {std::string_view("de_DE\0x", 7), {"UTC\0x", 5}, {"\0", 1}, {longish}}) {
    EXPECT_EQ(host().locale(none).status(), VX_E_NOMATCH);
    EXPECT_EQ(host().locale("de_DE", none).status(), VX_E_ZONE);
    EXPECT_EQ(locale_of("de_DE").set_zone(none), VX_E_ZONE);
    EXPECT_EQ(host().resolve(none).status(), VX_E_NOMATCH);
    EXPECT_EQ(host().zone_at(none, sys_seconds{}).status(), VX_E_ZONE);
  }
  EXPECT_EQ(host().resolve("de_US").status(), VX_W_SUBSTITUTE);
  EXPECT_EQ(host().versions().find("ICU 7"), 0u);
  EXPECT_EQ(host().describe(VX_E_ZONE), "0x803fe83c: no time zone has this name");
  const auto summer = host().zone_at("europe/berlin", sys_days{2026y / 7 / 1}).value();
  EXPECT_EQ(summer.id + " " + summer.abbreviation, "Europe/Berlin CEST");
  EXPECT_TRUE(summer.offset == 2h && summer.summer_time);
  EXPECT_EQ(host().zone_at("Europe/Berlin", local_days{2026y / 1 / 1}).value().offset, 1h);
  EXPECT_EQ(host().zone_at("", sys_seconds::max()).status(), VX_E_RANGE);
  EXPECT_TRUE(host().locale("en_US", "UTC", {.date = std::string(60, 'x')}));
  EXPECT_EQ(host().locale("en_US", "UTC", {.date = std::string(61, 'x')}).status(), VX_E_LENGTH);
  EXPECT_EQ(host().locale("en_US", "UTC", {.time = "\xFF"}).status(), VX_E_SEQUENCE);
  EXPECT_NE(vxnls::host::open("/nowhere").why().message().find("/nowhere/"), std::string::npos);
  const auto before = vxhostAlive();
  {
    auto opened = vxnls::host::open().value();
    std::string journal;
    opened.on_journal([&](const vxnls::journal_entry& entry) { journal.append(entry.text); });
    vxnls::host moved = std::move(opened);
    EXPECT_EQ(opened.get(), nullptr);
    setenv("TZ", "No/Such/Zone", 1);
    EXPECT_TRUE(moved.locale("fr_FR") && !journal.empty());
    unsetenv("TZ");
    moved = vxnls::host::open().value();
    EXPECT_TRUE(moved.locale("fr_FR", "UTC"));
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

TEST(Values, DatesAndTimesComeBackInEveryForm) {
  for (const char* name : {"en_US", "ja_JP", "ar_EG", "vi_VN"}) {
    SCOPED_TRACE(name);
    const auto locale = locale_of(name, "America/New_York");
    for (const form as : {form::main, form::medium_date, form::long_date}) {
      for (sys_days day = 1999y / 12 / 1; day < sys_days{2000y / 3 / 5}; day += days{1}) {
        expect_back(locale, year_month_day{day}, as, as);
        expect_back(locale, day, as, as);
        EXPECT_EQ(locale.format(local_days{day.time_since_epoch()}).value(), locale.format(day).value());
      }
      for (const auto day : {1600y / 2 / 29, 9999y / 12 / 31}) expect_back(locale, day, as, as);
    }
    for (seconds time{0}; time < 24h; time += 1009s) {
      expect_back(locale, time, form::main);
      expect_back(locale, floor<minutes>(time), form::short_time, form::short_time);
      const auto shown = locale.format(hh_mm_ss{time}).value();
      EXPECT_EQ(shown, locale.format(time).value());
      EXPECT_EQ(locale.parse<hh_mm_ss<seconds>>(shown).value().to_duration(), time);
    }
    for (local_seconds at = local_days{2026y / 3 / 7}; at < local_days{2026y / 3 / 10}; at += 997s) {
      expect_back(locale, at, form::main);
      expect_back(locale, locale.to_sys(at), form::main);
    }
  }
}

TEST(Values, InstantsHaveFractionsAndFollowTheZone) {
  const vxnls::patterns own{.time = "%H:%M:%S.%s", .short_time = "%Hh%M", .datetime = "%Y %m %d %H:%M:%S.%s"};
  const auto fine = host().locale("en_US", "UTC", own).value();
  EXPECT_EQ(fine.format(14h + 5min, form::short_time).value(), "14h05");
  EXPECT_EQ(fine.parse<milliseconds>("10:30:15.123").value(), 10h + 30min + 15123ms);
  EXPECT_EQ(fine.parse<seconds>("10:30:15.999").value(), 10h + 30min + 15s);
  const auto late = sys_days{2026y / 11 / 21} + 23h + 59min + 59s;
  EXPECT_EQ(fine.parse<sys_time<milliseconds>>("2026 11 21 23:59:59.999").value(), late + 999ms);
  EXPECT_EQ(fine.parse<sys_seconds>("2026 11 21 23:59:59.999").value(), late);
  // The last nanosecond of a day is not rounded into the next one, and before 1960 time does not run backwards.
  EXPECT_EQ(locale_of("de_DE").format(late + 999999999ns).value(), "21.11.2026 23:59:59");
  EXPECT_EQ(locale_of("de_DE").format(sys_days{1959y / 12 / 31} - 1ns).value(), "30.12.1959 23:59:59");
  EXPECT_EQ(locale_of("de_DE").format(999ms).value(), "00:00:00");
  for (const char* zone : {"Europe/Berlin", "Asia/Kathmandu", "Australia/Lord_Howe"}) {
    const auto locale = host().locale("de_DE", "UTC", vxnls::patterns{}).value();
    EXPECT_EQ(locale.set_zone(zone), 0u);
    for (sys_seconds at = sys_days{1950y / 1 / 1}; at < sys_days{2090y / 1 / 1}; at += 1234567s) {
      const local_seconds local{at.time_since_epoch() + host().zone_at(zone, at).value().offset};
      EXPECT_EQ(locale.to_local(at), local);
      EXPECT_EQ(locale.format(at).value(), locale.format(local).value());
      const sys_seconds back = locale.to_sys(local);  // earlier, when the local time comes twice
      EXPECT_TRUE(back <= at && locale.to_local(back) == local);
    }
  }
  const auto berlin = locale_of("de_DE", "Europe/Berlin");
  const auto read = [&](const char* text) { return berlin.parse<sys_seconds>(text).value(); };
  EXPECT_EQ(read("25.10.2026 02:30:00"), sys_days{2026y / 10 / 25} + 30min);      // twice: the first
  EXPECT_EQ(read("29.03.2026 02:30:00"), sys_days{2026y / 3 / 29} + 1h + 30min);  // skipped: the offset before
}

// The library knows no leap day in years divisible by 4000; std::chrono does.
TEST(Values, TheTwoCalendarsMeet) {
  const auto locale = locale_of("en_US");
  double number = -138061;
  for (sys_days day = 1582y / 1 / 1; day <= sys_days{20000y / 12 / 31}; day += days{1}) {
    const year_month_day date = day;
    if (static_cast<int>(date.year()) % 4000 == 0 && date.month() == February && date.day() == std::chrono::day{29}) {
      EXPECT_FALSE(vxnls::detail::exists(date));
      for (const auto time : {0s, 24h - 1s}) EXPECT_EQ(locale.format(day + time).status(), VX_E_RANGE);
      EXPECT_EQ(locale.format(date).status(), VX_E_RANGE);
      continue;
    }
    for (const auto time : {0h, 5h}) {
      const auto counted = vxnls::detail::seconds_1960(day.time_since_epoch() + time);
      ASSERT_EQ(counted, number * 86400 + static_cast<double>(seconds{time}.count()));
      ASSERT_EQ(vxnls::detail::since_1970(*counted), day.time_since_epoch() + time);
    }
    ++number;
  }
  EXPECT_EQ(locale.parse<year_month_day>("02/29/4000").status(), VX_E_RANGE);
}

TEST(Values, RefusesWhatIsNoMoment) {
  const auto locale = locale_of("en_US");
  const auto refused = [&](auto... values) { return ((locale.format(values).status() == VX_E_RANGE) && ...); };
  EXPECT_TRUE(refused(1581y / 12 / 31, 50y / 1 / 1, 2023y / 2 / 29, 20001y / 1 / 1, 2023y / 13 / 1));
  EXPECT_TRUE(refused(-1s, 86400s, seconds::max(), seconds::min(), hours::max(), duration<double>(NAN)));
  EXPECT_TRUE(refused(sys_seconds::max(), sys_seconds::min(), sys_days{1582y / 1 / 1} - 1s));
  EXPECT_TRUE(refused(sys_days::min(), sys_days::max(), sys_days{1581y / 12 / 31}));
  const vxnls::locale empty;
  EXPECT_FALSE(empty);
  for (const VXStatus none : {empty.format(1).status(), empty.parse<int>("1").status(), empty.set_zone("UTC")}) {
    EXPECT_EQ(none, VX_E_NULL);
  }
  // All of a text, or what stands before more of it.
  static const std::tuple<const char*, form, bool, size_t> cases[] = {
      {"  12/25/2020  ", form::main, true, 12}, {"12/25/2020x", form::any, false, 10},
      {"Q3 2021 ", form::quarter, true, 7},     {"Q3 2021x", form::quarter, false, 0},
      {"M7 2022", form::month, true, 7},
  };
  for (const auto& [text, as, whole, consumed] : cases) {
    EXPECT_EQ(locale.parse<year_month_day>(text, as).ok(), whole) << text;
    EXPECT_EQ(locale.parse<year_month_day>(text, {.as = as, .prefix = true}).consumed(), consumed) << text;
  }
}

template <class T>
void expect_written(T value, const number_style& style, const std::string& text, VXStatus status = 0) {
  const auto locale = locale_of("de_DE");
  const auto written = locale.format(value, style);
  EXPECT_EQ(*written, text);
  EXPECT_EQ(written.status(), status) << text;
  EXPECT_EQ(*locale.format<std::u32string>(value, style), vxnls::to_utf32(text).value());
}

TEST(Values, NumbersAreWrittenAsAsked) {
  expect_written(1234.5, {.decimals = 1, .width = -10}, "1234,5    ");
  expect_written(0, {.zero_pad = true}, "0");
  expect_written(1234.5, {.decimals = 0, .plus = true}, "+1235");
  expect_written(123456., {.decimals = 2, .flags = NLS_FORMAT_EXPONENT}, "1,23E+05");
  expect_written(1.5f, {}, "1,5");
  expect_written(UINT64_MAX, {.plus = true}, "18446744073709551615");
  expect_written(42, {.width = 512}, std::string(510, ' ') + "42");
  expect_written(percent{-0.125}, {.decimals = 1, .parentheses = true}, "(12,5%)");
  expect_written(percent{HUGE_VAL}, {}, "Inf%");
  expect_written(percent{HUGE_VAL}, {.width = 2}, "", VX_E_TRUNCATED);
  expect_written(money{1234.5}, {.decimals = 0}, "€1.235");
  expect_written(money{1234.5}, {.width = 12}, "   €1.234,50");
  for (const int width : {-513, 513, INT32_MIN}) expect_written(money{1}, {.width = width}, "", VX_E_WIDTH);
  expect_written(1, {.width = 513}, "", VX_E_WIDTH);
  expect_written(1.0, {.decimals = 351}, "", VX_E_WIDTH);
}

template <class T>
void expect_read(std::string_view text, T value, VXStatus status = 0, const vxnls::reading& how = {}) {
  const auto locale = locale_of("en_US");
  const auto read = locale.parse<T>(text, how);
  EXPECT_EQ(*read, value) << text;
  EXPECT_EQ(*locale.parse<T>(std::u32string_view(std::u32string(text.begin(), text.end())), how), value) << text;
  EXPECT_EQ(read.status(), status) << text;
  EXPECT_TRUE(status != 0 || read.consumed() == (how.prefix ? text.find('2') + 1 : text.size())) << text;
}

TEST(Values, NumbersAreReadAsTheTypeAskedFor) {
  expect_read<int8_t>("-128", -128);
  expect_read<uint16_t>("65536", 0, VX_E_OVERFLOW);
  expect_read<uint64_t>("18,446,744,073,709,551,615", UINT64_MAX);
  expect_read<double>("1.7976931348623157e308", std::numeric_limits<double>::max());
  expect_read<unsigned>("-1", 0, VX_E_NOTNUMBER);
  expect_read<int>("12.0", 12, 0, {.fraction = true});
  expect_read<int>("12.50", 12, VX_E_TRUNCATED, {.fraction = true});
  expect_read<unsigned>("ff", 255, 0, {.hex = true});
  for (const std::string_view text : {std::string_view("12\0", 3), {"12 kg"}}) expect_read(text, 0, VX_E_NOTNUMBER);
  for (const char* text : {"12 kg", " 1,2kg", "+12"}) expect_read(text, 12, 0, {.prefix = true});
  expect_read<int64_t>("99999999999999999999 kg", 0, VX_E_OVERFLOW, {.prefix = true});
  for (const char* text : {"kg", "- kg", ",1"}) expect_read(text, 0, VX_E_NOTNUMBER, {.prefix = true});
  const auto french = locale_of("fr_FR");
  EXPECT_TRUE(std::isnan(*french.parse<double>("x")));
  EXPECT_EQ(french.parse<double>("1e999").status(), VX_E_OVERFLOW);
  EXPECT_EQ(french.parse<double>("1 234,5").status(), VX_E_NOTNUMBER);
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    const auto bits = std::bit_cast<uint64_t>(vxnls::missing(letter));
    EXPECT_EQ(french.format(vxnls::missing(letter)).value(), std::string(1, letter));
    EXPECT_EQ(std::bit_cast<uint64_t>(french.parse<double>(std::string(".") + letter).value()), bits);
  }
}

// The rooms of the header hold the longest texts that can be asked for.
TEST(Values, RoomsHoldTheLongestTexts) {
  const auto locale = host().locale("en_US", "UTC", vxnls::patterns{}).value();
  VXLocaleData& data = *locale.get()->localeData;
  data.groupSeparator = data.decimalPoint = 0x1F600;
  data.groupingPattern.text[0] = '1';
  for (int i = 0; i < 60; ++i) {
    data.currencySymbol.text[i] = 0x1F600;
    data.datePattern.text[i] = i % 2 == 0 ? '%' : 'A';
  }
  data.currencySymbol.length = data.datePattern.length = 60;
  data.dayNames[0] = data.currencySymbol;
  const double largest = -std::numeric_limits<double>::max();
  const auto number = locale.format(largest, {.decimals = 350, .group = true}).value();
  EXPECT_EQ(number.size(), 1u + 309 + 308 * 4 + 4 + 350);
  EXPECT_LE(number.size(), vxnls::double_room);
  for (const int width : {0, 512}) {
    const number_style style{.decimals = 350, .width = width};
    EXPECT_EQ(vxnls::to_utf32(locale.format(money{largest}, style).value()).value(),
              locale.format<std::u32string>(money{largest}, style).value());
  }
  EXPECT_EQ(locale.format(INT64_MIN, {.group = true}).status(), 0u);
  EXPECT_LE(locale.format(2026y / 11 / 22)->size(), vxnls::text_room);
}

}  // namespace
