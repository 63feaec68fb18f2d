// Records and cells as places in the text, and texts with cells rewritten.
#include <csv.h>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "cli/errors.h"
#include "cli/table/splitter.h"

namespace {

using namespace vxcli;
using namespace vxcli::table;
using namespace std::string_literals;

using Values = std::vector<std::vector<std::string>>;  // of records

std::vector<Column> first_columns(size_t count) {
  std::vector<Column> columns;
  for (size_t i = 0; i < count; ++i)
    columns.push_back({.name = std::string(1, static_cast<char>('a' + i)), .index = i});
  return columns;
}

/// "line:place [value|value] fault@place", a line for each record; the kinds of JSON as n, l, x before a value.
std::string described(const Dialect& dialect, std::string_view text, size_t expected = 0) {
  Splitter splitter(dialect, first_columns(4), expected);
  splitter.start({.text = text});
  Record record;
  std::string all, scratch;
  for (uint64_t number = 1; splitter.next(record); ++number) {
    EXPECT_EQ(record.number, number);
    EXPECT_EQ(text.substr(record.offset, record.text.size()), record.text);
    all += fmt::format("{}:{} [", record.line, record.offset);
    for (const Cell& cell : record.cells) {
      if (&cell != record.cells.data()) all += '|';
      if (dialect.format == Format::json_lines) all += splitter.columns()[cell.column].name;
      all += " nlx"[static_cast<size_t>(cell.kind)];
      all += splitter.value(record, cell, scratch);
    }
    all += ']';
    for (const Flaw& flaw : record.flaws) all += fmt::format(" {}@{}", static_cast<int>(flaw.fault), flaw.at);
    all += '\n';
  }
  return all;
}

TEST(Splitter, RecordsAndCells) {
  static const struct {
    Format format;
    std::string text;
    std::string described;
    size_t expected = 0;
  } cases[] = {
      {Format::csv, "", ""},
      {Format::csv, "\n", "1:0 [ ]\n"},
      {Format::csv, "a,b\nc", "1:0 [ a| b]\n2:4 [ c]\n"},
      {Format::csv, "a,\r\n,\r\n", "1:0 [ a| ]\n2:4 [ | ]\n"},
      {Format::csv, "a\rb\r,\r\r\nc\r",
       "1:0 [ a\rb\r| \r]\n2:8 [ c\r]\n"},  // a CR is a byte, but for the one before LF
      {Format::csv, "\"a,\"\"b\"\"\r\n\",\"\"\r\n\"\"\"\"", "1:0 [ a,\"b\"\r\n| ]\n3:16 [ \"]\n"},
      {Format::csv, "a\"b,c\"\n \"a,b\"", "1:0 [ a\"b| c\"]\n2:7 [  \"a| b\"]\n"},  // opens at the start of a cell only
      {Format::csv, "\"a\"b\"\",\"c\" \n", "1:0 [ ab\"\"| c ] 1@3 1@10\n"},
      {Format::csv, "a,\"b,\nc\n", "1:0 [ a| b,\nc\n] 0@2\n"},
      {Format::csv, "\"a\"\"", "1:0 [ a\"] 0@0\n"},
      {Format::csv, "\"", "1:0 [ ] 0@0\n"},
      {Format::csv, "a\0,\0\n"s, "1:0 [ a\0| \0]\n"s},
      {Format::csv, "a,b\n\na\r\na,b,c,d\n", "1:0 [ a| b]\n2:4 [ ]\n3:5 [ a] 2@1\n4:8 [ a| b| c| d] 3@4\n", 2},
      {Format::csv, "1,2,3,4,5,6\n", "1:0 [ 1| 2| 3| 4]\n", 6},
      {Format::tsv, "\"a\t\"\r\n\\t,\tb", "1:0 [ \"a| \"]\n2:6 [ \\t,| b]\n"},
      {Format::tsv_escaped, "\\t\\n\t\\r\\\\n\n\\N\\\t\\", "1:0 [ \t\n| \r\\n]\n2:11 [ \\N\\| \\]\n"},
      {Format::lines, "a,\"b\r\n\nc", "1:0 [ a,\"b]\n2:6 [ ]\n3:7 [ c]\n"},
      {Format::json_lines, "{\"b\": \"x\", \"q\":[{\"a\":1},\"]\"],\"a\":-1.5e3}\r\n", "1:0 [b x|an-1.5e3]\n"},
      {Format::json_lines, "{}\n\n \t\n{\"a\":null,\"b\":{\"a\":[1]},\"c\":true}",
       "1:0 []\n2:3 []\n3:4 []\n4:7 [alnull|bx{\"a\":[1]}|cltrue]\n"},
      {Format::json_lines,
       R"({"\u0061":"\"\\\u00e9\ud83d\ude00","b":"\ud800"})"
       "\n",
       "1:0 [a \"\\é😀|b \\ud800]\n"},  // a lone surrogate has no value: the bytes stay
      {Format::json_lines, R"({"a":1,"b":2,"a":"3"})", "1:0 [bn2|a 3] 5@17\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.text));
    EXPECT_EQ(described(Dialect::of(c.format), c.text, c.expected), c.described);
  }
}

