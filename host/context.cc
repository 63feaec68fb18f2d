#include "host/context.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "host/accounting.h"
#include "host/locale_lookup.h"
#include "host/pool.h"
#include "host/system_zone.h"
#include "host/text.h"

namespace vxhost {

namespace {

constexpr int64_t longest_locale_name = 160;
constexpr size_t most_cached_names = 4096;  // a caller that makes names up must not fill the memory

VXStatus write_identifier(const ZoneTable::Identifier& id, VXChar* out, int64_t* out_length) {
  if (*out_length < static_cast<int64_t>(id.name.size())) return VX_E_TRUNCATED;
  std::copy(id.name.begin(), id.name.end(), out);
  *out_length = static_cast<int64_t>(id.name.size());
  return 0;
}

constexpr HostContextOps operations = {
    [](HostContext* self, const VXChar* name, int64_t length, uint32_t, const VXLocaleRecord** record) -> VXStatus {
      char bytes[longest_locale_name];
      if (!ascii_name(name, length, bytes, longest_locale_name)) return VX_E_NOMATCH;
      return guarded<VXStatus>(VX_E_MEMORY, [&] {
        return static_cast<Context*>(self)->lookup_locale({bytes, static_cast<size_t>(length)}, record);
      });
    },
    [](HostContext* self, const VXChar* id, int64_t length, VXZoneIdOptions, VXChar* out, int64_t* out_length,
       uint64_t* extra) -> VXStatus {
      if (extra != nullptr) *extra = 0;
      if (out == nullptr || out_length == nullptr) return VX_E_NULL;
      char bytes[256];
      if (!ascii_name(id, length, bytes, sizeof bytes)) return VX_E_ZONE;
      const auto* const known = static_cast<Context*>(self)->zone_table().find({bytes, static_cast<size_t>(length)});
      return known != nullptr ? write_identifier(*known->canonical, out, out_length) : VX_E_ZONE;
    },
    [](HostContext* self, VXChar* out, int64_t* out_length, uint32_t) -> VXStatus {
      if (out == nullptr || out_length == nullptr) return VX_E_NULL;
      // Neither VX_E_ROOM nor VX_E_ZONE, for which the library would take another zone.
      return guarded<VXStatus>(VX_E_MEMORY, [&] {
        const ZoneTable::Identifier* id = nullptr;
        const VXStatus status = static_cast<Context*>(self)->system_zone(&id);
        return status == 0 ? write_identifier(*id, out, out_length) : status;
      });
    },
};

}  // namespace

Context::Context(Kernel& its_kernel, const ZoneTable& table) : HostContext{}, zone_table_(table), zone_service_(table) {
  static constexpr VXPoolAttributes pool_attributes{0x800000, {}};
  static constexpr VXLockAttributes lock_attributes{};
  ops = &operations;
  kernel = &its_kernel;
  zones = &zone_service_;
  pool = its_kernel.ops->create_pool(&its_kernel, &pool_attributes, nullptr, "host context pool");
  creationLock = its_kernel.ops->create_lock(&its_kernel, &lock_attributes, nullptr, "host locale creation lock");
  if (pool != nullptr && creationLock != nullptr) return;
  if (pool != nullptr) pool->ops->destroy(pool);
  if (creationLock != nullptr) creationLock->ops->destroy(creationLock);
  throw std::bad_alloc();
}

Context::~Context() {
  if (localeCache != nullptr) localeCache->ops->destroy(localeCache);
  if (localeDatabase != nullptr) {
    auto* const extension = reinterpret_cast<VXExtension*>(localeDatabase);
    extension->ops->destroy(extension);
  }
  creationLock->ops->destroy(creationLock);
  const int64_t lost = static_cast<Pool*>(pool)->blocks();
  pool->ops->destroy(pool);
  count(Kind::block, lost);
}

VXStatus Context::lookup_locale(std::string_view name, const VXLocaleRecord** record) {
  auto at = locales_.find(name);
  if (at == locales_.end()) {
    if (locales_.size() >= most_cached_names) locales_.clear();
    const ResolvedLocale resolved = resolve_locale(name);
    if (resolved.status == VX_E_NOMATCH) return resolved.status;
    CachedLocale& made = locales_.try_emplace(std::string(name)).first->second;
    made.status = resolved.status;
    made.record.name = made.text;
    made.record.length = static_cast<int64_t>(std::min(resolved.name.size(), std::size(made.text)));
    std::copy_n(resolved.name.begin(), made.record.length, made.text);
    at = locales_.find(name);
  }
  *record = &at->second.record;
  return at->second.status;
}

VXStatus Context::system_zone(const ZoneTable::Identifier** id) {
  const char* const tz = std::getenv("TZ");
  const std::lock_guard guard(zone_mutex_);
  const bool same_tz = tz == nullptr ? !tz_ : tz_ && *tz_ == tz;
  if (!zone_is_known_ || !same_tz) {
    zone_is_known_ = false;  // nor is it when memory runs out on the way
    const auto name = system_zone_name({tz});
    zone_ = name ? zone_table_.find(*name) : nullptr;
    zone_status_ = zone_ != nullptr ? 0 : name ? VX_E_ZONE : VX_E_ROOM;
    if (zone_ != nullptr) zone_ = zone_->canonical;
    tz_.reset();
    if (tz != nullptr) tz_ = tz;
    zone_is_known_ = true;
  }
  *id = zone_;
  return zone_status_;
}

}  // namespace vxhost
