// What a host supplies: the objects the library calls, each beginning with a pointer to its table of operations.
#ifndef VXNLS_HOST_H
#define VXNLS_HOST_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* pool ------------------------------------------------------------------------------------------ */
#define VX_ZERO_FILL 0x80000000u
typedef struct VXPoolAttributes { uint32_t flags; uint8_t zero[20]; } VXPoolAttributes;  /* 24; flags = 0x800000 */
typedef struct VXPoolOps {
  void*    (*allocate)(VXPool*, int64_t bytes, uint32_t flags);     /* null when exhausted */
  VXStatus (*free)(VXPool*, void* block);
  VXStatus (*destroy)(VXPool*);                                     /* frees all its blocks */
} VXPoolOps;
struct VXPool { const VXPoolOps* ops; };

/* lock ------------------------------------------------------------------------------------------ */
typedef struct VXLockAttributes { uint8_t zero[2]; } VXLockAttributes;
typedef struct VXLockOps {
  VXStatus (*acquire)(VXLock*, uint32_t one, uint32_t also_one);
  VXStatus (*release)(VXLock*);      /* must be a no-op for a caller that does not hold it */
  VXStatus (*destroy)(VXLock*);
} VXLockOps;
struct VXLock { const VXLockOps* ops; };

/* track ----------------------------------------------------------------------------------------- */
typedef struct VXTrackAttributes {           /* 56, zero except: */
  uint32_t one; uint32_t zero4; uint64_t zero8;                  /* 1 at byte 0 */
  uint64_t one16; uint32_t flags24;                              /* 1 at 16, 0x20000000 at 24 */
  uint8_t zero28[28];
} VXTrackAttributes;
struct VXTrackEntry { void* reserved[2]; void* payload; };       /* third word */
typedef VXStatus (*VXTrackDestroy)(VXTrackEntry*);
#define VX_TRACK_FIND   0x2000000u
#define VX_TRACK_INSERT 0x4000000u
typedef struct VXTrackOps {                  /* synchronises itself; copies key bytes on insert */
  VXTrackEntry* (*find)(VXTrack*, uint32_t flags, uint64_t zero, const void* key, int64_t key_bytes);
  VXTrackEntry* (*insert)(VXTrack*, uint32_t flags, uint64_t zero, void* payload, uint64_t zero2,
                          const void* key, int64_t key_bytes, VXStatus* status);
  VXStatus (*release)(VXTrack*, VXTrackEntry*);
  VXStatus (*set_destroy)(VXTrack*, uint64_t zero, VXTrackDestroy callback);  /* or the value 1: no callback */
  VXStatus (*destroy)(VXTrack*);             /* calls the callback once per entry */
} VXTrackOps;
struct VXTrack { const VXTrackOps* ops; };

/* journal and message object: one table, fixed relative order --------------------------------------- */
typedef struct VXJournalAttributes { uint8_t zero[88]; } VXJournalAttributes;
typedef struct VXJournalOps {
  VXStatus (*message_to_buffer)(VXJournal*, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5, va_list);
  VXStatus (*message_to_journal)(VXJournal*, uint32_t level, const VXChar* message, uint64_t extra, va_list);
  VXStatus (*status_to_buffer)(VXJournal*, int64_t status, uint64_t a1, uint64_t a2, uint64_t a3, va_list);
  VXStatus (*status_to_journal)(VXJournal*, uint32_t level, int64_t status, va_list);
  void* reserved[3];
  void* (*get_locale)(VXJournal*, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5);
} VXJournalOps;
struct VXJournal { const VXJournalOps* ops; };

typedef struct VXLoggerServiceOps {
  VXLogger* (*find)(VXLoggerService*, const VXChar* name, int64_t length);
  VXLogger* (*create)(VXLoggerService*, const VXChar* name, int64_t length);
} VXLoggerServiceOps;
struct VXLoggerService { const VXLoggerServiceOps* ops; };

/* extensions: every extension's table begins with destroy ------------------------------------------- */
typedef struct VXExtensionOps { VXStatus (*destroy)(VXExtension*); } VXExtensionOps;          /* "vxemsg" */
struct VXExtension { const VXExtensionOps* ops; };
typedef struct VXLocaleDatabaseOps {                                                          /* "vxnlsldb" */
  VXStatus (*destroy)(VXExtension*);
  VXStatus (*fill)(VXLocaleDatabase*, VXLocaleData* data, const VXChar* name, int64_t length); /* writes the whole record */
} VXLocaleDatabaseOps;
struct VXLocaleDatabase { const VXLocaleDatabaseOps* ops; };
typedef struct VXUnicodeDatabaseOps {                                                         /* "vxnlsudb" */
  VXStatus (*destroy)(VXExtension*);
  int32_t  (*test_class)(VXUnicodeDatabase*, uint32_t code_point, uint32_t class_bits);        /* non-zero: shares a bit */
} VXUnicodeDatabaseOps;
struct VXUnicodeDatabase { const VXUnicodeDatabaseOps* ops; };

