#include "host/zone_service.h"

#include <algorithm>
#include <cmath>

#include "host/file.h"
#include "host/text.h"

namespace vxhost {

namespace {

constexpr double furthest = 8e15;  // seconds; the civil calendar below counts its years in 64 bits

using Moment = cctz::time_point<cctz::seconds>;

constexpr VXZoneServiceOps operations = {
    [](VXZoneService* self, const VXChar* id, int64_t length, uint64_t) {
      char name[64];
      if (!ascii_name(id, length, name, sizeof name)) return static_cast<VXZone*>(nullptr);
      return guarded<VXZone*>(nullptr, [&] {
        return static_cast<ZoneService*>(self)->open({name, static_cast<size_t>(length)});
      });
    },
    [](VXZoneService*, VXZone* zone) -> VXStatus {
      ZoneService::close(zone);
      return 0;
    },
    [](VXZoneService*, VXZone* zone, int32_t direction, double seconds) -> int32_t {
      const auto moment = ZoneService::at(*zone, direction, seconds);
      return moment ? moment->offset : 0;
    },
    [](VXZoneService*, VXZone* zone, int32_t direction, double seconds, VXChar* name, int64_t* name_length,
       int32_t* offset) -> VXStatus {
      const auto moment = ZoneService::at(*zone, direction, seconds);
      if (!moment) return VX_E_RANGE;
      const std::string& id = zone->id->name;
      *name_length = std::clamp<int64_t>(*name_length, 0, static_cast<int64_t>(id.size()));
      std::copy_n(id.begin(), *name_length, name);
      *offset = moment->offset;
      return 0;
    },
};

}  // namespace

ZoneService::ZoneService(const ZoneTable& table) noexcept : VXZoneService{&operations}, table_(table) {}

VXZone* ZoneService::open(std::string_view name) const {
  const ZoneTable::Identifier* const known = table_.find(name);
  if (known == nullptr) return nullptr;
  const ZoneTable::Identifier* const id = known->canonical;
  const std::string file = table_.folder() + '/' + id->name;
  cctz::time_zone rules;
  if (!cctz::load_time_zone(file, &rules)) {
    if (id->name == "Etc/UTC") return new VXZone(cctz::utc_time_zone(), id);
    contents(file);  // throws when only memory or descriptors are wanting, now
    // cctz keeps what did not load under its name, so that what was wanting before needs another name for the file.
    if (!cctz::load_time_zone(std::string("file:") + file, &rules)) return nullptr;
  }
  return new VXZone(rules, id);
}

std::optional<ZoneMoment> ZoneService::at(const VXZone& zone, int32_t direction, double seconds) {
  if (!(std::fabs(seconds) <= furthest)) return std::nullopt;
  static constexpr cctz::civil_second epoch(1960, 1, 1);
  static constexpr int64_t epoch_in_unix_time = epoch - cctz::civil_second(1970, 1, 1);
  const auto whole = static_cast<int64_t>(std::floor(seconds));
  Moment moment{cctz::seconds(whole + epoch_in_unix_time)};
  // The earlier rules answer on both sides: `pre` is where the offset before the change puts a repeated or skipped
  // time.
  if (direction == VX_ZONE_FROM_LOCAL) {
    const Moment as_utc = moment;
    moment = zone.rules.lookup(epoch + whole).pre;
    const auto found = zone.rules.lookup(moment);
    return ZoneMoment{static_cast<int32_t>((as_utc - moment).count()), found.is_dst, found.abbr};
  }
  const auto found = zone.rules.lookup(moment);
  return ZoneMoment{found.offset, found.is_dst, found.abbr};
}

}  // namespace vxhost
