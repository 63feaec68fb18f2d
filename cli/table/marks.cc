#include "cli/table/marks.h"

#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace vxcli::table {

namespace {

#ifdef __SSE2__

uint64_t marks_in_chunk(const char* bytes, char a, char b) {
  const __m128i separator = _mm_set1_epi8(a);
  const __m128i quote = _mm_set1_epi8(b);
  const __m128i line_feed = _mm_set1_epi8('\n');
  uint64_t mask = 0;
  for (size_t i = 0; i < 64; i += 16) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
    const __m128i found = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(text, separator), _mm_cmpeq_epi8(text, quote)),
                                       _mm_cmpeq_epi8(text, line_feed));
    mask |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(found))) << i;
  }
  return mask;
}

#else

uint64_t marks_in_chunk(const char* bytes, char a, char b) {
  uint64_t mask = 0;
  for (int i = 0; i < 64; ++i) {
    const bool found = bytes[i] == a || bytes[i] == b || bytes[i] == '\n';
    mask |= uint64_t{found} << i;
  }
  return mask;
}

#endif

}  // namespace

uint64_t Marks::marks_in(std::string_view text, char separator, char quote) {
  if (text.size() >= chunk_size) return marks_in_chunk(text.data(), separator, quote);
  char last[chunk_size] = {};
  std::memcpy(last, text.data(), text.size());
  return marks_in_chunk(last, separator, quote) & ((uint64_t{1} << text.size()) - 1);
}

}  // namespace vxcli::table
