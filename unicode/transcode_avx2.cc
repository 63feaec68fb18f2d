// The bodies for AVX2. A block of 32 units is looked at as a whole: what its characters are is computed at every
// position, and the positions where one begins are moved together. Stores run over the end of what a block gives, and
// that is made good by the block behind it, which is therefore looked at before; where there is none, the block is
// converted beside the buffer. What does not fit the pattern is left to one step by the plain coder.
#include "unicode/transcode.h"

#if VXNLS_HAS_AVX2_VARIANTS

#include <algorithm>
#include <cstring>

#include "unicode/coders.h"
#include "unicode/compress_tables.h"

// Last: opens the code for AVX2.
#include "unicode/avx2.h"

namespace vxnls {

using enum std::endian;

namespace {

using Vector = __m256i;

constexpr int64_t vector_bytes = 32;

Vector load(const uint8_t* at) { return _mm256_loadu_si256(reinterpret_cast<const Vector*>(at)); }
void store(uint8_t* at, Vector v) { _mm256_storeu_si256(reinterpret_cast<Vector*>(at), v); }
__m128i load_half(const uint8_t* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }
void store_half(uint8_t* at, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(at), v); }
__m128i load_quarter(const uint8_t* at) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)); }
Vector both(__m128i v) { return _mm256_broadcastsi128_si256(v); }
Vector every_byte(unsigned value) { return _mm256_set1_epi8(static_cast<char>(value)); }
Vector every_word(unsigned value) { return _mm256_set1_epi16(static_cast<int16_t>(value)); }
Vector every_dword(unsigned value) { return _mm256_set1_epi32(static_cast<int>(value)); }
uint32_t top_bits(Vector bytes) { return static_cast<uint32_t>(_mm256_movemask_epi8(bytes)); }
uint32_t top_bits_of_dwords(Vector v) { return static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(v))); }
bool none(Vector v, Vector mask) { return _mm256_testz_si256(v, mask) != 0; }

int64_t count_bits(uint32_t bits) { return _mm_popcnt_u32(bits); }
uint32_t below(int64_t position) { return position >= 32 ? ~0u : (1u << position) - 1; }

Vector swapped_words(Vector v) {
  return _mm256_shuffle_epi8(v, both(_mm_setr_epi8(1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14)));
}
Vector swapped_dwords(Vector v) {
  return _mm256_shuffle_epi8(v, both(_mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12)));
}

template <std::endian order>
void store_dwords(uint8_t* at, Vector v) {
  store(at, order == little ? v : swapped_dwords(v));
}
template <std::endian order>
Vector load_dwords(const uint8_t* at) {
  return order == little ? load(at) : swapped_dwords(load(at));
}

/// The lanes of `mask` moved to the front.
Vector compressed_dwords(Vector v, uint32_t mask) {
  return _mm256_permutevar8x32_epi32(v, _mm256_cvtepu8_epi32(load_quarter(lanes_of_mask.row[mask])));
}
__m128i shuffled(__m128i v, const uint8_t (&row)[16]) { return _mm_shuffle_epi8(v, load_half(row)); }
/// Copies `bytes` bytes, nothing more, by blocks that overlap at the end.
void copy(uint8_t* out, const uint8_t* from, int64_t bytes) {
  if (bytes >= 32) {
    for (int64_t at = 0; at < bytes - 32; at += 32) store(out + at, load(from + at));
    store(out + bytes - 32, load(from + bytes - 32));
  } else if (bytes >= 16) {
    const __m128i first = load_half(from), last = load_half(from + bytes - 16);
    store_half(out, first);
    store_half(out + bytes - 16, last);
  } else if (bytes >= 4) {
    const int64_t middle = bytes / 8 * 4;
    for (const int64_t at : {int64_t{0}, middle, bytes - 4 - middle, bytes - 4}) std::memcpy(out + at, from + at, 4);
  } else {
    for (int64_t at = 0; at < bytes; ++at) out[at] = from[at];
  }
}

/// A copy of `length` bytes, at most 66, with zeros behind it.
struct Padded {
  alignas(32) uint8_t bytes[3 * vector_bytes];
  const uint8_t* of(const uint8_t* in, int64_t length) {
    store(bytes, _mm256_setzero_si256());
    store(bytes + vector_bytes, _mm256_setzero_si256());
    store(bytes + 2 * vector_bytes, _mm256_setzero_si256());
    copy(bytes, in, length);
    return bytes;
  }
};

