#include "number_parse/read_double.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cmath>
#include <cstdlib>
#include <random>

#include "number_parse/ebcdic.h"
#include "tests/number_parse/double_model.h"
#include "tests/support/guard_page.h"
#include "tests/support/null_arguments.h"
#include "tests/support/plain_locale.h"

namespace {

using namespace std::literals;
using vxtest::DoubleModel;
using vxtest::Signs;

uint64_t bits(double value) { return std::bit_cast<uint64_t>(value); }

struct Got {
  VXStatus status;
  double value;
  int64_t consumed;
};

/// A host's converter that knows one character.
constexpr char32_t quote = U'\u2019';
const VXConverterOps quote_ops = {[](VXConverter*, VXChar unit, uint8_t* byte) -> VXStatus {
  *byte = 0xB4;
  return unit == quote ? 0 : VX_E_SEQUENCE;
}};
VXConverter quote_converter{&quote_ops};

/// The four readers over one text, which always ends at a page that may not be touched.
class Readers {
 public:
  void use(const Signs& signs) {
    locale_.data.decimalPoint = signs.point;
    locale_.data.groupSeparator = signs.separator;
    flags_ = signs.space_separates ? NLS_READ_SPACE_SEPARATOR : 0;
  }
  Got utf32(std::u32string_view text) {
    const VXChar* const at = units_.copy(reinterpret_cast<const VXChar*>(text.data()), text.size());
    Got got{};
    got.status = NLSBufToDoubleWithOpts(locale_.get(), at, length(text), flags_, &got.value, &got.consumed);
    return got;
  }
  Got utf8(std::string_view text) {
    const uint8_t* const at = bytes_.copy(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    Got got{};
    got.status = NLSBufToDoubleUWithOpts(locale_.get(), at, length(text), flags_, &got.value, &got.consumed);
    return got;
  }
  Got ascii(std::u32string_view text) {
    return single(text, NLSBufToDoubleA, [](uint8_t byte) { return byte; });
  }
  Got ebcdic(std::u32string_view text) {
    return single(text, NLSBufToDoubleE, [](uint8_t byte) { return byte == 0xB4 ? byte : vxnls::a2e[byte]; });
  }

 private:
  template <class Text>
  static int32_t length(const Text& text) {
    return static_cast<int32_t>(text.size());
  }
  template <class Code>
  Got single(std::u32string_view text, decltype(NLSBufToDoubleA) reader, Code code) {
    uint8_t* const at = bytes_.at(text.size());
    for (size_t i = 0; i < text.size(); ++i)
      at[i] = code(static_cast<uint8_t>(text[i] == quote ? 0xB4 : text[i] < 256 ? text[i] : U'?'));
    Got got{};
    got.status = reader(locale_.get(), at, length(text), &got.value, &got.consumed, &quote_converter);
    return got;
  }

  vxtest::PlainLocale locale_;
  uint32_t flags_ = 0;
  vxtest::GuardedBuffer<VXChar> units_{512};
  vxtest::GuardedBuffer<uint8_t> bytes_{2048};
};

constexpr Signs english{}, german{U',', U'.'}, spaced{U',', U'\u00A0', true}, swiss{U'.', quote},
    arabic{U'\u066B', U'\u066C'};

TEST(ReadDouble, Texts) {
  constexpr double missing = 0;  // stands for the ordinary missing value of every failure
  static const struct {
    Signs signs;
    std::u32string_view text;
    VXStatus status;
    int64_t consumed;
    double value;
  } cases[] = {
      {english, U"0.1", 0, 3, 0.1},
      {english, U" \t-1,234.5 \t", 0, 12, -1234.5},
      {english, U"1,,2,.5", 0, 7, 12.5},
      {english, U"+5.", 0, 3, 5},
      {english, U"-.5d1", 0, 5, -5},
      {english, U"1.E+0,2,", 0, 8, 100},
      {english, U"00000000000000000000.00012", 0, 26, 0.00012},
      {english, U"1234567890123456789012345678901234567890", 0, 40, 1234567890123456789012345678901234567890.},
      {english, U"1.7976931348623157E308", 0, 22, DBL_MAX},
      {english, U"17976931348623157E292", 0, 21, DBL_MAX},
      {english, U"-4.9406564584124654e-324", 0, 24, -DBL_TRUE_MIN},
      {english, U"0e-30800", 0, 8, 0},
      {english, U"-0", 0, 2, -0.0},
      {english, U"-0.0e23", 0, 7, -0.0},  // the last zero stands at 10^22
      {english, U"-0e23", 0, 5, 0.0},     // a zero so far out loses its minus
      // Too large, too small, out of range.
      {english, U"1E309", VX_E_OVERFLOW, 5, missing},
      {english, U"1.7976931348623158E308", VX_E_OVERFLOW, 22, missing},
      {english, U"18E307 ", VX_E_OVERFLOW, 7, missing},
      {english, U"1E-400", VX_E_UNDERFLOW, 6, missing},
      {english, U"2.4703282292062327e-324", VX_E_UNDERFLOW, 23, missing},
      {english, U"1E30800", VX_E_OVERFLOW, 7, missing},
      {english, U"1E-30801", VX_E_RANGE, 8, missing},
      {english, U"1E308000", VX_E_RANGE, 8, missing},
      {english, U"0E99999999999999999999999999x", VX_E_RANGE, 28, missing},
      // Not numbers.
      {english, U" \t", VX_E_NOTNUMBER, 2, missing},
      {english, U"1.2,3", VX_E_NOTNUMBER, 3, missing},
      {english, U"1.2.3", VX_E_NOTNUMBER, 3, missing},
      {english, U"12a", VX_E_NOTNUMBER, 2, missing},
      {english, U"KLMNOFGH", VX_E_NOTNUMBER, 0, missing},  // eight that differ from digits in the same bits
      {english, U"1.KLMNOFGH", VX_E_NOTNUMBER, 2, missing},
      {english, U"1 2", VX_E_NOTNUMBER, 2, missing},
      {english, U"1 E2", VX_E_NOTNUMBER, 2, missing},
      {english, U"-", VX_E_NOTNUMBER, 1, missing},
      {english, U"- 1", VX_E_NOTNUMBER, 1, missing},
      {english, U",1", VX_E_NOTNUMBER, 0, missing},
      {english, U"-,1", VX_E_NOTNUMBER, 1, missing},
      {english, U"E5", VX_E_NOTNUMBER, 0, missing},
      {english, U"1E", VX_E_NOTNUMBER, 2, missing},
      {english, U"1E-,5", VX_E_NOTNUMBER, 3, missing},
      {english, U"1\0002"sv, VX_E_NOTNUMBER, 1, missing},
      // Other conventions.
      {german, U"1.234.567,89", 0, 12, 1234567.89},
      {german, U",5", 0, 2, 0.5},
      {german, U" .5", VX_E_NOTNUMBER, 1, missing},
      {german, U",A", VX_E_NOTNUMBER, 0, missing},
      {spaced, U"1 234\u00A0567,8  ", 0, 13, 1234567.8},
      {spaced, U"1\0002"sv, VX_E_NOTNUMBER, 1, missing},
      {spaced, U"1,5 2", VX_E_NOTNUMBER, 4, missing},
      {spaced, U"1,5\u00A0", VX_E_NOTNUMBER, 3, missing},
      {spaced, U"1E1 2 ", 0, 6, 1e12},
      {swiss, U"1\u2019234.5", 0, 7, 1234.5},
  };
  Readers readers;
  for (const auto& c : cases) {
    const std::u32string_view text = c.text;
    SCOPED_TRACE(vxtest::utf8(text));
    readers.use(c.signs);
    const double value = c.status == 0 ? c.value : qmMissVal('.');
    const auto expect = [&](const Got& got, int64_t consumed) {
      EXPECT_EQ(got.status, c.status);
      EXPECT_EQ(got.consumed, consumed);
      EXPECT_EQ(bits(got.value), bits(value)) << got.value;
    };
    expect(readers.utf32(text), c.consumed);
    expect(readers.utf8(vxtest::utf8(text)),
           static_cast<int64_t>(vxtest::utf8(text.substr(0, static_cast<size_t>(c.consumed))).size()));
    if (c.signs.space_separates) continue;  // an option that the single-byte readers do not have
    expect(readers.ascii(text), c.consumed);
    expect(readers.ebcdic(text), c.consumed);
  }
}

TEST(ReadDouble, MissingValues) {
  Readers readers;
  for (const Signs& signs : {english, german}) {
    readers.use(signs);
    for (char32_t c = 0; c < 0x180; ++c) {
      if (c >= U'0' && c <= U'9') continue;
      const bool is_letter = (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z') || c == U'_';
      const std::u32string notation{U'.', c}, texts[] = {notation, U"\t" + notation + U" \t", U"-" + notation};
      for (const std::u32string& text : texts) {
        SCOPED_TRACE(vxtest::utf8(text));
        const Got all[] = {readers.utf32(text), readers.utf8(vxtest::utf8(text)), readers.ascii(text),
                           readers.ebcdic(text)};
        for (size_t i = 0; i < (c < 0x80 ? 4 : 2); ++i) {
          EXPECT_EQ(all[i].status, is_letter ? 0 : VX_E_NOTNUMBER) << i;
          EXPECT_EQ(bits(all[i].value), bits(qmMissVal(is_letter ? c : U'.'))) << i;
          EXPECT_EQ(all[i].consumed, static_cast<int64_t>(is_letter ? text.size() : text.find(U'.'))) << i;
        }
      }
    }
    for (const char32_t* text : {U".", U". 5", U".A5", U".A b", U"._.", U"..5"})
      EXPECT_EQ(readers.utf32(text).status, VX_E_NOTNUMBER) << vxtest::utf8(text);
    EXPECT_EQ(readers.utf32(U".A b").consumed, 3);
    const Got nothing = readers.utf32(U"");
    EXPECT_EQ(nothing.status, 0u);
    EXPECT_EQ(bits(nothing.value), UINT64_C(0xFFFFFE0000000000));
  }
}

TEST(ReadDouble, Doors) {
  vxtest::PlainLocale locale;
  const VXChar text[] = {'1', ',', '2', '.', '5'};
  double value = 7;
  int64_t consumed = 7;
  EXPECT_EQ(NLSBufToDouble(nullptr, text, 5, &value, &consumed), 0u);
  EXPECT_EQ(value, 12.5);
  EXPECT_EQ(consumed, 5);
  EXPECT_EQ(
      NLSBufToDoubleE(nullptr, reinterpret_cast<const uint8_t*>("\xF1\x6B\xF2\x4B\xF5"), 5, &value, &consumed, nullptr),
      0u);
  EXPECT_EQ(value, 12.5);
  for (const int32_t length : {-1, INT32_MIN}) {
    value = 7;
    consumed = 7;
    EXPECT_EQ(NLSBufToDouble(locale.get(), nullptr, length, &value, &consumed), VX_E_NOTNUMBER);
    EXPECT_EQ(bits(value), bits(qmMissVal('.')));
    EXPECT_EQ(consumed, 0);
  }
  EXPECT_EQ(NLSBufToDoubleU(locale.get(), nullptr, 0, &value, &consumed), 0u);
  const auto by = [&](auto reader, auto... rest) {
    return [=, &locale](auto* at, double* number, int64_t* count) {
      return reader(locale.get(), at, 5, rest..., number, count);
    };
  };
  const auto ascii = reinterpret_cast<const uint8_t*>("1,2.5");
  VX_EXPECT_NULLS_REFUSED(by(NLSBufToDouble), text, &value, &consumed);
  VX_EXPECT_NULLS_REFUSED(by(NLSBufToDoubleU), ascii, &value, &consumed);
  VX_EXPECT_NULLS_REFUSED(by(NLSBufToDoubleWithOpts, 0u), text, &value, &consumed);
  VX_EXPECT_NULLS_REFUSED(by(NLSBufToDoubleUWithOpts, 0u), ascii, &value, &consumed);
  VXLocale without_data{};
  EXPECT_EQ(NLSBufToDouble(&without_data, text, 5, &value, &consumed), 0u);
  EXPECT_EQ(value, 12.5);

  // A separator that the converter does not know, or that nobody can convert, is ",".
  constexpr VXConverterOps no_operation{};
  VXConverter without_operations{nullptr}, without_operation{&no_operation};
  for (const VXChar separator : {0x80u, 0x202Fu})
    for (VXConverter* const converter :
         {&quote_converter, &without_operations, &without_operation, static_cast<VXConverter*>(nullptr)}) {
      locale.data.groupSeparator = separator;
      EXPECT_EQ(NLSBufToDoubleA(locale.get(), ascii, 5, &value, &consumed, converter), 0u);
      EXPECT_EQ(value, 12.5);
    }
  // A no-break space needs none. A point beyond the code is never found.
  locale.data.groupSeparator = 0xA0;
  EXPECT_EQ(NLSBufToDoubleA(locale.get(),
                            reinterpret_cast<const uint8_t*>("1\xA0"
                                                             "2.5"),
                            5, &value, &consumed, nullptr),
            0u);
  EXPECT_EQ(value, 12.5);
  locale.data.decimalPoint = 0x066B;
  EXPECT_EQ(
      NLSBufToDoubleE(locale.get(), reinterpret_cast<const uint8_t*>("\xF1\x4B\xF5"), 3, &value, &consumed, nullptr),
      VX_E_NOTNUMBER);
  EXPECT_EQ(consumed, 1);
}

/// Texts of every kind: mostly numbers, near every border of the conversion, and some that are none.
class Texts {
 public:
  Texts(uint64_t seed, const Signs& signs) : random_(seed), signs_(signs) {}

  std::u32string next() {
    const auto kind = below(16);
    if (kind == 0) return noise();
    if (kind == 1) return number(digits(1, 3), range(-340, 320));
    if (kind <= 4) return number(digits(1, 8), range(-8, 8));
    if (kind <= 6) return number(digits(15, 17), range(-40, 40));
    if (kind == 7) return number(digits(28, 48), range(-60, 40));
    if (kind == 8) return number(digits(15, 20), range(-660, 320));
    if (kind == 9) return number(digits(1, 40), range(-345, -290));  // subnormal, or smaller still
    if (kind == 10) return near("17976931348623157081452742373170", 15 + below(17), 308);
    if (kind == 11) return near("24703282292062327208289439643411", 15 + below(17), -324);
    if (kind == 12) return number(digits(1, 34), range(270, 308));
    if (kind == 13)
      return printed(std::bit_cast<double>(random_() & ~(UINT64_C(1) << 63)), 15 + static_cast<int>(below(3)));
    if (kind == 14) return half_way();
    return number(std::string(below(30), '0') + digits(0, 4), range(-25, 25));  // zeros
  }

 private:
  uint64_t below(uint64_t n) { return random_() % n; }
  int64_t range(int64_t from, int64_t to) {
    return from + static_cast<int64_t>(below(static_cast<uint64_t>(to - from + 1)));
  }
  std::string digits(uint64_t least, uint64_t most) {
    std::string text;
    for (uint64_t n = least + below(most - least + 1); n > 0; --n) text += static_cast<char>('0' + below(10));
    return text;
  }
  std::u32string noise() {
    const std::u32string alphabet =
        U"01234567890123456789+-+-..eEdD \t_AzX" + std::u32string{signs_.point, signs_.separator, signs_.separator, 0};
    std::u32string text;
    for (uint64_t n = below(12); n > 0; --n) text += alphabet[below(alphabet.size())];
    return text;
  }
  /// The first digits of a border, the last of them perhaps another.
  std::u32string near(std::string border, uint64_t count, int64_t exponent) {
    border.resize(count);
    border.back() = static_cast<char>('0' + below(10));
    if (below(4) == 0) border += digits(1, 10);
    return number(border, exponent + 1 - static_cast<int64_t>(border.size()));
  }
  /// A double, or the middle between it and the next, to so many digits.
  std::u32string printed(double value, int precision) {
    if (!std::isfinite(value)) return U"1";
    char text[64];
    std::snprintf(text, sizeof text, "%.*e", precision - 1, value);
    const std::string all = text;
    const size_t e = all.find('e');
    return number(all.substr(0, 1) + all.substr(2, e - 2), std::atoi(text + e + 1) - (precision - 1));
  }
  std::u32string half_way() {
    const long double value = std::bit_cast<double>(below(UINT64_C(0x7FE0000000000000)));
    const long double next = std::nextafter(static_cast<double>(value), HUGE_VAL);
    char text[64];
    const int precision = 17 + static_cast<int>(below(12));
    std::snprintf(text, sizeof text, "%.*Le", precision - 1, (value + next) / 2);
    const std::string all = text;
    const size_t e = all.find('e');
    return number(all.substr(0, 1) + all.substr(2, e - 2), std::atoi(text + e + 1) - (precision - 1));
  }
  /// digits × 10^exponent in one of many spellings.
  std::u32string number(const std::string& digits, int64_t exponent) {
    std::u32string text;
    if (below(8) == 0) text += U" \t "[below(3)];
    if (const auto sign = below(4); sign < 2) text += U"+-"[sign];
    const uint64_t whole = below(4) == 0 ? digits.size() : below(digits.size() + 1);
    const bool grouped = below(4) == 0;
    for (uint64_t i = 0; i < digits.size(); ++i) {
      if (i == whole) text += signs_.point;
      else if (grouped && i > 0 && i < whole && (whole - i) % 3 == 0) text += signs_.separator;
      text += static_cast<char32_t>(digits[i]);
    }
    exponent += static_cast<int64_t>(digits.size() - whole);
    if (exponent != 0 || below(8) == 0) {
      text += U"EeDd"[below(4)];
      if (exponent < 0) text += U'-';
      else if (below(2) == 0) text += U'+';
      for (const char c : std::to_string(std::llabs(exponent))) text += static_cast<char32_t>(c);
    }
    if (below(8) == 0) text += U" \t"[below(2)];
    return text;
  }

  std::mt19937_64 random_;
  Signs signs_;
};

/// Five million texts against the model in every code that can express them, and against the correctly rounded value
/// wherever no rounding before the last can matter.
TEST(ReadDouble, AgreesWithTheModel) {
  DoubleModel model;
  Readers readers;
  int64_t rounded = 0, numbers = 0, failed = 0;
  for (const Signs& signs : {english, german, spaced, swiss, arabic}) {
    readers.use(signs);
    Texts texts(20240307 + signs.separator, signs);
    for (int i = 0; i < 1'000'000 && failed < 20; ++i) {
      const std::u32string text = texts.next();
      const DoubleModel::Result expected = model.read(text, signs);
      const std::string utf8 = vxtest::utf8(text);
      int64_t bytes = expected.consumed;
      if (utf8.size() != text.size())
        bytes = static_cast<int64_t>(vxtest::utf8(text.substr(0, static_cast<size_t>(expected.consumed))).size());
      const auto check = [&](const char* code, const Got& got, int64_t consumed) {
        if (got.status == expected.status && bits(got.value) == bits(expected.value) && got.consumed == consumed)
          return;
        ++failed;
        ADD_FAILURE() << code << " \"" << utf8 << "\": " << std::hex << got.status << " " << bits(got.value) << " "
                      << std::dec << got.consumed << ", model " << std::hex << expected.status << " "
                      << bits(expected.value) << std::dec << " " << consumed;
      };
      check("UTF-32", readers.utf32(text), expected.consumed);
      check("UTF-8", readers.utf8(utf8), bytes);
      if (!signs.space_separates && signs.point < 256) {
        check("ASCII", readers.ascii(text), expected.consumed);
        check("EBCDIC", readers.ebcdic(text), expected.consumed);
      }
      if (expected.status != 0 || expected.decimal.empty()) continue;
      ++numbers;
      if (expected.is_near_tie) continue;
      ++rounded;
      const double correct = std::strtod(expected.decimal.c_str(), nullptr);
      if (correct != expected.value) {
        ++failed;
        ADD_FAILURE() << utf8 << " reads " << expected.value << ", not " << correct;
      }
    }
  }
  EXPECT_GT(numbers, 3'000'000);
  EXPECT_GT(rounded, numbers * 9 / 10);
}

// Longer texts than memory holds here, as they are recognised: digits past the thirtieth change nothing.
TEST(ReadDouble, AsManyDigitsAsATextCanHave) {
  for (const int64_t whole : {int64_t{-300}, int64_t{0}, int64_t{1}, int64_t{40}, int64_t{300}}) {
    vxnls::NumberText number;
    number.high = number.low = 123456789012345;
    number.digits = 30;
    number.exponent = whole - 30;
    double expected = 0;
    ASSERT_EQ(vxnls::evaluate(number, &expected), 0u);
    for (const int64_t digits : {int64_t{31}, int64_t{1} << 30, (int64_t{1} << 30) + 1, int64_t{INT32_MAX}}) {
      number.digits = digits;
      number.exponent = whole - digits;
      double value = 0;
      EXPECT_EQ(vxnls::evaluate(number, &value), 0u);
      EXPECT_EQ(value, expected) << digits << " digits, " << whole << " before the point";
    }
  }
}

/// What docs/numbers.md promises to be correctly rounded without exception.
TEST(ReadDouble, CertainTexts) {
  std::mt19937_64 random(4);
  const auto read = [](const std::string& text) {
    double value = 0;
    int64_t consumed = 0;
    NLSBufToDoubleU(nullptr, reinterpret_cast<const uint8_t*>(text.data()), static_cast<int32_t>(text.size()), &value,
                    &consumed);
    return value;
  };
  char text[64];
  for (int i = 0; i < 500'000; ++i) {
    const uint64_t whole = random() >> random() % 64;
    std::snprintf(text, sizeof text, "%" PRIu64, whole);
    ASSERT_EQ(read(text), static_cast<double>(whole)) << text;

    const uint64_t digits = random() % 1'000'000'000'000'000;
    const uint64_t units[] = {1, 10, 100, 1000, 10000};
    const auto decimals = 1 + static_cast<int>(random() % 4);
    std::snprintf(text, sizeof text, "%" PRIu64 ".%0*" PRIu64, digits / units[decimals], decimals,
                  digits % units[decimals]);
    ASSERT_EQ(read(text), std::strtod(text, nullptr)) << text;

    const double value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    std::snprintf(text, sizeof text, "%.16e", value);
    ASSERT_EQ(read(text), value) << text;
  }
}

}  // namespace
