// Case, comparison, classes and normalisation by the reference host, on the road of a real program: every code point
// against ICU, and the test file of the Unicode Consortium.
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <cstdio>
#include <sstream>

#include "tests/kernel_strings/class_categories.h"
#include "tests/unicode/texts.h"
#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

using namespace vxtest;

class WithHost : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(vxhostOpen(nullptr, &host_), 0u) << vxhostOpenFailure(); }
  void TearDown() override {
    vxhostClose(host_);
    EXPECT_EQ(vxhostAlive(), 0);
  }

 private:
  VXHost* host_ = nullptr;
};

constexpr struct {
  UChar32 (*by_icu)(UChar32);
  void (*units)(VXChar*, int64_t);
  void (*in_place)(uint8_t*, int64_t);
  VXStatus (*into)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*);
} directions[] = {{u_tolower, vxzstlo, vxzsu8Lower, vxzsu8Lower2}, {u_toupper, vxzstup, vxzsu8Upper, vxzsu8Upper2}};

TEST_F(WithHost, CaseOfEveryCodePoint) {
  for (const auto& direction : directions) {
    for (uint32_t c = 0; c < 0x110000; ++c) {
      const auto mapped = static_cast<uint32_t>(direction.by_icu(static_cast<UChar32>(c)));
      VXChar unit = c;
      direction.units(&unit, 1);
      ASSERT_EQ(unit, mapped) << c;
      const std::string text = utf8_of(c), expected = utf8_of(mapped);
      uint8_t out[8];
      int64_t written = -1, measured = -1;
      ASSERT_EQ(direction.into(bytes(text), length_of(text), out, 8, &written), 0u);
      ASSERT_EQ(std::string(out, out + written), expected) << c;
      ASSERT_EQ(direction.into(bytes(text), length_of(text), nullptr, 0, &measured), 0u);
      ASSERT_EQ(measured, written) << c;
      // In place what got shorter is followed by blanks, and what grew overwrites what follows.
      std::string changed = text, padded = expected;
      changed.resize(std::max(text.size(), expected.size()), 'X');
      padded.resize(changed.size(), ' ');
      direction.in_place(reinterpret_cast<uint8_t*>(changed.data()), length_of(changed));
      ASSERT_EQ(changed, padded) << c;
    }
  }
}

TEST_F(WithHost, ComparisonAndClassesOfEveryCodePoint) {
  for (uint32_t c = 0; c < 0x110000; ++c) {
    const auto lower = static_cast<uint32_t>(u_tolower(static_cast<UChar32>(c)));
    const std::string a = utf8_of(c), b = utf8_of(lower);
    ASSERT_EQ(vxzsu8NormCompare(bytes(a), length_of(a), bytes(b), length_of(b)), (c > lower) - (c < lower)) << c;
    const uint32_t category = U_GET_GC_MASK(static_cast<UChar32>(c));
    for (const auto& k : class_categories) {
      ASSERT_EQ(k.test(c), (category & (k.categories | k.by_hosts)) != 0) << k.name << " of " << c;
    }
    ASSERT_EQ(vxnlsisxdigit(c), u_isxdigit(static_cast<UChar32>(c))) << c;
    ASSERT_EQ(vxnlsisspace(c), u_isUWhiteSpace(static_cast<UChar32>(c))) << c;
    const bool combining = (category & U_GC_M_MASK) != 0 || c == 0x200C || c == 0x200D;
    ASSERT_EQ(vxzsu8IsCombining(bytes(a)), combining) << c;
  }
}

enum Form : uint32_t { nfc, nfd, nfkc, nfkd };

std::string normalised(const std::string& text, Form form) {
  static uint8_t out[4096];
  int64_t length = 0;
  VXStatus status = 77;
  EXPECT_EQ(vxzsu8ICUNormalize(bytes(text), length_of(text), form, reinterpret_cast<uint64_t>(out), sizeof out,
                               reinterpret_cast<uint64_t>(&length), &status),
            0u);
  EXPECT_EQ(status, 0u);
  return {out, out + length};
}

/// The consortium's file, which Debian packs.
std::stringstream test_file() {
  // NOLINTNEXTLINE(cert-env33-c): the command is fixed
  FILE* const pipe = popen("bzip2 -dc /usr/share/unicode/NormalizationTest.txt.bz2", "r");
  std::stringstream text;
  for (int c; pipe != nullptr && (c = fgetc(pipe)) != EOF;) text.put(static_cast<char>(c));
  if (pipe != nullptr) pclose(pipe);
  return text;
}

TEST_F(WithHost, NormalisationPassesTheFileOfTheConsortium) {
  std::stringstream file = test_file();
  std::vector<bool> listed(0x110000);
  bool in_part_1 = false;
  int checked = 0;
  for (std::string line; std::getline(file, line) && !HasFailure();) {
    if (line.starts_with('@')) in_part_1 = line.starts_with("@Part1");
    if (line.empty() || line[0] == '#' || line[0] == '@') continue;
    SCOPED_TRACE(line);
    if (in_part_1) listed[std::stoul(line, nullptr, 16)] = true;
    std::string c[5];  // source, NFC, NFD, NFKC, NFKD
    std::istringstream columns(line);
    for (std::string& text : c) {
      std::string column;
      std::getline(columns, column, ';');
      std::istringstream numbers(column);
      for (uint32_t number; numbers >> std::hex >> number;) text += utf8_of(number);
    }
    for (size_t i = 0; i < 5; ++i) {
      EXPECT_EQ(normalised(c[i], nfc), c[i < 3 ? 1 : 3]) << i;
      EXPECT_EQ(normalised(c[i], nfd), c[i < 3 ? 2 : 4]) << i;
      EXPECT_EQ(normalised(c[i], nfkc), c[3]) << i;
      EXPECT_EQ(normalised(c[i], nfkd), c[4]) << i;
    }
    VXStatus status = 77;
    EXPECT_EQ(vxzsu8ICUNormEqual(bytes(c[0]), length_of(c[0]), bytes(c[2]), length_of(c[2]), 0, &status), 1);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(vxzsu8ICUNormCompare(bytes(c[0]), length_of(c[0]), bytes(c[1]), length_of(c[1]), 0, nullptr), 0);
    ++checked;
  }
  EXPECT_GT(checked, 18000) << "the Debian packages unicode-data and bzip2 are needed";
  for (uint32_t x = 0; x < 0x110000; ++x) {
    if (listed[x] || !u_isdefined(static_cast<UChar32>(x)) || U_IS_SURROGATE(x)) continue;
    for (const Form form : {nfc, nfd, nfkc, nfkd}) ASSERT_EQ(normalised(utf8_of(x), form), utf8_of(x)) << x;
  }
  // The result, the option and the status of the normaliser are passed on.
  const auto compare = [](const char* a, const char* b, uint32_t option) {
    return vxzsu8ICUNormCompare(bytes(a), length_of(a), bytes(b), length_of(b), option, nullptr);
  };
  EXPECT_EQ(compare("a", "b", 0) * 100 + compare("b", "a", 0) * 10 + compare("a", "A", 1), -100 + 10 + 0);
  EXPECT_NE(compare("a", "A", 0), 0);
  EXPECT_EQ(vxzsu8ICUNormEqual(bytes("a"), 1, bytes("A"), 1, 0, nullptr), 0);
  EXPECT_EQ(vxzsu8ICUNormEqual(bytes("a"), 1, bytes("A"), 1, 1, nullptr), 1);
}

}  // namespace
