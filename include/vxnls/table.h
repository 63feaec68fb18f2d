/// The locale object and its table of 64 entry points; the layouts of all records, checked.
///
/// A host reaches most of the library through a locale: `locale->ops.NLSDateFormat(locale, ...)`. The slots have the
/// names and signatures of the functions that stand in them, which are exported too.
#ifndef VXNLS_TABLE_H
#define VXNLS_TABLE_H

#include "vxnls/locale.h"
#include "vxnls/zones.h"
#include "vxnls/datetime_format.h"
#include "vxnls/datetime_parse.h"
#include "vxnls/number_format.h"
#include "vxnls/number_parse.h"
#include "vxnls/collation.h"
#include "vxnls/module.h"
#include "vxnls/calendar.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The slots in their order, which hosts rely on: X(number from 1, function) for each.
#define NLS_SLOTS(X) \
  X(1,NLSDateFormat) X(2,NLSTimeFormat) X(3,NLSDoubleFormat) X(4,NLSIntfastFormat) X(5,NLSIntmaxFormat) \
  X(6,NLSUintfastFormat) X(7,NLSUintmaxFormat) X(8,NLSPointerFormat) X(9,NLSCurrencyFormat) X(10,NLSPercentFormat) \
  X(11,NLSBufToDatetime) X(12,NLSBufToDate) X(13,NLSBufToTime) X(14,NLSBufToDouble) X(15,NLSBufToIntfast) \
  X(16,NLSBufToIntmax) X(17,NLSBufToUintfast) X(18,NLSBufToUintmax) \
  X(19,NLSKeyCreate) X(20,NLSKKOrderCompare) X(21,NLSKSOrderCompare) X(22,NLSSSOrderCompare) \
  X(23,NLSDatetimeFormat) X(24,NLSGetLocaleData) X(25,NLSLocaleToLocName) \
  X(26,NLSIntFormat) X(27,NLSUIntFormat) X(28,NLSBufToInt) X(29,NLSBufToUInt) \
  X(30,NLSLongFormat) X(31,NLSULongFormat) X(32,NLSBufToLong) X(33,NLSBufToULong) \
  X(34,NLSDoubleFormatWithExOpts) X(35,NLSBufToDoubleU) X(36,NLSBufToDoubleA) X(37,NLSBufToDoubleE) X(38,NLSDoubleFormatUWithExOpts) \
  X(39,NLSIntfastFormatU) X(40,NLSIntmaxFormatU) X(41,NLSUintfastFormatU) X(42,NLSUintmaxFormatU) \
  X(43,NLSBufToIntfastU) X(44,NLSBufToIntmaxU) X(45,NLSBufToUintfastU) X(46,NLSBufToUintmaxU) \
  X(47,NLSIntFormatU) X(48,NLSUIntFormatU) X(49,NLSBufToIntU) X(50,NLSBufToUIntU) \
  X(51,NLSLongFormatU) X(52,NLSULongFormatU) X(53,NLSBufToLongU) X(54,NLSBufToULongU) \
  X(55,NLSBufToDoubleWithOpts) X(56,NLSBufToDoubleUWithOpts) X(57,NLSLocaleCreateTheDupTrack) X(58,NLSSetTimezoneId) \
  X(59,NLSDatetimeFormatU) X(60,NLSDateFormatU) X(61,NLSTimeFormatU) \
  X(62,NLSBufToDatetimeU) X(63,NLSBufToDateU) X(64,NLSBufToTimeU)

#ifdef __cplusplus
#define NLS_SLOT_MEMBER(n, f) decltype(&::f) f;
#else
#define NLS_SLOT_MEMBER(n, f) __typeof__(f)* f;
#endif
/// One pointer a slot; 512 bytes.
typedef struct NLSOps { NLS_SLOTS(NLS_SLOT_MEMBER) } NLSOps;

/// A locale: 1,016 bytes in the pool of its context. Only `timeZone` changes after creation, by NLSSetTimezoneId, which
/// other threads may call: read it with an atomic load. The words without a name are zero.
struct VXLocale {
  uint32_t eyeCatcher;            /*   0  0x6f76656e: the bytes "nevo" */
  uint32_t pad;
  const char* typeName;           /*   8  "VXLocale handle" */
  VXStatus (*destroy)(VXLocale*); /*  16  NLSLocaleDestroy, which does nothing */
  HostContext* host;              /*  24  what it was created with */
  VXExtension* messageExt;        /*  32  its "vxemsg" */
  uint64_t nameLength;            /*  40  in units, up to 62 */
  VXChar name[62];                /*  48  canonical */
  NLSOps ops;                     /* 296 */
  void* reserved808[6];           /* 808 */
  VXLocaleData* localeData;       /* 856  owned by the locale */
  void* reserved864;              /* 864 */
  VXLock* msgLock;                /* 872  for the message service */
  VXTrack* msgTrack;              /* 880  likewise */
  VXLock* zoneLock;               /* 888  held while a zone is opened */
  VXTrack* zoneTrack;             /* 896  the open zones by identifier */
  VXZone* timeZone;               /* 904  the current one, of zoneTrack */
  void* reserved912[13];          /* 912 */
};

