#include "vxnls/zones.h"

#include <gtest/gtest.h>

#include <utility>

#include "tests/support/failing_host.h"
#include "tests/support/plain_locale.h"

namespace {

using vxtest::FailingHost;
using vxtest::Holdings;
using vxtest::Op;

struct ZoneTest : testing::Test {
  void SetUp() override {
    ASSERT_TRUE(host.load_module());
    ASSERT_TRUE(host.make_cache());
    locale = host.create(U"en_US", nullptr, U"Etc/UTC");
    ASSERT_NE(locale, nullptr);
  }
  void TearDown() override {
    host.close();
    EXPECT_EQ(host.holdings(), Holdings{});
    EXPECT_EQ(host.complaints(), std::vector<std::string>{});
  }

  VXZone* get(std::u32string_view id) {
    const std::vector<VXChar> units(id.begin(), id.end());
    return NLSGetTZh(locale, units.data(), static_cast<int64_t>(id.size()));
  }
  VXStatus set(std::u32string_view id) {
    const std::vector<VXChar> units(id.begin(), id.end());
    return NLSSetTimezoneId(locale, units.data(), static_cast<int64_t>(id.size()));
  }

  FailingHost host;
  VXLocale* locale = nullptr;
};

TEST_F(ZoneTest, OneHandleForEveryNameOfAZone) {
  VXZone* const utc = locale->timeZone;
  const int64_t opened = host.calls(Op::open_zone);
  const int64_t locked = host.calls(Op::acquire);
  for (const auto& id : {U"Etc/UTC", U"UTC", U"etc/utc  "}) EXPECT_EQ(get(id), utc);
  EXPECT_EQ(host.calls(Op::open_zone), opened);
  EXPECT_EQ(host.calls(Op::acquire), locked) << "a hit takes no lock";
  VXZone* const kolkata = get(U"Asia/Kolkata");
  EXPECT_NE(kolkata, nullptr);
  EXPECT_NE(kolkata, utc);
  EXPECT_EQ(get(U"asia/kolkata"), kolkata);
  EXPECT_EQ(host.calls(Op::open_zone), opened + 1);
  EXPECT_EQ(host.calls(Op::acquire), locked + 1);
}

TEST_F(ZoneTest, SettingKeepsTheZoneUnlessThereIsAnother) {
  VXZone* const utc = locale->timeZone;
  const VXChar blank = ' ';
  EXPECT_EQ(NLSSetTimezoneId(locale, nullptr, 5), 0u);
  EXPECT_EQ(NLSSetTimezoneId(locale, &blank, 0), 0u);
  EXPECT_EQ(NLSSetTimezoneId(locale, &blank, -1), VX_E_ZONE);
  EXPECT_EQ(NLSSetTimezoneId(locale, &blank, INT64_MIN), VX_E_ZONE);
  EXPECT_EQ(set(U"Atlantis/Poseidonis"), VX_E_ZONE);
  EXPECT_EQ(locale->timeZone, utc);
  const int64_t asked = host.calls(Op::normalise_zone);
  EXPECT_EQ(NLSGetTZh(locale, nullptr, 3), nullptr);
  EXPECT_EQ(NLSGetTZh(locale, &blank, -1), nullptr);
  EXPECT_EQ(host.calls(Op::normalise_zone), asked);
  EXPECT_EQ(NLSGetTZh(locale, &blank, 0), nullptr);
  EXPECT_EQ(host.calls(Op::normalise_zone), asked + 1) << "what an empty identifier means is the host's to say";
  EXPECT_EQ(set(U"Asia/Kolkata"), 0u);
  EXPECT_EQ(locale->timeZone, get(U"Asia/Kolkata"));
  EXPECT_EQ(set(U"UTC"), 0u);
  EXPECT_EQ(locale->timeZone, utc) << "the zone before stays in the cache";
}

TEST_F(ZoneTest, NoneIsOpenedByAHostWithoutZones) {
  VXZoneService* const zones = std::exchange(locale->host->zones, nullptr);
  EXPECT_EQ(get(U"Asia/Kolkata"), nullptr);
  EXPECT_EQ(get(U"Etc/UTC"), locale->timeZone) << "what is known stays";
  locale->host->zones = zones;
  EXPECT_NE(get(U"Asia/Kolkata"), nullptr);
}

TEST_F(ZoneTest, LengthsThatTheHostClaimsAreHeldToTheRoom) {
  // The key is then the fifty units of the buffer, or none: another zone of the cache, never memory behind it.
  for (const int64_t claimed : {int64_t{51}, INT64_MAX, int64_t{-1}, INT64_MIN}) {
    host.answers().claimed_zone_length = claimed;
    VXZone* const zone = get(U"Asia/Kolkata");
    EXPECT_EQ(zone != nullptr, claimed > 0) << claimed;  // with no unit left it names no zone
  }
}

}  // namespace
