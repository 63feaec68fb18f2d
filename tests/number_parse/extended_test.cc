// The parts of the conversion: powers of ten, the software form of extended precision, the limits, the EBCDIC tables.
#include <gmp.h>
#include <gtest/gtest.h>
#include <iconv.h>
#include <mpfr.h>

#include <cmath>
#include <random>

#include "number_parse/calc_double.h"
#include "number_parse/ebcdic.h"

namespace {

using vxnls::SoftExtended;

/// Significands of every make: random, few bits, long runs of ones and zeros (carries), next to a tie.
uint64_t significand(std::mt19937_64& random) {
  const uint64_t any = random();
  const auto shift = static_cast<int>(random() % 64);
  switch (random() % 6) {
    case 0: return any;
    case 1: return any << shift;
    case 2: return ~UINT64_C(0) << shift;
    case 3: return ~UINT64_C(0) >> shift;
    case 4: return any << 12 | UINT64_C(0x400);
    default: return UINT64_C(1) << shift;
  }
}

TEST(SoftExtended, PowersOfTen) {
  mpfr_t power;
  mpz_t whole;
  mpfr_init2(power, 64);
  mpz_init(whole);
  for (unsigned long n = 0; n <= 308; ++n) {
    mpfr_ui_pow_ui(power, 10, n, MPFR_RNDN);
    const auto exponent = static_cast<int32_t>(mpfr_get_z_2exp(whole, power));
    const SoftExtended& soft = vxnls::soft_powers_of_ten.entry[n];
    EXPECT_EQ(soft.significand(), mpz_get_ui(whole)) << n;
    EXPECT_EQ(soft.exponent(), exponent) << n;
    if constexpr (vxnls::long_double_is_extended) {
      EXPECT_EQ(mpfr_cmp_ld(power, vxnls::VXPOWTENTABLE[n]), 0) << n;
    }
  }
  mpz_clear(whole);
  mpfr_clear(power);
}

/// Compares with a value of MPFR, which is not 0.
bool same(const SoftExtended& soft, mpfr_t value, mpz_t work) {
  const auto exponent = static_cast<int32_t>(mpfr_get_z_2exp(work, value));
  return soft.significand() == mpz_get_ui(work) && soft.exponent() == exponent;
}

TEST(SoftExtended, Arithmetic) {
  std::mt19937_64 random(1);
  mpfr_t x, y, result;
  mpz_t work;
  mpfr_inits2(64, x, y, result, static_cast<mpfr_ptr>(nullptr));
  mpz_init(work);
  int failed = 0;
  const auto check = [&](bool right, const char* what, uint64_t a, uint64_t b) {
    if (!right && ++failed < 10) ADD_FAILURE() << what << std::hex << " of " << a << " and " << b;
  };
  for (int i = 0; i < 1'000'000; ++i) {
    const uint64_t a = significand(random) | 1u << i % 2, b = significand(random) | 1;
    const auto apart = static_cast<int32_t>(random() % 300) - 150;
    const SoftExtended soft_a(a);
    const SoftExtended soft_b = SoftExtended::rounded(b, apart, false);
    mpfr_set_ui(x, a, MPFR_RNDN);
    mpfr_set_ui_2exp(y, b, apart, MPFR_RNDN);
    mpfr_mul(result, x, y, MPFR_RNDN);
    check(same(soft_a * soft_b, result, work), "product", a, b);
    mpfr_div(result, x, y, MPFR_RNDN);
    check(same(soft_a / soft_b, result, work), "quotient", a, b);
    mpfr_add(result, x, y, MPFR_RNDN);
    check(same(soft_a + soft_b, result, work), "sum", a, b);
    check((soft_a > soft_b) == (mpfr_cmp(x, y) > 0), "order", a, b);
    const auto scale = static_cast<int32_t>(random() % 2090) - 1140;  // up to the largest double
    mpfr_set_ui_2exp(result, a, scale, MPFR_RNDN);
    check(static_cast<double>(SoftExtended::rounded(a, scale, false)) == mpfr_get_d(result, MPFR_RNDN), "double", a, b);
  }
  for (const double value : {1.0, DBL_MAX, DBL_MIN, DBL_MAX / 10, 0.1})
    EXPECT_EQ(static_cast<double>(SoftExtended(value)), value);
  mpz_clear(work);
  mpfr_clears(x, y, result, static_cast<mpfr_ptr>(nullptr));
}

TEST(CalcDouble, BothFormsOfExtendedPrecision) {
  if constexpr (!vxnls::long_double_is_extended) GTEST_SKIP() << "long double is another type here";
  std::mt19937_64 random(2);
  const auto part = [&](int32_t digits) {
    uint64_t end = 1;
    for (int32_t n = 0; n < digits && n < 15; ++n) end *= 10;
    return random() % end;
  };
  for (int i = 0; i < 2'000'000; ++i) {
    const auto digits = static_cast<int32_t>(random() % 48);
    const uint64_t high = part(digits), low = part(digits - 15);
    const auto exponent = static_cast<int32_t>(random() % 1010) - 680;
    double soft = 0, hard = 0;
    const VXStatus soft_status = vxnls::calc_double<SoftExtended>(high, low, digits, exponent, i % 2 == 0, &soft);
    const VXStatus hard_status = vxnls::calc_double<long double>(high, low, digits, exponent, i % 2 == 0, &hard);
    ASSERT_EQ(soft_status, hard_status) << high << " " << low << " " << digits << " " << exponent;
    ASSERT_EQ(std::bit_cast<uint64_t>(soft), std::bit_cast<uint64_t>(hard))
        << high << " " << low << " " << digits << " " << exponent;
  }
}

TEST(CalcDouble, LimitsOfTheMantissa) {
  mpz_t largest, power, quotient, remainder;
  mpz_inits(largest, power, quotient, remainder, static_cast<mpz_ptr>(nullptr));
  mpz_set_d(largest, DBL_MAX);
  for (unsigned long n = 293; n <= 308; ++n) {
    mpz_ui_pow_ui(power, 10, n);
    mpz_tdiv_qr(quotient, remainder, largest, power);
    EXPECT_EQ(vxnls::mantissa_limit(static_cast<int64_t>(n)), mpz_get_ui(quotient)) << n;
    EXPECT_NE(mpz_sgn(remainder), 0) << n << ": a mantissa can be equal to the limit";
  }
  mpz_clears(largest, power, quotient, remainder, static_cast<mpz_ptr>(nullptr));
}

TEST(CalcDouble, AnyArguments) {
  double value = 0;
  for (const int32_t digits : {INT32_MIN, -1, 0, 15, 16, 31, INT32_MAX})
    for (const int32_t exponent : {INT32_MIN, -617, -616, -309, -308, 0, 292, 308, 309, INT32_MAX})
      for (const uint64_t high : {UINT64_C(0), UINT64_C(1), UINT64_C(999999999999999)}) {
        const VXStatus status = vxnls::vxnlsCalcDouble(high, 999999999999999, digits, exponent, 1, &value);
        EXPECT_EQ(status == 0, std::isfinite(value)) << high << " " << digits << " " << exponent;
      }
}

TEST(Ebcdic, TablesAreCodePage1047) {
  const iconv_t converter = iconv_open("IBM1047", "LATIN1");
  ASSERT_NE(converter, reinterpret_cast<iconv_t>(-1));
  for (unsigned c = 0; c < 256; ++c) {
    char latin = static_cast<char>(c), ebcdic = 0;
    char *from = &latin, *to = &ebcdic;
    size_t from_left = 1, to_left = 1;
    ASSERT_EQ(iconv(converter, &from, &from_left, &to, &to_left), 0u);
    EXPECT_EQ(vxnls::a2e[c], static_cast<uint8_t>(ebcdic)) << c;
    EXPECT_EQ(vxnls::e2a[static_cast<uint8_t>(ebcdic)], c);
  }
  iconv_close(converter);
}

}  // namespace