TEST(Splitter, LinesThatAreNoObjects) {
  static const struct {
    std::string line;
    size_t broken_at;
  } cases[] = {
      {"x", 0},
      {"[1]", 0},
      {"{", 1},
      {"{\"a\"}", 4},
      {"{\"a\":}", 5},
      {"{\"a\":01}", 6},
      {"{\"a\":1,}", 7},
      {"{\"a\":1", 6},
      {"{\"a\":1}}", 7},
      {"{\"a\":nul}", 5},
      {"{\"a\":\"", 6},
      {"{\"a\":\"\\", 7},
      {"{a:1}", 1},
      {"{\"a\":1 \"b\":2}", 7},
      {"{\"a\":+1}", 5},
      {"{\"a\":[1}}", 7},
      {"{\"a\":\"\t\"}", 6},
      {"{\"a\":.5}", 5},
      {"{\"a\":1.}", 7},
      {"{\"a\":1e}", 7},
      {"{\"a\":-}", 6},
      {"{,}", 1},
      {"{\"a\":[[]", 8},
      {"{\"a\":'1'}", 5},
      {"{}\0"s, 2},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(described(Dialect::of(Format::json_lines), c.line), fmt::format("1:0 [] 4@{}\n", c.broken_at)) << c.line;
  }
}

/// A text of cells that are written as each format allows, and what they mean.
class RandomTable {
 public:
  explicit RandomTable(unsigned seed) : random_(seed) {}

  size_t below(size_t end) { return std::uniform_int_distribution<size_t>(0, end - 1)(random_); }

  std::string value(std::string_view without) {
    std::string text;
    for (size_t i = below(6); i > 0; --i) {
      const char byte = "ab,\"\"\t\\\n\r 1\0\x80\xC3"[below(14)];
      if (without.find(byte) == std::string_view::npos) text += byte;
    }
    return text;
  }

  Values values;
  std::string text;

  void csv(std::string_view line_end, std::string_view without) {
    for (size_t records = below(5); records > 0; --records) {
      values.emplace_back();
      for (size_t cells = 2 + below(3); cells > 0; --cells) {
        std::string& cell = values.back().emplace_back(value(without));
        const bool bare = cell.find_first_of(",\r\n") == std::string::npos && !cell.starts_with('"');
        if (values.back().size() > 1) text += ',';
        if (bare && below(3) > 0) {
          text += cell;
        } else {
          text += '"';
          for (const char byte : cell) text += byte == '"' ? "\"\"" : std::string(1, byte);
          text += '"';
        }
      }
      text += line_end;
    }
    if (below(2) == 0 && !text.empty()) text.resize(text.size() - line_end.size());
  }

 private:
  std::mt19937 random_;
};

/// Every record's values.
Values values_of(const Dialect& dialect, std::string_view text) {
  Values all;
  Splitter splitter(dialect, first_columns(8));
  splitter.start({.text = text});
  std::string scratch;
  for (Record record; splitter.next(record);) {
    all.emplace_back();
    for (const Cell& cell : record.cells) all.back().emplace_back(splitter.value(record, cell, scratch));
    EXPECT_TRUE(record.flaws.empty());
  }
  return all;
}

Values values_by_libcsv(std::string_view text) {
  struct Taken {
    Values all;
    bool open = false;
  } taken;
  csv_parser parser;
  csv_init(&parser, 0);
  csv_set_space_func(&parser, [](unsigned char) { return 0; });
  const auto take = [](void* bytes, size_t count, void* to) {
    Taken& into = *static_cast<Taken*>(to);
    if (!into.open) into.all.emplace_back();
    into.open = true;
    into.all.back().emplace_back(static_cast<const char*>(bytes), count);
  };
  const auto end = [](int, void* to) { static_cast<Taken*>(to)->open = false; };
  EXPECT_EQ(csv_parse(&parser, text.data(), text.size(), take, end, &taken), text.size());
  csv_fini(&parser, take, end, &taken);
  csv_free(&parser);
  return taken.all;
}

