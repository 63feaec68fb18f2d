// Comparing, finding, trimming and copying: all short texts, held against the standard library's strings; and the
// service names of the entry points for numbers and dates.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <tuple>

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
  GuardedBuffer<uint8_t> memory(64);
  std::vector<Text> texts = {{}};
  for (size_t from = 0; texts[from].characters.size() < 3; ++from) {
    for (const char32_t c : U"\t aA_\u00E9\u00C9\u20AC" + std::u32string(1, 0x80000000)) {
      texts.push_back({texts[from].characters + c, texts[from].utf8 + utf8_of(c & 0x1FFFFF)});
    }
  }
  const auto is_signed = [](const Text& text) { return text.characters.find(0x80000000) != text.characters.npos; };
  for (const Text& a : texts) {
    const size_t size = a.utf8.size(), kept = a.utf8.find_last_not_of(' ') + 1;
    const size_t first = std::min(a.utf8.find_first_not_of(' '), size);
    for (const Guard guard : {Guard::behind, Guard::before}) {
      uint8_t* const text = memory.copy(bytes(a.utf8), size, guard);
      EXPECT_EQ(vxzsu8StripBlanks(text, length_of(a.utf8)), static_cast<int64_t>(kept));
      vxzsu8LeftJustify(text, length_of(a.utf8));
      EXPECT_EQ(std::string(text, text + size), a.utf8.substr(first) + std::string(first, ' '));
      vxzsu8RightJustify(memory.copy(bytes(a.utf8), size, guard), length_of(a.utf8));
      EXPECT_EQ(std::string(text, text + size), std::string(size - kept, ' ') + a.utf8.substr(0, kept));
    }
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
  // Antisymmetric, and transitive among texts without anything below the blank: none is less than one sorted before it.
  std::erase_if(texts, [&](const Text& text) { return is_signed(text) || text.utf8.find('\t') != text.utf8.npos; });
  const auto order = [](const Text& a, const Text& b) { return vxzsncmp(a.units(), a.count(), b.units(), b.count()); };
  std::sort(texts.begin(), texts.end(), [&](const Text& a, const Text& b) { return order(a, b) == -2; });
  for (auto a = texts.begin(); a != texts.end(); ++a) {
    ASSERT_TRUE(std::all_of(texts.begin(), a, [&](const Text& b) {
      return order(*a, b) != -2 && order(*a, b) == -order(b, *a);
    })) << a->utf8;
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
  VXStatus given = 77;
  const auto check = [&](VXStatus* status) {
    EXPECT_EQ(with(vxzsu8ICUNormalize, "abc", 5u, 11u, 12u, 13u, status), VX_E_MEMORY);
    EXPECT_EQ(std::exchange(given, 77), status != nullptr ? VX_E_MEMORY : 77);
    EXPECT_EQ(with_two(vxzsu8ICUNormCompare, "ab", "cde", 6u, status), 0);
    EXPECT_EQ(with_two(vxzsu8ICUNormEqual, "ab", "cde", 6u, status), 0);
    EXPECT_EQ(std::exchange(given, 77), status != nullptr ? VX_E_MEMORY : 77);
  };
  check(nullptr), check(&given);
  CharacterHost host;
  check(nullptr), check(&given);
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
    EXPECT_TRUE(vxzsu8Find(text, 1, none, n) == 0 && vxzsu8NormCompare(none, n, none, n) == 0);
    EXPECT_TRUE(vxzsu8Compare(none, n, text, 1) == -1 && vxzsu8Compare(text, 1, none, n) == 1);
    EXPECT_TRUE(vxzsu8NormCompare(none, n, text, 1) == -2 && vxzsu8NormCompare(text, 1, none, n) == 2);
    int64_t written = -1;
    for (const auto into : {vxzsu8Lower2, vxzsu8Upper2}) {
      EXPECT_TRUE(into(none, n, text, 2, &written) == 0 && written == 0);
      EXPECT_TRUE(into(text, 2, none, n, &written) == 0 && written == 2 && into(text, 2, none, n, nullptr) == 0);
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

struct Row {
  std::string_view text;
  double number;
  std::array<int64_t, 5> integers;
};

/// What a call returns and leaves behind. Its arguments are made by their types from a row; what it writes goes into
/// cells of memory, or behind them.
template <class... Arguments>
auto traced(VXStatus (*function)(VXLocale*, Arguments...), const Row& row) {
  static PlainLocale english;
  static constexpr NLSDoubleExOpts star = {1, {}, '*'};
  alignas(8) std::array<uint8_t, 128> memory;
  memory.fill(0xEE);
  size_t numbers = 0, cells = 0;
  const auto argument = [&]<class T>(std::type_identity<T>) -> T {
    if constexpr (std::is_same_v<T, const uint8_t*>) return bytes(row.text);
    else if constexpr (std::is_same_v<T, uint8_t*>) return memory.data() + 64;
    else if constexpr (std::is_same_v<T, const NLSDoubleExOpts*>) return &star;
    else if constexpr (std::is_pointer_v<T>) return reinterpret_cast<T>(memory.data() + 8 * cells++);
    else if constexpr (std::is_same_v<T, double>) return row.number;
    else return static_cast<T>(row.integers.at(numbers++));
  };
  const std::tuple<VXLocale*, Arguments...> arguments{english.get(), argument(std::type_identity<Arguments>())...};
  return std::pair(std::apply(function, arguments), memory);
}

// A row's first number is a value, a width, a month, or how much of the text is read; the last ones are mostly room.
constexpr Row rows[] = {
    {"12", 45296, {2, 29, 2024, 0, 64}},
    {"1234567", 86399.5, {7, 64, 0, 0, 64}},
    {"03/07/2024 14:05:09", 0.5, {10, 4, 1, 40, 40}},
    {"03/07/2024 14:05:09", 1e300, {19, 8, 3, 0x20000, 8}},
    {"2:05 PM", -1234567.891, {7, 4, 0, 64, 64}},
    {"-1,234.5e1 ", std::numeric_limits<double>::quiet_NaN(), {-1, 5, 5, 5, 5}},
    {"-1,234.5e1 ", 45296, {11, 20, 0x4000, 20, 64}},
    {".A", -1, {INT64_MIN, 3, 2, 1, 3}},
};

/// Each pair, of a service name and the entry point behind it, must have one type, and gives the same good and bad.
template <class Function, class... More>
void expect_same(Function* forwarder, std::type_identity_t<Function>* entry_point, More... more) {
  int succeeded = 0, failed = 0;
  for (const Row& row : rows) {
    const auto expected = traced(entry_point, row);
    EXPECT_EQ(traced(forwarder, row), expected) << row.text << ' ' << sizeof...(more);
    ++(expected.first == 0 ? succeeded : failed);
  }
  EXPECT_TRUE(succeeded > 0 && failed > 0) << sizeof...(more);
  if constexpr (sizeof...(more) > 0) expect_same(more...);
}

TEST(Services, ForwardersGiveWhatTheEntryPointsGive) {
  expect_same(vxzsu8DateFormat, NLSDateFormatU, vxzsu8TimeFormat, NLSTimeFormatU, vxzsu8DatetimeFormat,
              NLSDatetimeFormatU, vxzsu8ToDate, NLSBufToDateU, vxzsu8ToTime, NLSBufToTimeU, vxzsu8ToDatetime,
              NLSBufToDatetimeU, vxzsu8DoubleFormat, NLSDoubleFormatUWithExOpts, vxzsu8ToDouble, NLSBufToDoubleU,
              vxzsu8ToDoubleWithOpts, NLSBufToDoubleUWithOpts, vxzsu8IntFormat, NLSIntFormatU, vxzsu8IntfastFormat,
              NLSIntfastFormatU, vxzsu8UIntFormat, NLSUIntFormatU, vxzsu8UintfastFormat, NLSUintfastFormatU,
              vxzsu8LongFormat, NLSLongFormatU, vxzsu8IntmaxFormat, NLSIntmaxFormatU, vxzsu8ULongFormat,
              NLSULongFormatU, vxzsu8UintmaxFormat, NLSUintmaxFormatU, vxzsu8PointerFormat, NLSPointerFormatU,
              vxzsu8ToInt, NLSBufToIntU, vxzsu8ToIntfast, NLSBufToIntfastU, vxzsu8ToUInt, NLSBufToUIntU,
              vxzsu8ToUintfast, NLSBufToUintfastU, vxzsu8ToLong, NLSBufToLongU, vxzsu8ToIntmax, NLSBufToIntmaxU,
              vxzsu8ToULong, NLSBufToULongU, vxzsu8ToUintmax, NLSBufToUintmaxU);
}

}  // namespace
