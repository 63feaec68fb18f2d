// Datetimes with an offset or a zone behind them, read through the reference host and held against the C library.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <string>
#include <vector>

#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

constexpr const char* zones[] = {"Africa/Cairo",     "Africa/Casablanca", "America/Havana",     "America/New_York",
                                 "America/Santiago", "America/St_Johns",  "America/Sao_Paulo",  "Antarctica/Troll",
                                 "Asia/Jerusalem",   "Asia/Kathmandu",    "Asia/Kolkata",       "Asia/Tehran",
                                 "Asia/Tokyo",       "Europe/Berlin",     "Australia/Adelaide", "Europe/Dublin",
                                 "Europe/London",    "Europe/Moscow",     "Pacific/Apia",       "Australia/Lord_Howe",
                                 "Pacific/Auckland", "Pacific/Chatham"};
constexpr int years[] = {1900, 1918, 1943, 1969, 1987, 2007, 2016, 2026, 2039, 2050, 2400};
constexpr int64_t epoch = -315619200;  // 1960-01-01 in Unix time
constexpr int64_t day = 86400;

/// The C library lives in a zone.
void live_in(const char* zone) {
  setenv("TZ", (std::string(":") + zone).c_str(), 1);
  tzset();
}

int64_t offset(time_t utc) {
  tm fields{};
  EXPECT_NE(localtime_r(&utc, &fields), nullptr);
  return fields.tm_gmtoff;
}

/// Local times of the zone in force, half-hourly and a second before near each change of some years, else rarely; and
/// the moments that they mean, by the old offset up to the end of what a change repeats or skips.
std::vector<std::pair<int64_t, int64_t>> local_times() {
  std::vector<std::pair<int64_t, int64_t>> found;
  for (const int year : years) {
    const int64_t start = (year - 1970) * int64_t{17532} * 1800;  // near New Year
    for (int64_t at = start, step = 0; at < start + 366 * day; at += step) {
      const int64_t before = offset(at - day / 6), after = offset(at + day / 6);
      step = before == after ? day / 3 : 1800;
      for (const int64_t local : {at + before - 1, at + before}) {
        const bool is_old = offset(local - before) == before || offset(local - after) != after;
        if (before != after || (at - start) % (180 * day) == 0)
          found.emplace_back(local, local - (is_old ? before : after));
      }
    }
  }
  return found;
}

/// A local time with a zone behind it: by the pattern of datetimes, and as a date and a time.
void expect_read(VXLocale* locale, const std::string& directive, int64_t local, const std::string& zone, int64_t utc) {
  VXLocaleData& data = *locale->localeData;
  const std::string pattern = "%Y-%m-%d %H:%M:%S " + directive;
  for (NLSName* const entry : {&data.datetimePattern, &data.timePattern}) {
    const int from = entry == &data.timePattern ? 9 : 0;
    entry->length = std::copy(pattern.begin() + from, pattern.end(), entry->text) - entry->text;
  }
  const time_t t = local;
  tm fields{};
  char text[80];
  const size_t length = strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S ", gmtime_r(&t, &fields));
  const std::string bytes = std::string(text, length) + zone;
  for (const uint32_t kind : {0u, 4u}) {
    double value = 0;
    int64_t consumed = 0;
    locale->ops.NLSBufToDatetimeU(locale, reinterpret_cast<const uint8_t*>(bytes.data()),
                                  static_cast<int64_t>(bytes.size()), kind, &value, &consumed);
    ASSERT_EQ(value, static_cast<double>(utc + offset(utc) - epoch)) << bytes << ", kind " << kind;
    ASSERT_EQ(consumed, static_cast<int64_t>(bytes.size())) << bytes << ", kind " << kind;
  }
}

TEST(Datetimes, ZonesAndOffsetsAgreeWithTheCLibrary) {
  VXHost* host = nullptr;
  ASSERT_EQ(vxhostOpen(nullptr, &host), 0u) << vxhostOpenFailure();
  for (const char* const zone : zones) {
    live_in(zone);
    const auto times = local_times();
    ASSERT_GE(times.size(), 32u);
    // The locale lives in the zone itself, in two others far away, and in none.
    for (const char* const home : {zone, "America/St_Johns", "Australia/Lord_Howe", "UTC"}) {
      SCOPED_TRACE(home);
      live_in(home);
      VXLocale* locale = nullptr;
      ASSERT_EQ(vxhostLocale(host, "en_US", home, 1, &locale), 0u);
      for (const auto& [local, utc] : times) {
        expect_read(locale, "%Z", local, zone, utc);
        if (home == zone) {
          expect_read(locale, "%Z", local, "xst", utc);  // the locale's own zone, whichever that is
          // The moment is certain, so that both of a repeated hour can be said.
          expect_read(locale, "%z", utc, "+00:00", utc);
          expect_read(locale, "%z", utc - 12600, "-0330", utc);
          expect_read(locale, "%z", utc + 46740, "+12:59", utc);
        }
        if (HasFatalFailure()) return;
      }
    }
  }
  vxhostClose(host);
}

}  // namespace