// To UTF-32
// ---------------------------------------------------------------------------------------------------

/// What a block says. Bits stand for positions, the lowest for the first.
struct Block {
  uint32_t leads;   // where characters begin
  uint32_t errors;  // where the block is not as the leads before announce, or begins no character
  uint32_t carry;   // the positions of the next block that belong to the last character
  enum { plain, basic, full } kind;
};

struct Utf8 {
  using Source = Utf8Source;
  static constexpr int64_t unit = 1, positions = 32, lookahead = 8;
  static constexpr bool trusts_leads = true;  // what stands behind a lead is not looked at

  static int64_t units_at(const uint8_t* lead) { return bytesFromUTF8[*lead]; }

  static Block scan(const uint8_t* in, uint32_t carry) {
    const Vector bytes = load(in);
    const uint32_t bit7 = top_bits(bytes);
    if ((bit7 | carry) == 0) return {~0u, 0, 0, Block::plain};
    const uint32_t bit6 = top_bits(_mm256_slli_epi16(bytes, 1)), bit5 = top_bits(_mm256_slli_epi16(bytes, 2)),
                   bit4 = top_bits(_mm256_slli_epi16(bytes, 3));
    const uint64_t two = bit7 & bit6, three = two & bit5, four = three & bit4;
    const uint64_t announced = carry | two << 1 | three << 2 | four << 3;
    const uint32_t continuation = bit7 & ~bit6;
    const Vector too_high = _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, every_byte(0xF5)), bytes);
    const Vector too_low = _mm256_cmpeq_epi8(_mm256_and_si256(bytes, every_byte(0xFE)), every_byte(0xC0));
    const uint32_t bad = top_bits(_mm256_or_si256(too_high, too_low));
    return {~continuation, bad | (static_cast<uint32_t>(announced) ^ continuation),
            static_cast<uint32_t>(announced >> 32), four != 0 ? Block::full : Block::basic};
  }

  /// Whether the next 64 bytes are ASCII alone.
  static bool all_plain(const uint8_t* in) { return top_bits(_mm256_or_si256(load(in), load(in + vector_bytes))) == 0; }
  template <std::endian order>
  static void write_plain(const uint8_t* in, uint8_t* out) {
    constexpr char z = static_cast<char>(no_byte);
    const Vector first = _mm256_setr_epi8(0, z, z, z, 1, z, z, z, 2, z, z, z, 3, z, z, z,  //
                                          4, z, z, z, 5, z, z, z, 6, z, z, z, 7, z, z, z);
    const Vector second = _mm256_setr_epi8(8, z, z, z, 9, z, z, z, 10, z, z, z, 11, z, z, z,  //
                                           12, z, z, z, 13, z, z, z, 14, z, z, z, 15, z, z, z);
    for (int64_t i = 0; i < 32; i += 16) {
      const Vector bytes = both(load_half(in + i));
      store_dwords<order>(out + 4 * i, _mm256_shuffle_epi8(bytes, first));
      store_dwords<order>(out + 4 * i + 32, _mm256_shuffle_epi8(bytes, second));
    }
  }

  template <std::endian order>
  static int64_t write(const uint8_t* in, const Block& block, uint8_t* out) {
    if (block.kind == Block::plain) {
      write_plain<order>(in, out);
    } else if (block.kind == Block::basic) {
      write_basic<order>(in, block.leads, out);
    } else {
      for (int i = 0; i < 32; i += 8) {
        const Vector c = compressed_dwords(code_points(in + i), block.leads >> i & 0xFF);
        store_dwords<order>(out + 4 * count_bits(block.leads & below(i)), c);
      }
    }
    return count_bits(block.leads);
  }

 private:
  /// The code point that begins at each of eight bytes.
  static Vector code_points(const uint8_t* in) {
    const Vector four_bytes = _mm256_setr_epi8(0, 1, 2, 3, 1, 2, 3, 4, 2, 3, 4, 5, 3, 4, 5, 6,  //
                                               4, 5, 6, 7, 5, 6, 7, 8, 6, 7, 8, 9, 7, 8, 9, 10);
    const Vector bytes =
        _mm256_and_si256(_mm256_shuffle_epi8(both(load_half(in)), four_bytes), every_dword(0x3F3F3FFF));
    const Vector pairs = _mm256_maddubs_epi16(bytes, every_word(0x0140));                            // 64, 1
    const Vector value = _mm256_madd_epi16(pairs, every_dword(0x00011000));                          // 4096, 1
    const Vector class_of = _mm256_or_si256(_mm256_srli_epi32(value, 22), every_dword(0x80808000));  // the high nibble
    const Vector drop =
        _mm256_shuffle_epi8(both(_mm_setr_epi8(18, 18, 18, 18, 18, 18, 18, 18, 0, 0, 0, 0, 12, 12, 6, 0)), class_of);
    const Vector keep = _mm256_permutevar8x32_epi32(_mm256_setr_epi32(0x1FFFFF, 0, 0x7F, 0, 0x7FF, 0, 0xFFFF, 0), drop);
    return _mm256_and_si256(_mm256_srlv_epi32(value, drop), keep);
  }

  /// Characters below U+10000: their low and their high bytes at each of the 32 positions.
  template <std::endian order>
  static void write_basic(const uint8_t* in, uint32_t leads, uint8_t* out) {
    const Vector first = load(in), second = load(in + 1), third = load(in + 2);
    const Vector three = _mm256_cmpgt_epi8(first, every_byte(0xDF));  // or ASCII, which is set apart below
    const Vector upper = _mm256_blendv_epi8(first, second, three), lower = _mm256_blendv_epi8(second, third, three);
    const Vector low = _mm256_or_si256(_mm256_and_si256(_mm256_slli_epi16(upper, 6), every_byte(0xC0)),
                                       _mm256_and_si256(lower, every_byte(0x3F)));
    const Vector top = _mm256_and_si256(_mm256_and_si256(_mm256_slli_epi16(first, 4), every_byte(0xF0)), three);
    const Vector high = _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(upper, 2), every_byte(0x0F)), top);
    const Vector lows = _mm256_blendv_epi8(first, low, first);
    const Vector highs = _mm256_and_si256(high, _mm256_cmpgt_epi8(_mm256_setzero_si256(), first));
    const Vector even = _mm256_unpacklo_epi8(lows, highs), odd = _mm256_unpackhi_epi8(lows, highs);
    const __m128i words[] = {_mm256_castsi256_si128(even), _mm256_castsi256_si128(odd),
                             _mm256_extracti128_si256(even, 1), _mm256_extracti128_si256(odd, 1)};
    for (int64_t i = 0; i < 4; ++i) {
      const __m128i together = shuffled(words[i], words_of_mask.row[leads >> (8 * i) & 0xFF]);
      store_dwords<order>(out + 4 * count_bits(leads & below(8 * i)), _mm256_cvtepu16_epi32(together));
    }
  }
};

