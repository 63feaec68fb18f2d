// What is decided about a column, the file that keeps it, single values under a given decision, and columns of a
// million rows.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <unicode/numberformatter.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <functional>
#include <optional>
#include <random>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "cli/column/profiler.h"
#include "cli/column/reader.h"
#include "cli/errors.h"
#include "vxnls/vxhost.h"

namespace {

using namespace testing;
using namespace vxcli::column;
using Values = std::vector<std::string>;

/// The host stays open to the end of the program.
LocaleMaker locale_maker(const std::string& zone = "UTC") {
  static const std::unique_ptr<VXHost, void (*)(VXHost*)> host = [] {
    VXHost* opened = nullptr;
    EXPECT_EQ(vxhostOpen(nullptr, &opened), 0U) << vxhostOpenFailure();
    return std::unique_ptr<VXHost, void (*)(VXHost*)>(opened, vxhostClose);
  }();
  return [zone](const std::string& name) {
    VXLocale* locale = nullptr;
    EXPECT_EQ(vxhostLocale(host.get(), name.c_str(), zone.c_str(), 1, &locale), 0U) << name;
    return locale;
  };
}

ProfilerOptions options_of(const char* locale, bool given = false) {
  ProfilerOptions options;
  options.locales = {locale};
  options.locale_given = given;
  return options;
}

Values repeated(size_t count, const std::string& value, Values more) {
  more.insert(more.end(), count, value);
  return more;
}

TEST(ColumnProfile, Decisions) {
  const ProfilerOptions env = options_of("en_US"), given = options_of("en_US", true);
  ProfilerOptions day_first = given, dates = env, periods = env, comma = env, strict = env;
  day_first.order = Order::day_first;
  dates.kind = Kind::date;
  periods.kind = Kind::period;
  comma.decimal_point = ",";
  strict.strict = true;
  const struct {
    ProfilerOptions options;
    Values values;
    const char* decision;  // kind, order and what decided it, decimal point and likewise, unit
    const char* counts;    // read, ambiguous, contradicting, unread
  } cases[] = {
      {env, {"03/04/21", "25/12/21", "03/03/21"}, "date day-first evidence", "3 0 0 0"},
      {env, {"03/04/21", "03/03/21"}, "date none nothing", "1 1 0 0"},  // an environment never decides
      {given, {"03/04/21"}, "date month-first locale", "1 0 0 0"},
      {day_first, {"03/04/21", "12/25/21"}, "date day-first option", "1 0 1 0"},
      {env, repeated(19, "25/12/21", {"12/25/21"}), "date day-first evidence", "19 0 1 0"},  // overwhelming
      {env, repeated(18, "25/12/21", {"12/25/21", "3/4/21"}), "date none nothing", "19 1 0 0"},
      {env, {"99/12/31", "21/03/04", "21/03/25"}, "date year-first evidence", "3 0 0 0"},
      {env, {"21/03/04", "21/03/25", "21/04/26"}, "date none nothing", "0 3 0 0"},
      {env, {"2021-03-04", "x", ""}, "date none nothing", "1 0 0 1"},  // half is enough
      {env, {"2021-03-04", "x", "y"}, "text none nothing", "3 0 0 0"},
      {dates, {"20210304", "20211304"}, "date none nothing", "1 0 0 1"},
      {env, {"2021-03-04 10:20", "03/25/2021 10:20 PM"}, "datetime month-first evidence", "2 0 0 0"},
      {periods, {"03.2021"}, "period none nothing", "1 0 0 0"},
      {env, {"1.234.567", "1.234"}, "integer none nothing , evidence", "2 0 0 0"},  // groups decide
      {env, {"0.123", "1,234"}, "number none nothing . evidence", "2 0 0 0"},       // and so does a leading zero
      {env, {"1,234", "1.234", "12"}, "number none nothing", "1 2 0 0"},
      {options_of("de_DE", true), {"1,234", "1.234"}, "number none nothing , locale", "2 0 0 0"},
      {comma, {"1,234", "1.5"}, "number none nothing , option", "1 0 1 0"},
      {env, {"$1.50", "$2.50", "€1.50"}, "number none nothing . evidence $", "2 0 1 0"},
      {env, {"1.5%", "2.5", "3.5"}, "number none nothing . evidence", "2 0 1 0"},
      {strict, {"2021-03-04", "2021-3-4", " 2021-03-04"}, "text none nothing", "3 0 0 0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(PrintToString(c.values));
    Profiler profiler(locale_maker(), c.options), later(locale_maker(), c.options);
    const size_t count = c.values.size();
    for (size_t i = 0; i < count; ++i) (i < count / 2 ? profiler : later).add(c.values[i], {i + 1, i + 1, 0});
    profiler.merge(later);
    const ColumnReport report = profiler.report("c");
    const Decision& d = report.decision;
    std::string decision = fmt::format("{} {} {}", word_of(kind_words, d.kind), word_of(order_words, d.order),
                                       word_of(source_words, d.order_by));
    if (d.decimal_by != Source::nothing)
      decision += fmt::format(" {} {}", d.decimal_point, word_of(source_words, d.decimal_by));
    if (!d.unit.empty()) decision += fmt::format(" {}", d.unit);
    EXPECT_EQ(decision, c.decision);
    EXPECT_EQ(fmt::format("{} {} {} {}", report.read, report.ambiguous, report.contradicting, report.unread), c.counts);
  }
}

TEST(ColumnProfile, WrongFilesAreRefusedWithThePlace) {
  const std::string date = R"("column": "when", "kind": "date", "locale": "de_DE", "order": "day-first", )";
  const std::string text = R"("column": "n", "kind": "text", "locale": "C")";
  const std::pair<std::string, const char*> cases[] = {
      {date + "\"form\": []", "f: column \"when\": there is no member \"form\", only column, kind"},
      {date + "\"forms\": [\"%m/%d/%Y\"]", "the form \"%m/%d/%Y\": it is month-first, the column day-first"},
      {R"("column": "n", "kind": "nummer")", "\"nummer\" is none of"},
      {text + R"(, "decimal-point": ";")", "\"decimal-point\""},
      {text + "}}, {\"decision\": {" + text, "column \"n\": it stands there twice"},
      {text + "\n", ""},  // the right one
      {"\n ]", "f: line 2, column 2: it is no JSON"}};
  for (const auto& [decision, message] : cases) {
    try {
      read_profile(R"({"vxnls-profile": 1, "columns": [{"decision": {)" + decision + "}}]}", "f");
      EXPECT_STREQ(message, "");
    } catch (const vxcli::Failure& failure) {
      EXPECT_EQ(failure.code(), vxcli::ExitCode::usage);
      EXPECT_THAT(failure.what(), HasSubstr(message));
    }
  }
}

Decision decision_of(Kind kind, const char* locale, Values forms = {}, Order order = Order::none) {
  Decision decision;
  decision.kind = kind;
  decision.locale = locale;
  decision.forms = std::move(forms);
  decision.order = order;
  return decision;
}

/// Values and what becomes of them, as "value = text | value = text". In place of a text, of what is not read: "!" for
/// unread, "?" for ambiguous, "#" for contradicting; the part that is complained about; and part of the message.
void expect(const Decision& decision, const std::string& rows, const OutputChoice& output = {}) {
  Reader reader(locale_maker("Europe/Berlin"), decision, output);
  const std::regex row("([^|]*) = ([^|]*?)(?: \\| |$)");
  for (std::sregex_iterator found(rows.begin(), rows.end(), row), end; found != end; ++found) {
    SCOPED_TRACE(found->str());
    const std::string value = found->str(1), wanted = found->str(2);
    const Outcome outcome = reader.read(value);
    if (outcome == Outcome::read) {
      EXPECT_EQ(reader.text(), wanted);
      continue;
    }
    const Refusal& refusal = reader.refusal();
    const size_t colon = wanted.find(": ");
    EXPECT_EQ("=-!?#"[static_cast<size_t>(outcome)] + value.substr(refusal.position, refusal.length),
              wanted.substr(0, colon));
    EXPECT_THAT(refusal.expected, HasSubstr(colon == std::string::npos ? "" : wanted.substr(colon + 2)));
  }
  EXPECT_EQ(reader.read(decision.strict ? "  " : " \u00A0 "), Outcome::empty);
}

TEST(ColumnReader, DatesTimesAndPeriods) {
  const Decision german = decision_of(
      Kind::date, "de_DE", {"%Y-%m-%d", "%d.%m.%Y", "%d.%m.%y", "%d. %b %Y", "%A, %d. %b %Y"}, Order::day_first);
  expect(
      german,
      "04.03.59 = 2059-03-04 | 04.03.60 = 1960-03-04 | 5. Feb 2021 = 2021-02-05 | 2021\u201103\u201204 = 2021-03-04 | "
      "5. Mörz 2021 = !Mörz: is not the name of a month | Sa., 5. März 2021 = !Sa., : another day of the week | "
      "29.02.1900 = !29.02.1900: no day 1900-02-29 | 4000-02-29 = !4000-02-29: no day | "
      "Mo., 1. März 4005 = 4005-03-01 | 12.25.2021 = #12.25.2021: day-first | 4/3/2021 = !/: is wanted | "
      // Places are those of the original.
      "\u00A0\u200E4.\u200E13.2021 = #4.\u200E13.2021 | \u00A0\u200E４.\u200E1３.202x = !1３: is not a month | "
      "4.3.2021\xFF = !\xFF: follows");
  Decision century = decision_of(Kind::date, "en_US", {"%m/%d/%y"}, Order::month_first);
  century.first_year = 1900;
  expect(century, "12/31/99 = 1999-12-31 | 12/31/00 = 1900-12-31 | 02/29/00 = !02/29/00");
  // Undecided orders, and the same where years may stand first.
  expect(decision_of(Kind::date, "en_US", {"%d/%m/%y"}),
         "25/12/21 = 2021-12-25 | 12/25/21 = 2021-12-25 | 03/03/21 = 2021-03-03 | 03/04/21 = ?03/04/21: --day-first | "
         "31/02/21 = !31/02/21: no day");
  expect(decision_of(Kind::date, "en_US", {"%d/%m/%y", "%y/%m/%d"}),
         "99/12/31 = 1999-12-31 | 25/12/60 = 1960-12-25 | 25/12/21 = ?25/12/21");
  expect(decision_of(Kind::time, "en_US", {"%H:%M:%S", "%H:%M", "%I:%M %p"}),
         "9:05 = 09:05:00 | 9:05 PM = 21:05:00 | 12:05\u202Fa.m. = 00:05:00 | "
         "23:59:59,123456789 = 23:59:59.123456789 | 24:00 = !24: is not an hour (0 to 23) | "
         "13:05 PM = !13: is not an hour (1 to 12) | 10:20Z = !Z: is not AM or PM");
  expect(decision_of(Kind::datetime, "en_US", {"%Y-%m-%dT%H:%M:%S%z", "%A, %d %b %Y %H:%M:%S%z", "%m/%d/%Y, %I:%M %p"},
                     Order::month_first),
         "2021-03-04t10:20:30.5Z = 2021-03-04T10:20:30.5Z | 2021-03-04T10:20:30 -0330 = 2021-03-04T10:20:30-03:30 | "
         "Fri, 05 Mar 2021 10:20:30 GMT = 2021-03-05T10:20:30Z | 3/4/2021,  10:20 pm = 2021-03-04T22:20:00 | "
         "2021-03-04T10:20:30+13:00 = !13: is not an offset | 13/4/2021, 10:20 pm = #13/4/2021, 10:20 pm | "
         "2021-03-04 = !: ends where a time is wanted");
  expect(decision_of(Kind::period, "fr_FR", {"%Y-W%V", "W%V %Y", "%Y-%m", "%m/%Y", "%b %Y", "%q %Y"}),
         "W53 2020 = 2020-W53 | 2021-3 = 2021-03 | févr. 2021 = 2021-02 | T1 2021 = 2021-Q1 | "
         "2021-W54 = !54: is not a week | 2021-W53 = !2021-W53: no such week | 2021-W00 = !2021-W00 | "
         "9999-W52 = 9999-W52 | 13/2021 = !13: is not a month");
  Decision strict = german;
  strict.strict = true;
  strict.forms = {"%d.%m.%Y", "%#d. %B %Y"};
  expect(strict,
         "04.03.2021 = 2021-03-04 | 5. März 2021 = 2021-03-05 | 4.3.2021 = !3 | 04.03.2021  = ! : follows | "
         "\u200E04.03.2021 = !\u200E04 | ０４.03.2021 = !０４");
}

TEST(ColumnReader, Numbers) {
  Decision number = decision_of(Kind::number, "de_DE");
  expect(number,
         "1,5 = 1.5 | 1.5 = 1.5 | 1234,567 = 1234.567 | 12,34,567 = 1234567 | 0,123 = 0.123 | 1,234 = ?1,234: "
         "--decimal | 1.234 = ?1.234 | "
         "12.34.567 = !12.34.567");
  number.decimal_point = ",";
  number.group_separators = ".' ";
  number.unit = "€";
  expect(number,
         "1,5- = -1.5 | (1,5) = -1.5 | 1’234,5 € = 1234.5 | €\u00A01,5 = 1.5 | -€1,5 = -1.5 | +,5 = 0.5 | 5, = 5 | "
         "1,5E-3 = 1.5E-3 | 1.234 = 1234 | 1,234 = 1.234 | ١٬٢٣٤٫٥ = 1234.5 | "
         "12345678901234567890,12345678901234567890 = 12345678901234567890.12345678901234567890 | "
         "1.5 = #1.5: decimal point of the column is \",\" | 1,5 % = #1,5 %: \"%\" stands at a number | "
         "1.23.456 = !1.23.456: separators | 12,5x = !x: follows the number | - = !: a digit is wanted | .A = !A | "
         "1e999 = !1e999: too large");
  number.decimal_point = ".";
  number.group_separators = ",";
  number.unit = "%";
  expect(number, "%12.5 = 12.5 | 1 234 % = #1 234 %: groups are separated by \",\"");
  number.unit.clear();
  expect(number, "-1,234,567.123456789012345678 = -1.234.567,123456789012345678 | 12 = 12",
         {.to_pattern = "", .to_locale = "de_DE"});
  expect(number, "12345678.5 = 1,23,45,678.5", {.to_pattern = "", .to_locale = "hi_IN"});
  number.strict = true;
  expect(number, "-1,234.5 = -1234.5 | \u22121.5 = !− | (1.5) = !1.5: a plain number | 1.5  = !1.5");
  number.kind = Kind::integer;
  expect(number, "1,234 = 1234 | 1.5 = #1.5: whole numbers");
}

TEST(ColumnReader, OtherOutputsAndFormsThatCannotBeMeant) {
  const Decision date = decision_of(Kind::date, "en_US", {"%m/%d/%Y"}, Order::month_first);
  expect(date, "3/4/2021 = 4. März 2021", {.to_pattern = "%#d. %B %Y", .to_locale = "de_DE"});
  expect(date, "3/4/2021 = 04/03/2021", {.to_pattern = "", .to_locale = "fr_FR"});
  // An instant is told by the clocks of the zone.
  expect(decision_of(Kind::datetime, "en_US", {"%Y-%m-%dT%H:%M:%S", "%Y-%m-%dT%H:%M:%S%z"}),
         "2021-07-04T23:20:30Z = 05.07.2021 01:20 +0200 | 2021-07-04T23:20:30 = 04.07.2021 23:20 +0200 | "
         "2021-10-31T01:30:00Z = 31.10.2021 02:30 +0100 | 1582-01-01T00:00:00+01:00 = !1582-01-01T00:00:00+01:00 | "
         "9999-12-31T23:30:00Z = !9999-12-31T23:30:00Z: the year is 10000",
         {.to_pattern = "%d.%m.%Y %H:%M %z", .to_locale = ""});
  for (const char* wrong : {"%d.%Q", "%H:%M", "%"}) {
    EXPECT_THROW(Reader(locale_maker(), date, {.to_pattern = wrong, .to_locale = ""}), vxcli::Failure) << wrong;
  }
  for (const char* form : {"", "x", "%", "%d.%m", "%d.%m.%Y %d", "%d.%m.%Y%H", "%Y-W%V %H", "%H:%M %d.%m.%Y", "%I:%M",
                           "%d %A %m %Y", "%d.%m.%Q", "%d.%m.%Y%z", "%m/%d/%Y", "%H:%M", "%Y-%m", "\xFF%d.%m.%Y"}) {
    EXPECT_THROW(Reader(locale_maker(), decision_of(Kind::date, "de_DE", {form}, Order::day_first)), vxcli::Failure)
        << form;
  }
}

// A million rows from ten countries, dirt included, against answers that were known before: days by std::chrono, texts
// of days and numbers by ICU's own formatters. Nothing of what is tested takes part.

using icu::UnicodeString;
using Random = std::mt19937;

constexpr size_t rows_a_country = 100'000;

size_t below(Random& random, size_t limit) { return random() % limit; }  // the same with every standard library

/// What a cell of the column means: the text that it is to become. Nothing: it cannot be read, or only against the rest
/// of the column.
struct Cell {
  std::string text;
  std::optional<std::string> answer;
  bool against = false;  // it can be read in one way, which is not that of the column
};

/// A country's ICU patterns, the numeric ones all in one order.
struct Country {
  const char* locale;
  const char* dates;
  const char* other_order;   // with day and month exchanged; null: none
  const char* other_points;  // a locale with point and comma exchanged; null: its own are neither
};
const Country countries[] = {
    {"en_US", "M/d/yy|MM/dd/yyyy|MMM d, yyyy|MMMM d, yyyy|EEE, MMM d, yyyy|d-MMM-yy|yyyy-MM-dd", "dd/MM/yyyy", "de"},
    {"en_GB", "dd/MM/yyyy|d/M/yy|d MMM yyyy|d MMMM yyyy|EEEE, d MMMM yyyy|yyyy-MM-dd", "MM/dd/yyyy", "de"},
    {"de_DE", "dd.MM.yyyy|d.M.yy|d. MMMM yyyy|d. MMM yyyy|EEE, d. MMM yyyy|yyyy-MM-dd", "MM.dd.yyyy", "en"},
    {"fr_FR", "dd/MM/yyyy|dd/MM/yy|d MMM yyyy|d MMMM yyyy|EEEE d MMMM yyyy|dd-MM-yyyy", "MM/dd/yyyy", "en"},
    {"es_ES", "d/M/yy|dd-MM-yyyy|d MMM yyyy|d 'de' MMMM 'de' yyyy|EEEE, d 'de' MMMM 'de' yyyy|yyyy/MM/dd", "MM-dd-yyyy",
     "en"},
    {"pt_BR", "dd/MM/yyyy|dd/MM/yy|d 'de' MMM 'de' yyyy|d 'de' MMMM 'de' yyyy|yyyy-MM-dd", "MM/dd/yyyy", "en"},
    {"pl_PL", "dd.MM.yyyy|d.MM.yyyy|d MMM yyyy|d MMMM yyyy|EEEE, d MMMM yyyy|yyyy-MM-dd", "MM.dd.yyyy", "en"},
    {"ru_RU", "dd.MM.yyyy|dd.MM.yy|d MMM yyyy 'г'.|d MMMM yyyy 'г'.|d MMMM yyyy|yyyy-MM-dd", "MM.dd.yyyy", "en"},
    {"ja_JP", "yyyy/MM/dd|yy/MM/dd|yyyy年M月d日|yyyy-MM-dd|yyyy.MM.dd", nullptr, "de"},
    {"ar_EG", "d\u200F/M\u200F/yyyy|dd/MM/yy|d MMMM yyyy|EEEE، d MMMM yyyy|yyyy-MM-dd", "MM/dd/yyyy", nullptr}};

/// What copying and exporting does to a text, its meaning kept.
void soil(UnicodeString& text, Random& random, bool number) {
  const size_t luck = below(random, 12), one = below(random, 3);
  if (luck < 2) text.insert(0, u" \u00A0\u200E"[one]);
  else if (luck < 4) text.append(u"\t\u00A0\u200F"[one]);
  else if (luck == 4) text.findAndReplace(u" ", UnicodeString(u"\u00A0\u202F\u2009"[one]));
  else if (luck == 5) text.findAndReplace(u"-", UnicodeString(number ? u'\u2212' : u'\u2010'));
  for (int32_t i = 0; luck == 6 && i < text.length(); ++i) {  // full-width
    if (text[i] >= u'0' && text[i] <= u'9') text.setCharAt(i, static_cast<char16_t>(text[i] + (u'０' - u'0')));
  }
}

/// Writes a cell: its answer, and a text for it. `against` asks for one against the column, and stays where that shows.
using Write = std::function<UnicodeString(Cell& cell)>;

Write date_writer(const Country& country, Random& random, bool recent) {
  std::vector<icu::SimpleDateFormat> formats;
  std::istringstream patterns(country.dates + std::string("|") + (country.other_order ? country.other_order : ""));
  UErrorCode error = U_ZERO_ERROR;
  for (std::string pattern; std::getline(patterns, pattern, '|');) {
    formats.emplace_back(UnicodeString::fromUTF8(pattern), icu::Locale(country.locale), error)
        .adoptTimeZone(icu::TimeZone::getGMT()->clone());
  }
  const std::chrono::sys_days first(std::chrono::year(recent ? 2001 : 1960) / 1 / 1);
  return [=, &country, &random](Cell& cell) {
    const auto day = first + std::chrono::days(below(random, recent ? 8765 : 36524));
    const std::chrono::year_month_day fields(day);
    const auto of_month = static_cast<unsigned>(fields.day());
    cell.answer = fmt::format("{:04}-{:02}-{:02}", static_cast<int>(fields.year()),
                              static_cast<unsigned>(fields.month()), of_month);
    cell.against = cell.against && country.other_order != nullptr && of_month > 12;
    const size_t own = below(random, formats.size() - (country.other_order != nullptr ? 1 : 0));
    const std::chrono::duration<UDate, std::milli> time = day.time_since_epoch();
    UnicodeString text;
    return formats[cell.against ? formats.size() - 1 : own].format(time.count(), text);
  };
}

Write number_writer(const Country& country, Random& random) {
  const auto formatter = [](const char* locale, UNumberGroupingStrategy grouping) {
    return icu::number::NumberFormatter::withLocale(locale).grouping(grouping).precision(
        icu::number::Precision::unlimited());
  };
  const std::array own{formatter(country.locale, UNUM_GROUPING_OFF),
                       formatter(country.locale, UNUM_GROUPING_THOUSANDS)};
  const auto other = formatter(country.other_points, UNUM_GROUPING_THOUSANDS);
  return [=, &country, &random](Cell& cell) {
    const auto below_ten_to = [&](size_t power) { return below(random, static_cast<size_t>(std::pow(10, power))); };
    const size_t whole = below_ten_to(1 + below(random, 9)), decimals = below(random, 5);
    cell.answer = fmt::format("{}{}", below(random, 5) == 0 ? "-" : "", whole);
    // Without a 0 at the end, which ICU would leave out.
    if (decimals > 0) *cell.answer += fmt::format(".{:0{}}", below_ten_to(decimals) | 1U, decimals);
    cell.against = cell.against && country.other_points != nullptr && decimals > 0 && whole >= 1000;
    UErrorCode error = U_ZERO_ERROR;
    return (cell.against ? other : own[below(random, 2)]).formatDecimal(*cell.answer, error).toString(error);
  };
}

/// `rows` cells, always the same for a seed. 6 in 100 are empty or rubbish, 1 in 4 of the others soiled; of 1 in 200 a
/// text against the column is asked for.
std::vector<Cell> make_column(const Country& country, bool dates, size_t rows, uint32_t seed) {
  static constexpr const char* rubbish[] = {
      "",        "n/a",        "?",        "ca. 5.3.2021", "--",    "1.2.3", "31/02/2021", "30.02.2021",
      "1/2",     "00/00/0000", "99/99/99", "tomorrow",     "12:30", "12a",   "2021-13-01", "32.01.2021",
      " \u00A0", "2021-02-30", "e5",       "1..2",         "1,,2",  "+-5",   "1.23.45678", "2021-1"};
  Random random(seed);
  // Every other column has recent days only: two-digit years that could be days as well.
  const bool recent = seed % 2 == 1 && country.other_order != nullptr;
  const Write write = dates ? date_writer(country, random, recent) : number_writer(country, random);
  std::vector<Cell> cells(rows);
  for (Cell& cell : cells) {
    const size_t luck = below(random, 1000);
    cell.against = luck < 5;
    if (luck >= 940) {
      cell.text = rubbish[below(random, std::size(rubbish))];
      continue;
    }
    UnicodeString text = write(cell);
    if (cell.against) cell.answer.reset();
    else if (below(random, 4) == 0) soil(text, random, !dates);
    text.toUTF8String(cell.text);
  }
  return cells;
}

struct Score {
  uint64_t rows = 0, readable = 0, read = 0, right = 0, ambiguous = 0;
};

/// Profiles a column in several pieces and reads it by the decision. Holds the report against what the reader does.
Decision measure(const std::vector<Cell>& cells, ProfilerOptions options, Score& score) {
  options.shown = cells.size();  // every value that is not read
  std::vector<Profiler> parts;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i == 0 || i == cells.size() / 3 || i == cells.size() / 2) parts.emplace_back(locale_maker(), options);
    parts.back().add(cells[i].text, {i + 2, i + 1, 0});
  }
  for (size_t part = 1; part < parts.size(); ++part) parts[0].merge(parts[part]);
  const ColumnReport report = parts[0].report("column");

