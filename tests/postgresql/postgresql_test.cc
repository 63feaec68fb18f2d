// What the functions give in a real server: values, errors, and that they agree with the command.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "tests/postgresql/server.h"
#include "tests/support/process.h"

namespace {

using vxtest::Connection;
using vxtest::Reply;
using vxtest::Server;

class PostgreSQL : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (server != nullptr || !Server::missing().empty()) return;
    server = std::make_unique<Server>();
    const Reply reply = server->connect().run("CREATE EXTENSION vxnlsloc");
    ASSERT_EQ(reply.state, "") << reply.message;
  }
  void SetUp() override {
    if (server == nullptr) GTEST_SKIP() << Server::missing();
  }
  static inline std::unique_ptr<Server> server;  // one for all tests
};

TEST_F(PostgreSQL, Values) {
  static constexpr struct {
    const char* expression;
    const char* text;
  } cases[] = {
      {"vx_parse_date('31. Dezember 2021', 'de_DE')", "2021-12-31"},
      {"vx_parse_date('03/04/2021', 'en_US')", "2021-03-04"},
      {"vx_parse_date('03/04/2021', 'en_GB')", "2021-04-03"},
      {"vx_parse_date('3 avril 2021', 'fr_FR', 'long')", "2021-04-03"},
      {"vx_parse_date('2021:04:03', 'fr_FR', '%Y:%m:%d')", "2021-04-03"},
      {"vx_parse_date('03/04/2021', 'fr_FR', 'short')", "2021-04-03"},  // after a pattern of one's own
      {"vx_parse_date('31.12.9999', 'de_DE')", "9999-12-31"},
      {"vx_format_date('2026-11-21', 'hi_IN', 'long')", "21 नवंबर 2026"},
      {"vx_format_date('1582-01-01', 'de_DE')", "01.01.1582"},
      {"vx_format_date('2026-11-21', 'en_GB', '%A, %#d %B %Y')", "Saturday, 21 November 2026"},
      {"vx_format_date('2026-11-21', 'en_GB')", "21/11/2026"},
      {"vx_format_date('20000-12-31', 'de_DE')", "31.12.0000"},  // kept on purpose: the last four digits of the year
      {"vx_parse_number('1.234.567,89', 'de_DE')", "1234567.89"},
      {"vx_parse_number('1 234,5', 'fr_FR')", "1234.5"},
      {"vx_parse_number(U&'1\\00A0234,5', 'fr_FR')", "1234.5"},
      {"vx_parse_number(' .a ', 'en_US')", "null"},
      {"vx_format_number(1234567.891, 'de_DE')", "1.234.567,891"},
      {"vx_format_number(-1234567.891, 'en_IN', 2)", "-12,34,567.89"},
      {"vx_format_number(2.5, 'en_US', 0)", "3"},
      {"vx_format_number('NaN', 'de_DE')", "."},
      {"vx_format_number('Infinity', 'de_DE', 2)", "Inf"},
      {"vx_format_number('-Infinity', 'de_DE')", "-Inf"},
      {"length(vx_format_number(1e308, 'en_US', 98))", "510"},  // 309 digits, 102 separators, 98 decimals
      {"vx_parse_date(NULL, 'de_DE')", "null"},
      {"vx_format_number(1, NULL)", "null"},
      {"vx_versions() LIKE 'ICU %; CLDR %; Unicode %; tz %'", "t"},
  };
  Connection connection = server->connect();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.expression);
    EXPECT_EQ(connection.run(std::string("SELECT ") + c.expression).text(), c.text);
  }
}

