// The host when memory runs out: every allocation by the C++ runtime fails in turn, and nothing is lost.
#include <gtest/gtest.h>

#include <string>

#include "tests/host/failing_new.h"
#include "vxnls/vxhost.h"

namespace {

std::string alive() {
  char text[300];
  vxhostAliveText(text, sizeof text);
  return text;
}

/// Opens, makes a shared and a private locale and an unknown one, asks about a zone, closes. The first status that says
/// that memory ran out, or 0.
VXStatus scenario() {
  VXHost* host = nullptr;
  VXStatus status = vxhostOpen(nullptr, &host);
  if (host == nullptr) return status;
  VXLocale* locale = nullptr;
  const auto note = [&](VXStatus one, VXStatus wanted) {
    EXPECT_TRUE(one == wanted || one == VX_E_MEMORY || one == VX_E_ZONE) << std::hex << one;
    if (one != wanted && status == 0) status = one;
  };
  note(vxhostLocale(host, "de-Latn-DE", "japan", 0, &locale), 0);
  note(vxhostLocale(host, "en_US", nullptr, 1, &locale), 0);
  note(vxhostLocale(host, "xx_YY", "UTC", 0, &locale), VX_E_NOMATCH);
  VXHostZoneInfo info;
  note(vxhostZoneInfo(host, "Europe/Berlin", VX_ZONE_FROM_UTC, 0, &info), 0);
  note(vxhostSetOption(host, "VX_A", 1), 0);
  char text[100];
  note(vxhostResolveLocale(host, "de_XX", text, sizeof text), VX_W_SUBSTITUTE);
  vxhostStatusText(host, VX_E_ZONE, text, sizeof text);
  vxhostClose(host);
  return status;
}

void sweep(bool keeps_failing, int64_t step) {
  int64_t failed = 0;
  for (int64_t k = 0;; k += k < 300 ? 1 : step) {
    SCOPED_TRACE(testing::Message() << "the allocation " << k << (keeps_failing ? " and all after it" : ""));
    vxtest::fail_new(k, keeps_failing);
    const VXStatus status = scenario();
    const bool had_a_failure = vxtest::stop_failing_new() != 0;
    if (status != 0) ++failed;
    ASSERT_EQ(vxhostAlive(), 0) << alive();
    if (!had_a_failure) {
      ASSERT_EQ(status, 0u);
      break;
    }
  }
  EXPECT_GT(failed, 100);
  EXPECT_EQ(scenario(), 0u);
  EXPECT_EQ(vxhostAlive(), 0) << alive();
}

TEST(Memory, EachAllocationFailsOnce) { sweep(false, 7); }
TEST(Memory, AllFailFromOneOn) { sweep(true, 7); }

}  // namespace
