#include <gtest/gtest.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/support/character_host.h"
#include "tests/support/guard_page.h"
#include "unicode/case_mapping.h"
#include "vxnls/utf8.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Mapping = std::function<uint32_t(uint32_t)>;

struct Direction {
  void (*in_place)(uint8_t*, int64_t);
  VXStatus (*into)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*);
  uint8_t first, last;  // the letters of ASCII that change, by 0x20
  Mapping by_tables;
};
const Direction lower = {vxzsu8Lower, vxzsu8Lower2, 'A', 'Z', vxnls::lower_by_tables};
const Direction upper = {vxzsu8Upper, vxzsu8Upper2, 'a', 'z', vxnls::upper_by_tables};

Bytes utf8_of(uint32_t c) {
  Bytes bytes(4);
  size_t n = 0;
  U8_APPEND_UNSAFE(bytes.data(), n, c);
  bytes.resize(n);
  return bytes;
}

size_t announced(uint8_t lead) {
  return lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : lead < 0xFC ? 5 : 6;
}

/// One character as the casing functions see it: the bytes that it takes of the text, and those that it becomes.
struct Step {
  size_t taken;
  bool changes;
  uint8_t bytes[8];
  size_t size;
};

template <class Mapping>
Step step_at(const uint8_t* at, size_t left, const Direction& direction, const Mapping& mapping) {
  Step step;
  const uint8_t lead = at[0];
  step.taken = step.size = std::min(announced(lead), left);
  std::copy_n(at, step.size, step.bytes);
  step.changes = lead >= direction.first && lead <= direction.last;
  if (step.changes) step.bytes[0] ^= 0x20;
  if (lead < 0xC0) return step;
  uint32_t c = 0xFFFD;
  if (lead >= 0xC2 && lead <= 0xF4 && step.taken == announced(lead)) {
    c = lead & (0x7Fu >> step.taken);
    for (size_t i = 1; i < step.taken; ++i) c = c << 6 | (at[i] & 0x3Fu);
  }
  const uint32_t mapped = mapping(c);
  step.changes = mapped != c;
  if (step.changes) {
    step.size = 0;
    U8_APPEND_UNSAFE(step.bytes, step.size, mapped);
  }
  return step;
}

/// In place, one character at a time: what it becomes is written before the next one is read.
template <class Mapping>
void change_in_place(uint8_t* text, size_t length, const Direction& direction, const Mapping& mapping) {
  size_t write = 0;
  for (size_t read = 0; read < length;) {
    const Step step = step_at(text + read, length - read, direction, mapping);
    const bool whole_or_nothing = step.changes;
    if (!whole_or_nothing || write + step.size <= length) {
      for (size_t i = 0; i < step.size && write < length; ++i) text[write++] = step.bytes[i];
    }
    read += step.taken;
  }
  std::fill(text + write, text + length, uint8_t{' '});
}

/// What fits into a room: whole characters up to the first that does not.
struct Fitting {
  uint8_t bytes[512];
  int64_t size = 0, needed = 0;
};
template <class Mapping>
Fitting fitting(const uint8_t* text, size_t length, int64_t room, const Direction& direction, const Mapping& mapping) {
  Fitting result;
  for (size_t at = 0; at < length;) {
    const Step step = step_at(text + at, length - at, direction, mapping);
    const auto size = static_cast<int64_t>(step.size);
    if (result.size == result.needed && result.size + size <= room) {
      std::copy_n(step.bytes, step.size, result.bytes + result.size);
      result.size += size;
    }
    result.needed += size;
    at += step.taken;
  }
  return result;
}

