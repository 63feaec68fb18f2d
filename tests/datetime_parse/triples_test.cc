// Patterns of three numbers, which are read without a walk: each is held against the walk by the helpers.
#include <array>
#include <random>

#include "tests/datetime_parse/both_flavours.h"

namespace vxtest {

namespace {

using namespace std::string_view_literals;

constexpr std::u32string_view orders[] = {U"%d?%m?%Y", U"%m?%d?%Y", U"%Y?%m?%d", U"%H?%M?%S"};
constexpr std::u32string_view texts[] = {U"07?03?2024", U"12?31?1999", U"2024?02?29", U"23?59?08"};
constexpr uint32_t kinds[] = {0, 1, 2, 4, 3};

std::u32string with(std::u32string_view form, char32_t first, char32_t second) {
  std::u32string text(form);
  text[text.find(U'?')] = first;
  text[text.find(U'?')] = second;
  return text;
}

void use(ZonedLocale& locale, const std::u32string& pattern) {
  VXLocaleData& data = locale.data;
  for (NLSName* name : {&data.datePattern, &data.datePattern1, &data.datePattern2, &data.timePattern,
                        &data.timePattern1, &data.datetimePattern}) {
    set_name(*name, pattern);
  }
}

int read_all(ZonedLocale& locale, const std::u32string& text) {
  int found = 0;
  for (const uint32_t kind : kinds) {
    found += read_date(locale.get(), text, kind).status == 0;
    found += read_time(locale.get(), text, kind).status == 0;
    found += read_datetime(locale.get(), text, kind).status == 0;
  }
  return found;
}

// What stands between the numbers may be any character: letters in either case, digits, blanks, "%", none of ASCII.
TEST(ParseTriples, EveryCharacterBetweenNumbers) {
  ZonedLocale locale;
  int found = 0;
  for (size_t i = 0; i < std::size(orders); ++i) {
    for (char32_t c = 0; c < 0x180; ++c) {
      for (const char32_t other : {c, U'.', static_cast<char32_t>(c ^ 0x20), static_cast<char32_t>(c + 0x100), U'年'}) {
        use(locale, with(orders[i], c, other));
        for (const char32_t stands : {c, other}) found += read_all(locale, with(texts[i], c, stands));
        found += read_all(locale, with(texts[i], c, other) + U"7");
        if (HasFailure()) FAIL() << i << ": " << static_cast<uint32_t>(c) << ", " << static_cast<uint32_t>(other);
      }
    }
  }
  EXPECT_GT(found, 20000);
}

// Each character of a text in turn is another one, is missing, or stands twice; and the text ends at every place.
TEST(ParseTriples, AFaultAtEveryPlace) {
  ZonedLocale locale;
  constexpr std::u32string_view faults = U"0123456789 /:.-+aT\0\u00B2\u0663\uFF11\U0001D7D8"sv;
  for (size_t i = 0; i < std::size(orders); ++i) {
    for (size_t second = i; second < std::size(orders); second += 3) {
      const bool both = second != i;
      std::u32string pattern = with(orders[i], U'.', U'/'), whole = with(texts[i], U'.', U'/');
      if (both)
        (pattern += U'T') += with(orders[second], U':', U':'), (whole += U'T') += with(texts[second], U':', U':');
      use(locale, pattern);
      ASSERT_GT(read_all(locale, whole), 0);
      for (size_t at = 0; at < whole.size(); ++at) {
        for (const char32_t fault : faults) {
          std::u32string text = whole;
          text[at] = fault;
          read_all(locale, text);
          text.insert(at, 1, whole[at]);
          read_all(locale, text);
          if (HasFailure()) FAIL() << utf8(pattern) << " at " << at;
        }
        read_all(locale, whole.substr(0, at));
        read_all(locale, whole.substr(at));
        read_all(locale, std::u32string(whole).erase(at, 1));
      }
    }
  }
}

// All numbers of two digits in each place, and years of all centuries.
TEST(ParseTriples, EveryNumber) {
  ZonedLocale locale;
  for (size_t i = 0; i < std::size(orders); ++i) {
    use(locale, with(orders[i], U'-', U'-'));
    for (size_t at = 0; at + 1 < texts[i].size(); ++at) {
      if (texts[i][at] == U'?' || texts[i][at + 1] == U'?') continue;
      for (char32_t value = 0; value < 100; ++value) {
        std::u32string text = with(texts[i], U'-', U'-');
        text[at] = U'0' + value / 10;
        text[at + 1] = U'0' + value % 10;
        read_all(locale, text);
      }
    }
    if (HasFailure()) FAIL() << i;
  }
}

}  // namespace

}  // namespace vxtest
