// The extension loader: what it follows and what it refuses.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "host/accounting.h"
#include "host/extension_loader.h"
#include "tests/host/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
const std::string libraries = VXHOST_TEST_FOLDER;

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
    vxhost::ExtensionLoader loader(libraries, {"", false});
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
    vxhost::ExtensionLoader loader(libraries, {"", false});
    left = load(loader, "vxemsg");
    ASSERT_NE(left, nullptr);
  }
  EXPECT_EQ(vxhost::alive(), before + 1);
  left->ops->destroy(left);
  EXPECT_EQ(vxhost::alive(), before);
}

TEST(Loader, RefusesWhatIsNoName) {
  vxhost::ExtensionLoader loader(libraries, {"", false});
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
  folder.link(libraries + "/vxemsg.so", "vxother.so");         // an extension under another's name
  folder.link(libraries + "/libvxnlsloc.so", "vxlibrary.so");  // a library, but no extension
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
  vxhost::ExtensionLoader loader(own.path(), {further.path() + "::" + libraries + "/:", false});
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
  own.link(libraries + "/vxnlsldb.so", "vxnls-6/vxnlsldb.so");
  vxhost::ExtensionLoader installed(own.path(), {"", false});
  VXExtension* const there = load(installed, "vxnlsldb");
  ASSERT_NE(there, nullptr);
  there->ops->destroy(there);
}

TEST(Loader, RefusesRelativeFoldersAndAllOfThemWithPrivileges) {
  const vxtest::TemporaryFolder own;
  const std::string relative = fs::relative(libraries).string();
  {
    vxhost::ExtensionLoader loader(own.path(), {relative + ":.:" + "lib", false});
    EXPECT_EQ(loader.refused().size(), 3u);
    EXPECT_EQ(load(loader, "vxemsg"), nullptr);
  }
  {
    vxhost::ExtensionLoader loader(own.path(), {libraries, true});
    EXPECT_EQ(loader.refused().size(), 1u);
    EXPECT_EQ(load(loader, "vxemsg"), nullptr);
  }
}

}  // namespace
