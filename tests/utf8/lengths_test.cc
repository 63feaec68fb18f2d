// Every string of up to three bytes, and a part of those of four, through every function that steps, measures or
// judges.
#include <gtest/gtest.h>
#include <regex.h>

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/guard_page.h"
#include "utf8/characters.h"
#include "vxnls/unicode.h"
#include "vxnls/utf8.h"

namespace {

// The slow reference knows bytes by kind only, and the two rules of stepping as regular expressions over the kinds:
//   0 NUL  a 01-7F  c continuation  x C0 C1  2 C2-DF  3 E0-EF  4 F0-F4  y F5-F7  5 F8-FB  6 FC-FF
constexpr std::string_view kinds = "0acx234y56";

size_t kind_of(unsigned byte) {
  static constexpr unsigned until[] = {0x01, 0x80, 0xC0, 0xC2, 0xE0, 0xF0, 0xF5, 0xF8, 0xFC, 0x100};
  size_t kind = 0;
  while (byte >= until[kind]) ++kind;
  return kind;
}

/// A rule over kinds, as an extended regular expression.
class Rule {
 public:
  explicit Rule(const char* pattern) {
    if (regcomp(&compiled_, pattern, REG_EXTENDED) != 0) std::abort();
  }
  ~Rule() { regfree(&compiled_); }
  Rule(const Rule&) = delete;
  Rule& operator=(const Rule&) = delete;

  /// How much of the text's start it takes; -1 when none.
  int64_t taken(const std::string& text) const {
    regmatch_t match;
    return regexec(&compiled_, text.c_str(), 1, &match, 0) == 0 ? match.rm_eo : -1;
  }
  int64_t count(std::string text) const {
    int64_t characters = 0;
    for (; !text.empty(); ++characters) text.erase(0, static_cast<size_t>(taken(text)));
    return characters;
  }

