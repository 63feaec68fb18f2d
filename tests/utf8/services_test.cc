// Comparing, finding, trimming and copying: all short texts, held against the standard library's strings.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/character_host.h"
#include "tests/unicode/texts.h"
#include "utf8/characters.h"
#include "vxnls/utf8.h"

namespace {

using namespace vxtest;

/// Calls with one text, or two, that end at a page that may not be touched.
template <class Function, class... More>
auto with(Function function, std::string_view text, More... more) {
  static GuardedBuffer<uint8_t> memory(64);
  return function(memory.copy(bytes(text), text.size()), length_of(text), more...);
}
template <class Function, class... More>
auto with_two(Function function, std::string_view a, std::string_view b, More... more) {
  static GuardedBuffer<uint8_t> memory(64);
  return with(function, a, memory.copy(bytes(b), b.size()), length_of(b), more...);
}

/// A few pairs beyond the built-in tables, which a host knows.
uint32_t lower_of(uint32_t c) {
  switch (c) {
    case 'K': return 'k';
    case 0xC9: return 0xE9;     // 2 bytes, 2 bytes
    case 0x23A: return 0x2C65;  // 2 bytes, 3 bytes
    case 0x212A: return 'k';    // 3 bytes, 1 byte
    default: return c;
  }
}

/// By the first characters whose lower-case forms differ, or by what goes on with more than blanks, also below the
/// blank: kept on purpose. Case decides what is equal otherwise.
int32_t order_of(std::u32string_view a, std::u32string_view b) {
  int32_t by_case = 0;
  for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    const uint32_t x = lower_of(a[i]), y = lower_of(b[i]);
    if (x != y) return x < y ? -2 : 2;
    if (by_case == 0 && a[i] != b[i]) by_case = a[i] < b[i] ? -1 : 1;
  }
  if (a.size() > b.size()) return a.find_first_not_of(U' ', b.size()) == a.npos ? by_case : 2;
  return a.size() == b.size() || b.find_first_not_of(U' ', a.size()) == b.npos ? by_case : -2;
}

struct Text {
  std::u32string characters;
  std::string utf8;
};

/// All of up to three characters: case pairs of the same and of different lengths, blanks and what is below them.
std::vector<Text> short_texts() {
  std::vector<Text> texts = {{}};
  for (size_t from = 0; texts[from].characters.size() < 3; ++from) {
    for (const char32_t c : std::u32string_view(U"\t kK\u00E9\u00C9\u023A\u2C65\u212A")) {
      texts.push_back({texts[from].characters + c, texts[from].utf8 + utf8_of(c)});
    }
  }
  return texts;
}

TEST(Services, EveryPairOfShortTexts) {
  CharacterHost host;
  host.lower = lower_of;
  std::vector<Text> texts = short_texts();
  for (const Text& a : texts) {
    host.asked.clear();
    for (const Text& b : texts) {
      const int by_bytes = a.utf8.compare(b.utf8);
      const auto found = static_cast<int64_t>(a.utf8.find(b.utf8));  // npos: -1
      ASSERT_TRUE(with_two(vxzsu8Compare, a.utf8, b.utf8) == (by_bytes > 0) - (by_bytes < 0) &&
                  with_two(vxzsu8NormCompare, a.utf8, b.utf8) == order_of(a.characters, b.characters) &&
                  with_two(vxzsu8Find, a.utf8, b.utf8) == found &&
                  (b.characters.size() != 1 || with(vxzsu8Index, a.utf8, b.characters[0]) == found))
          << a.utf8 << '|' << b.utf8;
    }
    for (const auto& question : host.asked) ASSERT_EQ(question.argument, 0u) << "the host is told that it compares";
  }
  // Transitive among texts without bytes below the blank: once sorted, none is less than one before it.
  std::erase_if(texts, [](const Text& text) { return text.utf8.find('\t') != std::string::npos; });
  const auto order = [](const Text& a, const Text& b) { return with_two(vxzsu8NormCompare, a.utf8, b.utf8); };
  std::sort(texts.begin(), texts.end(), [&](const Text& a, const Text& b) { return order(a, b) == -2; });
  for (size_t i = 0; i < texts.size(); ++i) {
    for (size_t j = 0; j < i; ++j) {
      ASSERT_NE(order(texts[i], texts[j]), -2) << texts[i].utf8 << '|' << texts[j].utf8;
      ASSERT_EQ(order(texts[i], texts[j]), -order(texts[j], texts[i])) << texts[i].utf8 << '|' << texts[j].utf8;
    }
  }
}

