// UTF-8 text at the door of a service, and the two ways to step through it.
#ifndef VXNLS_UTF8_STEPS_H
#define VXNLS_UTF8_STEPS_H

#include <string.h>

#include <algorithm>

#include "unicode/text_flavour.h"

namespace vxnls {

/// The length that a lead byte announces. One object, two names.
inline constexpr const ByteTable& _utf8_len = bytesFromUTF8;

inline constexpr int64_t longest_sequence = 6;

/// A caller's bytes: a null text, or one with a negative length, is empty.
struct ByteView {
  const uint8_t* bytes;
  int64_t length;
};

constexpr ByteView bytes_of(const uint8_t* text, int64_t length) {
  return {text, text != nullptr && length > 0 ? length : 0};
}

/// The bytes of a NUL-terminated text; null is empty.
inline ByteView terminated(const uint8_t* text) {
  return {text, text == nullptr ? 0 : static_cast<int64_t>(strlen(reinterpret_cast<const char*>(text)))};
}

/// Trusts the lead: the bytes that it announces, whatever they are, as far as there are any.
struct TrustingStep {
  static constexpr int64_t length(const uint8_t* at, int64_t remaining) {
    return std::min<int64_t>(_utf8_len[*at], remaining);
  }
};

/// Checks: the lead and the continuation bytes that are really there, at most as many as it announces. A broken
/// character never swallows the start of the next one.
struct CheckingStep {
  static constexpr int64_t length(const uint8_t* at, int64_t remaining) {
    const int64_t most = TrustingStep::length(at, remaining);
    int64_t length = 1;
    while (length < most && Utf8Text::is_continuation(at[length])) ++length;
    return length;
  }
  /// Where nobody knows how many bytes remain: a NUL ends every character.
  static constexpr int64_t length(const uint8_t* at) { return length(at, longest_sequence); }
};

template <class Step>
constexpr int64_t count_characters(ByteView text) {
  int64_t count = 0;
  for (int64_t at = 0; at < text.length; ++count) at += Step::length(text.bytes + at, text.length - at);
  return count;
}

/// The length without trailing blanks.
constexpr int64_t length_without_blanks(ByteView text) {
  int64_t length = text.length;
  while (length > 0 && text.bytes[length - 1] == ' ') --length;
  return length;
}

}  // namespace vxnls

#endif
