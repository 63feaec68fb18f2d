#include "cli/value.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <string>

#include "cli/errors.h"
#include "cli/text.h"
#include "vxnls/calendar.h"

namespace vxcli {

namespace {

constexpr NLSCalendarWork fresh_work_area{0, 0, 0, 0, {31, 0, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}, 1950};

struct Number {
  int64_t whole;  // the greatest integer that is not above the number
  bool has_decimals;
};

/// Sign, digits and, where there is a point, digits again.
std::optional<Number> read_number(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const size_t point = text.find('.');
  const std::string_view digits = text.substr(0, point);
  const std::string_view decimals = point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
  const auto all_digits = [](std::string_view part) {
    return !part.empty() && part.find_first_not_of("0123456789") == std::string_view::npos;
  };
  if (!all_digits(digits) || (point != std::string_view::npos && !all_digits(decimals))) return std::nullopt;
  Number number{0, point != std::string_view::npos};
  // Numbers that are too long for the type are outside of the calendar anyway.
  constexpr int64_t too_far = int64_t{1} << 60;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number.whole);
  if (error != std::errc() || number.whole > too_far) number.whole = too_far;
  const bool cut = decimals.find_first_not_of('0') != std::string_view::npos;
  if (negative) number.whole = -number.whole - (cut ? 1 : 0);
  return number;
}

int64_t floor_divide(int64_t a, int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

/// "20261121" as a day number is almost surely a date without its hyphens.
std::string hint_at_hyphens(std::string_view digits) {
  if (digits.size() != 8) return {};
  const std::string text = fmt::format("{}-{}-{}", digits.substr(0, 4), digits.substr(4, 2), digits.substr(6));
  return std::holds_alternative<iso8601::Text>(iso8601::read(text)) ? fmt::format("; the date is written {}", text)
                                                                    : "";
}

}  // namespace

void check_day(int64_t day) {
  if (day < first_day || day > last_day) {
    refuse("a day number is {} (1582-01-01) to {} (20000-12-31)", first_day, last_day);
  }
}

void check_seconds(int64_t seconds) {
  if (seconds < first_day * seconds_a_day || seconds >= (last_day + 1) * seconds_a_day) {
    refuse("outside of 1582-01-01 to 20000-12-31");
  }
}

int64_t day_number(const iso8601::Date& date) {
  NLSCalendarWork work = fresh_work_area;
  const double day = NLSmdy(&work, date.month, date.day, date.year);
  if (!std::isnan(day)) return static_cast<int64_t>(day);
  refuse("{:04}-{:02} has {} days", date.year, date.month, work.monthDays[date.month - 1]);
}

iso8601::Date date_of(int64_t day) {
  NLSCalendarWork work = fresh_work_area;
  double year = 0;
  double month = 0;
  double day_of_month = 0;
  NLSymdjul(&year, &month, &day_of_month, &work, NLSjuldat(&work.year, static_cast<double>(day)));
  return {static_cast<int32_t>(year), static_cast<int32_t>(month), static_cast<int32_t>(day_of_month)};
}

int64_t day_of(int64_t seconds) { return floor_divide(seconds, seconds_a_day); }

std::string write_datetime(int64_t seconds) {
  const int64_t day = day_of(seconds);
  const int64_t time = seconds - day * seconds_a_day;
  return fmt::format("{}T{:02}:{:02}:{:02}", iso8601::write(date_of(day)), time / 3600, time / 60 % 60, time % 60);
}

int64_t ValueReader::now() {
  if (!now_) {
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    now_ = unix_epoch + std::chrono::floor<std::chrono::seconds>(since).count();
  }
  return *now_;
}

Moment ValueReader::at_instant(int64_t utc) const {
  const int32_t offset = zone_.offset_at_utc(static_cast<double>(utc));
  check_seconds(utc + offset);
  return {utc + offset, offset};
}

std::string_view ValueReader::what_is_wanted(Wanted wanted) {
  switch (wanted) {
    case Wanted::date: return "a date is 2026-11-21, a day number or now";
    case Wanted::time: return "a time is 14:05:09, seconds since midnight or now";
    default: return "a datetime is 2026-11-21T14:05:09, seconds since 1960-01-01, @ and Unix seconds, or now";
  }
}

Moment ValueReader::read_iso(std::string_view text, size_t skipped, Wanted wanted) const {
  const auto result = iso8601::read(text);
  if (const auto* fault = std::get_if<iso8601::Fault>(&result)) {
    if (fault->at == text.size()) refuse("it ends where {} is expected", fault->expected);
    if (fault->at == 0 && text.find_first_of("0123456789") != 0) refuse("{}", what_is_wanted(wanted));
    const std::string_view rest = text.substr(fault->at);
    const std::string_view found = rest.substr(0, rest.find_first_of("-:.,T ", 1));
    refuse("at byte {}: {} is expected, not {}", skipped + fault->at, fault->expected, in_quotes(found));
  }
  const auto& iso = std::get<iso8601::Text>(result);
  if (!iso.date && wanted != Wanted::time) {
    refuse("a time without a date; write 2026-11-21T{}", text.substr(text.find_first_of("0123456789")));
  }
  if (!iso.time && wanted == Wanted::time) refuse("a date without a time; write {}T14:05", text);
  const int64_t date = iso.date ? day_number(*iso.date) : 0;
  const int64_t time = iso.time ? iso.time->hour * 3600 + iso.time->minute * 60 + iso.time->second : 0;
  const int64_t local = date * seconds_a_day + time;
  if (!iso.offset) return {local};
  if (!iso.date) refuse("an offset without a date; write 2026-11-21T{}", text.substr(text.find_first_of("0123456789")));
  return at_instant(local - *iso.offset);
}

Moment ValueReader::read(std::string_view given, Wanted wanted) {
  const std::string_view text = without_blanks(given);
  if (text.empty()) refuse("no value");
  if (text == "now") return at_instant(now());
  if (text.starts_with('@')) {
    const auto number = read_number(text.substr(1));
    if (!number) refuse("digits are expected behind \"@\": seconds since 1970-01-01 00:00 UTC");
    check_seconds(std::clamp(number->whole, -(int64_t{1} << 60), int64_t{1} << 60) + unix_epoch);
    return at_instant(number->whole + unix_epoch);
  }
  if (const auto number = read_number(text)) {
    if (wanted == Wanted::date) {
      if (number->has_decimals) refuse("a day number is an integer");
      if (number->whole > last_day) {
        if (const std::string hint = hint_at_hyphens(text); !hint.empty()) refuse("too large for a day number{}", hint);
      }
      check_day(number->whole);
      return {number->whole * seconds_a_day};
    }
    check_seconds(number->whole);
    return {number->whole};
  }
  return read_iso(text, static_cast<size_t>(text.data() - given.data()), wanted);
}

int64_t ValueReader::date(std::string_view text) { return day_of(read(text, Wanted::date).seconds); }

Moment ValueReader::time(std::string_view text) { return read(text, Wanted::time); }

Moment ValueReader::datetime(std::string_view text) { return read(text, Wanted::datetime); }

}  // namespace vxcli
