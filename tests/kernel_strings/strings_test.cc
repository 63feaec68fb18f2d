// Primitives over bytes and units, missing values, joining; classes and case by the built-in tables, whole, against
// ICU's data for the characters that their version of Unicode knew, and what a host is asked instead of them. Texts are
// compared and searched in tests/utf8, in both flavours.
#include "vxnls/strings.h"

#include <gtest/gtest.h>

#include <bit>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "kernel_strings/join.h"
#include "tests/kernel_strings/class_categories.h"
#include "tests/support/character_host.h"
#include "unicode/case_mapping.h"
#include "vxnls/bytes.h"

namespace {

using namespace vxtest;
using Text = std::u32string;

VXChar* units(Text& text) { return reinterpret_cast<VXChar*>(text.data()); }

constexpr auto all_changes = {vxzstlo, vxzstup, vxzstmin, vxzstmax};

TEST(Strings, NullAndCountsBelowOneAreEmpty) {
  VXChar text[2] = {7, 8};
  using Nothing = std::pair<VXChar*, int64_t>;
  for (const auto& [none, n] : {Nothing{nullptr, 2}, {text, 0}, {text, -1}, {text, INT64_MIN}}) {
    for (const auto copy : {qmMemCpy, qmMemMove})
      EXPECT_TRUE(copy(none, text, n) == none && copy(text, none, n) == text);
    for (const auto copy : {qmzMemCpy, qmzMemMove})
      EXPECT_TRUE(copy(none, text, n) == none && copy(text, none, n) == text);
    EXPECT_TRUE(qmMemSet(none, 1, n) == none && qmzMemSet(none, 1, n) == none);
    EXPECT_EQ(qmMemCmp(none, text + 1, n) + qmMemCmp(text + 1, none, n), 0);
    EXPECT_EQ(qmzMemCmp(none, text + 1, n) + qmzMemCmp(text + 1, none, n), 0);
    EXPECT_TRUE(qmMemScan(none, n, 7) == -1 && qmzMemScan(none, n, 7) == -1 && vxzspos(none, n, 7) == -1);
    EXPECT_TRUE(vxzsndx(none, n, text, 1) == -1 && vxzsndx(text, 1, none, n) == 0 && vxzstrp(none, n) == 0);
    EXPECT_TRUE(vxzseqn(none, n, none, n) == 1 && vxzseqn(none, n, text, 1) == 0 && vxzseqn(text, 1, none, n) == 0);
    EXPECT_TRUE(vxzsncmp(none, n, text, 1) == -2 && vxzsncmp(text, 1, none, n) == 2 && vxzsncmp(none, n, none, n) == 0);
    for (const auto change : all_changes) change(none, n);
  }
  EXPECT_EQ(qmStrLen(nullptr) + qmzStrLen(nullptr), 0);
  EXPECT_TRUE(text[0] == 7 && text[1] == 8);
}

TEST(Strings, TwinsDoTheSameToBytesAndUnits) {
  char bytes[] = "abcdef";
  VXChar wide[] = {'a', 'b', 'c', 'd', 'e', 'f', 0};
  EXPECT_TRUE(qmStrLen(bytes) == 6 && qmzStrLen(wide) == 6);
  qmMemMove(bytes + 1, bytes, 4), qmzMemMove(wide + 1, wide, 4);
  EXPECT_TRUE(bytes == std::string("aabcdf") && std::equal(bytes, bytes + 7, wide)) << bytes;
  qmMemCpy(bytes, bytes + 3, 2), qmzMemCpy(wide, wide + 3, 2);
  qmMemSet(bytes + 4, 'x', 2), qmzMemSet(wide + 4, 'x', 2);
  EXPECT_TRUE(bytes == std::string("cdbcxx") && std::equal(bytes, bytes + 7, wide)) << bytes;
  EXPECT_TRUE(qmMemScan(bytes, 6, 'x') == 4 && qmzMemScan(wide, 6, 'x') == 4);
  EXPECT_TRUE(qmMemScan(bytes, 4, 'x') == -1 && qmzMemScan(wide, 4, 'x') == -1);
  // Bytes are unsigned, units signed: kept on purpose.
  EXPECT_TRUE(qmMemCmp("\x7F", "\x80", 1) == -1 && qmMemCmp("b\x01", "a\xFF", 2) == 1 && qmMemCmp("ab", "ac", 1) == 0);
  static constexpr VXChar low[] = {5, 0x80000000}, high[] = {5, 0x7FFFFFFF};
  EXPECT_TRUE(qmzMemCmp(low, high, 2) == -1 && qmzMemCmp(high, low, 2) == 1 && qmzMemCmp(high, low, 1) == 0);
}

TEST(Strings, MissingLetterToCodeToBits) {
  for (VXChar letter = 0; letter < 0x200; ++letter) {
    const bool is_letter = letter < 0x80 && std::isalpha(static_cast<int>(letter)) != 0;
    const uint64_t code = letter == '_' ? 1 : is_letter ? letter % 32 + 2 : 2;
    double values[] = {1, qmMissVal(letter), 3};
    qmMissArray(values, 1, letter), qmMissArray(values, -1, letter), qmMissArray(nullptr, 2, letter);
    const auto bits = std::bit_cast<uint64_t>(values[0]);
    EXPECT_TRUE(bits == qmmissv_struct[code] && bits == std::bit_cast<uint64_t>(values[1])) << letter;
    EXPECT_EQ(bits, UINT64_C(0xFFFF000000000000) | (0x100 - code) % 0x100 << 40) << letter;
    EXPECT_EQ(values[2], 3);
  }
  EXPECT_EQ(qmmissv_struct[0], qmmissv_struct[2]);
}

TEST(Strings, JoinInEveryRoom) {
  Text ab = U"ab", cd = U"cd";
  for (const int64_t room : {INT64_MIN, -8L, -6L, -5L, -4L, -3L, -2L, -1L, 0L, 1L, 2L, 3L, 4L, 5L, 8L}) {
    for (const VXChar separator : {VXChar{'/'}, vxnls::no_separator}) {
      const Text all = separator == '/' ? U"ab/cd" : U"abcd";
      const auto most = static_cast<size_t>(room < 0 ? -(room + 1) : room), kept = std::min(most, all.size());
      Text expected = all.substr(0, kept) + (room < 0 ? Text(1, 0) : Text(most - kept, ' ')), field(16, '?');
      expected.resize(16, '?');
      Text typed = field;
      EXPECT_EQ(vxzscat(units(field), room, separator, 2, units(ab), int64_t{2}, units(cd), int64_t{2}), kept) << room;
      EXPECT_EQ(vxnls::join(units(typed), room, separator, {{units(ab), 2}, {units(cd), 2}}), kept) << room;
      EXPECT_TRUE(field == expected && typed == expected) << room;
    }
  }
  Text field = U"??????";
  for (const int64_t n : {INT64_C(0), INT64_C(-2), INT64_MIN, INT64_C(2)}) {
    const VXChar* const none = n == 2 ? nullptr : units(ab);
    EXPECT_EQ(vxzscat(units(field), 6, '/', 3, none, n, units(ab), int64_t{2}, none, n), 4);
    EXPECT_EQ(field, U"/ab/  ");
  }
  EXPECT_EQ(vxzscat(units(field), 3, '/', -1) + vxzscat(nullptr, -3, '/', 1, units(ab), int64_t{2}), 0);
  EXPECT_EQ(field, U"   /  ");
  field[0] = 'x';  // the first text may lie in the field
  EXPECT_EQ(vxzscat(units(field), 5, '-', 2, units(field), int64_t{1}, units(cd), int64_t{2}), 4);
  EXPECT_EQ(field, U"x-cd  ");
}

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
  static constexpr std::string_view categories = "LuLlLtMnMcMeNdNlNoZsZlZpCcCfCsCoCnLmLoPcPdPsPePiPfPoSmScSkSo";
  int changed = 0;
  for (uint32_t c = 0; c < code_points; ++c) {
    const uint32_t category = category_mask(c);
    changed += known_by(c, 9) && category != U_GET_GC_MASK(static_cast<UChar32>(c));
    for (const auto& k : class_categories)
      ASSERT_EQ(k.test(c), (k.categories & category) != 0) << k.name << " of " << c;
    // POSIX hexadecimal digits of ICU: decimal digits, and the letters in ASCII and full width.
    ASSERT_EQ(vxnlsisxdigit(c), known_by(c, 9) && u_isxdigit(static_cast<UChar32>(c))) << c;
    ASSERT_EQ(vxnlsisspace(c), u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_WHITE_SPACE)) << c;
  }
  EXPECT_EQ(changed, 52) << "only what is listed has changed later";
  for (uint32_t c = 0; c < 128; ++c) {  // the rows of ASCII, and the ranges, which nobody asks there
    const vxnls::AsciiClass& row = vxnls::ansi_ccl[c];
    const auto icu = static_cast<UChar32>(c);
    const char* const name = u_getPropertyValueName(UCHAR_GENERAL_CATEGORY, u_charType(icu), U_SHORT_PROPERTY_NAME);
    EXPECT_TRUE(row.code == c && row.bits == 1u << categories.find(name) / 2) << c;
    EXPECT_TRUE(row.upper == (u_islower(icu) ? c - 0x20 : 0) && row.lower == (u_isupper(icu) ? c + 0x20 : 0)) << c;
    EXPECT_EQ(row.secondary | row.reserved12 | row.reserved24 | row.reserved28, 0u);
    for (const auto& k : class_categories) {
      const bool within = std::any_of(k.ranges.begin(), k.ranges.end(),
                                      [c](const auto& range) { return c >= range.low && c <= range.high; });
      EXPECT_TRUE(k.ranges.empty() || within == k.test(c)) << k.name << " of " << c;
    }
  }
  for (const uint32_t c : {code_points, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    for (const auto& k : class_categories) EXPECT_EQ(k.test(c), 0) << k.name << " of " << c;
    EXPECT_EQ(vxnlsisxdigit(c) + vxnlsisspace(c), 0);
  }
}

