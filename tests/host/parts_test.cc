// The host's classes, each alone: which names they take, which files they follow, and what they refuse.
// Case, classes and normalisation of every character as the library gives them are held against ICU and the
// consortium's files by tests/utf8/host_case_test.cc.
#include <gtest/gtest.h>
#include <sys/auxv.h>
#include <unicode/locid.h>

#include <algorithm>
#include <sstream>

#include "host/extension_loader.h"
#include "host/locale_lookup.h"
#include "host/normaliser.h"
#include "host/option_service.h"
#include "host/pool.h"
#include "host/zone_table.h"
#include "tests/host/temporary_folder.h"
#include "tests/support/process.h"
#include "vxnls/vxhost.h"

namespace {

namespace fs = std::filesystem;
using vxtest::TemporaryFolder;
const std::string libraries = VXHOST_TEST_FOLDER;

TEST(Objects, PoolsGiveClearBlocksOfTheirOwn) {
  VXPool* const pool = new vxhost::Pool;
  VXPool* const other = new vxhost::Pool;
  const int64_t before = vxhost::alive();
  for (const int64_t bytes : {0, 1, 1016, 49248, 0, 1, 1016, 49248}) {  // the second time, memory that was used
    auto* const block = static_cast<uint8_t*>(pool->ops->allocate(pool, bytes, VX_ZERO_FILL));
    EXPECT_TRUE(block != nullptr && reinterpret_cast<uintptr_t>(block) % alignof(std::max_align_t) == 0);
    if (block == nullptr) break;
    EXPECT_EQ(std::count(block, block + bytes, 0), bytes);
    std::fill(block, block + bytes, uint8_t{0xA5});
    EXPECT_EQ(other->ops->free(other, block), VX_E_RANGE);
    EXPECT_EQ(vxhost::alive(), before + 1);
    EXPECT_EQ(pool->ops->free(pool, block), 0u);
  }
  for (const int64_t bytes : {INT64_C(-1), INT64_MAX}) EXPECT_EQ(pool->ops->allocate(pool, bytes, 0), nullptr);
  for (const int64_t bytes : {1, 1016}) EXPECT_NE(pool->ops->allocate(pool, bytes, 0), nullptr);  // go with the pool
  pool->ops->destroy(pool), other->ops->destroy(other);
  EXPECT_EQ(vxhost::alive(), before - 2) << vxhost::alive_text();
}

// What a call sets, what the environment presets once, and what stays untouched.
TEST(Objects, Options) {
  for (const auto& [preset, wanted] :
       {std::pair("-1920", -1920), {"", 7}, {"19x0", 7}, {" 1920", 7}, {"1e3", 7}, {"99999999999999999999", 7}}) {
    vxhost::OptionService service;
    const auto read = [&](const std::string& name) {
      const std::vector<VXChar> wide(name.begin(), name.end());
      int64_t cell = 7;
      service.ops->read(&service, wide.data(), static_cast<int64_t>(wide.size()), VX_OPTION_INTEGER, &cell);
      return cell;
    };
    for (const char* const name : {"VX_A", "HOST_A", "VX_a"}) setenv(name, preset, 1);
    EXPECT_EQ(read("VX_A"), wanted) << preset;
    for (const std::string none : {"", "HOST_A", "VX_a"}) EXPECT_TRUE(!service.set(none, 1) && read(none) == 7) << none;
    setenv("VX_A", "2", 1);
    EXPECT_EQ(read("VX_A"), wanted) << preset;
    EXPECT_TRUE(service.set("VX_A", 3) && read("VX_A") == 3);
  }
}

TEST(Objects, NormalisersRefuse) {
  vxhost::Normaliser normaliser;
  static constexpr struct {
    std::string_view text;
    uint32_t options, room;
    VXStatus status;
  } cases[] = {{"\u00E9", 1, 3, 0},
               {"\u00E9", 1, 2, VX_E_ROOM},
               {"a", 4, 3, VX_E_KIND},
               {{nullptr, 1}, 1, 3, VX_E_NULL},
               // NOLINTBEGIN(bugprone-string-constructor): the length alone is looked at
               {{"a", SIZE_MAX}, 1, 3, VX_E_LENGTH},
               {{"a", size_t{1} << 31}, 1, 3, VX_E_RANGE},
               // NOLINTEND(bugprone-string-constructor)
               {"\xED\xA0\x80", 1, 3, VX_E_SEQUENCE}};
  for (const auto& c : cases) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(c.text.data());
    const auto size = static_cast<int64_t>(c.text.size());
    uint8_t out[3] = {1};
    int64_t needed = -1;
    EXPECT_EQ(normaliser.ops->normalise(&normaliser, bytes, size, c.options, reinterpret_cast<uint64_t>(out), c.room,
                                        reinterpret_cast<uint64_t>(&needed), nullptr),
              c.status);
    EXPECT_EQ(out[0], c.status == 0 ? 'e' : 1) << "nothing is written";
    EXPECT_TRUE(needed == 3 || c.text != "\u00E9");
  }
}

/// The reason of a refusal; empty when the extension was loaded, which is closed again.
std::string refusal(vxhost::ExtensionLoader& loader, std::string_view name) {
  std::string why;
  VXExtension* const extension = loader.load(name, nullptr, why);
  EXPECT_EQ(extension == nullptr, !why.empty());
  if (extension != nullptr) extension->ops->destroy(extension);
  return why;
}

