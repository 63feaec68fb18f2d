// The text of an integer, recognised: one routine for every width, with or without a sign, in UTF-32 and UTF-8.
#ifndef VXNLS_NUMBER_PARSE_INTEGER_TEXT_H
#define VXNLS_NUMBER_PARSE_INTEGER_TEXT_H

#include <limits>
#include <type_traits>

#include "number_parse/number_fault.h"
#include "number_parse/text_code.h"

namespace vxnls {

/// What a text says. Counts and places are units from its start.
template <class Integer>
struct IntegerText {
  std::make_unsigned_t<Integer> magnitude = 0;
  bool negative = false;
  int64_t begin = 0;     // of the number, after leading blanks
  int64_t end = 0;       // of its digits and separators
  int64_t consumed = 0;  // where reading stopped
  NumberFault fault;     // the magnitude holds on what was read before a fault

  /// In two's complement, as the most negative value has no positive twin.
  Integer value() const {
    using Unsigned = std::make_unsigned_t<Integer>;
    return static_cast<Integer>(negative ? static_cast<Unsigned>(0 - magnitude) : magnitude);
  }
};

/// Reads one text from left to right. `length` is at least 0.
template <class Integer, class Code>
class IntegerRecogniser {
 public:
  using Unit = typename Code::Unit;
  using Unsigned = std::make_unsigned_t<Integer>;
  static constexpr bool is_unsigned = std::is_unsigned_v<Integer>;

  IntegerRecogniser(const Marks<Code>& marks, uint32_t flags, const Unit* text, int64_t length)
      : marks_(marks), flags_(flags), text_(text), at_(text), end_(text + length) {}

  IntegerText<Integer> recognise() {
    skip_blanks();
    integer_.begin = place();
    if (at_ == end_) return finished();
    if constexpr (is_unsigned) {
      if ((flags_ & NLS_READ_HEXADECIMAL) != 0) return recognise_hexadecimal();
    }
    const bool is_signed = is_sign(*at_);
    if (is_signed) {
      integer_.negative = *at_ == '-';
      if (is_unsigned && integer_.negative) {
        integer_.negative = false;
        return refused(VX_FAULT_SIGN_REFUSED);
      }
      ++at_;
      skip_blanks();
      if (at_ == end_) return refused(VX_FAULT_SIGN_ALONE);
    } else if (separator() > 0) {
      return refused(VX_FAULT_LEADING_SEPARATOR);
    }
    first_digit_ = at_;
    if (!read_digits<10>()) return overflown<10>();
    return finish(is_signed);
  }

 private:
  static constexpr bool is_sign(VXChar unit) { return unit == '-' || unit == '+'; }
  static constexpr uint32_t no_digit = 0xFF;
  template <int base>
  static constexpr uint32_t digit(VXChar unit) {
    if (unit - '0' <= 9) return unit - '0';
    if (base == 16 && (unit | 0x20) - 'a' <= 5) return (unit | 0x20) - 'a' + 10;
    return no_digit;
  }

  int64_t place() const { return at_ - text_; }
  bool is_blank() const { return at_ < end_ && *at_ == ' '; }
  int64_t point() const { return marks_.point(at_, end_); }
  int64_t separator() const { return marks_.separator(at_, end_); }
  void skip_blanks() {
    while (is_blank()) ++at_;
  }

  IntegerText<Integer> recognise_hexadecimal() {
    if (is_sign(*at_)) return refused(VX_FAULT_SIGN_REFUSED);
    if (end_ - at_ >= 2 && at_[0] == '0' && (at_[1] | 0x20) == 'x') at_ += 2;
    first_digit_ = at_;
    if (!read_digits<16>()) return overflown<16>();
    return finish(false);
  }

  /// Takes digits, and in base 10 separators wherever they stand; false at a digit that is too much.
  template <int base>
  bool read_digits() {
    const Unsigned most = std::numeric_limits<Integer>::max() + static_cast<Unsigned>(integer_.negative);
    const Unsigned before_last = static_cast<Unsigned>(most / base), last = static_cast<Unsigned>(most % base);
    Unsigned sum = 0;
    while (at_ < end_) {
      if constexpr (base == 10) {
        if (const int64_t units = separator()) {
          at_ += units;
          continue;
        }
      }
      const uint32_t next = digit<base>(*at_);
      if (next == no_digit) break;
      ++at_;
      if (sum >= before_last && (sum > before_last || next > last)) return false;
      sum = static_cast<Unsigned>(sum * base + next);
    }
    integer_.magnitude = sum;
    return true;
  }

  /// The rest of the run is consumed.
  template <int base>
  IntegerText<Integer> overflown() {
    while (at_ < end_) {
      const int64_t separators = base == 10 ? separator() : 0;
      if (separators == 0 && digit<base>(*at_) == no_digit) break;
      at_ += separators > 0 ? separators : 1;
    }
    integer_.consumed = place();
    integer_.fault = {VX_FAULT_OVERFLOW, integer_.begin, place()};
    return integer_;
  }

  /// What may follow the digits.
  IntegerText<Integer> finish(bool is_signed) {
    const bool decimal = !is_hexadecimal();
    if (at_ == end_) return finished();
    if (decimal && (flags_ & NLS_READ_FRACTION) != 0) {
      if (const int64_t units = point()) {
        at_ += units;
        return skip_fraction();
      }
    }
    const bool after_blanks = is_blank();
    if ((flags_ & NLS_READ_TRAILING_BLANKS) != 0) skip_blanks();
    else if (after_blanks) return finished();
    if (at_ == end_ || *at_ == 0) return finished();
    if (decimal && !after_blanks && point() > 0) return refused(VX_FAULT_POINT_IN_INTEGER);
    if (at_ > first_digit_) return refused(VX_FAULT_TEXT_AFTER);
    return refused(is_signed ? VX_FAULT_SIGN_ALONE : VX_FAULT_NO_DIGIT);
  }

  IntegerText<Integer> skip_fraction() {
    for (; at_ < end_ && *at_ != 0; ++at_) {
      if (*at_ == ' ') {
        if ((flags_ & NLS_READ_TRAILING_BLANKS) == 0) break;
      } else if (const uint32_t next = digit<10>(*at_); next == no_digit) {
        return refused(point() > 0       ? VX_FAULT_SECOND_POINT
                       : separator() > 0 ? VX_FAULT_SEPARATOR_IN_FRACTION
                                         : VX_FAULT_TEXT_AFTER);
      } else if (next != 0 && integer_.fault.reason == VX_FAULT_NONE) {
        integer_.fault = {VX_FAULT_FRACTION_DISCARDED, place(), place() + 1};
      }
    }
    return finished();
  }

  bool is_hexadecimal() const { return is_unsigned && (flags_ & NLS_READ_HEXADECIMAL) != 0; }

  IntegerText<Integer> finished() {
    integer_.consumed = place();
    return integer_;
  }

  IntegerText<Integer> refused(uint32_t reason) {
    integer_.fault = {reason, place(), place() + (at_ < end_ ? 1 : 0)};
    return finished();
  }

  const Marks<Code>& marks_;
  const uint32_t flags_;
  const Unit* const text_;
  const Unit* at_;
  const Unit* const end_;
  const Unit* first_digit_ = nullptr;
  IntegerText<Integer> integer_;
};

}  // namespace vxnls

#endif
