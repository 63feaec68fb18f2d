// The drivers run a decoder and an encoder over a buffer. Pairs of the library's own coders are known by their
// addresses and take a body of their own (unicode/transcode.h), which gives the same outputs, counts and status as the
// one step a character.
#include <algorithm>

#include "unicode/coders.h"
#include "unicode/transcode.h"

using namespace vxnls;
using enum std::endian;

namespace {

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

// Known pairs
// ---------------------------------------------------------------------------------------------------------

struct PairToUtf32 {
  VXDecoder decoder;
  VXEncoder encoder;
  ByOrder<ToUtf32Body> Transcoders::*form;
  ToUtf32Body* ByOrder<ToUtf32Body>::*order;
};

constexpr auto to_little = &ByOrder<ToUtf32Body>::little, to_big = &ByOrder<ToUtf32Body>::big;
constexpr PairToUtf32 pairs_to_utf32[] = {
    {&UTF8_UTF32, &COPY_UTF32_SWAP, &Transcoders::from_utf8, to_little},
    {&UTF8_UTF32, &COPY_UTF32, &Transcoders::from_utf8, to_big},
    {&UTF16_UTF32_SWAP, &COPY_UTF32_SWAP, &Transcoders::from_utf16_little, to_little},
    {&UTF16_UTF32_SWAP, &COPY_UTF32, &Transcoders::from_utf16_little, to_big},
    {&UTF16_UTF32, &COPY_UTF32_SWAP, &Transcoders::from_utf16_big, to_little},
    {&UTF16_UTF32, &COPY_UTF32, &Transcoders::from_utf16_big, to_big},
    {&COPY_UTF32b_SWAP, &COPY_UTF32_SWAP, &Transcoders::from_utf32_little, to_little},
    {&COPY_UTF32b_SWAP, &COPY_UTF32, &Transcoders::from_utf32_little, to_big},
    {&COPY_UTF32b, &COPY_UTF32_SWAP, &Transcoders::from_utf32_big, to_little},
    {&COPY_UTF32b, &COPY_UTF32, &Transcoders::from_utf32_big, to_big},
};

struct PairFromUtf32 {
  VXEncoder encoder;
  VXReader reader;
  ByOrder<FromUtf32Body> Transcoders::*form;
  FromUtf32Body* ByOrder<FromUtf32Body>::*order;
};

constexpr auto from_little = &ByOrder<FromUtf32Body>::little, from_big = &ByOrder<FromUtf32Body>::big;
constexpr PairFromUtf32 pairs_from_utf32[] = {
    {&UTF32_UTF8, &Byte2DWord, &Transcoders::to_utf8, from_little},
    {&UTF32_UTF8, &Byte2DWord_swap, &Transcoders::to_utf8, from_big},
    {&UTF32_UTF16s, &Byte2DWord, &Transcoders::to_utf16_little, from_little},
    {&UTF32_UTF16s, &Byte2DWord_swap, &Transcoders::to_utf16_little, from_big},
    {&UTF32_UTF16s_SWAP, &Byte2DWord, &Transcoders::to_utf16_big, from_little},
    {&UTF32_UTF16s_SWAP, &Byte2DWord_swap, &Transcoders::to_utf16_big, from_big},
    {&COPY_UTF32_SWAP, &Byte2DWord, &Transcoders::to_utf32_little, from_little},
    {&COPY_UTF32_SWAP, &Byte2DWord_swap, &Transcoders::to_utf32_little, from_big},
    {&COPY_UTF32, &Byte2DWord, &Transcoders::to_utf32_big, from_little},
    {&COPY_UTF32, &Byte2DWord_swap, &Transcoders::to_utf32_big, from_big},
};

Converted to_utf32(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, VXDecoder decoder,
                   VXEncoder encoder) {
  if (length <= 0 || room < 4) return {0, 0};
  if (in == nullptr || out == nullptr || decoder == nullptr || encoder == nullptr) return {0, VX_E_NULL};
  for (const PairToUtf32& pair : pairs_to_utf32) {
    if (pair.decoder == decoder && pair.encoder == encoder) {
      return (transcoders().*pair.form.*pair.order)(in, length, out, room / 4);
    }
  }
  return step_to_utf32(in, length, out, room, decoder, encoder);
}

Converted from_utf32(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, VXEncoder encoder,
                     VXReader reader) {
  if (length < 4 || room <= 0) return {0, 0};
  if (in == nullptr || out == nullptr || encoder == nullptr || reader == nullptr) return {0, VX_E_NULL};
  for (const PairFromUtf32& pair : pairs_from_utf32) {
    if (pair.encoder == encoder && pair.reader == reader) {
      return (transcoders().*pair.form.*pair.order)(in, length / 4, out, room);
    }
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
