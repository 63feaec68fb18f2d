// What the cache of zone handles gives to the locale that owns it.
#ifndef VXNLS_MODULE_ZONES_H
#define VXNLS_MODULE_ZONES_H

#include "vxnls/zones.h"

/// The destroy callback of a locale's zone track: closes the zone of the entry's ZoneRecord and frees the record.
extern "C" VXStatus NLSTZTrackerDestroyCallback(VXTrackEntry* entry);

#endif
