// vxnls calendar
#include <algorithm>
#include <charconv>
#include <cmath>

#include "cli/commands.h"
#include "cli/for_each_value.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/session.h"
#include "cli/text.h"
#include "vxnls/calendar.h"

namespace vxcli {

namespace {

constexpr std::string_view forms[] = {"date", "day", "julian"};
constexpr Option from{.name = "from",
                      .value = "FORM",
                      .help = "what the values are, where that is to be checked: dates, day numbers or Julian dates",
                      .choices = forms,
                      .completes = Completes::choices};

constexpr NLSCalendarWork fresh_work_area{0, 0, 0, 0, {31, 0, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}, 1950};

/// A day, and what the calendar functions make of it, each on its own way.
struct Day {
  int64_t number;
  iso8601::Date date;
  int64_t julian;
  int32_t day_of_year;
  int32_t days_in_year;
  int32_t week_day;  // 1 is Sunday; the first nine days of 1582 have numbers of their own
  int64_t number_of_date;
  int64_t number_of_julian;
  iso8601::Date date_of_julian;
};

Day describe(int64_t number) {
  Day day{};
  day.number = number;
  day.date = date_of(number);
  NLSCalendarWork work = fresh_work_area;
  const double julian = NLSjuldat(&work.year, static_cast<double>(number));
  day.julian = static_cast<int64_t>(julian);
  day.day_of_year = static_cast<int32_t>(day.julian % 1000);
  day.number_of_julian = static_cast<int64_t>(NLSdatjul(&work, julian));
  day.days_in_year = work.daysInYear;
  day.week_day = static_cast<int32_t>(NLSwekday(static_cast<double>(number)));
  day.number_of_date = static_cast<int64_t>(NLSmdy(&work, day.date.month, day.date.day, day.date.year));
  double year = 0;
  double month = 0;
  double day_of_month = 0;
  NLSymdjul(&year, &month, &day_of_month, &work, julian);
  day.date_of_julian = {static_cast<int32_t>(year), static_cast<int32_t>(month), static_cast<int32_t>(day_of_month)};
  return day;
}

int64_t integer(std::string_view text, std::string_view what) {
  int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) refuse("{} is an integer", what);
  return number;
}

int64_t day_of_julian(std::string_view text) {
  const int64_t julian = integer(text, "a Julian date");
  NLSCalendarWork work = fresh_work_area;
  const double day = NLSdatjul(&work, static_cast<double>(julian));
  if (!std::isnan(day)) return static_cast<int64_t>(day);
  refuse("a Julian date is the year, 1582 to 20000, and three digits for the day of the year: 2000060");
}

class Reader {
 public:
  Reader(ValueReader& values, std::string form) : values_(values), form_(std::move(form)) {}

  int64_t operator()(std::string_view given) const {
    const std::string_view text = without_blanks(given);
    if (form_ == "julian") return day_of_julian(text);
    const bool is_integer = !text.empty() && text.find_first_not_of("+-0123456789") == std::string_view::npos &&
                            text.find('-', 1) == std::string_view::npos;
    if (form_ == "day" && !is_integer) refuse("a day number is an integer");
    if (form_ == "date" && is_integer) refuse("a date is written 2000-02-29");
    return values_.date(text);
  }