template <std::endian input>
struct Utf16 {
  using Source = Utf16Source<input>;
  static constexpr int64_t unit = 2, positions = 32, lookahead = 2;
  static constexpr bool trusts_leads = false;

  static int64_t units_at(const uint8_t* lead) { return is_high_surrogate(load16<input>(lead)) ? 2 : 1; }

  static Block scan(const uint8_t* in, uint32_t carry) {
    const Vector front = _mm256_and_si256(units(in), every_word(0xFC00));
    const Vector back = _mm256_and_si256(units(in + vector_bytes), every_word(0xFC00));
    const uint32_t high = places(front, back, every_word(0xD800)), low = places(front, back, every_word(0xDC00));
    if ((high | low | carry) == 0) return {~0u, 0, 0, Block::plain};
    return {~low, (high << 1 | carry) ^ low, high >> 31, Block::full};
  }

  /// Whether the next 64 bytes have no surrogates.
  static bool all_plain(const uint8_t* in) {
    const Vector bits = every_word(input == little ? 0xF800 : 0x00F8),
                 surrogate = every_word(input == little ? 0xD800 : 0x00D8);
    const Vector a = _mm256_cmpeq_epi16(_mm256_and_si256(load(in), bits), surrogate);
    const Vector b = _mm256_cmpeq_epi16(_mm256_and_si256(load(in + vector_bytes), bits), surrogate);
    return top_bits(_mm256_or_si256(a, b)) == 0;
  }
  template <std::endian order>
  static void write_plain(const uint8_t* in, uint8_t* out) {
    for (int64_t i = 0; i < 16; i += 8) store_dwords<order>(out + 4 * i, wide(in + 2 * i));
  }

