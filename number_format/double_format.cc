#include "number_format/double_format.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "number_format/digits.h"
#include "number_format/draft.h"
#include "number_format/exponent_form.h"
#include "number_format/short_decimal.h"
#include "vxnls/journal.h"
#include "vxnls/number_parse.h"

namespace vxnls {

namespace {

constexpr uint32_t flag_general = 0x0001 | 0x0400;
constexpr uint32_t flag_plain = 0x0002;
constexpr uint32_t flag_fraction_only = 0x0004;
constexpr uint32_t flag_integer_only = 0x0008;
constexpr uint32_t flag_exponent = 0x0010 | 0x0020;
constexpr uint32_t flag_best = 0x0800;
constexpr uint32_t flag_fixed = 0x1000;
constexpr uint32_t flag_fixed_exponent = 0x2000;
constexpr uint32_t flag_exponent_or_integer = 0x4000;
constexpr uint32_t flag_keep_zeros = 0x400000;
constexpr uint32_t flags_of_sign_and_padding = flag_plus | flag_left | flag_zero_pad | flag_blank;

constexpr int32_t best_decimals = 99;
constexpr int32_t default_decimals = 6;
constexpr int32_t best_free_decimals = 12;
constexpr int32_t most_decimals = 350;      // of the free mode
constexpr int32_t significant_digits = 15;  // that a fixed field takes from the value
constexpr int32_t narrowest_exponent_field = 7;
constexpr double nudge = 0x1.0000000000001p+0;

constexpr double halves[widest_field] = {0.5,   5e-2,  5e-3,  5e-4,  5e-5,  5e-6,  5e-7,  5e-8,  5e-9,  5e-10, 5e-11,
                                         5e-12, 5e-13, 5e-14, 5e-15, 5e-16, 5e-17, 5e-18, 5e-19, 5e-20, 5e-21, 5e-22,
                                         5e-23, 5e-24, 5e-25, 5e-26, 5e-27, 5e-28, 5e-29, 5e-30, 5e-31, 5e-32};

constexpr uint8_t minus = '-';
constexpr uint8_t plus = '+';
constexpr uint8_t blank = ' ';
constexpr uint8_t zero = '0';

/// The code of a missing value, from its byte at bits 40 to 47; 2, the ordinary one, for every NaN without a code.
int32_t missing_code(double value) {
  const auto code = static_cast<int32_t>((0 - (std::bit_cast<uint64_t>(value) >> 40)) & 0xFF);
  return code >= 1 && code <= 28 ? code : 2;
}

/// The group sizes of the locale as doubles read them: sizes separated by any one unit.
struct DoubleGrouping {
  Grouping sizes;
  bool no_room = false;  // a size of 0: the pattern allows no separators
};

DoubleGrouping double_grouping(VXLocale* locale) {
  DoubleGrouping grouping;
  if (locale == nullptr || locale->localeData == nullptr) {
    grouping.sizes.add(3);
    return grouping;  // cppcheck-suppress uninitvar ; as many sizes are written as are counted
  }
  const TextView pattern = view(locale->localeData->groupingPattern);
  for (int64_t at = 0;;) {  // a size and what ends it take two units: there is room for all
    const bool first = at == 0;
    const bool ends_grouping = !first && pattern.text[at] == '-';
    if (ends_grouping) {
      grouping.sizes.add(-1);
      break;
    }
    int32_t size = 0;
    uint64_t consumed = 0;
    const VXStatus status = NLSBufToIntfast(locale, pattern.text + at, pattern.length - at, 0, &size, &consumed);
    if (size == 0) {
      // What cannot be read means groups of 3, a size of 0 that none fit; after a first size it ends the list.
      if (first && status != 0) grouping.sizes.add(3);
      if (first && status == 0) grouping.no_room = true;
      break;
    }
    grouping.sizes.add(size);
    at += static_cast<int64_t>(consumed) + 1;
    if (at >= pattern.length) break;
  }
  return grouping;
}

/// One call, after its arguments were looked at.
template <class Flavour>
struct DoubleField {
  using Unit = typename Flavour::Unit;

  VXLocale* locale;
  uint32_t flags;
  Unit* buffer;
  int64_t size;
  int64_t* length;
  Separators separators{locale};

  VXStatus stars(int64_t units, VXStatus status) const {
    fill(buffer, units, '*');
    *length = units > 0 ? units : 0;
    return status;
  }

  int64_t point_units() const { return Flavour::units(separators.decimal_point); }

