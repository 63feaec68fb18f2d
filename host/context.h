// The host context: what locales are created with.
#ifndef VXNLS_HOST_CONTEXT_H
#define VXNLS_HOST_CONTEXT_H

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "host/kernel.h"
#include "host/text_map.h"
#include "host/zone_service.h"
#include "host/zone_table.h"
#include "vxnls/locale.h"

namespace vxhost {

/// Owns its pool, its creation lock and what the library caches in it; not the module.
class Context final : public HostContext {
 public:
  /// Throws std::bad_alloc when the pool or the lock cannot be made.
  Context(Kernel& kernel, const ZoneTable& zones);
  /// The locale cache goes first, with its locales. A block that is then left in the pool was lost by the library: it
  /// is freed, and stays counted.
  ~Context();
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  /// The name that a locale is found under, and how well it fits. Only while the creation lock is held; so long is the
  /// record valid.
  VXStatus lookup_locale(std::string_view name, const VXLocaleRecord** record);
  /// The canonical identifier of the system's zone. VX_E_ROOM when the system does not name one, VX_E_ZONE when the tz
  /// database does not know the name.
  VXStatus system_zone(const ZoneTable::Identifier** id);
  const ZoneTable& zone_table() const { return zone_table_; }

 private:
  struct CachedLocale {
    VXStatus status;
    VXChar text[62];
    VXLocaleRecord record;
  };

  const ZoneTable& zone_table_;
  ZoneService zone_service_;
  TextMap<CachedLocale> locales_;

  std::mutex zone_mutex_;
  bool zone_is_known_ = false;
  std::optional<std::string> tz_;  // the value of TZ that the two below were found with
  VXStatus zone_status_ = 0;
  const ZoneTable::Identifier* zone_ = nullptr;
};

}  // namespace vxhost

#endif
