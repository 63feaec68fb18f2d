// Integers and floating-point numbers written by the conventions of a locale.
#ifndef VXNLS_NUMBER_FORMAT_H
#define VXNLS_NUMBER_FORMAT_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

struct NLSDoubleExOpts { uint8_t options; uint8_t pad[3]; VXChar missing; };      /* 8; options bit 0: missing is set */
VX_API VXStatus NLSDoubleFormat(VXLocale*, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                                int64_t size, int64_t* length, double value);
VX_API VXStatus NLSDoubleFormatWithExOpts(VXLocale*, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                                          int64_t size, int64_t* length, const NLSDoubleExOpts*, double value);
VX_API VXStatus NLSDoubleFormatUWithExOpts(VXLocale*, int32_t width, int32_t decimals, uint32_t flags, uint8_t* buffer,
                                           int64_t size, int64_t* length, const NLSDoubleExOpts*, double value);
VX_API VXStatus NLSPercentFormat(VXLocale*, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                                 int64_t size, int64_t* length, double value);
VX_API VXStatus NLSCurrencyFormat(VXLocale*, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                                  int64_t size, int64_t* length, double value);
VX_API VXStatus vxzIDblToBuff(double value, VXChar* buffer, int64_t size, int64_t* count, int64_t* aux);
VX_API VXStatus vxzFDblToBuff(VXChar* buffer, int64_t size, int64_t* count, int64_t* leading_zeros, double value);

#define NLS_INT_FORMAT(name, type) \
  VX_API VXStatus name(VXLocale*, type value, int32_t width, int32_t precision, uint32_t flags, VXChar* buffer, int64_t size, int64_t* length); \
  VX_API VXStatus name##U(VXLocale*, type value, int32_t width, int32_t precision, uint32_t flags, uint8_t* buffer, int64_t size, int64_t* length);
NLS_INT_FORMAT(NLSIntFormat, int32_t)      NLS_INT_FORMAT(NLSIntfastFormat, int32_t)
NLS_INT_FORMAT(NLSUIntFormat, uint32_t)    NLS_INT_FORMAT(NLSUintfastFormat, uint32_t)
NLS_INT_FORMAT(NLSLongFormat, int64_t)     NLS_INT_FORMAT(NLSIntmaxFormat, int64_t)
NLS_INT_FORMAT(NLSULongFormat, uint64_t)   NLS_INT_FORMAT(NLSUintmaxFormat, uint64_t)
NLS_INT_FORMAT(NLSPointerFormat, uint64_t)

#ifdef __cplusplus
}
#endif

#endif
