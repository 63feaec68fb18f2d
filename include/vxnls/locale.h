// Locale objects: creation, destruction, and the record of locale data.
#ifndef VXNLS_LOCALE_H
#define VXNLS_LOCALE_H

#include "vxnls/types.h"
#include "vxnls/host.h"

#ifdef __cplusplus
extern "C" {
#endif

struct LocaleCreateOptions {                  /* 24 */
  uint8_t flags;                              /*  0  bit 0: private */
  uint8_t pad[7];
  const VXChar* zoneName;                     /*  8  null: none */
  int64_t zoneLength;                         /* 16  below 1: none */
};

struct VXLocaleData {                         /* 49,248; offsets checked in section 18 */
  NLSName localeName;                         /*      0  kind 0 */
  uint8_t block2[192];                        /*    248  kind 2 */
  NLSName dayNames[7];                        /*    440  kind 5; Sunday first; full names */
  NLSName altDayNames[7];                     /*  2,176  abbreviated */
  NLSName monthNames[12];                     /*  3,912  full */
  NLSName altMonthNames[12];                  /*  6,888  abbreviated */
  NLSName datePattern;                        /*  9,864  main: style other than 1, 2 */
  NLSName datePattern1;                       /* 10,112  style 1 */
  NLSName datePattern2;                       /* 10,360  style 2 */
  NLSName datetimePattern;                    /* 10,608 */
  NLSName timePattern1;                       /* 10,856  time flag non-zero; time kind 1 */
  NLSName timePattern;                        /* 11,104  time flag 0; main */
  NLSName amMarker;                           /* 11,352 */
  NLSName pmMarker;                           /* 11,600 */
  uint64_t word11848;                         /* 11,848  not described */
  NLSName quarterPattern2;                    /* 11,856 */
  NLSName quarterPattern1;                    /* 12,104 */
  NLSName monthYearPattern1;                  /* 12,352 */
  NLSName monthYearPattern2;                  /* 12,600 */
  NLSName weekPattern1;                       /* 12,848 */
  NLSName weekPattern2;                       /* 13,096 */
  NLSName quarterNames[4];                    /* 13,344 */
  NLSName names14336[4];                      /* 14,336  not described */
  NLSName block4Name;                         /* 15,328  kind 4; not described */
  NLSName groupingPattern;                    /* 15,576 */
  VXChar decimalPoint;                        /* 15,824 */
  VXChar groupSeparator;                      /* 15,828 */
  uint64_t word15832;
  NLSName block3Names[3];                     /* 15,840  kind 3; not described */
  NLSName currencySymbol;                     /* 16,584 */
  uint8_t block3Rest[264];                    /* 16,832 */
  uint8_t block6[256];                        /* 17,096  kind 6 */
  NLSName block1;                             /* 17,352  kind 1 */
  uint64_t block7;                            /* 17,600  kind 7 */
  uint8_t block8[1016];                       /* 17,608  kind 8 */
  uint8_t block9[30624];                      /* 18,624  kind 9 */
};

VX_API VXLocale* NLSLocaleCreate(HostContext*, const VXChar* name, int64_t length, VXStatus* status /* or null */,
                                 const LocaleCreateOptions* /* or null */);
VX_API VXStatus NLSLocaleDestroy(VXLocale*);                              /* returns 0, does nothing */
VX_API VXStatus NLSLocaleDestroyCallback(VXTrackEntry*);                  /* P, also E */
VX_API VXTrack* NLSLocaleCreateTheDupTrack(VXLocale*);                    /* slot 57 */
VX_API VXStatus NLSGetLocaleData(VXLocale*, uint32_t kind, void** out);   /* slot 24 */
VX_API VXStatus NLSLocaleToLocName(VXLocale*, VXChar* buffer, int64_t* length);   /* slot 25 */
VX_API VXStatus NLSGetLocaleName(VXLocale*, uint64_t ignored, const uint64_t** out);
VX_API void*    vxlGetLocale(VXJournal*, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5);

#ifdef __cplusplus
}
#endif

#endif
