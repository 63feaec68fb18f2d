// Locale objects: creation step by step, destruction, and what they tell of themselves.
#include "vxnls/locale.h"

#include <algorithm>

#include "kernel_strings/join.h"
#include "module/eye_catcher.h"
#include "module/host_services.h"
#include "module/zones.h"
#include "unicode/counted_name.h"
#include "vxnls/journal.h"
#include "vxnls/table.h"

namespace {

using vxnls::TextView;
using vxnls::host::host_text;
using vxnls::host::ZoneId;

constexpr uint8_t private_locale = 1;
constexpr uint32_t lookup_mode = 8;
constexpr uint32_t level_notice = 3;
constexpr int64_t longest_locale_name = 62;
constexpr int64_t key_room = 110;
constexpr const char* track_name = "VXNLS Locale track";

constexpr auto logger_name = host_text("App.NLS");
constexpr auto message_extension = host_text("vxemsg");
constexpr auto locale_database = host_text("vxnlsldb");
constexpr auto default_zone = host_text("America/New_York");
constexpr auto invalid_system_zone =
    host_text("Invalid OS TIMEZONE value is detected. Use default TIMEZONE value instead");

constexpr VXLockAttributes lock_attributes = {};
constexpr VXJournalAttributes journal_attributes = {};
constexpr VXTrackAttributes track_attributes = {
    .one = 1, .zero4 = 0, .zero8 = 0, .one16 = 1, .flags24 = 0x20000000, .zero28 = {}};

#define VX_SLOT_ADDRESS(n, f) &::f,
constexpr NLSOps entry_points = {NLS_SLOTS(VX_SLOT_ADDRESS)};
#undef VX_SLOT_ADDRESS

// The value 1 in place of a callback says that entries need none.
VXTrackDestroy no_callback() { return reinterpret_cast<VXTrackDestroy>(uintptr_t{1}); }

/// The journal of locale creation, made on first use; null when the host has no logger "App.NLS".
VXJournal* locale_journal(HostContext* host) {
  VXHandle* const kernel = host->kernel;
  VXLogger* logger = vxnls::host::cached(host->logger);
  if (VXLoggerService* const loggers = kernel->loggers; logger == nullptr && loggers != nullptr) {
    logger = loggers->ops->find(loggers, logger_name.text, logger_name.length());
    if (logger == nullptr) logger = loggers->ops->create(loggers, logger_name.text, logger_name.length());
    logger = vxnls::host::keep_first(host->logger, logger);
  }
  if (logger == nullptr) return nullptr;
  if (VXJournal* const known = vxnls::host::cached(host->localeJournal)) return known;
  VXJournal* const made = kernel->ops->create_journal(kernel, &journal_attributes, 0, "vxnlsLocaleJnl");
  return vxnls::host::keep_first(host->localeJournal, made);
}

/// The zone that the options ask for, or else the operating system's.
VXStatus choose_zone(HostContext* host, const LocaleCreateOptions* options, VXJournal* journal, ZoneId* zone) {
  if (options != nullptr && options->zoneName != nullptr && options->zoneLength >= 1) {
    return vxnls::host::normalise_zone(host, options->zoneName, options->zoneLength, zone);
  }
  const VXStatus status = vxnls::host::system_zone(host, zone);
  if (status == VX_E_ROOM || status == VX_E_ZONE) {
    std::copy_n(default_zone.text, default_zone.length(), zone->text);
    zone->length = default_zone.length();
    vxlMessageToJnl(journal, level_notice, invalid_system_zone.text, 0);
  }
  return 0;  // kept on purpose: any other failure leaves what stands in the buffer to the zone service
}

VXLock* make_lock(HostContext* host, VXJournal* journal, const char* name) {
  return host->kernel->ops->create_lock(host->kernel, &lock_attributes, journal, name);
}

/// A track with its callback set. One that does not take the callback would leak its entries: it counts as not made.
VXTrack* make_track(HostContext* host, VXJournal* journal, const char* name, VXTrackDestroy callback) {
  VXTrack* const track = host->kernel->ops->create_track(host->kernel, &track_attributes, journal, name);
  if (track == nullptr || track->ops->set_destroy(track, 0, callback) == 0) return track;
  track->ops->destroy(track);
  return nullptr;
}

VXLocaleDatabase* database_of(HostContext* host) {
  if (VXLocaleDatabase* const known = vxnls::host::cached(host->localeDatabase)) return known;
  VXExtension* const loaded = vxnls::host::load_extension(host->kernel, locale_database);
  return vxnls::host::keep_first(host->localeDatabase, reinterpret_cast<VXLocaleDatabase*>(loaded));
}

template <class T>
void destroy(T* object) {
  if (object != nullptr) object->ops->destroy(object);
}

void destroy_parts(VXLocale* locale) {
  destroy(locale->zoneLock);
  destroy(locale->zoneTrack);
  destroy(locale->msgLock);
  destroy(locale->msgTrack);
  destroy(locale->messageExt);
}

template <class T>
T* allocate(VXPool* pool, uint32_t flags) {
  return static_cast<T*>(pool->ops->allocate(pool, sizeof(T), flags));
}

void set_name(VXLocale* locale, TextView name) {
  locale->nameLength = static_cast<uint64_t>(name.length);
  std::copy_n(name.text, name.length, locale->name);
  NLSName& entry = locale->localeData->localeName;
  entry = {.length = std::min(name.length, vxnls::longest_name), .text = {}};
  std::copy_n(name.text, entry.length, entry.text);
}

/// Everything between the allocation of a locale and its place in the cache. On false the caller gives back what was
/// made; `status` comes in as the lookup's and is the creation's then.
bool equip(VXLocale* locale, HostContext* host, VXJournal* journal, TextView name, const ZoneId& zone,
           VXStatus& status) {
  locale->localeData = allocate<VXLocaleData>(host->pool, 0);
  if (locale->localeData == nullptr) {
    status = VX_E_MEMORY;
    return false;
  }
  locale->eyeCatcher = vxnls::eye_catcher;
  locale->typeName = "VXLocale handle";
  locale->destroy = &NLSLocaleDestroy;
  locale->host = host;
  // Kept on purpose: without an extension the status stays the lookup's, usually 0.
  locale->messageExt = vxnls::host::load_extension(Exported_VXHandle, message_extension);
  if (locale->messageExt == nullptr) return false;
  set_name(locale, name);
  VXLocaleDatabase* const database = database_of(host);
  if (database == nullptr) return false;
  status = database->ops->fill(database, locale->localeData, name.text, name.length);
  if (status != 0 && status != VX_W_FILL) return false;
  locale->ops = entry_points;

  // Kept on purpose: without the locks or the message track there is no locale and no error either.
  status = 0;
  locale->msgLock = make_lock(host, journal, "vxnls Locale VXMSG lock");
  if (locale->msgLock == nullptr) return false;
  locale->zoneLock = make_lock(host, journal, "vxnls Locale VXZ lock");
  if (locale->zoneLock == nullptr) return false;
  locale->msgTrack = make_track(host, journal, "vxnls Locale VXMSG track", no_callback());
  if (locale->msgTrack == nullptr) return false;

  status = VX_E_MEMORY;
  locale->zoneTrack = make_track(host, journal, "vxnls Locale VXETZ track", &NLSTZTrackerDestroyCallback);
  if (locale->zoneTrack == nullptr) return false;
  status = VX_E_ZONE;
  VXZone* const handle = NLSGetTZh(locale, zone.text, zone.length);
  if (handle == nullptr) return false;
  vxnls::host::set_current_zone(locale, handle);
  status = 0;
  return true;
}

/// The part of a creation that runs under the creation lock. `shared` says whether the locale cache is used.
VXLocale* find_or_make(HostContext* host, VXJournal* journal, TextView asked, const ZoneId& zone, bool shared,
                       VXStatus& status) {
  const VXLocaleRecord* record = nullptr;
  status = host->ops->lookup_locale(host, asked.text, asked.length, lookup_mode, &record);
  if (status != 0 && status != VX_W_SUBSTITUTE) return nullptr;
  if (record == nullptr || record->name == nullptr) {
    status = VX_E_NULL;
    return nullptr;
  }
  const TextView name = {record->name, std::clamp(record->length, int64_t{0}, longest_locale_name)};

  VXChar key[key_room];
  const int64_t key_length = vxnls::join(key, key_room, ' ', {name, {zone.text, zone.length}});
  const int64_t key_bytes = key_length * static_cast<int64_t>(sizeof(VXChar));
  // The host makes the cache through a locale, so the first one finds none and is nobody else's.
  VXTrack* const cache = shared ? host->localeCache : nullptr;
  if (cache != nullptr) {
    if (VXTrackEntry* const entry = cache->ops->find(cache, VX_TRACK_FIND, 0, key, key_bytes)) {
      auto* const known = static_cast<VXLocale*>(entry->payload);
      cache->ops->release(cache, entry);
      status = 0;
      return known;
    }
  }

  VXPool* const pool = host->pool;
  auto* const locale = allocate<VXLocale>(pool, VX_ZERO_FILL);
  if (locale == nullptr) {
    status = VX_E_MEMORY;
    return nullptr;
  }
  bool made = equip(locale, host, journal, name, zone, status);
  if (made && cache != nullptr) {
    VXStatus insert_status = VX_E_MEMORY;
    VXTrackEntry* const entry =
        cache->ops->insert(cache, VX_TRACK_INSERT, 0, locale, 0, key, key_bytes, &insert_status);
    made = entry != nullptr;
    if (made) cache->ops->release(cache, entry);
    if (!made) status = insert_status;
  }
  if (made) return locale;
  if (locale->localeData != nullptr) pool->ops->free(pool, locale->localeData);
  destroy_parts(locale);
  pool->ops->free(pool, locale);
  return nullptr;
}

VXLocale* create(HostContext* host, TextView name, const LocaleCreateOptions* options, VXStatus& status) {
  const bool incomplete =
      host == nullptr || host->kernel == nullptr || host->pool == nullptr || host->creationLock == nullptr;
  status = incomplete || (name.text == nullptr && name.length > 0) ? VX_E_NULL : name.length < 0 ? VX_E_LENGTH : 0;
  if (status != 0) return nullptr;
  VXJournal* const journal = locale_journal(host);
  ZoneId zone;
  status = choose_zone(host, options, journal, &zone);
  VXLock* const lock = host->creationLock;
  if (status != 0) {
    lock->ops->release(lock);  // kept on purpose: released before it was taken, which hosts tolerate
    return nullptr;
  }
  status = lock->ops->acquire(lock, 1, 1);
  if (status != 0) return nullptr;
  const bool shared = options == nullptr || (options->flags & private_locale) == 0;
  VXLocale* const locale = find_or_make(host, journal, name, zone, shared, status);
  lock->ops->release(lock);
  return locale;
}

constexpr size_t block_offsets[10] = {
    0,  // the record itself
    offsetof(VXLocaleData, block1),
    offsetof(VXLocaleData, block2),
    offsetof(VXLocaleData, block3Names),
    offsetof(VXLocaleData, block4Name),
    offsetof(VXLocaleData, dayNames),
    offsetof(VXLocaleData, block6),
    offsetof(VXLocaleData, block7),
    offsetof(VXLocaleData, block8),
    offsetof(VXLocaleData, block9),
};

}  // namespace

