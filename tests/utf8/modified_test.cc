// Modified UTF-8 both ways, against a model that knows whole pieces: what each piece of the input becomes, and that a
// piece which does not fit ends the call.
#include <gtest/gtest.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "tests/support/guard_page.h"
#include "vxnls/utf8.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Coder = VXStatus (*)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*, uint32_t);

constexpr uint32_t all_options[] = {0, 1, 4, 5};

/// A few bytes, without a heap: whole domains go through here.
struct Piece {
  uint8_t bytes[8];  // as many as there are; the rest is never cleared
  size_t size;

  Piece() = default;  // cppcheck-suppress uninitMemberVar ; what is not set is set before it is used
  Piece(std::initializer_list<uint8_t> list) : size(0) {
    for (const uint8_t byte : list) bytes[size++] = byte;
  }
  bool operator==(const Piece& other) const {
    return std::equal(bytes, bytes + size, other.bytes, other.bytes + other.size);
  }
};
const Piece replacement = {0xEF, 0xBF, 0xBD}, two_byte_nul = {0xC0, 0x80};

Piece utf8_of(uint32_t c) {
  Piece piece = {};
  U8_APPEND_UNSAFE(piece.bytes, piece.size, c);
  return piece;
}

Piece joined(Piece a, const Piece& b) {
  for (size_t i = 0; i < b.size; ++i) a.bytes[a.size++] = b.bytes[i];
  return a;
}

/// What the input falls apart into, and what becomes of it.
struct Model {
  Piece pieces[24];
  size_t count = 0;
  bool replaced = false;
  void add(const Piece& piece) { pieces[count++] = piece; }
  void replace() {
    replaced = true;
    add(replacement);
  }
};

struct Token : Piece {
  size_t announced;
  bool complete() const { return size == announced; }
  bool surrogate() const { return size == 3 && bytes[0] == 0xED && bytes[1] > 0x9F; }
  bool valid_lead() const { return bytes[0] < 0x80 || (bytes[0] > 0xC1 && bytes[0] < 0xF5); }
  uint32_t low_bits() const {  // of all bytes behind the lead
    uint32_t value = 0;
    for (size_t i = 1; i < size; ++i) value = value * 64 + bytes[i] % 64;
    return value;
  }
};

struct Tokens {
  Token all[24];
  size_t count = 0;
};

Tokens tokens_of(const uint8_t* text, size_t length) {
  Tokens tokens;
  for (size_t i = 0; i < length; ++i) {
    const uint8_t byte = text[i];
    Token* const last = tokens.count > 0 ? &tokens.all[tokens.count - 1] : nullptr;
    if (byte / 64 == 2 && last != nullptr && !last->complete()) {
      last->bytes[last->size++] = byte;
      continue;
    }
    Token& token = tokens.all[tokens.count++];
    token.bytes[0] = byte;
    token.size = 1;
    token.announced = byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : byte < 0xF8 ? 4 : byte < 0xFC ? 5 : 6;
  }
  return tokens;
}

Model encoded(const Tokens& tokens, uint32_t options) {
  Model model;
  for (size_t i = 0; i < tokens.count; ++i) {
    const Token& token = tokens.all[i];
    if (!token.complete() || token.surrogate() || (token.size == 1 && !token.valid_lead())) {
      model.replace();
    } else if (token.size == 4 && token.valid_lead()) {
      // The plane less one is put beside A0 unchecked: overlong sequences give FF, planes 17 to 19 B0 to B2.
      const uint32_t c = (token.bytes[0] % 8u) << 18 | token.low_bits();
      const auto second = static_cast<uint8_t>(0xA0 | ((c >> 16) - 1));
      const Piece high = {0xED, second, static_cast<uint8_t>(0x80 | (c >> 10 & 63))};
      const Piece low = {0xED, static_cast<uint8_t>(0xB0 | (c >> 6 & 15)), static_cast<uint8_t>(0x80 | (c & 63))};
      if (options == 4) {
        model.replace();
      } else {
        model.add(joined(high, low));
      }
    } else {
      model.add(token.bytes[0] == 0 && options % 2 == 1 ? two_byte_nul : token);
    }
  }
  return model;
}

