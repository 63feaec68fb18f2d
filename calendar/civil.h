// The calendar in integers: day numbers, years, months, days, week days.
// Gregorian, carried back to 1 January 1582, with one addition: a year divisible by 4000 is a common year.
#ifndef VXNLS_CALENDAR_CIVIL_H
#define VXNLS_CALENDAR_CIVIL_H

#include <stdint.h>

namespace vxnls {

// Valid dates: first_year to last_year. Day numbers count from 1 January 1960, seconds from its midnight.
inline constexpr int32_t first_year = 1582, last_year = 20000;
inline constexpr int32_t first_day = -138061, end_day = 6589336;  // end_day is the first that is not valid
inline constexpr int64_t seconds_per_day = 86400;
inline constexpr int64_t first_second = first_day * seconds_per_day, end_second = end_day * seconds_per_day;

struct CivilDate {
  int32_t year, month, day;  // month and day from 1
  bool operator==(const CivilDate&) const = default;
};

constexpr bool is_leap_year(int64_t year) {
  // Of years that 25 divides, those that 400 divides; no branch depends on the year.
  return (year & (year % 25 != 0 ? 3 : 15)) == 0 && year % 4000 != 0;
}

constexpr int32_t days_in_year(int64_t year) { return 365 + is_leap_year(year); }

/// Days of the months before `month` in a common year; entry 13 is the whole year.
inline constexpr int32_t days_before_month[14] = {0, 0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

/// The day of the year (from 0) on which `month` begins; 13 gives the length of the year.
constexpr int32_t month_start(int64_t year, int32_t month) {
  return days_before_month[month] + (month > 2 && is_leap_year(year));
}

constexpr int32_t days_in_month(int64_t year, int32_t month) {
  const int32_t days = days_before_month[month + 1] - days_before_month[month];
  return month == 2 ? days + is_leap_year(year) : days;
}

[[gnu::always_inline]] constexpr bool is_valid(CivilDate date) {
  return date.year >= first_year && date.year <= last_year && date.month >= 1 && date.month <= 12 && date.day >= 1 &&
         (date.day <= 28 || date.day <= days_in_month(date.year, date.month));
}

/// The day number of a day of a year (from 1).
constexpr int64_t day_number(int64_t year, int64_t day_of_year) {
  const int64_t before = year - 1;
  return 365 * year + before / 4 - before / 100 + before / 100 / 4 - before / 4000 - 715875 + day_of_year;
}

/// The day number of a valid date.
[[gnu::always_inline]] constexpr int32_t day_number(CivilDate date) {
  const bool of_year_before = date.month < 3;  // years that begin in March end with their leap day
  const auto year = static_cast<uint32_t>(date.year - of_year_before), century = year / 100;
  const auto month = static_cast<uint32_t>(of_year_before ? date.month + 12 : date.month);
  const uint32_t days = 1461 * year / 4 - century + century / 4 - year / 4000 + (979 * month - 2919) / 32;
  return static_cast<int32_t>(days) - 715816 + date.day;
}

static_assert(day_number(1582, 1) == first_day && day_number(1960, 1) == 0 && day_number(20001, 1) == end_day);

/// A date whose year is in two parts, as it is written.
struct CenturyDate {
  int32_t century, of_century, month, day;
};

/// The date of a day from first_day to before end_day.
constexpr CenturyDate century_date_from_day(int32_t day) {
  // Days since 1 March of year 0 in this calendar; each 29 February that 4000, 8000, ... lack is put in, which gives
  // days of the plain Gregorian calendar.
  constexpr int32_t days_in_4000_years = 1460969;
  constexpr int32_t epoch = day_number(CivilDate{4000, 3, 1}) - days_in_4000_years;
  const auto since = static_cast<uint32_t>(day - epoch);
  uint32_t gregorian = since;
  if (since >= days_in_4000_years) [[unlikely]]
    gregorian += since / days_in_4000_years;
  // Neri and Schneider, "Euclidean affine functions and their application to calendar algorithms" (2022): the year
  // begins in March, and divisions become multiplications.
  const uint32_t quarter_days = 4 * gregorian + 3;
  const uint32_t century = quarter_days / 146097;
  const uint32_t in_century = quarter_days % 146097 | 3;
  const uint64_t product = uint64_t{2939745} * in_century;
  const auto year_of_century = static_cast<uint32_t>(product >> 32);
  const uint32_t day_of_year = static_cast<uint32_t>(product) / 2939745 / 4;
  const uint32_t month_and_day = 2141 * day_of_year + 197913;
  const bool next_year = day_of_year >= 306;  // January and February
  const bool next_century = next_year && year_of_century == 99;
  return {static_cast<int32_t>(century + next_century),
          static_cast<int32_t>(next_century ? 0 : year_of_century + next_year),
          static_cast<int32_t>((month_and_day >> 16) - (next_year ? 12 : 0)),
          static_cast<int32_t>((month_and_day & 0xFFFF) / 2141 + 1)};
}

constexpr CenturyDate century_date(CivilDate date) {
  const auto year = static_cast<uint32_t>(date.year), century = year / 100;
  return {static_cast<int32_t>(century), static_cast<int32_t>(year - 100 * century), date.month, date.day};
}

constexpr CivilDate civil_from_day(int32_t day) {
  const CenturyDate date = century_date_from_day(day);
  return {100 * date.century + date.of_century, date.month, date.day};
}

static_assert(civil_from_day(first_day) == CivilDate{1582, 1, 1} && civil_from_day(0) == CivilDate{1960, 1, 1});
static_assert(civil_from_day(end_day - 1) == CivilDate{20000, 12, 31});

/// The day of the week, 0 = Sunday to 6 = Saturday, of a day from first_day on.
constexpr int32_t week_day(int32_t day) { return (day - first_day + 5) % 7; }

/// A year from 0 to 99 in the hundred years that begin with `cutoff`; with a negative cutoff as the remainder falls.
constexpr int64_t widened_year(int64_t year, int64_t cutoff) {
  const int64_t within = cutoff % 100;
  return year + cutoff - within + (year < within ? 100 : 0);
}

/// A datetime from first_second to before end_second, cut to whole seconds.
struct DayAndSecond {
  int32_t day;
  int32_t second;  // of the day, 0 to 86399
};

constexpr bool is_valid_datetime(double t) {
  return t >= static_cast<double>(first_second) && t < static_cast<double>(end_second);  // false for NaN
}

/// The whole seconds of a valid datetime since first_day. The sum is rounded as a double: so close before midnight that
/// it cannot be told from it, the day is the next one. Kept on purpose.
constexpr uint64_t since_first_day(double t) {
  return static_cast<uint64_t>(static_cast<int64_t>(t - static_cast<double>(first_second)));
}

/// The date that contains a valid datetime.
constexpr int32_t day_of_datetime(double t) {
  return static_cast<int32_t>(since_first_day(t) / seconds_per_day) + first_day;
}

/// What counts the time of day of a valid datetime: the seconds themselves, or for 0 and below those since first_day.
constexpr double since_some_midnight(double t) { return t <= 0 ? t - static_cast<double>(first_second) : t; }

struct TimeOfDay {
  int32_t hour, minute, second;
};

/// Of a second of the day, 0 to 86399.
constexpr TimeOfDay time_of_day(int32_t second_of_day) {
  const auto seconds = static_cast<uint32_t>(second_of_day), minutes = seconds / 60, hours = seconds / 3600;
  return {static_cast<int32_t>(hours), static_cast<int32_t>(minutes - 60 * hours),
          static_cast<int32_t>(seconds - 60 * minutes)};
}

constexpr DayAndSecond day_and_second(double t) {
  const uint64_t since = since_first_day(t);
  const auto day = static_cast<uint32_t>(since / seconds_per_day);
  uint64_t second = since - uint64_t{day} * seconds_per_day;
  // The sum has been rounded up to a second.
  if (t > 0 && static_cast<uint64_t>(static_cast<int64_t>(t) - first_second) != since)
    second = static_cast<uint64_t>(static_cast<int64_t>(t)) % seconds_per_day;
  return {static_cast<int32_t>(day) + first_day, static_cast<int32_t>(second)};
}

}  // namespace vxnls

#endif