// Trimming, justifying and finding any bytes is what the fuzz target of the services holds against std::string.
TEST(Services, BlanksCopiesAndCharacters) {
  for (const std::string_view text : {"", "  ", "ab", " a b  ", "\u00A0\t "}) {
    const size_t kept = text.find_last_not_of(' ') + 1, first = std::min(text.find_first_not_of(' '), text.size());
    for (const Guard guard : {Guard::behind, Guard::before}) {
      GuardedBuffer<uint8_t> memory(64);
      uint8_t* const place = memory.copy(bytes(text), text.size(), guard);
      EXPECT_EQ(vxzsu8StripBlanks(place, length_of(text)), static_cast<int64_t>(kept));
      vxzsu8LeftJustify(place, length_of(text));
      EXPECT_EQ(std::string(place, place + text.size()), std::string(text.substr(first)).append(first, ' '));
      vxzsu8RightJustify(memory.copy(bytes(text), text.size(), guard), length_of(text));
      EXPECT_EQ(std::string(place, place + text.size()), std::string(text.size() - kept, ' ').append(text, 0, kept));
      for (size_t room = 0; room <= text.size() + 1; ++room) {
        uint8_t* const out = memory.at(room, guard);
        const int64_t count = with(vxzsu8Copy, text, out, static_cast<int64_t>(room));
        EXPECT_EQ(std::string(out, out + count), text.substr(0, room));
      }
    }
  }
  uint8_t text[] = "abcd";
  EXPECT_EQ(vxzsu8Copy(text, 3, text + 1, 3), 3);
  EXPECT_EQ(std::string(text, text + 4), "aabc");
  // The last two characters lie above U+10FFFF, so that nobody can look for them.
  const std::string_view past = "a\U0010FFFF\xF4\x90\x80\x80\xEF\xBF\xBF\xBF";
  for (const VXChar c : {0x110000u, 0xFFFFFFFFu}) EXPECT_EQ(with(vxzsu8Index, past, c), -1);
  EXPECT_EQ(with(vxzsu8Index, past, 0x10FFFFu), 1);
}

TEST(Services, NormalComparison) {
  CharacterHost host;
  host.lower = lower_of;
  static constexpr struct {
    std::string_view a, b;
    int32_t result;
  } cases[] = {
      {"_", "A", -2},
      {"_", "Z", -2},
      // Ill-formed text: U+FFFD for what cannot be decoded; different bytes of one code point are greater either way.
      {"\xC3", "\xC3", 0},
      {"\x80", "\x81", 1},
      {"\x81", "\x80", 1},
      {"\xE2\x84", "\xE2\x84\xAA", 2},
      {"\xE0\x81\xA1", "a", 1},
      {"a", "\xE0\x81\xA1", 1},
      {"\xF8", "\xF8\x80", 1},
      {"\xC3(", "\xC3)", -2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::string(c.a)) + " " + testing::PrintToString(std::string(c.b)));
    EXPECT_EQ(with_two(vxzsu8NormCompareText, c.a, c.b, UINT64_C(0)), c.result) << "the fifth argument is ignored";
    EXPECT_EQ(with_two(vxzsu8NormEqual, c.a, c.b), c.result / 2 == 0);
    EXPECT_EQ(with_two(vxzsu8NormEqualText, c.a, c.b, UINT64_C(7)), c.result / 2 == 0);
    EXPECT_EQ(with_two(vxzsu8CompareText, c.a, c.b, UINT64_C(1)), with_two(vxzsu8Compare, c.a, c.b));
  }
}

TEST(Services, NormalComparisonWithoutAHost) {
  EXPECT_EQ(with_two(vxzsu8NormCompare, "\u00E9", "\u00C9"), 1);
  EXPECT_EQ(with_two(vxzsu8NormCompare, "\u0181", "\u0253"), -1);
  EXPECT_EQ(with_two(vxzsu8NormCompare, "\U00010400", "\U00010428"), -2);
}

