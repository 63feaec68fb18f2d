// Comparing, finding, trimming and copying: all short texts, held against the standard library's strings; and the
// service names of the entry points for numbers and dates.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <type_traits>

#include "tests/support/character_host.h"
#include "tests/support/plain_locale.h"
#include "tests/unicode/texts.h"
#include "unicode/case_mapping.h"
#include "utf8/characters.h"
#include "vxnls/strings.h"
#include "vxnls/vxnls.h"

namespace {

using namespace vxtest;

/// Calls with one text, or two, that end at a page that may not be touched.
template <class Function, class... More>
auto with(Function function, std::string_view text, More... more) {
  static GuardedBuffer<uint8_t> memory(64);
  return function(memory.copy(bytes(text), text.size()), length_of(text), more...);
}
template <class Function, class... More>
auto with_two(Function function, std::string_view a, std::string_view b, More... more) {
  static GuardedBuffer<uint8_t> memory(64);
  return with(function, a, memory.copy(bytes(b), b.size()), length_of(b), more...);
}

struct Text {
  std::u32string characters;
  std::string utf8;
  const VXChar* units() const { return reinterpret_cast<const VXChar*>(characters.data()); }
  int64_t count() const { return static_cast<int64_t>(characters.size()); }
};

/// By the first characters whose lower-case forms differ, or by what goes on with more than blanks, also below the
/// blank. Case decides what is equal otherwise. Units are signed. All kept on purpose.
int32_t order_of(std::u32string_view a, std::u32string_view b) {
  int32_t by_case = 0;
  for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    const auto x = static_cast<int32_t>(vxnls::lower_by_tables(a[i]));
    const auto y = static_cast<int32_t>(vxnls::lower_by_tables(b[i]));
    if (x != y) return x < y ? -2 : 2;
    if (by_case == 0 && a[i] != b[i]) by_case = a[i] < b[i] ? -1 : 1;
  }
  if (a.size() > b.size()) return a.find_first_not_of(U' ', b.size()) == a.npos ? by_case : 2;
  return a.size() == b.size() || b.find_first_not_of(U' ', a.size()) == b.npos ? by_case : -2;
}

// Texts of up to three characters in both flavours: letters of both cases, a character between the two, blanks, what is
// below them, and a negative unit, which UTF-8 does not have.
TEST(Services, EveryPairOfShortTexts) {
  std::vector<Text> texts = {{}};
  for (size_t from = 0; texts[from].characters.size() < 3; ++from) {
    for (const char32_t c : U"\t aA_\u00E9\u00C9\u20AC" + std::u32string(1, 0x80000000)) {
      texts.push_back({texts[from].characters + c, texts[from].utf8 + utf8_of(c & 0x1FFFFF)});
    }
  }
  const auto is_signed = [](const Text& text) { return text.characters.find(0x80000000) != text.characters.npos; };
  for (const Text& a : texts) {
    const size_t kept = a.utf8.find_last_not_of(' ') + 1,
                 first = std::min(a.utf8.find_first_not_of(' '), a.utf8.size());
    const auto justified = [&](auto justify, Guard guard) {
      GuardedBuffer<uint8_t> memory(64);
      uint8_t* const text = memory.copy(bytes(a.utf8), a.utf8.size(), guard);
      justify(text, length_of(a.utf8));
      return std::string(text, text + a.utf8.size());
    };
    for (const Guard guard : {Guard::behind, Guard::before}) {
      EXPECT_EQ(justified(vxzsu8LeftJustify, guard), a.utf8.substr(first) + std::string(first, ' '));
      EXPECT_EQ(justified(vxzsu8RightJustify, guard), std::string(a.utf8.size() - kept, ' ') + a.utf8.substr(0, kept));
    }
    EXPECT_EQ(with(vxzsu8StripBlanks, a.utf8), static_cast<int64_t>(kept));
    EXPECT_EQ(vxzstrp(a.units(), a.count()), static_cast<int64_t>(a.characters.find_last_not_of(U' ') + 1));
    for (const Text& b : texts) {
      const int32_t order = order_of(a.characters, b.characters);
      const auto found = static_cast<int64_t>(a.characters.find(b.characters));  // npos: -1
      ASSERT_TRUE(vxzsncmp(a.units(), a.count(), b.units(), b.count()) == order &&
                  vxzseqn(a.units(), a.count(), b.units(), b.count()) == (a.count() == b.count() && order / 2 == 0) &&
                  vxzsndx(a.units(), a.count(), b.units(), b.count()) == found &&
                  (b.count() != 1 || vxzspos(a.units(), a.count(), *b.units()) == found))
          << a.utf8 << '|' << b.utf8;
      if (is_signed(a) || is_signed(b)) continue;
      const int by_bytes = a.utf8.compare(b.utf8);
      const auto found_bytes = static_cast<int64_t>(a.utf8.find(b.utf8));
      ASSERT_TRUE(with_two(vxzsu8Compare, a.utf8, b.utf8) == (by_bytes > 0) - (by_bytes < 0) &&
                  with_two(vxzsu8NormCompare, a.utf8, b.utf8) == order &&
                  with_two(vxzsu8Find, a.utf8, b.utf8) == found_bytes &&
                  (b.count() != 1 || with(vxzsu8Index, a.utf8, *b.units()) == found_bytes))
          << a.utf8 << '|' << b.utf8;
    }
  }
  // Antisymmetric, and transitive among texts without anything below the blank: once sorted, none is less than one
  // before it.
  std::erase_if(texts, [&](const Text& text) { return is_signed(text) || text.utf8.find('\t') != text.utf8.npos; });
  const auto order = [](const Text& a, const Text& b) { return vxzsncmp(a.units(), a.count(), b.units(), b.count()); };
  std::sort(texts.begin(), texts.end(), [&](const Text& a, const Text& b) { return order(a, b) == -2; });
  for (size_t i = 0; i < texts.size(); ++i) {
    for (size_t j = 0; j < i; ++j) {
      const int32_t after = order(texts[i], texts[j]);
      ASSERT_TRUE(after != -2 && after == -order(texts[j], texts[i])) << texts[i].utf8 << '|' << texts[j].utf8;
    }
  }
}

