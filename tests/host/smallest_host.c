/* A whole host in one file of C: what a program needs that wants a locale without ICU and without libvxhost.
   It knows one locale ("en", which stands in for every other) and one zone (UTC), and serves one thread.
   Prints one datetime in words; docs/writing-a-host.md walks through it. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "vxnls/vxnls.h"

/* memory: a pool must be able to give back all that it gave ---------------------------------------------- */

typedef struct Block {
  struct Block *previous, *next;
} Block;
typedef struct Pool {
  VXPool base;
  Block ring; /* head of a ring of blocks */
} Pool;

static void* pool_allocate(VXPool* self, int64_t bytes, uint32_t flags) {
  Block* const head = &((Pool*)self)->ring;
  Block* const block = malloc(sizeof *block + (size_t)bytes);
  if (block == NULL) return NULL;
  if (flags & VX_ZERO_FILL) memset(block + 1, 0, (size_t)bytes);
  block->previous = head;
  block->next = head->next;
  block->next->previous = head->next = block;
  return block + 1;
}
static VXStatus pool_free(VXPool* self, void* memory) {
  Block* const block = (Block*)memory - 1;
  (void)self;
  block->previous->next = block->next;
  block->next->previous = block->previous;
  free(block);
  return 0;
}
static VXStatus pool_destroy(VXPool* self) {
  Pool* const pool = (Pool*)self;
  while (pool->ring.next != &pool->ring) pool_free(self, pool->ring.next + 1);
  free(pool);
  return 0;
}
static const VXPoolOps pool_ops = {pool_allocate, pool_free, pool_destroy};

static VXPool* create_pool(VXHandle* kernel, const VXPoolAttributes* attributes, VXJournal* journal, const char* name) {
  Pool* const pool = malloc(sizeof *pool);
  (void)kernel, (void)attributes, (void)journal, (void)name;
  if (pool == NULL) return NULL;
  pool->base.ops = &pool_ops;
  pool->ring.previous = pool->ring.next = &pool->ring;
  return &pool->base;
}

/* locks: nothing to exclude with one thread; a release that no acquire preceded is allowed ------------------ */

static VXStatus lock_acquire(VXLock* self, uint32_t one, uint32_t also_one) {
  (void)self, (void)one, (void)also_one;
  return 0;
}
static VXStatus lock_release(VXLock* self) {
  (void)self;
  return 0;
}
static VXStatus lock_destroy(VXLock* self) {
  free(self);
  return 0;
}
static const VXLockOps lock_ops = {lock_acquire, lock_release, lock_destroy};

static VXLock* create_lock(VXHandle* kernel, const VXLockAttributes* attributes, VXJournal* journal, const char* name) {
  VXLock* const lock = malloc(sizeof *lock);
  (void)kernel, (void)attributes, (void)journal, (void)name;
  if (lock != NULL) lock->ops = &lock_ops;
  return lock;
}

/* tracks: a list of entries with copies of their keys ----------------------------------------------------- */

typedef struct Entry {
  VXTrackEntry base; /* its first two words are the host's: the next entry, the bytes of the key */
  char key[];
} Entry;
typedef struct Track {
  VXTrack base;
  Entry* first;
  VXTrackDestroy destroy;
} Track;