  /// Sets the sign, and the zeros that pad up to `width`.
  void dress(NumberParts* parts, bool negative, const SeparatorPlaces& places, int64_t width) const {
    const bool left = (flags & flag_left) != 0;
    const bool zero_pad = (flags & flag_zero_pad) != 0 && !left;
    if (negative) parts->prefix = {&minus, 1};
    else if ((flags & flag_plus) != 0) parts->prefix = {&plus, 1};
    else if ((flags & flag_blank) != 0 && !left && !zero_pad) parts->prefix = {&blank, 1};
    if (!zero_pad) return;
    const int64_t units = units_of<Flavour>(*parts, separators, places);
    if (width > units) parts->zeros = width - units;
  }

  /// Lays a fixed field out. The parts without signs and separators are known to fit.
  VXStatus put_fixed(int64_t field, const NumberParts& plain, bool negative, bool grouped, VXStatus status) const {
    const SeparatorPlaces ungrouped(Grouping(), 0);
    if (status == 0 && (grouped || (flags & flags_of_sign_and_padding) != 0)) {
      const bool left = (flags & flag_left) != 0;
      if (grouped) {
        const DoubleGrouping grouping = double_grouping(locale);
        const SeparatorPlaces places(grouping.sizes, plain.whole.length);
        NumberParts parts = plain;
        dress(&parts, negative, places, field);
        if (!grouping.no_room && put_field<Flavour>(buffer, field, field, left, parts, separators, places) >= 0) {
          *length = field;
          return 0;
        }
        status = VX_E_GROUPING;
      }
      NumberParts parts = plain;
      dress(&parts, negative, ungrouped, field);
      if (put_field<Flavour>(buffer, field, field, left, parts, separators, ungrouped) >= 0) {
        *length = field;
        return status;
      }
      status = VX_E_GROUPING;  // a sign that does not fit is left out like separators that do not
    }
    NumberParts parts = plain;
    if (negative) parts.prefix = {&minus, 1};
    put_field<Flavour>(buffer, field, field, false, parts, separators, ungrouped);
    *length = field;
    return status;
  }

  VXStatus put_exponent(int64_t field, const ExponentForm& form, bool negative, bool grouped, VXStatus status) const {
    NumberParts parts;
    parts.whole = {form.digits, form.digits_before_point};
    parts.fraction = {form.digits + form.digits_before_point, form.digit_count - form.digits_before_point};
    parts.tail = {form.exponent, form.exponent_length};
    return put_fixed(field, parts, negative, grouped, status);
  }

  VXStatus missing(int32_t width, int64_t decimals, bool in_field, const NLSDoubleExOpts* extended,
                   double value) const {
    const int32_t code = missing_code(value);
    VXStatus status = 0;
    VXChar shown = '.';
    if (code == 1) shown = '_';
    else if (code >= 3) shown = static_cast<VXChar>(code + 0x3E);
    else if (extended != nullptr && (extended->options & 1) != 0) {
      if (extended->missing == 0) status = VX_E_MISSCHAR;
      else shown = extended->missing;
    }
    const int64_t units = Flavour::units(shown);
    if (units > size) return stars(size, VX_E_TRUNCATED);
    if (!in_field) {
      Flavour::append(shown, buffer);
      *length = units;
      return status;
    }
    fill(buffer, size, ' ');
    int64_t field = width < 1 ? 1 : width;
    if (field > size) field = size;
    if (field < units) field = units;
    const int64_t place = static_cast<int64_t>(width) - decimals;
    int64_t column = place < 1 ? field - 1 : place - 1;
    if (column > field - units) column = field - units;
    Flavour::append(shown, buffer + column);
    *length = field;
    return status;
  }

  VXStatus infinity(int32_t width, bool negative) const {
    static constexpr uint8_t text[] = {'-', 'I', 'n', 'f'};
    const int64_t field = width < size ? width : size;
    const Run run{negative ? text : text + 1, negative ? 4 : 3};
    if (field < run.length) return stars(field, VX_E_TRUNCATED);
    put(buffer, run);
    *length = run.length;
    return 0;
  }

  /// Exponent form because the value fits in no other way.
  VXStatus exponent_to_fit(int64_t field, double magnitude, bool negative, bool reports) const {
    ExponentForm form;
    if (!exponent_form(magnitude, static_cast<int32_t>(field - (negative ? 1 : 0)), 0,
                       static_cast<int32_t>(point_units()), &form)) {
      return stars(field, VX_E_TRUNCATED);
    }
    return put_exponent(field, form, negative, false, reports ? VX_W_PRECISION : 0);
  }

