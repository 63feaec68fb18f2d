// Offsets, held against the C library, which reads the same rules by code of its own.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "host/accounting.h"
#include "host/zone_service.h"
#include "host/zone_table.h"
#include "tests/host/temporary_folder.h"

namespace {

using vxhost::ZoneService;

const vxhost::ZoneTable& table() {
  static const vxhost::ZoneTable made(vxhost::ZoneTable::system_folder());
  return made;
}

std::unique_ptr<VXZone> open(const std::string& name) {
  static const ZoneService service(table());
  return std::unique_ptr<VXZone>(service.open(name));
}

constexpr int64_t epoch = -315619200;  // 1960-01-01 in Unix time
constexpr int64_t day = 86400;

/// Makes the C library use one zone while it lives.
class SystemZone {
 public:
  explicit SystemZone(const std::string& name) {
    if (const char* const old = getenv("TZ")) before_ = old;
    setenv("TZ", (':' + table().folder() + '/' + name).c_str(), 1);
    tzset();
  }
  ~SystemZone() {
    if (before_.empty()) unsetenv("TZ");
    else setenv("TZ", before_.c_str(), 1);
    tzset();
  }
  SystemZone(const SystemZone&) = delete;
  SystemZone& operator=(const SystemZone&) = delete;

  static tm at(int64_t unix_time) {
    const time_t t = unix_time;
    tm fields{};
    EXPECT_NE(localtime_r(&t, &fields), nullptr);
    return fields;
  }
  static int64_t offset(int64_t unix_time) { return at(unix_time).tm_gmtoff; }

