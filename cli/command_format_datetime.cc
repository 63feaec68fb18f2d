// vxnls format date, time, datetime
#include "cli/commands.h"
#include "cli/datetime_writer.h"
#include "cli/for_each_value.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/session.h"
#include "cli/text.h"

namespace vxcli {

namespace {

constexpr Option pattern{
    .name = "pattern", .value = "PATTERN", .help = "a pattern of directives instead of the locale's, as '%Y-%m-%d'"};
constexpr Option time_style_of_datetime{.name = "time-style",
                                        .value = "STYLE",
                                        .help = "which of the locale's time patterns; medium is main, short is 1",
                                        .choices = style::time_words,
                                        .completes = Completes::choices};

/// The writer that the options ask for.
DatetimeWriter make_writer(Invocation& invocation, DatetimeKind kind) {
  const Arguments& arguments = invocation.arguments;
  DatetimeWriter writer(invocation.session.locale(), kind);
  const bool has_style =
      arguments.has(style::date) || arguments.has(style::time) || arguments.has(time_style_of_datetime);
  const auto own = arguments.value(pattern);
  if (own && has_style) {
    fail(ExitCode::usage, "--pattern replaces the locale's patterns, so there is no style to choose");
  }
  if (own) writer.use_pattern("--pattern", *own);
  if (has_style) {
    const Option& time = kind == DatetimeKind::time ? style::time : time_style_of_datetime;
    writer.use_styles(style::date_number(arguments.value(style::date).value_or("main")),
                      style::time_number(arguments.value(time).value_or("main")));
  }
  return writer;
}

ExitCode run(Invocation& invocation, DatetimeKind kind) {
  DatetimeWriter writer = make_writer(invocation, kind);
  ValueReader& values = invocation.session.values();
  const bool as_json = invocation.arguments.has(options::json);
  return for_each_value(invocation, invocation.arguments.values(), [&](std::string_view value) {
    Moment moment;
    if (kind == DatetimeKind::date) {
      moment = {values.date(value) * seconds_a_day};
    } else {
      moment = kind == DatetimeKind::time ? values.time(value) : values.datetime(value);
    }
    std::string text = writer.write(moment);
    if (!as_json) return text;
    const std::string iso = write_datetime(moment.seconds);
    Json object{{"value", value}, {"text", text}};
    if (kind == DatetimeKind::date) {
      object["date"] = iso.substr(0, iso.find('T'));
      object["day"] = day_of(moment.seconds);
    } else if (kind == DatetimeKind::time) {
      object["time"] = iso.substr(iso.find('T') + 1);
    } else {
      object["datetime"] = iso;
      object["seconds"] = moment.seconds;
    }
    object["offset"] = iso8601::write_offset(
        moment.offset.value_or(invocation.session.zone().offset_at_local(static_cast<double>(moment.seconds))));
    object["locale"] = invocation.session.locale_name();
    object["zone"] = invocation.session.zone().id();
    return json_line(object);
  });
}

ExitCode run_date(Invocation& invocation) { return run(invocation, DatetimeKind::date); }
ExitCode run_time(Invocation& invocation) { return run(invocation, DatetimeKind::time); }
ExitCode run_datetime(Invocation& invocation) { return run(invocation, DatetimeKind::datetime); }

constexpr Argument date_arguments[] = {
    {.name = "VALUE",
     .help =
         "2026-11-21, or with a time behind it, a day number (24431) or now; without values, every line of standard "
         "input is one",
     .repeats = true}};
constexpr Argument time_arguments[] = {
    {.name = "VALUE",
     .help = "14:05 or 14:05:09, also behind a date, seconds since midnight (50709) or now; without values, every line "
             "of standard input is one",
     .repeats = true}};
constexpr Argument datetime_arguments[] = {
    {.name = "VALUE",
     .help = "2026-11-21T14:05:09, a date alone, seconds since 1960-01-01 (2110889109) or now; without values, every "
             "line of standard input is one",
     .repeats = true}};

constexpr const Option* date_options[] = {
    &style::date, &pattern, &options::json, &options::unread, &options::ok_unread, &options::chunk_header};
constexpr const Option* time_options[] = {
    &style::time, &pattern, &options::json, &options::unread, &options::ok_unread, &options::chunk_header};
constexpr const Option* datetime_options[] = {&style::date,          &time_style_of_datetime, &pattern,
                                              &options::json,        &options::unread,        &options::ok_unread,
                                              &options::chunk_header};

constexpr Example date_examples[] = {
    {"vxnls format date 2026-11-21 --locale de_DE --style long", "21. November 2026"},
    {"vxnls format date 24431 --pattern '%A, %#d %B %Y' --locale en_GB", "Saturday, 21 November 2026"},
    {"echo 2026-07-01T23:30Z | vxnls format date --locale ja_JP --zone Asia/Tokyo", "2026/07/02"}};
constexpr Example time_examples[] = {
    {"vxnls format time 14:05:09 --locale en_US", "2:05:09 PM"},
    {"vxnls format time 50709 --locale de_DE --style short", "14:05"},
    {"vxnls format time 2026-07-01T12:00Z --zone America/New_York --pattern '%H:%M %z'", "08:00 -0400"}};
constexpr Example datetime_examples[] = {
    {"vxnls format datetime 2026-11-21T14:05:09 --locale de_DE --zone Europe/Berlin", "21.11.2026 14:05:09"},
    {"vxnls format datetime @1795266309 --locale fr_CA --zone America/Toronto --style long",
     "21 novembre 2026 08 h 05 min 09 s"},
    {"vxnls format datetime 2026-11-21T14:05:09Z --zone Asia/Kolkata --pattern '%Y-%m-%d %H:%M:%S %z'",
     "2026-11-21 19:35:09 +0530"}};

}  // namespace

const Command format_date{
    .name = "date",
    .summary = "Writes dates as the locale does",
    .description =
        "Values are dates of the Gregorian calendar, 1582-01-01 to 20000-12-31; %Y and the locales' patterns write the "
        "last four digits of a year. A day number counts days from 1960-01-01. 2026-11-21T14:05:09+02:00 or ...Z is an "
        "instant, and the date is the one that the zone has then; so are now, and @1795266309, which counts seconds "
        "from 1970-01-01 00:00 UTC.\n"
        "\n"
        "A pattern for dates may hold the directives of \"vxnls format datetime\" that write dates or zones.",
    .arguments = date_arguments,
    .options = date_options,
    .examples = date_examples,
    .run = run_date};

const Command format_time{
    .name = "time",
    .summary = "Writes times of day as the locale does",
    .description =
        "A time alone stands on no date: a pattern that writes one finds 1960-01-01. 2026-11-21T14:05:09+02:00 or ...Z "
        "is an instant, and the time is the one that the zone has then; so are now, and @1795266309, which counts "
        "seconds from 1970-01-01 00:00 UTC. Decimals of a second are left out.",
    .arguments = time_arguments,
    .options = time_options,
    .examples = time_examples,
    .run = run_time};

const Command format_datetime{
    .name = "datetime",
    .summary = "Writes dates with their time as the locale does",
    .description =
        "2026-11-21T14:05:09 is local time of the zone. 2026-11-21T14:05:09+02:00 or ...Z is an instant and shown in "
        "the zone; so are now, and @1795266309, which counts seconds from 1970-01-01 00:00 UTC. Decimals of a second "
        "are left out.\n"
        "\n"
        "Directives of a pattern:\n"
        "  %Y    year, its last 4 digits   %H    hour, 00 to 23\n"
        "  %m    month, 01 to 12           %I    hour, 01 to 12\n"
        "  %B %b month, full, abbreviated  %p    AM or PM\n"
        "  %d    day, 01 to 31             %M    minute\n"
        "  %A %a week day, likewise        %S    second\n"
        "  %W    week day, 0 is Sunday     %z    offset from UTC, +0100\n"
        "  %E %O day, month, blank for 0   %Z    zone, Europe/Berlin\n"
        "  %K    hour, 01 to 24            %L    hour, 00 to 12, 00 at midnight\n"
        "  %U    always 7                  %%    a percent sign\n"
        "%#d, %#H, %#I and so on leave out the leading zero; %#m is the minute.",
    .arguments = datetime_arguments,
    .options = datetime_options,
    .examples = datetime_examples,
    .run = run_datetime};

}  // namespace vxcli
