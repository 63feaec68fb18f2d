// The integer formatters: one template over the type and the text flavour, exported under eighteen names.
#include <type_traits>

#include "number_format/digits.h"
#include "number_format/draft.h"
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

/// What a call asks for beside the number.
struct IntegerLayout {
  const VXLocale* locale;
  uint32_t flags;
  int64_t field, least_digits;
  bool hexadecimal, octal, grouped;
};

constexpr int64_t no_room = -1, not_short = -2;

/// The short road is for decimal digits, in groups of three or in none, with no padding but blanks before them. Gives
/// the units written, no_room or not_short.
template <class Flavour, int32_t most>
int64_t put_short(typename Flavour::Unit* buffer, int64_t size, uint64_t magnitude, char sign, IntegerLayout layout) {
  using Unit = typename Flavour::Unit;
  if ((layout.flags & (flag_left | flag_zero_pad)) != 0 || layout.hexadecimal || layout.octal) return not_short;
  if (layout.field > Draft<Flavour>::widest) return not_short;
  const int64_t digits = count_digits(magnitude);
  Draft<Flavour> draft;
  Unit* first = draft.point();
  if (layout.grouped && digits > 0) {
    if (digits < layout.least_digits || !has_plain_groups<Flavour>(layout.locale)) return not_short;
    draft.template put_grouped<most>(magnitude, layout.locale->localeData->groupSeparator);
    first -= digits + (digits - 1) / 3;
  } else {
    const int64_t shown = digits < layout.least_digits ? layout.least_digits : digits;
    if (shown > most) return not_short;
    draft.template put_whole<most>(magnitude);
    first -= shown;
  }
  first = draft.put_sign(first, sign);
  const int64_t units = draft.point() - first;
  const int64_t width = layout.field > units ? layout.field : units;
  if (width > size) return no_room;
  constexpr int64_t usual = most + most / 3 + 1;  // digits, separators, a sign
  put_units<usual>(buffer, size, draft.pad(first, draft.point(), width), width);
  return width;
}

template <class Flavour>
[[gnu::noinline]] int64_t put_long(typename Flavour::Unit* buffer, int64_t size, uint64_t magnitude, char sign,
                                   bool is_unsigned, const IntegerLayout& layout) {
  const bool lower = (layout.flags & flag_hex_lower) != 0;
  const bool left = (layout.flags & flag_left) != 0;
  uint8_t digits[most_octal_digits];
  uint8_t* const end = digits + sizeof digits;
  const uint8_t* first;
  if (layout.hexadecimal) {
    first = write_bits_before(end, magnitude, 4, lower ? "0123456789abcdef" : "0123456789ABCDEF");
  } else if (layout.octal) {
    first = write_bits_before(end, magnitude, 3, "01234567");
  } else {
    first = write_digits_before(end, magnitude);
  }

  NumberParts parts;
  parts.whole = {first, end - first};
  if (parts.whole.length < layout.least_digits) parts.zeros = layout.least_digits - parts.whole.length;

  static constexpr uint8_t prefixes[] = {'0', 'x', '0', 'X'};
  const auto sign_unit = static_cast<uint8_t>(sign);
  if (sign != 0) parts.prefix = {&sign_unit, 1};
  if (layout.hexadecimal && (layout.flags & flag_hex_prefix) != 0) parts.prefix = {prefixes + (lower ? 0 : 2), 2};
  if (layout.octal && (layout.flags & flag_octal_prefix) != 0) parts.prefix = {prefixes, 1};

  const Separators separators(layout.locale);
  const SeparatorPlaces places(layout.grouped ? integer_grouping(layout.locale) : Grouping(), parts.whole.length);
  if ((layout.flags & flag_zero_pad) != 0 && !left && layout.least_digits == 0) {
    // A sign counts against the width that the zeros fill, a prefix does not: kept on purpose.
    const int64_t taken = units_of<Flavour>(parts, separators, places) - (is_unsigned ? parts.prefix.length : 0);
    if (layout.field > taken) parts.zeros = layout.field - taken;
  }
  return put_field<Flavour>(buffer, size, layout.field, left, parts, separators, places);
}

template <class Flavour, class Integer>
VXStatus format_integer(VXLocale* locale, Integer value, int32_t width, int32_t precision, uint32_t flags,
                        typename Flavour::Unit* buffer, int64_t size, int64_t* length) {
  if (buffer == nullptr || length == nullptr) return VX_E_NULL;
  const int64_t field = width < 0 ? -static_cast<int64_t>(width) : width;
  const int64_t least_digits = precision < 0 ? default_precision : precision;
  if (least_digits > size || field > size) return VX_E_TRUNCATED;

  constexpr bool is_unsigned = std::is_unsigned_v<Integer>;
  constexpr uint32_t other_bases = flag_hex_lower | flag_hex_upper | flag_octal;
  const bool hexadecimal = is_unsigned && (flags & (flag_hex_lower | flag_hex_upper)) != 0;
  const bool octal = is_unsigned && !hexadecimal && (flags & flag_octal) != 0;
  const bool grouped = (flags & (flag_group | other_bases)) == flag_group;
  const IntegerLayout layout{locale, flags, field, least_digits, hexadecimal, octal, grouped};

  auto magnitude = static_cast<uint64_t>(value);
  char sign = 0;
  if constexpr (!is_unsigned) {
    // By a mask, as signs come at random. Negated as unsigned, so that the most negative value has a magnitude.
    const char other_sign = (flags & flag_plus) != 0 ? '+' : (flags & flag_blank) != 0 ? ' ' : '\0';
    const uint64_t negative = value < 0 ? ~UINT64_C(0) : 0;
    magnitude = (magnitude ^ negative) - negative;
    sign = static_cast<char>(other_sign ^ ((other_sign ^ '-') & static_cast<char>(negative)));
  }

  constexpr int32_t most_digits = sizeof(Integer) == 4 ? 10 : 20;
  int64_t written = put_short<Flavour, most_digits>(buffer, size, magnitude, sign, layout);
  if (written == not_short) written = put_long<Flavour>(buffer, size, magnitude, sign, is_unsigned, layout);
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
