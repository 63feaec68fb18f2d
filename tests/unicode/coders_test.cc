#include <gtest/gtest.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "tests/support/guard_page.h"
#include "unicode/text_flavour.h"
#include "unicode/transcode.h"
#include "vxnls/unicode.h"

namespace {

using Bytes = std::vector<uint8_t>;
using namespace vxnls;
using vxtest::GuardedBuffer;

constexpr uint32_t end_of_code_points = 0x110000;

Bytes utf8_of(uint32_t c) {
  Bytes bytes(4);
  size_t n = 0;
  U8_APPEND_UNSAFE(bytes.data(), n, c);
  bytes.resize(n);
  return bytes;
}

Bytes utf16_of(uint32_t c, bool big) {
  uint16_t units[2];
  size_t n = 0;
  U16_APPEND_UNSAFE(units, n, c);
  Bytes bytes;
  for (size_t i = 0; i < n; ++i) {
    const auto low = static_cast<uint8_t>(units[i]), high = static_cast<uint8_t>(units[i] >> 8);
    bytes.push_back(big ? high : low);
    bytes.push_back(big ? low : high);
  }
  return bytes;
}

Bytes utf32_of(uint32_t c, bool big) {
  Bytes bytes;
  for (unsigned i = 0; i < 4; ++i) bytes.push_back(static_cast<uint8_t>(c >> (big ? 24 - 8 * i : 8 * i)));
  return bytes;
}

#if VXNLS_HAS_AVX2_VARIANTS
const Transcoders* const every_variant[] = {&generic_transcoders, processor_has_avx2() ? &avx2_transcoders : nullptr};
#else
const Transcoders* const every_variant[] = {&generic_transcoders};
#endif

struct Read {
  uint32_t code_point;
  int64_t consumed;
  VXStatus status;
  bool operator==(const Read&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Read& r) {
  return out << std::hex << "U+" << r.code_point << " consumed " << r.consumed << " status " << r.status;
}

Read read_by(VXDecoder decoder, const uint8_t* at, int64_t remaining) {
  Read r{0xDEADBEEF, -99, 0};
  r.status = decoder(at, remaining, &r.code_point, &r.consumed);
  return r;
}

TEST(Coders, EveryCodePointThroughEveryPairAndBack) {
  static const struct {
    VXEncoder encoder;
    VXDecoder decoder;  // null: there is no way back
    Bytes (*expected)(uint32_t);
    bool surrogates;  // come back as they are
  } pairs[] = {
      {UTF32_UTF8, UTF8_UTF32, utf8_of, true},
      {UTF32_UTF16s, UTF16_UTF32_SWAP, [](uint32_t c) { return utf16_of(c, false); }, false},
      {UTF32_UTF16s_SWAP, UTF16_UTF32, [](uint32_t c) { return utf16_of(c, true); }, false},
      {COPY_UTF32, COPY_UTF32b, [](uint32_t c) { return utf32_of(c, true); }, true},
      {COPY_UTF32_SWAP, COPY_UTF32b_SWAP, [](uint32_t c) { return utf32_of(c, false); }, true},
      // Kept on purpose: the low 16 bits are all that these know.
      {UTF16_UTF8, nullptr, [](uint32_t c) { return utf8_of(c & 0xFFFF); }, true},
      {UTF32_UTF16, nullptr, [](uint32_t c) { return utf16_of(c & 0xFFFF, false); }, true},
      {UTF32_UTF16_SWAP, nullptr, [](uint32_t c) { return utf16_of(c & 0xFFFF, true); }, true},
  };
  GuardedBuffer<uint8_t> memory(4);
  for (const auto& pair : pairs) {
    for (uint32_t c = 0; c < end_of_code_points; ++c) {
      const Bytes expected = pair.expected(c);
      const auto n = static_cast<int64_t>(expected.size());
      uint8_t* const out = memory.at(expected.size());
      int64_t written = -1;
      ASSERT_EQ(pair.encoder(c, out, n, &written), 0u) << c;
      ASSERT_EQ(Bytes(out, out + written), expected) << c;
      if (pair.decoder == nullptr) continue;
      const Read back = read_by(pair.decoder, out, n);
      if (pair.surrogates || !U_IS_SURROGATE(c)) {
        ASSERT_EQ(back, (Read{c, n, 0})) << c;
      } else {
        ASSERT_EQ(back, (Read{0xFFFD, 2, U16_IS_LEAD(c) ? VX_E_INCOMPLETE : VX_E_SEQUENCE})) << c;
      }
      if (pair.decoder != UTF8_UTF32) continue;
      uint16_t units[2] = {0, 0xAAAA}, wanted[2] = {0, 0xAAAA};  // below U+10000 the second unit stays as it was
      size_t count = 0;
      U16_APPEND_UNSAFE(wanted, count, c);
      int64_t consumed = -1;
      ASSERT_EQ(UTF8_UTF16(out, n, units, &consumed), 0u) << c;
      ASSERT_TRUE(consumed == n && std::equal(units, units + 2, wanted)) << c;
    }
  }
}

bool is_long_run() { return std::getenv("VXNLS_LONG_TESTS") != nullptr; }

/// What a text gives as a whole: characters up to the first fault.
struct Whole {
  std::vector<uint32_t> characters;
  VXStatus status = 0;
};

/// One body of each pair of byte orders gives it, in every variant.
bool bodies_give(const Whole& expected, const uint8_t* text, size_t length, ByOrder<ToUtf32Body> Transcoders::*form) {
  static std::vector<uint32_t> out;
  out.resize(std::max(out.size(), length));
  for (const Transcoders* const variant : every_variant) {
    if (variant == nullptr) continue;
    const Converted done = (variant->*form)
                               .little(text, static_cast<int64_t>(length), reinterpret_cast<uint8_t*>(out.data()),
                                       static_cast<int64_t>(out.size()));
    if (done.status != expected.status ||
        !std::equal(out.begin(), out.begin() + done.count, expected.characters.begin(), expected.characters.end()))
      return false;
  }
  return true;
}

/// UTF-16 as ICU knows its units, through the bodies of both byte orders.
bool bodies_agree_with_icu(std::vector<uint16_t>& units) {
  static Whole whole;
  whole.characters.clear();
  whole.status = 0;
  for (size_t i = 0; i < units.size(); ++i) {
    const uint16_t unit = units[i];
    if (U16_IS_LEAD(unit) && i + 1 < units.size() && U16_IS_TRAIL(units[i + 1])) {
      ++i;
      whole.characters.push_back(static_cast<uint32_t>(U16_GET_SUPPLEMENTARY(unit, units[i])));
    } else if (U16_IS_SURROGATE(unit)) {
      whole.status = U16_IS_LEAD(unit) && i + 1 == units.size() ? VX_E_INCOMPLETE : VX_E_SEQUENCE;
      break;
    } else {
      whole.characters.push_back(unit);
    }
  }
  const auto* const bytes = reinterpret_cast<const uint8_t*>(units.data());
  if (!bodies_give(whole, bytes, 2 * units.size(), &Transcoders::from_utf16_little)) return false;
  for (uint16_t& unit : units) unit = __builtin_bswap16(unit);
  return bodies_give(whole, bytes, 2 * units.size(), &Transcoders::from_utf16_big);
}

/// All pairs of units that begin with `first`: each by itself, those without a fault in one text, and those with one,
/// or a part of them, amid others.
bool pairs_are_as_icu_says(uint16_t first, uint32_t one_in) {
  static std::vector<uint16_t> faultless, faulty;
  faultless.clear();
  for (uint32_t unit = 0; unit < 0x10000; ++unit) {
    const auto second = static_cast<uint16_t>(unit);
    const uint8_t big[] = {static_cast<uint8_t>(first >> 8), static_cast<uint8_t>(first),
                           static_cast<uint8_t>(second >> 8), static_cast<uint8_t>(second)};
    const uint8_t little[] = {big[1], big[0], big[3], big[2]};
    const bool is_pair = U16_IS_LEAD(first) && U16_IS_TRAIL(second);
    const Read expected = is_pair              ? Read{static_cast<uint32_t>(U16_GET_SUPPLEMENTARY(first, second)), 4, 0}
                          : U16_IS_LEAD(first) ? Read{0xFFFD, 4, VX_E_SEQUENCE}
                          : U16_IS_TRAIL(first) ? Read{0xFFFD, 2, VX_E_SEQUENCE}
                                                : Read{first, 2, 0};
    if (read_by(UTF16_UTF32, big, 4) != expected || read_by(UTF16_UTF32_SWAP, little, 4) != expected) return false;
    if (is_pair || (!U16_IS_SURROGATE(first) && !U16_IS_SURROGATE(second))) {
      faultless.push_back(first);
      faultless.push_back(second);
    } else if ((first + unit) % one_in == 0) {
      faulty.assign(40, 'a');
      const size_t place = (first * 7u + unit) % (faulty.size() - 1);
      faulty[place] = first;
      faulty[place + 1] = second;
      if (!bodies_agree_with_icu(faulty)) return false;
    }
  }
  return bodies_agree_with_icu(faultless);
}

// All 2^32 in the long run; otherwise all that begin with a surrogate, and one in 64 of the others.
TEST(Coders, EveryPairOfUtf16Units) {
  for (uint32_t first = 0; first < 0x10000; ++first) {
    if (!is_long_run() && !U16_IS_SURROGATE(first) && first % 64 != 0) continue;
    ASSERT_TRUE(pairs_are_as_icu_says(static_cast<uint16_t>(first), is_long_run() ? 1 : 61)) << std::hex << first;
  }
}

// What the contract says of a lead and the bytes behind it, from the code points' ranges and not from tables.
Read utf8_by_contract(const uint8_t* text, int64_t remaining, int64_t readable) {
  const uint8_t lead = text[0];
  const int length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : lead < 0xFC ? 5 : 6;
  const bool begins = lead < 0x80 || (lead > 0xC1 && lead < 0xF5);
  if (begins && remaining < length) return {0xFFFD, remaining, VX_E_INCOMPLETE};
  if (begins) {
    uint32_t value = length == 1 ? lead : lead % (1u << (7 - length));
    for (int i = 1; i < length; ++i) value = value * 64 + text[i] % 64;
    return {value, length, 0};
  }
  int64_t n = 1;
  while (n < length && n < readable && text[n] / 64 == 2) ++n;
  return {0xFFFD, n, VX_E_SEQUENCE};
}

/// A string of n bytes that spell `number`, at the end of memory, before continuation bytes, and amid other text.
class Utf8String {
 public:
  bool is_decoded_as_contract(uint32_t number, int64_t n) {
    uint8_t* const cut = memory_.at(static_cast<size_t>(n));
    std::array<uint8_t, 8> continued;
    continued.fill(0x80);
    for (int64_t i = 0; i < n; ++i)
      continued[static_cast<size_t>(i)] = cut[i] = static_cast<uint8_t>(number >> 8 * (n - 1 - i));

    const Read bounded = utf8_by_contract(cut, n, n);
    const auto inside = Utf8Text::decode(cut, n);
    uint16_t units[2] = {0xAAAA, 0xAAAA}, expected[2] = {0xAAAA, 0xAAAA};
    int64_t consumed = -1, i = 0;
    const VXStatus status = UTF8_UTF16(cut, n, units, &consumed);
    // Beyond U+10FFFF, too: a high surrogate that counts on.
    const uint32_t c = bounded.code_point;
    if (c < 0x10000) expected[i++] = static_cast<uint16_t>(c);
    else
      expected[i++] = static_cast<uint16_t>(0xD800 + (c - 0x10000) / 0x400),
      expected[i++] = static_cast<uint16_t>(0xDC00 + c % 0x400);
    // By itself the decoder counts on past what remains.
    return Read{inside.code_point, inside.consumed, inside.status} == bounded && consumed == bounded.consumed &&
           status == (bounded.status == 0 ? 0 : VX_E_SEQUENCE) && std::equal(units, units + 2, expected) &&
           read_by(UTF8_UTF32, continued.data(), n) == utf8_by_contract(continued.data(), n, 8) &&
           is_judged_as_by_icu(cut, n);
  }

