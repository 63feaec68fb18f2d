#include "module/host_services.h"

#include <gtest/gtest.h>

#include "tests/support/failing_host.h"

namespace {

using vxnls::host::ZoneState;
using vxtest::FailingHost;
using vxtest::Op;

TEST(HostServices, AreAbsentWithoutAHandleOrWithAnEmptyOne) {
  VXHandle empty = {};
  for (VXHandle* handle : {static_cast<VXHandle*>(nullptr), &empty}) {
    vxextent(handle);
    EXPECT_EQ(vxnls::host::characters(), nullptr);
    EXPECT_EQ(vxnls::host::unicode_database(), nullptr);
    EXPECT_EQ(vxnls::host::normaliser(), nullptr);
    EXPECT_EQ(vxnls::host::conversions(), nullptr);
    EXPECT_EQ(vxnls::host::integer_option(nullptr, 0, 77), 77);
  }
  vxextent(nullptr);
}

TEST(HostServices, AreMadeOnce) {
  FailingHost host;
  ASSERT_TRUE(host.load_module());
  VXUnicodeDatabase* const database = vxnls::host::unicode_database();
  VXNormaliser* const normaliser = vxnls::host::normaliser();
  EXPECT_NE(database, nullptr);
  EXPECT_NE(normaliser, nullptr);
  EXPECT_EQ(vxnls::host::unicode_database(), database);
  EXPECT_EQ(vxnls::host::normaliser(), normaliser);
  EXPECT_EQ(host.calls(Op::load_extension), 1);
  EXPECT_EQ(host.calls(Op::create_normaliser), 1);
}

// While the library makes its object, another thread stores one: here the host does it from inside the operation.
TEST(HostServices, TheLoserOfARaceGoesByWhatIsThere) {
  static VXUnicodeDatabase winner;
  static VXNormaliser winning_normaliser;
  static VXNormaliser losing_normaliser;
  static VXCharData characters;
  static int destroyed;
  static const VXExtensionOps extension_ops = {[](VXExtension*) -> VXStatus {
    ++destroyed;
    return 0;
  }};
  static VXExtension loser = {&extension_ops};
  VXHandleOps ops = {};
  ops.load_extension = [](VXHandle*, const VXChar*, int64_t, uint64_t) {
    characters.database = &winner;
    return &loser;
  };
  VXCharDataOps character_ops = {};
  character_ops.create_normaliser = [](VXCharData*) {
    characters.normaliser = &winning_normaliser;
    return &losing_normaliser;
  };
  characters = {&character_ops, nullptr, nullptr};
  destroyed = 0;
  VXHandle handle = {&ops, nullptr, nullptr, &characters, nullptr};
  vxextent(&handle);
  EXPECT_EQ(vxnls::host::unicode_database(), &winner);
  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(vxnls::host::normaliser(), &winning_normaliser);
  EXPECT_EQ(characters.normaliser, &winning_normaliser);
  vxextent(nullptr);
}

TEST(HostServices, HoldWhatAZoneServiceSaysToItsRoom) {
  static VXStatus status;
  static int64_t claimed;
  static bool writes_offset;
  VXZoneServiceOps ops = {};
  ops.describe = [](VXZoneService*, VXZone*, int32_t, double, VXChar* name, int64_t* length, int32_t* offset) {
    EXPECT_EQ(*length, 50);
    name[0] = 'Z';
    *length = claimed;
    if (writes_offset) *offset = 3600;
    return status;
  };
  ops.offset = [](VXZoneService*, VXZone*, int32_t, double) { return 7200; };
  VXZoneService service = {&ops};
  HostContext context = {};
  context.zones = &service;
  VXLocale locale = {};
  locale.host = &context;
  auto* const zone = reinterpret_cast<VXZone*>(&service);
  locale.timeZone = zone;

  const struct {
    VXStatus status;
    int64_t claimed;
    bool writes_offset;
    int64_t length;
    int32_t offset;
  } cases[] = {
      {0, 1, true, 1, 3600},  {0, 50, true, 50, 3600},       {0, 51, true, 50, 3600}, {0, INT64_MAX, true, 50, 3600},
      {0, -1, true, 0, 3600}, {0, INT64_MIN, true, 0, 3600}, {0, 1, false, 1, 0},     {VX_E_ZONE, 1, true, 0, 0},
  };
  for (const auto& c : cases) {
    status = c.status;
    claimed = c.claimed;
    writes_offset = c.writes_offset;
    ZoneState state;
    vxnls::host::describe_zone(&locale, 0, &state);
    EXPECT_EQ(state.name_length, c.length) << c.claimed;
    EXPECT_EQ(state.offset, c.offset) << c.claimed;
  }
  EXPECT_EQ(vxnls::host::zone_offset(&locale, zone, VX_ZONE_FROM_UTC, 0), 7200);

  // Without a zone, a service or a host there is nothing to ask.
  EXPECT_EQ(vxnls::host::zone_offset(&locale, nullptr, VX_ZONE_FROM_UTC, 0), 0);
  for (int lacking = 0; lacking < 3; ++lacking) {
    locale.timeZone = lacking == 0 ? nullptr : zone;
    context.zones = lacking == 1 ? nullptr : &service;
    locale.host = lacking == 2 ? nullptr : &context;
    ZoneState state = {};
    state.name_length = 9;
    state.offset = 9;
    vxnls::host::describe_zone(&locale, 0, &state);
    EXPECT_EQ(state.name_length, 0);
    EXPECT_EQ(state.offset, 0);
    EXPECT_EQ(vxnls::host::zone_offset(&locale, locale.timeZone, VX_ZONE_FROM_UTC, 0), 0);
  }
}

}  // namespace
