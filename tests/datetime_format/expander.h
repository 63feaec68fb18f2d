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
  unsigned week_day;
  std::u32string_view zone;
  int32_t offset;
  long hour = 0, minute = 0, second = 0;
  std::u32string text;

  Expander(const VXLocaleData& record, std::chrono::sys_days at, std::u32string_view zone_name, int32_t zone_offset)
      : data(record), of_date(true), ymd(at), zone(zone_name), offset(zone_offset) {
    week_day = std::chrono::weekday{at}.c_encoding();
  }
  static Expander of_seconds(const VXLocaleData& record, double value, std::u32string_view zone_name,
                             int32_t zone_offset) {
    const auto whole = static_cast<int64_t>(std::floor(value));
    const std::chrono::sys_seconds at =
        std::chrono::sys_days{std::chrono::year{1960} / 1 / 1} + std::chrono::seconds{whole};
    const auto midnight = std::chrono::floor<std::chrono::days>(at);
    Expander e(record, midnight, zone_name, zone_offset);
    const std::chrono::hh_mm_ss time{at - midnight};
    e.of_date = false;
    e.hour = time.hours().count(), e.minute = time.minutes().count(), e.second = time.seconds().count();
    return e;
  }

  static std::u32string of(const NLSName& name) {
    return {name.text, name.text + std::clamp<int64_t>(name.length, 0, 60)};
  }
  void digits(long value, bool padded) {
    if (padded || value % 100 > 9) text += static_cast<char32_t>('0' + value / 10 % 10);
    text += static_cast<char32_t>('0' + value % 10);
  }
  void places(long value) {
    text += value > 9 ? static_cast<char32_t>('0' + value / 10) : U' ';
    text += static_cast<char32_t>('0' + value % 10);
  }
  bool one(char32_t letter, bool lower, bool padded) {
    const auto month = static_cast<unsigned>(ymd.month());
    const auto year = static_cast<int>(ymd.year());
    if (letter == 'm' && lower) letter = 'n';
    if (of_date && std::u32string_view(U"abcdefnouwyz").find(letter) == std::u32string_view::npos) return false;
    switch (letter) {
      case 'a': text += of(lower ? data.altDayNames[week_day] : data.dayNames[week_day]); break;
      case 'b': text += of(lower ? data.altMonthNames[month - 1] : data.monthNames[month - 1]); break;
      case 'c': text += of(data.monthNames[month - 1]); break;
      case 'd': digits(static_cast<unsigned>(ymd.day()), padded); break;
      case 'e': places(static_cast<unsigned>(ymd.day())); break;
      case 'f': text += of(data.dayNames[week_day]); break;
      case 'h': digits(hour, padded); break;
      case 'i': digits((hour + 11) % 12 + 1, padded); break;
      case 'k': digits(hour == 0 ? hour = 24 : hour, padded); break;
      case 'l': digits(hour == 0 ? 0 : (hour + 11) % 12 + 1, padded); break;
      case 'm': digits(minute, padded); break;
      case 'n': digits(month, padded); break;
      case 'o': places(month); break;
      case 'p': text += of(hour >= 12 ? data.pmMarker : data.amMarker); break;
      case 's': digits(second, padded); break;
      case 'u': text += U'7'; break;
      case 'w': digits(week_day, false); break;
      case 'y': digits(year / 100, padded), digits(year, padded); break;
      case 'z':
        if (lower) {
          const long minutes = std::abs(offset) / 60;
          text += offset < 0 ? U'-' : U'+';
          digits(minutes / 60, true), digits(minutes % 60, true);
        } else {
          text += zone;
        }
        break;
      default: return false;
    }
    return true;
  }
  /// The whole text, or nothing when a directive is refused.
  std::optional<std::u32string> expand(std::u32string_view pattern) {
    for (size_t i = 0; i < pattern.size(); ++i) {
      if (pattern[i] != '%') {
        text += pattern[i];
        continue;
      }
      const std::u32string_view rest = pattern.substr(i + 1);
      const bool question = rest.starts_with(U'?'), hash = rest.starts_with(U'#');
      i += question || hash ? 2 : 1;
      if (i >= pattern.size()) return {};
      const char32_t c = pattern[i];
      if (c == '%') {
        text += c;
        continue;
      }
      const bool small = c >= 'a' && c <= 'z', capital = c >= 'A' && c <= 'Z';
      if (!small && !capital) return {};
      if (!one(small ? c : c + 32, question || (small && !hash), !hash)) return {};
    }
    while (text.ends_with(U' ')) text.pop_back();
    return text;
  }
};

}  // namespace vxtest

#endif
