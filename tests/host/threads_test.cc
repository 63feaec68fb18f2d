// Many threads: one object for one name and zone, and no data race (a thread sanitizer build listens).
#include <gtest/gtest.h>

#include <barrier>
#include <functional>
#include <map>
#include <thread>

#include "host/locale_database_ops.h"
#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

constexpr int threads = 32;
constexpr const char* zones[] = {"Europe/Berlin", "America/New_York", "Asia/Tokyo", "UTC"};

void in_threads(const std::function<void(size_t)>& body) {
  std::barrier start(threads);
  std::vector<std::jthread> all;
  for (size_t t = 0; t < threads; ++t) all.emplace_back([&, t] { start.arrive_and_wait(), body(t); });
}

/// A moment written, and what reading that gives.
auto written(VXLocale* locale) {
  std::vector<VXChar> text(200);
  int64_t length = 0, consumed = 0;
  double value = 0;
  EXPECT_EQ(locale->ops.NLSDatetimeFormat(locale, 0, text.data(), 200, &length, 2e9), 0u);
  text.resize(static_cast<size_t>(length));
  const VXStatus status = locale->ops.NLSBufToDatetime(locale, text.data(), length, 0, &value, &consumed);
  return std::tuple(text, status, value);
}

VXStatus set_zone(VXLocale* locale, std::string_view name) {
  const std::vector<VXChar> id(name.begin(), name.end());
  return locale->ops.NLSSetTimezoneId(locale, id.data(), static_cast<int64_t>(id.size()));
}

std::atomic<int64_t> entries{0}, fills{0}, of_their_own{0};
const VXLocaleDatabaseOps* real_database;

TEST(Threads, EveryLocaleIsCreatedOnceAndServesAll) {
  VXHost* host = nullptr;
  ASSERT_EQ(vxhostOpen(nullptr, &host), 0u) << vxhostOpenFailure();
  setenv("TZ", "No/Where", 1);  // so that each locale with the system's zone is told of in the journal
  vxhostSetJournal(
      host, [](void*, uint32_t, double, const char*) { ++entries; }, nullptr);
  // Each locale that is created is filled once.
  VXLocaleDatabase* const database = vxhostContext(host)->localeDatabase;
  real_database = database->ops;
  VXHostLocaleDatabaseOps counting = *reinterpret_cast<const VXHostLocaleDatabaseOps*>(real_database);
  counting.base.fill = [](VXLocaleDatabase* self, VXLocaleData* record, const VXChar* name, int64_t length) {
    return ++fills, real_database->fill(self, record, name, length);
  };
  database->ops = &counting.base;
  std::vector<std::string> names;
  const auto add = [](void* all, const char* name) {
    return static_cast<std::vector<std::string>*>(all)->emplace_back(name), 0;
  };
  vxhostForEachLocale(host, add, &names);
  ASSERT_GT(names.size(), 800u);
  std::vector<std::map<size_t, std::pair<VXLocale*, decltype(written(nullptr))>>> found(threads);
  in_threads([&](size_t t) {
    for (size_t i = 0; i < names.size(); ++i) {
      const size_t n = (i + t / 4 * 100) % names.size();  // four threads want the same locales in the same order
      VXLocale* locale = nullptr;
      ASSERT_EQ(vxhostLocale(host, names[n].c_str(), zones[n % std::size(zones)], 0, &locale), 0u);
      EXPECT_EQ(set_zone(locale, zones[(n + i) % std::size(zones)]), 0u);
      EXPECT_EQ(set_zone(locale, "xxx"), VX_E_ZONE);
      found[t][n] = {locale, written(locale)};
      if (i % 16 != 0) continue;
      VXLocale* own = nullptr;
      EXPECT_EQ(vxhostLocale(host, names[n].c_str(), nullptr, 1, &own), 0u);
      ++of_their_own;
      EXPECT_EQ(set_zone(own, zones[i % std::size(zones)]), 0u);
      EXPECT_EQ(written(own), found[t][n].second);
      EXPECT_EQ(vxhostLocale(host, "de_DE", "Nowhere", 0, &own), VX_E_ZONE);
      EXPECT_EQ(vxnlsisalpha(static_cast<VXChar>(0x400 + i % 40)), 1);
      uint8_t word[] = "\u00C9t\u00C9";
      vxzsu8Lower(word, sizeof word - 1);
      VXStatus status = 0;
      EXPECT_EQ(vxzsu8ICUNormCompare(word, 5, word, 5, 0, &status), 0);
      VXHostZoneInfo info;
      EXPECT_EQ(vxhostZoneInfo(host, zones[i % std::size(zones)], VX_ZONE_FROM_UTC, 1e9, &info), 0u);
      EXPECT_EQ(vxhostSetOption(host, "VX_NAME_YEARCUTOFF", 1950), 0u);
      EXPECT_EQ(vxfmtzjulymd(60, 1, 1), vxfmtzjulymd(1960, 1, 1));
    }
  });
  for (const auto& of_one : found) EXPECT_TRUE(of_one == found[0]);
  EXPECT_EQ(fills, static_cast<int64_t>(names.size()) + of_their_own);
  EXPECT_EQ(entries, of_their_own);
  unsetenv("TZ");
  database->ops = real_database;
  vxhostClose(host);
  EXPECT_EQ(vxhostAlive(), 0);
}

TEST(Threads, OpenAndCloseHosts) {
  in_threads([](size_t) {
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
