/// Day numbers, calendar fields and Julian dates.
///
/// All values are doubles:
///   date      days since 1960-01-01 (day 0): -138061 (1582-01-01) to 6589335 (20000-12-31)
///   datetime  seconds since 1960-01-01 00:00: -11928470400 to before 569318630400; fractions are kept
///   time      seconds since midnight; wherever a time is taken, a datetime is taken too
///   Julian    year * 1000 + day of the year (1-366), for example 1960001; the year is 1582-20000, or 0-99 for a year
///             of two digits
///   missing   the NaN 0xFFFFFE0000000000, the answer to everything invalid: NaN, outside these ranges, no such day
///
/// The calendar is the Gregorian one, carried back to 1 January 1582, with one addition: a year divisible by 4000 is a
/// common year, so 4000, 8000, 12000, 16000 and 20000 have 365 days.
///
/// A year from 0 to 99 has two digits and stands for the one in the hundred years that begin with a cutoff: with 1950,
/// 50-99 are 1950-1999 and 00-49 are 2000-2049. A cutoff lies between 1582 and 19901: with others such a year may give
/// results outside the ranges above. The NLS functions take the cutoff from the work area. The vxfmtz
/// functions ask the host for the integer option VX_NAME_YEARCUTOFF whenever they meet such a year, 1950 when it is
/// unset or no options are offered; they need no work area.
///
/// No function reports an error code or keeps anything between calls. Any thread may call them at any time; a work area
/// belongs to one call at a time. Pointers are never null, except the one of NLSjuldat.
#ifndef VXNLS_CALENDAR_H
#define VXNLS_CALENDAR_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// What a conversion examined last, and the cutoff. A fresh one is
///   {0, 0, 0, 0, {31, 0, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}, 1950}
typedef struct NLSCalendarWork {
  int32_t year;           ///< the year; the year as read, unwidened, when a Julian date was refused
  int32_t daysInYear;     ///< 365 or 366
  int32_t dayOfYear;      ///< as each function says
  int32_t reserved;       ///< never read or written
  int32_t monthDays[12];  ///< each conversion of a year writes February: 28 or 29; the others are not read
  int32_t yearCutoff;     ///< first of the hundred years that two-digit years stand for; only read
} NLSCalendarWork;

/// The date that contains a datetime: -1.0 gives -1. The seconds are counted from 1582 as a double, so a value less
/// than about a microsecond before midnight belongs to the next date.
VX_API double NLSdatprt(double datetime);

/// The time of day of a datetime, 0 to below 86400, with its fraction: -1.0 gives 86399.
VX_API double NLStimprt(double datetime);

/// Hour (0-23), minute (0-59), second (0 to below 60, with its fraction) of a time or datetime: of -0.5 they are 23, 59
/// and 59.5. A fraction below zero that is lost against 86400 gives hour 24.
VX_API double NLShour(double t);
VX_API double NLSminute(double t);
VX_API double NLSsecond(double t);

/// The week day of a date, 1 = Sunday to 7 = Saturday: 0 gives 6. The first nine days of 1582 give -1, 0, 1, -5, -4,
/// -3, -2, -1, 0. A fraction is cut off.
VX_API double NLSwekday(double date);

/// The Julian date of a date; a fraction belongs to the day: 1.5 gives 1960002. A NaN comes back with its own bits, so
/// special missing values pass through.
///   year  receives the year when the date is valid and is left alone otherwise; may be null
VX_API double NLSjuldat(int32_t* year, double date);
VX_API double vxfmtzjuldat(double date);

/// The date of a Julian date; a fraction is cut off: 2000060 gives 14669.
/// Writes year, daysInYear, dayOfYear and February into the work area, also when the year has no such day; the year as
/// read when the Julian date has no valid form. vxfmtzdatjul refuses everything above 20000365, fractions included.
VX_API double NLSdatjul(NLSCalendarWork* work, double julian);
VX_API double vxfmtzdatjul(double julian);

/// Splits a Julian date: 2000060 gives 2000, 2, 29. On failure all three are missing. Always returns 0.
/// The work area is written as by NLSdatjul, but on success dayOfYear is left at the day of the month.
VX_API VXStatus NLSymdjul(double* year, double* month, double* day, NLSCalendarWork* work, double julian);
VX_API VXStatus vxfmtzymdjul(double* year, double* month, double* day, double julian);

/// The Julian date of a year (0-99 or 1582-20000), month (1-12) and day (1 to the length of the month): 2000, 2, 29
/// gives 2000060. The limits hold for the values as they are given, then fractions are cut off: day 15.7 is 15,
/// day 31.5 is missing, year 99.5 too. Once month, day and year are within 12, 31 and their range, writes year,
/// daysInYear and February into the work area, and when the month has the day, dayOfYear: the days of the months before
/// it.
VX_API double NLSjulymd(NLSCalendarWork* work, double year, double month, double day);
VX_API double vxfmtzjulymd(double year, double month, double day);

/// The date of a month, day and year, in this order: 2, 29, 2000 gives 14669. NLSjulymd, then NLSdatjul.
VX_API double NLSmdy(NLSCalendarWork* work, double month, double day, double year);

#ifdef __cplusplus
}
#endif

#endif
