// What the functions give in a real server: values, errors, and that they agree with the command.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/support/process.h"

namespace {

std::vector<std::string> lines_of(std::istream&& in) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

/// What psql prints in one session: a row a line with "|" between columns, and "ERROR:  ...". Text is sent and received
/// in UTF-8, whatever the encoding of the database.
std::string sql(const std::string& statements, const std::string& database = "postgres") {
  return vxtest::run_shell("exec psql -XAtq -P null=null 2>&1", statements,
                           {{"PATH", std::getenv("PATH")},
                            {"PGHOST", std::getenv("PGHOST")},
                            {"PGUSER", std::getenv("PGUSER")},
                            {"PGDATABASE", database},
                            {"PGCLIENTENCODING", "UTF8"}})
      .out;
}

/// Gives what an expression gives, of an error its state and detail.
const std::string make_tried = R"(CREATE EXTENSION vxnlsloc;
CREATE FUNCTION tried(expression text) RETURNS text LANGUAGE plpgsql AS $$
DECLARE told text; BEGIN EXECUTE 'SELECT ' || expression INTO told; RETURN coalesce(told, 'null');
EXCEPTION WHEN OTHERS THEN GET STACKED DIAGNOSTICS told = PG_EXCEPTION_DETAIL; RETURN SQLSTATE || ': ' || told; END $$;
)";

// What is wrong with a text is held against the command below, and whole messages by the document. What an encoding has
// no character for is an error of the server's, and in a message a question mark.
TEST(PostgreSQL, ValuesAndErrors) {
  static constexpr const char* databases[] = {"postgres", "latin1", "sql_ascii"};
  static constexpr struct {
    int database;
    const char *expression, *wanted;
  } cases[] = {
      {0, "vx_parse_date('2021:04:03', 'fr_FR', '%Y:%m:%d')", "2021-04-03"},
      {0, "vx_format_date('1582-01-01', 'de_DE')", "01.01.1582"},
      {0, "length(vx_format_number(1e308, 'en_US', 98))", "510"},  // 309 digits, 102 separators, 98 decimals
      {0, "vx_versions() LIKE 'ICU %; CLDR %; Unicode %; tz %'", "true"},
      {0, "vx_format_date('2021-1-1', 'de_DE', 'main')",
       "22023: A form is \"short\", \"medium\", \"long\", or a pattern of directives such as \"%d.%m.%Y\"."},
      {0, "vx_parse_date('02.2021', 'de_DE', '%m.%Y')", "22023: The pattern \"%m.%Y\" reads no full date."},
      {0, "vx_parse_date('1', 'de_DE', '%J')",
       "22023: Of the pattern \"%J\": the pattern holds %J, which reads nothing here."},
      {0, "vx_parse_date(repeat('1', 65537), 'de_DE')", "54000: It has 65537 bytes; at most 65536 are read."},
      {0, "vx_format_date('5874897-12-31', 'de_DE')", "22008: Dates from 1582-01-01 to 20000-12-31 can be written."},
      {0, "vx_parse_number('1.234,5é', 'de_DE')", "22P02: At character 8: \"é\" follows the number."},
      {0, "vx_parse_number('1e400', 'de_DE')", "22003: At character 1: \"1e400\" is too large."},
      {0, "vx_format_number(1, 'de_DE', 99)", "22023: A number of decimals lies between 0 and 98."},
      {1, "octet_length(vx_format_number(1234.5, 'fr_FR'))", "7"},
      {1, "vx_format_date('2021-03-05', 'hi_IN', 'long')", "22P05: "},
      {1, "vx_parse_date('2021é', 'ja_JP', 'long')", "22007: At character 5: \"é\" stands where \"?\" is wanted."},
      {2, "vx_parse_date(E'5. M\\344rz 2021', 'de_DE')", "22021: "},
  };
  for (const int database : {0, 1, 2}) {
    sql(fmt::format("CREATE DATABASE {0} ENCODING {0} LOCALE 'C' TEMPLATE template0", databases[database]));
    std::string statements = make_tried, wanted;
    for (const auto& c : cases) {
      if (c.database != database) continue;
      statements += fmt::format("SELECT tried($x${}$x$);\n", c.expression);
      wanted += fmt::format("{}\n", c.wanted);
    }
    EXPECT_EQ(sql(statements, databases[database]), wanted);
  }
  const std::string substituted = "SELECT vx_parse_number('1,5', 'de_XX');";
  EXPECT_EQ(sql(substituted + substituted),
            "WARNING:  there is no locale \"de_XX\"; de stands in for it\n1.5\n1.5\n");  // told once
}

