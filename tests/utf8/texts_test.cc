// Every function that steps through text, measures it or rewrites it, over every string, against models in plain words.
#include <gtest/gtest.h>
#include <unicode/utf16.h>

#include <functional>
#include <map>

#include "tests/support/character_host.h"
#include "tests/unicode/texts.h"
#include "unicode/case_mapping.h"
#include "unicode/text_flavour.h"
#include "utf8/characters.h"
#include "vxnls/unicode.h"
#include "vxnls/utf8.h"

namespace {

using namespace vxtest;
using namespace std::string_view_literals;

int64_t count_characters(std::string_view text, Step step) {
  int64_t count = 0;
  for (; !text.empty(); ++count) text.remove_prefix(next(text, step).size());
  return count;
}

int64_t whole_prefix(std::string_view text) {
  if (text.empty() || static_cast<uint8_t>(text.back()) < 0x80) return length_of(text);
  size_t last = text.size() - 1;
  while (last > 0 && continues(text[last])) --last;
  const std::string_view character = next(text.substr(last), Step::trusting);
  return !begins(text[last]) ? 0 : static_cast<int64_t>(last + (is_whole(character) ? character.size() : 0));
}

int32_t decoded;
int32_t remember(int32_t code_point) { return decoded = code_point; }

bool lengths_are_as_ruled(const uint8_t* counted, int64_t n, const uint8_t* terminated) {
  const std::string_view text(reinterpret_cast<const char*>(terminated), static_cast<size_t>(n));
  const std::string_view to_nul = text.substr(0, text.find('\0'));
  uint8_t valid;
  int64_t characters, length;
  vxzsu8Lengths(terminated, &characters, &length);
  if (UTF8_SLENB(counted, n) != count_characters(text, Step::trusting) ||
      UTF8_BLENB(counted, n) != whole_prefix(text) ||
      UTF8_SLEN(terminated) != count_characters(to_nul, Step::trusting) ||
      UTF8_BLEN(terminated) != whole_prefix(to_nul) || length != length_of(to_nul) ||
      vxzsu8NumChars(counted, n) != count_characters(text, Step::checking) ||
      vxzsu8ByteLength(terminated, count_characters(text, Step::checking)) != n ||
      characters != count_characters(to_nul, Step::checking))
    return false;
  if (n == 0) return true;
  const std::string_view first = next(text, Step::checking);
  // The bytes behind the lead are not looked at closely, but a NUL ends them.
  const auto c = vxnls::Utf8Text::decode(terminated, std::max<int64_t>(length_of(to_nul), 1)).code_point;
  return vxzsu8CharSize(terminated, &valid) == length_of(first) && valid == (is_whole(first) && begins(first[0])) &&
         vxzsu8NextChar(terminated) == terminated + first.size() &&
         vxnls::_VXZSU8IsFunct(terminated, remember) == decoded && decoded == static_cast<int32_t>(c) &&
         vxzsu8IsCombining(terminated) == (c == 0x200C || c == 0x200D);
}

// How many strings of n bytes consist of well-formed characters only: with s1 to s4 characters of one to four bytes
// W(n) = s1 W(n-1) + s2 W(n-2) + s3 W(n-3) + s4 W(n-4), W(0) = 1.
//   Both: s1 = 128, s2 = 30 leads x 64 = 1920.
//   Valid (leads and continuation bytes, vxzsu8CharSize): s3 = 16 x 64 x 64 = 65536, s4 = 5 x 64^3 = 1310720.
//   Legal (isLegalUTF8): s3 = 65536 - 32 x 64 (overlong, E0 80-9F) - 32 x 64 (surrogates, ED A0-BF) = 61440;
//          s4 = 1310720 - 16 x 64 x 64 (overlong, F0 80-8F) = 1245184: after F4 no second byte is refused.
TEST(Lengths, OfEveryString) {
  GuardedBuffer<uint8_t> memory(64);
  int64_t valid[5] = {}, legal[5] = {};
  const auto check = [&](const uint8_t* counted, int64_t n) {
    const std::string terminated(counted, counted + n);
    uint8_t* const text = memory.copy(bytes(terminated), terminated.size() + 1);
    bool all_valid = n <= 4, all_legal = n <= 4;
    for (int64_t at = 0, size = 0; at < n && (all_valid || all_legal); at += size) {
      uint8_t is_valid;
      int64_t good;
      size = vxzsu8CharSize(text + at, &is_valid);
      all_valid = all_valid && is_valid != 0;
      all_legal = all_legal && size == utf8_len(text + at) && isLegalUTF8(text + at, size, &good) != 0;
    }
    if (n <= 4) valid[n] += all_valid, legal[n] += all_legal;
    return lengths_are_as_ruled(counted, n, text);
  };
  expect_of_every_string(0, check);
  const auto expect_counts = [](const int64_t* found, int64_t s3, int64_t s4) {
    int64_t w[5] = {1};
    for (int n = 1; n <= (is_sampled() ? 0 : is_long_run() ? 4 : 3); ++n) {
      w[n] = 128 * w[n - 1] + (n < 2 ? 0 : 1920 * w[n - 2]) + (n < 3 ? 0 : s3 * w[n - 3]) + (n < 4 ? 0 : s4);
      EXPECT_EQ(found[n], w[n]) << n;
    }
  };
  expect_counts(valid, 65536, 1310720), expect_counts(legal, 61440, 1245184);
  expect_of_joined_sequences(check);
}

/// What a text becomes, piece by piece. A room holds whole pieces up to the first that does not fit.
struct Pieces {
  std::string text = {};
  std::vector<size_t> ends = {};
  bool replaced = false;

