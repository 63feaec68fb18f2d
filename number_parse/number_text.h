// The text of a double, recognised before any arithmetic.
#ifndef VXNLS_NUMBER_PARSE_NUMBER_TEXT_H
#define VXNLS_NUMBER_PARSE_NUMBER_TEXT_H

#include "number_parse/number_fault.h"
#include "number_parse/text_code.h"

namespace vxnls {

/// What a text says. Counts and places are units from its start.
struct NumberText {
  uint64_t high = 0;     // the first 15 significant digits
  uint64_t low = 0;      // digits 16 to 30
  int64_t digits = 0;    // significant digits, those past the thirtieth counted too
  int64_t exponent = 0;  // of ten, for the last digit counted
  bool negative = false;
  VXChar missing = 0;    // the text is the missing value of this character
  int64_t begin = 0;     // of the number, after leading blanks
  int64_t end = 0;       // of the number, before trailing blanks
  int64_t consumed = 0;  // where reading stopped
  NumberFault fault;     // the other fields mean nothing when there is one
};

inline constexpr int64_t digits_of_a_part = 15;
inline constexpr int64_t widest_exponent = 30800;

/// Reads one text from left to right. `length` is at least 0.
template <class Code>
class NumberRecogniser {
 public:
  using Unit = typename Code::Unit;

  NumberRecogniser(const Marks<Code>& marks, const Unit* text, int64_t length)
      : marks_(marks), text_(text), at_(text), end_(text + length) {}

  NumberText recognise() {
    if (at_ == end_) return missing_value('.');  // kept on purpose: no text at all is a missing value, not a fault
    skip_blanks();
    number_.begin = place();
    if (at_ == end_) return refused(VX_FAULT_EMPTY);
    const bool is_signed = *at_ == Code::minus || *at_ == Code::plus;
    if (is_signed) number_.negative = *at_++ == Code::minus;
    if (is_digit()) read_whole();
    else if (!point_with_digit()) return no_number(is_signed);
    read_fraction();
    if (at_ < end_ && Code::is_exponent_letter(*at_) && !read_exponent()) return number_;
    return finish();
  }

 private:
  int64_t place() const { return at_ - text_; }
  bool is_digit() const { return at_ < end_ && Code::digit(*at_) <= 9; }
  bool digit_follows(int64_t units) const { return end_ - at_ > units && Code::digit(at_[units]) <= 9; }
  int64_t point() const { return at_ < end_ ? marks_.point(at_, end_) : 0; }
  int64_t separator() const { return at_ < end_ ? marks_.separator(at_, end_) : 0; }
  bool point_with_digit() const {
    const int64_t units = point();
    return units > 0 && digit_follows(units);
  }
  void skip_blanks() {
    while (at_ < end_ && (*at_ == Code::space || *at_ == Code::tab)) ++at_;
  }

  void take(uint32_t digit) {
    if (number_.digits < digits_of_a_part) {
      number_.high = number_.high * 10 + digit;
      number_.digits += number_.high != 0;  // leading zeros do not count
    } else {
      if (number_.digits < 2 * digits_of_a_part) number_.low = number_.low * 10 + digit;
      ++number_.digits;
    }
  }

  void read_whole() {
    while (at_ < end_) {
      if (const uint32_t digit = Code::digit(*at_); digit <= 9) {
        take(digit);
        ++at_;
      } else if (const int64_t units = separator()) {
        at_ += units;
      } else {
        return;
      }
    }
  }

  void read_fraction() {
    const int64_t units = point();
    if (units == 0) return;
    has_point_ = true;
    at_ += units;
    const Unit* const first = at_;
    for (; is_digit(); ++at_) take(Code::digit(*at_));
    number_.exponent = first - at_;
  }

  bool read_exponent() {
    ++at_;
    bool negative = false;
    if (at_ < end_ && (*at_ == Code::minus || *at_ == Code::plus)) negative = *at_++ == Code::minus;
    if (!is_digit()) {
      refused(VX_FAULT_EXPONENT_WITHOUT_DIGITS);
      return false;
    }
    const int64_t first = place();
    int64_t exponent = 0;  // stays above the limit once it is: more digits do not bring it back
    while (at_ < end_) {
      if (const uint32_t digit = Code::digit(*at_); digit <= 9) {
        if (exponent <= widest_exponent) exponent = exponent * 10 + digit;
        ++at_;
      } else if (const int64_t units = separator()) {
        at_ += units;
      } else {
        break;
      }
    }
    if (exponent > widest_exponent) {
      refused(VX_FAULT_EXPONENT_RANGE, first, place());
      return false;
    }
    number_.exponent += negative ? -exponent : exponent;
    return true;
  }

  /// Nothing but blanks may follow. They end a fraction also where they separate groups.
  NumberText finish() {
    number_.end = place();
    skip_blanks();
    if (at_ < end_) {
      const bool in_fraction = has_point_ && place() == number_.end;
      if (in_fraction && point() > 0) return refused(VX_FAULT_SECOND_POINT);
      if (in_fraction && separator() > 0) return refused(VX_FAULT_SEPARATOR_IN_FRACTION);
      return refused(VX_FAULT_TEXT_AFTER);
    }
    number_.consumed = place();
    return number_;
  }

  /// There is no digit where the first one should stand, nor a decimal point before one.
  NumberText no_number(bool is_signed) {
    if (at_ < end_ && *at_ == Code::dot) {
      if (!digit_follows(1)) return read_missing_value();
      return refused(separator() > 0 ? VX_FAULT_LEADING_SEPARATOR : VX_FAULT_WRONG_POINT);
    }
    if (point() > 0) return refused(VX_FAULT_POINT_ALONE);
    if (separator() > 0) return refused(VX_FAULT_LEADING_SEPARATOR);
    return refused(is_signed ? VX_FAULT_SIGN_ALONE : VX_FAULT_NO_DIGIT);
  }

  /// A "." that no digit follows, whatever the decimal point is. A sign before it has no effect.
  NumberText read_missing_value() {
    const VXChar letter = end_ - at_ > 1 ? Code::character(at_[1]) : 0;
    const VXChar folded = letter | 0x20;
    if (letter != '_' && !(folded >= 'a' && folded <= 'z')) return refused(VX_FAULT_MISSING_LETTER);
    at_ += 2;
    number_.end = place();
    skip_blanks();
    return at_ < end_ ? refused(VX_FAULT_TEXT_AFTER) : missing_value(letter);
  }

  NumberText missing_value(VXChar letter) {
    number_.missing = letter;
    number_.consumed = place();
    return number_;
  }

  /// Refused at the unit that stands here, or at the end of the text.
  NumberText refused(uint32_t reason) { return refused(reason, place(), place() + (at_ < end_ ? 1 : 0)); }
  NumberText refused(uint32_t reason, int64_t from, int64_t to) {
    number_.fault = {reason, from, to};
    number_.consumed = place();
    return number_;
  }

  const Marks<Code>& marks_;
  const Unit* const text_;
  const Unit* at_;
  const Unit* const end_;
  bool has_point_ = false;
  NumberText number_;
};

}  // namespace vxnls

#endif
