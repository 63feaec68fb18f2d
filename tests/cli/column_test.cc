// What is decided about a column, the file that keeps it, and single values under a given decision.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cstring>
#include <regex>
#include <string>
#include <vector>

#include "cli/column/profiler.h"
#include "cli/column/reader.h"
#include "cli/errors.h"
#include "tests/cli/column_host.h"

namespace {

using namespace testing;
using namespace vxcli::column;
using vxtest::locale_maker;
using Values = std::vector<std::string>;

ProfilerOptions options_of(const char* locale, bool given = false) {
  ProfilerOptions options;
  options.locales = {locale};
  options.locale_given = given;
  return options;
}

Profiler fed(const ProfilerOptions& options, const Values& values, size_t from = 0, size_t end = SIZE_MAX) {
  Profiler profiler(locale_maker(), options);
  for (size_t i = from; i < std::min(values.size(), end); ++i) profiler.add(values[i], {i + 1, i + 1, 0});
  return profiler;
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
      {given, {"03/04/21", "25/12/21"}, "date day-first evidence", "2 0 0 0"},
      {day_first, {"03/04/21", "12/25/21"}, "date day-first option", "1 0 1 0"},
      {env, repeated(19, "25/12/21", {"12/25/21"}), "date day-first evidence", "19 0 1 0"},  // overwhelming
      {env, repeated(18, "25/12/21", {"12/25/21", "3/4/21"}), "date none nothing", "19 1 0 0"},
      {env, {"31/02/21", "03/04/21"}, "date none nothing", "0 1 0 1"},  // no such day is no evidence
      {env, {"99/12/31", "21/03/04", "21/03/25"}, "date year-first evidence", "3 0 0 0"},
      {env, {"21/03/04", "21/03/25", "21/04/26"}, "date none nothing", "0 3 0 0"},
      {options_of("ru_RU", true), {"25.12.04", "5. 6. 04", "21.10.\t04"}, "date day-first evidence", "3 0 0 0"},
      {env, {"5 Mar 2021", "March 5, 2021"}, "date none nothing", "2 0 0 0"},  // names need no order
      {env, {"2021-03-04", "x", ""}, "date none nothing", "1 0 0 1"},          // half is enough
      {env, {"2021-03-04", "x", "y"}, "text none nothing", "3 0 0 0"},
      {env, {"", " "}, "text none nothing", "0 0 0 0"},
      {env, {"20210304"}, "integer none nothing", "1 0 0 0"},
      {dates, {"20210304", "20211304"}, "date none nothing", "1 0 0 1"},
      {env, {"2021-03-04 10:20", "03/25/2021 10:20 PM"}, "datetime month-first evidence", "2 0 0 0"},
      {env, {"10:20", "10:20:30.5", "10:20 pm"}, "time none nothing", "3 0 0 0"},
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
    SCOPED_TRACE(testing::PrintToString(c.values));
    const ColumnReport report = fed(c.options, c.values).report("c");
    const Decision& d = report.decision;
    std::string decision = fmt::format("{} {} {}", word_of(kind_words, d.kind), word_of(order_words, d.order),
                                       word_of(source_words, d.order_by));
    if (d.decimal_by != Source::nothing)
      decision += fmt::format(" {} {}", d.decimal_point, word_of(source_words, d.decimal_by));
    if (!d.unit.empty()) decision += fmt::format(" {}", d.unit);
    EXPECT_EQ(decision, c.decision);
    EXPECT_EQ(fmt::format("{} {} {} {}", report.read, report.ambiguous, report.contradicting, report.unread), c.counts);

    // The same however the values are split, and through the file and back.
    for (size_t cut = 0; cut <= c.values.size(); ++cut) {
      Profiler first = fed(c.options, c.values, 0, cut);
      first.merge(fed(c.options, c.values, cut));
      EXPECT_EQ(to_json(first.report("c")).dump(), to_json(report).dump()) << "cut at " << cut;
    }
    ColumnReport again;
    again.decision = read_profile(write_profile({{report}}), "f").at(0);
    EXPECT_EQ(to_json(again)["decision"], to_json(report)["decision"]);
    Reader reader(locale_maker(), again.decision);
    uint64_t read = 0;
    for (const std::string& value : c.values) read += reader.read(value) == Outcome::read ? 1 : 0;
    EXPECT_EQ(read, report.read);
  }
}

