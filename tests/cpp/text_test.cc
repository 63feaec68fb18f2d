// Code points, coders, case; results and their explanations; the host's own calls. What docs/cpp.md shows is run by
// tests/docs and not repeated here.
#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include <memory>
#include <random>

#include "tests/cpp/open_host.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::year_month_day;
using vxnls::code_points;
using vxnls::form;

static_assert(std::ranges::forward_range<code_points<char8_t>> && std::ranges::view<code_points<char8_t>> &&
              std::ranges::borrowed_range<code_points<char8_t>>);
static_assert(std::ranges::equal(code_points(u8"aé€😀"), code_points(u"aé€😀")));

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
    for (const char* tail : {"", "\x80", "\xBF\x80", "z"}) ASSERT_NO_FATAL_FAILURE(expect_points(pair + tail));
  }
  std::mt19937 random(5);
  constexpr char16_t units[] = {'a', 0xE9, 0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFF};
  constexpr uint8_t bytes[] = {'a', 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC1, 0xC2, 0xE0, 0xED, 0xEF, 0xF0, 0xF4, 0xF5};
  for (int i = 0; i < 100000; ++i) {
    std::string narrow;
    std::u16string wide;
    for (auto n = random() % 9; n > 0; --n) {
      narrow.push_back(static_cast<char>(bytes[random() % std::size(bytes)]));
      wide.push_back(units[random() % std::size(units)]);
    }
    ASSERT_NO_FATAL_FAILURE(expect_points(narrow));
    ASSERT_NO_FATAL_FAILURE(expect_points(wide, icu::UnicodeString(wide.data(), static_cast<int32_t>(wide.size()))));
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
    EXPECT_EQ(vxnls::to_utf8(*wide).value(), text.substr(0, good));
    EXPECT_EQ(vxnls::to_utf8(*middle).value(), text.substr(0, good));
    EXPECT_EQ(vxnls::to_utf16(*wide).value(), *middle);
    EXPECT_EQ(vxnls::to_utf32(*middle).value(), *wide);
  }
  EXPECT_EQ(vxnls::to_utf8(std::u16string{u"\xD83D"}).status(), VX_E_INCOMPLETE);
}

TEST(Case, GrowsAndKeepsToTheRoom) {
  vxtest::host();
  EXPECT_EQ(vxnls::upper(U"àÿ") + vxnls::lower(U"ÀŸ"), U"ÀŸàÿ");
  EXPECT_EQ(vxnls::lower("ȺȺȺ"), "ⱥⱥⱥ");  // two bytes become three
  EXPECT_EQ(vxnls::upper("\x80é"), "\x80É");
  char room[5];
  EXPECT_EQ(vxnls::upper_to(room, "éàa").value(), "ÉÀA");
  EXPECT_EQ(vxnls::lower_to(room, "ȺȺ").status(), VX_E_ROOM);
  EXPECT_EQ(*vxnls::lower_to(room, "ȺȺ"), "ⱥ");
  EXPECT_EQ(vxnls::lower_to(std::span<char>(), "A").status(), VX_E_ROOM);
  EXPECT_EQ(vxnls::lower_to(std::span<char>(), "").status(), 0u);
  EXPECT_TRUE(vxnls::compare(U"abc ", U"abc") > 0 && vxnls::compare_caseless(U"é", U"É") > 0);
  EXPECT_TRUE(vxnls::equal_caseless(U"É ", U"é"));
}

