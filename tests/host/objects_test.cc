// Pools, locks and tracks, through the tables that the library calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>
#include <thread>
#include <vector>

#include "host/accounting.h"
#include "host/lock.h"
#include "host/logger_service.h"
#include "host/pool.h"
#include "host/track.h"

namespace {

TEST(Pool, GivesBlocksThatAreItsOwn) {
  const int64_t before = vxhost::alive();
  VXPool* const pool = new vxhost::Pool;
  VXPool* const other = new vxhost::Pool;
  std::vector<void*> blocks;
  for (const int64_t bytes : {int64_t{24}, int64_t{1016}, int64_t{49248}}) {  // memory that was used before
    void* const dirty = pool->ops->allocate(pool, bytes, 0);
    std::fill_n(static_cast<uint8_t*>(dirty), bytes, uint8_t{0x5A});
    pool->ops->free(pool, dirty);
  }
  for (const int64_t bytes : {int64_t{0}, int64_t{1}, int64_t{24}, int64_t{1016}, int64_t{49248}}) {
    auto* const block = static_cast<uint8_t*>(pool->ops->allocate(pool, bytes, VX_ZERO_FILL));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % alignof(std::max_align_t), 0u);
    EXPECT_TRUE(std::all_of(block, block + bytes, [](uint8_t b) { return b == 0; }));
    std::fill(block, block + bytes, uint8_t{0xA5});
    blocks.push_back(block);
  }
  EXPECT_EQ(vxhost::alive(), before + 7);
  EXPECT_EQ(pool->ops->free(pool, blocks[2]), 0u);
  EXPECT_EQ(other->ops->free(other, blocks[1]), VX_E_RANGE);
  EXPECT_EQ(vxhost::alive(), before + 6);
  EXPECT_EQ(pool->ops->allocate(pool, -1, 0), nullptr);
  EXPECT_EQ(pool->ops->allocate(pool, INT64_MAX, 0), nullptr);
  EXPECT_EQ(pool->ops->free(pool, nullptr), 0u);
  pool->ops->destroy(pool);  // with four blocks in it
  other->ops->destroy(other);
  EXPECT_EQ(vxhost::alive(), before);
}

TEST(Lock, ExcludesAndNests) {
  VXLock* const lock = new vxhost::Lock;
  int64_t sum = 0;  // guarded by the lock alone
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 20000; ++i) {
        lock->ops->acquire(lock, 1, 1);
        lock->ops->acquire(lock, 1, 1);
        ++sum;
        lock->ops->release(lock);
        ++sum;
        lock->ops->release(lock);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(sum, 160000);

  lock->ops->acquire(lock, 1, 1);
  lock->ops->acquire(lock, 1, 1);
  lock->ops->release(lock);
  EXPECT_TRUE(static_cast<vxhost::Lock*>(lock)->held());
  lock->ops->release(lock);
  EXPECT_FALSE(static_cast<vxhost::Lock*>(lock)->held());
  lock->ops->destroy(lock);
}

TEST(Lock, CountsAReleaseByAStrangerAndDoesNothing) {
  VXLock* const lock = new vxhost::Lock;
  const int64_t strays = vxhost::stray_releases();
  lock->ops->release(lock);  // nobody holds it
  EXPECT_EQ(vxhost::stray_releases(), strays + 1);
  lock->ops->acquire(lock, 1, 1);
  std::thread([&] { lock->ops->release(lock); }).join();  // somebody else does
  EXPECT_EQ(vxhost::stray_releases(), strays + 2);
  EXPECT_TRUE(static_cast<vxhost::Lock*>(lock)->held());

  const int64_t alive = vxhost::alive();
  lock->ops->destroy(lock);  // refused while it is held
  EXPECT_EQ(vxhost::alive(), alive);
  lock->ops->release(lock);
  lock->ops->destroy(lock);
  EXPECT_EQ(vxhost::alive(), alive - 1);
}

std::multiset<void*> destroyed;
VXStatus remember(VXTrackEntry* entry) {
  destroyed.insert(entry->payload);
  return 0;
}

