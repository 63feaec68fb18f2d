// The host when memory runs out: every allocation by the C++ runtime fails in turn, and nothing is lost.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

#include "vxnls/vxhost.h"

namespace {

/// Counts down to the allocation that fails; below 0 none does. After it all fail, or all work again.
std::atomic<int64_t> until_failure{-1};
std::atomic<bool> lasting{false};

bool fails_now() {
  if (until_failure.load(std::memory_order_relaxed) < 0) return false;
  const int64_t left = until_failure.fetch_sub(1, std::memory_order_relaxed);
  if (left > 0) return false;
  until_failure.store(lasting.load() ? 0 : -1, std::memory_order_relaxed);
  return true;
}

}  // namespace

void* operator new(size_t bytes) {
  void* const block = fails_now() ? nullptr : std::malloc(bytes != 0 ? bytes : 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new(size_t bytes, const std::nothrow_t&) noexcept {
  return fails_now() ? nullptr : std::malloc(bytes != 0 ? bytes : 1);
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, size_t) noexcept { std::free(block); }

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
  lasting = keeps_failing;
  int64_t failed = 0;
  for (int64_t k = 0;; k += k < 300 ? 1 : step) {
    SCOPED_TRACE(testing::Message() << "the allocation " << k << (keeps_failing ? " and all after it" : ""));
    until_failure = k;
    const VXStatus status = scenario();
    const bool had_a_failure = keeps_failing ? until_failure == 0 : until_failure < 0;
    until_failure = -1;
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