TEST(Loader, RefusesNamesFilesAndFolders) {
  const TemporaryFolder own, further;
  own.link(libraries + "/vxemsg.so", "vxother.so");         // an extension under another's name
  own.link(libraries + "/libvxnlsloc.so", "vxlibrary.so");  // a library, but no extension
  own.write("vxnlsudb.so", "no library at all");            // and not passed over
  fs::create_directories(own.file("vxfolder.so"));
  fs::create_directory(own.file("vxnls-6"));
  own.link(libraries + "/vxnlsldb.so", "vxnls-6/vxnlsldb.so");  // where an installed host has them
  const struct {
    vxhost::SearchPath path;
    size_t refused;
    bool found;
  } paths[] = {
      {{"", false}, 0, false},
      {{further.path() + "::" + libraries + "/:", false}, 0, true},
      {{fs::relative(libraries).string() + ":.:lib", false}, 3, false},
      {{libraries, true}, 1, false},
  };
  for (const auto& p : paths) {
    SCOPED_TRACE(p.path.folders);
    vxhost::ExtensionLoader loader(own.path(), p.path);
    EXPECT_EQ(loader.refused().size(), p.refused);
    EXPECT_EQ(refusal(loader, "vxemsg").empty(), p.found);
    EXPECT_EQ(refusal(loader, "vxnlsldb"), "");
    for (const std::string name : {"vxother", "vxlibrary", "vxnlsudb", "vxfolder", "vxnothere"}) {
      EXPECT_NE(refusal(loader, name).find(name), std::string::npos);
      EXPECT_NE(loader.take_failure().find(name), std::string::npos);
      EXPECT_EQ(loader.take_failure(), "");
    }
    for (const std::string& name : {std::string(), std::string("../lib/vxemsg"), std::string("VXEMSG"),
                                    std::string("vxemsg\0", 7), std::string(10000, 'a')}) {
      EXPECT_EQ(refusal(loader, name), "not the name of an extension") << name.substr(0, 20);
    }
  }
}

// A copy of this program that has another group's rights runs this test again; every folder of the environment is set,
// and where ICU's own data lies, and the zones, is rubbish.
TEST(PrivilegedProcess, TakesNoFolderOfItsCaller) {
  if (getauxval(AT_SECURE) != 0) {
    const vxhost::SearchPath path = vxhost::SearchPath::of_environment();
    EXPECT_TRUE(!path.folders.empty() && path.privileged);
    EXPECT_EQ(vxhost::ZoneTable::system_folder(), "/usr/share/zoneinfo");
    VXHost* host = nullptr;
    ASSERT_EQ(vxhostOpen(libraries.c_str(), &host), 0u) << vxhostOpenFailure();
    VXLocale* german = nullptr;
    ASSERT_EQ(vxhostLocale(host, "de_DE", "Europe/Berlin", 0, &german), 0u);
    uint8_t text[60];
    int64_t length = 0;
    EXPECT_EQ(german->ops.NLSDateFormatU(german, 11, 21, 2026, 2, text, sizeof text, &length), 0u);
    EXPECT_EQ(std::string(text, text + length), "21. November 2026");
    return vxhostClose(host);
  }
  if (std::getenv("ICU_DATA") != nullptr) GTEST_SKIP() << "the system gives a program no rights of its own here";
  const TemporaryFolder folder;
  fs::copy_file("/proc/self/exe", folder.file("copy"));
  const auto run = vxtest::run_shell(R"(cd "$TZDIR"
for group in $(id -G) 65534; do [ $group != $(id -g) ] && chgrp $group copy && break; done || exit 77
chmod 2755 copy
mkdir icudt)" U_ICU_VERSION_SHORT R"(l
for name in root de de_DE; do echo rubbish >icudt*l/$name.res; done
echo '# version rubbish' >tzdata.zi
./copy --gtest_filter='PrivilegedProcess.*')",
                                     "",
                                     {{"PATH", "/usr/bin:/bin"},
                                      {"ICU_DATA", folder.path()},
                                      {"TZDIR", folder.path()},
                                      {"VXHOST_PATH", libraries + ":."},
                                      {"ASAN_OPTIONS", "detect_leaks=0"}});
  if (run.code == 77 || run.out.find("SKIPPED") != std::string::npos) GTEST_SKIP() << run.out << run.err;
  EXPECT_TRUE(run.code == 0 && run.out.find("[  PASSED  ] 1 test.") != std::string::npos) << run.out << run.err;
}

// Also written as a tag; in a country without a locale the language's parents never change the script.
TEST(LocaleLookup, EveryLocaleOfIcuIsItself) {
  const auto script_of = [](const std::string& name) {
    icu::Locale locale(name.c_str());
    UErrorCode error = U_ZERO_ERROR;
    locale.addLikelySubtags(error);
    return std::string(locale.getScript());
  };
  for (int32_t i = 0; i < uloc_countAvailable(); ++i) {
    const std::string name = uloc_getAvailable(i);
    UErrorCode error = U_ZERO_ERROR;
    for (const auto& spelled : {name, icu::Locale(name.c_str()).toLanguageTag<std::string>(error)}) {
      const auto found = vxhost::resolve_locale(spelled);
      EXPECT_TRUE((found.name == name && found.status == 0) || name == "en_US_POSIX") << spelled;
    }
    const std::string nowhere = name.substr(0, name.find('_')) + '_' + script_of(name) + "_AQ";
    const auto found = vxhost::resolve_locale(nowhere);
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
      const auto found = vxhost::resolve_locale(word.substr(0, word.find(':')));
      EXPECT_EQ(found.name, word.substr(word.find(':') + 1)) << word;
      EXPECT_EQ(found.status, c.status) << word;
    }
  }
}

}  // namespace