TEST(Result, ExplainsInUnitsOfTheText) {
  const auto english = vxtest::locale("en_US");
  const auto reason = [&](auto text) { return english.parse<year_month_day>(text, form::any).why().message(); };
  for (const auto& [text, message] : {std::pair{"5 März 2021", "at 1: another character is wanted"},
                                      {"2021-02-31", "at 0: the month has no such day"},
                                      {"2021-02-28é x", "at 10: more text follows"},
                                      {"", "at 0: the text ends too early, reading %m"}}) {
    EXPECT_EQ(reason(std::string_view(text)), message);
    EXPECT_EQ(reason(std::u32string_view(vxnls::to_utf32(text).value())), message);
  }
  const auto german = vxtest::locale("de_DE");
  EXPECT_EQ(german.parse<year_month_day>("5. Märzx2021", form::long_date).why().position, 8u);
  EXPECT_EQ(german.parse<year_month_day>(U"5. Märzx2021", form::long_date).why().position, 7u);
  EXPECT_EQ(english.parse<double>("é").why().length, 2u);
  EXPECT_EQ(english.parse<double>(U"é").why().length, 1u);
  EXPECT_EQ(english.parse<double>("é", {.explain = false}).why().what, nullptr);
  EXPECT_EQ(english.parse<year_month_day>("x", {.explain = false}).why().what, nullptr);
  EXPECT_EQ(*vxnls::result<std::unique_ptr<int>>(0, std::make_unique<int>(7)).value(), 7);  // moved out
}

TEST(Result, FormatsIntoWhatTheCallerHas) {
  const auto german = vxtest::locale("de_DE");
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
  EXPECT_EQ((german.format<vxnls::buffer<3, char32_t>>(2021y / 3 / 5)->view()), U"05.");
}

TEST(Host, HasLocalesZonesAndAJournal) {
  auto& host = vxtest::host();
  const std::string longish(300, 'd');  // nor must a NUL cut a name short
  for (const std::string_view none : {std::string_view("de_DE\0x", 7), {"UTC\0x", 5}, {"\0", 1}, {longish}}) {
    EXPECT_EQ(host.locale(none).status(), VX_E_NOMATCH);
    EXPECT_EQ(host.locale("de_DE", none).status(), VX_E_ZONE);
    EXPECT_EQ(vxtest::locale("de_DE").set_zone(none), VX_E_ZONE);
    EXPECT_EQ(host.resolve(none).status(), VX_E_NOMATCH);
    EXPECT_EQ(host.zone_at(none, std::chrono::sys_seconds{}).status(), VX_E_ZONE);
  }
  EXPECT_EQ(host.resolve("de_US").status(), VX_W_SUBSTITUTE);
  EXPECT_EQ(*host.resolve("de_US"), "de");
  EXPECT_EQ(host.versions().find("ICU 7"), 0u);
  EXPECT_EQ(host.describe(VX_E_ZONE), "0x803fe83c: no time zone has this name");
  const auto summer = host.zone_at("europe/berlin", std::chrono::sys_days{2026y / 7 / 1}).value();
  EXPECT_EQ(summer.id + " " + summer.abbreviation, "Europe/Berlin CEST");
  EXPECT_TRUE(summer.offset == 2h && summer.summer_time);
  EXPECT_EQ(host.zone_at("Europe/Berlin", std::chrono::local_days{2026y / 1 / 1}).value().offset, 1h);
  EXPECT_EQ(host.zone_at("", std::chrono::sys_seconds::max()).status(), VX_E_RANGE);
  EXPECT_TRUE(host.locale("en_US", "UTC", {.date = std::string(60, 'x')}));
  EXPECT_EQ(host.locale("en_US", "UTC", {.date = std::string(61, 'x')}).status(), VX_E_LENGTH);
  EXPECT_EQ(host.locale("en_US", "UTC", {.time = "\xFF"}).status(), VX_E_SEQUENCE);

  EXPECT_NE(vxnls::host::open("/nowhere").why().message().find("/nowhere/"), std::string::npos);
  const auto before = vxhostAlive();
  {
    auto opened = vxnls::host::open().value();
    std::string journal;
    opened.on_journal([&](const vxnls::journal_entry& entry) { journal.append(entry.text); });
    vxnls::host moved = std::move(opened);
    EXPECT_EQ(opened.get(), nullptr);
    setenv("TZ", "No/Such/Zone", 1);
    EXPECT_TRUE(moved.locale("fr_FR"));
    unsetenv("TZ");
    EXPECT_FALSE(journal.empty());
    moved = vxnls::host::open().value();
    EXPECT_TRUE(moved.locale("fr_FR", "UTC"));
  }
  EXPECT_EQ(vxhostAlive(), before);
}

}  // namespace
