#include <algorithm>
#include <limits>

#include "calendar/work_area.h"
#include "module/host_services.h"

using namespace vxnls;

namespace {

/// Toward zero; what is no 64-bit integer, NaN included, becomes the most negative one.
int64_t truncated(double value) {
  constexpr double limit = 0x1p63;
  return value >= -limit && value < limit ? static_cast<int64_t>(value) : std::numeric_limits<int64_t>::min();
}

/// fmod(value, divisor), exactly, for values of less than 2^53.
double remainder_by(double value, int64_t divisor) {
  const auto whole = static_cast<int64_t>(value);
  return static_cast<double>(whole % divisor) + (value - static_cast<double>(whole));
}

/// The time of day as the minute and second functions take it: they look at the sign of the value, the hour function at
/// the sign of the remainder. Kept on purpose.
double time_by_sign_of_value(double t) {
  const double within = remainder_by(t, seconds_per_day);
  return t < 0 ? static_cast<double>(seconds_per_day) + within : within;
}

double time_by_sign_of_remainder(double t) {
  const double within = remainder_by(t, seconds_per_day);
  return within < 0 ? static_cast<double>(seconds_per_day) + within : within;
}

// Where a conversion takes the cutoff of two-digit years from, once it meets one.
struct CutoffOfWork {
  const NLSCalendarWork* work;
  int64_t operator()() const { return work->yearCutoff; }
};

struct CutoffOfHost {
  int64_t operator()() const {
    static constexpr VXChar name[] = {'V', 'X', '_', 'N', 'A', 'M', 'E', '_', 'Y',
                                      'E', 'A', 'R', 'C', 'U', 'T', 'O', 'F', 'F'};
    const int64_t cutoff = host::integer_option(name, std::size(name), default_cutoff);
    return std::clamp<int64_t>(cutoff, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max());
  }
};

template <class Cutoff>
int64_t four_digits(int64_t year, Cutoff cutoff) {
  return year <= 99 ? widened_year(year, cutoff()) : year;
}

void keep_year(NLSCalendarWork* work, int64_t year) {
  work->year = static_cast<int32_t>(year);
  work->monthDays[1] = days_in_month(year, 2);
  work->daysInYear = days_in_year(year);
}

struct DayOfYear {
  int64_t year;
  int32_t day;  // from 1; 0: not valid
};

/// The year and day of a Julian date, left in the work area.
template <class Cutoff>
DayOfYear split_julian(NLSCalendarWork* work, double julian, Cutoff cutoff) {
  const int64_t number = truncated(julian);
  const int64_t raw_year = number / 1000, day = number % 1000;
  if (number < 1 || raw_year > last_year || (raw_year > 99 && raw_year < first_year) || day < 1 || day > 366) {
    work->year = static_cast<int32_t>(raw_year);
    return {raw_year, 0};
  }
  const int64_t year = four_digits(raw_year, cutoff);
  work->dayOfYear = static_cast<int32_t>(day);
  keep_year(work, year);
  return {year, day > work->daysInYear ? 0 : static_cast<int32_t>(day)};
}

template <class Cutoff>
double date_of_julian(NLSCalendarWork* work, double julian, Cutoff cutoff) {
  const DayOfYear at = split_julian(work, julian, cutoff);
  return at.day != 0 ? static_cast<double>(day_number(at.year, at.day)) : ordinary_missing;
}

template <class Cutoff>
VXStatus fields_of_julian(double* year, double* month, double* day, NLSCalendarWork* work, double julian,
                          Cutoff cutoff) {
  const DayOfYear at = split_julian(work, julian, cutoff);
  if (at.day == 0) {
    *year = *month = *day = ordinary_missing;
    return 0;
  }
  int32_t reached = 12;
  while (month_start(at.year, reached) >= at.day) --reached;
  work->dayOfYear = at.day - month_start(at.year, reached);  // what the walk over the months leaves of it
  *year = static_cast<double>(at.year);
  *month = reached;
  *day = work->dayOfYear;
  return 0;
}

template <class Cutoff>
double julian_of_fields(NLSCalendarWork* work, double year, double month, double day, Cutoff cutoff) {
  if (!(month >= 1 && month <= 12 && day >= 1 && day <= 31 && year >= 0)) return ordinary_missing;
  if (year > 99 && !(year >= first_year && year <= last_year)) return ordinary_missing;
  const int64_t whole_year = four_digits(truncated(year), cutoff);
  keep_year(work, whole_year);
  const auto whole_month = static_cast<int32_t>(month);
  if (day > days_in_month(whole_year, whole_month)) return ordinary_missing;
  work->dayOfYear = month_start(whole_year, whole_month);  // without the day
  return static_cast<double>(truncated(day) + work->dayOfYear + 1000 * whole_year);
}

double julian_of_date(double date, int32_t* year) {
  if (date != date) return date;  // with its own bits
  if (!is_valid_date(date)) return ordinary_missing;
  auto day = static_cast<int32_t>(date);
  if (date < day) --day;
  const int32_t of = civil_from_day(day).year;
  if (year != nullptr) *year = of;
  return static_cast<double>(of * 1000 + day - day_number(of, 1) + 1);
}

}  // namespace