  template <std::endian order>
  static int64_t write(const uint8_t* in, const Block& block, uint8_t* out) {
    if (block.kind == Block::plain) {
      write_plain<order>(in, out);
      write_plain<order>(in + vector_bytes, out + ptrdiff_t{4} * 16);
      return positions;
    }
    for (int64_t i = 0; i < 32; i += 8) {
      const Vector unit32 = wide(in + 2 * i);
      // What a pair gives at its first unit, and what any other unit gives.
      constexpr uint32_t bias = 0x10000u - (0xD800u << 10) - 0xDC00u;
      const Vector pair =
          _mm256_add_epi32(_mm256_add_epi32(_mm256_slli_epi32(unit32, 10), wide(in + 2 * i + 2)), every_dword(bias));
      const Vector is_pair = _mm256_cmpeq_epi32(_mm256_and_si256(unit32, every_dword(0xFC00)), every_dword(0xD800));
      const Vector c = _mm256_blendv_epi8(unit32, pair, is_pair);
      store_dwords<order>(out + 4 * count_bits(block.leads & below(i)), compressed_dwords(c, block.leads >> i & 0xFF));
    }
    return count_bits(block.leads);
  }

 private:
  /// Where one of 32 words is as wanted.
  static uint32_t places(Vector front, Vector back, Vector wanted) {
    const Vector found = _mm256_packs_epi16(_mm256_cmpeq_epi16(front, wanted), _mm256_cmpeq_epi16(back, wanted));
    return top_bits(_mm256_permute4x64_epi64(found, 0xD8));
  }
  static Vector units(const uint8_t* in) { return input == little ? load(in) : swapped_words(load(in)); }
  static Vector wide(const uint8_t* in) {
    const __m128i eight = load_half(in);
    return _mm256_cvtepu16_epi32(
        input == little ? eight : _mm256_castsi256_si128(swapped_words(_mm256_castsi128_si256(eight))));
  }
};

/// Converts what it can of the next block beside the buffers; gives the bytes taken, 0 when a plain step is needed.
template <class Form, std::endian order>
int64_t convert_window(const uint8_t* in, int64_t length, uint8_t* out, int64_t capacity, int64_t* count) {
  Padded padded;
  alignas(32) uint8_t beside[4 * (Form::positions + 8)];
  constexpr int64_t block_bytes = Form::unit * Form::positions;
  if (length >= block_bytes && capacity >= Form::positions) {
    const Block block = Form::scan(in, 0);
    if (block.kind == Block::plain) {
      *count += Form::template write<order>(in, block, out);
      return block_bytes;
    }
  }
  const uint8_t* const from = length < block_bytes + Form::lookahead ? padded.of(in, length) : in;
  Block block = Form::scan(from, 0);
  const int64_t there = std::min(length / Form::unit, Form::positions);
  const int64_t good = block.errors != 0 ? std::min<int64_t>(_tzcnt_u32(block.errors), there) : there;
  block.leads &= below(good);
  if (block.leads == 0) return 0;
  const int64_t last = 31 - static_cast<int64_t>(_lzcnt_u32(block.leads));
  int64_t end = last + Form::units_at(from + Form::unit * last);
  if (end * Form::unit > length || (!Form::trusts_leads && end > good)) {
    block.leads &= below(last);
    end = last;
    if (end == 0) return 0;
  }
  Form::template write<order>(from, block, beside);
  const int64_t taken = std::min(count_bits(block.leads), capacity);
  copy(out, beside, 4 * taken);
  *count += taken;
  return end * Form::unit;
}

/// Writes the plain characters at the front, at most `most`, 64 bytes of them at a time: that needs no looking ahead.
template <class Form, std::endian order>
int64_t write_plain_run(const uint8_t* in, int64_t most, uint8_t* out) {
  constexpr int64_t of_vector = vector_bytes / Form::unit;
  int64_t done = 0;
  for (; most - done >= 2 * of_vector && Form::all_plain(in + Form::unit * done); done += 2 * of_vector) {
    Form::template write_plain<order>(in + Form::unit * done, out + 4 * done);
    Form::template write_plain<order>(in + Form::unit * done + vector_bytes, out + 4 * (done + of_vector));
  }
  return done;
}

