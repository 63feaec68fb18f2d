// Day numbers, calendar fields and Julian dates.
#ifndef VXNLS_CALENDAR_H
#define VXNLS_CALENDAR_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct NLSCalendarWork {              /* 68 = 17 x int32_t */
  int32_t year, daysInYear, dayOfYear, reserved, monthDays[12], yearCutoff;
} NLSCalendarWork;

VX_API double NLSdatprt(double datetime);
VX_API double NLStimprt(double datetime);
VX_API double NLShour(double t);
VX_API double NLSminute(double t);
VX_API double NLSsecond(double t);
VX_API double NLSwekday(double date);
VX_API double NLSjuldat(int32_t* year, double date);
VX_API double vxfmtzjuldat(double date);
VX_API double NLSdatjul(NLSCalendarWork*, double julian);
VX_API double vxfmtzdatjul(double julian);
VX_API VXStatus NLSymdjul(double* year, double* month, double* day, NLSCalendarWork*, double julian);
VX_API VXStatus vxfmtzymdjul(double* year, double* month, double* day, double julian);
VX_API double NLSjulymd(NLSCalendarWork*, double year, double month, double day);
VX_API double vxfmtzjulymd(double year, double month, double day);
VX_API double NLSmdy(NLSCalendarWork*, double month, double day, double year);   /* month, day, year */

#ifdef __cplusplus
}
#endif

#endif
