// Modified UTF-8 both ways, against a model that knows whole sequences: what each of them becomes.
#include <gtest/gtest.h>
#include <unicode/utf16.h>

#include "tests/utf8/rules.h"
#include "vxnls/utf8.h"

namespace {

using namespace vxtest;
using namespace std::string_view_literals;
using Coder = VXStatus (*)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*, uint32_t);

constexpr uint32_t all_options[] = {0, 1, 4, 5};

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

/// In the room it needs, or in every room up to that and one more.
bool is_as_modelled(Coder coder, const uint8_t* in, int64_t n, uint32_t options, bool every_room) {
  static Pieces model;
  model.clear();
  const std::string_view text(reinterpret_cast<const char*>(in), static_cast<size_t>(n));
  if (coder == vxzsu8Encode) encode(text, options, model);
  else if (options != 4) decode(text, options, model);
  else std::for_each(text.begin(), text.end(), [](const char& byte) { model.put({&byte, 1}); });
  const auto call = [&](uint8_t* out, int64_t room, int64_t* written) {
    return coder(in, n, out, room, written, options);
  };
  const size_t needed = model.text.size(), away = n == 0 || in[n - 1] % 16 == 0 ? 0 : 64;
  for (size_t room = every_room ? 0 : needed; room <= needed + every_room; ++room) {
    if (!model.are_written(call, room, away)) return false;
  }
  return true;
}

bool both_are_as_modelled(const uint8_t* in, int64_t n, uint32_t options, bool every_room) {
  return is_as_modelled(vxzsu8Encode, in, n, options, every_room) &&
         is_as_modelled(vxzsu8Decode, in, n, options, every_room);
}

TEST(Modified, EveryString) {
  expect_of_every_string(0xC0, [turn = 0u](const uint8_t* in, int64_t n) mutable {
    return both_are_as_modelled(in, n, all_options[++turn * 0x9E3779B1u >> 30], false);
  });
  expect_of_joined_sequences([](const uint8_t* in, int64_t n) {
    return std::all_of(std::begin(all_options), std::end(all_options),
                       [&](uint32_t options) { return both_are_as_modelled(in, n, options, true); });
  });
}

TEST(Modified, EveryPairOfSurrogatesInBothOrders) {
  for (uint32_t first = 0xD800; first < 0xE000; ++first) {
    if (!visited(first)) continue;
    for (uint32_t second = 0xD800; second < 0xE000; ++second) {
      const std::string text = utf8_of(first) + utf8_of(second);
      ASSERT_TRUE(is_as_modelled(vxzsu8Decode, bytes(text), 6, first % 2, false)) << std::hex << first << ' ' << second;
    }
  }
}

TEST(Modified, EveryCodePointThereAndBack) {
  for (uint32_t c = 0; c < 0x110000; ++c) {
    if (!visited(c)) continue;
    const std::string plain = utf8_of(c);
    const std::string modified = c < 0x10000 ? plain : surrogates_of(plain);
    for (const uint32_t options : all_options) {
      ASSERT_TRUE(both_are_as_modelled(bytes(plain), length_of(plain), options, true) &&
                  is_as_modelled(vxzsu8Decode, bytes(modified), length_of(modified), options, true))
          << std::hex << c << ' ' << options;
    }
  }
}

}  // namespace
