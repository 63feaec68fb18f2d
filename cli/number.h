// Numbers as the command reads them from its values and prints them: plain, without any locale.
#ifndef VXNLS_CLI_NUMBER_H
#define VXNLS_CLI_NUMBER_H

#include <cstdint>
#include <string>
#include <string_view>

namespace vxcli {

/// A value of the command: digits with "." and an exponent, inf, or a missing value (".", "._", ".A" to ".Z").
/// Throws ValueError.
double plain_number(std::string_view text);

/// The shortest text that plain_number reads as the same number; missing values as ".", "._", ".A".
std::string plain_text(double value);

/// A whole number of 64 bits, signed or not; 0x before hexadecimal digits.
struct PlainInteger {
  bool negative = false;
  uint64_t magnitude = 0;
};
PlainInteger plain_integer(std::string_view text);

/// A count given to an option. Throws Failure (usage) outside of `least` to `most`.
int32_t option_number(std::string_view option, const std::string& text, int32_t least, int32_t most);

}  // namespace vxcli

#endif