  VXStatus fixed(int32_t width, int64_t decimals, bool best, bool exponent, bool reports, double value) const;
  VXStatus free(int32_t width, int32_t decimals, bool best, double value) const;
};

template <class Flavour>
VXStatus DoubleField<Flavour>::fixed(int32_t width, int64_t decimals, bool best, bool exponent, bool reports,
                                     double value) const {
  if (width < 1) return VX_E_WIDTH;
  const int64_t field = width < size ? width : size;
  if (width > widest_field || (exponent && width < narrowest_exponent_field)) return stars(field, VX_E_WIDTH);
  if (field == 0) return stars(0, VX_E_TRUNCATED);

  const bool negative = value < 0;
  const int64_t room = field - (negative ? 1 : 0);
  const double magnitude = std::fabs(value);
  const int64_t point = point_units();

  if (exponent) {
    // The room less a sign, "E", the exponent's sign and two digits, and what the point takes.
    const int64_t digits = room > narrowest_exponent_field ? room - narrowest_exponent_field : 1;
    ExponentForm form;
    if (!exponent_form(magnitude, static_cast<int32_t>(room), static_cast<int32_t>(digits), static_cast<int32_t>(point),
                       &form)) {
      return stars(field, VX_E_TRUNCATED);
    }
    return put_exponent(field, form, negative, reports && (flags & flag_group) != 0, 0);
  }

  uint8_t whole[most_integer_digits];
  uint8_t fraction[widest_field];
  int32_t whole_count = integer_digits(magnitude, whole);
  const int32_t n = whole_count;
  const bool integral = magnitude == std::floor(magnitude);

  if (best) {
    decimals = room - 1 - point;
    if (decimals < 2) decimals = room - point;
    if (decimals < 0 || integral) decimals = 0;
    if (!integral && n == 0 && room > 2) {
      uint8_t digit;
      const bool nothing_shows = fraction_digits(magnitude, &digit, 1).leading_zeros >= decimals;
      if (nothing_shows || magnitude < 1e-5) return exponent_to_fit(field, magnitude, negative, reports);
    }
  } else if (decimals < 0) {
    decimals = default_decimals;
  }
  if (n > room || n == widest_field) return exponent_to_fit(field, magnitude, negative, reports);
  const bool grouped = (flags & flag_group) != 0 && reports;
  const bool asked = reports && !best;  // best decimals ask for none, so that none can be missing
  if (room == 0) {
    if (magnitude >= 0.5) return exponent_to_fit(field, magnitude, negative, reports);
    NumberParts nothing;
    nothing.whole = {&zero, 1};
    return put_fixed(field, nothing, false, grouped, asked && decimals > 0 ? VX_W_PRECISION : 0);
  }

  VXStatus status = 0;
  const auto integer_room = [&] { return decimals > 0 ? room - decimals - point : room; };
  if (n > integer_room()) {
    decimals = room - n - point;
    if (decimals < 0) decimals = 0;
    if (asked) status = VX_W_PRECISION;
  }

  double rounded = magnitude;
  if (!integral) {
    for (;;) {
      rounded = decimals > significant_digits - n ? magnitude * nudge : (magnitude + halves[decimals]) * nudge;
      whole_count = integer_digits(rounded, whole);
      if (whole_count <= integer_room()) break;
      if (decimals == 0) return exponent_to_fit(field, magnitude, negative, reports);
      --decimals;
      if (asked) status = VX_W_PRECISION;
    }
  }

  std::memset(fraction, '0', sizeof fraction);
  if (!integral && decimals > 0) {
    uint8_t digits[significant_digits];
    const FractionDigits found = fraction_digits(rounded, digits, significant_digits);
    // Zeros after the point are significant only behind integer digits.
    const int64_t last = whole_count > 0 ? significant_digits - whole_count : found.leading_zeros + significant_digits;
    for (int64_t i = 0, at = found.leading_zeros; i < found.count && at < last && at < decimals; ++i, ++at) {
      fraction[at] = digits[i];
    }
  }
  if (best) {
    while (decimals > 0 && fraction[decimals - 1] == '0') --decimals;
  }

  NumberParts parts;
  parts.whole = {whole, whole_count};
  parts.fraction = {fraction, decimals};
  if (whole_count == 0 && integer_room() > 0) parts.whole = {&zero, 1};
  return put_fixed(field, parts, negative, grouped, status);
}

/// Digits of a magnitude: 0.<digits> * 10^point. The digit before `first` is free for a carry.
struct Decimal {
  uint8_t area[1 + most_integer_digits + most_fraction_digits];
  uint8_t* first = area + 1;
  int32_t count = 0;
  int32_t point = 0;

