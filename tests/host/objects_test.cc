// What a host gives out, through the tables that the library calls: where they refuse, and what they count. Case,
// classes and normalisation of every character as the library gives them are held against ICU and the consortium's
// files by tests/utf8/host_case_test.cc.
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "host/character_data.h"
#include "host/context.h"
#include "host/extension_loader.h"
#include "host/lock.h"
#include "host/normaliser.h"
#include "host/option_service.h"
#include "host/pool.h"
#include "host/track.h"
#include "host/unicode_database_ops.h"

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
  for (const int64_t bytes : {0, 1, 1016, 49248, 0, 1, 1016, 49248}) {  // the second time, memory that was used
    auto* const block = static_cast<uint8_t*>(pool->ops->allocate(pool, bytes, VX_ZERO_FILL));
    ASSERT_TRUE(block != nullptr && reinterpret_cast<uintptr_t>(block) % alignof(std::max_align_t) == 0);
    EXPECT_EQ(std::count(block, block + bytes, 0), bytes);
    std::fill(block, block + bytes, uint8_t{0xA5});
    EXPECT_EQ(other->ops->free(other, block), VX_E_RANGE);
    EXPECT_EQ(vxhost::alive(), before + 3);
    EXPECT_EQ(pool->ops->free(pool, block), 0u);
  }
  EXPECT_EQ(pool->ops->free(pool, nullptr), 0u);
  for (const int64_t bytes : {INT64_C(-1), INT64_MAX}) EXPECT_EQ(pool->ops->allocate(pool, bytes, 0), nullptr);
  for (const int64_t bytes : {1, 1016}) EXPECT_NE(pool->ops->allocate(pool, bytes, 0), nullptr);  // go with the pool
  pool->ops->destroy(pool);
  other->ops->destroy(other);
}

TEST_F(Objects, LocksNestAndCountReleasesByStrangers) {
  VXLock* const lock = new vxhost::Lock;
  const int64_t strays = vxhost::stray_releases();
  lock->ops->release(lock);  // nobody holds it
  for (const int depth : {1, 2}) EXPECT_EQ(lock->ops->acquire(lock, 1, 1), 0u) << depth;
  std::thread([&] { lock->ops->release(lock); }).join();  // somebody else does
  lock->ops->release(lock);
  EXPECT_EQ(vxhost::stray_releases(), strays + 2);
  EXPECT_EQ(lock->ops->destroy(lock), VX_E_RANGE);  // it is still held
  EXPECT_EQ(vxhost::alive(), before + 1);
  lock->ops->release(lock);
  EXPECT_EQ(lock->ops->destroy(lock), 0u);
}

TEST_F(Objects, TracksRefuse) {
  static int destroyed;
  for (const bool told : {true, false}) {
    VXTrack* const track = new vxhost::Track;
    track->ops->set_destroy(track, 0, [](VXTrackEntry*) -> VXStatus { return ++destroyed, 0; });
    if (!told) track->ops->set_destroy(track, 0, reinterpret_cast<VXTrackDestroy>(uintptr_t{1}));  // no callback
    VXStatus status = 77;
    std::string key("\0 key", 5);
    VXTrackEntry* const entry = track->ops->insert(track, VX_TRACK_INSERT, 0, &key, 0, key.data(), 5, &status);
    EXPECT_EQ(track->ops->insert(track, VX_TRACK_INSERT, 0, nullptr, 0, key.data(), 5, &status), nullptr);
    EXPECT_EQ(status, VX_E_RANGE);  // it is there
    EXPECT_EQ(track->ops->find(track, VX_TRACK_FIND, 0, std::string(key).data(), 5), entry);
    key[4] = 'x';
    for (const int64_t length : {-1, 0, 4, 5}) {
      EXPECT_EQ(track->ops->find(track, VX_TRACK_FIND, 0, key.data(), length), nullptr) << length;
    }
    EXPECT_EQ(track->ops->find(track, VX_TRACK_FIND, 0, nullptr, 5), nullptr);
    EXPECT_EQ(track->ops->find(track, VX_TRACK_INSERT, 0, "\0 key", 5), nullptr);
    for (const VXStatus wanted : {0u, 0u, VX_E_RANGE}) EXPECT_EQ(track->ops->release(track, entry), wanted);
    track->ops->find(track, VX_TRACK_FIND, 0, "\0 key", 5);  // and never given back
    track->ops->destroy(track);
    EXPECT_EQ(destroyed, 1);
    EXPECT_NE(vxhost::alive_text().find("1 reference"), std::string::npos);
    vxhost::count(vxhost::Kind::reference, -1);
  }
}

