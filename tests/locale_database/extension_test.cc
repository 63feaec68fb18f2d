// The extension as a host meets it: one symbol, a table of operations, C at the border.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "host/extension.h"
#include "host/locale_database/text.h"
#include "host/locale_database_ops.h"
#include "tests/locale_database/every_locale.h"
#include "tests/support/plain_locale.h"

namespace {

/// Hands a C callback on to a function; the callback's texts as a vector.
using Receiver = std::function<int(const std::vector<std::string>&)>;

template <class... Text>
int receive(void* user, Text... texts) {
  return (*static_cast<Receiver*>(user))({texts...});
}

class Extension : public testing::Test {
 protected:
  void SetUp() override {
    library_ = dlopen(VXNLSLDB_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library_, nullptr) << dlerror();
    description_ = static_cast<const VXHostExtension*>(dlsym(library_, "vxhost_extension"));
    ASSERT_NE(description_, nullptr);
    owner_ = {nullptr, [](VXHostExtensionOwner*) { ++closed_; }};
    closed_ = 0;
    extension_ = description_->open(&owner_);
    ASSERT_NE(extension_, nullptr);
    database_ = reinterpret_cast<VXLocaleDatabase*>(extension_);
  }
  void TearDown() override {
    if (extension_ != nullptr) {
      EXPECT_EQ(extension_->ops->destroy(extension_), 0u);
      EXPECT_EQ(closed_, 1);
    }
    if (library_ != nullptr) dlclose(library_);
  }

  const VXHostLocaleDatabaseOps& ops() const {
    return *reinterpret_cast<const VXHostLocaleDatabaseOps*>(database_->ops);
  }
  VXStatus fill(std::u32string_view name, VXLocaleData* record) const {
    const std::vector<VXChar> units(name.begin(), name.end());
    return database_->ops->fill(database_, record, units.data(), static_cast<int64_t>(units.size()));
  }

  inline static int closed_;
  void* library_ = nullptr;
  const VXHostExtension* description_ = nullptr;
  VXHostExtensionOwner owner_{};
  VXExtension* extension_ = nullptr;
  VXLocaleDatabase* database_ = nullptr;
};

}  // namespace

TEST_F(Extension, PresentsItself) {
  EXPECT_EQ(description_->version, VXHOST_EXTENSION_VERSION);
  EXPECT_STREQ(description_->name, "vxnlsldb");
}

TEST_F(Extension, FillsRecords) {
  auto record = std::make_unique<VXLocaleData>();
  EXPECT_EQ(fill(U"pl_PL", record.get()), 0u);
  EXPECT_EQ(std::memcmp(record.get(), vxtest::filled("pl_PL").data.get(), sizeof *record), 0);
  EXPECT_EQ(fill(U"pl_XX", record.get()), VX_W_FILL);
  EXPECT_EQ(vxnlsldb::utf8(vxnlsldb::text_of(record->localeName)), "pl_XX");
}

TEST_F(Extension, RefusesWhatIsNoName) {
  auto record = std::make_unique<VXLocaleData>();
  for (const char32_t* name : {U"pl/PL", U"pl.UTF-8", U"../pl", U"pł", U"pl PL"}) {
    EXPECT_EQ(fill(name, record.get()), VX_E_NOMATCH) << vxnlsldb::utf8(name);
  }
  EXPECT_EQ(fill(std::u32string(61, U'a'), record.get()), VX_E_NOMATCH);
  const VXChar unit = 'p';
  for (const int64_t length : {int64_t{0}, int64_t{-1}, INT64_MIN}) {
    EXPECT_EQ(database_->ops->fill(database_, record.get(), &unit, length), VX_E_NOMATCH);
  }
  EXPECT_EQ(database_->ops->fill(database_, record.get(), nullptr, 1), VX_E_NULL);
  EXPECT_EQ(database_->ops->fill(database_, nullptr, &unit, 1), VX_E_NULL);
}

TEST_F(Extension, TellsFallbacksAndBrokenRules) {
  std::vector<std::vector<std::string>> told;
  Receiver all = [&](const std::vector<std::string>& texts) {
    told.push_back(texts);
    return 0;
  };
  EXPECT_EQ(ops().for_each_fallback(database_, "vi_VN", &receive<const char*, const char*, const char*>, &all), 0u);
  ASSERT_EQ(told.size(), 2u);
  EXPECT_EQ(told[0][0], "datePattern1");
  EXPECT_EQ(told[0][1], "%d/%m/%Y");
  EXPECT_TRUE(told[0][2].starts_with("R6: ")) << told[0][2];

  told.clear();
  vxtest::PlainLocale plain;
  EXPECT_EQ(ops().check(database_, &plain.data, &receive<const char*, const char*, const char*>, &all), 0u);
  EXPECT_TRUE(told.empty());
  plain.data.pmMarker.length = 0;
  plain.data.decimalPoint = ',';
  ops().check(database_, &plain.data, &receive<const char*, const char*, const char*>, &all);
  ASSERT_EQ(told.size(), 2u);
  EXPECT_EQ(told[0][0] + told[1][0], "R3R11");
  EXPECT_EQ(ops().check(database_, nullptr, &receive<const char*, const char*, const char*>, &all), VX_E_NULL);
}
