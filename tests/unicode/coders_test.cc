#include <gtest/gtest.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <vector>

#include "tests/support/guard_page.h"
#include "unicode/text_flavour.h"
#include "vxnls/unicode.h"

namespace {

using Bytes = std::vector<uint8_t>;
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
    VXDecoder decoder;
    Bytes (*expected)(uint32_t);
    bool surrogates;  // come back as they are
  } pairs[] = {
      {UTF32_UTF8, UTF8_UTF32, utf8_of, true},
      {UTF32_UTF16s, UTF16_UTF32_SWAP, [](uint32_t c) { return utf16_of(c, false); }, false},
      {UTF32_UTF16s_SWAP, UTF16_UTF32, [](uint32_t c) { return utf16_of(c, true); }, false},
      {COPY_UTF32, COPY_UTF32b, [](uint32_t c) { return utf32_of(c, true); }, true},
      {COPY_UTF32_SWAP, COPY_UTF32b_SWAP, [](uint32_t c) { return utf32_of(c, false); }, true},
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
      const Read back = read_by(pair.decoder, out, n);
      if (pair.surrogates || !U_IS_SURROGATE(c)) {
        ASSERT_EQ(back, (Read{c, n, 0})) << c;
      } else {
        ASSERT_EQ(back, (Read{0xFFFD, 2, U16_IS_LEAD(c) ? VX_E_INCOMPLETE : VX_E_SEQUENCE})) << c;
      }
    }
  }
}

TEST(Coders, Utf16UnitsOfEveryCodePoint) {
  for (uint32_t c = 0; c < end_of_code_points; ++c) {
    const Bytes bytes = utf8_of(c);
    uint16_t units[2] = {0, 0xAAAA}, expected[2] = {0, 0xAAAA};
    size_t n = 0;
    U16_APPEND_UNSAFE(expected, n, c);
    int64_t consumed = 0;
    ASSERT_EQ(UTF8_UTF16(bytes.data(), static_cast<int64_t>(bytes.size()), units, &consumed), 0u) << c;
    ASSERT_EQ(consumed, static_cast<int64_t>(bytes.size())) << c;
    ASSERT_EQ(units[0], expected[0]) << c;
    ASSERT_EQ(units[1], expected[1]) << c;  // below U+10000 the second unit stays as it was
  }
}

TEST(Coders, EveryPairOfSurrogates) {
  for (uint32_t high = 0xD800; high < 0xDC00; ++high) {
    for (uint32_t low = 0xDC00; low < 0xE000; ++low) {
      const uint8_t big[] = {static_cast<uint8_t>(high >> 8), static_cast<uint8_t>(high),
                             static_cast<uint8_t>(low >> 8), static_cast<uint8_t>(low)};
      const uint8_t little[] = {big[1], big[0], big[3], big[2]};
      const Read expected{static_cast<uint32_t>(U16_GET_SUPPLEMENTARY(high, low)), 4, 0};
      ASSERT_EQ(read_by(UTF16_UTF32, big, 4), expected);
      ASSERT_EQ(read_by(UTF16_UTF32_SWAP, little, 4), expected);
      ASSERT_EQ(BYTE_UTF16_UTF32(big), high);
      ASSERT_EQ(BYTE_UTF16_UTF32_SWAP(little), high);
    }
  }
}

// What the contract says of a lead and the bytes behind it, from the code points' ranges and not from tables.
Read utf8_by_contract(const Bytes& text, size_t remaining, size_t readable) {
  const uint8_t lead = text[0];
  const size_t length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : lead < 0xFC ? 5 : 6;
  const bool begins = lead < 0x80 || (lead > 0xC1 && lead < 0xF5);
  if (begins && remaining < length) return {0xFFFD, static_cast<int64_t>(remaining), VX_E_INCOMPLETE};
  if (begins) {
    uint32_t value = length == 1 ? lead : lead % (1u << (7 - length));
    for (size_t i = 1; i < length; ++i) value = value * 64 + text[i] % 64;
    return {value, static_cast<int64_t>(length), 0};
  }
  size_t n = 1;
  while (n < length && n < readable && text[n] / 64 == 2) ++n;
  return {0xFFFD, static_cast<int64_t>(n), VX_E_SEQUENCE};
}

TEST(Coders, EveryStartOfAUtf8Sequence) {
  constexpr uint8_t followers[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xED, 0xF4, 0xFF};
  GuardedBuffer<uint8_t> memory(6);
  for (unsigned lead = 0; lead < 256; ++lead) {
    for (const uint8_t second : followers) {
      for (const uint8_t third : followers) {
        for (const uint8_t fourth : followers) {
          const Bytes text = {static_cast<uint8_t>(lead), second, third, fourth, 0x80, 0xBF};
          for (size_t remaining = 1; remaining <= text.size(); ++remaining) {
            const Read bounded = utf8_by_contract(text, remaining, remaining);
            const uint8_t* const cut = memory.copy(text.data(), remaining);
            const auto inside = vxnls::Utf8Text::decode(cut, static_cast<int64_t>(remaining));
            ASSERT_EQ((Read{inside.code_point, inside.consumed, inside.status}), bounded) << lead;
            uint16_t units[2];
            int64_t consumed;
            ASSERT_EQ(UTF8_UTF16(cut, static_cast<int64_t>(remaining), units, &consumed),
                      bounded.status == 0 ? 0 : VX_E_SEQUENCE);
            ASSERT_EQ(consumed, bounded.consumed);
            if (bounded.status != 0) {
              ASSERT_EQ(units[0], 0xFFFD);
            }
            // By itself the decoder counts on past what remains.
            ASSERT_EQ(read_by(UTF8_UTF32, text.data(), static_cast<int64_t>(remaining)),
                      utf8_by_contract(text, remaining, text.size()))
                << lead;
          }
        }
      }
    }
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
}

// ICU agrees on every sequence of the right length for its lead, but for what F4 lets pass.
TEST(Coders, LegalityAgainstIcu) {
  uint8_t s[4] = {};
  for (uint32_t x = 0; x < 1u << 24; ++x) {
    s[0] = static_cast<uint8_t>(x >> 16), s[1] = static_cast<uint8_t>(x >> 8), s[2] = static_cast<uint8_t>(x);
    const int32_t length = U8_IS_LEAD(s[0]) ? 1 + U8_COUNT_TRAIL_BYTES(s[0]) : 1;
    if (length == 4) s[3] = static_cast<uint8_t>(x * 0x9E3779B1u >> 24);
    int32_t i = 0;
    UChar32 c;
    U8_NEXT(s, i, length, c);
    const bool past_the_end =
        s[0] == 0xF4 && s[1] >= 0x90 && s[1] < 0xC0 && (s[2] & 0xC0) == 0x80 && (s[3] & 0xC0) == 0x80;
    int64_t good;
    ASSERT_EQ(isLegalUTF8(s, length, &good), (c >= 0 && i == length) || past_the_end) << std::hex << x;
  }
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
  for (uint32_t c = 0; c < end_of_code_points; c += c < 0x11000 ? 1 : 0x101) {
    all.push_back(c);
    bytes += U8_LENGTH(U_IS_SURROGATE(c) ? 0xFFFD : static_cast<UChar32>(c));
  }
  EXPECT_EQ(GET_UTF8_LEN_FROM_VXCHAR(all.data(), static_cast<int64_t>(all.size())), bytes);
  EXPECT_EQ(GET_UTF8_LEN_FROM_VXCHAR(nullptr, 0), 0);
  EXPECT_EQ(GET_UTF8_LEN_FROM_VXCHAR(nullptr, -3), 0);
}

}  // namespace
