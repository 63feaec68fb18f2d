// Class bits, case mapping and normalisation, held against the files of the Unicode character database.
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "host/character_data.h"
#include "host/extension_loader.h"
#include "host/normaliser.h"
#include "host/unicode_database_ops.h"

namespace {

const std::map<std::string, uint32_t> bits = {
    {"Lu", 0x1},       {"Ll", 0x2},       {"Lt", 0x4},       {"Mn", 0x8},       {"Mc", 0x10},       {"Me", 0x20},
    {"Nd", 0x40},      {"Nl", 0x80},      {"No", 0x100},     {"Zs", 0x200},     {"Zl", 0x400},      {"Zp", 0x800},
    {"Cc", 0x1000},    {"Cf", 0x2000},    {"Cs", 0x4000},    {"Co", 0x8000},    {"Cn", 0x10000},    {"Lm", 0x20000},
    {"Lo", 0x40000},   {"Pc", 0x80000},   {"Pd", 0x100000},  {"Ps", 0x200000},  {"Pe", 0x400000},   {"Pi", 0x800000},
    {"Pf", 0x1000000}, {"Po", 0x2000000}, {"Sm", 0x4000000}, {"Sc", 0x8000000}, {"Sk", 0x10000000}, {"So", 0x20000000},
};

struct Character {
  uint32_t bit = 0x10000;
  uint32_t lower = 0, upper = 0;  // 0: itself
};

/// UnicodeData.txt: a line a character, two lines a range.
std::vector<Character> unicode_data() {
  std::vector<Character> all(0x110000);
  std::ifstream in("/usr/share/unicode/UnicodeData.txt");
  uint32_t first = 0;
  for (std::string line; std::getline(in, line);) {
    std::vector<std::string> fields;
    std::istringstream cut(line + ";.");
    for (std::string field; std::getline(cut, field, ';');) fields.push_back(field);
    const auto hex = [](const std::string& text) {
      return text.empty() ? 0 : static_cast<uint32_t>(std::stoul(text, nullptr, 16));
    };
    const uint32_t c = hex(fields[0]);
    if (!fields[1].ends_with(", Last>")) first = c;
    for (uint32_t at = first; at <= c; ++at) all[at] = {bits.at(fields[2]), hex(fields[13]), hex(fields[12])};
  }
  return all;
}

class UnicodeDatabase : public testing::Test {
 protected:
  void SetUp() override {
    std::string why;
    VXExtension* const loaded = loader_.load("vxnlsudb", nullptr, why);
    ASSERT_NE(loaded, nullptr) << why;
    database = reinterpret_cast<VXUnicodeDatabase*>(loaded);
    ops = reinterpret_cast<const VXHostUnicodeDatabaseOps*>(loaded->ops);
  }
  void TearDown() override {
    if (database != nullptr) ops->base.destroy(reinterpret_cast<VXExtension*>(database));
  }

  VXUnicodeDatabase* database = nullptr;
  const VXHostUnicodeDatabaseOps* ops = nullptr;

