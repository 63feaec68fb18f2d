// What a host gives out, through the tables that the library calls: pools, locks, tracks, options, a context.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <thread>
#include <vector>

#include "host/context.h"
#include "host/lock.h"
#include "host/option_service.h"
#include "host/pool.h"
#include "host/track.h"

namespace {

/// Nothing is alive after a test that was not before it.
class Objects : public testing::Test {
 protected:
  ~Objects() override { EXPECT_EQ(vxhost::alive(), before) << vxhost::alive_text(); }
  const int64_t before = vxhost::alive();
};

TEST_F(Objects, PoolsGiveClearBlocksOfTheirOwn) {
  VXPool* const pool = new vxhost::Pool;
  VXPool* const other = new vxhost::Pool;
  std::vector<void*> blocks;
  for (const bool again : {false, true}) {  // the second time, memory that was used
    for (const int64_t bytes : {0, 1, 24, 1016, 49248}) {
      auto* const block = static_cast<uint8_t*>(pool->ops->allocate(pool, bytes, VX_ZERO_FILL));
      ASSERT_NE(block, nullptr);
      EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % alignof(std::max_align_t), 0u);
      EXPECT_TRUE(std::all_of(block, block + bytes, [](uint8_t b) { return b == 0; }));
      std::fill(block, block + bytes, uint8_t{0xA5});
      if (again) blocks.push_back(block);
      else EXPECT_EQ(pool->ops->free(pool, block), 0u);
    }
  }
  EXPECT_EQ(pool->ops->free(pool, blocks[2]), 0u);
  EXPECT_EQ(other->ops->free(other, blocks[1]), VX_E_RANGE);
  EXPECT_EQ(pool->ops->free(pool, nullptr), 0u);
  EXPECT_EQ(vxhost::alive(), before + 6);
  EXPECT_EQ(pool->ops->allocate(pool, -1, 0), nullptr);
  EXPECT_EQ(pool->ops->allocate(pool, INT64_MAX, 0), nullptr);
  pool->ops->destroy(pool);  // with four blocks in it
  other->ops->destroy(other);
}

TEST_F(Objects, LocksNestAndCountReleasesByStrangers) {
  auto* const made = new vxhost::Lock;
  VXLock* const lock = made;
  const int64_t strays = vxhost::stray_releases();
  lock->ops->release(lock);  // nobody holds it
  for (const int depth : {1, 2}) EXPECT_EQ(lock->ops->acquire(lock, 1, 1), 0u) << depth;
  std::thread([&] { lock->ops->release(lock); }).join();  // somebody else does
  lock->ops->release(lock);
  EXPECT_TRUE(made->held());
  EXPECT_EQ(vxhost::stray_releases(), strays + 2);
  lock->ops->destroy(lock);  // refused while it is held
  EXPECT_EQ(vxhost::alive(), before + 1);
  lock->ops->release(lock);
  EXPECT_FALSE(made->held());
  lock->ops->destroy(lock);
}

