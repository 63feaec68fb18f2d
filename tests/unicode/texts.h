// UTF-8 in plain words, and whole domains of text, for the tests that hold a function to its rule over all of them.
#ifndef VXNLS_TESTS_UNICODE_TEXTS_H
#define VXNLS_TESTS_UNICODE_TEXTS_H

#include <gtest/gtest.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <bit>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/domain.h"
#include "tests/support/guard_page.h"

namespace vxtest {

inline const uint8_t* bytes(std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); }
inline int64_t length_of(std::string_view text) { return static_cast<int64_t>(text.size()); }

/// As ICU spells it, surrogates too.
inline std::string utf8_of(uint32_t c) {
  std::string text(4, '\0');
  size_t n = 0;
  U8_APPEND_UNSAFE(text, n, c);
  text.resize(n);
  return text;
}

/// The bytes that a lead announces, and whether there is a character that begins with it.
inline size_t announced(char lead) {
  const auto ones = static_cast<size_t>(std::countl_one(static_cast<uint8_t>(lead)));
  return ones < 2 ? 1 : std::min<size_t>(ones, 6);
}
inline bool continues(char byte) { return std::countl_one(static_cast<uint8_t>(byte)) == 1; }
inline bool begins(char lead) {
  const auto byte = static_cast<uint8_t>(lead);
  return byte < 0x80 || (byte > 0xC1 && byte < 0xF5);
}

enum class Step { trusting, checking };

/// The first character of a text that is not empty.
inline std::string_view next(std::string_view text, Step step) {
  const size_t most = std::min(announced(text[0]), text.size());
  size_t n = 1;
  while (n < most && (step == Step::trusting || continues(text[n]))) ++n;
  return text.substr(0, n);
}
inline bool is_whole(std::string_view character) { return character.size() == announced(character[0]); }

/// `holds(text, n)` for every string of one to three bytes; for all of four that begin with `lowest` or more in the
/// long run, otherwise for one of each 256 in a row and for every code point. One in 16 touches a page that may not be
/// touched itself, which slows the C library down.
template <class Holds>
void expect_of_every_string(uint64_t lowest, Holds holds) {
  GuardedBuffer<uint8_t> memory(128);
  const auto check = [&](uint64_t number, int64_t n) {
    uint8_t* const text = memory.at(static_cast<size_t>(n), Guard::behind, number % 16 == 0 ? 0 : 64);
    for (int64_t i = 0; i < n; ++i) text[i] = static_cast<uint8_t>(number >> 8 * (n - 1 - i));
    return holds(text, n);
  };
  for (int64_t n = 1; n <= 3; ++n) {
    for (uint64_t number = 0; number < uint64_t{1} << 8 * n; ++number) {
      ASSERT_TRUE(!visited(number) || check(number, n)) << n << " bytes " << std::hex << number;
    }
  }
  const bool all = is_long_run();
  for (uint64_t number = lowest << 24; number < uint64_t{1} << 32; number += all ? 1 : 256) {
    const uint64_t jump = all ? 0 : static_cast<uint32_t>(number * 0x9E3779B1u) >> 24;
    ASSERT_TRUE(!visited(number >> 8) || check(number + jump, 4)) << std::hex << number + jump;
  }
  for (uint64_t c = 0x10000; c < 0x110000 && !all; ++c) {
    const uint64_t number = 0xF0808080 | c >> 18 << 24 | (c >> 12 & 63) << 16 | (c >> 6 & 63) << 8 | (c & 63);
    ASSERT_TRUE(!visited(c) || check(number, 4)) << std::hex << c;
  }
}

/// `holds(text, n)` for sequences of every kind beside each other, three at a time, before such a page.
template <class Holds>
void expect_of_joined_sequences(Holds holds) {
  using namespace std::string_view_literals;
  // Characters, those with a case of another length among them; then overlong, broken, surrogates, past the end.
  std::istringstream all(std::string(
      "|\0|Aq|\u00E9|\u023A|\u03B1|\u20AC|\u212A |\U00010400|\U00010428|\xF4\x8F\xBF\xBF|\x80|\xC3|\xC0|\xC0\x80|"
      "\xC1\x81|\xE2\x82|\xE0\x80\x80|\xED\x9F\xBF|\xED\xA0|\xED\xA0\xBD|\xED\xB8\x80|\xF0\x9F\x98|"
      "\xF0\x80\x80\x80|\xF4\xBF\xBF\xBF|\xF5\x80\x80\x80|\xF7\xBF|\xF8\x80\x80\x80\x80|\xFB\xBF\xBF|"
      "\xFD\xBF\xBF\xBF\xBF\xBF|\xFF"sv));
  std::vector<std::string> kinds;
  for (std::string kind; std::getline(all, kind, '|');) kinds.push_back(kind);
  GuardedBuffer<uint8_t> memory(64);
  for (const std::string& a : kinds) {
    for (const std::string& b : kinds) {
      for (const std::string& c : kinds) {
        const std::string text = std::string(a).append(b).append(c);
        ASSERT_TRUE(holds(memory.copy(bytes(text), text.size()), length_of(text))) << testing::PrintToString(text);
      }
    }
  }
}

/// Where text and output lie: before or behind a page that may not be touched, or a little away from it, in order to be
/// aligned otherwise.
struct Place {
  Guard guard = Guard::behind;
  size_t away_in = 64, away_out = 64;
};

/// `holds(text, place)` for texts of every number of units up to 300, and in each with a fault at every place, often in
/// the long run. The texts are of characters that take 1, 2, 3 or 4 bytes of UTF-8, of ASCII with few and with many
/// others, of all; then of nothing but the first or the last character of a length.
template <class Spelled, class Fault, class Holds>
void expect_of_every_place(std::mt19937& random, size_t unit, Spelled spelled, Fault fault, Holds holds) {
  static constexpr uint32_t first[] = {0, 0x80, 0x800, 0x10000}, last[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
  constexpr size_t longest = 300;
  const auto below = [&](size_t end) { return random() % end; };
  std::vector<std::string> texts(15);
  for (size_t kind = 0; kind < texts.size(); ++kind) {
    while (texts[kind].size() < unit * longest) {
      const bool ascii = (kind == 4 && below(50) != 0) || (kind == 5 && below(6) != 0);
      const size_t units = ascii ? 0 : kind < 4 ? kind : below(4);
      const uint32_t c = first[units] + static_cast<uint32_t>(below(last[units] - first[units] + 1));
      texts[kind] += spelled(kind < 7 ? c : kind < 11 ? first[kind - 7] : last[kind - 11]);
    }
    texts[kind].resize(unit * longest);
  }
  const auto away = [&] { return below(3) != 0 ? 0 : below(64); };
  for (size_t count = 0; count <= longest; ++count) {
    for (size_t turn = 0, rounds = is_long_run() ? 64 : 2; turn < rounds * (count + 1); ++turn) {
      std::string text = texts[below(texts.size())].substr(0, unit * count + (count < longest ? below(unit) : 0));
      if (turn / rounds < count) fault().copy(&text[turn / rounds * unit], unit);
      const Place place = {below(2) != 0 ? Guard::behind : Guard::before, away(), away()};
      ASSERT_TRUE(holds(text, place)) << testing::PrintToString(text);
    }
  }
}

}  // namespace vxtest

#endif
