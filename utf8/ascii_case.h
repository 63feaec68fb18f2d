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

}  // namespace vxnls

#endif