double NLSdatprt(double datetime) { return is_valid_datetime(datetime) ? day_of_datetime(datetime) : ordinary_missing; }

double NLStimprt(double datetime) {
  return is_valid_datetime(datetime) ? remainder_by(since_some_midnight(datetime), seconds_per_day) : ordinary_missing;
}

double NLShour(double t) {
  if (!is_valid_datetime(t)) return ordinary_missing;
  const int64_t hour = static_cast<int64_t>(time_by_sign_of_remainder(t)) / 3600;
  return static_cast<double>(hour);
}

double NLSminute(double t) {
  if (!is_valid_datetime(t)) return ordinary_missing;
  const int64_t minute = static_cast<int64_t>(time_by_sign_of_value(t)) % 3600 / 60;
  return static_cast<double>(minute);
}

double NLSsecond(double t) {
  return is_valid_datetime(t) ? remainder_by(time_by_sign_of_value(t), 60) : ordinary_missing;
}

double NLSwekday(double date) { return zwekday(date); }

double NLSjuldat(int32_t* year, double date) { return julian_of_date(date, year); }
double vxfmtzjuldat(double date) { return julian_of_date(date, nullptr); }

double NLSdatjul(NLSCalendarWork* work, double julian) { return date_of_julian(work, julian, CutoffOfWork{work}); }

double vxfmtzdatjul(double julian) {
  if (!(julian > 0 && julian <= 20000365)) return ordinary_missing;
  NLSCalendarWork work = NLSFMT_Global_Values;
  return date_of_julian(&work, julian, CutoffOfHost{});
}

VXStatus NLSymdjul(double* year, double* month, double* day, NLSCalendarWork* work, double julian) {
  return fields_of_julian(year, month, day, work, julian, CutoffOfWork{work});
}

VXStatus vxfmtzymdjul(double* year, double* month, double* day, double julian) {
  NLSCalendarWork work = NLSFMT_Global_Values;
  return fields_of_julian(year, month, day, &work, julian, CutoffOfHost{});
}

double NLSjulymd(NLSCalendarWork* work, double year, double month, double day) {
  return julian_of_fields(work, year, month, day, CutoffOfWork{work});
}

double vxfmtzjulymd(double year, double month, double day) {
  NLSCalendarWork work = NLSFMT_Global_Values;
  return julian_of_fields(&work, year, month, day, CutoffOfHost{});
}

double NLSmdy(NLSCalendarWork* work, double month, double day, double year) {
  const double julian = NLSjulymd(work, year, month, day);
  return julian == julian ? NLSdatjul(work, julian) : julian;
}