TEST_F(Objects, TracksCopyKeysAndDestroyEachEntryOnce) {
  static std::map<void*, int> destroyed;
  VXTrack* const track = new vxhost::Track;
  std::string payloads(50, ' ');
  std::string key("\0a long key of ", 15);
  VXStatus status = 77;
  const auto of = [&](char& payload) {
    key.resize(16);
    key[15] = static_cast<char>(&payload - payloads.data());
    return key.data();
  };
  for (char& payload : payloads) {
    VXTrackEntry* const made = track->ops->insert(track, VX_TRACK_INSERT, 0, &payload, 0, of(payload), 16, &status);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(track->ops->release(track, made), 0u);
  }
  EXPECT_EQ(track->ops->insert(track, VX_TRACK_INSERT, 0, nullptr, 0, of(payloads[7]), 16, &status), nullptr);
  EXPECT_EQ(status, VX_E_RANGE);  // it is there
  for (char& payload : payloads) {
    VXTrackEntry* const found = track->ops->find(track, VX_TRACK_FIND, 0, of(payload), 16);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->payload, &payload);
    EXPECT_EQ(track->ops->release(track, found), 0u);
    EXPECT_EQ(track->ops->release(track, found), VX_E_RANGE);  // once too often
  }
  for (const int64_t length : {-1, 0, 15})
    EXPECT_EQ(track->ops->find(track, VX_TRACK_FIND, 0, key.data(), length), nullptr);
  EXPECT_EQ(track->ops->find(track, VX_TRACK_FIND, 0, nullptr, 16), nullptr);
  EXPECT_EQ(track->ops->find(track, VX_TRACK_INSERT, 0, key.data(), 16), nullptr);
  EXPECT_NE(track->ops->find(track, VX_TRACK_FIND, 0, key.data(), 16), nullptr);  // and never given back
  track->ops->set_destroy(track, 0, [](VXTrackEntry* entry) -> VXStatus { return ++destroyed[entry->payload], 0; });
  track->ops->destroy(track);
  for (char& payload : payloads) EXPECT_EQ(destroyed[&payload], 1);
  EXPECT_NE(vxhost::alive_text().find("1 reference"), std::string::npos);
  vxhost::count(vxhost::Kind::reference, -1);

  VXTrack* const silent = new vxhost::Track;
  silent->ops->set_destroy(silent, 0, reinterpret_cast<VXTrackDestroy>(uintptr_t{1}));  // no callback
  silent->ops->release(silent, silent->ops->insert(silent, VX_TRACK_INSERT, 0, nullptr, 0, "", 0, &status));
  silent->ops->destroy(silent);
}

// What a call sets, what the environment presets once, and what stays untouched.
TEST_F(Objects, Options) {
  const auto read = [](VXOptionService& service, const std::string& name, uint32_t kind = VX_OPTION_INTEGER) {
    const std::vector<VXChar> wide(name.begin(), name.end());
    int64_t cell = 7;
    service.ops->read(&service, wide.data(), static_cast<int64_t>(wide.size()), kind, &cell);
    return cell;
  };
  for (const auto& [preset, wanted] : std::map<const char*, int64_t>{
           {"1920", 1920}, {"-5", -5}, {"", 7}, {"19x0", 7}, {" 1920", 7}, {"99999999999999999999", 7}}) {
    for (const char* const name : {"VX_A", "HOST_A"}) setenv(name, preset, 1);
    vxhost::OptionService service;
    EXPECT_EQ(read(service, "VX_A"), wanted) << preset;
    for (const char* const name : {"VX_A", "HOST_A"}) setenv(name, "2", 1);
    EXPECT_EQ(read(service, "VX_A"), wanted) << preset;
    EXPECT_TRUE(service.set("VX_A", 3));
    EXPECT_EQ(read(service, "VX_A"), 3);
    EXPECT_EQ(read(service, "VX_A", 2), 7);
    for (const std::string& none : {std::string(), std::string("HOST_A"), std::string("VX_a"), std::string(99, 'V')}) {
      EXPECT_FALSE(service.set(none, 1)) << none;
      EXPECT_EQ(read(service, none), 7) << none;
    }
  }
}

TEST_F(Objects, AContextSaysWhatTheLibraryLost) {
  vxhost::Services services{VXHOST_TEST_FOLDER};
  vxhost::Kernel kernel{services};
  const vxhost::ZoneTable zones{vxhost::ZoneTable::system_folder()};
  auto context = std::make_unique<vxhost::Context>(kernel, zones);
  static constexpr VXChar utc[] = {'Z', 'u', 'l', 'u'};
  VXChar out[50];
  for (int64_t room = 0, length = 0; room <= 9; length = ++room) {  // the library gives more than that
    EXPECT_EQ(context->ops->normalise_zone(context.get(), utc, 4, {16, 0, 0}, out, &length, nullptr),
              room < 7 ? VX_E_TRUNCATED : 0);
  }
  context->pool->ops->allocate(context->pool, 10, 0);
  context.reset();
  EXPECT_NE(vxhost::alive_text().find("1 block"), std::string::npos) << vxhost::alive_text();
  vxhost::count(vxhost::Kind::block, -1);  // only here: the fault was made
}

}  // namespace
