#include "utf8/characters.h"
#include "utf8/runs.h"
#include "utf8/steps.h"
#include "vxnls/utf8.h"

using namespace vxnls;

int32_t utf8_len(const uint8_t* lead) { return lead == nullptr ? 0 : _utf8_len[*lead]; }

// Trusting
// ---------------------------------------------------------------------------------------------------------

int64_t UTF8_SLEN(const uint8_t* text) { return count_characters<TrustingStep>(terminated(text)); }

int64_t UTF8_SLENB(const uint8_t* text, int64_t n) { return count_characters<TrustingStep>(bytes_of(text, n)); }

int64_t UTF8_BLEN(const uint8_t* text) { return UTF8_BLENB(text, terminated(text).length); }

int64_t UTF8_BLENB(const uint8_t* text, int64_t n) {
  const ByteView whole = bytes_of(text, n);
  if (whole.length == 0 || whole.bytes[whole.length - 1] < 0x80) return whole.length;
  int64_t last = whole.length - 1;
  while (last > 0 && Utf8Text::is_continuation(whole.bytes[last])) --last;
  const uint8_t lead = whole.bytes[last];
  if (valid_1st_utf8[lead] == 0) return 0;  // kept on purpose: the whole text is refused, not its tail alone
  const int64_t end = last + _utf8_len[lead];
  return end <= whole.length ? end : last;
}

// Checking
// ---------------------------------------------------------------------------------------------------------

int64_t vxnls::_U8CharSize(const uint8_t* ch, uint32_t* valid) {
  const int64_t size = ch == nullptr ? 0 : CheckingStep::length(ch);
  // Kept on purpose: the second byte is not held to the narrower ranges behind E0, ED and F0; isLegalUTF8 does that.
  if (valid != nullptr) *valid = size > 0 && size == _utf8_len[*ch] && valid_1st_utf8[*ch] != 0;
  return size;
}

int64_t vxzsu8CharSize(const uint8_t* ch, uint8_t* valid) {
  uint32_t is_valid;
  const int64_t size = _U8CharSize(ch, &is_valid);
  if (valid != nullptr) *valid = static_cast<uint8_t>(is_valid);
  return size;
}

uint8_t* vxzsu8NextChar(const uint8_t* ch) { return const_cast<uint8_t*>(ch) + _U8CharSize(ch, nullptr); }

int64_t vxnls::count_by_runs(ByteView text, const Utf8Runs& runs) {
  int64_t count = 0;
  for (int64_t at = 0; at < text.length;) {
    at += runs.count(text.bytes + at, text.length - at, &count);
    // Where the text is broken a run gives little; a good deal of steps before the next one costs less.
    const int64_t steps_end = std::min(at + 64, text.length);
    for (; at < steps_end; ++count) at += CheckingStep::length(text.bytes + at, text.length - at);
  }
  return count;
}

int64_t vxzsu8NumChars(const uint8_t* text, int64_t n) { return count_by_runs(bytes_of(text, n), utf8_runs()); }

int64_t vxzsu8ByteLength(const uint8_t* text, int64_t characters) {
  int64_t length = 0;
  for (; text != nullptr && characters > 0; --characters) length += CheckingStep::length(text + length);
  return length;
}

void vxzsu8Lengths(const uint8_t* text, int64_t* characters, int64_t* bytes) {
  if (text == nullptr) return;
  const ByteView whole = terminated(text);
  if (characters != nullptr) *characters = count_by_runs(whole, utf8_runs());
  if (bytes != nullptr) *bytes = whole.length;
}