/// Every refusal is an error of SQL, after which the session goes on.
TEST_F(PostgreSQL, Errors) {
  static constexpr struct {
    const char* expression;
    const char* state;
    const char* message;
    const char* detail;
  } cases[] = {
      {"vx_parse_date('3. Mürz 21.13.2021', 'de_DE')", "22007",
       "cannot read date \"3. Mürz 21.13.2021\" in locale \"de_DE\"",
       "At character 4: \"Mürz\" is not the name of a month, reading %B."},
      {"vx_parse_date('März 31.13.2021', 'de_DE', 'März %d.%m.%Y')", "22007",
       "cannot read date \"März 31.13.2021\" in locale \"de_DE\"",
       "At character 9: \"13\" is not a month (1 to 12), reading %m."},
      {"vx_parse_date('31.02.2021', 'de_DE')", "22008", "cannot read date \"31.02.2021\" in locale \"de_DE\"",
       "There is no day 2021-02-31."},
      {"vx_parse_date(E'1.2.2021\\tx', 'de_DE')", "22007", "cannot read date \"1.2.2021\\tx\" in locale \"de_DE\"",
       "At character 9: \"\\tx\" follows what was read."},
      {"vx_parse_date('', 'de_DE', 'short')", "22007", "cannot read date \"\" in locale \"de_DE\"",
       "At character 1: the text ends where a day of a month is wanted, reading %d."},
      {"vx_parse_date('x', 'xx_YY')", "22023", "cannot read date \"x\" in locale \"xx_YY\"",
       "There is no locale \"xx_YY\"."},
      {"vx_parse_date('x', repeat('de', 50))", "22023", nullptr, nullptr},
      {"vx_parse_date('1.2.2021', 'de_DE', 'main')", "22023", "cannot read date \"1.2.2021\" in locale \"de_DE\"",
       "A form is \"any\", \"short\", \"medium\", \"long\", or a pattern of directives such as \"%d.%m.%Y\"."},
      {"vx_parse_date('02.2021', 'de_DE', '%m.%Y')", "22023", "cannot read date \"02.2021\" in locale \"de_DE\"",
       "The pattern \"%m.%Y\" reads no full date."},
      {"vx_parse_date('1', 'de_DE', '%J')", "22023", "cannot read date \"1\" in locale \"de_DE\"",
       "Of the pattern \"%J\": the pattern holds %J, which reads nothing here."},
      {"vx_parse_date('1', 'de_DE', repeat('%d', 31))", "22023", "cannot read date \"1\" in locale \"de_DE\"",
       "A pattern has at most 60 characters, not 62."},
      {"vx_parse_date(repeat('1', 65537), 'de_DE')", "54000", nullptr, "It has 65537 bytes; at most 65536 are read."},
      {"vx_format_date('infinity', 'de_DE')", "22008", "cannot write date infinity in locale \"de_DE\"",
       "Dates from 1582-01-01 to 20000-12-31 can be written."},
      {"vx_format_date('0055-02-28', 'de_DE')", "22008", "cannot write date 0055-02-28 in locale \"de_DE\"",
       "Dates from 1582-01-01 to 20000-12-31 can be written."},
      {"vx_format_date('1581-12-31', 'de_DE')", "22008", nullptr, nullptr},
      {"vx_format_date('20001-01-01', 'de_DE')", "22008", nullptr, nullptr},
      {"vx_format_date('5874897-12-31', 'de_DE')", "22008", nullptr, nullptr},
      {"vx_format_date('4713-01-01 BC', 'de_DE')", "22008", nullptr, nullptr},
      {"vx_format_date('4000-02-29', 'de_DE')", "22008", "cannot write date 4000-02-29 in locale \"de_DE\"",
       "There is no day 4000-02-29 in this calendar, where years divisible by 4000 are common years."},
      {"vx_format_date('2021-01-01', 'de_DE', 'any')", "22023", nullptr, nullptr},
      {"vx_format_date('2021-01-01', 'de_DE', '%H')", "22023", "cannot write date 2021-01-01 in locale \"de_DE\"",
       "The pattern \"%H\" holds a directive that writes no part of a date."},
      {"vx_parse_number('1.234,5é', 'de_DE')", "22P02", "cannot read number \"1.234,5é\" in locale \"de_DE\"",
       "At character 8: \"é\" follows the number."},
      {"vx_parse_number('.', 'de_DE')", "22P02", "cannot read number \".\" in locale \"de_DE\"",
       "At character 1: \".\" followed by neither a digit nor the letter of a missing value."},
      {"vx_parse_number('1,2,3', 'de_DE')", "22P02", "cannot read number \"1,2,3\" in locale \"de_DE\"",
       "At character 4: a second decimal point."},
      {"vx_parse_number('  ', 'de_DE')", "22P02", "cannot read number \"  \" in locale \"de_DE\"",
       "There is no number."},
      {"vx_parse_number('1e400', 'de_DE')", "22003", "cannot read number \"1e400\" in locale \"de_DE\"",
       "At character 1: \"1e400\" is too large."},
      {"vx_format_number(1, 'de_DE', 99)", "22023", "cannot write number 1 in locale \"de_DE\"",
       "A number of decimals lies between 0 and 98."},
      {"vx_format_number('NaN', 'de_DE', -1)", "22023", "cannot write number NaN in locale \"de_DE\"",
       "A number of decimals lies between 0 and 98."},
  };
  Connection connection = server->connect();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.expression);
    const Reply reply = connection.run(std::string("SELECT ") + c.expression);
    EXPECT_EQ(reply.state, c.state);
    if (c.message != nullptr) {
      EXPECT_EQ(reply.message, c.message);
    }
    if (c.detail != nullptr) {
      EXPECT_EQ(reply.detail, c.detail);
    }
    EXPECT_EQ(connection.run("SELECT vx_parse_date('1.2.2021', 'de_DE')").text(), "2021-02-01");
  }
}