  std::array<uint64_t, 5> outcomes{};
  std::set<uint64_t> left;                                                            // records that were not read
  Reader reader(locale_maker(), read_profile(write_profile({{report}}), "f").at(0));  // what the file keeps is enough
  for (size_t i = 0; i < cells.size(); ++i) {
    const Outcome outcome = reader.read(cells[i].text);
    ++outcomes[static_cast<size_t>(outcome)];
    score.readable += cells[i].answer ? 1 : 0;
    score.right += outcome == Outcome::read && cells[i].answer == reader.text() ? 1 : 0;
    if (outcome != Outcome::read && outcome != Outcome::empty) left.insert(i + 1);
  }
  score.rows += cells.size();
  score.read += report.read;
  score.ambiguous += report.ambiguous;
  EXPECT_EQ(report.values, cells.size());
  EXPECT_EQ(outcomes, (std::array{report.read, report.empty, report.unread, report.ambiguous, report.contradicting}))
      << to_json(report)["decision"];
  for (const auto* list : {&report.first_unread, &report.first_ambiguous, &report.first_contradicting}) {
    for (const Unread& each : *list) {
      EXPECT_EQ(left.erase(each.place.record), 1U) << each.value;
      EXPECT_LE(each.position + each.length, cells[each.place.record - 1].text.size());
      EXPECT_FALSE(each.expected.empty());
    }
  }
  EXPECT_TRUE(left.empty()) << left.size() << " values that were not read are not in the report";
  return report.decision;
}