TEST(ColumnProfile, WrongFilesAreRefusedWithThePlace) {
  const auto with = [](const std::string& members) {
    return R"({"vxnls-profile": 1, "columns": [{"decision": {)" + members + "}}]}";
  };
  const std::string date = R"("column": "when", "kind": "date", "locale": "de_DE", "order": "day-first", )";
  const std::pair<std::string, const char*> cases[] = {
      {"", "f: line 1, column 1: it is no JSON"},
      {"{\n \"a\": ]", "f: line 2, column 7: it is no JSON"},
      {R"({"vxnls-profile": 2})", "its version is 2"},
      {R"({"vxnls-profile": 1, "columns": [{}]})", "column 1: the member \"decision\" is missing"},
      {with(date + "\"form\": []"), "column \"when\": there is no member \"form\", only column, kind"},
      {with(date + "\"forms\": \"%d\""), "\"forms\": a list of patterns is wanted"},
      {with(date + "\"forms\": [\"%d.%m\"]"), "the form \"%d.%m\": a date has day, month and year"},
      {with(date + "\"forms\": [\"%m/%d/%Y\"]"), "the form \"%m/%d/%Y\": it is month-first, the column day-first"},
      {with(date + "\"first-year\": 19"), "\"first-year\": a year from 1582 to 9900 is wanted"},
      {with(R"("column": "n", "kind": "nummer")"), "\"nummer\" is none of"},
      {with(R"("column": "n", "kind": "number", "locale": "de_DE", "decimal-point": ";")"), "\"decimal-point\""},
      {with(
           R"("column": "n", "kind": "text", "locale": "C"}}, {"decision": {"column": "n", "kind": "text", "locale": "C")"),
       "column \"n\": it stands there twice"}};
  using vxcli::Failure;
  for (const auto& [text, message] : cases) {
    EXPECT_THAT([&file = text] { read_profile(file, "f"); },
                Throws<Failure>(AllOf(Property(&Failure::code, vxcli::ExitCode::usage),
                                      Property(&Failure::what, HasSubstr(message)))));
  }
}

Decision decision_of(Kind kind, const char* locale, Values forms = {}, Order order = Order::none) {
  Decision decision;
  decision.column.push_back('c');
  decision.kind = kind;
  decision.locale = locale;
  decision.forms = std::move(forms);
  decision.order = order;
  return decision;
}

Decision numbers(std::string point, std::string separators = {}, std::string unit = {}) {
  Decision decision = decision_of(Kind::number, "de_DE");
  decision.decimal_point = std::move(point);
  decision.group_separators = std::move(separators);
  decision.unit = std::move(unit);
  return decision;
}

constexpr Outcome unread = Outcome::unread, ambiguous = Outcome::ambiguous, contradicts = Outcome::contradicts;

/// Values that are read and their new texts, as "value = text | value = text"; and others, with the part that is
/// complained about and what is said.
struct Complaint {
  const char* value;
  Outcome outcome;
  const char* part;
  const char* message = "";  // part of it
};
void expect(const Decision& decision, const char* texts, const std::vector<Complaint>& complaints = {},
            const OutputChoice& output = {}) {
  Reader reader(locale_maker("Europe/Berlin"), decision, output);
  const std::regex pair("([^|]*) = ([^|]*?)(?: \\| |$)");
  for (std::cregex_iterator found(texts, texts + strlen(texts), pair), end; found != end; ++found) {
    const std::string value = found->str(1);
    EXPECT_EQ(reader.read(value), Outcome::read) << value;
    EXPECT_EQ(reader.text(), found->str(2)) << value;
  }
  for (const Complaint& c : complaints) {
    SCOPED_TRACE(c.value);
    const std::string value = c.value;
    EXPECT_EQ(reader.read(value), c.outcome);
    const Refusal& refusal = reader.refusal();
    EXPECT_EQ(value.substr(refusal.position, refusal.length), c.part) << refusal.position;
    EXPECT_NE(refusal.expected.find(c.message), std::string::npos) << refusal.expected;
  }
  EXPECT_EQ(reader.read(decision.strict ? "  " : " \u00A0 "), Outcome::empty);
}

