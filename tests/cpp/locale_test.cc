// Values of the language written and read: held against the C interface, std::chrono and each other.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "tests/cpp/open_host.h"

namespace {

using namespace std::chrono_literals;
using namespace std::chrono;
using vxnls::form;
using vxnls::money;
using vxnls::number_style;
using vxnls::percent;

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

TEST(Locale, DatesAndTimesComeBackInEveryForm) {
  for (const char* name : {"en_US", "de_DE", "pl_PL", "ja_JP", "ar_EG", "hi_IN", "vi_VN", "fr_CA"}) {
    SCOPED_TRACE(name);
    const auto locale = vxtest::locale(name, "America/New_York");
    for (const form as : {form::main, form::medium_date, form::long_date}) {
      for (sys_days day = 1999y / 12 / 1; day < sys_days{2000y / 3 / 5}; day += days{1}) {
        expect_back(locale, year_month_day{day}, as, as);
        expect_back(locale, day, as, as);
        EXPECT_EQ(locale.format(local_days{day.time_since_epoch()}).value(), locale.format(day).value());
      }
      expect_back(locale, 1600y / 2 / 29, as, as);
      expect_back(locale, 9999y / 12 / 31, as, as);
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

TEST(Locale, FractionsAreReadAndNotWritten) {
  const auto locale = vxtest::locale("en_US");
  EXPECT_EQ(locale.parse<milliseconds>("10:30:15.250", form::any).status(), VX_E_NOMATCH);  // no locale has %s
  const auto own = vxtest::host().locale("en_US", "UTC", {.time = "%H:%M:%S.%s", .datetime = "%Y %m %d %H:%M:%S.%s"});
  const auto with = own.value();
  EXPECT_EQ(with.parse<milliseconds>("10:30:15.123").value(), 10h + 30min + 15123ms);
  EXPECT_EQ(with.parse<seconds>("10:30:15.999").value(), 10h + 30min + 15s);
  const auto at = sys_days{2026y / 11 / 21} + 23h + 59min + 59s;
  EXPECT_EQ(with.parse<sys_time<milliseconds>>("2026 11 21 23:59:59.999").value(), at + 999ms);
  EXPECT_EQ(with.parse<sys_seconds>("2026 11 21 23:59:59.999").value(), at);
  // The last nanosecond of a day is not rounded into the next one, and before 1960 time does not run backwards.
  const auto plain = vxtest::locale("de_DE");
  EXPECT_EQ(plain.format(at + 999999999ns).value(), "21.11.2026 23:59:59");
  EXPECT_EQ(plain.format(sys_days{1959y / 12 / 31} - 1ns).value(), "30.12.1959 23:59:59");
  EXPECT_EQ(plain.format(1ms).value(), "00:00:00");
}

TEST(Locale, InstantsFollowTheZone) {
  std::mt19937 random(1);
  for (const char* zone : {"Europe/Berlin", "America/New_York", "Asia/Kathmandu", "Australia/Lord_Howe"}) {
    const auto locale = vxtest::locale("de_DE", zone);
    for (int i = 0; i < 2000; ++i) {
      const sys_seconds at{seconds{static_cast<std::int64_t>(random() % 4000000000u) - 1000000000}};
      const local_seconds local{at.time_since_epoch() + vxtest::host().zone_at(zone, at).value().offset};
      EXPECT_EQ(locale.to_local(at), local);
      EXPECT_EQ(locale.format(at).value(), locale.format(local).value());
      const sys_seconds back = locale.to_sys(local);  // earlier, when the local time comes twice
      EXPECT_LE(back, at);
      EXPECT_EQ(locale.to_local(back), local);
    }
  }
  const auto berlin = vxtest::locale("de_DE", "Europe/Berlin");
  static const struct {
    const char* local;
    sys_seconds at;
  } cases[] = {
      {"25.10.2026 02:30:00", sys_days{2026y / 10 / 25} + 30min},      // twice: the first
      {"29.03.2026 02:30:00", sys_days{2026y / 3 / 29} + 1h + 30min},  // skipped: the offset before
      {"01.07.2026 00:00:00", sys_days{2026y / 6 / 30} + 22h},
  };
  for (const auto& c : cases) EXPECT_EQ(berlin.parse<sys_seconds>(c.local).value(), c.at) << c.local;
  const auto moving = vxtest::host().locale("de_DE", "UTC", vxnls::patterns{}).value();
  EXPECT_EQ(moving.set_zone("Asia/Tokyo"), 0u);
  EXPECT_EQ(moving.format(sys_seconds{sys_days{2026y / 1 / 1}}).value(), "01.01.2026 09:00:00");
  EXPECT_EQ(moving.set_zone("Asia/Nowhere"), VX_E_ZONE);
  EXPECT_EQ(moving.set_zone(""), VX_E_ZONE);
  EXPECT_EQ(moving.to_local(sys_seconds{}), local_seconds{9h});
}

// The library knows no leap day in years divisible by 4000; std::chrono does.
TEST(Locale, TheTwoCalendarsMeet) {
  const auto locale = vxtest::host().locale("en_US", "UTC", {.datetime = "%Y-%m-%d %H"}).value();
  NLSCalendarWork work{0, 0, 0, 0, {31, 0, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}, 1950};
  const auto expect_same_day = [&](year_month_day day) {
    const double number = NLSmdy(&work, static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                                 static_cast<int>(day.year()));
    for (const auto time : {0h, 5h}) {
      const auto at = sys_days{day}.time_since_epoch() + time;
      const auto counted = vxnls::detail::seconds_1960(at);
      ASSERT_TRUE(counted.has_value());
      EXPECT_EQ(*counted, number * 86400 + static_cast<double>(seconds{time}.count()));
      EXPECT_EQ(vxnls::detail::since_1970(*counted), at);
    }
  };
  for (sys_days day = 1582y / 1 / 1; day <= sys_days{20000y / 12 / 31};
       day += days{1 + std::abs(day.time_since_epoch().count()) % 41}) {
    if (vxnls::detail::exists(day)) expect_same_day(day);
  }
  for (const int year : {4000, 8000, 12000, 16000, 20000}) {
    const sys_days leap{std::chrono::year{year} / February / 29};
    expect_same_day(leap - days{1});
    expect_same_day(leap + days{1});
    expect_same_day(std::chrono::year{year} / 12 / 31);
    for (const auto time : {0s, 12h + 0s, 24h - 1s}) {
      EXPECT_EQ(locale.format(sys_seconds{leap} + time).status(), VX_E_RANGE);
      EXPECT_EQ(locale.format(sys_seconds{leap} + time).value_or("-"), "-");
    }
    EXPECT_EQ(locale.format(year_month_day{leap}).status(), VX_E_RANGE);
  }
  EXPECT_EQ(locale.parse<year_month_day>("02/29/4000").status(), VX_E_RANGE);
  EXPECT_EQ(locale.format(local_days{4000y / 3 / 1} + 1h).value(), "4000-03-01 01");
  EXPECT_EQ(locale.parse<local_seconds>("4000-03-01 01").value(), local_days{4000y / 3 / 1} + 1h);
}

TEST(Locale, RefusesWhatIsNoMoment) {
  const auto locale = vxtest::locale("en_US");
  for (const year_month_day day : {1581y / 12 / 31, 50y / 1 / 1, 2023y / 2 / 29, 20001y / 1 / 1, 2023y / 13 / 1}) {
    EXPECT_EQ(locale.format(day).status(), VX_E_RANGE);
  }
  for (const seconds time : {-1s, 86400s, seconds::max(), seconds::min()}) {
    EXPECT_EQ(locale.format(time).status(), VX_E_RANGE);
    EXPECT_EQ(locale.format(sys_seconds{time}).status(), time == -1s || time == 86400s ? 0 : VX_E_RANGE);
  }
  EXPECT_EQ(locale.format(hours::max()).status(), VX_E_RANGE);
  for (const sys_days day : {sys_days::min(), sys_days::max(), sys_days{1582y / 1 / 1} - days{1}}) {
    EXPECT_EQ(locale.format(day).status(), VX_E_RANGE);
  }
  EXPECT_EQ(locale.format(duration<double>(NAN)).status(), VX_E_RANGE);
  EXPECT_EQ(locale.format(sys_days{1582y / 1 / 1} - 1s).status(), VX_E_RANGE);
  const vxnls::locale empty;
  EXPECT_FALSE(empty);
  EXPECT_EQ(empty.format(1).status(), VX_E_NULL);
  EXPECT_EQ(empty.parse<int>("1").status(), VX_E_NULL);
  EXPECT_EQ(empty.set_zone("UTC"), VX_E_NULL);
}

TEST(Locale, ReadsAllOfATextOrAPrefix) {
  const auto locale = vxtest::locale("en_US");
  static const struct {
    const char* text;
    form as;
    bool whole, prefix;
    size_t consumed;
  } cases[] = {
      {"12/25/2020", form::main, true, true, 10},           {"  12/25/2020  ", form::main, true, true, 12},
      {"12/25/2020 and more", form::main, false, true, 10}, {"12/25/2020x", form::any, false, true, 10},
      {"Q3 2021 ", form::quarter, true, true, 7},           {"Q3 2021x", form::quarter, false, false, 0},
      {"W53 2020", form::iso_week, true, true, 8},          {"M7 2022", form::month, true, true, 7},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(locale.parse<year_month_day>(c.text, c.as).ok(), c.whole);
    const auto prefix = locale.parse<year_month_day>(c.text, {.as = c.as, .prefix = true});
    EXPECT_EQ(prefix.ok(), c.prefix);
    EXPECT_EQ(prefix.consumed(), c.consumed);
  }
}

TEST(Locale, WritesNumbersAsAsked) {
  const auto english = vxtest::locale("en_US");
  const auto german = vxtest::locale("de_DE");
  const double infinity = std::numeric_limits<double>::infinity();
  const auto doubles = std::to_array<std::tuple<double, number_style, const char*>>({
      {0, {}, "0"},
      {1234567.891, {}, "1234567.891"},
      {0.1 + 0.2, {}, "0.3"},
      {1234567.891, {.decimals = 2, .group = true}, "1,234,567.89"},
      {1234.5, {.decimals = 1, .width = 10}, "    1234.5"},
      {1234.5, {.decimals = 1, .width = -10}, "1234.5    "},
      {1234.5, {.decimals = 1, .width = 10, .zero_pad = true}, "00001234.5"},
      {1234.5, {.decimals = 0, .plus = true}, "+1235"},
      {1e100, {}, "1E+100"},
      {123456, {.decimals = 2, .flags = NLS_FORMAT_EXPONENT}, "1.23E+05"},
      {1234567.891, {.decimals = 2, .group = true, .width = 14, .flags = NLS_FORMAT_FIXED}, "  1,234,567.89"},
      {infinity, {}, "Inf"},
      {-infinity, {}, "-Inf"},
      {vxnls::missing(), {}, "."},
      {vxnls::missing('k'), {}, "K"},
  });
  for (const auto& [value, style, text] : doubles) {
    EXPECT_EQ(english.format(value, style).value(), text);
    EXPECT_EQ(english.format<std::u32string>(value, style).value(), vxnls::to_utf32(text).value());
  }
  EXPECT_EQ(english.format(1.5f).value(), "1.5");
  EXPECT_EQ(german.format(int8_t{-128}).value(), "-128");
  EXPECT_EQ(german.format(0).value(), "0");
  EXPECT_EQ(german.format(std::numeric_limits<int64_t>::min(), {.group = true}).value(), "-9.223.372.036.854.775.808");
  EXPECT_EQ(german.format(std::numeric_limits<uint64_t>::max(), {.plus = true}).value(), "18446744073709551615");
  EXPECT_EQ(german.format(42, {.width = 8, .zero_pad = true}).value(), "00000042");
  EXPECT_EQ(german.format(42, {.width = -6}).value(), "42    ");
  EXPECT_EQ(german.format(0, {.zero_pad = true}).value(), "0");
  EXPECT_EQ(german.format(255u, {.flags = NLS_FORMAT_HEX_LOWER | NLS_FORMAT_HEX_PREFIX}).value(), "0xff");
  EXPECT_EQ(german.format(percent{0.125}).value(), "13%");
  EXPECT_EQ(german.format(percent{-0.125}, {.decimals = 1, .parentheses = true}).value(), "(12,5%)");
  EXPECT_EQ(german.format(percent{infinity}).value(), "Inf%");
  EXPECT_EQ(german.format(percent{infinity}, {.width = 2}).status(), VX_E_TRUNCATED);
  EXPECT_EQ(*german.format(percent{infinity}, {.width = 2}), "");
  EXPECT_EQ(german.format(money{1234.5}).value(), "€1.234,50");
  EXPECT_EQ(german.format(money{1234.5}, {.decimals = 0}).value(), "€1.235");
  EXPECT_EQ(german.format(money{1234.5}, {.width = 12}).value(), "   €1.234,50");
  for (const int width : {-513, 513, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(german.format(1, {.width = width}).status(), VX_E_WIDTH);
    EXPECT_EQ(german.format(1.0, {.width = width}).status(), VX_E_WIDTH);
    EXPECT_EQ(german.format(money{1}, {.width = width}).status(), VX_E_WIDTH);
  }
  EXPECT_EQ(german.format(1.0, {.decimals = 351}).status(), VX_E_WIDTH);
  EXPECT_EQ(german.format(1, {.width = 512}).value().size(), 512u);
}

TEST(Locale, ReadsNumbersOfTheTypeAskedFor) {
  const auto english = vxtest::locale("en_US");
  EXPECT_EQ(english.parse<int8_t>("-128").value(), -128);
  EXPECT_EQ(english.parse<int8_t>("128").status(), VX_E_OVERFLOW);
  EXPECT_EQ(english.parse<uint16_t>("65535").value(), 65535);
  EXPECT_EQ(english.parse<uint16_t>("65536").status(), VX_E_OVERFLOW);
  EXPECT_EQ(*english.parse<uint16_t>("65536"), 0);
  EXPECT_EQ(english.parse<unsigned>("-1").status(), VX_E_NOTNUMBER);
  EXPECT_EQ(english.parse<int64_t>("9,223,372,036,854,775,808").status(), VX_E_OVERFLOW);
  EXPECT_EQ(english.parse<uint64_t>("18,446,744,073,709,551,615").value(), std::numeric_limits<uint64_t>::max());
  EXPECT_EQ(english.parse<unsigned>("ff", {.hex = true}).value(), 255u);
  EXPECT_EQ(english.parse<int>("12.50", {.fraction = true}).status(), VX_E_TRUNCATED);
  EXPECT_EQ(*english.parse<int>("12.50", {.fraction = true}), 12);
  EXPECT_EQ(english.parse<int>("12.0", {.fraction = true}).value(), 12);
  EXPECT_EQ(english.parse<int>(std::string_view("12\0", 3)).status(), VX_E_NOTNUMBER);
  EXPECT_EQ(english.parse<int>(" 12 ").value(), 12);
  EXPECT_EQ(english.parse<int>("12 kg").status(), VX_E_NOTNUMBER);
  for (const char* text : {"12 kg", "12kg", " 1,2kg", "+12", "12"}) {
    const auto read = english.parse<int>(text, {.prefix = true});
    EXPECT_EQ(read.value(), 12) << text;
    EXPECT_EQ(read.consumed(), std::string_view(text).find('2') + 1) << text;
  }
  for (const char* text : {"kg", "- kg", "+", ",1"}) EXPECT_FALSE(english.parse<int>(text, {.prefix = true})) << text;
  EXPECT_TRUE(std::isnan(english.parse<double>("").value()));
  EXPECT_EQ(std::bit_cast<uint64_t>(english.parse<double>(".A").value()), std::bit_cast<uint64_t>(vxnls::missing('A')));
  EXPECT_TRUE(std::isnan(*english.parse<double>("x")));
  EXPECT_EQ(english.parse<double>("1e999").status(), VX_E_OVERFLOW);
  const auto french = vxtest::locale("fr_FR");
  EXPECT_EQ(french.parse<double>("1 234,5").status(), VX_E_NOTNUMBER);
  EXPECT_EQ(french.parse<double>("1 234,5", {.spaces = true}).value(), 1234.5);
  // What is written is read: any double by its 17 digits, any integer.
  std::mt19937_64 random(3);
  for (int i = 0; i < 3000; ++i) {
    const auto number = std::bit_cast<double>(random());
    if (!std::isfinite(number)) continue;
    const auto text = french.format<vxnls::buffer<64>>(number, {.decimals = 16, .flags = NLS_FORMAT_EXPONENT});
    EXPECT_EQ(french.parse<double>(text->view()).value(), number);
    const auto whole = static_cast<int64_t>(random() >> (random() % 64));
    EXPECT_EQ(french.parse<int64_t>(french.format<std::u32string>(-whole, {.group = true}).value()).value(), -whole);
  }
}

// The rooms of the header hold the longest texts that can be asked for.
TEST(Locale, RoomsHoldTheLongestTexts) {
  const auto locale = vxtest::host().locale("en_US", "UTC", {.date = std::string(60, 'x')}).value();
  VXLocaleData& data = *locale.get()->localeData;
  data.groupSeparator = data.decimalPoint = 0x1F600;
  data.groupingPattern.text[0] = '1';
  for (int i = 0; i < 60; ++i) data.currencySymbol.text[i] = 0x1F600;
  data.currencySymbol.length = 60;
  data.datePattern.length = 60;
  for (int i = 0; i < 60; ++i) data.datePattern.text[i] = i % 2 == 0 ? '%' : 'A';
  data.dayNames[0] = data.currencySymbol;
  const double largest = -std::numeric_limits<double>::max();
  const auto number = locale.format(largest, {.decimals = 350, .group = true});
  EXPECT_EQ(number.status(), 0u);
  EXPECT_EQ(number->size(), 1u + 309 + 308 * 4 + 4 + 350);
  EXPECT_LE(number->size(), vxnls::double_room);
  for (const int width : {0, 512}) {
    for (const int decimals : {0, 100, 350}) {
      const auto amount = locale.format(money{largest}, {.decimals = decimals, .width = width});
      EXPECT_EQ(amount.status(), 0u);
      EXPECT_EQ(vxnls::to_utf32(*amount).value().size(),
                locale.format<std::u32string>(money{largest}, {.decimals = decimals, .width = width})->size());
    }
  }
  EXPECT_EQ(locale.format(std::numeric_limits<int64_t>::min(), {.group = true}).status(), 0u);
  EXPECT_LE(locale.format(2026y / 11 / 22)->size(), vxnls::text_room);
}

}  // namespace