template <class Form, std::endian order>
Converted to_utf32(const uint8_t* in, int64_t length, uint8_t* out, int64_t capacity) {
  constexpr int64_t block_bytes = Form::unit * Form::positions, ahead = 2 * block_bytes;
  constexpr int64_t room_ahead = 2 * Form::positions;
  int64_t count = 0;
  for (;;) {
    int64_t carried = 0;
    Block block{};
    for (bool scanned = false; length >= ahead && capacity - count >= room_ahead;) {
      if (!scanned) {
        const int64_t plain =
            write_plain_run<Form, order>(in, std::min(length / Form::unit, capacity - count), out + 4 * count);
        if (plain > 0) {
          count += plain;
          in += Form::unit * plain;
          length -= Form::unit * plain;
          continue;
        }
        block = Form::scan(in, 0);
        if (block.errors != 0) break;
      }
      const Block next = Form::scan(in + block_bytes, block.carry);
      if (next.errors != 0) break;
      count += Form::template write<order>(in, block, out + 4 * count);
      carried = count_bits(block.carry);
      in += block_bytes;
      length -= block_bytes;
      scanned = block.kind != Block::plain || next.kind != Block::plain;
      block = next;
    }
    in += Form::unit * carried;
    length -= Form::unit * carried;
    while (length > 0 && count < capacity) {
      const int64_t taken = convert_window<Form, order>(in, length, out + 4 * count, capacity - count, &count);
      in += taken;
      length -= taken;
      if (taken == 0 || length >= ahead) break;
    }
    if (length <= 0 || count == capacity) return {count, 0};
    const Decoded c = Form::Source::decode(in, length);
    if (c.status != 0) return {count, c.status};
    in += c.consumed;
    length -= c.consumed;
    store32<order>(c.code_point, out + 4 * count);
    if (++count == capacity || length == 0) return {count, 0};
  }
}

// From UTF-32
// -------------------------------------------------------------------------------------------------

struct ToUtf8 {
  using Sink = Utf8Sink;
  static constexpr int64_t shortest = 1;  // bytes of a character

  static constexpr uint32_t plain = 0x7F;  // up to here a character takes as little as any
  static void write_plain(const Vector (&c)[8], uint8_t* out) {
    const Vector order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    for (int i = 0; i < 8; i += 4, out += 32) {
      const Vector quarters =
          _mm256_packus_epi16(_mm256_packus_epi32(c[i], c[i + 1]), _mm256_packus_epi32(c[i + 2], c[i + 3]));
      store(out, _mm256_permutevar8x32_epi32(quarters, order));
    }
  }

  /// Writes 16 characters; what lies up to 12 bytes behind them is overwritten too.
  template <std::endian order>
  static int64_t write(const uint8_t* in, uint8_t* out) {
    const Vector a = load_dwords<order>(in), b = load_dwords<order>(in + vector_bytes);
    const Vector all = _mm256_or_si256(a, b);
    if (!none(all, every_dword(~0xFFFFu))) return write_four(b, out, write_four(a, out, 0));
    const Vector ordered = _mm256_permute4x64_epi64(_mm256_packus_epi32(a, b), 0xD8);
    if (!none(all, every_dword(~0x7FFu))) return write_three(ordered, out);
    if (none(all, every_dword(~0x7Fu))) {
      store_half(out, _mm_packus_epi16(_mm256_castsi256_si128(ordered), _mm256_extracti128_si256(ordered, 1)));
      return 16;
    }
    const Vector is_one = _mm256_cmpgt_epi16(every_word(0x80), ordered);
    const Vector lead = _mm256_srli_epi16(ordered, 6);
    const Vector tail = _mm256_slli_epi16(_mm256_and_si256(ordered, every_word(0x3F)), 8);
    const Vector two = _mm256_or_si256(_mm256_or_si256(lead, tail), every_word(0x80C0));
    const Vector bytes = _mm256_blendv_epi8(two, ordered, is_one);
    const Vector masks = _mm256_permute4x64_epi64(_mm256_packs_epi16(is_one, is_one), 0xD8);
    const uint32_t twos = ~top_bits(masks) & 0xFFFF;
    store_half(out, shuffled(_mm256_castsi256_si128(bytes), one_or_two_bytes.row[twos & 0xFF]));
    out += 8 + count_bits(twos & 0xFF);
    store_half(out, shuffled(_mm256_extracti128_si256(bytes, 1), one_or_two_bytes.row[twos >> 8]));
    return 16 + count_bits(twos);
  }

