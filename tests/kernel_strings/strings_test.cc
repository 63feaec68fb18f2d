#include "vxnls/strings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/character_host.h"

namespace {

using Text = std::basic_string<VXChar>;

Text text(std::u32string_view literal) { return Text(literal.begin(), literal.end()); }
int64_t size(const Text& t) { return static_cast<int64_t>(t.size()); }
int32_t order(const Text& a, const Text& b) { return vxzsncmp(a.data(), size(a), b.data(), size(b)); }
int32_t equal(const Text& a, const Text& b) { return vxzseqn(a.data(), size(a), b.data(), size(b)); }

TEST(Strings, Find) {
  static constexpr struct {
    const char32_t *in, *pattern;
    int64_t at;
  } cases[] = {
      {U"abc", U"bc", 1},          {U"abc", U"", 0},      {U"", U"", 0},         {U"", U"a", -1},
      {U"ab", U"abc", -1},         {U"abc", U"abc", 0},   {U"aabab", U"aba", 1}, {U"aab", U"aac", -1},
      {U"abab", U"abb", -1},       {U"xxxyz", U"xyz", 2}, {U"aXb", U"x", -1},    {U"a b", U" ", 1},
      {U"ab\u00E9", U"\u00E9", 2},
  };
  for (const auto& c : cases) {
    const Text in = text(c.in), pattern = text(c.pattern);
    EXPECT_EQ(vxzsndx(in.data(), size(in), pattern.data(), size(pattern)), c.at) << in.size() << " " << c.at;
    EXPECT_TRUE(pattern.size() != 1 || vxzspos(in.data(), size(in), pattern[0]) == c.at) << c.at;
  }
}

TEST(Strings, LengthWithoutBlanks) {
  static constexpr struct {
    const char32_t* in;
    int64_t length;
  } cases[] = {{U"ab   ", 2}, {U"   ", 0}, {U"", 0}, {U" a", 2}, {U"ab\t", 3}, {U"ab\u00A0", 3}, {U"a b ", 3}};
  for (const auto& c : cases) {
    const Text in = text(c.in);
    EXPECT_EQ(vxzstrp(in.data(), size(in)), c.length);
  }
}

TEST(Strings, NullAndNegativeLengthsAreEmptyTexts) {
  const Text a = text(U"a");
  Text kept = text(U"aB");
  for (const int64_t length : {INT64_C(-1), INT64_MIN}) {
    EXPECT_EQ(vxzsndx(a.data(), length, a.data(), 1), -1);
    EXPECT_EQ(vxzsndx(a.data(), length, a.data(), length), 0);
    EXPECT_EQ(vxzspos(a.data(), length, 'a'), -1);
    EXPECT_EQ(vxzstrp(a.data(), length), 0);
    EXPECT_EQ(vxzseqn(a.data(), length, nullptr, 7), 1);
    EXPECT_EQ(vxzseqn(a.data(), length, a.data(), 1), 0);
    EXPECT_EQ(vxzsncmp(a.data(), length, a.data(), 1), -2);
    EXPECT_EQ(vxzsncmp(a.data(), 1, a.data(), length), 2);
    EXPECT_EQ(vxzsncmp(nullptr, 7, a.data(), length), 0);
    for (const auto change : {vxzstlo, vxzstup, vxzstmin, vxzstmax}) change(kept.data(), length);
  }
  EXPECT_EQ(vxzsndx(nullptr, 3, a.data(), 1), -1);
  EXPECT_EQ(vxzsndx(a.data(), 1, nullptr, 3), 0);
  EXPECT_EQ(vxzspos(nullptr, 3, 'a'), -1);
  EXPECT_EQ(vxzstrp(nullptr, 3), 0);
  for (const auto change : {vxzstlo, vxzstup, vxzstmin, vxzstmax}) change(nullptr, 2);
  EXPECT_EQ(kept, text(U"aB"));
}

TEST(Strings, EqualIgnoringCaseComparesLowerCaseForms) {
  EXPECT_EQ(equal(text(U"Straße"), text(U"sTRAßE")), 1);
  EXPECT_EQ(equal(text(U"Straße"), text(U"Strasse")), 0);
  EXPECT_EQ(equal(text(U"ab"), text(U"ab ")), 0);
  EXPECT_EQ(equal(text(U"\u0130"), text(U"i")), 0);
  EXPECT_EQ(equal(text(U"\u0049"), text(U"\u0131")), 0) << "the upper-case forms are equal, the lower-case ones not";
  EXPECT_EQ(equal(text(U"\U00010400"), text(U"\U00010428")), 0);
}

TEST(Strings, Order) {
  static constexpr struct {
    const char32_t *a, *b;
    int32_t result;
  } cases[] = {
      {U"Ab", U"ab", -1},
      {U"ab", U"Ab", 1},
      {U"ab ", U"ab", 0},
      {U"ab", U"ab   ", 0},
      {U"", U"", 0},
      {U"", U"  ", 0},
      {U"", U" x", -2},
      {U"x", U"", 2},
      {U"aB", U"Ab", 1},
      {U"Ab", U"aB", -1},
      {U"Abc", U"abd", -2},
      {U"abD", U"Abc", 2},
      {U"AB  ", U"ab", -1},
      {U"ab", U"AB ", 1},
      {U"abx", U"AB", 2},
      {U"AB", U"abx", -2},
      {U"\u00C9", U"\u00E9", -1},
      {U"Z", U"a", 2},
      {U"z", U"A", 2},
      {U"_", U"a", -2},
      {U"_", U"A", -2},  // by the lower-case forms: "_" lies between the two cases
      // Kept on purpose: what goes on is greater, also by a character below the blank.
      {U"ab", U"ab\t", -2},
      {U"ab\t", U"ab", 2},
      {U"ab ", U"ab\t", 2},
  };
  for (const auto& c : cases) {
    const Text a = text(c.a), b = text(c.b);
    EXPECT_EQ(order(a, b), c.result) << testing::PrintToString(a) << testing::PrintToString(b);
  }
  const Text low = {0x80000000}, high = {0x7FFFFFFF};
  EXPECT_EQ(order(low, high), -2) << "units are compared as signed values";
}

// All texts of up to three characters of an alphabet with both cases, blanks and a wide pair.
std::vector<Text> all_texts() {
  std::vector<Text> texts = {Text()};
  const Text alphabet = text(U" aAbB\u00E9\u00C9\u0253\u0181");
  for (size_t from = 0; texts.back().size() < 3 || from == 0;) {
    const size_t until = texts.size();
    for (; from < until; ++from) {
      for (const VXChar c : alphabet) texts.push_back(texts[from] + c);
    }
  }
  return texts;
}

TEST(Strings, OrderIsAnOrder) {
  const std::vector<Text> texts = all_texts();
  ASSERT_EQ(texts.size(), 1u + 9 + 81 + 729);
  std::vector<std::vector<int8_t>> sign(texts.size(), std::vector<int8_t>(texts.size()));
  for (size_t i = 0; i < texts.size(); ++i) {
    for (size_t j = 0; j < texts.size(); ++j) {
      const int32_t result = order(texts[i], texts[j]);
      ASSERT_EQ(result, -order(texts[j], texts[i]));
      Text a = texts[i], b = texts[j];
      a.resize(3, ' ');
      b.resize(3, ' ');
      ASSERT_EQ(result == 0, a == b);
      ASSERT_EQ(result >= -1 && result <= 1, equal(a, b) == 1);
      sign[i][j] = static_cast<int8_t>(result / 2);  // the order that ignores case
    }
  }
  for (size_t i = 0; i < texts.size(); i += 3) {
    for (size_t j = 0; j < texts.size(); ++j) {
      for (size_t k = 0; k < texts.size(); k += 2) {
        ASSERT_FALSE(sign[i][j] <= 0 && sign[j][k] <= 0 && sign[i][k] > 0) << i << " " << j << " " << k;
      }
    }
  }
}

TEST(Strings, CaseGoesByTheTablesOrTheHost) {
  const Text mixed = text(U"aZ\u00E9\u00C9\u1E9E\U00010428\U00010400");
  Text lower = mixed, upper = mixed;
  vxzstlo(lower.data(), size(lower));
  vxzstup(upper.data(), size(upper));
  EXPECT_EQ(lower, text(U"az\u00E9\u00E9\u1E9E\U00010428\U00010400"));
  EXPECT_EQ(upper, text(U"AZ\u00C9\u00C9\u1E9E\U00010428\U00010400"));

  vxtest::CharacterHost host;
  host.lower = [](uint32_t c) { return c + 1; };
  host.upper = [](uint32_t c) { return c + 2; };
  lower = upper = mixed;
  vxzstlo(lower.data(), size(lower));
  vxzstup(upper.data(), size(upper));
  EXPECT_EQ(lower, text(U"az\u00EA\u00CA\u1E9F\U00010429\U00010401"));
  EXPECT_EQ(upper, text(U"AZ\u00EB\u00CB\u1EA0\U0001042A\U00010402"));
  ASSERT_EQ(host.asked.size(), 10u);
  EXPECT_EQ(host.asked[0], (vxtest::CharacterHost::Question{'l', 0xE9, 1}));
  EXPECT_EQ(host.asked[9], (vxtest::CharacterHost::Question{'u', 0x10400, 1}));

  host.asked.clear();
  EXPECT_EQ(equal(text(U"\u00E9"), text(U"\u00C9")), 1);
  EXPECT_EQ(order(text(U"\u00E9"), text(U"\u00C9")), 1);
  for (const auto change : {vxzstmin, vxzstmax}) change(lower.data(), size(lower));
  EXPECT_EQ(host.asked.size(), 0u) << "comparison, smallest and largest use the tables only";
}

}  // namespace
