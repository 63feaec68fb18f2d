#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vxnls/collation.h"

namespace {

using Text = std::basic_string<VXChar>;

Text text(std::u32string_view literal) { return Text(literal.begin(), literal.end()); }

int32_t order(const Text& a, const Text& b, uint32_t mode) {
  return NLSSSOrderCompare(nullptr, a.data(), static_cast<int64_t>(a.size()), b.data(), static_cast<int64_t>(b.size()),
                           mode);
}

TEST(Order, PlainAndBlankPadded) {
  static constexpr struct {
    const char32_t *a, *b;
    int32_t padded, plain;
  } cases[] = {
      {U"abc", U"abc", 0, 0},      {U"abc", U"abc  ", 0, -1},
      {U"abc", U"abc\t", 1, -1},   {U"abc", U"abc \t", 1, -1},
      {U"abc", U"abc  x", -1, -1}, {U"abc", U"abd", -1, -1},
      {U"abc", U"b", -1, -1},      {U"", U"", 0, 0},
      {U"", U"   ", 0, -1},        {U"", U"\u001F", 1, -1},
      {U"", U"!", -1, -1},         {U"a", U"A", 1, 1},
      {U"\u00E9", U"z", 1, 1},     {U"\U0001F600", U"\uFFFD", 1, 1},
      {U"ab\t", U"ab ", -1, -1},
  };
  for (const auto& c : cases) {
    const Text a = text(c.a), b = text(c.b);
    SCOPED_TRACE(testing::PrintToString(a) + testing::PrintToString(b));
    EXPECT_EQ(order(a, b, 1), c.padded);
    EXPECT_EQ(order(b, a, 1), -c.padded);
    for (const uint32_t mode : {0u, 2u, 3u, 0xFFFFFFFFu}) {
      EXPECT_EQ(order(a, b, mode), c.plain);
      EXPECT_EQ(order(b, a, mode), -c.plain);
    }
  }
}

TEST(Order, UnitsAreSigned) {
  const Text low = {'a', 0x80000000}, high = {'a', 0x7FFFFFFF}, end = {'a'};
  for (const uint32_t mode : {0u, 1u}) {
    EXPECT_EQ(order(low, high, mode), -1);
    EXPECT_EQ(order(high, low, mode), 1);
  }
  EXPECT_EQ(order(low, end, 1), -1) << "a negative unit is below the blank";
  EXPECT_EQ(order(end, low, 1), 1);
}

TEST(Order, NullAndNegativeLengthsAreEmpty) {
  const Text x = text(U"x");
  for (const uint32_t mode : {0u, 1u}) {
    EXPECT_EQ(NLSSSOrderCompare(nullptr, nullptr, 5, x.data(), 0, mode), 0);
    EXPECT_EQ(NLSSSOrderCompare(nullptr, nullptr, 5, x.data(), 1, mode), -1);
    EXPECT_EQ(NLSSSOrderCompare(nullptr, x.data(), 1, x.data(), INT64_MIN, mode), 1);
    EXPECT_EQ(NLSSSOrderCompare(nullptr, x.data(), -1, nullptr, 1, mode), 0);
  }
}

// The rule itself: a text padded with blanks to a common length, or ended by something below everything.
TEST(Order, EqualsThatOfPaddedTexts) {
  std::vector<Text> texts = {Text()};
  const Text alphabet = text(U"\t !b");
  for (size_t from = 0, length = 0; length < 4; ++length) {
    for (const size_t until = texts.size(); from < until; ++from) {
      for (const VXChar c : alphabet) texts.push_back(texts[from] + c);
    }
  }
  const auto sign = [](int comparison) { return (comparison > 0) - (comparison < 0); };
  for (const Text& a : texts) {
    for (const Text& b : texts) {
      Text padded_a = a, padded_b = b;
      padded_a.resize(4, ' ');
      padded_b.resize(4, ' ');
      ASSERT_EQ(order(a, b, 1), sign(padded_a.compare(padded_b)));
      ASSERT_EQ(order(a, b, 0), sign(a.compare(b)));
    }
  }
}

TEST(Order, KeysAreNotMade) {
  EXPECT_EQ(NLSKeyCreate(nullptr, 1, 2, 3, 4, 5), 0u);
  EXPECT_EQ(NLSKKOrderCompare(nullptr, 1, 2, 3, 4, 5), 0);
  EXPECT_EQ(NLSKSOrderCompare(nullptr, 1, 2, 3, 4, 5), 0);
}

}  // namespace
