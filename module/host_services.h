// The one door to the host: its operations with guards over them, so that a host that offers less never crashes a caller.
// The services of the stored kernel handle (Exported_VXHandle) may be absent; each answer says what stands in then.
#ifndef VXNLS_MODULE_HOST_SERVICES_H
#define VXNLS_MODULE_HOST_SERVICES_H

#include "vxnls/host.h"
#include "vxnls/locale.h"

namespace vxnls::host {

/// The character data of the stored kernel handle; null when it is not offered.
VXCharData* characters();

/// The Unicode database "vxnlsudb", loaded on first use and kept in the character data; null when it cannot be had.
VXUnicodeDatabase* unicode_database();

/// The normaliser, made on first use and kept in the character data; null when it cannot be had.
VXNormaliser* normaliser();

/// An integer option; `preset` when it is unset or options are not offered.
int64_t integer_option(const VXChar* name, int64_t length, int64_t preset);

/// Lower and upper case of one code point by the host. Only with characters() not null.
uint32_t lower(VXCharData* characters, uint32_t code_point, uint32_t flag);
uint32_t upper(VXCharData* characters, uint32_t code_point, uint32_t flag);

/// A zone's identifier and its offset from UTC in seconds east, at one moment.
struct ZoneState {
  VXChar name[50];
  int64_t name_length;  // 0 to 50; 0 when the host failed
  int32_t offset;       // 0 when the host failed
};

/// The state of the locale's current zone at `seconds`, which is local time.
void describe_zone(const VXLocale* locale, double seconds, ZoneState* state);

/// Seconds east of UTC of `zone` at `seconds`, read as VX_ZONE_FROM_LOCAL or VX_ZONE_FROM_UTC; 0 without a service.
int32_t zone_offset(const VXLocale* locale, VXZone* zone, int32_t direction, double seconds);

/// The locale's current zone, which another thread may be changing.
VXZone* current_zone(const VXLocale* locale);
void set_current_zone(VXLocale* locale, VXZone* zone);

}  // namespace vxnls::host

#endif