  /// Takes `significant` digits, or `places` digits after the point where that is given (-1: not), and one more.
  // cppcheck-suppress uninitMemberVar ; the area is written before it is read
  Decimal(double magnitude, int32_t significant, int32_t places) {
    count = point = integer_digits(magnitude, first);
    if (count > 0) {
      static_assert(most_decimals < most_fraction_digits);
      const int32_t wanted = (places >= 0 ? places : significant - count) + 1;
      if (wanted < 1) return;
      uint8_t digits[most_fraction_digits];
      const FractionDigits found = fraction_digits(magnitude, digits, wanted);
      if (found.count == 0) return;
      for (int32_t i = 0; i < found.leading_zeros && i < wanted; ++i) first[count++] = '0';
      for (int32_t i = 0; i < found.count && count < point + wanted; ++i) first[count++] = digits[i];
      return;
    }
    const FractionDigits found = fraction_digits(magnitude, first, most_fraction_digits);
    count = found.count;
    point = -found.leading_zeros;
  }

  /// Keeps the first `kept` digits, rounded half up; what is left is the empty count when nothing remains.
  void round(int32_t kept) {
    if (kept >= count) return;
    const bool up = kept >= 0 && first[kept] > '4';
    count = kept < 0 ? 0 : kept;
    if (!up) return;
    int32_t i = count - 1;
    while (i >= 0 && first[i] == '9') first[i--] = '0';
    if (i >= 0) {
      ++first[i];
      return;
    }
    *--first = '1';
    ++count;
    ++point;
  }
};

/// The text of a free-mode number: parts whose runs lie in `area`.
struct FreeText {
  uint8_t area[most_integer_digits + 1 + most_decimals + 8];
  NumberParts parts;

  /// Plain notation with `decimals` digits after the point.
  void plain(const Decimal& number, int32_t decimals) {
    uint8_t* at = area;
    const int32_t whole = number.count == 0 || number.point <= 0 ? 0 : number.point;
    for (int32_t i = 0; i < whole; ++i) *at++ = number.first[i];
    if (whole == 0) *at++ = zero;
    parts.whole = {area, at - area};
    uint8_t* const fraction = at;
    for (int32_t i = 0; i < decimals; ++i) {
      const int32_t place = number.point + i;  // index of the digit at this place
      *at++ = number.count > 0 && place >= 0 && place < number.count ? number.first[place] : zero;
    }
    parts.fraction = {fraction, at - fraction};
  }

  /// One digit before the point, `digits` in all, and an exponent of at least two digits with its sign.
  void scientific(const Decimal& number, int32_t digits) {
    for (int32_t i = 0; i < digits; ++i) area[i] = i < number.count ? number.first[i] : zero;
    parts.whole = {area, 1};
    parts.fraction = {area + 1, digits - 1};
    uint8_t* const tail = area + digits;
    uint8_t* at = tail;
    const int32_t exponent = number.count == 0 ? 0 : number.point - 1;
    const int32_t size = exponent < 0 ? -exponent : exponent;
    *at++ = 'E';
    *at++ = exponent < 0 ? minus : plus;
    const int32_t length = size > 99 ? 3 : 2;
    write_digits(at, length, static_cast<uint64_t>(size));
    parts.tail = {tail, at - tail + length};
  }

