// The number and date entry points under their UTF-8 service names: one row a name, nothing but handing on.
#include "vxnls/datetime_format.h"
#include "vxnls/datetime_parse.h"
#include "vxnls/number_format.h"
#include "vxnls/number_parse.h"
#include "vxnls/utf8.h"

#define FORWARD(name, entry_point, parameters, arguments) \
  VXStatus name parameters { return entry_point arguments; }

FORWARD(vxzsu8DateFormat, NLSDateFormatU,
        (VXLocale * locale, uint32_t month, uint32_t day, uint32_t year, int32_t style, uint8_t* buffer,
         int64_t capacity, int64_t* length),
        (locale, month, day, year, style, buffer, capacity, length))
FORWARD(vxzsu8TimeFormat, NLSTimeFormatU,
        (VXLocale * locale, int32_t flag, uint8_t* buffer, int64_t capacity, int64_t* length, double value),
        (locale, flag, buffer, capacity, length, value))
FORWARD(vxzsu8DatetimeFormat, NLSDatetimeFormatU,
        (VXLocale * locale, uint64_t ignored, uint8_t* buffer, int64_t capacity, int64_t* length, double value),
        (locale, ignored, buffer, capacity, length, value))
FORWARD(vxzsu8ToDate, NLSBufToDateU,
        (VXLocale * locale, const uint8_t* buffer, int64_t length, uint32_t kind, uint32_t* month, uint32_t* day,
         uint32_t* year, int64_t* consumed),
        (locale, buffer, length, kind, month, day, year, consumed))
FORWARD(vxzsu8ToTime, NLSBufToTimeU,
        (VXLocale * locale, const uint8_t* buffer, int64_t length, uint32_t kind, double* seconds, int64_t* consumed),
        (locale, buffer, length, kind, seconds, consumed))
FORWARD(vxzsu8ToDatetime, NLSBufToDatetimeU,
        (VXLocale * locale, const uint8_t* buffer, int64_t length, uint32_t kind, double* datetime, int64_t* consumed),
        (locale, buffer, length, kind, datetime, consumed))
FORWARD(vxzsu8DoubleFormat, NLSDoubleFormatUWithExOpts,
        (VXLocale * locale, int32_t width, int32_t decimals, uint32_t flags, uint8_t* buffer, int64_t size,
         int64_t* length, const NLSDoubleExOpts* options, double value),
        (locale, width, decimals, flags, buffer, size, length, options, value))
FORWARD(vxzsu8ToDouble, NLSBufToDoubleU,
        (VXLocale * locale, const uint8_t* text, int32_t length, double* value, int64_t* consumed),
        (locale, text, length, value, consumed))
FORWARD(vxzsu8ToDoubleWithOpts, NLSBufToDoubleUWithOpts,
        (VXLocale * locale, const uint8_t* text, int32_t length, uint32_t flags, double* value, int64_t* consumed),
        (locale, text, length, flags, value, consumed))

#define FORWARD_INTEGER_FORMAT(name, type)                                                                    \
  FORWARD(vxzsu8##name##Format, NLS##name##FormatU,                                                           \
          (VXLocale * locale, type value, int32_t width, int32_t precision, uint32_t flags, uint8_t * buffer, \
           int64_t size, int64_t * length),                                                                   \
          (locale, value, width, precision, flags, buffer, size, length))
#define FORWARD_INTEGER(name, type)                                                                                  \
  FORWARD_INTEGER_FORMAT(name, type)                                                                                 \
  FORWARD(vxzsu8To##name, NLSBufTo##name##U,                                                                         \
          (VXLocale * locale, const uint8_t* text, int64_t length, uint32_t flags, type* value, uint64_t* consumed), \
          (locale, text, length, flags, value, consumed))

FORWARD_INTEGER(Int, int32_t)
FORWARD_INTEGER(Intfast, int32_t)
FORWARD_INTEGER(UInt, uint32_t)
FORWARD_INTEGER(Uintfast, uint32_t)
FORWARD_INTEGER(Long, int64_t)
FORWARD_INTEGER(Intmax, int64_t)
FORWARD_INTEGER(ULong, uint64_t)
FORWARD_INTEGER(Uintmax, uint64_t)
FORWARD_INTEGER_FORMAT(Pointer, uint64_t)
