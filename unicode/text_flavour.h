// The two flavours of text. A rule is written once as a template over one of these; what differs on purpose is a
// member.
#ifndef VXNLS_UNICODE_TEXT_FLAVOUR_H
#define VXNLS_UNICODE_TEXT_FLAVOUR_H

#include <cstring>

#include "unicode/counted_name.h"
#include "unicode/eight_units.h"
#include "unicode/utf8_tables.h"
#include "vxnls/types.h"

namespace vxnls {

inline constexpr VXChar replacement_character = 0xFFFD;

/// One character taken from a text.
struct Decoded {
  VXChar code_point;
  int64_t consumed;  // units
  VXStatus status;   // as the exported decoders report it
};

/// What a decoder answers when the text ends inside a character: it takes what there is.
constexpr Decoded cut_short(int64_t remaining) {
  return {replacement_character, remaining > 0 ? remaining : 0, VX_E_INCOMPLETE};
}

/// The digits of 0 to 99, so that two are one store; and 0 once more, so that two can be read from any last digit.
template <class Unit>
struct DigitPairs {
  Unit digits[2 * 101];
  constexpr const Unit* of(int64_t value) const { return digits + 2 * value; }
};

template <class Unit>
constexpr DigitPairs<Unit> make_digit_pairs() {
  DigitPairs<Unit> pairs{};
  for (unsigned i = 0; i < 101; ++i) {
    pairs.digits[2 * i] = static_cast<Unit>('0' + i / 10 % 10);
    pairs.digits[2 * i + 1] = static_cast<Unit>('0' + i % 10);
  }
  return pairs;
}

/// UTF-32: one unit a character.
struct Utf32Text {
  using Unit = VXChar;
  static constexpr int64_t longest = 1;  // units that one code point takes at most
  static constexpr DigitPairs<Unit> digit_pairs = make_digit_pairs<Unit>();

  static constexpr int64_t units(VXChar) { return 1; }
  /// Writes `code_point` at `out`, which has room for `longest` units; gives the units written.
  static constexpr int64_t append(VXChar code_point, Unit* out) {
    *out = code_point;
    return 1;
  }
  /// Writes a counted name of the locale record; gives the units written. `out` has room for a whole entry, all of
  /// which may be written.
  static int64_t append_name(TextView name, Unit* out) {
    constexpr int64_t block = 12;  // one block for nearly every name; whole blocks fill an entry exactly
    static_assert(longest_name % block == 0);
    for (int64_t i = 0; i < name.length; i += block) std::memcpy(out + i, name.text + i, block * sizeof(VXChar));
    return name.length;
  }
  /// The character at `at`; `remaining` is at least 1.
  static constexpr Decoded decode(const Unit* at, int64_t /*remaining*/) { return {*at, 1, 0}; }
};

/// UTF-8 bytes, coded and decoded as UTF32_UTF8 and UTF8_UTF32 do, but never outside the text.
struct Utf8Text {
  using Unit = uint8_t;
  static constexpr int64_t longest = 4;
  static constexpr DigitPairs<Unit> digit_pairs = make_digit_pairs<Unit>();

  static constexpr int64_t units(VXChar c) { return 1 + (c >= 0x80) + (c >= 0x800) + (c >= 0x10000); }
  /// Code points above U+10FFFF are not refused; their lead byte overflows.
  static constexpr int64_t append(VXChar c, Unit* out) {
    constexpr auto tail = [](VXChar bits) { return static_cast<Unit>(0x80 | (bits & 0x3F)); };
    if (c < 0x80) {
      out[0] = static_cast<Unit>(c);
      return 1;
    }
    if (c < 0x800) {
      out[0] = static_cast<Unit>(0xC0 | c >> 6);
      out[1] = tail(c);
      return 2;
    }
    if (c < 0x10000) {
      out[0] = static_cast<Unit>(0xE0 | c >> 12);
      out[1] = tail(c >> 6);
      out[2] = tail(c);
      return 3;
    }
    out[0] = static_cast<Unit>(0xF0 + (c >> 18));
    out[1] = tail(c >> 12);
    out[2] = tail(c >> 6);
    out[3] = tail(c);
    return 4;
  }
  static int64_t append_name(TextView name, Unit* out) {
    constexpr int64_t block = 16;  // nearly every name; what follows it in the entry does no harm
    static_assert(longest_name >= block);
    if (name.length <= block && narrow<block>(name.text, out)) return name.length;
    Unit* at = out;
    for (int64_t i = 0; i < name.length; ++i) at += append(name.text[i], at);
    return at - out;
  }
  static constexpr bool is_continuation(Unit byte) { return valid_2nd_utf8[byte] != 0; }
  /// With `remaining` 0 or less nothing is read. The bytes after a lead are not tested: overlong forms, surrogates and
  /// values above U+10FFFF that a valid lead announces come out as they stand, kept on purpose.
  static constexpr Decoded decode(const Unit* at, int64_t remaining) {
    if (remaining < 1) return cut_short(remaining);
    const Unit lead = at[0];
    if (lead < 0x80) return {lead, 1, 0};
    const int64_t length = bytesFromUTF8[lead];
    if (valid_1st_utf8[lead] != 0) {
      if (remaining < length) return cut_short(remaining);
      const VXChar two = (lead & 0x3Fu) << 6 | (at[1] & 0x3Fu);
      if (length == 2) return {two, 2, 0};
      const VXChar three = two << 6 | (at[2] & 0x3Fu);
      if (length == 3) return {three & 0xFFFF, 3, 0};
      return {(three << 6 | (at[3] & 0x3Fu)) & 0x1FFFFF, 4, 0};
    }
    int64_t consumed = 1;
    while (consumed < length && consumed < remaining && is_continuation(at[consumed])) ++consumed;
    return {replacement_character, consumed, VX_E_SEQUENCE};
  }
};

}  // namespace vxnls

#endif
