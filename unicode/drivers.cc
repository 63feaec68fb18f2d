// The drivers run a decoder and an encoder over a buffer. Pairs of the library's own coders are known by their
// addresses and take a body of their own, which gives the same outputs, counts and status as the one step a character.
#include <algorithm>
#include <type_traits>

#include "unicode/coders.h"

using namespace vxnls;
using enum std::endian;

namespace {

/// How far a driver came.
struct Converted {
  int64_t count;  // characters written to UTF-32, bytes written from it
  VXStatus status;
};

// One step a character
// ---------------------------------------------------------------------------------------------------

/// The coders that may leave their buffers when they are called by themselves are replaced by the ones that never do.
VXDecoder within_bounds(VXDecoder decoder) { return decoder == &UTF8_UTF32 ? &decode_one<Utf8Source> : decoder; }

VXEncoder within_bounds(VXEncoder encoder) {
  if (encoder == &UTF32_UTF8) return &encode_one<Utf8Sink>;
  if (encoder == &UTF16_UTF8) return &encode_one<Utf8UnitSink>;
  if (encoder == &UTF32_UTF16) return &encode_one<Utf16UnitSink<little>>;
  if (encoder == &UTF32_UTF16_SWAP) return &encode_one<Utf16UnitSink<big>>;
  if (encoder == &UTF32_UTF16s) return &encode_one<Utf16Sink<little>>;
  if (encoder == &UTF32_UTF16s_SWAP) return &encode_one<Utf16Sink<big>>;
  return encoder;
}

/// What a caller's coder says that it used, held to what it was given.
int64_t used(int64_t reported, int64_t given) { return std::clamp<int64_t>(reported, 0, given); }

Converted step_to_utf32(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, VXDecoder decoder,
                        VXEncoder encoder) {
  decoder = within_bounds(decoder);
  encoder = within_bounds(encoder);
  const int64_t size = room;
  const int64_t capacity = size / 4;
  int64_t count = 0;
  while (length > 0 && count < capacity) {
    uint32_t code_point = replacement_character;
    int64_t consumed = 0;
    if (const VXStatus status = decoder(in, length, &code_point, &consumed)) return {count, status};
    consumed = used(consumed, length);
    in += consumed;
    length -= consumed;
    // The room shrinks by what the encoder writes, but the output advances by four bytes: the nearer end holds.
    const int64_t offered = std::max<int64_t>(std::min(room, size - 4 * count), 0);
    int64_t written = 0;
    if (const VXStatus status = encoder(code_point, out + 4 * count, offered, &written)) return {count, status};
    room -= used(written, offered);
    ++count;
  }
  return {count, 0};
}

Converted step_from_utf32(const uint8_t* in, int64_t characters, uint8_t* out, int64_t room, VXEncoder encoder,
                          VXReader reader) {
  encoder = within_bounds(encoder);
  int64_t bytes = 0;
  for (int64_t i = 0; i < characters && bytes < room; ++i) {
    int64_t written = 0;
    if (const VXStatus status = encoder(reader(in + 4 * i), out + bytes, room - bytes, &written))
      return {bytes, status};
    bytes += used(written, room - bytes);
  }
  return {bytes, 0};
}

// Bodies of known pairs
// --------------------------------------------------------------------------------------------------

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
Converted body_to_utf32(const uint8_t* in, int64_t length, uint8_t* out, int64_t capacity) {
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
Converted body_from_utf32(const uint8_t* in, int64_t characters, uint8_t* out, int64_t room) {
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

struct PairToUtf32 {
  VXDecoder decoder;
  VXEncoder encoder;
  Converted (*body)(const uint8_t* in, int64_t length, uint8_t* out, int64_t capacity);
};

const PairToUtf32 pairs_to_utf32[] = {
    {&UTF8_UTF32, &COPY_UTF32_SWAP, &body_to_utf32<Utf8Source, little>},
    {&UTF8_UTF32, &COPY_UTF32, &body_to_utf32<Utf8Source, big>},
    {&UTF16_UTF32_SWAP, &COPY_UTF32_SWAP, &body_to_utf32<Utf16Source<little>, little>},
    {&UTF16_UTF32_SWAP, &COPY_UTF32, &body_to_utf32<Utf16Source<little>, big>},
    {&UTF16_UTF32, &COPY_UTF32_SWAP, &body_to_utf32<Utf16Source<big>, little>},
    {&UTF16_UTF32, &COPY_UTF32, &body_to_utf32<Utf16Source<big>, big>},
    {&COPY_UTF32b_SWAP, &COPY_UTF32_SWAP, &body_to_utf32<Utf32Source<little>, little>},
    {&COPY_UTF32b_SWAP, &COPY_UTF32, &body_to_utf32<Utf32Source<little>, big>},
    {&COPY_UTF32b, &COPY_UTF32_SWAP, &body_to_utf32<Utf32Source<big>, little>},
    {&COPY_UTF32b, &COPY_UTF32, &body_to_utf32<Utf32Source<big>, big>},
};

struct PairFromUtf32 {
  VXEncoder encoder;
  VXReader reader;
  Converted (*body)(const uint8_t* in, int64_t characters, uint8_t* out, int64_t room);
};

const PairFromUtf32 pairs_from_utf32[] = {
    {&UTF32_UTF8, &Byte2DWord, &body_from_utf32<Utf8Sink, little>},
    {&UTF32_UTF8, &Byte2DWord_swap, &body_from_utf32<Utf8Sink, big>},
    {&UTF32_UTF16s, &Byte2DWord, &body_from_utf32<Utf16Sink<little>, little>},
    {&UTF32_UTF16s, &Byte2DWord_swap, &body_from_utf32<Utf16Sink<little>, big>},
    {&UTF32_UTF16s_SWAP, &Byte2DWord, &body_from_utf32<Utf16Sink<big>, little>},
    {&UTF32_UTF16s_SWAP, &Byte2DWord_swap, &body_from_utf32<Utf16Sink<big>, big>},
    {&COPY_UTF32_SWAP, &Byte2DWord, &body_from_utf32<Utf32Sink<little>, little>},
    {&COPY_UTF32_SWAP, &Byte2DWord_swap, &body_from_utf32<Utf32Sink<little>, big>},
    {&COPY_UTF32, &Byte2DWord, &body_from_utf32<Utf32Sink<big>, little>},
    {&COPY_UTF32, &Byte2DWord_swap, &body_from_utf32<Utf32Sink<big>, big>},
};

Converted to_utf32(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, VXDecoder decoder,
                   VXEncoder encoder) {
  if (length <= 0 || room < 4) return {0, 0};
  if (in == nullptr || out == nullptr || decoder == nullptr || encoder == nullptr) return {0, VX_E_NULL};
  for (const PairToUtf32& pair : pairs_to_utf32) {
    if (pair.decoder == decoder && pair.encoder == encoder) return pair.body(in, length, out, room / 4);
  }
  return step_to_utf32(in, length, out, room, decoder, encoder);
}

Converted from_utf32(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, VXEncoder encoder,
                     VXReader reader) {
  if (length < 4 || room <= 0) return {0, 0};
  if (in == nullptr || out == nullptr || encoder == nullptr || reader == nullptr) return {0, VX_E_NULL};
  for (const PairFromUtf32& pair : pairs_from_utf32) {
    if (pair.encoder == encoder && pair.reader == reader) return pair.body(in, length / 4, out, room);
  }
  return step_from_utf32(in, length / 4, out, room, encoder, reader);
}

}  // namespace

VXStatus ConvertToUTF32(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written,
                        VXDecoder decoder, VXEncoder encoder) {
  const Converted done = to_utf32(in, length, out, room, decoder, encoder);
  if (written != nullptr) *written = 4 * done.count;
  return done.status;
}

VXStatus ConvertFromUTF32(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written,
                          VXEncoder encoder, VXReader reader) {
  const Converted done = from_utf32(in, length, out, room, encoder, reader);
  if (written != nullptr) *written = done.count;
  return done.status;
}
