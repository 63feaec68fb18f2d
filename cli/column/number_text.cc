#include "cli/column/number_text.h"

#include <unicode/uchar.h>
#include <unicode/ucurr.h>
#include <unicode/utf8.h>

#include <algorithm>

namespace vxcli::column {

namespace {

constexpr VXChar arabic_point = 0x066B, arabic_separator = 0x066C;

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_capital(char c) { return c >= 'A' && c <= 'Z'; }

/// The bytes of a percent sign or a currency at the start of a text, 0 when there is none.
size_t unit_length(std::string_view text, std::string_view own_currency) {
  if (text.empty()) return 0;
  if (text[0] == '%') return 1;
  if (text[0] == '$') return 1;
  if (!own_currency.empty() && text.starts_with(own_currency)) return own_currency.size();
  if (is_capital(text[0])) {  // USD, US$, R$
    size_t capitals = 1;
    while (capitals < text.size() && capitals < 4 && is_capital(text[capitals])) ++capitals;
    if (capitals <= 2 && capitals < text.size() && text[capitals] == '$') return capitals + 1;
    if (capitals != 3) return 0;
    const UChar code[4] = {static_cast<UChar>(text[0]), static_cast<UChar>(text[1]), static_cast<UChar>(text[2]), 0};
    UErrorCode error = U_ZERO_ERROR;
    return ucurr_isAvailable(code, U_DATE_MIN, U_DATE_MAX, &error) != 0 && U_SUCCESS(error) ? 3 : 0;
  }
  if (static_cast<unsigned char>(text[0]) < 0x80) return 0;
  int32_t at = 0;
  UChar32 c;
  const auto size = static_cast<int32_t>(std::min<size_t>(text.size(), 4));
  U8_NEXT(reinterpret_cast<const uint8_t*>(text.data()), at, size, c);
  return c >= 0 && u_charType(c) == U_CURRENCY_SYMBOL ? static_cast<size_t>(at) : 0;
}

/// Segments of digits with separators between them, gathered in one pass.
struct Shape {
  VXChar first = 0, last = 0;  // separators
  size_t count = 0;            // of separators
  size_t count_first = 0;      // of those equal to the first
  size_t lead = 0;             // digits in the first segment
  size_t tail = 0;             // in the last, if there are several
  size_t inner = 0;            // in the last but one, if there are three and more
  bool lead_zero = false;      // the first digit is 0
  bool inners_three = true;    // all but lead and tail have three
  bool earlier_two = true;     // all but lead, inner and tail have two

