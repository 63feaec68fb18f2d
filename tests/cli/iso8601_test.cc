#include "cli/iso8601.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "cli/errors.h"
#include "cli/value.h"

namespace {

using namespace vxcli;

TEST(Iso8601, EveryDayAgreesWithTheStandardLibrary) {
  using namespace std::chrono;
  // Up to year 3999: from 4000 on the calendars part.
  const sys_days first{year(1582) / January / 1};
  const sys_days end{year(4000) / January / 1};
  constexpr sys_days epoch{year(1960) / January / 1};
  for (sys_days day = first; day < end; day += days(1)) {
    const year_month_day expected(day);
    const std::string text =
        fmt::format("{:04}-{:02}-{:02}", static_cast<int>(expected.year()), static_cast<unsigned>(expected.month()),
                    static_cast<unsigned>(expected.day()));
    const auto result = iso8601::read(text);
    ASSERT_TRUE(std::holds_alternative<iso8601::Text>(result)) << text;
    const iso8601::Date date = *std::get<iso8601::Text>(result).date;
    const int64_t number = day_number(date);
    ASSERT_EQ(number, (day - epoch).count()) << text;
    ASSERT_EQ(iso8601::write(date_of(number)), text);
  }
}

TEST(Iso8601, DaysThatDoNotExist) {
  static const struct {
    iso8601::Date date;
    const char* message;
  } cases[] = {{{2026, 2, 29}, "2026-02 has 28 days"}, {{2000, 2, 30}, "2000-02 has 29 days"},
               {{1900, 2, 29}, "1900-02 has 28 days"}, {{4000, 2, 29}, "4000-02 has 28 days"},  // a common year here
               {{2026, 4, 31}, "2026-04 has 30 days"}, {{20000, 11, 31}, "20000-11 has 30 days"}};
  for (const auto& c : cases) {
    try {
      day_number(c.date);
      ADD_FAILURE() << c.message;
    } catch (const ValueError& error) {
      EXPECT_STREQ(error.what(), c.message);
    }
  }
  EXPECT_EQ(day_number({1582, 1, 1}), first_day);
  EXPECT_EQ(day_number({20000, 12, 31}), last_day);
  EXPECT_EQ(iso8601::write(date_of(last_day)), "20000-12-31");
}

/// The parts of what was read, or the place and the expectation.
std::string outcome(std::string_view text) {
  const auto result = iso8601::read(text);
  if (const auto* fault = std::get_if<iso8601::Fault>(&result))
    return fmt::format("{}: {}", fault->at, fault->expected);
  const auto& read = std::get<iso8601::Text>(result);
  std::string parts;
  if (read.date) parts += fmt::format("{}/{}/{}", read.date->year, read.date->month, read.date->day);
  if (read.time) parts += fmt::format(" {}h{}m{}s", read.time->hour, read.time->minute, read.time->second);
  if (read.offset) parts += fmt::format(" {:+}", *read.offset);
  return parts;
}

TEST(Iso8601, Forms) {
  static const struct {
    const char* text;
    const char* outcome;
  } cases[] = {
      {"2026-11-21", "2026/11/21"},
      {"+12026-11-21", "12026/11/21"},
      {"20000-12-31", "20000/12/31"},
      {"14:05", " 14h5m0s"},
      {"T14:05:09", " 14h5m9s"},
      {"14:05:09.75", " 14h5m9s"},
      {"14:05:09,999999999999999999999999", " 14h5m9s"},
      {"2026-11-21T14:05", "2026/11/21 14h5m0s"},
      {"2026-11-21t14:05:09z", "2026/11/21 14h5m9s +0"},
      {"2026-11-21 14:05:09+02", "2026/11/21 14h5m9s +7200"},
      {"2026-11-21T14:05:09-0330", "2026/11/21 14h5m9s -12600"},
      {"2026-11-21T14:05:09 -05:30", "2026/11/21 14h5m9s -19800"},
      {"14:05Z", " 14h5m0s +0"},

      {"", "0: a date as 2026-11-21, or a time as 14:05"},
      {"1581-12-31", "0: a year from 1582 to 20000"},
      {"20001-01-01", "0: a year from 1582 to 20000"},
      {"-2026-01-01", "0: a year from 1582 to 20000"},
      {"99999999999-01-01", "0: a year from 1582 to 20000"},
      {"26-01-01", "0: a year from 1582 to 20000"},
      {"2026", "4: \"-\""},
      {"2026/11/21", "4: \"-\""},
      {"2026-00-21", "5: a month from 01 to 12"},
      {"2026-13-21", "5: a month from 01 to 12"},
      {"2026-1-21", "5: a month of two digits"},
      {"2026-011-21", "5: a month of two digits"},
      {"2026-11", "7: \"-\""},
      {"2026-11-00", "8: a day from 01 to 31"},
      {"2026-11-32", "8: a day from 01 to 31"},
      {"2026-11-211", "8: a day of two digits"},
      {"2026-11-21x", "10: \"T\" and a time, or the end"},
      {"2026-11-21Z", "10: \"T\" and a time, or the end"},
      {"2026-11-21T", "11: an hour of two digits"},
      {"2026-11-21T24:00", "11: an hour from 00 to 23"},
      {"2026-11-21T14", "13: \":\" and minutes"},
      {"2026-11-21T14:60", "14: a minute from 00 to 59"},
      {"2026-11-21T14:05:60", "17: a second from 00 to 59"},
      {"2026-11-21T14:05:09.", "20: decimals of a second"},
      {"2026-11-21T14:05:09 ", "19: an offset as +02:00 or Z, or the end"},
      {"2026-11-21T14:05:09+2", "20: an offset as +02, +0200 or +02:00"},
      {"2026-11-21T14:05:09+24", "20: hours from 00 to 23"},
      {"2026-11-21T14:05:09+02:60", "23: minutes from 00 to 59"},
      {"2026-11-21T14:05:09+02:", "23: minutes of two digits"},
      {"2026-11-21T14:05:09Z1", "20: the end"},
      {"2026-11-21T14:05:09+02:00:00", "25: the end"},
  };
  for (const auto& c : cases) EXPECT_EQ(outcome(c.text), c.outcome) << c.text;
  EXPECT_EQ(outcome(std::string_view("2026-11-21\0", 11)), "10: \"T\" and a time, or the end");
}

TEST(Iso8601, Offsets) {
  EXPECT_EQ(iso8601::write_offset(0), "+00:00");
  EXPECT_EQ(iso8601::write_offset(20700), "+05:45");
  EXPECT_EQ(iso8601::write_offset(-12600), "-03:30");
  EXPECT_EQ(iso8601::write_offset(-75), "-00:01:15");
}

}  // namespace
