// The types, names and statuses that every other header uses.
#ifndef VXNLS_TYPES_H
#define VXNLS_TYPES_H

#include <stdint.h>
#include <stddef.h>
#include <stdarg.h>

#ifdef __cplusplus
extern "C" {
#endif

#define VX_API __attribute__((visibility("default")))

typedef uint32_t VXChar;                 /* one UTF-32 unit */
typedef uint32_t VXStatus;               /* 0 success */

typedef struct VXHandle VXHandle;                   typedef struct HostContext HostContext;
typedef struct VXPool VXPool;                       typedef struct VXLock VXLock;
typedef struct VXTrack VXTrack;                     typedef struct VXTrackEntry VXTrackEntry;
typedef struct VXJournal VXJournal;                 typedef struct VXLogger VXLogger;
typedef struct VXLoggerService VXLoggerService;     typedef struct VXExtension VXExtension;
typedef struct VXLocaleDatabase VXLocaleDatabase;   typedef struct VXUnicodeDatabase VXUnicodeDatabase;
typedef struct VXZone VXZone;                       typedef struct VXZoneService VXZoneService;
typedef struct VXOptionService VXOptionService;     typedef struct VXCharData VXCharData;
typedef struct VXNormaliser VXNormaliser;           typedef struct VXBDConv VXBDConv;
typedef struct VXRuntime VXRuntime;                 typedef struct VXConverter VXConverter;
typedef struct NLSModule NLSModule;                 typedef struct VXLocale VXLocale;
typedef struct VXLocaleData VXLocaleData;           typedef struct NLSDoubleExOpts NLSDoubleExOpts;
typedef struct LocaleCreateOptions LocaleCreateOptions;

typedef struct NLSName { int64_t length; VXChar text[60]; } NLSName;   /* counted name, 248 bytes */

#define VX_E_MEMORY         ((VXStatus)0x803fc002u)  /* memory exhausted; no normaliser */
#define VX_E_DIGITS         ((VXStatus)0x803fc0c9u)  /* vxzIDblToBuff: digits exceed the size */
#define VX_E_DIRECTIVE      ((VXStatus)0x803fe806u)  /* bad directive; 350-digit work area exhausted */
#define VX_E_ROOM           ((VXStatus)0x803fe807u)  /* output room too small (coders); OS zone unknown */
#define VX_E_SEQUENCE       ((VXStatus)0x803fe808u)  /* illegal sequence */
#define VX_E_NOMATCH        ((VXStatus)0x803fe80bu)  /* text does not match */
#define VX_E_MISSING        ((VXStatus)0x803fe80cu)  /* missing value given to a date/time formatter */
#define VX_E_RANGE          ((VXStatus)0x803fe80du)  /* value out of range; number cannot be converted */
#define VX_E_TRUNCATED      ((VXStatus)0x803fe80eu)  /* truncated; does not fit; fraction discarded */
#define VX_W_FILL           ((VXStatus)0x803fe80fu)  /* locale-database fill: accepted */
#define VX_E_NOTNUMBER      ((VXStatus)0x803fe810u)
#define VX_E_OVERFLOW       ((VXStatus)0x803fe811u)
#define VX_E_UNDERFLOW      ((VXStatus)0x803fe812u)
#define VX_E_INCOMPLETE     ((VXStatus)0x803fe814u)  /* input ends inside a sequence */
#define VX_E_WIDTH          ((VXStatus)0x803fe815u)
#define VX_W_PRECISION      ((VXStatus)0x803fe816u)  /* fewer decimals shown, or exponent form, to fit */
#define VX_E_KIND           ((VXStatus)0x803fe817u)  /* NLSGetLocaleData kind above 9 */
#define VX_E_LENGTH         ((VXStatus)0x803fe818u)  /* negative length */
#define VX_W_SUBSTITUTE     ((VXStatus)0x803fe81au)  /* locale lookup substituted: accepted */
#define VX_E_NULL           ((VXStatus)0x803fe831u)
#define VX_E_MISSCHAR       ((VXStatus)0x803fe83au)  /* NUL as missing-value character */
#define VX_E_ZONE           ((VXStatus)0x803fe83cu)
#define VX_E_GROUPING       ((VXStatus)0x803fe85bu)  /* group separators did not fit */
#define VX_E_SPLIT          ((VXStatus)0xffffffffu)  /* date could not be split (guard) */

#ifdef __cplusplus
}
#endif

#endif
