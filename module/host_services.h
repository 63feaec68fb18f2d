// The one door to the host: its operations with guards over them, so that a host that offers less never crashes a
// caller. The services of the stored kernel handle (Exported_VXHandle) may be absent; each answer says what stands in
// then.
#ifndef VXNLS_MODULE_HOST_SERVICES_H
#define VXNLS_MODULE_HOST_SERVICES_H

#include <atomic>

#include "vxnls/host.h"
#include "vxnls/locale.h"

namespace vxnls::host {

/// An ASCII text in the units that a host takes; a NUL follows its `length()` units.
template <size_t N>
struct HostText {
  VXChar text[N];
  static constexpr int64_t length() { return N - 1; }
};

template <size_t N>
constexpr HostText<N> host_text(const char (&ascii)[N]) {
  HostText<N> made{};
  for (size_t i = 0; i < N; ++i) made.text[i] = static_cast<unsigned char>(ascii[i]);
  return made;
}

/// What a cell of the host's caches holds, which another thread may be filling.
template <class T>
T* cached(T*& cell) {
  return std::atomic_ref<T*>(cell).load(std::memory_order_acquire);
}

/// Stores `made`, which may be null, while the cell is still null; gives what the cell holds then.
template <class T>
T* keep_first(T*& cell, T* made) {
  T* expected = nullptr;
  std::atomic_ref<T*>(cell).compare_exchange_strong(expected, made, std::memory_order_acq_rel);
  return expected != nullptr ? expected : made;
}

/// Loads an extension through `kernel`; null when it cannot be had, also without a handle.
template <size_t N>
VXExtension* load_extension(VXHandle* kernel, const HostText<N>& name) {
  return kernel != nullptr ? kernel->ops->load_extension(kernel, name.text, name.length(), 0) : nullptr;
}

/// The character data of the stored kernel handle; null when it is not offered.
VXCharData* characters();

/// The Unicode database "vxnlsudb", loaded on first use and kept in the character data; null when it cannot be had.
VXUnicodeDatabase* unicode_database();

/// The normaliser, made on first use and kept in the character data; null when it cannot be had.
VXNormaliser* normaliser();

/// An integer option; `preset` when it is unset or options are not offered.
int64_t integer_option(const VXChar* name, int64_t length, int64_t preset);

/// The conversion table of the stored kernel handle; null when it is not offered.
VXBDConv* conversions();

/// Lower and upper case of one code point by the host. Only with characters() not null.
uint32_t lower(VXCharData* characters, uint32_t code_point, uint32_t flag);
uint32_t upper(VXCharData* characters, uint32_t code_point, uint32_t flag);

inline constexpr int64_t longest_zone_id = 50;

/// A zone identifier; the units after `length` are blanks, or what the host left there.
struct ZoneId {
  VXChar text[longest_zone_id];
  int64_t length;  // 0 to 50, whatever the host claims
};

/// The normalised form of an identifier; gives the host's status.
VXStatus normalise_zone(HostContext* host, const VXChar* id, int64_t length, ZoneId* out);

/// The operating system's zone identifier; gives the host's status. Blanks stand where the host wrote nothing.
VXStatus system_zone(HostContext* host, ZoneId* out);

/// A zone's identifier and its offset from UTC in seconds east, at one moment.
struct ZoneState {
  VXChar name[longest_zone_id];  // blanks where the host wrote nothing
  int64_t name_length;           // 0 to 50; 0 when the host failed
  int32_t offset;                // 0 when the host failed
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
