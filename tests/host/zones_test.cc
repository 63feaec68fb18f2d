// What a zone is called, which zone the system says it is in, and offsets, held against the C library, which reads the
// same rules by code of its own.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <numeric>
#include <set>
#include <sstream>

#include "host/file.h"
#include "host/system_zone.h"
#include "host/zone_service.h"
#include "tests/host/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using vxhost::ZoneService;
using vxhost::ZoneTable;

const ZoneTable zones(ZoneTable::system_folder());
constexpr int day = 86400, two_days = 2 * day;

std::string canonical(const ZoneTable& table, std::string_view name) {
  const auto* const found = table.find(name);
  return found != nullptr ? found->canonical->name : "none";
}

TEST(Zones, NamesAreThoseOfTheFilesInAnyLetterCaseAndNoOthers) {
  std::set<std::string> of_countries;
  std::ifstream countries(zones.folder() + "/zone.tab");
  for (std::string line, name; std::getline(countries, line);) {
    if (line.front() != '#' && std::istringstream(line) >> name >> name >> name) of_countries.insert(name);
  }
  size_t count = 0;
  for (const auto& entry : fs::recursive_directory_iterator(zones.folder())) {
    const std::string name = entry.path().lexically_relative(zones.folder());
    std::string magic(4, ' '), upper = name + std::string(100, ' ');
    std::ifstream(entry.path(), std::ios::binary).read(magic.data(), 4);
    const bool none = magic != "TZif" || name.starts_with("posix") || name.starts_with("right/") || name == "localtime";
    count += !none;
    const fs::path real = entry.is_symlink() && !of_countries.contains(name) ? fs::canonical(entry) : entry.path();
    std::ranges::transform(upper, upper.begin(), toupper);
    for (const auto& spelled : {name, upper})
      EXPECT_EQ(canonical(zones, spelled), none ? "none" : real.lexically_relative(zones.folder()).string());
  }
  EXPECT_GT(count, 400u);
  EXPECT_EQ(zones.identifiers().size(), count);
  for (const char* const none : {"", "   ", " UTC"}) EXPECT_EQ(canonical(zones, none), "none");
}

TEST(Zones, UtcIsKnownWithoutFilesAndNoNameLeavesTheFolder) {
  const vxtest::TemporaryFolder folder;
  const auto all = [&] {
    const ZoneTable table(folder.path());
    std::string names = table.version();
    for (const auto* id : table.identifiers()) names += ' ' + id->name + '=' + canonical(table, id->name);
    return names;
  };
  EXPECT_EQ(all(), " Etc/UTC=Etc/UTC UTC=Etc/UTC");
  folder.write("tzdata.zi", "# version test\nZ ../up 1 - A\nZ /etc/passwd 1 - A\nZ Good/One 1 - A\nZ " +
                                std::string(51, 'x') +
                                " 1 - A\nZ\nL\nL Good/One\nL Good/One Ring/A\nL Ring/B Ring/C\n"
                                "L Ring/C Ring/B\nL Gone/Zone Dangling\nZ No/Line_end");
  EXPECT_EQ(all(),
            "test Dangling=Dangling Etc/UTC=Etc/UTC Good/One=Good/One No/Line_end=No/Line_end Ring/A=Good/One "
            "Ring/B=Ring/B Ring/C=Ring/C UTC=Etc/UTC");
}

// TZ first, then /etc/localtime, then /etc/timezone.
TEST(Zones, SourcesOfTheSystemsOwn) {
  const vxtest::TemporaryFolder etc;
  const auto zone = [&](const char* tz = nullptr) {
    return vxhost::system_zone_name({tz, etc.file("localtime"), etc.file("timezone")}).value_or("none");
  };
  EXPECT_EQ(zone(), "UTC") << "neither file";
  etc.write("timezone", "Asia/Kolkata\n");
  EXPECT_EQ(zone(), "Asia/Kolkata") << "only the name";
  etc.write("localtime", "TZif");
  EXPECT_EQ(zone(), "Asia/Kolkata") << "a copied file beside the name";
  fs::remove(etc.file("timezone"));
  EXPECT_EQ(zone(), "none") << "a copied file alone";
  fs::remove(etc.file("localtime"));
  etc.link("middle", "localtime");
  etc.link("/usr/share/zoneinfo/Asia/Tokyo", "middle");
  for (const auto& [tz, name] : {std::pair<const char*, const char*>{nullptr, "Asia/Tokyo"},  // through another link
                                 {":Europe/Berlin", "Europe/Berlin"},
                                 {"", "UTC"},
                                 {"posix/Europe/Berlin", "Europe/Berlin"},
                                 {"/usr/share/zoneinfo/right/Europe/Berlin", "Europe/Berlin"},
                                 {"/opt/berlin", "none"},
                                 {"CET-1CEST,M3.5.0", "CET-1CEST,M3.5.0"}}) {  // no zone of that name will be found
    EXPECT_EQ(zone(tz), name);
  }
}

tm by_the_c_library(time_t unix_time) {
  tm fields{};
  EXPECT_NE(localtime_r(&unix_time, &fields), nullptr);
  return fields;
}

auto at(const VXZone& zone, int32_t direction, int64_t unix_time) {
  constexpr int64_t year_1960 = -315619200;
  return ZoneService::at(zone, direction, static_cast<double>(unix_time - year_1960));
}

