// The strict and the lenient reader: what one directive and one literal character of a pattern take from the text.
#ifndef VXNLS_DATETIME_PARSE_READERS_H
#define VXNLS_DATETIME_PARSE_READERS_H

#include "datetime_parse/directives.h"
#include "module/host_services.h"
#include "vxnls/table.h"
#include "vxnls/zones.h"

namespace vxnls {

inline constexpr int32_t two_digit_year_pivot = 60;  // 60 is 1960, 59 is 2059; the host's cutoff does not enter here

template <class Text>
VXReason digits_by_modifier(Input<Text>& in, Digits number, VXChar modifier, int32_t* out) {
  return modifier == '#' ? lenient_extractdigits(in, number, out) : extractdigits(in, number, out);
}

/// Four positions or else two. Failing, it stands where the four ended and tells why they failed.
template <class Text>
VXReason read_year(Input<Text>& in, Digits number, VXChar modifier, int32_t* out) {
  const Input<Text> start = in;
  const VXReason reason = digits_by_modifier(in, number, modifier, out);
  if (reason == VX_REASON_NONE) return reason;
  Input<Text> again = start;
  int32_t year = 0;
  if (digits_by_modifier(again, {2, 0, 99}, modifier, &year) != VX_REASON_NONE) return reason;
  *out = year + (year >= two_digit_year_pivot ? 1900 : 2000);
  in = again;
  return VX_REASON_NONE;
}

/// The hours or the minutes of an offset: one or two positions, blanks counted, a non-digit after a digit ends them.
template <class Text>
VXReason read_offset_part(Input<Text>& in, int32_t maximum, int32_t* out) {
  int32_t positions = 2;
  for (; positions > 0 && in.stands_at(' '); --positions) in.skip(1);
  if (in.empty()) return VX_REASON_TEXT_ENDED;
  if (positions == 0) return VX_REASON_BLANK_FIELD;
  if (!stands_at_digit(in)) return VX_REASON_NO_DIGIT;
  int32_t value = 0;
  for (; positions > 0 && stands_at_digit(in); --positions) {
    value = value * 10 + static_cast<int32_t>(*in.at - '0');
    in.skip(1);
  }
  if (value > maximum) return VX_REASON_RANGE;
  *out = value;
  return VX_REASON_NONE;
}

inline constexpr int32_t greatest_offset_hours = 12;  // offsets beyond are refused, kept on purpose
inline constexpr int32_t greatest_offset_minutes = 59;

template <class Text>
VXReason read_offset(Input<Text>& in, NLSParseFields& fields) {
  skip_blanks(in);
  const bool west = in.stands_at('-');
  if (west || in.stands_at('+')) in.skip(1);
  int32_t hours = 0;
  VXReason reason = read_offset_part(in, greatest_offset_hours, &hours);
  if (reason != VX_REASON_NONE) return reason;
  int32_t offset = hours * 3600;
  if (!in.empty()) {
    skip_blanks(in);
    if (in.stands_at(':')) in.skip(1);
    int32_t minutes = 0;
    reason = read_offset_part(in, greatest_offset_minutes, &minutes);
    if (reason == VX_REASON_TEXT_ENDED) reason = VX_REASON_NONE;  // the hours alone stand
    offset += minutes * 60;
  }
  fields.offset = west ? -offset : offset;
  return reason;
}

inline VXZone* find_zone(VXLocale* locale, const VXChar* name, int64_t length) {
  return NLSGetTZh(locale, name, length);
}

/// Zone names are ASCII: bytes are widened one by one, not decoded. No zone has a name that outgrows the room here.
inline VXZone* find_zone(VXLocale* locale, const uint8_t* name, int64_t length) {
  VXChar widened[256];
  if (length > static_cast<int64_t>(sizeof widened / sizeof *widened)) return nullptr;
  for (int64_t i = 0; i < length; ++i) widened[i] = name[i];
  return NLSGetTZh(locale, widened, length);
}

/// The name runs up to and with the next blank. "XST", which the formatter writes when it has no name, is the locale's
/// own zone, but only at the very end of the text.
template <class Text>
VXReason read_zone(VXLocale* locale, Input<Text>& in, NLSParseFields& fields) {
  skip_blanks(in);
  int64_t length = 0;
  while (length < in.left && in.at[length] != ' ') ++length;
  if (length < in.left) ++length;
  const bool own =
      length == 3 && same_letter(in.at[0], 'X') && same_letter(in.at[1], 'S') && same_letter(in.at[2], 'T');
  fields.zone = own ? host::current_zone(locale) : find_zone(locale, in.at, length);
  if (fields.zone == nullptr) return VX_REASON_ZONE_UNKNOWN;
  in.skip(length);
  return VX_REASON_NONE;
}

/// The name that a directive reads here, first from the one list and then from the other. Two lists are two calls: the
/// first name of the first list goes before all of the second.
template <class Text>
[[gnu::noinline]] FoundName name_at(VXLocale* locale, Input<Text> in, const Directive& directive) {
  const VXLocaleData& data = *locale->localeData;
  const NameList names = directive.names, others = directive.or_names;
  const FoundName found = find_name(in, names.in(data), names.count);
  return found.index >= 0 || others.count == 0 ? found : find_name(in, others.in(data), others.count);
}

template <class Text>
VXReason read_name(VXLocale* locale, Input<Text>& in, const Directive& directive, int32_t* index) {
  skip_blanks(in);
  const FoundName found = name_at(locale, in, directive);
  if (found.index < 0) return VX_REASON_NO_NAME;
  *index = found.index;
  in.skip(found.units);
  return VX_REASON_NONE;
}

inline int32_t turned(const Directive& directive, int32_t value) {
  switch (directive.turn) {  // GCOV_EXCL_BR_LINE: no value of a turn but those below
    case Turn::keep: return value;
    case Turn::twelve_to_zero: return value == 12 ? 0 : value;
    case Turn::twenty_four_to_zero: return value == 24 ? 0 : value;
    case Turn::midnight_to_twelve: return value == 0 || value == 24 ? 12 : value;
    case Turn::add: break;
  }
  return value + directive.plus;
}

/// Reads one directive; the modifier stands in `fields`. After a refusal `in` may stand anywhere that was looked at.
template <class Text>
VXReason read_directive(VXLocale* locale, Input<Text>& in, const Directive& directive, NLSParseFields& fields) {
  Digits number = directive.number;
  const VXChar modifier = static_cast<VXChar>(fields.modifier);
  if (modifier == '#' && directive.maximum_under_hash != 0) number.maximum = directive.maximum_under_hash;
  int32_t value = 0;
  VXReason reason = VX_REASON_NONE;
  switch (directive.rule) {  // GCOV_EXCL_BR_LINE: no value of a rule but those below
    case Rule::digits: reason = digits_by_modifier(in, number, modifier, &value); break;
    case Rule::strict_digits: reason = extractdigits(in, number, &value); break;
    case Rule::lenient_digits: reason = lenient_extractdigits(in, number, &value); break;
    case Rule::year: reason = read_year(in, number, modifier, &value); break;
    case Rule::name:
    case Rule::marker: reason = read_name(locale, in, directive, &value); break;
    case Rule::offset: return read_offset(in, fields);
    case Rule::zone: return read_zone(locale, in, fields);
    case Rule::percent:
      if (!in.stands_at('%')) return VX_REASON_LITERAL;
      in.skip(1);
      return VX_REASON_NONE;
  }
  if (reason != VX_REASON_NONE) return reason;
  if (directive.field != nullptr) fields.*directive.field = turned(directive, value);
  // PM adds 12 to whatever hour stands, kept on purpose: 13 PM is 25, and an hour read later replaces it.
  if (directive.rule == Rule::marker && value == 1) fields.hour += 12;
  return VX_REASON_NONE;
}

/// A number of plain digits; without digits: find out.
struct QuickValue {
  int32_t digits, value;  // a value below 0 is none
};

/// As many digits as come, where none is left behind them. One or two depend on the text: no branch does.
template <class Text>
QuickValue quick_value_as_it_comes(const Input<Text>& in, int32_t width) {
  const auto digit = [&](int i) { return in.left > i ? in.at[i] - uint32_t{'0'} : 10; };
  if (width == 4) {
    if (in.left < 4 || digit(4) <= 9) return {};
    const int32_t value = four_digits_at(in.at);
    return {value < 0 ? 0 : 4, value};
  }
  const uint32_t first = digit(0), second = digit(1);
  const bool one = first <= 9, two = one & (second <= 9), more = two & (digit(2) <= 9);
  return {more ? 0 : one + two, static_cast<int32_t>(two ? 10 * first + second : first)};
}

/// Fixed widths, exact literals.
struct StrictReader {
  /// Whether a character of a pattern has no other way than to stand in the text.
  static constexpr bool must_stand(VXChar c) { return c < 0x80; }

