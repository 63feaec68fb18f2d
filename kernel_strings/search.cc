#include "kernel_strings/units.h"
#include "vxnls/strings.h"

using vxnls::TextView;

int64_t vxzsndx(const VXChar* text, int64_t length, const VXChar* pattern, int64_t pattern_length) {
  const TextView wanted = vxnls::text_of(pattern, pattern_length);
  const TextView whole = vxnls::text_of(text, length);
  if (wanted.length == 0) return 0;  // before the empty text is looked at
  const int64_t last = whole.length - wanted.length;
  for (int64_t at = 0; at <= last; ++at) {
    const int64_t skipped = vxnls::find_unit({whole.text + at, last - at + 1}, wanted.text[0]);
    if (skipped < 0) return -1;
    at += skipped;
    if (vxnls::compare_units(whole.text + at, wanted.text, wanted.length) == 0) return at;
  }
  return -1;
}

int64_t vxzspos(const VXChar* text, int64_t length, VXChar ch) {
  return vxnls::find_unit(vxnls::text_of(text, length), ch);
}

int64_t vxzstrp(const VXChar* text, int64_t length) {
  return vxnls::length_without_blanks(vxnls::text_of(text, length));
}
