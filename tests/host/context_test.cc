// The operations of the host context, as the library calls them.
#include "host/context.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <memory>
#include <string>
#include <vector>

#include "host/accounting.h"

namespace {

class Context : public testing::Test {
 protected:
  void TearDown() override {
    context.reset();
    EXPECT_EQ(vxhost::alive(), alive_before);
  }

  static std::vector<VXChar> wide(const std::string& text) { return {text.begin(), text.end()}; }
  static std::string narrow(const VXChar* text, int64_t length) { return {text, text + length}; }

  std::string lookup(const std::string& name, VXStatus expected) {
    const auto units = wide(name);
    const VXLocaleRecord* record = nullptr;
    EXPECT_EQ(context->ops->lookup_locale(context.get(), units.data(), static_cast<int64_t>(units.size()), 8, &record),
              expected)
        << name;
    return record != nullptr ? narrow(record->name, record->length) : "";
  }
  std::string normalise(const std::string& id, int64_t room, VXStatus expected) {
    const auto units = wide(id);
    VXChar out[50];
    uint64_t extra = 1;
    int64_t length = room;
    EXPECT_EQ(context->ops->normalise_zone(context.get(), units.data(), static_cast<int64_t>(units.size()), {16, 0, 0},
                                           out, &length, &extra),
              expected)
        << id;
    return expected == 0 ? narrow(out, length) : "";
  }

  const int64_t alive_before = vxhost::alive();
  vxhost::Services services{VXHOST_TEST_FOLDER};
  vxhost::Kernel kernel{services};
  vxhost::ZoneTable zones{vxhost::ZoneTable::system_folder()};
  std::unique_ptr<vxhost::Context> context = std::make_unique<vxhost::Context>(kernel, zones);
};

TEST_F(Context, LooksLocalesUp) {
  for (int round = 0; round < 2; ++round) {  // the second one answers from memory
    EXPECT_EQ(lookup("de-DE", 0), "de_DE");
    EXPECT_EQ(lookup("de_US", VX_W_SUBSTITUTE), "de");
    EXPECT_EQ(lookup("xx", VX_E_NOMATCH), "");
    EXPECT_EQ(lookup(std::string("de\0", 3), VX_E_NOMATCH), "");
    EXPECT_EQ(lookup("d\x80", VX_E_NOMATCH), "");
    EXPECT_EQ(lookup(std::string(10000, 'e'), VX_E_NOMATCH), "");
    EXPECT_EQ(lookup("", VX_E_NOMATCH), "");
  }
  const VXLocaleRecord* record = nullptr;
  EXPECT_EQ(context->ops->lookup_locale(context.get(), nullptr, -1, 8, &record), VX_E_NOMATCH);
  static constexpr VXChar beyond_a_byte[] = {0x100 + 'd', 'e'};
  EXPECT_EQ(context->ops->lookup_locale(context.get(), beyond_a_byte, 2, 8, &record), VX_E_NOMATCH);
  // More names than are worth remembering.
  for (int i = 0; i < 10000; ++i) EXPECT_EQ(lookup("de_DE." + std::to_string(i), 0), "de_DE");
}

TEST_F(Context, NormalisesZones) {
  EXPECT_EQ(normalise("japan  ", 50, 0), "Asia/Tokyo");
  EXPECT_EQ(normalise("Asia/Tokyo", 10, 0), "Asia/Tokyo");
  EXPECT_EQ(normalise("Asia/Tokyo", 9, VX_E_TRUNCATED), "");
  EXPECT_EQ(normalise("Nowhere", 50, VX_E_ZONE), "");
  EXPECT_EQ(normalise("", 50, VX_E_ZONE), "");
  EXPECT_EQ(normalise(std::string(10000, ' '), 50, VX_E_ZONE), "");
  int64_t length = 50;
  VXChar out[50];
  EXPECT_EQ(context->ops->normalise_zone(context.get(), nullptr, 5, {16, 0, 0}, out, &length, nullptr), VX_E_ZONE);
  EXPECT_EQ(context->ops->normalise_zone(context.get(), nullptr, 0, {16, 0, 0}, nullptr, &length, nullptr), VX_E_NULL);
}

TEST_F(Context, AsksTheSystemForItsZone) {
  const char* const before = getenv("TZ");
  const std::string kept = before != nullptr ? before : "";
  VXChar out[50];
  int64_t length = 0;
  const auto ask = [&](const char* tz) {
    setenv("TZ", tz, 1);
    length = 50;
    return context->ops->os_zone(context.get(), out, &length, 8);
  };
  EXPECT_EQ(ask(":japan"), 0u);
  EXPECT_EQ(narrow(out, length), "Asia/Tokyo");
  EXPECT_EQ(ask(""), 0u);
  EXPECT_EQ(narrow(out, length), "Etc/UTC");
  EXPECT_EQ(ask("Nowhere"), VX_E_ZONE);
  EXPECT_EQ(ask("/nowhere"), VX_E_ROOM);
  EXPECT_EQ(ask("Asia/Tokyo"), 0u);
  length = 9;
  EXPECT_EQ(context->ops->os_zone(context.get(), out, &length, 8), VX_E_TRUNCATED);
  if (before != nullptr) setenv("TZ", kept.c_str(), 1);
  else unsetenv("TZ");
}

TEST_F(Context, SaysWhatTheLibraryLost) {
  context->pool->ops->allocate(context->pool, 10, 0);
  context->pool->ops->allocate(context->pool, 10, 0);
  const int64_t alive = vxhost::alive();
  context.reset();
  EXPECT_EQ(vxhost::alive(), alive_before + 2) << "of " << alive;
  EXPECT_EQ(vxhost::alive_text(), "2 blocks");
  vxhost::count(vxhost::Kind::block, -2);  // only here: the fault was made
}

}  // namespace
