// Finding, trimming, justifying and copying.
#include <string.h>

#include "utf8/steps.h"
#include "vxnls/utf8.h"

using namespace vxnls;

int64_t vxzsu8StripBlanks(const uint8_t* text, int64_t n) { return length_without_blanks(bytes_of(text, n)); }

int64_t vxzsu8Copy(const uint8_t* in, int64_t length, uint8_t* out, int64_t room) {
  const int64_t count = std::min(bytes_of(in, length).length, bytes_of(out, room).length);
  if (count > 0) memmove(out, in, static_cast<size_t>(count));
  return count;
}

int64_t vxzsu8Index(const uint8_t* text, int64_t n, VXChar ch) {
  if (ch > 0x10FFFF) return -1;
  uint8_t bytes[Utf8Text::longest];
  return vxzsu8Find(text, n, bytes, Utf8Text::append(ch, bytes));
}

int64_t vxzsu8Find(const uint8_t* text, int64_t n, const uint8_t* pattern, int64_t pattern_length) {
  const ByteView wanted = bytes_of(pattern, pattern_length);
  if (wanted.length == 0) return 0;
  const ByteView whole = bytes_of(text, n);
  if (whole.length == 0) return -1;
  const void* const found =
      memmem(whole.bytes, static_cast<size_t>(whole.length), wanted.bytes, static_cast<size_t>(wanted.length));
  return found == nullptr ? -1 : static_cast<const uint8_t*>(found) - whole.bytes;
}

void vxzsu8LeftJustify(uint8_t* text, int64_t n) {
  const int64_t length = bytes_of(text, n).length;
  const int64_t blanks = std::find_if(text, text + length, [](uint8_t byte) { return byte != ' '; }) - text;
  if (blanks == 0) return;
  memmove(text, text + blanks, static_cast<size_t>(length - blanks));
  memset(text + length - blanks, ' ', static_cast<size_t>(blanks));
}

void vxzsu8RightJustify(uint8_t* text, int64_t n) {
  const ByteView whole = bytes_of(text, n);
  const int64_t kept = length_without_blanks(whole);
  if (kept == whole.length) return;
  const int64_t blanks = whole.length - kept;
  memmove(text + blanks, text, static_cast<size_t>(kept));
  memset(text, ' ', static_cast<size_t>(blanks));
}
