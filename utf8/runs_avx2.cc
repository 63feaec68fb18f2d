#include "utf8/runs.h"

#if VXNLS_HAS_AVX2_VARIANTS

#include <algorithm>
#include <bit>

#include "unicode/utf8_tables.h"

// Last: opens the code for AVX2.
#include "unicode/avx2.h"

namespace vxnls {
namespace {

using Vector = __m256i;

constexpr int64_t width = 32, at_once = 4;  // bytes of a vector; vectors between two looks at what was found

Vector load(const uint8_t* at) { return _mm256_loadu_si256(reinterpret_cast<const Vector*>(at)); }
void store(uint8_t* at, Vector v) { _mm256_storeu_si256(reinterpret_cast<Vector*>(at), v); }
Vector every_byte(unsigned value) { return _mm256_set1_epi8(static_cast<char>(value)); }

// Counting
// ---------------------------------------------------------------------------------------------------------

struct Framing {
  Vector begins;  // -1 where a character begins
  Vector framed;  // the top bits say where there is a continuation byte exactly if one is announced
};

/// `one`, `two`, `three` are the bytes that stand so many places before `bytes`. What the longest character may be has
/// to be known: 3 or 4 bytes.
template <int longest>
Framing framing(Vector bytes, Vector one, Vector two, Vector three) {
  // Top bit: C0, E0, F0 or higher.
  Vector announced =
      _mm256_max_epu8(_mm256_subs_epu8(one, every_byte(0xC0 - 0x80)), _mm256_subs_epu8(two, every_byte(0xE0 - 0x80)));
  if constexpr (longest == 4) announced = _mm256_max_epu8(announced, _mm256_subs_epu8(three, every_byte(0xF0 - 0x80)));
  const Vector begins = _mm256_cmpgt_epi8(bytes, every_byte(0xBF));
  return {begins, _mm256_xor_si256(begins, announced)};
}

/// With 16 bytes before them, of which some are loaded and some moved: that keeps both sides of the processor busy.
template <int longest>
Framing framing(const uint8_t* at) {
  const Vector bytes = load(at), before = load(at - 16);
  return framing<longest>(bytes, _mm256_alignr_epi8(bytes, before, 15), _mm256_alignr_epi8(bytes, before, 14),
                          load(at - 3));
}

/// With nothing before them.
Framing first_framing(const uint8_t* at) {
  const Vector bytes = load(at), before = _mm256_permute2x128_si256(bytes, bytes, 0x08);
  return framing<4>(bytes, _mm256_alignr_epi8(bytes, before, 15), _mm256_alignr_epi8(bytes, before, 14),
                    _mm256_alignr_epi8(bytes, before, 13));
}

Vector added(Vector a, Vector b, Vector c, Vector d) {
  return _mm256_add_epi8(_mm256_add_epi8(a, b), _mm256_add_epi8(c, d));
}
Vector all_of(Vector a, Vector b, Vector c, Vector d) {
  return _mm256_and_si256(_mm256_and_si256(a, b), _mm256_and_si256(c, d));
}
Vector highest(Vector a, Vector b, Vector c, Vector d) {
  return _mm256_max_epu8(_mm256_max_epu8(a, b), _mm256_max_epu8(c, d));
}
bool everywhere(Vector top_bits) { return _mm256_movemask_epi8(top_bits) == -1; }
/// Whether an unsigned byte is above `limit`.
bool any_above(Vector v, unsigned limit) {
  const Vector above = _mm256_subs_epu8(v, every_byte(limit));
  return _mm256_testz_si256(above, above) == 0;
}

/// Four vectors at a time.
template <int longest>
Framing group(const uint8_t* at) {
  const Framing a = framing<longest>(at), b = framing<longest>(at + width), c = framing<longest>(at + 2 * width),
                d = framing<longest>(at + 3 * width);
  return {added(a.begins, b.begins, c.begins, d.begins), all_of(a.framed, b.framed, c.framed, d.framed)};
}

/// Whether four bytes may be announced in a group or into it.
bool has_long_leads(const uint8_t* at) {
  const Vector high = highest(load(at), load(at + width), load(at + 2 * width), load(at + 3 * width));
  return any_above(_mm256_max_epu8(high, load(at - 16)), 0xEF);
}

int64_t sum_of_bytes(Vector v) {
  const Vector sums = _mm256_sad_epu8(v, _mm256_setzero_si256());
  return _mm256_extract_epi64(sums, 0) + _mm256_extract_epi64(sums, 1) + _mm256_extract_epi64(sums, 2) +
         _mm256_extract_epi64(sums, 3);
}

/// Adds what begins in one vector; false when it is not framed.
bool count_vector(const Framing& vector, int64_t* found) {
  if (!everywhere(vector.framed)) return false;
  *found += std::popcount(static_cast<uint32_t>(_mm256_movemask_epi8(vector.begins)));
  return true;
}

/// Adds what begins in the groups at the front that are framed and no longer than said; gives their bytes.
template <int longest>
int64_t count_groups(const uint8_t* text, int64_t groups, int64_t* found) {
  Vector begun = _mm256_setzero_si256();
  int64_t at = 0;
  for (; groups > 0; --groups, at += width * at_once) {
    if (longest == 3 && has_long_leads(text + at)) break;
    const Framing next = group<longest>(text + at);
    if (!everywhere(next.framed)) break;
    begun = _mm256_sub_epi8(begun, next.begins);
  }
  *found += sum_of_bytes(begun);
  return at;
}

// A lead that announces 5 or 6 bytes is taken for one of 4: what it has more is then not framed.
int64_t count(const uint8_t* text, int64_t length, int64_t* characters) {
  if (length < width) return 0;
  int64_t at = width, found = 0;
  if (!count_vector(first_framing(text), &found)) return 0;
  for (int64_t done = 1; done > 0; at += done) {
    const int64_t groups = (length - at) / (width * at_once);
    // Where there is one long lead there are more: a good many groups are not asked then.
    const bool is_long = groups > 0 && has_long_leads(text + at);
    done = is_long ? count_groups<4>(text + at, std::min<int64_t>(groups, 16), &found)
                   : count_groups<3>(text + at, std::min<int64_t>(groups, 255 / at_once), &found);  // a byte holds 255
  }
  while (length - at >= width && count_vector(framing<4>(text + at), &found)) at += width;
  // A character that goes on behind the last block is left to the caller.
  for (int64_t back = 1; back < longest_sequence; ++back) {  // GCOV_EXCL_BR_LINE: four framed bytes have a lead
    const uint8_t byte = text[at - back];
    if (byte >= 0x80 && byte < 0xC0) continue;
    if (bytesFromUTF8[byte] > back) {
      at -= back;
      --found;
    }
    break;
  }
  *characters += found;
  return at;
}

// Case
// -------------------------------------------------------------------------------------------------------------

/// The 26 letters from `first` on with their case bit turned.
template <char first>
Vector turned(Vector bytes) {
  const Vector shifted = _mm256_add_epi8(bytes, every_byte(0x80 - first));  // the letters are the 26 lowest
  const Vector letter = _mm256_cmpgt_epi8(every_byte(0x80 + 26), shifted);
  return _mm256_xor_si256(bytes, _mm256_and_si256(letter, every_byte(0x20)));
}

bool has_lead(Vector bytes) { return any_above(bytes, 0xBF); }

template <char first>
int64_t turn_case(const uint8_t* in, int64_t length, uint8_t* out) {
  int64_t at = 0;
  for (; length - at >= width * at_once; at += width * at_once) {
    const Vector a = load(in + at), b = load(in + at + width), c = load(in + at + 2 * width),
                 d = load(in + at + 3 * width);
    if (has_lead(highest(a, b, c, d))) break;
    store(out + at, turned<first>(a));
    store(out + at + width, turned<first>(b));
    store(out + at + 2 * width, turned<first>(c));
    store(out + at + 3 * width, turned<first>(d));
  }
  for (; length - at >= width; at += width) {
    const Vector bytes = load(in + at);
    if (has_lead(bytes)) break;
    store(out + at, turned<first>(bytes));
  }
  return at;
}

}  // namespace

constinit const Utf8Runs avx2_utf8_runs = {.count = &count, .lower = &turn_case<'A'>, .upper = &turn_case<'a'>};

}  // namespace vxnls

#include "unicode/avx2_end.h"

#endif
