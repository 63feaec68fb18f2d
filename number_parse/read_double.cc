#include "number_parse/read_double.h"

#include "number_parse/digit_blocks.h"

#include "vxnls/number_parse.h"

using namespace vxnls;

namespace {

/// Digits that are one number together with how many of them stand behind the point; a number of 0 is none that was
/// read here.
struct PlainDigits {
  uint64_t mantissa = 0;
  int64_t digits = 0, places = 0;
};

/// At most eight units of digits, one of which may be a point: ASCII, no digit, not the separator.
template <class Unit>
PlainDigits read_eight(const Unit* at, int64_t count, VXChar point) {
  const Eight units = last_units(at, count, 0);
  const Eight others = units ^ eight_of(static_cast<uint8_t>(point));
  const Eight points = (others - eight_of(1)) & ~others & eight_of(0x80);  // the lowest byte of them is one
  const int32_t place = points != 0 ? std::countr_zero(points) - 7 : 0;
  const Eight before = (Eight{1} << place) - 1, up_to = points != 0 ? before << 8 | 0xFF : 0;
  Eight digits = (units ^ eight_of('0')) & ~Eight{0} << 8 * (8 - count);
  digits = (digits & ~up_to) | (digits & before) << 8;
  if (!are_digits(digits)) return {};
  return {number_of<10000>(digits), count, points != 0 ? 7 - place / 8 : 0};
}

/// The short road, for texts that are nothing but a minus, at most 18 digits with one-unit separators among those
/// before the point, a point and an exponent. The digits are exact in 64 bits, and so in the 80 of the one operation
/// that is left, which is what the conversion comes to for them. False, with nothing written, for all other texts,
/// zeros included.
template <class Unit>
bool read_short(const VXLocaleData& data, const Unit* text, int64_t length, double* value) {
  constexpr int64_t most_digits = 18;
  constexpr VXChar no_unit = 0xFFFFFFFF;
  const auto as_unit = [](VXChar c) { return sizeof(Unit) > 1 || c < 0x80 ? c : no_unit; };
  const VXChar point = as_unit(data.decimalPoint), separator = as_unit(data.groupSeparator);
  const auto digit = [](Unit unit) { return unit - uint32_t{'0'}; };
  if (length < 1) return false;

  const Unit* at = text;
  const Unit* const end = text + length;
  const bool negative = *at == '-';
  at += negative;
  PlainDigits number;
  const bool usual_point = point > ' ' && point < 0x80 && is_no_digit_or_sign(point) && point != separator;
  if (usual_point && at < end && end - at <= 8) number = read_eight(at, end - at, point);
  int64_t exponent = 0;
  if (number.mantissa == 0) {
    if (at == end || digit(*at) > 9) return false;
    for (; at < end; ++at) {
      if (digit(*at) <= 9) {
        number.mantissa = 10 * number.mantissa + digit(*at);
        ++number.digits;
      } else if (*at != separator) {
        break;
      }
    }
    if (at < end && *at == point) {
      const Unit* const fraction = ++at;
      for (; end - at >= 8; at += 8) {
        const Eight eight = take_eight(at) ^ eight_of('0');
        if (!are_digits(eight)) break;
        number.mantissa = 100'000'000 * number.mantissa + number_of<10000>(eight);
      }
      for (; at < end && digit(*at) <= 9; ++at) number.mantissa = 10 * number.mantissa + digit(*at);
      number.places = at - fraction;
      number.digits += number.places;
    }
    if (at < end) {
      if (!AsciiUnits::is_exponent_letter(*at++)) return false;
      const bool below = at < end && *at == '-';
      at += at < end && (*at == '-' || *at == '+');
      if (at == end || end - at > 3) return false;
      for (; at < end && digit(*at) <= 9; ++at) exponent = 10 * exponent + digit(*at);
      if (at < end) return false;
      if (below) exponent = -exponent;
    }
  }
  const int64_t scale = exponent - number.places;
  if (number.digits > most_digits || number.mantissa == 0 || scale < -308 || scale + number.digits > 307) return false;
  const auto power = extended_power_of_ten<Extended>;
  const Extended whole = exactly<Extended>(number.mantissa);
  const auto magnitude = static_cast<double>(scale < 0 ? whole / power(-scale) : whole * power(scale));
  *value = negative ? -magnitude : magnitude;
  return true;
}

template <class Code>
VXStatus read_either_way(VXLocale* locale, const typename Code::Unit* text, int32_t length, uint32_t flags,
                         double* value, int64_t* consumed) {
  if (locale != nullptr && locale->localeData != nullptr && text != nullptr && value != nullptr &&
      consumed != nullptr && read_short(*locale->localeData, text, length, value)) {
    *consumed = length;
    return 0;
  }
  return read_double(Marks<Code>(conventions_of(locale, flags)), text, length, value, consumed);
}

}  // namespace

VXStatus NLSBufToDoubleWithOpts(VXLocale* locale, const VXChar* text, int32_t length, uint32_t flags, double* value,
                                int64_t* consumed) {
  return read_either_way<Utf32Code>(locale, text, length, flags, value, consumed);
}

VXStatus NLSBufToDouble(VXLocale* locale, const VXChar* text, int32_t length, double* value, int64_t* consumed) {
  return read_either_way<Utf32Code>(locale, text, length, 0, value, consumed);
}

VXStatus NLSBufToDoubleUWithOpts(VXLocale* locale, const uint8_t* text, int32_t length, uint32_t flags, double* value,
                                 int64_t* consumed) {
  return read_either_way<Utf8Code>(locale, text, length, flags, value, consumed);
}

VXStatus NLSBufToDoubleU(VXLocale* locale, const uint8_t* text, int32_t length, double* value, int64_t* consumed) {
  return read_either_way<Utf8Code>(locale, text, length, 0, value, consumed);
}

VXStatus NLSBufToDoubleA(VXLocale* locale, const uint8_t* text, int32_t length, double* value, int64_t* consumed,
                         VXConverter* converter) {
  return read_double(Marks<AsciiCode>(conventions_of(locale, 0), converter), text, length, value, consumed);
}

VXStatus NLSBufToDoubleE(VXLocale* locale, const uint8_t* text, int32_t length, double* value, int64_t* consumed,
                         VXConverter* converter) {
  return read_double(Marks<EbcdicCode>(conventions_of(locale, 0), converter), text, length, value, consumed);
}