 private:
  regex_t compiled_;
};

const Rule trusting("^([0ac]|[x2].?|3.{0,2}|[4y].{0,3}|5.{0,4}|6.{0,5})");
const Rule checking("^([0ac]|[x2]c?|3c{0,2}|[4y]c{0,3}|5c{0,4}|6c{0,5})");
const Rule well_formed_character("^([0a]|2c|3cc|4ccc)");
const Rule valid_lead("^[0a234]");

int64_t whole_prefix(const std::string& text) {
  if (text.empty() || text.back() == '0' || text.back() == 'a') return static_cast<int64_t>(text.size());
  const size_t last = text.find_last_not_of('c');
  if (last == std::string::npos || valid_lead.taken(text.substr(last)) < 0) return 0;
  const int64_t whole = well_formed_character.taken(text.substr(last));
  return static_cast<int64_t>(last) + (whole > 0 ? whole : 0);
}

struct Expected {
  int64_t trusted, trusted_to_nul, prefix, prefix_to_nul, size, checked, checked_to_nul, bytes_to_nul;
  bool valid;
};

Expected expected_of(const std::string& text) {
  const std::string to_nul = text.substr(0, text.find('0'));
  return {trusting.count(text),
          trusting.count(to_nul),
          whole_prefix(text),
          whole_prefix(to_nul),
          checking.taken(text),
          checking.count(text),
          checking.count(to_nul),
          static_cast<int64_t>(to_nul.size()),
          well_formed_character.taken(text) > 0};
}

/// Expectations of all strings of n kinds, by the number that the kinds spell in base ten.
std::vector<Expected> all_expected(int n) {
  size_t total = 1;
  for (int i = 0; i < n; ++i) total *= kinds.size();
  std::vector<Expected> all;
  for (size_t number = 0; number < total; ++number) {
    std::string text;
    for (size_t place = total / 10; place > 0; place /= 10) text += kinds[number / place % 10];
    all.push_back(expected_of(text));
  }
  return all;
}

int32_t decoded;
int32_t remember(int32_t code_point) {
  decoded = code_point;
  return code_point + 7;
}

/// What the first character of a NUL-terminated text decodes to: the bytes behind the lead are not looked at closely.
int32_t decode_slowly(const uint8_t* b) {
  if (b[0] < 0x80) return b[0];
  if (b[0] >= 0xC2 && b[0] < 0xE0 && b[1] != 0) return (b[0] - 0xC0) * 64 + b[1] % 64;
  if (b[0] >= 0xE0 && b[0] < 0xF0 && b[1] != 0 && b[2] != 0) {
    return (b[0] - 0xE0) * 4096 + b[1] % 64 * 64 + b[2] % 64;
  }
  if (b[0] >= 0xF0 && b[0] < 0xF5 && b[1] != 0 && b[2] != 0 && b[3] != 0) {
    return (b[0] - 0xF0) * 262144 + b[1] % 64 * 4096 + b[2] % 64 * 64 + b[3] % 64;
  }
  return 0xFFFD;
}

/// What isLegalUTF8 says of a text of one to four bytes, the lead never held against the length, and its good length.
struct Legality {
  int32_t legal;
  int64_t good;
  bool operator==(const Legality&) const = default;
};
Legality judge_slowly(const uint8_t* b, int64_t n) {
  int64_t good = 1;
  while (good < n && b[good] / 64 == 2) ++good;
  const bool lead = b[0] < 0x80 || (b[0] > 0xC1 && b[0] < 0xF5);
  const bool overlong = n > 1 && ((b[0] == 0xE0 && b[1] < 0xA0) || (b[0] == 0xF0 && b[1] < 0x90));
  const bool surrogate = n > 1 && b[0] == 0xED && b[1] > 0x9F;
  return {good == n && lead && !overlong && !surrogate, good};
}

class EveryString {
 public:
  explicit EveryString(int64_t n)
      : n_(n),
        expected_(all_expected(static_cast<int>(n))),
        counted_(counted_memory_.at(static_cast<size_t>(n))),
        terminated_(terminated_memory_.at(static_cast<size_t>(n) + 1)) {
    for (unsigned byte = 0; byte < 256; ++byte) kind_[byte] = static_cast<uint16_t>(kind_of(byte));
    terminated_[n] = 0;
  }

  /// The string whose bytes spell `number`, the first byte highest; false when an answer is wrong.
  bool check(uint32_t number) {
    size_t kind = 0;
    for (int64_t i = 0; i < n_; ++i) {
      const auto byte = static_cast<uint8_t>(number >> 8 * (n_ - 1 - i));
      counted_[i] = terminated_[i] = byte;
      kind = kind * 10 + kind_[byte];
    }
    const Expected& e = expected_[kind];
    uint8_t valid;
    uint32_t wide_valid;
    int64_t characters, bytes;
    Legality judged;
    judged.legal = isLegalUTF8(counted_, n_, &judged.good);
    vxzsu8Lengths(terminated_, &characters, &bytes);
    const bool good = UTF8_SLENB(counted_, n_) == e.trusted && UTF8_SLEN(terminated_) == e.trusted_to_nul &&
                      UTF8_BLENB(counted_, n_) == e.prefix && UTF8_BLEN(terminated_) == e.prefix_to_nul &&
                      vxzsu8CharSize(terminated_, &valid) == e.size && valid == e.valid &&
                      vxnls::_U8CharSize(terminated_, &wide_valid) == e.size && wide_valid == valid &&
                      vxzsu8NextChar(terminated_) == terminated_ + e.size &&
                      vxzsu8NumChars(counted_, n_) == e.checked && vxzsu8ByteLength(terminated_, 1) == e.size &&
                      vxzsu8ByteLength(terminated_, e.checked) == n_ && characters == e.checked_to_nul &&
                      bytes == e.bytes_to_nul && judged == judge_slowly(counted_, n_);
    if (!good) ADD_FAILURE() << n_ << " bytes " << std::hex << number;
    return good;
  }

