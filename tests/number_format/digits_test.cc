// The digit generators against exact arithmetic of big integers.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "tests/number_format/exact_decimal.h"
#include "tests/support/null_arguments.h"
#include "vxnls/number_format.h"

namespace {

using vxtest::ExactDecimal;

struct Generated {
  VXStatus status;
  std::string text;
  int64_t other;  // digits needed, or leading zeros
};

std::string narrow(const VXChar* text, int64_t count) {
  std::string result;
  for (int64_t i = 0; i < count; ++i) result += static_cast<char>(text[i]);
  return result;
}

Generated integer_part(double value, int64_t size = 350) {
  VXChar buffer[1200];
  int64_t count = -1, needed = -1;
  const VXStatus status = vxzIDblToBuff(value, buffer, size, &count, &needed);
  return {status, narrow(buffer, count), needed};
}

Generated fraction_part(double value, int64_t size = 1100) {
  VXChar buffer[1200];
  int64_t count = -1, zeros = -1;
  const VXStatus status = vxzFDblToBuff(buffer, size, &count, &zeros, value);
  return {status, narrow(buffer, count), zeros};
}

/// Both parts of one value; false after the first difference, so that a broken generator does not print millions.
bool agrees(ExactDecimal& exact, double value, int64_t size) {
  exact.expand(value);
  const Generated whole = integer_part(value);
  const Generated fraction = fraction_part(value, size);
  const auto limit = static_cast<size_t>(size);
  size_t zeros = exact.fraction.find_first_not_of('0');
  if (zeros == std::string::npos) zeros = 0;
  const std::string expected = exact.fraction.substr(zeros, limit);
  EXPECT_EQ(whole.text, exact.whole) << std::hexfloat << value;
  EXPECT_EQ(fraction.text, expected) << std::hexfloat << value;
  EXPECT_EQ(fraction.other, static_cast<int64_t>(zeros)) << std::hexfloat << value;
  return !testing::Test::HasFailure();
}

TEST(Digits, AgreeWithExactArithmeticOverAllExponents) {
  ExactDecimal exact;
  std::mt19937_64 random(20240307);
  for (int i = 0; i < 5'000'000; ++i) {
    // Every exponent in turn; a random mantissa, one in four with few bits.
    const auto biased = static_cast<uint64_t>(i % 2047);
    uint64_t mantissa = random() >> 12;
    if (i % 4 == 3) mantissa &= ~uint64_t{0} << (random() % 52);
    const auto value = std::bit_cast<double>(biased << 52 | (mantissa & ((uint64_t{1} << 52) - 1)));
    if (value == 0) continue;
    // The whole expansion of a subnormal has 1074 digits; most uses ask for few.
    if (!agrees(exact, value, i % 16 == 0 ? 1100 : 20)) return;
  }
}

TEST(Digits, PowersOfTwoAndTenAndTheirNeighbours) {
  ExactDecimal exact;
  std::vector<double> values;
  for (int e = -1074; e < 1024; ++e) values.push_back(std::ldexp(1.0, e));
  for (int e = -323; e <= 308; ++e) values.push_back(std::strtod(("1e" + std::to_string(e)).c_str(), nullptr));
  for (const double value : values) {
    for (const double near : {std::nextafter(value, 0), value, std::nextafter(value, HUGE_VAL), -value}) {
      if (near != 0 && std::isfinite(near) && !agrees(exact, near, 1100)) return;
    }
  }
}

TEST(Digits, EdgesOfTheTwoCalls) {
  EXPECT_EQ(integer_part(0.999).text, "");
  EXPECT_EQ(integer_part(-12.5).text, "12");
  const Generated full = integer_part(1.7976931348623157e308);
  EXPECT_EQ(full.text.size(), 309u);
  EXPECT_EQ(integer_part(12345, 5).text, "12345");
  const Generated refused = integer_part(12345, 4);
  EXPECT_EQ(refused.status, VX_E_DIGITS);
  EXPECT_EQ(refused.text, "");
  EXPECT_EQ(refused.other, 5);

  EXPECT_EQ(fraction_part(0).text, "0");  // 0 itself is the one value with a digit that says nothing
  EXPECT_EQ(fraction_part(-0.0).text, "0");
  EXPECT_EQ(fraction_part(7).text, "");
  EXPECT_EQ(fraction_part(0.0009765625).text, "9765625");
  EXPECT_EQ(fraction_part(0.0009765625).other, 3);
  EXPECT_EQ(fraction_part(0.0009765625, 4).text, "9765");
  EXPECT_EQ(fraction_part(0.5, 0).text, "");
  VXChar buffer[8];
  int64_t count = 0, zeros = 0;
  const auto integer_digits = [](VXChar* to, int64_t* digits) { return vxzIDblToBuff(12, to, 8, digits, nullptr); };
  VX_EXPECT_NULLS_REFUSED(integer_digits, buffer, &count);
  EXPECT_EQ(vxzIDblToBuff(12, buffer, 8, &count, nullptr), 0u);
  VX_EXPECT_NULLS_REFUSED(vxzFDblToBuff, buffer, 8, &count, &zeros, 0.5);
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    EXPECT_EQ(integer_part(bad).status, VX_E_RANGE);
    EXPECT_EQ(fraction_part(bad).status, VX_E_RANGE);
  }
}

}  // namespace
