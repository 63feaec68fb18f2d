// Modified UTF-8 both ways, against a model that knows whole pieces: what each piece of the input becomes, and that a
// piece which does not fit ends the call.
#include <gtest/gtest.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <vector>

#include "tests/support/guard_page.h"
#include "vxnls/utf8.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Pieces = std::vector<Bytes>;
using Coder = VXStatus (*)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*, uint32_t);

constexpr uint32_t all_options[] = {0, 1, 4, 5};
const Bytes replacement = {0xEF, 0xBF, 0xBD};
const Bytes two_byte_nul = {0xC0, 0x80};

Bytes utf8_of(uint32_t c) {
  Bytes bytes(4);
  size_t n = 0;
  U8_APPEND_UNSAFE(bytes.data(), n, c);
  bytes.resize(n);
  return bytes;
}

Bytes joined(const Bytes& a, const Bytes& b) {
  Bytes both = a;
  both.insert(both.end(), b.begin(), b.end());
  return both;
}

/// What the input falls apart into, and what becomes of it.
struct Model {
  Pieces pieces;
  bool replaced = false;
  void add(const Bytes& piece) { pieces.push_back(piece); }
  void replace() {
    replaced = true;
    pieces.push_back(replacement);
  }
};

struct Token : Bytes {
  size_t announced;
  bool complete() const { return size() == announced; }
  bool surrogate() const { return size() == 3 && (*this)[0] == 0xED && (*this)[1] > 0x9F; }
  bool valid_lead() const { return (*this)[0] < 0x80 || ((*this)[0] > 0xC1 && (*this)[0] < 0xF5); }
  uint32_t low_bits() const {  // of all bytes behind the lead
    uint32_t value = 0;
    for (size_t i = 1; i < size(); ++i) value = value * 64 + (*this)[i] % 64;
    return value;
  }
};

std::vector<Token> tokens_of(const Bytes& text) {
  std::vector<Token> tokens;
  for (const uint8_t byte : text) {
    const bool continues = byte / 64 == 2;
    if (continues && !tokens.empty() && !tokens.back().complete()) {
      tokens.back().push_back(byte);
      continue;
    }
    Token token;
    token.push_back(byte);
    token.announced = byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : byte < 0xF8 ? 4 : byte < 0xFC ? 5 : 6;
    tokens.push_back(token);
  }
  return tokens;
}

Model encoded(const Bytes& text, uint32_t options) {
  Model model;
  for (const Token& token : tokens_of(text)) {
    if (!token.complete() || token.surrogate() || (token.size() == 1 && !token.valid_lead())) {
      model.replace();
    } else if (token.size() == 4 && token.valid_lead()) {
      // The plane less one is put beside A0 unchecked: overlong sequences give FF, planes 17 to 19 B0 to B2.
      const uint32_t c = (token[0] % 8u) << 18 | token.low_bits();
      const auto second = static_cast<uint8_t>(0xA0 | ((c >> 16) - 1));
      const Bytes high = {0xED, second, static_cast<uint8_t>(0x80 | (c >> 10 & 63))};
      const Bytes low = {0xED, static_cast<uint8_t>(0xB0 | (c >> 6 & 15)), static_cast<uint8_t>(0x80 | (c & 63))};
      if (options == 4) {
        model.replace();
      } else {
        model.add(joined(high, low));
      }
    } else {
      model.add(token[0] == 0 && options % 2 == 1 ? two_byte_nul : token);
    }
  }
  return model;
}

Model decoded(const Bytes& text, uint32_t options) {
  Model model;
  const std::vector<Token> tokens = tokens_of(text);
  for (size_t i = 0; i < tokens.size(); ++i) {
    const Token& token = tokens[i];
    if (token.surrogate() && i + 1 < tokens.size() && tokens[i + 1].surrogate()) {
      const uint32_t high = token.low_bits() & 0x3FF, low = tokens[++i].low_bits() & 0x3FF;
      model.add(utf8_of(0x10000 + (high << 10) + low));
    } else if (token.surrogate()) {
      model.replace();
      if (i + 1 == tokens.size()) break;
      // What follows a half is copied as it is, unless it is broken.
      if (tokens[++i].complete()) {
        model.add(tokens[i]);
      } else {
        model.replace();
      }
    } else if (options % 2 == 1 && token == two_byte_nul) {
      model.add({0});
    } else if (token.complete() && token.valid_lead()) {
      model.add(token);
    } else {
      model.replace();
    }
  }
  return model;
}

