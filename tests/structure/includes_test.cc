// The real #include lines against the floors: inside the library they point downwards, and the rings around it see
// nothing but its public headers.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;

/// The longest prefix that fits a path says in which room it is; a room that is no folder of its own has the name of
/// its files.
struct Place {
  std::string_view prefix;
  int floor;
};
constexpr int ring = 10;  // host and command stand around the library
constexpr Place places[] = {{"vxnls/", 0},
                            {"include/vxnls/", 0},
                            {"unicode/", 1},
                            {"module/host_services", 1},
                            {"module/eye_catcher", 1},
                            {"module/build_texts", 1},
                            {"utf8/", 2},
                            {"kernel_strings/", 2},
                            {"calendar/", 3},
                            {"number_parse/", 3},
                            {"module/zones", 3},
                            {"module/journal", 3},
                            {"datetime_format/", 4},
                            {"datetime_parse/", 4},
                            {"number_format/", 4},
                            {"collation/", 4},
                            {"module/", 5},
                            {"host/", ring},
                            {"cli/", ring},
                            {"extras/", ring}};

constexpr Place place_of(std::string_view path) {
  Place best{"", -1};
  for (const Place& place : places) {
    if (path.starts_with(place.prefix) && place.prefix.size() > best.prefix.size()) best = place;
  }
  return best;
}

constexpr bool allowed(std::string_view file, std::string_view included) {
  const Place from = place_of(file), to = place_of(included);
  if (from.floor < 0 || to.floor < 0) return false;
  if (from.prefix == to.prefix || (from.floor == 0 && to.floor == 0)) return true;
  if (from.prefix == "extras/" && to.prefix == "cli/") return true;  // the wording of refusals
  return from.floor == ring ? to.floor == 0 : to.floor < from.floor;
}

static_assert(allowed("datetime_format/a.cc", "module/host_services.h") && allowed("calendar/a.cc", "calendar/b.h"));
static_assert(!allowed("calendar/a.cc", "number_parse/b.h"));  // the same floor, another room
static_assert(!allowed("datetime_format/a.cc", "module/locale.h") && !allowed("include/vxnls/a.h", "unicode/b.h"));
static_assert(!allowed("cli/main.cc", "host/pool.h") && !allowed("calendar/a.cc", "b.h"));  // not from the root

TEST(Includes, PointDownwards) {
  const fs::path root = VX_SOURCE_DIR;
  const std::regex include("\\s*#\\s*include\\s*\"([^\"]*)\".*");
  int lines = 0;
  for (const Place& place : places) {
    if (!place.prefix.ends_with('/') || place.prefix == "vxnls/") continue;
    for (const auto& entry : fs::recursive_directory_iterator(root / place.prefix)) {
      std::ifstream in(entry.path());
      std::smatch found;
      for (std::string line; std::getline(in, line);) {
        if (line.find("include") == std::string::npos || !std::regex_match(line, found, include)) continue;
        const std::string file = fs::relative(entry.path(), root).generic_string();
        EXPECT_TRUE(allowed(file, found.str(1))) << file << ": " << line;
        ++lines;
      }
    }
  }
  EXPECT_GT(lines, 500) << "where are the sources?";
}

}  // namespace
