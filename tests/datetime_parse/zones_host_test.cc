// Datetimes with an offset or a zone behind them, read through the reference host and held against the C library.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
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

/// Of the offsets around a change, those in force at what they make of a local time are its readings: the earlier of
/// two; when there is none, the time was skipped, and the old offset reads it.
LocalTime reading(int64_t local, int64_t before, int64_t after) {
  const bool before_holds = offset(local - before) == before, after_holds = offset(local - after) == after;
  if (before_holds && after_holds) return {local, local - std::max(before, after)};
  return {local, local - (after_holds ? after : before)};
}

/// Local times of the zone in force: mid-winter and mid-summer, and around every change of some years.
std::vector<LocalTime> local_times() {
  std::vector<LocalTime> found;
  for (const int year :
       {1900, 1918, 1942, 1943, 1965, 1969, 1975, 1987, 2007, 2016, 2024, 2026, 2039, 2050, 2100, 2400}) {
    tm first_day{};
    first_day.tm_year = year - 1900, first_day.tm_mday = 1;
    const int64_t start = timegm(&first_day);
    int64_t last_change = start - 10 * day;
    for (int64_t at = start; at < start + 366 * day; at += 3 * day) {
      if ((at - start) % (183 * day) == 0) found.push_back({at + offset(at), at});
      const int64_t before = offset(at), after = offset(at + 3 * day);
      int64_t low = at, change = at + 3 * day;
      while (before != after && change - low > 1) {
        const int64_t middle = (low + change) / 2;
        (offset(middle) == before ? low : change) = middle;
      }
      if (before == after || change - last_change < 4 * day) continue;  // a third offset would come in
      last_change = change;
      const int64_t first = change + std::min(before, after), end = change + std::max(before, after);
      for (const int64_t local : {first - 3600, first - 1, first, (first + end) / 2, end - 1, end, end + 3600}) {
        found.push_back(reading(local, before, after));
      }
    }
  }
  return found;
}

class DatetimesIn : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    ASSERT_EQ(vxhostOpen(nullptr, &host_), 0u) << vxhostOpenFailure();
    ASSERT_EQ(vxhostLocale(host_, "en_US", "UTC", 1, &locale_), 0u);
    set(locale_->localeData->datePattern, "%Y-%m-%d");
  }
  void TearDown() override {
    vxhostClose(host_);
    unsetenv("TZ");
  }

  static void set(NLSName& entry, std::string_view text) {
    entry.length = static_cast<int64_t>(text.size());
    std::copy(text.begin(), text.end(), entry.text);
  }
  void use(const std::string& directive) {
    set(locale_->localeData->timePattern, "%H:%M:%S " + directive);
    set(locale_->localeData->datetimePattern, "%Y-%m-%d %H:%M:%S " + directive);
  }
  /// By the pattern of datetimes, strictly and leniently, and as a date and a time; in both flavours.
  void expect_everywhere(int64_t local, const char* zone, int64_t utc) {
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
      EXPECT_EQ(locale_->ops.NLSBufToDatetime(locale_, units.data(), length, kind, &value, &consumed), 0u);
      EXPECT_EQ(locale_->ops.NLSBufToDatetimeU(locale_, reinterpret_cast<const uint8_t*>(bytes.data()), length, kind,
                                               &value_u, &consumed_u),
                0u);
      EXPECT_EQ(value, static_cast<double>(utc + offset(utc) - epoch)) << bytes << ", kind " << kind;
      ASSERT_TRUE(value_u == value && consumed == length && consumed_u == length) << bytes << ", kind " << kind;
    }
  }

  VXHost* host_ = nullptr;
  VXLocale* locale_ = nullptr;
};

TEST_P(DatetimesIn, ZonesAndOffsetsAgreeWithTheCLibrary) {
  live_in(GetParam());
  const std::vector<LocalTime> times = local_times();
  ASSERT_GE(times.size(), 32u);
  const auto place = static_cast<size_t>(std::find(std::begin(zones), std::end(zones), GetParam()) - std::begin(zones));
  // The locale lives in the zone itself, in two others far away, and in none.
  for (const char* const home :
       {GetParam(), zones[(place + 7) % std::size(zones)], zones[(place + 13) % std::size(zones)], "UTC"}) {
    SCOPED_TRACE(home);
    live_in(home);
    const std::u32string id(home, home + strlen(home));
    ASSERT_EQ(locale_->ops.NLSSetTimezoneId(locale_, reinterpret_cast<const VXChar*>(id.data()),
                                            static_cast<int64_t>(id.size())),
              0u);
    for (const auto& [local, utc] : times) {
      use("%Z");
      expect_everywhere(local, GetParam(), utc);
      if (home != GetParam()) continue;
      expect_everywhere(local, "xst", utc);  // the locale's own zone, whichever that is
      use("%z");
      // The moment is certain, so that both of a repeated hour can be said.
      for (const auto& [text, east] :
           {std::pair("+00:00", 0), std::pair("+01:00", 3600), std::pair("-0330", -12600), std::pair("+5:45", 20700),
            std::pair("+12:59", 46740), std::pair("-12:00", -43200), std::pair("-9", -32400)}) {
        expect_everywhere(utc + east, text, utc);
      }
      if (HasFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Zones, DatetimesIn, testing::ValuesIn(zones));

}  // namespace
