// What is decided about a column, and the file that keeps it.
#include <gtest/gtest.h>

#include <vector>

#include "cli/column/profiler.h"
#include "cli/column/reader.h"
#include "cli/errors.h"
#include "tests/cli/column_host.h"

namespace {

using namespace vxcli::column;
using vxtest::ColumnHost;

ProfilerOptions options_of(const char* locale, bool given = false) {
  ProfilerOptions options;
  options.locales = {locale};
  options.locale_source = given ? "--locale" : "LANG";
  options.locale_given = given;
  return options;
}

Profiler fed(ColumnHost& host, const ProfilerOptions& options, const std::vector<std::string>& values,
             size_t from = 0) {
  Profiler profiler(host.maker(), options);
  for (size_t i = from; i < values.size(); ++i) profiler.add(values[i], {i + 1, i + 1, 0});
  return profiler;
}

std::vector<std::string> repeated(size_t count, const std::string& value, std::vector<std::string> more) {
  more.insert(more.end(), count, value);
  return more;
}

TEST(ColumnProfile, Decisions) {
  ColumnHost host;
  const ProfilerOptions env = options_of("en_US"), given = options_of("en_US", true);
  ProfilerOptions day_first = given, dates = env, times = env, periods = env, comma = env, strict = env;
  day_first.order = Order::day_first;
  dates.kind = Kind::date;
  times.kind = Kind::time;
  periods.kind = Kind::period;
  comma.decimal_point = ",";
  strict.strict = true;
  const ProfilerOptions japanese = options_of("ja_JP", true), german = options_of("de_DE", true);
  const struct {
    const char* name;
    ProfilerOptions options;
    std::vector<std::string> values;
    const char* decision;  // kind, order and what decided it, decimal point and likewise, unit
    uint64_t read, ambiguous, contradicting, unread;
  } cases[] = {
      {"one value decides", env, {"03/04/21", "25/12/21", "03/03/21"}, "date day-first evidence", 3, 0, 0, 0},
      {"the other way", env, {"03/04/21", "12/25/21"}, "date month-first evidence", 2, 0, 0, 0},
      {"an environment never decides", env, {"03/04/21", "03/03/21"}, "date none nothing", 1, 1, 0, 0},
      {"a locale that was given does", given, {"03/04/21"}, "date month-first locale", 1, 0, 0, 0},
      {"but not against evidence", given, {"03/04/21", "25/12/21"}, "date day-first evidence", 2, 0, 0, 0},
      {"an option does, against all", day_first, {"03/04/21", "12/25/21"}, "date day-first option", 1, 0, 1, 0},
      {"19 to 1 is overwhelming", env, repeated(19, "25/12/21", {"12/25/21"}), "date day-first evidence", 19, 0, 1, 0},
      {"18 to 1 is not", env, repeated(18, "25/12/21", {"12/25/21", "3/4/21"}), "date none nothing", 19, 1, 0, 0},
      {"no such day is no evidence", env, {"31/02/21", "03/04/21"}, "date none nothing", 0, 1, 0, 1},
      {"nor makes it years come first", env, repeated(30, "25/12/21", {"31/02/21", "24/11/22"}),
       "date day-first evidence", 31, 0, 0, 1},
      {"years first", env, {"99/12/31", "21/03/04", "21/03/25"}, "date year-first evidence", 3, 0, 0, 0},
      {"years perhaps first", env, {"21/03/04", "21/03/25", "21/04/26"}, "date none nothing", 0, 3, 0, 0},
      {"years not first", env, {"04/03/21", "25/03/21", "26/04/21"}, "date day-first evidence", 3, 0, 0, 0},
      {"years first by locale", japanese, {"21/03/04"}, "date year-first locale", 1, 0, 0, 0},
      {"names need no order", env, {"5 Mar 2021", "March 5, 2021"}, "date none nothing", 2, 0, 0, 0},
      {"half is enough", env, {"2021-03-04", "x", ""}, "date none nothing", 1, 0, 0, 1},
      {"less is text", env, {"2021-03-04", "x", "y"}, "text none nothing", 3, 0, 0, 0},
      {"nothing", env, {"", " "}, "text none nothing", 0, 0, 0, 0},
      {"basic dates are numbers", env, {"20210304"}, "integer none nothing", 1, 0, 0, 0},
      {"unless asked for", dates, {"20210304", "20211304"}, "date none nothing", 1, 0, 0, 1},
      {"datetimes", env, {"2021-03-04 10:20", "03/25/2021 10:20 PM"}, "datetime month-first evidence", 2, 0, 0, 0},
      {"times", env, {"10:20", "10:20:30.5", "10:20 pm"}, "time none nothing", 3, 0, 0, 0},
      {"asked for", times, {"10:20", "x", "y", "z"}, "time none nothing", 1, 0, 0, 3},
      {"periods", env, {"2021-W09", "2021-Q1", "Mar 2021", "03/2021"}, "period none nothing", 4, 0, 0, 0},
      {"a month, not a number", periods, {"03.2021"}, "period none nothing", 1, 0, 0, 0},
      {"whole numbers", env, {"1", "-23", "00"}, "integer none nothing", 3, 0, 0, 0},
      {"one fraction", env, {"1", "2,5", "1.234"}, "number none nothing , evidence", 3, 0, 0, 0},
      {"groups decide", env, {"1.234.567", "1.234"}, "integer none nothing , evidence", 2, 0, 0, 0},
      {"a leading zero decides", env, {"0.123", "1,234"}, "number none nothing . evidence", 2, 0, 0, 0},
      {"undecided groups", env, {"1,234", "1.234", "12"}, "number none nothing", 1, 2, 0, 0},
      {"given locale", german, {"1,234", "1.234"}, "number none nothing , locale", 2, 0, 0, 0},
      {"option", comma, {"1,234", "1.5"}, "number none nothing , option", 1, 0, 1, 0},
      {"a currency", env, {"$1.50", "2.50"}, "number none nothing . evidence $", 2, 0, 0, 0},
      {"two currencies", env, {"$1.50", "$2.50", "€1.50"}, "number none nothing . evidence $", 2, 0, 1, 0},
      {"all per cent", env, {"1.5%", "2.5 %"}, "number none nothing . evidence %", 2, 0, 0, 0},
      {"some per cent", env, {"1.5%", "2.5", "3.5"}, "number none nothing . evidence", 2, 0, 1, 0},
      {"strict", strict, {"2021-03-04", "2021-3-4", " 2021-03-04"}, "text none nothing", 3, 0, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const ColumnReport report = fed(host, c.options, c.values).report("c");
    const Decision& d = report.decision;
    std::string decision = fmt::format("{} {} {}", word_of(kind_words, d.kind), word_of(order_words, d.order),
                                       word_of(source_words, d.order_by));
    if (d.decimal_by != Source::nothing)
      decision += fmt::format(" {} {}", d.decimal_point, word_of(source_words, d.decimal_by));
    if (!d.unit.empty()) decision += fmt::format(" {}", d.unit);
    EXPECT_EQ(decision, c.decision);
    EXPECT_EQ(report.read, c.read);
    EXPECT_EQ(report.ambiguous, c.ambiguous);
    EXPECT_EQ(report.contradicting, c.contradicting);
    EXPECT_EQ(report.unread, c.unread);

    // The same however the values are split, and through the file and back.
    for (size_t cut = 0; cut <= c.values.size(); ++cut) {
      Profiler first = fed(host, c.options, {c.values.begin(), c.values.begin() + static_cast<ptrdiff_t>(cut)});
      first.merge(fed(host, c.options, c.values, cut));
      EXPECT_EQ(to_json(first.report("c")).dump(), to_json(report).dump()) << "cut at " << cut;
    }
    const std::string file = write_profile({{report}});
    const std::vector<Decision> again = read_profile(file, "f");
    ASSERT_EQ(again.size(), 1U);
    ColumnReport read_back;
    read_back.decision = again[0];
    EXPECT_EQ(to_json(read_back)["decision"], to_json(report)["decision"]);
    Reader reader(host.maker(), again[0]);
    uint64_t read = 0;
    for (const std::string& value : c.values) read += reader.read(value) == Outcome::read ? 1 : 0;
    EXPECT_EQ(read, c.read);
  }
}

TEST(ColumnProfile, ReportsWhatDecidesAndWhatIsLeft) {
  ColumnHost host;
  ProfilerOptions options = options_of("en_GB");
  options.shown = 2;
  std::vector<std::string> values =
      repeated(40, "25/12/2021", {"03/04/2021", "12/25/2021", "3 Mar 2021", "\u00A032/01/2021", "x"});
  const ColumnReport report = fed(host, options, values).report("c");
  EXPECT_EQ(report.day_first.count, 40U);
  ASSERT_EQ(report.day_first.first.size(), 2U);
  EXPECT_EQ(report.day_first.first[0].place.record, 6U);
  EXPECT_EQ(report.month_first.count, 1U);
  EXPECT_EQ(report.either_order, 1U);
  ASSERT_EQ(report.first_contradicting.size(), 1U);
  EXPECT_EQ(report.first_contradicting[0].value, "12/25/2021");
  ASSERT_EQ(report.first_unread.size(), 2U);
  EXPECT_EQ(report.first_unread[0].place.line, 4U);
  EXPECT_EQ(report.first_unread[0].position, 2U);  // behind the no-break space
  EXPECT_EQ(report.first_unread[0].length, 2U);
  EXPECT_EQ(report.first_unread[0].expected, "\"32\" is not a day of a month (1 to 31), reading %#d");
  EXPECT_EQ(report.first_unread[0].status, VX_E_NOMATCH);
  ASSERT_EQ(report.forms.size(), 2U);
  EXPECT_EQ(report.forms[0].pattern, "%d/%m/%Y");
  EXPECT_EQ(report.forms[0].count, 42U);
  EXPECT_EQ(report.forms[1].example.value, "3 Mar 2021");
}

TEST(ColumnProfile, RanksLocales) {
  ColumnHost host;
  ProfilerOptions options = options_of("en_US");
  options.locales = auto_locales();
  const struct {
    const char* locale;
    std::vector<std::string> values;
  } cases[] = {
      {"de_DE", {"5. März 2021", "6. Mai 2021", "7. Dez. 2021"}},
      {"fr_FR", {"5 mars 2021", "6 août 2021", "lundi 8 mars 2021"}},
      {"es_ES", {"5 de marzo de 2021", "1 de enero de 2021"}},
      {"pl_PL", {"5 marca 2021", "1 stycznia 2021"}},
      {"ru_RU", {"5 марта 2021 г.", "1 янв. 2021"}},
      {"en_GB", {"25/12/2021", "5 March 2021"}},
      {"en_US", {"12/25/2021", "5 March 2021", "1,234.5"}},
      {"ko_KR", {"2021년 3월 5일 오후 2:05", "2021. 3. 5. 오전 10:20"}},
  };
  for (const auto& c : cases) {
    const ColumnReport report = fed(host, options, c.values).report("c");
    EXPECT_EQ(report.decision.locale, c.locale);
    ASSERT_EQ(report.locales.size(), options.locales.size());
    EXPECT_EQ(report.locales[0].explained, c.values.size());
    EXPECT_EQ(report.locales[0].locale, c.locale);
  }
}

TEST(ColumnProfile, WrongFilesAreRefusedWithThePlace) {
  const std::string head = "{\"vxnls-profile\": 1, \"columns\": [{\"decision\": {";
  const std::string date = R"("column": "when", "kind": "date", "locale": "de_DE", "order": "day-first", )";
  const struct {
    std::string text;
    const char* message;
  } cases[] = {
      {"", "f: line 1, column 1: it is no JSON"},
      {"{\n \"a\": ]", "f: line 2, column 7: it is no JSON"},
      {"[]", "it is no profile"},
      {"{\"vxnls-profile\": 2}", "its version is 2"},
      {"{\"vxnls-profile\": 1}", "the list \"columns\" is missing"},
      {"{\"vxnls-profile\": 1, \"columns\": [{}]}", "column 1: the member \"decision\" is missing"},
      {head + date + "\"form\": []}}]}", "column \"when\": there is no member \"form\", only column, kind"},
      {head + date + "\"forms\": []}}]}", "\"forms\" is missing"},
      {head + date + "\"forms\": \"%d\"}}]}", "\"forms\": a list of patterns is wanted"},
      {head + date + "\"forms\": [\"%d.%m\"]}}]}", "the form \"%d.%m\": a date has day, month and year"},
      {head + date + "\"forms\": [\"%m/%d/%Y\"]}}]}", "the form \"%m/%d/%Y\": it is month-first, the column day-first"},
      {head + date + "\"forms\": [\"%H:%M\"]}}]}", "it is a time, the column a date"},
      {head + date + "\"first-year\": 19}}]}", "\"first-year\": a year from 1582 to 9900 is wanted"},
      {head + date + "\"strict\": 1}}]}", "\"strict\": true or false is wanted"},
      {head + R"("column": "n", "kind": "nummer"}}]})", "\"nummer\" is none of"},
      {head + R"("column": "n", "kind": "number"}}]})", "\"locale\" is missing"},
      {head + R"("column": "n", "kind": "number", "locale": "de_DE", "decimal-point": ";"}}]})", "\"decimal-point\""},
      {head +
           R"("column": "n", "kind": "number", "locale": "de_DE"}}, {"decision": {"column": "n", "kind": "text", "locale": "de_DE"}}]})",
       "column \"n\": it stands there twice"},
  };
  for (const auto& c : cases) {
    try {
      read_profile(c.text, "f");
      ADD_FAILURE() << c.text;
    } catch (const vxcli::Failure& failure) {
      EXPECT_NE(std::string(failure.what()).find(c.message), std::string::npos) << failure.what() << "\n" << c.message;
      EXPECT_EQ(failure.code(), vxcli::ExitCode::usage);
    }
  }
}

}  // namespace
