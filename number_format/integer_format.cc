// The integer formatters: one template over the type and the text flavour, exported under eighteen names.
#include <type_traits>

#include "number_format/digits.h"
#include "number_format/layout.h"
#include "vxnls/number_format.h"

namespace vxnls {

namespace {

constexpr uint32_t flag_hex_lower = 0x0080;
constexpr uint32_t flag_hex_upper = 0x0100;
constexpr uint32_t flag_octal = 0x0200;
constexpr uint32_t flag_hex_prefix = 0x800000;
constexpr uint32_t flag_octal_prefix = 0x1000000;
constexpr int32_t default_precision = 6;
constexpr int32_t most_octal_digits = 22;  // of 64 bits

/// Each decimal digit of the locale's grouping pattern is a size, "-" ends grouping, other units are passed over.
Grouping integer_grouping(const VXLocale* locale) {
  Grouping grouping;
  if (locale == nullptr || locale->localeData == nullptr) return grouping;
  const TextView pattern = view(locale->localeData->groupingPattern);
  for (int64_t i = 0; i < pattern.length; ++i) {
    const VXChar c = pattern.text[i];
    if (c >= '0' && c <= '9') grouping.add(static_cast<int32_t>(c - '0'));
    if (c == '-') {
      grouping.add(-1);
      break;
    }
  }
  return grouping;
}

/// Writes the digits of `value` in a base of `bits` bits a digit before `end`; gives the first.
uint8_t* write_bits_before(uint8_t* end, uint64_t value, int32_t bits, const char* alphabet) {
  for (; value != 0; value >>= bits) *--end = static_cast<uint8_t>(alphabet[value & ((1u << bits) - 1)]);
  return end;
}

template <class Flavour, class Integer>
VXStatus format_integer(VXLocale* locale, Integer value, int32_t width, int32_t precision, uint32_t flags,
                        typename Flavour::Unit* buffer, int64_t size, int64_t* length) {
  if (buffer == nullptr || length == nullptr) return VX_E_NULL;
  const int64_t field = width < 0 ? -static_cast<int64_t>(width) : width;
  const int64_t least_digits = precision < 0 ? default_precision : precision;
  if (least_digits > size || field > size) return VX_E_TRUNCATED;

  constexpr bool is_unsigned = std::is_unsigned_v<Integer>;
  const bool hexadecimal = is_unsigned && (flags & (flag_hex_lower | flag_hex_upper)) != 0;
  const bool octal = is_unsigned && !hexadecimal && (flags & flag_octal) != 0;
  const bool lower = (flags & flag_hex_lower) != 0;
  const bool left = (flags & flag_left) != 0;

  bool negative = false;
  if constexpr (!is_unsigned) negative = value < 0;
  // Negated as unsigned, so that the most negative value has a magnitude.
  const uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);

  uint8_t digits[most_octal_digits];
  uint8_t* const end = digits + sizeof digits;
  const uint8_t* first;
  if (hexadecimal) first = write_bits_before(end, magnitude, 4, lower ? "0123456789abcdef" : "0123456789ABCDEF");
  else if (octal) first = write_bits_before(end, magnitude, 3, "01234567");
  else first = write_digits_before(end, magnitude);

  NumberParts parts;
  parts.whole = {first, end - first};
  if (parts.whole.length < least_digits) parts.zeros = least_digits - parts.whole.length;

  static constexpr uint8_t signs[] = {'-', '+', ' '};
  static constexpr uint8_t prefixes[] = {'0', 'x', '0', 'X'};
  if constexpr (is_unsigned) {
    if (hexadecimal && (flags & flag_hex_prefix) != 0) parts.prefix = {prefixes + (lower ? 0 : 2), 2};
    if (octal && (flags & flag_octal_prefix) != 0) parts.prefix = {prefixes, 1};
  } else {
    if (negative) parts.prefix = {signs, 1};
    else if ((flags & flag_plus) != 0) parts.prefix = {signs + 1, 1};
    else if ((flags & flag_blank) != 0) parts.prefix = {signs + 2, 1};
  }

  const Separators separators(locale);
  const bool grouped = (flags & (flag_group | flag_hex_lower | flag_hex_upper | flag_octal)) == flag_group;
  const SeparatorPlaces places(grouped ? integer_grouping(locale) : Grouping(), parts.whole.length);

  if ((flags & flag_zero_pad) != 0 && !left && least_digits == 0) {
    // A sign counts against the width that the zeros fill, a prefix does not: kept on purpose.
    const int64_t taken = units_of<Flavour>(parts, separators, places) - (is_unsigned ? parts.prefix.length : 0);
    if (field > taken) parts.zeros = field - taken;
  }
  const int64_t written = put_field<Flavour>(buffer, size, field, left, parts, separators, places);
  if (written < 0) return VX_E_TRUNCATED;
  *length = written;
  return 0;
}

}  // namespace

}  // namespace vxnls

#define VX_FORMAT_INTEGER(name, type)                                                                               \
  VXStatus name(VXLocale* locale, type value, int32_t width, int32_t precision, uint32_t flags, VXChar* buffer,     \
                int64_t size, int64_t* length) {                                                                    \
    return vxnls::format_integer<vxnls::Utf32Text>(locale, value, width, precision, flags, buffer, size, length);   \
  }                                                                                                                 \
  VXStatus name##U(VXLocale* locale, type value, int32_t width, int32_t precision, uint32_t flags, uint8_t* buffer, \
                   int64_t size, int64_t* length) {                                                                 \
    return vxnls::format_integer<vxnls::Utf8Text>(locale, value, width, precision, flags, buffer, size, length);    \
  }

extern "C" {
VX_FORMAT_INTEGER(NLSIntFormat, int32_t)
VX_FORMAT_INTEGER(NLSIntfastFormat, int32_t)
VX_FORMAT_INTEGER(NLSUIntFormat, uint32_t)
VX_FORMAT_INTEGER(NLSUintfastFormat, uint32_t)
VX_FORMAT_INTEGER(NLSLongFormat, int64_t)
VX_FORMAT_INTEGER(NLSIntmaxFormat, int64_t)
VX_FORMAT_INTEGER(NLSULongFormat, uint64_t)
VX_FORMAT_INTEGER(NLSUintmaxFormat, uint64_t)
VX_FORMAT_INTEGER(NLSPointerFormat, uint64_t)
}
