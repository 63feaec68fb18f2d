// A time zone of the host, open.
#ifndef VXNLS_CLI_ZONE_H
#define VXNLS_CLI_ZONE_H

#include <optional>
#include <string>
#include <vector>

#include "vxnls/vxhost.h"

namespace vxcli {

class Zone {
 public:
  /// Nothing when `name` names no zone; null: the system's zone. Throws Failure (ExitCode::host) for other failures.
  static std::optional<Zone> open(VXHost* host, const char* name);
  Zone(Zone&& other) noexcept;
  ~Zone();
  Zone(const Zone&) = delete;
  Zone& operator=(const Zone&) = delete;
  Zone& operator=(Zone&&) = delete;

  const std::string& id() const { return id_; }  // canonical

  /// Seconds east of UTC. A repeated local time means its first occurrence, a skipped one takes the offset before the
  /// change. Moments are seconds since 1960-01-01 00:00.
  int32_t offset_at_local(double local) const;
  int32_t offset_at_utc(double utc) const;
  VXHostZoneInfo at_local(double local) const;  // of a skipped local time: what was in force before the change
  VXHostZoneInfo at_utc(double utc) const;

  enum class LocalTime { once, twice, never };
  LocalTime how_often(double local) const;

 private:
  Zone(VXHost* host, std::string id, VXZoneService* service, VXZone* zone);

  VXHost* host_;
  std::string id_;
  VXZoneService* service_;
  VXZone* zone_;
};

/// Every identifier that the host knows.
std::vector<std::string> zone_ids(VXHost* host);

}  // namespace vxcli

#endif
