// The work area that a caller hands to the calendar functions, and what they share with the other rooms.
#ifndef VXNLS_CALENDAR_WORK_AREA_H
#define VXNLS_CALENDAR_WORK_AREA_H

#include <bit>

#include "calendar/civil.h"
#include "vxnls/calendar.h"

namespace vxnls {

inline constexpr int32_t default_cutoff = 1950;

/// What a fresh work area holds.
inline constexpr NLSCalendarWork NLSFMT_Global_Values = {
    0, 0, 0, 0, {31, 0, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}, default_cutoff};

/// What the calendar functions answer to anything invalid.
inline constexpr double ordinary_missing = std::bit_cast<double>(uint64_t{0xFFFFFE0000000000u});

constexpr bool is_valid_date(double date) { return date >= first_day && date < end_day; }  // false for NaN

/// The week day of a date, 1 = Sunday. Kept on purpose: the remainder truncates, so the first nine days of 1582 give
/// -1, 0, 1, -5, ..., 0. What indexes a table is week_day().
constexpr double zwekday(double date) {
  if (!is_valid_date(date)) return ordinary_missing;
  constexpr int32_t a_sunday = -138052;
  return static_cast<double>(static_cast<int32_t>(date - a_sunday) % 7 + 1);
}

}  // namespace vxnls

#endif
