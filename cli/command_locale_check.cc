// vxnls locale check
#include <array>

#include "cli/commands.h"
#include "cli/json.h"
#include "cli/locale_database.h"
#include "cli/options.h"
#include "cli/session.h"
#include "cli/text.h"

namespace vxcli {

namespace {

/// What one locale's check found.
struct Findings {
  std::string name;
  std::vector<LocaleDatabase::Violation> violations;
  std::vector<LocaleDatabase::Fallback> fallbacks;
};

/// Writes dates, times and datetimes by the patterns of a locale's record and reads them back, by the pattern alone and
/// as a text of any common form.
class RoundTrip {
 public:
  explicit RoundTrip(VXLocale* locale) : locale_(locale) {}

  std::vector<LocaleDatabase::Violation> run() {
    violations_.clear();
    for (const bool any_form : {false, true}) {
      dates("datePattern", 0, any_form ? any_common_form : 0);
      dates("datePattern1", 1, any_form ? any_common_form : 1);
      dates("datePattern2", 2, any_form ? any_common_form : 2);
      times("timePattern", 0, any_form ? any_common_form : 0);
      times("timePattern1", 1, any_form ? any_common_form : 1);
      datetimes("datetimePattern", any_form ? any_common_form : 0);
    }
    return std::move(violations_);
  }

 private:
  static constexpr uint32_t any_common_form = 4;

  // Every month and week day, days of one and of two digits.
  static constexpr int64_t first_sample = 23376;  // 2024-01-01
  static constexpr int64_t days_of_sample = 366;

  /// False when the text could not be written or was not read back, which is reported.
  bool check(const char* entry, uint32_t kind, VXStatus written, VXStatus read, bool same) {
    const std::string text(reinterpret_cast<const char*>(buffer_.data()), static_cast<size_t>(length_));
    std::string fault;
    if (written != 0) {
      fault = fmt::format("it cannot be written (status 0x{:08x})", written);
    } else if (read != 0) {
      fault = fmt::format("{} is not read back", in_quotes(text));
    } else if (consumed_ != length_) {
      fault = fmt::format("{} is read back only to byte {}", in_quotes(text), consumed_);
    } else if (!same) {
      fault = fmt::format("{} is read back as something else", in_quotes(text));
    } else {
      return true;
    }
    if (kind == any_common_form) fault += " among all common forms";
    violations_.push_back({"round trip", entry, fault});
    return false;
  }

  void dates(const char* entry, int32_t style, uint32_t kind) {
    for (int64_t number = first_sample; number < first_sample + days_of_sample; ++number) {
      const iso8601::Date date = date_of(number);
      const auto month = static_cast<uint32_t>(date.month);
      const auto day = static_cast<uint32_t>(date.day);
      const auto year = static_cast<uint32_t>(date.year);
      uint32_t read_month = 0;
      uint32_t read_day = 0;
      uint32_t read_year = 0;
      const VXStatus written =
          locale_->ops.NLSDateFormatU(locale_, month, day, year, style, buffer_.data(), room, &length_);
      const VXStatus read = locale_->ops.NLSBufToDateU(locale_, buffer_.data(), length_, kind, &read_month, &read_day,
                                                       &read_year, &consumed_);
      const bool same = read_month == month && read_day == day && read_year == year;
      if (!check(entry, kind, written, read, same)) return;
    }
  }

  void times(const char* entry, int32_t style, uint32_t kind) {
    constexpr int64_t step = 601;
    for (int64_t seconds = 0; seconds < seconds_a_day; seconds += step) {
      double value = 0;
      const VXStatus written =
          locale_->ops.NLSTimeFormatU(locale_, style, buffer_.data(), room, &length_, static_cast<double>(seconds));
      const VXStatus read = locale_->ops.NLSBufToTimeU(locale_, buffer_.data(), length_, kind, &value, &consumed_);
      // The short pattern has no seconds.
      const int64_t expected = style == 0 ? seconds : seconds - seconds % 60;
      if (!check(entry, kind, written, read, static_cast<int64_t>(value) == expected)) return;
    }
  }

  void datetimes(const char* entry, uint32_t kind) {
    for (int64_t day = first_sample; day < first_sample + days_of_sample; ++day) {
      const int64_t seconds = day * seconds_a_day + (day * 7919) % seconds_a_day;
      double value = 0;
      const VXStatus written =
          locale_->ops.NLSDatetimeFormatU(locale_, 0, buffer_.data(), room, &length_, static_cast<double>(seconds));
      const VXStatus read = locale_->ops.NLSBufToDatetimeU(locale_, buffer_.data(), length_, kind, &value, &consumed_);
      if (!check(entry, kind, written, read, static_cast<int64_t>(value) == seconds)) return;
    }
  }