  void clear() {
    text.clear(), ends.clear();
    replaced = false;
  }
  void put(std::string_view piece) {
    text += piece;
    ends.push_back(text.size());
  }
  void replace() {
    replaced = true;
    put("\uFFFD");
  }
  /// Whether that and nothing else is what `call(out, room, &written)` writes, and tells.
  template <class Call>
  bool are_written(Call call, size_t room, size_t away) const {
    static GuardedBuffer<uint8_t> memory(512);
    uint8_t* const out = memory.at(room, Guard::behind, away);
    std::fill_n(out, room, uint8_t{0xAA});
    int64_t written = -1;
    const VXStatus status = call(out, static_cast<int64_t>(room), &written);
    const auto held = std::upper_bound(ends.begin(), ends.end(), room);
    return status == (held != ends.end() ? VX_E_ROOM
                      : replaced         ? VX_E_SEQUENCE
                                         : 0) &&
           written == (held == ends.begin() ? 0 : static_cast<int64_t>(held[-1])) &&
           std::equal(out, out + written, bytes(text)) &&
           std::count(out + written, out + room, 0xAA) == static_cast<int64_t>(room) - written;
  }
};

bool is_surrogate(std::string_view s) { return s.size() == 3 && s[0] == '\xED' && s[1] > '\x9F'; }

/// The bits of all bytes behind the lead.
uint32_t low_bits(std::string_view s) {
  uint32_t value = 0;
  for (const char byte : s.substr(1)) value = value * 64 + static_cast<uint8_t>(byte) % 64;
  return value;
}

/// The two units of UTF-16, each of them as UTF-8; so, too, for planes 17 to 19. The plane of an overlong sequence less
/// one is put beside A0 unchecked.
std::string surrogates_of(std::string_view s) {
  const uint32_t c = static_cast<uint8_t>(s[0]) % 8u << 18 | low_bits(s);
  std::string high = utf8_of(U16_LEAD(c));
  if (c < 0x10000) high[1] = '\xFF';
  return high + utf8_of(U16_TRAIL(c));
}

void encode(std::string_view text, uint32_t options, Pieces& out) {
  for (; !text.empty(); text.remove_prefix(next(text, Step::checking).size())) {
    const std::string_view s = next(text, Step::checking);
    const bool is_supplementary = s.size() == 4 && begins(s[0]), is_stray = s.size() == 1 && !begins(s[0]);
    if (!is_whole(s) || is_surrogate(s) || is_stray || (is_supplementary && options == 4)) out.replace();
    else if (is_supplementary) out.put(surrogates_of(s));
    else out.put(s[0] == 0 && options % 2 == 1 ? "\xC0\x80"sv : s);
  }
}

void decode(std::string_view text, uint32_t options, Pieces& out) {
  for (; options == 4 && !text.empty(); text.remove_prefix(1)) out.put(text.substr(0, 1));
  std::string_view half;  // a surrogate that waits for another one
  while (!text.empty()) {
    const std::string_view s = next(text, Step::checking), before = half;
    text.remove_prefix(s.size());
    half = is_surrogate(s) && before.empty() ? s : ""sv;
    if (is_surrogate(s)) {  // the order is not checked: each of the two gives its ten low bits
      if (!before.empty()) out.put(utf8_of(0x10000 + ((low_bits(before) & 0x3FF) << 10) + (low_bits(s) & 0x3FF)));
      continue;
    }
    if (!before.empty()) out.replace();
    // What follows a half is copied as it is, unless it is broken.
    if (!is_whole(s) || (before.empty() && s != "\xC0\x80"sv && !begins(s[0]))) out.replace();
    else if (before.empty() && s == "\xC0\x80"sv) options % 2 == 1 ? out.put("\0"sv) : out.replace();
    else out.put(s);
  }
  if (!half.empty()) out.replace();
}

constexpr uint32_t all_options[] = {0, 1, 4, 5};
constexpr struct Coder {
  VXStatus (*call)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*, uint32_t);
  void (*model)(std::string_view, uint32_t, Pieces&);
} encoder = {vxzsu8Encode, encode}, decoder = {vxzsu8Decode, decode};

