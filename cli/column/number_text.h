// What the text of a number says before it is known which character is the decimal point.
#ifndef VXNLS_CLI_COLUMN_NUMBER_TEXT_H
#define VXNLS_CLI_COLUMN_NUMBER_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/column/outcome.h"
#include "cli/column/profile.h"
#include "vxnls/types.h"

namespace vxcli::column {

/// One way to read the digits.
struct NumberReading {
  bool possible = false;
  bool whole = false;  ///< no decimal point and no exponent
  VXChar decimal_point = 0;
  VXChar group_separator = 0;  ///< that stands there; 0: none
};

/// A number as it stands in a cleaned text:
///   sign  currency or percent sign  digits with points and separators  exponent  percent sign or currency  sign
/// with blanks between these, or all of it in parentheses, which make it negative as a minus behind it does.
/// Groups have three digits; those that "," separates may have two before the last three (12,34,567). No group begins
/// the number with a zero. "'" and blanks separate groups only; U+066B and U+066C are point and separator in any
/// column.
struct NumberText {
  bool negative = false;
  std::string_view digits;     ///< from the first digit or point to the end of the exponent
  std::string_view unit;       ///< empty: none
  size_t exponent = 0;         ///< where in `digits` its letter stands; the size of `digits` without one
  NumberReading point, comma;  ///< with "." and with "," as decimal point
  bool differ = false;         ///< both are possible and say different things

  /// False where the text is no number under either; `fault` is the first byte that cannot stand there.
  bool scan(std::string_view text, std::string_view own_currency, size_t& fault);

  /// A sign, digits, "." and an exponent, whatever was in between.
  void append_plain(const NumberReading& reading, std::string& out) const;
};

/// What of a number decides how it is taken, as bits.
using NumberBits = uint16_t;
inline constexpr size_t number_bits = 9;
NumberBits bits_of(const NumberText& number);

/// The same, named.
struct NumberTraits {
  bool by_point, by_comma;  ///< can be read with "." or "," as decimal point
  bool differ;              ///< and says two things
  bool whole_by_point, whole_by_comma;
  bool comma_groups, point_groups, blank_groups, apostrophe_groups;  ///< in one of the readings
};
NumberTraits traits_of(NumberBits bits);

/// How numbers are taken in a column: what a Decision says about them.
struct NumberRule {
  VXChar decimal_point = 0;  ///< 0: not decided
  bool any_separator = true;
  bool dot = false, comma = false, blank = false, apostrophe = false;  ///< the separators of groups, where not any
  bool whole = false;                                                  ///< integers only
  std::string unit;

  explicit NumberRule(const Decision& decision);
  Outcome judge(NumberBits bits, std::string_view unit_of_number) const;
};

}  // namespace vxcli::column

#endif