/* The layouts are shared with hosts byte for byte. C99 has no static assertion: C11 and C++ check them. */
#ifdef __cplusplus
#define VX_STATIC_ASSERT(condition, text) static_assert(condition, text)
#elif __STDC_VERSION__ >= 201112L
#define VX_STATIC_ASSERT(condition, text) _Static_assert(condition, text)
#endif
#ifdef VX_STATIC_ASSERT
#define VX_AT(type, field, at) VX_STATIC_ASSERT(offsetof(type, field) == (at), #type "." #field)
#define NLS_SLOT_AT(n, f) VX_AT(NLSOps, f, (size_t)8 * ((n) - 1));
NLS_SLOTS(NLS_SLOT_AT)
VX_STATIC_ASSERT(sizeof(NLSName) == 248 && sizeof(NLSOps) == 512, "name, table");
VX_STATIC_ASSERT(sizeof(NLSModule) == 96, "module");
VX_AT(NLSModule, reqVersion, 24); VX_AT(NLSModule, version, 32); VX_AT(NLSModule, host, 40);
VX_AT(NLSModule, realDestroy, 48); VX_AT(NLSModule, pool, 72); VX_AT(NLSModule, localeCreate, 80);
VX_AT(NLSModule, localeDestroyCallback, 88);
VX_STATIC_ASSERT(sizeof(VXLocale) == 1016, "locale");
VX_AT(VXLocale, typeName, 8); VX_AT(VXLocale, messageExt, 32); VX_AT(VXLocale, nameLength, 40); VX_AT(VXLocale, name, 48);
VX_AT(VXLocale, ops, 296); VX_AT(VXLocale, localeData, 856); VX_AT(VXLocale, msgLock, 872); VX_AT(VXLocale, msgTrack, 880);
VX_AT(VXLocale, zoneLock, 888); VX_AT(VXLocale, zoneTrack, 896); VX_AT(VXLocale, timeZone, 904);
VX_STATIC_ASSERT(sizeof(VXLocaleData) == 49248, "locale data");
VX_AT(VXLocaleData, block2, 248); VX_AT(VXLocaleData, dayNames, 440); VX_AT(VXLocaleData, altDayNames, 2176);
VX_AT(VXLocaleData, monthNames, 3912); VX_AT(VXLocaleData, altMonthNames, 6888); VX_AT(VXLocaleData, datePattern, 9864);
VX_AT(VXLocaleData, datePattern1, 10112); VX_AT(VXLocaleData, datePattern2, 10360); VX_AT(VXLocaleData, datetimePattern, 10608);
VX_AT(VXLocaleData, timePattern1, 10856); VX_AT(VXLocaleData, timePattern, 11104); VX_AT(VXLocaleData, amMarker, 11352);
VX_AT(VXLocaleData, pmMarker, 11600); VX_AT(VXLocaleData, quarterPattern2, 11856); VX_AT(VXLocaleData, quarterPattern1, 12104);
VX_AT(VXLocaleData, monthYearPattern1, 12352); VX_AT(VXLocaleData, monthYearPattern2, 12600);
VX_AT(VXLocaleData, weekPattern1, 12848); VX_AT(VXLocaleData, weekPattern2, 13096); VX_AT(VXLocaleData, quarterNames, 13344);
VX_AT(VXLocaleData, block4Name, 15328); VX_AT(VXLocaleData, groupingPattern, 15328 + 248);
VX_AT(VXLocaleData, decimalPoint, 15328 + 496); VX_AT(VXLocaleData, groupSeparator, 15328 + 500);
VX_AT(VXLocaleData, block3Names, 15840); VX_AT(VXLocaleData, currencySymbol, 15840 + 744);
VX_AT(VXLocaleData, block6, 17096); VX_AT(VXLocaleData, block1, 17352); VX_AT(VXLocaleData, block7, 17600);
VX_AT(VXLocaleData, block8, 17608); VX_AT(VXLocaleData, block9, 18624);
VX_STATIC_ASSERT(sizeof(LocaleCreateOptions) == 24 && offsetof(LocaleCreateOptions, zoneLength) == 16, "options");
VX_STATIC_ASSERT(sizeof(ZoneRecord) == 24 && sizeof(NLSCalendarWork) == 68 && offsetof(NLSCalendarWork, yearCutoff) == 64, "records");
VX_STATIC_ASSERT(sizeof(VXBuildRecord) == 208 && offsetof(VXBuildRecord, date17) == 128 && offsetof(VXBuildRecord, zero18) == 136, "build");
VX_STATIC_ASSERT(sizeof(VXPoolAttributes) == 24 && sizeof(VXTrackAttributes) == 56 && sizeof(VXJournalAttributes) == 88, "attributes");
VX_STATIC_ASSERT(offsetof(VXTrackAttributes, one16) == 16 && offsetof(VXTrackAttributes, flags24) == 24, "track attributes");
VX_STATIC_ASSERT(offsetof(VXTrackEntry, payload) == 16 && sizeof(VXZoneIdOptions) == 12, "entry, zone options");
VX_STATIC_ASSERT(sizeof(NLSDoubleExOpts) == 8 && offsetof(NLSDoubleExOpts, missing) == 4, "extended options");
#undef VX_AT
#undef NLS_SLOT_AT
#endif

#ifdef __cplusplus
}
#endif

#endif
