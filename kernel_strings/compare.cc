#include "kernel_strings/units.h"
#include "unicode/case_mapping.h"
#include "vxnls/strings.h"

using vxnls::TextView;

namespace {

constexpr bool below(VXChar a, VXChar b) { return static_cast<int32_t>(a) < static_cast<int32_t>(b); }

bool all_blank(TextView text) { return vxnls::length_without_blanks(text) == 0; }

TextView from(TextView text, int64_t start) { return {text.text + start, text.length - start}; }

}  // namespace

int32_t vxzseqn(const VXChar* a, int64_t length_a, const VXChar* b, int64_t length_b) {
  const TextView left = vxnls::text_of(a, length_a), right = vxnls::text_of(b, length_b);
  if (left.length != right.length) return 0;
  for (int64_t i = 0; i < left.length; ++i) {
    const VXChar x = left.text[i], y = right.text[i];
    if (x != y && vxnls::lower_by_tables(x) != vxnls::lower_by_tables(y)) return 0;
  }
  return 1;
}

int32_t vxzsncmp(const VXChar* a, int64_t length_a, const VXChar* b, int64_t length_b) {
  const TextView left = vxnls::text_of(a, length_a), right = vxnls::text_of(b, length_b);
  const int64_t shorter = std::min(left.length, right.length);
  int32_t by_case = 0;
  for (int64_t i = 0; i < shorter; ++i) {
    const VXChar x = left.text[i], y = right.text[i];
    if (x == y) continue;
    if (by_case == 0) by_case = below(x, y) ? -1 : 1;
    const VXChar lower_x = vxnls::lower_by_tables(x), lower_y = vxnls::lower_by_tables(y);
    if (lower_x != lower_y) return below(lower_x, lower_y) ? -2 : 2;
  }
  // Kept on purpose: a longer text is greater even when it goes on with a character below the blank.
  if (!all_blank(left.length > shorter ? from(left, shorter) : from(right, shorter))) {
    return left.length > shorter ? 2 : -2;
  }
  return by_case;
}
