// The reference host: a real host on ICU and the system's tz database that loads vxnlsloc and gives out its locales.
#ifndef VXNLS_VXHOST_H
#define VXNLS_VXHOST_H

#include "vxnls/table.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct VXHost VXHost;

/// Loads libvxnlsloc.so and makes a host that is ready to give out locales.
///   folder  UTF-8, where libvxnlsloc.so and the extensions lie; null: where libvxhost.so lies
///   host    receives the host; null on failure
/// Returns 0; 0x803fc002 memory exhausted; 0x803fe807 the library or an entry point was not found;
/// 0x803fe831 `host` is null.
VX_API VXStatus vxhostOpen(const char* folder, VXHost** host);

/// Destroys every locale (shared and private) and all else that the host made. Null is allowed.
VX_API void vxhostClose(VXHost* host);

/// A locale by name and zone.
///   name    UTF-8, NUL-terminated: "de_DE", "sr-Latn-RS"; resolved with CLDR fallback
///   zone    UTF-8, NUL-terminated identifier; null: the system's zone
///   flags   bit 0: private (never shared, its record may be changed by the caller)
///   locale  receives the locale, null on failure; it lives until vxhostClose
/// Returns 0, or the status of NLSLocaleCreate; a failure that carries no status gives 0x803fc002.
VX_API VXStatus vxhostLocale(VXHost* host, const char* name, const char* zone, uint32_t flags, VXLocale** locale);

/// The host context that locales are created with.
VX_API HostContext* vxhostContext(VXHost* host);

/// How a journal entry reaches a program: level, Unix time with fraction, and the text in UTF-8.
typedef void (*VXHostJournal)(void* user, uint32_t level, double unix_seconds, const char* text);

/// Sends journal entries to a callback; null: to nowhere (the start). VXHOST_JOURNAL=stderr in the environment sends
/// them to standard error.
VX_API void vxhostSetJournal(VXHost* host, VXHostJournal journal, void* user);

/// Sets an integer option, for example "VX_NAME_YEARCUTOFF". The environment variable of the same name is the preset.
VX_API VXStatus vxhostSetOption(VXHost* host, const char* name, int64_t value);

/// What a locale name resolves to, without creating the locale: the canonical name of the locale whose data is used,
/// written with its terminator to `canonical` (at least 64 bytes).
/// Returns 0 exact; 0x803fe81a substituted (a parent or a default stands in); 0x803fe80b not a locale name at all.
VX_API VXStatus vxhostResolveLocale(VXHost* host, const char* name, char* canonical, size_t room);

/// Calls `each` for every locale that the locale database has, in order of name. A non-zero result ends the walk.
VX_API void vxhostForEachLocale(VXHost* host, int (*each)(void* user, const char* name), void* user);

/// Calls `each` for every zone identifier, canonical and aliases, in order of name. A non-zero result ends the walk.
VX_API void vxhostForEachZone(VXHost* host, int (*each)(void* user, const char* id), void* user);

/// One zone at one moment. `seconds` counts from 1960-01-01 00:00; direction as in VX_ZONE_FROM_LOCAL.
typedef struct VXHostZoneInfo {
  char id[64];            /* canonical identifier */
  char abbreviation[16];  /* as the tz database has it: "CEST" */
  int32_t offset;         /* seconds east of UTC */
  int32_t summer_time;    /* 1 while daylight saving is in force */
} VXHostZoneInfo;
/// Returns 0, or 0x803fe83c when `zone` names no zone (null: the system's zone).
VX_API VXStatus vxhostZoneInfo(VXHost* host, const char* zone, int32_t direction, double seconds, VXHostZoneInfo* info);

/// Calls `each` for every entry of a locale's record that could not be taken over as the data has it: the entry, what
/// stands there, and why. Returns the status of the lookup.
VX_API VXStatus vxhostForEachFallback(VXHost* host, const char* locale,
                                      int (*each)(void* user, const char* entry, const char* used, const char* reason),
                                      void* user);

/// Versions of what stands behind the host, as "ICU 72.1; CLDR 42; Unicode 15.0; tz 2026f".
VX_API const char* vxhostVersions(VXHost* host);

/// Blocks, locks, tracks, entries, journals, extensions, zones and normalisers that hosts of this process still hold,
/// open hosts included; 0 after every host was closed. Lock releases by a thread that did not hold the lock.
VX_API int64_t vxhostAlive(void);
VX_API int64_t vxhostStrayReleases(void);

#ifdef __cplusplus
}
#endif

#endif
