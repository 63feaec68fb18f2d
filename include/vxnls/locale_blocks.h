// What the reference host's locale database puts into the blocks of a locale's record that the library itself does not
// read. A host with a database of its own may lay them out as it likes; these structures describe this one.
//
// Reach a block through NLSGetLocaleData and cast what it gives:
//
//   void* block;
//   NLSGetLocaleData(locale, 2, &block);
//   const VXLocaleIdentity* identity = (const VXLocaleIdentity*)block;
//
// Texts in `char` are ASCII and NUL-terminated. Counted names hold at most 60 units; what CLDR does not have is empty.
// Everything that is reserved is zero.
#ifndef VXNLS_LOCALE_BLOCKS_H
#define VXNLS_LOCALE_BLOCKS_H

#include "vxnls/locale.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Kind 2: who the locale is.
typedef struct VXLocaleIdentity { /* 192 */
  char language[12];              /*   0  ISO 639: "sr" */
  char script[8];                 /*  12  ISO 15924, the likely one when the name has none: "Cyrl" */
  char region[8];                 /*  20  ISO 3166 or UN M.49, the likely one when the name has none: "RS", "001" */
  char variant[36];               /*  28  "POSIX" */
  char languageTag[64];           /*  64  BCP 47: "sr-Latn-RS" */
  char canonical[48];             /* 128  the locale whose data is used, aliases resolved: "zh_Hant_TW" for zh_TW */
  char language3[4];              /* 176  ISO 639-2/T: "srp" */
  char region3[4];                /* 180  ISO 3166 alpha-3: "SRB" */
  int32_t rightToLeft;            /* 184  1: lines run from right to left */
  uint32_t reserved;              /* 188 */
} VXLocaleIdentity;

/// The word at 11,848 (inside kind 5, after the markers): how the locale itself tells the time.
typedef struct VXLocaleClock { /* 8 */
  int32_t hourCycle;           /* 0  12 or 24: the dial of CLDR's own medium time */
  int32_t dayPeriodFirst;      /* 4  1: CLDR writes the day period before the hour */
} VXLocaleClock;

/// The word at 15,832 (inside kind 4, after the group separator). 0 where CLDR's sign is more than one character.
typedef struct VXLocaleSigns { /* 8 */
  VXChar minusSign;            /* 0  U+002D, U+2212 */
  VXChar percentSign;          /* 4  U+0025 */
} VXLocaleSigns;

/// The three names at 15,840, which begin kind 3; the currency symbol follows them in the record.
typedef struct VXLocaleCurrencyNames { /* 744 */
  NLSName isoCode;                     /*   0  ISO 4217: "EUR"; "XXX" for a locale without a country */
  NLSName name;                        /* 248  in the locale's language */
  NLSName narrowSymbol;                /* 496  the shortest symbol, not always unique: "$" */
} VXLocaleCurrencyNames;

/// The rest of kind 3, at 16,832.
typedef struct VXLocaleCurrencyForm { /* 264 */
  NLSName pattern;                    /*   0  CLDR's currency pattern, as CLDR has it: "#,##0.00 ¤" */
  int32_t fractionDigits;             /* 248 */
  int32_t cashFractionDigits;         /* 252 */
  VXChar decimalPoint;                /* 256  where amounts of money differ from other numbers; else as the locale's */
  VXChar groupSeparator;              /* 260 */
} VXLocaleCurrencyForm;

/// Kind 6: customs of the region.
typedef struct VXLocaleCustoms { /* 256 */
  int32_t firstWeekDay;          /*   0  1 Sunday .. 7 Saturday */
  int32_t minimalDays;           /*   4  days of the new year that its first week has at least */
  int32_t weekendFirst;          /*   8  1 .. 7 */
  int32_t weekendLast;           /*  12  1 .. 7 */
  int32_t measurementSystem;     /*  16  0 metric, 1 US, 2 UK */
  int32_t paperWidth;            /*  20  millimetres */
  int32_t paperHeight;           /*  24  millimetres */
  int32_t dateOrder;             /*  28  0 day month year, 1 month day year, 2 year month day, 3 another */
  char calendar[32];             /*  32  the calendar that the region prefers: "gregorian", "persian" */
  char numbering[16];            /*  64  the locale's own numbering system: "latn", "arab" */
  uint8_t reserved[176];         /*  80 */
} VXLocaleCustoms;