TEST(Services, CopyingAndFinding) {
  GuardedBuffer<uint8_t> memory(64);
  for (size_t room = 0; room <= 4; ++room) {
    uint8_t* const out = memory.at(room);
    const int64_t count = with(vxzsu8Copy, "abc", out, static_cast<int64_t>(room));
    EXPECT_EQ(std::string(out, out + count), std::string("abc").substr(0, room));
  }
  uint8_t text[] = "abcd";
  EXPECT_EQ(vxzsu8Copy(text, 3, text + 1, 3), 3);
  EXPECT_EQ(std::string(text, text + 4), "aabc");
  const std::u32string again = U"aababxxxyz";  // what began and did not go on
  for (const Text& pattern : {Text{U"abx", {}}, {U"xyz", {}}, {U"xyy", {}}}) {
    EXPECT_EQ(vxzsndx(Text{again, {}}.units(), 10, pattern.units(), 3),
              static_cast<int64_t>(again.find(pattern.characters)));
  }
  // The last two characters lie above U+10FFFF, so that nobody can look for them.
  const std::string_view past = "a\U0010FFFF\xF4\x90\x80\x80\xEF\xBF\xBF\xBF";
  for (const VXChar c : {0x110000u, 0xFFFFFFFFu}) EXPECT_EQ(with(vxzsu8Index, past, c), -1);
  EXPECT_EQ(with(vxzsu8Index, past, 0x10FFFFu), 1);
}

TEST(Services, NormalComparisonByAHostAndOfIllFormedText) {
  static constexpr struct {
    std::string_view a, b;
    int32_t result;
  } cases[] = {
      {"\u023Ax", "\u2C65X", -1},  // 2 bytes, 3 bytes
      {"\u212A", "k", 1},          // 3 bytes, 1 byte
      {"_", "A", -2},
      // U+FFFD for what cannot be decoded; different bytes of one code point are greater either way.
      {"\xC3", "\xC3", 0},
      {"\x80", "\x81", 1},
      {"\x81", "\x80", 1},
      {"\xE2\x84", "\xE2\x84\xAA", 2},
      {"\xE0\x81\xA1", "a", 1},
      {"a", "\xE0\x81\xA1", 1},
      {"\xF8", "\xF8\x80", 1},
      {"\xC3(", "\xC3)", -2},
  };
  CharacterHost host;
  host.lower = [](uint32_t c) { return c == 0x23A ? 0x2C65 : c == 0x212A ? 'k' : c; };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::string(c.a)) + " " + testing::PrintToString(std::string(c.b)));
    EXPECT_EQ(with_two(vxzsu8NormCompareText, c.a, c.b, UINT64_C(0)), c.result) << "the fifth argument is ignored";
    EXPECT_EQ(with_two(vxzsu8NormEqual, c.a, c.b), c.result / 2 == 0);
    EXPECT_EQ(with_two(vxzsu8NormEqualText, c.a, c.b, UINT64_C(7)), c.result / 2 == 0);
    EXPECT_EQ(with_two(vxzsu8CompareText, c.a, c.b, UINT64_C(1)), with_two(vxzsu8Compare, c.a, c.b));
  }
  for (const auto& question : host.asked) EXPECT_EQ(question.argument, 0u) << "the host is told that it compares";
}

