// Code points, coders, case and order: held against ICU and the C interface.
#include <gtest/gtest.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "tests/cpp/open_host.h"

namespace {

using vxnls::code_points;

static_assert(std::ranges::forward_range<code_points<char8_t>> && std::ranges::view<code_points<char8_t>> &&
              std::ranges::borrowed_range<code_points<char8_t>>);
static_assert(std::ranges::equal(code_points(u8"aé€😀"), code_points(u"aé€😀")));
static_assert(std::ranges::equal(code_points(std::string_view("a\xF0\x9F\x98z")), std::u32string_view(U"a\uFFFDz")));
static_assert(vxnls::is_well_formed("é") && !vxnls::is_well_formed("\xED\xA0\x80"));

template <class Text>
std::u32string decoded(const Text& text) {
  std::u32string all;
  for (const char32_t c : code_points(text)) all.push_back(c);
  return all;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // inside ICU's macros
std::u32string by_icu(std::string_view text) {
  std::u32string all;
  const auto size = static_cast<int32_t>(text.size());
  for (int32_t at = 0; at < size;) {
    UChar32 c = 0;
    U8_NEXT_OR_FFFD(text.data(), at, size, c);
    all.push_back(static_cast<char32_t>(c));
  }
  return all;
}
std::u32string by_icu(std::u16string_view text) {
  std::u32string all;
  const auto size = static_cast<int32_t>(text.size());
  for (int32_t at = 0; at < size;) {
    UChar32 c = 0;
    U16_NEXT_OR_FFFD(text.data(), at, size, c);
    all.push_back(static_cast<char32_t>(c));
  }
  return all;
}

#pragma GCC diagnostic pop

TEST(CodePoints, AreThoseOfIcu) {
  for (uint32_t bytes = 0; bytes < 0x10000; ++bytes) {
    const std::string pair{static_cast<char>(bytes >> 8), static_cast<char>(bytes)};
    for (const char* tail : {"", "\x80", "\xBF\x80", "z"}) {
      ASSERT_EQ(decoded(pair + tail), by_icu(pair + tail)) << std::hex << bytes << " " << tail;
    }
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
    ASSERT_EQ(decoded(narrow), by_icu(narrow));
    ASSERT_EQ(decoded(wide), by_icu(wide));
    const size_t good = vxnls::well_formed_prefix(narrow);
    ASSERT_EQ(vxnls::is_well_formed(narrow), good == narrow.size());
    ASSERT_EQ(by_icu(std::string_view(narrow).substr(0, good)).find(0xFFFD), std::u32string::npos);
  }
  EXPECT_EQ(decoded(std::u32string{0x41, 0xD800, 0x10FFFF, 0x110000, 0xFFFFFFFF}), U"A\uFFFD\U0010FFFF\uFFFD\uFFFD");
}

TEST(CodePoints, TellWhereTheyStand) {
  const std::string text = "aé\xFFz";
  std::vector<std::ptrdiff_t> places;
  std::vector<bool> good;
  const code_points all(text);
  for (auto at = all.begin(); at != all.end(); ++at) {
    places.push_back(at.base() - text.data());
    good.push_back(at.well_formed());
  }
  EXPECT_EQ(places, (std::vector<std::ptrdiff_t>{0, 1, 3, 4}));
  EXPECT_EQ(good, (std::vector<bool>{true, true, false, true}));
  EXPECT_TRUE(code_points("").empty());
  EXPECT_EQ(std::ranges::count_if(code_points("a1é٣"), vxnls::is_digit), 2);
}

#if !defined(__clang__) || __clang_major__ > 15  // older ones do not compile libstdc++'s adaptors
TEST(CodePoints, GoThroughAdaptors) {
  auto letters = code_points("1é2😀Ж") | std::views::filter(vxnls::is_alpha) |
                 std::views::transform([](char32_t c) { return c + 1; });
  EXPECT_TRUE(std::ranges::equal(letters, std::u32string_view(U"êЗ")));
}
#endif

TEST(Coders, ThereAndBack) {
  const std::string narrow = "aé€😀";
  const std::u32string wide = U"aé€😀";
  const std::u16string middle = u"aé€😀";
  EXPECT_EQ(vxnls::to_utf32(narrow).value(), wide);
  EXPECT_EQ(vxnls::to_utf32(middle).value(), wide);
  EXPECT_EQ(vxnls::to_utf8(wide).value(), narrow);
  EXPECT_EQ(vxnls::to_utf8(middle).value(), narrow);
  EXPECT_EQ(vxnls::to_utf16(wide).value(), middle);
  EXPECT_EQ(vxnls::to_utf16(narrow).value(), middle);
  EXPECT_EQ(vxnls::to_utf32("").value(), U"");
  std::string appended;
  for (const char32_t c : wide) vxnls::append(appended, c);
  EXPECT_EQ(appended, narrow);
  static const struct {
    std::string text;
    VXStatus status;
    size_t consumed;
  } cases[] = {{"aé\xFFz", VX_E_SEQUENCE, 3}, {"aé€\xF0\x9F", VX_E_INCOMPLETE, 6}, {"\x80", VX_E_SEQUENCE, 0}};
  for (const auto& c : cases) {
    const auto read = vxnls::to_utf32(c.text);
    EXPECT_EQ(read.status(), c.status);
    EXPECT_EQ(read.consumed(), c.consumed);
    EXPECT_EQ(vxnls::to_utf8(*read).value(), c.text.substr(0, c.consumed));
    EXPECT_EQ(*vxnls::to_utf16(c.text), *vxnls::to_utf16(c.text.substr(0, c.consumed)));
    EXPECT_EQ(vxnls::to_utf16(c.text).status(), c.status);
  }
  EXPECT_EQ(vxnls::to_utf8(std::u16string{u"\xD83D"}).status(), VX_E_INCOMPLETE);
}

TEST(Case, OfBothFlavours) {
  vxtest::host();
  EXPECT_EQ(vxnls::lower("ÀÉ Straße Σ"), "àé straße σ");
  EXPECT_EQ(vxnls::upper("àÿ ß"), "ÀŸ ß");
  EXPECT_EQ(vxnls::upper(U"àÿ"), U"ÀŸ");
  EXPECT_EQ(vxnls::lower(U"ÀŸ"), U"àÿ");
  EXPECT_EQ(vxnls::lower(""), "");
  EXPECT_EQ(vxnls::lower("ȺȺȺ"), "ⱥⱥⱥ");  // two bytes become three
  EXPECT_EQ(vxnls::upper("\x80é"), "\x80É");
  char room[5];
  EXPECT_EQ(*vxnls::upper_to(room, "éà"), "ÉÀ");
  EXPECT_EQ(vxnls::upper_to(room, "éàa").status(), 0u);
  EXPECT_EQ(vxnls::lower_to(room, "ȺȺ").status(), VX_E_ROOM);
  EXPECT_EQ(*vxnls::lower_to(room, "ȺȺ"), "ⱥ");
  EXPECT_EQ(vxnls::lower_to(std::span<char>(), "A").status(), VX_E_ROOM);
  EXPECT_EQ(vxnls::lower_to(std::span<char>(), "").status(), 0u);
}

TEST(Order, OfBothFlavours) {
  static const struct {
    const char* a;
    const char* b;
    int order, caseless;
    bool equal_caseless;
  } cases[] = {
      {"abc", "abc", 0, 0, true},    {"abc", "ABC", 1, 1, true}, {"abc ", "abc", 1, 0, true},
      {"abc", "abd", -1, -1, false}, {"é", "É", 1, 1, true},     {"B", "a", -1, 1, false},
      {"", "", 0, 0, true},          {"", "a", -1, -1, false},
  };
  const auto sign = [](auto order) { return order < 0 ? -1 : order > 0 ? 1 : 0; };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.a << "|" << c.b);
    const auto a = vxnls::to_utf32(c.a).value();
    const auto b = vxnls::to_utf32(c.b).value();
    EXPECT_EQ(sign(vxnls::compare(c.a, c.b)), c.order);
    EXPECT_EQ(sign(vxnls::compare(a, b)), c.order);
    EXPECT_EQ(sign(vxnls::compare_caseless(c.a, c.b)), c.caseless);
    EXPECT_EQ(sign(vxnls::compare_caseless(a, b)), c.caseless);
    EXPECT_EQ(vxnls::equal_caseless(c.a, c.b), c.equal_caseless);
    EXPECT_EQ(vxnls::equal_caseless(a, b), c.equal_caseless);
  }
}

}  // namespace
