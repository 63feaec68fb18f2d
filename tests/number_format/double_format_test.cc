// Doubles in free mode against the exact expansion; missing values, infinities, widths, percentages, currency.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <string>

#include "tests/number_format/exact_decimal.h"
#include "tests/support/null_arguments.h"
#include "tests/support/plain_locale.h"
#include "vxnls/bytes.h"
#include "vxnls/number_format.h"

namespace {

using vxtest::ExactDecimal;
using vxtest::PlainLocale;

struct Written {
  VXStatus status;
  std::string text;
  bool operator==(const Written&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Written& written) {
  return out << std::hex << written.status << " [" << written.text << "]";
}

constexpr int64_t room = 800;

/// Calls one flavour with `size` units of room in a buffer that shows what was written behind them.
template <class Unit, class Function>
Written call(Function function, int64_t size) {
  static Unit buffer[room + 64];
  std::fill(std::begin(buffer), std::end(buffer), Unit{0x7E});
  int64_t length = -7;
  const VXStatus status = function(buffer, size, &length);
  for (int64_t i = std::max<int64_t>(size, 0); i < room + 64; ++i) {
    if (buffer[i] != 0x7E) return {status, "(written outside)"};
  }
  if (length == -7) return {status, "(nothing)"};
  if constexpr (sizeof(Unit) == 1) {
    return {status, std::string(reinterpret_cast<char*>(buffer), static_cast<size_t>(length))};
  } else {
    std::u32string text(buffer, buffer + length);
    return {status, vxtest::utf8(text)};
  }
}

struct Row {
  double value;
  int32_t width;
  int32_t decimals;
  uint32_t flags;
  VXStatus status;
  const char* text;
  int64_t size = room;
};

Written write(PlainLocale& locale, const Row& row, const NLSDoubleExOpts* extended = nullptr) {
  return call<VXChar>(
      [&](VXChar* buffer, int64_t size, int64_t* length) {
        return NLSDoubleFormatWithExOpts(locale.get(), row.width, row.decimals, row.flags, buffer, size, length,
                                         extended, row.value);
      },
      row.size);
}

Written write_utf8(PlainLocale& locale, const Row& row, const NLSDoubleExOpts* extended = nullptr) {
  return call<uint8_t>(
      [&](uint8_t* buffer, int64_t size, int64_t* length) {
        return NLSDoubleFormatUWithExOpts(locale.get(), row.width, row.decimals, row.flags, buffer, size, length,
                                          extended, row.value);
      },
      row.size);
}

/// Both flavours of rows whose separators are ASCII.
void check(PlainLocale& locale, const Row& row, const NLSDoubleExOpts* extended = nullptr) {
  SCOPED_TRACE(testing::Message() << row.value << " width " << row.width << " decimals " << row.decimals << " flags "
                                  << std::hex << row.flags << " size " << std::dec << row.size);
  const Written expected{row.status, row.text};
  EXPECT_EQ(write(locale, row, extended), expected);
  EXPECT_EQ(write_utf8(locale, row, extended), expected);
}

TEST(DoubleFormat, FreeModeAgreesWithTheExactExpansion) {
  PlainLocale locale;
  ExactDecimal exact;
  std::mt19937_64 random(11);
  for (int i = 0; i < 300'000; ++i) {
    double value;
    switch (i % 4) {
      case 0: value = std::bit_cast<double>(random()); break;
      case 1: value = static_cast<double>(static_cast<int64_t>(random() % 2'000'000)) / 1000 - 1000; break;
      case 2: value = std::ldexp(static_cast<double>(random() >> 40), -static_cast<int>(random() % 30)); break;  // ties
      default: value = 1 / static_cast<double>(random() % 1'000'000 + 1); break;
    }
    if (!std::isfinite(value)) continue;
    const auto decimals = static_cast<int32_t>(i % 64 == 0 ? random() % 351 : random() % 20);
    if (decimals == NLS_BEST_DECIMALS) continue;
    const std::string sign = value < 0 ? "-" : "";
    int exponent = 0;
    std::string expected = sign + exact.plain(value, static_cast<size_t>(decimals));
    ASSERT_EQ(write(locale, {value, 0, decimals, NLS_FORMAT_PLAIN, 0, ""}).text, expected) << value << " " << decimals;
    ASSERT_EQ(write_utf8(locale, {value, 0, 0, NLS_FORMAT_INTEGER, 0, ""}).text, sign + exact.plain(value, 0)) << value;
    expected = sign + exact.scientific(value, static_cast<size_t>(decimals) + 1, &exponent);
    if (decimals < 350) {
      ASSERT_EQ(write(locale, {value, 0, decimals, NLS_FORMAT_EXPONENT, 0, ""}).text, expected) << value;
    }
    // The general form: exponent form outside 10^-4 .. 10^precision, as %g.
    const int precision = decimals == 0 ? 6 : decimals;
    expected = exact.scientific(value, static_cast<size_t>(precision), &exponent);
    if (exponent >= -4 && exponent < precision) {
      expected = exact.plain(value, static_cast<size_t>(precision - 1 - exponent));
    }
    expected = sign + expected;
    ASSERT_EQ(write(locale, {value, 0, decimals, NLS_FORMAT_KEEP_ZEROS, 0, ""}).text, expected) << value;
    const size_t tail = std::min(expected.find('E'), expected.size());
    if (expected.find('.') < tail) {
      size_t end = tail;
      while (expected[end - 1] == '0') --end;
      if (expected[end - 1] == '.') --end;
      expected.erase(end, tail - end);
    }
    ASSERT_EQ(write_utf8(locale, {value, 0, decimals, 0, 0, ""}).text, expected) << value;
  }
}

TEST(DoubleFormat, FreeModeLayout) {
  PlainLocale locale;
  constexpr uint32_t plain = NLS_FORMAT_PLAIN;
  const Row rows[] = {
      {3.999, 0, 2, NLS_FORMAT_FRACTION, 0, "1.00"},
      {-3.14159, 0, 2, NLS_FORMAT_FRACTION, 0, "-0.14"},
      {12.5, 8, 1, plain, 0, "    12.5"},
      {12.5, -8, 1, plain, 0, "12.5    "},
      {12.5, 8, 1, plain | NLS_FORMAT_LEFT | NLS_FORMAT_ZERO_PAD, 0, "12.5    "},
      {12.5, 8, 1, plain | NLS_FORMAT_ZERO_PAD | NLS_FORMAT_PLUS, 0, "+00012.5"},
      {-12.5, 8, 1, plain | NLS_FORMAT_ZERO_PAD | NLS_FORMAT_GROUP, 0, "-00012.5"},
      {12.5, 0, 1, plain | NLS_FORMAT_BLANK, 0, " 12.5"},
      {12.5, 8, 1, plain | NLS_FORMAT_BLANK | NLS_FORMAT_ZERO_PAD, 0, "000012.5"},
      {12.5, 2, 1, plain, 0, "12.5"},  // a width is the least
      {1234567.5, 0, 1, plain | NLS_FORMAT_GROUP, 0, "1,234,567.5"},
      {1234567.5, 10, 1, plain | NLS_FORMAT_GROUP, VX_E_GROUPING, " 1234567.5"},
      {1234.5, 0, 1, plain, VX_E_TRUNCATED, "*****", 5},
      {1.5, 9, 1, plain, VX_E_TRUNCATED, "****", 4},
      {1.5, 0, 1, plain, VX_E_TRUNCATED, "", 0},
      {1.5, 0, 1, plain, VX_E_TRUNCATED, "", -3},
      {0.15, 0, 350, NLS_FORMAT_EXPONENT, 0, nullptr},
      {5e-324, 0, 350, NLS_FORMAT_EXPONENT, VX_E_DIRECTIVE, ""},
      {1.0 / 3, 0, 0, NLS_FORMAT_BEST, 0, "0.333333333333"},
      {0, 0, 2, NLS_FORMAT_EXPONENT, 0, "0.00E+00"},
      {0.15, 0, -1, plain, 0, "0.150000"},
      {1.5, 0, 3, NLS_FORMAT_GENERAL | NLS_FORMAT_PLUS, 0, "+1.5"},
      {1.5, 0, 3, NLS_FORMAT_GENERAL | NLS_FORMAT_KEEP_ZEROS, 0, "1.50"},
      {1.5, -8, 3, NLS_FORMAT_GENERAL, 0, "1.5     "},
      {1.5, 33, 3, NLS_FORMAT_GENERAL, 0, "                              1.5"},
      {123.5, 0, 6, NLS_FORMAT_GENERAL, VX_E_TRUNCATED, "***", 3},
  };
  EXPECT_EQ(write(locale, {0.5, 0, INT32_MAX, plain, 0, ""}), (Written{0, "0.5" + std::string(349, '0')}));
  for (const Row& row : rows) {
    if (row.text != nullptr) check(locale, row);
    else EXPECT_EQ(write(locale, row).status, row.status);
  }
}

TEST(DoubleFormat, FixedField) {
  PlainLocale locale;
  constexpr uint32_t fixed = NLS_FORMAT_FIXED;
  const Row rows[] = {
      {3.14159, 10, 2, fixed, 0, "      3.14"},
      {1e12, 10, 2, fixed, VX_W_PRECISION, "      1E12"},
      {2.5, 1, 0, fixed, 0, "3"},
      {0.9499999999999999, 5, 1, fixed, 0, "  1.0"},  // rounded up on purpose, to just 1
      {0.3, 1, 0, fixed, 0, "0"},
      {0.001, 5, 4, fixed, 0, ".0010"},
      {0.001, 6, 4, fixed, 0, "0.0010"},
      {9.999, 4, 2, fixed, VX_W_PRECISION, "10.0"},
      {99.99, 2, 1, fixed, VX_E_TRUNCATED, "**"},
      {-0.001, 6, 2, fixed, 0, " -0.00"},
      {-0.3, 1, 0, fixed, 0, "0"},
      {-0.7, 1, 0, fixed, VX_E_TRUNCATED, "*"},
      {1.5e10, 4, 0, fixed, VX_W_PRECISION, "15E9"},
      {9007199254740993.0, 20, 2, fixed, 0, " 9007199254740992.00"},
      {0.1, 22, 20, fixed, 0, "0.10000000000000000000"},
      {1234567.891, 14, 2, fixed | NLS_FORMAT_GROUP, 0, "  1,234,567.89"},
      {1234567.891, 11, 2, fixed | NLS_FORMAT_GROUP, VX_E_GROUPING, " 1234567.89"},
      {12.5, 8, 1, fixed | NLS_FORMAT_GROUP | NLS_FORMAT_LEFT | NLS_FORMAT_PLUS, 0, "+12.5   "},
      {3.5, 12, 99, 0, 0, "         3.5"},
      {42, 12, 99, 0, 0, "          42"},
      {3.14159, 10, -2, NLS_FORMAT_SIGNIFICANT, 0, "      3.14"},
      {3.7, 5, 0, NLS_FORMAT_SIGNIFICANT, 0, "    4"},
      {12345, 12, 1, NLS_FORMAT_SIGNIFICANT, 0, "  1.2345E+04"},
      {0, 12, 0, NLS_FORMAT_FIXED_EXPONENT, 0, "       0E+00"},
      {1, 33, 0, fixed, VX_E_WIDTH, "*****", 5},
      {1, 6, 0, NLS_FORMAT_FIXED_EXPONENT, VX_E_WIDTH, "******"},
      {1, 0, 0, fixed, VX_E_WIDTH, "(nothing)"},
      {1, -5, 0, fixed, VX_E_WIDTH, "(nothing)"},
      {3.14159, 10, 2, fixed, 0, " 3.14", 5},  // the field is what the buffer has
      {3.14159, 10, 2, fixed, VX_E_TRUNCATED, "", 0},
  };
  for (const Row& row : rows) check(locale, row);
}

TEST(DoubleFormat, MissingValuesAndInfinities) {
  PlainLocale locale;
  constexpr uint32_t fixed = NLS_FORMAT_FIXED;
  const std::string wide = "      .   ";
  for (const auto& [letter, shown] : {std::pair{'_', '_'}, {'.', '.'}, {'A', 'A'}, {'Z', 'Z'}, {'m', 'M'}}) {
    const double value = qmMissVal(static_cast<VXChar>(letter));
    const std::string one(1, shown);
    check(locale, {value, 0, 2, 0, 0, one.c_str()});
    const std::string field = "      " + one + "   ";
    check(locale, {value, 10, 3, fixed, 0, field.c_str()});  // where the units digit stands
  }
  const double ordinary = qmMissVal('.');
  const double processor = std::numeric_limits<double>::quiet_NaN();
  check(locale, {processor, 0, 0, 0, 0, "."});
  check(locale, {ordinary, 3, 5, fixed, 0, "  ."});
  check(locale, {ordinary, -3, 0, fixed, 0, "."});
  check(locale, {ordinary, 40, 0, fixed, 0, "    .", 5});
  check(locale, {ordinary, 5, 0, fixed, VX_E_TRUNCATED, "", 0});
  const NLSDoubleExOpts star{1, {}, '*'};
  const NLSDoubleExOpts none{1, {}, 0};
  const NLSDoubleExOpts unset{0, {}, '*'};
  check(locale, {ordinary, 0, 0, 0, 0, "*"}, &star);
  check(locale, {qmMissVal('B'), 0, 0, 0, 0, "B"}, &star);
  check(locale, {ordinary, 0, 0, 0, VX_E_MISSCHAR, "."}, &none);
  check(locale, {ordinary, 0, 0, 0, 0, "."}, &unset);
  const NLSDoubleExOpts dash{1, {}, 0x2014};
  EXPECT_EQ(write_utf8(locale, {ordinary, 4, 0, fixed, 0, ""}, &dash), (Written{0, " —"}));  // three bytes of four
  EXPECT_EQ(write_utf8(locale, {ordinary, 1, 0, fixed, 0, ""}, &dash), (Written{0, "—"}));   // never a part of it

  check(locale, {HUGE_VAL, 10, 2, fixed, 0, "Inf"});
  check(locale, {-HUGE_VAL, 4, 2, fixed, 0, "-Inf"});
  check(locale, {-HUGE_VAL, 3, 2, fixed, VX_E_TRUNCATED, "***"});
  check(locale, {HUGE_VAL, 9, 2, 0, VX_E_TRUNCATED, "**", 2});
}

TEST(DoubleFormat, SeparatorsOfSeveralBytes) {
  PlainLocale locale;
  locale.data.decimalPoint = 0x066B;    // two bytes
  locale.data.groupSeparator = 0x2019;  // three bytes
  const Row grouped{1234567.25, 14, 2, NLS_FORMAT_FIXED | NLS_FORMAT_GROUP, 0, ""};
  EXPECT_EQ(write(locale, grouped), (Written{0, "  1’234’567٫25"}));
  EXPECT_EQ(write_utf8(locale, grouped), (Written{VX_E_GROUPING, "   1234567٫25"}));  // 17 bytes would be needed
  EXPECT_EQ(write_utf8(locale, {1234567.25, 17, 2, NLS_FORMAT_FIXED | NLS_FORMAT_GROUP, 0, ""}),
            (Written{0, "1’234’567٫25"}));
  // The point takes one place more: a decimal goes.
  EXPECT_EQ(write_utf8(locale, {123.456, 6, 2, NLS_FORMAT_FIXED, 0, ""}), (Written{VX_W_PRECISION, "123٫5"}));
  EXPECT_EQ(write_utf8(locale, {0.5, 3, 1, NLS_FORMAT_FIXED, 0, ""}), (Written{0, "٫5"}));
  EXPECT_EQ(write_utf8(locale, {1.5, 0, 3, NLS_FORMAT_GENERAL, 0, ""}), (Written{0, "1٫5"}));
}

TEST(DoubleFormat, GroupingPatternsOfDoubles) {
  PlainLocale locale;
  const struct {
    const char32_t* pattern;
    VXStatus status;
    const char* text;
  } cases[] = {
      {U"3", 0, "123,456,789"},           {U"3;2", 0, "12,34,56,789"}, {U"2", 0, "1,23,45,67,89"},
      {U"3;-", 0, "123456,789"},          {U"x", 0, "123,456,789"},    {U"", VX_E_GROUPING, "123456789"},
      {U"0", VX_E_GROUPING, "123456789"}, {U"-", 0, "123,456,789"},    {U"4;3;1", 0, "1,2,345,6789"},
  };
  for (const auto& c : cases) {
    vxtest::set_name(locale.data.groupingPattern, c.pattern);
    SCOPED_TRACE(vxtest::utf8(c.pattern));
    check(locale, {123456789, 0, 0, NLS_FORMAT_PLAIN | NLS_FORMAT_GROUP, c.status, c.text});
  }
}

TEST(DoubleFormat, NullsAndNoLocale) {
  PlainLocale locale;
  VXLocale without_data{};
  const auto of = [](VXLocale* given, auto function, auto... extended) {
    return [=](auto* buffer, int64_t* length) {
      return function(given, 9, 1, NLS_FORMAT_PLAIN | NLS_FORMAT_GROUP, buffer, 16, length, extended..., 1234.5);
    };
  };
  constexpr const NLSDoubleExOpts* no_options = nullptr;
  VXChar units[16];
  uint8_t bytes[16];
  int64_t length = 0;
  VX_EXPECT_NULLS_REFUSED(of(locale.get(), NLSDoubleFormat), units, &length);
  VX_EXPECT_NULLS_REFUSED(of(locale.get(), NLSPercentFormat), units, &length);
  VX_EXPECT_NULLS_REFUSED(of(locale.get(), NLSDoubleFormatUWithExOpts, no_options), bytes, &length);
  VX_EXPECT_NULLS_REFUSED(NLSCurrencyFormat, locale.get(), 9, 1, 0u, units, 16, &length, 1234.5);
  for (VXLocale* const none : {static_cast<VXLocale*>(nullptr), &without_data}) {
    for (const uint32_t flags : {NLS_FORMAT_PLAIN, NLS_FORMAT_FIXED}) {
      EXPECT_EQ(NLSDoubleFormatUWithExOpts(none, 9, 1, flags | NLS_FORMAT_GROUP, bytes, 16, &length, nullptr, 1234.5),
                0u);
      EXPECT_EQ(std::string(bytes, bytes + length), "  1,234.5");
    }
  }
}

Written call_decorated(VXStatus (*function)(VXLocale*, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*, double),
                       PlainLocale& locale, const Row& row) {
  return call<VXChar>(
      [&](VXChar* buffer, int64_t size, int64_t* length) {
        return function(locale.get(), row.width, row.decimals, row.flags, buffer, size, length, row.value);
      },
      row.size);
}

TEST(Percent, SignsParenthesesAndWidths) {
  PlainLocale locale;
  const Row rows[] = {
      {-0.125, 0, 1, 1, 0, "(12.5%)"},     {0.5, 0, 0, 0, 0, "50%"},
      {-0.125, 0, 1, 0, 0, "-12.5%"},      {0.125, 8, 1, 1, 0, "   12.5%"},
      {-0.125, 10, 1, 1, 0, "(   12.5%)"}, {-0.125, 10, 1, 0xFFFFFFFEu, 0, "    -12.5%"},
  };
  for (const Row& row : rows) EXPECT_EQ(call_decorated(NLSPercentFormat, locale, row), (Written{row.status, row.text}));
  // After a failure nothing is added, but counted.
  EXPECT_EQ(call_decorated(NLSPercentFormat, locale, {-12.5, 0, 1, 1, 0, "", 5}).status, VX_E_TRUNCATED);
  VXChar buffer[8];
  int64_t length = 0;
  NLSPercentFormat(locale.get(), 0, 1, 1, buffer, 5, &length, -12.5);
  EXPECT_EQ(length, 3 + 2);
  for (int64_t size = -1; size < 3; ++size) {
    EXPECT_EQ(NLSPercentFormat(locale.get(), 0, 0, 0, buffer, size, &length, 0.5), VX_E_TRUNCATED) << size;
  }
  EXPECT_EQ(NLSPercentFormat(locale.get(), INT32_MIN, 0, 1, buffer, 8, &length, -0.5), VX_E_TRUNCATED);
}

TEST(Currency, SymbolPlacesAndWidths) {
  PlainLocale locale;
  const Row rows[] =
      {
          {1234.5, 12, 2, 0, 0, "   $1,234.50"}, {-1234.5, 12, 2, 0, 0, "  $-1,234.50"},
          {1234.5, 0, 2, 0, 0, "$1234.50"},      {1234.5, 12, 2, 1, 0, "      $1,235"},
          {1234.5, 8, 2, 0, 0, "$1234.50"},  // separators do not fit, nor in what width 0 leaves: no failure
          {5, -8, 1, 0, 0, "$5.0      "},
      };
  for (const Row& row : rows)
    EXPECT_EQ(call_decorated(NLSCurrencyFormat, locale, row), (Written{row.status, row.text}));
  vxtest::set_name(locale.data.currencySymbol, U"CHF ");
  EXPECT_EQ(call_decorated(NLSCurrencyFormat, locale, {7, 12, 2, 0, 0, ""}), (Written{0, "    CHF 7.00"}));
  vxtest::set_name(locale.data.currencySymbol, U"");
  EXPECT_EQ(call_decorated(NLSCurrencyFormat, locale, {1234.5, 0, 2, 0, 0, ""}), (Written{0, "1,234.50"}));
  // Every size is held, also one that the symbol alone outgrows.
  vxtest::set_name(locale.data.currencySymbol, std::u32string(60, U'$'));
  for (int64_t size = -1; size < 70; ++size) {
    const Written written = call<VXChar>(
        [&](VXChar* buffer, int64_t units, int64_t* length) {
          const VXStatus status = NLSCurrencyFormat(locale.get(), 64, 2, 0, buffer, units, length, 1.5);
          EXPECT_GE(*length, 60);
          *length = 0;
          return status;
        },
        size);
    EXPECT_EQ(written, (Written{size < 64 ? VX_E_TRUNCATED : 0, ""})) << size;
  }
}

}  // namespace
