// The reference host: a real host on ICU and the system's tz database that loads vxnlsloc and gives out its locales.
//
// A program that wants locales and has no host of its own links libvxhost.so and needs four calls:
//
//   VXHost* host;
//   VXLocale* locale;
//   if (vxhostOpen(NULL, &host) != 0) { puts(vxhostOpenFailure()); exit(4); }
//   if (vxhostLocale(host, "de_DE", "Europe/Berlin", 0, &locale) == 0) {
//     VXChar text[64];
//     int64_t length;
//     locale->ops.NLSDatetimeFormat(locale, 0, text, 64, &length, 2110896000.0);
//   }
//   vxhostClose(host);
//
// Texts of this interface are UTF-8 and end in NUL. Moments are seconds since 1960-01-01 00:00.
//
// Threads: every function may be called from any thread at any time, except that a host must not be used while or after
// vxhostClose closes it. The environment (TZ, VX_NAME_YEARCUTOFF, VXHOST_PATH, VXHOST_JOURNAL, TZDIR) is read without a
// lock: a program must not change it while another thread is in here. Destructors that run when a program ends may use
// and close a host; they, and those that run when a thread ends, must not open one.
//
// Several hosts may be open at once. The library keeps one kernel handle for the whole process, so that hosts over one
// libvxnlsloc.so share what it leads to: the options, and the folder that extensions are loaded from, which is the one
// of the first of them. Locales, journals and contexts are each host's own. When the last host closes, the library's
// kernel handle is null again.
#ifndef VXNLS_VXHOST_H
#define VXNLS_VXHOST_H

#include "vxnls/table.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct VXHost VXHost;

/// Loads libvxnlsloc.so and makes a host that is ready to give out locales.
///   folder  where libvxnlsloc.so lies and, there or in its folder vxnls-6, the extensions vxnlsldb.so, vxnlsudb.so,
///           vxemsg.so; null: where libvxhost.so lies. Extensions are also looked for in the absolute folders of
///           VXHOST_PATH (separated by ':'), after it; a relative one is refused, and all are in a set-user-id
///           process, with a journal entry each. No callback is set yet: VXHOST_JOURNAL=stderr alone shows them.
///   host    receives the host; null on failure
/// Returns 0, or:
///   0x803fc002  memory exhausted
///   0x803fe807  the library, an entry point or an extension was not found, or has another version
///   0x803fe831  `host` is null
/// vxhostOpenFailure() says in words what went wrong.
VX_API VXStatus vxhostOpen(const char* folder, VXHost** host);

/// Why the last vxhostOpen of this thread failed: one line without a line end; empty when it did not. Valid until this
/// thread's next vxhostOpen.
VX_API const char* vxhostOpenFailure(void);

/// Destroys every locale (shared and private) and all else that the host made. Null is allowed.
VX_API void vxhostClose(VXHost* host);

/// A locale by name and zone.
///   name    an ICU name ("de_DE", "sr_Latn_RS"), a language tag ("sr-Latn-RS") or a POSIX name ("de_DE.UTF-8", "C");
///           resolved as vxhostResolveLocale says
///   zone    an identifier of the tz database in any letter case, trailing blanks allowed; null: the system's zone (TZ,
///           or where /etc/localtime leads; America/New_York, with a journal entry, when that names no known zone)
///   flags   bit 0: private (never shared, its record may be changed by the caller); other bits are ignored
///   locale  receives the locale, null on failure; it lives until vxhostClose
/// Without bit 0, one name and zone always give the same object: whoever sets its zone sets it for all who share it.
/// Returns 0, or:
///   0x803fc002  memory or file descriptors exhausted, or a failure of creation that carries no status
///   0x803fe80b  the name is no locale's: not of a locale's form, or in a language that ICU has no locale of
///   0x803fe831  host, name or locale is null
///   0x803fe83c  the zone is empty or names no zone
VX_API VXStatus vxhostLocale(VXHost* host, const char* name, const char* zone, uint32_t flags, VXLocale** locale);

/// The host context that locales are created with, for calls to the library past vxhostLocale. Owned by the host, which
/// frees the shared locales made with it; a private one is its maker's to give back (NLSLocaleDestroyCallback).
VX_API HostContext* vxhostContext(VXHost* host);

/// How a journal entry reaches a program: its level (3 a notice, 4 a failure), Unix time with fraction, and the text,
/// which is valid during the call. Called from the thread that the entry comes from, never by two threads at once.
typedef void (*VXHostJournal)(void* user, uint32_t level, double unix_seconds, const char* text);

/// Sends the entries of this host's journals to a callback; null: to nowhere, as at the start, or to standard error
/// when the environment has VXHOST_JOURNAL=stderr. After the return no thread is in the callback that was set before.
VX_API void vxhostSetJournal(VXHost* host, VXHostJournal journal, void* user);

/// Sets an integer option for all hosts over the loaded library. The library reads "VX_NAME_YEARCUTOFF": the first of
/// the hundred years that two-digit years mean in the vxfmtz... functions. Until it is set here, the environment
/// variable of an option's name gives its value, read when the option is first asked for and no integer counts as
/// unset. Returns 0; 0x803fe817 not an option's name ("VX_" and more of A-Z, 0-9, "_"); 0x803fe831 host or name is
/// null.
VX_API VXStatus vxhostSetOption(VXHost* host, const char* name, int64_t value);