TEST_F(Objects, TracksAndPoolsServeThreads) {
  VXPool* const pool = new vxhost::Pool;
  VXTrack* const track = new vxhost::Track;
  std::atomic<int> inserted{0};
  const auto work = [&] {
    for (int i = 0; i < 100000; ++i) {
      pool->ops->free(pool, pool->ops->allocate(pool, i % 100, 0));
      VXStatus status = 0;
      VXTrackEntry* entry = track->ops->insert(track, VX_TRACK_INSERT, 0, nullptr, 0, &i, sizeof i, &status);
      if (entry != nullptr) ++inserted;
      else entry = track->ops->find(track, VX_TRACK_FIND, 0, &i, sizeof i);
      EXPECT_EQ(track->ops->release(track, entry), 0u);
    }
  };
  std::vector<std::jthread> threads;
  for (int t = 0; t < 8; ++t) threads.emplace_back(work);
  threads.clear();
  EXPECT_EQ(inserted, 100000);
  pool->ops->destroy(pool);
  track->ops->destroy(track);
}

// What a call sets, what the environment presets once, and what stays untouched.
TEST_F(Objects, Options) {
  static constexpr std::pair<const char*, int64_t> presets[] = {
      {"-1920", -1920}, {"", 7}, {"19x0", 7}, {" 1920", 7}, {"99999999999999999999", 7}};
  for (const auto& [preset, wanted] : presets) {
    vxhost::OptionService service;
    const auto read = [&](const std::string& name, uint32_t kind = VX_OPTION_INTEGER) {
      const std::vector<VXChar> wide(name.begin(), name.end());
      int64_t cell = 7;
      service.ops->read(&service, wide.data(), static_cast<int64_t>(wide.size()), kind, &cell);
      return cell;
    };
    for (const std::string none : {"", "HOST_A", "VX_a"}) {
      setenv(none.empty() ? "VX_A" : none.c_str(), preset, 1);
      EXPECT_TRUE(!service.set(none, 1) && read(none) == 7) << none;
    }
    EXPECT_EQ(read("VX_A"), wanted) << preset;
    setenv("VX_A", "2", 1);
    EXPECT_EQ(read("VX_A"), wanted) << preset;
    EXPECT_TRUE(service.set("VX_A", 3));
    EXPECT_EQ(read("VX_A"), 3);
    EXPECT_EQ(read("VX_A", 2), 7);
    EXPECT_TRUE(service.set(std::string("VX_").append(61, 'A'), 1));
    for (const size_t more : {62u, 1000u}) EXPECT_FALSE(service.set(std::string("VX_").append(more, 'A'), 1));
  }
}

TEST_F(Objects, AContextSaysWhatTheLibraryLost) {
  vxhost::Services services{VXHOST_TEST_FOLDER};
  vxhost::Kernel kernel{services};
  const vxhost::ZoneTable zones{vxhost::ZoneTable::system_folder()};
  auto context = std::make_unique<vxhost::Context>(kernel, zones);
  static constexpr VXChar zulu[] = {'Z', 'u', 'l', 'u'};
  VXChar out[50];
  for (int64_t room = 0, length = 0; room <= 9; length = ++room) {  // the library gives more than that
    EXPECT_EQ(context->ops->normalise_zone(context.get(), zulu, 4, {16, 0, 0}, out, &length, nullptr),
              room < 7 ? VX_E_TRUNCATED : 0);
  }
  context->pool->ops->allocate(context->pool, 10, 0);
  context.reset();
  EXPECT_NE(vxhost::alive_text().find("1 block"), std::string::npos) << vxhost::alive_text();
  vxhost::count(vxhost::Kind::block, -1);  // only here: the fault was made
}