/// That another locale stands in is told once.
TEST_F(PostgreSQL, SubstituteLocale) {
  Connection connection = server->connect();
  for (const char* locale : {"de_DE", "de_XX", "de_XX", "de-DE"}) {
    EXPECT_EQ(connection.run(fmt::format("SELECT vx_parse_number('1,5', '{}')", locale)).text(), "1.5");
  }
  EXPECT_EQ(connection.notices(), "WARNING:  there is no locale \"de_XX\"; de stands in for it\n");
}

/// Databases in other encodings hold the same texts; what an encoding has no character for is an error of the server's,
/// and in a message a question mark.
TEST_F(PostgreSQL, Encodings) {
  for (const char* encoding : {"LATIN1", "SQL_ASCII"}) {
    Connection first = server->connect();
    ASSERT_EQ(
        first.run(fmt::format("CREATE DATABASE d_{0} ENCODING {0} LOCALE 'C' TEMPLATE template0", encoding)).state, "");
  }
  static constexpr struct {
    const char* database;
    const char* expression;
    const char* state;
    const char* text;    // or the message
    const char* detail;  // null: not looked at
  } cases[] = {
      {"d_latin1", "vx_parse_date('5. März 2021', 'de_DE')", "", "2021-03-05", ""},
      {"d_latin1", "vx_format_date('2021-03-05', 'de_DE', 'long')", "", "5. März 2021", ""},
      {"d_latin1", "vx_format_number(1234.5, 'fr_FR')", "", "1\u00A0234,5", ""},
      {"d_latin1", "octet_length(vx_format_number(1234.5, 'fr_FR'))", "", "7", ""},
      {"d_latin1", "vx_format_date('2021-03-05', 'hi_IN', 'long')", "22P05", nullptr, nullptr},
      {"d_latin1", "vx_parse_date('2021é', 'ja_JP', 'long')", "22007", "cannot read date \"2021é\" in locale \"ja_JP\"",
       "At character 5: \"é\" stands where \"?\" is wanted."},
      {"d_sql_ascii", "vx_parse_date('5. März 2021', 'de_DE')", "", "2021-03-05", ""},
      {"d_sql_ascii", "vx_format_date('2021-03-05', 'hi_IN', 'long')", "", "5 मार्च 2021", ""},
      {"d_sql_ascii", "vx_parse_date(E'5. M\\344rz 2021', 'de_DE')", "22021", nullptr, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.database) + ": " + c.expression);
    Connection connection = server->connect(c.database);
    connection.run("CREATE EXTENSION IF NOT EXISTS vxnlsloc");
    const Reply reply = connection.run(std::string("SELECT ") + c.expression);
    EXPECT_EQ(reply.state, c.state);
    if (c.text != nullptr) {
      EXPECT_EQ(reply.text(), c.text);
    }
    if (c.detail != nullptr) {
      EXPECT_EQ(reply.detail, c.detail);
    }
  }
}

/// The SQL of the document: below each statement stands what it gives.
TEST_F(PostgreSQL, Document) {
  std::ifstream document(VX_PG_DOCUMENT);
  Connection connection = server->connect();
  std::string statement, given;
  std::vector<std::string> expected;
  size_t count = 0;
  const auto compare = [&] {
    std::string text;
    for (const std::string& line : expected) text += line + '\n';
    EXPECT_EQ(given, text) << statement;
    count += expected.empty() ? 0 : 1;
    statement.clear();
    given.clear();
    expected.clear();
  };
  bool inside = false, complete = false;
  for (std::string line; std::getline(document, line);) {
    if (line == "```sql" || line == "```") {
      if (complete) compare();
      complete = false;
      inside = line.size() > 3;
    } else if (inside && line.starts_with("-- ")) {
      expected.push_back(line.substr(3));
    } else if (inside) {
      if (complete) compare();
      statement += line + '\n';
      size_t quotes = 0;  // of the bodies of functions
      for (size_t at = 0; (at = statement.find("$$", at)) != std::string::npos; at += 2) ++quotes;
      complete = line.ends_with(';') && quotes % 2 == 0;
      if (complete) {
        const Reply reply = connection.run(statement);
        given = reply.state.empty() ? reply.text() : "ERROR: " + reply.message + "\nDETAIL: " + reply.detail;
        if (!given.empty()) given += '\n';
      }
    }
  }
  EXPECT_GE(count, 9U);
}

