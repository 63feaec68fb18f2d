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

/// Units of a text that were read and the fields that were: "5 hour 12 marker 2"; nothing of a refusal.
std::string described(const VXExplanation& out) {
  std::ostringstream text;
  const F& f = out.match.fields;
  if (out.status != 0) return "";
  text << out.consumed;
  const std::pair<const char*, int32_t> fields[] = {
      {"month", f.month},   {"day", f.day},         {"hour", f.hour},      {"offset", f.offset % VX_NO_OFFSET},
      {"marker", f.marker}, {"quarter", f.quarter}, {"zone", f.zone_given}};
  for (const auto& [name, value] : fields) {
    if (value != 0) text << ' ' << name << ' ' << value;
  }
  return text.str();
}

/// Cases of a pattern, a text, and what is read: strictly, and leniently where that is something else.
void expect_cases(PlainLocale& locale, const std::string& cases) {
  std::istringstream all(cases);
  for (std::string line, pattern, text, strict, lenient; std::getline(all, line, ';');) {
    std::istringstream cells(line.substr(line.find_first_not_of(" \n")));
    std::getline(cells, pattern, '|'), std::getline(cells, text, '|'), std::getline(cells, strict, '|');
    if (!std::getline(cells, lenient)) lenient = strict;
    if (lenient == "-") lenient.clear();
    EXPECT_EQ(described(read_by(locale, utf32(pattern), utf32(text), false)), strict) << line;
    EXPECT_EQ(described(read_by(locale, utf32(pattern), utf32(text), true)), lenient) << line;
  }
}

TEST(ParseDirectives, NamesOffsetsZonesAndLiterals) {
  ZonedLocale locale;
  locale.use(U"Zone/West");
  set_name(locale.data.monthNames[2], U"März");
  set_name(locale.data.monthNames[5], U"Jun");
  set_name(locale.data.monthNames[6], U"June7");
  set_name(locale.data.quarterNames[3], U"ἈЖ𐐀");  // no case above U+FFFF
  // Strictly either the full or the abbreviated names are read; the first that stands there, not the longest.
  expect_cases(
      locale,
      R"(%B|  DECEMBER 5|10 month 12; %B|dec||3 month 12;     %b|december|3 month 12|8 month 12; %C|decembe||3 month 12; %B|mÄrz|5 month 3; %B|mÄr|; %B|june7|3 month 6; %A|sun||3;
    %F|SATURDAY!|8; %a|Someday|; %p|Am|2 marker 1; %p|p|; %q|q2||2 quarter 2; %Q|ἀж𐐀 ||9 quarter 4; %Q|ἀж𐐨|)");
  // Strictly the marker adds 12 to the hour so far, whatever that is; an hour read later replaces it.
  expect_cases(locale, R"(%p| pM|3 hour 12 marker 2|3 marker 2; %I %p|12 AM|5 marker 1|5 hour 12 marker 1;
    %I %p|12 PM|5 hour 12 marker 2; %H %p|13 PM|5 hour 25 marker 2|5 hour 13 marker 2; %p %I|PM 01|5 hour 1 marker 2)");
  // A sign, hours, minutes: one or two positions each, of which the first may be a blank.
  expect_cases(locale, R"(%z|+0000|5; %z|-0530|5 offset -19800; %z|+05:30|6 offset 19800; %#z|+5:30|5 offset 19800;
    %z|0530|4 offset 19800; %z|+1259x|5 offset 46740; %z|+5|2 offset 18000; %z|+05:|4 offset 18000; %z|-x|; %z|+|;
    %z|+05:  |6 offset 18000; %z|+05   :30|9 offset 19800; %z|+ 5:30|6 offset 19800; %z|+5 30|5 offset 19800;
    %z|+05: 3|6 offset 18180; %z|+05:3x|5 offset 18180; %z|+05  |5 offset 18000; %z|  -1|4 offset -3600; %z|Z|; %z|+13|;
    %z|+0560|; %z|+  5|; %z|+05 x|; %z|+05:   3|; %z|−05|)");
  // The name of a zone ends with a blank, which it takes; the locale's own one stands at the end alone.
  expect_cases(locale,
               R"(%Z|  Zone/East|11 zone 1; %Z|Zone/East rest|10 zone 1; %Z|Zone/Nowhere|; %Z|zone/east|; %Z|Zöne|;
    %Z|xSt|3 zone 1; %Z|XST 2000|; %Z|XS|; %Z|XSA|)");
  EXPECT_NE(read_by(locale, U"%Z", std::u32string(2000, U'Z'), false).status, 0u);
  // Blanks are passed over before a step, even at the end of the pattern; not before "%%". Case counts strictly.
  // Leniently a blank of the pattern may be missing, but none may be too many. Strictly a text that ends in the blanks
  // of a field reads as 0.
  expect_cases(locale, R"(||0; |  x|2; %d||; %d/%m|05/06 more|5 month 6 day 5; %d/%m|05/|; /|-|; %%| %%|2; %#0?%|%|1;
    %#d %m|5  6|4 month 6 day 5; 日%d|日05|5 day 5; %H%%|05 %|; %|%|; %H%|05|; %H%#|055|; %Ö|Ö|; x|X||1; Ж|ж||2;
    %d %m|0506|; %d |05|; a b|ab||2; a  b|a b||3; ab|a b|; %H%M|12 |3 hour 12|-; %d%m|12 |)");
  // An empty name or marker stands everywhere, and hides all that follow it in its list.
  set_name(locale.data.amMarker, U"");
  expect_cases(locale, "%H%p!|05  !|5 hour 5 marker 1; %H%p|05 PM|3 hour 5 marker 1");
  locale.locale.timeZone = nullptr;
  expect_cases(locale, "%Z|XST|");
}

}  // namespace

}  // namespace vxtest