/// In the room it needs, or in every room up to that and one more.
bool is_as_modelled(const Coder& coder, std::string_view text, uint32_t options, bool every_room) {
  static Pieces pieces;  // whose memory is used again: billions of texts are modelled
  pieces.clear();
  coder.model(text, options, pieces);
  const size_t needed = pieces.text.size(), away = text.empty() || text.back() % 16 == 0 ? 0 : 64;
  const auto call = [&](uint8_t* out, int64_t room, int64_t* written) {
    return coder.call(bytes(text), length_of(text), out, room, written, options);
  };
  for (size_t room = every_room ? 0 : needed; room <= needed + every_room; ++room) {
    if (!pieces.are_written(call, room, away)) return false;
  }
  return true;
}
bool both_are_as_modelled(std::string_view text, uint32_t options, bool every_room) {
  return is_as_modelled(encoder, text, options, every_room) && is_as_modelled(decoder, text, options, every_room);
}
std::string_view view(const uint8_t* in, int64_t n) {
  return {reinterpret_cast<const char*>(in), static_cast<size_t>(n)};
}

TEST(Modified, EveryString) {
  expect_of_every_string(0xC0, [turn = 0u](const uint8_t* in, int64_t n) mutable {
    return both_are_as_modelled(view(in, n), all_options[++turn * 0x9E3779B1u >> 30], false);
  });
  expect_of_joined_sequences([](const uint8_t* in, int64_t n) {
    return std::all_of(std::begin(all_options), std::end(all_options),
                       [&](uint32_t options) { return both_are_as_modelled(view(in, n), options, true); });
  });
}

TEST(Modified, EveryPairOfSurrogatesInBothOrdersAndEveryCodePoint) {
  for (uint32_t first = 0xD800; first < 0xE000; ++first) {
    for (uint32_t second = 0xD800; second < 0xE000 && visited(first); ++second) {
      ASSERT_TRUE(is_as_modelled(decoder, utf8_of(first) + utf8_of(second), first % 2, false))
          << first << ' ' << second;
    }
  }
  for (uint32_t c = 0; c < 0x110000; ++c) {
    if (!visited(c)) continue;
    const std::string plain = utf8_of(c), modified = c < 0x10000 ? plain : surrogates_of(plain);
    for (const uint32_t options : all_options) {
      ASSERT_TRUE(both_are_as_modelled(plain, options, true) && is_as_modelled(decoder, modified, options, true)) << c;
    }
  }
}

struct Direction {
  void (*in_place)(uint8_t*, int64_t);
  VXStatus (*into)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*);
  char first;  // of the letters of ASCII that change, by 0x20
  VXChar (*by_tables)(VXChar);
};
constexpr Direction directions[] = {{vxzsu8Lower, vxzsu8Lower2, 'A', vxnls::lower_by_tables},
                                    {vxzsu8Upper, vxzsu8Upper2, 'a', vxnls::upper_by_tables}};

