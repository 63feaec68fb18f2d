// What the functions give in a real server: values, errors, and that they agree with the command.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "tests/support/process.h"

namespace {

std::vector<std::string> lines_of(std::istream&& in) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

/// What a statement gave: rows of texts, or an error.
struct Reply {
  std::vector<std::string> rows;  // "|" between columns
  std::string state;              // SQLSTATE; empty when it went well
  std::string message, detail;

  std::string text() const { return state.empty() ? fmt::format("{}", fmt::join(rows, "\n")) : message; }
};

/// Text that is sent and received is UTF-8, whatever the encoding of the database.
class Connection {
 public:
  explicit Connection(const std::string& database = "postgres")
      : connection_(PQconnectdb(("client_encoding=UTF8 dbname=" + database).c_str()), PQfinish) {
    if (PQstatus(connection_.get()) != CONNECTION_OK) throw std::runtime_error(PQerrorMessage(connection_.get()));
    PQsetNoticeProcessor(
        connection_.get(), [](void* all, const char* text) { *static_cast<std::string*>(all) += text; }, &notices);
  }

  Reply run(const std::string& statement) { return reply_of(PQexec(connection_.get(), statement.c_str())); }
  int process() const { return PQbackendPID(connection_.get()); }
  std::string notices;  // as they came

 private:
  static Reply reply_of(PGresult* given) {
    const std::unique_ptr<PGresult, decltype(&PQclear)> result(given, PQclear);
    const auto field = [&](int code) {
      const char* const text = PQresultErrorField(given, code);
      return std::string(text != nullptr ? text : "");
    };
    Reply reply{{}, field(PG_DIAG_SQLSTATE), field(PG_DIAG_MESSAGE_PRIMARY), field(PG_DIAG_MESSAGE_DETAIL)};
    if (PQresultStatus(given) == PGRES_FATAL_ERROR && reply.state.empty()) reply.state = "lost";
    for (int row = 0; row < PQntuples(given); ++row) {
      std::vector<std::string> columns;
      for (int column = 0; column < PQnfields(given); ++column) {
        columns.emplace_back(PQgetisnull(given, row, column) != 0 ? "null" : PQgetvalue(given, row, column));
      }
      reply.rows.push_back(fmt::format("{}", fmt::join(columns, "|")));
    }
    return reply;
  }
  std::unique_ptr<PGconn, decltype(&PQfinish)> connection_;
};

class PostgreSQL : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    for (const char* encoding : {"LATIN1", "SQL_ASCII"}) {
      Connection().run(fmt::format("CREATE DATABASE {0} ENCODING {0} LOCALE 'C' TEMPLATE template0", encoding));
    }
    for (const char* database : {"postgres", "latin1", "sql_ascii"}) {
      ASSERT_EQ(Connection(database).run("CREATE EXTENSION IF NOT EXISTS vxnlsloc").text(), "");
    }
  }
};