  void drop_trailing_zeros() {
    while (parts.fraction.length > 0 && parts.fraction.text[parts.fraction.length - 1] == '0') --parts.fraction.length;
  }
};

template <class Flavour>
VXStatus DoubleField<Flavour>::free(int32_t width, int32_t decimals, bool best, double value) const {
  const bool negative = value < 0;
  double magnitude = std::fabs(value);
  const bool general = (flags & flag_general) != 0 ||
                       (flags & (flag_plain | flag_fraction_only | flag_integer_only | flag_exponent)) == 0;
  if (best) decimals = best_free_decimals;
  if (decimals < 0 || (general && decimals == 0)) decimals = default_decimals;
  if (decimals > most_decimals) decimals = most_decimals;

  FreeText text;
  if (general) {
    Decimal number(magnitude, decimals, -1);
    number.round(decimals);
    const int32_t exponent = number.count == 0 ? 0 : number.point - 1;
    if (exponent < -4 || exponent >= decimals) text.scientific(number, decimals);
    else text.plain(number, decimals - 1 - exponent);
    if ((flags & flag_keep_zeros) == 0) text.drop_trailing_zeros();
  } else if ((flags & flag_exponent) != 0) {
    const int32_t digits = decimals + 1;
    Decimal number(magnitude, digits, -1);
    if (number.point <= 0 && digits > most_decimals && number.count > most_decimals) {
      *length = 0;
      return VX_E_DIRECTIVE;  // the work area holds no more digits of a fraction
    }
    number.round(digits);
    text.scientific(number, digits);
  } else {
    if ((flags & flag_integer_only) != 0) decimals = 0;
    else if ((flags & flag_fraction_only) != 0) magnitude -= std::floor(magnitude);
    Decimal number(magnitude, 0, decimals);
    number.round(number.point + decimals);
    text.plain(number, decimals);
  }

  const bool left = (flags & flag_left) != 0;
  const int64_t field = width < 0 ? -static_cast<int64_t>(width) : width;
  VXStatus status = 0;
  const SeparatorPlaces ungrouped(Grouping(), 0);
  if ((flags & flag_group) != 0) {
    const DoubleGrouping grouping = double_grouping(locale);
    const SeparatorPlaces places(grouping.sizes, text.parts.whole.length);
    const int64_t limit = field == 0 || field > size ? size : field;
    NumberParts parts = text.parts;
    dress(&parts, negative, places, 0);
    if (!grouping.no_room && units_of<Flavour>(parts, separators, places) <= limit) {
      dress(&parts, negative, places, field);
      const int64_t written = put_field<Flavour>(buffer, size, field, left, parts, separators, places);
      if (written < 0) return stars(size, VX_E_TRUNCATED);
      *length = written;
      return 0;
    }
    status = VX_E_GROUPING;
  }
  dress(&text.parts, negative, ungrouped, field);
  const int64_t written = put_field<Flavour>(buffer, size, field, left, text.parts, separators, ungrouped);
  if (written < 0) return stars(size, VX_E_TRUNCATED);
  *length = written;
  return status;
}

/// floor(fraction * 10^decimals) of a value from 0 to below 1, exactly, for at most 15 decimals.
uint64_t scaled_fraction(double fraction, int64_t decimals) {
  __extension__ using Wide = unsigned __int128;
  const auto [mantissa, exponent] = binary_parts(fraction);
  return static_cast<uint64_t>(static_cast<Wide>(mantissa) * powers_of_ten[decimals] >>
                               (exponent < -127 ? 127 : -exponent));
}

/// What the short roads of numbers with decimals have in common.
constexpr double below_short = 1e15;

/// Whether the locale's point, and its groups where they are asked for, are those of the short roads.
template <class Flavour>
bool has_short_marks(const VXLocale* locale, bool grouped) {
  return Flavour::units(Separators(locale).decimal_point) == 1 && (!grouped || has_plain_groups<Flavour>(locale));
}

/// A number of at most 15 digits before the point.
template <class Flavour>
struct ShortNumber {
  Separators separators;
  uint64_t whole;
  int64_t decimals;
  bool negative, grouped;
  int64_t shown, separated;  // digits and separators before the point
  int64_t units;

  [[gnu::always_inline]] ShortNumber(const VXLocale* locale, uint64_t digits, int64_t places, bool has_minus,
                                     bool in_groups)
      : separators(locale), whole(digits), decimals(places), negative(has_minus), grouped(in_groups) {
    const int32_t count = count_digits(whole);
    shown = count > 0 ? count : 1;
    separated = grouped ? (shown - 1) / 3 : 0;
    units = negative + shown + separated + (decimals > 0 ? 1 + decimals : 0);
  }

