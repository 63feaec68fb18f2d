#include "module/host_services.h"

#include <algorithm>

#include "vxnls/module.h"
#include "vxnls/table.h"

VXHandle* Exported_VXHandle = nullptr;

namespace vxnls::host {

namespace {

constexpr auto unicode_database_name = host_text("vxnlsudb");
constexpr VXZoneIdOptions zone_id_options = {16, 0, 0};
constexpr uint32_t system_zone_mode = 8;

void clear(ZoneId* id) {
  std::fill(std::begin(id->text), std::end(id->text), VXChar{' '});
  id->length = longest_zone_id;
}

}  // namespace

VXCharData* characters() { return Exported_VXHandle != nullptr ? Exported_VXHandle->characters : nullptr; }

VXUnicodeDatabase* unicode_database() {
  VXCharData* const data = characters();
  if (data == nullptr) return nullptr;
  if (VXUnicodeDatabase* const known = cached(data->database)) return known;
  VXExtension* const loaded = load_extension(Exported_VXHandle, unicode_database_name);
  if (loaded == nullptr) return nullptr;
  auto* const made = reinterpret_cast<VXUnicodeDatabase*>(loaded);
  VXUnicodeDatabase* const kept = keep_first(data->database, made);
  if (kept != made) loaded->ops->destroy(loaded);
  return kept;
}

VXNormaliser* normaliser() {
  VXCharData* const data = characters();
  if (data == nullptr) return nullptr;
  if (VXNormaliser* const known = cached(data->normaliser)) return known;
  return keep_first(data->normaliser, data->ops->create_normaliser(data));
}

int64_t integer_option(const VXChar* name, int64_t length, int64_t preset) {
  int64_t cell = preset;
  VXOptionService* const options = Exported_VXHandle != nullptr ? Exported_VXHandle->options : nullptr;
  if (options != nullptr) options->ops->read(options, name, length, VX_OPTION_INTEGER, &cell);
  return cell;
}

VXBDConv* conversions() {
  VXRuntime* const runtime = Exported_VXHandle != nullptr ? Exported_VXHandle->runtime : nullptr;
  return runtime != nullptr ? &runtime->bdconv : nullptr;
}

uint32_t lower(VXCharData* data, uint32_t code_point, uint32_t flag) {
  return data->ops->lower(data, code_point, flag);
}

uint32_t upper(VXCharData* data, uint32_t code_point, uint32_t flag) {
  return data->ops->upper(data, code_point, flag);
}

VXStatus normalise_zone(HostContext* host, const VXChar* id, int64_t length, ZoneId* out) {
  clear(out);
  uint64_t extra = 0;
  const VXStatus status = host->ops->normalise_zone(host, id, length, zone_id_options, out->text, &out->length, &extra);
  out->length = std::clamp(out->length, int64_t{0}, longest_zone_id);
  return status;
}

VXStatus system_zone(HostContext* host, ZoneId* out) {
  clear(out);
  const VXStatus status = host->ops->os_zone(host, out->text, &out->length, system_zone_mode);
  out->length = std::clamp(out->length, int64_t{0}, longest_zone_id);
  return status;
}

void describe_zone(const VXLocale* locale, double seconds, ZoneState* state) {
  std::fill(std::begin(state->name), std::end(state->name), VXChar{' '});
  state->name_length = longest_zone_id;
  state->offset = 0;
  VXZoneService* const zones = locale->host != nullptr ? locale->host->zones : nullptr;
  VXZone* const zone = current_zone(locale);
  if (zones == nullptr || zone == nullptr ||
      zones->ops->describe(zones, zone, VX_ZONE_FROM_LOCAL, seconds, state->name, &state->name_length,
                           &state->offset) != 0) {
    state->name_length = 0;
    state->offset = 0;
    return;
  }
  state->name_length = std::clamp(state->name_length, int64_t{0}, longest_zone_id);
}

int32_t zone_offset(const VXLocale* locale, VXZone* zone, int32_t direction, double seconds) {
  VXZoneService* const zones = locale->host != nullptr ? locale->host->zones : nullptr;
  if (zones == nullptr || zone == nullptr) return 0;
  return zones->ops->offset(zones, zone, direction, seconds);
}

VXZone* current_zone(const VXLocale* locale) {
  auto& cell = const_cast<VXZone*&>(locale->timeZone);  // atomic_ref wants a mutable cell; it is only read
  return std::atomic_ref<VXZone*>(cell).load(std::memory_order_relaxed);
}

void set_current_zone(VXLocale* locale, VXZone* zone) {
  std::atomic_ref<VXZone*>(locale->timeZone).store(zone, std::memory_order_relaxed);
}

}  // namespace vxnls::host
