#include "host/track.h"

namespace vxhost {

namespace {

/// The value that stands for "no callback" besides null.
const auto no_callback = reinterpret_cast<VXTrackDestroy>(uintptr_t{1});

std::string_view key_of(const void* bytes, int64_t length) {
  return {static_cast<const char*>(bytes), static_cast<size_t>(length)};
}

bool usable(const void* key, int64_t length) { return length >= 0 && (key != nullptr || length == 0); }

constexpr VXTrackOps operations = {
    [](VXTrack* self, uint32_t flags, uint64_t, const void* key, int64_t length) -> VXTrackEntry* {
      if (flags != VX_TRACK_FIND || !usable(key, length)) return nullptr;
      return guarded<VXTrackEntry*>(nullptr, [&] { return static_cast<Track*>(self)->find(key_of(key, length)); });
    },
    [](VXTrack* self, uint32_t flags, uint64_t, void* payload, uint64_t, const void* key, int64_t length,
       VXStatus* status) -> VXTrackEntry* {
      VXStatus ignored = 0;
      VXStatus& out = status != nullptr ? *status : ignored;
      out = VX_E_RANGE;
      if (flags != VX_TRACK_INSERT || !usable(key, length)) return nullptr;
      out = VX_E_MEMORY;
      return guarded<VXTrackEntry*>(
          nullptr, [&] { return static_cast<Track*>(self)->insert(key_of(key, length), payload, out); });
    },
    [](VXTrack* self, VXTrackEntry* entry) -> VXStatus { return static_cast<Track*>(self)->release(entry); },
    [](VXTrack* self, uint64_t, VXTrackDestroy callback) -> VXStatus {
      static_cast<Track*>(self)->set_destroy(callback);
      return 0;
    },
    [](VXTrack* self) -> VXStatus {
      delete static_cast<Track*>(self);
      return 0;
    },
};

}  // namespace

Track::Track() noexcept : VXTrack{&operations} {}

Track::~Track() {
  for (auto& [key, entry] : entries_) {
    if (destroy_ != nullptr) destroy_(&entry);
    count(Kind::reference, entry.references);
  }
}

VXTrackEntry* Track::find(std::string_view key) {
  const std::lock_guard guard(mutex_);
  const auto at = entries_.find(key);
  if (at == entries_.end()) return nullptr;
  ++at->second.references;
  return &at->second;
}

VXTrackEntry* Track::insert(std::string_view key, void* payload, VXStatus& status) {
  const std::lock_guard guard(mutex_);
  const auto [at, is_new] = entries_.try_emplace(std::string(key));
  if (!is_new) {
    status = VX_E_RANGE;
    return nullptr;
  }
  Entry& entry = at->second;
  entry.reserved[0] = this;
  entry.reserved[1] = nullptr;
  entry.payload = payload;
  entry.references = 1;
  status = 0;
  return &entry;
}

VXStatus Track::release(VXTrackEntry* given) noexcept {
  auto* const entry = static_cast<Entry*>(given);
  if (entry == nullptr || entry->reserved[0] != this) return VX_E_RANGE;
  const std::lock_guard guard(mutex_);
  if (entry->references == 0) return VX_E_RANGE;
  --entry->references;
  return 0;
}

void Track::set_destroy(VXTrackDestroy callback) noexcept {
  const std::lock_guard guard(mutex_);
  destroy_ = callback == no_callback ? nullptr : callback;
}

}  // namespace vxhost