TEST(ColumnReader, Dates) {
  expect(decision_of(Kind::date, "de_DE", {"%Y-%m-%d", "%d.%m.%Y", "%d.%m.%y", "%d. %b %Y", "%A, %d. %b %Y"},
                     Order::day_first),
         "04.03.59 = 2059-03-04 | 04.03.60 = 1960-03-04 | 5. Feb 2021 = 2021-02-05 | 2021\u201103\u201204 = 2021-03-04",
         {{"5. Mörz 2021", unread, "Mörz", "is not the name of a month"},
          {"Sa., 5. März 2021", unread, "Sa., ", "another day of the week"},
          {"29.02.1900", unread, "29.02.1900", "no day 1900-02-29"},
          {"12.25.2021", contradicts, "12.25.2021", "day-first"},
          {"4/3/2021", unread, "/", "is wanted"},
          // Places are those of the original.
          {"\u00A0\u200E4.\u200E13.2021", contradicts, "4.\u200E13.2021"},
          {"\u00A0\u200E４.\u200E1３.202x", unread, "1３", "is not a month"},
          {"4.3.2021\xFF", unread, "\xFF", "follows"}});
  Decision century = decision_of(Kind::date, "en_US", {"%m/%d/%y"}, Order::month_first);
  century.first_year = 1900;
  expect(century, "12/31/99 = 1999-12-31 | 12/31/00 = 1900-12-31", {{"02/29/00", unread, "02/29/00"}});
  // Undecided orders, and the same where years may stand first.
  expect(decision_of(Kind::date, "en_US", {"%d/%m/%y"}),
         "25/12/21 = 2021-12-25 | 12/25/21 = 2021-12-25 | 03/03/21 = 2021-03-03",
         {{"03/04/21", ambiguous, "03/04/21", "--day-first"}, {"31/02/21", unread, "31/02/21", "no day"}});
  expect(decision_of(Kind::date, "en_US", {"%d/%m/%y", "%y/%m/%d"}), "99/12/31 = 1999-12-31 | 25/12/60 = 1960-12-25",
         {{"25/12/21", ambiguous, "25/12/21"}});
}

TEST(ColumnReader, TimesAndPeriods) {
  expect(decision_of(Kind::time, "en_US", {"%H:%M:%S", "%H:%M", "%I:%M %p"}),
         "9:05 = 09:05:00 | 9:05 PM = 21:05:00 | 12:05\u202Fa.m. = 00:05:00 | 23:59:59,123456789 = 23:59:59.123456789",
         {{"24:00", unread, "24", "is not an hour (0 to 23)"},
          {"13:05 PM", unread, "13", "is not an hour (1 to 12)"},
          {"10:20Z", unread, "Z", "is not AM or PM"}});
  expect(decision_of(Kind::datetime, "en_US",
                     {"%Y-%m-%dT%H:%M:%S", "%Y-%m-%dT%H:%M:%S%z", "%A, %d %b %Y %H:%M:%S%z", "%m/%d/%Y, %I:%M %p"},
                     Order::month_first),
         "2021-03-04t10:20:30.5 = 2021-03-04T10:20:30.5 | 2021-03-04T10:20:30Z = 2021-03-04T10:20:30Z | "
         "2021-03-04T10:20:30 -0330 = 2021-03-04T10:20:30-03:30 | Fri, 05 Mar 2021 10:20:30 GMT = 2021-03-05T10:20:30Z "
         "| 3/4/2021,  10:20 pm = 2021-03-04T22:20:00",
         {{"2021-03-04T10:20:30+13:00", unread, "13", "is not an offset"},
          {"13/4/2021, 10:20 pm", contradicts, "13/4/2021, 10:20 pm"},
          {"2021-03-04", unread, "", "ends where a time is wanted"}});
  expect(decision_of(Kind::period, "fr_FR", {"%Y-W%V", "W%V %Y", "%Y-%m", "%m/%Y", "%b %Y", "%q %Y", "%Y-%q"}),
         "W53 2020 = 2020-W53 | 2021-3 = 2021-03 | févr. 2021 = 2021-02 | T1 2021 = 2021-Q1",
         {{"2021-W54", unread, "54", "is not a week"}, {"13/2021", unread, "13", "is not a month"}});
}

