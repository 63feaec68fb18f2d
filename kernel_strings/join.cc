#include "kernel_strings/join.h"

#include <stdarg.h>

#include "vxnls/strings.h"

int64_t vxzscat(VXChar* out, int64_t room, VXChar separator, int32_t count, ...) {
  vxnls::Joiner joiner(out, room, separator);
  va_list texts;
  va_start(texts, count);
  for (int32_t i = 0; i < count; ++i) {
    const VXChar* const text = va_arg(texts, const VXChar*);
    const int64_t length = va_arg(texts, int64_t);
    joiner.add(vxnls::text_of(text, length));
  }
  va_end(texts);
  return joiner.finish();
}