// --- the table of 100,000 rows ---------------------------------------------------------------------------

constexpr const char* locales[] = {"de_DE", "en_US", "en_GB", "fr_FR", "ja_JP",
                                   "hi_IN", "ru_RU", "ar_EG", "pt_BR", "sv_SE"};
constexpr size_t rows_of_a_kind = 5000;  // of a locale

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

/// Runs the command on lines.
std::vector<std::string> filter(const std::string& words, const std::vector<std::string>& lines) {
  std::string input;
  for (const std::string& line : lines) input += line + '\n';
  const auto result =
      vxtest::run_shell(std::string(VXNLS_COMMAND_FOLDER) + "/vxnls " + words, input, {{"TZ", "UTC"}, {"LC_ALL", "C"}});
  const auto out = lines_of(result.out);
  EXPECT_EQ(out.size(), lines.size()) << words << '\n' << result.err.substr(0, 1000);
  return out;
}

/// About one text in eight gets a fault at a random character.
void spoil(std::vector<std::string>& texts, std::mt19937& random) {
  static constexpr const char* intruders[] = {"", "x", ",", ".", " ", "-", "9", "/", "é", "−", "٣"};
  for (std::string& text : texts) {
    if (random() % 8 != 0) continue;
    std::vector<size_t> starts;
    for (size_t i = 0; i < text.size(); ++i) {
      if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) starts.push_back(i);
    }
    const size_t which = random() % starts.size();
    const size_t end = which + 1 < starts.size() ? starts[which + 1] : text.size();
    text.replace(starts[which], end - starts[which], intruders[random() % std::size(intruders)]);
  }
}

struct Row {
  const char* kind;
  const char* locale;
  std::string value;
  std::string read;     // empty: refused
  std::string refusal;  // the command's words
};

