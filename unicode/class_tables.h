// Built-in character classes: code points by general category, and the class bits of ASCII.
#ifndef VXNLS_UNICODE_CLASS_TABLES_H
#define VXNLS_UNICODE_CLASS_TABLES_H

#include <stdint.h>

namespace vxnls {

/// An inclusive run of code points.
struct CodePointRange {
  uint32_t low, high;
};

/// What is known of an ASCII character. `bits` holds one bit a general category, in the order of ClassBit.
struct AsciiClass {
  uint32_t code, bits, secondary, reserved12, upper, lower, reserved24, reserved28;
};

/// The class bits: what ansi_ccl holds and what the host's Unicode database is asked for.
enum ClassBit : uint32_t {
  class_upper = 0x1,              // Lu
  class_lower = 0x2,              // Ll
  class_letter = 0x60007,         // Lu Ll Lt Lm Lo
  class_combining = 0x38,         // Mn Mc Me
  class_digit = 0x40,             // Nd
  class_punctuation = 0x3F80000,  // Pc Pd Ps Pe Pi Pf Po
  class_control = 0x3C00,         // Zl Zp Cc Cf
  class_print = 0x3FFE0FFF,       // L M N P S Z
  class_graph = 0xFFFE81FF,       // L M N P S, and on purpose also Co and two bits without a category
};

#include "unicode/ascii_classes.inc"
#include "unicode/range_tables.inc"

}  // namespace vxnls

#endif
