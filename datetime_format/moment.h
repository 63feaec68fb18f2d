// The value of a call, split into what directives ask for.
#ifndef VXNLS_DATETIME_FORMAT_MOMENT_H
#define VXNLS_DATETIME_FORMAT_MOMENT_H

#include <stddef.h>

#include "calendar/civil.h"

namespace vxnls {

/// What a directive reads of the value.
enum class Field : uint8_t { none, year, month, day, week_day, hour, minute, second, zone };

/// A date, or a datetime. A date is not taken through its day number unless a directive asks for what depends on it.
class Moment {
 public:
  /// Of a valid date.
  static constexpr Moment of_date(CivilDate date) { return Moment(date, no_day, 0, 0); }

  /// Of a valid datetime. Fractions of a second are dropped.
  static constexpr Moment of_datetime(double seconds) {
    const DayAndSecond at = day_and_second(seconds);
    return Moment(civil_from_day(at.day), at.day, static_cast<uint32_t>(at.second), seconds);
  }

  /// The year, month, day, hour, minute or second.
  constexpr int32_t operator[](Field field) const { return fields_[static_cast<size_t>(field)]; }
  /// The year in the two parts in which it is written: a century of three digits loses the first.
  struct Year {
    int32_t century, of_century;
  };
  constexpr Year year() const {
    const auto year = static_cast<uint32_t>((*this)[Field::year]), century = year / 100;
    return {static_cast<int32_t>(century % 100), static_cast<int32_t>(year - 100 * century)};
  }
  /// 0 = Sunday; the true one on every day, so that it can index a table.
  constexpr int32_t week_day() const { return vxnls::week_day(day()); }
  /// The local time by which a zone is asked; of a date, its midnight.
  constexpr double seconds() const { return day_ != no_day ? seconds_ : static_cast<double>(day() * seconds_per_day); }

 private:
  static constexpr int32_t no_day = end_day;

  constexpr Moment(CivilDate date, int32_t day, uint32_t second, double seconds) : day_(day), seconds_(seconds) {
    const uint32_t minute = second / 60, hour = second / 3600;
    set(Field::year, date.year);
    set(Field::month, date.month);
    set(Field::day, date.day);
    set(Field::hour, static_cast<int32_t>(hour));
    set(Field::minute, static_cast<int32_t>(minute - 60 * hour));
    set(Field::second, static_cast<int32_t>(second - 60 * minute));
  }
  constexpr void set(Field field, int32_t value) { fields_[static_cast<size_t>(field)] = value; }
  constexpr int32_t day() const {
    if (day_ != no_day) return day_;
    return day_number(CivilDate{(*this)[Field::year], (*this)[Field::month], (*this)[Field::day]});
  }

  int32_t fields_[8];  // by Field; those that are not set above are not asked for
  int32_t day_;
  double seconds_;
};

}  // namespace vxnls

#endif