TEST(Track, CopiesKeysAndDestroysEachEntryOnce) {
  const int64_t before = vxhost::alive();
  VXTrack* const track = new vxhost::Track;
  track->ops->set_destroy(track, 0, remember);
  std::array<int, 50> payloads{};
  std::string key = "\0key of ";
  for (size_t i = 0; i < payloads.size(); ++i) {
    const std::string own = key + static_cast<char>(i);
    std::vector<char> given(own.begin(), own.end());
    VXStatus status = 77;
    VXTrackEntry* const entry = track->ops->insert(track, VX_TRACK_INSERT, 0, &payloads[i], 0, given.data(),
                                                   static_cast<int64_t>(given.size()), &status);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(entry->payload, &payloads[i]);
    std::fill(given.begin(), given.end(), 'x');
    track->ops->release(track, entry);
  }
  for (size_t i = 0; i < payloads.size(); ++i) {
    const std::string own = key + static_cast<char>(i);
    VXTrackEntry* const entry = track->ops->find(track, VX_TRACK_FIND, 0, own.data(), static_cast<int64_t>(own.size()));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->payload, &payloads[i]);
    EXPECT_EQ(track->ops->release(track, entry), 0u);
    EXPECT_EQ(track->ops->release(track, entry), VX_E_RANGE);  // once too often
  }
  EXPECT_EQ(track->ops->find(track, VX_TRACK_FIND, 0, "other", 5), nullptr);
  EXPECT_EQ(track->ops->find(track, VX_TRACK_FIND, 0, nullptr, 3), nullptr);
  EXPECT_EQ(track->ops->find(track, VX_TRACK_FIND, 0, "key", -1), nullptr);
  EXPECT_EQ(track->ops->find(track, VX_TRACK_INSERT, 0, "key", 3), nullptr);

  destroyed.clear();
  track->ops->destroy(track);
  EXPECT_EQ(destroyed.size(), payloads.size());
  for (int& payload : payloads) EXPECT_EQ(destroyed.count(&payload), 1u);
  EXPECT_EQ(vxhost::alive(), before);
}

TEST(Track, RefusesAKeyThatIsThere) {
  VXTrack* const track = new vxhost::Track;
  VXStatus status = 0;
  int payload = 0;
  VXTrackEntry* const first = track->ops->insert(track, VX_TRACK_INSERT, 0, &payload, 0, "", 0, &status);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(track->ops->insert(track, VX_TRACK_INSERT, 0, nullptr, 0, "", 0, &status), nullptr);
  EXPECT_EQ(status, VX_E_RANGE);
  EXPECT_EQ(first->payload, &payload);
  track->ops->release(track, first);
  track->ops->destroy(track);
}

TEST(Track, TheValueOneIsNoCallback) {
  VXTrack* const track = new vxhost::Track;
  track->ops->set_destroy(track, 0, reinterpret_cast<VXTrackDestroy>(uintptr_t{1}));
  VXStatus status = 0;
  track->ops->release(track, track->ops->insert(track, VX_TRACK_INSERT, 0, nullptr, 0, "k", 1, &status));
  track->ops->destroy(track);
}

TEST(Track, KeepsCountOfAReferenceThatWasNotReleased) {
  const int64_t before = vxhost::alive();
  VXTrack* const track = new vxhost::Track;
  VXStatus status = 0;
  track->ops->insert(track, VX_TRACK_INSERT, 0, nullptr, 0, "k", 1, &status);
  track->ops->destroy(track);
  EXPECT_EQ(vxhost::alive(), before + 1);
  EXPECT_NE(vxhost::alive_text().find("reference"), std::string::npos);
  vxhost::count(vxhost::Kind::reference, -1);
}

TEST(Track, OneOfManyThreadsInserts) {
  VXTrack* const track = new vxhost::Track;
  std::atomic<int> inserted{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 500; ++i) {
        VXStatus status = 0;
        VXTrackEntry* entry = track->ops->find(track, VX_TRACK_FIND, 0, &i, sizeof i);
        if (entry == nullptr) {
          entry = track->ops->insert(track, VX_TRACK_INSERT, 0, nullptr, 0, &i, sizeof i, &status);
          if (entry != nullptr) ++inserted;
        }
        if (entry != nullptr) track->ops->release(track, entry);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(inserted.load(), 500);
  track->ops->destroy(track);
}

TEST(LoggerService, FindsWhatItMade) {
  vxhost::LoggerService made;
  VXLoggerService* const service = &made;
  static constexpr VXChar name[] = {'A', 'p', 'p', '.', 'N', 'L', 'S'};
  EXPECT_EQ(service->ops->find(service, name, 7), nullptr);
  VXLogger* const logger = service->ops->create(service, name, 7);
  ASSERT_NE(logger, nullptr);
  EXPECT_EQ(service->ops->find(service, name, 7), logger);
  EXPECT_EQ(service->ops->create(service, name, 7), logger);
  EXPECT_EQ(service->ops->find(service, name, 6), nullptr);
}

}  // namespace
