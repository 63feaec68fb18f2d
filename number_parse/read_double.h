// Doubles from text: recognised in one of the four codes, then computed.
#ifndef VXNLS_NUMBER_PARSE_READ_DOUBLE_H
#define VXNLS_NUMBER_PARSE_READ_DOUBLE_H

#include <limits>

#include "number_parse/calc_double.h"
#include "number_parse/number_text.h"

namespace vxnls {

/// The value of what was recognised. A fault gives the ordinary missing value.
inline VXStatus evaluate(const NumberText& number, double* value) {
  if (number.fault.reason != VX_FAULT_NONE) {
    *value = ordinary_missing_value();
    return status_of(number.fault.reason);
  }
  if (number.missing != 0) {
    *value = qmMissVal(number.missing);
    return 0;
  }
  // Digits past the thirtieth only move the point, so that a text of very many may lose the same number from both
  // counts. An exponent that is clamped then is far outside of what a double holds.
  using Limits = std::numeric_limits<int32_t>;
  constexpr int64_t most_digits = 1 << 30;
  const int64_t lost = std::max<int64_t>(number.digits - most_digits, 0);
  const int64_t exponent = std::clamp<int64_t>(number.exponent + lost, Limits::min(), Limits::max());
  return vxnlsCalcDouble(number.high, number.low, static_cast<int32_t>(number.digits - lost),
                         static_cast<int32_t>(exponent), number.negative, value);
}

template <class Code>
VXStatus read_double(const Marks<Code>& marks, const typename Code::Unit* text, int64_t length, double* value,
                     int64_t* consumed) {
  if (value == nullptr || consumed == nullptr) return VX_E_NULL;
  *consumed = 0;
  if (length < 0 || (text == nullptr && length > 0)) {
    *value = ordinary_missing_value();
    return length < 0 ? VX_E_NOTNUMBER : VX_E_NULL;
  }
  const NumberText number = NumberRecogniser<Code>(marks, text, length).recognise();
  *consumed = number.consumed;
  return evaluate(number, value);
}

}  // namespace vxnls

#endif
