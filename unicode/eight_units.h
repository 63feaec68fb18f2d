// Short texts in whole blocks: eight units at a time as the bytes of a register, and copies whose instructions do not
// depend on the length. A loop over single units costs a mispredicted branch whenever the length changes.
#ifndef VXNLS_UNICODE_EIGHT_UNITS_H
#define VXNLS_UNICODE_EIGHT_UNITS_H

#include <bit>
#include <cstring>

#include "vxnls/types.h"

// The blocks have a body in plain C++ too, which a test builds and holds against this one.
#ifndef VXNLS_BLOCKS_BY_SSE2
#ifdef __SSE2__
#define VXNLS_BLOCKS_BY_SSE2 1
#else
#define VXNLS_BLOCKS_BY_SSE2 0
#endif
#endif
#if VXNLS_BLOCKS_BY_SSE2
#include <emmintrin.h>
#endif

namespace vxnls {

/// Eight characters of one byte each; the first is the lowest byte.
using Eight = uint64_t;

/// `c` eight times.
constexpr Eight eight_of(uint8_t c) { return c * UINT64_C(0x0101010101010101); }

/// The value that memory gives, or takes, with the first byte lowest.
constexpr Eight little_endian(Eight bytes) {
  return std::endian::native == std::endian::little ? bytes : __builtin_bswap64(bytes);
}

/// One, four or eight units as bytes; what is no byte becomes one that is not ASCII, or 0.
inline Eight take_one(const uint8_t* from) { return *from; }
inline Eight take_four(const uint8_t* from) {
  uint32_t bytes;
  std::memcpy(&bytes, from, sizeof bytes);
  return std::endian::native == std::endian::little ? bytes : __builtin_bswap32(bytes);
}
inline Eight take_eight(const uint8_t* from) {
  Eight bytes;
  std::memcpy(&bytes, from, sizeof bytes);
  return little_endian(bytes);
}

inline Eight take_one(const VXChar* from) { return *from <= 0xFF ? *from : 0xFF; }
inline Eight take_four(const VXChar* from) {
#if VXNLS_BLOCKS_BY_SSE2
  const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  const __m128i words = _mm_packs_epi32(units, units);
  return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
#else
  return take_one(from) | take_one(from + 1) << 8 | take_one(from + 2) << 16 | take_one(from + 3) << 24;
#endif
}
inline Eight take_eight(const VXChar* from) {
#if VXNLS_BLOCKS_BY_SSE2
  const auto* const place = reinterpret_cast<const __m128i*>(from);
  const __m128i words = _mm_packs_epi32(_mm_loadu_si128(place), _mm_loadu_si128(place + 1));
  return static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(words, words)));
#else
  return take_four(from) | take_four(from + 4) << 32;
#endif
}

inline void put_eight(uint8_t* out, Eight bytes) {
  bytes = little_endian(bytes);
  std::memcpy(out, &bytes, sizeof bytes);
}

/// The first four characters alone.
inline void put_four(uint8_t* out, Eight bytes) {
  bytes = little_endian(bytes);
  std::memcpy(out, &bytes, 4);
}

inline void put_eight(VXChar* out, Eight bytes) {
#if VXNLS_BLOCKS_BY_SSE2
  const __m128i zero = _mm_setzero_si128();
  const __m128i pairs = _mm_unpacklo_epi8(_mm_cvtsi64_si128(static_cast<long long>(bytes)), zero);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi16(pairs, zero));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4), _mm_unpackhi_epi16(pairs, zero));
#else
  for (int i = 0; i < 8; ++i) out[i] = static_cast<uint8_t>(bytes >> 8 * i);
#endif
}

inline void put_four(VXChar* out, Eight bytes) {
#if VXNLS_BLOCKS_BY_SSE2
  const __m128i zero = _mm_setzero_si128();
  const __m128i pairs = _mm_unpacklo_epi8(_mm_cvtsi64_si128(static_cast<long long>(bytes)), zero);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi16(pairs, zero));
