// Which shared objects are followed, and which are refused.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/auxv.h>
#include <unicode/uvernum.h>
#include <unistd.h>

#include "host/accounting.h"
#include "host/extension_loader.h"
#include "host/zone_table.h"
#include "tests/host/temporary_folder.h"
#include "tests/support/process.h"
#include "vxnls/vxhost.h"

namespace {

namespace fs = std::filesystem;
using vxtest::TemporaryFolder;
const std::string libraries = VXHOST_TEST_FOLDER;

/// The reason of a refusal; empty when the extension was loaded, which is closed again.
std::string refusal(vxhost::ExtensionLoader& loader, std::string_view name) {
  std::string why;
  VXExtension* const extension = loader.load(name, nullptr, why);
  EXPECT_EQ(extension == nullptr, !why.empty());
  if (extension != nullptr) extension->ops->destroy(extension);
  return why;
}

TEST(Loader, InstancesOutliveTheLoader) {
  const int64_t before = vxhost::alive();
  std::string why;
  auto loader = std::make_unique<vxhost::ExtensionLoader>(libraries, vxhost::SearchPath{"", false});
  VXExtension* const one = loader->load("vxemsg", nullptr, why);
  VXExtension* const two = loader->load("vxemsg", nullptr, why);
  ASSERT_TRUE(one != nullptr && two != nullptr && one != two) << why;
  EXPECT_EQ(one->ops->destroy(one), 0u);
  loader.reset();
  EXPECT_EQ(vxhost::alive(), before + 1);
  EXPECT_EQ(two->ops->destroy(two), 0u);
  EXPECT_EQ(vxhost::alive(), before);
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

// A host that was loaded by a relative name finds what lies beside it, and not what lies the same way from where the
// program has gone since.
TEST(Loader, AHostKnowsItsFolder) {
  const fs::path before = fs::current_path();
  const TemporaryFolder here, elsewhere;
  here.link(libraries, "lib");
  fs::create_directory(elsewhere.file("lib"));
  for (const char* name : {"libvxhost.so", "libvxhost.so.6", "libvxnlsloc.so"})
    elsewhere.write(std::string("lib/") + name, "");
  fs::current_path(here.path());
  void* const library = dlopen("lib/libvxhost.so", RTLD_NOW | RTLD_LOCAL);
  fs::current_path(elsewhere.path());
  ASSERT_NE(library, nullptr) << dlerror();
  VXHost* host = nullptr;
  EXPECT_EQ(reinterpret_cast<decltype(&vxhostOpen)>(dlsym(library, "vxhostOpen"))(nullptr, &host), 0u);
  reinterpret_cast<decltype(&vxhostClose)>(dlsym(library, "vxhostClose"))(host);
  fs::current_path(before);
}

/// With rights of its own, and every folder of the environment set.
void expect_no_folder_of_the_caller() {
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
  vxhostClose(host);
}

// A copy of this program that has another group's rights runs this test again; where ICU's own data lies, and the
// zones, is rubbish.
TEST(PrivilegedProcess, TakesNoFolderOfItsCaller) {
  if (getauxval(AT_SECURE) != 0) return expect_no_folder_of_the_caller();
  if (std::getenv("VXHOST_TEST_COPY") != nullptr)
    GTEST_SKIP() << "the system gives a program no rights of its own here";
  const TemporaryFolder folder;
  fs::copy_file("/proc/self/exe", folder.file("copy"));
  const auto run = vxtest::run_shell(R"(cd "$TZDIR"
for group in $(id -G) 65534; do [ $group != $(id -g) ] && chgrp $group copy && break; done || exit 77
chmod 2755 copy
mkdir icudt${ICU}l
for name in root de de_DE; do echo rubbish >icudt${ICU}l/$name.res; done
echo '# version rubbish' >tzdata.zi
./copy --gtest_filter='PrivilegedProcess.*')",
                                     "",
                                     {{"PATH", "/usr/bin:/bin"},
                                      {"ICU", U_ICU_VERSION_SHORT},
                                      {"VXHOST_TEST_COPY", "1"},
                                      {"ICU_DATA", folder.path()},
                                      {"TZDIR", folder.path()},
                                      {"VXHOST_PATH", libraries + ":."},
                                      {"ASAN_OPTIONS", "detect_leaks=0"}});
  if (run.code == 77 || run.out.find("SKIPPED") != std::string::npos) GTEST_SKIP() << run.out << run.err;
  EXPECT_EQ(run.code, 0) << run.out << run.err;
  EXPECT_NE(run.out.find("[  PASSED  ] 1 test."), std::string::npos) << run.out << run.err;
}

}  // namespace