VXLocale* NLSLocaleCreate(HostContext* host, const VXChar* name, int64_t length, VXStatus* status,
                          const LocaleCreateOptions* options) {
  VXStatus result = 0;
  VXLocale* const locale = create(host, {name, length}, options, result);
  if (status != nullptr) *status = result;
  return locale;
}

VXStatus NLSLocaleDestroy(VXLocale*) { return 0; }

VXStatus NLSLocaleDestroyCallback(VXTrackEntry* entry) {
  auto* const locale = static_cast<VXLocale*>(entry->payload);
  destroy_parts(locale);
  VXPool* const pool = locale->host->pool;
  pool->ops->free(pool, locale->localeData);
  pool->ops->free(pool, locale);
  return 0;
}

VXTrack* NLSLocaleCreateTheDupTrack(VXLocale* locale) {
  HostContext* const host = locale->host;
  return make_track(host, vxnls::host::cached(host->localeJournal), track_name, &NLSLocaleDestroyCallback);
}

VXStatus NLSGetLocaleData(VXLocale* locale, uint32_t kind, void** out) {
  if (kind >= std::size(block_offsets)) return VX_E_KIND;
  if (out == nullptr) return VX_E_NULL;
  *out = reinterpret_cast<uint8_t*>(locale->localeData) + block_offsets[kind];
  return 0;
}

VXStatus NLSLocaleToLocName(VXLocale* locale, VXChar* buffer, int64_t* length) {
  if (buffer == nullptr || length == nullptr) return VX_E_NULL;
  const auto count = static_cast<int64_t>(locale->nameLength);
  std::copy_n(locale->name, count, buffer);
  *length = count;
  return 0;
}

VXStatus NLSGetLocaleName(VXLocale* locale, uint64_t, const uint64_t** out) {
  if (out == nullptr) return VX_E_NULL;
  *out = &locale->nameLength;
  return 0;
}
