// Upper and lower case against a model that takes one character at a time, and whole blocks against single steps.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>

#include "tests/support/character_host.h"
#include "tests/utf8/rules.h"
#include "unicode/case_mapping.h"
#include "utf8/runs.h"
#include "vxnls/utf8.h"

namespace {

using namespace vxtest;
using namespace vxnls;

struct Direction {
  void (*in_place)(uint8_t*, int64_t);
  VXStatus (*into)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*);
  char first;  // of the letters of ASCII that change, by 0x20
  VXChar (*by_tables)(VXChar);
  int64_t (*Utf8Runs::*run)(const uint8_t*, int64_t, uint8_t*);
};
constexpr Direction lower = {vxzsu8Lower, vxzsu8Lower2, 'A', lower_by_tables, &Utf8Runs::lower};
constexpr Direction upper = {vxzsu8Upper, vxzsu8Upper2, 'a', upper_by_tables, &Utf8Runs::upper};
constexpr const Direction* directions[] = {&lower, &upper};

/// What one character becomes; nothing when it stays.
template <class Mapping>
std::string changed(std::string_view character, const Direction& direction, const Mapping& mapping) {
  const char lead = character[0];
  if (lead >= direction.first && lead < direction.first + 26) return {static_cast<char>(lead ^ 0x20)};
  if (static_cast<uint8_t>(lead) < 0xC0) return {};
  uint32_t c = 0xFFFD;
  if (begins(lead) && is_whole(character)) {
    c = static_cast<uint8_t>(lead) & (0x7Fu >> character.size());
    for (const char byte : character.substr(1)) c = c << 6 | (static_cast<uint8_t>(byte) & 0x3Fu);
  }
  return mapping(c) == c ? std::string() : utf8_of(mapping(c));
}

/// What a character becomes is written before the next one is read; what has grown and does not fit any more is left
/// out.
template <class Mapping>
std::string changed_in_place(std::string text, const Direction& direction, const Mapping& mapping) {
  size_t write = 0;
  for (size_t read = 0; read < text.size();) {
    const std::string character(next(std::string_view(text).substr(read), Step::trusting));
    const std::string other = changed(character, direction, mapping);
    read += character.size();
    const std::string piece = other.empty() ? character.substr(0, text.size() - write) : other;
    if (write + piece.size() > text.size()) continue;
    text.replace(write, piece.size(), piece);
    write += piece.size();
  }
  return text.replace(write, text.npos, text.size() - write, ' ');
}

/// In place, measured, and in `room`, `room + stride` and so on up to one more than is needed.
template <class Mapping>
bool is_as_modelled(const uint8_t* in, int64_t n, const Direction& direction, const Mapping& mapping, size_t room,
                    size_t stride, size_t away = 0) {
  static GuardedBuffer<uint8_t> memory(512);
  static Pieces model;
  model.clear();
  const std::string text(in, in + n);
  for (std::string_view rest = text; !rest.empty(); rest.remove_prefix(next(rest, Step::trusting).size())) {
    const std::string other = changed(next(rest, Step::trusting), direction, mapping);
    model.put(other.empty() ? next(rest, Step::trusting) : other);
  }
  const auto call = [&](uint8_t* out, int64_t most, int64_t* written) {
    return direction.into(in, n, out, most, written);
  };
  uint8_t* const place = memory.copy(in, text.size(), Guard::behind, away);
  direction.in_place(place, n);
  int64_t measured = -1;
  bool holds = std::string(place, place + n) == changed_in_place(text, direction, mapping) &&
               call(nullptr, 99, &measured) == 0 && measured == length_of(model.text);
  for (; room <= model.text.size() + 1; room += stride) holds = holds && model.are_written(call, room, away);
  return holds;
}

TEST(Casing, EveryStringByTheTables) {
  expect_of_every_string(0xC0, [](const uint8_t* text, int64_t n) {
    const auto away = text[n - 1] % 16 == 0 ? size_t{0} : size_t{64}, room = static_cast<size_t>(n);
    return is_as_modelled(text, n, lower, lower_by_tables, room, 9, away) &&
           is_as_modelled(text, n, upper, upper_by_tables, room, 9, away);
  });
}

