// Tracks: synchronised maps from key bytes to payloads that a destroy callback gives back.
#ifndef VXNLS_HOST_TRACK_H
#define VXNLS_HOST_TRACK_H

#include <cstdint>
#include <mutex>
#include <string_view>

#include "host/accounting.h"
#include "host/text_map.h"
#include "vxnls/host.h"

namespace vxhost {

/// An entry is referenced by every find and insert until its release. It lives as long as its track; when the track is
/// destroyed, the callback sees each entry once. A reference that was not released until then is counted as alive for
/// good, because whoever holds it holds a dangling pointer.
class Track final : public VXTrack, Counted<Kind::track> {
 public:
  Track() noexcept;
  ~Track();

  VXTrackEntry* find(std::string_view key);
  /// Null with VX_E_RANGE when the key is there already.
  VXTrackEntry* insert(std::string_view key, void* payload, VXStatus& status);
  VXStatus release(VXTrackEntry* entry) noexcept;
  void set_destroy(VXTrackDestroy callback) noexcept;

 private:
  struct Entry final : VXTrackEntry, Counted<Kind::entry> {
    int64_t references = 0;
  };

  std::mutex mutex_;
  TextMap<Entry> entries_;
  VXTrackDestroy destroy_ = nullptr;
};

}  // namespace vxhost

#endif
