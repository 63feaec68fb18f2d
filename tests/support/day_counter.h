// A calendar that only ever turns to the next day.
#ifndef VXNLS_TESTS_SUPPORT_DAY_COUNTER_H
#define VXNLS_TESTS_SUPPORT_DAY_COUNTER_H

#include <cstdint>

namespace vxtest {

/// Begins with the first day there is, a Friday.
struct DayCounter {
  int32_t year = 1582, month = 1, day = 1, day_of_year = 1, week_day = 5;

  bool leap() const { return year % 4 == 0 && (year % 100 != 0 || (year % 400 == 0 && year % 4000 != 0)); }
  bool ends_month() const {
    const int32_t lengths[] = {31, leap() ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return day == lengths[month - 1];
  }
  void next() {
    week_day = (week_day + 1) % 7;
    ++day_of_year;
    const bool is_last = ends_month();
    day = is_last ? 1 : day + 1;
    month += is_last;
    if (month <= 12) return;
    ++year;
    month = day_of_year = 1;
  }
};

}  // namespace vxtest

#endif
