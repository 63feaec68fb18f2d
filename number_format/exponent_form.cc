#include "number_format/exponent_form.h"

#include <cmath>
#include <cstring>

#include "number_format/digits.h"
#include "number_format/powers.h"

namespace vxnls {

namespace {

constexpr int32_t most_mantissa_digits = 14;    // what the value gives; zeros beyond
constexpr int32_t highest_power = 307;          // beyond it a power is applied in two steps
constexpr double tenth = 0x1.999999999999bp-4;  // a little above 0.1, so that a carried mantissa stays at or above it
constexpr double nudge = 0x1.0000000000008p+0;

struct Normalised {
  double mantissa;   // 0.1 to below 1; 0 for 0
  int32_t exponent;  // value = mantissa * 10^exponent
};

Normalised normalise(double value) {
  if (value == 0) return {0, 1};
  int binary_exponent = 0;
  std::frexp(value, &binary_exponent);
  int32_t k = binary_exponent * 77 / 256;  // towards zero
  double m = value;
  if (k >= 0) {
    if (k > highest_power) m = m / power_of_ten(highest_power) / power_of_ten(k - highest_power);
    else m /= power_of_ten(k);
  } else {
    if (-k > highest_power) m = m * power_of_ten(highest_power) * power_of_ten(-k - highest_power);
    else m *= power_of_ten(-k);
  }
  for (; m >= 1; ++k) m *= tenth;
  for (; m < 0.1; --k) m *= 10;
  return {m, k};
}

/// Writes "E", the sign and the digits of an exponent; gives the length.
int32_t exponent_text(int32_t exponent, bool automatic, uint8_t* out) {
  uint8_t* at = out;
  *at++ = 'E';
  if (exponent < 0) *at++ = '-';
  else if (!automatic) *at++ = '+';
  const int32_t magnitude = exponent < 0 ? -exponent : exponent;
  const int32_t least = automatic ? 1 : 2;
  const int32_t count = magnitude > 99 ? 3 : magnitude > 9 ? 2 : least;
  write_digits(at, count, static_cast<uint64_t>(magnitude));
  return static_cast<int32_t>(at - out) + count;
}

/// One way to place the point: how many digits stand before it, and how many digits fit then.
struct Placing {
  int32_t before_point;
  int32_t capacity;
};

Placing placing(int32_t exponent, int32_t before_point, int32_t room, int32_t point_units, bool automatic) {
  uint8_t text[8];
  // The mantissa is below 1: with `before_point` digits before the point the exponent shown is that much smaller.
  const int32_t left = room - exponent_text(exponent - before_point, automatic, text);
  if (before_point == 0) return {0, left - point_units};
  if (left <= before_point) return {before_point, left < before_point ? 0 : left};
  return {before_point, left - point_units > before_point ? left - point_units : before_point};
}

}  // namespace

bool exponent_form(double value, int32_t room, int32_t digits, int32_t point_units, ExponentForm* form) {
  const bool automatic = digits <= 0;
  Normalised number = normalise(value);
  Placing usual{};
  Placing best{};
  int32_t wanted = 0;
  // A second round when rounding carries the mantissa to 1: the exponent may change its width.
  for (int round = 0;; ++round) {
    usual = best = placing(number.exponent, 1, room, point_units, automatic);
    if (usual.capacity < 2 && (automatic || digits > usual.capacity)) {
      // Two digits before the point, or none, make the exponent text shorter at times: that wins a digit.
      constexpr int32_t others[] = {2, 0};
      for (const int32_t other : others) {
        const Placing tried = placing(number.exponent, other, room, point_units, automatic);
        if (tried.capacity > best.capacity) best = tried;
      }
    }
    wanted = automatic || digits > best.capacity ? best.capacity : digits;
    if (wanted < 1) return false;
    if (round == 1 || number.mantissa == 0) break;
    double rounded = number.mantissa;
    if (wanted < 15) rounded += 0.5 / power_of_ten(wanted);
    rounded *= nudge;
    number.mantissa = rounded;
    if (rounded < 1) break;
    number.mantissa *= tenth;
    ++number.exponent;
  }

  const int32_t taken = wanted < most_mantissa_digits ? wanted : most_mantissa_digits;
  form->digit_count = fraction_digits(number.mantissa, form->digits, taken).count;
  while (form->digit_count > 0 && form->digits[form->digit_count - 1] == '0') --form->digit_count;
  if (form->digit_count < 2) best = usual;  // no digit was won after all
  // Digits that stand before the point are shown, and those asked for beyond what the value gives, as zeros.
  int32_t least = best.before_point > 1 ? best.before_point : 1;
  if (!automatic && wanted > most_mantissa_digits) least = wanted;
  while (form->digit_count < least) form->digits[form->digit_count++] = '0';
  form->digits_before_point = best.before_point;
  form->exponent_length = exponent_text(number.exponent - best.before_point, automatic, form->exponent);
  return true;
}

}  // namespace vxnls
