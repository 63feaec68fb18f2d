// Every function that steps, measures or decodes, over every string.
#include <gtest/gtest.h>

#include "tests/unicode/texts.h"
#include "tests/utf8/rules.h"
#include "unicode/text_flavour.h"
#include "utf8/characters.h"
#include "vxnls/unicode.h"
#include "vxnls/utf8.h"

namespace {

using namespace vxtest;

int64_t whole_prefix(std::string_view text) {
  if (text.empty() || static_cast<uint8_t>(text.back()) < 0x80) return length_of(text);
  size_t last = text.size() - 1;
  while (last > 0 && continues(text[last])) --last;
  const std::string_view character = next(text.substr(last), Step::trusting);
  return !begins(text[last]) ? 0 : static_cast<int64_t>(last + (is_whole(character) ? character.size() : 0));
}

int32_t decoded;
int32_t remember(int32_t code_point) {
  decoded = code_point;
  return code_point + 7;
}

/// Texts of nothing but characters that vxzsu8CharSize, isLegalUTF8 find well-formed, by their length.
struct WellFormed {
  int64_t valid[5] = {}, legal[5] = {};

  void add(const uint8_t* text, int64_t n) {
    bool all_valid = true, all_legal = true;
    for (int64_t at = 0, size = 0; at < n; at += size) {
      uint8_t is_valid;
      int64_t good;
      size = vxzsu8CharSize(text + at, &is_valid);
      all_valid = all_valid && is_valid != 0;
      all_legal = all_legal && size == utf8_len(text + at) && isLegalUTF8(text + at, size, &good) != 0;
    }
    valid[n] += all_valid;
    legal[n] += all_legal;
  }
};

bool lengths_are_as_ruled(const uint8_t* counted, int64_t n, const uint8_t* terminated) {
  const std::string_view text(reinterpret_cast<const char*>(terminated), static_cast<size_t>(n));
  const std::string_view to_nul = text.substr(0, text.find('\0'));
  uint8_t valid;
  uint32_t wide_valid;
  int64_t characters, length;
  vxzsu8Lengths(terminated, &characters, &length);
  if (UTF8_SLENB(counted, n) != count_characters(text, Step::trusting) ||
      UTF8_BLENB(counted, n) != whole_prefix(text) ||
      UTF8_SLEN(terminated) != count_characters(to_nul, Step::trusting) ||
      UTF8_BLEN(terminated) != whole_prefix(to_nul) ||
      vxzsu8NumChars(counted, n) != count_characters(text, Step::checking) || length != length_of(to_nul) ||
      vxzsu8ByteLength(terminated, count_characters(text, Step::checking)) != n ||
      characters != count_characters(to_nul, Step::checking))
    return false;
  if (n == 0) return true;
  const std::string_view first = next(text, Step::checking);
  // The bytes behind the lead are not looked at closely, but a NUL ends them.
  const auto c = vxnls::Utf8Text::decode(terminated, std::max<int64_t>(length_of(to_nul), 1)).code_point;
  return vxzsu8CharSize(terminated, &valid) == length_of(first) && valid == (is_whole(first) && begins(first[0])) &&
         vxnls::_U8CharSize(terminated, &wide_valid) == length_of(first) && wide_valid == valid &&
         vxzsu8NextChar(terminated) == terminated + first.size() &&
         vxzsu8ByteLength(terminated, 1) == length_of(first) &&
         vxnls::_VXZSU8IsFunct(terminated, remember) == static_cast<int32_t>(c) + 7 &&
         decoded == static_cast<int32_t>(c) && vxzsu8IsCombining(terminated) == (c == 0x200C || c == 0x200D);
}

// How many strings consist of well-formed characters only. With s1 to s4 characters of one to four bytes there are
// W(n) = s1 W(n-1) + s2 W(n-2) + s3 W(n-3) + s4 W(n-4) strings of n bytes, W(0) = 1.
//   Both: s1 = 128, s2 = 30 leads x 64 = 1920.
//   Valid (leads and continuation bytes): s3 = 16 x 64 x 64 = 65536, s4 = 5 x 64^3 = 1310720.
//   Legal: s3 = 65536 - 32 x 64 (overlong, E0 80-9F) - 32 x 64 (surrogates, ED A0-BF) = 61440;
//          s4 = 1310720 - 16 x 64 x 64 (overlong, F0 80-8F) = 1245184: after F4 no second byte is refused.
// W(1) = 128; W(2) = 128 x 128 + 1920 = 18304; W(3) = 128 x 18304 + 1920 x 128 + s3 = 2588672 + s3;
// W(4) = 128 W(3) + 1920 x 18304 + s3 x 128 + s4.
TEST(Lengths, OfEveryString) {
  GuardedBuffer<uint8_t> memory(64);
  WellFormed found;
  const auto check = [&](const uint8_t* text, int64_t n) {
    uint8_t* const terminated = memory.at(static_cast<size_t>(n) + 1);
    std::copy_n(text, n, terminated);
    terminated[n] = 0;
    if (n >= 1 && n <= 4) found.add(terminated, n);
    return lengths_are_as_ruled(text, n, terminated);
  };
  expect_of_every_string(0, check);
  const auto expected = [](int n, int64_t s3, int64_t s4) {
    const int64_t three = 2588672 + s3;
    return n == 1 ? 128 : n == 2 ? 18304 : n == 3 ? three : 128 * three + INT64_C(1920) * 18304 + 128 * s3 + s4;
  };
  for (int n = 1; n <= (is_long_run() ? 4 : is_sampled() ? 0 : 3); ++n) {
    EXPECT_EQ(found.valid[n], expected(n, 65536, 1310720)) << n;
    EXPECT_EQ(found.legal[n], expected(n, 61440, 1245184)) << n;
  }
  expect_of_joined_sequences(check);
}

}  // namespace