TEST(ColumnReader, Numbers) {
  expect(numbers(",", ".' ", "€"),
         "1,5- = -1.5 | (1,5) = -1.5 | 1’234,5 € = 1234.5 | €\u00A01,5 = 1.5 | -€1,5 = -1.5 | +,5 = 0.5 | 5, = 5 | "
         "1,5E-3 = 1.5E-3 | 1.234 = 1234 | 1,234 = 1.234 | ١٬٢٣٤٫٥ = 1234.5 | "
         "12345678901234567890,12345678901234567890 = 12345678901234567890.12345678901234567890",
         {{"1.5", contradicts, "1.5", "decimal point of the column is \",\""},
          {"1,5 %", contradicts, "1,5 %", "\"%\" stands at a number"},
          {"1.23.456", unread, "1.23.456", "separators"},
          {"12,5x", unread, "x", "follows the number"},
          {"-", unread, "", "a digit is wanted"},
          {".A", unread, "A"},
          {"1e999", unread, "1e999", "too large"}});
  expect(
      numbers(""), "1,5 = 1.5 | 1.5 = 1.5 | 12,34,567 = 1234567 | 0,123 = 0.123",
      {{"1,234", ambiguous, "1,234", "--decimal"}, {"1.234", ambiguous, "1.234"}, {"12.34.567", unread, "12.34.567"}});
  expect(numbers(".", ",", "%"), "%12.5 = 12.5",
         {{"1 234 %", contradicts, "1 234 %", "groups are separated by \",\""}});
  Decision whole = numbers(".", ",");
  whole.kind = Kind::integer;
  expect(whole, "1,234 = 1234", {{"1.5", contradicts, "1.5", "whole numbers"}});
}

TEST(ColumnReader, StrictTakesValuesAsTheyStand) {
  Decision date = decision_of(Kind::date, "de_DE", {"%d.%m.%Y", "%#d. %B %Y"}, Order::day_first);
  Decision number = numbers(".", ",");
  date.strict = number.strict = true;
  expect(date, "04.03.2021 = 2021-03-04 | 5. März 2021 = 2021-03-05",
         {{"4.3.2021", unread, "3"},
          {"04.03.2021 ", unread, " ", "follows"},
          {"\u200E04.03.2021", unread, "\u200E04"},
          {"０４.03.2021", unread, "０４"}});
  expect(number, "-1,234.5 = -1234.5",
         {{"\u22121.5", unread, "−"}, {"(1.5)", unread, "1.5", "a plain number"}, {"1.5 ", unread, "1.5"}});
}

TEST(ColumnReader, OtherOutputsAndFormsThatCannotBeMeant) {
  const Decision date = decision_of(Kind::date, "en_US", {"%m/%d/%Y"}, Order::month_first);
  expect(date, "3/4/2021 = 4. März 2021", {}, {.to_pattern = "%#d. %B %Y", .to_locale = "de_DE"});
  expect(date, "3/4/2021 = 04/03/2021", {}, {.to_pattern = "", .to_locale = "fr_FR"});
  // An instant is told by the clocks of the zone.
  expect(decision_of(Kind::datetime, "en_US", {"%Y-%m-%dT%H:%M:%S", "%Y-%m-%dT%H:%M:%S%z"}),
         "2021-07-04T23:20:30Z = 05.07.2021 01:20 | 2021-07-04T23:20:30 = 04.07.2021 23:20", {},
         {.to_pattern = "%d.%m.%Y %H:%M", .to_locale = ""});
  expect(numbers(".", ","), "-1,234,567.123456789012345678 = -1.234.567,123456789012345678 | 12 = 12", {},
         {.to_pattern = "", .to_locale = "de_DE"});
  expect(numbers(".", ","), "12345678.5 = 1,23,45,678.5", {}, {.to_pattern = "", .to_locale = "hi_IN"});
  for (const char* wrong : {"%d.%Q", "%H:%M", "%"}) {
    EXPECT_THROW(Reader(locale_maker(), date, {.to_pattern = wrong, .to_locale = ""}), vxcli::Failure) << wrong;
  }
  for (const char* form : {"", "x", "%", "%d.%m", "%d.%m.%Y %d", "%d.%m.%Y%H", "%Y-W%V %H", "%H:%M %d.%m.%Y", "%I:%M",
                           "%d %A %m %Y", "%d.%m.%Q", "%d.%m.%Y%z", "%m/%d/%Y", "%H:%M", "%Y-%m", "\xFF%d.%m.%Y"}) {
    EXPECT_THROW(Reader(locale_maker(), decision_of(Kind::date, "de_DE", {form}, Order::day_first)), vxcli::Failure)
        << form;
  }
}

}  // namespace
