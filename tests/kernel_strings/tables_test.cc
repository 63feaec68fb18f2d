// The generated tables, whole, against ICU's data for the characters that the table's version of Unicode knew; and what
// a host is asked instead of them.
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "tests/kernel_strings/class_categories.h"
#include "tests/support/character_host.h"
#include "unicode/case_mapping.h"
#include "unicode/class_tables.h"
#include "vxnls/strings.h"

namespace {

using namespace vxtest;

constexpr uint32_t code_points = 0x110000;

bool known_by(uint32_t c, int major) {
  UVersionInfo age;
  u_charAge(static_cast<UChar32>(c), age);
  return age[0] != 0 && (age[0] < major || (age[0] == major && age[1] == 0));
}

// General categories changed after Unicode 9.0, 52 characters in all.
constexpr struct {
  uint32_t low, high, mask_then;
} changed_later[] = {
    {0x10D0, 0x10FA, U_GC_LO_MASK}, {0x10FD, 0x10FF, U_GC_LO_MASK},  // Georgian became lower case
    {0x166D, 0x166D, U_GC_PO_MASK}, {0x1734, 0x1734, U_GC_MN_MASK},   {0x1CF2, 0x1CF3, U_GC_MC_MASK},
    {0xA9BD, 0xA9BD, U_GC_MC_MASK}, {0x111C9, 0x111C9, U_GC_PO_MASK},
};

uint32_t category_mask(uint32_t c) {
  for (const auto& change : changed_later) {
    if (c >= change.low && c <= change.high) return change.mask_then;
  }
  return known_by(c, 9) ? U_GET_GC_MASK(static_cast<UChar32>(c)) : U_GC_CN_MASK;
}

TEST(Tables, ClassesAreThoseOfUnicode9) {
  int changed = 0;
  for (uint32_t c = 0; c < code_points; ++c) {
    const uint32_t category = category_mask(c);
    changed += known_by(c, 9) && category != U_GET_GC_MASK(static_cast<UChar32>(c));
    for (const auto& k : class_categories)
      ASSERT_EQ(k.test(c), (k.categories & category) != 0) << k.name << " of " << c;
    // POSIX hexadecimal digits of ICU: decimal digits, and the letters in ASCII and full width.
    const bool hexadecimal = known_by(c, 9) && u_isxdigit(static_cast<UChar32>(c));
    ASSERT_EQ(vxnlsisxdigit(c), hexadecimal) << c;
    ASSERT_EQ(vxnlsisspace(c), u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_WHITE_SPACE)) << c;
  }
  EXPECT_EQ(changed, 52) << "only what is listed has changed later";
  for (const uint32_t c : {code_points, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    for (const auto& k : class_categories) EXPECT_EQ(k.test(c), 0) << k.name << " of " << c;
    EXPECT_EQ(vxnlsisxdigit(c) + vxnlsisspace(c), 0);
  }
}

// ASCII, hexadecimal letters and white space never call the host.
TEST(Tables, ClassesOfAHost) {
  CharacterHost host;
  int32_t answer = 0;
  host.test_class = [&](uint32_t, uint32_t) { return answer; };
  const auto check = [&](int32_t (*test)(uint32_t), uint32_t bits) {
    for (uint32_t c = 0; c < 0x80; ++c) test(c);
    EXPECT_TRUE(host.asked.empty());
    for (answer = -5; answer <= 64; answer += 23) {
      EXPECT_EQ(test(0x391), answer != 0) << "whatever the host's truth looks like, the answer is 1 or 0";
      EXPECT_EQ(std::exchange(host.asked, {}), (std::vector<CharacterHost::Question>{{'c', 0x391, bits}}));
    }
    EXPECT_EQ(test(0xFFFFFFFF), 1);
    host.asked.clear();
  };
  host.has_database = false;
  EXPECT_EQ(vxnlsisupper(0x391), 1) << "ranges stand in for a database that cannot be had";
  EXPECT_EQ(vxnlsisupper(0x3B1), 0);
  host.has_database = true;
  for (const auto& k : class_categories) check(k.test, k.asked);
  check(vxnlsisxdigit, 0x40);
  EXPECT_EQ(host.loads, 1) << "a later call tries again, and what was loaded is kept";
  answer = 0;
  for (const uint32_t c : {0xFF21u, 0xFF26u, 0xFF41u, 0xFF46u}) EXPECT_EQ(vxnlsisxdigit(c), 1) << c;
  for (const uint32_t c : {0xA0u, 0x3000u, 0x200Bu, 0x3001u}) EXPECT_EQ(vxnlsisspace(c), c == 0xA0 || c == 0x3000) << c;
  EXPECT_TRUE(host.asked.empty());
  for (const uint32_t c : {0xFF20u, 0xFF27u, 0xFF40u, 0xFF47u}) EXPECT_EQ(vxnlsisxdigit(c), 0) << c;
  EXPECT_EQ(host.asked.size(), 4u);
}

TEST(Tables, RangesAnswerAsTheBitsOfAsciiDo) {
  using namespace vxnls;
  static constexpr std::string_view categories = "LuLlLtMnMcMeNdNlNoZsZlZpCcCfCsCoCnLmLoPcPdPsPePiPfPoSmScSkSo";
  const auto within = [](uint32_t c, const auto& ranges) {
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [c](const CodePointRange& range) { return c >= range.low && c <= range.high; });
  };
  for (uint32_t c = 0; c < 128; ++c) {
    const AsciiClass& known = ansi_ccl[c];
    const char* const category =
        u_getPropertyValueName(UCHAR_GENERAL_CATEGORY, u_charType(static_cast<UChar32>(c)), U_SHORT_PROPERTY_NAME);
    const uint32_t bits = 1u << categories.find(category) / 2;
    EXPECT_EQ(known.code, c);
    EXPECT_EQ(known.bits, bits) << c;
    const auto upper = static_cast<uint32_t>(u_toupper(static_cast<UChar32>(c)));
    const auto lower = static_cast<uint32_t>(u_tolower(static_cast<UChar32>(c)));
    EXPECT_EQ(known.upper, upper == c ? 0 : upper);
    EXPECT_EQ(known.lower, lower == c ? 0 : lower);
    EXPECT_EQ(known.secondary | known.reserved12 | known.reserved24 | known.reserved28, 0u);
    // With and without a host ASCII gets one answer.
    EXPECT_EQ(within(c, digitranges), (bits & class_digit) != 0) << c;
    EXPECT_EQ(within(c, lowerranges), (bits & class_lower) != 0) << c;
    EXPECT_EQ(within(c, upperranges), (bits & class_upper) != 0) << c;
    EXPECT_EQ(within(c, alpharanges), (bits & class_letter) != 0) << c;
    EXPECT_EQ(within(c, printranges), (bits & class_print) != 0) << c;
    EXPECT_EQ(within(c, graphranges), (bits & class_graph) != 0) << c;
    EXPECT_EQ(within(c, punctranges), (bits & class_punctuation) != 0) << c;
    EXPECT_EQ(within(c, controlranges), (bits & class_control) != 0) << c;
    EXPECT_EQ(within(c, xdigitranges), vxnlsisxdigit(c) != 0) << c;
  }
}

