// The language of output patterns: its directives as data, and one walk over a pattern that hands them on.
#ifndef VXNLS_DATETIME_FORMAT_PATTERN_H
#define VXNLS_DATETIME_FORMAT_PATTERN_H

#include "unicode/counted_name.h"
#include "vxnls/types.h"

namespace vxnls {

/// The form in which a letter was given: lower is a small letter, or any letter after `?`; everything else is upper,
/// any letter after `#` included.
enum class Form : uint8_t { upper, lower, any };

/// What a directive reads of the value.
enum class Field : uint8_t { none, year, month, day, week_day, hour, minute, second, zone };

/// How it is written.
enum class Rule : uint8_t {
  full_name,         // of the week day or month
  short_name,        // likewise
  two_digits,        // without the leading zero after `#`
  blank_padded,      // two places, a blank for a leading zero, also after `#`
  dial_from_12,      // hours 12, 1 to 11, two digits
  dial_from_0,       // hours 0 to 12, two digits
  hour_to_24,        // midnight is 24, and stays 24 for the rest of the pattern
  day_period,        // AM or PM
  one_digit,         // 0 = Sunday
  always_seven,      // whatever the day
  century_and_year,  // two digits each
  zone_name,
  zone_offset,  // sign, hours, minutes
};

struct Directive {
  char letter;
  Form form;
  Rule rule;
  Field field;
  bool of_dates;  // a date alone can be asked for it
};

inline constexpr Directive directives[] = {
    {'A', Form::upper, Rule::full_name, Field::week_day, true},
    {'A', Form::lower, Rule::short_name, Field::week_day, true},
    {'B', Form::upper, Rule::full_name, Field::month, true},
    {'B', Form::lower, Rule::short_name, Field::month, true},
    {'C', Form::any, Rule::full_name, Field::month, true},
    {'D', Form::any, Rule::two_digits, Field::day, true},
    {'E', Form::any, Rule::blank_padded, Field::day, true},
    {'F', Form::any, Rule::full_name, Field::week_day, true},
    {'H', Form::any, Rule::two_digits, Field::hour, false},
    {'I', Form::any, Rule::dial_from_12, Field::hour, false},
    {'K', Form::any, Rule::hour_to_24, Field::hour, false},
    {'L', Form::any, Rule::dial_from_0, Field::hour, false},
    {'M', Form::upper, Rule::two_digits, Field::minute, false},  // so %#m is the minute
    {'M', Form::lower, Rule::two_digits, Field::month, true},
    {'N', Form::any, Rule::two_digits, Field::month, true},
    {'O', Form::any, Rule::blank_padded, Field::month, true},
    {'P', Form::any, Rule::day_period, Field::hour, false},
    {'S', Form::any, Rule::two_digits, Field::second, false},
    {'U', Form::any, Rule::always_seven, Field::none, true},  // kept on purpose
    {'W', Form::any, Rule::one_digit, Field::week_day, true},
    {'Y', Form::any, Rule::century_and_year, Field::year, true},
    {'Z', Form::upper, Rule::zone_name, Field::zone, true},
    {'Z', Form::lower, Rule::zone_offset, Field::zone, true},
};

constexpr bool answers(const Directive& row, char letter, Form form) {
  return row.letter == letter && (row.form == form || row.form == Form::any);
}

static_assert(
    [] {
      for (char letter = 'A'; letter <= 'Z'; ++letter) {
        for (const Form form : {Form::upper, Form::lower}) {
          int rows = 0;
          for (const Directive& row : directives) rows += answers(row, letter, form);
          if (rows > 1) return false;
        }
      }
      return true;
    }(),
    "two rows answer the same letter");

/// The rows by letter and form, counted from 1; 0 where a letter means nothing.
struct DirectiveIndex {
  uint8_t row[26][2];
};

inline constexpr DirectiveIndex directive_index = [] {
  DirectiveIndex index{};
  uint8_t number = 0;
  for (const Directive& row : directives) {
    ++number;
    uint8_t(&of_letter)[2] = index.row[row.letter - 'A'];
    if (row.form != Form::lower) of_letter[0] = number;
    if (row.form != Form::upper) of_letter[1] = number;
  }
  return index;
}();

/// The row of a letter from 'A' to 'Z'; null when it means nothing.
constexpr const Directive* find_directive(VXChar letter, bool lower) {
  const uint8_t number = directive_index.row[letter - 'A'][lower];
  return number != 0 ? &directives[number - 1] : nullptr;
}

constexpr VXChar ascii_upper(VXChar c) { return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c; }

/// Walks a pattern. The receiver gets `literal(unit)` for what stands for itself, and `directive(row, zero_padded)`.
/// Stops at a directive that means nothing, or nothing for a date when `of_date` is set: VX_E_DIRECTIVE, and the rest
/// is not looked at. Otherwise 0.
template <class Receiver>
constexpr VXStatus walk_pattern(TextView pattern, bool of_date, Receiver& receiver) {
  const VXChar* at = pattern.text;
  const VXChar* const end = at + pattern.length;
  while (at < end) {
    VXChar c = *at++;
    if (c != '%') {
      receiver.literal(c);
      continue;
    }
    if (at == end) return VX_E_DIRECTIVE;
    c = *at++;
    const VXChar modifier = c == '?' || c == '#' ? c : 0;
    if (modifier != 0) {
      if (at == end) return VX_E_DIRECTIVE;
      c = *at++;
    }
    if (c == '%') {
      receiver.literal(c);
      continue;
    }
    const VXChar letter = ascii_upper(c);
    if (letter < 'A' || letter > 'Z') return VX_E_DIRECTIVE;
    const bool lower = modifier == '?' || (modifier == 0 && c != letter);
    const Directive* const row = find_directive(letter, lower);
    if (row == nullptr || (of_date && !row->of_dates)) return VX_E_DIRECTIVE;
    receiver.directive(*row, modifier != '#');
  }
  return 0;
}

}  // namespace vxnls

#endif
