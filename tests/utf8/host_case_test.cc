// Case, classes and normalisation by the reference host, on the road of a real program: every code point against ICU,
// and the test file of the Unicode Consortium.
#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdio>
#include <string>
#include <vector>

#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes utf8_of(uint32_t c) {
  Bytes bytes(4);
  size_t n = 0;
  U8_APPEND_UNSAFE(bytes.data(), n, c);
  bytes.resize(n);
  return bytes;
}

int64_t size(const Bytes& bytes) { return static_cast<int64_t>(bytes.size()); }

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

struct Direction {
  UChar32 (*by_icu)(UChar32);
  void (*units)(VXChar*, int64_t);
  void (*in_place)(uint8_t*, int64_t);
  VXStatus (*into)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*);
};
constexpr Direction directions[] = {{u_tolower, vxzstlo, vxzsu8Lower, vxzsu8Lower2},
                                    {u_toupper, vxzstup, vxzsu8Upper, vxzsu8Upper2}};

TEST_F(WithHost, CaseOfEveryCodePoint) {
  int grown = 0, shrunk = 0;
  for (const Direction& direction : directions) {
    for (uint32_t c = 0; c < 0x110000; ++c) {
      const auto mapped = static_cast<uint32_t>(direction.by_icu(static_cast<UChar32>(c)));
      VXChar unit = c;
      direction.units(&unit, 1);
      ASSERT_EQ(unit, mapped) << c;

      const Bytes text = utf8_of(c), expected = utf8_of(mapped);
      uint8_t out[8];
      int64_t written, measured;
      ASSERT_EQ(direction.into(text.data(), size(text), out, 8, &written), 0u);
      ASSERT_EQ(Bytes(out, out + written), expected) << c;
      ASSERT_EQ(direction.into(text.data(), size(text), nullptr, 0, &measured), 0u);
      ASSERT_EQ(measured, written) << c;

      // In place: with room behind it everything fits; what got shorter is followed by blanks.
      Bytes changed = text, padded = expected;
      changed.resize(8, 'X');
      if (expected.size() <= text.size()) {
        padded.resize(text.size(), ' ');
        direction.in_place(changed.data(), size(text));
        ASSERT_EQ(Bytes(changed.begin(), changed.begin() + size(text)), padded) << c;
      } else {
        // What follows is overwritten, and read again as what it became: a continuation byte stays one.
        const int64_t room = size(expected);
        direction.in_place(changed.data(), room);
        ASSERT_EQ(Bytes(changed.begin(), changed.begin() + room), expected) << c;
      }
      ASSERT_EQ(changed[7], 'X');
      grown += expected.size() > text.size();
      shrunk += expected.size() < text.size();
    }
  }
  EXPECT_GT(grown, 0);
  EXPECT_GT(shrunk, 0);
}

TEST_F(WithHost, ComparisonOfEveryCasePair) {
  for (uint32_t c = 0; c < 0x110000; ++c) {
    const auto lower = static_cast<uint32_t>(u_tolower(static_cast<UChar32>(c)));
    const Bytes a = utf8_of(c), b = utf8_of(lower);
    ASSERT_EQ(vxzsu8NormCompare(a.data(), size(a), b.data(), size(b)), lower == c ? 0 : c < lower ? -1 : 1) << c;
    ASSERT_EQ(vxzsu8NormEqual(b.data(), size(b), a.data(), size(a)), 1) << c;
  }
}

TEST_F(WithHost, ClassesOfEveryCodePoint) {
  constexpr uint32_t shown = U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK | U_GC_P_MASK | U_GC_S_MASK;
  static constexpr struct {
    const char* name;
    int32_t (*test)(uint32_t);
    uint32_t categories;
  } classes[] = {
      {"digit", vxnlsisdigit, U_GC_ND_MASK},
      {"lower", vxnlsislower, U_GC_LL_MASK},
      {"upper", vxnlsisupper, U_GC_LU_MASK},
      {"alpha", vxnlsisalpha, U_GC_L_MASK},
      {"alnum", vxnlsisalnum, U_GC_L_MASK | U_GC_ND_MASK},
      {"print", vxnlsisprint, shown | U_GC_Z_MASK},
      {"graph", vxnlsisgraph, shown | U_GC_CO_MASK},  // kept on purpose: the built-in ranges leave private use out
      {"punct", vxnlsispunct, U_GC_P_MASK},
      {"cntrl", vxnlsiscntrl, U_GC_CC_MASK | U_GC_CF_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK},
  };
  for (uint32_t c = 0; c < 0x110000; ++c) {
    const uint32_t category = U_GET_GC_MASK(static_cast<UChar32>(c));
    for (const auto& k : classes) ASSERT_EQ(k.test(c), (category & k.categories) != 0) << k.name << " of " << c;
    ASSERT_EQ(vxnlsisxdigit(c), u_isxdigit(static_cast<UChar32>(c))) << c;
    ASSERT_EQ(vxnlsisspace(c), u_isUWhiteSpace(static_cast<UChar32>(c))) << c;
    Bytes text = utf8_of(c);
    text.push_back(0);
    const bool combining = (category & U_GC_M_MASK) != 0 || c == 0x200C || c == 0x200D;
    ASSERT_EQ(vxzsu8IsCombining(text.data()), combining) << c;
  }
}

