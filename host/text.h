// Short texts in and out of VXChar.
#ifndef VXNLS_HOST_TEXT_H
#define VXNLS_HOST_TEXT_H

#include <array>
#include <string>
#include <string_view>

#include "vxnls/types.h"

namespace vxhost {

/// A name in VXChars: long enough for every name of a locale, a zone or an extension that is worth looking at.
struct ShortName {
  std::array<VXChar, 192> text;
  int64_t length = 0;
};

/// Writes the code points of `utf8` that fit in `room`. Returns how many there are, or -1 when it is malformed.
int64_t decode(std::string_view utf8, VXChar* out, int64_t room);

/// Decodes a name. False when it is not well-formed UTF-8 or too long for any name.
bool decode_name(std::string_view utf8, ShortName& name);

/// The name as ASCII bytes. False when it holds anything else, or its length is negative or above `room`.
bool ascii_name(const VXChar* text, int64_t length, char* bytes, int64_t room);

/// Appends a code point; U+FFFD for one that no text can hold.
void append_utf8(std::string& utf8, VXChar code_point);

}  // namespace vxhost

#endif
