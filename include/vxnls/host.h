/// What a host supplies: the objects that the library calls. Whoever writes a host of his own implements this header.
///
/// Every object begins with a pointer to its table of operations, and the library reaches it through that table alone;
/// what lies behind the fields declared here is the host's own. A table holds every operation: a null one is not
/// allowed, an absent *service* is (the four services of a kernel handle may be null). Tables stay where they are, and
/// unchanged, as long as an object uses them.
///
/// How a host brings the library up:
///   1. loads libvxnlsloc.so and calls `vxextver(stored, &major, &minor)`: `stored` is the kernel handle that the
///      library keeps, for the services that belong to no object ("vxemsg", "vxnlsudb", options, character data, the
///      conversion table);
///   2. calls `vxnlsloc(kernel, journal)` for the module;
///   3. prepares a HostContext, its caches null, with a kernel handle (the stored one or another) through which locks,
///      tracks, the journal and "vxnlsldb" are made;
///   4. creates a first locale through the module, has its slot NLSLocaleCreateTheDupTrack make the track that caches
///      locales, and keeps that track in `localeCache`; from then on locales of one name and zone are shared;
///   5. in the end destroys the cache (which destroys the shared locales), private locales by a call of
///      NLSLocaleDestroyCallback with an entry of its own, the module by its `realDestroy`, and what its caches hold.
///
/// Rules for all operations:
///   threads      any operation may be called from any thread, and by several at once, also on one object
///   texts        `VXChar` texts have a length and no terminator; `const char*` names are NUL-terminated ASCII, for
///                diagnosis; the host copies what it wants to keep
///   failure      a null object, or a status other than 0; nothing is left half made. What a failing operation wrote to
///                its out arguments is not used, except where it is said
///   giving back  (free, release, close, destroy) the status is not looked at: the thing counts as gone
///   calls back   an operation must not create locales or look zones up; a track's destroy runs the destroy callback
///   lengths      the library holds whatever a host claims to the room that it gave
#ifndef VXNLS_HOST_H
#define VXNLS_HOST_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* pool ------------------------------------------------------------------------------------------------- */

/// Asks `allocate` for memory that is all zero.
#define VX_ZERO_FILL 0x80000000u

/// What `create_pool` is given: flags 0x800000, the rest zero.
typedef struct VXPoolAttributes {
  uint32_t flags;
  uint8_t zero[20];
} VXPoolAttributes;

/// Memory. The library allocates a module from the pool that it makes, and locales, their records and zone records from
/// the pool of the context.
typedef struct VXPoolOps {
  /// A block of `bytes` (at least 1), aligned for any type. `flags` is 0 or VX_ZERO_FILL. Null when exhausted.
  void* (*allocate)(VXPool*, int64_t bytes, uint32_t flags);
  /// Takes back one block of this pool.
  VXStatus (*free)(VXPool*, void* block);
  /// Takes back the pool and every block of it.
  VXStatus (*destroy)(VXPool*);
} VXPoolOps;
struct VXPool {
  const VXPoolOps* ops;
};

/* lock ------------------------------------------------------------------------------------------------- */

/// What `create_lock` is given: zeros.
typedef struct VXLockAttributes {
  uint8_t zero[2];
} VXLockAttributes;

/// Mutual exclusion. No lock is taken twice by one thread; a zone lock is taken while the creation lock is held, never
/// the other way round.
typedef struct VXLockOps {
  /// Waits for the lock and takes it; both further arguments are 1. With a status other than 0 it is not held.
  VXStatus (*acquire)(VXLock*, uint32_t one, uint32_t also_one);
  /// Gives the lock up. Must do nothing for a caller that does not hold it: a refused zone option releases the creation
  /// lock before it was ever taken.
  VXStatus (*release)(VXLock*);
  /// Takes back the lock, which nobody holds.
  VXStatus (*destroy)(VXLock*);
} VXLockOps;
struct VXLock {
  const VXLockOps* ops;
};

/* track ------------------------------------------------------------------------------------------------ */

/// What `create_track` is given: 1, 1 and 0x20000000 in the fields of these names, zero elsewhere.
typedef struct VXTrackAttributes {
  uint32_t one; /* at byte 0 */
  uint32_t zero4;
  uint64_t zero8;
  uint64_t one16;   /* at byte 16 */
  uint32_t flags24; /* at byte 24: 0x20000000 */
  uint8_t zero28[28];
} VXTrackAttributes;

/// One payload of a track. The first two words are the host's.
struct VXTrackEntry {
  void* reserved[2];
  void* payload;
};

/// Called for an entry whose track is being destroyed; the entry stays the host's.
typedef VXStatus (*VXTrackDestroy)(VXTrackEntry*);

#define VX_TRACK_FIND 0x2000000u
#define VX_TRACK_INSERT 0x4000000u

