// Time zones of a locale.
#ifndef VXNLS_ZONES_H
#define VXNLS_ZONES_H

#include "vxnls/host.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ZoneRecord { VXZone* zone; VXZoneService* service; VXPool* pool; } ZoneRecord;   /* 24 */
VX_API VXZone*  NLSGetTZh(VXLocale*, const VXChar* id, int64_t length);
VX_API VXStatus NLSSetTimezoneId(VXLocale*, const VXChar* id, int64_t length);                  /* slot 58 */

#ifdef __cplusplus
}
#endif

#endif
