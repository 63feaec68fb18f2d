// Offsets, held against the C library, which reads the same rules by code of its own.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>

#include "host/file.h"
#include "host/zone_service.h"
#include "tests/host/temporary_folder.h"

namespace {

using vxhost::ZoneService;

const vxhost::ZoneTable zones(vxhost::ZoneTable::system_folder());
constexpr int64_t epoch = -315619200;  // 1960-01-01 in Unix time
constexpr int day = 86400;

tm by_the_c_library(int64_t unix_time) {
  const time_t t = unix_time;
  tm fields{};
  EXPECT_NE(localtime_r(&t, &fields), nullptr);
  return fields;
}
int64_t offset(int64_t unix_time) { return by_the_c_library(unix_time).tm_gmtoff; }

void expect_utc(const VXZone& zone, int64_t unix_time) {
  const tm wanted = by_the_c_library(unix_time);
  const auto found = ZoneService::at(zone, VX_ZONE_FROM_UTC, static_cast<double>(unix_time - epoch));
  ASSERT_TRUE(found && found->offset == wanted.tm_gmtoff) << unix_time;
  ASSERT_STREQ(found->abbreviation, wanted.tm_zone) << unix_time;
  ASSERT_EQ(found->summer_time, wanted.tm_isdst > 0) << unix_time;
}

/// The old offset holds up to the end of what a change repeats or skips.
void expect_local(const VXZone& zone, int64_t change, int64_t before, int64_t after) {
  const int64_t end = change + std::max(before, after);
  const int64_t start = change + std::min(before, after);
  for (const int64_t local : {start - 3600, start - 1, start, (start + end) / 2, end - 1, end, end + 1, end + 3600}) {
    const auto found = ZoneService::at(zone, VX_ZONE_FROM_LOCAL, static_cast<double>(local - epoch));
    ASSERT_TRUE(found && found->offset == (local < end ? before : after)) << local;
  }
}

TEST(ZoneService, AgreesWithTheCLibraryAroundEveryChangeOfEveryZone) {
  constexpr int64_t year_1850 = -3786825600, year_2100 = 4102444800, year_2500 = 16725225600;
  constexpr int step = 10 * day;
  const ZoneService service(zones);
  int changes = 0;
  for (const auto* id : zones.identifiers()) {
    SCOPED_TRACE(id->name);
    const std::unique_ptr<VXZone> zone(service.open(id->name));
    ASSERT_NE(zone, nullptr);
    ASSERT_EQ(zone->id, id->canonical);
    if (id->canonical != id) continue;
    setenv("TZ", (':' + zones.folder() + '/' + id->name).c_str(), 1);
    tzset();
    for (int64_t t = year_1850; t < year_2500; t += 1234 * day + 567) ASSERT_NO_FATAL_FAILURE(expect_utc(*zone, t));
    int64_t before = offset(year_1850);
    for (int64_t t = year_1850; t < year_2100; t += step) {
      const int64_t after = offset(t + step);
      if (after == before) continue;
      int64_t low = t, change = t + step;
      while (change - low > 1) {
        const int64_t middle = (low + change) / 2;
        (offset(middle) == before ? low : change) = middle;
      }
      ++changes;
      for (const int64_t near : {-3601, -1, 0, 1, 3600}) ASSERT_NO_FATAL_FAILURE(expect_utc(*zone, change + near));
      // Two changes within two days of each other would want a third offset below.
      if (offset(change - 2 * day) == before && offset(change + 2 * day) == after) {
        ASSERT_NO_FATAL_FAILURE(expect_local(*zone, change, before, after));
      }
      before = after;
    }
  }
  unsetenv("TZ");
  tzset();
  EXPECT_GT(changes, 30000);
}

// A file that is cut short anywhere, or has one byte of any value behind its headers: no zone, or one whose offsets are
// less than a day.
TEST(ZoneService, DamagedFiles) {
  const std::string whole = vxhost::contents(zones.folder() + "/Europe/Berlin");
  const size_t second_header = whole.find("TZif", 4);
  const vxtest::TemporaryFolder folder;
  std::string names;
  for (size_t i = 0; i < 2 * whole.size(); ++i) names += "Z N" + std::to_string(i) + " 1 - A\n";
  folder.write("tzdata.zi", names);
  const vxhost::ZoneTable damaged(folder.path());
  const ZoneService service(damaged);
  std::streambuf* const log = std::clog.rdbuf(nullptr);  // the reader of the files tells what it does not like
  int64_t opened = 0, refused = 0;
  for (size_t i = 0; i < 2 * whole.size(); ++i) {
    const size_t place = i / 2;
    constexpr size_t header = 44;
    if (place < header || (place >= second_header && place < second_header + header)) continue;
    std::string text = whole;
    if (i % 2 == 0) text.resize(place);
    else text[place] = "\x80\x7F\xFF\x01\x00"[place % 5];
    const std::string name = std::to_string(i).insert(0, 1, 'N');
    folder.write(name, text);
    const std::unique_ptr<VXZone> zone(service.open(name));
    std::filesystem::remove(folder.file(name));
    ++(zone != nullptr ? opened : refused);
    for (const double seconds : {-1e14, -138061.0 * day, -3e9, 0.0, 1e9, 2e9, 6589335.0 * day, 1e14}) {
      for (const int32_t direction : {VX_ZONE_FROM_LOCAL, VX_ZONE_FROM_UTC}) {
        if (zone == nullptr) continue;
        const auto moment = ZoneService::at(*zone, direction, seconds);
        ASSERT_TRUE(moment && std::abs(moment->offset) < day) << name << " at " << seconds;
      }
    }
  }
  std::clog.rdbuf(log);
  std::clog.clear();
  EXPECT_GT(opened, 1000);
  EXPECT_GT(refused, 1000);
}

TEST(ZoneService, FarAwayFractionsAndNoNumbers) {
  ZoneService made(zones);
  VXZoneService* const service = &made;
  static constexpr VXChar name[] = {'u', 's', '/', 'E', 'A', 'S', 'T', 'E', 'R', 'N', ' '};
  for (const int64_t length : {-1, 0, 4}) EXPECT_EQ(service->ops->open(service, name, length, 0), nullptr) << length;
  VXZone* const zone = service->ops->open(service, name, 11, 0);
  ASSERT_NE(zone, nullptr);
  for (const int32_t direction : {VX_ZONE_FROM_LOCAL, VX_ZONE_FROM_UTC}) {
    const auto offset = [&](double seconds) { return service->ops->offset(service, zone, direction, seconds); };
    // The ends of what dates can say: 1582-01-01 and 20000-12-31, in local mean time and by the last rule.
    EXPECT_EQ(offset(-138061.0 * day), -17762);
    EXPECT_EQ(offset(6589335.0 * day), -5 * 3600);
    EXPECT_EQ(offset(6589155.0 * day), -4 * 3600);
    for (const double wild : {8e15, -8e15}) EXPECT_NE(offset(wild), 0) << wild;
    // A fraction belongs to the second that has begun: the end of summer time in 2026.
    const double end = 24411.0 * day + (direction == VX_ZONE_FROM_LOCAL ? 2 : 6) * 3600;
    EXPECT_EQ(offset(end - 0.001) - offset(end), 3600);
    const std::string id = "America/New_York";
    for (int64_t room = -1; room <= 50; ++room) {
      VXChar text[50] = {};
      int64_t length = room;
      int32_t described = 1;
      EXPECT_EQ(service->ops->describe(service, zone, direction, end, text, &length, &described), 0u);
      EXPECT_EQ(std::string(text, text + length), id.substr(0, static_cast<size_t>(std::max<int64_t>(room, 0))));
      EXPECT_EQ(std::count(text + length, std::end(text), 0u), 50 - length);
      for (const double none : {9e15, -9e15, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
        EXPECT_EQ(offset(none), 0) << none;
        EXPECT_EQ(service->ops->describe(service, zone, direction, none, text, &length, &described), VX_E_RANGE);
      }
      EXPECT_EQ(described, -5 * 3600);
    }
  }
  service->ops->close(service, zone);
}

}  // namespace
