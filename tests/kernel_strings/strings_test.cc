// The primitives over bytes and units, and the services over counted texts.
#include "vxnls/strings.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <string>
#include <vector>

#include "kernel_strings/join.h"
#include "tests/support/character_host.h"
#include "unicode/case_mapping.h"
#include "vxnls/bytes.h"

namespace {

using Text = std::u32string;

const VXChar* units(const Text& text) { return reinterpret_cast<const VXChar*>(text.data()); }
VXChar* units(Text& text) { return reinterpret_cast<VXChar*>(text.data()); }
int64_t size(const Text& text) { return static_cast<int64_t>(text.size()); }
int32_t order(const Text& a, const Text& b) { return vxzsncmp(units(a), size(a), units(b), size(b)); }
int32_t equal(const Text& a, const Text& b) { return vxzseqn(units(a), size(a), units(b), size(b)); }

constexpr auto all_changes = {vxzstlo, vxzstup, vxzstmin, vxzstmax};

TEST(Strings, NullAndCountsBelowOneAreEmpty) {
  VXChar text[2] = {7, 8};
  struct Nothing {
    VXChar* at;
    int64_t n;
  };
  for (const auto& [none, n] : {Nothing{nullptr, 2}, {text, 0}, {text, -1}, {text, INT64_MIN}}) {
    EXPECT_TRUE(qmMemSet(none, 1, n) == none && qmzMemSet(none, 1, n) == none);
    EXPECT_TRUE(qmMemCpy(none, "xxxxxxxx", n) == none && qmzMemCpy(none, text, n) == none);
    EXPECT_TRUE(qmMemMove(none, "xxxxxxxx", n) == none && qmzMemMove(none, text, n) == none);
    EXPECT_EQ(qmMemCmp(none, "xxxxxxxx", n) + qmMemCmp("xxxxxxxx", none, n), 0);
    EXPECT_EQ(qmzMemCmp(none, text + 1, n) + qmzMemCmp(text + 1, none, n), 0);
    EXPECT_TRUE(qmMemScan(none, n, 7) == -1 && qmzMemScan(none, n, 7) == -1 && vxzspos(none, n, 7) == -1);
    EXPECT_TRUE(vxzsndx(none, n, text, 1) == -1 && vxzsndx(text, 1, none, n) == 0 && vxzstrp(none, n) == 0);
    EXPECT_TRUE(vxzseqn(none, n, none, n) == 1 && vxzseqn(none, n, text, 1) == 0 && vxzseqn(text, 1, none, n) == 0);
    EXPECT_TRUE(vxzsncmp(none, n, text, 1) == -2 && vxzsncmp(text, 1, none, n) == 2 && vxzsncmp(none, n, none, n) == 0);
    for (const auto change : all_changes) change(none, n);
  }
  EXPECT_TRUE(qmMemCpy(text, nullptr, 4) == text && qmMemMove(text, nullptr, 4) == text);
  EXPECT_TRUE(qmzMemCpy(text, nullptr, 1) == text && qmzMemMove(text, nullptr, 1) == text);
  EXPECT_EQ(qmStrLen(nullptr) + qmzStrLen(nullptr), 0);
  EXPECT_TRUE(text[0] == 7 && text[1] == 8);
}

TEST(Bytes, TwinsDoTheSameToUnits) {
  char bytes[] = "abcdef";
  VXChar wide[] = {'a', 'b', 'c', 'd', 'e', 'f', 0};
  const auto expect_both = [&](const char* text) {
    EXPECT_STREQ(bytes, text);
    EXPECT_TRUE(std::equal(bytes, bytes + 7, wide)) << text;
  };
  EXPECT_TRUE(qmStrLen(bytes) == 6 && qmzStrLen(wide) == 6);
  qmMemMove(bytes + 1, bytes, 4), qmzMemMove(wide + 1, wide, 4);
  expect_both("aabcdf");
  qmMemCpy(bytes, bytes + 3, 2), qmzMemCpy(wide, wide + 3, 2);
  expect_both("cdbcdf");
  qmMemSet(bytes + 4, 'x', 2), qmzMemSet(wide + 4, 'x', 2);
  expect_both("cdbcxx");
  EXPECT_TRUE(qmMemScan(bytes, 6, 'x') == 4 && qmzMemScan(wide, 6, 'x') == 4);
  EXPECT_TRUE(qmMemScan(bytes, 4, 'x') == -1 && qmzMemScan(wide, 4, 'x') == -1);
  // Bytes are unsigned, units signed: kept on purpose.
  EXPECT_TRUE(qmMemCmp("\x7F", "\x80", 1) == -1 && qmMemCmp("b\x01", "a\xFF", 2) == 1 && qmMemCmp("ab", "ac", 1) == 0);
  static constexpr VXChar low[] = {5, 0x80000000}, high[] = {5, 0x7FFFFFFF};
  EXPECT_TRUE(qmzMemCmp(low, high, 2) == -1 && qmzMemCmp(high, low, 2) == 1 && qmzMemCmp(high, low, 1) == 0);
}

TEST(Missing, LetterToCodeToBits) {
  for (VXChar letter = 0; letter < 0x200; ++letter) {
    const uint64_t code = letter == '_'                    ? 1
                          : letter >= 'A' && letter <= 'Z' ? letter - 'A' + 3
                          : letter >= 'a' && letter <= 'z' ? letter - 'a' + 3
                                                           : 2;
    double values[] = {1, qmMissVal(letter), 3};
    qmMissArray(values, 1, letter);
    qmMissArray(values, -1, letter);
    qmMissArray(nullptr, 2, letter);
    const auto bits = std::bit_cast<uint64_t>(values[0]);
    EXPECT_TRUE(bits == qmmissv_struct[code] && bits == std::bit_cast<uint64_t>(values[1])) << letter;
    EXPECT_EQ((0x100 - (bits >> 40 & 0xFF)) & 0xFF, code) << letter;
    EXPECT_EQ(bits & UINT64_C(0xFFFF00FFFFFFFFFF), UINT64_C(0xFFFF000000000000)) << letter;
    EXPECT_TRUE(std::isnan(values[0]) && values[2] == 3);
  }
  EXPECT_EQ(qmmissv_struct[0], qmmissv_struct[2]);
}

// What lies in the field afterwards; '?' is a unit that was not touched, '0' a NUL.
struct Field {
  Text units_of = Text(16, '?');
  VXChar* at() { return units(units_of); }
  std::string text() const {
    std::string shown;
    for (const char32_t unit : units_of) shown += unit == 0 ? '0' : static_cast<char>(unit);
    return shown.substr(0, shown.find_last_not_of('?') + 1);
  }
};

TEST(Join, RoomSeparatorAndEmptyTexts) {
  static constexpr VXChar ab[] = {'a', 'b'}, cd[] = {'c', 'd'};
  static constexpr struct {
    int64_t room;
    VXChar separator;
    const char* field;
    int64_t written;
  } cases[] = {
      {-11, ' ', "ab cd0", 5}, {4, ' ', "ab c", 4},      {5, ' ', "ab cd", 5},
      {8, '/', "ab/cd   ", 5}, {-5, '/', "ab/c0", 4},    {-6, '/', "ab/cd0", 5},
      {3, '/', "ab/", 3},      {2, '/', "ab", 2},        {0, '/', "", 0},
      {-1, '/', "0", 0},       {6, 0xFFFF, "abcd  ", 4}, {-4, 0xFFFF, "abc0", 3},
      {1, 0xFFFF, "a", 1},     {-2, 0xFFFF, "a0", 1},    {INT64_MIN, 0xFFFF, "abcd0", 4},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "room " << c.room << " separator " << c.separator);
    Field field, typed;
    EXPECT_EQ(vxzscat(field.at(), c.room, c.separator, 2, ab, int64_t{2}, cd, int64_t{2}), c.written);
    EXPECT_EQ(field.text(), c.field);
    EXPECT_EQ(vxnls::join(typed.at(), c.room, c.separator, {{ab, 2}, {cd, 2}}), c.written);
    EXPECT_EQ(typed.units_of, field.units_of);
  }
  for (const int64_t n : {INT64_C(0), INT64_C(-2), INT64_MIN, INT64_C(2)}) {
    const VXChar* const none = n == 2 ? nullptr : ab;
    Field field;
    EXPECT_EQ(vxzscat(field.at(), 6, '/', 3, none, n, ab, int64_t{2}, none, n), 4);
    EXPECT_EQ(field.text(), "/ab/  ");
  }
  Field field;
  EXPECT_EQ(vxzscat(field.at(), 3, '/', 0) + vxzscat(nullptr, 3, '/', 1, ab, int64_t{2}), 0);
  EXPECT_EQ(field.text(), "   ");
  EXPECT_EQ(vxzscat(field.at(), -3, '/', -1) + vxzscat(nullptr, -3, '/', 1, ab, int64_t{2}), 0);
  EXPECT_EQ(field.text(), "0  ");
  field.units_of[0] = 'x';  // the first text may lie in the field
  EXPECT_EQ(vxzscat(field.at(), 5, '-', 2, field.at(), int64_t{1}, cd, int64_t{2}), 4);
  EXPECT_EQ(field.text(), "x-cd ");
}