  /// Writes it with its fraction, of as many digits as there are decimals; gives where a field of that width begins.
  [[gnu::always_inline]] const typename Flavour::Unit* put(Draft<Flavour>& draft, uint64_t fraction,
                                                           int64_t field) const {
    auto* end = draft.point();
    if (decimals > 0) end = draft.put_fraction(fraction, decimals, separators.decimal_point);
    auto* first = draft.point() - shown - separated;
    if (grouped) draft.template put_grouped<significant_digits>(whole, separators.group);
    else draft.template put_whole<significant_digits>(whole);
    first = draft.put_sign(first, negative ? '-' : '\0');
    return draft.pad(first, end, field);
  }
};

/// The short road of a fixed field: a value whose digits, as many as the field asks for, are at most its 15 significant
/// ones, and fit. Everything is exact in 64 bits then, but for the rounding, which is the long road's. Gives false,
/// with nothing written, when the value has to take that one.
template <class Flavour>
bool put_short_fixed(const VXLocale* locale, int64_t field, int32_t decimals, bool grouped,
                     typename Flavour::Unit* buffer, double value) {
  const double magnitude = std::fabs(value);
  if (!(magnitude < below_short) || !has_short_marks<Flavour>(locale, grouped)) return false;
  double rounded = magnitude;
  auto whole = static_cast<int64_t>(rounded);
  const bool integral = rounded == static_cast<double>(whole);
  if (!integral) {
    rounded = (magnitude + halves[decimals]) * nudge;
    whole = static_cast<int64_t>(rounded);
  }
  const auto digits = static_cast<uint64_t>(whole);
  const int32_t count = count_digits(digits);
  // Also where the digits before rounding were too many: it takes none away.
  if (!integral && decimals > significant_digits - count) return false;
  const ShortNumber<Flavour> number(locale, digits, decimals, value < 0, grouped);
  if (number.units > field) return false;
  const uint64_t fraction =
      integral || decimals == 0 ? 0 : scaled_fraction(rounded - static_cast<double>(whole), decimals);
  Draft<Flavour> draft;
  copy_units(buffer, number.put(draft, fraction, field), field);
  return true;
}

/// The short road of plain notation: what is below 10^15 and has at most 15 decimals, and 18 digits in all, is rounded
/// exactly in 128 bits. Gives the units of the field; 0, with nothing written, when the value has to take the long road
/// or does not fit.
template <class Flavour>
[[gnu::noinline]] int64_t put_short_plain(const VXLocale* locale, int64_t width, int32_t decimals, bool grouped,
                                          typename Flavour::Unit* buffer, int64_t size, double value) {
  __extension__ using Wide = unsigned __int128;
  const double magnitude = std::fabs(value);
  if (!(magnitude < below_short) || !has_short_marks<Flavour>(locale, grouped)) return 0;
  const auto [mantissa, exponent] = binary_parts(magnitude);
  const int32_t shift = -exponent;                                             // at least 3
  const Wide product = static_cast<Wide>(mantissa) * powers_of_ten[decimals];  // below 2^103
  const Wide rounded = shift > 127 ? 0 : (product + (Wide{1} << (shift - 1))) >> shift;
  if (rounded >= powers_of_ten[18]) return 0;
  const auto all = static_cast<uint64_t>(rounded), whole = all / powers_of_ten[decimals];
  if (whole >= powers_of_ten[significant_digits]) return 0;
  const ShortNumber<Flavour> number(locale, whole, decimals, value < 0, grouped);
  const int64_t field = width > number.units ? width : number.units;
  if (field > size || (grouped && width > 0 && number.units > width)) return 0;
  Draft<Flavour> draft;
  constexpr int64_t usual = 20;
  put_units<usual>(buffer, size, number.put(draft, all - whole * powers_of_ten[decimals], field), field);
  return field;
}

template <class Flavour>
[[gnu::noinline]] VXStatus format_double_long(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags,
                                              typename Flavour::Unit* buffer, int64_t size, int64_t* length,
                                              const NLSDoubleExOpts* extended, double value) {
  bool fixed = (flags & (flag_fixed | flag_fixed_exponent)) != 0;
  bool reports = (flags & flag_fixed) != 0;  // the fixed-field mode proper
  bool exponent = (flags & flag_fixed_exponent) != 0;
  int64_t places = decimals;
  if ((flags & flag_exponent_or_integer) != 0) {
    fixed = true;
    if (decimals >= 1) exponent = true;
    if (decimals < 0) {
      reports = true;
      places = -places;
    }
  }
  const bool best = (flags & flag_best) != 0 || places == best_decimals;
  if (best) places = best_decimals;
  if (best && width != 0) fixed = true;
  if (width < 0 && !fixed) flags |= flag_left;

  const DoubleField<Flavour> field{locale, flags, buffer, size, length};
  if (std::isnan(value)) return field.missing(width, places, reports, extended, value);
  if (std::isinf(value)) return field.infinity(width, value < 0);
  return fixed ? field.fixed(width, places, best, exponent, reports, value) : field.free(width, decimals, best, value);
}

/// Sixteen digits in ASCII, in two registers.
struct SixteenDigits {
  Eight first, second;

