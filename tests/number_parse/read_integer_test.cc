#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "tests/support/guard_page.h"
#include "tests/support/plain_locale.h"

namespace {

using namespace std::literals;

struct Reading {
  VXStatus status = 0;
  __int128_t value = 0;
  uint64_t consumed = 0;
  bool operator==(const Reading&) const = default;
};

struct Signs {
  char32_t point = U'.';
  char32_t separator = U',';
};

/// The type that a reader gives: its limits.
struct Range {
  __int128_t least, most;
};

/// A second reader, in characters, that gathers the digits first and looks at the limits afterwards.
Reading model(std::u32string_view text, uint32_t flags, const Range& range, const Signs& signs) {
  const bool hexadecimal = range.least == 0 && (flags & NLS_READ_HEXADECIMAL);
  const bool trailing = flags & NLS_READ_TRAILING_BLANKS;
  const bool spaces = (flags & NLS_READ_SPACE_SEPARATOR) && signs.separator == U'\u00A0';
  const int base = hexadecimal ? 16 : 10;
  const auto separates = [&](char32_t c) { return !hexadecimal && (c == signs.separator || (spaces && c == U' ')); };
  const auto digit = [&](char32_t c) {
    const std::u32string_view lower = U"0123456789abcdef", upper = U"0123456789ABCDEF";
    const size_t at = std::min(lower.find(c), upper.find(c));
    return at < static_cast<size_t>(base) ? static_cast<int>(at) : -1;
  };
  size_t at = 0;
  const auto skip_blanks = [&] { at = std::min(text.find_first_not_of(U' ', at), text.size()); };
  const auto result = [&](VXStatus status, __int128_t value = 0) { return Reading{status, value, at}; };

  skip_blanks();
  if (at == text.size()) return result(0);
  bool negative = false;
  if (text[at] == U'+' || text[at] == U'-') {
    if (hexadecimal || (text[at] == U'-' && range.least == 0)) return result(VX_E_NOTNUMBER);
    negative = text[at++] == U'-';
    skip_blanks();
    if (at == text.size()) return result(VX_E_NOTNUMBER);
  } else if (separates(text[at])) {
    return result(VX_E_NOTNUMBER);
  }
  if (hexadecimal && (text.substr(at, 2) == U"0x" || text.substr(at, 2) == U"0X")) at += 2;

  __int128_t sum = 0;
  bool too_much = false;
  for (; at < text.size() && (digit(text[at]) >= 0 || separates(text[at])); ++at) {
    if (separates(text[at])) continue;
    sum = sum * base + digit(text[at]);
    too_much = too_much || (negative ? -sum < range.least : sum > range.most);
    if (too_much) sum = 0;
  }
  if (too_much) return result(VX_E_OVERFLOW);
  const __int128_t value = negative ? -sum : sum;

  VXStatus fraction = 0;
  bool in_fraction = false;
  if (!hexadecimal && (flags & NLS_READ_FRACTION) && at < text.size() && text[at] == signs.point) {
    in_fraction = true;
    for (++at; at < text.size(); ++at) {
      const char32_t c = text[at];
      if (c >= U'1' && c <= U'9') fraction = VX_E_TRUNCATED;
      else if (c != U'0' && !(c == U' ' && trailing)) break;
    }
  }
  if (!in_fraction && trailing) skip_blanks();
  const bool may_end = at == text.size() || text[at] == 0 || (text[at] == U' ' && !trailing);
  return result(may_end ? fraction : VX_E_NOTNUMBER, value);
}

template <class Integer>
using Plain = VXStatus (*)(VXLocale*, const VXChar*, int64_t, uint32_t, Integer*, uint64_t*);
template <class Integer>
using Bytes = VXStatus (*)(VXLocale*, const uint8_t*, int64_t, uint32_t, Integer*, uint64_t*);

/// All sixteen readers over one text, each against the model.
class Readers {
 public:
  void use(const Signs& signs) {
    signs_ = signs;
    locale_.data.decimalPoint = signs.point;
    locale_.data.groupSeparator = signs.separator;
  }

  void check(std::u32string_view text, uint32_t flags) {
    check<int32_t>(text, flags, {NLSBufToInt, NLSBufToIntfast}, {NLSBufToIntU, NLSBufToIntfastU});
    check<uint32_t>(text, flags, {NLSBufToUInt, NLSBufToUintfast}, {NLSBufToUIntU, NLSBufToUintfastU});
    check<int64_t>(text, flags, {NLSBufToLong, NLSBufToIntmax}, {NLSBufToLongU, NLSBufToIntmaxU});
    check<uint64_t>(text, flags, {NLSBufToULong, NLSBufToUintmax}, {NLSBufToULongU, NLSBufToUintmaxU});
  }

  int failed = 0;

