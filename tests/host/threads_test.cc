// Many threads: one object for one name and zone, and no data race (a thread sanitizer build listens).
#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <string>
#include <thread>
#include <vector>

#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

constexpr int threads = 32;
constexpr const char* names[] = {"de_DE", "en_US", "ja_JP", "ar_EG", "hi_IN", "fr_CA", "pl_PL", "zh_Hant_TW"};
constexpr const char* zones[] = {"Europe/Berlin", "America/New_York", "Asia/Tokyo", "UTC"};

template <class Body>
void in_threads(Body body) {
  std::barrier start(threads);
  std::vector<std::thread> all;
  for (int t = 0; t < threads; ++t) {
    all.emplace_back([&, t] {
      start.arrive_and_wait();
      body(t);
    });
  }
  for (auto& thread : all) thread.join();
}

TEST(Threads, AllGetTheSameLocales) {
  VXHost* host = nullptr;
  ASSERT_EQ(vxhostOpen(nullptr, &host), 0u) << vxhostOpenFailure();
  VXLocale* found[threads][std::size(names)][std::size(zones)] = {};
  in_threads([&](int t) {
    for (size_t n = 0; n < std::size(names); ++n) {
      for (size_t z = 0; z < std::size(zones); ++z) {
        const size_t turned = (n + static_cast<size_t>(t)) % std::size(names);
        EXPECT_EQ(vxhostLocale(host, names[turned], zones[z], 0, &found[t][turned][z]), 0u);
      }
    }
  });
  for (int t = 1; t < threads; ++t) {
    for (size_t n = 0; n < std::size(names); ++n) {
      for (size_t z = 0; z < std::size(zones); ++z) EXPECT_EQ(found[t][n][z], found[0][n][z]);
    }
  }
  vxhostClose(host);
  EXPECT_EQ(vxhostAlive(), 0);
}

TEST(Threads, CreateFormatParseAndChangeZones) {
  VXHost* host = nullptr;
  ASSERT_EQ(vxhostOpen(nullptr, &host), 0u) << vxhostOpenFailure();
  std::atomic<int64_t> entries{0};
  vxhostSetJournal(
      host, [](void* user, uint32_t, double, const char*) { ++*static_cast<std::atomic<int64_t>*>(user); }, &entries);
  in_threads([&](int t) {
    for (int i = 0; i < 40; ++i) {
      const auto pick = static_cast<size_t>(t + i);
      VXLocale* locale = nullptr;
      const uint32_t is_private = i % 8 == 0 ? 1 : 0;
      ASSERT_EQ(vxhostLocale(host, names[pick % std::size(names)], zones[pick % std::size(zones)], is_private, &locale),
                0u);
      const std::string other = zones[(pick + 1) % std::size(zones)];
      const std::vector<VXChar> id(other.begin(), other.end());
      EXPECT_EQ(locale->ops.NLSSetTimezoneId(locale, id.data(), static_cast<int64_t>(id.size())), 0u);
      const std::vector<VXChar> unknown(3, 'x');
      EXPECT_EQ(locale->ops.NLSSetTimezoneId(locale, unknown.data(), 3), VX_E_ZONE);
      VXChar text[200];
      int64_t length = 0;
      EXPECT_EQ(locale->ops.NLSDatetimeFormat(locale, 0, text, 200, &length, 2e9 + 1000.0 * i), 0u);
      double value = 0;
      int64_t consumed = 0;
      EXPECT_EQ(locale->ops.NLSBufToDatetime(locale, text, length, 0, &value, &consumed), 0u)
          << names[pick % std::size(names)];
      EXPECT_EQ(vxnlsisalpha(static_cast<VXChar>(0x400 + i)), 1);
      uint8_t word[] = "\u00C9t\u00C9";
      vxzsu8Lower(word, sizeof word - 1);
      VXStatus status = 0;
      EXPECT_EQ(vxzsu8ICUNormCompare(word, 5, word, 5, 0, &status), 0);
      EXPECT_EQ(status, 0u);
      VXHostZoneInfo info;
      EXPECT_EQ(vxhostZoneInfo(host, zones[pick % std::size(zones)], VX_ZONE_FROM_UTC, 1e9 * (i - 20), &info), 0u);
      EXPECT_EQ(vxhostLocale(host, "de_DE", "Nowhere", 0, &locale), VX_E_ZONE);
      EXPECT_EQ(vxhostSetOption(host, "VX_NAME_YEARCUTOFF", 1950), 0u);
      EXPECT_EQ(vxfmtzjulymd(60, 1, 1), vxfmtzjulymd(1960, 1, 1));
    }
  });
  vxhostClose(host);
  EXPECT_EQ(vxhostAlive(), 0);
}

TEST(Threads, OpenAndCloseHosts) {
  in_threads([](int) {
    for (int i = 0; i < 3; ++i) {
      VXHost* host = nullptr;
      ASSERT_EQ(vxhostOpen(nullptr, &host), 0u) << vxhostOpenFailure();
      VXLocale* locale = nullptr;
      EXPECT_EQ(vxhostLocale(host, "en_US", "UTC", 0, &locale), 0u);
      vxhostClose(host);
    }
  });
  EXPECT_EQ(vxhostAlive(), 0);
}

}  // namespace
