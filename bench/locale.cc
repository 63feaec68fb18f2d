// Locales found again and made. The host of these rows answers at once, so that what is seen is the library's own part;
// one row shows the reference host beside it.
#include <locale.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string>

#include "bench/common.h"

namespace {

using namespace vxbench;

template <size_t size>
constexpr std::array<VXChar, size - 1> units(const char32_t (&text)[size]) {
  std::array<VXChar, size - 1> all{};
  for (size_t i = 0; i < all.size(); ++i) all[i] = text[i];
  return all;
}
constexpr auto zone_name = units(U"Europe/Berlin");
constexpr auto locale_name = units(U"de_DE");

int zone_in_place;
VXZone* const any_zone = reinterpret_cast<VXZone*>(&zone_in_place);  // the library only hands it on

/// A track of one entry at most.
struct Track : VXTrack {
  VXTrackEntry entry{};
  std::string key;
  VXTrackDestroy on_destroy = nullptr;
};

constexpr VXPoolOps pool_ops = {
    .allocate = [](VXPool*, int64_t bytes, uint32_t flags) -> void* {
      const auto size = static_cast<size_t>(bytes);
      return (flags & VX_ZERO_FILL) != 0 ? std::calloc(1, size) : std::malloc(size);
    },
    .free = [](VXPool*, void* block) -> VXStatus {
      std::free(block);
      return 0;
    },
    .destroy = [](VXPool*) -> VXStatus { return 0; },
};
constexpr VXLockOps lock_ops = {
    .acquire = [](VXLock*, uint32_t, uint32_t) -> VXStatus { return 0; },
    .release = [](VXLock*) -> VXStatus { return 0; },
    .destroy = [](VXLock*) -> VXStatus { return 0; },
};
VXPool pool{&pool_ops};
VXLock still_lock{&lock_ops};

constexpr VXTrackOps track_ops = {
    .find = [](VXTrack* self, uint32_t, uint64_t, const void* key, int64_t bytes) -> VXTrackEntry* {
      auto* const track = static_cast<Track*>(self);
      const auto size = static_cast<size_t>(bytes);
      const bool same = track->key.size() == size && std::memcmp(track->key.data(), key, size) == 0;
      return same && track->entry.payload != nullptr ? &track->entry : nullptr;
    },
    .insert = [](VXTrack* self, uint32_t, uint64_t, void* payload, uint64_t, const void* key, int64_t bytes,
                 VXStatus* status) -> VXTrackEntry* {
      auto* const track = static_cast<Track*>(self);
      track->key.assign(static_cast<const char*>(key), static_cast<size_t>(bytes));
      track->entry.payload = payload;
      *status = 0;
      return &track->entry;
    },
    .release = [](VXTrack*, VXTrackEntry*) -> VXStatus { return 0; },
    .set_destroy = [](VXTrack* self, uint64_t, VXTrackDestroy callback) -> VXStatus {
      static_cast<Track*>(self)->on_destroy = callback;
      return 0;
    },
    .destroy = [](VXTrack* self) -> VXStatus {
      auto* const track = static_cast<Track*>(self);
      if (track->entry.payload != nullptr) track->on_destroy(&track->entry);
      delete track;
      return 0;
    },
};

constexpr VXExtensionOps message_ops = {.destroy = [](VXExtension*) -> VXStatus { return 0; }};
VXExtension messages{&message_ops};
constexpr VXLocaleDatabaseOps database_ops = {
    .destroy = [](VXExtension*) -> VXStatus { return 0; },
    .fill = [](VXLocaleDatabase*, VXLocaleData*, const VXChar*, int64_t) -> VXStatus { return 0; },
};
VXLocaleDatabase database{&database_ops};

constexpr VXHandleOps handle_ops = {
    .create_pool = [](VXHandle*, const VXPoolAttributes*, VXJournal*, const char*) { return &pool; },
    .create_lock = [](VXHandle*, const VXLockAttributes*, VXJournal*, const char*) { return &still_lock; },
    .create_track = [](VXHandle*, const VXTrackAttributes*, VXJournal*, const char*) -> VXTrack* {
      auto* const track = new Track;
      track->ops = &track_ops;
      return track;
    },
    .create_journal = [](VXHandle*, const VXJournalAttributes*, uint64_t, const char*) -> VXJournal* {
      return nullptr;
    },
    .load_extension = [](VXHandle*, const VXChar*, int64_t, uint64_t) { return &messages; },
};
VXHandle kernel{&handle_ops, nullptr, nullptr, nullptr, nullptr};

constexpr VXZoneServiceOps zone_ops = {
    .open = [](VXZoneService*, const VXChar*, int64_t, uint64_t) { return any_zone; },
    .close = [](VXZoneService*, VXZone*) -> VXStatus { return 0; },
    .offset = [](VXZoneService*, VXZone*, int32_t, double) -> int32_t { return 0; },
    .describe = [](VXZoneService*, VXZone*, int32_t, double, VXChar*, int64_t*, int32_t*) -> VXStatus { return 1; },
};
VXZoneService zones{&zone_ops};

constexpr VXLocaleRecord record{locale_name.data(), locale_name.size()};

constexpr HostContextOps context_ops = {
    .lookup_locale = [](HostContext*, const VXChar*, int64_t, uint32_t, const VXLocaleRecord** found) -> VXStatus {
      *found = &record;
      return 0;
    },
    .normalise_zone = [](HostContext*, const VXChar* id, int64_t units, VXZoneIdOptions, VXChar* out,
                         int64_t* out_length, uint64_t*) -> VXStatus {
      std::copy_n(id, units, out);
      *out_length = units;
      return 0;
    },
    .os_zone = [](HostContext*, VXChar*, int64_t*, uint32_t) -> VXStatus { return 1; },
};

VXLocale* create(HostContext* host) {
  const LocaleCreateOptions options{0, {}, zone_name.data(), zone_name.size()};
  VXStatus status = 0;
  return NLSLocaleCreate(host, locale_name.data(), locale_name.size(), &status, &options);
}

}  // namespace

int main(int argc, char** argv) {
  static Track cache;
  cache.ops = &track_ops;
  static HostContext shared{&context_ops, &kernel, &pool, &cache, &database, &still_lock, nullptr, nullptr, &zones};
  static HostContext unshared = shared;
  unshared.localeCache = nullptr;
  vxbench::locale("de_DE", "Europe/Berlin");
  HostContext* const reference = host_context();
  Exported_VXHandle = &kernel;
  VXLocale* const first = create(&shared);
  require(first != nullptr && create(&shared) == first, "no locale is found again");
  const locale_t c_locale = newlocale(LC_ALL_MASK, "C.UTF-8", nullptr);
  require(c_locale != nullptr, "the system has no locale C.UTF-8");

  Row("locale-found", "a locale found again", {.reach = 1.0})
      .ours([](size_t) { return create(&shared); })
      .peer("glibc duplocale, freelocale", [=](size_t) { freelocale(duplocale(c_locale)); });
  Row("locale-found-reference", "the same through the reference host", {})
      .ours([=](size_t) { return create(reference); })
      .peer("glibc duplocale, freelocale", [=](size_t) { freelocale(duplocale(c_locale)); });
  Row("locale-made", "a locale made and given back, the library's part", {.reach = 0.4})
      .ours([](size_t) {
        VXTrackEntry entry{{}, create(&unshared)};
        return NLSLocaleDestroyCallback(&entry);
      })
      .peer("glibc newlocale, freelocale", [](size_t) { freelocale(newlocale(LC_ALL_MASK, "C.UTF-8", nullptr)); });
  return vxbench::run("Locales", argc, argv);
}