  void separator(VXChar which, size_t run) {
    if (count == 0) {
      first = which;
      lead = run;
    } else {
      if (count >= 2) earlier_two = earlier_two && inner == 2;
      inner = run;
      inners_three = inners_three && run == 3;
    }
    ++count;
    last = which;
    if (which == first) ++count_first;
  }
  void end(size_t run) { (count == 0 ? lead : tail) = run; }
};

/// The reading with one of "." and "," as the decimal point.
NumberReading read_as(const Shape& shape, VXChar point, bool has_exponent) {
  NumberReading reading;
  const bool has_point = shape.count > 0 && (shape.last == point || shape.last == arabic_point);
  reading.decimal_point = has_point ? shape.last : point;
  reading.whole = !has_point && !has_exponent;
  if (shape.lead + shape.tail == 0) return reading;
  const size_t groups = shape.count - (has_point ? 1 : 0);  // separators that are not the point
  if (groups == 0) {
    reading.possible = true;
    return reading;
  }
  if (shape.first == point || shape.first == arabic_point || shape.count_first != groups) return reading;
  reading.group_separator = shape.first;
  const size_t last_group = has_point ? shape.inner : shape.tail;
  if (shape.lead < 1 || shape.lead > 3 || shape.lead_zero || last_group != 3) return reading;
  const bool by_two =
      shape.first == ',' && groups > 1 && shape.lead <= 2 && shape.earlier_two && (has_point || shape.inner == 2);
  reading.possible = shape.inners_three || by_two;
  return reading;
}

}  // namespace

bool NumberText::scan(std::string_view text, std::string_view own_currency, size_t& fault) {
  *this = {};
  size_t at = 0, end = text.size();
  const auto skip_blanks = [&] {
    while (at < end && text[at] == ' ') ++at;
  };
  bool signed_already = false;
  if (end > 2 && text[0] == '(' && text[end - 1] == ')') {
    negative = signed_already = true;
    ++at;
    --end;
  }
  // What stands before the digits.
  for (;;) {
    skip_blanks();
    if (at == end) return fault = at, false;
    if (is_digit(text[at]) || text[at] == '.' || text[at] == ',') break;
    if ((text[at] == '-' || text[at] == '+') && !signed_already) {
      negative = text[at] == '-';
      signed_already = true;
      ++at;
      continue;
    }
    const size_t length = unit.empty() ? unit_length(text.substr(at, end - at), own_currency) : 0;
    if (length == 0) {
      if (text.substr(at).starts_with("\xD9\xAB")) break;  // the Arabic point
      return fault = at, false;
    }
    unit = text.substr(at, length);
    at += length;
  }
  // The digits.
  const size_t begin = at;
  Shape shape;
  size_t run = 0;
  shape.lead_zero = text[at] == '0';
  for (; at < end; ++at) {
    const char c = text[at];
    if (is_digit(c)) {
      ++run;
      continue;
    }
    VXChar separator = 0;
    size_t length = 1;
    const bool within_digits = run > 0 && at + 1 < end && is_digit(text[at + 1]);
    if (c == '.' || c == ',' || ((c == ' ' || c == '\'') && within_digits)) {
      separator = static_cast<uint8_t>(c);
    } else if (c == '\xD9' && at + 1 < end && (text[at + 1] == '\xAB' || text[at + 1] == '\xAC')) {
      separator = text[at + 1] == '\xAB' ? arabic_point : arabic_separator;
      length = 2;
    } else {
      break;
    }
    shape.separator(separator, run);
    run = 0;
    at += length - 1;
  }
  shape.end(run);

  const size_t digits_end = at;
  bool has_exponent = false;
  if (at < end && (text[at] == 'e' || text[at] == 'E' || text[at] == 'd' || text[at] == 'D')) {
    size_t next = at + 1;
    if (next < end && (text[next] == '+' || text[next] == '-')) ++next;
    size_t stop = next;
    while (stop < end && is_digit(text[stop])) ++stop;
    if (stop > next) {
      has_exponent = true;
      at = stop;
    }
  }
  digits = text.substr(begin, at - begin);
  exponent = has_exponent ? digits_end - begin : digits.size();

  // What stands behind them.
  for (;;) {
    skip_blanks();
    if (at == end) break;
    if (text[at] == '-' && !signed_already) {
      negative = signed_already = true;
      ++at;
      continue;
    }
    const size_t length = unit.empty() ? unit_length(text.substr(at, end - at), own_currency) : 0;
    if (length == 0) return fault = at, false;
    unit = text.substr(at, length);
    at += length;
  }

  point = read_as(shape, '.', has_exponent);
  comma = read_as(shape, ',', has_exponent);
  differ = point.possible && comma.possible && shape.count > 0 && (shape.last == '.' || shape.last == ',');
  if (!point.possible && !comma.possible) return fault = begin, false;
  return true;
}

void NumberText::append_plain(const NumberReading& reading, std::string& out) const {
  if (negative) out += '-';
  const std::string_view mantissa = digits.substr(0, exponent);
  for (size_t at = 0; at < mantissa.size(); ++at) {
    const char c = mantissa[at];
    if (is_digit(c)) {
      out += c;
      continue;
    }
    VXChar separator = static_cast<unsigned char>(c);
    if (c == '\xD9') separator = mantissa[++at] == '\xAB' ? arabic_point : arabic_separator;
    if (separator != reading.decimal_point) continue;
    if (at + 1 == mantissa.size()) break;  // "5."
    if (out.empty() || !is_digit(out.back())) out += '0';
    out += '.';
  }
  if (exponent < digits.size()) {
    out += 'E';
    out += digits.substr(exponent + 1);
  }
}

namespace {

// The bits of NumberBits.
constexpr NumberBits by_point = 1, by_comma = 2, two_ways = 4, whole_by_point = 8, whole_by_comma = 16,
                     comma_groups = 32, point_groups = 64, blank_groups = 128, apostrophe_groups = 256;

NumberBits group_bit(VXChar separator) {
  return separator == ','    ? comma_groups
         : separator == '.'  ? point_groups
         : separator == ' '  ? blank_groups
         : separator == '\'' ? apostrophe_groups
                             : NumberBits{0};
}

}  // namespace

NumberBits bits_of(const NumberText& number) {
  NumberBits bits = 0;
  const auto set = [&](bool on, NumberBits bit) { bits = static_cast<NumberBits>(bits | (on ? bit : 0)); };
  set(number.differ, two_ways);
  set(number.point.possible, by_point);
  set(number.comma.possible, by_comma);
  set(number.point.possible && number.point.whole, whole_by_point);
  set(number.comma.possible && number.comma.whole, whole_by_comma);
  if (number.point.possible) set(true, group_bit(number.point.group_separator));
  if (number.comma.possible) set(true, group_bit(number.comma.group_separator));
  return bits;
}

NumberTraits traits_of(NumberBits bits) {
  return {.by_point = (bits & by_point) != 0,
          .by_comma = (bits & by_comma) != 0,
          .differ = (bits & two_ways) != 0,
          .whole_by_point = (bits & whole_by_point) != 0,
          .whole_by_comma = (bits & whole_by_comma) != 0,
          .comma_groups = (bits & comma_groups) != 0,
          .point_groups = (bits & point_groups) != 0,
          .blank_groups = (bits & blank_groups) != 0,
          .apostrophe_groups = (bits & apostrophe_groups) != 0};
}

NumberRule::NumberRule(const Decision& decision)
    : decimal_point(decision.decimal_point.empty() ? 0 : static_cast<unsigned char>(decision.decimal_point[0])),
      any_separator(decision.group_separators.empty()),
      whole(decision.kind == Kind::integer),
      unit(decision.unit) {
  const auto lists = [&](char c) { return decision.group_separators.find(c) != std::string::npos; };
  dot = lists('.');
  comma = lists(',');
  blank = lists(' ');
  apostrophe = lists('\'');
}

Outcome NumberRule::judge(NumberBits bits, std::string_view unit_of_number) const {
  const NumberTraits number = traits_of(bits);
  if (unit_of_number != unit && (!unit_of_number.empty() || unit == "%")) return Outcome::contradicts;
  if (decimal_point == 0 && number.differ) return Outcome::ambiguous;
  const bool as_comma = decimal_point == ',' || (decimal_point == 0 && !number.by_point);
  if (as_comma ? !number.by_comma : !number.by_point) return Outcome::contradicts;
  if (whole && !(as_comma ? number.whole_by_comma : number.whole_by_point)) return Outcome::contradicts;
  if (any_separator) return Outcome::read;
  const bool wrong = (number.blank_groups && !blank) || (number.apostrophe_groups && !apostrophe) ||
                     (as_comma ? number.point_groups && !dot : number.comma_groups && !comma);
  return wrong ? Outcome::contradicts : Outcome::read;
}

}  // namespace vxcli::column