/// What a status means, in English: "0x803fe83c: no time zone has this name". Written with its terminator, cut to
/// `room`. Returns 0; 0x803fe80e the text was cut; 0x803fe831 host or text is null, or room is 0.
VX_API VXStatus vxhostStatusText(VXHost* host, VXStatus status, char* text, size_t room);

/// What a locale name resolves to, without creating the locale: the canonical name of the locale whose data is used,
/// written with its terminator to `canonical` (63 bytes are always enough).
/// Returns, and then the name is:
///   0           the locale itself; another spelling of it counts as itself ("de-DE", "zh_TW" for zh_Hant_TW, "iw_IL"
///   for
///               he_IL, "sr_RS@latin" for sr_Latn_RS, "C" and "POSIX" for en_US_POSIX, "und" for root)
///   0x803fe81a  a substitute: a wider locale in the same script ("de_US": de; "az_Arab", of which there is none:
///   root),
///               or the locale itself with a keyword or modifier left out ("de_DE@calendar=hebrew")
///   0x803fe80b  not a locale name, or a language that ICU has no locale of ("xx_YY"); `canonical` is empty
///   0x803fe807  the name does not fit in `room`; `canonical` is empty
///   0x803fe831  host, name or canonical is null, or room is 0
VX_API VXStatus vxhostResolveLocale(VXHost* host, const char* name, char* canonical, size_t room);

/// Calls `each` for every locale that the locale database has, by its canonical name, in byte order ("root" apart). A
/// non-zero result ends the walk. The walk needs no memory, and an exception of `each` goes through it.
VX_API void vxhostForEachLocale(VXHost* host, int (*each)(void* user, const char* name), void* user);

/// Calls `each` for every zone identifier, canonical ones and aliases, in byte order. A non-zero result ends the walk.
/// The walk needs no memory, and an exception of `each` goes through it.
VX_API void vxhostForEachZone(VXHost* host, int (*each)(void* user, const char* id), void* user);

/// One zone at one moment.
typedef struct VXHostZoneInfo {
  char id[64];           /* canonical identifier */
  char abbreviation[16]; /* as the tz database has it: "CEST" */
  int32_t offset;        /* seconds east of UTC */
  int32_t summer_time;   /* 1 while daylight saving is in force, as the tz database marks it */
} VXHostZoneInfo;

/// What is in force in a zone.
///   zone       as for vxhostLocale; null: the system's zone, without a stand-in
///   direction  VX_ZONE_FROM_LOCAL: `seconds` is that zone's local time, where a time that is repeated means its first
///              occurrence and a skipped one takes the offset before the change; VX_ZONE_FROM_UTC: it is UTC
/// Returns 0; 0x803fc002 memory or file descriptors exhausted; 0x803fe80d `seconds` is not a number or beyond 8e15;
/// 0x803fe831 host or info is null; 0x803fe83c the zone is not known. Nothing is written on failure.
VX_API VXStatus vxhostZoneInfo(VXHost* host, const char* zone, int32_t direction, double seconds, VXHostZoneInfo* info);

/// Calls `each` for every entry of a locale's record that could not be taken over as the data has it: the entry, what
/// stands there, and why. A non-zero result ends the walk.
/// Returns the status of the lookup as vxhostResolveLocale does, or what kept the record from being filled.
VX_API VXStatus vxhostForEachFallback(VXHost* host, const char* locale,
                                      int (*each)(void* user, const char* entry, const char* used, const char* reason),
                                      void* user);

/// Holds the record of a locale against the rules of docs/locale-data.md and calls `each` for every one that is broken:
/// the rule ("R6"), the member of VXLocaleData, and what is wrong, in UTF-8 that is valid during the call. A non-zero
/// result of `each` ends the walk. Any bytes may stand in the record.
/// Returns 0; 0x803fe831 for a null argument; 0x803fc002 memory exhausted.
VX_API VXStatus vxhostCheckRecord(VXHost* host, const VXLocaleData* record,
                                  int (*each)(void* user, const char* rule, const char* entry, const char* text),
                                  void* user);

/// Versions of what stands behind the host, as "ICU 72.1; CLDR 42; Unicode 15.0; tz 2026f". Valid until vxhostClose.
VX_API const char* vxhostVersions(VXHost* host);

/// Pools, blocks, locks, tracks and their entries, journals, loggers, extensions, zones and normalisers that hosts of
/// this process hold, open hosts included; 0 after every host was closed. What a host had to give back in the library's
/// place (a block that was never freed, a reference that was never released, a lock that was still held) stays counted.
VX_API int64_t vxhostAlive(void);

/// The same in words, "2 blocks, 1 lock"; empty when nothing is alive. Written with its terminator, cut to `room`.
/// Returns 0; 0x803fe80e the text was cut; 0x803fe831 text is null or room is 0.
VX_API VXStatus vxhostAliveText(char* text, size_t room);

/// Lock releases by a thread that did not hold the lock, since the process started. Creating a locale with a zone that
/// does not exist makes one; any other comes from a fault.
VX_API int64_t vxhostStrayReleases(void);

#ifdef __cplusplus
}
#endif

#endif
