// Results, explanations and buffers; the host's own calls.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

#include "tests/cpp/open_host.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::year_month_day;
using vxnls::form;

TEST(Result, HasAValueOrSaysWhyNot) {
  const auto english = vxtest::locale("en_US");
  const auto good = english.parse<double>(" 1,234.5 ");
  EXPECT_TRUE(good.ok() && good);
  EXPECT_EQ(good.value(), 1234.5);
  EXPECT_EQ(good.consumed(), 9u);
  EXPECT_EQ(good.why().message(), "");
  const auto bad = english.parse<int>("12x");
  EXPECT_FALSE(bad);
  EXPECT_EQ(bad.value_or(-1), -1);
  EXPECT_EQ(bad.status(), VX_E_NOTNUMBER);
  try {
    (void)bad.value();
    FAIL() << "nothing was thrown";
  } catch (const vxnls::error& error) {
    EXPECT_EQ(error.status(), VX_E_NOTNUMBER);
    EXPECT_STREQ(error.what(), "vxnls: status 0x803fe810: at 2: more text follows");
  }
  // What cannot be copied moves out.
  vxnls::result<std::unique_ptr<int>> moving(0, std::make_unique<int>(7));
  EXPECT_EQ(*std::move(moving).value(), 7);
}

TEST(Result, ExplainsInUnitsOfTheText) {
  const auto english = vxtest::locale("en_US");
  static const struct {
    const char* text;
    const char32_t* wide;
    const char* message;
    size_t position, wide_position;
  } cases[] = {
      {"2021-13-05", U"2021-13-05", "a number out of range: 13 is not 1 to 12, reading %m", 5, 5},
      {"5 März 2021", U"5 März 2021", "another character is wanted", 1, 1},
      {"2021-02-31", U"2021-02-31", "the month has no such day", 0, 0},
      {"2021-02-28é x", U"2021-02-28é x", "more text follows", 10, 10},
      {"", U"", "the text ends too early, reading %m", 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const auto narrow = english.parse<year_month_day>(std::string_view(c.text), form::any);
    const auto wide = english.parse<year_month_day>(std::u32string_view(c.wide), form::any);
    EXPECT_FALSE(narrow);
    EXPECT_EQ(narrow.status(), wide.status());
    EXPECT_EQ(narrow.why().message(), "at " + std::to_string(c.position) + ": " + c.message);
    EXPECT_EQ(wide.why().message(), "at " + std::to_string(c.wide_position) + ": " + c.message);
  }
  const auto german = vxtest::locale("de_DE");
  EXPECT_EQ(german.parse<year_month_day>("5. Märzx2021", form::long_date).why().position, 8u);
  EXPECT_EQ(german.parse<year_month_day>(U"5. Märzx2021", form::long_date).why().position, 7u);
  const auto narrow = english.parse<double>("é");
  EXPECT_EQ(narrow.why().length, 2u);
  EXPECT_EQ(english.parse<double>(U"é").why().length, 1u);
  EXPECT_EQ(english.parse<double>("é", {.explain = false}).why().what, nullptr);
  EXPECT_EQ(english.parse<year_month_day>("x", {.explain = false}).why().what, nullptr);
}

TEST(Result, FormatsIntoWhatTheCallerHas) {
  const auto german = vxtest::locale("de_DE");
  constexpr auto day = 2021y / std::chrono::March / 5;
  const std::u32string wide = U"5. März 2021";
  EXPECT_EQ(german.format<std::u32string>(day, form::long_date).value(), wide);
  const std::string narrow = german.format(day, form::long_date).value();
  EXPECT_EQ(narrow, "5. März 2021");
  for (size_t room = 0; room <= narrow.size() + 1; ++room) {
    std::string bytes(room, 'x');
    const auto done = german.format_to(std::span<char>(bytes), day, form::long_date);
    EXPECT_EQ(done.status(), room < narrow.size() ? VX_E_TRUNCATED : 0);
    EXPECT_EQ(*done, narrow.substr(0, room));
    EXPECT_EQ(done->data(), bytes.data());
  }
  std::array<char, 4> array;
  EXPECT_EQ(*german.format_to(array, day), "05.0");
  char32_t units[4];
  EXPECT_EQ(*german.format_to(units, day, form::long_date), wide.substr(0, 4));
  const auto held = german.format<vxnls::buffer<20>>(day);
  EXPECT_EQ(held->view(), "05.03.2021");
  EXPECT_EQ((german.format<vxnls::buffer<5>>(day).status()), VX_E_TRUNCATED);
  EXPECT_EQ((german.format<vxnls::buffer<3, char32_t>>(day)->view()), U"05.");
  // Percentages and amounts go through UTF-32 and are cut at whole characters.
  char money[8];
  const auto cut = german.format_to(std::span(money).first(2), vxnls::money{5.0});
  EXPECT_EQ(cut.status(), VX_E_TRUNCATED);
  EXPECT_EQ(*cut, "");
  EXPECT_EQ(*german.format_to(money, vxnls::money{5.0}), "€5,00");
}

TEST(Host, GivesOutLocalesAndZones) {
  auto& host = vxtest::host();
  EXPECT_EQ(host.locale("de-DE", "europe/berlin").value().name(), "de_DE");
  // A NUL must not cut a name short, nor may a name be too long or lead elsewhere.
  const std::string longish(300, 'd'), very_long(10000, 'A');
  for (const std::string_view none : {std::string_view("xx_YY"),
                                      {"de_DE\0x", 7},
                                      {"UTC\0x", 5},
                                      {"\0", 1},
                                      {"../de"},
                                      {"../../etc/passwd"},
                                      {"/etc/localtime"},
                                      {longish},
                                      {very_long}}) {
    SCOPED_TRACE(none.substr(0, 30));
    EXPECT_EQ(host.locale(none).status(), VX_E_NOMATCH);
    EXPECT_EQ(host.locale("de_DE", none).status(), VX_E_ZONE);
    EXPECT_EQ(host.locale("de_DE", "UTC").value().set_zone(none), VX_E_ZONE);
    EXPECT_EQ(host.resolve(none).status(), VX_E_NOMATCH);
    EXPECT_EQ(host.zone_at(none, std::chrono::sys_seconds{}).status(), VX_E_ZONE);
  }
  EXPECT_EQ(host.resolve("zh_TW").value(), "zh_Hant_TW");
  EXPECT_EQ(host.resolve("de_US").status(), VX_W_SUBSTITUTE);
  EXPECT_EQ(*host.resolve("de_US"), "de");
  EXPECT_GT(host.locales().size(), 700u);
  EXPECT_GT(host.zones().size(), 400u);
  EXPECT_NE(host.versions().find("ICU"), std::string_view::npos);
  EXPECT_NE(host.describe(VX_E_ZONE).find("0x803fe83c"), std::string::npos);
  const auto summer = host.zone_at("Europe/Berlin", std::chrono::sys_days{2026y / 7 / 1}).value();
  EXPECT_EQ(summer.id + " " + summer.abbreviation, "Europe/Berlin CEST");
  EXPECT_EQ(summer.offset, 2h);
  EXPECT_TRUE(summer.summer_time);
  EXPECT_EQ(host.zone_at("Europe/Berlin", std::chrono::local_days{2026y / 1 / 1}).value().offset, 1h);
  EXPECT_EQ(host.zone_at("", std::chrono::sys_seconds::max()).status(), VX_E_RANGE);
}

TEST(Host, OpensClosesAndTells) {
  const auto nowhere = vxnls::host::open("/nowhere");
  EXPECT_FALSE(nowhere);
  EXPECT_NE(nowhere.why().message().find("/nowhere/"), std::string::npos);
  const auto before = vxhostAlive();
  {
    auto opened = vxnls::host::open().value();
    std::string journal;
    opened.on_journal([&](const vxnls::journal_entry& entry) { journal.append(entry.text); });
    vxnls::host moved = std::move(opened);
    EXPECT_EQ(opened.get(), nullptr);
    EXPECT_TRUE(moved.locale("fr_FR", "UTC"));
    setenv("TZ", "No/Such/Zone", 1);
    EXPECT_TRUE(moved.locale("fr_FR"));
    unsetenv("TZ");
    EXPECT_FALSE(journal.empty());
    moved = vxnls::host::open().value();
    EXPECT_TRUE(moved.locale("fr_FR", "UTC"));
    moved.on_journal(nullptr);
  }
  EXPECT_EQ(vxhostAlive(), before);
}

TEST(Host, TakesPatternsOfOnesOwn) {
  auto& host = vxtest::host();
  const auto log =
      host.locale("en_US", "UTC", {.date = "%Y年%m月%d日", .short_time = "%Hh%M", .datetime = "%Y-%m-%dT%H:%M:%S%z"})
          .value();
  EXPECT_EQ(log.format(2026y / 11 / 21).value(), "2026年11月21日");
  EXPECT_EQ(log.format(14h + 5min, form::short_time).value(), "14h05");
  EXPECT_EQ(log.format(14h + 5min).value(), host.locale("en_US", "UTC").value().format(14h + 5min).value());
  const std::chrono::sys_seconds at = std::chrono::sys_days{2026y / 11 / 21} + 14h;
  EXPECT_EQ(log.format(at).value(), "2026-11-21T14:00:00+0000");
  EXPECT_EQ(log.parse<std::chrono::sys_seconds>("2026-11-21T16:00:00+02:00").value(), at);
  EXPECT_TRUE(host.locale("en_US", "UTC", {.date = std::string(60, 'x')}));
  EXPECT_EQ(host.locale("en_US", "UTC", {.date = std::string(61, 'x')}).status(), VX_E_LENGTH);
  EXPECT_EQ(host.locale("en_US", "UTC", {.time = "\xFF"}).status(), VX_E_SEQUENCE);
}

}  // namespace
