// The value of a call, split into what directives ask for.
#ifndef VXNLS_DATETIME_FORMAT_MOMENT_H
#define VXNLS_DATETIME_FORMAT_MOMENT_H

#include <stddef.h>

#include "calendar/civil.h"

namespace vxnls {

/// What a directive reads of the value.
enum class Field : uint8_t { none, year, century, of_century, month, day, week_day, hour, minute, second, zone };

/// The century as it is written, of three digits without the first.
constexpr int32_t written_century(int32_t century) {
  return century < 100 ? century : century < 200 ? century - 100 : century - 200;
}

/// A date, or a datetime. A date is not taken through its day number unless a directive asks for what depends on it.
class Moment {
 public:
  /// Of a valid date.
  explicit constexpr Moment(CivilDate date) : Moment(century_date(date), no_day, 0, 0) {}

  /// Of a valid datetime. Fractions of a second are dropped.
  explicit constexpr Moment(double seconds) : Moment(day_and_second(seconds), seconds) {}

  /// The month, day, hour, minute or second.
  constexpr int32_t operator[](Field field) const { return fields_[static_cast<size_t>(field)]; }
  /// The year in the two parts in which it is written.
  struct Year {
    int32_t century, of_century;
  };
  constexpr Year year() const { return {written_century((*this)[Field::century]), (*this)[Field::of_century]}; }
  /// 0 = Sunday; the true one on every day, so that it can index a table.
  constexpr int32_t week_day() const { return vxnls::week_day(day()); }
  /// The local time by which a zone is asked; of a date, its midnight.
  constexpr double seconds() const { return day_ != no_day ? seconds_ : static_cast<double>(day() * seconds_per_day); }

 private:
  static constexpr int32_t no_day = end_day;

  constexpr Moment(DayAndSecond at, double seconds)
      : Moment(century_date_from_day(at.day), at.day, at.second, seconds) {}
  constexpr Moment(CenturyDate date, int32_t day, int32_t second, double seconds) : day_(day), seconds_(seconds) {
    const TimeOfDay time = time_of_day(second);
    set(Field::century, date.century);
    set(Field::of_century, date.of_century);
    set(Field::month, date.month);
    set(Field::day, date.day);
    set(Field::hour, time.hour);
    set(Field::minute, time.minute);
    set(Field::second, time.second);
  }
  constexpr void set(Field field, int32_t value) { fields_[static_cast<size_t>(field)] = value; }
  constexpr int32_t day() const {
    if (day_ != no_day) return day_;
    const int32_t year = 100 * (*this)[Field::century] + (*this)[Field::of_century];
    return day_number(CivilDate{year, (*this)[Field::month], (*this)[Field::day]});
  }

  int32_t fields_[10];  // by Field; those that are not set above are not asked for
  int32_t day_;
  double seconds_;
};

}  // namespace vxnls

#endif