/// A map from byte keys to payloads, with counted references to its entries. It synchronises itself: the library finds
/// without a lock of its own while another thread inserts.
typedef struct VXTrackOps {
  /// The entry of a key with one more reference, or null. `flags` is VX_TRACK_FIND. A key of 0 bytes is allowed.
  VXTrackEntry* (*find)(VXTrack*, uint32_t flags, uint64_t zero, const void* key, int64_t key_bytes);
  /// Adds a payload under a copy of the key. The new entry with one reference, *status 0; or null with the cause in
  /// *status, also when the key is there already. `flags` is VX_TRACK_INSERT.
  VXTrackEntry* (*insert)(VXTrack*, uint32_t flags, uint64_t zero, void* payload, uint64_t zero2, const void* key,
                          int64_t key_bytes, VXStatus* status);
  /// Gives back one reference of find or insert. The entry stays in the track when none is left.
  VXStatus (*release)(VXTrack*, VXTrackEntry*);
  /// Sets what is called for each entry when the track is destroyed. The value 1 in place of a callback: nothing is.
  VXStatus (*set_destroy)(VXTrack*, uint64_t zero, VXTrackDestroy callback);
  /// Calls the callback once for every entry, in any order, and takes back the track and its entries.
  VXStatus (*destroy)(VXTrack*);
} VXTrackOps;
struct VXTrack {
  const VXTrackOps* ops;
};

/* journal and message object ----------------------------------------------------------------------------- */

/// What `create_journal` is given: zeros.
typedef struct VXJournalAttributes {
  uint8_t zero[88];
} VXJournalAttributes;

/// Where messages and statuses go, by the helpers of journal.h, which pass their arguments on as they stand. What the
/// words a1 to a5 mean (buffer, capacity and so on) is between a caller and the host. A status arrives widened with its
/// sign: 0x803fc002 as -2143305726. The library itself writes two things: level 4, status 0x803fc002, when memory for a
/// module is exhausted, and level 3, a message without inserts, when the operating system's zone was not valid.
typedef struct VXJournalOps {
  VXStatus (*message_to_buffer)(VXJournal*, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5, va_list);
  /// `message` is NUL-terminated; the library passes 0 as `extra`.
  VXStatus (*message_to_journal)(VXJournal*, uint32_t level, const VXChar* message, uint64_t extra, va_list);
  VXStatus (*status_to_buffer)(VXJournal*, int64_t status, uint64_t a1, uint64_t a2, uint64_t a3, va_list);
  VXStatus (*status_to_journal)(VXJournal*, uint32_t level, int64_t status, va_list);
  void* reserved[3];
  /// Whatever the host gives for a locale of this object; all arguments of vxlGetLocale arrive.
  void* (*get_locale)(VXJournal*, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5);
} VXJournalOps;
struct VXJournal {
  const VXJournalOps* ops;
};

/// Loggers by name. The library asks for "App.NLS" and makes its journal only when there is such a logger.
typedef struct VXLoggerServiceOps {
  /// Null when there is no logger of this name; the library then creates it.
  VXLogger* (*find)(VXLoggerService*, const VXChar* name, int64_t length);
  VXLogger* (*create)(VXLoggerService*, const VXChar* name, int64_t length);
} VXLoggerServiceOps;
struct VXLoggerService {
  const VXLoggerServiceOps* ops;
};

/* extensions ------------------------------------------------------------------------------------------- */

/// What every extension's table begins with. "vxemsg", the message service, has no operation that the library calls but
/// this: each locale loads one and destroys it in the end. Its service may use the locale's msgLock and msgTrack, which
/// the library only makes and destroys.
typedef struct VXExtensionOps {
  VXStatus (*destroy)(VXExtension*);
} VXExtensionOps;
struct VXExtension {
  const VXExtensionOps* ops;
};

/// "vxnlsldb", the locale database.
typedef struct VXLocaleDatabaseOps {
  VXStatus (*destroy)(VXExtension*);
  /// Writes the whole record, which comes uninitialised, for a canonical name that lookup_locale gave. The first entry,
  /// the name, stands there already (its first 60 units) and may stay. Returns 0, or 0x803fe80f (filled, with something
  /// to remark); any other status ends the creation with it.
  VXStatus (*fill)(VXLocaleDatabase*, VXLocaleData* data, const VXChar* name, int64_t length);
} VXLocaleDatabaseOps;
struct VXLocaleDatabase {
  const VXLocaleDatabaseOps* ops;
};