  /// What begins at digit `start`, from 0 to 15, and zeros; in instructions that do not depend on it.
  SixteenDigits from(int32_t start) const {
    const bool far = start >= 8;
    const int32_t bits = start % 8 * 8;
    const Eight low = far ? second : first, high = far ? 0 : second;
    return {low >> bits | high << 1 << (63 - bits), high >> bits};
  }
  template <class Unit>
  void put(Unit* out) const {
    put_eight(out, first);
    put_eight(out + 8, second);
  }
};

/// The short road of the general form without trailing zeros, for at most 16 digits. Gives the units of the field; 0,
/// with nothing written, when the value has to take the long road or does not fit.
template <class Flavour>
int64_t put_short_general(const VXLocale* locale, int64_t width, int32_t precision, typename Flavour::Unit* buffer,
                          int64_t size, double value) {
  constexpr uint64_t block = 100'000'000;
  const VXChar decimal_point = Separators(locale).decimal_point;
  if (Flavour::units(decimal_point) != 1) return 0;
  ShortDecimal number{0, 0};
  if (value != 0 && !short_decimal(std::fabs(value), precision, &number)) return 0;

  // The digits in a register, with all their zeros; the first one lowest.
  const Eight high = eight_digits(number.digits / block), low = eight_digits(number.digits % block);
  const Eight last = low != 0 ? low : high;
  const int32_t zeros = (std::countl_zero(last | 1) + (low != 0 ? 0 : 64)) / 8;
  const int32_t count = number.digits != 0 ? precision - zeros : 1;
  const SixteenDigits all = SixteenDigits{high | eight_of('0'), low | eight_of('0')}.from(16 - precision);

  // They are written from `digits` on, and once more, one unit on, after the decimal point.
  Draft<Flavour> draft;
  const bool scientific = number.exponent < -4 || number.exponent >= precision;
  const int32_t whole = scientific ? 1 : number.exponent + 1;
  auto* const digits = draft.point();
  auto* first = digits;
  auto* end = digits + count;
  if (whole > 0) {
    all.put(digits);
    all.from(whole < 16 ? whole : 15).put(digits + whole + 1);
    digits[whole] = static_cast<typename Flavour::Unit>(decimal_point);
    end = digits + (count > whole ? count + 1 : whole);
  } else {
    first += whole - 2;
    put_eight(first, eight_of('0'));
    first[1] = static_cast<typename Flavour::Unit>(decimal_point);
    all.put(digits);
  }
  if (scientific) {
    const int32_t magnitude = number.exponent < 0 ? -number.exponent : number.exponent;
    const Eight text = three_digits.of[magnitude] >> (magnitude > 99 ? 8 : 16);
    const Eight sign = number.exponent < 0 ? minus : plus;
    put_eight(end, text << 16 | sign << 8 | 'E');
    end += magnitude > 99 ? 5 : 4;
  }
  first = draft.put_sign(first, value < 0 ? '-' : '\0');
  const int64_t units = end - first;
  const int64_t field = width > units ? width : units;
  if (field > size) return 0;
  constexpr int64_t usual = most_short_digits + 8;  // sign, point, exponent
  put_units<usual>(buffer, size, draft.pad(first, end, field), field);
  return field;
}

template <class Flavour>
VXStatus format_double(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags,
                       typename Flavour::Unit* buffer, int64_t size, int64_t* length, const NLSDoubleExOpts* extended,
                       double value) {
  if (buffer == nullptr || length == nullptr) return VX_E_NULL;
  if (size < 0) size = 0;
  const bool plain_field = (flags & ~flag_group) == flag_fixed && width >= 1 && width <= widest_field && size > 0;
  if (plain_field && decimals >= 0 && decimals <= significant_digits) {
    const int64_t field = width < size ? width : size;
    if (put_short_fixed<Flavour>(locale, field, decimals, (flags & flag_group) != 0, buffer, value)) {
      *length = field;
      return 0;
    }
  }
  const bool plain = (flags & ~flag_group) == flag_plain && width >= 0 && width <= widest_field;
  if (plain && decimals >= 0 && decimals <= significant_digits) {
    const bool grouped = (flags & flag_group) != 0;
    if (const int64_t units = put_short_plain<Flavour>(locale, width, decimals, grouped, buffer, size, value)) {
      *length = units;
      return 0;
    }
  }
  const bool plain_general = (flags & ~flag_general) == 0 && width >= 0 && width <= widest_field;
  if (plain_general && decimals > 0 && decimals <= most_short_digits) {
    if (const int64_t units = put_short_general<Flavour>(locale, width, decimals, buffer, size, value)) {
      *length = units;
      return 0;
    }
  }
  return format_double_long<Flavour>(locale, width, decimals, flags, buffer, size, length, extended, value);
}

constexpr int64_t host_units = 1024;  // more than any number takes

VXBDConv* host_conversion() {
  VXBDConv* const table = vxGetBDConv();
  return table != nullptr && table->enabled != 0 && table->format_double != nullptr ? table : nullptr;
}

/// A number in UTF-8 by way of the host's table, which writes UTF-32.
[[gnu::noinline]] VXStatus by_host(const VXBDConv* table, VXLocale* locale, int32_t width, int32_t decimals,
                                   uint32_t flags, uint8_t* buffer, int64_t size, int64_t* length,
                                   const NLSDoubleExOpts* extended, double value) {
  if (buffer == nullptr || length == nullptr) return VX_E_NULL;
  VXChar text[host_units] = {};  // whatever length the host claims, nothing of this stack leaves
  int64_t units = 0;
  const VXStatus status = table->format_double(locale, width, decimals, flags, text,
                                               size < host_units ? size : host_units, &units, extended, value);
  if (units < 0) units = 0;
  if (units > host_units) units = host_units;
  *length = 0;
  for (int64_t i = 0, at = 0; i < units; ++i) {
    if (at + Utf8Text::units(text[i]) > size) return VX_E_TRUNCATED;
    at += Utf8Text::append(text[i], buffer + at);
    ++*length;  // counts units of the host's text, not bytes: kept on purpose
  }
  return status;
}

}  // namespace

VXStatus NLSDoubleFormatWithExOptsLegacy(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags,
                                         VXChar* buffer, int64_t size, int64_t* length, const NLSDoubleExOpts* extended,
                                         double value) {
  return format_double<Utf32Text>(locale, width, decimals, flags, buffer, size, length, extended, value);
}

VXStatus NLSDoubleFormatUWithExOptsLegacy(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags,
                                          uint8_t* buffer, int64_t size, int64_t* length,
                                          const NLSDoubleExOpts* extended, double value) {
  return format_double<Utf8Text>(locale, width, decimals, flags, buffer, size, length, extended, value);
}

}  // namespace vxnls

