#include "vxnls/explain_number.h"

#include <gtest/gtest.h>

#include <bit>

#include "tests/support/plain_locale.h"

namespace {

using namespace std::literals;

TEST(ExplainNumber, FaultsAndTheirPlaces) {
  constexpr uint32_t any_double = VX_NUMBER_DOUBLE, i32 = VX_NUMBER_INT32, u32 = VX_NUMBER_UINT32,
                     i64 = VX_NUMBER_INT64, u64 = VX_NUMBER_UINT64;
  static const struct {
    uint32_t kind;
    std::string_view text;  // in a locale of "." and U+2019
    uint32_t flags;
    uint32_t fault;
    int64_t offset, length;
  } cases[] = {
      {any_double, "12.5 ", 0, VX_FAULT_NONE, 5, 0},
      {any_double, "", 0, VX_FAULT_NONE, 0, 0},
      {any_double, " \t", 0, VX_FAULT_EMPTY, 2, 0},
      {any_double, " x", 0, VX_FAULT_NO_DIGIT, 1, 1},
      {any_double, "\u20ac5", 0, VX_FAULT_NO_DIGIT, 0, 3},
      {any_double, "-", 0, VX_FAULT_SIGN_ALONE, 1, 0},
      {any_double, "+\u20ac", 0, VX_FAULT_SIGN_ALONE, 1, 3},
      {any_double, "-\u20191", 0, VX_FAULT_LEADING_SEPARATOR, 1, 3},
      {any_double, ".", 0, VX_FAULT_MISSING_LETTER, 0, 1},
      {any_double, "-.\u00e9", 0, VX_FAULT_MISSING_LETTER, 1, 1},
      {any_double, ".A \u00e9", 0, VX_FAULT_TEXT_AFTER, 3, 2},
      {any_double, "1.2.3", 0, VX_FAULT_SECOND_POINT, 3, 1},
      {any_double, "1.2\u20193", 0, VX_FAULT_SEPARATOR_IN_FRACTION, 3, 3},
      {any_double, "1.2 .", 0, VX_FAULT_TEXT_AFTER, 4, 1},
      {any_double, "1,2", 0, VX_FAULT_TEXT_AFTER, 1, 1},
      {any_double, "1e5.5", 0, VX_FAULT_TEXT_AFTER, 3, 1},
      {any_double, "1e", 0, VX_FAULT_EXPONENT_WITHOUT_DIGITS, 2, 0},
      {any_double, "1e+x", 0, VX_FAULT_EXPONENT_WITHOUT_DIGITS, 3, 1},
      {any_double, " 1e-99999 ", 0, VX_FAULT_EXPONENT_RANGE, 4, 5},
      {any_double, " -1e999 ", 0, VX_FAULT_OVERFLOW, 1, 6},
      {any_double, "1e-999", 0, VX_FAULT_UNDERFLOW, 0, 6},
      {i64, "12 x", 0, VX_FAULT_NONE, 2, 0},
      {i32, "x", 0, VX_FAULT_NO_DIGIT, 0, 1},
      {i32, "- x", 0, VX_FAULT_SIGN_ALONE, 2, 1},
      {u32, " -1", 0, VX_FAULT_SIGN_REFUSED, 1, 1},
      {u64, "+1", NLS_READ_HEXADECIMAL, VX_FAULT_SIGN_REFUSED, 0, 1},
      {u64, "1.0", NLS_READ_HEXADECIMAL, VX_FAULT_TEXT_AFTER, 1, 1},
      {i32, "\u20191", 0, VX_FAULT_LEADING_SEPARATOR, 0, 3},
      {i32, "12.5", 0, VX_FAULT_POINT_IN_INTEGER, 2, 1},
      {i32, "12.05", NLS_READ_FRACTION, VX_FAULT_FRACTION_DISCARDED, 4, 1},
      {i32, "1.5.", NLS_READ_FRACTION, VX_FAULT_SECOND_POINT, 3, 1},
      {i32, "1.5\u2019", NLS_READ_FRACTION, VX_FAULT_SEPARATOR_IN_FRACTION, 3, 3},
      {i32, "1.5x", NLS_READ_FRACTION, VX_FAULT_TEXT_AFTER, 3, 1},
      {i64, "12 \u20ac", NLS_READ_TRAILING_BLANKS, VX_FAULT_TEXT_AFTER, 3, 3},
      {i64, "12 .", NLS_READ_TRAILING_BLANKS, VX_FAULT_TEXT_AFTER, 3, 1},
      {i32, " -3000000000\u20190 ", 0, VX_FAULT_OVERFLOW, 1, 15},
  };
  vxtest::PlainLocale locale;
  locale.data.groupSeparator = U'\u2019';
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    VXNumberReading reading{};
    vxnlsExplainNumber(locale.get(), reinterpret_cast<const uint8_t*>(c.text.data()),
                       static_cast<int64_t>(c.text.size()), c.kind, c.flags, &reading);
    EXPECT_EQ(reading.fault, c.fault);
    EXPECT_EQ(reading.fault_offset, c.offset);
    EXPECT_EQ(reading.fault_length, c.length);
  }
  // A decimal point other than ".".
  locale.data.decimalPoint = U',';
  for (const auto& [text, separator, fault] :
       {std::tuple{"-.5"sv, U'\u2019', VX_FAULT_WRONG_POINT}, std::tuple{"-.5"sv, U'.', VX_FAULT_LEADING_SEPARATOR},
        std::tuple{"-,x"sv, U'.', VX_FAULT_POINT_ALONE}}) {
    locale.data.groupSeparator = separator;
    VXNumberReading reading{};
    vxnlsExplainNumber(locale.get(), reinterpret_cast<const uint8_t*>(text.data()), 3, VX_NUMBER_DOUBLE, 0, &reading);
    EXPECT_EQ(reading.fault, static_cast<uint32_t>(fault)) << text;
    EXPECT_EQ(reading.fault_offset, 1);
  }
}

