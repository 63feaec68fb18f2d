// Integers and floating-point numbers read by the conventions of a locale.
#ifndef VXNLS_NUMBER_PARSE_H
#define VXNLS_NUMBER_PARSE_H

#include "vxnls/host.h"

#ifdef __cplusplus
extern "C" {
#endif

VX_API VXStatus NLSBufToDouble(VXLocale* /* or null */, const VXChar* text, int32_t length, double* value, int64_t* consumed);
VX_API VXStatus NLSBufToDoubleWithOpts(VXLocale*, const VXChar* text, int32_t length, uint32_t flags, double* value, int64_t* consumed);
VX_API VXStatus NLSBufToDoubleU(VXLocale*, const uint8_t* text, int32_t length, double* value, int64_t* consumed);
VX_API VXStatus NLSBufToDoubleUWithOpts(VXLocale*, const uint8_t* text, int32_t length, uint32_t flags, double* value, int64_t* consumed);
VX_API VXStatus NLSBufToDoubleA(VXLocale*, const uint8_t* text, int32_t length, double* value, int64_t* consumed, VXConverter*);
VX_API VXStatus NLSBufToDoubleE(VXLocale*, const uint8_t* text, int32_t length, double* value, int64_t* consumed, VXConverter*);

#define NLS_BUF_TO_INT(name, type) \
  VX_API VXStatus name(VXLocale*, const VXChar* text, int64_t length, uint32_t flags, type* value, uint64_t* consumed); \
  VX_API VXStatus name##U(VXLocale*, const uint8_t* text, int64_t length, uint32_t flags, type* value, uint64_t* consumed);
NLS_BUF_TO_INT(NLSBufToInt, int32_t)       NLS_BUF_TO_INT(NLSBufToIntfast, int32_t)
NLS_BUF_TO_INT(NLSBufToUInt, uint32_t)     NLS_BUF_TO_INT(NLSBufToUintfast, uint32_t)
NLS_BUF_TO_INT(NLSBufToLong, int64_t)      NLS_BUF_TO_INT(NLSBufToIntmax, int64_t)
NLS_BUF_TO_INT(NLSBufToULong, uint64_t)    NLS_BUF_TO_INT(NLSBufToUintmax, uint64_t)

#ifdef __cplusplus
}
#endif

#endif