 private:
  static Vector field(Vector shifted, uint32_t mask) { return _mm256_and_si256(shifted, every_dword(mask)); }

  /// 16 characters below U+10000.
  static int64_t write_three(Vector c, uint8_t* out) {
    const Vector zero = _mm256_setzero_si256();
    const Vector one = _mm256_cmpeq_epi16(_mm256_srli_epi16(c, 7), zero);
    const Vector at_most_two = _mm256_cmpeq_epi16(_mm256_srli_epi16(c, 11), zero);
    // A character is the bytes first, middle, last, of which shorter ones have the last two or one.
    const Vector middle = _mm256_and_si256(_mm256_slli_epi16(c, 2), every_word(0x3F00));
    const Vector first = _mm256_or_si256(_mm256_srli_epi16(c, 12), every_word(0x80E0));
    const Vector lead_of_two = _mm256_and_si256(at_most_two, every_word(0x4000));
    const Vector front = _mm256_or_si256(_mm256_or_si256(first, middle), lead_of_two);
    const Vector last = _mm256_or_si256(_mm256_and_si256(c, every_word(0x3F)), every_word(0x80));
    const Vector back = _mm256_blendv_epi8(last, c, one);
    const Vector bytes[] = {_mm256_unpacklo_epi16(front, back), _mm256_unpackhi_epi16(front, back)};
    // Two bits a character, so that a byte of the mask is four characters.
    uint32_t shorter = top_bits(_mm256_packs_epi16(_mm256_unpacklo_epi16(one, at_most_two),  //
                                                   _mm256_unpackhi_epi16(one, at_most_two)));
    const int64_t length = 48 - count_bits(shorter);
    for (int i = 0; i < 4; ++i, shorter >>= 8) {
      const Vector v = bytes[i % 2];
      const __m128i four = i < 2 ? _mm256_castsi256_si128(v) : _mm256_extracti128_si256(v, 1);
      store_half(out, shuffled(four, one_to_three_bytes.row[shorter & 0xFF]));
      out += 12 - count_bits(shorter & 0xFF);
    }
    return length;
  }

  /// Eight characters of any length, behind `bytes` bytes; gives the bytes then.
  static int64_t write_four(Vector c, uint8_t* out, int64_t bytes) {
    // Six bits a byte, the last byte lowest. Code points above U+10FFFF lose the bits that have no byte.
    const Vector low = _mm256_or_si256(field(c, 0x3F), field(_mm256_slli_epi32(c, 2), 0x3F00));
    const Vector high =
        _mm256_or_si256(field(_mm256_slli_epi32(c, 4), 0x3F0000), field(_mm256_slli_epi32(c, 6), 0xFF000000));
    // Shifted, so that code points above U+7FFFFFFF compare as positive too.
    const Vector zero = _mm256_setzero_si256();
    const Vector one = _mm256_cmpeq_epi32(_mm256_srli_epi32(c, 7), zero),
                 at_most_two = _mm256_cmpeq_epi32(_mm256_srli_epi32(c, 11), zero),
                 at_most_three = _mm256_cmpeq_epi32(_mm256_srli_epi32(c, 16), zero);
    const Vector marks =
        _mm256_xor_si256(_mm256_xor_si256(every_dword(0xF0808080), field(at_most_three, 0xF0808080 ^ 0xE08080)),
                         field(at_most_two, 0xE08080 ^ 0xC080));
    const Vector several = _mm256_add_epi32(_mm256_or_si256(low, high), marks);
    const Vector together = _mm256_blendv_epi8(several, c, one);
    // Lengths less 1: 3 + the three masks.
    const uint32_t high_bits = ~top_bits_of_dwords(at_most_two) & 0xFF;
    const uint32_t low_bits =
        ~top_bits_of_dwords(_mm256_xor_si256(_mm256_xor_si256(one, at_most_two), at_most_three)) & 0xFF;
    const uint32_t front = (low_bits & 0xF) | (high_bits & 0xF) << 4, back = low_bits >> 4 | (high_bits & 0xF0);
    store_half(out + bytes, shuffled(_mm256_castsi256_si128(together), one_to_four_bytes.row[front]));
    bytes += 4 + count_bits(front) + count_bits(front >> 4);
    store_half(out + bytes, shuffled(_mm256_extracti128_si256(together, 1), one_to_four_bytes.row[back]));
    return bytes + 4 + count_bits(back) + count_bits(back >> 4);
  }
};

