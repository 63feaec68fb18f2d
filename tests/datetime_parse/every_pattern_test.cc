// Every pattern of one directive with every modifier, and of two: written in both flavours as the model of the
// formatter says, and read strictly in both flavours.
#include <vector>

#include "tests/datetime_format/writer.h"
#include "tests/datetime_parse/reading.h"

namespace vxtest {

namespace {

using namespace std::chrono;

constexpr const char32_t* zone = U"Zone/West";
constexpr int32_t offset = -19800;

struct Moment {
  int32_t year, month, day, hour, minute, second;
};
// Every field with one digit and with two, and the hours that the dial turns into others.
constexpr Moment moments[] = {{2005, 3, 5, 0, 4, 6},
                              {1999, 11, 25, 13, 45, 56},
                              {2024, 2, 12, 12, 30, 9},
                              {1582, 12, 31, 23, 59, 59},
                              {3999, 10, 10, 9, 10, 10}};

struct Item {
  char32_t letter, modifier;

  bool is(std::string_view letters) const {
    return letter < 0x80 && letters.find(static_cast<char>(letter)) != std::string_view::npos;
  }
  /// What the formatter shows with it: year, month (n), day, hour, minute, second, marker, offset (z), zone (Z).
  char shown() const {
    const bool capital = letter >= 'A' && letter <= 'Z', lower = modifier == '?' || (modifier == 0 && !capital);
    const char32_t small = capital ? letter + 32 : letter;
    if (small < 'a' || small > 'z') return ' ';
    if (lower && (small == 'm' || small == 'z')) return small == 'm' ? 'n' : 'z';
    return " nndd  hh hhm np  s     yZ"[small - 'a'];
  }
};

/// Directives with the same separator between them.
struct Pattern {
  std::vector<Item> items;
  std::u32string separator;

  std::u32string text() const {
    std::u32string all;
    for (const Item& item : items) {
      if (!all.empty()) all += separator;
      all += U'%';
      if (item.modifier != 0) all += item.modifier;
      all += item.letter;
    }
    return all;
  }
  int32_t shows(char what, int32_t value = 1) const {
    return std::ranges::count(items, what, &Item::shown) != 0 ? value : 0;
  }

  /// The rule: whether what it writes of a moment is read as that moment, whichever that is, as far as it is shown.
  bool comes_back() const {
    enum { unknown, on_dial, known, beyond } hour = unknown;
    bool midnight_is_24 = false;
    for (size_t i = 0; i < items.size(); ++i) {
      const Item& item = items[i];
      const bool last = i + 1 == items.size(), hash = item.modifier == '#';
      // The letters that mean the same to the formatter and to the strict reader. They do not agree on the list of
      // names (%a, %?A, %?B, %#b), on minute and month (%#m, %?M), second and millisecond (%s); the reader does not
      // take what the formatter makes of the year 2005 (%#Y), of midnight (%k) and of noon (%l). The modifier 0 is the
      // reader's alone.
      const char* const letters = item.modifier == '0'   ? ""
                                  : hash                 ? "odeHIMSkBCAaFuwpZ%"
                                  : item.modifier == '?' ? "YymodeHISbCFuwpz%"
                                                         : "YymodeHIMSBbCAFuwpzZ%";
      // A month in place of the minute does no harm where the minute follows, and the month has been read.
      const bool made_good = !last && i > 0 && item.is("M") && items[i + 1].is("M") && items[i + 1].modifier != '?';
      if (!item.is(letters) && !made_good) return false;
      // The walk passes over the blank that stands for a zero, and a position is missing.
      if (item.is("eo") && !hash && i == 0 && !last) return false;
      // A number of any width ends at what is no digit.
      if (item.is("odeHIMSk") && hash && !last && separator.empty() && items[i + 1].is("YymodeHIMSkuw")) return false;
      // The name of a zone ends with the text or with a blank, which it takes.
      if (item.is("Z") && !last) return false;
      // Behind %k the formatter takes midnight for 24, and so for an hour past noon.
      if (midnight_is_24 && item.is("Hp")) return false;
      midnight_is_24 = midnight_is_24 || item.is("k");
      // PM is twelve hours more than what has been read, and an hour takes the place of what has been read.
      if (item.is("I")) hour = on_dial;
      if (item.is("Hk")) hour = known;
      if (item.is("p") && hour != unknown) hour = hour == on_dial ? known : beyond;
    }
    return hour == unknown || hour == known;
  }
};

class EveryPattern : public testing::Test {
 protected:
  EveryPattern() { locale_.use(zone); }

