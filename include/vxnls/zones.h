/// Time zones of a locale: handles of the host's zone service, opened once a locale and kept as long as the locale.
#ifndef VXNLS_ZONES_H
#define VXNLS_ZONES_H

#include "vxnls/host.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The payload of a locale's zone track.
typedef struct ZoneRecord {
  VXZone* zone;
  VXZoneService* service; /* opened it, and closes it */
  VXPool* pool;           /* of this record */
} ZoneRecord;

/// The handle of a zone, from the locale's cache or opened now. Identifiers that the host normalises to one text share
/// a handle. It is good as long as the locale and is not given back.
///   id      as the host understands identifiers
///   length  in units, at least 0
/// Any thread may ask; a zone that is in the cache is found without a lock of the library.
/// Null when `id` is null, `length` is negative, the host knows no such zone or anything fails; the cache is as it was.
VX_API VXZone* NLSGetTZh(VXLocale*, const VXChar* id, int64_t length);

/// Changes the locale's current zone, for all who share it: a thread that formats meanwhile uses the old or the new
/// one. A null identifier or a length of 0 keeps the zone there is. Returns 0; 0x803fe83c when NLSGetTZh gives none
/// (also for a negative length): the zone stays.
VX_API VXStatus NLSSetTimezoneId(VXLocale*, const VXChar* id, int64_t length);

#ifdef __cplusplus
}
#endif

#endif