void expect_as_modelled(const Bytes& text, const Direction& direction, const Mapping& mapping) {
  static vxtest::GuardedBuffer<uint8_t> input(256), output(256);
  const auto length = static_cast<int64_t>(text.size());
  SCOPED_TRACE(testing::PrintToString(text));

  uint8_t* const changed = output.copy(text.data(), text.size());
  direction.in_place(changed, length);
  Bytes expected = text;
  change_in_place(expected.data(), expected.size(), direction, mapping);
  EXPECT_EQ(Bytes(changed, changed + length), expected);

  const uint8_t* const in = input.copy(text.data(), text.size());
  const int64_t needed = fitting(in, text.size(), 0, direction, mapping).needed;
  int64_t written = -1;
  EXPECT_EQ(direction.into(in, length, nullptr, 99, &written), 0u);
  EXPECT_EQ(written, needed) << "measuring";
  for (int64_t room = 0; room <= needed + 1; ++room) {
    uint8_t* const out = output.at(static_cast<size_t>(room));
    const Fitting fits = fitting(in, text.size(), room, direction, mapping);
    const VXStatus status = fits.size == needed || room == 0 ? 0 : VX_E_ROOM;
    written = -1;
    EXPECT_EQ(direction.into(in, length, out, room, &written), status) << room;
    EXPECT_EQ(written, room == 0 ? needed : fits.size) << room;
    EXPECT_TRUE(std::equal(fits.bytes, fits.bytes + fits.size, out)) << room;
    EXPECT_EQ(direction.into(in, length, out, room, nullptr), status);
  }
}

/// All strings of n bytes that begin with `lowest` or more, by the tables: in place, and in the room they need. One in
/// 16 touches a page that may not be touched itself, which slows the C library down.
void check_all(size_t n, uint64_t lowest) {
  vxtest::GuardedBuffer<uint8_t> input(128), output(128);
  Bytes expected(n);
  const auto length = static_cast<int64_t>(n);
  for (uint64_t number = lowest << 8 * (n - 1); number < uint64_t{1} << 8 * n; ++number) {
    const size_t away = number % 16 == 0 ? 0 : 64;
    uint8_t* const text = input.at(n, vxtest::Guard::behind, away);
    const auto spell = [&](uint8_t* to) {
      for (size_t i = 0; i < n; ++i) to[i] = static_cast<uint8_t>(number >> 8 * (n - 1 - i));
    };
    const auto check = [&](const Direction& direction, auto mapping) {
      spell(text);
      spell(expected.data());
      const Fitting fits = fitting(text, n, 32, direction, mapping);
      uint8_t* const out = output.at(static_cast<size_t>(fits.size), vxtest::Guard::behind, away);
      int64_t written = -1;
      if (direction.into(text, length, out, fits.size, &written) != 0 || written != fits.size) return false;
      for (int64_t i = 0; i < written; ++i) {
        if (out[i] != fits.bytes[i]) return false;
      }
      change_in_place(expected.data(), n, direction, mapping);
      direction.in_place(text, length);
      for (size_t i = 0; i < n; ++i) {
        if (text[i] != expected[i]) return false;
      }
      return true;
    };
    ASSERT_TRUE(check(lower, vxnls::lower_by_tables)) << n << " bytes " << std::hex << number;
    ASSERT_TRUE(check(upper, vxnls::upper_by_tables)) << n << " bytes " << std::hex << number;
  }
}

TEST(Casing, EveryStringOfOneToThreeBytes) {
  check_all(1, 0);
  check_all(2, 0);
  check_all(3, 0);
}

// What begins below C0 is a character and a string of three bytes.
TEST(Casing, EveryStringOfFourBytesInTheLongRun) {
  if (std::getenv("VXNLS_LONG_TESTS") == nullptr) GTEST_SKIP() << "set VXNLS_LONG_TESTS to run it";
  check_all(4, 0xC0);
}

TEST(Casing, EveryCodePointByTheTablesWithoutAHost) {
  for (const Direction* direction : {&lower, &upper}) {
    for (uint32_t c = 0; c < 0x110000; ++c) {
      const Bytes text = utf8_of(c), expected = utf8_of(direction->by_tables(c));
      const auto length = static_cast<int64_t>(text.size());
      uint8_t out[8];
      int64_t written, measured;
      ASSERT_EQ(direction->into(text.data(), length, out, 8, &written), 0u);
      ASSERT_EQ(Bytes(out, out + written), expected) << c;
      ASSERT_EQ(direction->into(text.data(), length, nullptr, 0, &measured), 0u);
      ASSERT_EQ(measured, written) << c;
      Bytes changed = text, padded = expected;
      padded.resize(text.size(), ' ');
      direction->in_place(changed.data(), length);
      ASSERT_EQ(changed, padded) << c;  // by these tables nothing grows
    }
  }
}

// Grows, shrinks, and stays; and a host that changes what stands for bytes that are no character.
const std::map<uint32_t, uint32_t> strange = {{0x23A, 0x2C65},    {0x212A, 'k'},  {0xE9, 0xC9},
                                              {0x10400, 0x10428}, {0x10428, 'x'}, {0x3B1, 0x1F600}};