  void expect_as_ruled(const Pattern& pattern) {
    const std::u32string text = pattern.text();
    bool came_back = true;
    for (const Moment& m : moments) {
      const auto days = (sys_days{year{m.year} / m.month / m.day} - sys_days{year{1960} / 1 / 1}).count();
      const auto value = static_cast<double>(((days * 24 + m.hour) * 60 + m.minute) * 60 + m.second);
      const std::optional<std::u32string> written = writer_.expect_everywhere(value, text);
      if (HasFatalFailure()) return;
      came_back = written && read_back(pattern, *written, m) && came_back;
      if (!written) break;  // nor of any other moment
    }
    EXPECT_EQ(came_back, pattern.comes_back()) << utf8(text);
    brought_back_ += came_back;
  }

  /// Whether all of the text is taken, and read as what is shown of the moment, and nothing else.
  bool read_back(const Pattern& pattern, std::u32string_view written, const Moment& m) {
    VXExplanation out;
    read(VX_EXPLAIN_DATE, locale_.get(), written, 1);
    read(VX_EXPLAIN_DATETIME, locale_.get(), written, 0);
    read(VX_EXPLAIN_TIME, locale_.get(), written, 1, &out);
    // Without an hour each PM is twelve hours.
    const auto markers = std::ranges::count(pattern.items, 'p', &Item::shown);
    const auto hours_of_markers = 12 * static_cast<int32_t>(markers);
    VXExplainFields shown{};
    shown.year = pattern.shows('y', m.year), shown.month = pattern.shows('n', m.month);
    shown.day = pattern.shows('d', m.day), shown.minute = pattern.shows('m', m.minute);
    shown.hour = pattern.shows('h') != 0 || m.hour < 12 ? pattern.shows('h', m.hour) : hours_of_markers;
    shown.second = pattern.shows('s', m.second), shown.marker = pattern.shows('p', m.hour < 12 ? 1 : 2);
    shown.offset = pattern.shows('z') != 0 ? offset : VX_NO_OFFSET, shown.zone_given = pattern.shows('Z');
    return out.status == 0 && out.consumed == static_cast<int64_t>(written.size()) &&
           std::memcmp(&out.match.fields, &shown, sizeof shown) == 0 &&
           out.value == (shown.hour * 60 + shown.minute) * 60 + shown.second;
  }

  /// By themselves, and behind directives that show the whole moment.
  void expect_bare_and_framed(const std::vector<Item>& items, const char32_t* separator) {
    expect_as_ruled({items, separator});
    std::vector<Item> framed = {{'Y', 0}, {'m', 0}, {'d', 0}, {'H', 0}, {'M', 0}, {'S', 0}};
    framed.insert(framed.end(), items.begin(), items.end());
    expect_as_ruled({framed, separator});
  }

  ZonedLocale locale_;
  Writer writer_{locale_, zone, offset, 2};
  int brought_back_ = 0;
};

TEST_F(EveryPattern, OfOneDirective) {
  for (char32_t letter = 1; letter < 0x250 && !HasFailure(); ++letter) {
    for (const char32_t modifier : {U'\0', U'?', U'#', U'0'}) expect_bare_and_framed({{letter, modifier}}, U"/");
  }
}

TEST_F(EveryPattern, OfTwoDirectives) {
  std::vector<Item> all = {{U'%', 0}};
  for (char32_t letter = U'A'; letter <= U'Z'; ++letter) {
    for (const char32_t modifier : {U'\0', U'?', U'#'}) {
      all.push_back({letter, modifier});
      all.push_back({letter + 32, modifier});
    }
  }
  for (const Item& first : all) {
    for (const Item& second : all) {
      for (const char32_t* separator : {U"", U"-", U" "}) expect_bare_and_framed({first, second}, separator);
    }
    if (HasFailure()) return;
  }
  EXPECT_GT(brought_back_, 13000);
}

}  // namespace

}  // namespace vxtest
