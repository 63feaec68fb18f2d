// One character of UTF-8 text, where only its first byte is known to be there.
#ifndef VXNLS_UTF8_CHARACTERS_H
#define VXNLS_UTF8_CHARACTERS_H

#include <stdint.h>

namespace vxnls {

/// The bytes that the character at `ch` takes, checking; 0 for null.
///   valid   null, or receives 1 when every byte that the lead announces is there and the lead is a valid one, else 0
int64_t _U8CharSize(const uint8_t* ch, uint32_t* valid);

/// What `predicate` says of the character at `ch`; 0 for null.
int32_t _VXZSU8IsFunct(const uint8_t* ch, int32_t (*predicate)(int32_t code_point));

}  // namespace vxnls

#endif
