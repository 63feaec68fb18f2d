// vxnls format date, time, datetime
#include <algorithm>
#include <array>
#include <iterator>

#include "cli/commands.h"
#include "cli/for_each_value.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/session.h"
#include "cli/text.h"

namespace vxcli {

namespace {

enum class Kind { date, time, datetime };

constexpr std::string_view date_styles[] = {"short", "medium", "long", "main", "1", "2"};
constexpr std::string_view time_styles[] = {"short", "medium", "main", "1"};

constexpr Option pattern{
    .name = "pattern", .value = "PATTERN", .help = "a pattern of directives instead of the locale's, as '%Y-%m-%d'"};
constexpr Option date_style{.name = "style",
                            .value = "STYLE",
                            .help = "which of the locale's date patterns; short is main, medium is 1, long is 2",
                            .choices = date_styles,
                            .completes = Completes::choices};
constexpr Option time_style{.name = "style",
                            .value = "STYLE",
                            .help = "which of the locale's time patterns; medium is main, short is 1",
                            .choices = time_styles,
                            .completes = Completes::choices};
constexpr Option time_style_of_datetime{.name = "time-style",
                                        .value = "STYLE",
                                        .help = "which of the locale's time patterns; medium is main, short is 1",
                                        .choices = time_styles,
                                        .completes = Completes::choices};

/// The number by which the library knows a style; 0 is the main one.
int32_t date_style_number(std::string_view word) {
  return word == "1" || word == "medium" ? 1 : word == "2" || word == "long" ? 2 : 0;
}
int32_t time_style_number(std::string_view word) { return word == "1" || word == "short" ? 1 : 0; }

int64_t stored_length(const NLSName& name) { return std::clamp<int64_t>(name.length, 0, std::size(name.text)); }

/// False, with nothing changed, when the text has more than 60 units.
bool store(NLSName& name, std::u32string_view text) {
  if (text.size() > std::size(name.text)) return false;
  std::copy(text.begin(), text.end(), name.text);
  name.length = static_cast<int64_t>(text.size());
  return true;
}

std::u32string stored(const NLSName& name) { return {name.text, name.text + stored_length(name)}; }

/// The pattern with every directive that writes an offset (%z, %?Z, %?z) replaced by the offset itself.
std::u32string with_offset(std::u32string_view text, int32_t seconds) {
  const int32_t minutes = std::abs(seconds) / 60;
  const std::string digits = fmt::format("{}{:02}{:02}", seconds < 0 ? '-' : '+', minutes / 60, minutes % 60);
  std::u32string result;
  for (size_t at = 0; at < text.size();) {
    size_t length = 1;
    if (text[at] == U'%' && at + 1 < text.size()) {
      const bool modified = text[at + 1] == U'?' || text[at + 1] == U'#';
      length = std::min<size_t>(modified ? 3 : 2, text.size() - at);
    }
    const std::u32string_view part = text.substr(at, length);
    if (part == U"%z" || part == U"%?z" || part == U"%?Z") {
      result.append(digits.begin(), digits.end());
    } else {
      result += part;
    }
    at += length;
  }
  return result;
}

/// Writes values of one kind by one pattern of the session's own locale.
class Formatter {
 public:
  Formatter(Invocation& invocation, Kind kind) : kind_(kind), zone_(invocation.session.zone()) {
    locale_ = invocation.session.locale();
    const Arguments& arguments = invocation.arguments;
    const int32_t date = date_style_number(arguments.value(date_style).value_or("main"));
    const int32_t time =
        time_style_number(arguments.value(kind == Kind::time ? time_style : time_style_of_datetime).value_or("main"));
    style_ = kind == Kind::date ? date : time;
    if (const auto own = arguments.value(pattern)) {
      if (arguments.has(date_style) || arguments.has(time_style) || arguments.has(time_style_of_datetime)) {
        fail(ExitCode::usage, "--pattern replaces the locale's patterns, so there is no style to choose");
      }
      style_ = 0;
      use_pattern(*own);
    } else if (kind == Kind::datetime && (arguments.has(date_style) || arguments.has(time_style_of_datetime))) {
      use_pattern_of(date, time);
    }
    whole_pattern_ = stored(entry());
  }