  static constexpr const DirectiveSet& directives = strict_directives;
  static constexpr const QuickNumbers& quick_numbers = quick_strict_numbers;

  template <class Text>
  static QuickValue quick_value(const Input<Text>& in, int32_t width) {
    if (in.left < width) return {};
    return {width, width == 2 ? two_digits_at(in.at) : four_digits_at(in.at)};
  }

  template <class Text>
  static VXReason literal(Input<Text>& in, VXChar wanted) {
    const Character here = character_at(in);
    if (here.units == 0 || here.code_point != wanted) return VX_REASON_LITERAL;
    in.skip(here.units);
    return VX_REASON_NONE;
  }
};

/// Widths as they come, literals in any case, blanks of the pattern optional.
struct LenientReader {
  static constexpr bool must_stand(VXChar c) { return c < 'A' && c != ' '; }

  static constexpr const DirectiveSet& directives = lenient_directives;
  static constexpr const QuickNumbers& quick_numbers = quick_lenient_numbers;

  template <class Text>
  static QuickValue quick_value(const Input<Text>& in, int32_t width) {
    return quick_value_as_it_comes(in, width);
  }

  template <class Text>
  static VXReason literal(Input<Text>& in, VXChar wanted) {
    const Character here = character_at(in);
    if (here.units == 0 || !same_letter(here.code_point, wanted)) {
      return wanted == ' ' ? VX_REASON_NONE : VX_REASON_LITERAL;
    }
    in.skip(here.units);
    return VX_REASON_NONE;
  }
};

inline constexpr int64_t refused = -1;

/// Takes the steps of a pattern that need no thought: ASCII characters that stand in the text, numbers of plain digits
/// in range, and names. Gives the place of the first other step, which has to be taken in earnest, or `refused` where
/// it is plain that the text does not match.
template <class Reader, class Text>
int64_t take_plain_steps(VXLocale* locale, Input<Text>& in, TextView pattern, int64_t place, NLSParseFields& fields) {
  const VXChar* from = pattern.text + place;
  const VXChar* const end = pattern.text + pattern.length;
  const typename Text::Unit* at = in.at;
  const typename Text::Unit* const stop = at + in.left;
  while (from < end) {
    const VXChar c = *from;
    if (at == stop) return refused;
    if (c != '%') {
      if (*at != c || c >= 0x80) {
        if (Reader::must_stand(c)) return refused;
        break;
      }
      ++at;
      ++from;
      continue;
    }
    if (end - from < 2) break;
    const bool hash = from[1] == '#';
    if (hash && end - from < 3) break;
    const VXChar* const letter = from + 1 + hash;
    const QuickNumber& number = Reader::quick_numbers.of(*letter);
    if (*at == ' ' || number.width == 0) break;
    const Input<Text> rest{at, stop - at};
    if (number.is_name()) {
      const Directive& directive = *Reader::directives.find(*letter);
      const FoundName found = name_at(locale, rest, directive);
      if (found.index < 0) return refused;
      if (directive.field != nullptr) fields.*directive.field = found.index + directive.plus;
      at += found.units;
    } else {
      const QuickValue quick =
          hash ? quick_value_as_it_comes(rest, number.width) : Reader::quick_value(rest, number.width);
      if (quick.digits == 0 || static_cast<uint32_t>(quick.value - number.minimum) > number.span) {
        if (number.width == 2 && rest.left > 2) return refused;  // years and the ends of texts have other ways
        break;
      }
      fields.*number.field = quick.value;
      at += quick.digits;
    }
    fields.modifier = hash ? '#' : 0;
    from = letter + 1;
  }
  in = {at, stop - at};
  return from - pattern.text;
}

/// The reader of one directive by its letter.
template <class Reader, class Text>
VXReason extractformat(VXLocale* locale, Input<Text>& in, VXChar letter, NLSParseFields& fields) {
  const Directive* const directive = Reader::directives.find(letter);
  return directive == nullptr ? VX_REASON_DIRECTIVE : read_directive(locale, in, *directive, fields);
}

}  // namespace vxnls

#endif
