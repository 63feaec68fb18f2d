// Whole domains of UTF-8 text, for the tests that hold a function to its rule over all of them.
#ifndef VXNLS_TESTS_UNICODE_TEXTS_H
#define VXNLS_TESTS_UNICODE_TEXTS_H

#include <gtest/gtest.h>
#include <unicode/utf8.h>

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
  constexpr std::string_view all =
      "|\0|Aq|\u00E9|\u023A|\u03B1|\u20AC|\u212A |\U00010400|\U00010428|\xF4\x8F\xBF\xBF|\x80|\xC3|\xC0|\xC0\x80|"
      "\xC1\x81|\xE2\x82|\xE0\x80\x80|\xED\x9F\xBF|\xED\xA0|\xED\xA0\xBD|\xED\xB8\x80|\xF0\x9F\x98|"
      "\xF0\x80\x80\x80|\xF4\xBF\xBF\xBF|\xF5\x80\x80\x80|\xF7\xBF|\xF8\x80\x80\x80\x80|\xFB\xBF\xBF|"
      "\xFD\xBF\xBF\xBF\xBF\xBF|\xFF|"sv;
  std::vector<std::string_view> kinds;
  for (size_t at = 0, end; (end = all.find('|', at)) != all.npos; at = end + 1) {
    kinds.push_back(all.substr(at, end - at));
  }
  GuardedBuffer<uint8_t> memory(64);
  for (const std::string_view a : kinds) {
    for (const std::string_view b : kinds) {
      for (const std::string_view c : kinds) {
        const std::string text = std::string(a).append(b).append(c);
        ASSERT_TRUE(holds(memory.copy(bytes(text), text.size()), length_of(text))) << testing::PrintToString(text);
      }
    }
  }
}

}  // namespace vxtest

#endif
