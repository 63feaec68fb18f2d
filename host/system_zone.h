// Which zone the system says it is in.
#ifndef VXNLS_HOST_SYSTEM_ZONE_H
#define VXNLS_HOST_SYSTEM_ZONE_H

#include <optional>
#include <string>

namespace vxhost {

/// What the answer is read from; other places serve tests.
struct SystemZoneSources {
  const char* tz;                             // the value of TZ; null when it is not set
  std::string local_time = "/etc/localtime";  // a link into the tz database
  std::string time_zone = "/etc/timezone";    // one line with the identifier
};

/// The name of the system's zone, not looked up yet: TZ (a leading ':' dropped, empty means UTC), or else where
/// /etc/localtime leads, or else the line in /etc/timezone. A system with neither file is in UTC. Nothing when
/// /etc/localtime is there and its zone has no name.
std::optional<std::string> system_zone_name(const SystemZoneSources& sources);

}  // namespace vxhost

#endif
