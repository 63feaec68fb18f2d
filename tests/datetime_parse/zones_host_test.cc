// Datetimes with an offset or a zone behind them, read through the reference host and held against the C library.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

constexpr const char* zones[] = {
    "Africa/Cairo",     "Africa/Casablanca", "America/Havana",   "America/New_York",   "America/Santiago",
    "America/St_Johns", "America/Sao_Paulo", "Antarctica/Troll", "Asia/Jerusalem",     "Asia/Kathmandu",
    "Asia/Kolkata",     "Asia/Tehran",       "Asia/Tokyo",       "Australia/Adelaide", "Australia/Lord_Howe",
    "Europe/Berlin",    "Europe/Dublin",     "Europe/London",    "Europe/Moscow",      "Pacific/Apia",
    "Pacific/Auckland", "Pacific/Chatham",
};

constexpr int64_t epoch = -315619200;  // 1960-01-01 in Unix time
constexpr int64_t day = 86400;

/// The C library's answers for one zone, while it lives.
class SystemZone {
 public:
  explicit SystemZone(const char* name) {
    setenv("TZ", (std::string(":") + name).c_str(), 1);
    tzset();
  }
  ~SystemZone() {
    unsetenv("TZ");
    tzset();
  }
  SystemZone(const SystemZone&) = delete;
  SystemZone& operator=(const SystemZone&) = delete;

  static int64_t offset(int64_t utc) {
    const time_t t = utc;
    tm fields{};
    EXPECT_NE(localtime_r(&t, &fields), nullptr);
    return fields.tm_gmtoff;
  }

  /// The first moment with the new offset, between two moments of which the second has another offset.
  static int64_t change(int64_t low, int64_t high) {
    const int64_t before = offset(low);
    while (high - low > 1) {
      const int64_t middle = low + (high - low) / 2;
      (offset(middle) == before ? low : high) = middle;
    }
    return high;
  }
};

/// A local time, and the moment that it means where no other text says otherwise.
struct LocalTime {
  int64_t local, utc;
};

/// Of the offsets around a change, those in force at what they make of a local time are its readings: the earlier of
/// two; when there is none, the time was skipped, and the old offset reads it.
LocalTime reading(int64_t local, int64_t before, int64_t after) {
  const int64_t with_before = local - before, with_after = local - after;
  const bool before_holds = SystemZone::offset(with_before) == before;
  const bool after_holds = SystemZone::offset(with_after) == after;
  if (before_holds && after_holds) return {local, std::min(with_before, with_after)};
  return {local, after_holds ? with_after : with_before};
}

/// Local times of the zone in force: mid-winter and mid-summer, and around every change of some years.
std::vector<LocalTime> local_times() {
  std::vector<LocalTime> found;
  for (const int year :
       {1900, 1918, 1942, 1943, 1965, 1969, 1975, 1987, 2007, 2016, 2024, 2026, 2039, 2050, 2100, 2400}) {
    tm fields{};
    fields.tm_year = year - 1900;
    fields.tm_mday = 1;
    const int64_t start = timegm(&fields);
    int64_t last_change = start - 10 * day;
    for (int64_t at = start; at < start + 366 * day; at += 3 * day) {
      if ((at - start) % (183 * day) == 0) found.push_back({at + SystemZone::offset(at), at});
      if (SystemZone::offset(at) == SystemZone::offset(at + 3 * day)) continue;
      const int64_t change = SystemZone::change(at, at + 3 * day);
      const int64_t before = SystemZone::offset(change - 1), after = SystemZone::offset(change);
      if (change - last_change < 4 * day) continue;  // a third offset would come in
      last_change = change;
      const int64_t first = change + std::min(before, after), end = change + std::max(before, after);
      for (const int64_t local : {first - 3600, first - 1, first, (first + end) / 2, end - 1, end, end + 3600}) {
        found.push_back(reading(local, before, after));
      }
    }
  }
  return found;
}