// What there is the tests of the host normalise with.
TEST(Services, NormaliserThatCannotBeHad) {
  const auto check = [](VXStatus* status) {
    EXPECT_EQ(with(vxzsu8ICUNormalize, "abc", 5u, 11u, 12u, 13u, status), VX_E_MEMORY);
    EXPECT_TRUE(status == nullptr || std::exchange(*status, 77) == VX_E_MEMORY);
    EXPECT_EQ(with_two(vxzsu8ICUNormCompare, "ab", "cde", 6u, status), 0);
    EXPECT_EQ(with_two(vxzsu8ICUNormEqual, "ab", "cde", 6u, status), 0);
    EXPECT_TRUE(status == nullptr || *status == VX_E_MEMORY);
  };
  VXStatus status = 77;
  check(nullptr), check(&status);
  CharacterHost host;
  check(nullptr), check(&status);
}

TEST(Services, NullAndNegativeLengthsAreEmptyTextsAndNoRoom) {
  uint8_t text[] = {'a', 'B', 0};
  using Nothing = std::pair<uint8_t*, int64_t>;
  for (const auto& [none, n] : {Nothing{nullptr, 2}, {text, 0}, {text, -1}, {text, INT64_MIN}}) {
    for (const auto measure : {UTF8_SLENB, UTF8_BLENB, vxzsu8NumChars, vxzsu8StripBlanks, vxzsu8ByteLength})
      EXPECT_EQ(measure(none, n), 0);
    for (const auto change : {vxzsu8Lower, vxzsu8Upper, vxzsu8LeftJustify, vxzsu8RightJustify}) change(none, n);
    EXPECT_EQ(vxzsu8Copy(none, n, text, 1) + vxzsu8Copy(text, 1, none, n), 0);
    EXPECT_TRUE(vxzsu8Index(none, n, 'a') == -1 && vxzsu8Find(none, n, text, 1) == -1);
    EXPECT_EQ(vxzsu8Find(text, 1, none, n), 0);
    EXPECT_TRUE(vxzsu8Compare(none, n, text, 1) == -1 && vxzsu8Compare(text, 1, none, n) == 1);
    EXPECT_TRUE(vxzsu8NormCompare(none, n, text, 1) == -2 && vxzsu8NormCompare(text, 1, none, n) == 2);
    EXPECT_EQ(vxzsu8NormCompare(none, n, none, n), 0);
    int64_t written = -1;
    for (const auto into : {vxzsu8Lower2, vxzsu8Upper2}) {
      EXPECT_TRUE(into(none, n, text, 2, &written) == 0 && written == 0);
      EXPECT_TRUE(into(text, 2, none, n, &written) == 0 && written == 2) << "no room: it measures";
      EXPECT_EQ(into(text, 2, none, n, nullptr), 0u);
    }
    for (const auto coder : {vxzsu8Encode, vxzsu8Decode}) {
      for (const uint32_t options : {0u, 4u}) {
        EXPECT_TRUE(coder(none, n, text, 2, &written, options) == 0 && written == 0) << options;
        EXPECT_TRUE(coder(text, 2, none, n, &written, options) == VX_E_ROOM && written == 0) << options;
        EXPECT_EQ(coder(text, 2, none, n, nullptr, options), VX_E_ROOM);
      }
    }
  }
  EXPECT_TRUE(text[0] == 'a' && text[1] == 'B');
  uint8_t valid = 9;
  int64_t characters = -7, length = -7;
  EXPECT_EQ(utf8_len(nullptr) + UTF8_SLEN(nullptr) + UTF8_BLEN(nullptr), 0);
  EXPECT_TRUE(vxzsu8CharSize(nullptr, &valid) == 0 && valid == 0);
  EXPECT_TRUE(vxzsu8NextChar(nullptr) == nullptr && vxzsu8IsCombining(nullptr) == 0);
  EXPECT_EQ(vxnls::_VXZSU8IsFunct(nullptr, [](int32_t) { return 1; }), 0);
  vxzsu8Lengths(nullptr, &characters, &length);
  EXPECT_TRUE(characters == -7 && length == -7);
  vxzsu8Lengths(text, &characters, nullptr);
  vxzsu8Lengths(text, nullptr, &length);
  EXPECT_TRUE(characters == 2 && length == 2);
}

struct Case {
  std::string_view text;
  double number;
  int64_t integer, room = 0;
  uint32_t option = 0;
};

/// Everything that a call leaves behind. What it does not write keeps what it held.
struct Trace {
  alignas(8) std::array<uint8_t, 96> memory;
  template <class T>
  T* cell(size_t number) {
    return reinterpret_cast<T*>(memory.data() + 8 * number);
  }
};

