// The text of a pattern for one value of a locale, in either flavour.
#ifndef VXNLS_DATETIME_FORMAT_EXPANSION_H
#define VXNLS_DATETIME_FORMAT_EXPANSION_H

#include <algorithm>
#include <cstring>

#include "datetime_format/moment.h"
#include "datetime_format/pattern.h"
#include "module/host_services.h"
#include "unicode/text_flavour.h"
#include "vxnls/table.h"

namespace vxnls {

/// A receiver of walk_pattern() that writes the text into a scratch of its own. What outgrows the scratch is dropped.
template <class Text>
class Expansion {
 public:
  using Unit = typename Text::Unit;

  Expansion(const VXLocale* locale, Moment moment) : locale_(locale), moment_(moment) {}

  /// The front of a pattern or name that counts: as much as takes 180 bytes in UTF-8, all of it in UTF-32.
  static TextView cut(TextView text) {
    if (text.length * Text::longest <= longest_text) return text;
    int64_t units = 0, length = 0;
    while (length < text.length && (units += Text::units(text.text[length])) <= longest_text) ++length;
    return {text.text, length};
  }

  void literal(VXChar c) { took(Text::append(c, end())); }

  void directive(const Directive& row, bool zero_padded) {
    switch (row.rule) {
      case Rule::full_name: return full_name(row.field);
      case Rule::short_name: return short_name(row.field);
      case Rule::two_digits: return two_digits(number(row.field), zero_padded);
      case Rule::blank_padded: return blank_padded(number(row.field));
      case Rule::dial_from_12: return two_digits(moment_.hour() == 0 ? 12 : on_dial(), zero_padded);
      case Rule::dial_from_0: return two_digits(on_dial(), zero_padded);
      case Rule::hour_to_24:
        moment_.midnight_is_24();  // also for the directives that follow, kept on purpose
        return two_digits(moment_.hour(), zero_padded);
      case Rule::day_period:
        return name(moment_.hour() < 12 ? locale_->localeData->amMarker : locale_->localeData->pmMarker);
      case Rule::one_digit: return digit(moment_.week_day());
      case Rule::always_seven: return digit(7);
      case Rule::century_and_year:
        two_digits(moment_.date().year / 100 % 100, zero_padded);
        return two_digits(moment_.date().year % 100, zero_padded);
      case Rule::zone_name: return zone_name();
      case Rule::zone_offset: return zone_offset();
    }
  }

  /// Copies the text without its trailing blanks, as much as there is room for.
  VXStatus deliver(Unit* buffer, int64_t capacity, int64_t* length) const {
    int64_t whole = length_;
    while (whole > 0 && text_[whole - 1] == ' ') --whole;
    const int64_t count = std::clamp<int64_t>(capacity, 0, whole);
    if (count > 0) std::memcpy(buffer, text_, static_cast<size_t>(count) * sizeof(Unit));
    *length = count;
    return count < whole || outgrown_ ? VX_E_TRUNCATED : 0;
  }

 private:
  static constexpr int64_t room = 512;
  static constexpr int64_t longest_text = 180;  // units of one pattern or name

  Unit* end() { return text_ + length_; }

  /// Each piece is written before it is counted: the scratch has room for one more than counts.
  void took(int64_t units) {
    length_ += units;
    if (length_ > room) {
      length_ = room;
      outgrown_ = true;
    }
  }

  void digit(int32_t value) { literal(static_cast<VXChar>('0' + value)); }

  /// `value` is from 0 to 99.
  void two_digits(int32_t value, bool zero_padded) {
    if (value < 10 && !zero_padded) return digit(value);
    std::memcpy(end(), Text::digit_pairs.of[value], sizeof Text::digit_pairs.of[value]);
    took(2);
  }

  void blank_padded(int32_t value) {
    if (value >= 10) return two_digits(value, true);
    literal(' ');
    digit(value);
  }

  int32_t number(Field field) const {
    switch (field) {
      case Field::month: return moment_.date().month;
      case Field::day: return moment_.date().day;
      case Field::hour: return moment_.hour();
      case Field::minute: return moment_.minute();
      default: return moment_.second();
    }
  }

  int32_t on_dial() const { return moment_.hour() > 12 ? moment_.hour() - 12 : moment_.hour(); }

  void full_name(Field field) {
    const VXLocaleData& data = *locale_->localeData;
    name(field == Field::month ? data.monthNames[moment_.date().month - 1] : data.dayNames[moment_.week_day()]);
  }

  void short_name(Field field) {
    const VXLocaleData& data = *locale_->localeData;
    name(field == Field::month ? data.altMonthNames[moment_.date().month - 1] : data.altDayNames[moment_.week_day()]);
  }

  void name(const NLSName& entry) { took(Text::append_name(cut(view(entry)), end())); }

  void zone_name() {
    host::ZoneState zone;
    host::describe_zone(locale_, moment_.seconds(), &zone);
    if (zone.name_length <= 0 || zone.name_length > room - 1 - length_) {
      for (const char c : {'X', 'S', 'T'}) literal(static_cast<VXChar>(c));
      return;
    }
    // In UTF-8 a unit is its low eight bits here, kept on purpose.
    for (int64_t i = 0; i < zone.name_length; ++i) end()[i] = static_cast<Unit>(zone.name[i]);
    took(zone.name_length);
  }

  void zone_offset() {
    host::ZoneState zone;
    host::describe_zone(locale_, moment_.seconds(), &zone);
    const int64_t seconds = zone.offset;
    const int64_t distance = seconds < 0 ? -seconds : seconds;
    literal(seconds < 0 ? '-' : '+');
    two_digits(static_cast<int32_t>(distance / 3600 % 100), true);
    two_digits(static_cast<int32_t>(distance % 3600 / 60), true);
  }

  const VXLocale* locale_;
  Moment moment_;
  int64_t length_ = 0;
  bool outgrown_ = false;
  Unit text_[room + longest_text];  // never cleared
};

}  // namespace vxnls

#endif
