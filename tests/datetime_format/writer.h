// What a pattern writes, by a model of its own, and the entry points that are held against it.
#ifndef VXNLS_TESTS_DATETIME_FORMAT_WRITER_H
#define VXNLS_TESTS_DATETIME_FORMAT_WRITER_H

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>

#include "tests/support/guard_page.h"
#include "tests/support/plain_locale.h"

namespace vxtest {

// What the contract of the header says, over the standard library's calendar; for dates before the year 4000 only.
struct Expander {
  const VXLocaleData& data;
  bool of_date;
  std::u32string_view zone;
  int32_t offset;
  std::chrono::sys_seconds at;
  std::chrono::sys_days day = std::chrono::floor<std::chrono::days>(at);
  std::chrono::year_month_day ymd = day;
  unsigned week_day = std::chrono::weekday{day}.c_encoding();
  long hour = (at - day).count() / 3600, minute = (at - day).count() / 60 % 60, second = (at - day).count() % 60;
  std::u32string text = {};

  static std::u32string of(const NLSName& name) {
    return {name.text, name.text + std::clamp<int64_t>(name.length, 0, 60)};
  }
  /// The last two digits, `pad` in place of a 0 before the last one; none for 0.
  void digits(long value, char32_t pad) {
    const char32_t tens = value % 100 > 9 ? static_cast<char32_t>('0' + value / 10 % 10) : pad;
    if (tens != 0) text += tens;
    text += static_cast<char32_t>('0' + value % 10);
  }
  bool one(char32_t letter, bool lower, char32_t pad) {
    const auto month = static_cast<unsigned>(ymd.month());
    const auto year = static_cast<int>(ymd.year());
    if (letter == 'm' && lower) letter = 'n';
    if (of_date && std::u32string_view(U"abcdefnouwyz").find(letter) == std::u32string_view::npos) return false;
    switch (letter) {
      case 'a': text += of(lower ? data.altDayNames[week_day] : data.dayNames[week_day]); break;
      case 'b': text += of(lower ? data.altMonthNames[month - 1] : data.monthNames[month - 1]); break;
      case 'c': text += of(data.monthNames[month - 1]); break;
      case 'd': digits(static_cast<unsigned>(ymd.day()), pad); break;
      case 'e': digits(static_cast<unsigned>(ymd.day()), U' '); break;
      case 'f': text += of(data.dayNames[week_day]); break;
      case 'h': digits(hour, pad); break;
      case 'i': digits((hour + 11) % 12 + 1, pad); break;
      case 'k': digits(hour == 0 ? hour = 24 : hour, pad); break;
      case 'l': digits(hour == 0 ? 0 : (hour + 11) % 12 + 1, pad); break;
      case 'm': digits(minute, pad); break;
      case 'n': digits(month, pad); break;
      case 'o': digits(month, U' '); break;
      case 'p': text += of(hour >= 12 ? data.pmMarker : data.amMarker); break;
      case 's': digits(second, pad); break;
      case 'u': text += U'7'; break;
      case 'w': digits(week_day, 0); break;
      case 'y': digits(year / 100, pad), digits(year, pad); break;
      case 'z':
        if (!lower) {
          text += zone;
          break;
        }
        text += offset < 0 ? U'-' : U'+';
        digits(std::abs(offset) / 3600, U'0'), digits(std::abs(offset) / 60 % 60, U'0');
        break;
      default: return false;
    }
    return true;
  }
  /// The whole text, or nothing when a directive is refused.
  std::optional<std::u32string> expand(std::u32string_view pattern) {
    for (size_t i = 0; i < pattern.size(); ++i) {
      const std::u32string_view rest = pattern.substr(i + 1);
      const bool directive = pattern[i] == '%', question = rest.starts_with(U'?'), hash = rest.starts_with(U'#');
      if (directive) i += question || hash ? 2 : 1;
      if (i >= pattern.size()) return {};
      const char32_t c = pattern[i];
      const bool small = c >= 'a' && c <= 'z', capital = c >= 'A' && c <= 'Z';
      if (!directive || c == '%') text += c;
      else if (!(small || capital) || !one(small ? c : c + 32, question || (small && !hash), hash ? 0 : U'0'))
        return {};
    }
    while (text.ends_with(U' ')) text.pop_back();
    return text;
  }
};

/// Calls that are given where to write, of either flavour.
struct Writer {
  PlainLocale& plain;
  std::u32string zone = U"XST";
  int32_t offset = 0;
  size_t rooms = 9;  // how many of those below are tried