static VXTrackEntry* track_find(VXTrack* self, uint32_t flags, uint64_t zero, const void* key, int64_t bytes) {
  (void)flags, (void)zero;
  for (Entry* at = ((Track*)self)->first; at != NULL; at = at->base.reserved[0]) {
    if ((int64_t)(intptr_t)at->base.reserved[1] == bytes && memcmp(at->key, key, (size_t)bytes) == 0) return &at->base;
  }
  return NULL;
}
static VXTrackEntry* track_insert(VXTrack* self, uint32_t flags, uint64_t zero, void* payload, uint64_t zero2,
                                  const void* key, int64_t bytes, VXStatus* status) {
  Track* const track = (Track*)self;
  Entry* const entry = malloc(sizeof *entry + (size_t)bytes);
  (void)flags, (void)zero, (void)zero2;
  *status = entry != NULL ? 0 : VX_E_MEMORY;
  if (entry == NULL) return NULL;
  entry->base.reserved[0] = track->first;
  entry->base.reserved[1] = (void*)(intptr_t)bytes;
  entry->base.payload = payload;
  memcpy(entry->key, key, (size_t)bytes);
  track->first = entry;
  return &entry->base;
}
static VXStatus track_release(VXTrack* self, VXTrackEntry* entry) {
  (void)self, (void)entry;
  return 0;
}
static VXStatus track_set_destroy(VXTrack* self, uint64_t zero, VXTrackDestroy callback) {
  (void)zero;
  ((Track*)self)->destroy = (uintptr_t)callback == 1 ? NULL : callback;
  return 0;
}
static VXStatus track_destroy(VXTrack* self) {
  Track* const track = (Track*)self;
  for (Entry* entry = track->first; entry != NULL;) {
    Entry* const next = entry->base.reserved[0];
    if (track->destroy != NULL) track->destroy(&entry->base);
    free(entry);
    entry = next;
  }
  free(track);
  return 0;
}
static const VXTrackOps track_ops = {track_find, track_insert, track_release, track_set_destroy, track_destroy};

static VXTrack* create_track(VXHandle* kernel, const VXTrackAttributes* attributes, VXJournal* journal,
                             const char* name) {
  Track* const track = calloc(1, sizeof *track);
  (void)kernel, (void)attributes, (void)journal, (void)name;
  if (track == NULL) return NULL;
  track->base.ops = &track_ops;
  return &track->base;
}

/* extensions: the message service may be empty, the locale database fills the record ----------------------- */

static VXStatus keep(VXExtension* self) { /* both are constants: there is nothing to give back */
  (void)self;
  return 0;
}
static const VXExtensionOps message_ops = {keep};
static VXExtension messages = {&message_ops};