// The SQL of the document: below the statements stands what the last of them gives.
TEST(PostgreSQL, Document) {
  bool inside = false;
  std::string statements, expected;
  size_t count = 0;
  for (const std::string& line : lines_of(std::ifstream(VX_PG_DOCUMENT))) {
    if (inside && line.starts_with("-- ")) {
      expected += line.substr(3) + '\n';
      continue;
    }
    if (!expected.empty()) {
      std::string given = sql(statements);
      for (size_t at; (at = given.find(":  ")) != given.npos;) given.erase(at + 1, 1);  // "ERROR:  "
      EXPECT_TRUE(given.ends_with(expected)) << statements << given;
      ++count;
      statements = expected = "";
    }
    if (line.starts_with("```")) inside = line == "```sql";
    else if (inside) statements += line + '\n';
  }
  EXPECT_GE(count, 9U);
}

/// Runs the command on lines.
std::vector<std::string> filter(const std::string& words, const std::string& lines) {
  const auto result =
      vxtest::run_shell(std::string(VXNLS_COMMAND_FOLDER) + "/vxnls " + words, lines, {{"TZ", "UTC"}, {"LC_ALL", "C"}});
  return lines_of(std::istringstream(result.out));
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
const std::string make_table = R"(
CREATE FUNCTION any_of(count bigint, id bigint, seed bigint) RETURNS int LANGUAGE sql IMMUTABLE AS
  'SELECT ((hashint8extended(id, seed) & 2147483647) % count)::int';
CREATE FUNCTION written(kind text, form int, locale text, plain text) RETURNS text LANGUAGE sql STABLE AS $$
  SELECT CASE WHEN kind = 'date' THEN vx_format_date(plain::date, locale, (ARRAY['short', 'medium', 'long'])[form])
              WHEN form = 1 THEN vx_format_number(plain::float8, locale)
              WHEN form = 2 THEN vx_format_number(plain::float8, locale, 3)
              ELSE plain END $$;
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
UPDATE messy SET result = tried(format('vx_parse_%s(%L, %L)', kind, value, locale));
ANALYZE messy;)";