  std::string write(const Moment& moment) {
    // Of a local time that occurs twice the library writes the offset of the first. Where the value says which one is
    // meant, its offset is put into the pattern.
    const bool other_offset =
        moment.offset && *moment.offset != zone_.offset_at_local(static_cast<double>(moment.seconds));
    if (!other_offset) return written(moment.seconds);
    if (!store(entry(), with_offset(whole_pattern_, *moment.offset))) {
      refuse("it is the second of two equal local times, and its offset makes the pattern longer than 60 characters");
    }
    std::string text = written(moment.seconds);
    store(entry(), whole_pattern_);
    return text;
  }

 private:
  /// The entry of the record that the library's formatter reads.
  NLSName& entry() const {
    VXLocaleData& data = *locale_->localeData;
    switch (kind_) {
      case Kind::date: return style_ == 1 ? data.datePattern1 : style_ == 2 ? data.datePattern2 : data.datePattern;
      case Kind::time: return style_ != 0 ? data.timePattern1 : data.timePattern;
      default: return data.datetimePattern;
    }
  }

  VXStatus format(int64_t seconds, std::string& text) const {
    std::array<uint8_t, 2048> buffer;  // the longest text of the library has 512 bytes
    int64_t length = 0;
    VXStatus status = 0;
    const auto value = static_cast<double>(seconds);
    constexpr auto room = static_cast<int64_t>(buffer.size());
    if (kind_ == Kind::date) {
      const iso8601::Date date = date_of(day_of(seconds));
      status = locale_->ops.NLSDateFormatU(locale_, static_cast<uint32_t>(date.month), static_cast<uint32_t>(date.day),
                                           static_cast<uint32_t>(date.year), style_, buffer.data(), room, &length);
    } else if (kind_ == Kind::time) {
      status = locale_->ops.NLSTimeFormatU(locale_, style_, buffer.data(), room, &length, value);
    } else {
      status = locale_->ops.NLSDatetimeFormatU(locale_, 0, buffer.data(), room, &length, value);
    }
    text.assign(reinterpret_cast<const char*>(buffer.data()), static_cast<size_t>(length));
    return status;
  }

  std::string written(int64_t seconds) const {
    std::string text;
    const VXStatus status = format(seconds, text);
    if (status == VX_E_TRUNCATED)
      fail(ExitCode::usage, "the pattern writes more than the 512 bytes that a text may have");
    if (status != 0) fail(ExitCode::host, "the value cannot be written (status 0x{:08x})", status);
    return text;
  }

  bool accepts(std::u32string_view text) const {
    store(entry(), text);
    std::string ignored;
    return format(0, ignored) != VX_E_DIRECTIVE;
  }

  void use_pattern(const std::string& own) {
    const auto units = utf32(own);
    if (!units) fail(ExitCode::usage, "--pattern {}: it is not UTF-8", in_quotes(own));
    if (units->size() > std::size(entry().text)) {
      fail(ExitCode::usage, "--pattern {}: it has {} characters, at most {} are possible", in_quotes(own),
           units->size(), std::size(entry().text));
    }
    constexpr size_t most_bytes = 180;
    if (own.size() > most_bytes) {
      fail(ExitCode::usage, "--pattern {}: it has {} bytes, at most {} are possible", in_quotes(own), own.size(),
           most_bytes);
    }
    if (!accepts(*units)) explain(own, *units);
    store(entry(), *units);
  }