 private:
  ValueReader& values_;
  const std::string form_;
};

/// The name of a week day; the numbers of January 1582 lie below 1 and count on through the week.
std::string week_day_name(const VXLocaleData& data, int32_t week_day) {
  const int32_t index = ((week_day - 1) % 7 + 7) % 7;
  return utf8(data.dayNames[index]);
}

std::string row(const Day& day, const std::string& name) {
  return fmt::format("{}\t{}\t{}\t{}\t{}\t{}", iso8601::write(day.date), day.number, day.julian, day.day_of_year,
                     day.week_day, name);
}

std::string page(const Day& day, const std::string& name) {
  Table table;
  table.row({"date", iso8601::write(day.date), fmt::format("back from it: day number {}", day.number_of_date)});
  table.row({"day number", fmt::format("{}", day.number),
             fmt::format("back from it: {}", iso8601::write(date_of(day.number)))});
  table.row({"Julian date", fmt::format("{}", day.julian),
             fmt::format("back from it: {}, day number {}", iso8601::write(day.date_of_julian), day.number_of_julian)});
  table.row({"day of year", fmt::format("{} of {}", day.day_of_year, day.days_in_year)});
  table.row({"week day", fmt::format("{} {}", day.week_day, name)});
  std::string text = table.text();
  text.pop_back();
  return text;
}

Json as_json(std::string_view value, const Day& day, const std::string& name) {
  return {{"value", value},
          {"date", iso8601::write(day.date)},
          {"day", day.number},
          {"julian", day.julian},
          {"day_of_year", day.day_of_year},
          {"days_in_year", day.days_in_year},
          {"week_day", day.week_day},
          {"week_day_name", name},
          {"back",
           {{"day_from_date", day.number_of_date},
            {"date_from_day", iso8601::write(date_of(day.number))},
            {"date_from_julian", iso8601::write(day.date_of_julian)},
            {"day_from_julian", day.number_of_julian}}}};
}

ExitCode run(Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  const Reader reader(invocation.session.values(), arguments.value(from).value_or(""));
  const VXLocaleData& data = *invocation.session.locale()->localeData;
  const bool alone = arguments.values().size() == 1;
  return for_each_value(invocation, arguments.values(), [&](std::string_view value) {
    const Day day = describe(reader(value));
    const std::string name = week_day_name(data, day.week_day);
    if (arguments.has(options::json)) return json_line(as_json(value, day, name));
    return alone ? page(day, name) : row(day, name);
  });
}

constexpr Argument arguments[] = {
    {.name = "VALUE",
     .help = "a date (2000-02-29, now) or a day number (14669), or with --from julian a Julian date (2000060); without "
             "values, every line of standard input is one",
     .repeats = true}};
constexpr const Option* command_options[] = {&from, &options::json};
constexpr Example examples[] = {
    {"vxnls calendar 2000-02-29 --locale en_US",
     "date         2000-02-29  back from it: day number 14669\n"
     "day number   14669       back from it: 2000-02-29\n"
     "Julian date  2000060     back from it: 2000-02-29, day number 14669\n"
     "day of year  60 of 366\n"
     "week day     3 Tuesday"},
    {"vxnls calendar --from julian 2000060 4000001 --locale de_DE",
     "2000-02-29	14669	2000060	60	3	Dienstag\n"
     "4000-01-01	745095	4000001	1	7	Samstag"},
    {"vxnls calendar --json --locale fr_FR -- -1",
     "{\"value\":\"-1\",\"date\":\"1959-12-31\",\"day\":-1,\"julian\":1959365,\"day_of_year\":365,\"days_in_year\":365,"
     "\"week_day\":5,\"week_day_name\":\"jeudi\",\"back\":{\"day_from_date\":-1,\"date_from_day\":\"1959-12-31\","
     "\"date_from_julian\":\"1959-12-31\",\"day_from_julian\":-1}}"}};

}  // namespace

const Command calendar{
    .name = "calendar",
    .summary = "Shows day number, Julian date, day of year and week day of a date",
    .description =
        "The day number counts days from 1960-01-01. The Julian date is the year and three digits for the day of the "
        "year. Week days are 1 (Sunday) to 7 (Saturday); the first nine days of 1582 have numbers from -5 to 1. The "
        "calendar is the Gregorian one from 1582-01-01 to 20000-12-31; years that 4000 divides are common years.\n"
        "\n"
        "One value on the command line gives a page. Several values, and those of standard input, give a line each: "
        "date, day number, Julian date, day of year, week day and its name, with tabs between them.",
    .arguments = arguments,
    .options = command_options,
    .examples = examples,
    .run = run};

}  // namespace vxcli
