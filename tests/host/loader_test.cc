// Which shared objects are followed, and which are refused.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/auxv.h>
#include <unicode/uvernum.h>
#include <unistd.h>

#include "host/accounting.h"
#include "host/extension_loader.h"
#include "host/file.h"
#include "host/zone_table.h"
#include "tests/host/temporary_folder.h"
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

TEST(Loader, RefusesWhatIsNoNameAndNoExtension) {
  const TemporaryFolder folder;
  folder.link(libraries + "/vxemsg.so", "vxother.so");         // an extension under another's name
  folder.link(libraries + "/libvxnlsloc.so", "vxlibrary.so");  // a library, but no extension
  folder.write("vxtext.so", "no library at all");
  fs::create_directory(folder.file("vxfolder.so"));
  vxhost::ExtensionLoader loader(folder.path(), {libraries, false});
  for (const std::string name : {"vxother", "vxlibrary", "vxtext", "vxfolder", "vxnothere"}) {
    EXPECT_NE(refusal(loader, name).find(name), std::string::npos);
    EXPECT_NE(loader.take_failure().find(name), std::string::npos);
    EXPECT_EQ(loader.take_failure(), "");
  }
  for (const std::string& name :
       {std::string(), std::string("../lib/vxemsg"), std::string("/vxemsg"), std::string("vxemsg.so"),
        std::string("VXEMSG"), std::string("vxemsg\0", 7), std::string("vxemsg "), std::string(10000, 'a')}) {
    EXPECT_EQ(refusal(loader, name), "not the name of an extension") << name.substr(0, 20);
  }
  EXPECT_EQ(refusal(loader, "vxemsg"), "");
}

TEST(Loader, Folders) {
  const TemporaryFolder own, further;
  const std::string relative = fs::relative(libraries).string();
  const struct {
    vxhost::SearchPath path;
    size_t refused;
    bool found;
  } paths[] = {
      {{"", false}, 0, false},
      {{further.path() + "::" + libraries + "/:", false}, 0, true},
      {{relative + ":.:lib", false}, 3, false},
      {{libraries, true}, 1, false},
  };
  own.write("vxnlsudb.so", "broken");
  for (const auto& p : paths) {
    vxhost::ExtensionLoader loader(own.path(), p.path);
    EXPECT_EQ(loader.refused().size(), p.refused) << p.path.folders;
    EXPECT_EQ(refusal(loader, "vxemsg").empty(), p.found) << p.path.folders;
    EXPECT_NE(refusal(loader, "vxnlsudb"), "") << "a broken one of its own is not passed over";
  }
  // Where an installed host has them.
  fs::create_directory(own.file("vxnls-6"));
  own.link(libraries + "/vxnlsldb.so", "vxnls-6/vxnlsldb.so");
  vxhost::ExtensionLoader installed(own.path(), {"", false});
  EXPECT_EQ(refusal(installed, "vxnlsldb"), "");
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
  EXPECT_EQ(reinterpret_cast<decltype(&vxhostOpen)>(dlsym(library, "vxhostOpen"))(nullptr, &host), 0u)
      << reinterpret_cast<decltype(&vxhostOpenFailure)>(dlsym(library, "vxhostOpenFailure"))();
  reinterpret_cast<decltype(&vxhostClose)>(dlsym(library, "vxhostClose"))(host);
  fs::current_path(before);
}

/// With rights of its own, and every folder of the environment set.
void expect_no_folder_of_the_caller() {
  const vxhost::SearchPath path = vxhost::SearchPath::of_environment();
  EXPECT_FALSE(path.folders.empty());
  EXPECT_TRUE(path.privileged);
  const TemporaryFolder own;
  vxhost::ExtensionLoader loader(own.path(), path);
  EXPECT_EQ(loader.refused().size(), 2u);
  EXPECT_NE(refusal(loader, "vxemsg"), "");
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

// A copy of this program that has another group's rights runs this test again.
TEST(PrivilegedProcess, TakesNoFolderOfItsCaller) {
  if (getauxval(AT_SECURE) != 0) return expect_no_folder_of_the_caller();
  if (std::getenv("VXHOST_TEST_COPY") != nullptr)
    GTEST_SKIP() << "the system gives a program no rights of its own here";
  const TemporaryFolder folder;
  const std::string copy = folder.file("copy");
  fs::copy_file("/proc/self/exe", copy);
  std::vector<gid_t> groups(65536);
  groups.resize(static_cast<size_t>(std::max(0, getgroups(static_cast<int>(groups.size()), groups.data()))));
  groups.push_back(65534);  // root may give any
  if (std::none_of(groups.begin(), groups.end(), [&](gid_t group) {
        return group != getgid() && chown(copy.c_str(), static_cast<uid_t>(-1), group) == 0;
      })) {
    GTEST_SKIP() << "there is no other group to take rights from";
  }
  fs::permissions(copy, fs::perms(02755));
  // Where ICU's own data lies, and the zones: rubbish.
  const std::string icu = "icudt" U_ICU_VERSION_SHORT "l";
  fs::create_directories(folder.file(icu));
  for (const char* name : {"/root.res", "/de.res", "/de_DE.res"}) folder.write(icu + name, "rubbish");
  folder.write("tzdata.zi", "# version rubbish\n");
  const std::string line = "VXHOST_TEST_COPY=1 ICU_DATA=" + folder.path() + " TZDIR=" + folder.path() +
                           " VXHOST_PATH=" + libraries + ":. ASAN_OPTIONS=detect_leaks=0 " + copy +
                           " --gtest_filter='PrivilegedProcess.*' >" + folder.file("out") + " 2>&1";
  const int status = std::system(line.c_str());  // NOLINT(cert-env33-c): a line of this test's own
  const std::string out = vxhost::contents(folder.file("out"));
  EXPECT_EQ(status, 0) << out;
  if (out.find("SKIPPED") != std::string::npos) GTEST_SKIP() << out;
  EXPECT_NE(out.find("[  PASSED  ] 1 test."), std::string::npos) << out;
}

}  // namespace