/// "vxnlsudb", the Unicode database.
typedef struct VXUnicodeDatabaseOps {
  VXStatus (*destroy)(VXExtension*);
  /// Non-zero when the code point's general category is among the classes asked for: one bit a category, from 0x1 on
  /// Lu Ll Lt Mn Mc Me Nd Nl No Zs Zl Zp Cc Cf Cs Co Cn Lm Lo Pc Pd Ps Pe Pi Pf Po Sm Sc Sk So. Any 32-bit value may
  /// come as a code point.
  int32_t (*test_class)(VXUnicodeDatabase*, uint32_t code_point, uint32_t class_bits);
} VXUnicodeDatabaseOps;
struct VXUnicodeDatabase {
  const VXUnicodeDatabaseOps* ops;
};

/* zone service ----------------------------------------------------------------------------------------- */

/// How `seconds` is meant in a question about a zone.
#define VX_ZONE_FROM_LOCAL 0 /* local time of that zone */
#define VX_ZONE_FROM_UTC 1   /* UTC */

/// Time zones. `seconds` counts from 1960-01-01 00:00 and may have a fraction; dates from 1582 to 20000 occur. Offsets
/// are seconds east of UTC, from -86,399 to 86,399, summer time included. A local time that occurs twice takes the
/// first offset; one that is skipped takes the offset before the change.
typedef struct VXZoneServiceOps {
  /// A handle for an identifier that normalise_zone gave; null when it names no zone. A zone is open once a locale.
  VXZone* (*open)(VXZoneService*, const VXChar* id, int64_t length, uint64_t zero);
  /// Takes back a handle.
  VXStatus (*close)(VXZoneService*, VXZone*);
  /// The offset in force at a moment.
  int32_t (*offset)(VXZoneService*, VXZone*, int32_t direction, double seconds);
  /// The zone's identifier and the offset in force at a moment. `name` has room for *name_length units, which comes in
  /// as 50 and goes out as the units written. On failure the library takes an empty name and offset 0.
  VXStatus (*describe)(VXZoneService*, VXZone*, int32_t direction, double seconds, VXChar* name, int64_t* name_length,
                       int32_t* offset);
} VXZoneServiceOps;
struct VXZoneService {
  const VXZoneServiceOps* ops;
};

/* options, characters, normaliser, conversions ------------------------------------------------------------ */

#define VX_OPTION_INTEGER 1u

/// Options by name. The library reads "VX_NAME_YEARCUTOFF" (18 units), the first year of the hundred in which years of
/// two digits lie.
typedef struct VXOptionServiceOps {
  /// Writes the option's value to the cell; leaves the cell, which holds the preset (1950), when the option is not set.
  /// `kind` is VX_OPTION_INTEGER. The status is not looked at.
  VXStatus (*read)(VXOptionService*, const VXChar* name, int64_t length, uint32_t kind, int64_t* cell);
} VXOptionServiceOps;
struct VXOptionService {
  const VXOptionServiceOps* ops;
};

/// Case and normalisation. Simple mappings, a code point to a code point; one without a mapping comes back as it is.
typedef struct VXCharDataOps {
  /// `flag` is 1 when a text is being cased, 0 when texts are being compared.
  uint32_t (*lower)(VXCharData*, uint32_t code_point, uint32_t flag);
  /// `flag` is 1.
  uint32_t (*upper)(VXCharData*, uint32_t code_point, uint32_t flag);
  /// A normaliser, or null. The library keeps the first that it gets; all of them stay the host's to take back, also
  /// one that two threads made at the same moment and that is not kept.
  VXNormaliser* (*create_normaliser)(VXCharData*);
} VXCharDataOps;
struct VXCharData {
  const VXCharDataOps* ops;
  VXUnicodeDatabase* database; /* null at first; the library fills it on first use, the host destroys it in the end */
  VXNormaliser* normaliser;    /* likewise */
};

typedef struct VXNormaliserOps {
  /// Normalises UTF-8 text to a form of the host's numbering. All arguments of vxzsu8ICUNormalize arrive as they stand;
  /// a1 to a3 are for where the result goes.
  VXStatus (*normalise)(VXNormaliser*, const uint8_t* source, int64_t length, uint32_t form, uint64_t a1, uint64_t a2,
                        uint64_t a3, VXStatus* status);
  /// Below 0, 0 or above 0 as `a` comes before, is equal to or comes after `b` under the host's options. `status` is
  /// not null.
  int32_t (*compare)(VXNormaliser*, const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b,
                     uint32_t options, VXStatus* status);
} VXNormaliserOps;
struct VXNormaliser {
  const VXNormaliserOps* ops;
};

/// The host's own conversion of doubles. When `enabled` is not 0, NLSDoubleFormatWithExOpts and its UTF-8 form hand
/// their work to `format_double`, whose arguments are theirs. A length that exceeds the size counts as the size.
struct VXBDConv {
  int32_t enabled;
  int32_t reserved;
  VXStatus (*format_double)(VXLocale*, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer, int64_t size,
                            int64_t* length, const NLSDoubleExOpts*, double value);
};
struct VXRuntime {
  VXBDConv bdconv;
};

