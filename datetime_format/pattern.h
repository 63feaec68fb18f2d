// The language of output patterns: its directives as data, and one walk over a pattern that hands them on.
#ifndef VXNLS_DATETIME_FORMAT_PATTERN_H
#define VXNLS_DATETIME_FORMAT_PATTERN_H

#include <initializer_list>

#include "datetime_format/moment.h"
#include "unicode/text_flavour.h"
#include "vxnls/types.h"

namespace vxnls {

/// The form in which a letter was given: lower is a small letter, or any letter after `?`; everything else is upper,
/// any letter after `#` included.
enum class Form : uint8_t { upper, lower, any };

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

/// What may stand between "%" and the letter.
enum Modifier : uint8_t { none, lower_form, no_padding };

/// What a character after "%" asks for, in one byte: a Field, two digits of which are written, or 16 more where a
/// leading zero is not; one of the codes here; or a row of the table above with or without padding.
struct Action {
  uint8_t code;

  static constexpr uint8_t unpadded = 16, four_digits = 32, nothing = 33, percent = 34, modifier = 35, first_row = 64;

  static constexpr Action of(const Directive& row, uint8_t number, bool zero_padded) {
    if (row.rule == Rule::two_digits)
      return {static_cast<uint8_t>(static_cast<int>(row.field) + (zero_padded ? 0 : unpadded))};
    if (row.rule == Rule::century_and_year && zero_padded) return {four_digits};
    return {static_cast<uint8_t>(first_row + 2 * number + zero_padded)};
  }
  constexpr bool is_number() const { return code < four_digits; }
  constexpr bool is_padded_number() const { return code < unpadded; }
  constexpr Field field() const { return static_cast<Field>(code % unpadded); }
  constexpr const Directive& row() const { return directives[(code - first_row) / 2]; }
  constexpr bool zero_padded() const { return (code & 1) != 0; }
};

/// The actions for datetimes and for dates alone, by modifier and character.
struct ActionTable {
  Action of[2][3][128];
};

inline constexpr ActionTable action_table = [] {
  ActionTable table{};
  for (const bool of_date : {false, true}) {
    auto& by_modifier = table.of[of_date];
    for (auto& by_character : by_modifier) {
      for (Action& action : by_character) action = {Action::nothing};
      by_character[size_t{'%'}] = {Action::percent};
    }
    by_modifier[none][size_t{'?'}] = by_modifier[none][size_t{'#'}] = {Action::modifier};
    uint8_t number = 0;
    for (const Directive& row : directives) {
      const Action padded = Action::of(row, number, true), unpadded = Action::of(row, number, false);
      ++number;
      if (of_date && !row.of_dates) continue;
      const auto letter = size_t{static_cast<uint8_t>(row.letter)}, small = letter + ('a' - 'A');
      if (row.form != Form::lower) {
        by_modifier[none][letter] = padded;
        by_modifier[no_padding][letter] = by_modifier[no_padding][small] = unpadded;
      }
      if (row.form != Form::upper) {
        by_modifier[none][small] = by_modifier[lower_form][letter] = by_modifier[lower_form][small] = padded;
      }
    }
  }
  return table;
}();

/// Walks a pattern. The receiver gets `literal(unit, place)` for what stands for itself, `two_digits(field,
/// zero_padded, place)` for what nearly all directives are, and `directive(row, zero_padded, place)` for the others; it
/// gives the place after what it wrote. Stops at a directive that means nothing, or nothing for a date when `of_date`
/// is set: VX_E_DIRECTIVE, and the rest is not looked at. Otherwise 0.
template <class Receiver, class Place>
constexpr VXStatus walk_pattern(TextView pattern, bool of_date, Receiver& receiver, Place& place) {
  const auto& actions = action_table.of[of_date];
  const VXChar* at = pattern.text;
  const VXChar* const end = at + pattern.length;
  while (at < end) {
    VXChar c = *at++;
    if (c != '%') {
      place = receiver.literal(c, place);
      continue;
    }
    if (at == end) return VX_E_DIRECTIVE;
    c = *at++;
    if (c >= 128) return VX_E_DIRECTIVE;
    Action action = actions[none][c];
    if (action.code == Action::modifier) {
      if (at == end) return VX_E_DIRECTIVE;
      const Modifier modifier = c == '?' ? lower_form : no_padding;
      c = *at++;
      if (c >= 128) return VX_E_DIRECTIVE;
      action = actions[modifier][c];
    }
    if (action.is_number()) place = receiver.two_digits(action.field(), action.is_padded_number(), place);
    else if (action.code == Action::four_digits) place = receiver.year(place);
    else if (action.code == Action::nothing) return VX_E_DIRECTIVE;
    else if (action.code == Action::percent) place = receiver.literal(c, place);
    else place = receiver.directive(action.row(), action.zero_padded(), place);
  }
  return 0;
}

}  // namespace vxnls

#endif
