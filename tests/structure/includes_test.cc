// The real #include lines against the floors: inside the library they point downwards, and the rings around it see
// nothing but its public headers.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;

/// A place in the house. The longest prefix that fits a path says where it belongs.
struct Place {
  std::string_view prefix;
  int floor;
  std::string_view room;
};
constexpr int ring = 10;  // host and command stand around the library
constexpr Place places[] = {
    {"vxnls/", 0, "include"},
    {"include/vxnls/", 0, "include"},
    {"unicode/", 1, "unicode"},
    {"module/host_services", 1, "module/host_services"},
    {"module/eye_catcher", 1, "module/eye_catcher"},
    {"module/build_texts", 1, "module/build_texts"},
    {"utf8/", 2, "utf8"},
    {"kernel_strings/", 2, "kernel_strings"},
    {"calendar/", 3, "calendar"},
    {"number_parse/", 3, "number_parse"},
    {"module/zones", 3, "module/zones"},
    {"module/journal", 3, "module/journal"},
    {"datetime_format/", 4, "datetime_format"},
    {"datetime_parse/", 4, "datetime_parse"},
    {"number_format/", 4, "number_format"},
    {"collation/", 4, "collation"},
    {"module/", 5, "module"},
    {"host/", ring, "host"},
    {"cli/", ring, "cli"},
    {"extras/", ring, "extras"},
};

constexpr const Place* place_of(std::string_view path) {
  const Place* best = nullptr;
  for (const Place& place : places) {
    if (path.starts_with(place.prefix) && (best == nullptr || place.prefix.size() > best->prefix.size())) best = &place;
  }
  return best;
}

constexpr bool allowed(std::string_view file, std::string_view included) {
  const Place* const from = place_of(file);
  const Place* const to = place_of(included);
  if (from == nullptr || to == nullptr) return false;
  if (from->room == to->room) return true;
  if (from->room == "extras" && to->room == "cli") return true;  // the wording of refusals
  if (from->floor == ring) return to->floor == 0;
  return to->floor < from->floor;
}

static_assert(allowed("datetime_format/a.cc", "module/host_services.h") && allowed("calendar/a.cc", "calendar/b.h"));
static_assert(!allowed("calendar/a.cc", "number_parse/b.h"));  // the same floor, another room
static_assert(!allowed("datetime_format/a.cc", "module/locale.h") && !allowed("include/vxnls/a.h", "unicode/b.h"));
static_assert(allowed("cli/main.cc", "vxnls/vxhost.h") && !allowed("cli/main.cc", "host/pool.h"));
static_assert(!allowed("calendar/a.cc", "b.h"));  // not from the root

TEST(Includes, PointDownwards) {
  const fs::path root = VX_SOURCE_DIR;
  const std::set<std::string> sources{".h", ".cc", ".hpp", ".c", ".inc"};
  int lines = 0;
  for (const char* top : {"include", "unicode", "utf8", "kernel_strings", "calendar", "number_parse", "number_format",
                          "datetime_format", "datetime_parse", "collation", "module", "host", "cli", "extras"}) {
    for (const auto& entry : fs::recursive_directory_iterator(root / top)) {
      if (!sources.contains(entry.path().extension())) continue;
      const std::string file = fs::relative(entry.path(), root).generic_string();
      std::ifstream in(entry.path());
      for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        char hash = 0;
        std::string directive, name;
        if (!(words >> hash >> directive >> name) || hash != '#' || directive != "include" || name[0] != '"') continue;
        const std::string included = name.substr(1, name.find('"', 1) - 1);
        EXPECT_TRUE(allowed(file, included)) << file << " includes " << included;
        ++lines;
      }
    }
  }
  EXPECT_GT(lines, 500) << "where are the sources?";
}

}  // namespace
