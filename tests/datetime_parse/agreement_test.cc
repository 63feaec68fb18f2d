// Both flavours over many texts and patterns, and broken UTF-8 in every place.
#include <unicode/utf8.h>

#include <cstdlib>
#include <random>

#include "tests/datetime_parse/both_flavours.h"

namespace vxtest {

namespace {

constexpr const char32_t* pieces[] = {U"%Y", U"%m", U"%d", U"%b", U"%B",  U"%a",        U"%A", U"%H",  U"%I",
                                      U"%M", U"%S", U"%p", U"%z", U"%Z",  U"%q",        U"%V", U"%#d", U"%s",
                                      U"%k", U"%l", U"%u", U"%%", U"%#Y", U"%?y",       U"%",  U"/",   U"-",
                                      U" ",  U":",  U"年", U"Ж",  U"x",   U"\U0001F5D3"};
constexpr const char32_t* words[] = {
    U"2021",   U"1581",   U"20000",      U"99",        U"12",        U"31",     U"7",        U"0",
    U"60",     U"May",    U"mAY",        U"September", U"sep",       U"März",   U"Thursday", U"thu",
    U"AM",     U"pm",     U"+05:30",     U"-1",        U"Zone/East", U"XST",    U"Q3",       U"W53",
    U"Week7",  U"Month7", U"T",          U" ",         U"  ",        U"/",      U"-",        U":",
    U".",      U",",      U"%",          U"年",        U"Ж",         U"ж",      U"x",        U"\U0001F5D3",
    U"\u00A0", U"Ä",      U"2021-03-04", U"12/31/99T", U"10:30:15",  U"1:05 pm"};

template <size_t N>
std::u32string some_of(const char32_t* const (&from)[N], int most, std::mt19937& random) {
  std::u32string text;
  for (auto n = static_cast<int>(random() % static_cast<unsigned>(most + 1)); n > 0; --n) text += from[random() % N];
  return text.substr(0, 60);
}

// The helpers compare the flavours; matches are counted so that the texts are known to reach that far.
TEST(ParseAgreement, SeededTextsAndPatterns) {
  std::mt19937 random(20210304);
  ZonedLocale locale;
  locale.use(U"Zone/West");
  set_name(locale.data.monthNames[2], U"März");
  int walks = 0, dates = 0, times = 0, datetimes = 0;
  for (int i = 0; i < 60000; ++i) {
    const std::u32string pattern = some_of(pieces, 4, random), text = some_of(words, 5, random);
    walks += walk<vxnls::StrictReader>(locale.get(), pattern, text).reason == VX_REASON_NONE;
    walks += walk<vxnls::LenientReader>(locale.get(), pattern, text).reason == VX_REASON_NONE;
    if (i % 100 == 0) {
      set_name(locale.data.datePattern, pattern);
      set_name(locale.data.timePattern, some_of(pieces, 6, random));
      set_name(locale.data.datetimePattern, some_of(pieces, 8, random));
    }
    constexpr uint32_t kinds[] = {0, 1, 4, 5, 8, 16, 32, 64, 128, 256, 12};
    const uint32_t kind = kinds[random() % 11];
    dates += read_date(locale.get(), text, kind).status == 0;
    times += read_time(locale.get(), text, kind).status == 0;
    datetimes += read_datetime(locale.get(), i % 2 == 0 ? text : U"2021-03-04" + text, kind).status == 0;
  }
  EXPECT_GT(walks, 5000);
  EXPECT_GT(dates, 1000);
  EXPECT_GT(times, 1000);
  EXPECT_GT(datetimes, 100);
}

// Texts of all common forms, with a unit taken out, put in or put instead at every place: the helpers hold the search
// that leaves out rows to the one that tries them all.
TEST(ParseAgreement, TextsNearToCommonForms) {
  ZonedLocale locale;
  constexpr std::u32string_view texts[] = {U"03/04/2020",  U"3-4-20",      U"2020.03.04", U"2020/mar/04", U"20-Mar-5",
                                           U"MAR 5 2020",  U"mar/5/20",    U"Mar.5.2020", U"Mar-5-2020",  U"May52020",
                                           U"Thu,Mar5,20", U"Sep 15,2020", U"12/31/99"};
  int read = 0;
  const auto try_all = [&](const std::u32string& text) {
    for (const uint32_t kind : {4u, 5u}) read += read_date(locale.get(), text, kind).status == 0;
    read += read_datetime(locale.get(), text + U" 10:30:15", 4).status == 0;
  };
  for (const char32_t* main : {U"%m/%d/%Y", U"%d.%m.%Y"}) {
    set_name(locale.data.datePattern, main);
    for (const std::u32string_view whole : texts) {
      for (size_t place = 0; place <= whole.size(); ++place) {
        const std::u32string before(whole.substr(0, place)), behind(whole.substr(place));
        if (!behind.empty()) try_all(before + behind.substr(1));
        for (const char32_t unit : U" ,/-.5xM") {
          try_all(before + unit + behind);
          if (!behind.empty()) try_all(before + unit + behind.substr(1));
        }
      }
      if (HasFailure()) return;
    }
  }
  EXPECT_GT(read, 1500);
}

// The steps that need no thought, of every length, cut and damaged at every place: the helpers hold them to the others.
TEST(ParseAgreement, PlainStepsOfEveryLengthWithAFaultAtEveryPlace) {
  std::mt19937 random(60);
  PlainLocale locale;
  constexpr struct {
    const char32_t *pattern, *text;
  } cases[] = {
      {U"%Y-%m-%d %H:%M:%S", U"2021-03-04 10:30:15"},
      {U"%Y%m%d%H%M%S", U"20210304103015"},
      {U"%d.%m.%Y, %I:%M %p", U"04.03.2021, 10:30 PM"},
      {U"%#d/%#m/%#Y T%#H:%#M", U"4/3/2021 T9:5"},
      {U"%m年%d日 %Y (%H)", U"03年04日 2021 (10)"},
      {U"%Y%Y%Y%Y%Y%Y%Y%Y%Y%Y%Y%Y%Y%Y%Y%d%d%d%d%d%d%d%d%d%d%d%d%d%d%d",
       U"202120212021202120212021202120212021202120212021202120212021040404040404040404040404040404"},
  };
  // The last are as far below the digits as a sum of 32 bits goes round to.
  constexpr char32_t faults[] = {U'0', U'9', U'x', U't',   U' ',       U'/',      U':',
                                 U'%', U'é', 0x80, 0xFFFF, 0xFFFFFFD1, 0xFFFFFFD9};
  for (const auto& c : cases) {
    std::u32string whole = c.text;
    while (whole.size() < 300) whole += U"09 /";
    for (size_t length = 0; length <= 300; ++length) {
      for (size_t place = 0; place <= length; ++place) {
        std::u32string text = whole.substr(0, length);
        if (place < length) text[place] = faults[random() % std::size(faults)];
        walk<vxnls::StrictReader>(locale.get(), c.pattern, text);
        walk<vxnls::LenientReader>(locale.get(), c.pattern, text);
        if (HasFailure()) FAIL() << utf8(c.pattern) << " of " << utf8(text);
      }
    }
  }
}

/// All strings of n bytes: what ICU takes for a character is one, of the same length, and nothing else.
void expect_characters_of_icu(int n) {
  GuardedBuffer<uint8_t> buffer(8);
  uint8_t* const text = buffer.at(static_cast<size_t>(n));
  for (uint64_t number = 0; number < uint64_t{1} << 8 * n; ++number) {
    for (int i = 0; i < n; ++i) text[i] = static_cast<uint8_t>(number >> 8 * (n - 1 - i));
    int i = 0;
    UChar32 c;
    U8_NEXT(text, i, n, c);
    const vxnls::Character here = vxnls::character_at(vxnls::Input<vxnls::Utf8Text>{text, n});
    ASSERT_EQ(here.units, c < 0 ? 0 : i) << std::hex << number;
    if (c >= 0) {
      ASSERT_EQ(here.code_point, static_cast<VXChar>(c)) << std::hex << number;
    }
  }
}

TEST(ParseAgreement, CharactersAreThoseOfIcu) {
  for (int n = 1; n <= 3; ++n) expect_characters_of_icu(n);
}

TEST(ParseAgreement, CharactersAreThoseOfIcuInFourBytesInTheLongRun) {
  if (std::getenv("VXNLS_LONG_TESTS") == nullptr) GTEST_SKIP() << "set VXNLS_LONG_TESTS to run it";
  expect_characters_of_icu(4);
}

// A byte that cannot stand in its place, anywhere in what is read, is a refusal; and so is a text cut inside a
// character.
TEST(ParseAgreement, BrokenUtf8IsRefused) {
  PlainLocale locale;
  set_name(locale.data.monthNames[2], U"Mä\u2014\U0001F5D3z");
  set_name(locale.data.monthYearPattern1, U"%B é\u5E74\U0001F5D3%Y");
  const std::string whole = utf8(U"mÄ\u2014\U0001F5D3Z É\u5E74\U0001F5D32021");
  GuardedBuffer<uint8_t> buffer(256);
  const auto status_of = [&](const std::string& text) {
    const auto* const at = buffer.copy(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    uint32_t m = 1, d = 1, y = 1;
    int64_t consumed = -7;
    const VXStatus status =
        NLSBufToDateU(locale.get(), at, static_cast<int64_t>(text.size()), 16, &m, &d, &y, &consumed);
    EXPECT_EQ(consumed != -7, status == 0);
    EXPECT_EQ(m + d + y != 0, status == 0);
    return status;
  };
  ASSERT_EQ(status_of(whole), 0u);
  for (size_t i = 0; i < whole.size(); ++i) {
    if (i < whole.size() - 4) {
      EXPECT_EQ(status_of(whole.substr(0, i)), VX_E_NOMATCH) << "cut at " << i;
    }
    for (int byte = 0x80; byte < 0x100; ++byte) {
      std::string text = whole;
      text.insert(i, 1, static_cast<char>(byte));
      EXPECT_EQ(status_of(text), VX_E_NOMATCH) << byte << " before " << i;
      text.erase(i + 1, 1);
      const bool other_case = (i == 2 && byte == 0xA4) || (i == 13 && byte == 0xA9);
      if (text != whole && !other_case) {
        EXPECT_EQ(status_of(text), VX_E_NOMATCH) << byte << " at " << i;
      }
    }
  }
  // Bytes that a decoder without tests of its own would take for the literal.
  static constexpr struct {
    char32_t literal;
    const char* bytes;
  } cases[] = {
      {0xE9, "\xC3\x29"},       {0xE9, "\xC3\xE9"},
      {0xE9, "\xE0\x83\xA9"},  // wrong tails, overlong
      {0xD800, "\xED\xA0\x80"}, {0x110000, "\xF4\x90\x80\x80"},
      {0xFFFD, "\xFF"},         {0x80, "\x80"},  // no characters
      {0x29, "\xC0\xA9"},
  };
  for (const auto& c : cases) {
    set_name(locale.data.monthYearPattern1, std::u32string(1, c.literal) + U"%m/%Y");
    EXPECT_EQ(status_of(std::string(c.bytes) + "07/2021"), VX_E_NOMATCH)
        << std::hex << static_cast<uint32_t>(c.literal);
  }
}

}  // namespace

}  // namespace vxtest