  static constexpr int64_t room = 2048;
  VXLocale* locale_;
  std::array<uint8_t, room> buffer_{};
  int64_t length_ = 0;    // of what was written last
  int64_t consumed_ = 0;  // of it, in reading
  std::vector<LocaleDatabase::Violation> violations_;
};

Json as_json(const Findings& findings) {
  Json violations = Json::array();
  for (const auto& one : findings.violations) {
    violations.push_back({{"rule", one.rule}, {"entry", one.entry}, {"text", one.text}});
  }
  Json fallbacks = Json::array();
  for (const auto& one : findings.fallbacks) {
    fallbacks.push_back({{"entry", one.entry}, {"used", one.used}, {"reason", one.reason}});
  }
  return {{"locale", findings.name}, {"broken", violations}, {"fallbacks", fallbacks}};
}

ExitCode run(Invocation& invocation) {
  Session& session = invocation.session;
  const LocaleDatabase database(session.host());
  std::vector<std::string> names;
  for (const std::string& name : invocation.arguments.values()) names.push_back(session.resolve_locale(name, ""));
  if (names.empty()) names = database.names();

  // One locale serves for all: its record is filled anew for each.
  VXLocale* const locale = session.locale_called("root", "UTC");
  RoundTrip round_trip(locale);
  size_t broken = 0;
  size_t fallen_back = 0;
  Table table;
  Json list = Json::array();
  for (const std::string& name : names) {
    database.fill(name, *locale->localeData);
    Findings findings{name, database.violations(*locale->localeData), database.fallbacks(name)};
    const auto unread = round_trip.run();
    findings.violations.insert(findings.violations.end(), unread.begin(), unread.end());
    for (const auto& one : findings.violations) table.row({name, "BROKEN", one.entry, one.rule + ": " + one.text});
    for (const auto& one : findings.fallbacks) table.row({name, "fallback", one.entry, one.used, one.reason});
    broken += findings.violations.empty() ? 0 : 1;
    fallen_back += findings.fallbacks.empty() ? 0 : 1;
    if (invocation.arguments.has(options::json)) list.push_back(as_json(findings));
  }
  if (invocation.arguments.has(options::json)) {
    invocation.out.line(json_page(list));
  } else {
    invocation.out.put(table.text());
    invocation.out.line(fmt::format("{} locale{} checked: {} break a rule, {} have entries that fell back",
                                    names.size(), names.size() == 1 ? "" : "s", broken, fallen_back));
  }
  return broken == 0 ? ExitCode::done : ExitCode::some_unread;
}

constexpr Argument arguments[] = {{.name = "LOCALE",
                                   .help = "which locales; all when none is named",
                                   .repeats = true,
                                   .completes = Completes::locales}};
constexpr const Option* command_options[] = {&options::json};
constexpr Example examples[] = {
    {"vxnls locale check de_DE", "1 locale checked: 0 break a rule, 0 have entries that fell back"},
    {"vxnls locale check vi_VN",
     "vi_VN  fallback  datePattern1  %d/%m/%Y  R6: \"thg 10\" reads as \"thg 1\"; CLDR has \"d MMM, y\"\n"
     "vi_VN  fallback  datePattern2  %d/%m/%Y  R6: \"tháng 10\" reads as \"tháng 1\"; CLDR has \"d MMMM, y\"\n"
     "1 locale checked: 0 break a rule, 1 have entries that fell back"},
    {"vxnls locale check --json fr_FR",
     "[\n"
     "  {\n"
     "    \"locale\": \"fr_FR\",\n"
     "    \"broken\": [],\n"
     "    \"fallbacks\": []\n"
     "  }\n"
     "]"}};

}  // namespace

const Command locale_check{
    .name = "check",
    .summary = "Checks that what the locales' patterns write reads back",
    .description =
        "Holds the record of each locale against the rules of the database, then writes 366 days and 144 times by each "
        "of its patterns and reads them back, by that pattern and as a text of any common form. A rule that is broken "
        "is a fault of the database, and the exit code is 1. An entry that fell back is none: CLDR has something there "
        "that could not be read back, and the line says what stands there instead and why.",
    .arguments = arguments,
    .options = command_options,
    .examples = examples,
    .run = run};

}  // namespace vxcli
