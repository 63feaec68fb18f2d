// The plain locale of the tests as a locale of the example host, created by the library from the host's text file.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "examples/own_host/own_host.h"
#include "tests/support/plain_locale.h"

namespace {

own::Host& the_host() {
  static own::Host host(VXNLS_OWN_HOST "/locales.txt");
  return host;
}

}  // namespace

namespace vxtest {

/// The context is a copy, so that a test may take its zone service away; what a test did to the locale object is undone
/// before the library destroys it.
struct PlainLocale::Parts {
  VXLocale* created = the_host().locale("en_US", "UTC", 1);
  const VXLocale as_created = *created;
  HostContext context = the_host();
  VXZoneService zones{};
};

PlainLocale::PlainLocale()
    : parts(new Parts),
      data(*parts->created->localeData),
      locale(*parts->created),
      context(parts->context),
      zones(parts->zones) {
  context.zones = nullptr;
  locale.timeZone = nullptr;
  locale.host = &context;
}

PlainLocale::~PlainLocale() {
  locale = parts->as_created;
  VXTrackEntry entry{{}, &locale};
  NLSLocaleDestroyCallback(&entry);
}

}  // namespace vxtest

namespace {

TEST(OwnHost, HasTwoHundredLines) {
  std::ifstream in(VXNLS_OWN_HOST "/own_host.h");
  int lines = 0;
  for (std::string line; std::getline(in, line);) ++lines;
  EXPECT_GT(lines, 100);
  EXPECT_LE(lines, 200);
}

TEST(OwnHost, SharesLocalesAmongThreads) {
  std::vector<std::thread> threads;
  std::atomic<int> texts = 0;
  VXLocale* const one = the_host().locale("hi_IN", "Asia/Kolkata");
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&, i] {
      for (int round = 0; round < 200; ++round) {
        VXLocale* const locale = the_host().locale(round % 2 == 0 ? "hi_IN" : "de_DE", "Asia/Kolkata");
        VXLocale* const wrong = the_host().locale("en_US", "Mars/Olympus");  // releases a lock that it did not take
        const own::Text zone = own::decoded(i % 2 == 0 ? "Asia/Tokyo" : "Africa/Lagos");
        uint8_t text[64];
        int64_t length = 0;
        if (wrong == nullptr && (round % 2 != 0 || locale == one) &&
            NLSGetTZh(locale, zone.data(), static_cast<int64_t>(zone.size())) != nullptr &&
            NLSDatetimeFormatU(locale, 0, text, sizeof text, &length, 0) == 0) {
          ++texts;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(texts, 8 * 200);
}

}  // namespace
