// Directives, digits, names, offsets, zones and literals, by walks of patterns over short texts.
#include <charconv>
#include <optional>

#include "tests/datetime_parse/both_flavours.h"

namespace vxtest {

namespace {

using vxnls::LenientReader;
using vxnls::NLSParseFields;
using vxnls::StrictReader;
using F = NLSParseFields;

struct NumberRead {
  int32_t value;
  size_t used;
};

NumberRead number_of(std::string_view digits, size_t used) {
  NumberRead read{0, used};
  std::from_chars(digits.data(), digits.data() + digits.size(), read.value);
  return read;
}

/// A strict field, by cutting it out and looking at it as a whole.
std::optional<NumberRead> strict_model(std::string_view text, size_t width) {
  const std::string_view field = text.substr(0, width);
  const size_t first = field.find_first_not_of(' ');
  if (first == std::string_view::npos) {
    if (field.size() == width) return std::nullopt;
    return NumberRead{0, field.size()};
  }
  if (field.find_first_not_of("0123456789", first) != std::string_view::npos) return std::nullopt;
  return number_of(field.substr(first), field.size());
}

std::optional<NumberRead> lenient_model(std::string_view text, size_t width) {
  const size_t first = std::min(text.find_first_not_of(' '), text.size());
  const size_t end = std::min(text.find_first_not_of("0123456789", first), text.size());
  if (end == first || end - first > width) return std::nullopt;
  return number_of(text.substr(first, end - first), end);
}

// Every text of up to five of these characters, by every width.
TEST(ParseDigits, EveryShortText) {
  constexpr std::string_view alphabet = " 059x";
  for (int n = 0; n <= 5; ++n) {
    int count = 1;
    for (int i = 0; i < n; ++i) count *= 5;
    for (int code = 0; code < count; ++code) {
      std::string text;
      for (int i = 0, rest = code; i < n; ++i, rest /= 5) text += alphabet[static_cast<size_t>(rest % 5)];
      for (int32_t width = 1; width <= 4; ++width) {
        for (const int32_t minimum : {0, 1}) {
          const vxnls::Digits number{width, minimum, 5900};
          const auto check = [&](auto read, std::optional<NumberRead> model) {
            auto in = vxnls::input_of<vxnls::Utf8Text>(reinterpret_cast<const uint8_t*>(text.data()), n);
            int32_t value = -1;
            const bool good = read(in, number, &value) == VX_REASON_NONE;
            if (model && !number.admits(model->value)) model.reset();
            ASSERT_EQ(good, model.has_value()) << '"' << text << "\" width " << width;
            ASSERT_EQ(value, model ? model->value : -1) << '"' << text << "\" width " << width;
            if (model) {
              ASSERT_EQ(static_cast<size_t>(n - in.left), model->used) << '"' << text << "\" width " << width;
            }
          };
          const auto w = static_cast<size_t>(width);
          check([](auto&&... a) { return vxnls::extractdigits(a...); }, strict_model(text, w));
          check([](auto&&... a) { return vxnls::lenient_extractdigits(a...); }, lenient_model(text, w));
        }
      }
    }
  }
}

int32_t same(int32_t v) { return v; }
int32_t noon_is_0(int32_t v) { return v % 12; }
int32_t midnight_is_0(int32_t v) { return v % 24; }
int32_t dial(int32_t v) { return v % 24 == 0 ? 12 : v; }
int32_t two_digit_year(int32_t v) { return v > 99 ? v : v + (v < 60 ? 2000 : 1900); }

/// A numeric directive: its width and range, how a text is read without and with "#", and what is stored where.
struct NumberDirective {
  const char* letters;
  size_t width;
  int32_t minimum, maximum;
  std::optional<NumberRead> (*plain)(std::string_view, size_t), (*hash)(std::string_view, size_t);
  int32_t F::*field;
  int32_t (*stored)(int32_t) = same;
  int32_t maximum_under_hash = 0, plus = 0;
};

constexpr NumberDirective strict_numbers[] = {
    {"Yy", 4, 1582, 20000, strict_model, lenient_model, &F::year},
    {"mo", 2, 1, 12, strict_model, lenient_model, &F::month},
    {"de", 2, 1, 31, strict_model, lenient_model, &F::day},
    {"H", 2, 0, 23, strict_model, lenient_model, &F::hour},
    {"I", 2, 1, 12, strict_model, lenient_model, &F::hour, noon_is_0},
    {"k", 2, 0, 23, strict_model, lenient_model, &F::hour, midnight_is_0, 24},
    {"l", 2, 0, 11, strict_model, lenient_model, &F::hour},
    {"M", 2, 0, 59, strict_model, lenient_model, &F::minute},
    {"S", 2, 0, 59, strict_model, lenient_model, &F::second},
    {"s", 3, 0, 999, strict_model, lenient_model, &F::milliseconds},
    {"u", 1, 1, 7, strict_model, strict_model, nullptr},
    {"w", 1, 0, 6, strict_model, strict_model, nullptr},
};

constexpr NumberDirective lenient_numbers[] = {
    {"YyG", 4, 1582, 20000, strict_model, lenient_model, &F::year, two_digit_year},
    {"mo", 2, 1, 12, lenient_model, lenient_model, &F::month},
    {"de", 2, 1, 31, lenient_model, lenient_model, &F::day},
    {"HI", 2, 0, 23, lenient_model, lenient_model, &F::hour},
    {"k", 2, 0, 24, lenient_model, lenient_model, &F::hour, midnight_is_0},
    {"l", 2, 0, 24, lenient_model, lenient_model, &F::hour, dial},
    {"MS", 2, 0, 59, lenient_model, lenient_model, nullptr},
    {"s", 3, 0, 999, lenient_model, lenient_model, &F::milliseconds},
    {"u", 1, 1, 7, lenient_model, lenient_model, nullptr},
    {"w", 1, 0, 6, lenient_model, lenient_model, nullptr},
    {"U", 2, 0, 53, lenient_model, lenient_model, &F::week, same, 0, 100},
    {"V", 2, 0, 53, lenient_model, lenient_model, &F::week, same, 0, 200},
    {"W", 2, 0, 53, lenient_model, lenient_model, &F::week, same, 0, 300},
};

template <class Reader, size_t N>
void check_numbers(const NumberDirective (&directives)[N]) {
  PlainLocale locale;
  for (const NumberDirective& d : directives) {
    for (const char* letter = d.letters; *letter != 0; ++letter) {
      const bool falls_back = d.stored == two_digit_year;
      for (const char* modifier : {"", "#", "0", "?", "#0", "0#", "?#?"}) {
        const bool hash = modifier[0] != 0 && modifier[std::strlen(modifier) - 1] == '#';
        const auto model = hash ? d.hash : d.plain;
        const int32_t maximum = hash && d.maximum_under_hash != 0 ? d.maximum_under_hash : d.maximum;
        const std::string pattern = std::string("%") + modifier + *letter;
        const int32_t lowest = d.width == 4 && modifier[0] != 0 ? d.minimum - 3 : 0;
        const int32_t highest = d.width == 4 && modifier[0] != 0 ? d.minimum + 3 : d.maximum + 2;
        for (int32_t v = lowest; v <= highest; ++v) {
          const std::string digits = std::to_string(v);
          const std::string fill(digits.size() < d.width ? d.width - digits.size() : 0, ' ');
          for (const std::string& text : {digits, fill + digits, std::string(fill.size(), '0') + digits, ' ' + digits,
                                          digits + '/', digits + '5', std::string(fill.size(), '0') + digits + "0"}) {
            const Walked read = walk<Reader>(locale.get(), utf32(pattern), utf32(text));
            // The walk itself passes over leading blanks.
            const size_t blanks = text.find_first_not_of(' ');
            auto wanted = model(std::string_view(text).substr(blanks), d.width);
            if (wanted && (wanted->value < d.minimum || wanted->value > maximum)) wanted.reset();
            if (!wanted && falls_back) wanted = model(std::string_view(text).substr(blanks), 2);
            ASSERT_EQ(read.reason == VX_REASON_NONE, wanted.has_value()) << pattern << " of \"" << text << '"';
            if (!wanted) continue;
            ASSERT_EQ(read.consumed, static_cast<int64_t>(wanted->used + blanks)) << pattern << " of \"" << text << '"';
            NLSParseFields fields = vxnls::cleared_fields;
            fields.modifier = modifier[0] == 0 ? 0 : modifier[std::strlen(modifier) - 1];
            if (d.field != nullptr) fields.*d.field = d.stored(wanted->value) + d.plus;
            if (*letter == 'M' && d.field == nullptr) fields.minute = wanted->value;
            if (*letter == 'S' && d.field == nullptr) fields.second = wanted->value;
            ASSERT_EQ(std::memcmp(&read.fields, &fields, sizeof fields), 0) << pattern << " of \"" << text << '"';
          }
        }
      }
    }
  }
}

TEST(ParseDirectives, NumbersOverTheirRangesStrictly) { check_numbers<StrictReader>(strict_numbers); }
TEST(ParseDirectives, NumbersOverTheirRangesLeniently) { check_numbers<LenientReader>(lenient_numbers); }

TEST(ParseDirectives, OtherLettersRefuse) {
  ZonedLocale locale;
  locale.use(U"Zone/East");
  // Something that each known letter would take.
  const std::u32string texts[] = {U"2020", U"10", U"5", U"Monday", U"May", U"am", U"Q3", U"+02", U"XST", U"%"};
  for (VXChar letter = 1; letter < 400; ++letter) {
    if (letter == '#' || letter == '0' || letter == '?') continue;
    const std::u32string pattern = {U'%', static_cast<char32_t>(letter)};
    const bool ascii = letter < 128;
    const auto known = [&](const char* letters) { return ascii && std::strchr(letters, static_cast<int>(letter)); };
    const bool strict = known("YymodeHIklMSsuwaAFBCbpzZ%"), lenient = strict || known("GfqQUVW");
    bool read_strictly = false, read_leniently = false;
    for (const std::u32string& text : texts) {
      read_strictly |= walk<StrictReader>(locale.get(), pattern, text).reason == VX_REASON_NONE;
      read_leniently |= walk<LenientReader>(locale.get(), pattern, text).reason == VX_REASON_NONE;
    }
    EXPECT_EQ(read_strictly, strict) << letter;
    EXPECT_EQ(read_leniently, lenient) << letter;
  }
}

struct NameCase {
  const char* pattern;
  const char* text;
  int32_t strict, lenient;  // units consumed, or -1
  int32_t month = 0, marker = 0, quarter = 0;
};

TEST(ParseDirectives, Names) {
  PlainLocale locale;
  set_name(locale.data.monthNames[2], U"März");
  set_name(locale.data.monthNames[5], U"Jun");  // a prefix of what follows it in the list: it wins
  set_name(locale.data.monthNames[6], U"June7");
  set_name(locale.data.quarterNames[3], U"ἈЖ\U00010400");
  static constexpr NameCase cases[] = {
      {"%B", "december", 8, 8, 12},
      {"%B", "  DECEMBER 5", 10, 10, 12},
      {"%B", "dec", -1, 3, 12},  // strictly the full names only
      {"%b", "dec", 3, 3, 12},   // strictly the abbreviated ones only
      {"%b", "december", 3, 8, 12},
      {"%C", "decembe", -1, 3, 12},
      {"%B", "mÄrz", 4, 4, 3},
      {"%B", "mÄr", -1, -1},
      {"%B", "june7", 3, 3, 6},  // the first match, not the longest
      {"%a", "Sunday", 6, 6},
      {"%A", "sun", -1, 3},
      {"%F", "SATURDAY!", 8, 8},
      {"%a", "Someday", -1, -1},
      {"%p", "Am", 2, 2, 0, 1},
      {"%p", " pM", 3, 3, 0, 2},
      {"%p", "p", -1, -1},
      {"%q", "q2", -1, 2, 0, 0, 2},
      {"%Q", "ἀж\U00010400 ", -1, 3, 0, 0, 4},
      {"%Q", "ἀж\U00010428", -1, -1},  // no case above U+FFFF
  };
  for (const NameCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.pattern << " of " << c.text);
    const Walked strict = walk<StrictReader>(locale.get(), utf32(c.pattern), utf32(c.text));
    const Walked lenient = walk<LenientReader>(locale.get(), utf32(c.pattern), utf32(c.text));
    EXPECT_EQ(strict.consumed, c.strict);
    EXPECT_EQ(lenient.consumed, c.lenient);
    if (c.strict > 0 && c.lenient == c.strict) {
      EXPECT_EQ(strict.fields.month, c.month);
    }
    if (c.lenient > 0) {
      EXPECT_EQ(lenient.fields.month, c.month);
      EXPECT_EQ(lenient.fields.marker, c.marker);
      EXPECT_EQ(lenient.fields.quarter, c.quarter);
    }
  }
}

TEST(ParseDirectives, EveryNameOfEveryList) {
  PlainLocale locale;
  const auto read = [&](const char32_t* pattern, const NLSName& name) {
    const std::u32string text(name.text, name.text + name.length);
    const Walked lenient = walk<LenientReader>(locale.get(), pattern, text);
    EXPECT_EQ(lenient.consumed, name.length);
    return lenient.fields;
  };
  for (int32_t i = 0; i < 12; ++i) {
    EXPECT_EQ(read(U"%b", locale.data.monthNames[i]).month, i + 1);
    EXPECT_EQ(read(U"%B", locale.data.altMonthNames[i]).month, i + 1);
  }
  for (int32_t i = 0; i < 7; ++i) {
    read(U"%a", locale.data.dayNames[i]);
    read(U"%f", locale.data.altDayNames[i]);
  }
  for (int32_t i = 0; i < 4; ++i) EXPECT_EQ(read(U"%q", locale.data.quarterNames[i]).quarter, i + 1);
}

// The strict marker adds 12 to the hour so far, whatever that is; an hour read later replaces it.
TEST(ParseDirectives, StrictMarkerAddsTwelveAtOnce) {
  PlainLocale locale;
  static constexpr struct {
    const char* pattern;
    const char* text;
    int32_t hour;
  } cases[] = {
      {"%I %p", "12 AM", 0},  {"%I %p", "12 PM", 12}, {"%I %p", "11 PM", 23},
      {"%H %p", "13 PM", 25}, {"%p %I", "PM 01", 1},  {"%H%p", "00AM", 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(walk<StrictReader>(locale.get(), utf32(c.pattern), utf32(c.text)).fields.hour, c.hour) << c.text;
  }
  EXPECT_EQ(walk<LenientReader>(locale.get(), U"%I %p", U"12 PM").fields.hour, 12);
  EXPECT_EQ(walk<LenientReader>(locale.get(), U"%I %p", U"1 PM").fields.hour, 1);
}

// An empty name or marker stands everywhere, and hides all that follow it in its list.
TEST(ParseDirectives, EmptyNamesStandEverywhere) {
  PlainLocale locale;
  set_name(locale.data.amMarker, U"");
  const Walked read = walk<StrictReader>(locale.get(), U"%H%p!", U"05  !");
  EXPECT_EQ(read.consumed, 5);
  EXPECT_EQ(read.fields.marker, 1);
  EXPECT_EQ(walk<StrictReader>(locale.get(), U"%H%p", U"05 PM").consumed, 3);
}

TEST(ParseDirectives, Offsets) {
  PlainLocale locale;
  static constexpr struct {
    const char* text;
    int32_t offset;
    int64_t consumed;
  } cases[] = {
      {"+0000", 0, 5},
      {"-0530", -19800, 5},
      {"+05:30", 19800, 6},
      {"+5:30", 19800, 5},
      {"0530", 19800, 4},
      {"+12:59", 46740, 6},
      {"+1259x", 46740, 5},
      {"+05", 18000, 3},
      {"+5", 18000, 2},
      {"+05:", 18000, 4},
      {"+05: ", 18000, 5},
      {"+05:  ", 18000, 6},
      {"+05   :30", 19800, 9},
      {"+ 5:30", 19800, 6},
      {"+5 30", 19800, 5},
      {"+05: 3", 18180, 6},
      {"+05:3", 18180, 5},
      {"+05:3x", 18180, 5},
      {"+05  ", 18000, 5},
      {"  -1", -3600, 4},
      {"+13", 0, -1},
      {"+0560", 0, -1},
      {"+", 0, -1},
      {"-x", 0, -1},
      {"+  5", 0, -1},
      {"Z", 0, -1},
      {"+05 x", 0, -1},
      {"+05:x", 0, -1},
      {"+05:   3", 0, -1},
      {"\u2212"
       "05",
       0, -1},
  };
  for (const auto& c : cases) {
    for (const bool lenient : {false, true}) {
      const Walked read = lenient ? walk<LenientReader>(locale.get(), U"%z", utf32(c.text))
                                  : walk<StrictReader>(locale.get(), U"%#z", utf32(c.text));
      EXPECT_EQ(read.consumed, c.consumed) << c.text;
      if (c.consumed > 0) {
        EXPECT_EQ(read.fields.offset, c.offset) << c.text;
      }
    }
  }
  // Refused minutes leave the hours behind, with their sign.
  EXPECT_EQ(walk<StrictReader>(locale.get(), U"%z", U"-05 x").fields.offset, -18000);
  EXPECT_EQ(walk<StrictReader>(locale.get(), U"%H", U"05").fields.offset, 72123);
}

TEST(ParseDirectives, Zones) {
  ZonedLocale locale;
  locale.use(U"Zone/West");
  static constexpr struct {
    const char* text;
    int64_t consumed;
  } cases[] = {
      {"Zone/East", 9}, {"  Zone/East", 11}, {"Zone/East rest", 10}, {"Zone/Nowhere", -1}, {"zone/east", -1},
      {"XST", 3},       {"xSt", 3},          {"XST 2000", -1},       {"XS", -1},           {"XSA", -1},
      {"Zöne", -1},
  };
  for (const auto& c : cases) {
    const Walked read = walk<StrictReader>(locale.get(), U"%Z", utf32(c.text));
    EXPECT_EQ(read.consumed, c.consumed) << c.text;
    EXPECT_EQ(read.fields.zone != nullptr, c.consumed > 0) << c.text;
    if (c.consumed == 3) {
      EXPECT_EQ(read.fields.zone, locale.locale.timeZone);
    }
  }
  const std::u32string endless(2000, U'Z');
  EXPECT_EQ(walk<StrictReader>(locale.get(), U"%Z", endless).reason, VX_REASON_ZONE_UNKNOWN);
  locale.locale.timeZone = nullptr;
  EXPECT_EQ(walk<StrictReader>(locale.get(), U"%Z", U"XST").reason, VX_REASON_ZONE_UNKNOWN);
}

TEST(ParseWalk, LiteralsModifiersAndEnds) {
  PlainLocale locale;
  static constexpr struct {
    const char* pattern;
    const char* text;
    int64_t strict, lenient;
  } cases[] = {
      {"", "", 0, 0},           {"", "   ", 3, 3},  // blanks are passed over before the pattern ends
      {"", "  x", 2, 2},        {"%d", "", -1, -1},        {"x", "X", -1, 1},  // case counts strictly
      {"Ж", "ж", -1, 1},        {"/", "-", -1, -1},        {"%d/%m", "05/06 more", 5, 5},
      {"%d/%m", "05/", -1, -1}, {"%d ", "05", -1, -1},  // a blank of the pattern is still pattern
      {"%d %m", "05 06", 5, 5}, {"%d %m", "0506", -1, -1}, {"%#d %m", "5  6", 4, 4},
      {"a b", "ab", -1, 2},                             // leniently a blank of the pattern may be missing
      {"a  b", "a b", -1, 3},   {"ab", "a b", -1, -1},  // but no blank may be too many
      {"%H%M", "12 ", 3, -1},                           // strictly a text that ends in the blanks of a field reads as 0
      {"%d%m", "12 ", -1, -1},  {"%%", "%", 1, 1},         {"%#0?%", "%", 1, 1},
      {"%%", " %%", 2, 2},      {"%H%%", "05 %", -1, -1},  // no blank is passed over before "%%"
      {"%", "%", -1, -1},       {"%H%", "05", -1, -1},     {"%H%#", "055", -1, -1},
      {"%Ö", "Ö", -1, -1},      {"日%d", "日05", 3, 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << '"' << c.pattern << "\" of \"" << c.text << '"');
    EXPECT_EQ(walk<StrictReader>(locale.get(), utf32(c.pattern), utf32(c.text)).consumed, c.strict);
    EXPECT_EQ(walk<LenientReader>(locale.get(), utf32(c.pattern), utf32(c.text)).consumed, c.lenient);
  }
}

}  // namespace

}  // namespace vxtest
