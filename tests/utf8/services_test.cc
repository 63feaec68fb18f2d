#include <gtest/gtest.h>

#include <string>

#include "tests/support/guard_page.h"
#include "vxnls/utf8.h"

namespace {

vxtest::GuardedBuffer<uint8_t>& memory() {
  static vxtest::GuardedBuffer<uint8_t> buffer(256);
  return buffer;
}

uint8_t* guarded(std::string_view text, vxtest::Guard guard = vxtest::Guard::behind) {
  return memory().copy(reinterpret_cast<const uint8_t*>(text.data()), text.size(), guard);
}
int64_t length_of(std::string_view text) { return static_cast<int64_t>(text.size()); }

TEST(Services, BlanksAndJustifying) {
  static constexpr struct {
    std::string_view text;
    int64_t stripped;
    std::string_view left, right;
  } cases[] = {
      {"", 0, "", ""},
      {"   ", 0, "   ", "   "},
      {"ab", 2, "ab", "ab"},
      {"ab  ", 2, "ab  ", "  ab"},
      {"  ab", 4, "ab  ", "  ab"},
      {" a b ", 4, "a b  ", "  a b"},
      {" \u00E9\u20AC  ", 6, "\u00E9\u20AC   ", "   \u00E9\u20AC"},
      {" \u00A0\t ", 4, "\u00A0\t  ", "  \u00A0\t"},
      {"\x80 ", 1, "\x80 ", " \x80"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.text));
    for (const auto guard : {vxtest::Guard::behind, vxtest::Guard::before}) {
      EXPECT_EQ(vxzsu8StripBlanks(guarded(c.text, guard), length_of(c.text)), c.stripped);
      uint8_t* const left = guarded(c.text, guard);
      vxzsu8LeftJustify(left, length_of(c.text));
      EXPECT_EQ(std::string(left, left + c.text.size()), c.left);
      uint8_t* const right = guarded(c.text, guard);
      vxzsu8RightJustify(right, length_of(c.text));
      EXPECT_EQ(std::string(right, right + c.text.size()), c.right);
    }
  }
}

TEST(Services, Finding) {
  static constexpr struct {
    std::string_view text, pattern;
    int64_t at;
  } cases[] = {
      {"abc", "bc", 1},
      {"abc", "", 0},
      {"", "", 0},
      {"", "a", -1},
      {"ab", "abc", -1},
      {"aabab", "aba", 1},
      {"a\u00E9\u20AC", "\u20AC", 3},
      {"\u20AC\u20AD", "\u20AD", 3},
      {"\u00E9", "\u00E8", -1},
      {"abc", "c", 2},
  };
  for (const auto& c : cases) {
    const std::string pattern(c.pattern);
    EXPECT_EQ(vxzsu8Find(guarded(c.text), length_of(c.text), reinterpret_cast<const uint8_t*>(pattern.data()),
                         length_of(pattern)),
              c.at)
        << c.text << " " << c.pattern;
  }
  // The last two characters lie above U+10FFFF, so that nobody can look for them.
  const std::string_view text = "a\u00E9\u20AC\U0001F600\xF4\x90\x80\x80\xEF\xBF\xBF\xBF";
  static constexpr struct {
    VXChar ch;
    int64_t at;
  } characters[] = {{'a', 0},       {0xE9, 1}, {0x20AC, 3}, {0x1F600, 6},    {'b', -1},
                    {0x110000, -1}, {0, -1},   {0x80, -1},  {0xFFFFFFFF, -1}};
  for (const auto& c : characters) EXPECT_EQ(vxzsu8Index(guarded(text), length_of(text), c.ch), c.at) << c.ch;
}

TEST(Services, Copying) {
  const std::string_view text = "a\u20AC";
  for (int64_t room = 0; room < 6; ++room) {
    static vxtest::GuardedBuffer<uint8_t> output(16);
    uint8_t* const out = output.at(static_cast<size_t>(room));
    const int64_t count = vxzsu8Copy(guarded(text), length_of(text), out, room);
    EXPECT_EQ(count, std::min<int64_t>(room, 4));
    EXPECT_EQ(std::string(out, out + count), text.substr(0, static_cast<size_t>(count)));
  }
  uint8_t* const same = guarded("abcd");
  EXPECT_EQ(vxzsu8Copy(same, 3, same + 1, 3), 3);
  EXPECT_EQ(std::string(same, same + 4), "aabc");
}

TEST(Services, NullAndNegativeLengths) {
  uint8_t* const text = guarded(" a ");
  for (const int64_t n : {INT64_C(0), INT64_C(-1), INT64_MIN}) {
    EXPECT_EQ(vxzsu8StripBlanks(text, n), 0);
    EXPECT_EQ(vxzsu8Copy(text, n, text, 1), 0);
    EXPECT_EQ(vxzsu8Copy(text, 1, text, n), 0);
    EXPECT_EQ(vxzsu8Index(text, n, 'a'), -1);
    EXPECT_EQ(vxzsu8Find(text, n, text, 1), -1);
    EXPECT_EQ(vxzsu8Find(text, 1, text, n), 0);
    vxzsu8LeftJustify(text, n);
    vxzsu8RightJustify(text, n);
  }
  EXPECT_EQ(vxzsu8StripBlanks(nullptr, 3), 0);
  EXPECT_EQ(vxzsu8Copy(nullptr, 3, text, 3), 0);
  EXPECT_EQ(vxzsu8Copy(text, 3, nullptr, 3), 0);
  EXPECT_EQ(vxzsu8Index(nullptr, 3, 'a'), -1);
  EXPECT_EQ(vxzsu8Find(nullptr, 3, text, 1), -1);
  EXPECT_EQ(vxzsu8Find(text, 3, nullptr, 1), 0);
  vxzsu8LeftJustify(nullptr, 3);
  vxzsu8RightJustify(nullptr, 3);
  EXPECT_EQ(std::string(text, text + 3), " a ");
}

}  // namespace
