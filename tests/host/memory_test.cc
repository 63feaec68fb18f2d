// The host when memory runs out: every allocation by the C++ runtime fails in turn, nothing is lost, and nothing is
// taken for something else.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/host/failing_new.h"
#include "vxnls/vxhost.h"

namespace {

constexpr const char* system_zone = "Antarctica/DumontDUrville";  // a text of that length takes memory

bool is_in(const VXLocale* locale, std::string_view zone) {
  VXChar name[50];
  int64_t length = std::size(name);
  int32_t offset = 0;
  locale->host->zones->ops->describe(locale->host->zones, locale->timeZone, 0, 0, name, &length, &offset);
  return std::equal(name, name + length, zone.begin(), zone.end());
}

/// A host of which a program makes use until its very end, when all that was made after this has gone.
struct Last {
  ~Last() {
    std::string_view first;
    vxhostForEachLocale(
        host, [](void* to, const char* name) { return *static_cast<std::string_view*>(to) = name, 1; }, &first);
    if (host != nullptr && first != "af") std::abort();
    vxhostClose(host);
  }
  VXHost* host = nullptr;
} last;

int count(void* number, const char*) { return ++*static_cast<int*>(number), 0; }

/// Calls of every kind. True when none ran out of memory, the only thing that may go wrong with them.
bool all_went_well() {
  VXHost* host = nullptr;
  if (vxhostOpen(nullptr, &host) != 0) {
    EXPECT_NE(std::string_view(vxhostOpenFailure()).find("memory is exhausted"), std::string_view::npos);
    return false;
  }
  bool all = true;
  const auto went = [&](VXStatus status, VXStatus wanted) {
    EXPECT_TRUE(status == wanted || status == VX_E_MEMORY) << std::hex << status;
    all = all && status == wanted;
    return status == wanted;
  };
  VXLocale* locale = nullptr;
  VXHostZoneInfo info{};
  char text[100];
  EXPECT_TRUE(!went(vxhostLocale(host, "de-Latn-DE", "japan", 0, &locale), 0) || is_in(locale, "Asia/Tokyo"));
  EXPECT_TRUE(!went(vxhostLocale(host, "en_US", nullptr, 1, &locale), 0) || is_in(locale, system_zone));
  went(vxhostLocale(host, "xx_YY", "UTC", 0, &locale), VX_E_NOMATCH);
  went(vxhostLocale(host, "en_US", "No/Where", 0, &locale), VX_E_ZONE);
  EXPECT_TRUE(!went(vxhostZoneInfo(host, nullptr, VX_ZONE_FROM_UTC, 0, &info), 0) ||
              std::string_view(info.id) == system_zone);
  EXPECT_TRUE(!went(vxhostResolveLocale(host, "de_XX", text, sizeof text), VX_W_SUBSTITUTE) ||
              std::string_view(text) == "de");
  for (const bool by_variable : {false, true, false, true}) {  // what failed with TZ is not taken without it
    by_variable ? setenv("TZ", system_zone, 1) : unsetenv("TZ");
    const VXStatus status = vxhostZoneInfo(host, nullptr, VX_ZONE_FROM_UTC, 0, &info);
    all = all && status != VX_E_MEMORY;
    EXPECT_TRUE(status != 0 || (std::string_view(info.id) == system_zone) == by_variable);
  }
  went(vxhostSetOption(host, "VX_A", 1), 0);
  went(vxhostStatusText(host, VX_E_ZONE, text, sizeof text), 0);
  int listed = 0;
  vxhostForEachLocale(host, count, &listed);
  vxhostForEachZone(host, count, &listed);
  static const int all_that_are = listed;  // the first time nothing fails
  EXPECT_EQ(listed, all_that_are);
  vxhostClose(host);
  return all;
}

TEST(Memory, EachAllocationFailsOnceAndFromThenOn) {
  setenv("TZ", system_zone, 1);
  ASSERT_TRUE(all_went_well());
  static vxtest::Ways ways[] = {vxtest::Ways(20), vxtest::Ways(20)};
  for (const bool lasting : {false, true}) {
    int64_t failures = 0, spared = 0;
    do {
      vxtest::fail_new(spared, lasting, &ways[lasting]);
      const bool well = all_went_well();
      spared = vxtest::stop_failing_new();
      ASSERT_EQ(vxhostAlive(), 0) << "after allocation " << spared;
      ASSERT_TRUE(well || spared != 0);
      ASSERT_FALSE(HasFailure()) << "at allocation " << spared << (lasting ? " and all after it" : "");
      ++failures;
    } while (spared != 0);
    RecordProperty(lasting ? "lasting" : "once", std::to_string(failures));
    EXPECT_GT(failures, 100);
  }
  VXStatus (*volatile by_address)(const char*, VXHost**) = vxhostOpen;  // one in this program
  EXPECT_EQ(by_address(nullptr, &last.host), 0u) << vxhostOpenFailure();
}

}  // namespace