uint32_t strangely(uint32_t c) {
  const auto found = strange.find(c);
  return found == strange.end() ? c : found->second;
}

TEST(Casing, GrowthAndShrinkageByAHost) {
  vxtest::CharacterHost host;
  host.lower = host.upper = strangely;
  const Bytes kinds[] = {
      {'a'},
      {'Q'},
      {0xC8, 0xBA},
      {0xE2, 0x84, 0xAA},
      {0xC3, 0xA9},
      {0xF0, 0x90, 0x90, 0x80},
      {0xF0, 0x90, 0x90, 0xA8},
      {0xCE, 0xB1},
      {0x80},
      {0xC3},
      {0xE2, 0x84},
      {0xC1, 'b'},
      {0xF8, 'c', 'd', 'e', 'f'},
  };
  const auto join = [](std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
  };
  for (const Direction* direction : {&lower, &upper}) {
    expect_as_modelled({}, *direction, strangely);
    for (const Bytes& a : kinds) {
      expect_as_modelled(a, *direction, strangely);
      for (const Bytes& b : kinds) {
        for (const Bytes& c : kinds) {
          for (const Bytes& d : {Bytes{}, Bytes{'z', 'Y'}, Bytes{0xC8, 0xBA}, Bytes{0xE2, 0x84, 0xAA, ' '}}) {
            expect_as_modelled(join({a, b, c, d}), *direction, strangely);
            if (HasFailure()) return;
          }
        }
      }
    }
  }
}

TEST(Casing, AHostMayMapWhatIsNoCharacter) {
  vxtest::CharacterHost host;
  const auto mapping = [](uint32_t c) { return c == 0xFFFD ? uint32_t{'?'} : c; };
  host.lower = mapping;
  for (const Bytes& text : {Bytes{0xC0, 'a', 'B'}, Bytes{'a', 0xE2, 0x84}, Bytes{0xFF, 1, 2, 3, 4, 5, 6}}) {
    expect_as_modelled(text, lower, mapping);
  }
}

// In and around the blocks that a run of one-byte characters is looked at in.
TEST(Casing, RunsOfEveryLengthAndAlignment) {
  for (size_t before = 0; before < 20; ++before) {
    for (size_t behind = 0; behind < 20; ++behind) {
      Bytes text(before, 'B');
      text.insert(text.end(), {0xC3, 0x89});
      for (size_t i = 0; i < behind; ++i) text.push_back(static_cast<uint8_t>("aZ[`{@\x80\xBF"[i % 8]));
      for (const Direction* direction : {&lower, &upper}) expect_as_modelled(text, *direction, direction->by_tables);
    }
  }
}

TEST(Casing, AsciiNeverCallsTheHost) {
  vxtest::CharacterHost host;
  Bytes text;
  for (uint8_t byte = 0; byte < 0x80; ++byte) text.push_back(byte);
  for (const Direction* direction : {&lower, &upper}) {
    expect_as_modelled(text, *direction, [](uint32_t c) { return c; });
  }
  EXPECT_TRUE(host.asked.empty());
  Bytes with_one = {'a', 0xC3, 0xA9};
  vxzsu8Lower(with_one.data(), 3);
  vxzsu8Upper(with_one.data(), 3);
  const std::vector<vxtest::CharacterHost::Question> expected = {{'l', 0xE9, 1}, {'u', 0xE9, 1}};
  EXPECT_EQ(host.asked, expected);
}

TEST(Casing, NullAndNegativeLengths) {
  uint8_t text[] = {'a', 'B'};
  for (const Direction* direction : {&lower, &upper}) {
    direction->in_place(nullptr, 2);
    direction->in_place(text, -1);
    direction->in_place(text, INT64_MIN);
    int64_t written = -1;
    EXPECT_EQ(direction->into(nullptr, 2, text, 2, &written), 0u);
    EXPECT_EQ(written, 0);
    EXPECT_EQ(direction->into(text, -1, text, 2, &written), 0u);
    EXPECT_EQ(written, 0);
    EXPECT_EQ(direction->into(text, 2, text, INT64_MIN, &written), 0u);
    EXPECT_EQ(written, 2) << "no room: it measures";
  }
  EXPECT_EQ(text[0], 'a');
  EXPECT_EQ(text[1], 'B');
}

}  // namespace