TEST_F(Objects, ClassBitsOfEveryCodePoint) {
  // Bit 0, bit 1, and so on.
  static constexpr std::string_view categories = "LuLlLtMnMcMeNdNlNoZsZlZpCcCfCsCoCnLmLoPcPdPsPePiPfPoSmScSkSo";
  std::string why;
  vxhost::ExtensionLoader loader(VXHOST_TEST_FOLDER, {"", false});
  VXExtension* const loaded = loader.load("vxnlsudb", nullptr, why);
  ASSERT_NE(loaded, nullptr) << why;
  auto* const database = reinterpret_cast<VXUnicodeDatabase*>(loaded);
  const auto& ops = *reinterpret_cast<const VXHostUnicodeDatabaseOps*>(loaded->ops);
  for (uint32_t c = 0; c < 0x110000; ++c) {
    const int32_t type = u_charType(static_cast<UChar32>(c));
    const char* const category = u_getPropertyValueName(UCHAR_GENERAL_CATEGORY, type, U_SHORT_PROPERTY_NAME);
    const uint32_t bit = 1u << (categories.find(category) / 2);
    // Its own bit answers, all the others together do not.
    ASSERT_NE(ops.base.test_class(database, c, bit), 0) << std::hex << c;
    ASSERT_EQ(ops.base.test_class(database, c, ~bit), 0) << std::hex << c;
  }
  vxhost::CharacterData characters;
  for (const uint32_t c : {0x110000u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(ops.base.test_class(database, c, 0xFFFFFFFF), 0) << c;
    for (const auto map : {ops.lower, ops.upper}) EXPECT_EQ(map(database, c), c);
    for (const auto map : {characters.ops->lower, characters.ops->upper}) EXPECT_EQ(map(&characters, c, 1), c);
  }
  loaded->ops->destroy(loaded);
}

TEST_F(Objects, NormalisersCompareAndRefuse) {
  vxhost::Normaliser normaliser;
  const auto& ops = *normaliser.ops;
  static constexpr struct {
    std::string_view a, b;
    uint32_t options;
    int32_t order;
    VXStatus status;
  } cases[] = {
      {"\u1E9E\uFB01", "ssfi", 0, 1, 0},
      {"\u1E9E\uFB01", "ssfi", 1, 0, 0},   // each folds to two letters
      {"\uFFFD", "\U00010000", 0, -1, 0},  // by code points, not by code units
      {"a", "b", 2, 0, VX_E_KIND},
      {{nullptr, 1}, "", 0, 0, VX_E_NULL},
      {{"a", SIZE_MAX}, "", 0, 0, VX_E_LENGTH},
      {{"a", size_t{1} << 31}, "", 0, 0, VX_E_RANGE},
      {"\xED\xA0\x80", "", 0, 0, VX_E_SEQUENCE},
  };
  const auto bytes = [](std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); };
  const auto size = [](std::string_view text) { return static_cast<int64_t>(text.size()); };
  const auto word = [](void* pointer) { return reinterpret_cast<uint64_t>(pointer); };
  int64_t needed = -1;
  VXStatus status = 77, back = 77;
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(ops.compare(&normaliser, bytes(c.a), size(c.a), bytes(c.b), size(c.b), c.options, &status), c.order);
    EXPECT_EQ(ops.compare(&normaliser, bytes(c.b), size(c.b), bytes(c.a), size(c.a), c.options, &back), -c.order);
    EXPECT_TRUE(status == c.status && back == c.status) << status;
    const uint32_t form = c.status == VX_E_KIND ? 4 : 0;
    EXPECT_EQ(ops.normalise(&normaliser, bytes(c.a), size(c.a), form, 0, 0, word(&needed), &status), c.status);
    EXPECT_EQ(status, c.status);
  }
  uint8_t out[3] = {1};
  for (const uint64_t room : {2u, 3u}) {
    EXPECT_EQ(ops.normalise(&normaliser, bytes("\u00E9"), 2, 1, word(out), room, word(&needed), nullptr),
              room < 3 ? VX_E_ROOM : 0);
    EXPECT_TRUE(needed == 3 && out[0] == (room < 3 ? 1 : 'e'));
  }
  EXPECT_EQ(ops.normalise(&normaliser, bytes("a"), 1, 1, 0, 0, 0, nullptr), VX_E_NULL);
}

}  // namespace