/// What the explanation repeats of the reader's answer is the reader's answer.
TEST(ExplainNumber, ValuesOfTheReaders) {
  vxtest::PlainLocale locale;
  for (const std::string_view text :
       {"-12,345"sv, "18446744073709551615"sv, " 7 x"sv, "1e400"sv, ""sv, ".b"sv, "-"sv}) {
    SCOPED_TRACE(text);
    const auto at = reinterpret_cast<const uint8_t*>(text.data());
    const auto length = static_cast<int32_t>(text.size());
    VXNumberReading reading{};
    const auto explain = [&](uint32_t kind, VXStatus status, int64_t consumed) {
      EXPECT_EQ(vxnlsExplainNumber(locale.get(), at, length, kind, 0, &reading), status);
      EXPECT_EQ(reading.status, status);
      EXPECT_EQ(reading.consumed, consumed);
    };
    double number;
    int64_t consumed;
    const VXStatus status = NLSBufToDoubleU(locale.get(), at, length, &number, &consumed);
    explain(VX_NUMBER_DOUBLE, status, consumed);
    EXPECT_EQ(std::bit_cast<uint64_t>(reading.value.number), std::bit_cast<uint64_t>(number));
    const auto integers = [&]<class Integer>(uint32_t kind, auto reader, Integer) {
      Integer value;
      uint64_t count;
      const VXStatus expected = reader(locale.get(), at, length, 0, &value, &count);
      explain(kind, expected, static_cast<int64_t>(count));
      EXPECT_EQ(static_cast<Integer>(reading.value.unsigned_integer), value);
      if (std::is_signed_v<Integer>) {
        EXPECT_EQ(reading.value.signed_integer, static_cast<int64_t>(value));
      }
    };
    integers(VX_NUMBER_INT32, NLSBufToIntU, int32_t{});
    integers(VX_NUMBER_UINT32, NLSBufToUIntU, uint32_t{});
    integers(VX_NUMBER_INT64, NLSBufToLongU, int64_t{});
    integers(VX_NUMBER_UINT64, NLSBufToULongU, uint64_t{});
  }
  VXNumberReading reading{};
  const auto one = reinterpret_cast<const uint8_t*>("1");
  EXPECT_EQ(vxnlsExplainNumber(nullptr, one, 1, VX_NUMBER_INT64, 0, &reading), 0u);
  EXPECT_EQ(vxnlsExplainNumber(locale.get(), one, 1, VX_NUMBER_DOUBLE, 0, nullptr), VX_E_NULL);
  EXPECT_EQ(vxnlsExplainNumber(locale.get(), nullptr, 1, VX_NUMBER_DOUBLE, 0, &reading), VX_E_NULL);
  EXPECT_EQ(vxnlsExplainNumber(locale.get(), nullptr, 0, VX_NUMBER_DOUBLE, 0, &reading), 0u);
  EXPECT_EQ(vxnlsExplainNumber(locale.get(), one, -1, VX_NUMBER_DOUBLE, 0, &reading), VX_E_LENGTH);
  EXPECT_EQ(vxnlsExplainNumber(locale.get(), one, 1, 5, 0, &reading), VX_E_KIND);
}

}  // namespace