/* zone service ---------------------------------------------------------------------------------- */
#define VX_ZONE_FROM_LOCAL 0    /* seconds is local time of that zone */
#define VX_ZONE_FROM_UTC   1    /* seconds is UTC */
typedef struct VXZoneServiceOps {
  VXZone*  (*open)(VXZoneService*, const VXChar* id, int64_t length, uint64_t zero);
  VXStatus (*close)(VXZoneService*, VXZone*);
  int32_t  (*offset)(VXZoneService*, VXZone*, int32_t direction, double seconds);  /* seconds east of UTC */
  VXStatus (*describe)(VXZoneService*, VXZone*, int32_t direction, double seconds,
                       VXChar* name, int64_t* name_length, int32_t* offset);       /* *name_length in: 50 */
} VXZoneServiceOps;
struct VXZoneService { const VXZoneServiceOps* ops; };

/* options, characters, normaliser, conversions ------------------------------------------------------ */
typedef struct VXOptionServiceOps {          /* leaves the 8-byte cell untouched when the option is unset */
  VXStatus (*read)(VXOptionService*, const VXChar* name, int64_t length, uint32_t kind, int64_t* cell);
} VXOptionServiceOps;
#define VX_OPTION_INTEGER 1u
struct VXOptionService { const VXOptionServiceOps* ops; };

typedef struct VXCharDataOps {
  uint32_t (*lower)(VXCharData*, uint32_t code_point, uint32_t flag);   /* flag 1 casing, 0 comparing */
  uint32_t (*upper)(VXCharData*, uint32_t code_point, uint32_t flag);   /* flag 1 */
  VXNormaliser* (*create_normaliser)(VXCharData*);
} VXCharDataOps;
struct VXCharData {
  const VXCharDataOps* ops;
  VXUnicodeDatabase* database;               /* cache, filled by the library on first use */
  VXNormaliser* normaliser;                  /* cache, filled by the library on first use */
};
typedef struct VXNormaliserOps {
  VXStatus (*normalise)(VXNormaliser*, const uint8_t* source, int64_t length, uint32_t form,
                        uint64_t a1, uint64_t a2, uint64_t a3, VXStatus* status);
  int32_t  (*compare)(VXNormaliser*, const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b,
                      uint32_t options, VXStatus* status);
} VXNormaliserOps;
struct VXNormaliser { const VXNormaliserOps* ops; };

struct VXBDConv {                            /* the table that vxGetBDConv returns */
  int32_t enabled; int32_t reserved;
  VXStatus (*format_double)(VXLocale*, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                            int64_t size, int64_t* length, const NLSDoubleExOpts*, double value);
};
struct VXRuntime { VXBDConv bdconv; };       /* the object it lives in */

typedef struct VXConverterOps {              /* third argument receives the single byte */
  VXStatus (*to_byte)(VXConverter*, VXChar unit, uint8_t* byte);
} VXConverterOps;
struct VXConverter { const VXConverterOps* ops; };

/* kernel handle --------------------------------------------------------------------------------- */
typedef struct VXHandleOps {
  VXPool*      (*create_pool)(VXHandle*, const VXPoolAttributes*, VXJournal*, const char* name);
  VXLock*      (*create_lock)(VXHandle*, const VXLockAttributes*, VXJournal*, const char* name);
  VXTrack*     (*create_track)(VXHandle*, const VXTrackAttributes*, VXJournal*, const char* name);
  VXJournal*   (*create_journal)(VXHandle*, const VXJournalAttributes*, uint64_t zero, const char* name);
  VXExtension* (*load_extension)(VXHandle*, const VXChar* name, int64_t length, uint64_t zero);
} VXHandleOps;
struct VXHandle {
  const VXHandleOps* ops;
  VXLoggerService* loggers;                  /* this and the next four may be null: service not offered */
  VXOptionService* options;
  VXCharData* characters;
  VXRuntime* runtime;
};

/* host context ---------------------------------------------------------------------------------- */
typedef struct VXLocaleRecord { const VXChar* name; int64_t length; } VXLocaleRecord;
typedef struct VXZoneIdOptions { uint32_t mode, zero1, zero2; } VXZoneIdOptions;   /* 16, 0, 0, by value */
typedef struct HostContextOps {
  VXStatus (*lookup_locale)(HostContext*, const VXChar* name, int64_t length, uint32_t mode /* 8 */,
                            const VXLocaleRecord** record);       /* valid while creationLock is held */
  VXStatus (*normalise_zone)(HostContext*, const VXChar* id, int64_t length, VXZoneIdOptions options,
                             VXChar* out, int64_t* out_length /* in: 50 */, uint64_t* extra);
  VXStatus (*os_zone)(HostContext*, VXChar* out, int64_t* out_length /* in: 50 */, uint32_t mode /* 8 */);
} HostContextOps;
struct HostContext {
  const HostContextOps* ops;
  VXHandle* kernel;
  VXPool* pool;
  VXTrack* localeCache;                      /* null until the host has made it */
  VXLocaleDatabase* localeDatabase;          /* cache, filled by the library */
  VXLock* creationLock;
  VXJournal* localeJournal;                  /* cache, filled by the library */
  VXLogger* logger;                          /* cache of "App.NLS", filled by the library */
  VXZoneService* zones;
};

#ifdef __cplusplus
}
#endif

#endif