using Mapping = UChar32 (*)(UChar32);

/// The simple mapping as far as both characters lie below U+10000 and were known.
uint32_t mapped(uint32_t c, Mapping mapping, int major) {
  const auto to = static_cast<uint32_t>(mapping(static_cast<UChar32>(c)));
  return to < 0x10000 && known_by(c, major) && known_by(to, major) ? to : c;
}

uint32_t changed_by(void (*change)(VXChar*, int64_t), VXChar c) {
  change(&c, 1);
  return c;
}

TEST(Tables, CaseIsThatOfUnicode3) {
  // Mappings between characters of Unicode 3.0 that the tables leave out, and one that Unicode took back.
  static const std::map<uint32_t, uint32_t> lower_otherwise = {{0x0130, 0x0130}, {0x1FF8, 0x1FF8}, {0x1FF9, 0x1FF9},
                                                               {0x2126, 0x2126}, {0x212A, 0x212A}, {0x212B, 0x212B}};
  static const std::map<uint32_t, uint32_t> upper_otherwise = {{0x00B5, 0x00B5}, {0x017F, 0x017F}, {0x03F2, 0x03A3},
                                                               {0x1F78, 0x1F78}, {0x1F79, 0x1F79}, {0x1FBE, 0x1FBE}};
  for (uint32_t c = 0; c < code_points; ++c) {
    const auto lower = lower_otherwise.find(c), upper = upper_otherwise.find(c);
    const uint32_t by_icu_lower = mapped(c, u_tolower, 3), by_icu_upper = mapped(c, u_toupper, 3);
    ASSERT_EQ(vxnls::lower_by_tables(c), lower != lower_otherwise.end() ? lower->second : by_icu_lower) << c;
    ASSERT_EQ(vxnls::upper_by_tables(c), upper != upper_otherwise.end() ? upper->second : by_icu_upper) << c;
    ASSERT_EQ(changed_by(vxzstlo, c), vxnls::lower_by_tables(c));
    ASSERT_EQ(changed_by(vxzstup, c), vxnls::upper_by_tables(c));
    // Comparison knows the lower-case forms alone.
    const VXChar small = vxnls::lower_by_tables(c), large = vxnls::upper_by_tables(c);
    ASSERT_EQ(vxzseqn(&c, 1, &small, 1), 1) << c;
    ASSERT_EQ(vxzseqn(&c, 1, &large, 1), vxnls::lower_by_tables(large) == small) << c;
    // A row that is not needed is a fault of the list.
    ASSERT_TRUE(lower == lower_otherwise.end() || lower->second != by_icu_lower) << c;
    ASSERT_TRUE(upper == upper_otherwise.end() || upper->second != by_icu_upper) << c;
  }
  EXPECT_EQ(vxnls::lower_by_tables(0xFFFFFFFF), 0xFFFFFFFF);
  EXPECT_EQ(vxnls::upper_by_tables(0x80000041), 0x80000041);
}

TEST(Tables, SmallestAndLargestOfTheCaseClass) {
  // Relaxes along every mapping in both directions until nothing moves.
  std::vector<uint32_t> smallest(code_points), largest(code_points);
  for (uint32_t c = 0; c < code_points; ++c) smallest[c] = largest[c] = c;
  for (bool moved = true; moved;) {
    moved = false;
    for (uint32_t c = 0; c < 0x10000; ++c) {
      for (const Mapping mapping : {u_tolower, u_toupper}) {
        const uint32_t to = mapped(c, mapping, 9);
        const uint32_t low = std::min(smallest[c], smallest[to]), high = std::max(largest[c], largest[to]);
        moved |= smallest[c] != low || smallest[to] != low || largest[c] != high || largest[to] != high;
        smallest[c] = smallest[to] = low;
        largest[c] = largest[to] = high;
      }
    }
  }
  for (uint32_t c = 0; c < code_points; ++c) {
    ASSERT_EQ(changed_by(vxzstmin, c), smallest[c]) << c;
    ASSERT_EQ(changed_by(vxzstmax, c), largest[c]) << c;
  }
  EXPECT_EQ(changed_by(vxzstmin, 0xFFFFFFFF), 0xFFFFFFFF);
  EXPECT_EQ(changed_by(vxzstmax, 0x80000041), 0x80000041);
}

}  // namespace
