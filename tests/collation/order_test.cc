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

// The rule itself: texts padded with blanks to a common length, or as they are; mode 1 alone pads.
TEST(Order, EqualsThatOfPaddedTexts) {
  std::vector<Text> texts = {Text()};
  const Text alphabet = text(U"\t !A\u00E9\U0001F600");
  constexpr size_t longest = 4;
  for (size_t from = 0, length = 0; length < longest; ++length) {
    for (const size_t until = texts.size(); from < until; ++from) {
      for (const VXChar c : alphabet) texts.push_back(texts[from] + c);
    }
  }
  std::vector<Text> padded = texts;
  for (Text& t : padded) t.resize(longest, ' ');
  const auto sign = [](int comparison) { return (comparison > 0) - (comparison < 0); };
  constexpr uint32_t other_modes[] = {0, 2, 3, 0xFFFFFFFF};
  for (size_t i = 0; i < texts.size(); ++i) {
    for (size_t j = 0; j < texts.size(); ++j) {
      ASSERT_EQ(order(texts[i], texts[j], 1), sign(padded[i].compare(padded[j]))) << i << ' ' << j;
      ASSERT_EQ(order(texts[i], texts[j], other_modes[(i + j) % 4]), sign(texts[i].compare(texts[j]))) << i << ' ' << j;
    }
  }
}

TEST(Order, KeysAreNotMade) {
  EXPECT_EQ(NLSKeyCreate(nullptr, 1, 2, 3, 4, 5), 0u);
  EXPECT_EQ(NLSKKOrderCompare(nullptr, 1, 2, 3, 4, 5), 0);
  EXPECT_EQ(NLSKSOrderCompare(nullptr, 1, 2, 3, 4, 5), 0);
}

}  // namespace
