// Shuffles that move the wanted parts of a vector to its front, by the mask of what is wanted.
#ifndef VXNLS_UNICODE_COMPRESS_TABLES_H
#define VXNLS_UNICODE_COMPRESS_TABLES_H

#include <stdint.h>

namespace vxnls {

template <int rows, int columns>
struct ShuffleTable {
  alignas(16) uint8_t row[rows][columns];
};

inline constexpr uint8_t no_byte = 0x80;  // a shuffle writes zero for it

/// The indexes of the set bits: which of 8 lanes are wanted.
inline constexpr auto lanes_of_mask = [] {
  ShuffleTable<256, 8> table{};
  for (unsigned mask = 0; mask < 256; ++mask) {
    unsigned n = 0;
    for (uint8_t lane = 0; lane < 8; ++lane) {
      if ((mask >> lane & 1) != 0) table.row[mask][n++] = lane;
    }
  }
  return table;
}();

/// The same for 8 words, as a shuffle of bytes.
inline constexpr auto words_of_mask = [] {
  ShuffleTable<256, 16> table{};
  for (unsigned mask = 0; mask < 256; ++mask) {
    unsigned n = 0;
    for (unsigned lane = 0; lane < 8; ++lane) {
      if ((mask >> lane & 1) == 0) continue;
      table.row[mask][n++] = static_cast<uint8_t>(2 * lane);
      table.row[mask][n++] = static_cast<uint8_t>(2 * lane + 1);
    }
    while (n < 16) table.row[mask][n++] = no_byte;
  }
  return table;
}();

/// 8 words that hold one byte, or (bit set) two.
inline constexpr auto one_or_two_bytes = [] {
  ShuffleTable<256, 16> table{};
  for (unsigned mask = 0; mask < 256; ++mask) {
    unsigned n = 0;
    for (unsigned lane = 0; lane < 8; ++lane) {
      table.row[mask][n++] = static_cast<uint8_t>(2 * lane);
      if ((mask >> lane & 1) != 0) table.row[mask][n++] = static_cast<uint8_t>(2 * lane + 1);
    }
    while (n < 16) table.row[mask][n++] = no_byte;
  }
  return table;
}();

/// 4 double words that hold 1 to 4 bytes, the last byte in the low bits. Bits 0-3 of the index are the low bits of the
/// lengths less 1, bits 4-7 the high bits.
inline constexpr auto one_to_four_bytes = [] {
  ShuffleTable<256, 16> table{};
  for (unsigned mask = 0; mask < 256; ++mask) {
    unsigned n = 0;
    for (unsigned lane = 0; lane < 4; ++lane) {
      const unsigned length = 1 + (mask >> lane & 1) + 2 * (mask >> (lane + 4) & 1);
      for (unsigned byte = length; byte > 0; --byte) table.row[mask][n++] = static_cast<uint8_t>(4 * lane + byte - 1);
    }
    while (n < 16) table.row[mask][n++] = no_byte;
  }
  return table;
}();

/// 4 double words of the bytes first, middle, last, 0. Two bits each: whether the first byte is left out (the higher),
/// and the middle one too.
inline constexpr auto one_to_three_bytes = [] {
  ShuffleTable<256, 16> table{};
  for (unsigned mask = 0; mask < 256; ++mask) {
    unsigned n = 0;
    for (unsigned lane = 0; lane < 4; ++lane) {
      const unsigned left_out = (mask >> 2 * lane & 1) + (mask >> (2 * lane + 1) & 1);
      for (unsigned byte = left_out; byte < 3; ++byte) table.row[mask][n++] = static_cast<uint8_t>(4 * lane + byte);
    }
    while (n < 16) table.row[mask][n++] = no_byte;
  }
  return table;
}();

/// 4 double words that hold one word, or (bit set) two.
inline constexpr auto one_or_two_words = [] {
  ShuffleTable<16, 16> table{};
  for (unsigned mask = 0; mask < 16; ++mask) {
    unsigned n = 0;
    for (unsigned lane = 0; lane < 4; ++lane) {
      for (unsigned byte = 0; byte < ((mask >> lane & 1) != 0 ? 4 : 2); ++byte) {
        table.row[mask][n++] = static_cast<uint8_t>(4 * lane + byte);
      }
    }
    while (n < 16) table.row[mask][n++] = no_byte;
  }
  return table;
}();

}  // namespace vxnls

#endif