 private:
  template <class Integer>
  void check(std::u32string_view text, uint32_t flags, std::initializer_list<Plain<Integer>> plain,
             std::initializer_list<Bytes<Integer>> bytes) {
    using Limits = std::numeric_limits<Integer>;
    const Reading expected = model(text, flags, {Limits::min(), Limits::max()}, signs_);
    const VXChar* const units = units_.copy(reinterpret_cast<const VXChar*>(text.data()), text.size());
    for (const auto reader : plain) compare(reader, units, text.size(), flags, expected, text);
    const std::string utf8 = vxtest::utf8(text);
    Reading in_bytes = expected;
    in_bytes.consumed = vxtest::utf8(text.substr(0, expected.consumed)).size();
    const uint8_t* const at = bytes_.copy(reinterpret_cast<const uint8_t*>(utf8.data()), utf8.size());
    for (const auto reader : bytes) compare(reader, at, utf8.size(), flags, in_bytes, text);
  }

  template <class Integer, class Unit>
  void compare(VXStatus (*reader)(VXLocale*, const Unit*, int64_t, uint32_t, Integer*, uint64_t*), const Unit* text,
               size_t length, uint32_t flags, const Reading& expected, std::u32string_view shown) {
    Integer value = 99;
    Reading got;
    got.status = reader(locale_.get(), text, static_cast<int64_t>(length), flags, &value, &got.consumed);
    got.value = value;
    if (got == expected || ++failed > 20) return;
    ADD_FAILURE() << '"' << vxtest::utf8(shown) << "\" flags " << std::hex << flags << ", " << sizeof(Integer) << " of "
                  << sizeof(Unit) << ": " << got.status << " " << std::dec << value << " " << got.consumed << ", model "
                  << std::hex << expected.status << " " << std::dec << static_cast<Integer>(expected.value) << " "
                  << expected.consumed;
  }

