// What a pattern writes, by a model of its own.
#ifndef VXNLS_TESTS_DATETIME_FORMAT_EXPANDER_H
#define VXNLS_TESTS_DATETIME_FORMAT_EXPANDER_H

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>

#include "vxnls/vxnls.h"

namespace vxtest {

// What the contract of the header says, over the standard library's calendar; for dates before the year 4000 only.
struct Expander {
  const VXLocaleData& data;
  bool of_date;
  std::chrono::year_month_day ymd;
  unsigned week_day = std::chrono::weekday{std::chrono::sys_days{ymd}}.c_encoding();
  std::u32string_view zone;
  int32_t offset;
  long hour = 0, minute = 0, second = 0;
  std::u32string text;

  Expander(const VXLocaleData& record, std::chrono::sys_days at, std::u32string_view zone_name, int32_t zone_offset)
      : data(record), of_date(true), ymd(at), zone(zone_name), offset(zone_offset) {}
  static Expander of_seconds(const VXLocaleData& record, double value, std::u32string_view zone_name,
                             int32_t zone_offset) {
    const auto whole = static_cast<int64_t>(std::floor(value));
    const auto at = std::chrono::sys_days{std::chrono::year{1960} / 1 / 1} + std::chrono::seconds{whole};
    Expander e(record, std::chrono::floor<std::chrono::days>(at), zone_name, zone_offset);
    const long of_day = (at - std::chrono::floor<std::chrono::days>(at)).count();
    e.of_date = false;
    e.hour = of_day / 3600, e.minute = of_day / 60 % 60, e.second = of_day % 60;
    return e;
  }

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
      else if (!small && !capital) return {};
      else if (!one(small ? c : c + 32, question || (small && !hash), hash ? 0 : U'0')) return {};
    }
    while (text.ends_with(U' ')) text.pop_back();
    return text;
  }
};

}  // namespace vxtest

#endif