/// Bits of VXLocaleDataVersion.fallbacks: the entries that do not stand as CLDR has them.
enum VXLocaleEntry {
  VX_ENTRY_DAY_NAMES = 0x1,
  VX_ENTRY_ALT_DAY_NAMES = 0x2,
  VX_ENTRY_MONTH_NAMES = 0x4,
  VX_ENTRY_ALT_MONTH_NAMES = 0x8,
  VX_ENTRY_QUARTER_NAMES = 0x10,
  VX_ENTRY_MARKERS = 0x20,
  VX_ENTRY_DATE_PATTERN = 0x40,
  VX_ENTRY_DATE_PATTERN_1 = 0x80,
  VX_ENTRY_DATE_PATTERN_2 = 0x100,
  VX_ENTRY_TIME_PATTERN = 0x200,
  VX_ENTRY_TIME_PATTERN_1 = 0x400,
  VX_ENTRY_MONTH_YEAR_PATTERN_2 = 0x800,
  VX_ENTRY_GROUPING_PATTERN = 0x1000,
  VX_ENTRY_DECIMAL_POINT = 0x2000,
  VX_ENTRY_GROUP_SEPARATOR = 0x4000,
  VX_ENTRY_CURRENCY_SYMBOL = 0x8000
};

/// Kind 7: which data this is.
typedef struct VXLocaleDataVersion { /* 8 */
  uint16_t layout;                   /* 0  1: the structures of this header */
  uint16_t cldr;                     /* 2  CLDR major version: 42 */
  uint32_t fallbacks;                /* 4  VX_ENTRY_... bits */
} VXLocaleDataVersion;

/// Kind 8: how numbers look beyond what the library writes.
typedef struct VXLocaleNumberForm { /* 1,016 */
  NLSName decimalPattern;           /*   0  as CLDR has it: "#,##0.###" */
  NLSName percentPattern;           /* 248  as CLDR has it: "#,##0 %" */
  NLSName exponent;                 /* 496  "E", "×10^" */
  NLSName notANumber;               /* 744 */
  VXChar plusSign;                  /* 992  this and the next two: 0 where CLDR has more than one character */
  VXChar perMilleSign;              /* 996 */
  VXChar infinity;                  /* 1,000 */
  int32_t minimumGroupingDigits;    /* 1,004  2: 1000 stands without a separator, 10 000 with one */
  uint32_t reserved[2];             /* 1,008 */
} VXLocaleNumberForm;

/// Kind 9: texts. Those that begin with "standalone" are the forms for use outside of a date ("май", not "мая").
typedef struct VXLocaleTexts {     /* 30,624 */
  NLSName ownName;                 /*      0  the locale's name in its own language */
  NLSName ownLanguage;             /*    248  its language, script and region in its own language */
  NLSName ownScript;               /*    496 */
  NLSName ownRegion;               /*    744 */
  NLSName englishLanguage;         /*    992  the same in English; the whole English name is kind 1 */
  NLSName englishScript;           /*  1,240 */
  NLSName englishRegion;           /*  1,488 */
  NLSName standaloneMonths[12];    /*  1,736 */
  NLSName standaloneAltMonths[12]; /*  4,712 */
  NLSName narrowMonths[12];        /*  7,688 */
  NLSName standaloneDays[7];       /* 10,664  Sunday first */
  NLSName standaloneAltDays[7];    /* 12,400 */
  NLSName narrowDays[7];           /* 14,136 */
  NLSName standaloneQuarters[4];   /* 15,872 */
  NLSName eras[2];                 /* 16,864  before and after the epoch, full */
  NLSName altEras[2];              /* 17,360  abbreviated */
  NLSName cldrDatePatterns[4];     /* 17,856  full, long, medium, short, as CLDR has them */
  NLSName cldrTimePatterns[4];     /* 18,848  full, long, medium, short, as CLDR has them */
  NLSName quotation[4];            /* 19,840  outer opening and closing, inner opening and closing */
  uint8_t reserved[9792];          /* 20,832 */
} VXLocaleTexts;

/* Kind 1, one counted name, is the locale's English name. The name that begins kind 4 (at 15,328) holds the ten digits
   of the locale's own numbering system, or nothing where that is not a system of ten digits. The four names at 14,336
   are the full quarter names. */

#if defined(__cplusplus) || (defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L)
#ifndef __cplusplus
#define VX_BLOCK_SIZE(type, size) _Static_assert(sizeof(type) == (size), #type)
#else
#define VX_BLOCK_SIZE(type, size) static_assert(sizeof(type) == (size), #type)
#endif
VX_BLOCK_SIZE(VXLocaleIdentity, 192);
VX_BLOCK_SIZE(VXLocaleClock, 8);
VX_BLOCK_SIZE(VXLocaleSigns, 8);
VX_BLOCK_SIZE(VXLocaleCurrencyNames, 744);
VX_BLOCK_SIZE(VXLocaleCurrencyForm, 264);
VX_BLOCK_SIZE(VXLocaleCustoms, 256);
VX_BLOCK_SIZE(VXLocaleDataVersion, 8);
VX_BLOCK_SIZE(VXLocaleNumberForm, 1016);
VX_BLOCK_SIZE(VXLocaleTexts, 30624);
#undef VX_BLOCK_SIZE
#endif

#ifdef __cplusplus
}
#endif

#endif
