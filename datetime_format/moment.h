// The value of a call, split into what directives ask for.
#ifndef VXNLS_DATETIME_FORMAT_MOMENT_H
#define VXNLS_DATETIME_FORMAT_MOMENT_H

#include "calendar/civil.h"

namespace vxnls {

/// A date, or a datetime. A date is not taken through its day number unless a directive asks for what depends on it.
class Moment {
 public:
  /// Of a valid date.
  static constexpr Moment of_date(CivilDate date) { return Moment(date); }

  /// Of a valid datetime. Fractions of a second are dropped.
  static constexpr Moment of_datetime(double seconds) {
    const DayAndSecond at = day_and_second(seconds);
    Moment moment(civil_from_day(at.day));
    moment.day_ = at.day;
    moment.hour_ = at.second / 3600;
    moment.minute_ = at.second / 60 % 60;
    moment.second_ = at.second % 60;
    moment.seconds_ = seconds;
    return moment;
  }

  constexpr CivilDate date() const { return date_; }
  constexpr int32_t hour() const { return hour_; }
  constexpr int32_t minute() const { return minute_; }
  constexpr int32_t second() const { return second_; }
  /// 0 = Sunday; the true one on every day, so that it can index a table.
  constexpr int32_t week_day() const { return vxnls::week_day(day()); }
  /// The local time by which a zone is asked; of a date, its midnight.
  constexpr double seconds() const {
    return day_ != not_taken ? seconds_ : static_cast<double>(day() * seconds_per_day);
  }

  constexpr void midnight_is_24() {
    if (hour_ == 0) hour_ = 24;
  }

 private:
  static constexpr int32_t not_taken = end_day;

  explicit constexpr Moment(CivilDate date) : date_(date) {}
  constexpr int32_t day() const { return day_ != not_taken ? day_ : day_number(date_); }

  CivilDate date_;
  int32_t hour_ = 0, minute_ = 0, second_ = 0;
  int32_t day_ = not_taken;
  double seconds_ = 0;
};

}  // namespace vxnls

#endif