  /// Names the first directive that the library does not accept: it begins behind the longest beginning of the pattern
  /// that is accepted.
  [[noreturn]] void explain(const std::string& own, const std::u32string& units) {
    size_t begin = units.size();
    while (begin > 0 && !accepts(std::u32string_view(units).substr(0, begin))) --begin;
    std::u32string directive = units.substr(begin, 2);
    if (directive == U"%?" || directive == U"%#") directive = units.substr(begin, 3);
    std::string shown;
    for (const char32_t c : directive) shown += utf8(c);
    size_t byte = 0;
    for (const char32_t c : units.substr(0, begin)) byte += utf8(c).size();
    const std::string where = fmt::format("--pattern {}: at byte {}: ", in_quotes(own), byte);

    const Kind wanted = std::exchange(kind_, Kind::datetime);
    const bool writes_time = wanted == Kind::date && accepts(directive);
    kind_ = wanted;
    if (writes_time) fail(ExitCode::usage, "{}{} writes a time, and a date has none", where, in_quotes(shown));
    if (directive.back() == U'%' || directive == U"%?" || directive == U"%#") {
      fail(ExitCode::usage, "{}the pattern ends within a directive; \"%%\" writes a percent sign", where);
    }
    fail(ExitCode::usage, "{}{} is no directive; \"vxnls format datetime --help\" lists them", where, in_quotes(shown));
  }

  void use_pattern_of(int32_t date, int32_t time) {
    const VXLocaleData& data = *locale_->localeData;
    const NLSName& date_pattern = date == 1 ? data.datePattern1 : date == 2 ? data.datePattern2 : data.datePattern;
    const NLSName& time_pattern = time != 0 ? data.timePattern1 : data.timePattern;
    if (!store(entry(), stored(date_pattern) + U' ' + stored(time_pattern))) {
      fail(ExitCode::usage, "the patterns of these styles do not fit together into 60 characters; use --pattern");
    }
  }

  Kind kind_;
  const Zone& zone_;
  VXLocale* locale_ = nullptr;
  int32_t style_ = 0;
  std::u32string whole_pattern_;
};

ExitCode run(Invocation& invocation, Kind kind) {
  Formatter formatter(invocation, kind);
  ValueReader& values = invocation.session.values();
  const bool as_json = invocation.arguments.has(options::json);
  return for_each_value(invocation, invocation.arguments.values(), [&](std::string_view value) {
    Moment moment;
    if (kind == Kind::date) {
      moment = {values.date(value) * seconds_a_day};
    } else {
      moment = kind == Kind::time ? values.time(value) : values.datetime(value);
    }
    std::string text = formatter.write(moment);
    if (!as_json) return text;
    const std::string iso = write_datetime(moment.seconds);
    Json object{{"value", value}, {"text", text}};
    if (kind == Kind::date) {
      object["date"] = iso.substr(0, iso.find('T'));
      object["day"] = day_of(moment.seconds);
    } else if (kind == Kind::time) {
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

ExitCode run_date(Invocation& invocation) { return run(invocation, Kind::date); }
ExitCode run_time(Invocation& invocation) { return run(invocation, Kind::time); }
ExitCode run_datetime(Invocation& invocation) { return run(invocation, Kind::datetime); }

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

constexpr const Option* date_options[] = {&date_style, &pattern, &options::json};
constexpr const Option* time_options[] = {&time_style, &pattern, &options::json};
constexpr const Option* datetime_options[] = {&date_style, &time_style_of_datetime, &pattern, &options::json};

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
        "Values are dates of the Gregorian calendar, 1582-01-01 to 20000-12-31. A day number counts days from "
        "1960-01-01. 2026-11-21T14:05:09+02:00 or ...Z is an instant, and the date is the one that the zone has then; "
        "so are now, and @1795266309, which counts seconds from 1970-01-01 00:00 UTC.\n"
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
        "  %Y    year                      %H    hour, 00 to 23\n"
        "  %m    month, 01 to 12           %I    hour, 01 to 12\n"
        "  %B %b month's name, in short    %p    AM or PM\n"
        "  %d    day, 01 to 31             %M    minute\n"
        "  %A %a week day's name, in short %S    second\n"
        "  %W    week day, 0 is Sunday     %z    offset from UTC, +0100\n"
        "  %E %O day, month, blank for 0   %Z    name of the zone\n"
        "  %K    hour, 01 to 24            %L    hour, 00 to 12, 00 at midnight\n"
        "  %U    always 7                  %%    a percent sign\n"
        "%#d, %#H, %#I and so on leave out the leading zero; %#m is the minute.",
    .arguments = datetime_arguments,
    .options = datetime_options,
    .examples = datetime_examples,
    .run = run_datetime};

}  // namespace vxcli
