// Offsets, held against the C library, which reads the same rules by code of its own.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>
#include <sstream>

#include "host/file.h"
#include "host/zone_service.h"
#include "tests/host/temporary_folder.h"

namespace {

using vxhost::ZoneService;

const vxhost::ZoneTable zones(vxhost::ZoneTable::system_folder());
constexpr int64_t epoch = -315619200;  // 1960-01-01 in Unix time
constexpr int64_t day = 86400;

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
  ASSERT_TRUE(found);
  ASSERT_EQ(found->offset, wanted.tm_gmtoff) << unix_time;
  ASSERT_STREQ(found->abbreviation, wanted.tm_zone) << unix_time;
  ASSERT_EQ(found->summer_time, wanted.tm_isdst > 0) << unix_time;
}

void expect_local(const VXZone& zone, int64_t local, int64_t wanted) {
  const auto found = ZoneService::at(zone, VX_ZONE_FROM_LOCAL, static_cast<double>(local - epoch));
  ASSERT_TRUE(found && found->offset == wanted) << local;
}

constexpr int64_t year_1850 = -3786825600, year_2100 = 4102444800, year_2500 = 16725225600;

/// The moments up to 2100 at which the C library changes the zone's offset.
std::vector<int64_t> changes() {
  std::vector<int64_t> found;
  constexpr int64_t step = 10 * day;
  int64_t at = year_1850;
  for (int64_t before = offset(at); at < year_2100; at += step) {
    const int64_t after = offset(at + step);
    if (after == before) continue;
    int64_t low = at, high = at + step;
    while (high - low > 1) {
      const int64_t middle = low + (high - low) / 2;
      (offset(middle) == before ? low : high) = middle;
    }
    found.push_back(high);
    before = after;
  }
  return found;
}

TEST(ZoneService, AgreesWithTheCLibraryAroundEveryChangeOfEveryZone) {
  const ZoneService service(zones);
  size_t all_changes = 0;
  for (const auto* id : zones.identifiers()) {
    SCOPED_TRACE(id->name);
    const std::unique_ptr<VXZone> zone(service.open(id->name));
    ASSERT_NE(zone, nullptr);
    ASSERT_EQ(zone->id, id->canonical);
    if (id->canonical != id) continue;
    setenv("TZ", (':' + zones.folder() + '/' + id->name).c_str(), 1);
    tzset();
    const std::vector<int64_t> all = changes();
    all_changes += all.size();
    for (int64_t t = year_1850; t < year_2500; t += 1234 * day + 567) ASSERT_NO_FATAL_FAILURE(expect_utc(*zone, t));
    for (size_t i = 0; i < all.size(); ++i) {
      const int64_t before = offset(all[i] - 1);
      const int64_t after = offset(all[i]);
      for (const int64_t near : {-3601, -1, 0, 1, 3600}) ASSERT_NO_FATAL_FAILURE(expect_utc(*zone, all[i] + near));
      // Two changes within two days of each other would want a third offset below.
      if (i > 0 && all[i] - all[i - 1] < 2 * day) continue;
      if (i + 1 < all.size() && all[i + 1] - all[i] < 2 * day) continue;
      // The old offset holds up to the end of what is repeated or skipped.
      const int64_t end = all[i] + std::max(before, after);
      const int64_t start = all[i] + std::min(before, after);
      for (const int64_t local : {start - 3600, start - 1, start, (start + end) / 2, end - 1}) {
        ASSERT_NO_FATAL_FAILURE(expect_local(*zone, local, before));
      }
      for (const int64_t local : {end, end + 1, end + 3600}) ASSERT_NO_FATAL_FAILURE(expect_local(*zone, local, after));
    }
  }
  unsetenv("TZ");
  tzset();
  EXPECT_GT(all_changes, 30000u);
}

// A file that is cut short anywhere, or has one byte of any value behind its headers: no zone, or one whose offsets are
// less than a day.
TEST(ZoneService, DamagedFiles) {
  const std::string whole = vxhost::contents(zones.folder() + "/Europe/Berlin");
  const size_t second_header = whole.find("TZif", 4);
  const vxtest::TemporaryFolder folder;
  std::ostringstream names;
  for (size_t i = 0; i < 2 * whole.size(); ++i) names << "Z N" << i << " 1 - A\n";
  folder.write("tzdata.zi", names.str());
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
  const std::unique_ptr<VXZone> zone(ZoneService(zones).open("America/New_York"));
  for (const int32_t direction : {VX_ZONE_FROM_LOCAL, VX_ZONE_FROM_UTC}) {
    const auto offset = [&](double seconds) { return ZoneService::at(*zone, direction, seconds)->offset; };
    // The ends of what dates can say: 1582-01-01 and 20000-12-31, in local mean time and by the last rule.
    EXPECT_EQ(offset(-138061.0 * day), -17762);
    EXPECT_EQ(offset(6589335.0 * day), -5 * 3600);
    EXPECT_EQ(offset(6589155.0 * day), -4 * 3600);
    for (const double wild : {8e15, -8e15}) EXPECT_TRUE(ZoneService::at(*zone, direction, wild)) << wild;
    for (const double none : {9e15, -9e15, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
      EXPECT_FALSE(ZoneService::at(*zone, direction, none)) << none;
    }
    // A fraction belongs to the second that has begun: the end of summer time in 2026.
    const double end = 24411.0 * day + (direction == VX_ZONE_FROM_LOCAL ? 2 : 6) * 3600;
    EXPECT_EQ(offset(end - 0.001) - offset(end), 3600);
  }
}

TEST(ZoneService, Operations) {
  ZoneService made(zones);
  VXZoneService* const service = &made;
  static constexpr VXChar name[] = {'j', 'a', 'P', 'A', 'N', ' ', ' '};
  EXPECT_EQ(service->ops->open(service, name, 4, 0), nullptr);
  EXPECT_EQ(service->ops->open(service, name, -1, 0), nullptr);
  EXPECT_EQ(service->ops->open(service, nullptr, 0, 0), nullptr);
  VXZone* const zone = service->ops->open(service, name, 7, 0);
  ASSERT_NE(zone, nullptr);
  EXPECT_EQ(service->ops->offset(service, zone, VX_ZONE_FROM_UTC, 0), 9 * 3600);
  EXPECT_EQ(service->ops->offset(service, zone, VX_ZONE_FROM_UTC, std::nan("")), 0);
  for (int64_t room = -1; room <= 50; ++room) {
    VXChar text[50] = {};
    int64_t length = room;
    int32_t offset = 1;
    EXPECT_EQ(service->ops->describe(service, zone, VX_ZONE_FROM_LOCAL, 0, text, &length, &offset), 0u);
    EXPECT_EQ(length, std::clamp<int64_t>(room, 0, 10));
    EXPECT_EQ(std::string(text, text + length), std::string("Asia/Tokyo").substr(0, static_cast<size_t>(length)));
    EXPECT_EQ(std::count(text + length, std::end(text), 0u), 50 - length);
    EXPECT_NE(service->ops->describe(service, zone, VX_ZONE_FROM_LOCAL, HUGE_VAL, text, &length, &offset), 0u);
    EXPECT_EQ(offset, 9 * 3600);
  }
  service->ops->close(service, zone);
}

}  // namespace
