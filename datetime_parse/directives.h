// The two sets of directives, as tables: what each letter reads, and where it goes.
#ifndef VXNLS_DATETIME_PARSE_DIRECTIVES_H
#define VXNLS_DATETIME_PARSE_DIRECTIVES_H

#include <array>

#include "datetime_parse/digits.h"
#include "datetime_parse/fields.h"
#include "datetime_parse/names.h"

namespace vxnls {

enum class Rule : uint8_t {
  digits,          // strict digits, lenient ones under "#"
  strict_digits,   // strict digits, also under "#"
  lenient_digits,  // lenient digits, also without "#"
  year,            // like `digits` with four positions and, when that fails, with two
  name,            // the first name of `names` or else of `or_names`
  marker,          // the AM or PM marker; PM adds 12 to the hour at once
  offset,          // sign, hours, minutes
  zone,            // the name of a time zone
  percent,         // the character "%"
};

/// What becomes of a number or of the index of a name before it is stored.
enum class Turn : uint8_t {
  keep,
  twelve_to_zero,
  twenty_four_to_zero,
  midnight_to_twelve,  // 0 and 24
  add,                 // `plus`
};

struct Directive {      // NOLINT(clang-analyzer-optin.performance.Padding): in the order of the columns of its tables
  const char* letters;  // all that mean this; null ends a table
  Rule rule;
  Digits number = {0, 0, 0};
  int32_t NLSParseFields::*field = nullptr;  // null: checked and dropped
  Turn turn = Turn::keep;
  int32_t plus = 0;
  NameList names = no_names, or_names = no_names;
  int32_t maximum_under_hash = 0;  // where "#" admits more; otherwise 0
};

using F = NLSParseFields;

// clang-format off
inline constexpr Directive strict_rows[] = {
    {"Yy", Rule::digits, {4, 1582, 20000}, &F::year},
    {"mo", Rule::digits, {2, 1, 12}, &F::month},
    {"de", Rule::digits, {2, 1, 31}, &F::day},
    {"H",  Rule::digits, {2, 0, 23}, &F::hour},
    {"I",  Rule::digits, {2, 1, 12}, &F::hour, Turn::twelve_to_zero},
    {"k",  Rule::digits, {2, 0, 23}, &F::hour, Turn::twenty_four_to_zero, 0, no_names, no_names, 24},
    {"l",  Rule::digits, {2, 0, 11}, &F::hour},
    {"M",  Rule::digits, {2, 0, 59}, &F::minute},
    {"S",  Rule::digits, {2, 0, 59}, &F::second},
    {"s",  Rule::digits, {3, 0, 999}, &F::milliseconds},
    {"u",  Rule::strict_digits, {1, 1, 7}},
    {"w",  Rule::strict_digits, {1, 0, 6}},
    {"aAF", Rule::name, {0, 0, 0}, nullptr, Turn::keep, 0, day_names},
    {"BC", Rule::name, {0, 0, 0}, &F::month, Turn::add, 1, month_names},
    {"b",  Rule::name, {0, 0, 0}, &F::month, Turn::add, 1, alternate_month_names},
    {"p",  Rule::marker, {0, 0, 0}, &F::marker, Turn::add, 1, markers},
    {"z",  Rule::offset},
    {"Z",  Rule::zone},
    {"%",  Rule::percent},
};

inline constexpr Directive lenient_rows[] = {
    {"YyG", Rule::year, {4, 1582, 20000}, &F::year},
    {"mo", Rule::lenient_digits, {2, 1, 12}, &F::month},
    {"de", Rule::lenient_digits, {2, 1, 31}, &F::day},
    {"HI", Rule::lenient_digits, {2, 0, 23}, &F::hour},  // %I is not folded, kept on purpose: 12 stays 12
    {"k",  Rule::lenient_digits, {2, 0, 24}, &F::hour, Turn::twenty_four_to_zero},
    {"l",  Rule::lenient_digits, {2, 0, 24}, &F::hour, Turn::midnight_to_twelve},
    {"M",  Rule::lenient_digits, {2, 0, 59}, &F::minute},
    {"S",  Rule::lenient_digits, {2, 0, 59}, &F::second},
    {"s",  Rule::lenient_digits, {3, 0, 999}, &F::milliseconds},
    {"u",  Rule::lenient_digits, {1, 1, 7}},
    {"w",  Rule::lenient_digits, {1, 0, 6}},
    {"aAFf", Rule::name, {0, 0, 0}, nullptr, Turn::keep, 0, day_names, alternate_day_names},
    {"BCb", Rule::name, {0, 0, 0}, &F::month, Turn::add, 1, month_names, alternate_month_names},
    {"qQ", Rule::name, {0, 0, 0}, &F::quarter, Turn::add, 1, quarter_names},
    {"U",  Rule::lenient_digits, {2, 0, 53}, &F::week, Turn::add, 100},
    {"V",  Rule::lenient_digits, {2, 0, 53}, &F::week, Turn::add, 200},
    {"W",  Rule::lenient_digits, {2, 0, 53}, &F::week, Turn::add, 300},
    {"p",  Rule::name, {0, 0, 0}, &F::marker, Turn::add, 1, markers},  // the hour is left to the time recogniser
    {"z",  Rule::offset},
    {"Z",  Rule::zone},
    {"%",  Rule::percent},
};
// clang-format on

/// The rows of a table by letter. Letters beyond ASCII, and those without a row, are not read.
class DirectiveSet {
 public:
  template <size_t N>
  constexpr explicit DirectiveSet(const Directive (&rows)[N]) : rows_(rows) {
    for (size_t i = 0; i < N; ++i) {
      for (const char* letter = rows[i].letters; *letter != 0; ++letter) {
        row_of_[static_cast<uint8_t>(*letter)] = static_cast<uint8_t>(i + 1);
        ++letters_;
      }
    }
  }

