// What a name means: of a locale, of a zone, of the zone that the system says it is in.
#include <gtest/gtest.h>
#include <unicode/locid.h>

#include <set>
#include <sstream>

#include "host/locale_lookup.h"
#include "host/system_zone.h"
#include "host/zone_table.h"
#include "tests/host/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using vxhost::resolve_locale;

TEST(LocaleLookup, EveryLocaleOfIcuIsItselfAndItsParentsNeverChangeTheScript) {
  const auto script_of = [](std::string_view name) {
    icu::Locale locale(std::string(name).c_str());
    UErrorCode error = U_ZERO_ERROR;
    locale.addLikelySubtags(error);
    return std::string(locale.getScript());
  };
  for (int32_t i = 0; i < uloc_countAvailable(); ++i) {
    const std::string name = uloc_getAvailable(i);
    UErrorCode error = U_ZERO_ERROR;
    for (const auto& spelled : {name, icu::Locale(name.c_str()).toLanguageTag<std::string>(error)}) {
      if (spelled.find("-u-") != std::string::npos) continue;  // en_US_POSIX: as a tag it carries a keyword
      const auto found = resolve_locale(spelled);
      EXPECT_TRUE(found.name == name && found.status == 0) << spelled;
    }
    const std::string nowhere = name.substr(0, name.find('_')) + '_' + script_of(name) + "_AQ";
    const auto found = resolve_locale(nowhere);
    EXPECT_EQ(found.status, VX_W_SUBSTITUTE) << nowhere;
    EXPECT_TRUE(found.name == "root" || script_of(found.name) == script_of(name)) << nowhere;
  }
}

TEST(LocaleLookup, OtherNames) {
  static constexpr struct {
    VXStatus status;
    const char* names;  // what is asked, ":", what is found
  } cases[] = {
      {0, "DE_de:de_DE de_DE.UTF-8:de_DE de_DE.ISO-8859-15@euro:de_DE de_Latn_DE:de_DE de_Latn:de und:root"},
      {0, "C:en_US_POSIX C.UTF-8:en_US_POSIX POSIX:en_US_POSIX eng_USA:en_US cmn-Hans-CN:zh_Hans_CN"},
      {0, "sr_RS:sr_Cyrl_RS sr_RS@latin:sr_Latn_RS sr_RS.UTF-8@latin:sr_Latn_RS uz_UZ@cyrillic:uz_Cyrl_UZ"},
      {0, "zh_TW:zh_Hant_TW iw_IL:he_IL tl_PH:fil_PH ars:ar_SA no_NO:no no_Latn_NO:no no_NO_NY:nn_NO"},
      // Something wider stands in: Chinese in Australia is traditional, and of az_Arab ICU has two other scripts.
      {VX_W_SUBSTITUTE,
       "de_US:de zh_Hant_XX:zh_Hant zh_AU:zh_Hant sr_Latn_AT:sr_Latn az_Arab:root C@latin:en_US_POSIX"},
      {VX_W_SUBSTITUTE, "de_DE_1996:de_DE ca_ES@valencia:ca_ES de_DE@calendar=hebrew:de_DE de-DE-u-nu-thai:de_DE"},
      {VX_E_NOMATCH, "xx_YY: tlh: english: d: : _DE: @latin: .UTF-8: de/DE: ../de: d\xC3\xA9: 123:"},
  };
  for (const auto& c : cases) {
    std::istringstream names(c.names);
    for (std::string word; names >> word;) {
      const auto found = resolve_locale(word.substr(0, word.find(':')));
      EXPECT_EQ(found.name, word.substr(word.find(':') + 1)) << word;
      EXPECT_EQ(found.status, c.status) << word;
    }
  }
  for (const std::string& none : {std::string("de DE"), std::string("de\0DE", 5), std::string(10000, 'a')}) {
    EXPECT_EQ(resolve_locale(none).status, VX_E_NOMATCH);
  }
}

std::string canonical(const vxhost::ZoneTable& table, std::string_view name) {
  const auto* const found = table.find(name);
  return found != nullptr ? found->canonical->name : "none";
}

