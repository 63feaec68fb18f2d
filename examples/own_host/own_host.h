// A host of one's own in 200 lines: no ICU, no libvxhost. Locale data and zones come from a text file, which
// locale_file.h reads. Any number of threads may use it; being out of memory ends the program. docs/writing-a-host.md
// tells what is called when.
#ifndef OWN_HOST_H
#define OWN_HOST_H

#include <atomic>
#include <cstring>
#include <map>
#include <memory_resource>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include "locale_file.h"
#include "vxnls/vxnls.h"

namespace own {

/// No exception may leave an operation: what fails is null.
template <class Do>
auto guarded(Do act) noexcept -> decltype(act()) try {
  return act();
} catch (...) {
  return {};
}

/// Memory comes back all at once, with its pool.
struct Pool : VXPool {
  std::mutex guard;
  std::pmr::monotonic_buffer_resource memory;
  static void* allocate(VXPool* self, int64_t bytes, uint32_t flags) {
    auto* const pool = static_cast<Pool*>(self);
    const std::lock_guard lock(pool->guard);
    void* const block = guarded([&] { return pool->memory.allocate(static_cast<size_t>(bytes)); });
    return block != nullptr && (flags & VX_ZERO_FILL) != 0 ? std::memset(block, 0, static_cast<size_t>(bytes)) : block;
  }
  static VXStatus free(VXPool*, void*) { return 0; }
  static VXStatus destroy(VXPool* self) { return delete static_cast<Pool*>(self), 0; }
  static constexpr VXPoolOps operations = {allocate, free, destroy};
};

struct Lock : VXLock {
  std::mutex mutex;
  std::atomic<std::thread::id> holder;
  static VXStatus acquire(VXLock* self, uint32_t, uint32_t) {
    static_cast<Lock*>(self)->mutex.lock();
    return static_cast<Lock*>(self)->holder = std::this_thread::get_id(), 0;
  }
  static VXStatus release(VXLock* self) {
    auto* const lock = static_cast<Lock*>(self);
    if (lock->holder != std::this_thread::get_id()) return 0;  // a release that no acquire preceded
    return lock->holder = std::thread::id(), lock->mutex.unlock(), 0;
  }
  static VXStatus destroy(VXLock* self) { return delete static_cast<Lock*>(self), 0; }
  static constexpr VXLockOps operations = {acquire, release, destroy};
};

struct Track : VXTrack {
  std::mutex guard;
  std::map<std::string, VXTrackEntry, std::less<>> entries;
  VXTrackDestroy callback = nullptr;
  static std::string_view bytes(const void* key, int64_t count) {
    return {static_cast<const char*>(key), static_cast<size_t>(count)};
  }
  static VXTrackEntry* find(VXTrack* self, uint32_t, uint64_t, const void* key, int64_t count) {
    const std::lock_guard held(static_cast<Track*>(self)->guard);
    const auto found = static_cast<Track*>(self)->entries.find(bytes(key, count));
    return found == static_cast<Track*>(self)->entries.end() ? nullptr : &found->second;
  }
  static VXTrackEntry* insert(VXTrack* self, uint32_t, uint64_t, void* payload, uint64_t, const void* key,
                              int64_t count, VXStatus* status) {
    VXTrackEntry* const made = guarded([&]() -> VXTrackEntry* {
      const std::lock_guard held(static_cast<Track*>(self)->guard);
      auto& entries = static_cast<Track*>(self)->entries;
      const auto [at, added] = entries.try_emplace(std::string(bytes(key, count)), VXTrackEntry{{}, payload});
      return added ? &at->second : nullptr;
    });
    return *status = made != nullptr ? 0 : VX_E_MEMORY, made;
  }
  static VXStatus release(VXTrack*, VXTrackEntry*) { return 0; }
  static VXStatus set_destroy(VXTrack* self, uint64_t, VXTrackDestroy callback) {
    return static_cast<Track*>(self)->callback = reinterpret_cast<uintptr_t>(callback) == 1 ? nullptr : callback, 0;
  }
  static VXStatus destroy(VXTrack* self) {
    for (auto& [key, entry] : static_cast<Track*>(self)->entries) {
      if (static_cast<Track*>(self)->callback != nullptr) static_cast<Track*>(self)->callback(&entry);
    }
    return delete static_cast<Track*>(self), 0;
  }
  static constexpr VXTrackOps operations = {find, insert, release, set_destroy, destroy};
};

template <class Made>
Made* make() {
  Made* const made = new (std::nothrow) Made;
  if (made != nullptr) made->ops = &Made::operations;
  return made;
}

/// Kernel, extensions, zones and context in one object; one at a time in a process.
class Host : public HostContext {
 public:
  explicit Host(const std::string& file)
      : HostContext{&context_operations, &kernel_, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &zones_},
        data_(file) {
    pool = make<Pool>(), creationLock = make<Lock>();
    int64_t major = 0, minor = 0;
    host = this;
    vxextver(kernel, &major, &minor);
    module_ = vxnlsloc(kernel, nullptr);
    if (module_ != nullptr && pool != nullptr && creationLock != nullptr) first_ = locale("", "", 1);
    if (first_ != nullptr) localeCache = NLSLocaleCreateTheDupTrack(first_);
    if (localeCache == nullptr) throw std::runtime_error("the host could not be made");
  }
  Host(const Host&) = delete;
  ~Host() {
    VXTrackEntry entry{{}, first_};
    localeCache->ops->destroy(localeCache), module_->localeDestroyCallback(&entry), module_->realDestroy(module_);
    creationLock->ops->destroy(creationLock), pool->ops->destroy(pool), vxextent(nullptr);
  }
  /// Null when there is no such zone; "" is the first one of the file. `flags` 1: a private locale.
  VXLocale* locale(std::string_view name, std::string_view zone, uint8_t flags = 0) {
    const Text of = decoded(name), in = decoded(zone);
    const LocaleCreateOptions options{flags, {}, in.data(), static_cast<int64_t>(in.size())};
    return module_->localeCreate(this, of.data(), static_cast<int64_t>(of.size()), nullptr, &options);
  }