/// Both functions, which must have one type, return and leave behind the same in all cases, good and bad.
template <class Function, class Call>
void expect_same(const char* name, Function* forwarder, std::type_identity_t<Function>* entry_point, Call call) {
  static PlainLocale english;
  int succeeded = 0, failed = 0;
  for (Case c : {Case{"", 0, 0},
                 {"12", 45296, INT64_MIN},
                 {"-1,234.5e1 ", -1, INT64_MAX},
                 {"3 Mar 2024", 1e300, -1},
                 {"2:05 PM", 86399.5, UINT32_MAX},
                 {"03/07/2024 14:05:09", -1234567.891, 1234567},
                 {".A", qmMissVal('B'), -1234567}}) {
    for (c.room = 0; c.room <= 64; c.room += 32) {
      for (c.option = 0; c.option < 0x40000; c.option = 2 * c.option + (c.option == 0)) {
        Trace through, direct;
        through.memory.fill(0xEE), direct.memory.fill(0xEE);
        const VXStatus status = call(entry_point, english.get(), c, direct);
        EXPECT_EQ(call(forwarder, english.get(), c, through), status) << name << ' ' << c.text << ' ' << c.option;
        EXPECT_EQ(through.memory, direct.memory) << name << ' ' << c.text << ' ' << c.option;
        ++(status == 0 ? succeeded : failed);
      }
    }
  }
  EXPECT_TRUE(succeeded > 0 && failed > 0) << name;
}

#define VX_EXPECT_SAME(name, entry_point, ...)                                                          \
  expect_same(#name, &name, &entry_point,                                                               \
              [](auto f, VXLocale* locale, [[maybe_unused]] const Case& c, [[maybe_unused]] Trace& t) { \
                return f(locale, __VA_ARGS__);                                                          \
              })
#define VX_TEXT bytes(c.text), static_cast<int32_t>(c.text.size())
#define VX_WRITTEN t.cell<uint8_t>(4), c.room, t.cell<int64_t>(0)

TEST(Services, ForwardersGiveWhatTheEntryPointsGive) {
  VX_EXPECT_SAME(vxzsu8DateFormat, NLSDateFormatU, 3, 7 + c.option, 2024, c.option % 3, VX_WRITTEN);
  VX_EXPECT_SAME(vxzsu8TimeFormat, NLSTimeFormatU, c.option % 2, VX_WRITTEN, c.number);
  VX_EXPECT_SAME(vxzsu8DatetimeFormat, NLSDatetimeFormatU, 9, VX_WRITTEN, c.number);
  VX_EXPECT_SAME(vxzsu8ToDate, NLSBufToDateU, VX_TEXT, c.option, t.cell<uint32_t>(1), t.cell<uint32_t>(2),
                 t.cell<uint32_t>(3), t.cell<int64_t>(0));
  VX_EXPECT_SAME(vxzsu8ToTime, NLSBufToTimeU, VX_TEXT, c.option, t.cell<double>(1), t.cell<int64_t>(0));
  VX_EXPECT_SAME(vxzsu8ToDatetime, NLSBufToDatetimeU, VX_TEXT, c.option, t.cell<double>(1), t.cell<int64_t>(0));
  static constexpr NLSDoubleExOpts star = {1, {}, '*'};
  VX_EXPECT_SAME(vxzsu8DoubleFormat, NLSDoubleFormatUWithExOpts, 12, 2, 0x20000, VX_WRITTEN,
                 c.option % 2 == 0 ? nullptr : &star, c.number);
  VX_EXPECT_SAME(vxzsu8ToDouble, NLSBufToDoubleU, VX_TEXT, t.cell<double>(1), t.cell<int64_t>(0));
  VX_EXPECT_SAME(vxzsu8ToDoubleWithOpts, NLSBufToDoubleUWithOpts, VX_TEXT, c.option, t.cell<double>(1),
                 t.cell<int64_t>(0));
#define VX_INTEGER_FORMAT(name, type) \
  VX_EXPECT_SAME(vxzsu8##name##Format, NLS##name##FormatU, static_cast<type>(c.integer), 5, 1, c.option, VX_WRITTEN);
#define VX_INTEGER(name, type)  \
  VX_INTEGER_FORMAT(name, type) \
  VX_EXPECT_SAME(vxzsu8To##name, NLSBufTo##name##U, VX_TEXT, c.option, t.cell<type>(1), t.cell<uint64_t>(0));
  VX_INTEGER(Int, int32_t)
  VX_INTEGER(Intfast, int32_t)
  VX_INTEGER(UInt, uint32_t)
  VX_INTEGER(Uintfast, uint32_t)
  VX_INTEGER(Long, int64_t)
  VX_INTEGER(Intmax, int64_t)
  VX_INTEGER(ULong, uint64_t)
  VX_INTEGER(Uintmax, uint64_t)
  VX_INTEGER_FORMAT(Pointer, uint64_t)
}

}  // namespace