#else
  for (int i = 0; i < 4; ++i) out[i] = static_cast<uint8_t>(bytes >> 8 * i);
#endif
}

/// Writes `count` units, a multiple of 8, as bytes; false when one of them is not ASCII.
template <int64_t count>
bool narrow(const VXChar* from, uint8_t* out) {
  static_assert(count % 8 == 0);
#if VXNLS_BLOCKS_BY_SSE2
  __m128i all = _mm_setzero_si128();
  for (int64_t i = 0; i < count; i += 8) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i + 4));
    const __m128i words = _mm_packs_epi32(low, high);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(words, words));
    all = _mm_or_si128(all, _mm_or_si128(low, high));
  }
  const __m128i above = _mm_srli_epi32(all, 7);
  return _mm_movemask_epi8(_mm_cmpeq_epi32(above, _mm_setzero_si128())) == 0xFFFF;
#else
  VXChar all = 0;
  for (int64_t i = 0; i < count; ++i) {
    all |= from[i];
    out[i] = static_cast<uint8_t>(from[i]);
  }
  return all < 0x80;
#endif
}

template <int64_t count, class Unit>
[[gnu::always_inline]] inline void copy_block(Unit* out, const Unit* from) {
  std::memcpy(out, from, count * sizeof(Unit));
}

/// Copies exactly `count` units (0 or more): by two blocks that overlap, where it takes no more than 32.
template <class Unit>
void copy_units(Unit* out, const Unit* from, int64_t count) {
  if (count >= 16) {
    if (count > 32) {
      std::memcpy(out, from, static_cast<size_t>(count) * sizeof(Unit));
      return;
    }
    copy_block<16>(out, from);
    copy_block<16>(out + count - 16, from + count - 16);
  } else if (count >= 8) {
    copy_block<8>(out, from);
    copy_block<8>(out + count - 8, from + count - 8);
  } else if (count >= 4) {
    copy_block<4>(out, from);
    copy_block<4>(out + count - 4, from + count - 4);
  } else if (count > 0) {
    const Unit first = from[0], middle = from[count / 2], last = from[count - 1];
    out[0] = first;
    out[count / 2] = middle;
    out[count - 1] = last;
  }
}

/// All ones for `count` units, then zeros: read from the middle, a mask of the units that come first.
template <class Unit, int64_t count>
struct LeadingUnits {
  Unit of[2 * count];
};

template <class Unit, int64_t count>
inline constexpr LeadingUnits<Unit, count> leading_units = [] {
  LeadingUnits<Unit, count> masks{};
  for (int64_t i = 0; i < count; ++i) masks.of[i] = static_cast<Unit>(-1);
  return masks;
}();

/// Copies `count` units, of which there are seldom more than `usual`, into a buffer of `room`; as many as `usual` can
/// be read, and 16 bytes more. What stands in the buffer behind the text stays: where there is room, it is read and
/// written back as it was, which spares the branches of a copy by length.
template <int64_t usual, class Unit>
void put_units(Unit* out, [[maybe_unused]] int64_t room, const Unit* from, int64_t count) {
#if VXNLS_BLOCKS_BY_SSE2
  constexpr int64_t block = 16 / sizeof(Unit), blocks = (usual + block - 1) / block, most = block * blocks;
  if (room >= most && count <= most) {
    for (int64_t at = 0; at < most; at += block) {
      auto* const place = reinterpret_cast<__m128i*>(out + at);
      const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at));
      const __m128i mask =
          _mm_loadu_si128(reinterpret_cast<const __m128i*>(leading_units<Unit, most>.of + most - count + at));
      _mm_storeu_si128(place, _mm_or_si128(_mm_and_si128(mask, text), _mm_andnot_si128(mask, _mm_loadu_si128(place))));
    }
    return;
  }
#endif
  copy_units(out, from, count);
}

}  // namespace vxnls

#endif