using Questions = std::vector<CharacterHost::Question>;

// ASCII, hexadecimal letters and white space never call the host, nor does comparing.
TEST(Tables, ClassesAndCaseOfAHost) {
  CharacterHost host;
  int32_t answer = 0;
  host.test_class = [&](uint32_t, uint32_t) { return answer; };
  host.has_database = false;
  EXPECT_TRUE(vxnlsisupper(0x391) == 1 && vxnlsisupper(0x3B1) == 0) << "ranges stand in for a database";
  host.has_database = true;
  const auto check = [&](int32_t (*test)(uint32_t), uint32_t bits) {
    for (uint32_t c = 0; c < 0x80; ++c) test(c);
    for (answer = -5; answer <= 64; answer += 23) {
      EXPECT_EQ(test(0x391), answer != 0) << "whatever the host's truth looks like, the answer is 1 or 0";
      EXPECT_EQ(std::exchange(host.asked, {}), (Questions{{'c', 0x391, bits}}));
    }
  };
  for (const auto& k : class_categories) check(k.test, k.asked);
  check(vxnlsisxdigit, 0x40);
  EXPECT_EQ(host.loads, 1) << "a later call tries again, and what was loaded is kept";
  for (const uint32_t c : {0xFF20u, 0xFF21u, 0xFF26u, 0xFF27u, 0xFF40u, 0xFF41u, 0xFF46u, 0xFF47u}) vxnlsisxdigit(c);
  EXPECT_TRUE(vxnlsisspace(0x3000) == 1 && vxnlsisspace(0x200B) == 0);
  EXPECT_EQ(std::exchange(host.asked, {}).size(), 4u);
  host.lower = [](uint32_t c) { return c + 1; };
  host.upper = [](uint32_t c) { return c + 2; };
  Text lower = U"aZ\u00E9\U00010400", upper = lower, large = U"AZ\u00C9\U00010400";
  EXPECT_TRUE(vxzseqn(units(lower), 4, units(large), 4) == 1 && vxzsncmp(units(lower), 4, units(large), 4) == 1);
  vxzstlo(units(lower), 4), vxzstup(units(upper), 4), vxzstmin(units(large), 4), vxzstmax(units(large), 4);
  EXPECT_TRUE(lower == U"az\u00EA\U00010401" && upper == U"AZ\u00EB\U00010402");
  EXPECT_EQ(host.asked, (Questions{{'l', 0xE9, 1}, {'l', 0x10400, 1}, {'u', 0xE9, 1}, {'u', 0x10400, 1}}));
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
    const auto check = [c](const auto& otherwise, uint32_t by_icu, uint32_t by_tables, auto change) {
      const auto other = otherwise.find(c);
      EXPECT_EQ(by_tables, other != otherwise.end() ? other->second : by_icu) << c;
      EXPECT_EQ(changed_by(change, c), by_tables) << c;
      EXPECT_TRUE(other == otherwise.end() || other->second != by_icu) << c << ": a row that is not needed";
    };
    VXChar small = vxnls::lower_by_tables(c), large = vxnls::upper_by_tables(c);
    check(lower_otherwise, mapped(c, u_tolower, 3), small, vxzstlo);
    check(upper_otherwise, mapped(c, u_toupper, 3), large, vxzstup);
    // Comparison knows the lower-case forms alone.
    ASSERT_EQ(vxzseqn(&c, 1, &small, 1), 1) << c;
    ASSERT_EQ(vxzseqn(&c, 1, &large, 1), vxnls::lower_by_tables(large) == small) << c;
  }
}

TEST(Tables, SmallestAndLargestOfTheCaseClass) {
  // Relaxes along every mapping in both directions, more often than any chain is long.
  std::vector<uint32_t> smallest(code_points), largest(code_points);
  for (uint32_t c = 0; c < code_points; ++c) smallest[c] = largest[c] = c;
  for (int round = 0; round < 8; ++round) {
    for (uint32_t c = 0; c < 0x10000; ++c) {
      for (const Mapping mapping : {u_tolower, u_toupper}) {
        const uint32_t to = mapped(c, mapping, 9);
        smallest[c] = smallest[to] = std::min(smallest[c], smallest[to]);
        largest[c] = largest[to] = std::max(largest[c], largest[to]);
      }
    }
  }
  for (uint32_t c = 0; c < code_points; ++c) {
    ASSERT_EQ(changed_by(vxzstmin, c), smallest[c]) << c;
    ASSERT_EQ(changed_by(vxzstmax, c), largest[c]) << c;
  }
  for (const auto change : all_changes) EXPECT_TRUE(changed_by(change, 0x80000041) == 0x80000041);
}

}  // namespace