 private:
  using Zone = std::pair<const Text, int32_t>;
  static inline Host* host = nullptr;
  /// The locale itself; or one of its language, or the first of the file, which stand in for it.
  static VXStatus lookup(HostContext*, const VXChar* name, int64_t length, uint32_t,
                         const VXLocaleRecord** record) noexcept {
    const auto& all = host->data_.locales;
    const Text wanted = text_of(name, length);
    auto found = all.lower_bound(wanted.substr(0, 2));
    if (all.contains(wanted)) found = all.find(wanted);
    else if (found == all.end() || found->first.substr(0, 2) != wanted.substr(0, 2)) found = all.begin();
    host->found_ = {found->first.data(), static_cast<int64_t>(found->first.size())};
    return *record = &host->found_, found->first == wanted ? 0 : VX_W_SUBSTITUTE;
  }
  static VXStatus zone_name(const Zone& zone, VXChar* out, int64_t* length) {
    return *length = static_cast<int64_t>(zone.first.copy(out, 50)), 0;
  }
  static VXStatus normalise(HostContext*, const VXChar* id, int64_t length, VXZoneIdOptions, VXChar* out,
                            int64_t* out_length, uint64_t*) noexcept {
    const auto found = host->data_.zones.find(text_of(id, length));
    return found == host->data_.zones.end() ? VX_E_ZONE : zone_name(*found, out, out_length);
  }
  static VXStatus os_zone(HostContext*, VXChar* out, int64_t* length, uint32_t) {
    return zone_name(*host->data_.zones.begin(), out, length);
  }
  static VXZone* open(VXZoneService*, const VXChar* id, int64_t length, uint64_t) noexcept {
    return reinterpret_cast<VXZone*>(&*host->data_.zones.find(text_of(id, length)));
  }
  static VXStatus close(VXZoneService*, VXZone*) { return 0; }
  static int32_t offset(VXZoneService*, VXZone* zone, int32_t, double) { return reinterpret_cast<Zone*>(zone)->second; }
  static VXStatus describe(VXZoneService*, VXZone* zone, int32_t, double, VXChar* name, int64_t* length,
                           int32_t* east) {
    return *east = reinterpret_cast<Zone*>(zone)->second, zone_name(*reinterpret_cast<Zone*>(zone), name, length);
  }
  static VXStatus keep(VXExtension*) { return 0; }
  static VXStatus fill(VXLocaleDatabase*, VXLocaleData* data, const VXChar* name, int64_t length) noexcept {
    const NLSName kept = data->localeName;
    *data = host->data_.locales.at(text_of(name, length));
    return data->localeName = kept, 0;
  }
  static VXPool* pool_of(VXHandle*, const VXPoolAttributes*, VXJournal*, const char*) { return make<Pool>(); }
  static VXLock* lock_of(VXHandle*, const VXLockAttributes*, VXJournal*, const char*) { return make<Lock>(); }
  static VXTrack* track_of(VXHandle*, const VXTrackAttributes*, VXJournal*, const char*) { return make<Track>(); }
  static VXJournal* journal_of(VXHandle*, const VXJournalAttributes*, uint64_t, const char*) { return nullptr; }
  static VXExtension* load(VXHandle*, const VXChar* name, int64_t length, uint64_t) {
    if (length == 6) return &host->messages_;                                            // "vxemsg"
    return name[5] == 'l' ? reinterpret_cast<VXExtension*>(&host->database_) : nullptr;  // "vxnlsldb", no "vxnlsudb"
  }
  static constexpr HostContextOps context_operations = {lookup, normalise, os_zone};
  static constexpr VXZoneServiceOps zone_operations = {open, close, offset, describe};
  static constexpr VXExtensionOps message_operations = {keep};
  static constexpr VXLocaleDatabaseOps database_operations = {keep, fill};
  static constexpr VXHandleOps kernel_operations = {pool_of, lock_of, track_of, journal_of, load};

  Data data_;
  VXHandle kernel_{&kernel_operations, nullptr, nullptr, nullptr, nullptr};
  VXZoneService zones_{&zone_operations};
  VXExtension messages_{&message_operations};
  VXLocaleDatabase database_{&database_operations};
  VXLocaleRecord found_{};
  NLSModule* module_ = nullptr;
  VXLocale* first_ = nullptr;
};

}  // namespace own

#endif
