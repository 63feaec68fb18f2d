#include "module/host_services.h"

#include <atomic>

#include "vxnls/module.h"
#include "vxnls/table.h"

extern "C" VXHandle* Exported_VXHandle;
VXHandle* Exported_VXHandle = nullptr;

namespace vxnls::host {

namespace {

template <class T>
T* cached(T*& cell) {
  return std::atomic_ref<T*>(cell).load(std::memory_order_acquire);
}

/// Stores `made` while the cell is still null; gives what the cell holds then.
template <class T>
T* keep_first(T*& cell, T* made) {
  T* expected = nullptr;
  std::atomic_ref<T*>(cell).compare_exchange_strong(expected, made, std::memory_order_acq_rel);
  return expected != nullptr ? expected : made;
}

}  // namespace

VXCharData* characters() {
  return Exported_VXHandle != nullptr ? Exported_VXHandle->characters : nullptr;
}

VXUnicodeDatabase* unicode_database() {
  VXCharData* const data = characters();
  if (data == nullptr) return nullptr;
  if (VXUnicodeDatabase* const known = cached(data->database)) return known;
  const VXHandleOps* const ops = Exported_VXHandle->ops;
  if (ops == nullptr || ops->load_extension == nullptr) return nullptr;
  static constexpr VXChar name[] = {'v', 'x', 'n', 'l', 's', 'u', 'd', 'b'};
  VXExtension* const loaded = ops->load_extension(Exported_VXHandle, name, 8, 0);
  if (loaded == nullptr) return nullptr;
  auto* const made = reinterpret_cast<VXUnicodeDatabase*>(loaded);
  VXUnicodeDatabase* const kept = keep_first(data->database, made);
  if (kept != made) loaded->ops->destroy(loaded);
  return kept;
}

VXNormaliser* normaliser() {
  VXCharData* const data = characters();
  if (data == nullptr || data->ops == nullptr || data->ops->create_normaliser == nullptr) return nullptr;
  if (VXNormaliser* const known = cached(data->normaliser)) return known;
  VXNormaliser* const made = data->ops->create_normaliser(data);
  return made != nullptr ? keep_first(data->normaliser, made) : nullptr;
}

int64_t integer_option(const VXChar* name, int64_t length, int64_t preset) {
  int64_t cell = preset;
  VXOptionService* const options = Exported_VXHandle != nullptr ? Exported_VXHandle->options : nullptr;
  if (options != nullptr) options->ops->read(options, name, length, VX_OPTION_INTEGER, &cell);
  return cell;
}

uint32_t lower(VXCharData* data, uint32_t code_point, uint32_t flag) {
  return data->ops->lower(data, code_point, flag);
}

uint32_t upper(VXCharData* data, uint32_t code_point, uint32_t flag) {
  return data->ops->upper(data, code_point, flag);
}

void describe_zone(const VXLocale* locale, double seconds, ZoneState* state) {
  state->name_length = 50;
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
  if (state->name_length < 0) state->name_length = 0;
  if (state->name_length > 50) state->name_length = 50;
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
