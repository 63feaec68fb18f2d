#include "host/text.h"

#include <unicode/utf8.h>

namespace vxhost {

int64_t decode(std::string_view utf8, VXChar* out, int64_t room) {
  const auto* const bytes = reinterpret_cast<const uint8_t*>(utf8.data());
  int64_t length = 0;
  for (size_t at = 0; at < utf8.size(); ++length) {
    UChar32 c = 0;
    U8_NEXT(bytes, at, utf8.size(), c);
    if (c < 0) return -1;
    if (length < room) out[length] = static_cast<VXChar>(c);
  }
  return length;
}

bool decode_name(std::string_view utf8, ShortName& name) {
  const auto room = static_cast<int64_t>(name.text.size());
  name.length = decode(utf8, name.text.data(), room);
  return name.length >= 0 && name.length <= room;
}

bool ascii_name(const VXChar* text, int64_t length, char* bytes, int64_t room) {
  if (length < 0 || length > room || (text == nullptr && length > 0)) return false;
  for (int64_t i = 0; i < length; ++i) {
    if (text[i] > 0x7F) return false;
    bytes[i] = static_cast<char>(text[i]);
  }
  return true;
}

void append_utf8(std::string& utf8, VXChar code_point) {
  uint8_t bytes[U8_MAX_LENGTH];
  int32_t length = 0;
  UBool bad = false;
  const auto c = static_cast<UChar32>(code_point);
  U8_APPEND(bytes, length, U8_MAX_LENGTH, c, bad);
  if (bad) {
    utf8 += "\uFFFD";
  } else {
    utf8.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
  }
}

}  // namespace vxhost
