// Case, comparison, classes and normalisation by the reference host, on the road of a real program: every code point
// against ICU, and the test file of the Unicode Consortium.
#include <gtest/gtest.h>

#include <array>
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

TEST_F(WithHost, CaseComparisonAndClassesOfEveryCodePoint) {
  static constexpr struct {
    UChar32 (*by_icu)(UChar32);
    void (*units)(VXChar*, int64_t);
    void (*in_place)(uint8_t*, int64_t);
    VXStatus (*into)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*);
  } directions[] = {{u_tolower, vxzstlo, vxzsu8Lower, vxzsu8Lower2}, {u_toupper, vxzstup, vxzsu8Upper, vxzsu8Upper2}};
  for (uint32_t c = 0; c < 0x110000; ++c) {
    const auto icu = static_cast<UChar32>(c);
    const std::string text = utf8_of(c);
    for (const auto& direction : directions) {
      const auto mapped = static_cast<uint32_t>(direction.by_icu(icu));
      const std::string expected = utf8_of(mapped);
      VXChar unit = c;
      direction.units(&unit, 1);
      uint8_t out[8];
      int64_t written = -1, measured = -1;
      ASSERT_EQ(direction.into(bytes(text), length_of(text), out, 8, &written), 0u);
      ASSERT_EQ(direction.into(bytes(text), length_of(text), nullptr, 0, &measured), 0u);
      ASSERT_TRUE(unit == mapped && std::string(out, out + written) == expected && measured == written) << c;
      // In place what got shorter is followed by blanks, and what grew overwrites what follows.
      std::string changed = text, padded = expected;
      changed.resize(std::max(text.size(), expected.size()), 'X');
      padded.resize(changed.size(), ' ');
      direction.in_place(reinterpret_cast<uint8_t*>(changed.data()), length_of(changed));
      ASSERT_EQ(changed, padded) << c;
    }
    const auto small = static_cast<uint32_t>(u_tolower(icu));
    const std::string lower = utf8_of(small);
    ASSERT_EQ(vxzsu8NormCompare(bytes(text), length_of(text), bytes(lower), length_of(lower)),
              (c > small) - (c < small));
    const uint32_t category = U_GET_GC_MASK(icu);
    for (const auto& k : class_categories) {
      ASSERT_EQ(k.test(c), (category & (k.categories | k.by_hosts)) != 0) << k.name << " of " << c;
    }
    ASSERT_TRUE(vxnlsisxdigit(c) == u_isxdigit(icu) && vxnlsisspace(c) == u_isUWhiteSpace(icu)) << c;
    ASSERT_EQ(vxzsu8IsCombining(bytes(text)), (category & U_GC_M_MASK) != 0 || c == 0x200C || c == 0x200D) << c;
  }
}

constexpr uint32_t forms[] = {0, 1, 2, 3};  // NFC, NFD, NFKC, NFKD

std::string normalised(const std::string& text, uint32_t form) {
  static uint8_t out[4096];
  int64_t length = 0;
  VXStatus status = 77;
  EXPECT_EQ(vxzsu8ICUNormalize(bytes(text), length_of(text), form, reinterpret_cast<uint64_t>(out), sizeof out,
                               reinterpret_cast<uint64_t>(&length), &status),
            0u);
  EXPECT_EQ(status, 0u);
  return {out, out + length};
}

int32_t compared(const std::string& a, const std::string& b, uint32_t option = 0) {
  VXStatus status = 77;
  const int32_t order = vxzsu8ICUNormCompare(bytes(a), length_of(a), bytes(b), length_of(b), option, nullptr);
  EXPECT_EQ(vxzsu8ICUNormEqual(bytes(a), length_of(a), bytes(b), length_of(b), option, &status), order == 0);
  EXPECT_EQ(status, 0u);
  return order;
}

// The file is packed by Debian.
TEST_F(WithHost, NormalisationPassesTheFileOfTheConsortium) {
  // NOLINTNEXTLINE(cert-env33-c): the command is fixed
  FILE* const pipe = popen("bzip2 -dc /usr/share/unicode/NormalizationTest.txt.bz2", "r");
  ASSERT_NE(pipe, nullptr);
  std::vector<bool> listed(0x110000);
  bool in_part_1 = false;
  int checked = 0;
  for (std::array<char, 4096> line; std::fgets(line.data(), line.size(), pipe) != nullptr && !HasFailure();) {
    if (line[0] == '@') in_part_1 = std::string_view(line.data()).starts_with("@Part1");
    if (std::isxdigit(line[0]) == 0) continue;
    SCOPED_TRACE(line.data());
    if (in_part_1) listed[std::stoul(line.data(), nullptr, 16)] = true;
    std::string c[5];  // source, NFC, NFD, NFKC, NFKD
    std::istringstream columns(line.data());
    for (std::string& text : c) {
      std::string column;
      std::getline(columns, column, ';');
      std::istringstream numbers(column);
      for (uint32_t number; numbers >> std::hex >> number;) text += utf8_of(number);
    }
    for (size_t i = 0; i < 5; ++i) {
      // By compatibility for good: what is in such a form stays in it.
      for (const uint32_t form : forms) EXPECT_EQ(normalised(c[i], form), c[form + (form < 2 && i > 2 ? 3 : 1)]) << i;
    }
    EXPECT_EQ(compared(c[0], c[1]) * 10 + compared(c[0], c[2]), 0);
    ++checked;
  }
  EXPECT_TRUE(pclose(pipe) == 0 && checked > 18000) << "the Debian packages unicode-data and bzip2 are needed";
  for (uint32_t x = 0; x < 0x110000; ++x) {
    if (listed[x] || !u_isdefined(static_cast<UChar32>(x)) || U_IS_SURROGATE(x)) continue;
    for (const uint32_t form : forms) ASSERT_EQ(normalised(utf8_of(x), form), utf8_of(x)) << x;
  }
  EXPECT_TRUE(compared("a", "b") == -1 && compared("b", "a") == 1 && compared("a", "A") != 0);
  EXPECT_EQ(compared("a", "A", 1), 0) << "the option is handed on";
}

}  // namespace
