// Second readers of numbers, slow and plain, to hold the library's against: in characters, run by run.
#ifndef VXNLS_TESTS_NUMBER_PARSE_MODELS_H
#define VXNLS_TESTS_NUMBER_PARSE_MODELS_H

#include <algorithm>
#include <bit>
#include <cfloat>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <string>
#include <tuple>

#include "number_parse/soft_extended.h"
#include "vxnls/vxnls.h"

namespace vxtest {

/// A positive number of 64 bits, in integers. Every operation rounds to nearest, ties to even. The library reads by the
/// processor's own arithmetic where there is such; a test holds the two against each other.
using Real = vxnls::SoftExtended;
inline const auto& power_of_ten = vxnls::soft_powers_of_ten.entry;

struct Signs {
  char32_t point, separator;
};

/// What a reader gives: a status; the value as the bits of a double, or as an integer with its sign in 64 bits; and the
/// units that were read.
using Reading = std::tuple<VXStatus, uint64_t, int64_t>;

/// The digits of a text, without leading zeros, and their power of ten.
struct Decimal {
  std::string digits;
  int64_t exponent = 0;
  bool is_negative = false;
  Real part(size_t from) const { return Real(uint64_t{std::stoull(digits.substr(from, 15))}); }
};

inline VXStatus value_of(const Decimal& decimal, double& value) {
  const auto count = ssize(decimal.digits), used = std::min<int64_t>(count, 30);
  const int64_t exponent = decimal.exponent + count - used;
  if (count == 0) {
    value = decimal.is_negative && -22 <= exponent && exponent <= 22 ? -0.0 : 0.0;
    return 0;
  }
  Real result = decimal.part(0);
  if (count > 15) result = result * power_of_ten[used - 15] + decimal.part(15);
  if (exponent < -616) return VX_E_UNDERFLOW;
  if (exponent > 308) return VX_E_OVERFLOW;
  if (exponent > 292 && result > Real(DBL_MAX) / power_of_ten[exponent]) return VX_E_OVERFLOW;
  if (exponent < -308) result = result / power_of_ten[308];
  if (exponent < 0) result = result / power_of_ten[exponent < -308 ? -exponent - 308 : -exponent];
  const int64_t at_once = std::min(exponent, 307 - used);
  if (exponent >= 0) result = result * power_of_ten[at_once];
  for (int64_t i = at_once; i < exponent; ++i) {
    if (result > Real(DBL_MAX / 10)) return VX_E_OVERFLOW;
    result = result * power_of_ten[1];
  }
  const auto magnitude = static_cast<double>(result);
  if (magnitude == 0) return VX_E_UNDERFLOW;
  value = decimal.is_negative ? -magnitude : magnitude;
  return 0;
}

constexpr std::u32string_view all_digits = U"0123456789ABCDEFabcdef", digits = all_digits.substr(0, 10);

/// A text, taken from the front.
struct Scanner {
  std::u32string_view text;
  size_t at = 0;