TEST(ZoneTable, AgreesWithTheFilesInAnyLetterCaseAndTakesNothingElse) {
  const vxhost::ZoneTable table(vxhost::ZoneTable::system_folder());
  std::set<std::string> of_countries;
  std::ifstream countries(table.folder() + "/zone.tab");
  for (std::string line; std::getline(countries, line);) {
    std::string name;
    if (line.front() != '#' && std::istringstream(line) >> name >> name >> name) of_countries.insert(name);
  }
  ASSERT_GT(of_countries.size(), 400u);

  size_t zones = 0;
  std::vector<std::string> none{"", "   ", " UTC", "Europe", "Europe/Berlim", "../zoneinfo/UTC", "/etc/localtime"};
  none.insert(none.end(), {{"UTC\0", 4}, "CET-1CEST,M3.5.0,M10.5.0/3", std::string(10000, 'A')});
  for (const auto& entry : fs::recursive_directory_iterator(table.folder())) {
    if (entry.is_directory()) continue;
    const std::string name = entry.path().lexically_relative(table.folder());
    std::string magic(4, ' ');
    std::ifstream(entry.path(), std::ios::binary).read(magic.data(), 4);
    if (magic != "TZif" || name.starts_with("posix") || name.starts_with("right/") || name == "localtime") {
      none.push_back(name);
      continue;
    }
    ++zones;
    const bool alias = entry.is_symlink() && !of_countries.contains(name);
    const std::string wanted = alias ? fs::canonical(entry.path()).lexically_relative(table.folder()).string() : name;
    std::string upper;
    for (const char c : name) upper += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    EXPECT_EQ(canonical(table, name), wanted);
    EXPECT_EQ(canonical(table, upper + std::string(100, ' ')), wanted);
  }
  for (const std::string& name : none) EXPECT_EQ(canonical(table, name), "none") << name;
  EXPECT_EQ(table.identifiers().size(), zones);
}

TEST(ZoneTable, KnowsUtcWithoutFilesAndTakesNoNamesThatLeaveTheFolder) {
  const vxtest::TemporaryFolder folder;
  const vxhost::ZoneTable bare(folder.path());
  EXPECT_EQ(bare.identifiers().size(), 2u);
  EXPECT_EQ(canonical(bare, "utc"), "Etc/UTC");
  folder.write("tzdata.zi", "# version test\nZ ../up 1 - A\nZ /etc/passwd 1 - A\nZ Good/One 1 - A\nZ " +
                                std::string(51, 'x') +
                                " 1 - A\nZ\nL\nL Good/One\nL Good/One Ring/A\nL Ring/B Ring/C\n"
                                "L Ring/C Ring/B\nL Gone/Zone Dangling\nZ No/Line_end");
  const vxhost::ZoneTable odd(folder.path());
  std::string names = odd.version();
  for (const auto* id : odd.identifiers()) names += ' ' + id->name;
  EXPECT_EQ(names, "test Dangling Etc/UTC Good/One No/Line_end Ring/A Ring/B Ring/C UTC");
  EXPECT_EQ(canonical(odd, "ring/a") + canonical(odd, "dangling"), "Good/OneDangling");
}

// TZ first, then /etc/localtime, then /etc/timezone.
TEST(SystemZone, Sources) {
  const vxtest::TemporaryFolder etc;
  const std::string local_time = etc.file("localtime");
  const auto zone = [&](const char* tz) {
    return vxhost::system_zone_name({tz, local_time, etc.file("timezone")}).value_or("none");
  };
  EXPECT_EQ(zone(nullptr), "UTC") << "neither file";
  etc.write("timezone", "Asia/Kolkata\n");
  EXPECT_EQ(zone(nullptr), "Asia/Kolkata") << "only the name";
  etc.write("localtime", "TZif");
  EXPECT_EQ(zone(nullptr), "Asia/Kolkata") << "a copied file beside the name";
  fs::remove(etc.file("timezone"));
  EXPECT_EQ(zone(nullptr), "none") << "a copied file alone";
  fs::remove(local_time);
  etc.link("middle", "localtime");
  etc.link("/usr/share/zoneinfo/Asia/Tokyo", "middle");
  for (const auto& [tz, name] : std::initializer_list<std::pair<const char*, const char*>>{
           {nullptr, "Asia/Tokyo"},  // through another link
           {local_time.c_str(), "Asia/Tokyo"},
           {":Europe/Berlin", "Europe/Berlin"},
           {"", "UTC"},
           {"posix/Europe/Berlin", "Europe/Berlin"},
           {"/usr/share/zoneinfo/right/Europe/Berlin", "Europe/Berlin"},
           {"/opt/berlin", "none"},
           {"CET-1CEST,M3.5.0", "CET-1CEST,M3.5.0"}}) {  // no zone of that name will be found
    EXPECT_EQ(zone(tz), name) << (tz != nullptr ? tz : "unset");
  }
}

}  // namespace