// Values; of errors of SQL, after which the session goes on, the state and the detail. What is wrong with a text is
// held against the command below, and whole messages by the document. What an encoding has no character for is an error
// of the server's, and in a message a question mark.
TEST_F(PostgreSQL, ValuesAndErrors) {
  static const std::pair<const char*, const char*> cases[] = {
      {"vx_parse_date('3 avril 2021', 'fr_FR', 'long')", "2021-04-03"},
      {"vx_parse_date('2021:04:03', 'fr_FR', '%Y:%m:%d')", "2021-04-03"},
      {"vx_parse_date('03/04/2021', 'fr_FR', 'short')", "2021-04-03"},  // after a pattern of one's own
      {"vx_parse_date('31.12.9999', 'de_DE')", "9999-12-31"},
      {"vx_format_date('1582-01-01', 'de_DE')", "01.01.1582"},
      {"vx_format_date('20000-12-31', 'de_DE')", "31.12.0000"},  // kept on purpose: the last four digits of the year
      {"vx_parse_number(' .a ', 'en_US')", "null"},
      {"vx_format_number(2.5, 'en_US', 0)", "3"},
      {"vx_format_number('NaN', 'de_DE')", "."},
      {"vx_format_number('-Infinity', 'de_DE')", "-Inf"},
      {"length(vx_format_number(1e308, 'en_US', 98))", "510"},  // 309 digits, 102 separators, 98 decimals
      {"vx_parse_date(NULL, 'de_DE')", "null"},
      {"vx_versions() LIKE 'ICU %; CLDR %; Unicode %; tz %'", "t"},
      {"vx_parse_date(E'1.2.2021\\tx', 'de_DE')", "22007: At character 9: \"\\tx\" follows what was read."},
      {"vx_parse_date('31.02.2021', 'de_DE')", "22008: There is no day 2021-02-31."},
      {"vx_parse_date('x', 'xx_YY')", "22023: There is no locale \"xx_YY\"."},
      {"vx_parse_date('x', repeat('de', 50))",
       "22023: There is no locale \"dededededededededededededededededededededededededededededede\"...."},
      {"vx_parse_date('1.2.2021', 'de_DE', 'main')",
       "22023: A form is \"any\", \"short\", \"medium\", \"long\", or a pattern of directives such as \"%d.%m.%Y\"."},
      {"vx_parse_date('02.2021', 'de_DE', '%m.%Y')", "22023: The pattern \"%m.%Y\" reads no full date."},
      {"vx_parse_date('1', 'de_DE', '%J')",
       "22023: Of the pattern \"%J\": the pattern holds %J, which reads nothing here."},
      {"vx_parse_date('1', 'de_DE', repeat('%d', 31))", "22023: A pattern has at most 60 characters, not 62."},
      {"vx_parse_date(repeat('1', 65537), 'de_DE')", "54000: It has 65537 bytes; at most 65536 are read."},
      {"vx_format_date('1581-12-31', 'de_DE')", "22008: Dates from 1582-01-01 to 20000-12-31 can be written."},
      {"vx_format_date('5874897-12-31', 'de_DE')", "22008: Dates from 1582-01-01 to 20000-12-31 can be written."},
      {"vx_format_date('4713-01-01 BC', 'de_DE')", "22008: Dates from 1582-01-01 to 20000-12-31 can be written."},
      {"vx_format_date('4000-02-29', 'de_DE')",
       "22008: There is no day 4000-02-29 in this calendar, where years divisible by 4000 are common years."},
      {"vx_format_date('2021-01-01', 'de_DE', 'any')",
       "22023: A form is \"short\", \"medium\", \"long\", or a pattern of directives such as \"%d.%m.%Y\"."},
      {"vx_format_date('2021-01-01', 'de_DE', '%H')",
       "22023: The pattern \"%H\" holds a directive that writes no part of a date."},
      {"vx_parse_number('1.234,5é', 'de_DE')", "22P02: At character 8: \"é\" follows the number."},
      {"vx_parse_number('1e400', 'de_DE')", "22003: At character 1: \"1e400\" is too large."},
      {"vx_format_number(1, 'de_DE', 99)", "22023: A number of decimals lies between 0 and 98."},
      {"vx_format_number('NaN', 'de_DE', -1)", "22023: A number of decimals lies between 0 and 98."},
  };
  static constexpr const char* encoded[][3] = {
      {"latin1", "vx_parse_date('5. März 2021', 'de_DE')", "2021-03-05"},
      {"latin1", "vx_format_date('2021-03-05', 'de_DE', 'long')", "5. März 2021"},
      {"latin1", "octet_length(vx_format_number(1234.5, 'fr_FR'))", "7"},
      {"latin1", "vx_format_date('2021-03-05', 'hi_IN', 'long')", "22P05: "},
      {"latin1", "vx_parse_date('2021é', 'ja_JP', 'long')",
       "22007: At character 5: \"é\" stands where \"?\" is wanted."},
      {"sql_ascii", "vx_parse_date('5. März 2021', 'de_DE')", "2021-03-05"},
      {"sql_ascii", "vx_format_date('2021-03-05', 'hi_IN', 'long')", "5 मार्च 2021"},
      {"sql_ascii", "vx_parse_date(E'5. M\\344rz 2021', 'de_DE')", "22021: "},
  };
  const auto expect = [](Connection& connection, const char* expression, const char* wanted) {
    const Reply reply = connection.run(std::string("SELECT ") + expression);
    EXPECT_EQ(reply.state.empty() ? reply.text() : reply.state + ": " + reply.detail, wanted) << expression;
  };
  Connection connection;
  for (const auto& [expression, wanted] : cases) expect(connection, expression, wanted);
  for (const auto& [database, expression, wanted] : encoded) {
    Connection other(database);
    expect(other, expression, wanted);
  }
  // That another locale stands in is told once.
  for (const char* locale : {"de_DE", "de_XX", "de_XX", "de-DE"}) {
    EXPECT_EQ(connection.run(fmt::format("SELECT vx_parse_number('1,5', '{}')", locale)).text(), "1.5");
  }
  EXPECT_EQ(connection.notices, "WARNING:  there is no locale \"de_XX\"; de stands in for it\n");
}

