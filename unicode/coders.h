// One character at a time between code points and bytes. Everything here stays inside the bytes it is given; the
// exported coders and the drivers are made of it.
#ifndef VXNLS_UNICODE_CODERS_H
#define VXNLS_UNICODE_CODERS_H

#include <bit>
#include <cstring>

#include "unicode/text_flavour.h"
#include "vxnls/unicode.h"

namespace vxnls {

static_assert(std::endian::native == std::endian::little, "machine order is taken to be little-endian");

template <std::endian order>
uint16_t load16(const uint8_t* at) {
  uint16_t value;
  std::memcpy(&value, at, sizeof value);
  return order == std::endian::native ? value : __builtin_bswap16(value);
}

template <std::endian order>
uint32_t load32(const uint8_t* at) {
  uint32_t value;
  std::memcpy(&value, at, sizeof value);
  return order == std::endian::native ? value : __builtin_bswap32(value);
}

template <std::endian order>
void store16(uint16_t value, uint8_t* at) {
  if (order != std::endian::native) value = __builtin_bswap16(value);
  std::memcpy(at, &value, sizeof value);
}

template <std::endian order>
void store32(uint32_t value, uint8_t* at) {
  if (order != std::endian::native) value = __builtin_bswap32(value);
  std::memcpy(at, &value, sizeof value);
}

constexpr bool is_high_surrogate(uint32_t unit) { return (unit & 0xFFFFFC00u) == 0xD800; }
constexpr bool is_low_surrogate(uint32_t unit) { return (unit & 0xFFFFFC00u) == 0xDC00; }

constexpr uint16_t high_surrogate(uint32_t c) { return static_cast<uint16_t>(0xD800 + ((c - 0x10000) >> 10)); }
constexpr uint16_t low_surrogate(uint32_t c) { return static_cast<uint16_t>(0xDC00 + (c & 0x3FF)); }

// Sources: decode() reads one character within `remaining` bytes.

using Utf8Source = Utf8Text;

template <std::endian order>
struct Utf16Source {
  static Decoded decode(const uint8_t* at, int64_t remaining) {
    if (remaining < 2) return cut_short(remaining);
    const uint32_t unit = load16<order>(at);
    if (is_low_surrogate(unit)) return {replacement_character, 2, VX_E_SEQUENCE};
    if (!is_high_surrogate(unit)) return {unit, 2, 0};
    if (remaining < 4) return cut_short(remaining);
    const uint32_t next = load16<order>(at + 2);
    if (!is_low_surrogate(next)) return {replacement_character, 4, VX_E_SEQUENCE};
    return {0x10000 + ((unit & 0x3FF) << 10 | (next & 0x3FF)), 4, 0};
  }
};

template <std::endian order>
struct Utf32Source {
  static Decoded decode(const uint8_t* at, int64_t remaining) {
    if (remaining < 4) return cut_short(remaining);
    return {load32<order>(at), 4, 0};
  }
};

// Sinks: encode() writes one character within `room` bytes, or nothing.

struct Encoded {
  int64_t written;  // bytes
  VXStatus status;  // 0 or VX_E_ROOM
};

struct Utf8Sink {
  static Encoded encode(uint32_t c, uint8_t* out, int64_t room) {
    if (room < Utf8Text::units(c)) return {0, VX_E_ROOM};
    return {Utf8Text::append(c, out), 0};
  }
};

/// The low 16 bits as UTF-8, so that a surrogate becomes three bytes.
struct Utf8UnitSink {
  static Encoded encode(uint32_t c, uint8_t* out, int64_t room) { return Utf8Sink::encode(c & 0xFFFF, out, room); }
};

/// The low 16 bits as one unit; code points above U+FFFF lose their high bits.
template <std::endian order>
struct Utf16UnitSink {
  static Encoded encode(uint32_t c, uint8_t* out, int64_t room) {
    if (room < 2) return {0, VX_E_ROOM};
    store16<order>(static_cast<uint16_t>(c), out);
    return {2, 0};
  }
};

template <std::endian order>
struct Utf16Sink {
  static Encoded encode(uint32_t c, uint8_t* out, int64_t room) {
    if (c < 0x10000) return Utf16UnitSink<order>::encode(c, out, room);
    if (room < 4) return {0, VX_E_ROOM};
    store16<order>(high_surrogate(c), out);
    store16<order>(low_surrogate(c), out + 2);
    return {4, 0};
  }
};

template <std::endian order>
struct Utf32Sink {
  static Encoded encode(uint32_t c, uint8_t* out, int64_t room) {
    if (room < 4) return {0, VX_E_ROOM};
    store32<order>(c, out);
    return {4, 0};
  }
};

// The same rules in the form of the exported coders.

template <class Source>
VXStatus decode_one(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed) {
  const Decoded c = Source::decode(in, remaining);
  *code_point = c.code_point;
  *consumed = c.consumed;
  return c.status;
}

template <class Sink>
VXStatus encode_one(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written) {
  const Encoded e = Sink::encode(code_point, out, room);
  *written = e.written;
  return e.status;
}

}  // namespace vxnls

#endif