/// Bytes lost, doubled and changed.
void damage(std::string& text, Random& random) {
  static constexpr std::string_view signs = "0123456789.,-/: '+%()TZeEaAmM\xC2\xA0\xE2\x80\x8F\xD9\xAB\xFF\t";
  for (size_t edits = random() % 4; edits > 0 && !text.empty(); --edits) {
    const size_t at = random() % text.size();
    const std::string_view sign = signs.substr(random() % signs.size(), random() % 2);
    text.replace(at, random() % 2, random() % 4 == 0 ? text.substr(at, random() % 8) : sign);
  }
}

/// Each country's columns by themselves, where all is read that can be; all in one column, where nothing can be
/// decided, and nothing may be misread; and damaged, where what is read is anybody's guess.
TEST(ColumnAnswers, AreRightOrReported) {
  for (const bool dates : {true, false}) {
    Score apart, mixed, damaged;
    std::vector<Cell> cells;
    for (const Country& country : countries) {
      SCOPED_TRACE(country.locale);
      const auto seed = static_cast<uint32_t>(&country - countries);
      std::vector<Cell> column = make_column(country, dates, rows_a_country, seed);
      ProfilerOptions options = options_of(country.locale);
      measure(column, options, apart);
      column.resize(rows_a_country / 10);
      // There its country's order is one of several.
      std::copy_if(column.begin(), column.end(), std::back_inserter(cells), [](const Cell& c) { return !c.against; });

      column.resize(3000);
      Random random(seed);
      for (Cell& cell : column) damage(cell.text, random);
      measure(column, options, damaged);
      options.kind = dates ? Kind::date : Kind::number;
      options.strict = true;
      measure(column, options, damaged);
    }
    EXPECT_EQ(apart.read, apart.right);
    EXPECT_EQ(apart.right, apart.readable);
    const Decision decision = measure(cells, options_of("en_GB"), mixed);
    EXPECT_EQ(decision.order, Order::none);
    EXPECT_EQ(decision.decimal_point, "");
    EXPECT_GT(mixed.ambiguous, 0U);
    EXPECT_EQ(mixed.read, mixed.right);
    for (const Score& score : {apart, mixed}) {
      fmt::print("{} rows {} read {} precision {:.2f} % recall {:.2f} % ambiguous {}\n", dates ? "dates" : "numbers",
                 score.rows, score.read, 100 * static_cast<double>(score.right) / static_cast<double>(score.read),
                 100 * static_cast<double>(score.right) / static_cast<double>(score.readable), score.ambiguous);
    }
  }
}

}  // namespace
