// Case of one code point by the built-in tables, which cover U+0000 to U+FFFF.
#ifndef VXNLS_UNICODE_CASE_MAPPING_H
#define VXNLS_UNICODE_CASE_MAPPING_H

#include "vxnls/types.h"

namespace vxnls {

#include "unicode/case_tables.inc"

inline constexpr int8_t in_exceptions = -128;

/// The delta of `c` by a block table and its rows; 0 for a block without a row and from U+10000 on.
template <class Start, class Delta>
constexpr int32_t delta_of(VXChar c, const Start* starts, const Delta* rows) {
  if (c >= 0x10000) return 0;
  const int32_t start = starts[c >> 7];
  return start < 0 ? 0 : rows[start + static_cast<int32_t>(c & 0x7F)];
}

/// `exceptions` lists from, to, from, to, ..., 0.
constexpr VXChar mapped_by(VXChar c, const int8_t* rows, const uint32_t* exceptions) {
  const int32_t delta = delta_of(c, qmz_metatable, rows);
  if (delta != in_exceptions) return c + static_cast<VXChar>(delta);
  for (; *exceptions != 0; exceptions += 2) {  // GCOV_EXCL_BR_LINE: all exceptions are listed
    if (exceptions[0] == c) return exceptions[1];
  }
  return c;  // GCOV_EXCL_LINE: all exceptions are listed
}

constexpr VXChar lower_by_tables(VXChar c) { return mapped_by(c, qmz_downshift, qmz_downaux); }
constexpr VXChar upper_by_tables(VXChar c) { return mapped_by(c, qmz_upshift, qmz_upaux); }

/// The smallest and the largest code point of the class that case mappings connect.
constexpr VXChar smallest_by_case(VXChar c) { return c + static_cast<VXChar>(delta_of(c, qmz_min_meta, qmz_minshift)); }
constexpr VXChar largest_by_case(VXChar c) { return c + static_cast<VXChar>(delta_of(c, qmz_max_meta, qmz_maxshift)); }

}  // namespace vxnls

#endif
