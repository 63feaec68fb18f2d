#include "cli/number.h"

#include <bit>
#include <charconv>
#include <cmath>

#include "cli/errors.h"
#include "cli/text.h"
#include "vxnls/bytes.h"

namespace vxcli {

namespace {

bool is_letter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

}  // namespace

double plain_number(std::string_view text) {
  text = without_blanks(text);
  if (text == ".") return qmMissVal('.');
  if (text.size() == 2 && text[0] == '.' && (text[1] == '_' || is_letter(text[1]))) {
    return qmMissVal(static_cast<uint8_t>(text[1]));
  }
  std::string_view digits = text;
  const bool plus = digits.starts_with('+') && digits.size() > 1 && digits[1] != '-';
  if (plus) digits.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error == std::errc::result_out_of_range) refuse("the number is too large or too small for a double");
  if (error != std::errc{} || end != digits.data() + digits.size() || std::isnan(value)) {
    refuse("not a number as 1234567.891, 1e6, inf, or a missing value as . or .A");
  }
  return value;
}

std::string plain_text(double value) {
  if (std::isnan(value)) {
    const auto code = (0 - (std::bit_cast<uint64_t>(value) >> 40)) & 0xFF;
    if (code == 1) return "._";
    if (code >= 3 && code <= 28) return {'.', static_cast<char>(code + 0x3E)};
    return ".";
  }
  return fmt::format("{}", value);
}

PlainInteger plain_integer(std::string_view text) {
  text = without_blanks(text);
  PlainInteger number;
  number.negative = text.starts_with('-');
  if (number.negative || text.starts_with('+')) text.remove_prefix(1);
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), number.magnitude, hexadecimal ? 16 : 10);
  const bool too_large = error == std::errc::result_out_of_range ||
                         (number.negative && error == std::errc{} && number.magnitude > uint64_t{1} << 63);
  if (too_large) refuse("the number is outside -9223372036854775808 to 18446744073709551615");
  if (error != std::errc{} || end != text.data() + text.size()) refuse("not a whole number as -12, 255 or 0xFF");
  return number;
}

int32_t option_number(std::string_view option, const std::string& text, int32_t least, int32_t most) {
  int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || value < least || value > most) {
    fail(ExitCode::usage, "{} {}: a number from {} to {} is wanted", option, in_quotes(text), least, most);
  }
  return value;
}

}  // namespace vxcli
