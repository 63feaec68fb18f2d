#include "vxnls/bytes.h"

#include <string.h>

#include "kernel_strings/units.h"

namespace {

bool nothing(const void* a, const void* b, int64_t n) { return a == nullptr || b == nullptr || n <= 0; }

constexpr size_t bytes(int64_t n) { return static_cast<size_t>(n); }

}  // namespace

int64_t qmStrLen(const char* text) { return text == nullptr ? 0 : static_cast<int64_t>(strlen(text)); }

int64_t qmzStrLen(const VXChar* text) {
  int64_t length = 0;
  while (text != nullptr && text[length] != 0) ++length;
  return length;
}

void* qmMemCpy(void* out, const void* in, int64_t n) { return nothing(out, in, n) ? out : memcpy(out, in, bytes(n)); }

void* qmMemMove(void* out, const void* in, int64_t n) { return nothing(out, in, n) ? out : memmove(out, in, bytes(n)); }

VXChar* qmzMemCpy(VXChar* out, const VXChar* in, int64_t n) { return qmzMemMove(out, in, n); }

VXChar* qmzMemMove(VXChar* out, const VXChar* in, int64_t n) {
  if (!nothing(out, in, n)) vxnls::move_units(out, in, n);
  return out;
}

void* qmMemSet(void* out, uint8_t byte, int64_t n) { return nothing(out, out, n) ? out : memset(out, byte, bytes(n)); }

VXChar* qmzMemSet(VXChar* out, VXChar ch, int64_t n) {
  if (!nothing(out, out, n)) vxnls::fill_units(out, ch, n);
  return out;
}

int32_t qmMemCmp(const void* a, const void* b, int64_t n) {
  if (nothing(a, b, n)) return 0;
  const int order = memcmp(a, b, bytes(n));
  return (order > 0) - (order < 0);
}

int32_t qmzMemCmp(const VXChar* a, const VXChar* b, int64_t n) {
  return nothing(a, b, n) ? 0 : vxnls::compare_units(a, b, n);
}

int64_t qmMemScan(const void* block, int64_t n, uint8_t byte) {
  if (nothing(block, block, n)) return -1;
  const void* const found = memchr(block, byte, bytes(n));
  return found == nullptr ? -1 : static_cast<const uint8_t*>(found) - static_cast<const uint8_t*>(block);
}

int64_t qmzMemScan(const VXChar* text, int64_t n, VXChar ch) { return vxnls::find_unit(vxnls::text_of(text, n), ch); }
