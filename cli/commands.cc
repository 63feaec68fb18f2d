#include "cli/commands.h"

#include "cli/options.h"

namespace vxcli {

namespace {

constexpr const Command* format_commands[] = {&format_date,    &format_time,     &format_datetime, &format_number,
                                              &format_percent, &format_currency, &format_integer};
constexpr Example format_examples[] = {
    {"vxnls format date 2026-11-21 --locale hi_IN --style long", "21 नवंबर 2026"},
    {"vxnls format time 14:05 --locale fr_CA", "14 h 05 min 00 s"},
    {"vxnls format datetime 2026-11-21T14:05:09Z --locale ar_EG --zone Africa/Cairo", "21/11/2026 4:05:09 م"}};
constexpr Command format{.name = "format",
                         .summary = "Writes dates, times and numbers as a locale does",
                         .examples = format_examples,
                         .commands = format_commands};

constexpr const Command* parse_commands[] = {&parse_date, &parse_time, &parse_datetime, &parse_number, &parse_integer};
constexpr Example parse_examples[] = {
    {"vxnls parse date '21. November 2026' --locale de_DE --style long", "2026-11-21"},
    {"vxnls parse time '2:05:09 PM' --locale en_US", "14:05:09"},
    {"vxnls parse number 1.234.567,89 --locale de_DE", "1234567.89"}};
constexpr Command parse{.name = "parse",
                        .summary = "Reads dates, times and numbers as a locale writes them",
                        .examples = parse_examples,
                        .commands = parse_commands};

constexpr const Command* locale_commands[] = {&locale_list, &locale_show, &locale_check};
constexpr Example locale_examples[] = {{"vxnls locale list --details de_",
                                        "de_AT   German (Austria)        Deutsch (Österreich)\n"
                                        "de_BE   German (Belgium)        Deutsch (Belgien)\n"
                                        "de_CH   German (Switzerland)    Deutsch (Schweiz)\n"
                                        "de_DE   German (Germany)        Deutsch (Deutschland)\n"
                                        "de_IT   German (Italy)          Deutsch (Italien)\n"
                                        "de_LI   German (Liechtenstein)  Deutsch (Liechtenstein)\n"
                                        "de_LU   German (Luxembourg)     Deutsch (Luxemburg)\n"
                                        "kde_TZ  Makonde (Tanzania)      Chimakonde (Tanzania)"},
                                       {"vxnls locale show pl_PL | grep datePattern",
                                        "  datePattern      %d.%m.%Y           21.11.2026\n"
                                        "  datePattern1     %#d %b %Y          21 lis 2026\n"
                                        "  datePattern2     %#d %B %Y          21 listopada 2026"},
                                       {"vxnls locale check ja_JP",
                                        "ja_JP  fallback  datePattern2  %Y年%m月%#d日  no directive writes and reads a "
                                        "month without its leading zero; CLDR has \"y年M月d日\"\n"
                                        "1 locale checked: 0 break a rule, 1 have entries that fell back"}};
constexpr Command locale{.name = "locale",
                         .summary = "Lists, shows and checks the locales",
                         .examples = locale_examples,
                         .commands = locale_commands};

constexpr const Command* commands[] = {&format,    &parse,       &recognise, &normalise, &locale,     &calendar, &zone,
                                       &transcode, &change_case, &compare,   &chars,     &completion, &help};

constexpr const Option* common_options[] = {&options::locale,     &options::zone, &options::quiet,  &options::color,
                                            &options::short_help, &options::help, &options::version};

constexpr Example examples[] = {
    {"vxnls format datetime 2026-11-21T14:05:09 --locale ja_JP --zone Asia/Tokyo", "2026/11/21 14:05:09"},
    {"vxnls calendar 2000-02-29",
     "date         2000-02-29  back from it: day number 14669\n"
     "day number   14669       back from it: 2000-02-29\n"
     "Julian date  2000060     back from it: 2000-02-29, day number 14669\n"
     "day of year  60 of 366\n"
     "week day     3 Tuesday"},
    {"vxnls zone Europe/Berlin 2026-07-01T00:00",
     "zone          Europe/Berlin\n"
     "local time    2026-07-01T00:00:00\n"
     "UTC           2026-06-30T22:00:00Z\n"
     "offset        +02:00\n"
     "abbreviation  CEST\n"
     "summer time   yes"}};

constexpr Definition variables[] = {
    {"VXNLS_LOCALE", "the locale"},
    {"LC_ALL, LC_TIME, LC_NUMERIC, LANG",
     "the locale, where VXNLS_LOCALE is not set: the first one that is, LC_TIME for dates and times, LC_NUMERIC for "
     "numbers; C when none is"},
    {"VXNLS_ZONE", "the time zone"},
    {"TZ", "the time zone, where VXNLS_ZONE is not set; without it the system's"},
    {"TZDIR", "where the tz database lies, if not in /usr/share/zoneinfo"},
    {"NO_COLOR", "when set and not empty: no colours, unless --color asks for them"},
    {"CLICOLOR_FORCE", "when set, neither empty nor 0: colours also where the output goes to no terminal"},
    {"VXHOST_JOURNAL", "stderr: the host's notices go to standard error"},
    {"VXHOST_PATH", "folders with extensions of the host, separated by colons, besides the one it lies in"}};

constexpr Definition codes[] = {{"0", "done"},
                                {"1",
                                 "finished, but some values could not be read; of values of the command line none is "
                                 "printed then"},
                                {"2", "wrong usage, locale, zone or pattern"},
                                {"3", "reading or writing failed"},
                                {"4", "the host failed, or memory is exhausted"}};

}  // namespace

const std::span<const Definition> environment = variables;
const std::span<const Definition> exit_codes = codes;

const Command root_command{
    .name = "vxnls",
    .summary = "Dates, times and numbers in every locale and time zone",
    .description =
        "--locale and --zone choose the locale and the time zone; without them the environment does. Both may stand "
        "before or behind the command, as all options of every command. Everything behind \"--\" is a value.",
    .options = common_options,
    .examples = examples,
    .commands = commands};

}  // namespace vxcli