Model decoded(const Tokens& tokens, uint32_t options) {
  Model model;
  for (size_t i = 0; i < tokens.count; ++i) {
    const Token& token = tokens.all[i];
    if (token.surrogate() && i + 1 < tokens.count && tokens.all[i + 1].surrogate()) {
      const uint32_t high = token.low_bits() & 0x3FF, low = tokens.all[++i].low_bits() & 0x3FF;
      model.add(utf8_of(0x10000 + (high << 10) + low));
    } else if (token.surrogate()) {
      model.replace();
      if (i + 1 == tokens.count) break;
      // What follows a half is copied as it is, unless it is broken.
      if (tokens.all[++i].complete()) {
        model.add(tokens.all[i]);
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

Model model_of(Coder coder, const uint8_t* text, size_t length, uint32_t options) {
  if (coder == vxzsu8Decode && options == 4) {  // the input as it is, byte by byte
    Model model;
    for (size_t i = 0; i < length; ++i) model.add({text[i]});
    return model;
  }
  const Tokens tokens = tokens_of(text, length);
  return coder == vxzsu8Encode ? encoded(tokens, options) : decoded(tokens, options);
}

/// What a room holds: whole pieces up to the first that does not fit.
struct Held {
  uint8_t bytes[192];
  size_t size = 0;
  VXStatus status;

  Held(const Model& model, size_t room) {
    for (size_t i = 0; i < model.count; ++i) {
      const Piece& piece = model.pieces[i];
      if (size + piece.size > room) {
        status = VX_E_ROOM;
        return;
      }
      std::copy_n(piece.bytes, piece.size, bytes + size);
      size += piece.size;
    }
    status = model.replaced ? VX_E_SEQUENCE : 0;
  }
};

bool is_as_modelled(Coder coder, const Model& model, const uint8_t* in, size_t length, size_t room, uint32_t options,
                    size_t away = 0) {
  static vxtest::GuardedBuffer<uint8_t> output(256);
  const Held held(model, room);
  uint8_t* const out = output.at(room, vxtest::Guard::behind, away);
  int64_t written = -1;
  const VXStatus status = coder(in, static_cast<int64_t>(length), out, static_cast<int64_t>(room), &written, options);
  if (status == held.status && written == static_cast<int64_t>(held.size) &&
      std::equal(out, out + held.size, held.bytes))
    return true;
  ADD_FAILURE() << (coder == vxzsu8Encode ? "encode " : "decode ") << testing::PrintToString(Bytes(in, in + length))
                << " room " << room << " options " << options << " status " << status << " written " << written;
  return false;
}

/// Runs a coder in every room from 0 to one more than is needed, between pages that may not be touched.
void expect_in_every_room(Coder coder, const Bytes& text, uint32_t options) {
  static vxtest::GuardedBuffer<uint8_t> input(256);
  const Model model = model_of(coder, text.data(), text.size(), options);
  const uint8_t* const in = input.copy(text.data(), text.size());
  const size_t needed = Held(model, 96).size;
  for (size_t room = 0; room <= needed + 1; ++room) {
    ASSERT_TRUE(is_as_modelled(coder, model, in, text.size(), room, options));
  }
  uint8_t out[96];
  ASSERT_EQ(coder(in, static_cast<int64_t>(text.size()), out, 96, nullptr, options), Held(model, 96).status);
}

/// All strings of n bytes that begin with `lowest` or more, each with one of the options, and in the room it needs. One
/// in 16 touches a page that may not be touched itself, which slows the C library down.
void check_all(size_t n, uint64_t lowest) {
  vxtest::GuardedBuffer<uint8_t> input(128);
  for (uint64_t number = lowest << 8 * (n - 1); number < uint64_t{1} << 8 * n; ++number) {
    const size_t away = number % 16 == 0 ? 0 : 64;
    uint8_t* const text = input.at(n, vxtest::Guard::behind, away);
    for (size_t i = 0; i < n; ++i) text[i] = static_cast<uint8_t>(number >> 8 * (n - 1 - i));
    const auto turn = static_cast<uint32_t>(number * 0x9E3779B1u) >> 24;
    const uint32_t options = all_options[turn % 4];
    for (const Coder coder : {&vxzsu8Encode, &vxzsu8Decode}) {
      const Model model = model_of(coder, text, n, options);
      ASSERT_TRUE(is_as_modelled(coder, model, text, n, Held(model, 96).size, options, away));
    }
  }
}

TEST(Modified, EveryStringOfOneToThreeBytes) {
  for (unsigned number = 0; number < 0x10000; ++number) {
    Bytes text = {static_cast<uint8_t>(number >> 8), static_cast<uint8_t>(number)};
    for (const uint32_t options : all_options) {
      expect_in_every_room(vxzsu8Encode, text, options);
      expect_in_every_room(vxzsu8Decode, text, options);
      expect_in_every_room(vxzsu8Encode, {text[1]}, options);
      expect_in_every_room(vxzsu8Decode, {text[1]}, options);
    }
    if (HasFatalFailure()) return;
  }
  check_all(3, 0);
}

// What begins below C0 is a character and a string of three bytes.
TEST(Modified, EveryStringOfFourBytesInTheLongRun) {
  if (std::getenv("VXNLS_LONG_TESTS") == nullptr) GTEST_SKIP() << "set VXNLS_LONG_TESTS to run it";
  check_all(4, 0xC0);
}

TEST(Modified, EveryCodePoint) {
  for (uint32_t c = 0; c < 0x110000; ++c) {
    const Piece plain = utf8_of(c);
    const bool surrogate = U_IS_SURROGATE(c);
    for (const uint32_t options : all_options) {
      const Piece expected = surrogate || (c > 0xFFFF && options == 4) ? replacement
                             : c > 0xFFFF                   ? joined(utf8_of(U16_LEAD(c)), utf8_of(U16_TRAIL(c)))
                             : c == 0 && (options & 1) != 0 ? two_byte_nul
                                                            : plain;
      const VXStatus expected_status = expected == replacement && plain != replacement ? VX_E_SEQUENCE : 0;
      const auto size = static_cast<int64_t>(expected.size);
      uint8_t out[8];
      int64_t written;
      for (int64_t room = 0; room <= size; ++room) {
        ASSERT_EQ(vxzsu8Encode(plain.bytes, static_cast<int64_t>(plain.size), out, room, &written, options),
                  room < size ? VX_E_ROOM : expected_status)
            << c << " options " << options;
        ASSERT_EQ(written, room < size ? 0 : size) << c;
      }
      ASSERT_TRUE(std::equal(out, out + expected.size, expected.bytes)) << c << " options " << options;
      if (expected_status != 0 || options == 4) continue;
      for (int64_t room = 0; room <= static_cast<int64_t>(plain.size); ++room) {
        const bool fits = room == static_cast<int64_t>(plain.size);
        ASSERT_EQ(vxzsu8Decode(expected.bytes, size, out, room, &written, options), fits ? 0 : VX_E_ROOM) << c;
        ASSERT_EQ(written, fits ? room : 0) << c;
      }
      ASSERT_TRUE(std::equal(out, out + plain.size, plain.bytes)) << c << " options " << options;
    }
  }
}

TEST(Modified, EveryPairOfSurrogatesInBothOrders) {
  for (uint32_t first = 0xD800; first < 0xE000; ++first) {
    Piece text = joined(utf8_of(first), {0xED, 0, 0});
    for (uint32_t second = 0xD800; second < 0xE000; ++second) {
      text.bytes[4] = static_cast<uint8_t>(0x80 | (second >> 6 & 63));
      text.bytes[5] = static_cast<uint8_t>(0x80 | (second & 63));
      // The order is not checked: each of the two gives its ten low bits.
      uint8_t expected[4], out[4];
      size_t n = 0;
      const uint32_t c = 0x10000 + ((first & 0x3FF) << 10) + (second & 0x3FF);
      U8_APPEND_UNSAFE(expected, n, c);
      int64_t written;
      ASSERT_EQ(vxzsu8Decode(text.bytes, 6, out, 4, &written, first % 2), 0u);
      ASSERT_EQ(written, 4);
      ASSERT_TRUE(std::equal(out, out + 4, expected)) << std::hex << first << " " << second;
    }
  }
}

TEST(Modified, SequencesOfEveryKindBesideEachOther) {
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
      {0xFB, 0xBF, 0xBF},
      {0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF},
      {0xFF},
  };
  for (const Bytes& a : kinds) {
    for (const Bytes& b : kinds) {
      for (const Bytes& c : kinds) {
        Bytes text = a;
        text.insert(text.end(), b.begin(), b.end());
        text.insert(text.end(), c.begin(), c.end());
        for (const uint32_t options : all_options) {
          expect_in_every_room(vxzsu8Encode, text, options);
          expect_in_every_room(vxzsu8Decode, text, options);
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
