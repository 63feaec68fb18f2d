/// Locale objects: creation, destruction, and the record of locale data. The object itself stands in table.h.
///
/// A locale is read-only once it is created, its current time zone apart (zones.h): threads may share it.
#ifndef VXNLS_LOCALE_H
#define VXNLS_LOCALE_H

#include "vxnls/host.h"
#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

struct LocaleCreateOptions {
  uint8_t flags; /* bit 0: private, neither looked up in the locale cache nor kept there */
  uint8_t pad[7];
  const VXChar* zoneName; /* identifier of the time zone; null: the operating system's */
  int64_t zoneLength;     /* in units; below 1: the operating system's */
};

/// The data of a locale, 49,248 bytes, as the locale database fills it: the layout is shared with hosts byte for byte.
/// Patterns hold the directives that datetime_format.h and datetime_parse.h describe. The blocks that carry only a
/// number are the host's to define.
struct VXLocaleData {
  NLSName localeName;        /*      0  kind 0: the whole record */
  uint8_t block2[192];       /*    248  kind 2 */
  NLSName dayNames[7];       /*    440  kind 5; full names, Sunday first */
  NLSName altDayNames[7];    /*  2,176  abbreviated */
  NLSName monthNames[12];    /*  3,912  full */
  NLSName altMonthNames[12]; /*  6,888  abbreviated */
  NLSName datePattern;       /*  9,864  the main one: styles other than 1 and 2 */
  NLSName datePattern1;      /* 10,112  style 1 */
  NLSName datePattern2;      /* 10,360  style 2 */
  NLSName datetimePattern;   /* 10,608 */
  NLSName timePattern1;      /* 10,856  time flag other than 0; time kind 1 */
  NLSName timePattern;       /* 11,104  the main one: time flag 0 */
  NLSName amMarker;          /* 11,352 */
  NLSName pmMarker;          /* 11,600 */
  uint64_t word11848;        /* 11,848 */
  NLSName quarterPattern2;   /* 11,856 */
  NLSName quarterPattern1;   /* 12,104 */
  NLSName monthYearPattern1; /* 12,352 */
  NLSName monthYearPattern2; /* 12,600 */
  NLSName weekPattern1;      /* 12,848 */
  NLSName weekPattern2;      /* 13,096 */
  NLSName quarterNames[4];   /* 13,344 */
  NLSName names14336[4];     /* 14,336 */
  NLSName block4Name;        /* 15,328  kind 4: numbers */
  NLSName groupingPattern;   /* 15,576  digits a group, from the right: "3", "3;2" */
  VXChar decimalPoint;       /* 15,824 */
  VXChar groupSeparator;     /* 15,828 */
  uint64_t word15832;
  NLSName block3Names[3];  /* 15,840  kind 3: currency */
  NLSName currencySymbol;  /* 16,584 */
  uint8_t block3Rest[264]; /* 16,832 */
  uint8_t block6[256];     /* 17,096  kind 6 */
  NLSName block1;          /* 17,352  kind 1 */
  uint64_t block7;         /* 17,600  kind 7 */
  uint8_t block8[1016];    /* 17,608  kind 8 */
  uint8_t block9[30624];   /* 18,624  kind 9 */
};

/// Creates a locale, or finds the shared one of the same canonical name and zone.
///   host     kept in the locale; must outlive it
///   name     the locale's name, resolved by the host; null only with length 0
///   length   in units
///   status   receives the status, always; may be null
///   options  may be null: a shared locale in the operating system's zone
/// A shared locale keeps the zone it was first created with (and what NLSSetTimezoneId made of it), and lives until its
/// entry in the host's locale cache is destroyed. A private one, and any created while the host has no cache, lives
/// until the host calls NLSLocaleDestroyCallback with an entry of its own.
/// Any thread may create at any time; the context's creation lock makes it one after the other.
/// Returns the locale with status 0, or null with nothing left behind and
///   0x803fc002  memory is exhausted, or the track of zones cannot be made
///   0x803fe818  `length` is negative
///   0x803fe831  `host` is null, or its kernel, pool or creation lock; `name` with a length; the lookup gave no name
///   0x803fe83c  the zone cannot be opened
///   0           (or 0x803fe81a, from the lookup) "vxemsg" or "vxnlsldb" cannot be loaded
///   0           a lock, or the track of messages, cannot be made
///   any other   as the host gave it: normalising the zone of the options, taking the creation lock, looking the name
///               up (0x803fe81a goes on), filling the record (0x803fe80f goes on), inserting into the cache
/// So a null locale is the failure, whatever the status.
VX_API VXLocale* NLSLocaleCreate(HostContext* host, const VXChar* name, int64_t length, VXStatus* status,
                                 const LocaleCreateOptions* options);

/// Returns 0 and does nothing: a locale goes only through NLSLocaleDestroyCallback.
VX_API VXStatus NLSLocaleDestroy(VXLocale*);

/// Destroys the locale that is the entry's payload, the zones that it opened and its record. It is the destroy callback
/// of a locale cache; for a private locale a host calls it with an entry of its own. Nobody may use the locale any
/// more. Returns 0.
VX_API VXStatus NLSLocaleDestroyCallback(VXTrackEntry*);

/// Makes a track for a host's locale cache through the host of `locale`, which is otherwise not touched. The host keeps
/// it in its context. Null when it cannot be made.
VX_API VXTrack* NLSLocaleCreateTheDupTrack(VXLocale* locale);

/// The address of a block of the record.
///   kind  0 the record, 1 to 9 the block of that number (5: names and patterns, 4: numbers, 3: currency)
///   out   receives the address, which is good as long as the locale
/// Returns 0; 0x803fe817 for a kind above 9, 0x803fe831 when `out` is null: nothing is written then.
VX_API VXStatus NLSGetLocaleData(VXLocale*, uint32_t kind, void** out);

/// Copies the canonical name.
///   buffer  room for 62 units, whatever the name
///   length  receives the units written
/// Returns 0; 0x803fe831 when either is null: nothing is written then.
VX_API VXStatus NLSLocaleToLocName(VXLocale*, VXChar* buffer, int64_t* length);

/// The address of the locale's name: a 64-bit length and, behind it, the units. `ignored` may be anything.
/// Returns 0; 0x803fe831 when `out` is null.
VX_API VXStatus NLSGetLocaleName(VXLocale*, uint64_t ignored, const uint64_t** out);

/// Asks a journal or message object for its locale: passes all arguments on and returns what its get_locale operation
/// returns; null for a null object.
VX_API void* vxlGetLocale(VXJournal*, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5);

#ifdef __cplusplus
}
#endif

#endif
