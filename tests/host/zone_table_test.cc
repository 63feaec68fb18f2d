// Identifiers: canonical ones, aliases, spellings, and what is none.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "host/zone_table.h"
#include "tests/host/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

const vxhost::ZoneTable& table() {
  static const vxhost::ZoneTable made(vxhost::ZoneTable::system_folder());
  return made;
}

std::string canonical(std::string_view name) {
  const auto* const found = table().find(name);
  return found != nullptr ? found->canonical->name : "none";
}

TEST(ZoneTable, Names) {
  static constexpr struct {
    std::string_view asked;
    const char* found;
  } cases[] = {
      {"Europe/Berlin", "Europe/Berlin"},
      {"europe/berlin", "Europe/Berlin"},
      {"EUROPE/BERLIN", "Europe/Berlin"},
      {"Europe/Berlin   ", "Europe/Berlin"},
      {"US/Pacific", "America/Los_Angeles"},
      {"us/pacific", "America/Los_Angeles"},
      {"Asia/Calcutta", "Asia/Kolkata"},
      {"Japan", "Asia/Tokyo"},
      {"UTC", "Etc/UTC"},
      {"Zulu", "Etc/UTC"},
      {"GMT", "Etc/GMT"},
      {"Etc/GMT+5", "Etc/GMT+5"},
      {"EST5EDT", "EST5EDT"},
      // shares Rome's rules, but is a country's own name
      {"Europe/San_Marino", "Europe/San_Marino"},
      {"", "none"},
      {"   ", "none"},
      {" Europe/Berlin", "none"},
      {"Europe/Berlim", "none"},
      {"Europe", "none"},
      {"posix/Europe/Berlin", "none"},
      {"right/Europe/Berlin", "none"},
      {"localtime", "none"},
      {"posixrules", "none"},
      {"../zoneinfo/Europe/Berlin", "none"},
      {"/usr/share/zoneinfo/Europe/Berlin", "none"},
      {"zone.tab", "none"},
      {{"Europe/Berlin\0", 14}, "none"},
      {"CET-1CEST,M3.5.0,M10.5.0/3", "none"},
  };
  for (const auto& c : cases) EXPECT_EQ(canonical(c.asked), c.found) << c.asked;
  EXPECT_EQ(canonical(std::string(10000, 'A')), "none");
  EXPECT_EQ(canonical("Europe/Berlin" + std::string(200, ' ')), "Europe/Berlin");
}

TEST(ZoneTable, AgreesWithTheFiles) {
  std::set<std::string> of_countries;
  std::ifstream countries(table().folder() + "/zone.tab");
  for (std::string line; std::getline(countries, line);) {
    std::istringstream fields(line);
    std::string country, position, name;
    if (line.front() != '#' && fields >> country >> position >> name) of_countries.insert(name);
  }
  ASSERT_GT(of_countries.size(), 400u);

  std::set<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(table().folder())) {
    const std::string name = fs::relative(entry.path().parent_path(), table().folder()) / entry.path().filename();
    const std::string plain = name.starts_with("./") ? name.substr(2) : name;
    if (plain.starts_with("posix/") || plain.starts_with("right/") || entry.is_directory()) continue;
    if (plain == "localtime" || plain == "posixrules") continue;
    std::ifstream in(entry.path(), std::ios::binary);
    char magic[4] = {};
    in.read(magic, 4);
    if (std::string_view(magic, 4) != "TZif") continue;
    files.insert(plain);
    ASSERT_NE(table().find(plain), nullptr) << plain;
    const bool alias = entry.is_symlink() && !of_countries.contains(plain);
    EXPECT_EQ(canonical(plain), alias ? fs::relative(fs::canonical(entry.path()), table().folder()).string() : plain);
  }
  for (const std::string& name : of_countries) EXPECT_EQ(canonical(name), name);
  for (const auto* id : table().identifiers()) {
    EXPECT_TRUE(files.contains(id->name)) << id->name;
    EXPECT_EQ(id->canonical->canonical, id->canonical) << id->name;
  }
  EXPECT_EQ(table().identifiers().size(), files.size());
}

TEST(ZoneTable, KnowsUtcWithoutFilesAndTakesNoNamesThatLeaveTheFolder) {
  const vxtest::TemporaryFolder folder;
  {
    const vxhost::ZoneTable bare(folder.path());
    EXPECT_EQ(bare.identifiers().size(), 2u);
    EXPECT_EQ(bare.find("utc")->canonical->name, "Etc/UTC");
  }
  folder.write("tzdata.zi", "# version test\nZ ../up 1 - A\nZ /etc/passwd 1 - A\nZ Good/One 1 - A\nZ " +
                                std::string(51, 'x') +
                                " 1 - A\nZ\nL\nL Good/One\nL Good/One Ring/A\nL Ring/B Ring/C\n"
                                "L Ring/C Ring/B\nL Gone/Zone Dangling\nZ No/Line_end");
  const vxhost::ZoneTable odd(folder.path());
  std::string names;
  for (const auto* id : odd.identifiers()) names += id->name + '=' + id->canonical->name + ' ';
  EXPECT_EQ(odd.version(), "test");
  EXPECT_EQ(odd.find("ring/a")->canonical->name, "Good/One");
  EXPECT_EQ(odd.find("dangling")->canonical->name, "Dangling");
  EXPECT_NE(odd.find("ring/b"), nullptr);
  EXPECT_NE(odd.find("No/Line_end"), nullptr);
  EXPECT_EQ(odd.find("../up"), nullptr);
  EXPECT_EQ(odd.find("/etc/passwd"), nullptr);
  EXPECT_EQ(odd.identifiers().size(), 8u) << names;
}

}  // namespace