/// The input as it is, byte by byte.
Model copied(const Bytes& text) {
  Model model;
  for (const uint8_t byte : text) model.add({byte});
  return model;
}

Model model_of(Coder coder, const Bytes& text, uint32_t options) {
  if (coder == vxzsu8Encode) return encoded(text, options);
  return options == 4 ? copied(text) : decoded(text, options);
}

/// Runs a coder in every room from 0 to one more than is needed, between pages that may not be touched.
void expect_in_every_room(Coder coder, const Bytes& text, uint32_t options) {
  static vxtest::GuardedBuffer<uint8_t> input(256), output(256);
  const Model model = model_of(coder, text, options);
  const auto length = static_cast<int64_t>(text.size());
  const uint8_t* const in = input.copy(text.data(), text.size());
  size_t needed = 0;
  for (const Bytes& piece : model.pieces) needed += piece.size();
  for (size_t room = 0; room <= needed + 1; ++room) {
    Bytes expected;
    bool fits = true;
    for (const Bytes& piece : model.pieces) {
      fits = fits && expected.size() + piece.size() <= room;
      if (fits) expected = joined(expected, piece);
    }
    uint8_t* const out = output.at(room);
    int64_t written = -1;
    const VXStatus status = coder(in, length, out, static_cast<int64_t>(room), &written, options);
    ASSERT_EQ(status, !fits            ? VX_E_ROOM
                      : model.replaced ? VX_E_SEQUENCE
                                       : 0)
        << (coder == vxzsu8Encode ? "encode " : "decode ") << testing::PrintToString(text) << " room " << room
        << " options " << options;
    ASSERT_EQ(Bytes(out, out + written), expected) << testing::PrintToString(text) << " room " << room;
    ASSERT_EQ(coder(in, length, out, static_cast<int64_t>(room), nullptr, options), status);
  }
}

TEST(Modified, EveryCodePoint) {
  for (uint32_t c = 0; c < 0x110000; ++c) {
    const Bytes plain = utf8_of(c);
    const bool surrogate = U_IS_SURROGATE(c);
    for (const uint32_t options : all_options) {
      const Bytes expected = surrogate || (c > 0xFFFF && options == 4) ? replacement
                             : c > 0xFFFF                   ? joined(utf8_of(U16_LEAD(c)), utf8_of(U16_TRAIL(c)))
                             : c == 0 && (options & 1) != 0 ? two_byte_nul
                                                            : plain;
      const VXStatus expected_status = expected == replacement && plain != replacement ? VX_E_SEQUENCE : 0;
      const auto size = static_cast<int64_t>(expected.size());
      uint8_t out[8];
      int64_t written;
      for (int64_t room = 0; room <= size; ++room) {
        ASSERT_EQ(vxzsu8Encode(plain.data(), static_cast<int64_t>(plain.size()), out, room, &written, options),
                  room < size ? VX_E_ROOM : expected_status)
            << c << " options " << options;
        ASSERT_EQ(written, room < size ? 0 : size) << c;
      }
      ASSERT_TRUE(std::equal(expected.begin(), expected.end(), out)) << c << " options " << options;
      if (expected_status != 0 || options == 4) continue;
      for (int64_t room = 0; room <= static_cast<int64_t>(plain.size()); ++room) {
        const bool fits = room == static_cast<int64_t>(plain.size());
        ASSERT_EQ(vxzsu8Decode(expected.data(), size, out, room, &written, options), fits ? 0 : VX_E_ROOM) << c;
        ASSERT_EQ(written, fits ? room : 0) << c;
      }
      ASSERT_TRUE(std::equal(plain.begin(), plain.end(), out)) << c << " options " << options;
    }
  }
}