  constexpr bool has(VXChar letter) const { return letter < row_of_.size() && row_of_[letter] != 0; }
  /// Null when the letter is not read.
  constexpr const Directive* find(VXChar letter) const { return has(letter) ? &rows_[row_of_[letter] - 1] : nullptr; }

  /// No letter stands in two rows.
  constexpr bool answers_once() const {
    int32_t found = 0;
    for (const uint8_t row : row_of_) found += row != 0;
    return found == letters_;
  }

 private:
  const Directive* rows_;
  std::array<uint8_t, 128> row_of_{};
  int32_t letters_ = 0;
};

inline constexpr DirectiveSet strict_directives(strict_rows);
inline constexpr DirectiveSet lenient_directives(lenient_rows);
static_assert(strict_directives.answers_once() && lenient_directives.answers_once(), "two rows answer the same letter");

/// What a directive reads as digits and keeps as it is, or that it reads a name. A width of 0: neither.
struct QuickNumber {
  int16_t width, minimum;
  uint32_t span;  // from the minimum to the maximum
  int32_t NLSParseFields::*field;

  static constexpr int16_t name = -1;  // as width
  constexpr bool is_name() const { return width == name; }
};

class QuickNumbers {
 public:
  constexpr QuickNumbers(const DirectiveSet& set, Rule rule) {
    for (VXChar letter = 0; letter < numbers_.size(); ++letter) {
      // g++ with UndefinedBehaviorSanitizer compares no pointer with null in a constant.
      if (!set.has(letter)) continue;
      const Directive* const row = set.find(letter);
      if (row->rule == Rule::name) numbers_[letter].width = QuickNumber::name;
      if (row->field == nullptr || row->turn != Turn::keep) continue;
      const Digits number = row->number;
      if ((row->rule == rule && number.width == 2) || (number.width == 4 && number.maximum > 0)) {
        numbers_[letter] = {static_cast<int16_t>(number.width), static_cast<int16_t>(number.minimum),
                            static_cast<uint32_t>(number.maximum - number.minimum), row->field};
      }
    }
  }
  constexpr const QuickNumber& of(VXChar letter) const { return numbers_[letter < 128 ? letter : 0]; }

 private:
  std::array<QuickNumber, 128> numbers_{};
};

inline constexpr QuickNumbers quick_strict_numbers(strict_directives, Rule::digits);
inline constexpr QuickNumbers quick_lenient_numbers(lenient_directives, Rule::lenient_digits);

}  // namespace vxnls

#endif
