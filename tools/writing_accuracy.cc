// How often the fixed field shows other digits than the correctly rounded ones (from the exact expansion that glibc's
// printf gives), by the number of significant digits shown; how far off it is; and whether free mode ever differs.
//   cmake --build build/release --target writing_accuracy && build/release/bin/writing_accuracy [MILLIONS [SEED]]
// prints the tables of docs/numbers.md, "Writing". The values are random and depend on the seed alone.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "vxnls/number_format.h"

namespace {

constexpr int32_t width = 32;

/// A number's digits without point and leading zeros, as one integer: up to 17 digits.
int64_t units_of(const char* text, size_t length) {
  int64_t units = 0;
  for (size_t i = 0; i < length; ++i) {
    if (text[i] >= '0' && text[i] <= '9') units = units * 10 + (text[i] - '0');
  }
  return units;
}

class Values {
 public:
  explicit Values(uint64_t seed) : random_(seed) {}

  /// Any double of the magnitude 10^e to 10^(e+1).
  double any(int e) { return std::pow(10.0, e) * (1 + 9 * (static_cast<double>(random_() >> 11) * 0x1p-53)); }

  int between(int low, int high) { return low + static_cast<int>(random_() % static_cast<uint64_t>(high - low + 1)); }

  /// The double nearest to a decimal of `digits` digits, the last of which is 5, and that decimal without its 5.
  double tie(int digits, int e, int64_t* others) {
    char text[48];
    int at = 0;
    for (int i = 1; i < digits; ++i)
      text[at++] = static_cast<char>('0' + (i == 1 ? 1 + random_() % 9 : random_() % 10));
    *others = units_of(text, static_cast<size_t>(at));
    text[at++] = '5';
    (void)std::snprintf(text + at, sizeof text - static_cast<size_t>(at), "e%d", e - digits + 1);
    return std::strtod(text, nullptr);
  }

 private:
  std::mt19937_64 random_;
};

/// What the library shows of a value, in units of its last decimal.
int64_t shown(double value, int32_t field, int32_t decimals, uint32_t flags) {
  uint8_t text[64];
  int64_t length = 0;
  if (NLSDoubleFormatUWithExOpts(nullptr, field, decimals, flags, text, sizeof text, &length, nullptr, value) != 0) {
    (void)std::fprintf(stderr, "refused: %.17g with %d decimals\n", value, decimals);
    std::exit(1);
  }
  return units_of(reinterpret_cast<const char*>(text), static_cast<size_t>(length));
}

/// The same, correctly rounded, half up: from the exact expansion, which the C library prints.
int64_t correct(double value, int32_t decimals) {
  char text[128];
  const int length = std::snprintf(text, sizeof text, "%.70f", value);
  const auto kept = static_cast<size_t>(int64_t{length} - 70 + decimals);
  return units_of(text, kept) + (text[kept] >= '5');
}

/// Values compared, and how many of them differ.
struct Rate {
  int64_t values = 0, differences = 0;

  void count(bool differs) {
    ++values;
    differences += differs;
  }

  void print() const {
    const double rate = static_cast<double>(differences) / static_cast<double>(values);
    if (differences == 0) std::printf(" none |");
    else if (rate < 0.001) std::printf(" %.0f in a million |", rate * 1e6);
    else std::printf(" %.1f %% |", rate * 100);
  }
};

}  // namespace

int main(int count, char** arguments) {
  const int64_t values = (count > 1 ? std::strtoll(arguments[1], nullptr, 10) : 1) * 1'000'000;
  Values source(count > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1);

  std::printf("Differences in %lld values each:\n\n", static_cast<long long>(values));
  std::printf("| Digits | from 1 up | below 1 | with a 5 next | read as decimals | own digits | free mode |\n");
  std::printf("|---|---|---|---|---|---|---|\n");
  int64_t farthest = 0;
  for (const int digits : {2, 4, 6, 8, 10, 11, 12, 13, 14, 15, 16, 17}) {
    Rate from_1, below_1, halves, as_decimals, own, free_mode;
    for (int64_t i = 0; i < values; ++i) {
      for (const bool below : {false, true}) {
        const int e = below ? source.between(-4, -1) : source.between(0, digits < 10 ? digits - 1 : 9);
        const double value = source.any(e);
        const int32_t decimals = digits - 1 - e;
        const int64_t exact = correct(value, decimals), ours = shown(value, width, decimals, NLS_FORMAT_FIXED);
        (below ? below_1 : from_1).count(ours != exact);
        if (digits <= 15) farthest = std::max(farthest, std::abs(ours - exact));
        free_mode.count(shown(value, 0, decimals, NLS_FORMAT_PLAIN) != exact);
      }
      const int e = source.between(0, digits < 10 ? digits - 1 : 9);
      int64_t others;
      const double value = source.tie(digits + 1, e, &others);
      const int64_t ours = shown(value, width, digits - 1 - e, NLS_FORMAT_FIXED);
      halves.count(ours != correct(value, digits - 1 - e));
      as_decimals.count(ours != others + 1);
      const int any_e = source.between(-4, 9);
      if (any_e >= digits) continue;
      const double decimal = source.tie(digits, any_e, &others);
      own.count(shown(decimal, width, digits - 1 - any_e, NLS_FORMAT_FIXED) != others * 10 + 5);
    }
    std::printf("| %d |", digits);
    from_1.print();
    below_1.print();
    halves.print();
    as_decimals.print();
    own.print();
    free_mode.print();
    std::printf("\n");
    (void)std::fflush(stdout);
  }
  std::printf("\nUp to 15 digits no more than %lld in the last digit shown\n", static_cast<long long>(farthest));

  Rate amounts;
  for (int64_t i = 0; i < values; ++i) {
    const double amount = std::round(source.any(source.between(-2, 11)) * 100) / 100;
    amounts.count(shown(amount, width, 2, NLS_FORMAT_FIXED) != correct(amount, 2));
  }
  std::printf("Amounts of two decimals, written with two: %lld of %lld differ\n",
              static_cast<long long>(amounts.differences), static_cast<long long>(amounts.values));
  return 0;
}