  auto date(uint32_t month, uint32_t day, uint32_t year, int32_t style = 0) const {
    return [=, locale = plain.get()](auto* b, int64_t n, int64_t* l) {
      if constexpr (sizeof *b == 1) return NLSDateFormatU(locale, month, day, year, style, b, n, l);
      else return NLSDateFormat(locale, month, day, year, style, b, n, l);
    };
  }
  auto time(int32_t flag, double value) const {
    return [=, locale = plain.get()](auto* b, int64_t n, int64_t* l) {
      if constexpr (sizeof *b == 1) return NLSTimeFormatU(locale, flag, b, n, l, value);
      else return NLSTimeFormat(locale, flag, b, n, l, value);
    };
  }
  auto datetime(double value) const {
    return [=, locale = plain.get()](auto* b, int64_t n, int64_t* l) {
      if constexpr (sizeof *b == 1) return NLSDatetimeFormatU(locale, 99, b, n, l, value);
      else return NLSDatetimeFormat(locale, 99, b, n, l, value);
    };
  }

  /// The whole text with its status where there is room, else its front; with another status nothing at all. Of its
  /// units the low bits that the flavour has count. The short road wants room for 48 units.
  template <class Unit>
  void expect_units(auto call, const auto& text, VXStatus status = 0) const {
    static GuardedBuffer<Unit> memory(600);
    const bool refused = status != 0 && status != VX_E_TRUNCATED;
    const auto size = static_cast<int64_t>(text.size());
    const int64_t capacities[] = {47, 600, 48, -1, 0, 1, size / 2, size - 1, size};
    for (const int64_t capacity : std::span(capacities, rooms)) {
      const int64_t room = std::max<int64_t>(capacity, 0), expected = refused ? 0 : std::min(size, room);
      Unit* const out = memory.at(static_cast<size_t>(room));
      std::fill_n(out, room, Unit{0x55});
      int64_t length = -77;
      ASSERT_EQ(call(out, capacity, &length), expected < size ? VX_E_TRUNCATED : status) << capacity << " of " << size;
      ASSERT_EQ(length, refused ? -77 : expected);
      const auto is_same = [](Unit a, auto b) { return a == static_cast<Unit>(b); };
      ASSERT_TRUE(std::equal(out, out + expected, text.begin(), is_same)) << std::string(out, out + expected);
      ASSERT_EQ(std::count(out + expected, out + room, Unit{0x55}), room - expected);
    }
  }
  void expect(auto call, std::u32string_view text, VXStatus status = 0) const {
    expect_units<VXChar>(call, text, status);
    expect_units<uint8_t>(call, utf8(text), status);
  }
  /// What a call writes of a value, or of its date.
  std::optional<std::u32string> expect_expanded(auto call, bool of_date, double value, std::u32string_view pattern) {
    using namespace std::chrono;
    const auto at = sys_days{1960y / 1 / 1} + seconds{static_cast<int64_t>(std::floor(value))};
    auto text = Expander{plain.data, of_date, zone, offset, at}.expand(pattern);
    expect(call, text.value_or(U""), text ? 0 : VX_E_DIRECTIVE);
    return text;
  }
  /// A pattern as that of dates, of times and of datetimes.
  std::optional<std::u32string> expect_everywhere(double value, std::u32string_view pattern) {
    SCOPED_TRACE(utf8(pattern) + " of " + std::to_string(value));
    VXLocaleData& data = plain.data;
    for (NLSName* const each :
         {&data.timePattern, &data.timePattern1, &data.datetimePattern, &data.datePattern, &data.datePattern1})
      set_name(*each, pattern);
    const auto days = std::chrono::days{static_cast<int>(std::floor(value / 86400))};
    const std::chrono::year_month_day ymd = std::chrono::sys_days{std::chrono::year{1960} / 1 / 1} + days;
    expect_expanded(date(unsigned{ymd.month()}, unsigned{ymd.day()}, static_cast<uint32_t>(int{ymd.year()}), 1), true,
                    value, pattern);
    expect_expanded(time(0, value), false, value, pattern);
    expect_expanded(time(-1, value), false, value, pattern);
    return expect_expanded(datetime(value), false, value, pattern);
  }
};

}  // namespace vxtest

#endif
