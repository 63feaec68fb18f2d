// Case of one byte: the 26 letters of ASCII, every other byte is itself.
#ifndef VXNLS_UTF8_ASCII_CASE_H
#define VXNLS_UTF8_ASCII_CASE_H

#include "unicode/utf8_tables.h"

namespace vxnls {

constexpr uint8_t ascii_lower(uint8_t byte) {
  return static_cast<uint8_t>(byte + (static_cast<uint8_t>(byte - 'A') < 26) * ('a' - 'A'));
}
constexpr uint8_t ascii_upper(uint8_t byte) {
  return static_cast<uint8_t>(byte - (static_cast<uint8_t>(byte - 'a') < 26) * ('a' - 'A'));
}

/// The same for eight bytes at once: the 26 letters from `first` on with their case bit turned.
template <uint8_t first>
constexpr uint64_t turn_eight(uint64_t bytes) {
  constexpr uint64_t ones = 0x0101010101010101, tops = 0x80 * ones;
  const uint64_t low = bytes & ~tops;  // no sum of a column runs into the next one
  const uint64_t from_first = low + (0x80 - first) * ones, behind_last = low + (0x80 - first - 26) * ones;
  return bytes ^ (from_first & ~behind_last & ~bytes & tops) >> 2;
}

}  // namespace vxnls

#endif
