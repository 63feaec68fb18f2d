// Slots whose functions have not arrived yet answer 0x803fe817. A definition elsewhere takes the place of the weak one.
#include "vxnls/vxnls.h"

#define VX_PENDING __attribute__((weak)) VXStatus
VX_PENDING NLSDateFormat(VXLocale*, uint32_t, uint32_t, uint32_t, int32_t, VXChar*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSTimeFormat(VXLocale*, int32_t, VXChar*, int64_t, int64_t*, double) { return VX_E_KIND; }
VX_PENDING NLSDoubleFormat(VXLocale*, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*, double) { return VX_E_KIND; }
VX_PENDING NLSIntfastFormat(VXLocale*, int32_t, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSIntmaxFormat(VXLocale*, int64_t, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSUintfastFormat(VXLocale*, uint32_t, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSUintmaxFormat(VXLocale*, uint64_t, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSPointerFormat(VXLocale*, uint64_t, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSCurrencyFormat(VXLocale*, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*, double) { return VX_E_KIND; }
VX_PENDING NLSPercentFormat(VXLocale*, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*, double) { return VX_E_KIND; }
VX_PENDING NLSBufToDatetime(VXLocale*, const VXChar*, int64_t, uint32_t, double*, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToDate(VXLocale*, const VXChar*, int64_t, uint32_t, uint32_t*, uint32_t*, uint32_t*, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToTime(VXLocale*, const VXChar*, int64_t, uint32_t, double*, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToDouble(VXLocale*, const VXChar*, int32_t, double*, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToIntfast(VXLocale*, const VXChar*, int64_t, uint32_t, int32_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToIntmax(VXLocale*, const VXChar*, int64_t, uint32_t, int64_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToUintfast(VXLocale*, const VXChar*, int64_t, uint32_t, uint32_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToUintmax(VXLocale*, const VXChar*, int64_t, uint32_t, uint64_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSKeyCreate(VXLocale*, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t) { return VX_E_KIND; }
__attribute__((weak)) int32_t NLSKKOrderCompare(VXLocale*, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t) { return 0; }
__attribute__((weak)) int32_t NLSKSOrderCompare(VXLocale*, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t) { return 0; }
__attribute__((weak)) int32_t NLSSSOrderCompare(VXLocale*, const VXChar*, int64_t, const VXChar*, int64_t, uint32_t) { return 0; }
VX_PENDING NLSDatetimeFormat(VXLocale*, uint64_t, VXChar*, int64_t, int64_t*, double) { return VX_E_KIND; }
VX_PENDING NLSGetLocaleData(VXLocale*, uint32_t, void**) { return VX_E_KIND; }
VX_PENDING NLSLocaleToLocName(VXLocale*, VXChar*, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSIntFormat(VXLocale*, int32_t, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSUIntFormat(VXLocale*, uint32_t, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToInt(VXLocale*, const VXChar*, int64_t, uint32_t, int32_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToUInt(VXLocale*, const VXChar*, int64_t, uint32_t, uint32_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSLongFormat(VXLocale*, int64_t, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSULongFormat(VXLocale*, uint64_t, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToLong(VXLocale*, const VXChar*, int64_t, uint32_t, int64_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToULong(VXLocale*, const VXChar*, int64_t, uint32_t, uint64_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSDoubleFormatWithExOpts(VXLocale*, int32_t, int32_t, uint32_t, VXChar*, int64_t, int64_t*, const NLSDoubleExOpts*, double) { return VX_E_KIND; }
VX_PENDING NLSBufToDoubleU(VXLocale*, const uint8_t*, int32_t, double*, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToDoubleA(VXLocale*, const uint8_t*, int32_t, double*, int64_t*, VXConverter*) { return VX_E_KIND; }
VX_PENDING NLSBufToDoubleE(VXLocale*, const uint8_t*, int32_t, double*, int64_t*, VXConverter*) { return VX_E_KIND; }
VX_PENDING NLSDoubleFormatUWithExOpts(VXLocale*, int32_t, int32_t, uint32_t, uint8_t*, int64_t, int64_t*, const NLSDoubleExOpts*, double) { return VX_E_KIND; }
VX_PENDING NLSIntfastFormatU(VXLocale*, int32_t, int32_t, int32_t, uint32_t, uint8_t*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSIntmaxFormatU(VXLocale*, int64_t, int32_t, int32_t, uint32_t, uint8_t*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSUintfastFormatU(VXLocale*, uint32_t, int32_t, int32_t, uint32_t, uint8_t*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSUintmaxFormatU(VXLocale*, uint64_t, int32_t, int32_t, uint32_t, uint8_t*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToIntfastU(VXLocale*, const uint8_t*, int64_t, uint32_t, int32_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToIntmaxU(VXLocale*, const uint8_t*, int64_t, uint32_t, int64_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToUintfastU(VXLocale*, const uint8_t*, int64_t, uint32_t, uint32_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToUintmaxU(VXLocale*, const uint8_t*, int64_t, uint32_t, uint64_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSIntFormatU(VXLocale*, int32_t, int32_t, int32_t, uint32_t, uint8_t*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSUIntFormatU(VXLocale*, uint32_t, int32_t, int32_t, uint32_t, uint8_t*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToIntU(VXLocale*, const uint8_t*, int64_t, uint32_t, int32_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToUIntU(VXLocale*, const uint8_t*, int64_t, uint32_t, uint32_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSLongFormatU(VXLocale*, int64_t, int32_t, int32_t, uint32_t, uint8_t*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSULongFormatU(VXLocale*, uint64_t, int32_t, int32_t, uint32_t, uint8_t*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToLongU(VXLocale*, const uint8_t*, int64_t, uint32_t, int64_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToULongU(VXLocale*, const uint8_t*, int64_t, uint32_t, uint64_t*, uint64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToDoubleWithOpts(VXLocale*, const VXChar*, int32_t, uint32_t, double*, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToDoubleUWithOpts(VXLocale*, const uint8_t*, int32_t, uint32_t, double*, int64_t*) { return VX_E_KIND; }
__attribute__((weak)) VXTrack* NLSLocaleCreateTheDupTrack(VXLocale*) { return nullptr; }
VX_PENDING NLSSetTimezoneId(VXLocale*, const VXChar*, int64_t) { return VX_E_KIND; }
VX_PENDING NLSDatetimeFormatU(VXLocale*, uint64_t, uint8_t*, int64_t, int64_t*, double) { return VX_E_KIND; }
VX_PENDING NLSDateFormatU(VXLocale*, uint32_t, uint32_t, uint32_t, int32_t, uint8_t*, int64_t, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSTimeFormatU(VXLocale*, int32_t, uint8_t*, int64_t, int64_t*, double) { return VX_E_KIND; }
VX_PENDING NLSBufToDatetimeU(VXLocale*, const uint8_t*, int64_t, uint32_t, double*, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToDateU(VXLocale*, const uint8_t*, int64_t, uint32_t, uint32_t*, uint32_t*, uint32_t*, int64_t*) { return VX_E_KIND; }
VX_PENDING NLSBufToTimeU(VXLocale*, const uint8_t*, int64_t, uint32_t, double*, int64_t*) { return VX_E_KIND; }
