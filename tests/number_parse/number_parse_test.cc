// Every reader over one text, up against an untouchable page, and the explanation: each gives what the model gives.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <iconv.h>

#include <cmath>
#include <random>

#include "number_parse/ebcdic.h"
#include "number_parse/read_double.h"
#include "tests/number_parse/models.h"
#include "tests/support/guard_page.h"
#include "tests/support/null_arguments.h"
#include "tests/support/plain_locale.h"

namespace vxtest {

namespace {

using namespace std::literals;
using vxnls::SoftExtended;

/// A host's converter that knows one character.
constexpr char32_t quote = U'\u2019';
const VXConverterOps quote_ops = {[](VXConverter*, VXChar unit, uint8_t* byte) -> VXStatus {
  *byte = 0xB4;
  return unit == quote ? 0 : VX_E_SEQUENCE;
}};
VXConverter quote_converter{&quote_ops};

template <auto reader>
VXStatus single_byte(VXLocale* locale, const uint8_t* text, int32_t length, uint32_t, double* value,
                     int64_t* consumed) {
  return reader(locale, text, length, value, consumed, &quote_converter);
}

class Readers : public testing::Test {
 protected:
  void use(const Signs& signs) {
    signs_ = signs;
    locale_.data.decimalPoint = signs.point;
    locale_.data.groupSeparator = signs.separator;
  }

  Decimal check_double(std::u32string_view text, uint32_t flags = 0) {
    Decimal decimal;
    const Reading expected = read_double(text, signs_, flags, decimal);
    check(text, flags, expected, VX_NUMBER_DOUBLE, NLSBufToDoubleWithOpts, NLSBufToDoubleUWithOpts);
    const auto is_one_byte = [&](char32_t c) { return c < 0x80 || c == signs_.separator; };
    if (flags != 0 || !is_one_byte(signs_.point) || !std::all_of(text.begin(), text.end(), is_one_byte)) return decimal;
    std::string ascii, ebcdic;
    for (const char32_t c : text) {
      ascii += static_cast<char>(c < 0x100 ? c : 0xB4);
      ebcdic += static_cast<char>(c < 0x100 ? vxnls::a2e[c] : 0xB4);
    }
    compare(single_byte<NLSBufToDoubleA>, ascii, 0, expected);
    compare(single_byte<NLSBufToDoubleE>, ebcdic, 0, expected);
    return decimal;
  }

  void check_integers(std::u32string_view text, uint32_t flags) {
    const auto check_as = [&]<class Integer>(Integer, uint32_t kind, auto... readers) {
      check(text, flags, read_integer<Integer>(text, signs_, flags), kind, readers...);
    };
    check_as(int32_t{}, VX_NUMBER_INT32, NLSBufToInt, NLSBufToIntfast, NLSBufToIntU, NLSBufToIntfastU);
    check_as(uint32_t{}, VX_NUMBER_UINT32, NLSBufToUInt, NLSBufToUintfast, NLSBufToUIntU, NLSBufToUintfastU);
    check_as(int64_t{}, VX_NUMBER_INT64, NLSBufToLong, NLSBufToIntmax, NLSBufToLongU, NLSBufToIntmaxU);
    check_as(uint64_t{}, VX_NUMBER_UINT64, NLSBufToULong, NLSBufToUintmax, NLSBufToULongU, NLSBufToUintmaxU);
  }

  /// Readers of both flavours over one text, and the explanation.
  void check(std::u32string_view text, uint32_t flags, const Reading& expected, uint32_t kind, auto... readers) {
    const std::string bytes = utf8(text);
    Reading in_bytes = expected;
    int64_t& consumed = std::get<2>(in_bytes);
    consumed = ssize(utf8(text.substr(0, static_cast<size_t>(consumed))));
    const auto of_either = [&]<class Unit, class... Rest>(VXStatus (*reader)(VXLocale*, const Unit*, Rest...)) {
      if constexpr (sizeof(Unit) == 1) compare(reader, bytes, flags, in_bytes);
      else compare(reader, text, flags, expected);
    };
    (of_either(readers), ...);
    explain(bytes, kind, flags);
    ASSERT_EQ(Reading(reading_.status, reading_.value.unsigned_integer, reading_.consumed), in_bytes) << bytes;
  }