 private:
  vxhost::ExtensionLoader loader_{VXHOST_TEST_FOLDER, {"", false}};
};

TEST_F(UnicodeDatabase, AgreesWithUnicodeDataOnEveryCodePoint) {
  const std::vector<Character> all = unicode_data();
  ASSERT_EQ(all[U'A'].bit, 1u) << "is the package unicode-data there?";
  vxhost::CharacterData made;
  VXCharData* const characters = &made;
  for (uint32_t c = 0; c < all.size(); ++c) {
    // Its own bit answers, all the others together do not.
    ASSERT_NE(ops->base.test_class(database, c, all[c].bit), 0) << std::hex << c;
    ASSERT_EQ(ops->base.test_class(database, c, ~all[c].bit), 0) << std::hex << c;
    const uint32_t lower = all[c].lower != 0 ? all[c].lower : c;
    const uint32_t upper = all[c].upper != 0 ? all[c].upper : c;
    ASSERT_EQ(ops->lower(database, c), lower) << std::hex << c;
    ASSERT_EQ(ops->upper(database, c), upper) << std::hex << c;
    ASSERT_EQ(characters->ops->lower(characters, c, c % 2), lower) << std::hex << c;
    ASSERT_EQ(characters->ops->upper(characters, c, 1), upper) << std::hex << c;
  }
}

TEST_F(UnicodeDatabase, AnswersNothingAboveTheLastCharacter) {
  vxhost::CharacterData characters;
  for (const uint32_t c : {0x110000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(ops->base.test_class(database, c, 0xFFFFFFFF), 0) << c;
    EXPECT_EQ(ops->lower(database, c), c);
    EXPECT_EQ(ops->upper(database, c), c);
    EXPECT_EQ(characters.ops->lower(&characters, c, 1), c);
    EXPECT_EQ(characters.ops->upper(&characters, c, 1), c);
  }
}

class Normaliser : public testing::Test {
 protected:
  /// The normalised text, or the status in hexadecimal.
  std::string normalise(const std::string& text, uint32_t form) {
    uint8_t out[200];
    int64_t length = -1;
    VXStatus status = 77;
    const VXStatus result = call(text, form, out, sizeof out, &length, &status);
    EXPECT_EQ(result, status);
    if (result != 0) return std::to_string(result);
    int64_t measured = -1;
    EXPECT_EQ(call(text, form, nullptr, 0, &measured, nullptr), 0u);
    EXPECT_EQ(measured, length);
    return {reinterpret_cast<const char*>(out), static_cast<size_t>(length)};
  }
  VXStatus call(const std::string& text, uint32_t form, uint8_t* out, int64_t room, int64_t* length, VXStatus* status) {
    return normaliser->ops->normalise(normaliser, bytes(text), size(text), form, reinterpret_cast<uint64_t>(out),
                                      static_cast<uint64_t>(room), reinterpret_cast<uint64_t>(length), status);
  }
  static const uint8_t* bytes(const std::string& text) { return reinterpret_cast<const uint8_t*>(text.data()); }
  static int64_t size(const std::string& text) { return static_cast<int64_t>(text.size()); }

  vxhost::CharacterData characters;
  VXNormaliser* normaliser = characters.ops->create_normaliser(&characters);
};

TEST_F(Normaliser, Forms) {
  static constexpr struct {
    const char *text, *nfc, *nfd, *nfkc, *nfkd;
  } cases[] = {
      {"", "", "", "", ""},
      {"abc", "abc", "abc", "abc", "abc"},
      {"\u00E9", "\u00E9", "e\u0301", "\u00E9", "e\u0301"},
      {"e\u0301", "\u00E9", "e\u0301", "\u00E9", "e\u0301"},
      {"a\u0301\u0323", "\u1EA1\u0301", "a\u0323\u0301", "\u1EA1\u0301", "a\u0323\u0301"},
      {"\uAC01", "\uAC01", "\u1100\u1161\u11A8", "\uAC01", "\u1100\u1161\u11A8"},
      {"\uFB01\u00B2", "\uFB01\u00B2", "\uFB01\u00B2", "fi2", "fi2"},
      {"\u212B", "\u00C5", "A\u030A", "\u00C5", "A\u030A"},
      {"\U0001D15E", "\U0001D157\U0001D165", "\U0001D157\U0001D165", "\U0001D157\U0001D165", "\U0001D157\U0001D165"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(normalise(c.text, 0), c.nfc);
    EXPECT_EQ(normalise(c.text, 1), c.nfd);
    EXPECT_EQ(normalise(c.text, 2), c.nfkc);
    EXPECT_EQ(normalise(c.text, 3), c.nfkd);
  }
}

TEST_F(Normaliser, RefusesBrokenTextAndTakesNoRoomThatIsNotThere) {
  for (const char* const broken : {"\x80", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF5\x80\x80\x80", "a\xE2\x82"}) {
    EXPECT_EQ(normalise(broken, 0), std::to_string(VX_E_SEQUENCE));
    VXStatus status = 0;
    EXPECT_EQ(normaliser->ops->compare(normaliser, bytes("a"), 1, bytes(broken), size(broken), 0, &status), 0);
    EXPECT_EQ(status, VX_E_SEQUENCE);
  }
  EXPECT_EQ(normalise("a", 4), std::to_string(VX_E_KIND));
  uint8_t out[3] = {1, 2, 3};
  int64_t length = -1;
  EXPECT_EQ(call("\u00E9", 1, out, 2, &length, nullptr), VX_E_ROOM);
  EXPECT_EQ(length, 3);
  EXPECT_EQ(out[0], 1);
  EXPECT_EQ(call("a", 0, out, 3, nullptr, nullptr), VX_E_NULL);
  EXPECT_EQ(normaliser->ops->normalise(normaliser, nullptr, 1, 0, 0, 0, reinterpret_cast<uint64_t>(&length), nullptr),
            VX_E_NULL);
  EXPECT_EQ(normaliser->ops->normalise(normaliser, out, -1, 0, 0, 0, reinterpret_cast<uint64_t>(&length), nullptr),
            VX_E_LENGTH);
  EXPECT_EQ(normaliser->ops->normalise(normaliser, out, int64_t{1} << 31, 0, 0, 0, reinterpret_cast<uint64_t>(&length),
                                       nullptr),
            VX_E_RANGE);
}

TEST_F(Normaliser, Comparison) {
  static constexpr struct {
    const char *a, *b;
    int32_t plain, ignoring_case;
  } cases[] = {
      {"", "", 0, 0},
      {"", "a", -1, -1},
      {"a", "b", -1, -1},
      {"b", "a", 1, 1},
      {"a", "A", 1, 0},
      {"\u00E9", "e\u0301", 0, 0},
      {"\u00E9", "E\u0301", 1, 0},
      {"\u1E9E", "ss", 1, 0},            // capital sharp s folds to two letters
      {"\uFB01", "fi", 1, 0},            // so does the ligature; without folding it is a letter of its own
      {"\uFFFD", "\U00010000", -1, -1},  // by code points, not by code units
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.a) + " and " + c.b);
    VXStatus status = 77;
    EXPECT_EQ(normaliser->ops->compare(normaliser, bytes(c.a), size(c.a), bytes(c.b), size(c.b), 0, &status), c.plain);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(normaliser->ops->compare(normaliser, bytes(c.a), size(c.a), bytes(c.b), size(c.b), 1, &status),
              c.ignoring_case);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(normaliser->ops->compare(normaliser, bytes(c.b), size(c.b), bytes(c.a), size(c.a), 0, &status), -c.plain);
  }
  VXStatus status = 0;
  EXPECT_EQ(normaliser->ops->compare(normaliser, bytes("a"), 1, bytes("b"), 1, 2, &status), 0);
  EXPECT_EQ(status, VX_E_KIND);
}

}  // namespace
