// What the bytes of UTF-8 announce, by byte. Readers take lengths and validity from here and nowhere else.
#ifndef VXNLS_UNICODE_UTF8_TABLES_H
#define VXNLS_UNICODE_UTF8_TABLES_H

#include <stdint.h>

namespace vxnls {

/// One small number for every byte.
struct ByteTable {
  uint8_t entry[256];
  constexpr uint8_t operator[](uint8_t byte) const { return entry[byte]; }
};

template <class Rule>
constexpr ByteTable byte_table(Rule rule) {
  ByteTable table{};
  for (unsigned byte = 0; byte < 256; ++byte) table.entry[byte] = static_cast<uint8_t>(rule(byte));
  return table;
}

/// The length that a lead announces. Continuation bytes stand alone; the leads F8 to FF still announce 5 and 6.
inline constexpr ByteTable bytesFromUTF8 = byte_table([](unsigned byte) {
  return byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : byte < 0xF8 ? 4 : byte < 0xFC ? 5 : 6;
});

/// 1 for a byte that may begin a character: 00-7F and C2-F4.
inline constexpr ByteTable valid_1st_utf8 =
    byte_table([](unsigned byte) { return byte < 0x80 || (byte >= 0xC2 && byte <= 0xF4) ? 1 : 0; });

/// 1 for a continuation byte: 80-BF.
inline constexpr ByteTable valid_2nd_utf8 =
    byte_table([](unsigned byte) { return byte >= 0x80 && byte <= 0xBF ? 1 : 0; });

}  // namespace vxnls

#endif