  vxtest::PlainLocale locale_;
  Signs signs_;
  vxtest::GuardedBuffer<VXChar> units_{256};
  vxtest::GuardedBuffer<uint8_t> bytes_{1024};
};

constexpr uint32_t all_flags[] = {0x0000, 0x0001, 0x1000, 0x1001, 0x2000, 0x2001, 0x3000,
                                  0x3001, 0x4000, 0x5000, 0x6000, 0x7000, 0x7001, 0xFFFF8FFE};
constexpr Signs english{}, german{U',', U'.'}, spaced{U',', U'\u00A0'}, swiss{U'.', U'\u2019'},
    arabic{U'\u066B', U'\u066C'}, nothing{0, 0}, same{U'.', U'.'};

TEST(ReadInteger, Texts) {
  static const struct {
    std::u32string_view text;
    uint32_t flags;
    VXStatus status;
    int32_t value;
    uint64_t consumed;
  } cases[] = {
      {U"", 0, 0, 0, 0},
      {U"   ", 0, 0, 0, 3},
      {U"-2147483648", 0, 0, INT32_MIN, 11},
      {U"2147483648", 0, VX_E_OVERFLOW, 0, 10},
      {U"-9,999,999,999,x", 0, VX_E_OVERFLOW, 0, 15},
      {U"1,2,,3", 0, 0, 123, 6},
      {U",123", 0, VX_E_NOTNUMBER, 0, 0},
      {U",123,456", 0, VX_E_NOTNUMBER, 0, 0},
      {U",123,456,789", 0, VX_E_NOTNUMBER, 0, 0},
      {U"-,123", 0, 0, -123, 5},
      {U" - 5", 0, 0, -5, 4},
      {U"- ", 0, VX_E_NOTNUMBER, 0, 2},
      {U"12a", 0, VX_E_NOTNUMBER, 12, 2},
      {U"abc", 0, VX_E_NOTNUMBER, 0, 0},
      {U"\0001"sv, 0, 0, 0, 0},
      {U"12\t", 0x1000, VX_E_NOTNUMBER, 12, 2},
      {U"12  ", 0, 0, 12, 2},
      {U"12  ", 0x1000, 0, 12, 4},
      {U"12  x", 0x1000, VX_E_NOTNUMBER, 12, 4},
      {U"12.50", 0x2000, VX_E_TRUNCATED, 12, 5},
      {U"12.00", 0x2000, 0, 12, 5},
      {U"12.", 0x2000, 0, 12, 3},
      {U".5", 0x2000, VX_E_TRUNCATED, 0, 2},
      {U"12.5 0", 0x2000, VX_E_TRUNCATED, 12, 4},
      {U"12.0 5 ", 0x3000, VX_E_TRUNCATED, 12, 7},
      {U"12.5,", 0x2000, VX_E_NOTNUMBER, 12, 4},
      {U"0xFF", 1, VX_E_NOTNUMBER, 0, 1},  // signed integers have no hexadecimal form
  };
  vxtest::PlainLocale locale;
  for (const auto& c : cases) {
    SCOPED_TRACE(vxtest::utf8(c.text));
    int32_t value = 99;
    uint64_t consumed = 99;
    const auto units = reinterpret_cast<const VXChar*>(c.text.data());
    EXPECT_EQ(NLSBufToInt(locale.get(), units, static_cast<int64_t>(c.text.size()), c.flags, &value, &consumed),
              c.status);
    EXPECT_EQ(value, c.value);
    EXPECT_EQ(consumed, c.consumed);
  }
}

/// The borders of each type, every power of ten and two, ±2, in the spellings that a text may have.
TEST(ReadInteger, Borders) {
  Readers readers;
  for (const Signs& signs : {english, swiss}) {
    readers.use(signs);
    for (const unsigned base : {2u, 10u, 16u})
      for (__uint128_t power = 1; power >> 68 == 0; power *= base)
        for (int off = -2; off <= 2; ++off) {
          const __uint128_t magnitude = power + static_cast<__uint128_t>(static_cast<__int128_t>(off));
          if (magnitude >> 100) continue;
          std::u32string decimal, grouped, hexadecimal;
          size_t count = 0;
          for (__uint128_t left = magnitude; left != 0 || decimal.empty(); left /= 10) {
            if (count > 0 && count % 3 == 0) grouped += signs.separator;
            ++count;
            const char32_t digit = U"0123456789"[static_cast<size_t>(left % 10)];
            decimal += digit;
            grouped += digit;
          }
          for (__uint128_t left = magnitude; left != 0 || hexadecimal.empty(); left /= 16)
            hexadecimal += (off == 0 ? U"0123456789abcdef" : U"0123456789ABCDEF")[static_cast<size_t>(left % 16)];
          for (std::u32string* text : {&decimal, &grouped, &hexadecimal}) std::reverse(text->begin(), text->end());
          for (const auto& before : {U""s, U"-"s, U"+"s, U" -  "s, U"000"s}) {
            readers.check(before + decimal, 0);
            readers.check(before + grouped + U"  ", NLS_READ_TRAILING_BLANKS);
            readers.check(before + grouped + std::u32string{signs.point} + U"01", NLS_READ_FRACTION);
          }
          for (const auto& before : {U""s, U"0x"s, U"0X0"s, U" "s}) {
            readers.check(before + hexadecimal, NLS_READ_HEXADECIMAL);
            readers.check(before + hexadecimal + U"g", NLS_READ_HEXADECIMAL | NLS_READ_TRAILING_BLANKS);
          }
        }
  }
}

/// Every text of up to four units of an alphabet in which each unit means something else, with every set of flags; and
/// longer ones at random.
TEST(ReadInteger, AgreesWithTheModel) {
  Readers readers;
  std::mt19937_64 random(3);
  for (const Signs& signs : {english, german, spaced, swiss, arabic, nothing, same}) {
    readers.use(signs);
    const std::u32string alphabet = U"0 1-+x"s + std::u32string{signs.separator, signs.point, 0, U'F'};
    for (size_t length = 0; length <= 4; ++length) {
      size_t texts = 1;
      for (size_t i = 0; i < length; ++i) texts *= alphabet.size();
      for (size_t n = 0; n < texts && readers.failed == 0; ++n) {
        std::u32string text;
        for (size_t i = 0, left = n; i < length; ++i, left /= alphabet.size()) text += alphabet[left % alphabet.size()];
        for (const uint32_t flags : all_flags) readers.check(text, flags);
      }
    }
    const std::u32string longer = U"0123456789012345678901234567899999 -x\u2007"s + alphabet;
    for (int i = 0; i < 100'000 && readers.failed == 0; ++i) {
      std::u32string text;
      for (size_t n = random() % 30; n > 0; --n) text += longer[random() % longer.size()];
      readers.check(text, all_flags[random() % std::size(all_flags)]);
    }
  }
}

TEST(ReadInteger, Doors) {
  vxtest::PlainLocale locale;
  const VXChar text[] = {'1', ',', '2'};
  int64_t value = 7;
  uint64_t consumed = 7;
  for (const int64_t length : {INT64_C(-1), INT64_MIN}) {
    EXPECT_EQ(NLSBufToLong(locale.get(), text, length, 0, &value, &consumed), VX_E_LENGTH);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(consumed, 7u);
  }
  EXPECT_EQ(NLSBufToLong(locale.get(), nullptr, 3, 0, &value, &consumed), VX_E_NULL);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(consumed, 0u);
  EXPECT_EQ(NLSBufToLong(locale.get(), nullptr, 0, 0, &value, &consumed), 0u);
  EXPECT_EQ(NLSBufToLong(locale.get(), text, 3, 0, nullptr, &consumed), VX_E_NULL);
  EXPECT_EQ(NLSBufToLong(locale.get(), text, 3, 0, &value, nullptr), VX_E_NULL);
  VXLocale without_data{};
  for (VXLocale* const none : {static_cast<VXLocale*>(nullptr), &without_data}) {
    EXPECT_EQ(NLSBufToLong(none, text, 3, 0, &value, &consumed), 0u);
    EXPECT_EQ(value, 12);
    uint64_t whole = 0;
    EXPECT_EQ(NLSBufToULong(none, text, 3, 0, &whole, &consumed), 0u);
    EXPECT_EQ(whole, 12u);
  }
  // A separator that the end of the text cuts off is none.
  locale.data.groupSeparator = 0x2019;
  EXPECT_EQ(NLSBufToLongU(locale.get(), reinterpret_cast<const uint8_t*>("1\xE2\x80\x99"), 3, 0, &value, &consumed),
            VX_E_NOTNUMBER);
  EXPECT_EQ(consumed, 1u);
}

}  // namespace