std::vector<Row> make_rows() {
  std::mt19937 random(20261121);
  std::vector<Row> rows;
  for (const char* locale : locales) {
    for (const char* kind : {"date", "number"}) {
      const bool dates = kind[0] == 'd';
      std::vector<std::string> values;
      for (const char* how : {"short", "medium", "long"}) {
        std::vector<std::string> plain;
        for (size_t i = 0; i < rows_of_a_kind; ++i) {
          if (dates) plain.push_back(std::to_string(static_cast<int>(random() % 3'085'000) - 138'061));  // to 9999
          else plain.push_back(fmt::format("{}{}e-{}", random() % 4 == 0 ? "-" : "", random(), random() % 7));
        }
        const std::string form = dates           ? fmt::format("date --style {}", how)
                                 : how[0] == 'l' ? "number --exponent"
                                 : how[0] == 'm' ? "number --decimals 3"
                                                 : "number --group";
        const auto written = filter(fmt::format("format {} -l {}", form, locale), plain);
        values.insert(values.end(), written.begin(), written.end());
      }
      std::shuffle(values.begin(), values.end(), random);
      values.resize(rows_of_a_kind);
      spoil(values, random);
      const auto told =
          filter(fmt::format("parse {} -l {} --json", dates ? "date --lenient" : "number --spaces", locale), values);
      for (size_t i = 0; i < values.size() && i < told.size(); ++i) {
        const auto object = nlohmann::json::parse(told[i]);
        rows.push_back({kind, locale, values[i], object.value("text", ""), object.value("error", "")});
      }
    }
  }
  return rows;
}

/// The command's words for a refusal as the functions have them: bytes from 0 become characters from 1.
std::string as_detail(const Row& row) {
  std::string text = row.refusal;
  if (text.starts_with("at byte ")) {
    const size_t colon = text.find(':');
    const auto byte = std::stoul(text.substr(8, colon - 8));
    const auto character = 1 + std::count_if(row.value.begin(), row.value.begin() + static_cast<int64_t>(byte),
                                             [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
    text = fmt::format("At character {}{}", character, text.substr(colon));
  }
  if (const size_t advice = text.find("; --rest allows it"); advice != std::string::npos) text.resize(advice);
  text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
  return text + '.';
}

class Table : public PostgreSQL {
 protected:
  void SetUp() override {
    PostgreSQL::SetUp();
    if (server == nullptr || !rows.empty()) return;
    rows = make_rows();
    ASSERT_EQ(rows.size(), 100'000U);
    std::string lines;
    for (size_t i = 0; i < rows.size(); ++i) {
      lines += fmt::format("{}\t{}\t{}\t{}\t{}\n", i, rows[i].kind, rows[i].locale, rows[i].value,
                           rows[i].read.empty() ? "f" : "t");
    }
    Connection connection = server->connect();
    ASSERT_EQ(connection
                  .run("CREATE TABLE messy (id int, kind text, locale text, value text, good bool);"
                       "CREATE FUNCTION read(kind text, locale text, value text) RETURNS text LANGUAGE plpgsql AS $$"
                       "DECLARE detail text; BEGIN"
                       "  IF kind = 'date' THEN RETURN vx_parse_date(value, locale); END IF;"
                       "  RETURN vx_parse_number(value, locale);"
                       "EXCEPTION WHEN data_exception THEN"
                       "  GET STACKED DIAGNOSTICS detail = PG_EXCEPTION_DETAIL; RETURN detail; END $$")
                  .state,
              "");
    ASSERT_EQ(connection.copy_in("COPY messy FROM STDIN", lines).state, "");
    ASSERT_EQ(connection.run("ANALYZE messy").state, "");
  }
  static inline std::vector<Row> rows;
};

TEST_F(Table, AgreesWithTheCommand) {
  Connection connection = server->connect();
  const Reply reply = connection.run("SELECT read(kind, locale, value) FROM messy ORDER BY id");
  ASSERT_EQ(reply.rows.size(), rows.size()) << reply.message;
  size_t refused = 0, wrong = 0;
  for (size_t i = 0; i < rows.size() && wrong < 10; ++i) {
    const Row& row = rows[i];
    if (row.read.empty()) ++refused;
    std::string expected = row.read.empty() ? as_detail(row) : row.read.starts_with('.') ? "null" : row.read;
    std::string given = reply.rows[i][0];
    // The same double may have two shortest spellings.
    const bool number = row.kind[0] == 'n' && !row.read.empty() && given != "null" && expected != "null";
    const bool equal = number && given != expected ? std::stod(given) == std::stod(expected) : given == expected;
    if (!equal) ++wrong;
    EXPECT_TRUE(equal) << row.kind << " \"" << row.value << "\" in " << row.locale << ": " << given
                       << ", the command: " << expected;
  }
  EXPECT_GT(refused, 5'000U);
  EXPECT_LT(refused, 20'000U);

  // What was read, written again.
  static constexpr struct {
    const char* kind;
    const char* expression;
    const char* words;
  } forms[] = {
      {"date", "vx_format_date(vx_parse_date(value, locale), locale, 'long')", "date --style long"},
      {"date", "vx_format_date(vx_parse_date(value, locale), locale)", "date"},
      {"number", "vx_format_number(vx_parse_number(value, locale), locale)", "number --group"},
      {"number", "vx_format_number(vx_parse_number(value, locale), locale, 2)", "number --group --decimals 2"}};
  for (const auto& form : forms) {
    for (const char* locale : locales) {
      SCOPED_TRACE(fmt::format("{} in {}", form.expression, locale));
      std::vector<std::string> values, written;
      for (const Row& row : rows) {
        if (row.locale == locale && row.kind[0] == form.kind[0] && !row.read.empty() && !row.read.starts_with('.'))
          values.push_back(row.read);
      }
      const Reply sql = connection.run(
          fmt::format("SELECT t FROM (SELECT id, {} AS t FROM messy WHERE good AND kind = '{}' AND locale = '{}') AS s "
                      "WHERE t IS NOT NULL ORDER BY id",
                      form.expression, form.kind, locale));
      for (const auto& row : sql.rows) written.push_back(row[0]);
      EXPECT_EQ(written, filter(fmt::format("format {} -l {}", form.words, locale), values)) << sql.message;
    }
  }
}

/// Two workers compute what one process computes.
TEST_F(Table, Parallel) {
  static const std::string query =
      "SELECT count(*), sum(hashtextextended(CASE kind"
      " WHEN 'date' THEN vx_format_date(vx_parse_date(value, locale), locale, 'long')"
      " ELSE vx_format_number(vx_parse_number(value, locale), locale, 2) END, id)) FROM messy WHERE good";
  Connection connection = server->connect();
  EXPECT_EQ(connection
                .run("SELECT count(*) FROM pg_proc WHERE proname LIKE 'vx\\_%' AND proparallel = 's' AND "
                     "provolatile = 's' AND proisstrict")
                .text(),
            "6");
  connection.run("SET max_parallel_workers_per_gather = 0");
  const std::string alone = connection.run(query).text();
  connection.run(
      "SET max_parallel_workers_per_gather = 2; SET parallel_setup_cost = 0; SET parallel_tuple_cost = 0;"
      "SET min_parallel_table_scan_size = 0; SET parallel_leader_participation = off");
  EXPECT_EQ(connection.run(query).text(), alone);
  const std::string plan = connection.run("EXPLAIN (ANALYZE, VERBOSE, COSTS OFF, TIMING OFF) " + query).text();
  EXPECT_NE(plan.find("Workers Launched: 2"), std::string::npos) << plan;
  const size_t partial = plan.find("Partial Aggregate");
  ASSERT_NE(partial, std::string::npos) << plan;
  EXPECT_NE(plan.find("vx_parse_date", partial), std::string::npos) << plan;  // below the workers' aggregate
}

// --- the server process ------------------------------------------------------------------------------------

TEST_F(PostgreSQL, InterruptsAreHonoured) {
  Connection connection = server->connect();
  connection.run("SET statement_timeout = '100ms'");
  const Reply reply = connection.run(
      "SELECT count(vx_format_date(vx_parse_date('5.3.2021', 'de_DE'), 'ja_JP')) "
      "FROM generate_series(1, 2000000000)");
  EXPECT_EQ(reply.state, "57014");
  EXPECT_EQ(connection.run("SELECT vx_parse_number('1,5', 'de_DE')").text(), "1.5");
}

/// Kilobytes of a process that are in memory.
int64_t resident(int process) {
  std::ifstream status(fmt::format("/proc/{}/status", process));
  for (std::string word; status >> word;) {
    if (word == "VmRSS:") {
      int64_t kilobytes = 0;
      status >> kilobytes;
      return kilobytes;
    }
  }
  return -1;
}

/// Neither values nor errors nor patterns leave anything behind, and at the end of the session the host is closed.
TEST_F(PostgreSQL, NothingIsLeft) {
  std::string words;
  {
    Connection connection = server->connect();
    connection.run("SET log_min_messages = debug1");
    const auto work = [&](int rounds) {
      return connection
          .run(fmt::format("DO $$ DECLARE n int := 0; BEGIN FOR i IN 1..{} LOOP BEGIN"
                           "  PERFORM vx_format_date(vx_parse_date(i || ' 1 2021', 'fr_FR', '%#d %#m' || repeat(' ', i "
                           "% 20) || '%Y'), 'ru_RU', '%Y ' || i % 50);"
                           "EXCEPTION WHEN data_exception THEN n := n + 1; END; BEGIN"
                           "  PERFORM vx_parse_number(repeat('9', i % 3000) || '!', (ARRAY['de_DE', 'pt_BR', 'xx_' || "
                           "i])[1 + i % 3]);"
                           "EXCEPTION WHEN data_exception THEN n := n + 1; END; END LOOP;"
                           "IF n < {} THEN RAISE 'only % errors', n; END IF; END $$",
                           rounds, rounds))
          .message;
    };
    EXPECT_EQ(work(5000), "");
    const int64_t before = resident(connection.process());
    EXPECT_EQ(work(20'000), "");
    const int64_t after = resident(connection.process());
    EXPECT_GT(before, 0);
    EXPECT_LE(after, before + 1024) << "from " << before << " kB";
    words = fmt::format("[{}] DEBUG:  vxnlsloc: the host is closed, 0 of its objects are alive", connection.process());
  }
  // The process writes its last words after the connection is gone.
  std::string log;
  for (int i = 0; i < 500 && log.find(words) == std::string::npos; ++i) {
    usleep(20'000);
    log = server->log();
  }
  EXPECT_NE(log.find(words), std::string::npos);
  EXPECT_EQ(log.find("terminated by signal"), std::string::npos);
}

}  // namespace
