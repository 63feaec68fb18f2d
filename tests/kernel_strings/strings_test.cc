#include "vxnls/strings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/character_host.h"
#include "unicode/case_mapping.h"

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

// Kept on purpose: what goes on is greater, also by a character below the blank; units are compared as signed values.
TEST(Strings, OrderBelowTheBlank) {
  const Text ab = text(U"ab"), blank = text(U"ab "), tab = text(U"ab\t");
  EXPECT_EQ(order(ab, tab), -2);
  EXPECT_EQ(order(tab, ab), 2);
  EXPECT_EQ(order(blank, tab), 2);
  EXPECT_EQ(order({0x80000000}, {0x7FFFFFFF}), -2);
}

// All pairs of texts of up to three characters, with both cases, a character between the two, blanks and a wide pair:
// padded with blanks equal, or equal but for the case of the first difference, or in the order of the lower-case forms.
TEST(Strings, OrderOfAllShortTexts) {
  std::vector<Text> texts = {Text()};
  const Text alphabet = text(U" aAbB_\u00E9\u00C9\u0253\u0181");
  constexpr size_t longest = 3;
  for (size_t from = 0, length = 0; length < longest; ++length) {
    for (const size_t until = texts.size(); from < until; ++from) {
      for (const VXChar c : alphabet) texts.push_back(texts[from] + c);
    }
  }
  std::vector<Text> padded = texts;
  for (Text& t : padded) t.resize(longest, ' ');
  for (size_t i = 0; i < texts.size(); ++i) {
    for (size_t j = 0; j < texts.size(); ++j) {
      int32_t wanted = 0;
      for (size_t k = 0; k < longest && wanted / 2 == 0; ++k) {
        const VXChar a = padded[i][k], b = padded[j][k];
        const VXChar x = vxnls::lower_by_tables(a), y = vxnls::lower_by_tables(b);
        if (x != y) wanted = x < y ? -2 : 2;
        else if (wanted == 0 && a != b) wanted = a < b ? -1 : 1;
      }
      ASSERT_EQ(order(texts[i], texts[j]), wanted) << testing::PrintToString(texts[i] + VXChar{'|'} + texts[j]);
      // Equality knows no padding.
      ASSERT_EQ(equal(padded[i], padded[j]), wanted >= -1 && wanted <= 1);
      ASSERT_EQ(equal(texts[i], texts[j]), texts[i].size() == texts[j].size() && wanted >= -1 && wanted <= 1);
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