  bool ended() const { return at == text.size(); }
  bool is(std::u32string_view set, size_t ahead = 0) const {
    return at + ahead < text.size() && set.find(text[at + ahead]) != set.npos;
  }
  bool skip(std::u32string_view set) { return is(set) && ++at != 0; }
  /// What is of a set from here on, without the separators in it.
  std::string run(std::u32string_view set, std::u32string_view separators = {}) {
    std::string taken;
    for (; is(set) || is(separators); ++at)
      if (is(set)) taken += static_cast<char>(text[at]);
    return taken;
  }
  Reading result(VXStatus status, uint64_t value) const { return {status, value, static_cast<int64_t>(at)}; }
};

/// The characters that separate groups.
inline std::u32string separators_of(const Signs& signs, uint32_t flags) {
  const bool spaces = (flags & NLS_READ_SPACE_SEPARATOR) != 0 && signs.separator == U'\u00A0';
  return spaces ? std::u32string{signs.separator, U' '} : std::u32string{signs.separator};
}

inline Reading read_double(std::u32string_view text, const Signs& signs, uint32_t flags, Decimal& decimal) {
  constexpr std::u32string_view blanks = U" \t";
  const std::u32string separators = separators_of(signs, flags);
  const std::u32string_view point(&signs.point, 1);
  Scanner in{text};
  const auto result = [&](VXStatus status, double value = qmMissVal('.')) {
    return in.result(status, std::bit_cast<uint64_t>(value));
  };
  if (text.empty()) return result(0);
  in.run(blanks);
  decimal.is_negative = in.is(U"-");
  in.skip(U"+-");
  if (in.is(U".") && !in.is(digits, 1)) {
    if (!in.is(U"ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz", 1)) return result(VX_E_NOTNUMBER);
    const char32_t letter = text[in.at + 1];
    in.at += 2;
    in.run(blanks);
    return in.ended() ? result(0, qmMissVal(letter)) : result(VX_E_NOTNUMBER);
  }
  if (!in.is(digits) && !(in.is(point) && in.is(digits, 1))) return result(VX_E_NOTNUMBER);
  if (in.is(digits)) decimal.digits = in.run(digits, separators);
  const size_t whole = decimal.digits.size();
  if (in.skip(point)) decimal.digits += in.run(digits);
  decimal.exponent = static_cast<int64_t>(whole) - static_cast<int64_t>(decimal.digits.size());
  decimal.digits.erase(0, decimal.digits.find_first_not_of('0'));
  if (in.skip(U"EeDd")) {
    const bool down = in.is(U"-");
    in.skip(U"+-");
    if (!in.is(digits)) return result(VX_E_NOTNUMBER);
    const double written = std::strtod(in.run(digits, separators).c_str(), nullptr);
    if (written > 30800) return result(VX_E_RANGE);
    decimal.exponent += static_cast<int64_t>(down ? -written : written);
  }
  in.run(blanks);
  if (!in.ended()) return result(VX_E_NOTNUMBER);
  double value = qmMissVal('.');
  const VXStatus status = value_of(decimal, value);
  return result(status, value);
}

/// Gathers the digits first; their value is the standard library's.
template <class Integer>
Reading read_integer(std::u32string_view text, const Signs& signs, uint32_t flags) {
  constexpr bool is_signed = std::numeric_limits<Integer>::is_signed;
  const bool hexadecimal = !is_signed && (flags & NLS_READ_HEXADECIMAL) != 0;
  const bool trailing = (flags & NLS_READ_TRAILING_BLANKS) != 0;
  const std::u32string separators = hexadecimal ? U"" : separators_of(signs, flags);
  Scanner in{text};
  in.run(U" ");
  if (in.ended()) return in.result(0, 0);
  const bool negative = in.is(U"-");
  if (in.is(U"+-") ? hexadecimal || (negative && !is_signed) : in.is(separators)) return in.result(VX_E_NOTNUMBER, 0);
  if (in.skip(U"+-")) {
    in.run(U" ");
    if (in.ended()) return in.result(VX_E_NOTNUMBER, 0);
  }
  if (hexadecimal && in.is(U"0") && in.is(U"xX", 1)) in.at += 2;
  std::u32string set(hexadecimal ? all_digits : digits);
  std::erase_if(set, [&](char32_t c) { return separators.find(c) != separators.npos; });
  const std::string number = in.run(set, separators);
  constexpr uint64_t most = std::numeric_limits<Integer>::max();
  uint64_t magnitude = 0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), magnitude, hexadecimal ? 16 : 10);
  if (read.ec == std::errc::result_out_of_range || magnitude > most + negative) return in.result(VX_E_OVERFLOW, 0);
  VXStatus fraction = 0;
  if (!hexadecimal && (flags & NLS_READ_FRACTION) != 0 && in.skip({&signs.point, 1})) {
    const std::string lost = in.run(trailing ? U"0123456789 " : digits);
    if (lost.find_first_of("123456789") != lost.npos) fraction = VX_E_TRUNCATED;
  } else if (trailing) {
    in.run(U" ");
  }
  const bool may_end = in.ended() || in.is({U"\0", 1}) || (in.is(U" ") && !trailing);
  return in.result(may_end ? fraction : VX_E_NOTNUMBER, negative ? 0 - magnitude : magnitude);
}

}  // namespace vxtest

#endif