  bool is_transcoded_as_contract(uint32_t number, int64_t n) {
    constexpr int64_t size = 100, longest_character = 6;
    text_.assign(size, 'a');
    const int64_t place = number % 67, end = place + n + longest_character;
    for (int64_t i = 0; i < n; ++i)
      text_[static_cast<size_t>(place + i)] = static_cast<uint8_t>(number >> 8 * (n - 1 - i));
    whole_.characters.assign(static_cast<size_t>(place), 'a');
    whole_.status = 0;
    for (int64_t at = place; at < end;) {
      const Read next = utf8_by_contract(text_.data() + at, size - at, size - at);
      whole_.status = next.status;
      if (next.status != 0) break;
      whole_.characters.push_back(next.code_point);
      at += next.consumed;
      if (at >= end) whole_.characters.resize(whole_.characters.size() + static_cast<size_t>(size - at), 'a');
    }
    return bodies_give(whole_, text_.data(), size, &Transcoders::from_utf8);
  }

 private:
  // Of a text as long as its lead announces ICU says the same, but for what F4 lets pass.
  static bool is_judged_as_by_icu(const uint8_t* s, int64_t n) {
    if (n != (U8_IS_LEAD(s[0]) ? 1 + U8_COUNT_TRAIL_BYTES(s[0]) : 1)) return true;
    int64_t good, i = 0;
    UChar32 c;
    U8_NEXT(s, i, n, c);
    const bool past_the_end =
        s[0] == 0xF4 && s[1] >= 0x90 && s[1] < 0xC0 && (s[2] & 0xC0) == 0x80 && (s[3] & 0xC0) == 0x80;
    return isLegalUTF8(s, n, &good) == ((c >= 0 && i == n) || past_the_end);
  }

