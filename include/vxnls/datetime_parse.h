// Dates, times and datetimes read from text.
#ifndef VXNLS_DATETIME_PARSE_H
#define VXNLS_DATETIME_PARSE_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

VX_API VXStatus NLSBufToDate(VXLocale*, const VXChar* buffer, int64_t length, uint32_t kind,
                             uint32_t* month, uint32_t* day, uint32_t* year, int64_t* consumed);
VX_API VXStatus NLSBufToTime(VXLocale*, const VXChar* buffer, int64_t length, uint32_t kind, double* seconds, int64_t* consumed);
VX_API VXStatus NLSBufToDatetime(VXLocale*, const VXChar* buffer, int64_t length, uint32_t kind, double* datetime, int64_t* consumed);
VX_API VXStatus NLSBufToDateU(VXLocale*, const uint8_t* buffer, int64_t length, uint32_t kind,
                              uint32_t* month, uint32_t* day, uint32_t* year, int64_t* consumed);
VX_API VXStatus NLSBufToTimeU(VXLocale*, const uint8_t* buffer, int64_t length, uint32_t kind, double* seconds, int64_t* consumed);
VX_API VXStatus NLSBufToDatetimeU(VXLocale*, const uint8_t* buffer, int64_t length, uint32_t kind, double* datetime, int64_t* consumed);

#ifdef __cplusplus
}
#endif

#endif