/// Transcoding to a single-byte code, for the readers of single-byte text. A caller hands a converter in.
typedef struct VXConverterOps {
  /// Writes the byte that stands for `unit`; a status other than 0 when there is none.
  VXStatus (*to_byte)(VXConverter*, VXChar unit, uint8_t* byte);
} VXConverterOps;
struct VXConverter {
  const VXConverterOps* ops;
};

/* kernel handle ---------------------------------------------------------------------------------------- */

/// Makes objects. The journal, which may be null, is where an object would report; names are for diagnosis.
typedef struct VXHandleOps {
  VXPool* (*create_pool)(VXHandle*, const VXPoolAttributes*, VXJournal*, const char* name);
  VXLock* (*create_lock)(VXHandle*, const VXLockAttributes*, VXJournal*, const char* name);
  VXTrack* (*create_track)(VXHandle*, const VXTrackAttributes*, VXJournal*, const char* name);
  /// The journal goes into the context's `localeJournal`. One that loses a race for that place is not used, and is the
  /// host's to take back with the rest.
  VXJournal* (*create_journal)(VXHandle*, const VXJournalAttributes*, uint64_t zero, const char* name);
  /// An extension by name: "vxemsg", "vxnlsldb" or "vxnlsudb"; null when it cannot be had. Each call is answered by
  /// one `destroy`: by the library for "vxemsg" (with its locale), by the host for the two that caches hold.
  VXExtension* (*load_extension)(VXHandle*, const VXChar* name, int64_t length, uint64_t zero);
} VXHandleOps;

/// The kernel. The library keeps one in Exported_VXHandle and finds one in every context; they may differ. A service
/// that is null is not offered, and the library answers from its built-in data.
struct VXHandle {
  const VXHandleOps* ops;
  VXLoggerService* loggers; /* null: no journal is made */
  VXOptionService* options; /* null: presets hold */
  VXCharData* characters;   /* null: built-in tables of cases and classes; no normaliser */
  VXRuntime* runtime;       /* null: the library's own conversion of doubles */
};

/* host context ----------------------------------------------------------------------------------------- */

/// A locale as the lookup found it: its canonical name, up to 62 units.
typedef struct VXLocaleRecord {
  const VXChar* name;
  int64_t length;
} VXLocaleRecord;

/// 16, 0, 0, by value.
typedef struct VXZoneIdOptions {
  uint32_t mode, zero1, zero2;
} VXZoneIdOptions;

typedef struct HostContextOps {
  /// The record of a locale name, `mode` 8; it stays valid while the creation lock is held. `name` is null only with
  /// length 0. Returns 0; 0x803fe81a (another locale stands in); any other status ends the creation with it.
  VXStatus (*lookup_locale)(HostContext*, const VXChar* name, int64_t length, uint32_t mode,
                            const VXLocaleRecord** record);
  /// The canonical form of a zone identifier, which anybody may have written: `out` has room for *out_length units,
  /// which comes in as 50 and goes out as the units written. Identifiers of one zone give one text, by which the zone
  /// is cached. A status other than 0 means no such zone. `extra` may be left alone. It is called with and without a
  /// lock held.
  VXStatus (*normalise_zone)(HostContext*, const VXChar* id, int64_t length, VXZoneIdOptions options, VXChar* out,
                             int64_t* out_length, uint64_t* extra);
  /// The operating system's zone identifier, `mode` 8; `out`, which comes full of blanks, and *out_length as above.
  /// With 0x803fe807 or 0x803fe83c the library takes "America/New_York" and writes a line to the journal; any other
  /// status is ignored, and what stands in `out` is used.
  VXStatus (*os_zone)(HostContext*, VXChar* out, int64_t* out_length, uint32_t mode);
} HostContextOps;

/// What a locale is created with, and keeps. It must outlive its locales. The caches are null at first; the library
/// fills them while they are still null and never changes or empties them. The host destroys what they hold.
struct HostContext {
  const HostContextOps* ops;
  VXHandle* kernel;                 /* never null */
  VXPool* pool;                     /* never null */
  VXTrack* localeCache;             /* of NLSLocaleCreateTheDupTrack; the host's to set; null: locales are not shared */
  VXLocaleDatabase* localeDatabase; /* cache: the loaded "vxnlsldb" */
  VXLock* creationLock;             /* never null; one creation at a time */
  VXJournal* localeJournal;         /* cache: the journal "vxnlsLocaleJnl" */
  VXLogger* logger;                 /* cache: the logger "App.NLS" */
  VXZoneService* zones;             /* null: no zone opens, so no locale can be created */
};

#ifdef __cplusplus
}
#endif

#endif
