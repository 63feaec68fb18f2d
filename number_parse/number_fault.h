// Where and why a reader of numbers stopped, and the status that this means.
#ifndef VXNLS_NUMBER_PARSE_NUMBER_FAULT_H
#define VXNLS_NUMBER_PARSE_NUMBER_FAULT_H

#include "vxnls/explain_number.h"

namespace vxnls {

/// The first fault of a text, in units from its start. Two equal ends mean that the text ended too early.
struct NumberFault {
  uint32_t reason = VX_FAULT_NONE;
  int64_t from = 0;
  int64_t to = 0;
};

/// Of a fault that stands in the text. An underflow, and the overflow of a double, come with the arithmetic.
constexpr VXStatus status_of(uint32_t fault) {
  switch (fault) {
    case VX_FAULT_NONE: return 0;
    case VX_FAULT_EXPONENT_RANGE: return VX_E_RANGE;
    case VX_FAULT_FRACTION_DISCARDED: return VX_E_TRUNCATED;
    case VX_FAULT_OVERFLOW: return VX_E_OVERFLOW;
    default: return VX_E_NOTNUMBER;
  }
}

}  // namespace vxnls

#endif
