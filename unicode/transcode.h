// Whole buffers between UTF-32 and the other forms, in the variants that processors allow. Every variant gives what one
// step a character by the coders gives: the same outputs, counts and status, and nothing written behind them.
#ifndef VXNLS_UNICODE_TRANSCODE_H
#define VXNLS_UNICODE_TRANSCODE_H

#include <bit>

#include "unicode/processor.h"
#include "vxnls/types.h"

namespace vxnls {

/// How far a body came.
struct Converted {
  int64_t count;  // characters written to UTF-32, bytes written from it
  VXStatus status;
};

using ToUtf32Body = Converted(const uint8_t* in, int64_t length, uint8_t* out, int64_t capacity);
using FromUtf32Body = Converted(const uint8_t* in, int64_t characters, uint8_t* out, int64_t room);

/// A body for either byte order of the UTF-32 side.
template <class Body>
struct ByOrder {
  Body *little, *big;
};

struct Transcoders {
  ByOrder<ToUtf32Body> from_utf8, from_utf16_little, from_utf16_big, from_utf32_little, from_utf32_big;
  ByOrder<FromUtf32Body> to_utf8, to_utf16_little, to_utf16_big, to_utf32_little, to_utf32_big;
  /// The bytes that `count` code points take as UTF-8.
  int64_t (*utf8_length)(const VXChar* text, int64_t count);
};

/// UTF-32 in either order to UTF-32 in either order: the same for every processor.
template <std::endian in_order, std::endian out_order>
ToUtf32Body copy_to_utf32;
template <std::endian in_order, std::endian out_order>
FromUtf32Body copy_from_utf32;

extern const Transcoders generic_transcoders;
#if VXNLS_HAS_AVX2_VARIANTS
extern const Transcoders avx2_transcoders;
#endif

/// The best that this processor can run.
inline const Transcoders& transcoders() {
#if VXNLS_HAS_AVX2_VARIANTS
  if (processor_has_avx2()) return avx2_transcoders;
#endif
  return generic_transcoders;
}

}  // namespace vxnls

#endif
