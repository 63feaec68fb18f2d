// The example host among threads. All tests of single rooms have their locale from it (tests/support/plain_locale.h).
#include "examples/own_host/own_host.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

TEST(OwnHost, HasTwoHundredLines) {
  std::ifstream in(VXNLS_OWN_HOST "/own_host.h");
  int lines = 0;
  for (std::string line; std::getline(in, line);) ++lines;
  EXPECT_TRUE(lines > 100 && lines <= 200) << lines;
}

TEST(OwnHost, GivesBlocksForAnyType) {
  own::Pool pool;
  for (const int64_t bytes : {24, 24, 1, 1016, 49248}) {
    EXPECT_EQ(reinterpret_cast<uintptr_t>(own::Pool::allocate(&pool, bytes, 0)) % alignof(std::max_align_t), 0u);
  }
}

TEST(OwnHost, SharesLocalesAmongThreads) {
  own::Host host(VXNLS_OWN_HOST "/locales.txt");
  VXLocale* const one = host.locale("hi_IN", "Asia/Kolkata");
  std::atomic<int> texts = 0;
  {
    std::vector<std::jthread> threads;
    threads.reserve(8);
    for (int i = 0; i < 8; ++i) {
      threads.emplace_back([&, i] {
        for (int round = 0; round < 200; ++round) {
          VXLocale* const locale = host.locale(round % 2 == 0 ? "hi_IN" : "de_DE", "Asia/Kolkata");
          VXLocale* const wrong = host.locale("en_US", "Mars/Olympus");  // releases a lock that it did not take
          const own::Text zone = own::decoded(i % 2 == 0 ? "Asia/Tokyo" : "Africa/Lagos");
          uint8_t text[64];
          int64_t length = 0;
          texts += wrong == nullptr && (round % 2 != 0 || locale == one) &&
                   NLSGetTZh(locale, zone.data(), static_cast<int64_t>(zone.size())) != nullptr &&
                   NLSDatetimeFormatU(locale, 0, text, sizeof text, &length, 0) == 0;
        }
      });
    }
  }
  EXPECT_EQ(texts, 8 * 200);
}

}  // namespace
