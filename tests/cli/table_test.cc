// Records and cells as places in the text, texts with cells rewritten, and blocks through threads.
#include <csv.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "cli/errors.h"
#include "cli/table/pipeline.h"
#include "cli/table/progress.h"
#include "cli/table/splitter.h"

namespace {

using namespace vxcli;
using namespace vxcli::table;
using namespace std::string_literals;

using Values = std::vector<std::vector<std::string>>;  // of records

std::vector<Column> first_columns(size_t count) {
  std::vector<Column> columns;
  for (size_t i = 0; i < count; ++i) columns.push_back({.name = std::string(1, "abcdefgh"[i]), .index = i});
  return columns;
}

/// "line:place [value|value] fault@place;" for each record; the kinds of JSON as n, l, x before a value.
std::string described(const Dialect& dialect, std::string_view text, size_t expected = 0) {
  Splitter splitter(dialect, first_columns(4), expected);
  splitter.start({.text = text});
  Record record;
  std::string all, scratch;
  for (uint64_t number = 1; splitter.next(record); ++number) {
    EXPECT_EQ(record.number, number);
    all += fmt::format("{}:{} [", record.line, record.offset);
    for (const Cell& cell : record.cells) {
      if (&cell != record.cells.data()) all += '|';
      if (dialect.format == Format::json_lines) all += splitter.columns()[cell.column].name;
      if (cell.kind != Kind::text) all += " nlx"[static_cast<size_t>(cell.kind)];
      all += splitter.value(record, cell, scratch);
    }
    all += ']';
    for (const Flaw& flaw : record.flaws) all += fmt::format(" {}@{}", static_cast<int>(flaw.fault), flaw.at);
    all += ';';
  }
  return all;
}

TEST(Splitter, RecordsAndCells) {
  static const struct {
    Format format;
    std::string text, described;
    size_t expected = 0;
  } cases[] = {
      {Format::csv, "", ""},
      {Format::csv, "\n", "1:0 [];"},
      {Format::csv, "a\rb\r,\r\r\nc\r", "1:0 [a\rb\r|\r];2:8 [c\r];"},  // a CR is a byte, but for the one before LF
      {Format::csv, "\"a,\"\"b\"\"\r\n\",\"\"\r\n\"\"\"\"", "1:0 [a,\"b\"\r\n|];3:16 [\"];"},
      {Format::csv, "a\"b,c\"\n \"a,b\"", "1:0 [a\"b|c\"];2:7 [ \"a|b\"];"},  // opens at the start of a cell only
      {Format::csv, "\"a\"b\"\",\"c\" \n", "1:0 [ab\"\"|c ] 1@3 1@10;"},
      {Format::csv, "a,\"b,\nc\n", "1:0 [a|b,\nc\n] 0@2;"},
      {Format::csv, "a,b\n\na\r\na,b,c,d\n", "1:0 [a|b];2:4 [];3:5 [a] 2@1;4:8 [a|b|c|d] 3@4;", 2},
      {Format::csv, "1,2,3,4,5,6\n", "1:0 [1|2|3|4];", 6},
      {Format::tsv, "\"a\t\"\r\n\\t,\tb", "1:0 [\"a|\"];2:6 [\\t,|b];"},
      {Format::tsv_escaped, "\\t\\n\t\\r\\\\n\n\\N\\\t\\", "1:0 [\t\n|\r\\n];2:11 [\\N\\|\\];"},
      {Format::lines, "a,\"b\r\n\nc", "1:0 [a,\"b];2:6 [];3:7 [c];"},
      {Format::json_lines, "{\"b\": \"x\", \"q\":[{\"a\":1},\"]\"],\"a\":-1.5e3}\r\n", "1:0 [bx|an-1.5e3];"},
      {Format::json_lines, "{}\n\n \t\n{\"a\":null,\"b\":{\"a\":[1]},\"c\":true}",
       "1:0 [];2:3 [];3:4 [];4:7 [alnull|bx{\"a\":[1]}|cltrue];"},
      // A lone surrogate has no value: the bytes stay.
      {Format::json_lines, R"({"\u0061":"\"\\\u00e9\ud83d\ude00","b":"\ud800"})", "1:0 [a\"\\é😀|b\\ud800];"},
      {Format::json_lines, R"({"a":1,"b":2,"a":"3"})", "1:0 [bn2|a3] 5@17;"},
  };
  for (const auto& c : cases) EXPECT_EQ(described(Dialect::of(c.format), c.text, c.expected), c.described) << c.text;
}