void expect_utc(const VXZone& zone, int64_t unix_time) {
  const tm wanted = by_the_c_library(unix_time);
  const auto found = at(zone, VX_ZONE_FROM_UTC, unix_time);
  ASSERT_TRUE(found && found->offset == wanted.tm_gmtoff && found->summer_time == (wanted.tm_isdst > 0)) << unix_time;
  ASSERT_STREQ(found->abbreviation, wanted.tm_zone) << unix_time;
}

TEST(Zones, AgreeWithTheCLibraryAroundEveryChangeOfEveryZone) {
  constexpr int64_t year_1850 = -3786825600, year_2100 = 4102444800, year_2500 = 16725225600;
  constexpr int step = 10 * day;
  const ZoneService service(zones);
  const auto offset = [](int64_t t) -> int64_t { return by_the_c_library(t).tm_gmtoff; };
  int changes = 0;
  for (const auto* id : zones.identifiers()) {
    SCOPED_TRACE(id->name);
    const std::unique_ptr<VXZone> zone(service.open(id->name));
    ASSERT_TRUE(zone != nullptr && zone->id == id->canonical);
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
        const int64_t middle = std::midpoint(low, change);
        (offset(middle) == before ? low : change) = middle;
      }
      ++changes;
      for (const int64_t near : {-3601, -1, 0, 1, 3600}) ASSERT_NO_FATAL_FAILURE(expect_utc(*zone, change + near));
      // The old offset holds up to the end of what a change repeats or skips. Two changes within two days of each other
      // would want a third offset.
      const int64_t start = change + std::min(before, after), end = change + std::max(before, after);
      for (const int64_t local : {start - 3600, start - 1, start, (start + end) / 2, end - 1, end, end + 3600}) {
        if (offset(change - two_days) != before || offset(change + two_days) != after) break;
        const auto found = at(*zone, VX_ZONE_FROM_LOCAL, local);
        ASSERT_TRUE(found && found->offset == (local < end ? before : after)) << local;
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
TEST(Zones, DamagedFiles) {
  const std::string whole = vxhost::contents(zones.folder() + "/Europe/Berlin");
  const size_t second_header = whole.find("TZif", 4);
  const vxtest::TemporaryFolder folder;
  std::string names;
  for (size_t i = 0; i < 2 * whole.size(); ++i) names += "Z N" + std::to_string(i) + " 1 - A\n";
  folder.write("tzdata.zi", names);
  const ZoneTable damaged(folder.path());
  const ZoneService service(damaged);
  std::clog.rdbuf(nullptr);  // the reader of the files tells what it does not like
  int64_t opened[2] = {};
  for (size_t i = 0; i < 2 * whole.size(); ++i) {
    const size_t place = i / 2, header = 44;
    if (place < header || (place >= second_header && place < second_header + header)) continue;
    std::string text = whole;
    if (i % 2 == 0) text.resize(place);
    else text[place] = "\x80\x7F\xFF\x01\x00"[place % 5];
    const std::string name = std::to_string(i).insert(0, 1, 'N');
    folder.write(name, text);
    const std::unique_ptr<VXZone> zone(service.open(name));
    ++opened[zone != nullptr];
    for (const double seconds : {-1e14, -138061.0 * day, -3e9, 0.0, 2e9, 6589335.0 * day, 1e14}) {
      for (const int32_t direction : {VX_ZONE_FROM_LOCAL, VX_ZONE_FROM_UTC}) {
        const auto moment = zone == nullptr ? vxhost::ZoneMoment{} : ZoneService::at(*zone, direction, seconds);
        ASSERT_TRUE(moment && std::abs(moment->offset) < day) << name << " at " << seconds;
      }
    }
  }
  EXPECT_TRUE(opened[0] > 1000 && opened[1] > 1000);
}

TEST(Zones, FractionsFarAwayAndNoNumbers) {
  ZoneService made(zones);
  VXZoneService* const service = &made;
  static constexpr VXChar name[] = {'u', 's', '/', 'E', 'A', 'S', 'T', 'E', 'R', 'N', ' '};
  for (const int64_t length : {-1, 0, 4}) EXPECT_EQ(service->ops->open(service, name, length, 0), nullptr) << length;
  VXZone* const zone = service->ops->open(service, name, 11, 0);
  const auto offset = [&](double seconds) { return service->ops->offset(service, zone, VX_ZONE_FROM_UTC, seconds); };
  EXPECT_EQ(offset(-138061.0 * day), -17762);  // the ends of what dates can say: local mean time, and the last rule
  EXPECT_EQ(offset(6589335.0 * day), -5 * 3600);
  const double end = 24411.25 * day;  // of summer time in 2026; a fraction belongs to the second that has begun
  EXPECT_EQ(offset(end - 0.001) - offset(end), 3600);
  for (int64_t room = -1; room <= 50; ++room) {
    VXChar text[50] = {};
    int64_t length = room;
    int32_t described = 1;
    const auto describe = [&](double at) {
      return service->ops->describe(service, zone, VX_ZONE_FROM_UTC, at, text, &length, &described);
    };
    EXPECT_EQ(describe(end), 0u);
    EXPECT_EQ(std::string(text, text + length),
              std::string("America/New_York").substr(0, static_cast<size_t>(std::max<int64_t>(room, 0))));
    EXPECT_EQ(std::count(text + length, std::end(text), 0u), 50 - length);
    for (const double none : {9e15, -9e15, HUGE_VAL, std::nan("")}) {
      EXPECT_TRUE(offset(none) == 0 && describe(none) == VX_E_RANGE) << none;
    }
    EXPECT_EQ(described, -5 * 3600);
  }
  service->ops->close(service, zone);
}

}  // namespace
