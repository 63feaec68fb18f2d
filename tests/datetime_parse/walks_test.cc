// What the directives and literals of a pattern take from a text, in both readers: each number, every name, and every
// pattern of one directive with every modifier and of two, written in both flavours as the model of the formatter says
// and read in both.
#include <unicode/utf8.h>

#include <cstdlib>
#include <random>
#include <regex>
#include <vector>

#include "tests/datetime_format/writer.h"
#include "tests/datetime_parse/reading.h"
#include "tests/support/domain.h"

namespace vxtest {

namespace {

using namespace std::chrono;
using namespace std::string_literals;
using F = VXExplainFields;

/// What a number takes of a text: strictly so many positions, else at most so many digits; empty: it is none.
std::string number_at_front(const std::string& text, size_t width, bool strictly) {
  const size_t first = std::min(text.find_first_not_of(' '), text.size());
  const size_t end = std::min(text.find_first_not_of("0123456789", first), text.size());
  if (strictly) return first < width && end >= std::min(width, text.size()) ? text.substr(0, width) : "";
  return end == first || end - first > width ? "" : text.substr(0, end);
}

enum Readers { strict = 1, lenient, both };

/// Directives of a number: width and range, where the value goes, and what becomes of it first.
struct Number {
  Readers readers;
  uint32_t width;
  const char* letters;
  int32_t minimum, maximum;
  int32_t F::*field = nullptr;
  int32_t (*stored)(int32_t) = [](int32_t v) { return v; };
  int32_t maximum_under_hash = maximum;
};

int32_t midnight_is_0(int32_t v) { return v % 24; }

constexpr Number numbers[] = {
    {both, 2, "mo", 1, 12, &F::month},
    {both, 2, "de", 1, 31, &F::day},
    {both, 2, "M", 0, 59, &F::minute},
    {both, 2, "S", 0, 59, &F::second},
    {both, 3, "s", 0, 999, &F::milliseconds},
    {both, 1, "u", 1, 7},
    {both, 1, "w", 0, 6},
    {strict, 4, "Yy", 1582, 20000, &F::year},
    {strict, 2, "H", 0, 23, &F::hour},
    {strict, 2, "I", 1, 12, &F::hour, [](int32_t v) { return v % 12; }},
    {strict, 2, "k", 0, 23, &F::hour, midnight_is_0, 24},
    {strict, 2, "l", 0, 11, &F::hour},
    {lenient, 4, "YyG", 1582, 20000, &F::year, [](int32_t v) { return v > 99 ? v : v + (v < 60 ? 2000 : 1900); }},
    {lenient, 2, "HI", 0, 23, &F::hour},  // the hour of %I stays as it is, kept on purpose: 12 is 12
    {lenient, 2, "k", 0, 24, &F::hour, midnight_is_0},
    {lenient, 2, "l", 0, 24, &F::hour, [](int32_t v) { return v % 24 == 0 ? 12 : v; }},
    {lenient, 2, "U", 0, 53, &F::week, [](int32_t v) { return 100 + v; }},
    {lenient, 2, "V", 0, 53, &F::week, [](int32_t v) { return 200 + v; }},
    {lenient, 2, "W", 0, 53, &F::week, [](int32_t v) { return 300 + v; }},
};

void expect_number(const Number& d, const std::string& directive, bool leniently, const std::string& text) {
  static PlainLocale locale;
  const bool hash = directive.find('#') != std::string::npos, year = leniently && d.width == 4;
  const bool strictly = leniently ? year && !hash : !hash || d.width == 1;
  // The letter in front keeps the walk from passing over the blanks, which are positions of the number.
  const VXExplanation out = read_by(locale, U'x' + utf32(directive), U'x' + utf32(text), leniently);
  std::string field = number_at_front(text, d.width, strictly);
  const auto value = [&] { return static_cast<int32_t>(std::strtol(field.c_str(), nullptr, 10)); };
  if (value() < d.minimum || value() > (hash ? d.maximum_under_hash : d.maximum)) field.clear();
  if (field.empty() && year) field = number_at_front(text, 2, strictly);
  ASSERT_EQ(out.status == 0, !field.empty()) << directive << " of " << text;
  if (field.empty()) return;
  F fields{};
  fields.offset = VX_NO_OFFSET;
  if (d.field != nullptr) fields.*d.field = d.stored(value());
  ASSERT_EQ(out.consumed, static_cast<int64_t>(1 + field.size())) << directive << " of " << text;
  ASSERT_EQ(std::memcmp(&out.match.fields, &fields, sizeof fields), 0) << directive << " of " << text;
}

TEST(ParseDirectives, NumbersOverTheirRangesAndBeyond) {
  std::vector<std::string> short_texts = {""};  // all of up to three of these characters
  for (size_t i = 0; short_texts[i].size() < 3; ++i) {
    for (const char c : {' ', '0', '1', '2', '3', '4', '5', '6', '7', '8', '9', '/'})
      short_texts.push_back(short_texts[i] + c);
  }
  for (const Number& number : numbers) {
    std::vector<std::string> texts = short_texts;
    for (int32_t value = 0; number.width > 2 && value <= number.maximum + 1; ++value)
      texts.push_back(std::to_string(value) + (value % 2 == 0 ? "/" : ""));
    for (const char letter : std::string_view(number.letters)) {
      for (const std::string modifiers : {"%", "%#", "%?", "%0", "%?0#"}) {
        for (const std::string& text : texts) {
          if ((number.readers & strict) != 0) expect_number(number, modifiers + letter, false, text);
          if ((number.readers & lenient) != 0) expect_number(number, modifiers + letter, true, text);
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(ParseDirectives, OtherLettersRefuse) {
  ZonedLocale locale;
  const std::u32string strictly = U"YymodeHIklMSsuwaAFBCbpzZ%", modifiers = U"#0?";
  for (char32_t letter = 1; letter < 400; ++letter) {
    for (const auto& [letters, leniently] : {std::pair(strictly, false), std::pair(strictly + U"GfqQUVW", true)}) {
      bool is_read = modifiers.find(letter) != modifiers.npos;
      // Something that each known letter would take.
      for (const auto* const text : {U"2020", U"10", U"5", U"Monday", U"May", U"am", U"Q3", U"+02", U"Zone/East", U"%"})
        is_read |= read_by(locale, std::u32string{U'%', letter}, text, leniently).status == 0;
      EXPECT_EQ(is_read, (letters + modifiers).find(letter) != letters.npos) << static_cast<uint32_t>(letter);
    }
  }
}

// Every field with one digit and with two, and the hours that the dial turns into others.
constexpr int32_t moments[][6] = {{2005, 3, 5, 0, 4, 6},
                                  {1999, 11, 25, 13, 45, 56},
                                  {2024, 2, 12, 12, 30, 9},
                                  {1582, 12, 31, 23, 59, 59},
                                  {3999, 10, 10, 9, 10, 10}};

/// The rule: whether what directives with a separator between them write of a moment, behind others that show the whole
/// of it, is read as that moment, whichever that is.
bool comes_back(const std::string& pattern) {
  // What means the same to the formatter and to the strict reader. They do not agree on the list of names (%a, %?A,
  // %?B, %#b), on minute and month (%#m, %?M), second and millisecond (%s); the reader does not take what the formatter
  // makes of the year 2005 (%#Y), of midnight (%k) and of noon (%l). The modifier 0 is the reader's alone. A month in
  // place of the minute does no harm where the minute follows.
  static const std::regex agreed(
      R"((%([YymodeHIMSBbCAFuwpzZ%]|#[odeHIMSkBCAaFuwpZ%]|\?[YymodeHISbCFuwpz%]|\?M(?=[-/ ]?%#?M))[-/ ]?)+)");
  // The name of a zone ends with the text or with a blank, which it takes. Behind %k the formatter takes midnight for
  // 24, and so for an hour past noon. A number of any width ends at what is no digit.
  static const std::regex never(R"(Z.|k.*[Hp]|%#[odeHIMSk]%[#?]?[YymodeHIMSkuw])");
  // PM is twelve hours more than what has been read, and an hour takes the place of what has been read.
  static const std::regex no_hour("[^HIkp]"), right_hour("|.*[Hk]|.*Ip");
  return std::regex_match(pattern, agreed) && !std::regex_search(pattern, never) &&
         std::regex_match(std::regex_replace(pattern, no_hour, ""), right_hour);
}

class EveryPattern : public testing::Test {
 protected:
  EveryPattern() { locale_.use(zone); }

  /// Whether all that a pattern writes of each moment is read, and as that moment.
  bool brings_back(std::u32string_view pattern) {
    bool came_back = true;
    for (const auto& [y, month, d, hour, minute, second] : moments) {
      const auto days = (sys_days{year{y} / month / d} - sys_days{year{1960} / 1 / 1}).count();
      const auto value = static_cast<double>(((days * 24 + hour) * 60 + minute) * 60 + second);
      const auto written = writer_.expect_everywhere(value, pattern);
      if (!written || HasFatalFailure()) return false;  // nor of any other moment
      VXExplanation out;
      read(VX_EXPLAIN_DATE, locale_.get(), *written, 1);
      read(VX_EXPLAIN_DATETIME, locale_.get(), *written, 0);
      read(VX_EXPLAIN_TIME, locale_.get(), *written, 1, &out);
      const auto has = [&](char32_t letter) { return pattern.find(letter) != pattern.npos; };
      const F shown = {
          y, month, d,       hour, minute, second, 0, has('z') ? offset : VX_NO_OFFSET, has('p') ? 1 + hour / 12 : 0,
          0, 0,     has('Z')};
      came_back = came_back && out.status == 0 && out.consumed == static_cast<int64_t>(written->size()) &&
                  std::memcmp(&out.match.fields, &shown, sizeof shown) == 0;
    }
    return came_back;
  }

  /// By itself, and behind directives that show the whole moment.
  void expect_bare_and_framed(const std::u32string& pattern, const std::u32string& separator) {
    brings_back(pattern);
    std::u32string framed;
    for (const char32_t letter : U"YmdHMS"s) framed += U'%' + (letter + separator);
    const bool came_back = brings_back(framed + pattern);
    EXPECT_EQ(came_back, comes_back(utf8(pattern))) << utf8(framed + pattern);
    brought_back_ += came_back;
  }

  static constexpr const char32_t* zone = U"Zone/West";
  static constexpr int32_t offset = -19800;
  ZonedLocale locale_;
  Writer writer_{locale_, zone, offset, 2};
  int brought_back_ = 0;
};

TEST_F(EveryPattern, OfOneDirective) {
  for (char32_t letter = 1; letter < 0x250 && !HasFailure(); ++letter) {
    for (const auto* const percent : {U"%", U"%?", U"%#", U"%0"})
      expect_bare_and_framed(percent + std::u32string(1, letter), U"/");
  }
}

TEST_F(EveryPattern, OfTwoDirectives) {
  std::vector<std::u32string> all = {U"%%"};
  for (char32_t letter = U'A'; letter <= U'z'; letter += letter == U'Z' ? 7 : 1) {
    for (const auto* const percent : {U"%", U"%?", U"%#"}) all.push_back(percent + std::u32string(1, letter));
  }
  for (const auto& first : all) {
    for (const auto& second : all) {
      for (const auto* separator : {U"", U"-", U" "}) expect_bare_and_framed(first + separator + second, separator);
    }
    if (HasFailure()) return;
  }
  EXPECT_GT(brought_back_, 6500);
}

// Patterns of three numbers, and of a date and a time, are written and read without a walk. What stands between the
// numbers may be any character: letters in either case, digits, blanks, "%", none of ASCII.
TEST(ParseSweeps, EveryCharacterBetweenThreeNumbers) {
  const std::u32string forms[][6] = {{U"%d", U"%m", U"%Y", U"07", U"03", U"2024"},
                                     {U"%m", U"%d", U"%Y", U"12", U"31", U"1999"},
                                     {U"%Y", U"%m", U"%d", U"2024", U"02", U"29"},
                                     {U"%H", U"%M", U"%S", U"23", U"59", U"08"},
                                     {U"%d", U"%H", U"%M", U"31", U"23", U"59"}};
  ZonedLocale locale;
  Writer writer{locale};
  int found = 0;
  double value = -11928470400;
  const auto read_all = [&](std::u32string_view text) {
    for (const uint32_t kind : {0u, 1u, 2u, 4u, 5u, 3u}) {
      for (const uint32_t what : {1u, 2u, 3u}) found += read(what, locale.get(), text, kind).consumed >= 0;
    }
  };
  for (const auto& [d1, d2, d3, n1, n2, n3] : forms) {
    for (char32_t c = 0; c < 0x180 && !HasFailure(); ++c) {
      for (const char32_t other : std::u32string{c, U'.', c ^ 0x20, c + 0x100, U'年'}) {
        const std::u32string pattern = d1 + c + d2 + other + d3;
        value += value > 33e9 ? -44e9 : 80221021.5;
        writer.expect_everywhere(value, pattern + c + U"%H:%M:%S");
        writer.expect_everywhere(value, U"%Y/%m/%d" + (other + pattern));
        writer.expect_everywhere(value, pattern);
        for (const char32_t stands : {c, other}) read_all(n1 + c + n2 + stands + n3);
        read_all(n1 + c + n2 + other + n3 + U'7');
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
  constexpr std::u32string_view faults = U"09xt /:%é\x80\xFFFF\xFFFFFFD1\xFFFFFFD9";
  std::u32string years;
  for (int i = 0; i < 15; ++i) years += U"%Y%d";
  for (const auto& [pattern, front] :
       {std::pair<std::u32string, std::u32string>{U"%Y-%m-%d %H:%M:%S", U"2021-03-04 10:30:15"},
        {U"%Y%m%d%H%M%S", U"20210304103015"},
        {U"%m年%d日 %Y (%H)", U"03年04日 2021 (10)"},
        {years, U""}}) {
    std::u32string whole = front;
    while (whole.size() < 300) whole += front.empty() ? U"202104" : U"09 /";
    for (size_t length = 0; length <= 300; ++length) {
      for (size_t place = 0; place <= length && !HasFailure(); ++place) {
        std::u32string text = whole.substr(0, length);
        if (place < length) text[place] = faults[random() % faults.size()];
        for (const bool leniently : {false, true}) read_by(locale, pattern, text, leniently);
      }
    }
  }
}

// All strings of bytes: what ICU takes for a character is one, of the same length, and nothing else.
TEST(ParseSweeps, CharactersAreThoseOfIcu) {
  GuardedBuffer<uint8_t> buffer(8);
  for (int n = 1; n <= (is_long_run() ? 4 : 3); ++n) {
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
  set_name(locale.data.monthYearPattern1, U"%B é\uFFFD\u0080\U0001F5D3%Y");
  const std::string whole = utf8(U"Mä\uFFFD\U0001F5D3z é\uFFFD\u0080\U0001F5D32021");
  GuardedBuffer<uint8_t> memory(256);
  const auto is_read = [&](const std::string& text) {
    const auto* const at = memory.copy(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    uint32_t date[3];
    int64_t consumed = 0;
    VXExplanation out;
    out.size = sizeof out;
    EXPECT_EQ(vxnlsExplain(locale.get(), VX_EXPLAIN_DATE, 16, at, std::ssize(text), &out), 0u);
    EXPECT_EQ(NLSBufToDateU(locale.get(), at, std::ssize(text), 16, &date[0], &date[1], &date[2], &consumed),
              out.status);
    return out.status == 0;
  };
  ASSERT_TRUE(is_read(whole));
  for (size_t i = 0; i < whole.size(); ++i) {
    EXPECT_TRUE(i >= whole.size() - 4 || !is_read(whole.substr(0, i))) << "cut at " << i;
    EXPECT_TRUE(whole[i] == ' ' || !is_read(std::string(whole).erase(i, 1))) << "without that at " << i;
    // Put in, and put instead of U+FFFD.
    for (int byte = 0x80; byte < 0x100; ++byte) {
      EXPECT_FALSE(is_read(std::string(whole).insert(i, 1, static_cast<char>(byte)))) << byte << " at " << i;
      if (byte < 0xF8) continue;
      EXPECT_FALSE(is_read(std::string(whole).replace(i, 3, 1, static_cast<char>(byte)))) << byte << " at " << i;
    }
  }
}

}  // namespace

}  // namespace vxtest