  GuardedBuffer<uint8_t> memory_{8};
  Bytes text_;
  Whole whole_;
};

TEST(Coders, EveryStringOfOneToThreeBytes) {
  Utf8String string;
  for (int64_t n = 1; n <= 3; ++n) {
    for (uint32_t number = 0; number < 1u << 8 * n; ++number) {
      ASSERT_TRUE(string.is_decoded_as_contract(number, n)) << n << " bytes " << std::hex << number;
      ASSERT_TRUE(string.is_transcoded_as_contract(number, n)) << n << " bytes " << std::hex << number;
    }
  }
}

// A string of four bytes that begins below C0 is transcoded as a character and a string of three.
TEST(Coders, EveryStringOfFourBytesInTheLongRun) {
  if (!is_long_run()) GTEST_SKIP() << "set VXNLS_LONG_TESTS to run it";
  Utf8String string;
  for (uint64_t number = 0; number < uint64_t{1} << 32; ++number) {
    const auto bytes = static_cast<uint32_t>(number);
    ASSERT_TRUE(string.is_decoded_as_contract(bytes, 4)) << std::hex << bytes;
    if (bytes < 0xC0000000) continue;
    ASSERT_TRUE(string.is_transcoded_as_contract(bytes, 4)) << std::hex << bytes;
  }
}

TEST(Coders, EveryEndOfInput) {
  GuardedBuffer<uint8_t> memory(4);
  static const struct {
    VXDecoder decoder;
    Bytes text;  // all that remains
    Read expected;
  } cases[] = {
      {UTF8_UTF32, {}, {0xFFFD, 0, VX_E_INCOMPLETE}},
      {UTF16_UTF32, {}, {0xFFFD, 0, VX_E_INCOMPLETE}},
      {UTF16_UTF32, {0xD8}, {0xFFFD, 1, VX_E_INCOMPLETE}},
      {UTF16_UTF32, {0x00}, {0xFFFD, 1, VX_E_INCOMPLETE}},
      {UTF16_UTF32, {0xD8, 0x00}, {0xFFFD, 2, VX_E_INCOMPLETE}},
      {UTF16_UTF32, {0xD8, 0x00, 0xDC}, {0xFFFD, 3, VX_E_INCOMPLETE}},
      {UTF16_UTF32, {0xDB, 0xFF, 0xD8, 0x00}, {0xFFFD, 4, VX_E_SEQUENCE}},
      {UTF16_UTF32, {0xD8, 0x00, 0x00, 0x41}, {0xFFFD, 4, VX_E_SEQUENCE}},
      {UTF16_UTF32, {0xDC, 0x00}, {0xFFFD, 2, VX_E_SEQUENCE}},
      {UTF16_UTF32, {0xDF, 0xFF, 0x00, 0x41}, {0xFFFD, 2, VX_E_SEQUENCE}},
      {UTF16_UTF32_SWAP, {0x00, 0xD8, 0x00}, {0xFFFD, 3, VX_E_INCOMPLETE}},
      {UTF16_UTF32_SWAP, {0x00, 0xD8, 0x41, 0x00}, {0xFFFD, 4, VX_E_SEQUENCE}},
      {UTF16_UTF32_SWAP, {0x00, 0xDC}, {0xFFFD, 2, VX_E_SEQUENCE}},
      {COPY_UTF32b, {0, 0, 0}, {0xFFFD, 3, VX_E_INCOMPLETE}},
      {COPY_UTF32b_SWAP, {}, {0xFFFD, 0, VX_E_INCOMPLETE}},
      {COPY_UTF32b, {0xFF, 0xFE, 0xFD, 0xFC}, {0xFFFEFDFC, 4, 0}},
  };
  for (const auto& c : cases) {
    const uint8_t* const at = memory.copy(c.text.data(), c.text.size());
    EXPECT_EQ(read_by(c.decoder, at, static_cast<int64_t>(c.text.size())), c.expected)
        << testing::PrintToString(c.text);
    if (c.text.empty()) {
      EXPECT_EQ(read_by(c.decoder, at, -7), c.expected);
    }
  }
}

TEST(Coders, RoomOfEncoders) {
  static const struct {
    VXEncoder encoder;
    uint32_t code_point;
    int64_t room;
    VXStatus status;
    Bytes expected;
  } cases[] = {
      {UTF32_UTF8, 0x41, 0, 0, {0x41}},  // the room of one byte is not looked at
      {UTF32_UTF8, 0x80, 1, VX_E_ROOM, {}},
      {UTF32_UTF8, 0x7FF, 2, 0, {0xDF, 0xBF}},
      {UTF32_UTF8, 0x800, 2, VX_E_ROOM, {}},
      {UTF32_UTF8, 0xFFFF, 3, 0, {0xEF, 0xBF, 0xBF}},
      {UTF32_UTF8, 0x1F600, 3, VX_E_ROOM, {}},
      {UTF32_UTF8, 0x1F600, 4, 0, {0xF0, 0x9F, 0x98, 0x80}},
      {UTF32_UTF8, 0x110000, 4, 0, {0xF4, 0x90, 0x80, 0x80}},
      {UTF32_UTF8, 0xFFFFFFFF, 4, 0, {0xEF, 0xBF, 0xBF, 0xBF}},  // F0 + 3FFF, of which one byte is kept
      {UTF16_UTF8, 0x1D800, 3, 0, {0xED, 0xA0, 0x80}},
      {UTF16_UTF8, 0x10041, 0, 0, {0x41}},
      {UTF16_UTF8, 0x20AC, 2, VX_E_ROOM, {}},
      {UTF32_UTF16, 0x1F600, 0, 0, {0x00, 0xF6}},  // no room check, no pair
      {UTF32_UTF16_SWAP, 0x1F600, 0, 0, {0xF6, 0x00}},
      {UTF32_UTF16s, 0x20AC, 0, 0, {0xAC, 0x20}},
      {UTF32_UTF16s, 0x1F600, 3, VX_E_ROOM, {}},
      {UTF32_UTF16s, 0x1F600, 4, 0, {0x3D, 0xD8, 0x00, 0xDE}},
      {UTF32_UTF16s_SWAP, 0x1F600, 4, 0, {0xD8, 0x3D, 0xDE, 0x00}},
      {COPY_UTF32, 0x41, 3, VX_E_ROOM, {}},
      {COPY_UTF32, 0x12345678, 4, 0, {0x12, 0x34, 0x56, 0x78}},
      {COPY_UTF32_SWAP, 0x12345678, 4, 0, {0x78, 0x56, 0x34, 0x12}},
      {COPY_UTF32_SWAP, 0x41, -1, VX_E_ROOM, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << std::hex << c.code_point << " into " << c.room);
    uint8_t out[6] = {0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA};
    int64_t written = -1;
    EXPECT_EQ(c.encoder(c.code_point, out, c.room, &written), c.status);
    ASSERT_EQ(written, static_cast<int64_t>(c.expected.size()));
    EXPECT_EQ(Bytes(out, out + written), c.expected);
    EXPECT_TRUE(std::all_of(out + written, out + 6, [](uint8_t b) { return b == 0xAA; }));
  }
}

TEST(Coders, CopyOfBytes) {
  const uint8_t text[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  static constexpr struct {
    int64_t length, room, copied;
    VXStatus status;
  } cases[] = {{10, 6, 6, VX_E_ROOM}, {10, 10, 10, 0}, {4, 10, 4, 0},        {0, 0, 0, 0},
               {-5, 10, 0, 0},        {-5, -9, 0, 0},  {3, -1, 0, VX_E_ROOM}};
  for (const auto& c : cases) {
    uint8_t out[11] = {};
    int64_t copied = -1;
    EXPECT_EQ(COPY_UTF(text, c.length, out, c.room, &copied), c.status) << c.length << " " << c.room;
    ASSERT_EQ(copied, c.copied);
    EXPECT_TRUE(std::equal(text, text + copied, out));
    EXPECT_EQ(out[copied], 0);
  }
}

TEST(Coders, ReadersAtAnyAlignment) {
  const uint8_t bytes[] = {0, 0x12, 0x34, 0x56, 0x78, 0x9A};
  EXPECT_EQ(Byte2DWord(bytes + 1), 0x78563412u);
  EXPECT_EQ(Byte2DWord_swap(bytes + 1), 0x12345678u);
  EXPECT_EQ(Byte2Word(bytes + 1), 0x3412);
  EXPECT_EQ(Byte2Word_swap(bytes + 1), 0x1234);
  EXPECT_EQ(BYTE_UTF16_UTF32(bytes + 1), 0x1234);
  EXPECT_EQ(BYTE_UTF16_UTF32_SWAP(bytes + 1), 0x3412);
}

TEST(Coders, LegalityAndGoodLength) {
  static const struct {
    Bytes text;
    int64_t length;
    int32_t legal;
    int64_t good;
  } cases[] = {
      {{0xE0, 0x80, 0x80}, 3, 0, 3},
      {{0xED, 0xA0, 0x80}, 3, 0, 3},
      {{0xF0, 0x8F, 0x80, 0x80}, 4, 0, 4},
      {{0xF4, 0x90, 0x80, 0x80}, 4, 1, 4},
      {{0xF0, 0x90, 0x80}, 3, 1, 3},  // the lead is not held against the length
      {{0xE1, 0x41, 0x80}, 3, 0, 1},
      {{0xE1, 0x80, 0x41}, 3, 0, 2},
      {{0xF1, 0x80, 0x80, 0xC0}, 4, 0, 3},
      {{0xF1, 0x41, 0x41, 0x41}, 4, 0, 1},
      {{0x80}, 1, 0, 1},
      {{0xC1, 0x80}, 2, 0, 2},
      {{0xF5, 0x80, 0x80, 0x80}, 4, 0, 4},
      {{0xFF}, 5, 1, 5},
      {{0xFF}, 0, 1, 0},
      {{0xFF}, -1, 1, -1},
      {{0x41}, 1, 1, 1},
  };
  for (const auto& c : cases) {
    int64_t good = -9;
    EXPECT_EQ(isLegalUTF8(c.text.data(), c.length, &good), c.legal) << testing::PrintToString(c.text);
    EXPECT_EQ(good, c.good) << testing::PrintToString(c.text);
  }
}

TEST(Coders, LengthOfVxCharsInUtf8) {
  std::vector<VXChar> all;
  int64_t bytes = 0;
  for (uint32_t c = 0; c < end_of_code_points; ++c) {
    all.push_back(c);
    bytes += U8_LENGTH(U_IS_SURROGATE(c) ? 0xFFFD : static_cast<UChar32>(c));
  }
  EXPECT_EQ(GET_UTF8_LEN_FROM_VXCHAR(all.data(), static_cast<int64_t>(all.size())), bytes);
  EXPECT_EQ(GET_UTF8_LEN_FROM_VXCHAR(nullptr, 0), 0);
  EXPECT_EQ(GET_UTF8_LEN_FROM_VXCHAR(nullptr, -3), 0);
}

}  // namespace
