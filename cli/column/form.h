// Forms of dates, times and periods: patterns cut into the pieces that the library's readers take.
//
// A form is written as one pattern. Its directives are the library's, with these meanings in a column:
//
//   %d %m    day, month: one or two digits (two in strict columns, unless with "#")
//   %Y %y    year of four digits, of two
//   %b %B    a full or abbreviated name of a month        %A   of a week day; first in the pattern, it must be right
//   %H %I    hour of 24, of 12                            %p   AM or PM
//   %M %S    minute; second, a fraction may follow it     %z   an offset, Z, UTC or GMT; last in the pattern
//   %q       a quarter by its name, or Q1 to Q4           %V   ISO week
#ifndef VXNLS_CLI_COLUMN_FORM_H
#define VXNLS_CLI_COLUMN_FORM_H

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/column/profile.h"
#include "vxnls/types.h"

namespace vxcli::column {

/// A run of directives that one call of the library reads.
struct Piece {
  struct Token {
    enum class What : uint8_t { number, name, literal } what = What::literal;
    uint8_t least = 0, most = 0;  // digits of a number
    bool blanks = false;          // blanks may stand before a number
    char byte = 0;                // of a literal
  };
  uint32_t id = 0;  ///< another for each piece that is made; copies share it
  NLSName units{};  ///< the pattern as the library gets it
  bool lenient = false;
  bool names = false;     ///< what it reads depends on the locale's names
  uint8_t year_digits{};  ///< to be looked for in what was read; 0: the tokens have seen to it
  std::vector<Token> tokens;

  /// How many tokens the text can begin with: numbers of the right width and literals, up to and with the first name.
  size_t like(std::string_view text) const;
  /// Whether it can begin with all of them, or up to a name.
  bool fits(std::string_view text) const { return like(text) >= wanted; }

  size_t wanted = 0;  ///< the tokens up to the first name, or all
};

/// The ways to read a date: one, or one for each order.
struct DateForm {
  Order order = Order::none;  ///< of the pattern as written; none: it tells no order
  std::string pattern;
  std::array<Piece, 4> pieces;  ///< by Order; of an orderless form only the first
  bool two_digits = false;      ///< of the year; only such may be year-first
  bool names = false;

  bool has(Order which) const;
  /// The pattern as it reads in an order.
  std::string pattern_in(Order which) const;
};

struct TimeForm {
  std::string pattern;
  Piece piece;
  bool marker_first = false;  ///< AM or PM before the hour: such a text must end with the time
  bool names = false;
};

struct PeriodForm {
  enum class Length : uint8_t { month, quarter, week } length = Length::month;
  std::string pattern;
  Piece piece;
};

/// A whole form.
struct Form {
  std::string pattern;
  Kind kind = Kind::text;
  std::optional<std::string> after_weekday;  ///< a week day stands first, and this behind it
  std::optional<DateForm> date;
  std::string between;  ///< date and time
  std::optional<TimeForm> time;
  bool offset = false;  ///< one must follow the time; none may otherwise
  std::optional<PeriodForm> period;
};

DateForm make_date_form(std::string_view pattern, bool strict);
TimeForm make_time_form(std::string_view pattern, bool strict);
PeriodForm make_period_form(std::string_view pattern, bool strict);

/// Throws ValueError saying what is wrong with the pattern.
Form parse_form(std::string_view pattern, bool strict);

/// The forms of a decision. Throws ValueError that names the form: where parse_form does, where a form is of another
/// kind than the column, and where it has day and month in another order than the one decided for.
std::vector<Form> parse_forms(const Decision& decision);

/// The pattern with names and their surroundings as cleaned texts have them, and without "#".
std::string plain_pattern(std::string_view pattern);

/// A literal of a pattern at the start of the text: a blank stands for one or more, letters may have any case. The
/// bytes that it takes, npos when it does not stand there.
size_t literal_length(std::string_view literal, std::string_view text);

/// The forms that are tried in any column, in order.
extern const std::span<const std::string_view> numeric_dates, named_dates, numeric_times, named_times, periods,
    connectors;
/// Only where a date was asked for.
inline constexpr std::string_view basic_date = "%Y%m%d";

}  // namespace vxcli::column

#endif