TEST(Splitter, ObjectsAreWhatAJsonReaderTakes) {
  // Without nested values, of which only brackets and strings are looked at.
  static constexpr std::string_view parts[] = {"",  "}", "]",  "\"a\":", "\"\\n\"", "\"\t\"", ",",   "1",
                                               "-", "e", ".0", "null",   " ",       "+",      "\"\\"};
  for (size_t number = 0; number < 15 * 15 * 15 * 15 * 15; ++number) {  // up to five of them
    std::string line = "{";
    for (size_t left = number; left > 0; left /= 15) line += parts[left % 15];
    const bool taken = described(Dialect::of(Format::json_lines), line).find(" 4@") == std::string::npos;
    ASSERT_EQ(taken, nlohmann::json::accept(line)) << line;
  }
  // "^": where a line stops being one.
  for (std::string line : {"^[1]"s, R"({"a"^})"s, R"({"a":0^1})"s, R"({"a":1^)"s, R"({"a":^nul})"s, R"({"a":"^)"s,
                           "{\"a\":\"^\t\"}"s, R"({"a":[1^}})"s, R"({"a":[[]^)"s, "{}^\0"s}) {
    const size_t at = line.find('^');
    line.erase(at, 1);
    EXPECT_EQ(described(Dialect::of(Format::json_lines), line), fmt::format("1:0 [] 4@{};", at)) << line;
  }
}

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
      const std::string own(splitter.value(record, cell, scratch));
      EXPECT_TRUE(rewriter.put(cell, values.empty() ? own : values[cell.column % values.size()]));
    }
  }
  rewriter.finish();
  return out;
}

/// What is written reads back as it was meant, by libcsv too, and writing has one form.
TEST(Rewriter, NewValuesAreWhatIsReadAgain) {
  static constexpr struct {
    Format format;
    std::string_view text;       // records of four cells
    std::string_view forbidden;  // bytes that the format cannot write
  } cases[] = {{Format::csv, "a,\"b\",,\"\"\"d\"\r\n1,2,3,4", ""},
               {Format::tsv, "a\tb\t\td\r\n", "\t\r\n"},
               {Format::tsv_escaped, "a\t\\t\t\td", ""},
               {Format::json_lines, R"({"a": "x", "b" :"\n","c":1 ,"d":-2.50e7})", "\x80\xC3"}};
  std::mt19937 random(1);
  for (const auto& c : cases) {
    const Dialect dialect = Dialect::of(c.format);
    EXPECT_EQ(rewritten(dialect, c.text, {}), c.text);
    for (int i = 0; i < 3000; ++i) {
      std::vector<std::string> values(4);
      for (std::string& value : values) {
        for (size_t size = random() % 6; size > 0; --size) {
          const char byte = "ab,\"\"\t\\\n\r 1\0\x80\xC3"[random() % 14];
          if (c.forbidden.find(byte) == std::string_view::npos) value += byte;
        }
      }
      const std::string text = rewritten(dialect, c.text, values);
      SCOPED_TRACE(testing::PrintToString(text));
      const Values all(c.format == Format::csv ? 2 : 1, values);
      ASSERT_EQ(values_of(dialect, text), all);
      ASSERT_EQ(rewritten(dialect, text, {}), text);
      if (c.format == Format::csv) {
        ASSERT_EQ(values_by_libcsv(text), all);
      }
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
  std::string out;
  for (const char* value : {"a\nb", "a\r", "\n", "\t"}) {
    EXPECT_FALSE(Splitter(Dialect::of(Format::tsv)).encode({}, value, out));
    EXPECT_EQ(Splitter(Dialect::of(Format::lines)).encode({}, value, out), *value == '\t');
  }
  EXPECT_EQ(out, "\t");
}

/// Gives a byte a call, and fails at one of them.
struct Device {
  std::string_view text;
  int failing_call = 0, calls = 0;
} device;

ssize_t give(int, void* byte, size_t) {
  if (++device.calls == device.failing_call) {
    errno = EIO;
    return -1;
  }
  std::memcpy(byte, device.text.data(), 1);
  device.text.remove_prefix(1);
  return 1;
}

TEST(Pipeline, EveryFailureOfReadingComesAfterWhatWasRead) {
  constexpr std::string_view text = "a,b\n1,2\n\"3\n\",4\n5,6\n7";
  for (size_t i = 0; i < 9 * (text.size() + 1); ++i) {
    const size_t block_size = std::array{1u, 7u, 100u}[i % 3], read = i / 9;
    const unsigned threads_and_sample = 1u << i / 3 % 3;
    device = {.text = text, .failing_call = static_cast<int>(read) + 1};
    BlockReader reader(open("/dev/null", O_RDONLY), "device", Dialect::of(Format::csv), give, block_size);
    std::string copy;
    try {
      copy = reader.head().bytes;
      reader.sample(threads_and_sample - 1);
      run_pipeline<std::string>(
          reader, threads_and_sample,
          {.make_worker = [] { return [](const Block& block, std::string& result) { result = block.text; }; },
           .consume = [&](std::string& result) { return copy += result, true; },
           .before_waiting = {}});
      ADD_FAILURE() << read;
    } catch (const Failure& failure) {
      EXPECT_STREQ(failure.what(), "cannot read device: Input/output error");
    }
    // What is whole of it: nothing more, and nothing less.
    size_t whole = text.substr(0, read).rfind('\n') + 1;
    if (whole == 11) whole = 8;  // the one within quotes
    EXPECT_EQ(copy, text.substr(0, whole)) << read;
  }
}

TEST(Progress, Text) {
  EXPECT_EQ(progress_text(12'340'000, 100'000'000, std::chrono::seconds(2)), "12.3 MB of 100.0 MB, 12%, 6.2 MB/s");
  EXPECT_EQ(progress_text(500'000, 0, std::chrono::seconds(0)), "0.5 MB");
  EXPECT_EQ(progress_text(200, 100, std::chrono::seconds(1)), "0.0 MB of 0.0 MB, 100%, 0.0 MB/s");
}

}  // namespace