TEST(Splitter, AgreesWithLibcsv) {
  for (unsigned seed = 0; seed < 3000; ++seed) {
    RandomTable table(seed);
    table.csv(seed % 2 == 0 ? "\n" : "\r\n", "");
    SCOPED_TRACE(testing::PrintToString(table.text));
    ASSERT_EQ(values_of(Dialect::of(Format::csv), table.text), table.values);
    ASSERT_EQ(values_by_libcsv(table.text), table.values);
  }
}

/// Gives every cell that is there its new value, or its own when there is none for it.
std::string rewritten(const Dialect& dialect, std::string_view text, const std::vector<std::string>& values) {
  Splitter splitter(dialect, first_columns(8));
  const Block block{.text = text};
  std::string out, scratch;
  Rewriter rewriter(splitter, block, out);
  splitter.start(block);
  for (Record record; splitter.next(record);) {
    rewriter.begin(record);
    for (const Cell& cell : record.cells) {
      const std::string value =
          values.empty() ? std::string(splitter.value(record, cell, scratch)) : values[cell.column % values.size()];
      EXPECT_TRUE(rewriter.put(cell, value));
    }
  }
  rewriter.finish();
  return out;
}

TEST(Rewriter, NewValuesAreWhatIsReadAgain) {
  static constexpr struct {
    Format format;
    std::string_view text;       // one record of four cells
    std::string_view forbidden;  // bytes that the format cannot write
  } cases[] = {{Format::csv, "a,\"b\",,\"\"\"d\"\n", ""},
               {Format::tsv, "a\tb\t\td\r\n", "\t\r\n"},
               {Format::tsv_escaped, "a\t\\t\t\td", ""},
               {Format::json_lines, R"({"a": "x", "b" :"\n","c":1 ,"d":-2.50e7})", "\x80\xC3"}};
  for (const auto& c : cases) {
    const Dialect dialect = Dialect::of(c.format);
    EXPECT_EQ(rewritten(dialect, c.text, {}), c.text);
    for (unsigned seed = 0; seed < 500; ++seed) {
      RandomTable random(seed);
      std::vector<std::string> values;
      for (int i = 0; i < 4; ++i) values.push_back(random.value(c.forbidden));
      const std::string text = rewritten(dialect, c.text, values);
      SCOPED_TRACE(testing::PrintToString(text));
      ASSERT_EQ(values_of(dialect, text), Values{values});
      ASSERT_EQ(rewritten(dialect, text, {}), text);  // and so writing has one form
    }
  }
}

TEST(Rewriter, KeepsTheStyleOfACell) {
  static const struct {
    Format format;
    std::string text;
    std::vector<std::string> values;
    std::string rewritten;
  } cases[] = {
      {Format::csv, "a,\"b\",c\r\n", {"1", "2", "3,\"4\""}, "1,\"2\",\"3,\"\"4\"\"\"\r\n"},
      {Format::csv, "a,\"b\"c", {"", "x"}, ",\"x\""},
      {Format::json_lines, R"({ "c":"1", "a":12 ,"b":null })", {"3.5", "1.", "7"}, R"({ "c":"7", "a":3.5 ,"b":"1." })"},
      {Format::json_lines, R"({"a":[1],"b":true})", {"\x01\"\\é", "-0"}, R"({"a":"\u0001\"\\é","b":-0})"},
      {Format::tsv_escaped, "a\tb", {"\t", "\\"}, "\\t\t\\\\"},
  };
  for (const auto& c : cases) EXPECT_EQ(rewritten(Dialect::of(c.format), c.text, c.values), c.rewritten);

  const Cell cell;
  for (const Format format : {Format::tsv, Format::lines}) {
    std::string out = "kept";
    for (const char* value : {"a\nb", "a\r", "\n"})
      EXPECT_FALSE(Splitter(Dialect::of(format)).encode(cell, value, out));
    EXPECT_EQ(Splitter(Dialect::of(format)).encode(cell, "\t", out), format == Format::lines);
    EXPECT_EQ(out, format == Format::lines ? "kept\t" : "kept");
  }
}

