#include "tests/number_parse/double_model.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "vxnls/bytes.h"

namespace vxtest {

namespace {

bool is_digit(char32_t c) { return U'0' <= c && c <= U'9'; }

/// The text after `at`, as the rules name its pieces.
struct Rest {
  std::u32string_view text;
  size_t at = 0;

  bool empty() const { return at == text.size(); }
  bool digit(size_t ahead = 0) const { return at + ahead < text.size() && is_digit(text[at + ahead]); }
  bool starts_with_one_of(std::u32string_view set) const { return !empty() && set.find(text[at]) != set.npos; }
  bool skip_one_of(std::u32string_view set) {
    const bool found = starts_with_one_of(set);
    if (found) ++at;
    return found;
  }
};

}  // namespace

DoubleModel::DoubleModel() { mpfr_inits2(64, mantissa_, power_, result_, bound_, static_cast<mpfr_ptr>(nullptr)); }
DoubleModel::~DoubleModel() { mpfr_clears(mantissa_, power_, result_, bound_, static_cast<mpfr_ptr>(nullptr)); }

void DoubleModel::set_power(int64_t exponent) {
  mpfr_ui_pow_ui(power_, 10, static_cast<unsigned long>(exponent), MPFR_RNDN);
}

DoubleModel::Result DoubleModel::convert(uint64_t high, uint64_t low, int64_t digits, int64_t exponent, bool negative) {
  Result result;
  const auto failure = [&](VXStatus status) {
    result.value = qmMissVal('.');
    result.status = status;
    return result;
  };
  const bool exact_path = digits < 16 && -22 <= exponent && exponent <= 22;
  if (high == 0) {
    result.value = exact_path && negative ? -0.0 : 0.0;
    return result;
  }
  mpfr_set_ui(mantissa_, high, MPFR_RNDN);
  int64_t in_mantissa = digits;
  if (digits >= 16) {
    const int64_t k = std::min<int64_t>(digits - 15, 15);
    set_power(k);
    mpfr_mul(mantissa_, mantissa_, power_, MPFR_RNDN);
    mpfr_add_ui(mantissa_, mantissa_, low, MPFR_RNDN);
    exponent = exponent - 15 + (digits - k);
    in_mantissa = 15 + k;
  }
  mpfr_set(result_, mantissa_, MPFR_RNDN);
  if (exponent < 0) {
    int64_t left = -exponent;
    if (left > 616) return failure(VX_E_UNDERFLOW);
    if (left > 308) {
      set_power(308);
      mpfr_div(result_, result_, power_, MPFR_RNDN);
      left -= 308;
    }
    set_power(left);
    mpfr_div(result_, result_, power_, MPFR_RNDN);
  } else {
    if (exponent > 308) return failure(VX_E_OVERFLOW);
    if (exponent > 292) {
      mpfr_set_d(bound_, DBL_MAX, MPFR_RNDN);
      set_power(exponent);
      mpfr_div(bound_, bound_, power_, MPFR_RNDN);
      if (mpfr_cmp(mantissa_, bound_) > 0) return failure(VX_E_OVERFLOW);
    }
    const int64_t at_once = std::min(exponent, 307 - in_mantissa);
    set_power(at_once);
    mpfr_mul(result_, result_, power_, MPFR_RNDN);
    for (int64_t i = at_once; i < exponent; ++i) {
      if (mpfr_cmp_d(result_, DBL_MAX / 10) > 0) return failure(VX_E_OVERFLOW);
      mpfr_mul_ui(result_, result_, 10, MPFR_RNDN);
    }
  }
  const double magnitude = mpfr_get_d(result_, MPFR_RNDN);
  // All roundings together move the result by far less than 2^-60 of it.
  mpfr_mul_d(bound_, result_, 1 + 0x1p-52, MPFR_RNDN);
  mpfr_sub(bound_, bound_, result_, MPFR_RNDN);
  mpfr_div_ui(bound_, bound_, 256, MPFR_RNDN);
  mpfr_add(mantissa_, result_, bound_, MPFR_RNDN);
  mpfr_sub(bound_, result_, bound_, MPFR_RNDN);
  result.is_near_tie = mpfr_get_d(mantissa_, MPFR_RNDN) != mpfr_get_d(bound_, MPFR_RNDN);
  if (magnitude == 0) return failure(VX_E_UNDERFLOW);
  result.value = negative ? -magnitude : magnitude;
  return result;
}

DoubleModel::Result DoubleModel::read(std::u32string_view text, const Signs& signs) {
  constexpr std::u32string_view blanks = U" \t";
  Rest rest{text};
  const auto end_with = [&](VXStatus status, double value) {
    Result result;
    result.status = status;
    result.value = value;
    result.consumed = static_cast<int64_t>(rest.at);
    return result;
  };
  const auto refuse = [&](VXStatus status = VX_E_NOTNUMBER) { return end_with(status, qmMissVal('.')); };
  const std::u32string separators =
      signs.space_separates ? std::u32string{signs.separator, U' '} : std::u32string{signs.separator};
  const std::u32string point{signs.point};

  if (text.empty()) return end_with(0, qmMissVal('.'));
  while (rest.skip_one_of(blanks)) {
  }
  if (rest.empty()) return refuse();
  const bool negative = rest.starts_with_one_of(U"-");
  rest.skip_one_of(U"+-");

  if (rest.starts_with_one_of(U".") && !rest.digit() && !rest.digit(1)) {
    const char32_t letter = rest.at + 1 < text.size() ? text[rest.at + 1] : U'?';
    const bool is_letter = (letter >= U'A' && letter <= U'Z') || (letter >= U'a' && letter <= U'z') || letter == U'_';
    if (!is_letter) return refuse();
    rest.at += 2;
    while (rest.skip_one_of(blanks)) {
    }
    return rest.empty() ? end_with(0, qmMissVal(letter)) : refuse();
  }
  if (!rest.digit() && !(rest.starts_with_one_of(point) && rest.digit(1))) return refuse();

  std::string digits;
  int64_t exponent = 0;
  const auto take = [&] {
    const char digit = static_cast<char>(text[rest.at++]);
    if (digit != '0' || !digits.empty()) digits += digit;
  };
  if (rest.digit())
    while (rest.digit() || rest.starts_with_one_of(separators)) {
      if (rest.digit()) take();
      else ++rest.at;
    }
  if (rest.skip_one_of(point))
    for (; rest.digit(); --exponent) take();
  if (rest.skip_one_of(U"EeDd")) {
    const bool down = rest.starts_with_one_of(U"-");
    rest.skip_one_of(U"+-");
    if (!rest.digit()) return refuse();
    double written = 0;  // as good as exact: only its being above 30800 matters once it is large
    while (rest.digit() || rest.starts_with_one_of(separators)) {
      if (rest.digit()) written = written * 10 + static_cast<double>(text[rest.at] - U'0');
      ++rest.at;
    }
    if (written > 30800) return refuse(VX_E_RANGE);
    exponent += static_cast<int64_t>(down ? -written : written);
  }
  while (rest.skip_one_of(blanks)) {
  }
  if (!rest.empty()) return refuse();

  const auto part = [&](size_t from) -> uint64_t {
    const std::string part = digits.size() > from ? digits.substr(from, 15) : "0";
    return std::stoull(part);
  };
  Result result = convert(part(0), part(15), static_cast<int64_t>(digits.size()), exponent, negative);
  result.consumed = static_cast<int64_t>(rest.at);
  if (negative) result.decimal += '-';
  result.decimal += digits.empty() ? "0" : digits;
  result.decimal += 'e';
  result.decimal += std::to_string(exponent);
  return result;
}

}  // namespace vxtest