/// The SQL of the document: below each statement stands what it gives.
TEST_F(PostgreSQL, Document) {
  Connection connection;
  bool inside = false;
  std::string statement, given, expected;
  size_t count = 0;
  for (const std::string& line : lines_of(std::ifstream(VX_PG_DOCUMENT))) {
    const bool answer = inside && line.starts_with("-- ");
    if (answer) expected += line.substr(3) + '\n';
    if (!answer && !given.empty()) {
      EXPECT_EQ(given, expected) << statement;
      ++count;
      statement = given = expected = "";
    }
    if (line.starts_with("```")) inside = line == "```sql";
    else if (inside && !answer) statement += line + '\n';
    size_t quotes = 0;  // of the bodies of functions
    for (size_t at = 0; (at = statement.find("$$", at)) != std::string::npos; at += 2) ++quotes;
    if (answer || !line.ends_with(';') || quotes % 2 != 0 || statement.empty()) continue;
    const Reply reply = connection.run(statement);
    given = reply.state.empty() ? reply.text() : "ERROR: " + reply.message + "\nDETAIL: " + reply.detail;
    if (given.empty()) statement.clear();
    else given += '\n';
  }
  EXPECT_GE(count, 9U);
}

// --- the table of 100,000 rows ---------------------------------------------------------------------------

constexpr const char* locales[] = {"de_DE", "en_US", "en_GB", "fr_FR", "ja_JP",
                                   "hi_IN", "ru_RU", "ar_EG", "pt_BR", "sv_SE"};
constexpr size_t rows_of_a_kind = 5000;  // of a locale

/// Runs the command on lines.
std::vector<std::string> filter(const std::string& words, const std::vector<std::string>& lines) {
  const auto result = vxtest::run_shell(std::string(VXNLS_COMMAND_FOLDER) + "/vxnls " + words,
                                        fmt::format("{}\n", fmt::join(lines, "\n")), {{"TZ", "UTC"}, {"LC_ALL", "C"}});
  const auto out = lines_of(std::istringstream(result.out));
  EXPECT_EQ(out.size(), lines.size()) << words << '\n' << result.err.substr(0, 1000);
  return out;
}

bool starts_character(char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }

/// About one text in eight gets a fault at a random character.
void spoil(std::string& text, std::mt19937& random) {
  static constexpr const char* intruders[] = {"", "x", ",", ".", " ", "-", "9", "/", "é", "−", "٣"};
  if (random() % 8 != 0) return;
  size_t start = random() % text.size();
  while (!starts_character(text[start])) --start;
  size_t end = start + 1;
  while (end < text.size() && !starts_character(text[end])) ++end;
  text.replace(start, end - start, intruders[random() % std::size(intruders)]);
}

struct Row {
  const char* kind;
  const char* locale;
  std::string value;
  std::string read;     // empty: refused
  std::string refusal;  // the command's words
};

