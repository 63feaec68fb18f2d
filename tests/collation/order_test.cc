#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "vxnls/collation.h"

namespace {

using namespace std::placeholders;

using Text = std::basic_string<VXChar>;

int32_t order(const Text& a, const Text& b, uint32_t mode) {
  return NLSSSOrderCompare(nullptr, a.data(), static_cast<int64_t>(a.size()), b.data(), static_cast<int64_t>(b.size()),
                           mode);
}

TEST(Order, UnitsAreSignedAndNothingIsAnEmptyText) {
  const Text low = {'a', 0x80000000}, high = {'a', 0x7FFFFFFF};
  for (const uint32_t mode : {0u, 1u}) {
    EXPECT_TRUE(order(low, high, mode) == -1 && order(high, low, mode) == 1);
    const auto compare = std::bind(NLSSSOrderCompare, nullptr, _1, _2, _3, _4, mode);
    EXPECT_TRUE(compare(nullptr, 5, low.data(), 0) == 0 && compare(low.data(), -1, nullptr, 1) == 0);
    EXPECT_TRUE(compare(nullptr, 5, low.data(), 1) == -1 && compare(low.data(), 1, low.data(), INT64_MIN) == 1);
  }
  EXPECT_TRUE(order(low, {'a'}, 1) == -1 && order({'a'}, low, 1) == 1) << "a negative unit is below the blank";
}

// The rule itself: texts padded with blanks to a common length, or as they are; mode 1 alone pads.
TEST(Order, EqualsThatOfPaddedTexts) {
  std::vector<Text> texts = {{}}, padded;
  constexpr size_t longest = 4;
  for (size_t from = 0; texts[from].size() < longest; ++from) {
    for (const VXChar c : {0x09u, 0x20u, 0x21u, 0x41u, 0xE9u, 0x1F600u}) texts.push_back(texts[from] + c);
  }
  for (const Text& text : texts) padded.push_back(text + Text(longest - text.size(), ' '));
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
