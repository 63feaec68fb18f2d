// vxnls parse date, time, datetime
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "cli/commands.h"
#include "cli/date_at_once.h"
#include "cli/datetime_writer.h"
#include "cli/for_each_value.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/refusal.h"
#include "cli/session.h"
#include "cli/text.h"

namespace vxcli {

namespace {

constexpr Option lenient{.name = "lenient", .help = "any common form, not only the locale's pattern"};
constexpr Option pattern{
    .name = "pattern", .value = "PATTERN", .help = "read by this pattern instead of the locale's, as '%d.%m.%Y'"};
constexpr Option rest{.name = "rest", .help = "other text may follow what is read"};
constexpr Option to_pattern{.name = "to", .value = "PATTERN", .help = "write by this pattern instead of ISO 8601"};
constexpr Option to_locale{.name = "to-locale",
                           .value = "NAME",
                           .help = "write by the main pattern of this locale instead of ISO 8601",
                           .completes = Completes::locales};
constexpr Option explain{.name = "explain", .help = "say by which form it was read, and what other forms would give"};

/// The readings of a date that --as chooses.
struct Reading {
  std::string_view word;
  uint32_t kind;
};
constexpr Reading readings[] = {{"month", 16},       {"quarter", 8},    {"week", 32},
                                {"week-sunday", 64}, {"week-iso", 128}, {"week-monday", 256}};
constexpr std::string_view reading_words[] = {"month", "quarter", "week", "week-sunday", "week-iso", "week-monday"};
constexpr Option as{.name = "as",
                    .value = "PERIOD",
                    .help = "read a period and give its first day; \"week\" goes by the locale",
                    .choices = reading_words,
                    .completes = Completes::choices};

constexpr uint32_t kind_any_form = 4;
constexpr uint32_t kind_lenient_pattern = 0x44;  // the main pattern alone, read leniently

std::string two(int32_t number) { return fmt::format("{:02}", number); }

std::string date_text(const VXExplainFields& fields) {
  return fmt::format("{:04}-{:02}-{:02}", fields.year, fields.month, fields.day);
}

/// 12:05:00, with milliseconds where there are any.
std::string time_text(double seconds) {
  const auto milliseconds = static_cast<int64_t>(std::llround(seconds * 1000));
  const int64_t whole = milliseconds / 1000;
  std::string text = fmt::format("{:02}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
  if (milliseconds % 1000 != 0) text += fmt::format(".{:03}", milliseconds % 1000);
  return text;
}

std::string datetime_text(double seconds) {
  const double day = std::floor(seconds / seconds_a_day);
  const double in_day = seconds - day * seconds_a_day;
  const std::string date = write_datetime(static_cast<int64_t>(day) * seconds_a_day);
  return date.substr(0, date.find('T') + 1) + time_text(in_day);
}

class Parser {
 public:
  Parser(Invocation& invocation, DatetimeKind kind) : invocation_(invocation), kind_(kind) {
    const Arguments& arguments = invocation.arguments;
    zone_ = &invocation.session.zone();
    locale_ = reading_locale(zone_->id());
    reader_kind_ = arguments.has(lenient) ? kind_any_form : style_kind();
    if (arguments.has(pattern)) {
      if (arguments.has(as)) fail(ExitCode::usage, "--pattern and --as exclude each other");
      if (arguments.has(style::date) || arguments.has(style::time)) {
        fail(ExitCode::usage, "--pattern replaces the locale's patterns, so there is no style to choose");
      }
      own_pattern_ = true;
      reader_kind_ = arguments.has(lenient) ? kind_lenient_pattern : 0;
    }
    if (const auto word = arguments.value(as)) {
      for (const Reading& reading : readings) {
        if (reading.word == *word) reader_kind_ = reading.kind;
      }
    }
    if (arguments.has(to_pattern) && arguments.has(to_locale)) {
      fail(ExitCode::usage, "--to and --to-locale exclude each other");
    }
    if (arguments.has(to_pattern) || arguments.has(to_locale)) {
      const auto name = arguments.value(to_locale);
      Session& session = invocation.session;
      VXLocale* const target = session.locale_called(name ? session.resolve_locale(*name, "") : session.locale_name());
      writer_ = std::make_unique<DatetimeWriter>(target, kind_);
      if (const auto text = arguments.value(to_pattern)) writer_->use_pattern("--to", *text);
    }
  }

  std::string parse(std::string_view text) {
    if (kind_ == DatetimeKind::date && !asks_why_) {
      if (const auto date = date_at_once(locale_, text, reader_kind_)) {
        return writer_ != nullptr ? writer_->write({day_number(*date) * seconds_a_day}) : iso8601::write(*date);
      }
    }
    const VXExplanation told = ask(locale_, text, reader_kind_);
    check(told, text);
    const std::string written = write(told, text);
    if (invocation_.arguments.has(options::json)) return json(told, text, written);
    return invocation_.arguments.has(explain) ? written + explanation(told, text) : written;
  }

 private:
  /// The locale as it reads in a zone.
  VXLocale* reading_locale(const std::string& zone) const {
    Session& session = invocation_.session;
    VXLocale* const locale = session.locale_called(session.locale_name(), zone);
    if (const auto own = invocation_.arguments.value(pattern))
      store_pattern(main_pattern(*locale, kind_), "--pattern", *own);
    return locale;
  }

  VXExplanation ask(VXLocale* locale, std::string_view text, uint32_t kind) const {
    VXExplanation told;
    told.size = sizeof told;
    const uint32_t what = kind_ == DatetimeKind::date   ? VX_EXPLAIN_DATE
                          : kind_ == DatetimeKind::time ? VX_EXPLAIN_TIME
                                                        : VX_EXPLAIN_DATETIME;
    const VXStatus status = vxnlsExplain(locale, what, kind, reinterpret_cast<const uint8_t*>(text.data()),
                                         static_cast<int64_t>(text.size()), &told);
    if (status != 0) fail_with_status(invocation_.session.host(), "reading", status);
    return told;
  }

  /// Matches of other forms that give another result. Where one pattern alone was tried, all forms are tried for this.
  std::vector<VXExplainMatch> others(const VXExplanation& told, std::string_view text) const {
    std::vector<VXExplainMatch> found(told.others,
                                      told.others + std::min<int64_t>(told.other_count, VX_EXPLAIN_OTHERS));
    if (reader_kind_ == kind_any_form || invocation_.arguments.has(as)) return found;
    const VXExplanation any = ask(locale_, text, kind_any_form);
    if (any.status != 0) return found;
    std::vector<std::string> known{result_of(told.match)};
    const auto add = [&](const VXExplainMatch& match) {
      if (std::find(known.begin(), known.end(), result_of(match)) != known.end()) return;
      known.push_back(result_of(match));
      found.push_back(match);
    };
    add(any.match);
    for (int64_t i = 0; i < std::min<int64_t>(any.other_count, VX_EXPLAIN_OTHERS); ++i) add(any.others[i]);
    return found;
  }

  uint32_t style_kind() const {
    const Arguments& arguments = invocation_.arguments;
    const int32_t number = kind_ == DatetimeKind::date
                               ? style::date_number(arguments.value(style::date).value_or("main"))
                               : style::time_number(arguments.value(style::time).value_or("main"));
    return static_cast<uint32_t>(number);
  }

  void check(const VXExplanation& told, std::string_view text) const {
    if (told.status != 0) {
      const uint32_t reason = told.refusal.reason;
      if (own_pattern_ && (reason == VX_REASON_DIRECTIVE || reason == VX_REASON_PATTERN_ENDED)) {
        fail(ExitCode::usage, "--pattern: {}", describe_reason(told.refusal, text));
      }
      std::string message = describe(told.refusal, text);
      if (invocation_.arguments.has(explain)) {
        message +=
            fmt::format(" ({} forms tried; the one that came furthest is {}, {})", told.refusal.attempts,
                        describe_source(told.refusal.candidate), in_quotes(utf8(told.refusal.candidate.pattern)));
      }
      refuse("{}", message);
    }
    const bool other_form = told.match.candidate.source != VX_SOURCE_DATETIME && kind_ == DatetimeKind::datetime;
    if (own_pattern_ && other_form)
      refuse("it does not match the pattern, only {}", describe_source(told.match.candidate));
    if (told.complete == 0) {
      const std::string shown = in_quotes(utf8(told.match.candidate.pattern));
      if (own_pattern_) fail(ExitCode::usage, "--pattern: {} reads no full date", shown);
      refuse("the pattern {} reads no full date", shown);
    }
    for (const VXExplainMatch* match : {&told.match, &told.time}) {
      if (kind_ == DatetimeKind::date || match->candidate.source == VX_SOURCE_NONE || match->fields.hour < 24) continue;
      refuse("PM makes it hour {}; %I reads the hours that go with AM and PM", match->fields.hour);
    }
    if (told.day_exists == 0) refuse("there is no day {}", date_text(told.match.fields));
    const std::string_view left = text.substr(static_cast<size_t>(told.consumed));
    if (!without_blanks(left).empty() && !invocation_.arguments.has(rest)) {
      refuse("at byte {}: {} follows what was read; --rest allows it", told.consumed, in_quotes(left));
    }
    if (kind_ == DatetimeKind::datetime) check_seconds(static_cast<int64_t>(std::floor(told.value)));
  }

  /// Of a datetime with an offset or a zone the instant: its local time alone may occur twice.
  Moment moment(const VXExplanation& told, std::string_view text) {
    const auto seconds =
        static_cast<int64_t>(std::floor(kind_ == DatetimeKind::date ? told.value * seconds_a_day : told.value));
    const auto fixed = [](const VXExplainMatch& match) {
      const bool matched = match.candidate.source != VX_SOURCE_NONE;
      return matched && (match.fields.offset != VX_NO_OFFSET || match.fields.zone_given != 0);
    };
    if (kind_ != DatetimeKind::datetime || !(fixed(told.match) || fixed(told.time))) return {seconds};
    if (in_utc_ == nullptr) in_utc_ = reading_locale("Etc/UTC");
    return writer_->at_instant(static_cast<int64_t>(std::floor(ask(in_utc_, text, reader_kind_).value)));
  }

  std::string write(const VXExplanation& told, std::string_view text) {
    if (writer_ != nullptr) return writer_->write(moment(told, text));
    switch (kind_) {
      case DatetimeKind::date: return date_text(told.match.fields);
      case DatetimeKind::time: return time_text(told.value);
      default: return datetime_text(told.value);
    }
  }

  /// What one match gives, for --explain and the list of other matches.
  std::string result_of(const VXExplainMatch& match) const {
    const VXExplainFields& fields = match.fields;
    if (fields.year != 0 && fields.month != 0 && fields.day != 0) return date_text(fields);
    return fmt::format("{}:{}:{}", two(fields.hour), two(fields.minute), two(fields.second));
  }

  std::string explanation(const VXExplanation& told, std::string_view text) const {
    Table table("  ");
    const Colors colors = invocation_.colors;
    const auto row = [&](std::string_view name, std::string cell, Tint tint = Tint::faint) {
      table.row({colors.paint(tint, name), std::move(cell)});
    };
    const auto add = [&](const VXExplainMatch& match, std::string_view name) {
      row(name, in_quotes(text.substr(static_cast<size_t>(match.start), static_cast<size_t>(match.end - match.start))));
      row("  form", fmt::format("{}, {}", utf8(match.candidate.pattern), describe_source(match.candidate)));
    };
    add(told.match, kind_ == DatetimeKind::time ? "time" : "date");
    if (told.time.candidate.source != VX_SOURCE_NONE) add(told.time, "time");
    const VXExplainFields& fields = told.match.fields;
    if (fields.quarter != 0) row("quarter", std::to_string(fields.quarter));
    if (fields.week != 0) row("week", std::to_string(fields.week % 100));
    for (const VXExplainMatch* match : {&told.match, &told.time}) {
      if (match->fields.offset != VX_NO_OFFSET && match->candidate.source != VX_SOURCE_NONE) {
        row("offset", iso8601::write_offset(match->fields.offset));
      }
    }
    const std::string_view left = text.substr(static_cast<size_t>(told.consumed));
    if (!left.empty()) row("rest", in_quotes(left));
    for (const VXExplainMatch& other : others(told, text)) {
      row("ambiguous",
          fmt::format("{} by {}, {}", result_of(other), utf8(other.candidate.pattern),
                      describe_source(other.candidate)),
          Tint::warning);
    }
    std::string lines = fmt::format("\n{}", table.text());
    if (lines.ends_with('\n')) lines.pop_back();
    return lines;
  }

  Json match_json(const VXExplainMatch& match) const {
    const VXExplainFields& fields = match.fields;
    Json object{{"pattern", utf8(match.candidate.pattern)},
                {"source", describe_source(match.candidate)},
                {"lenient", match.candidate.lenient != 0},
                {"start", match.start},
                {"end", match.end}};
    Json read = Json::object();
    const auto add = [&](const char* name, int32_t value) {
      if (value != 0) read[name] = value;
    };
    add("year", fields.year);
    add("month", fields.month);
    add("day", fields.day);
    add("hour", fields.hour);
    add("minute", fields.minute);
    add("second", fields.second);
    add("milliseconds", fields.milliseconds);
    add("quarter", fields.quarter);
    add("week", fields.week % 100);
    if (fields.offset != VX_NO_OFFSET) read["offset"] = fields.offset;
    if (fields.marker != 0) read["marker"] = fields.marker == 1 ? "AM" : "PM";
    object["fields"] = read;
    return object;
  }

  std::string json(const VXExplanation& told, std::string_view text, const std::string& written) const {
    Json object{{"value", text}, {"text", written}};
    if (kind_ == DatetimeKind::date) object["day"] = static_cast<int64_t>(told.value);
    else object["seconds"] = told.value;
    object["consumed"] = told.consumed;
    object["rest"] = text.substr(static_cast<size_t>(told.consumed));
    object["form"] = match_json(told.match);
    if (told.time.candidate.source != VX_SOURCE_NONE) object["time_form"] = match_json(told.time);
    Json list = Json::array();
    for (const VXExplainMatch& match : others(told, text)) {
      Json other = match_json(match);
      other["text"] = result_of(match);
      list.push_back(other);
    }
    object["ambiguous"] = !list.empty();
    object["others"] = list;
    object["locale"] = invocation_.session.locale_name();
    object["zone"] = zone_->id();
    return json_line(object);
  }

  Invocation& invocation_;
  const DatetimeKind kind_;
  const Zone* zone_ = nullptr;
  VXLocale* locale_ = nullptr;
  VXLocale* in_utc_ = nullptr;  // the same, for instants
  uint32_t reader_kind_ = 0;
  bool own_pattern_ = false;
  const bool asks_why_ = invocation_.arguments.has(explain) || invocation_.arguments.has(options::json);
  std::unique_ptr<DatetimeWriter> writer_;
};

ExitCode run(Invocation& invocation, DatetimeKind kind) {
  Parser parser(invocation, kind);
  return for_each_value(invocation, invocation.arguments.values(),
                        [&](std::string_view value) { return parser.parse(value); });
}

ExitCode run_date(Invocation& invocation) { return run(invocation, DatetimeKind::date); }
ExitCode run_time(Invocation& invocation) { return run(invocation, DatetimeKind::time); }
ExitCode run_datetime(Invocation& invocation) { return run(invocation, DatetimeKind::datetime); }

constexpr Argument arguments[] = {
    {.name = "TEXT",
     .help = "what is read; without one, every line of standard input, one line out for every line in",
     .repeats = true}};

constexpr const Option* date_options[] = {&lenient,
                                          &style::date,
                                          &as,
                                          &pattern,
                                          &rest,
                                          &to_pattern,
                                          &to_locale,
                                          &explain,
                                          &options::json,
                                          &options::unread,
                                          &options::ok_unread,
                                          &options::chunk_header};
constexpr const Option* time_options[] = {&lenient,
                                          &style::time,
                                          &pattern,
                                          &rest,
                                          &to_pattern,
                                          &to_locale,
                                          &explain,
                                          &options::json,
                                          &options::unread,
                                          &options::ok_unread,
                                          &options::chunk_header};
constexpr const Option* datetime_options[] = {&lenient,
                                              &pattern,
                                              &rest,
                                              &to_pattern,
                                              &to_locale,
                                              &explain,
                                              &options::json,
                                              &options::unread,
                                              &options::ok_unread,
                                              &options::chunk_header};

constexpr Example date_examples[] = {{"vxnls parse date '31. Dezember 2021' --locale de_DE --lenient", "2021-12-31"},
                                     {"vxnls parse date 'W53 2020' --as week-iso", "2020-12-28"},
                                     {"vxnls parse date 03/04/2021 --locale en_GB --to '%#d %B %Y'", "3 April 2021"}};
constexpr Example time_examples[] = {
    {"vxnls parse time '12:05 am' --locale en_US --lenient", "00:05:00"},
    {"vxnls parse time 14.05.09 --pattern '%H.%M.%S'", "14:05:09"},
    {"vxnls parse time 14:05 --locale de_DE --style short --to '%I:%M %p'", "02:05 PM"}};
constexpr Example datetime_examples[] = {
    {"vxnls parse datetime '2021-03-04T10:20:30' --zone Europe/Berlin", "2021-03-04T10:20:30"},
    {"vxnls parse datetime '2021-07-04 10:20:30 +0000' --zone Europe/Berlin --pattern '%Y-%m-%d %H:%M:%S %z'",
     "2021-07-04T12:20:30"},
    {"vxnls parse datetime '2021-10-31 01:30 +0000' --zone Europe/Berlin --pattern '%Y-%m-%d %H:%M %z' --to '%H:%M %z'",
     "02:30 +0100"},
    {"vxnls parse datetime '3/4/2021 2:05 PM' --locale en_US --lenient", "2021-03-04T14:05:00"}};

}  // namespace

const Command parse_date{
    .name = "date",
    .summary = "Reads dates as the locale writes them",
    .description =
        "A date is read by the locale's main date pattern, by another with --style or --pattern; its fields are as "
        "wide as the pattern wants. --lenient tries the locale's three patterns and 17 common forms, day first or "
        "month first as the locale has it; the first that matches wins, and --explain tells when another would give "
        "another date. --as reads a month, a quarter or a week of a year, and gives its first day; what the locale's "
        "own pattern of weeks reads, as 2021-W09, begins as its weeks do, whichever week --as asks for.\n"
        "\n"
        "The result is ISO 8601, unless --to or --to-locale says otherwise. A day that does not exist is refused.",
    .arguments = arguments,
    .options = date_options,
    .examples = date_examples,
    .run = run_date};

const Command parse_time{
    .name = "time",
    .summary = "Reads times of day as the locale writes them",
    .description =
        "A time is read by the locale's main time pattern, by another with --style or --pattern. --lenient tries the "
        "locale's patterns, also without their seconds, and common forms; AM and PM go by the locale's words.",
    .arguments = arguments,
    .options = time_options,
    .examples = time_examples,
    .run = run_time};

const Command parse_datetime{
    .name = "datetime",
    .summary = "Reads dates with their time as the locale writes them",
    .description =
        "A datetime is read by the locale's datetime pattern, or by --pattern. When that does not match, a date and a "
        "time are read one after the other; --lenient does only this, in any common form. The result is local time of "
        "the zone: an offset (%z) or a zone (%Z) in the text is converted.",
    .arguments = arguments,
    .options = datetime_options,
    .examples = datetime_examples,
    .run = run_datetime};

}  // namespace vxcli