TEST(Modified, EveryPairOfSurrogatesInBothOrders) {
  for (uint32_t first = 0xD800; first < 0xE000; ++first) {
    Bytes text = joined(utf8_of(first), {0xED, 0, 0});
    for (uint32_t second = 0xD800; second < 0xE000; ++second) {
      text[4] = static_cast<uint8_t>(0x80 | (second >> 6 & 63));
      text[5] = static_cast<uint8_t>(0x80 | (second & 63));
      // The order is not checked: each of the two gives its ten low bits.
      uint8_t expected[4], out[4];
      size_t n = 0;
      const uint32_t c = 0x10000 + ((first & 0x3FF) << 10) + (second & 0x3FF);
      U8_APPEND_UNSAFE(expected, n, c);
      int64_t written;
      ASSERT_EQ(vxzsu8Decode(text.data(), 6, out, 4, &written, first % 2), 0u);
      ASSERT_EQ(written, 4);
      ASSERT_TRUE(std::equal(out, out + 4, expected)) << std::hex << first << " " << second;
    }
  }
}

TEST(Modified, SequencesOfEveryKindBesideEachOtherAndCutOff) {
  const Bytes kinds[] = {
      {0x00},
      {0x41},
      {0x80},
      {0xC3, 0xA9},
      {0xC3},
      {0xC0, 0x80},
      {0xC1, 0x81},
      {0xC0},
      {0xE2, 0x82, 0xAC},
      {0xE2, 0x82},
      {0xE0, 0x80, 0x80},
      {0xED, 0x9F, 0xBF},
      {0xED, 0xA0, 0xBD},
      {0xED, 0xB8, 0x80},
      {0xED, 0xA0},
      {0xF0, 0x9F, 0x98, 0x80},
      {0xF0, 0x9F, 0x98},
      {0xF4, 0x8F, 0xBF, 0xBF},
      {0xF0, 0x80, 0x80, 0x80},
      {0xF4, 0x90, 0x80, 0x80},
      {0xF4, 0xBF, 0xBF, 0xBF},
      {0xF5, 0x80, 0x80, 0x80},
      {0xF7, 0xBF},
      {0xF8, 0x80, 0x80, 0x80, 0x80},
      {0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF},
      {0xFF},
  };
  for (const Bytes& a : kinds) {
    for (const Bytes& b : kinds) {
      for (const Bytes& c : kinds) {
        const Bytes text = joined(joined(a, b), c);
        for (const uint32_t options : all_options) {
          expect_in_every_room(vxzsu8Encode, text, options);
          expect_in_every_room(vxzsu8Decode, text, options);
          if (HasFatalFailure()) return;
        }
      }
      Bytes cut = joined(a, b);
      for (; !cut.empty(); cut.pop_back()) {
        for (const uint32_t options : all_options) {
          expect_in_every_room(vxzsu8Encode, cut, options);
          expect_in_every_room(vxzsu8Decode, cut, options);
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Modified, NullAndNegativeLengths) {
  const uint8_t text[] = {0x41, 0x80};
  uint8_t out[4];
  for (const Coder coder : {&vxzsu8Encode, &vxzsu8Decode}) {
    for (const uint32_t options : all_options) {
      int64_t written = -1;
      EXPECT_EQ(coder(nullptr, 2, out, 4, &written, options), 0u);
      EXPECT_EQ(written, 0);
      EXPECT_EQ(coder(text, INT64_MIN, out, 4, &written, options), 0u);
      EXPECT_EQ(written, 0);
      EXPECT_EQ(coder(text, 2, nullptr, 4, &written, options), VX_E_ROOM);
      EXPECT_EQ(written, 0);
      EXPECT_EQ(coder(text, 2, out, INT64_MIN, &written, options), VX_E_ROOM);
      EXPECT_EQ(written, 0);
    }
  }
}

}  // namespace