  bool check_decoding() {
    const int32_t slowly = decode_slowly(terminated_);
    const bool good = vxnls::_VXZSU8IsFunct(terminated_, remember) == slowly + 7 && decoded == slowly &&
                      vxzsu8IsCombining(terminated_) == (slowly == 0x200C || slowly == 0x200D);
    if (!good) ADD_FAILURE() << "decoding " << testing::PrintToString(std::string(terminated_, terminated_ + n_));
    return good;
  }

  /// Whether a walk meets characters only that vxzsu8CharSize, isLegalUTF8 find well-formed.
  bool valid_throughout() const {
    uint8_t valid = 1;
    for (const uint8_t* at = terminated_; valid && at < terminated_ + n_;) at += vxzsu8CharSize(at, &valid);
    return valid;
  }
  bool legal_throughout() const {
    for (const uint8_t* at = terminated_; at < terminated_ + n_;) {
      const int64_t size = vxzsu8CharSize(at, nullptr);
      int64_t good;
      if (size != utf8_len(at) || isLegalUTF8(at, size, &good) == 0) return false;
      at += size;
    }
    return true;
  }

 private:
  int64_t n_;
  std::vector<Expected> expected_;
  std::array<uint16_t, 256> kind_;
  vxtest::GuardedBuffer<uint8_t> counted_memory_{8}, terminated_memory_{8};
  uint8_t *counted_, *terminated_;
};

struct Counts {
  int64_t valid = 0, legal = 0;
};

Counts check_all(int64_t n) {
  EveryString strings(n);
  Counts counts;
  for (uint64_t number = 0; number < uint64_t{1} << 8 * n; ++number) {
    if (!strings.check(static_cast<uint32_t>(number)) || !strings.check_decoding()) break;
    counts.valid += strings.valid_throughout();
    counts.legal += strings.legal_throughout();
  }
  return counts;
}

// How many strings consist of well-formed characters only. With s1 to s4 characters of one to four bytes there are
// W(n) = s1 W(n-1) + s2 W(n-2) + s3 W(n-3) + s4 W(n-4) strings of n bytes, W(0) = 1.
//   Both: s1 = 128, s2 = 30 leads x 64 = 1920.
//   Valid (leads and continuation bytes): s3 = 16 x 64 x 64 = 65536, s4 = 5 x 64^3 = 1310720.
//   Legal: s3 = 65536 - 32 x 64 (overlong, E0 80-9F) - 32 x 64 (surrogates, ED A0-BF) = 61440;
//          s4 = 1310720 - 16 x 64 x 64 (overlong, F0 80-8F) = 1245184: after F4 no second byte is refused.
// W(1) = 128; W(2) = 128 x 128 + 1920 = 18304; W(3) = 128 x 18304 + 1920 x 128 + s3 = 2588672 + s3;
// W(4) = 128 W(3) + 1920 x 18304 + s3 x 128 + s4.
constexpr int64_t well_formed(int n, int64_t s3, int64_t s4) {
  return n == 1 ? 128 : n == 2 ? 18304 : n == 3 ? 2588672 + s3 : 128 * (2588672 + s3) + 35143680 + 128 * s3 + s4;
}
constexpr int64_t valid_3 = 65536, valid_4 = 1310720, legal_3 = 61440, legal_4 = 1245184;

TEST(Lengths, EveryStringOfOneToThreeBytes) {
  for (int n = 1; n <= 3; ++n) {
    const Counts counts = check_all(n);
    EXPECT_EQ(counts.valid, well_formed(n, valid_3, valid_4)) << n;
    EXPECT_EQ(counts.legal, well_formed(n, legal_3, legal_4)) << n;
  }
}

// One string of each 256 in a row, at a place that jumps about.
TEST(Lengths, APartOfTheStringsOfFourBytes) {
  EveryString strings(4);
  for (uint64_t from = 0; from < uint64_t{1} << 32; from += 256) {
    const auto jump = static_cast<uint32_t>(from * 0x9E3779B1u) >> 24;
    if (!strings.check(static_cast<uint32_t>(from) + jump) || !strings.check_decoding()) return;
  }
}

TEST(Lengths, EveryStringOfFourBytesInTheLongRun) {
  if (std::getenv("VXNLS_LONG_TESTS") == nullptr) GTEST_SKIP() << "set VXNLS_LONG_TESTS to run it";
  const Counts counts = check_all(4);
  EXPECT_EQ(counts.valid, well_formed(4, valid_3, valid_4));
  EXPECT_EQ(counts.legal, well_formed(4, legal_3, legal_4));
}

TEST(Lengths, NullEmptyAndNegative) {
  const uint8_t text[] = "ab";
  uint8_t valid = 9;
  int64_t characters = -7, bytes = -7;
  EXPECT_EQ(utf8_len(nullptr), 0);
  EXPECT_EQ(UTF8_SLEN(nullptr), 0);
  EXPECT_EQ(UTF8_BLEN(nullptr), 0);
  for (const int64_t n : {INT64_C(0), INT64_C(-1), INT64_MIN}) {
    EXPECT_EQ(UTF8_SLENB(text, n), 0);
    EXPECT_EQ(UTF8_BLENB(text, n), 0);
    EXPECT_EQ(vxzsu8NumChars(text, n), 0);
    EXPECT_EQ(vxzsu8ByteLength(text, n), 0);
  }
  EXPECT_EQ(UTF8_SLENB(nullptr, 3), 0);
  EXPECT_EQ(UTF8_BLENB(nullptr, 3), 0);
  EXPECT_EQ(vxzsu8NumChars(nullptr, 3), 0);
  EXPECT_EQ(vxzsu8ByteLength(nullptr, 3), 0);
  EXPECT_EQ(vxzsu8CharSize(nullptr, &valid), 0);
  EXPECT_EQ(valid, 0);
  EXPECT_EQ(vxzsu8NextChar(nullptr), nullptr);
  EXPECT_EQ(vxzsu8IsCombining(nullptr), 0);
  EXPECT_EQ(vxnls::_VXZSU8IsFunct(nullptr, remember), 0);
  vxzsu8Lengths(nullptr, &characters, &bytes);
  EXPECT_EQ(characters, -7);
  EXPECT_EQ(bytes, -7);
  vxzsu8Lengths(text, nullptr, nullptr);
  vxzsu8Lengths(text, &characters, nullptr);
  vxzsu8Lengths(text, nullptr, &bytes);
  EXPECT_EQ(characters, 2);
  EXPECT_EQ(bytes, 2);
}

TEST(Lengths, LongSequencesAndTexts) {
  static constexpr struct {
    const char* text;
    int64_t trusted, checked, prefix, first;
  } cases[] = {
      {"\xF8\x80\x80\x80\x80", 1, 1, 0, 5},
      {"\xFC\x80\x80\x80\x80\x80", 1, 1, 0, 6},
      {"\xFF\x80\x80\x80\x80\x80\x80", 2, 2, 0, 6},
      {"a\xFF\x80\x80z", 2, 3, 5, 1},
      {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", 3, 3, 9, 2},
      {"\xF0\x9F\x98\x80\x80", 2, 2, 4, 4},
      {"abcdefgh\xE2\x82", 9, 9, 8, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::string(c.text)));
    const auto* const text = reinterpret_cast<const uint8_t*>(c.text);
    const auto n = static_cast<int64_t>(std::string_view(c.text).size());
    EXPECT_EQ(UTF8_SLENB(text, n), c.trusted);
    EXPECT_EQ(vxzsu8NumChars(text, n), c.checked);
    EXPECT_EQ(UTF8_BLENB(text, n), c.prefix);
    EXPECT_EQ(vxzsu8CharSize(text, nullptr), c.first);
    EXPECT_EQ(vxzsu8ByteLength(text, c.checked), n);
  }
}

}  // namespace
