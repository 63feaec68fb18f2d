// How often the fixed field shows other digits than the correctly rounded ones (glibc's printf), by the number of
// significant digits shown and the kind of value; how far off it is; and whether free mode ever differs.
//   cmake --build build/release --target writing_accuracy && build/release/bin/writing_accuracy [MILLIONS [SEED]]
// prints the tables of docs/numbers.md, "Writing". The values are random and depend on the seed alone.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

#include "vxnls/number_format.h"

namespace {

constexpr int32_t width = 32;

class Values {
 public:
  explicit Values(uint64_t seed) : random_(seed) {}

  /// Any double of the magnitude 10^e to 10^(e+1), each with equal chance; e from -4 to 9.
  double any(int* integer_digits) {
    const int e = exponent(integer_digits);
    const double fraction = static_cast<double>(random_() >> 11) * 0x1p-53;
    return std::pow(10.0, e) * (1 + 9 * fraction);
  }

  /// The double nearest to a decimal of `digits` digits, the last of which is 5.
  double tie(int digits, int* integer_digits) {
    const int e = exponent(integer_digits);
    char text[48];
    int at = 0;
    for (int i = 0; i < digits; ++i)
      text[at++] = static_cast<char>('0' + (i == 0 ? 1 + random_() % 9 : random_() % 10));
    text[at - 1] = '5';
    std::snprintf(text + at, sizeof text - static_cast<size_t>(at), "e%d", e - digits + 1);
    return std::strtod(text, nullptr);
  }

 private:
  int exponent(int* integer_digits) {
    const int e = static_cast<int>(random_() % 14) - 4;
    *integer_digits = e + 1;  // below 1 it counts the zeros after the point, negated
    return e;
  }

  std::mt19937_64 random_;
};

bool differs(double value, int32_t field, int32_t decimals, uint32_t flags) {
  uint8_t ours[512];
  int64_t length = 0;
  if (NLSDoubleFormatUWithExOpts(nullptr, field, decimals, flags, ours, sizeof ours, &length, nullptr, value) != 0) {
    std::fprintf(stderr, "refused: %.17g with %d decimals\n", value, decimals);
    std::exit(1);
  }
  char correct[512];
  const int count = std::snprintf(correct, sizeof correct, "%*.*f", field, decimals, value);
  return count != length || std::memcmp(ours, correct, static_cast<size_t>(length)) != 0;
}

/// `digits` significant digits as decimals of a value with so many integer digits; -1: it has more already.
int32_t decimals_for(int digits, int integer_digits) { return digits >= integer_digits ? digits - integer_digits : -1; }

void print_rate(int64_t differences, int64_t values) {
  const double rate = static_cast<double>(differences) / static_cast<double>(values);
  if (differences == 0) std::printf(" none |");
  else if (rate < 0.001) std::printf(" %.1f in a million |", rate * 1e6);
  else std::printf(" %.2f %% |", rate * 100);
}

}  // namespace

int main(int count, char** arguments) {
  const int64_t values = (count > 1 ? std::atoll(arguments[1]) : 4) * 1'000'000;
  Values source(count > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1);

  std::printf("Differences in %lld values each:\n\n| Digits | any double | ends in 5 after them |\n|---|---|---|\n",
              static_cast<long long>(values));
  for (const int digits : {2, 4, 6, 8, 10, 11, 12, 13, 14, 15, 16, 17}) {
    int64_t any = 0, ties = 0, compared_any = 0, compared_ties = 0;
    for (int64_t i = 0; i < values; ++i) {
      int integer_digits;
      double value = source.any(&integer_digits);
      int32_t decimals = decimals_for(digits, integer_digits);
      if (decimals >= 0) {
        ++compared_any;
        any += differs(value, width, decimals, NLS_FORMAT_FIXED);
      }
      value = source.tie(digits + 1, &integer_digits);
      decimals = decimals_for(digits, integer_digits);
      if (decimals >= 0) {
        ++compared_ties;
        ties += differs(value, width, decimals, NLS_FORMAT_FIXED);
      }
    }
    std::printf("| %d |", digits);
    print_rate(any, compared_any);
    print_rate(ties, compared_ties);
    std::printf("\n");
    std::fflush(stdout);
  }

  int64_t cents = 0, cents_written = 0, free_mode = 0;
  for (int64_t i = 0; i < values; ++i) {
    int unused;
    const double amount = std::round(source.any(&unused) * 100) / 100;
    cents += differs(amount, width, 2, NLS_FORMAT_FIXED);
    ++cents_written;
    free_mode += differs(source.any(&unused), 0, 17, NLS_FORMAT_PLAIN);
  }
  std::printf(
      "\nAmounts of two decimals, written with two: %lld of %lld differ. Free mode with 17 decimals: %lld of %lld\n",
      static_cast<long long>(cents), static_cast<long long>(cents_written), static_cast<long long>(free_mode),
      static_cast<long long>(values));
  return 0;
}
