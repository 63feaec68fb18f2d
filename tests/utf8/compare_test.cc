#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/character_host.h"
#include "tests/support/guard_page.h"
#include "vxnls/utf8.h"

namespace {

const uint8_t* bytes(std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); }
int64_t length_of(std::string_view text) { return static_cast<int64_t>(text.size()); }

/// Compares two texts that both end at a page that may not be touched.
template <class Function, class... More>
int32_t guarded(Function compare, std::string_view a, std::string_view b, More... more) {
  static vxtest::GuardedBuffer<uint8_t> left(256), right(256);
  return compare(left.copy(bytes(a), a.size()), length_of(a), right.copy(bytes(b), b.size()), length_of(b), more...);
}

int32_t normally(std::string_view a, std::string_view b) { return guarded(vxzsu8NormCompare, a, b); }
int32_t bytewise(std::string_view a, std::string_view b) { return guarded(vxzsu8Compare, a, b); }

/// A few pairs beyond the built-in tables, which a host knows.
uint32_t lower_of(uint32_t c) {
  if (c < 0x80) return c >= 'A' && c <= 'Z' ? c + 32 : c;
  switch (c) {
    case 0xC9: return 0xE9;        // 2 bytes, 2 bytes
    case 0x23A: return 0x2C65;     // 2 bytes, 3 bytes
    case 0x212A: return 'k';       // 3 bytes, 1 byte
    case 0x10400: return 0x10428;  // 4 bytes, 4 bytes
    default: return c;
  }
}

TEST(Compare, Normally) {
  vxtest::CharacterHost host;
  host.lower = lower_of;
  static constexpr struct {
    std::string_view a, b;
    int32_t result;
  } cases[] = {
      {"aB", "Ab", 1},
      {"Abc", "abd", -2},
      {"_", "A", -2},
      {"\u023Ab ", "\u2C65b", -1},
      {"\U00010400", "\U00010428", -1},
      // Kept on purpose: what goes on is greater, also by a byte below the blank.
      {"ab", "ab\t", -2},
      {"ab\t", "ab", 2},
      {"ab\t", "ab ", -2},
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
    EXPECT_EQ(normally(c.a, c.b), c.result);
    EXPECT_EQ(guarded(vxzsu8NormCompareText, c.a, c.b, UINT64_C(0)), c.result) << "the fifth argument is ignored";
    EXPECT_EQ(guarded(vxzsu8NormEqual, c.a, c.b), c.result >= -1 && c.result <= 1);
    EXPECT_EQ(guarded(vxzsu8NormEqualText, c.a, c.b, UINT64_C(7)), c.result >= -1 && c.result <= 1);
  }
  for (const auto& question : host.asked) EXPECT_EQ(question.argument, 0u) << "the host is told that it compares";
  EXPECT_FALSE(host.asked.empty());
}

TEST(Compare, NormallyByTheTablesWithoutAHost) {
  EXPECT_EQ(normally("\u00E9", "\u00C9"), 1);
  EXPECT_EQ(normally("\u0181", "\u0253"), -1);
  EXPECT_EQ(normally("\U00010400", "\U00010428"), -2);
}