 private:
  std::string before_;
};

void expect_utc(const VXZone& zone, int64_t unix_time) {
  const tm wanted = SystemZone::at(unix_time);
  const auto found = ZoneService::at(zone, VX_ZONE_FROM_UTC, static_cast<double>(unix_time - epoch));
  ASSERT_TRUE(found);
  ASSERT_EQ(found->offset, wanted.tm_gmtoff) << unix_time;
  ASSERT_STREQ(found->abbreviation, wanted.tm_zone) << unix_time;
  ASSERT_EQ(found->summer_time, wanted.tm_isdst > 0) << unix_time;
}

void expect_local(const VXZone& zone, int64_t local, int64_t offset) {
  const auto found = ZoneService::at(zone, VX_ZONE_FROM_LOCAL, static_cast<double>(local - epoch));
  ASSERT_TRUE(found);
  ASSERT_EQ(found->offset, offset) << local;
}

/// The moments from 1850 to 2500 at which the C library changes the zone's offset.
std::vector<int64_t> changes() {
  std::vector<int64_t> found;
  const int64_t step = 6 * day;
  int64_t at = -3786825600;
  for (int64_t offset = SystemZone::offset(at); at < 16725225600; at += step) {
    const int64_t next = SystemZone::offset(at + step);
    if (next == offset) continue;
    int64_t low = at, high = at + step;
    while (high - low > 1) {
      const int64_t middle = low + (high - low) / 2;
      (SystemZone::offset(middle) == offset ? low : high) = middle;
    }
    found.push_back(high);
    offset = next;
  }
  return found;
}

class Zones : public testing::TestWithParam<const char*> {};

TEST_P(Zones, AgreeWithTheCLibraryAtEveryChange) {
  const auto zone = open(GetParam());
  ASSERT_NE(zone, nullptr);
  const SystemZone system(GetParam());
  const std::vector<int64_t> all = changes();
  for (size_t i = 0; i < all.size(); ++i) {
    const int64_t change = all[i];
    const int64_t before = SystemZone::offset(change - 1);
    const int64_t after = SystemZone::offset(change);
    for (const int64_t near : {-3601, -1, 0, 1, 3600}) ASSERT_NO_FATAL_FAILURE(expect_utc(*zone, change + near));
    // Two changes within two days of each other would want a third offset below.
    if (i > 0 && change - all[i - 1] < 2 * day) continue;
    if (i + 1 < all.size() && all[i + 1] - change < 2 * day) continue;
    // The old offset holds up to the end of what is repeated or skipped.
    const int64_t end = change + std::max(before, after);
    const int64_t start = change + std::min(before, after);
    for (const int64_t local : {start - 3600, start - 1, start, (start + end) / 2, end - 1}) {
      ASSERT_NO_FATAL_FAILURE(expect_local(*zone, local, before));
    }
    for (const int64_t local : {end, end + 1, end + 3600}) ASSERT_NO_FATAL_FAILURE(expect_local(*zone, local, after));
  }
}

TEST_P(Zones, AgreeWithTheCLibraryAtRandomTimes) {
  const auto zone = open(GetParam());
  ASSERT_NE(zone, nullptr);
  const SystemZone system(GetParam());
  std::mt19937_64 random(20261121);
  std::uniform_int_distribution<int64_t> any(-3786825600, 16725225600);
  for (int i = 0; i < 3000; ++i) {
    const int64_t t = any(random);
    ASSERT_NO_FATAL_FAILURE(expect_utc(*zone, t));
    if (SystemZone::offset(t - 2 * day) == SystemZone::offset(t + 2 * day)) {
      ASSERT_NO_FATAL_FAILURE(expect_local(*zone, t + SystemZone::offset(t), SystemZone::offset(t)));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(TwentyZones, Zones,
                         testing::Values("Europe/Berlin", "Europe/London", "Europe/Dublin", "Europe/Moscow",
                                         "Africa/Casablanca", "Africa/Monrovia", "America/New_York", "America/St_Johns",
                                         "America/Sao_Paulo", "America/Scoresbysund", "Asia/Tokyo", "Asia/Kolkata",
                                         "Asia/Kathmandu", "Asia/Gaza", "Australia/Lord_Howe", "Pacific/Apia",
                                         "Pacific/Chatham", "Antarctica/Troll", "EST5EDT", "Etc/UTC"));

TEST(ZoneService, EveryZoneOpensAndAgreesAtSomeTimes) {
  std::mt19937_64 random(1);
  std::uniform_int_distribution<int64_t> any(-3786825600, 16725225600);
  for (const auto* id : table().identifiers()) {
    SCOPED_TRACE(id->name);
    const auto zone = open(id->name);
    ASSERT_NE(zone, nullptr);
    EXPECT_EQ(zone->id, id->canonical);
    const SystemZone system(id->canonical->name);
    for (int i = 0; i < 40; ++i) ASSERT_NO_FATAL_FAILURE(expect_utc(*zone, any(random)));
  }
}

// A file that is cut short anywhere, or has one byte of any value behind its headers: no zone, or one whose offsets are
// less than a day.
TEST(ZoneService, DamagedFiles) {
  std::ifstream in(table().folder() + "/Europe/Berlin", std::ios::binary);
  const std::string whole{std::istreambuf_iterator<char>(in), {}};
  const size_t second_header = whole.find("TZif", 4);
  ASSERT_NE(second_header, std::string::npos);
  const vxtest::TemporaryFolder folder;
  std::string names = "# version damaged\n";
  for (size_t i = 0; i < 2 * whole.size(); ++i) names += "Z N" + std::to_string(i) + " 1 - A\n";
  folder.write("tzdata.zi", names);
  const vxhost::ZoneTable damaged(folder.path());
  const ZoneService service(damaged);
  const struct Quiet {  // the reader of the files tells what it does not like
    std::ostringstream told;
    std::streambuf* const before = std::clog.rdbuf(told.rdbuf());
    ~Quiet() { std::clog.rdbuf(before); }
  } quiet;
  int64_t opened = 0, refused = 0;
  for (size_t i = 0; i < 2 * whole.size(); ++i) {
    const size_t place = i / 2;
    constexpr size_t header = 44;
    if (place < header || (place >= second_header && place < second_header + header)) continue;
    std::string text = whole;
    if (i % 2 == 0) text.resize(place);
    else text[place] = "\x80\x7F\xFF\x01\x00"[place % 5];
    const std::string name = "N" + std::to_string(i);
    folder.write(name, text);
    const std::unique_ptr<VXZone> zone(service.open(name));
    std::filesystem::remove(folder.file(name));
    ++(zone != nullptr ? opened : refused);
    if (zone == nullptr) continue;
    for (const double seconds : {-1e14, -138061.0 * day, -3e9, 0.0, 1e9, 2e9, 6589335.0 * day, 1e14}) {
      for (const int32_t direction : {VX_ZONE_FROM_LOCAL, VX_ZONE_FROM_UTC}) {
        const auto moment = ZoneService::at(*zone, direction, seconds);
        ASSERT_TRUE(moment && std::abs(moment->offset) < day) << name << " at " << seconds;
      }
    }
  }
  EXPECT_GT(opened, 1000);
  EXPECT_GT(refused, 1000);
}

TEST(ZoneService, RepeatedAndSkippedLocalTimes) {
  const auto zone = open("Europe/Berlin");
  const auto local = [&](int64_t days, double seconds) {
    return ZoneService::at(*zone, VX_ZONE_FROM_LOCAL, static_cast<double>(days * day) + seconds)->offset;
  };
  constexpr int64_t spring = 24194, autumn = 24404;  // 2026-03-29, 2026-10-25
  EXPECT_EQ(local(spring, 1.99 * 3600), 3600);
  EXPECT_EQ(local(spring, 2.00 * 3600), 3600);  // skipped: as before the change
  EXPECT_EQ(local(spring, 2.99 * 3600), 3600);
  EXPECT_EQ(local(spring, 3.00 * 3600), 7200);
  EXPECT_EQ(local(autumn, 1.99 * 3600), 7200);
  EXPECT_EQ(local(autumn, 2.00 * 3600), 7200);  // repeated: its first occurrence
  EXPECT_EQ(local(autumn, 2.99 * 3600), 7200);
  EXPECT_EQ(local(autumn, 3.00 * 3600), 3600);
  EXPECT_EQ(local(autumn, 3.00 * 3600 - 0.001), 7200);  // a fraction belongs to the second that has begun
}

TEST(ZoneService, FarAwayAndNoNumbers) {
  const auto zone = open("America/New_York");
  // The ends of what dates can say: 1582-01-01 and 20000-12-31, in local mean time and by the last rule.
  for (const int32_t direction : {VX_ZONE_FROM_LOCAL, VX_ZONE_FROM_UTC}) {
    EXPECT_EQ(ZoneService::at(*zone, direction, -138061.0 * day)->offset, -17762);
    EXPECT_EQ(ZoneService::at(*zone, direction, 6589335.0 * day)->offset, -5 * 3600);
    EXPECT_EQ(ZoneService::at(*zone, direction, 6589335.0 * day - 180.0 * day)->offset, -4 * 3600);
    for (const double wild : {8e15, -8e15, 1e14, -1e14}) EXPECT_TRUE(ZoneService::at(*zone, direction, wild)) << wild;
    for (const double none : {9e15, -9e15, 1e300, std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(), std::nan("")}) {
      EXPECT_FALSE(ZoneService::at(*zone, direction, none)) << none;
    }
  }
}

TEST(ZoneService, Operations) {
  const int64_t before = vxhost::alive();
  ZoneService made(table());
  VXZoneService* const service = &made;
  static constexpr VXChar name[] = {'j', 'a', 'P', 'A', 'N', ' ', ' '};
  VXZone* const zone = service->ops->open(service, name, 7, 0);
  ASSERT_NE(zone, nullptr);
  EXPECT_EQ(service->ops->open(service, name, 4, 0), nullptr);
  EXPECT_EQ(service->ops->open(service, name, -1, 0), nullptr);
  EXPECT_EQ(service->ops->open(service, nullptr, 0, 0), nullptr);
  EXPECT_EQ(service->ops->offset(service, zone, VX_ZONE_FROM_UTC, 0), 9 * 3600);
  EXPECT_EQ(service->ops->offset(service, zone, VX_ZONE_FROM_UTC, std::nan("")), 0);
  VXChar text[50];
  int32_t offset = 1;
  for (const auto& [room, written] : {std::pair<int64_t, int64_t>{50, 10}, {10, 10}, {4, 4}, {0, 0}, {-1, 0}}) {
    int64_t length = room;
    EXPECT_EQ(service->ops->describe(service, zone, VX_ZONE_FROM_LOCAL, 0, text, &length, &offset), 0u);
    EXPECT_EQ(length, written);
    EXPECT_EQ(std::string(text, text + length), std::string("Asia/Tokyo").substr(0, static_cast<size_t>(written)));
    EXPECT_EQ(offset, 9 * 3600);
  }
  int64_t length = 50;
  EXPECT_NE(service->ops->describe(service, zone, VX_ZONE_FROM_LOCAL, std::nan(""), text, &length, &offset), 0u);
  service->ops->close(service, zone);
  EXPECT_EQ(vxhost::alive(), before);
}

}  // namespace