TEST(PostgreSQL, TableAgreesWithTheCommandAndInParallel) {
  static constexpr const char* writing[] = {"date --style short", "date --style medium", "date --style long",
                                            "number --group", "number --group --decimals 3"};
  ASSERT_EQ(sql(make_table), "");
  size_t rows = 0, refused = 0;
  for (const std::string& locale : lines_of(std::istringstream(sql("SELECT DISTINCT locale FROM messy")))) {
    const auto column = [&](const char* name, const std::string& where) {
      return sql(fmt::format("SELECT {} FROM messy WHERE locale = '{}' AND {} ORDER BY id", name, locale, where));
    };
    for (size_t form = 0; form < std::size(writing); ++form) {
      const auto of_form = fmt::format("kind = '{}' AND form = {}", form < 3 ? "date" : "number", 1 + form % 3);
      EXPECT_EQ(lines_of(std::istringstream(column("written", of_form))),
                filter(fmt::format("format {} -l {}", writing[form], locale), column("plain", of_form)));
    }
    for (const std::string kind : {"date", "number"}) {
      const auto texts = column("value", "kind = '" + kind + "'");
      const auto values = lines_of(std::istringstream(texts));
      const auto results = lines_of(std::istringstream(column("result", "kind = '" + kind + "'")));
      const auto words = kind == "date" ? "parse date --lenient" : "parse number --spaces";
      const auto told = filter(fmt::format("{} -l {} --json", words, locale), texts);
      ASSERT_TRUE(told.size() == results.size() && told.size() == values.size());
      rows += values.size();
      for (size_t i = 0; i < values.size(); ++i) {
        const auto object = nlohmann::json::parse(told[i]);
        const std::string read = object.value("text", "");
        // The same double may have two shortest spellings.
        const auto number = [](const std::string& text) { return std::strtod(text.c_str(), nullptr); };
        if (kind == "number" && !read.empty() && read[0] != '.' && number(results[i]) == number(read)) continue;
        refused += read.empty();
        const std::string expected = read.empty()            ? as_detail(object.value("error", "?"), values[i])
                                     : read.starts_with('.') ? "null"
                                                             : read;
        ASSERT_EQ(results[i].substr(read.empty() ? 7 : 0), expected) << '"' << values[i] << "\" in " << locale;
      }
    }
  }
  EXPECT_EQ(rows, 100'000U);
  EXPECT_TRUE(refused > 5'000 && refused < 20'000) << refused;

  // Two workers compute what one process computes.
  static const std::string query =
      "SELECT sum(hashtextextended(vx_format_date(vx_parse_date(written, locale), locale, 'long'), id))"
      " FROM messy WHERE kind = 'date';";
  const std::string parallel =
      "SET max_parallel_workers_per_gather = 2; SET parallel_setup_cost = 0; SET parallel_tuple_cost = 0;"
      "SET min_parallel_table_scan_size = 0; SET parallel_leader_participation = off;";
  EXPECT_EQ(sql(parallel + query), sql("SET max_parallel_workers_per_gather = 0;" + query));
  const std::string plan = sql(parallel + "EXPLAIN (ANALYZE, VERBOSE, COSTS OFF, TIMING OFF) " + query);
  EXPECT_NE(plan.find("Workers Launched: 2"), std::string::npos) << plan;
  EXPECT_NE(plan.find("vx_parse_date", plan.find("Partial Aggregate")), std::string::npos) << plan;  // by the workers
  EXPECT_EQ(sql("SELECT count(*) FROM pg_proc WHERE proname LIKE 'vx\\_%' AND proparallel = 's'"), "6\n");
}

// Neither values nor errors nor patterns leave anything behind in the memory of the server's process; interrupts are
// honoured, and at the end of the session the host is closed.
TEST(PostgreSQL, NothingIsLeft) {
  const auto work = [](int rounds) {
    return fmt::format(
        "DO $$ DECLARE n int := 0; BEGIN FOR i IN 1..{0} LOOP BEGIN"
        "  PERFORM vx_format_date(vx_parse_date(i || ' 1 2021', 'fr_FR', '%#d %#m' || repeat(' ', i % 20) || '%Y'),"
        "                         'ru_RU', '%Y ' || i % 50);"
        "EXCEPTION WHEN data_exception THEN n := n + 1; END; BEGIN"
        "  PERFORM vx_parse_number(repeat('9', i % 3000) || '!', (ARRAY['de_DE', 'pt_BR', 'xx_' || i])[1 + i % 3]);"
        "EXCEPTION WHEN data_exception THEN n := n + 1; END; END LOOP;"
        "IF n < {0} THEN RAISE 'only % errors', n; END IF; END $$;"
        "SELECT substring(pg_read_file('/proc/self/status') FROM 'VmRSS:\\s*(\\d+)');\n",
        rounds);
  };
  std::istringstream told(
      sql("SET log_min_messages = debug1; SELECT pg_backend_pid();\n" + work(5000) + work(20'000) +
          "SET statement_timeout = '100ms';"
          "SELECT count(vx_format_date('2021-03-05', 'ja_JP')) FROM generate_series(1, 2000000000)"));
  int64_t process = 0, before = 0, after = 0;
  std::string error;
  ASSERT_TRUE(told >> process >> before >> after && std::getline(told >> std::ws, error)) << told.str();
  EXPECT_LE(after, before + 1024) << "from " << before << " kB";
  EXPECT_EQ(error, "ERROR:  canceling statement due to statement timeout");
  const auto words = fmt::format("[{}] DEBUG:  vxnlsloc: the host is closed, 0 of its objects are alive", process);
  std::string log;  // the process writes its last words after the connection is gone
  for (int i = 0; i < 500 && log.find(words) == std::string::npos; ++i) {
    usleep(20'000);
    log = fmt::format("{}", fmt::join(lines_of(std::ifstream(std::getenv("VX_PG_LOG"))), "\n"));
  }
  EXPECT_NE(log.find(words), std::string::npos);
  EXPECT_EQ(log.find("terminated by signal"), std::string::npos);
}

}  // namespace
