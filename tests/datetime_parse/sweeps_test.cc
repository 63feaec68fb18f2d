// Texts by the ten thousand, for the reader to agree with itself: both flavours, the quick way and step by step.
#include <unicode/utf8.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "tests/datetime_parse/reading.h"

namespace vxtest {

namespace {

using namespace std::string_view_literals;

/// Makes a pattern the one of everything.
void use(ZonedLocale& locale, std::u32string_view pattern) {
  VXLocaleData& data = locale.data;
  for (NLSName* name : {&data.datePattern, &data.datePattern1, &data.datePattern2, &data.timePattern,
                        &data.timePattern1, &data.datetimePattern}) {
    set_name(*name, pattern);
  }
}

int read_all(ZonedLocale& locale, std::u32string_view text) {
  int found = 0;
  for (const uint32_t kind : {0u, 1u, 2u, 4u, 5u, 3u}) {
    for (const uint32_t what : {1u, 2u, 3u}) found += read(what, locale.get(), text, kind).consumed >= 0;
  }
  return found;
}

// Patterns of three numbers are read without a walk. What stands between the numbers may be any character: letters in
// either case, digits, blanks, "%", none of ASCII.
TEST(ParseSweeps, EveryCharacterBetweenThreeNumbers) {
  const std::u32string forms[][6] = {{U"%d", U"%m", U"%Y", U"07", U"03", U"2024"},
                                     {U"%m", U"%d", U"%Y", U"12", U"31", U"1999"},
                                     {U"%Y", U"%m", U"%d", U"2024", U"02", U"29"},
                                     {U"%H", U"%M", U"%S", U"23", U"59", U"08"}};
  ZonedLocale locale;
  int found = 0;
  for (const auto& [d1, d2, d3, n1, n2, n3] : forms) {
    for (char32_t c = 0; c < 0x180 && !HasFailure(); ++c) {
      for (const char32_t other : std::u32string{c, U'.', c ^ 0x20, c + 0x100, U'年'}) {
        use(locale, d1 + c + d2 + other + d3);
        for (const char32_t stands : {c, other}) found += read_all(locale, n1 + c + n2 + stands + n3);
        found += read_all(locale, n1 + c + n2 + other + n3 + U'7');
      }
    }
  }
  EXPECT_GT(found, 20000);
}

// The steps that need no thought, at every length, with a fault at every place.
TEST(ParseSweeps, PlainStepsOfEveryLength) {
  std::mt19937 random(60);
  ZonedLocale locale;
  // The last are as far below the digits as a sum of 32 bits goes round to.
  constexpr char32_t faults[] = {U'0', U'9', U'x', U't',   U' ',       U'/',      U':',
                                 U'%', U'é', 0x80, 0xFFFF, 0xFFFFFFD1, 0xFFFFFFD9};
  std::pair<std::u32string, std::u32string> forms[] = {{U"%Y-%m-%d %H:%M:%S", U"2021-03-04 10:30:15"},
                                                       {U"%Y%m%d%H%M%S", U"20210304103015"},
                                                       {U"%m年%d日 %Y (%H)", U"03年04日 2021 (10)"},
                                                       {U"", U""}};
  for (int i = 0; i < 15; ++i) forms[3].first += U"%Y%d", forms[3].second += U"202104";
  for (auto& [pattern, whole] : forms) {
    while (whole.size() < 300) whole += U"09 /";
    for (size_t length = 0; length <= 300; ++length) {
      for (size_t place = 0; place <= length && !HasFailure(); ++place) {
        std::u32string text = whole.substr(0, length);
        if (place < length) text[place] = faults[random() % std::size(faults)];
        for (const bool lenient : {false, true}) read_by(locale, pattern, text, lenient);
      }
    }
  }
}

// All strings of bytes: what ICU takes for a character is one, of the same length, and nothing else.
TEST(ParseSweeps, CharactersAreThoseOfIcu) {
  GuardedBuffer<uint8_t> buffer(8);
  for (int n = 1; n <= (std::getenv("VXNLS_LONG_TESTS") != nullptr ? 4 : 3); ++n) {
    uint8_t* const text = buffer.at(static_cast<size_t>(n));
    for (uint64_t number = 0; number < uint64_t{1} << 8 * n; ++number) {
      for (int i = 0; i < n; ++i) text[i] = static_cast<uint8_t>(number >> 8 * (n - 1 - i));
      int i = 0;
      UChar32 c;
      U8_NEXT(text, i, n, c);
      const vxnls::Character here = vxnls::character_at(vxnls::Input<vxnls::Utf8Text>{text, n});
      ASSERT_EQ(here.units, c < 0 ? 0 : i) << std::hex << number;
      ASSERT_TRUE(c < 0 || here.code_point == static_cast<VXChar>(c)) << std::hex << number;
    }
  }
}

// A byte that cannot stand in its place, anywhere in what is read, is a refusal that is told; and so is a text cut
// inside a character, and what would be taken for U+FFFD.
TEST(ParseSweeps, BrokenUtf8IsRefused) {
  ZonedLocale locale;
  set_name(locale.data.monthNames[2], U"Mä\uFFFD\U0001F5D3z");
  set_name(locale.data.monthYearPattern1, U"%B é\uFFFD\U0001F5D3%Y");
  const std::string whole = utf8(U"Mä\uFFFD\U0001F5D3z é\uFFFD\U0001F5D32021");
  const auto is_read = [&](const std::string& text) {
    static GuardedBuffer<uint8_t> memory(256);
    const auto* const at = memory.copy(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    uint32_t m = 0, d = 0, y = 0;
    int64_t consumed = 0;
    VXExplanation out;
    out.size = sizeof out;
    const auto length = static_cast<int64_t>(text.size());
    EXPECT_EQ(vxnlsExplain(locale.get(), VX_EXPLAIN_DATE, 16, at, length, &out), 0u);
    EXPECT_EQ(NLSBufToDateU(locale.get(), at, length, 16, &m, &d, &y, &consumed), out.status);
    return out.status == 0;
  };
  ASSERT_TRUE(is_read(whole));
  for (size_t i = 0; i < whole.size(); ++i) {
    EXPECT_TRUE(i >= whole.size() - 4 || !is_read(whole.substr(0, i))) << "cut at " << i;
    // Put in, and put instead of U+FFFD.
    for (const auto& [taken, first] : {std::pair(0u, 0x80), std::pair(3u, 0xF8)}) {
      for (int byte = first; byte < 0x100; ++byte) {
        EXPECT_FALSE(is_read(std::string(whole).replace(i, taken, 1, static_cast<char>(byte)))) << byte << " at " << i;
      }
    }
  }
}

}  // namespace

}  // namespace vxtest