/// What one character becomes; nothing when it stays.
template <class Mapping>
std::string changed(std::string_view character, const Direction& direction, const Mapping& mapping) {
  const char lead = character[0];
  if (lead >= direction.first && lead < direction.first + 26) return {static_cast<char>(lead ^ 0x20)};
  if (static_cast<uint8_t>(lead) < 0xC0) return {};
  const VXChar c = vxnls::Utf8Text::decode(bytes(character), length_of(character)).code_point;
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
bool is_changed_as_modelled(std::string_view text, const Direction& direction, const Mapping& mapping, size_t room,
                            size_t stride, const Place& place) {
  static GuardedBuffer<uint8_t> memory(512), input(512);
  static Pieces pieces;
  pieces.clear();
  for (std::string_view rest = text; !rest.empty(); rest.remove_prefix(next(rest, Step::trusting).size())) {
    const std::string other = changed(next(rest, Step::trusting), direction, mapping);
    pieces.put(other.empty() ? next(rest, Step::trusting) : other);
  }
  const uint8_t* const in = input.copy(bytes(text), text.size(), place.guard, place.away_in);
  const auto call = [&](uint8_t* out, int64_t most, int64_t* written) {
    return direction.into(in, length_of(text), out, most, written);
  };
  uint8_t* const out = memory.copy(in, text.size(), place.guard, place.away_out);
  direction.in_place(out, length_of(text));
  int64_t measured = -1;
  bool holds = view(out, length_of(text)) == changed_in_place(std::string(text), direction, mapping) &&
               call(nullptr, 99, &measured) == 0 && measured == length_of(pieces.text);
  for (; room <= pieces.text.size() + 1; room += stride) {
    holds = holds && pieces.are_written(call, room, place.away_out);
  }
  return holds;
}

TEST(Casing, EveryStringByTheTables) {
  expect_of_every_string(0xC0, [](const uint8_t* text, int64_t n) {
    const size_t away = text[n - 1] % 16 == 0 ? 0 : 64, room = static_cast<size_t>(n);
    return std::all_of(std::begin(directions), std::end(directions), [&](const Direction& direction) {
      return is_changed_as_modelled(view(text, n), direction, direction.by_tables, room, 9,
                                    {Guard::behind, away, away});
    });
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
    for (const Direction& direction : directions) {
      expect_of_joined_sequences([&](const uint8_t* text, int64_t n) {
        host.asked.clear();
        // One-byte characters are no matter of the host, which is told that texts are being changed.
        const bool has_lead = std::any_of(text, text + n, [](uint8_t byte) { return byte >= 0xC0; });
        return is_changed_as_modelled(view(text, n), direction, mapping, 1, 1, {Guard::behind, 0, 0}) &&
               (has_lead || host.asked.empty()) &&
               std::all_of(host.asked.begin(), host.asked.end(), [](const auto& asked) { return asked.argument == 1; });
      });
    }
  }
}

TEST(Runs, EveryVariantGivesWhatStepsGive) {
  static constexpr char faults[] = {'\0',   'A',    'z',    '\x80', '\xBF', '\xC0',
                                    '\xC3', '\xE2', '\xF1', '\xF7', '\xF8', '\xFF'};
  std::mt19937 random(41);
  GuardedBuffer<uint8_t> input(400);
  const auto byte = [&] { return std::string(1, faults[random() % std::size(faults)]); };
  expect_of_every_place(random, 1, utf8_of, byte, [&](const std::string& text, const Place& place) {
    const Direction& direction = directions[random() % 2];
    const uint8_t* const in = input.copy(bytes(text), text.size(), place.guard, place.away_in);
    return vxzsu8NumChars(in, length_of(text)) == count_characters(text, Step::checking) &&
           is_changed_as_modelled(text, direction, direction.by_tables, 1 + random() % (text.size() + 1),
                                  text.size() + 2, place);
  });
  // Counts that do not fit into a byte.
  for (const std::string_view character : {"a", "\x80", "\u00E9", "\u20AC", "\U0001F600", "\xF8\x80\x80\x80\x80"}) {
    std::string text;
    while (text.size() < 100'000) text += character;
    EXPECT_EQ(vxzsu8NumChars(bytes(text), length_of(text)), count_characters(text, Step::checking)) << character;
  }
}

}  // namespace
