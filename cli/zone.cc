#include "cli/zone.h"

#include <new>
#include <utility>

#include "cli/session.h"
#include "cli/text.h"

namespace vxcli {

std::optional<Zone> Zone::open(VXHost* host, const char* name) {
  VXHostZoneInfo info{};
  const VXStatus status = vxhostZoneInfo(host, name, VX_ZONE_FROM_UTC, 0, &info);
  if (status == VX_E_ZONE) return std::nullopt;
  if (status != 0) fail_with_status(host, "the zone cannot be opened", status);
  const std::u32string id = utf32(info.id).value_or(U"");
  const std::basic_string<VXChar> units(id.begin(), id.end());
  VXZoneService* const service = vxhostContext(host)->zones;
  VXZone* const zone = service->ops->open(service, units.data(), static_cast<int64_t>(units.size()), 0);
  if (zone == nullptr) throw std::bad_alloc();  // it opened just before
  return Zone(host, info.id, service, zone);
}

Zone::Zone(VXHost* host, std::string id, VXZoneService* service, VXZone* zone)
    : host_(host), id_(std::move(id)), service_(service), zone_(zone) {}

Zone::Zone(Zone&& other) noexcept
    : host_(other.host_),
      id_(std::move(other.id_)),
      service_(other.service_),
      zone_(std::exchange(other.zone_, nullptr)) {}

Zone::~Zone() {
  if (zone_ != nullptr) service_->ops->close(service_, zone_);
}

int32_t Zone::offset_at_local(double local) const {
  return service_->ops->offset(service_, zone_, VX_ZONE_FROM_LOCAL, local);
}

int32_t Zone::offset_at_utc(double utc) const { return service_->ops->offset(service_, zone_, VX_ZONE_FROM_UTC, utc); }

VXHostZoneInfo Zone::at_local(double local) const {
  const int32_t offset = offset_at_local(local);
  const VXHostZoneInfo info = at_utc(local - offset);
  if (info.offset == offset) return info;
  // The clocks were put forward past this time, by so much: that much earlier they had not been.
  return at_utc(local - info.offset);
}

VXHostZoneInfo Zone::at_utc(double utc) const {
  VXHostZoneInfo info{};
  const VXStatus status = vxhostZoneInfo(host_, id_.c_str(), VX_ZONE_FROM_UTC, utc, &info);
  if (status != 0) fail_with_status(host_, fmt::format("the zone {} gives no answer", id_), status);
  return info;
}

Zone::LocalTime Zone::how_often(double local) const {
  const int32_t first = offset_at_local(local);
  if (offset_at_utc(local - first) != first) return LocalTime::never;
  // No zone changes its offset twice within a day: the other candidate is the one that holds a day later.
  const int32_t later = offset_at_utc(local - first + 86400);
  return later != first && offset_at_utc(local - later) == later ? LocalTime::twice : LocalTime::once;
}

std::vector<std::string> zone_ids(VXHost* host) {
  std::vector<std::string> ids;
  vxhostForEachZone(
      host,
      [](void* user, const char* id) {
        static_cast<std::vector<std::string>*>(user)->emplace_back(id);
        return 0;
      },
      &ids);
  return ids;
}

}  // namespace vxcli