// All pairs of texts of up to three characters, with both cases, a character between the two, blanks and what is below
// them, a negative unit, pairs that only the upper case makes equal, and a wide pair.
TEST(Strings, EveryPairOfShortTexts) {
  std::vector<Text> texts = {{}};
  for (size_t from = 0; texts[from].size() < 3; ++from) {
    for (const char32_t c : Text(U"\t aA_\u00E9\u00C9\u0253\u0181") + char32_t{0x80000000}) {
      texts.push_back(texts[from] + c);
    }
  }
  const auto lower = [](char32_t c) { return vxnls::lower_by_tables(c); };
  for (const Text& a : texts) {
    const size_t kept = a.find_last_not_of(U' ') + 1;
    ASSERT_EQ(vxzstrp(units(a), size(a)), static_cast<int64_t>(kept)) << testing::PrintToString(a);
    for (const Text& b : texts) {
      // The first units whose lower-case forms differ decide, then what goes on with more than blanks, also below the
      // blank, then the case of the first units that differ: kept on purpose, like the signs of units.
      int32_t expected = 0;
      for (size_t i = 0; i < std::min(a.size(), b.size()) && expected / 2 == 0; ++i) {
        const auto x = static_cast<int32_t>(lower(a[i])), y = static_cast<int32_t>(lower(b[i]));
        if (x != y) expected = x < y ? -2 : 2;
        else if (expected == 0 && a[i] != b[i]) expected = a[i] < b[i] ? -1 : 1;
      }
      const bool same = a.size() == b.size() && expected / 2 == 0;
      if (expected / 2 == 0 && a.find_first_not_of(U' ', b.size()) < a.size()) expected = 2;
      if (expected / 2 == 0 && b.find_first_not_of(U' ', a.size()) < b.size()) expected = -2;
      const auto found = static_cast<int64_t>(a.find(b));  // npos: -1
      ASSERT_TRUE(order(a, b) == expected && equal(a, b) == same) << testing::PrintToString(a + U'|' + b);
      ASSERT_TRUE(vxzsndx(units(a), size(a), units(b), size(b)) == found &&
                  (b.size() != 1 || vxzspos(units(a), size(a), b[0]) == found))
          << testing::PrintToString(a + U'|' + b);
    }
  }
  EXPECT_EQ(equal(U"\u0049", U"\u0131"), 0) << "the upper-case forms are equal, the lower-case ones not";
  const Text patterns = U"aababxxxyz";  // what began and did not go on
  for (const Text pattern : {U"aba", U"abx", U"xyz", U"xyy"}) {
    EXPECT_EQ(vxzsndx(units(patterns), size(patterns), units(pattern), 3),
              static_cast<int64_t>(patterns.find(pattern)));
  }
}

TEST(Strings, CaseGoesByTheHostWhereComparisonDoesNot) {
  vxtest::CharacterHost host;
  host.lower = [](uint32_t c) { return c + 1; };
  host.upper = [](uint32_t c) { return c + 2; };
  Text lower = U"aZ\u00E9\U00010400", upper = lower;
  vxzstlo(units(lower), 4), vxzstup(units(upper), 4);
  EXPECT_EQ(lower, U"az\u00EA\U00010401");
  EXPECT_EQ(upper, U"AZ\u00EB\U00010402");
  EXPECT_EQ(host.asked, (std::vector<vxtest::CharacterHost::Question>{
                            {'l', 0xE9, 1}, {'l', 0x10400, 1}, {'u', 0xE9, 1}, {'u', 0x10400, 1}}));
  host.asked.clear();
  EXPECT_TRUE(equal(U"\u00E9", U"\u00C9") == 1 && order(U"\u00E9", U"\u00C9") == 1);
  for (const auto change : {vxzstmin, vxzstmax}) change(units(lower), 4);
  EXPECT_EQ(host.asked.size(), 0u) << "comparison, smallest and largest use the tables only";
}

}  // namespace
