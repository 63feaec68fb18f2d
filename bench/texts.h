// Texts of five kinds for the benchmarks of coders and case, cut into many slices so that nothing repeats soon.
#ifndef VXNLS_BENCH_TEXTS_H
#define VXNLS_BENCH_TEXTS_H

#include <string>
#include <vector>

#include "bench/common.h"

namespace vxbench {

struct Kind {
  const char* id;
  const char* title;
  uint32_t first, last;  // the characters that are not ASCII
  int64_t ascii;         // per cent
};

inline constexpr Kind kinds[] = {
    {"ascii", "ASCII", 'a', 'z', 100},          {"latin", "Latin", 0xC0, 0x17F, 85},
    {"cyrillic", "Cyrillic", 0x430, 0x44F, 15}, {"cjk", "CJK", 0x4E00, 0x9FA5, 5},
    {"emoji", "emoji", 0x1F300, 0x1F5FF, 20},
};

inline void append_utf8(std::string& text, uint32_t c) {
  uint8_t bytes[4];
  int64_t written = 0;
  UTF32_UTF8(c, bytes, 4, &written);
  text.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(written));
}

/// Whole characters, the most of them that fit into `bytes`.
inline std::string text_of(const Kind& kind, size_t bytes, Random& random) {
  std::string text;
  while (text.size() + 4 <= bytes) {
    const bool ascii = between(random, 0, 99) < kind.ascii;
    const int64_t letter = between(random, 0, 31);  // words, capitals here and there
    const int64_t c = !ascii         ? between(random, kind.first, kind.last)
                      : letter >= 26 ? ' '
                                     : (between(random, 0, 7) == 0 ? 'A' : 'a') + letter;
    append_utf8(text, static_cast<uint32_t>(c));
  }
  while (text.size() < bytes) text.push_back('.');
  return text;
}

/// Slices of `bytes` bytes, together more than 50,000 characters of any kind.
inline std::vector<std::string> slices_of(const Kind& kind, size_t bytes) {
  Random random = random_of(kind.id);
  std::vector<std::string> slices;
  for (size_t total = 0; total < (size_t{192} << 10); total += bytes) slices.push_back(text_of(kind, bytes, random));
  return slices;
}

struct Size {
  const char* id;
  const char* title;
  size_t bytes;
};

}  // namespace vxbench

#endif
