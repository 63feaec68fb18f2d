// What each directive and literal of a pattern takes from a text, in both readers.
#include <algorithm>
#include <cstdlib>
#include <span>
#include <vector>

#include "tests/datetime_parse/reading.h"

namespace vxtest {

namespace {

using F = VXExplainFields;

/// What a number of `width` positions takes, by cutting it out and looking at it as a whole; empty: it is none.
std::string strict_model(const std::string& text, size_t width) {
  const std::string field = text.substr(0, width);
  const size_t first = std::min(field.find_first_not_of(' '), field.size());
  const bool good = first < width && field.find_first_not_of("0123456789", first) == std::string::npos;
  return good ? field : "";
}

/// What a number of at most `width` digits takes.
std::string lenient_model(const std::string& text, size_t width) {
  const size_t first = std::min(text.find_first_not_of(' '), text.size());
  const size_t end = std::min(text.find_first_not_of("0123456789", first), text.size());
  return end == first || end - first > width ? "" : text.substr(0, end);
}

/// Directives of a number: width and range, where the value goes, and what becomes of it first.
struct Number {
  enum { strict = 1, lenient, both } readers;
  const char* letters;
  size_t width;
  int32_t minimum, maximum;
  int32_t F::*field = nullptr;
  int32_t (*stored)(int32_t) = [](int32_t v) { return v; };
  int32_t maximum_under_hash = maximum;
};

int32_t midnight_is_0(int32_t v) { return v % 24; }

constexpr Number numbers[] = {
    {Number::both, "mo", 2, 1, 12, &F::month},
    {Number::both, "de", 2, 1, 31, &F::day},
    {Number::both, "M", 2, 0, 59, &F::minute},
    {Number::both, "S", 2, 0, 59, &F::second},
    {Number::both, "s", 3, 0, 999, &F::milliseconds},
    {Number::both, "u", 1, 1, 7},
    {Number::both, "w", 1, 0, 6},
    {Number::strict, "Yy", 4, 1582, 20000, &F::year},
    {Number::strict, "H", 2, 0, 23, &F::hour},
    {Number::strict, "I", 2, 1, 12, &F::hour, [](int32_t v) { return v % 12; }},
    {Number::strict, "k", 2, 0, 23, &F::hour, midnight_is_0, 24},
    {Number::strict, "l", 2, 0, 11, &F::hour},
    {Number::lenient, "YyG", 4, 1582, 20000, &F::year,
     [](int32_t v) { return v > 99 ? v : v + (v < 60 ? 2000 : 1900); }},
    {Number::lenient, "HI", 2, 0, 23, &F::hour},  // the hour of %I stays as it is, kept on purpose: 12 is 12
    {Number::lenient, "k", 2, 0, 24, &F::hour, midnight_is_0},
    {Number::lenient, "l", 2, 0, 24, &F::hour, [](int32_t v) { return v % 24 == 0 ? 12 : v; }},
    {Number::lenient, "U", 2, 0, 53, &F::week, [](int32_t v) { return 100 + v; }},
    {Number::lenient, "V", 2, 0, 53, &F::week, [](int32_t v) { return 200 + v; }},
    {Number::lenient, "W", 2, 0, 53, &F::week, [](int32_t v) { return 300 + v; }},
};

/// All texts of up to `most` of these characters.
std::vector<std::string> all_texts(std::string_view characters, size_t most) {
  std::vector<std::string> all = {""};
  for (size_t i = 0; all[i].size() < most; ++i) {
    for (const char c : characters) all.push_back(all[i] + c);
  }
  return all;
}

void expect_number(const Number& d, const std::string& directive, bool lenient, const std::vector<std::string>& texts) {
  PlainLocale locale;
  const bool hash = directive.find('#') != std::string::npos, year = lenient && d.width == 4;
  const auto model = (lenient ? year && !hash : !hash || d.width == 1) ? strict_model : lenient_model;
  for (const std::string& text : texts) {
    // The letter in front keeps the walk from passing over the blanks, which are positions of the number.
    const VXExplanation out = read_by(locale, U'x' + utf32(directive), U'x' + utf32(text), lenient);
    std::string field = model(text, d.width);
    const auto value = [&] { return std::atoi(field.c_str()); };
    if (value() < d.minimum || value() > (hash ? d.maximum_under_hash : d.maximum)) field.clear();
    if (field.empty() && year) field = model(text, 2);
    ASSERT_EQ(out.status == 0, !field.empty()) << directive << " of " << text;
    if (field.empty()) continue;
    ASSERT_EQ(out.consumed, static_cast<int64_t>(1 + field.size())) << directive << " of " << text;
    F fields{};
    fields.offset = VX_NO_OFFSET;
    if (d.field != nullptr) fields.*d.field = d.stored(value());
    ASSERT_EQ(std::memcmp(&out.match.fields, &fields, sizeof fields), 0) << directive << " of " << text;
  }
}

TEST(ParseDirectives, NumbersOverTheirRangesAndBeyond) {
  for (const Number& number : numbers) {
    std::vector<std::string> texts = all_texts(" 0123456789/", 3);
    for (int32_t value = 0; number.width > 2 && value <= number.maximum + 1; ++value) {
      texts.push_back(std::to_string(value) + (value % 2 == 0 ? "/" : ""));
    }
    for (const char* letter = number.letters; *letter != 0; ++letter) {
      for (const char* const modifiers : {"%", "%#", "%?", "%0", "%?0#"}) {
        if ((number.readers & Number::strict) != 0)
          expect_number(number, std::string(modifiers) + *letter, false, texts);
        if ((number.readers & Number::lenient) != 0)
          expect_number(number, std::string(modifiers) + *letter, true, texts);
      }
    }
  }
}

TEST(ParseDirectives, OtherLettersRefuse) {
  ZonedLocale locale;
  const std::u32string strict = U"YymodeHIklMSsuwaAFBCbpzZ%", modifiers = U"#0?";
  for (char32_t letter = 1; letter < 400; ++letter) {
    for (const auto& [letters, lenient] : {std::pair(strict, false), std::pair(strict + U"GfqQUVW", true)}) {
      bool is_read = modifiers.find(letter) != modifiers.npos;
      // Something that each known letter would take.
      for (const auto* const text : {U"2020", U"10", U"5", U"Monday", U"May", U"am", U"Q3", U"+02", U"Zone/East", U"%"})
        is_read |= read_by(locale, std::u32string{U'%', letter}, text, lenient).status == 0;
      EXPECT_EQ(is_read, (letters + modifiers).find(letter) != letters.npos) << static_cast<uint32_t>(letter);
    }
  }
}

TEST(ParseDirectives, EveryName) {
  ZonedLocale locale;
  const VXLocaleData& data = locale.data;
  const struct {
    std::span<const NLSName> names;
    std::u32string_view strict, lenient;
    int32_t F::*field;
  } lists[] = {{data.dayNames, U"aAF", U"aAFf", nullptr},    {data.altDayNames, U"", U"aAFf", nullptr},
               {data.monthNames, U"BC", U"BCb", &F::month},  {data.altMonthNames, U"b", U"BCb", &F::month},
               {data.quarterNames, U"", U"qQ", &F::quarter}, {{&data.amMarker, 2}, U"p", U"p", &F::marker}};
  for (const auto& [names, strict, lenient, field] : lists) {
    for (const NLSName& name : names) {
      const std::u32string text(name.text, name.text + name.length);
      for (size_t i = 0; i < strict.size() + lenient.size(); ++i) {
        const char32_t letter = i < strict.size() ? strict[i] : lenient[i - strict.size()];
        const VXExplanation out = read_by(locale, std::u32string{U'%', letter}, text, i >= strict.size());
        EXPECT_TRUE(out.status == 0 && out.consumed == name.length) << utf8(text);
        EXPECT_TRUE(field == nullptr || out.match.fields.*field == &name - names.data() + 1) << utf8(text);
      }
    }
  }
}

}  // namespace

}  // namespace vxtest
