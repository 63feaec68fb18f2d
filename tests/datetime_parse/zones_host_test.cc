// Datetimes with an offset or a zone behind them, read through the reference host and held against the C library.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

constexpr const char* zones[] = {"Africa/Cairo",     "Africa/Casablanca",  "America/Havana",      "America/New_York",
                                 "America/Santiago", "America/St_Johns",   "America/Sao_Paulo",   "Antarctica/Troll",
                                 "Asia/Jerusalem",   "Asia/Kathmandu",     "Asia/Kolkata",        "Asia/Tehran",
                                 "Asia/Tokyo",       "Australia/Adelaide", "Australia/Lord_Howe", "Europe/Berlin",
                                 "Europe/Dublin",    "Europe/London",      "Europe/Moscow",       "Pacific/Apia",
                                 "Pacific/Auckland", "Pacific/Chatham"};

constexpr int64_t epoch = -315619200;  // 1960-01-01 in Unix time
constexpr int64_t day = 86400;

/// The C library lives in a zone.
void live_in(const char* zone) {
  setenv("TZ", (std::string(":") + zone).c_str(), 1);
  tzset();
}

int64_t offset(int64_t utc) {
  const time_t t = utc;
  tm fields{};
  EXPECT_NE(localtime_r(&t, &fields), nullptr);
  return fields.tm_gmtoff;
}

/// A local time, and the moment that it means where no other text says otherwise.
struct LocalTime {
  int64_t local, utc;
};

/// Local times of the zone in force: in winter and in summer, and around every change of some years. The old offset
/// holds up to the end of what a change repeats or skips.
std::vector<LocalTime> local_times() {
  std::vector<LocalTime> found;
  for (const int year :
       {1900, 1918, 1942, 1943, 1965, 1969, 1975, 1987, 2007, 2016, 2024, 2026, 2039, 2050, 2100, 2400}) {
    tm first_day{};
    first_day.tm_year = year - 1900, first_day.tm_mday = 1;
    const int64_t start = timegm(&first_day);
    for (int64_t at = start; at < start + 366 * day; at += 3 * day) {
      const int64_t before = offset(at), after = offset(at + 3 * day);
      if ((at - start) % (183 * day) == 0) found.push_back({at + before, at});
      if (before == after) continue;
      int64_t low = at, change = at + 3 * day;
      while (change - low > 1) {
        const int64_t middle = (low + change) / 2;
        (offset(middle) == before ? low : change) = middle;
      }
      // A third offset would come in where two changes lie close together.
      if (offset(change - 4 * day) != before || offset(change + 4 * day) != after) continue;
      const int64_t first = change + std::min(before, after), end = change + std::max(before, after);
      for (const int64_t local : {first - 3600, first - 1, first, (first + end) / 2, end - 1, end, end + 3600}) {
        found.push_back({local, local - (local < end ? before : after)});
      }
    }
  }
  return found;
}

void set(NLSName& entry, const std::string& text) {
  entry.length = static_cast<int64_t>(text.size());
  std::copy(text.begin(), text.end(), entry.text);
}

/// A local time with a zone behind it: by the pattern of datetimes, strictly and leniently, and as a date and a time;
/// in both flavours.
void expect_everywhere(VXLocale* locale, const std::string& directive, int64_t local, const char* zone, int64_t utc) {
  VXLocaleData& data = *locale->localeData;
  set(data.datePattern, "%Y-%m-%d");
  set(data.timePattern, "%H:%M:%S " + directive);
  set(data.datetimePattern, "%Y-%m-%d %H:%M:%S " + directive);
  const time_t t = local;
  tm fields{};
  gmtime_r(&t, &fields);
  for (const uint32_t kind : {0u, 8u, 4u}) {
    char text[80];
    strftime(text, sizeof text, kind == 4 ? "%Y-%m-%dT%H:%M:%S " : "%Y-%m-%d %H:%M:%S ", &fields);
    const std::string bytes = std::string(text) + zone;
    const std::vector<VXChar> units(bytes.begin(), bytes.end());
    const auto length = static_cast<int64_t>(bytes.size());
    double value = 0, value_u = 0;
    int64_t consumed = 0, consumed_u = 0;
    locale->ops.NLSBufToDatetime(locale, units.data(), length, kind, &value, &consumed);
    locale->ops.NLSBufToDatetimeU(locale, reinterpret_cast<const uint8_t*>(bytes.data()), length, kind, &value_u,
                                  &consumed_u);
    EXPECT_EQ(value, static_cast<double>(utc + offset(utc) - epoch)) << bytes << ", kind " << kind;
    ASSERT_TRUE(value_u == value && consumed == length && consumed_u == length) << bytes << ", kind " << kind;
  }
}

TEST(Datetimes, ZonesAndOffsetsAgreeWithTheCLibrary) {
  VXHost* host = nullptr;
  ASSERT_EQ(vxhostOpen(nullptr, &host), 0u) << vxhostOpenFailure();
  for (size_t place = 0; place < std::size(zones); ++place) {
    const char* const zone = zones[place];
    live_in(zone);
    const std::vector<LocalTime> times = local_times();
    ASSERT_GE(times.size(), 32u);
    // The locale lives in the zone itself, in two others far away, and in none.
    for (const char* const home :
         {zone, zones[(place + 7) % std::size(zones)], zones[(place + 13) % std::size(zones)], "UTC"}) {
      SCOPED_TRACE(home);
      live_in(home);
      VXLocale* locale = nullptr;
      ASSERT_EQ(vxhostLocale(host, "en_US", home, 1, &locale), 0u);
      for (const auto& [local, utc] : times) {
        expect_everywhere(locale, "%Z", local, zone, utc);
        if (home != zone) continue;
        expect_everywhere(locale, "%Z", local, "xst", utc);  // the locale's own zone, whichever that is
        // The moment is certain, so that both of a repeated hour can be said.
        for (const auto& [text, east] :
             {std::pair("+00:00", 0), std::pair("+01:00", 3600), std::pair("-0330", -12600), std::pair("+5:45", 20700),
              std::pair("+12:59", 46740), std::pair("-12:00", -43200), std::pair("-9", -32400)}) {
          expect_everywhere(locale, "%z", utc + east, text, utc);
        }
        if (HasFailure()) return;
      }
    }
  }
  vxhostClose(host);
}

}  // namespace
