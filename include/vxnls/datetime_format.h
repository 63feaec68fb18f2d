// Dates, times and datetimes written by the patterns of a locale.
#ifndef VXNLS_DATETIME_FORMAT_H
#define VXNLS_DATETIME_FORMAT_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

VX_API VXStatus NLSDateFormat(VXLocale*, uint32_t month, uint32_t day, uint32_t year, int32_t style,
                              VXChar* buffer, int64_t capacity, int64_t* length);
VX_API VXStatus NLSTimeFormat(VXLocale*, int32_t flag, VXChar* buffer, int64_t capacity, int64_t* length, double value);
VX_API VXStatus NLSDatetimeFormat(VXLocale*, uint64_t ignored, VXChar* buffer, int64_t capacity, int64_t* length, double value);
VX_API VXStatus NLSDateFormatU(VXLocale*, uint32_t month, uint32_t day, uint32_t year, int32_t style,
                               uint8_t* buffer, int64_t capacity, int64_t* length);
VX_API VXStatus NLSTimeFormatU(VXLocale*, int32_t flag, uint8_t* buffer, int64_t capacity, int64_t* length, double value);
VX_API VXStatus NLSDatetimeFormatU(VXLocale*, uint64_t ignored, uint8_t* buffer, int64_t capacity, int64_t* length, double value);

#ifdef __cplusplus
}
#endif

#endif
