// The text of a pattern for one value of a locale, in either flavour.
#ifndef VXNLS_DATETIME_FORMAT_EXPANSION_H
#define VXNLS_DATETIME_FORMAT_EXPANSION_H

#include <cstring>

#include "calendar/triples.h"
#include "datetime_format/pattern.h"
#include "module/host_services.h"
#include "unicode/eight_units.h"
#include "unicode/text_flavour.h"
#include "vxnls/table.h"

namespace vxnls {

/// Where a text is put together, in units of its flavour. What outgrows its room is dropped.
template <class Text>
struct Scratch {
  static constexpr int64_t room = 512;
  static constexpr int64_t longest_text = 180;               // units of one pattern or name
  static constexpr int64_t longest_rest = 4 * longest_name;  // of all literals and numbers of a pattern

  typename Text::Unit text[room + longest_rest + longest_text];  // never cleared
};

/// Writes 0 to 99 in two digits.
template <class Text>
[[gnu::always_inline]] inline void put_two(typename Text::Unit* at, int32_t value) {
  copy_block<2>(at, Text::digit_pairs.of(value));
}

/// A receiver of walk_pattern() that writes the text of one value. A place is where the next unit goes.
template <class Text>
class Expansion {
 public:
  using Unit = typename Text::Unit;

  /// All of them must stay as long as it.
  Expansion(const VXLocale* locale, const Moment& moment, Scratch<Text>& scratch)
      : locale_(locale), moment_(moment), limit_(scratch.text + Scratch<Text>::room) {}

  /// The front of a pattern or name that counts: as much as takes 180 bytes in UTF-8, all of it in UTF-32.
  static TextView cut(TextView text) {
    constexpr int64_t longest = Scratch<Text>::longest_text;
    if (text.length * Text::longest <= longest) return text;
    int64_t units = 0, length = 0;
    while (length < text.length && (units += Text::units(text.text[length])) <= longest) ++length;
    return {text.text, length};
  }

  /// The end of what has room when everything else was written up to `at`.
  template <class Place>
  Place within_room(Place at) {
    if (at <= limit_) return at;
    outgrown_ = true;
    return limit_;
  }
  /// Whether something was dropped.
  bool outgrown() const { return outgrown_; }

  Unit* literal(VXChar c, Unit* at) { return at + Text::append(c, at); }

  Unit* two_digits(Field field, bool zero_padded, Unit* at) { return two_digits(number(field), zero_padded, at); }

  Unit* year(Unit* at) { return four_digits(true, at); }

  [[gnu::noinline]] Unit* directive(const Directive& row, bool zero_padded, Unit* at) {
    const Field field = row.field;
    switch (row.rule) {  // GCOV_EXCL_BR_LINE: no value of a rule but those below
      case Rule::full_name: return full_name(field, at);
      case Rule::short_name: return short_name(field, at);
      case Rule::two_digits: break;  // GCOV_EXCL_LINE: the walk hands these on as numbers
      case Rule::blank_padded: return blank_padded(moment_[field], at);
      case Rule::dial_from_12: return two_digits(hour_ == 0 ? 12 : on_dial(), zero_padded, at);
      case Rule::dial_from_0: return two_digits(on_dial(), zero_padded, at);
      case Rule::hour_to_24:
        if (hour_ == 0) hour_ = 24;  // also for the directives that follow, kept on purpose
        return two_digits(hour_, zero_padded, at);
      case Rule::day_period:
        return name(hour_ < 12 ? locale_->localeData->amMarker : locale_->localeData->pmMarker, at);
      case Rule::one_digit: return digit(moment_.week_day(), at);
      case Rule::always_seven: return digit(7, at);
      case Rule::century_and_year: return four_digits(zero_padded, at);
      case Rule::zone_name: return zone_name(at);
      case Rule::zone_offset: break;
    }
    return zone_offset(at);
  }

 private:
  int32_t number(Field field) const { return field == Field::hour ? hour_ : moment_[field]; }

  Unit* digit(int32_t value, Unit* at) { return literal(static_cast<VXChar>('0' + value), at); }

  /// `value` is from 0 to 99, here and below.
  Unit* pair(int32_t value, Unit* at) {
    put_two<Text>(at, value);
    return at + 2;
  }

  Unit* two_digits(int32_t value, bool zero_padded, Unit* at) {
    if (zero_padded) return pair(value, at);
    const bool one = value < 10;  // written with what follows it in the table
    copy_block<2>(at, Text::digit_pairs.of(value) + one);
    return at + 2 - one;
  }

  Unit* four_digits(bool zero_padded, Unit* at) {
    const Moment::Year year = moment_.year();
    return two_digits(year.of_century, zero_padded, two_digits(year.century, zero_padded, at));
  }

  Unit* blank_padded(int32_t value, Unit* at) { return value >= 10 ? pair(value, at) : digit(value, literal(' ', at)); }

  int32_t on_dial() const { return hour_ > 12 ? hour_ - 12 : hour_; }

  Unit* full_name(Field field, Unit* at) {
    const VXLocaleData& data = *locale_->localeData;
    return name(field == Field::month ? data.monthNames[moment_[field] - 1] : data.dayNames[moment_.week_day()], at);
  }