TEST(Rewriter, RecordsLeftOut) {
  // A record is left out also when a cell of it was rewritten already; "stop" ends all.
  const auto without = [](std::string_view text) {
    Splitter splitter(Dialect::of(Format::csv), first_columns(3));
    const Block block{.text = text};
    std::string out = "before:", scratch;
    Rewriter rewriter(splitter, block, out);
    splitter.start(block);
    for (Record record; splitter.next(record);) {
      rewriter.begin(record);
      for (const Cell& cell : record.cells) {
        const std::string_view value = splitter.value(record, cell, scratch);
        if (value == "drop") {
          rewriter.drop();
          break;
        }
        if (value == "stop") {
          rewriter.finish_before();
          return out;
        }
        if (value == "x") {
          EXPECT_TRUE(rewriter.put(cell, "new"));
        }
      }
    }
    rewriter.finish();
    return out;
  };
  EXPECT_EQ(without("x,1\nx,drop\na,x,c\ndrop\n2"), "before:new,1\na,new,c\n2");
  EXPECT_EQ(without("drop\nx,drop\n"), "before:");
  EXPECT_EQ(without("1\nx\nx,x,stop\nx\n"), "before:1\nnew\n");
}

TEST(Dialect, ColumnsByNameAndNumber) {
  const Head head{.bytes = {}, .names = {"when", "2", "amount", "amount", ""}, .flaws = {}};
  const auto chosen = [&](Dialect dialect, std::vector<std::string> wanted) -> std::string {
    try {
      std::string all;
      for (const Column& column : choose_columns(dialect, dialect.has_header() ? head : Head{}, wanted)) {
        all += fmt::format("{}={} ", column.name, column.index);
      }
      return all;
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.code(), ExitCode::usage);
      return failure.what();
    }
  };
  const Dialect csv = Dialect::of(Format::csv);
  Dialect bare = csv;
  bare.header = false;
  static const struct {
    Dialect dialect;
    std::vector<std::string> wanted;
    std::string chosen;
  } cases[] = {
      {csv, {"4", "when", "2"}, "amount=3 when=0 2=1 "},  // a name goes before a number
      {csv, {"wehn"}, "no column \"wehn\"; did you mean when?"},
      {csv, {"amount"}, "2 columns are named \"amount\": give its number"},
      {csv, {"when", "1"}, "column \"1\" is given twice"},
      {csv, {"6"}, "no column \"6\""},
      {csv, {"0"}, "no column \"0\""},
      {bare, {"7", "1"}, "7=6 1=0 "},
      {bare, {"when"}, "no column \"when\"; without a header line columns have numbers, from 1"},
      {Dialect::of(Format::lines), {"1"}, "1=0 "},
      {Dialect::of(Format::lines), {"2"}, "no column \"2\"; without a header line columns have numbers, from 1"},
      {Dialect::of(Format::json_lines), {"any", "1"}, "any=0 1=0 "},
  };
  for (const auto& c : cases) EXPECT_EQ(chosen(c.dialect, c.wanted), c.chosen);

  EXPECT_EQ(format_of_file("A.Csv"), Format::csv);
  EXPECT_EQ(format_of_file("a.csv.ndjson"), Format::json_lines);
  EXPECT_EQ(format_of_file("csv"), std::nullopt);
  for (const std::string& name : format_names()) EXPECT_EQ(name_of(format_of(name)), name);
  EXPECT_THROW(format_of("cvs"), Failure);
  EXPECT_EQ(separator_of("\\t"), '\t');
  EXPECT_EQ(separator_of(";"), ';');
  for (const char* bad : {"", ";;", "\"", "\n", "a", "\xE9"}) EXPECT_THROW(separator_of(bad), Failure) << bad;
}

TEST(Utf8, TheFirstInvalidByte) {
  constexpr size_t none = std::string::npos;
  static const struct {
    std::string text;
    size_t at;
  } cases[] = {{"", none},      {"aé😀\0"s, none},        {"é\xC3", 2},   {"\x80", 0}, {"\xED\xA0\x80", 0},
               {"\xC0\x80", 0}, {"\xF4\x90\x80\x80", 0}, {"\xE2\x82", 0}};
  for (const auto& c : cases) {
    for (size_t before = 0; before < 20; ++before) {
      const std::string text = std::string(before, 'x') + c.text;
      EXPECT_EQ(invalid_utf8(text), c.at == none ? none : before + c.at) << testing::PrintToString(text);
      EXPECT_EQ(invalid_utf8(text + "\xFF"), before + std::min(c.at, c.text.size())) << testing::PrintToString(text);
    }
  }
}

}  // namespace