extern "C" {

VXStatus NLSDoubleFormat(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                         int64_t size, int64_t* length, double value) {
  return NLSDoubleFormatWithExOpts(locale, width, decimals, flags, buffer, size, length, nullptr, value);
}

VXStatus NLSDoubleFormatWithExOpts(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                                   int64_t size, int64_t* length, const NLSDoubleExOpts* extended, double value) {
  if (VXBDConv* const table = vxnls::host_conversion()) {
    constexpr int64_t unclaimed = std::numeric_limits<int64_t>::min();
    int64_t claimed = unclaimed;
    const VXStatus status = table->format_double(locale, width, decimals, flags, buffer, size,
                                                 length != nullptr ? &claimed : nullptr, extended, value);
    if (claimed != unclaimed) *length = std::clamp<int64_t>(claimed, 0, std::max<int64_t>(size, 0));
    return status;
  }
  return vxnls::NLSDoubleFormatWithExOptsLegacy(locale, width, decimals, flags, buffer, size, length, extended, value);
}

VXStatus NLSDoubleFormatUWithExOpts(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags, uint8_t* buffer,
                                    int64_t size, int64_t* length, const NLSDoubleExOpts* extended, double value) {
  if (const VXBDConv* const table = vxnls::host_conversion()) {
    return vxnls::by_host(table, locale, width, decimals, flags, buffer, size, length, extended, value);
  }
  return vxnls::NLSDoubleFormatUWithExOptsLegacy(locale, width, decimals, flags, buffer, size, length, extended, value);
}

VXStatus vxzIDblToBuff(double value, VXChar* buffer, int64_t size, int64_t* count, int64_t* aux) {
  if (buffer == nullptr || count == nullptr) return VX_E_NULL;
  uint8_t digits[vxnls::most_integer_digits];
  const bool finite = std::isfinite(value);
  const int64_t needed = finite ? vxnls::integer_digits(value, digits) : 0;
  *count = 0;
  if (aux != nullptr) *aux = needed;
  if (!finite) return VX_E_RANGE;
  if (needed > size) return VX_E_DIGITS;
  vxnls::put(buffer, {digits, needed});
  *count = needed;
  return 0;
}

VXStatus vxzFDblToBuff(VXChar* buffer, int64_t size, int64_t* count, int64_t* leading_zeros, double value) {
  if (buffer == nullptr || count == nullptr || leading_zeros == nullptr) return VX_E_NULL;
  *count = 0;
  *leading_zeros = 0;
  if (!std::isfinite(value)) return VX_E_RANGE;
  if (size <= 0) return 0;
  if (value == 0) {
    *buffer = '0';
    *count = 1;
    return 0;
  }
  uint8_t digits[vxnls::most_fraction_digits];
  const auto limit = static_cast<int32_t>(size < vxnls::most_fraction_digits ? size : vxnls::most_fraction_digits);
  const vxnls::FractionDigits found = vxnls::fraction_digits(value, digits, limit);
  vxnls::put(buffer, {digits, found.count});
  *count = found.count;
  *leading_zeros = found.leading_zeros;
  return 0;
}

}  // extern "C"