template <std::endian output>
struct ToUtf16 {
  using Sink = Utf16Sink<output>;
  static constexpr int64_t shortest = 2;  // bytes of a character

  static constexpr uint32_t plain = 0xFFFF;
  static void write_plain(const Vector (&c)[8], uint8_t* out) {
    for (int i = 0; i < 8; i += 2, out += 32) {
      const Vector words = _mm256_permute4x64_epi64(_mm256_packus_epi32(c[i], c[i + 1]), 0xD8);
      store(out, output == little ? words : swapped_words(words));
    }
  }

  /// Writes 16 characters; what lies up to 8 bytes behind them is overwritten too.
  template <std::endian order>
  static int64_t write(const uint8_t* in, uint8_t* out) {
    const Vector a = load_dwords<order>(in), b = load_dwords<order>(in + vector_bytes);
    if (!none(_mm256_or_si256(a, b), every_dword(~0xFFFFu))) return write_pairs(b, out, write_pairs(a, out, 0));
    const Vector words = _mm256_permute4x64_epi64(_mm256_packus_epi32(a, b), 0xD8);
    store(out, output == little ? words : swapped_words(words));
    return 32;
  }

 private:
  /// Eight characters, those above U+FFFF as two units; behind `bytes` bytes.
  static int64_t write_pairs(Vector c, uint8_t* out, int64_t bytes) {
    const Vector first = _mm256_add_epi32(_mm256_srli_epi32(c, 10), every_dword(0xD800 - (0x10000 >> 10)));
    const Vector second =
        _mm256_or_si256(_mm256_slli_epi32(_mm256_and_si256(c, every_dword(0x3FF)), 16), every_dword(0xDC000000));
    const Vector is_one = _mm256_cmpeq_epi32(_mm256_srli_epi32(c, 16), _mm256_setzero_si256());
    Vector units = _mm256_blendv_epi8(_mm256_blend_epi16(first, second, 0xAA), c, is_one);
    if constexpr (output == big) units = swapped_words(units);
    const uint32_t twos = ~top_bits_of_dwords(is_one) & 0xFF;
    store_half(out + bytes, shuffled(_mm256_castsi256_si128(units), one_or_two_words.row[twos & 0xF]));
    bytes += 8 + 2 * count_bits(twos & 0xF);
    store_half(out + bytes, shuffled(_mm256_extracti128_si256(units, 1), one_or_two_words.row[twos >> 4]));
    return bytes + 8 + 2 * count_bits(twos >> 4);
  }
};

/// Whether the next 64 characters are plain, which are then written.
template <class Form, std::endian order>
bool write_if_plain(const uint8_t* in, uint8_t* out) {
  Vector c[8], all = _mm256_setzero_si256();
  for (int i = 0; i < 8; ++i) {
    c[i] = load_dwords<order>(in + vector_bytes * i);
    all = _mm256_or_si256(all, c[i]);
  }
  if (!none(all, every_dword(~Form::plain))) return false;
  Form::write_plain(c, out);
  return true;
}

