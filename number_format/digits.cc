#include "number_format/digits.h"

#include <cstring>

#include "unicode/text_flavour.h"

namespace vxnls {

namespace {

__extension__ using Wide = unsigned __int128;

constexpr int32_t chunk_digits = 19;  // the digits of one division or multiplication of a limb
constexpr uint64_t chunk = 10'000'000'000'000'000'000u;

/// The two digits of a number below 100.
void put_pair(uint8_t* out, uint64_t number) {
  std::memcpy(out, Utf8Text::digit_pairs.of(static_cast<int64_t>(number)), 2);
}

}  // namespace

void write_digits(uint8_t* out, int32_t count, uint64_t value) {
  for (; count >= 2; count -= 2, value /= 100) put_pair(out + count - 2, value % 100);
  if (count == 1) out[0] = static_cast<uint8_t>('0' + value % 10);
}

uint8_t* write_digits_before(uint8_t* end, uint64_t value) {
  for (; value >= 10; value /= 100) {
    end -= 2;
    put_pair(end, value % 100);
  }
  if (value != 0) *--end = static_cast<uint8_t>('0' + value);
  return end;
}

int32_t integer_digits(double value, uint8_t* out) {
  const auto [mantissa, exponent] = binary_parts(value);
  uint8_t area[most_integer_digits + 2 * chunk_digits];
  uint8_t* const end = area + sizeof area;
  uint8_t* first = end;
  if (exponent <= 11) {
    if (exponent <= -64) return 0;
    first = write_digits_before(end, exponent < 0 ? mantissa >> -exponent : mantissa << exponent);
  } else {
    // mantissa * 2^exponent in limbs of 64 bits, least significant first; a division takes 19 digits from the end.
    uint64_t limbs[17] = {};
    int32_t count = exponent / 64;
    const int32_t shift = exponent % 64;
    limbs[count] = mantissa << shift;
    const uint64_t high = shift == 0 ? 0 : mantissa >> (64 - shift);
    if (high != 0) limbs[++count] = high;
    for (++count; count > 0;) {
      Wide rest = 0;
      for (int32_t i = count - 1; i >= 0; --i) {
        rest = rest << 64 | limbs[i];
        limbs[i] = static_cast<uint64_t>(rest / chunk);
        rest %= chunk;
      }
      while (count > 0 && limbs[count - 1] == 0) --count;
      const auto digits = static_cast<uint64_t>(rest);
      if (count > 0) write_digits(first -= chunk_digits, chunk_digits, digits);
      else first = write_digits_before(first, digits);
    }
  }
  const auto length = static_cast<int32_t>(end - first);
  std::memcpy(out, first, static_cast<size_t>(length));
  return length;
}

FractionDigits fraction_digits(double value, uint8_t* out, int32_t limit) {
  const auto [mantissa, exponent] = binary_parts(value);
  if (exponent >= 0) return {0, 0};
  // The fraction as a fixed-point number: limbs of 64 bits after the point, most significant first. Each multiplication
  // by 10^19 brings the next 19 digits before the point.
  uint64_t limbs[18] = {};
  const int32_t bits = -exponent;  // bits after the point
  const int32_t last = (bits - 1) / 64;
  const int32_t shift = 64 * (last + 1) - bits;
  const uint64_t below_point = bits < 64 ? mantissa & ((1ull << bits) - 1) : mantissa;
  limbs[last] = below_point << shift;
  if (shift != 0 && last > 0) limbs[last - 1] = below_point >> (64 - shift);
  if (below_point == 0) return {0, 0};
  int32_t end = last + 1;
  int32_t begin = 0;
  FractionDigits result{0, 0};
  uint8_t digits[chunk_digits];
  bool whole = false;  // the expansion ended with what was written
  while (result.count < limit && !whole) {
    while (begin < end && limbs[begin] == 0) ++begin;
    uint64_t carry = 0;
    for (int32_t i = end - 1; i >= begin; --i) {
      const Wide product = static_cast<Wide>(limbs[i]) * chunk + carry;
      limbs[i] = static_cast<uint64_t>(product);
      carry = static_cast<uint64_t>(product >> 64);
    }
    // What leaves the first limb that is not zero stays below the point while limbs before it are zero.
    if (begin > 0) {
      limbs[--begin] = carry;
      carry = 0;
    }
    while (end > 0 && limbs[end - 1] == 0) --end;
    write_digits(digits, chunk_digits, carry);
    int32_t from = 0;
    int32_t to = chunk_digits;
    if (end == 0) {
      while (to > 0 && digits[to - 1] == '0') --to;
    }
    if (result.count == 0) {
      while (from < to && digits[from] == '0') ++from;
      result.leading_zeros += from;
    }
    for (; from < to && result.count < limit; ++from) out[result.count++] = digits[from];
    whole = end == 0;
  }
  return result;
}

}  // namespace vxnls