TEST(Compare, ByBytes) {
  static constexpr struct {
    std::string_view a, b;
    int32_t result;
  } cases[] = {{"ab", "abc", -1}, {"abc", "ab", 1}, {"abc", "abc", 0}, {"", "", 0},          {"", "a", -1},
               {"b", "abc", 1},   {"a", "A", 1},    {"ab ", "ab", 1},  {"\x7F", "\x80", -1}, {"\xFF", "a", 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(bytewise(c.a, c.b), c.result) << c.a << " " << c.b;
    EXPECT_EQ(bytewise(c.b, c.a), -c.result) << c.a << " " << c.b;
    EXPECT_EQ(guarded(vxzsu8CompareText, c.a, c.b, UINT64_C(1)), c.result);
  }
}

TEST(Compare, NullAndNegativeLengthsAreEmptyTexts) {
  const uint8_t text[] = {'a'};
  for (const int64_t length : {INT64_C(0), INT64_C(-1), INT64_MIN}) {
    EXPECT_EQ(vxzsu8Compare(text, length, nullptr, 9), 0);
    EXPECT_EQ(vxzsu8Compare(text, length, text, 1), -1);
    EXPECT_EQ(vxzsu8NormCompare(text, length, nullptr, 9), 0);
    EXPECT_EQ(vxzsu8NormCompare(text, 1, text, length), 2);
    EXPECT_EQ(vxzsu8NormEqual(nullptr, 9, text, length), 1);
    EXPECT_EQ(vxzsu8NormEqual(nullptr, 9, text, 1), 0);
  }
}

// Well-formed texts of up to four characters, with case pairs of the same and of different lengths, and blanks.
TEST(Compare, IsAnOrder) {
  vxtest::CharacterHost host;
  host.lower = lower_of;
  const std::vector<std::u32string> alphabet = {U" ",      U"k",      U"K",      U"\u00E9",
                                                U"\u00C9", U"\u023A", U"\u2C65", U"\u212A"};
  struct Text {
    std::u32string characters;
    std::string utf8;
  };
  const auto utf8_of = [](const std::u32string& characters) {
    std::string text;
    for (const char32_t c : characters) {
      if (c < 0x80) {
        text += static_cast<char>(c);
      } else if (c < 0x800) {
        text += {static_cast<char>(0xC0 | c >> 6), static_cast<char>(0x80 | (c & 63))};
      } else {
        text += {static_cast<char>(0xE0 | c >> 12), static_cast<char>(0x80 | (c >> 6 & 63)),
                 static_cast<char>(0x80 | (c & 63))};
      }
    }
    return text;
  };
  std::vector<Text> texts = {{}};
  for (size_t from = 0, length = 0; length < 3; ++length) {
    for (const size_t until = texts.size(); from < until; ++from) {
      for (const std::u32string& c : alphabet) {
        texts.push_back({texts[from].characters + c, utf8_of(texts[from].characters + c)});
      }
    }
  }
  // The contract in terms of characters: equal once padded, equal once padded and lower-cased, or in the order of that.
  const auto contract = [](std::u32string a, std::u32string b) {
    const size_t longer = std::max(a.size(), b.size());
    a.resize(longer, U' ');
    b.resize(longer, U' ');
    int32_t by_case = 0;
    for (size_t i = 0; i < longer; ++i) {
      const uint32_t x = lower_of(a[i]), y = lower_of(b[i]);
      if (x != y) return x < y ? -2 : 2;
      if (by_case == 0 && a[i] != b[i]) by_case = a[i] < b[i] ? -1 : 1;
    }
    return by_case;
  };
  std::vector<std::vector<int8_t>> beyond_case(texts.size(), std::vector<int8_t>(texts.size()));
  for (size_t i = 0; i < texts.size(); ++i) {
    for (size_t j = 0; j < texts.size(); ++j) {
      host.asked.clear();
      const int32_t result = normally(texts[i].utf8, texts[j].utf8);
      ASSERT_EQ(result, contract(texts[i].characters, texts[j].characters)) << texts[i].utf8 << "|" << texts[j].utf8;
      ASSERT_EQ(result, -normally(texts[j].utf8, texts[i].utf8)) << texts[i].utf8 << "|" << texts[j].utf8;
      ASSERT_EQ(bytewise(texts[i].utf8, texts[j].utf8) < 0, texts[i].characters < texts[j].characters);
      beyond_case[i][j] = static_cast<int8_t>(result / 2);
    }
  }
  for (size_t i = 0; i < texts.size(); i += 2) {
    for (size_t j = 0; j < texts.size(); ++j) {
      for (size_t k = 0; k < texts.size(); ++k) {
        ASSERT_FALSE(beyond_case[i][j] <= 0 && beyond_case[j][k] <= 0 && beyond_case[i][k] > 0)
            << texts[i].utf8 << "|" << texts[j].utf8 << "|" << texts[k].utf8;
      }
    }
  }
}

// Normaliser
// ---------------------------------------------------------------------------------------------------------

struct Asked {
  std::string a, b;
  uint32_t option;
  uint64_t words[3];
};
Asked asked;
int32_t comparison;
VXStatus outcome;

const VXNormaliserOps normaliser_ops = {
    [](VXNormaliser*, const uint8_t* source, int64_t length, uint32_t form, uint64_t a1, uint64_t a2, uint64_t a3,
       VXStatus* status) -> VXStatus {
      asked = {std::string(source, source + length), "", form, {a1, a2, a3}};
      *status = outcome + 1;
      return outcome;
    },
    [](VXNormaliser*, const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint32_t options,
       VXStatus* status) -> int32_t {
      asked = {std::string(a, a + length_a), std::string(b, b + length_b), options, {}};
      *status = outcome;
      return comparison;
    },
};

TEST(Normaliser, GetsWhatTheCallerGave) {
  VXNormaliser normaliser{&normaliser_ops};
  vxtest::CharacterHost host;
  host.normaliser = &normaliser;
  for (const VXStatus result : {0u, VX_E_ROOM}) {
    VXStatus status = 77;
    outcome = result;
    EXPECT_EQ(vxzsu8ICUNormalize(bytes("abc"), 3, 5, 11, 12, 13, &status), result);
    EXPECT_EQ(status, result + 1);
    EXPECT_EQ(vxzsu8ICUNormalize(bytes("abc"), 3, 5, 11, 12, 13, nullptr), result);
    EXPECT_EQ(asked.a, "abc");
    EXPECT_EQ(asked.option, 5u);
    EXPECT_EQ(asked.words[0] * 10000 + asked.words[1] * 100 + asked.words[2], 111213u);
    for (comparison = -1; comparison <= 1; ++comparison) {
      EXPECT_EQ(vxzsu8ICUNormCompare(bytes("ab"), 2, bytes("cde"), 3, 6, &status), comparison);
      EXPECT_EQ(status, result);
      EXPECT_EQ(vxzsu8ICUNormCompare(bytes("ab"), 2, bytes("cde"), 3, 6, nullptr), comparison);
      EXPECT_EQ(asked.a + asked.b, "abcde");
      EXPECT_EQ(asked.option, 6u);
      status = 77;
      EXPECT_EQ(vxzsu8ICUNormEqual(bytes("ab"), 2, bytes("cde"), 3, 6, &status), comparison == 0 && result == 0);
      EXPECT_EQ(status, result);
      EXPECT_EQ(vxzsu8ICUNormEqual(bytes("ab"), 2, bytes("cde"), 3, 6, nullptr), comparison == 0 && result == 0);
    }
  }
}

void expect_no_normaliser() {
  VXStatus status = 77;
  EXPECT_EQ(vxzsu8ICUNormalize(bytes("a"), 1, 0, 0, 0, 0, &status), VX_E_MEMORY);
  EXPECT_EQ(status, VX_E_MEMORY);
  EXPECT_EQ(vxzsu8ICUNormalize(bytes("a"), 1, 0, 0, 0, 0, nullptr), VX_E_MEMORY);
  status = 77;
  EXPECT_EQ(vxzsu8ICUNormCompare(bytes("a"), 1, bytes("b"), 1, 0, &status), 0);
  EXPECT_EQ(status, VX_E_MEMORY);
  EXPECT_EQ(vxzsu8ICUNormCompare(bytes("a"), 1, bytes("b"), 1, 0, nullptr), 0);
  status = 77;
  EXPECT_EQ(vxzsu8ICUNormEqual(bytes("a"), 1, bytes("a"), 1, 0, &status), 0);
  EXPECT_EQ(status, VX_E_MEMORY);
}

TEST(Normaliser, CannotBeHad) {
  expect_no_normaliser();
  vxtest::CharacterHost host;
  expect_no_normaliser();
}

TEST(Combining, JoinersAreAndTheHostKnowsTheRest) {
  vxtest::CharacterHost host;
  host.test_class = [](uint32_t c, uint32_t) { return c == 0x301 ? 8 : 0; };
  EXPECT_EQ(vxzsu8IsCombining(bytes("\u200C")), 1);
  EXPECT_EQ(vxzsu8IsCombining(bytes("\u200D")), 1);
  EXPECT_TRUE(host.asked.empty());
  EXPECT_EQ(vxzsu8IsCombining(bytes("\u0301")), 1);
  EXPECT_EQ(vxzsu8IsCombining(bytes("a")), 0);
  EXPECT_EQ(vxzsu8IsCombining(bytes("\xCC")), 0);
  const std::vector<vxtest::CharacterHost::Question> expected = {
      {'c', 0x301, 0x38}, {'c', 'a', 0x38}, {'c', 0xFFFD, 0x38}};
  EXPECT_EQ(host.asked, expected);
}

}  // namespace
