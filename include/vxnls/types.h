/// The types, objects and statuses that every other header uses.
///
/// Texts are counted, never terminated: a pointer and a length in units. A unit is a `VXChar` in the plain entry points
/// and a byte of UTF-8 in those whose names end in `U`. Lengths and capacities are signed 64-bit counts of units; one
/// below 0 is treated as 0 or refused, as each function says.
///
/// Most functions return a VXStatus. Dates and times are doubles: a date counts days, a datetime seconds, from 1
/// January 1960; a time counts seconds from midnight. A NaN is a missing value.
#ifndef VXNLS_TYPES_H
#define VXNLS_TYPES_H

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define VX_API __attribute__((visibility("default")))

/// One UTF-32 unit.
typedef uint32_t VXChar;

/// 0 is success. Everything else has the form 0x803fXXXX.
typedef uint32_t VXStatus;

/* Objects of a host, and the records that the library shares with it: host.h, module.h, locale.h, table.h. */
typedef struct VXHandle VXHandle;
typedef struct HostContext HostContext;
typedef struct VXPool VXPool;
typedef struct VXLock VXLock;
typedef struct VXTrack VXTrack;
typedef struct VXTrackEntry VXTrackEntry;
typedef struct VXJournal VXJournal;
typedef struct VXLogger VXLogger;
typedef struct VXLoggerService VXLoggerService;
typedef struct VXExtension VXExtension;
typedef struct VXLocaleDatabase VXLocaleDatabase;
typedef struct VXUnicodeDatabase VXUnicodeDatabase;
typedef struct VXZone VXZone;
typedef struct VXZoneService VXZoneService;
typedef struct VXOptionService VXOptionService;
typedef struct VXCharData VXCharData;
typedef struct VXNormaliser VXNormaliser;
typedef struct VXBDConv VXBDConv;
typedef struct VXRuntime VXRuntime;
typedef struct VXConverter VXConverter;
typedef struct NLSModule NLSModule;
typedef struct VXLocale VXLocale;
typedef struct VXLocaleData VXLocaleData;
typedef struct NLSDoubleExOpts NLSDoubleExOpts;
typedef struct LocaleCreateOptions LocaleCreateOptions;

/// A counted name, the form of every text in a locale's record: 248 bytes. A length outside 0..60 is read as the nearer
/// of the two.
typedef struct NLSName {
  int64_t length; /* in units of `text` */
  VXChar text[60];
} NLSName;

/* Statuses. The functions say which they return, and what is written then. */
#define VX_E_MEMORY ((VXStatus)0x803fc002u)     /* memory is exhausted; no normaliser can be had */
#define VX_E_DIGITS ((VXStatus)0x803fc0c9u)     /* the digits of a number do not fit the buffer */
#define VX_E_DIRECTIVE ((VXStatus)0x803fe806u)  /* a pattern holds an unknown directive; too many digits to work on */
#define VX_E_ROOM ((VXStatus)0x803fe807u)       /* a coder's output room is too small; the system's zone is unknown */
#define VX_E_SEQUENCE ((VXStatus)0x803fe808u)   /* an illegal sequence of code units */
#define VX_E_NOMATCH ((VXStatus)0x803fe80bu)    /* the text is not a date or time of the locale */
#define VX_E_MISSING ((VXStatus)0x803fe80cu)    /* a missing value was given to a formatter of dates or times */
#define VX_E_RANGE ((VXStatus)0x803fe80du)      /* the value is out of range; the number cannot be converted */
#define VX_E_TRUNCATED ((VXStatus)0x803fe80eu)  /* the output was cut or does not fit; a fraction was dropped */
#define VX_W_FILL ((VXStatus)0x803fe80fu)       /* a locale database filled a record with something to remark */
#define VX_E_NOTNUMBER ((VXStatus)0x803fe810u)  /* the text is not a number */
#define VX_E_OVERFLOW ((VXStatus)0x803fe811u)   /* the number is too large */
#define VX_E_UNDERFLOW ((VXStatus)0x803fe812u)  /* the number is too small */
#define VX_E_INCOMPLETE ((VXStatus)0x803fe814u) /* the input ends inside a sequence */
#define VX_E_WIDTH ((VXStatus)0x803fe815u)      /* the width or the number of decimals is refused */
#define VX_W_PRECISION ((VXStatus)0x803fe816u)  /* fewer decimals, or an exponent, so that the number fits */
#define VX_E_KIND ((VXStatus)0x803fe817u)       /* no such kind of locale data */
#define VX_E_LENGTH ((VXStatus)0x803fe818u)     /* a length is negative */
#define VX_W_SUBSTITUTE ((VXStatus)0x803fe81au) /* a locale lookup found another locale to stand in */
#define VX_E_NULL ((VXStatus)0x803fe831u)       /* an argument is null that must not be */
#define VX_E_MISSCHAR ((VXStatus)0x803fe83au)   /* a NUL was given as the character of missing values */
#define VX_E_ZONE ((VXStatus)0x803fe83cu)       /* no such time zone */
#define VX_E_GROUPING ((VXStatus)0x803fe85bu)   /* group separators did not fit and were left out */
#define VX_E_SPLIT ((VXStatus)0xffffffffu)      /* a date could not be split into its fields */

#ifdef __cplusplus
}
#endif

#endif