static void set(NLSName* name, const char* text) {
  name->length = (int64_t)strlen(text);
  for (int64_t i = 0; i < name->length; ++i) name->text[i] = (VXChar)text[i];
}
static VXStatus fill(VXLocaleDatabase* self, VXLocaleData* data, const VXChar* name, int64_t length) {
  static const char* const days[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
  static const char* const months[] = {"January", "February", "March",     "April",   "May",      "June",
                                       "July",    "August",   "September", "October", "November", "December"};
  (void)self, (void)name, (void)length;
  memset((char*)data + sizeof data->localeName, 0, sizeof *data - sizeof data->localeName); /* the name stands there */
  for (int i = 0; i < 7; ++i) set(&data->dayNames[i], days[i]), set(&data->altDayNames[i], days[i]);
  for (int i = 0; i < 12; ++i) set(&data->monthNames[i], months[i]), set(&data->altMonthNames[i], months[i]);
  set(&data->datePattern, "%Y-%m-%d");
  set(&data->timePattern, "%H:%M:%S");
  set(&data->datetimePattern, "%A, %d %B %Y, %H:%M %Z");
  set(&data->groupingPattern, "3");
  data->decimalPoint = '.';
  data->groupSeparator = ',';
  return 0;
}
static const VXLocaleDatabaseOps database_ops = {keep, fill};
static VXLocaleDatabase database = {&database_ops};

static VXJournal* create_journal(VXHandle* kernel, const VXJournalAttributes* attributes, uint64_t zero,
                                 const char* name) {
  (void)kernel, (void)attributes, (void)zero, (void)name;
  return NULL; /* not called without a logger service */
}
static VXExtension* load_extension(VXHandle* kernel, const VXChar* name, int64_t length, uint64_t zero) {
  (void)kernel, (void)zero;
  if (length == 6) return &messages;                             /* "vxemsg" */
  return name[5] == 'l' ? (VXExtension*)(void*)&database : NULL; /* "vxnlsldb"; no "vxnlsudb" */
}

/* the kernel: of its services, all of which may be null, this host offers none ------------------------------ */

static const VXHandleOps kernel_ops = {create_pool, create_lock, create_track, create_journal, load_extension};
static VXHandle kernel = {&kernel_ops, NULL, NULL, NULL, NULL};

/* zones: UTC ------------------------------------------------------------------------------------------- */

static const VXChar utc[] = {'U', 'T', 'C'};

static VXZone* zone_open(VXZoneService* self, const VXChar* id, int64_t length, uint64_t zero) {
  (void)id, (void)length, (void)zero; /* only what normalise_zone gave comes here */
  return (VXZone*)self;               /* a handle is whatever the service likes */
}
static VXStatus zone_close(VXZoneService* self, VXZone* zone) {
  (void)self, (void)zone;
  return 0;
}
static int32_t zone_offset(VXZoneService* self, VXZone* zone, int32_t direction, double seconds) {
  (void)self, (void)zone, (void)direction, (void)seconds;
  return 0;
}
static VXStatus zone_describe(VXZoneService* self, VXZone* zone, int32_t direction, double seconds, VXChar* name,
                              int64_t* name_length, int32_t* offset) {
  memcpy(name, utc, sizeof utc);
  *name_length = 3;
  *offset = zone_offset(self, zone, direction, seconds);
  return 0;
}
static const VXZoneServiceOps zone_ops = {zone_open, zone_close, zone_offset, zone_describe};
static VXZoneService zones = {&zone_ops};

/* the context ------------------------------------------------------------------------------------------ */

static const VXChar english[] = {'e', 'n'};

static VXStatus lookup_locale(HostContext* self, const VXChar* name, int64_t length, uint32_t mode,
                              const VXLocaleRecord** record) {
  static const VXLocaleRecord found = {english, 2};
  (void)self, (void)mode;
  *record = &found;
  return length == 2 && memcmp(name, english, sizeof english) == 0 ? 0 : VX_W_SUBSTITUTE;
}
static VXStatus normalise_zone(HostContext* self, const VXChar* id, int64_t length, VXZoneIdOptions options,
                               VXChar* out, int64_t* out_length, uint64_t* extra) {
  (void)self, (void)options, (void)extra;
  if (length != 3 || memcmp(id, utc, sizeof utc) != 0) return VX_E_ZONE;
  memcpy(out, utc, sizeof utc);
  *out_length = 3;
  return 0;
}
static VXStatus os_zone(HostContext* self, VXChar* out, int64_t* out_length, uint32_t mode) {
  const VXZoneIdOptions options = {16, 0, 0};
  (void)mode;
  return normalise_zone(self, utc, 3, options, out, out_length, NULL);
}
static const HostContextOps context_ops = {lookup_locale, normalise_zone, os_zone};

int main(void) {
  HostContext context = {&context_ops, &kernel, NULL, NULL, NULL, NULL, NULL, NULL, &zones};
  int64_t major, minor, length;
  VXStatus status;
  uint8_t text[100];

  vxextver(&kernel, &major, &minor);                          /* 1. the library keeps the kernel handle */
  NLSModule* const module = vxnlsloc(&kernel, NULL);          /* 2. the module */
  context.pool = create_pool(&kernel, NULL, NULL, "context"); /* 3. the context */
  context.creationLock = create_lock(&kernel, NULL, NULL, "creation");
  const LocaleCreateOptions private_locale = {1, {0}, NULL, 0};
  VXLocale* const first = module->localeCreate(&context, english, 2, &status, &private_locale);
  if (first == NULL) return 1;
  context.localeCache = first->ops.NLSLocaleCreateTheDupTrack(first); /* 4. the cache */

  VXLocale* const locale = module->localeCreate(&context, english, 2, &status, NULL); /* from now on: shared */
  if (locale == NULL || locale != module->localeCreate(&context, english, 2, &status, NULL)) return 2;
  if (locale->ops.NLSDatetimeFormatU(locale, 0, text, sizeof text, &length, 2110896000.0) != 0) return 3;
  printf("%.*s\n", (int)length, (const char*)text);

  context.localeCache->ops->destroy(context.localeCache); /* 5. all of it back */
  VXTrackEntry entry = {{NULL, NULL}, first};
  module->localeDestroyCallback(&entry);
  module->realDestroy(module);
  context.creationLock->ops->destroy(context.creationLock);
  context.pool->ops->destroy(context.pool);
  vxextent(NULL);
  return 0;
}
