// The exact decimal expansion of a double by big integers, and its rounding half up, on strings.
#ifndef VXNLS_TESTS_NUMBER_FORMAT_EXACT_DECIMAL_H
#define VXNLS_TESTS_NUMBER_FORMAT_EXACT_DECIMAL_H

#include <gmp.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace vxtest {

/// value = m * 2^e; below the point it is m * 5^-e over 10^-e.
class ExactDecimal {
 public:
  ExactDecimal() : fives_(1076) {
    mpz_init(number_);
    for (size_t i = 0; i < fives_.size(); ++i) {
      mpz_init(&fives_[i]);
      mpz_ui_pow_ui(&fives_[i], 5, i);
    }
  }
  ~ExactDecimal() {
    mpz_clear(number_);
    for (auto& five : fives_) mpz_clear(&five);
  }
  ExactDecimal(const ExactDecimal&) = delete;
  ExactDecimal& operator=(const ExactDecimal&) = delete;

  /// Sets `whole` (empty below 1) and `fraction` (without trailing zeros) of |value|.
  void expand(double value) {
    int binary = 0;
    const double m = std::frexp(std::fabs(value), &binary);
    const auto mantissa = static_cast<uint64_t>(std::ldexp(m, 53));
    const int e = binary - 53;
    whole.clear();
    fraction.clear();
    if (mantissa == 0) return;
    const uint64_t above = e >= 0 ? mantissa : e > -64 ? mantissa >> -e : 0;
    if (above != 0) {
      mpz_set_ui(number_, above);
      if (e > 0) mpz_mul_2exp(number_, number_, static_cast<mp_bitcnt_t>(e));
      mpz_get_str(text_, 10, number_);
      whole = text_;
    }
    if (e >= 0) return;
    uint64_t below = e > -64 ? mantissa & ((uint64_t{1} << -e) - 1) : mantissa;
    if (below == 0) return;
    const int zeros = std::countr_zero(below);
    below >>= zeros;
    const auto places = static_cast<size_t>(-e - zeros);
    mpz_mul_ui(number_, &fives_[places], below);
    mpz_get_str(text_, 10, number_);
    fraction.assign(places - std::strlen(text_), '0');
    fraction += text_;
  }

  /// |value| with `decimals` digits after the point, half up on the exact digits; "0" before the point below 1.
  std::string plain(double value, size_t decimals) {
    expand(value);
    std::string digits = (whole.empty() ? "0" : whole) + fraction.substr(0, decimals);
    if (fraction.size() < decimals) digits.append(decimals - fraction.size(), '0');
    if (decimals < fraction.size() && fraction[decimals] >= '5') increase(digits);
    const size_t point = digits.size() - decimals;
    return decimals == 0 ? digits : digits.substr(0, point) + "." + digits.substr(point);
  }

  /// |value| as d.dddE+XX with `digits` significant digits.
  std::string scientific(double value, size_t digits, int* exponent) {
    expand(value);
    std::string all = whole + fraction;
    *exponent = static_cast<int>(whole.size()) - 1;
    const size_t zeros = all.find_first_not_of('0');
    if (zeros == std::string::npos) {
      all = "0";
      *exponent = 0;
    } else {
      all.erase(0, zeros);
      *exponent -= static_cast<int>(zeros);
    }
    const bool up = all.size() > digits && all[digits] >= '5';
    all.resize(digits, '0');
    if (up && increase(all)) {
      all.pop_back();
      ++*exponent;
    }
    std::string text = all.substr(0, 1);
    if (digits > 1) text += "." + all.substr(1);
    const int size = std::abs(*exponent);
    return text + "E" + (*exponent < 0 ? "-" : "+") + (size < 10 ? "0" : "") + std::to_string(size);
  }

  std::string whole, fraction;

 private:
  /// Adds one in the last place; true when a digit was added in front.
  static bool increase(std::string& digits) {
    for (size_t i = digits.size(); i-- > 0;) {
      if (digits[i] != '9') {
        ++digits[i];
        return false;
      }
      digits[i] = '0';
    }
    digits.insert(0, 1, '1');
    return true;
  }

  mpz_t number_;
  std::vector<__mpz_struct> fives_;
  char text_[1200] = {};
};

}  // namespace vxtest

#endif
