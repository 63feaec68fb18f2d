// Class bits, and what normalisation refuses. Case, classes and normalisation of every character as the library gives
// them are held against ICU and the consortium's files by tests/utf8/host_case_test.cc.
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include "host/character_data.h"
#include "host/extension_loader.h"
#include "host/normaliser.h"
#include "host/unicode_database_ops.h"

namespace {

TEST(UnicodeDatabase, ClassBitsOfEveryCodePoint) {
  // Bit 0, bit 1, and so on.
  static constexpr std::string_view categories = "LuLlLtMnMcMeNdNlNoZsZlZpCcCfCsCoCnLmLoPcPdPsPePiPfPoSmScSkSo";
  std::string why;
  vxhost::ExtensionLoader loader(VXHOST_TEST_FOLDER, {"", false});
  VXExtension* const loaded = loader.load("vxnlsudb", nullptr, why);
  ASSERT_NE(loaded, nullptr) << why;
  auto* const database = reinterpret_cast<VXUnicodeDatabase*>(loaded);
  const auto& ops = *reinterpret_cast<const VXHostUnicodeDatabaseOps*>(loaded->ops);
  for (uint32_t c = 0; c < 0x110000; ++c) {
    const int32_t type = u_charType(static_cast<UChar32>(c));
    const char* const category = u_getPropertyValueName(UCHAR_GENERAL_CATEGORY, type, U_SHORT_PROPERTY_NAME);
    const uint32_t bit = 1u << (categories.find(category) / 2);
    // Its own bit answers, all the others together do not.
    ASSERT_NE(ops.base.test_class(database, c, bit), 0) << std::hex << c;
    ASSERT_EQ(ops.base.test_class(database, c, ~bit), 0) << std::hex << c;
  }
  vxhost::CharacterData characters;
  for (const uint32_t c : {0x110000u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(ops.base.test_class(database, c, 0xFFFFFFFF), 0) << c;
    for (const auto map : {ops.lower, ops.upper}) EXPECT_EQ(map(database, c), c);
    for (const auto map : {characters.ops->lower, characters.ops->upper}) EXPECT_EQ(map(&characters, c, 1), c);
  }
  loaded->ops->destroy(loaded);
}

TEST(Normaliser, ComparesAndRefuses) {
  vxhost::Normaliser normaliser;
  const auto& ops = *normaliser.ops;
  static constexpr struct {
    std::string_view a, b;
    uint32_t options;
    int32_t order;
    VXStatus status;
  } cases[] = {
      {"\u1E9E\uFB01", "ssfi", 0, 1, 0},
      {"\u1E9E\uFB01", "ssfi", 1, 0, 0},   // each folds to two letters
      {"\uFFFD", "\U00010000", 0, -1, 0},  // by code points, not by code units
      {"a", "b", 2, 0, VX_E_KIND},
      {{nullptr, 1}, "", 0, 0, VX_E_NULL},
      {{"a", SIZE_MAX}, "", 0, 0, VX_E_LENGTH},
      {{"a", size_t{1} << 31}, "", 0, 0, VX_E_RANGE},
      {"\xED\xA0\x80", "", 0, 0, VX_E_SEQUENCE},
  };
  const auto bytes = [](std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); };
  const auto size = [](std::string_view text) { return static_cast<int64_t>(text.size()); };
  const auto word = [](void* pointer) { return reinterpret_cast<uint64_t>(pointer); };
  int64_t needed = -1;
  VXStatus status = 77, back = 77;
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(ops.compare(&normaliser, bytes(c.a), size(c.a), bytes(c.b), size(c.b), c.options, &status), c.order);
    EXPECT_EQ(ops.compare(&normaliser, bytes(c.b), size(c.b), bytes(c.a), size(c.a), c.options, &back), -c.order);
    EXPECT_TRUE(status == c.status && back == c.status) << status;
    const uint32_t form = c.status == VX_E_KIND ? 4 : 0;
    EXPECT_EQ(ops.normalise(&normaliser, bytes(c.a), size(c.a), form, 0, 0, word(&needed), &status), c.status);
    EXPECT_EQ(status, c.status);
  }
  uint8_t out[3] = {1};
  for (const uint64_t room : {2u, 3u}) {
    EXPECT_EQ(ops.normalise(&normaliser, bytes("\u00E9"), 2, 1, word(out), room, word(&needed), nullptr),
              room < 3 ? VX_E_ROOM : 0);
    EXPECT_TRUE(needed == 3 && out[0] == (room < 3 ? 1 : 'e'));
  }
  EXPECT_EQ(ops.normalise(&normaliser, bytes("a"), 1, 1, 0, 0, 0, nullptr), VX_E_NULL);
}

}  // namespace