std::string written(int64_t local, const char* separator, const std::string& zone) {
  const time_t t = local;
  tm fields{};
  gmtime_r(&t, &fields);
  char text[80];
  snprintf(text, sizeof text, "%04d-%02d-%02d%s%02d:%02d:%02d %s", fields.tm_year + 1900, fields.tm_mon + 1,
           fields.tm_mday, separator, fields.tm_hour, fields.tm_min, fields.tm_sec, zone.c_str());
  return text;
}

void set(NLSName& entry, std::string_view text) {
  entry.length = static_cast<int64_t>(text.size());
  std::copy(text.begin(), text.end(), entry.text);
}

class DatetimesIn : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    ASSERT_EQ(vxhostOpen(nullptr, &host_), 0u) << vxhostOpenFailure();
    ASSERT_EQ(vxhostLocale(host_, "en_US", "UTC", 1, &locale_), 0u);
  }
  void TearDown() override { vxhostClose(host_); }

  /// `directive` stands behind the time of day, in the pattern of datetimes and in that of times.
  void use_patterns(std::string_view directive) {
    set(locale_->localeData->datePattern, "%Y-%m-%d");
    set(locale_->localeData->timePattern, std::string("%H:%M:%S ").append(directive));
    set(locale_->localeData->datetimePattern, std::string("%Y-%m-%d %H:%M:%S ").append(directive));
  }
  void live_in(std::string_view zone) {
    const std::vector<VXChar> id(zone.begin(), zone.end());
    ASSERT_EQ(locale_->ops.NLSSetTimezoneId(locale_, id.data(), static_cast<int64_t>(id.size())), 0u) << zone;
  }
  /// By the pattern of datetimes, strictly and leniently, and as a date and a time; in both flavours.
  void expect_everywhere(int64_t local, const std::string& zone, int64_t expected) {
    const struct {
      uint32_t kind;
      const char* separator;
    } roads[] = {{0, " "}, {8, " "}, {4, "T"}};
    for (const auto& road : roads) {
      const std::string text = written(local, road.separator, zone);
      const std::vector<VXChar> units(text.begin(), text.end());
      const auto length = static_cast<int64_t>(text.size());
      double value = 0, value_u = 0;
      int64_t consumed = 0, consumed_u = 0;
      ASSERT_EQ(locale_->ops.NLSBufToDatetime(locale_, units.data(), length, road.kind, &value, &consumed), 0u) << text;
      ASSERT_EQ(locale_->ops.NLSBufToDatetimeU(locale_, reinterpret_cast<const uint8_t*>(text.data()), length,
                                               road.kind, &value_u, &consumed_u),
                0u)
          << text;
      ASSERT_EQ(value, static_cast<double>(expected - epoch)) << text << ", kind " << road.kind;
      ASSERT_EQ(value_u, value) << text;
      ASSERT_EQ(consumed, length) << text;
      ASSERT_EQ(consumed_u, length) << text;
    }
  }

  /// The zone itself, two others far away, and none.
  static std::vector<const char*> homes() {
    const auto place = static_cast<size_t>(std::find(std::begin(zones), std::end(zones), std::string_view(GetParam())) -
                                           std::begin(zones));
    return {GetParam(), zones[(place + 7) % std::size(zones)], zones[(place + 13) % std::size(zones)], "UTC"};
  }

  VXHost* host_ = nullptr;
  VXLocale* locale_ = nullptr;
};

TEST_P(DatetimesIn, NamedZonesAgreeWithTheCLibrary) {
  std::vector<LocalTime> times;
  {
    const SystemZone there(GetParam());
    times = local_times();
  }
  ASSERT_GE(times.size(), 32u);
  use_patterns("%Z");
  for (const char* const home : homes()) {
    SCOPED_TRACE(home);
    const SystemZone here(home);
    live_in(home);
    for (const LocalTime& time : times) {
      const int64_t expected = time.utc + SystemZone::offset(time.utc);
      ASSERT_NO_FATAL_FAILURE(expect_everywhere(time.local, GetParam(), expected));
      // The name of the locale's own zone, whichever that is.
      if (home == GetParam()) {
        ASSERT_NO_FATAL_FAILURE(expect_everywhere(time.local, "xst", expected));
      }
    }
  }
}