template <class Form, std::endian order>
Converted from_utf32(const uint8_t* in, int64_t characters, uint8_t* out, int64_t room) {
  constexpr int64_t at_once = 16, longest = 4, plain_at_once = 64;
  int64_t bytes = 0;
  // As many characters again must be sure to follow, since their bytes cover what a block leaves behind it.
  for (bool plain = true;;) {
    while (plain && characters >= plain_at_once && room - bytes >= plain_at_once * Form::shortest) {
      plain = write_if_plain<Form, order>(in, out + bytes);
      if (!plain) break;
      bytes += plain_at_once * Form::shortest;
      in += 4 * plain_at_once;
      characters -= plain_at_once;
    }
    if (characters < 2 * at_once || room - bytes < 2 * at_once * longest) break;
    const int64_t made = Form::template write<order>(in, out + bytes);
    plain = made == at_once * Form::shortest;
    bytes += made;
    in += 4 * at_once;
    characters -= at_once;
  }
  while (characters > 0 && bytes < room) {
    Padded padded;
    alignas(32) uint8_t beside[longest * at_once + vector_bytes];
    const int64_t there = std::min(characters, at_once);
    const uint8_t* const from = there < at_once ? padded.of(in, 4 * there) : in;
    const int64_t made = Form::template write<order>(from, beside) - Form::shortest * (at_once - there);
    if (made > room - bytes) break;
    copy(out + bytes, beside, made);
    bytes += made;
    in += 4 * there;
    characters -= there;
  }
  // The room ends within these characters.
  for (; characters > 0 && bytes < room; --characters, in += 4) {
    const Encoded e = Form::Sink::encode(load32<order>(in), out + bytes, room - bytes);
    if (e.status != 0) return {bytes, e.status};
    bytes += e.written;
  }
  return {bytes, 0};
}

int64_t utf8_length(const VXChar* text, int64_t count) {
  constexpr int64_t step = 16, most_steps = 1 << 28;  // so that a lane cannot overflow
  const auto* in = reinterpret_cast<const uint8_t*>(text);
  const Vector zero = _mm256_setzero_si256();
  int64_t bytes = 0;
  int64_t steps = count / step;
  while (steps > 0) {
    Vector less[2] = {zero, zero};  // -1 for every limit that a code point does not reach
    const int64_t now = std::min(steps, most_steps);
    for (int64_t i = 0; i < now; ++i, in += 2 * vector_bytes) {
      for (int half = 0; half < 2; ++half) {
        const Vector c = load(in + half * vector_bytes);
        const Vector one = _mm256_cmpeq_epi32(_mm256_srli_epi32(c, 7), zero);
        const Vector two = _mm256_cmpeq_epi32(_mm256_srli_epi32(c, 11), zero);
        const Vector three = _mm256_cmpeq_epi32(_mm256_srli_epi32(c, 16), zero);
        less[half] = _mm256_add_epi32(less[half], _mm256_add_epi32(_mm256_add_epi32(one, two), three));
      }
    }
    alignas(32) int32_t lanes[16];
    store(reinterpret_cast<uint8_t*>(lanes), less[0]);
    store(reinterpret_cast<uint8_t*>(lanes + 8), less[1]);
    bytes += 4 * step * now;
    for (const int32_t lane : lanes) bytes += lane;
    steps -= now;
  }
  for (int64_t i = count / step * step; i < count; ++i) bytes += Utf8Text::units(text[i]);
  return bytes;
}

template <class Source>
constexpr ByOrder<ToUtf32Body> from_form = {&to_utf32<Source, little>, &to_utf32<Source, big>};
template <class Sink>
constexpr ByOrder<FromUtf32Body> to_form = {&from_utf32<Sink, little>, &from_utf32<Sink, big>};

}  // namespace

constinit const Transcoders avx2_transcoders = {
    .from_utf8 = from_form<Utf8>,
    .from_utf16_little = from_form<Utf16<little>>,
    .from_utf16_big = from_form<Utf16<big>>,
    .from_utf32_little = {&copy_to_utf32<little, little>, &copy_to_utf32<little, big>},
    .from_utf32_big = {&copy_to_utf32<big, little>, &copy_to_utf32<big, big>},
    .to_utf8 = to_form<ToUtf8>,
    .to_utf16_little = to_form<ToUtf16<little>>,
    .to_utf16_big = to_form<ToUtf16<big>>,
    .to_utf32_little = {&copy_from_utf32<little, little>, &copy_from_utf32<big, little>},
    .to_utf32_big = {&copy_from_utf32<little, big>, &copy_from_utf32<big, big>},
    .utf8_length = &utf8_length,
};

}  // namespace vxnls

#include "unicode/avx2_end.h"

#endif
