// The host when memory runs out: every allocation by the C++ runtime fails in turn, nothing is lost, and nothing is
// taken for something else.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "tests/host/failing_new.h"
#include "vxnls/vxhost.h"

namespace {

constexpr const char* system_zone = "America/Argentina/Buenos_Aires";  // a text of that length takes memory

std::string alive() {
  char text[300];
  vxhostAliveText(text, sizeof text);
  return text;
}

bool is_in(const VXLocale* locale, std::string_view zone) {
  VXChar name[50];
  int64_t length = std::size(name);
  int32_t offset = 0;
  VXZoneService* const zones = locale->host->zones;
  zones->ops->describe(zones, locale->timeZone, VX_ZONE_FROM_UTC, 0, name, &length, &offset);
  return std::equal(name, name + length, zone.begin(), zone.end());
}

int count(void* number, const char*) { return ++*static_cast<int*>(number), 0; }

/// Opens, makes a shared and a private locale and an unknown one, asks about a zone, closes. VX_E_MEMORY when memory
/// ran out, or 0.
VXStatus scenario() {
  VXHost* host = nullptr;
  VXStatus status = vxhostOpen(nullptr, &host);
  if (host == nullptr) {
    EXPECT_EQ(status, VX_E_MEMORY) << vxhostOpenFailure();
    EXPECT_NE(std::string_view(vxhostOpenFailure()).find("memory is exhausted"), std::string_view::npos);
    return status;
  }
  const auto good = [&](VXStatus one, VXStatus wanted) {
    EXPECT_TRUE(one == wanted || one == VX_E_MEMORY) << std::hex << one;
    if (one != wanted) status = one;
    return one == wanted;
  };
  VXLocale* locale = nullptr;
  if (good(vxhostLocale(host, "de-Latn-DE", "japan", 0, &locale), 0)) {
    EXPECT_TRUE(is_in(locale, "Asia/Tokyo"));
  }
  if (good(vxhostLocale(host, "en_US", nullptr, 1, &locale), 0)) {
    EXPECT_TRUE(is_in(locale, system_zone));
  }
  good(vxhostLocale(host, "xx_YY", "UTC", 0, &locale), VX_E_NOMATCH);
  good(vxhostLocale(host, "en_US", "No/Where", 0, &locale), VX_E_ZONE);
  VXHostZoneInfo info{};
  if (good(vxhostZoneInfo(host, nullptr, VX_ZONE_FROM_UTC, 0, &info), 0)) {
    EXPECT_STREQ(info.id, system_zone);
  }
  good(vxhostSetOption(host, "VX_A", 1), 0);
  char text[100];
  if (good(vxhostResolveLocale(host, "de_XX", text, sizeof text), VX_W_SUBSTITUTE)) {
    EXPECT_STREQ(text, "de");
  }
  good(vxhostStatusText(host, VX_E_ZONE, text, sizeof text), 0);
  int locales = 0;
  int zones = 0;
  vxhostForEachLocale(host, count, &locales);
  vxhostForEachZone(host, count, &zones);
  static const int all_locales = locales;
  static const int all_zones = zones;
  EXPECT_EQ(locales, all_locales);
  EXPECT_EQ(zones, all_zones);
  vxhostClose(host);
  return status;
}

void sweep(bool keeps_failing) {
  setenv("TZ", system_zone, 1);
  ASSERT_EQ(scenario(), 0u);  // without faults, so that it is known how many locales and zones there are
  static vxtest::Ways ways[] = {vxtest::Ways(20), vxtest::Ways(20)};
  int64_t failures = 0;
  for (int64_t spared = 0;; ++failures) {
    vxtest::fail_new(spared, keeps_failing, &ways[keeps_failing]);
    const VXStatus status = scenario();
    spared = vxtest::stop_failing_new();
    SCOPED_TRACE(testing::Message() << "allocation " << spared << (keeps_failing ? " and all after it" : ""));
    ASSERT_EQ(vxhostAlive(), 0) << alive();
    if (spared == 0) {
      ASSERT_EQ(status, 0u);
      break;
    }
    ASSERT_FALSE(testing::Test::HasFailure());
  }
  testing::Test::RecordProperty("failures", std::to_string(failures));
  EXPECT_GT(failures, 100);
}

TEST(Memory, EachAllocationFailsOnce) { sweep(false); }
TEST(Memory, AllFailFromOneOn) { sweep(true); }

}  // namespace
