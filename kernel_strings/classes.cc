#include "vxnls/classes.h"

#include "module/host_services.h"
#include "unicode/class_tables.h"

namespace {

using vxnls::CodePointRange;

template <int N>
bool within(uint32_t c, const CodePointRange (&ranges)[N]) {
  int low = 0, high = N - 1;
  while (low <= high) {
    const int middle = (low + high) / 2;
    if (c < ranges[middle].low) {
      high = middle - 1;
    } else if (c <= ranges[middle].high) {
      return true;
    } else {
      low = middle + 1;
    }
  }
  return false;
}

/// ASCII never calls the host. Beyond it the host's database knows newer characters than the tables do.
template <int... N>
int32_t in_class(uint32_t c, uint32_t bits, const CodePointRange (&... ranges)[N]) {
  if (c < 0x80) return (vxnls::ansi_ccl[c].bits & bits) != 0;
  if (VXUnicodeDatabase* const database = vxnls::host::unicode_database()) {
    return database->ops->test_class(database, c, bits) != 0;
  }
  return (within(c, ranges) || ...);
}

constexpr bool is_hex_letter(uint32_t c) {
  const uint32_t ascii = c >= 0xFF21 ? c - (0xFF21 - 'A') : c;
  return (ascii >= 'A' && ascii <= 'F') || (ascii >= 'a' && ascii <= 'f');
}

}  // namespace

int32_t vxnlsisdigit(uint32_t c) { return in_class(c, vxnls::class_digit, vxnls::digitranges); }
int32_t vxnlsislower(uint32_t c) { return in_class(c, vxnls::class_lower, vxnls::lowerranges); }
int32_t vxnlsisupper(uint32_t c) { return in_class(c, vxnls::class_upper, vxnls::upperranges); }
int32_t vxnlsisalpha(uint32_t c) { return in_class(c, vxnls::class_letter, vxnls::alpharanges); }
int32_t vxnlsisalnum(uint32_t c) {
  return in_class(c, vxnls::class_letter | vxnls::class_digit, vxnls::alpharanges, vxnls::digitranges);
}
int32_t vxnlsisprint(uint32_t c) { return in_class(c, vxnls::class_print, vxnls::printranges); }
int32_t vxnlsisxdigit(uint32_t c) {
  return is_hex_letter(c) ? 1 : in_class(c, vxnls::class_digit, vxnls::xdigitranges);
}
int32_t vxnlsispunct(uint32_t c) { return in_class(c, vxnls::class_punctuation, vxnls::punctranges); }
int32_t vxnlsisgraph(uint32_t c) { return in_class(c, vxnls::class_graph, vxnls::graphranges); }
int32_t vxnlsiscntrl(uint32_t c) { return in_class(c, vxnls::class_control, vxnls::controlranges); }
int32_t vxnlsisspace(uint32_t c) { return within(c, vxnls::spaceranges); }
