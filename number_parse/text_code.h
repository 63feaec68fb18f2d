// The four codes in which the readers of numbers meet text. A code says what one unit is, and how the decimal point and
// the group separator of a locale look in it; the readers know nothing else about text.
#ifndef VXNLS_NUMBER_PARSE_TEXT_CODE_H
#define VXNLS_NUMBER_PARSE_TEXT_CODE_H

#include "number_parse/conventions.h"
#include "number_parse/ebcdic.h"
#include "unicode/text_flavour.h"

namespace vxnls {

/// A character to look for, one unit long. One that the code cannot express is above every unit and never found.
template <class UnitType>
struct OneUnitMark {
  VXChar unit;

  explicit constexpr OneUnitMark(VXChar c) : unit(c) {}
  /// The units that it takes at `at`, which is before `end`; 0 when something else stands there.
  constexpr int64_t match(const UnitType* at, const UnitType* /*end*/) const { return *at == unit ? 1 : 0; }
};

/// A character to look for as its UTF-8 bytes. Bytes that the end of the text cuts off are not found.
struct Utf8Mark {
  uint8_t bytes[Utf8Text::longest];
  int64_t length;

  explicit constexpr Utf8Mark(VXChar c) : bytes{}, length(Utf8Text::append(c, bytes)) {}
  constexpr int64_t match(const uint8_t* at, const uint8_t* end) const {
    if (*at != bytes[0] || end - at < length) return 0;
    for (int64_t i = 1; i < length; ++i)
      if (at[i] != bytes[i]) return 0;
    return length;
  }
};

/// Units in which ASCII stands for itself.
struct AsciiUnits {
  static constexpr VXChar plus = '+', minus = '-', dot = '.', space = ' ', tab = '\t';
  static constexpr uint32_t digit(VXChar unit) { return unit - '0'; }  // above 9: not a digit
  static constexpr bool is_exponent_letter(VXChar unit) { return (unit | 0x20) == 'e' || (unit | 0x20) == 'd'; }
  static constexpr VXChar character(VXChar unit) { return unit; }
};

struct Utf32Code : AsciiUnits {
  using Unit = VXChar;
  using Mark = OneUnitMark<Unit>;
  static constexpr Mark point(const Conventions& locale) { return Mark(locale.point); }
  static constexpr Mark separator(const Conventions& locale, VXConverter*) { return Mark(locale.separator); }
};

struct Utf8Code : AsciiUnits {
  using Unit = uint8_t;
  using Mark = Utf8Mark;
  static constexpr Mark point(const Conventions& locale) { return Mark(locale.point); }
  static constexpr Mark separator(const Conventions& locale, VXConverter*) { return Mark(locale.separator); }
};

/// The byte that a host's converter gives for a character; `otherwise` when there is none.
inline VXChar converted(VXConverter* converter, VXChar c, uint8_t otherwise) {
  uint8_t byte = otherwise;
  if (converter == nullptr || converter->ops == nullptr || converter->ops->to_byte == nullptr) return otherwise;
  return converter->ops->to_byte(converter, c, &byte) == 0 ? byte : otherwise;
}

constexpr bool needs_converter(VXChar separator) { return separator >= 0x80 && separator != no_break_space; }

/// Bytes of a single-byte code that extends ASCII.
struct AsciiCode : AsciiUnits {
  using Unit = uint8_t;
  using Mark = OneUnitMark<Unit>;
  static constexpr Mark point(const Conventions& locale) { return Mark(locale.point); }
  static Mark separator(const Conventions& locale, VXConverter* converter) {
    return Mark(needs_converter(locale.separator) ? converted(converter, locale.separator, ',') : locale.separator);
  }
};

/// Bytes of EBCDIC.
struct EbcdicCode {
  using Unit = uint8_t;
  using Mark = OneUnitMark<Unit>;
  static constexpr VXChar plus = 0x4E, minus = 0x60, dot = 0x4B, comma = 0x6B, space = 0x40, tab = 0x05;
  static constexpr uint32_t digit(VXChar unit) { return unit - 0xF0; }
  static constexpr bool is_exponent_letter(VXChar unit) {
    return unit == 0xC5 || unit == 0x85 || unit == 0xC4 || unit == 0x84;
  }
  static constexpr VXChar character(VXChar unit) { return e2a[static_cast<uint8_t>(unit)]; }
  static constexpr Mark point(const Conventions& locale) {
    return Mark(locale.point < 256 ? a2e[locale.point] : locale.point);
  }
  static Mark separator(const Conventions& locale, VXConverter* converter) {
    return Mark(needs_converter(locale.separator) ? converted(converter, locale.separator, comma)
                                                  : a2e[locale.separator]);
  }
};

/// The decimal point and the group separators of one call.
template <class Code>
class Marks {
 public:
  using Unit = typename Code::Unit;

  explicit Marks(const Conventions& locale, VXConverter* converter = nullptr)
      : point_(Code::point(locale)),
        separator_(Code::separator(locale, converter)),
        space_separates_(locale.space_separates) {}

  int64_t point(const Unit* at, const Unit* end) const { return point_.match(at, end); }
  int64_t separator(const Unit* at, const Unit* end) const {
    if (const int64_t units = separator_.match(at, end)) return units;
    return space_separates_ && *at == Code::space ? 1 : 0;
  }

 private:
  typename Code::Mark point_, separator_;
  bool space_separates_;
};

}  // namespace vxnls

#endif
