// Time zones over the system's tz database.
#ifndef VXNLS_HOST_ZONE_SERVICE_H
#define VXNLS_HOST_ZONE_SERVICE_H

#include <cctz/time_zone.h>

#include <optional>
#include <string_view>

#include "host/accounting.h"
#include "host/zone_table.h"
#include "vxnls/host.h"

/// An open zone: its rules and its canonical identifier.
struct VXZone : vxhost::Counted<vxhost::Kind::zone> {
  VXZone(cctz::time_zone its_rules, const vxhost::ZoneTable::Identifier* its_id) : rules(its_rules), id(its_id) {}

  const cctz::time_zone rules;
  const vxhost::ZoneTable::Identifier* const id;
};

namespace vxhost {

/// A zone at one moment.
struct ZoneMoment {
  int32_t offset;            // seconds east of UTC
  bool summer_time;          // as the database marks it
  const char* abbreviation;  // "CEST"
};

/// Moments are seconds since 1960-01-01 00:00, local or UTC; fractions belong to the second that has begun.
/// A local time that a zone repeats takes the first of its two offsets, a skipped one the offset before the change.
class ZoneService final : public VXZoneService {
 public:
  explicit ZoneService(const ZoneTable& table) noexcept;

  /// Null when `name` names no zone or its rules cannot be read; throws when that is for want of memory or descriptors.
  VXZone* open(std::string_view name) const;
  static void close(VXZone* zone) noexcept { delete zone; }
  /// Nothing when `seconds` is no number or further than 250 million years away.
  static std::optional<ZoneMoment> at(const VXZone& zone, int32_t direction, double seconds);

 private:
  const ZoneTable& table_;
};

}  // namespace vxhost

#endif