// Normalisation
// ---------------------------------------------------------------------------------------------------------

enum Form : uint32_t { nfc, nfd, nfkc, nfkd };

Bytes normalised(const Bytes& text, Form form) {
  Bytes out(text.size() * 20 + 16);
  int64_t length = 0;
  VXStatus status = 77;
  EXPECT_EQ(vxzsu8ICUNormalize(text.data(), size(text), form, reinterpret_cast<uint64_t>(out.data()), out.size(),
                               reinterpret_cast<uint64_t>(&length), &status),
            0u);
  EXPECT_EQ(status, 0u);
  out.resize(static_cast<size_t>(length));
  return out;
}

/// The lines of the consortium's file, which Debian packs.
std::vector<std::string> lines_of_test_file() {
  FILE* const pipe = popen("bzip2 -dc /usr/share/unicode/NormalizationTest.txt.bz2", "r");
  std::string text;
  char block[65536];
  for (size_t n; pipe != nullptr && (n = fread(block, 1, sizeof block, pipe)) > 0;) text.append(block, n);
  if (pipe != nullptr) pclose(pipe);
  std::vector<std::string> lines;
  for (size_t at = 0, end; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
    lines.push_back(text.substr(at, end - at));
  }
  return lines;
}

/// The five columns of a line: source, NFC, NFD, NFKC, NFKD.
std::vector<Bytes> columns_of(const std::string& line) {
  std::vector<Bytes> columns(1);
  for (size_t at = 0; at < line.size() && line[at] != '#' && columns.size() <= 5;) {
    if (line[at] == ';') {
      columns.emplace_back();
      ++at;
    } else if (line[at] == ' ') {
      ++at;
    } else {
      size_t used;
      const Bytes character = utf8_of(static_cast<uint32_t>(std::stoul(line.substr(at), &used, 16)));
      columns.back().insert(columns.back().end(), character.begin(), character.end());
      at += used;
    }
  }
  columns.resize(5);
  return columns;
}

TEST_F(WithHost, NormalisationPassesTheFileOfTheConsortium) {
  const std::vector<std::string> lines = lines_of_test_file();
  ASSERT_GT(lines.size(), 18000u) << "the Debian packages unicode-data and bzip2 are needed";
  std::vector<bool> listed(0x110000);
  bool in_part_1 = false;
  int checked = 0;
  for (const std::string& line : lines) {
    if (line.empty() || line[0] == '#') continue;
    if (line[0] == '@') {
      in_part_1 = line.starts_with("@Part1");
      continue;
    }
    SCOPED_TRACE(line);
    if (in_part_1) listed[std::stoul(line, nullptr, 16)] = true;
    const std::vector<Bytes> c = columns_of(line);
    for (size_t i = 0; i < 5; ++i) {
      const bool compatible = i >= 3;
      EXPECT_EQ(normalised(c[i], nfc), c[compatible ? 3 : 1]) << i;
      EXPECT_EQ(normalised(c[i], nfd), c[compatible ? 4 : 2]) << i;
      EXPECT_EQ(normalised(c[i], nfkc), c[3]) << i;
      EXPECT_EQ(normalised(c[i], nfkd), c[4]) << i;
    }
    VXStatus status = 77;
    EXPECT_EQ(vxzsu8ICUNormEqual(c[0].data(), size(c[0]), c[2].data(), size(c[2]), 0, &status), 1);
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(vxzsu8ICUNormCompare(c[0].data(), size(c[0]), c[1].data(), size(c[1]), 0, nullptr), 0);
    if (HasFailure()) return;
    ++checked;
  }
  EXPECT_GT(checked, 18000);
  for (uint32_t x = 0; x < 0x110000; ++x) {
    if (listed[x] || !u_isdefined(static_cast<UChar32>(x)) || U_IS_SURROGATE(x)) continue;
    const Bytes text = utf8_of(x);
    for (const Form form : {nfc, nfd, nfkc, nfkd}) ASSERT_EQ(normalised(text, form), text) << x;
  }
}

}  // namespace
