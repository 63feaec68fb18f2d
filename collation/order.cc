#include "kernel_strings/units.h"
#include "vxnls/collation.h"

namespace {

using vxnls::TextView;

constexpr uint32_t blank_padded = 1;

/// How `rest`, which follows a common beginning, stands to the blanks that pad the other text.
int32_t against_blanks(TextView rest) {
  for (int64_t i = 0; i < rest.length; ++i) {
    const VXChar unit = rest.text[i];
    if (unit != vxnls::blank) return static_cast<int32_t>(unit) < static_cast<int32_t>(vxnls::blank) ? -1 : 1;
  }
  return 0;
}

}  // namespace

int32_t NLSSSOrderCompare(VXLocale*, const VXChar* a, int64_t length_a, const VXChar* b, int64_t length_b,
                          uint32_t mode) {
  const TextView left = vxnls::text_of(a, length_a), right = vxnls::text_of(b, length_b);
  const int64_t shorter = std::min(left.length, right.length);
  const int32_t difference = vxnls::compare_units(left.text, right.text, shorter);
  if (difference != 0 || left.length == right.length) return difference;
  const bool a_goes_on = left.length > shorter;
  if (mode != blank_padded) return a_goes_on ? 1 : -1;
  return a_goes_on ? against_blanks({left.text + shorter, left.length - shorter})
                   : -against_blanks({right.text + shorter, right.length - shorter});
}

VXStatus NLSKeyCreate(VXLocale*, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t) { return 0; }
int32_t NLSKKOrderCompare(VXLocale*, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t) { return 0; }
int32_t NLSKSOrderCompare(VXLocale*, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t) { return 0; }
