// What a name means: of a locale, of a zone, of the zone that the system says it is in.
#include <gtest/gtest.h>
#include <unicode/locid.h>

#include <algorithm>
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
  std::vector<std::string> none{"", "   ", " UTC"};
  for (const auto& entry : fs::recursive_directory_iterator(table.folder())) {
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
    std::string upper(name.size() + 100, ' ');
    std::transform(name.begin(), name.end(), upper.begin(), toupper);
    EXPECT_EQ(canonical(table, name), wanted);
    EXPECT_EQ(canonical(table, upper), wanted);
  }
  for (const std::string& name : none) EXPECT_EQ(canonical(table, name), "none") << name;
  EXPECT_EQ(table.identifiers().size(), zones);
}

TEST(ZoneTable, KnowsUtcWithoutFilesAndTakesNoNamesThatLeaveTheFolder) {
  const vxtest::TemporaryFolder folder;
  const auto all = [&] {
    const vxhost::ZoneTable table(folder.path());
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
TEST(SystemZone, Sources) {
  const vxtest::TemporaryFolder etc;
  const std::string local_time = etc.file("localtime");
  const auto zone = [&](const char* tz = nullptr) {
    return vxhost::system_zone_name({tz, local_time, etc.file("timezone")}).value_or("none");
  };
  EXPECT_EQ(zone(), "UTC") << "neither file";
  etc.write("timezone", "Asia/Kolkata\n");
  EXPECT_EQ(zone(), "Asia/Kolkata") << "only the name";
  etc.write("localtime", "TZif");
  EXPECT_EQ(zone(), "Asia/Kolkata") << "a copied file beside the name";
  fs::remove(etc.file("timezone"));
  EXPECT_EQ(zone(), "none") << "a copied file alone";
  fs::remove(local_time);
  etc.link("middle", "localtime");
  etc.link("/usr/share/zoneinfo/Asia/Tokyo", "middle");
  EXPECT_EQ(zone(), "Asia/Tokyo") << "through another link";
  for (const auto& [tz, name] : {std::pair{local_time.c_str(), "Asia/Tokyo"},
                                 {":Europe/Berlin", "Europe/Berlin"},
                                 {"", "UTC"},
                                 {"posix/Europe/Berlin", "Europe/Berlin"},
                                 {"/usr/share/zoneinfo/right/Europe/Berlin", "Europe/Berlin"},
                                 {"/opt/berlin", "none"},
                                 {"CET-1CEST,M3.5.0", "CET-1CEST,M3.5.0"}}) {  // no zone of that name will be found
    EXPECT_EQ(zone(tz), name) << tz;
  }
}

}  // namespace
