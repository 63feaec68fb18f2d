// The real #include lines against the floors: inside the library they point downwards, and the rings around it see
// nothing but its public headers.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

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

const Place* place_of(std::string_view path) {
  const Place* best = nullptr;
  for (const Place& place : places) {
    if (path.starts_with(place.prefix) && (best == nullptr || place.prefix.size() > best->prefix.size())) best = &place;
  }
  return best;
}

bool allowed(std::string_view file, std::string_view included) {
  const Place* const from = place_of(file);
  const Place* const to = place_of(included);
  if (from == nullptr || to == nullptr) return false;
  if (from->room == to->room) return true;
  if (from->room == "extras" && to->room == "cli") return true;  // the wording of refusals
  if (from->floor == ring) return to->floor == 0;
  return to->floor < from->floor;
}

/// What a text includes by quoted names.
std::vector<std::string> includes_of(std::istream& text) {
  std::vector<std::string> result;
  for (std::string line; std::getline(text, line);) {
    std::istringstream words(line);
    char hash = 0;
    std::string directive, name;
    if (words >> hash >> directive >> name && hash == '#' && directive == "include" && name.front() == '"') {
      result.push_back(name.substr(1, name.find('"', 1) - 1));
    }
  }
  return result;
}

TEST(Includes, TheRuleItself) {
  const struct {
    std::string_view file, included;
    bool allowed;
  } cases[] = {
      {"calendar/a.cc", "unicode/b.h", true},
      {"calendar/a.cc", "calendar/b.h", true},
      {"calendar/a.cc", "vxnls/locale.h", true},
      {"calendar/a.cc", "number_parse/b.h", false},  // the same floor, another room
      {"unicode/a.h", "utf8/b.h", false},
      {"datetime_format/a.cc", "module/locale.h", false},
      {"datetime_format/a.cc", "module/host_services.h", true},
      {"module/zones.cc", "module/locale.h", false},
      {"module/locale.cc", "module/zones.h", true},
      {"include/vxnls/a.h", "unicode/b.h", false},
      {"host/pool.cc", "host/pool.h", true},
      {"host/pool.cc", "unicode/b.h", false},
      {"cli/main.cc", "vxnls/vxhost.h", true},
      {"cli/main.cc", "host/pool.h", false},
      {"calendar/a.cc", "tests/support/plain_locale.h", false},
      {"calendar/a.cc", "b.h", false},  // not from the root
  };
  for (const auto& c : cases) EXPECT_EQ(allowed(c.file, c.included), c.allowed) << c.file << " -> " << c.included;
  std::istringstream text("#include <x>\n  #  include \"a/b.h\"\n// #include \"c\"\n#include \"d.h\"  // why\n");
  EXPECT_EQ(includes_of(text), (std::vector<std::string>{"a/b.h", "d.h"}));
}

TEST(Includes, PointDownwards) {
  const fs::path root = VX_SOURCE_DIR;
  int lines = 0;
  for (const char* top : {"include", "unicode", "utf8", "kernel_strings", "calendar", "number_parse", "number_format",
                          "datetime_format", "datetime_parse", "collation", "module", "host", "cli", "extras"}) {
    for (const auto& entry : fs::recursive_directory_iterator(root / top)) {
      const std::string extension = entry.path().extension().string();
      if (extension != ".h" && extension != ".cc" && extension != ".hpp" && extension != ".c" && extension != ".inc") {
        continue;
      }
      std::ifstream in(entry.path());
      const std::string file = fs::relative(entry.path(), root).generic_string();
      for (const std::string& included : includes_of(in)) {
        ++lines;
        EXPECT_TRUE(allowed(file, included)) << file << " includes " << included;
      }
    }
  }
  EXPECT_GT(lines, 50) << "where are the sources?";
}

}  // namespace