// What grows, shrinks, and stays; and a host that changes what stands for bytes that are no character.
TEST(Casing, JoinedSequencesByAHost) {
  const std::map<uint32_t, uint32_t> strange = {{0x23A, 0x2C65},    {0x212A, 'k'},  {0xE9, 0xC9},
                                                {0x10400, 0x10428}, {0x10428, 'x'}, {0x3B1, 0x1F600}};
  const std::function<uint32_t(uint32_t)> mappings[] = {
      [&](uint32_t c) { return strange.contains(c) ? strange.at(c) : c; },
      [](uint32_t c) { return c == 0xFFFD ? uint32_t{'?'} : c; }};
  for (const auto& mapping : mappings) {
    CharacterHost host;
    host.lower = host.upper = mapping;
    for (const Direction* direction : directions) {
      expect_of_joined_sequences([&](const uint8_t* text, int64_t n) {
        host.asked.clear();
        // One-byte characters are no matter of the host, which is told that texts are being changed.
        const bool has_lead = std::any_of(text, text + n, [](uint8_t byte) { return byte >= 0xC0; });
        return is_as_modelled(text, n, *direction, mapping, 1, 1) && (has_lead || host.asked.empty()) &&
               std::all_of(host.asked.begin(), host.asked.end(), [](const auto& asked) { return asked.argument == 1; });
      });
    }
  }
}

std::vector<const Utf8Runs*> variants() {
  std::vector<const Utf8Runs*> all = {&generic_utf8_runs};
#if VXNLS_HAS_AVX2_VARIANTS
  if (processor_has_avx2()) all.push_back(&avx2_utf8_runs);
#endif
  return all;
}

/// Text of nothing but leads and what they announce, up to `longest` bytes each; or of anything below C0.
std::string text_of(std::mt19937& random, size_t longest, size_t length) {
  static constexpr uint8_t leads[] = {0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0xFF};
  const size_t density = 1 + random() % 40;
  std::string text;
  while (text.size() < length) {
    const size_t more = random() % density != 0 ? 0 : random() % std::max<size_t>(longest, 1);
    const unsigned first = more == 0 ? 0 : leads[more - 1],
                   behind = more == 0 ? (longest == 0 ? 0xC0 : 0x80) : leads[more];
    text += static_cast<char>(first + random() % (behind - first));
    for (size_t i = 0; i < more; ++i) text += static_cast<char>(0x80 + random() % 0x40);
  }
  return text;
}

// Before or behind a page that may not be touched, or away from it to be aligned otherwise; with a fault at every
// place, often in the long run.
TEST(Runs, EveryVariantGivesWhatStepsGive) {
  static constexpr uint8_t faults[] = {0x00, 'A', 'z', 0x80, 0xBF, 0xC0, 0xC3, 0xE2, 0xF1, 0xF7, 0xF8, 0xFF};
  std::mt19937 random(41);
  GuardedBuffer<uint8_t> input(400), output(400);
  for (size_t length = 0; length <= 300; ++length) {
    for (size_t turn = 0, rounds = is_long_run() ? 64 : 1; turn < rounds * (length + 1); ++turn) {
      std::string text = text_of(random, random() % 7, length).substr(0, length);
      if (turn / rounds < length) text[turn / rounds] = static_cast<char>(faults[random() % std::size(faults)]);
      const Guard guard = random() % 2 != 0 ? Guard::behind : Guard::before;
      const size_t away = random() % 3 == 0 ? random() % 64 : 0, away_out = random() % 3 == 0 ? random() % 64 : 0;
      uint8_t* const in = input.copy(bytes(text), length, guard, away);
      const auto n = static_cast<int64_t>(length);
      SCOPED_TRACE(testing::Message() << "length " << length << " turn " << turn);
      ASSERT_EQ(vxzsu8NumChars(in, n), count_characters(text, Step::checking));
      for (const Direction* direction : directions) {
        const size_t room = 1 + random() % (length + 1);
        ASSERT_TRUE(is_as_modelled(in, n, *direction, direction->by_tables, room, length + 2, away_out));
        for (const Utf8Runs* const variant : variants()) {
          ASSERT_EQ(count_by_runs({in, n}, *variant), count_characters(text, Step::checking));
          for (const bool in_place : {true, false}) {
            uint8_t* const from = input.copy(bytes(text), length, guard, away);
            uint8_t* const out = in_place ? from : output.copy(from, length, guard, away_out);
            const auto done = static_cast<size_t>((variant->*direction->run)(from, n, out));
            std::string expected = text;  // changed up to the first lead, or less
            for (size_t i = 0; i < done; ++i) {
              ASSERT_LT(bytes(text)[i], 0xC0);
              const std::string other = changed(text.substr(i, 1), *direction, direction->by_tables);
              if (!other.empty()) expected[i] = other[0];
            }
            ASSERT_EQ(std::string(out, out + n), expected);
          }
        }
      }
    }
  }
}

TEST(Runs, CountsThatDoNotFitIntoAByte) {
  std::mt19937 random(42);
  for (size_t longest = 0; longest <= 6; ++longest) {
    const std::string text = text_of(random, longest, 100'000);
    EXPECT_EQ(vxzsu8NumChars(bytes(text), length_of(text)), count_characters(text, Step::checking)) << longest;
  }
}

}  // namespace
