// What the functions give in a real server: values, errors, and that they agree with the command.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
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

  Reply run(const std::string& statement) {
    const std::unique_ptr<PGresult, decltype(&PQclear)> given(PQexec(connection_.get(), statement.c_str()), PQclear);
    const auto field = [&](int code) {
      const char* const text = PQresultErrorField(given.get(), code);
      return std::string(text != nullptr ? text : "");
    };
    Reply reply{{}, field(PG_DIAG_SQLSTATE), field(PG_DIAG_MESSAGE_PRIMARY), field(PG_DIAG_MESSAGE_DETAIL)};
    if (PQresultStatus(given.get()) == PGRES_FATAL_ERROR && reply.state.empty()) reply.state = "lost";
    for (int row = 0; row < PQntuples(given.get()); ++row) {
      std::vector<std::string> columns;
      for (int column = 0; column < PQnfields(given.get()); ++column) {
        const bool null = PQgetisnull(given.get(), row, column) != 0;
        columns.emplace_back(null ? "null" : PQgetvalue(given.get(), row, column));
      }
      reply.rows.push_back(fmt::format("{}", fmt::join(columns, "|")));
    }
    return reply;
  }
  int process() const { return PQbackendPID(connection_.get()); }
  std::string notices;  // as they came

 private:
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
      {"vx_parse_date('2021:04:03', 'fr_FR', '%Y:%m:%d')", "2021-04-03"},
      {"vx_parse_date('03/04/2021', 'fr_FR', 'short')", "2021-04-03"},  // after a pattern of one's own
      {"vx_format_date('1582-01-01', 'de_DE')", "01.01.1582"},
      {"vx_format_date('20000-12-31', 'de_DE')", "31.12.0000"},  // kept on purpose: the last four digits of the year
      {"vx_parse_number(' .a ', 'en_US')", "null"},
      {"vx_format_number('NaN', 'de_DE')", "."},
      {"vx_format_number('-Infinity', 'de_DE')", "-Inf"},
      {"length(vx_format_number(1e308, 'en_US', 98))", "510"},  // 309 digits, 102 separators, 98 decimals
      {"vx_versions() LIKE 'ICU %; CLDR %; Unicode %; tz %'", "t"},
      {"vx_parse_date(E'1.2.2021\\tx', 'de_DE')", "22007: At character 9: \"\\tx\" follows what was read."},
      {"vx_parse_date('31.02.2021', 'de_DE')", "22008: There is no day 2021-02-31."},
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
      {"vx_format_date('4000-02-29', 'de_DE')",
       "22008: There is no day 4000-02-29 in this calendar, where years divisible by 4000 are common years."},
      {"vx_format_date('2021-01-01', 'de_DE', 'any')",
       "22023: A form is \"short\", \"medium\", \"long\", or a pattern of directives such as \"%d.%m.%Y\"."},
      {"vx_format_date('2021-01-01', 'de_DE', '%H')",
       "22023: The pattern \"%H\" holds a directive that writes no part of a date."},
      {"vx_parse_number('1.234,5é', 'de_DE')", "22P02: At character 8: \"é\" follows the number."},
      {"vx_parse_number('1e400', 'de_DE')", "22003: At character 1: \"1e400\" is too large."},
      {"vx_format_number(1, 'de_DE', 99)", "22023: A number of decimals lies between 0 and 98."},
  };
  static constexpr const char* encoded[][3] = {
      {"latin1", "vx_parse_date('5. März 2021', 'de_DE')", "2021-03-05"},
      {"latin1", "octet_length(vx_format_number(1234.5, 'fr_FR'))", "7"},
      {"latin1", "vx_format_date('2021-03-05', 'hi_IN', 'long')", "22P05: "},
      {"latin1", "vx_parse_date('2021é', 'ja_JP', 'long')",
       "22007: At character 5: \"é\" stands where \"?\" is wanted."},
      {"sql_ascii", "vx_parse_date('5. März 2021', 'de_DE')", "2021-03-05"},
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

/// The SQL of the document: below the statements stands what the last of them gives.
TEST_F(PostgreSQL, Document) {
  Connection connection;
  bool inside = false;
  std::string statements, expected;
  size_t count = 0;
  for (const std::string& line : lines_of(std::ifstream(VX_PG_DOCUMENT))) {
    if (inside && line.starts_with("-- ")) {
      expected += line.substr(3) + '\n';
      continue;
    }
    if (!expected.empty()) {
      const Reply reply = connection.run(statements);
      const std::string error = "ERROR: " + reply.message + "\nDETAIL: " + reply.detail;
      EXPECT_EQ((reply.state.empty() ? reply.text() : error) + '\n', expected) << statements;
      ++count;
      statements = expected = "";
    }
    if (line.starts_with("```")) inside = line == "```sql";
    else if (inside) statements += line + '\n';
  }
  EXPECT_GE(count, 9U);
}

// --- the table of 100,000 rows ---------------------------------------------------------------------------

/// Runs the command on lines.
std::vector<std::string> filter(const std::string& words, const std::vector<std::string>& lines) {
  const auto result = vxtest::run_shell(std::string(VXNLS_COMMAND_FOLDER) + "/vxnls " + words,
                                        fmt::format("{}\n", fmt::join(lines, "\n")), {{"TZ", "UTC"}, {"LC_ALL", "C"}});
  const auto out = lines_of(std::istringstream(result.out));
  EXPECT_EQ(out.size(), lines.size()) << words << '\n' << result.err.substr(0, 1000);
  return out;
}

/// The command's words for a refusal as the functions have them: bytes from 0 become characters from 1.
std::string as_detail(std::string text, const std::string& value) {
  if (text.starts_with("at byte ")) {
    const size_t colon = text.find(':');
    const auto is_first = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    const auto place = value.begin() + std::stol(text.substr(8, colon - 8));
    text = fmt::format("At character {}{}", 1 + std::count_if(value.begin(), place, is_first), text.substr(colon));
  }
  text.resize(std::min(text.find("; --rest allows it"), text.size()));
  text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
  return text + '.';
}

/// Dates and numbers in three forms; in about one text of eight a character is another one, or missing.
constexpr const char* make_table = R"(
CREATE FUNCTION any_of(count bigint, id bigint, seed bigint) RETURNS int LANGUAGE sql IMMUTABLE AS
  'SELECT ((hashint8extended(id, seed) & 2147483647) % count)::int';
CREATE FUNCTION written(kind text, form int, locale text, plain text) RETURNS text LANGUAGE sql STABLE AS $$
  SELECT CASE WHEN kind = 'date' THEN vx_format_date(plain::date, locale, (ARRAY['short', 'medium', 'long'])[form])
              WHEN form = 1 THEN vx_format_number(plain::float8, locale)
              WHEN form = 2 THEN vx_format_number(plain::float8, locale, 3)
              ELSE plain END $$;
CREATE FUNCTION read(kind text, locale text, value text) RETURNS text LANGUAGE plpgsql AS $$
DECLARE detail text; BEGIN
  IF kind = 'date' THEN RETURN vx_parse_date(value, locale); END IF;
  RETURN vx_parse_number(value, locale);
EXCEPTION WHEN data_exception THEN GET STACKED DIAGNOSTICS detail = PG_EXCEPTION_DETAIL; RETURN detail; END $$;
CREATE TABLE messy AS
  SELECT id, kind, 1 + id % 3 AS form,
         (string_to_array('de_DE en_US en_GB fr_FR ja_JP hi_IN ru_RU ar_EG pt_BR sv_SE', ' '))[1 + id / 10000]
           AS locale,
         CASE kind WHEN 'date' THEN ('1582-01-01'::date + any_of(3074324, id, 4))::text  -- to 9999
           ELSE ((any_of(2147483647, id, 4) - 500000000) * 10.0 ^ -any_of(7, id, 5))::float8::text END AS plain
    FROM generate_series(0, 99999) AS ids (id),
         LATERAL (SELECT (ARRAY['date', 'number'])[1 + id % 2] AS kind) AS kinds;
ALTER TABLE messy ADD written text, ADD value text, ADD result text;
UPDATE messy SET written = written(kind, form, locale, plain);
UPDATE messy SET value = CASE WHEN any_of(8, id, 1) > 0 THEN written ELSE
  overlay(written PLACING (ARRAY['', 'x', ',', '.', ' ', '-', '9', '/', 'é', '−', '٣'])[1 + any_of(11, id, 2)]
          FROM 1 + any_of(length(written), id, 3) FOR 1) END;
UPDATE messy SET result = read(kind, locale, value);
ANALYZE messy)";