  Unit* short_name(Field field, Unit* at) {
    const VXLocaleData& data = *locale_->localeData;
    return name(field == Field::month ? data.altMonthNames[moment_[field] - 1] : data.altDayNames[moment_.week_day()],
                at);
  }

  Unit* name(const NLSName& entry, Unit* at) {
    at = within_room(at);
    return at + Text::append_name(cut(view(entry)), at);
  }

  Unit* zone_name(Unit* at) {
    const host::ZoneState zone = zone_state(locale_, moment_.seconds());
    if (zone.name_length <= 0 || zone.name_length > limit_ - 1 - at) {
      for (const char c : {'X', 'S', 'T'}) at = literal(static_cast<VXChar>(c), at);
      return at;
    }
    // In UTF-8 a unit is its low eight bits here, kept on purpose.
    for (int64_t i = 0; i < zone.name_length; ++i) at[i] = static_cast<Unit>(zone.name[i]);
    return at + zone.name_length;
  }

  Unit* zone_offset(Unit* at) {
    const int64_t seconds = zone_state(locale_, moment_.seconds()).offset;
    const int64_t distance = seconds < 0 ? -seconds : seconds;
    at = literal(seconds < 0 ? '-' : '+', at);
    at = two_digits(static_cast<int32_t>(distance / 3600 % 100), true, at);
    return two_digits(static_cast<int32_t>(distance % 3600 / 60), true, at);
  }

  [[gnu::noinline]] static host::ZoneState zone_state(const VXLocale* locale, double seconds) {
    host::ZoneState zone;
    host::describe_zone(locale, seconds, &zone);
    return zone;
  }

  const VXLocale* locale_;
  const Moment& moment_;
  int32_t hour_ = moment_[Field::hour];
  Unit* limit_;
  bool outgrown_ = false;
};

/// The short road for an ASCII pattern of nothing but the numbers that nearly all patterns have: writes the text of the
/// value straight to where it shall go, as these leave nothing behind them, two units at most for a unit of the
/// pattern, and gives its end; null, with something written, where something else stands. Blanks at the end, which
/// would have to be cut off, are something else.
inline constexpr int64_t longest_short_pattern = 24, short_road_units = 2 * longest_short_pattern;

/// False when the first directive says that the short road would be tried in vain.
inline bool may_be_numbers(const NLSName& pattern, bool of_date) {
  const VXChar letter = pattern.text[1];
  return pattern.text[0] != '%' ||
         (letter < 0x80 && (action_table.of[of_date][none][letter].is_padded_number() ||
                            action_table.of[of_date][none][letter].code == Action::four_digits));
}

template <class Text>
typename Text::Unit* write_numbers(const NLSName& pattern, bool of_date, const Moment& moment,
                                   typename Text::Unit* at) {
  const int64_t length = pattern.length;
  uint8_t characters[longest_short_pattern];
  if (length < 1 || length > longest_short_pattern) return nullptr;
  if (!narrow<longest_short_pattern>(pattern.text, characters)) return nullptr;
  const uint8_t* const end = characters + length;
  // narrow() has written them all, by vector instructions that clang-analyzer does not follow.
  // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
  if (end[-1] == ' ' || end[-1] == '%') return nullptr;  // so something stands behind every "%"

  const auto& actions = action_table.of[of_date][none];
  const auto put = [&at](int32_t value) {
    put_two<Text>(at, value);
    at += 2;
  };
  for (const uint8_t* from = characters; from < end;) {
    if (*from != '%') {  // NOLINT(clang-analyzer-core.UndefinedBinaryOperatorResult)
      *at++ = *from++;
      continue;
    }
    const Action action = actions[from[1]];  // NOLINT(clang-analyzer-core.uninitialized.ArraySubscript)
    from += 2;
    if (action.is_padded_number()) {
      put(moment[action.field()]);
    } else if (action.code == Action::four_digits) {
      const Moment::Year year = moment.year();
      put(year.century);
      put(year.of_century);
    } else {
      return nullptr;
    }
  }
  return at;
}

template <class Text>
[[gnu::always_inline]] inline void put_year(typename Text::Unit* at, CenturyDate date) {
  put_two<Text>(at, written_century(date.century));
  put_two<Text>(at + 2, date.of_century);
}

/// Writes the ten units of a date.
template <class Text>
[[gnu::always_inline]] inline void put_date(typename Text::Unit* at, Triple triple, CenturyDate date) {
  if (triple.order == Order::year_month_day) {
    put_year<Text>(at, date);
    at[4] = triple.first();
    put_two<Text>(at + 5, date.month);
    at[7] = triple.second();
    put_two<Text>(at + 8, date.day);
    return;
  }
  if (triple.order == Order::day_month_year) {
    put_two<Text>(at, date.day);
    put_two<Text>(at + 3, date.month);
  } else {
    put_two<Text>(at, date.month);
    put_two<Text>(at + 3, date.day);
  }
  at[2] = triple.first();
  at[5] = triple.second();
  put_year<Text>(at + 6, date);
}

/// Writes the eight units of a time of day.
template <class Text>
[[gnu::always_inline]] inline void put_time(typename Text::Unit* at, Triple triple, TimeOfDay time) {
  put_two<Text>(at, time.hour);
  at[2] = triple.first();
  put_two<Text>(at + 3, time.minute);
  at[5] = triple.second();
  put_two<Text>(at + 6, time.second);
}

}  // namespace vxnls

#endif
