// What one pattern read from a text, before it becomes a date or a time.
#ifndef VXNLS_DATETIME_PARSE_FIELDS_H
#define VXNLS_DATETIME_PARSE_FIELDS_H

#include "vxnls/explain.h"
#include "vxnls/types.h"

namespace vxnls {

/// Marks an offset that the text did not give; no offset that can be read has this value.
inline constexpr int32_t no_offset = VX_NO_OFFSET;

struct NLSParseFields {
  int32_t year, month, day, hour, minute, second, milliseconds;
  int32_t offset;    // seconds east of UTC, or no_offset
  int32_t marker;    // 0 none, 1 AM, 2 PM
  int32_t quarter;   // 1 to 4, from a quarter name
  int32_t week;      // the number plus 100 (Sunday weeks), 200 (ISO weeks) or 300 (Monday weeks)
  int32_t modifier;  // what stood between "%" and the letter of the last directive, or 0
  VXZone* zone;      // not owned
};
static_assert(sizeof(NLSParseFields) == 56 && offsetof(NLSParseFields, zone) == 48);

/// The state at the start of every attempt.
inline constexpr NLSParseFields cleared_fields{.year = 0,
                                               .month = 0,
                                               .day = 0,
                                               .hour = 0,
                                               .minute = 0,
                                               .second = 0,
                                               .milliseconds = 0,
                                               .offset = no_offset,
                                               .marker = 0,
                                               .quarter = 0,
                                               .week = 0,
                                               .modifier = 0,
                                               .zone = nullptr};

}  // namespace vxnls

#endif