TEST_P(DatetimesIn, OffsetsAgreeWithTheCLibrary) {
  const struct {
    const char* text;
    int64_t seconds;
  } offsets[] = {{"+00:00", 0},     {"-00:00", 0},      {"+01:00", 3600}, {"-0330", -12600}, {"+5:45", 20700},
                 {"+12:59", 46740}, {"-12:00", -43200}, {"0900", 32400},  {"-9", -32400}};
  use_patterns("%z");
  const SystemZone here(GetParam());
  live_in(GetParam());
  for (const LocalTime& time : local_times()) {
    for (const auto& offset : offsets) {
      // The moment is certain, so that both of a repeated hour can be said.
      ASSERT_NO_FATAL_FAILURE(
          expect_everywhere(time.utc + offset.seconds, offset.text, time.utc + SystemZone::offset(time.utc)));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Zones, DatetimesIn, testing::ValuesIn(zones), [](const auto& tested) {
  std::string name = tested.param;
  std::replace(name.begin(), name.end(), '/', '_');
  return name;
});

TEST(WhereTheClocksChange, RepeatedTimesAreTheFirstAndSkippedOnesRunOn) {
  VXHost* host = nullptr;
  VXLocale* locale = nullptr;
  ASSERT_EQ(vxhostOpen(nullptr, &host), 0u) << vxhostOpenFailure();
  ASSERT_EQ(vxhostLocale(host, "en_US", "UTC", 1, &locale), 0u);
  set(locale->localeData->datetimePattern, "%Y-%m-%d %H:%M:%S %Z");
  const struct {
    const char *text, *utc;
  } cases[] = {
      {"2026-10-25 01:59:59 Europe/Berlin", "2026-10-24 23:59:59 UTC"},
      {"2026-10-25 02:30:00 Europe/Berlin", "2026-10-25 00:30:00 UTC"},
      {"2026-10-25 03:00:00 Europe/Berlin", "2026-10-25 02:00:00 UTC"},
      {"2026-03-29 02:00:00 Europe/Berlin", "2026-03-29 01:00:00 UTC"},
      {"2026-03-29 02:30:00 Europe/Berlin", "2026-03-29 01:30:00 UTC"},
      {"2026-03-29 03:00:00 Europe/Berlin", "2026-03-29 01:00:00 UTC"},
      {"1969-10-26 01:30:00 America/New_York", "1969-10-26 05:30:00 UTC"},
      {"1969-04-27 02:30:00 America/New_York", "1969-04-27 07:30:00 UTC"},
      {"2050-11-06 01:30:00 America/New_York", "2050-11-06 05:30:00 UTC"},
      {"2050-03-13 02:30:00 America/New_York", "2050-03-13 07:30:00 UTC"},
      {"2011-12-30 12:00:00 Pacific/Apia", "2011-12-30 22:00:00 UTC"},  // a day that was left out
  };
  for (const auto& c : cases) {
    double value = 0, utc = 1;
    for (const auto& [text, out] : {std::pair{c.text, &value}, std::pair{c.utc, &utc}}) {
      const std::string_view view = text;
      int64_t consumed = 0;
      EXPECT_EQ(locale->ops.NLSBufToDatetimeU(locale, reinterpret_cast<const uint8_t*>(view.data()),
                                              static_cast<int64_t>(view.size()), 0, out, &consumed),
                0u)
          << text;
    }
    EXPECT_EQ(value, utc) << c.text;
  }
  vxhostClose(host);
}

}  // namespace
