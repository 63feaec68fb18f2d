// The extension loader: what it follows and what it refuses.
#include <gtest/gtest.h>
#include <sys/auxv.h>
#include <sys/stat.h>
#include <unicode/uvernum.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <vector>

#include "host/accounting.h"
#include "host/extension_loader.h"
#include "host/zone_table.h"
#include "tests/host/temporary_folder.h"
#include "vxnls/vxhost.h"

namespace {

namespace fs = std::filesystem;
std::string libraries() { return VXHOST_TEST_FOLDER; }

VXExtension* load(vxhost::ExtensionLoader& loader, std::string_view name, std::string* why = nullptr) {
  std::string reason;
  VXExtension* const extension = loader.load(name, nullptr, reason);
  EXPECT_EQ(extension == nullptr, !reason.empty());
  if (why != nullptr) *why = reason;
  return extension;
}

TEST(Loader, OpensInstancesAndUnloads) {
  const int64_t before = vxhost::alive();
  {
    vxhost::ExtensionLoader loader(libraries(), {"", false});
    VXExtension* const one = load(loader, "vxemsg");
    VXExtension* const two = load(loader, "vxemsg");
    ASSERT_NE(one, nullptr);
    ASSERT_NE(two, nullptr);
    EXPECT_NE(one, two);
    EXPECT_EQ(vxhost::alive(), before + 2);
    EXPECT_EQ(one->ops->destroy(one), 0u);
    EXPECT_EQ(two->ops->destroy(two), 0u);
  }
  EXPECT_EQ(vxhost::alive(), before);
}

TEST(Loader, AnInstanceThatIsLeftOpenStaysUsableAndCounted) {
  const int64_t before = vxhost::alive();
  VXExtension* left = nullptr;
  {
    vxhost::ExtensionLoader loader(libraries(), {"", false});
    left = load(loader, "vxemsg");
    ASSERT_NE(left, nullptr);
  }
  EXPECT_EQ(vxhost::alive(), before + 1);
  left->ops->destroy(left);
  EXPECT_EQ(vxhost::alive(), before);
}

TEST(Loader, RefusesWhatIsNoName) {
  vxhost::ExtensionLoader loader(libraries(), {"", false});
  for (const std::string& name : {std::string(), std::string("../lib/vxemsg"), std::string("/vxemsg"),
                                  std::string("vxemsg.so"), std::string("VXEMSG"), std::string("vxemsg\0x", 8),
                                  std::string("vxemsg "), std::string(10000, 'a'), std::string("vxémsg")}) {
    SCOPED_TRACE(name.substr(0, 40));
    EXPECT_EQ(load(loader, name), nullptr);
  }
  EXPECT_EQ(load(loader, "vxnothere"), nullptr);
  EXPECT_NE(loader.take_failure().find("vxnothere"), std::string::npos);
  EXPECT_EQ(loader.take_failure(), "");
}

TEST(Loader, RefusesWhatIsNoExtension) {
  const vxtest::TemporaryFolder folder;
  folder.link(libraries() + "/vxemsg.so", "vxother.so");         // an extension under another's name
  folder.link(libraries() + "/libvxnlsloc.so", "vxlibrary.so");  // a library, but no extension
  folder.write("vxtext.so", "no library at all");
  fs::create_directory(folder.file("vxfolder.so"));
  vxhost::ExtensionLoader loader(folder.path(), {"", false});
  for (const char* const name : {"vxother", "vxlibrary", "vxtext", "vxfolder"}) {
    SCOPED_TRACE(name);
    std::string why;
    EXPECT_EQ(load(loader, name, &why), nullptr);
    EXPECT_NE(why.find(name), std::string::npos) << why;
  }
}

TEST(Loader, TakesItsOwnFoldersBeforeTheSearchPath) {
  const vxtest::TemporaryFolder own;
  const vxtest::TemporaryFolder further;
  own.write("vxnlsudb.so", "broken");
  vxhost::ExtensionLoader loader(own.path(), {further.path() + "::" + libraries() + "/:", false});
  EXPECT_TRUE(loader.refused().empty());
  VXExtension* const found = load(loader, "vxemsg");
  ASSERT_NE(found, nullptr);
  found->ops->destroy(found);
  EXPECT_EQ(load(loader, "vxnlsudb"), nullptr) << "a broken one of its own is not passed over";

  // Where an installed host has them: broken there, whole further on.
  fs::create_directory(own.file("vxnls-6"));
  own.write("vxnls-6/vxnlsldb.so", "broken");
  EXPECT_EQ(load(loader, "vxnlsldb"), nullptr);
  fs::remove(own.file("vxnls-6/vxnlsldb.so"));
  own.link(libraries() + "/vxnlsldb.so", "vxnls-6/vxnlsldb.so");
  vxhost::ExtensionLoader installed(own.path(), {"", false});
  VXExtension* const there = load(installed, "vxnlsldb");
  ASSERT_NE(there, nullptr);
  there->ops->destroy(there);
}

TEST(Loader, RefusesRelativeFoldersAndAllOfThemWithPrivileges) {
  const vxtest::TemporaryFolder own;
  const std::string relative = fs::relative(libraries()).string();
  {
    vxhost::ExtensionLoader loader(own.path(), {relative + ":.:" + "lib", false});
    EXPECT_EQ(loader.refused().size(), 3u);
    EXPECT_EQ(load(loader, "vxemsg"), nullptr);
  }
  {
    vxhost::ExtensionLoader loader(own.path(), {libraries(), true});
    EXPECT_EQ(loader.refused().size(), 1u);
    EXPECT_EQ(load(loader, "vxemsg"), nullptr);
  }
}

/// With rights of its own, and every folder of the environment set.
void expect_no_folder_of_the_caller() {
  const vxhost::SearchPath path = vxhost::SearchPath::of_environment();
  EXPECT_FALSE(path.folders.empty());
  EXPECT_TRUE(path.privileged);
  const vxtest::TemporaryFolder own;
  vxhost::ExtensionLoader loader(own.path(), path);
  EXPECT_EQ(loader.refused().size(), 2u);
  EXPECT_EQ(load(loader, "vxemsg"), nullptr);
  EXPECT_EQ(vxhost::ZoneTable::system_folder(), "/usr/share/zoneinfo");

  VXHost* host = nullptr;
  ASSERT_EQ(vxhostOpen(libraries().c_str(), &host), 0u) << vxhostOpenFailure();
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
  if (getauxval(AT_SECURE) != 0) {
    expect_no_folder_of_the_caller();
    return;
  }
  if (std::getenv("VXHOST_TEST_COPY") != nullptr)
    GTEST_SKIP() << "the system gives a program no rights of its own here";
  const vxtest::TemporaryFolder folder;
  const std::string copy = folder.file("copy");
  fs::copy_file("/proc/self/exe", copy);
  std::vector<gid_t> groups(static_cast<size_t>(getgroups(0, nullptr)));
  if (getgroups(static_cast<int>(groups.size()), groups.data()) < 0) groups.clear();
  if (geteuid() == 0) groups.push_back(65534);
  const auto other = std::find_if(groups.begin(), groups.end(), [](gid_t group) { return group != getgid(); });
  if (other == groups.end() || chown(copy.c_str(), static_cast<uid_t>(-1), *other) != 0) {
    GTEST_SKIP() << "there is no other group to take rights from";
  }
  ASSERT_EQ(chmod(copy.c_str(), 02755), 0);
  // Where ICU's own data lies, and the zones: rubbish.
  const std::string icu = "icudt" U_ICU_VERSION_SHORT "l";
  fs::create_directories(folder.file(icu));
  for (const char* name : {"/root.res", "/de.res", "/de_DE.res"}) folder.write(icu + name, "rubbish");
  folder.write("tzdata.zi", "# version rubbish\n");
  const std::string line = "VXHOST_TEST_COPY=1 ICU_DATA=" + folder.path() + " TZDIR=" + folder.path() +
                           " VXHOST_PATH=" + libraries() + ":. ASAN_OPTIONS=detect_leaks=0 " + copy +
                           " --gtest_filter='PrivilegedProcess.*' >" + folder.file("out") + " 2>&1";
  const int status = std::system(line.c_str());  // NOLINT(cert-env33-c): a line of this test's own
  std::ifstream file(folder.file("out"));
  const std::string out{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(status, 0) << out;
  if (out.find("SKIPPED") != std::string::npos) GTEST_SKIP() << out;
  EXPECT_NE(out.find("[  PASSED  ] 1 test."), std::string::npos) << out;
}

}  // namespace
