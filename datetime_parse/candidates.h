// The common forms of dates, periods and times, as tables in the order in which they are tried.
#ifndef VXNLS_DATETIME_PARSE_CANDIDATES_H
#define VXNLS_DATETIME_PARSE_CANDIDATES_H

#include "unicode/counted_name.h"
#include "vxnls/explain.h"
#include "vxnls/locale.h"

namespace vxnls {

/// A built-in pattern, in one cache line.
struct Row {
  int32_t length;
  VXChar text[15];

  template <size_t N>
  constexpr Row(const char (&pattern)[N]) : length(N - 1), text{} {  // not explicit: rows of a table read as literals
    static_assert(N - 1 <= 15);
    for (size_t i = 0; i + 1 < N; ++i) text[i] = static_cast<uint8_t>(pattern[i]);
  }
  constexpr TextView view() const { return {text, length}; }
  /// Of a row of dates, which begins with a directive: whether that reads a number, in both readers.
  constexpr bool begins_with_digits() const { return text[1] == 'd' || text[1] == 'm' || text[1] == 'Y'; }
};

// clang-format off
inline constexpr Row day_first_dates[17] = {
    "%d/%m/%Y", "%d-%m-%Y", "%d.%m.%Y",
    "%Y/%m/%d", "%Y-%m-%d", "%Y.%m.%d",
    "%Y/%b/%d", "%Y-%b-%d", "%Y.%b.%d",
    "%b %d%#Y", "%b/%d/%Y", "%b.%d.%Y", "%b-%d-%Y",
    "%a,%b%d,%#Y",
    "%m/%d/%Y", "%m-%d-%Y", "%m.%d.%Y",
};

// The day-first rows at the end come in the reverse order of separators, kept on purpose.
inline constexpr Row month_first_dates[17] = {
    "%m/%d/%Y", "%m-%d-%Y", "%m.%d.%Y",
    "%Y/%m/%d", "%Y-%m-%d", "%Y.%m.%d",
    "%Y/%b/%d", "%Y-%b-%d", "%Y.%b.%d",
    "%b %d%#Y", "%b/%d/%Y", "%b.%d.%Y", "%b-%d-%Y",
    "%a,%b%d,%#Y",
    "%d.%m.%Y", "%d-%m-%Y", "%d/%m/%Y",
};

inline constexpr Row month_rows[10] = {
    "Month%o, %Y", "Month%o %Y", "M%o, %Y", "M%o %Y",
    "%b-%Y", "%b/%Y", "%o/%Y", "%o-%Y", "%o.%Y", "%b.%Y",
};

inline constexpr Row quarter_rows[6] = {
    "Quarter%o %Y", "Quarter%o, %Y", "Qtr%o %Y", "Qtr%o, %Y", "Q%o %Y", "Q%o, %Y",
};

inline constexpr Row sunday_week_rows[4] = {"Week%U %Y", "Week%U, %Y", "W%U %Y", "W%U, %Y"};
inline constexpr Row iso_week_rows[4]    = {"Week%V %Y", "Week%V, %Y", "W%V %Y", "W%V, %Y"};
inline constexpr Row monday_week_rows[4] = {"Week%W %Y", "Week%W, %Y", "W%W %Y", "W%W, %Y"};

inline constexpr Row time_rows[2] = {"%H:%M:%S", "%H:%M:%SZ"};
// clang-format on

/// A family of weeks: its rows, and what its week numbers count from.
struct WeekFamily {
  uint32_t source;
  const Row (&rows)[4];
  int32_t code;       // added to week numbers
  int32_t offset[7];  // from 1 January to the first day of week 1, by the week day of 1 January, Sunday first
};

inline constexpr WeekFamily sunday_weeks{VX_SOURCE_SUNDAY_WEEK, sunday_week_rows, 100, {0, 6, 5, 4, 3, 2, 1}};
inline constexpr WeekFamily iso_weeks{VX_SOURCE_ISO_WEEK, iso_week_rows, 200, {1, 0, -1, -2, -3, 3, 2}};
inline constexpr WeekFamily monday_weeks{VX_SOURCE_MONDAY_WEEK, monday_week_rows, 300, {1, 0, 6, 5, 4, 3, 2}};

/// Which of the locale's patterns a source of candidates means.
inline const NLSName& locale_pattern(const VXLocaleData& data, uint32_t source) {
  static constexpr const NLSName VXLocaleData::*members[] = {
      nullptr,
      &VXLocaleData::datePattern,
      &VXLocaleData::datePattern1,
      &VXLocaleData::datePattern2,
      &VXLocaleData::datetimePattern,
      &VXLocaleData::timePattern,
      &VXLocaleData::timePattern1,
      &VXLocaleData::quarterPattern1,
      &VXLocaleData::quarterPattern2,
      &VXLocaleData::monthYearPattern1,
      &VXLocaleData::monthYearPattern2,
      &VXLocaleData::weekPattern1,
      &VXLocaleData::weekPattern2,
  };
  return data.*members[source];
}

/// The place of a short ASCII text in a pattern, or -1.
template <size_t N>
constexpr int32_t place_of(TextView pattern, const char (&wanted)[N]) {
  for (int64_t i = 0; i + static_cast<int64_t>(N) - 1 <= pattern.length; ++i) {
    size_t same = 0;
    while (same + 1 < N && pattern.text[i + static_cast<int64_t>(same)] == static_cast<VXChar>(wanted[same])) ++same;
    if (same + 1 == N) return static_cast<int32_t>(i);
  }
  return -1;
}

/// Whether the locale writes the month before the day and the year: by the places of "%m", "%d" and "%Y" (or what may
/// stand for them) in its main date pattern. A part that is missing counts as -1, so a locale that has the year and the
/// day but no month in this sense counts as month-first, kept on purpose.
constexpr bool writes_month_first(TextView main) {
  constexpr char letters[7] = {'Y', 'y', 'm', 'o', 'd', 'e', 'b'};
  int32_t places[7] = {-1, -1, -1, -1, -1, -1, -1};
  for (int64_t i = 0; i + 1 < main.length; ++i) {
    if (main.text[i] != '%') continue;
    for (size_t k = 0; k < 7; ++k) {
      if (main.text[i + 1] == static_cast<VXChar>(letters[k]) && places[k] < 0) places[k] = static_cast<int32_t>(i);
    }
  }
  const auto first_of = [](int32_t place, int32_t other) { return place >= 0 ? place : other; };
  const int32_t year = first_of(places[0], places[1]);
  const int32_t month = first_of(places[2], places[3]);
  const int32_t day = first_of(first_of(places[4], places[5]), places[6]);
  return month < year && month < day;
}

}  // namespace vxnls

#endif
