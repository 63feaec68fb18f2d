// Zone handles: opened once a locale, kept in its zone track until the locale goes.
#include "module/zones.h"

#include "module/host_services.h"
#include "vxnls/table.h"

namespace {

using vxnls::host::ZoneId;

constexpr int64_t key_bytes(const ZoneId& id) { return id.length * static_cast<int64_t>(sizeof(VXChar)); }

/// The zone that the cache holds, or null. Its entry is released at once: a zone lives as long as the track.
VXZone* find_zone(VXTrack* track, const ZoneId& id) {
  VXTrackEntry* const entry = track->ops->find(track, VX_TRACK_FIND, 0, id.text, key_bytes(id));
  if (entry == nullptr) return nullptr;
  VXZone* const zone = static_cast<ZoneRecord*>(entry->payload)->zone;
  track->ops->release(track, entry);
  return zone;
}

/// Opens a zone and puts it into the cache; null, with the cache as it was, when anything fails.
VXZone* open_zone(const VXLocale* locale, const ZoneId& id) {
  VXZoneService* const zones = locale->host->zones;
  VXPool* const pool = locale->host->pool;
  VXTrack* const track = locale->zoneTrack;
  VXZone* const zone = zones != nullptr ? zones->ops->open(zones, id.text, id.length, 0) : nullptr;
  if (zone == nullptr) return nullptr;
  auto* const record = static_cast<ZoneRecord*>(pool->ops->allocate(pool, sizeof(ZoneRecord), VX_ZERO_FILL));
  VXTrackEntry* entry = nullptr;
  VXStatus unused = 0;
  if (record != nullptr) {
    *record = {.zone = zone, .service = zones, .pool = pool};
    entry = track->ops->insert(track, VX_TRACK_INSERT, 0, record, 0, id.text, key_bytes(id), &unused);
  }
  if (entry == nullptr) {
    zones->ops->close(zones, zone);
    if (record != nullptr) pool->ops->free(pool, record);
    return nullptr;
  }
  track->ops->release(track, entry);
  return zone;
}

}  // namespace

VXZone* NLSGetTZh(VXLocale* locale, const VXChar* id, int64_t length) {
  if (id == nullptr || length < 0) return nullptr;
  ZoneId normalised;
  if (vxnls::host::normalise_zone(locale->host, id, length, &normalised) != 0) return nullptr;
  if (VXZone* const known = find_zone(locale->zoneTrack, normalised)) return known;
  VXLock* const lock = locale->zoneLock;
  if (lock->ops->acquire(lock, 1, 1) != 0) return nullptr;
  VXZone* zone = find_zone(locale->zoneTrack, normalised);  // another thread may have opened it meanwhile
  if (zone == nullptr) zone = open_zone(locale, normalised);
  lock->ops->release(lock);
  return zone;
}

VXStatus NLSSetTimezoneId(VXLocale* locale, const VXChar* id, int64_t length) {
  if (id == nullptr || length == 0) return 0;  // kept on purpose: no identifier asks for the zone that there is
  VXZone* const zone = NLSGetTZh(locale, id, length);
  if (zone == nullptr) return VX_E_ZONE;
  vxnls::host::set_current_zone(locale, zone);
  return 0;
}

VXStatus NLSTZTrackerDestroyCallback(VXTrackEntry* entry) {
  auto* const record = static_cast<ZoneRecord*>(entry->payload);
  record->service->ops->close(record->service, record->zone);
  record->pool->ops->free(record->pool, record);
  return 0;
}