void expect_no_normaliser() {
  VXStatus given = 77;
  EXPECT_EQ(with(vxzsu8ICUNormalize, "abc", 5u, 11u, 12u, 13u, nullptr), VX_E_MEMORY);
  EXPECT_EQ(with_two(vxzsu8ICUNormCompare, "ab", "cde", 6u, nullptr), 0);
  EXPECT_EQ(with_two(vxzsu8ICUNormEqual, "ab", "cde", 6u, &given), 0);
  EXPECT_EQ(given, VX_E_MEMORY);
  given = 77;
  EXPECT_EQ(with(vxzsu8ICUNormalize, "abc", 5u, 11u, 12u, 13u, &given), VX_E_MEMORY);
  EXPECT_EQ(given, VX_E_MEMORY);
}

// What there is the tests of the host normalise with.
TEST(Services, NormaliserThatCannotBeHad) {
  expect_no_normaliser();
  CharacterHost host;
  expect_no_normaliser();
}

TEST(Services, NullAndNegativeLengthsAreEmptyTextsAndNoRoom) {
  uint8_t text[] = {'a', 'B', 0};
  struct Nothing {
    uint8_t* at;
    int64_t n;
  };
  for (const auto& [none, n] : {Nothing{nullptr, 2}, {text, 0}, {text, -1}, {text, INT64_MIN}}) {
    for (const auto measure : {UTF8_SLENB, UTF8_BLENB, vxzsu8NumChars, vxzsu8StripBlanks, vxzsu8ByteLength})
      EXPECT_EQ(measure(none, n), 0);
    for (const auto change : {vxzsu8Lower, vxzsu8Upper, vxzsu8LeftJustify, vxzsu8RightJustify}) change(none, n);
    EXPECT_EQ(vxzsu8Copy(none, n, text, 1) + vxzsu8Copy(text, 1, none, n), 0);
    EXPECT_EQ(vxzsu8Index(none, n, 'a'), -1);
    EXPECT_EQ(vxzsu8Find(none, n, text, 1), -1);
    EXPECT_EQ(vxzsu8Find(text, 1, none, n), 0);
    EXPECT_EQ(vxzsu8Compare(none, n, text, 1), -1);
    EXPECT_EQ(vxzsu8Compare(text, 1, none, n), 1);
    EXPECT_EQ(vxzsu8NormCompare(none, n, text, 1), -2);
    EXPECT_EQ(vxzsu8NormCompare(text, 1, none, n), 2);
    EXPECT_EQ(vxzsu8NormCompare(none, n, none, n), 0);
    int64_t written = -1;
    for (const auto into : {vxzsu8Lower2, vxzsu8Upper2}) {
      EXPECT_TRUE(into(none, n, text, 2, &written) == 0 && written == 0);
      EXPECT_TRUE(into(text, 2, none, n, &written) == 0 && written == 2) << "no room: it measures";
      EXPECT_EQ(into(text, 2, none, n, nullptr), 0u);
    }
    for (const auto coder : {vxzsu8Encode, vxzsu8Decode}) {
      for (const uint32_t options : {0u, 1u, 4u, 5u}) {
        EXPECT_TRUE(coder(none, n, text, 2, &written, options) == 0 && written == 0) << options;
        EXPECT_TRUE(coder(text, 2, none, n, &written, options) == VX_E_ROOM && written == 0) << options;
        EXPECT_EQ(coder(text, 2, none, n, nullptr, options), VX_E_ROOM);
      }
    }
  }
  EXPECT_EQ(text[0] * 256 + text[1], 'a' * 256 + 'B');
  uint8_t valid = 9;
  int64_t characters = -7, length = -7;
  EXPECT_EQ(utf8_len(nullptr) + UTF8_SLEN(nullptr) + UTF8_BLEN(nullptr), 0);
  EXPECT_EQ(vxzsu8CharSize(nullptr, &valid), 0);
  EXPECT_EQ(valid, 0);
  EXPECT_EQ(vxzsu8NextChar(nullptr), nullptr);
  EXPECT_EQ(vxzsu8IsCombining(nullptr), 0);
  EXPECT_EQ(vxnls::_VXZSU8IsFunct(nullptr, [](int32_t) { return 1; }), 0);
  vxzsu8Lengths(nullptr, &characters, &length);
  EXPECT_TRUE(characters == -7 && length == -7);
  vxzsu8Lengths(text, &characters, nullptr);
  vxzsu8Lengths(text, nullptr, &length);
  EXPECT_TRUE(characters == 2 && length == 2);
}

}  // namespace