  template <class Unit, class Length, class Value, class Count>
  void compare(VXStatus (*reader)(VXLocale*, const Unit*, Length, uint32_t, Value*, Count*), const auto& text,
               uint32_t flags, const Reading& expected) {
    static GuardedBuffer<Unit> memory(2048);
    const Guard guard = ++turn_ % 2 == 0 ? Guard::before : Guard::behind;
    const Unit* const at = memory.copy(reinterpret_cast<const Unit*>(text.data()), text.size(), guard);
    Value value{};
    Count consumed{};
    const VXStatus status = reader(given_, at, static_cast<Length>(text.size()), flags, &value, &consumed);
    ASSERT_EQ(Reading(status, as_bits(value), consumed), expected)
        << "[" << std::string(at, at + text.size()) << "] flags " << std::hex << flags << ", " << sizeof(Unit);
  }

  void explain(const std::string& bytes, uint32_t kind, uint32_t flags) {
    const uint8_t* const text = bytes_.copy(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    vxnlsExplainNumber(given_, text, ssize(bytes), kind, flags, &reading_);
  }

  static uint64_t as_bits(double value) { return std::bit_cast<uint64_t>(value); }
  static uint64_t as_bits(std::integral auto value) { return static_cast<uint64_t>(value); }

  PlainLocale locale_;
  VXLocale* given_ = locale_.get();
  Signs signs_{'.', ','};
  VXNumberReading reading_{};
  unsigned turn_ = 0;
  GuardedBuffer<uint8_t> bytes_{2048};
};

constexpr Signs english{'.', ','}, german{',', '.'}, spaced{',', 0xA0}, swiss{'.', quote}, arabic{0x66B, 0x66C};

// The place of a fault is also where reading stopped, but for what is computed.
TEST_F(Readers, Faults) {
  constexpr uint32_t real = VX_NUMBER_DOUBLE, i32 = VX_NUMBER_INT32, u32 = VX_NUMBER_UINT32, u64 = VX_NUMBER_UINT64;
  static const std::tuple<Signs, uint32_t, uint32_t, std::u32string_view, uint32_t, int64_t, int64_t> cases[] = {
      {english, real, 0, U" \t", VX_FAULT_EMPTY, 2, 0},
      {english, real, 0, U"\u20ac5", VX_FAULT_NO_DIGIT, 0, 3},
      {english, real, 0, U"1.KLMNOFGH", VX_FAULT_TEXT_AFTER, 2, 1},  // differ from digits in the same bits
      {english, real, 0, U"- 1", VX_FAULT_SIGN_ALONE, 1, 1},
      {swiss, real, 0, U"-\u20191", VX_FAULT_LEADING_SEPARATOR, 1, 3},
      {german, real, 0, U"-.5", VX_FAULT_LEADING_SEPARATOR, 1, 1},
      {spaced, real, 0, U"-.5", VX_FAULT_WRONG_POINT, 1, 1},
      {german, real, 0, U"-,x", VX_FAULT_POINT_ALONE, 1, 1},
      {english, real, 0, U"-.\u00e9", VX_FAULT_MISSING_LETTER, 1, 1},
      {english, real, 0, U".A \u00e9", VX_FAULT_TEXT_AFTER, 3, 2},
      {english, real, 0, U"1.2.3", VX_FAULT_SECOND_POINT, 3, 1},
      {english, real, 0, U"1e5.", VX_FAULT_TEXT_AFTER, 3, 1},
      {english, real, 0, U"1.5 ,", VX_FAULT_TEXT_AFTER, 4, 1},
      {swiss, real, 0, U"1.2\u20193", VX_FAULT_SEPARATOR_IN_FRACTION, 3, 3},
      {english, real, 0, U"1e-,5", VX_FAULT_EXPONENT_WITHOUT_DIGITS, 3, 1},
      {english, real, 0, U"0E99999999999999999999999999x", VX_FAULT_EXPONENT_RANGE, 2, 26},
      {english, real, 0, U" -1E30800 ", VX_FAULT_OVERFLOW, 1, 8},
      {english, real, 0, U"2.4703282292062327e-324", VX_FAULT_UNDERFLOW, 0, 23},
      {english, i32, 0, U" -9,999,999,999,x", VX_FAULT_OVERFLOW, 1, 15},
      {english, u32, 0, U" -1", VX_FAULT_SIGN_REFUSED, 1, 1},
      {english, u64, NLS_READ_HEXADECIMAL, U"+1", VX_FAULT_SIGN_REFUSED, 0, 1},
      {swiss, i32, 0, U"\u20191", VX_FAULT_LEADING_SEPARATOR, 0, 3},
      {english, i32, 0, U"12.5", VX_FAULT_POINT_IN_INTEGER, 2, 1},
      {english, i32, NLS_READ_FRACTION, U"12.05", VX_FAULT_FRACTION_DISCARDED, 4, 1},
      {english, i32, NLS_READ_FRACTION, U"1.5.", VX_FAULT_SECOND_POINT, 3, 1},
      {swiss, i32, NLS_READ_FRACTION, U"1.5\u2019", VX_FAULT_SEPARATOR_IN_FRACTION, 3, 3},
      {english, i32, NLS_READ_TRAILING_BLANKS, U"12 .", VX_FAULT_TEXT_AFTER, 3, 1}};
  for (const auto& [signs, kind, flags, text, fault, offset, length] : cases) {
    use(signs);
    if (kind == real) check_double(text, flags);
    else check_integers(text, flags);
    explain(utf8(text), kind, flags);
    EXPECT_EQ(std::tuple(reading_.fault, reading_.fault_offset, reading_.fault_length),
              std::tuple(fault, offset, length))
        << utf8(text);
  }
}

/// Each unit of the alphabet means something else: every text of up to four with every set of flags, longer ones, and
/// every letter of a missing value.
TEST_F(Readers, EveryShortText) {
  std::mt19937_64 random(3);
  for (const Signs& signs : {english, german, spaced, swiss, arabic, Signs{0, 0}, Signs{'.', '.'}, Signs{'5', '7'},
                             Signs{' ', '-'}, Signs{'e', '+'}}) {
    use(signs);
    const std::u32string alphabet = U"0 1-+x"s + std::u32string{signs.separator, signs.point, 0, U'F'};
    const std::u32string longer = U"0123456789012345678901234567899999 -xEeDd._AzX\t\u2007"s + alphabet;
    for (size_t n = 0; n < 60'000 && !HasFailure(); ++n) {
      std::u32string text;
      if (n < 11'111) {
        for (size_t left = n; left > 0; left = (left - 1) / 10) text += alphabet[(left - 1) % 10];
      } else {
        for (size_t length = random() % 30; length > 0; --length) text += longer[random() % longer.size()];
      }
      for (const uint32_t flags : {0x0000u, 0x0001u, 0x1000u, 0x1001u, 0x2000u, 0x2001u, 0x3000u, 0x3001u, 0x4000u,
                                   0x5000u, 0x6000u, 0x7000u, 0x7001u, 0x7FFF8FFEu}) {
        if (n < 11'111 || random() % 8 == 0) check_integers(text, flags);
      }
      for (const uint32_t flags : {0u, NLS_READ_SPACE_SEPARATOR}) check_double(text, flags);
    }
    for (char32_t c = 0; c < 0x180; ++c)
      for (const auto& before : {U"."s, U"\t."s, U"-."s})
        for (const auto& after : {U""s, U" \t"s, U"x"s}) check_double(before + c + after);
  }
}

/// The borders of each type, every power of ten and two, +-2, in the spellings that a text may have.
TEST_F(Readers, BordersOfIntegers) {
  __extension__ using Wide = unsigned __int128;
  for (const unsigned base : {2u, 10u, 16u})
    for (Wide power = 1; power >> 68 == 0; power *= base)
      for (unsigned off = 0; off <= 4; ++off)
        for (const auto* const before : {"", "-", "+", " -  ", "000", "0x", "0X0"}) {
          const Wide magnitude = power + off - std::min<Wide>(power, 2);
          const auto text = utf32(fmt::format("{}{}", before, magnitude));
          const auto hexadecimal = utf32(fmt::format("{}{:X}", before, magnitude));
          check_integers(text, 0);
          check_integers(text + U",  ", NLS_READ_TRAILING_BLANKS);
          check_integers(text + U".01", NLS_READ_FRACTION);
          check_integers(hexadecimal, NLS_READ_HEXADECIMAL);
          check_integers(hexadecimal + U"g", NLS_READ_HEXADECIMAL | NLS_READ_TRAILING_BLANKS);
        }
}

/// The short roads: digits, groups, decimals and leading zeros of every length, with another unit at every place.
TEST_F(Readers, EveryLengthWithAFaultAtEveryPlace) {
  std::mt19937_64 random(300);
  constexpr std::u32string_view faults = U"09.,-+ eE:/x\x7F";
  enum { digits_alone, groups, decimals, zeros };
  for (size_t length = 0; length <= 300 && !HasFailure(); ++length) {
    for (size_t turn = 0; turn < 4 * (length + 1); ++turn) {
      const size_t form = turn % 4, place = turn / 4;
      std::u32string text;
      for (size_t behind = length; behind-- > 0;) {
        if (form == groups && behind % 4 == 3) text += U',';
        else if (form == decimals && behind == length / 2) text += U'.';
        else text += form == zeros && behind > 12 ? U'0' : digits[random() % 10];
      }
      if (place < length) text[place] = faults[random() % faults.size()];
      check_double(text);
      check_integers(text, random() % 2 == 0 ? 0 : random() & 0x7001);
    }
  }
}

/// Numbers of every length and power, and near every border of the conversion, as English writes them.
std::string any_number(std::mt19937_64& random) {
  const auto below = [&](uint64_t n) { return random() % n; };
  static const std::pair<std::string, int64_t> borders[] = {
      {"17976931348623157081452742373170", 308}, {"24703282292062327208289439643411", -324}, {std::string(30, '0'), 0}};
  std::string number;
  auto power = static_cast<int64_t>(below(2) == 0 ? below(986) : 620 + below(70)) - 650;  // of the first digit
  if (const uint64_t which = below(10); which > 0) {
    const size_t count = 1 + below(below(2) == 0 ? 17 : 48);
    if (which <= std::size(borders)) {  // its first digits, the last of them another; random ones after it
      number = borders[which - 1].first.substr(0, count - 1);
      power = borders[which - 1].second;
    }
    while (number.size() < count || below(12) == 0) number += static_cast<char>('0' + below(10));
  } else {  // a double, or the middle between it and the next, to so many digits
    const auto value = std::bit_cast<double>(below(UINT64_C(0x7FE0000000000000)));
    const auto other = static_cast<long double>(below(2) == 0 ? value : std::nextafter(value, HUGE_VAL));
    number = fmt::format("{:.{}e}", (value + other) / 2, 14 + below(15));
    power = std::stoi(number.substr(number.find('e') + 1));
    number.erase(number.find('e')).erase(1, 1);
  }
  const uint64_t whole = below(4) == 0 ? number.size() : below(number.size() + 1);
  const int64_t exponent = power + 1 - static_cast<int64_t>(whole);
  const std::string tail = exponent != 0 || below(8) == 0 ? fmt::format("{}{}", "EeDd"[below(4)], exponent) : "";
  return fmt::format("{}{}{}{}{}", below(4) == 0 ? "-" : "", number.substr(0, whole), whole < number.size() ? "." : "",
                     number.substr(whole), tail);
}

/// Five million texts in every code that can express them. The value is the correctly rounded one or next to it, and
/// the very one where docs/numbers.md promises that.
TEST_F(Readers, FiveMillionDoubles) {
  int64_t numbers = 0, promised = 0;
  std::mt19937_64 random(20240307);
  for (const Signs& signs : {english, german, spaced, swiss, arabic}) {
    use(signs);
    for (int i = 0; i < 1'000'000 && !HasFailure(); ++i) {
      std::u32string text = utf32(any_number(random));
      std::replace(text.begin(), text.end(), U'.', signs.point);
      const auto [digits, exponent, _] = check_double(text, signs.separator == 0xA0 ? NLS_READ_SPACE_SEPARATOR : 0);
      if (reading_.status != 0 || digits.empty()) continue;
      const bool exactly = exponent == 0 ? digits.size() <= 19 : digits.size() <= 15 && -4 <= exponent && exponent < 0;
      const double read = std::fabs(reading_.value.number),
                   wanted = std::strtod(fmt::format("{}e{}", digits, exponent).c_str(), nullptr);
      ASSERT_TRUE(read == wanted || (!exactly && std::nextafter(read, wanted) == wanted)) << utf8(text);
      ++numbers;
      promised += exactly;
    }
  }
  EXPECT_TRUE(numbers > 3'000'000 && promised > 100'000) << numbers << " " << promised;
}

TEST_F(Readers, Doors) {
  double value = 7;
  int64_t consumed = 7, whole = 7;
  uint64_t count = 7;
  const VXChar units[] = {'1', ',', '2', '.', '5'};
  const auto* const bytes = reinterpret_cast<const uint8_t*>("1\xE2\x80\x99");
  EXPECT_EQ(NLSBufToDouble(given_, nullptr, -1, &value, &consumed), VX_E_NOTNUMBER);
  EXPECT_TRUE(as_bits(value) == as_bits(qmMissVal('.')) && consumed == 0);
  EXPECT_EQ(NLSBufToLong(given_, units, INT32_MIN, 0, &whole, &count), VX_E_LENGTH);
  EXPECT_TRUE(whole == 7 && count == 7);
  EXPECT_EQ(vxnlsExplainNumber(given_, bytes, -1, VX_NUMBER_DOUBLE, 0, &reading_), VX_E_LENGTH);
  EXPECT_EQ(vxnlsExplainNumber(given_, bytes, 1, 5, 0, &reading_), VX_E_KIND);
  VX_EXPECT_NULLS_REFUSED(std::bind_front(NLSBufToDoubleWithOpts, given_), units, 5, 0u, &value, &consumed);
  VX_EXPECT_NULLS_REFUSED(std::bind_front(NLSBufToDoubleUWithOpts, given_), bytes, 4, 0u, &value, &consumed);
  VX_EXPECT_NULLS_REFUSED(std::bind_front(NLSBufToLong, given_), units, 5, 0u, &whole, &count);
  VX_EXPECT_NULLS_REFUSED(std::bind_front(vxnlsExplainNumber, given_), bytes, 4, 0u, 0u, &reading_);
  EXPECT_TRUE(whole == 0 && count == 0);
  EXPECT_EQ(NLSBufToDouble(given_, units, 5, &value, &consumed), 0u);
  EXPECT_EQ(value, 12.5);
  // A null text of no length is an empty one.
  const VXStatus of_nothing = NLSBufToLong(given_, units, 0, 0, &whole, &count);
  EXPECT_EQ(NLSBufToLong(given_, nullptr, 0, 0, &whole, &count), of_nothing);
  EXPECT_EQ(vxnlsExplainNumber(given_, nullptr, 0, VX_NUMBER_INT64, 0, &reading_), 0u);
  EXPECT_TRUE(reading_.status == of_nothing && whole == 0 && count == 0);
  // A separator that the end of the text cuts off is none.
  locale_.data.groupSeparator = quote;
  EXPECT_EQ(NLSBufToLongU(given_, bytes, 3, 0, &whole, &count), VX_E_NOTNUMBER);
  EXPECT_EQ(count, 1u);
  // No locale is an English one.
  VXLocale without_data{};
  for (VXLocale* const none : {static_cast<VXLocale*>(nullptr), &without_data}) {
    given_ = none;
    check_double(U"1,2.5");
    check_integers(U"1,2", 0);
  }
}

/// In a code of one byte a separator that nobody can convert is ",", a no-break space needs no conversion, and a point
/// beyond the code is never found.
TEST_F(Readers, SeparatorsWithoutAConverter) {
  constexpr VXConverterOps no_operation{};
  VXConverter without_operations{nullptr}, without_operation{&no_operation};
  const auto read = [&](VXChar separator, std::string_view text, VXConverter* converter, auto reader) {
    double value = 0;
    int64_t consumed = 0;
    locale_.data.groupSeparator = separator;
    reader(given_, reinterpret_cast<const uint8_t*>(text.data()), static_cast<int32_t>(text.size()), &value, &consumed,
           converter);
    return value;
  };
  for (VXConverter* const converter :
       {&quote_converter, &without_operations, &without_operation, static_cast<VXConverter*>(nullptr)}) {
    EXPECT_EQ(read(0x80, "1,2.5", converter, NLSBufToDoubleA), 12.5);
    EXPECT_EQ(read(0x202F, "\xF1\x6B\xF2\x4B\xF5", converter, NLSBufToDoubleE), 12.5);
    EXPECT_EQ(read(0xA0, "1\xA0\x32.5", converter, NLSBufToDoubleA), 12.5);
  }
  locale_.data.decimalPoint = 0x066B;
  EXPECT_TRUE(std::isnan(read(0xA0, "\xF1\x4B\xF5", nullptr, NLSBufToDoubleE)));
}

/// Longer texts than memory holds here, as they are recognised: digits past the thirtieth change nothing. And a number
/// comes of any arguments, or a status.
TEST(Conversion, AnyArguments) {
  const auto value_of = [](int64_t digits, int64_t whole) {
    double value = 0;
    vxnls::NumberText number;
    number.high = number.low = 123456789012345;
    number.digits = digits;
    number.exponent = whole - digits;
    EXPECT_EQ(vxnls::evaluate(number, &value), 0u);
    return value;
  };
  for (const int64_t whole : {-300, 0, 1, 40, 300})
    for (const int64_t digits : {int64_t{31}, int64_t{1} << 30, (int64_t{1} << 30) + 1, int64_t{INT32_MAX}})
      EXPECT_EQ(value_of(digits, whole), value_of(30, whole)) << digits << " digits, " << whole << " before the point";
  double value = 0;
  for (const int32_t digits : {INT32_MIN, -1, 0, 15, 16, 31, INT32_MAX})
    for (const int32_t exponent : {INT32_MIN, -617, -616, -309, -308, 0, 292, 308, 309, INT32_MAX})
      for (const uint64_t high : {UINT64_C(0), UINT64_C(1), UINT64_C(999999999999999)}) {
        const VXStatus status = vxnls::vxnlsCalcDouble(high, 999999999999999, digits, exponent, 1, &value);
        EXPECT_EQ(status == 0, std::isfinite(value)) << high << " " << digits << " " << exponent;
      }
}

/// The arithmetic in integers, against the processor's where that has the format.
TEST(SoftExtended, AgreesWithTheProcessor) {
  if (!vxnls::long_double_is_extended) GTEST_SKIP();
  const auto same = [](const SoftExtended& soft, long double real) {
    return soft.significand() >> 63 == 1 &&
           std::ldexp(static_cast<long double>(soft.significand()), soft.exponent()) == real;
  };
  for (int64_t n = 0; n <= 308; ++n) {
    const long double power = std::strtold(fmt::format("1e{}", n).c_str(), nullptr);
    EXPECT_TRUE(same(power_of_ten[n], power) && vxnls::VXPOWTENTABLE[n] == power) << n;
  }
  std::mt19937_64 random(1);
  // Random, few bits, long runs of ones and zeros (carries), next to a tie.
  const auto significand = [&] {
    const uint64_t any = random(), shift = any % 64, ones = ~UINT64_C(0);
    return std::array{any, any << shift, ones << shift, ones >> shift, any << 12 | 0x400}[random() % 5] | 1;
  };
  for (int i = 0; i < 1'000'000; ++i) {
    const uint64_t a = significand(), b = significand() << i % 2;
    const auto apart = static_cast<int32_t>(random() % 300) - 150, scale = static_cast<int32_t>(random() % 2090) - 1140;
    const auto x = SoftExtended(a), y = SoftExtended::rounded(b, apart, false);
    const auto p = static_cast<long double>(a), q = std::ldexp(static_cast<long double>(b), apart);
    const double scaled = static_cast<double>(SoftExtended::rounded(a, scale, false));
    ASSERT_TRUE(same(x * y, p * q) && same(x / y, p / q) && same(x + y, p + q) && (x > y) == (p > q) &&
                scaled == static_cast<double>(std::ldexp(p, scale)))
        << a << " " << b << " " << apart << " " << scale;
  }
}

TEST(Ebcdic, TablesAreCodePage1047) {
  std::string latin, ebcdic(256, '\0');
  for (int c = 0; c < 256; ++c) latin += static_cast<char>(c);
  iconv_t converter = iconv_open("IBM1047", "LATIN1");
  char *from = latin.data(), *to = ebcdic.data();
  size_t from_left = 256, to_left = 256;
  ASSERT_EQ(iconv(converter, &from, &from_left, &to, &to_left), 0u);
  iconv_close(converter);
  for (unsigned c = 0; c < 256; ++c) {
    EXPECT_EQ(vxnls::a2e[c], static_cast<uint8_t>(ebcdic[c])) << c;
    EXPECT_EQ(vxnls::e2a[vxnls::a2e[c]], c);
  }
}

}  // namespace

}  // namespace vxtest
