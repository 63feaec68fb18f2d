// How often the reader of doubles gives another value than the correctly rounded one (glibc's strtod), by the number of
// digits and the range of exponents; and how often a double that was written with enough digits is not read back.
//   cmake --build build/release --target reading_accuracy && build/release/bin/reading_accuracy [MILLIONS [SEED]]
// prints the tables of docs/numbers.md, "Reading". The texts are random and depend on the seed alone.
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "vxnls/number_parse.h"

namespace {

double read(const char* text, size_t length) {
  double value = 0;
  int64_t consumed = 0;
  const auto bytes = reinterpret_cast<const uint8_t*>(text);
  if (NLSBufToDoubleU(nullptr, bytes, static_cast<int32_t>(length), &value, &consumed) == 0) return value;
  (void)std::fprintf(stderr, "refused: %s\n", text);
  std::exit(1);
}

struct Spelling {
  const char* title;
  int least_exponent, most_exponent;  // of the first digit, where it is written at all
  bool has_exponent;
};

constexpr Spelling spellings[] = {
    {"point among the digits", 0, 0, false},
    {"exponent -20 to 20", -20, 20, true},
    {"exponent -300 to 300", -300, 300, true},
};

class Texts {
 public:
  explicit Texts(uint64_t seed) : random_(seed) {}
  uint64_t next() { return random_(); }

  /// `digits` digits, the first and the last not 0, as `spelling` wants them.
  const char* text(int digits, const Spelling& spelling, size_t* length) {
    char* at = text_;
    const auto point = static_cast<int>(spelling.has_exponent ? 1 : 1 + random_() % static_cast<uint64_t>(digits));
    for (int i = 0; i < digits; ++i) {
      const bool is_outer = i == 0 || i == digits - 1;
      *at++ = static_cast<char>(is_outer ? '1' + random_() % 9 : '0' + random_() % 10);
      if (i + 1 == point && point < digits) *at++ = '.';
    }
    if (spelling.has_exponent) {
      const auto span = static_cast<uint64_t>(int64_t{spelling.most_exponent} - spelling.least_exponent + 1);
      at += std::snprintf(at, 8, "E%d", spelling.least_exponent + static_cast<int>(random_() % span));
    }
    *at = 0;
    *length = static_cast<size_t>(at - text_);
    return text_;
  }

 private:
  std::mt19937_64 random_;
  char text_[96] = {};
};

void print_rate(int64_t differences, int64_t texts) {
  if (differences == 0) std::printf(" none |");
  else std::printf(" %.1f |", static_cast<double>(differences) * 1e6 / static_cast<double>(texts));
}

}  // namespace

int main(int count, char** arguments) {
  const int64_t texts = (count > 1 ? std::strtoll(arguments[1], nullptr, 10) : 10) * 1'000'000;
  Texts source(count > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1);
  double farthest = 0;

  std::printf("Differences in a million texts, of %lld each:\n\n| Digits |", static_cast<long long>(texts));
  for (const Spelling& spelling : spellings) std::printf(" %s |", spelling.title);
  std::printf("\n|---|---|---|---|\n");
  for (const int digits : {8, 10, 12, 13, 14, 15, 16, 17, 18, 19, 20, 25, 30, 40}) {
    std::printf("| %d |", digits);
    for (const Spelling& spelling : spellings) {
      int64_t differences = 0;
      for (int64_t i = 0; i < texts; ++i) {
        size_t length;
        const char* const text = source.text(digits, spelling, &length);
        const double ours = read(text, length), correct = std::strtod(text, nullptr);
        if (ours == correct) continue;
        ++differences;
        const double ulp = std::fabs(std::nextafter(correct, ours) - correct);
        farthest = std::fmax(farthest, std::fabs(ours - correct) / ulp);
      }
      print_rate(differences, texts);
    }
    std::printf("\n");
    (void)std::fflush(stdout);
  }
  std::printf("\nThe farthest difference: %g units in the last place\n", farthest);

  int64_t lost_17 = 0, lost_shortest = 0, doubles = 0;
  while (doubles < texts) {
    const uint64_t bits = source.next();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) continue;
    ++doubles;
    char text[64];
    const int length = std::snprintf(text, sizeof text, "%.16E", value);
    lost_17 += read(text, static_cast<size_t>(length)) != value;
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    *end = 0;
    lost_shortest += read(text, static_cast<size_t>(end - text)) != value;
  }
  std::printf(
      "Of %lld doubles of all exponents, %lld with 17 digits and %lld in their shortest form read back as another\n",
      static_cast<long long>(doubles), static_cast<long long>(lost_17), static_cast<long long>(lost_shortest));
  return 0;
}