std::vector<Row> make_rows() {
  static constexpr const char* forms[][2] = {{"date --style short", "number --group"},
                                             {"date --style medium", "number --decimals 3"},
                                             {"date --style long", "number --exponent"}};
  std::mt19937 random(20261121);
  std::vector<Row> rows;
  for (const char* locale : locales) {
    for (const bool dates : {true, false}) {
      std::vector<std::string> values;
      for (const auto& form : forms) {
        std::vector<std::string> plain;
        for (size_t i = 0; i < rows_of_a_kind; ++i) {
          if (dates) plain.push_back(std::to_string(static_cast<int>(random() % 3'085'000) - 138'061));  // to 9999
          else plain.push_back(fmt::format("{}{}e-{}", random() % 4 == 0 ? "-" : "", random(), random() % 7));
        }
        const auto written = filter(fmt::format("format {} -l {}", form[dates ? 0 : 1], locale), plain);
        values.insert(values.end(), written.begin(), written.end());
      }
      std::shuffle(values.begin(), values.end(), random);
      values.resize(rows_of_a_kind);
      for (std::string& value : values) spoil(value, random);
      const auto told =
          filter(fmt::format("parse {} -l {} --json", dates ? "date --lenient" : "number --spaces", locale), values);
      for (size_t i = 0; i < values.size() && i < told.size(); ++i) {
        const auto object = nlohmann::json::parse(told[i]);
        rows.push_back(
            {dates ? "date" : "number", locale, values[i], object.value("text", ""), object.value("error", "")});
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
    const auto byte = static_cast<int64_t>(std::stoul(text.substr(8, colon - 8)));
    text = fmt::format("at character {}{}",
                       1 + std::count_if(row.value.begin(), row.value.begin() + byte, starts_character),
                       text.substr(colon));
  }
  text.resize(std::min(text.find("; --rest allows it"), text.size()));
  text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
  return text + '.';
}

TEST_F(PostgreSQL, TableAgreesWithTheCommandAndInParallel) {
  const std::vector<Row> rows = make_rows();
  ASSERT_EQ(rows.size(), 100'000U);
  std::string lines;
  for (const Row& row : rows) {
    lines += fmt::format("{}\t{}\t{}\t{}\n", row.kind, row.locale, row.value, row.read.empty() ? "f" : "t");
  }
  lines.pop_back();
  Connection connection;
  const auto made = connection.run(
      "CREATE TABLE messy AS SELECT n AS id, split_part(line, E'\t', 1) AS kind, split_part(line, E'\t', 2) AS locale,"
      "  split_part(line, E'\t', 3) AS value, split_part(line, E'\t', 4)::bool AS good"
      "  FROM string_to_table($$" +
      lines +
      "$$, E'\n') WITH ORDINALITY AS of_lines (line, n);"
      "CREATE FUNCTION read(kind text, locale text, value text) RETURNS text LANGUAGE plpgsql AS $$"
      "DECLARE detail text; BEGIN"
      "  IF kind = 'date' THEN RETURN vx_parse_date(value, locale); END IF;"
      "  RETURN vx_parse_number(value, locale);"
      "EXCEPTION WHEN data_exception THEN GET STACKED DIAGNOSTICS detail = PG_EXCEPTION_DETAIL; RETURN detail; END $$;"
      "ANALYZE messy");
  ASSERT_EQ(made.text(), "");
  const Reply reply = connection.run("SELECT read(kind, locale, value) FROM messy ORDER BY id");
  ASSERT_EQ(reply.rows.size(), rows.size()) << reply.message;
  size_t refused = 0, wrong = 0;
  for (size_t i = 0; i < rows.size() && wrong < 10; ++i) {
    const Row& row = rows[i];
    if (row.read.empty()) ++refused;
    const std::string expected = row.read.empty() ? as_detail(row) : row.read.starts_with('.') ? "null" : row.read;
    const std::string& given = reply.rows[i];
    // The same double may have two shortest spellings.
    const bool number = row.kind[0] == 'n' && !row.read.empty() && given != "null" && expected != "null";
    if (given == expected || (number && std::stod(given) == std::stod(expected))) continue;
    ++wrong;
    ADD_FAILURE() << row.kind << " \"" << row.value << "\" in " << row.locale << ": " << given
                  << ", the command: " << expected;
  }
  EXPECT_TRUE(refused > 5'000 && refused < 20'000) << refused;

  // What was read, written again.
  static constexpr const char* forms[][3] = {
      {"date", "vx_format_date(vx_parse_date(value, locale), locale, 'long')", "date --style long"},
      {"date", "vx_format_date(vx_parse_date(value, locale), locale)", "date"},
      {"number", "vx_format_number(vx_parse_number(value, locale), locale)", "number --group"},
      {"number", "vx_format_number(vx_parse_number(value, locale), locale, 2)", "number --group --decimals 2"}};
  for (const auto& [kind, expression, words] : forms) {
    for (const char* locale : locales) {
      std::vector<std::string> values;
      for (const Row& row : rows) {
        if (row.locale == locale && row.kind == std::string_view(kind) && !row.read.empty() &&
            !row.read.starts_with('.'))
          values.push_back(row.read);
      }
      const Reply sql = connection.run(
          fmt::format("SELECT t FROM (SELECT id, {} AS t FROM messy WHERE good AND kind = '{}' AND locale = '{}') AS s "
                      "WHERE t IS NOT NULL ORDER BY id",
                      expression, kind, locale));
      EXPECT_EQ(sql.rows, filter(fmt::format("format {} -l {}", words, locale), values)) << expression << sql.message;
    }
  }

  // Two workers compute what one process computes.
  static const std::string query =
      "SELECT count(*), sum(hashtextextended(CASE kind"
      " WHEN 'date' THEN vx_format_date(vx_parse_date(value, locale), locale, 'long')"
      " ELSE vx_format_number(vx_parse_number(value, locale), locale, 2) END, id)) FROM messy WHERE good";
  const auto safe = connection.run(
      "SELECT count(*) FROM pg_proc WHERE proname LIKE 'vx\\_%' AND proparallel = 's' AND provolatile = 's' AND "
      "proisstrict");
  EXPECT_EQ(safe.text(), "6");
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
  Connection connection;
  connection.run("SET statement_timeout = '100ms'");
  const Reply reply = connection.run(
      "SELECT count(vx_format_date(vx_parse_date('5.3.2021', 'de_DE'), 'ja_JP')) "
      "FROM generate_series(1, 2000000000)");
  EXPECT_EQ(reply.state, "57014");
  EXPECT_EQ(connection.run("SELECT vx_parse_number('1,5', 'de_DE')").text(), "1.5");
}

/// Neither values nor errors nor patterns leave anything behind, and at the end of the session the host is closed.
TEST_F(PostgreSQL, NothingIsLeft) {
  std::string words;
  {
    Connection connection;
    connection.run("SET log_min_messages = debug1");
    // Kilobytes of the server's process that are in memory after many values and errors.
    const auto after = [&](int rounds) {
      const auto worked = connection.run(fmt::format(
          "DO $$ DECLARE n int := 0; BEGIN FOR i IN 1..{0} LOOP BEGIN"
          "  PERFORM vx_format_date(vx_parse_date(i || ' 1 2021', 'fr_FR', '%#d %#m' || repeat(' ', i % 20) || '%Y'),"
          "                         'ru_RU', '%Y ' || i % 50);"
          "EXCEPTION WHEN data_exception THEN n := n + 1; END; BEGIN"
          "  PERFORM vx_parse_number(repeat('9', i % 3000) || '!', (ARRAY['de_DE', 'pt_BR', 'xx_' || i])[1 + i % 3]);"
          "EXCEPTION WHEN data_exception THEN n := n + 1; END; END LOOP;"
          "IF n < {0} THEN RAISE 'only % errors', n; END IF; END $$",
          rounds));
      EXPECT_EQ(worked.text(), "");
      std::ifstream status(fmt::format("/proc/{}/status", connection.process()));
      int64_t kilobytes = 0;
      for (std::string word; status >> word && word != "VmRSS:";) continue;
      status >> kilobytes;
      return kilobytes;
    };
    const int64_t before = after(5000);
    EXPECT_GT(before, 0);
    EXPECT_LE(after(20'000), before + 1024) << "from " << before << " kB";
    words = fmt::format("[{}] DEBUG:  vxnlsloc: the host is closed, 0 of its objects are alive", connection.process());
  }
  // The process writes its last words after the connection is gone.
  std::string log;
  for (int i = 0; i < 500 && log.find(words) == std::string::npos; ++i) {
    usleep(20'000);
    log = fmt::format("{}", fmt::join(lines_of(std::ifstream(std::getenv("VX_PG_LOG"))), "\n"));
  }
  EXPECT_NE(log.find(words), std::string::npos);
  EXPECT_EQ(log.find("terminated by signal"), std::string::npos);
}

}  // namespace
