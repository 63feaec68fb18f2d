// Every pattern of one directive with every modifier, and of two: written in both flavours as the model of the
// formatter says, and read strictly in both flavours.
#include <vector>

#include "tests/datetime_format/expander.h"
#include "tests/datetime_parse/both_flavours.h"

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

/// Seconds since 1960, which the standard library counts.
double value_of(const Moment& m) {
  const sys_days day = year{m.year} / m.month / m.day, epoch = year{1960} / January / 1;
  return static_cast<double>((seconds{day - epoch} + hours{m.hour} + minutes{m.minute} + seconds{m.second}).count());
}

struct Item {
  char32_t letter, modifier;

  bool is(std::string_view letters) const {
    return letter < 0x80 && letters.find(static_cast<char>(letter)) != std::string_view::npos;
  }
  /// Whether the formatter shows with it what is called by this small letter.
  bool shows(char what) const {
    char32_t small = is("ABCDEFGHIJKLMNOPQRSTUVWXYZ") ? letter + 32 : letter;
    const bool lower = modifier == '?' || (modifier == 0 && small == letter);
    if (small == 'm' && lower) small = 'n';
    switch (what) {
      case 'y': return small == 'y';
      case 'n': return small == 'n' || small == 'o' || small == 'b' || small == 'c';
      case 'd': return small == 'd' || small == 'e';
      case 'h': return small == 'h' || small == 'i' || small == 'k' || small == 'l';
      case 'z': return small == 'z' && lower;
      case 'Z': return small == 'z' && !lower;
      default: return small == static_cast<char32_t>(what);
    }
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
  bool shows(char what) const {
    return std::any_of(items.begin(), items.end(), [what](const Item& item) { return item.shows(what); });
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

/// All that is written at one place; both roads of the formatter, whose short one wants room for 48 units.
template <class Unit, class Write>
void expect_written(const std::optional<std::u32string>& expected, Write write) {
  static GuardedBuffer<Unit> memory(512);
  for (const int64_t room : {int64_t{47}, int64_t{512}}) {
    Unit* const out = memory.at(static_cast<size_t>(room));
    int64_t length = -7;
    const VXStatus status = write(out, room, &length);
    if (!expected) {
      ASSERT_EQ(status, VX_E_DIRECTIVE);
      ASSERT_EQ(length, -7);
      continue;
    }
    const auto size = static_cast<int64_t>(expected->size());  // ASCII in both flavours
    ASSERT_EQ(status, size <= room ? 0 : VX_E_TRUNCATED);
    ASSERT_EQ(length, std::min(size, room));
    ASSERT_TRUE(std::equal(out, out + length, expected->begin())) << utf8(*expected);
  }
}

class EveryPattern : public testing::Test {
 protected:
  EveryPattern() { locale_.use(zone); }

  void expect_as_ruled(const Pattern& pattern) {
    const std::u32string text = pattern.text();
    SCOPED_TRACE(utf8(text));
    set_name(locale_.data.datetimePattern, text);
    set_name(locale_.data.timePattern1, text);
    set_name(locale_.data.datePattern1, text);
    const bool ruled = pattern.comes_back();
    bool came_back = true;
    for (const Moment& m : moments) {
      const std::optional<std::u32string> written = expect_written_as_modelled(text, m);
      if (HasFatalFailure()) return;
      if (!written) {
        ASSERT_FALSE(ruled);
        return;
      }
      came_back = read_back(pattern, text, *written, m, ruled) && came_back;
    }
    EXPECT_EQ(came_back, ruled);
    brought_back_ += came_back;
  }

  std::optional<std::u32string> expect_written_as_modelled(std::u32string_view pattern, const Moment& m) {
    VXLocale* const locale = locale_.get();
    const double value = value_of(m);
    const auto month = static_cast<uint32_t>(m.month), day = static_cast<uint32_t>(m.day),
               year = static_cast<uint32_t>(m.year);
    const auto expected = Expander::of_seconds(locale_.data, value, zone, offset).expand(pattern);
    Expander of_date(locale_.data, sys_days{std::chrono::year{m.year} / m.month / m.day}, zone, offset);
    const auto date = of_date.expand(pattern);
    expect_written<VXChar>(expected, [=](auto... a) { return NLSDatetimeFormat(locale, 0, a..., value); });
    expect_written<uint8_t>(expected, [=](auto... a) { return NLSDatetimeFormatU(locale, 0, a..., value); });
    expect_written<VXChar>(expected, [=](auto... a) { return NLSTimeFormat(locale, 1, a..., value); });
    expect_written<uint8_t>(expected, [=](auto... a) { return NLSTimeFormatU(locale, 1, a..., value); });
    expect_written<VXChar>(date, [=](auto... a) { return NLSDateFormat(locale, month, day, year, 1, a...); });
    expect_written<uint8_t>(date, [=](auto... a) { return NLSDateFormatU(locale, month, day, year, 1, a...); });
    return expected;
  }

  /// Whether the walk takes all of the text and reads what is shown of the moment. Where it must, the entry points must
  /// give it, too.
  bool read_back(const Pattern& pattern, std::u32string_view text, std::u32string_view written, const Moment& m,
                 bool ruled) {
    walk<vxnls::LenientReader>(locale_.get(), text, written);
    const Walked read = walk<vxnls::StrictReader>(locale_.get(), text, written);
    // What is shown of the moment, and nothing else.
    const auto shown = [&](char what, int32_t value) { return pattern.shows(what) ? value : 0; };
    const Moment as_shown = {shown('y', m.year), shown('n', m.month),  shown('d', m.day),
                             shown('h', m.hour), shown('m', m.minute), shown('s', m.second)};
    // Without an hour each PM is twelve hours.
    const auto markers =
        std::count_if(pattern.items.begin(), pattern.items.end(), [](Item item) { return item.shows('p'); });
    const int32_t hour = pattern.shows('h') || m.hour < 12 ? as_shown.hour : 12 * static_cast<int32_t>(markers);
    const vxnls::NLSParseFields expected = {as_shown.year,
                                            as_shown.month,
                                            as_shown.day,
                                            hour,
                                            as_shown.minute,
                                            as_shown.second,
                                            0,
                                            pattern.shows('z') ? offset : vxnls::no_offset,
                                            shown('p', m.hour < 12 ? 1 : 2),
                                            0,
                                            0,
                                            static_cast<int32_t>(pattern.items.back().modifier),
                                            pattern.shows('Z') ? locale_.locale.timeZone : nullptr};
    const auto length = static_cast<int64_t>(written.size());
    const bool came_back = read.consumed == length && std::memcmp(&read.fields, &expected, sizeof expected) == 0;

    const DateRead date = read_date(locale_.get(), written, 1);
    const ValueRead time = read_time(locale_.get(), written, 1), datetime = read_datetime(locale_.get(), written, 0);
    if (!ruled) return came_back;
    const bool full = as_shown.year * as_shown.month * as_shown.day != 0;
    EXPECT_EQ(time, (ValueRead{0, (hour * 60.0 + as_shown.minute) * 60 + as_shown.second, length}));
    EXPECT_EQ(date, full ? (DateRead{0, static_cast<uint32_t>(m.month), static_cast<uint32_t>(m.day),
                                     static_cast<uint32_t>(m.year), length})
                         : (DateRead{0, 0, 0, 0, length}));
    // A datetime without a year lies in 2000.
    const Moment whole = {full ? m.year : 2000, as_shown.month, as_shown.day, hour, as_shown.minute, as_shown.second};
    EXPECT_EQ(datetime, whole.month * whole.day != 0 ? (ValueRead{0, value_of(whole), length}) : refused_value);
    return came_back;
  }

  /// By themselves, and behind directives that show the whole moment.
  void expect_bare_and_framed(const std::vector<Item>& items, const char32_t* separator) {
    expect_as_ruled({items, separator});
    std::vector<Item> framed = {{'Y', 0}, {'m', 0}, {'d', 0}, {'H', 0}, {'M', 0}, {'S', 0}};
    framed.insert(framed.end(), items.begin(), items.end());
    expect_as_ruled({framed, separator});
  }

  ZonedLocale locale_;
  int brought_back_ = 0;
};

TEST_F(EveryPattern, OfOneDirective) {
  for (char32_t letter = 1; letter < 0x250; ++letter) {
    for (const char32_t modifier : {U'\0', U'?', U'#', U'0'}) expect_bare_and_framed({{letter, modifier}}, U"/");
    if (HasFailure()) return;
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