TEST_F(PostgreSQL, TableAgreesWithTheCommandAndInParallel) {
  static constexpr const char* writing[] = {"date --style short", "date --style medium", "date --style long",
                                            "number --group", "number --group --decimals 3"};
  Connection connection;
  ASSERT_EQ(connection.run(make_table).text(), "");
  size_t rows = 0, refused = 0, wrong = 0;
  for (const std::string& locale : connection.run("SELECT DISTINCT locale FROM messy").rows) {
    const auto column = [&](const char* name, const std::string& where) {
      return connection
          .run(fmt::format("SELECT {} FROM messy WHERE locale = '{}' AND {} ORDER BY id", name, locale, where))
          .rows;
    };
    for (size_t form = 0; form < std::size(writing); ++form) {
      const auto of_form = fmt::format("kind = '{}' AND form = {}", form < 3 ? "date" : "number", 1 + form % 3);
      EXPECT_EQ(column("written", of_form),
                filter(fmt::format("format {} -l {}", writing[form], locale), column("plain", of_form)));
    }
    for (const std::string kind : {"date", "number"}) {
      const auto values = column("value", "kind = '" + kind + "'"), results = column("result", "kind = '" + kind + "'");
      const auto words = kind == "date" ? "parse date --lenient" : "parse number --spaces";
      const auto told = filter(fmt::format("{} -l {} --json", words, locale), values);
      ASSERT_EQ(told.size(), results.size());
      rows += values.size();
      for (size_t i = 0; i < values.size() && wrong < 10; ++i) {
        const auto object = nlohmann::json::parse(told[i]);
        const std::string read = object.value("text", "");
        if (read.empty()) ++refused;
        const std::string expected = read.empty()            ? as_detail(object.value("error", "?"), values[i])
                                     : read.starts_with('.') ? "null"
                                                             : read;
        // The same double may have two shortest spellings.
        const bool number = kind == "number" && !read.empty() && results[i] != "null" && expected != "null";
        if (results[i] == expected || (number && std::stod(results[i]) == std::stod(expected))) continue;
        ++wrong;
        ADD_FAILURE() << '"' << values[i] << "\" in " << locale << ": " << results[i] << ", not " << expected;
      }
    }
  }
  EXPECT_EQ(rows, 100'000U);
  EXPECT_TRUE(refused > 5'000 && refused < 20'000) << refused;

  // Two workers compute what one process computes.
  static const std::string query =
      "SELECT count(*), sum(hashtextextended(CASE kind"
      " WHEN 'date' THEN vx_format_date(vx_parse_date(written, locale), locale, 'long')"
      " ELSE vx_format_number(vx_parse_number(written, locale), locale, 2) END, id)) FROM messy WHERE kind = 'date' OR "
      "form < 3";
  const auto safe = connection.run(
      "SELECT count(*) FROM pg_proc WHERE proname LIKE 'vx\\_%' AND proparallel = 's' AND provolatile = 's' AND "
      "proisstrict");
  EXPECT_EQ(safe.text(), "6");
  connection.run("SET max_parallel_workers_per_gather = 0");
  const Reply alone = connection.run(query);
  ASSERT_EQ(alone.state, "") << alone.message;
  connection.run(
      "SET max_parallel_workers_per_gather = 2; SET parallel_setup_cost = 0; SET parallel_tuple_cost = 0;"
      "SET min_parallel_table_scan_size = 0; SET parallel_leader_participation = off");
  EXPECT_EQ(connection.run(query).rows, alone.rows);
  const std::string plan = connection.run("EXPLAIN (ANALYZE, VERBOSE, COSTS OFF, TIMING OFF) " + query).text();
  EXPECT_NE(plan.find("Workers Launched: 2"), std::string::npos) << plan;
  EXPECT_NE(plan.find("vx_parse_date", plan.find("Partial Aggregate")), std::string::npos) << plan;  // by the workers
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
