// The bodies that every processor can run.
#include "unicode/transcode.h"

#include <algorithm>
#include <type_traits>

#include "unicode/coders.h"

namespace vxnls {

using enum std::endian;

namespace {

constexpr int64_t block = 8;  // characters of ASCII that are taken at once

bool ascii_block(const uint8_t* bytes) {
  uint64_t eight;
  std::memcpy(&eight, bytes, sizeof eight);
  return (eight & 0x8080808080808080u) == 0;
}

template <std::endian order>
bool ascii_block_utf32(const uint8_t* units) {
  uint32_t all = 0;
  for (int64_t i = 0; i < block; ++i) all |= load32<order>(units + 4 * i);
  return all < 0x80;
}

/// The pure ASCII at the front of both buffers, in whole blocks.
template <std::endian order>
int64_t ascii_to_utf32(const uint8_t* in, int64_t most, uint8_t* out) {
  int64_t done = 0;
  for (; most - done >= block && ascii_block(in + done); done += block) {
    for (int64_t i = done; i < done + block; ++i) store32<order>(in[i], out + 4 * i);
  }
  return done;
}

template <std::endian order>
int64_t ascii_from_utf32(const uint8_t* in, int64_t most, uint8_t* out) {
  int64_t done = 0;
  for (; most - done >= block && ascii_block_utf32<order>(in + 4 * done); done += block) {
    for (int64_t i = done; i < done + block; ++i) out[i] = static_cast<uint8_t>(load32<order>(in + 4 * i));
  }
  return done;
}

template <class Source, std::endian order>
Converted to_utf32(const uint8_t* in, int64_t length, uint8_t* out, int64_t capacity) {
  int64_t count = 0;
  while (length > 0 && count < capacity) {
    if constexpr (std::is_same_v<Source, Utf8Source>) {
      const int64_t ascii = ascii_to_utf32<order>(in, std::min(length, capacity - count), out + 4 * count);
      in += ascii;
      length -= ascii;
      count += ascii;
      if (length == 0 || count == capacity) break;
    }
    const Decoded c = Source::decode(in, length);
    if (c.status != 0) return {count, c.status};
    in += c.consumed;
    length -= c.consumed;
    store32<order>(c.code_point, out + 4 * count);
    ++count;
  }
  return {count, 0};
}

template <class Sink, std::endian order>
Converted from_utf32(const uint8_t* in, int64_t characters, uint8_t* out, int64_t room) {
  int64_t bytes = 0;
  int64_t at = 0;
  while (at < characters && bytes < room) {
    if constexpr (std::is_same_v<Sink, Utf8Sink>) {
      const int64_t ascii = ascii_from_utf32<order>(in + 4 * at, std::min(characters - at, room - bytes), out + bytes);
      at += ascii;
      bytes += ascii;
      if (at == characters || bytes == room) break;
    }
    const Encoded e = Sink::encode(load32<order>(in + 4 * at), out + bytes, room - bytes);
    if (e.status != 0) return {bytes, e.status};
    bytes += e.written;
    ++at;
  }
  return {bytes, 0};
}

int64_t utf8_length(const VXChar* text, int64_t count) {
  int64_t bytes = 0;
  for (int64_t i = 0; i < count; ++i) bytes += Utf8Text::units(text[i]);
  return bytes;
}

template <class Source>
constexpr ByOrder<ToUtf32Body> from_form = {&to_utf32<Source, little>, &to_utf32<Source, big>};
template <class Sink>
constexpr ByOrder<FromUtf32Body> to_form = {&from_utf32<Sink, little>, &from_utf32<Sink, big>};

}  // namespace

template <std::endian in_order, std::endian out_order>
Converted copy_to_utf32(const uint8_t* in, int64_t length, uint8_t* out, int64_t capacity) {
  return to_utf32<Utf32Source<in_order>, out_order>(in, length, out, capacity);
}

template <std::endian in_order, std::endian out_order>
Converted copy_from_utf32(const uint8_t* in, int64_t characters, uint8_t* out, int64_t room) {
  return from_utf32<Utf32Sink<out_order>, in_order>(in, characters, out, room);
}

constinit const Transcoders generic_transcoders = {
    .from_utf8 = from_form<Utf8Source>,
    .from_utf16_little = from_form<Utf16Source<little>>,
    .from_utf16_big = from_form<Utf16Source<big>>,
    .from_utf32_little = {&copy_to_utf32<little, little>, &copy_to_utf32<little, big>},
    .from_utf32_big = {&copy_to_utf32<big, little>, &copy_to_utf32<big, big>},
    .to_utf8 = to_form<Utf8Sink>,
    .to_utf16_little = to_form<Utf16Sink<little>>,
    .to_utf16_big = to_form<Utf16Sink<big>>,
    .to_utf32_little = {&copy_from_utf32<little, little>, &copy_from_utf32<big, little>},
    .to_utf32_big = {&copy_from_utf32<little, big>, &copy_from_utf32<big, big>},
    .utf8_length = &utf8_length,
};

}  // namespace vxnls
