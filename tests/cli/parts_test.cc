// The parts of the command that know nothing of commands: ISO 8601, text, codings, records and cells.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "cli/coding.h"
#include "cli/table/splitter.h"
#include "cli/value.h"

namespace {

using namespace vxcli;
using namespace vxcli::table;
using namespace std::string_literals;

/// The parts of what was read, or the place and the expectation.
std::string read_iso8601(std::string_view text) {
  const auto result = iso8601::read(text);
  if (const auto* fault = std::get_if<iso8601::Fault>(&result))
    return fmt::format("{}: {}", fault->at, fault->expected);
  const auto& read = std::get<iso8601::Text>(result);
  std::string parts;
  if (read.date) parts += iso8601::write(*read.date);
  if (read.time) parts += fmt::format(" {}h{}m{}s", read.time->hour, read.time->minute, read.time->second);
  if (read.offset) parts += fmt::format(" {:+}", *read.offset);
  return parts;
}

TEST(Iso8601, FormsAndFaults) {
  const std::string whole = "2026-11-21T14:05:09+02:30";
  // Each field of two digits, with all that could stand there.
  static constexpr struct {
    size_t at;
    int low, high;
  } fields[] = {{5, 1, 12}, {8, 1, 31}, {11, 0, 23}, {14, 0, 59}, {17, 0, 59}, {20, 0, 23}, {23, 0, 59}};
  for (const auto& field : fields) {
    for (int value = 0; value < 100; ++value) {
      const std::string text = fmt::format("{}{:02}{}", whole.substr(0, field.at), value, whole.substr(field.at + 2));
      const bool good = value >= field.low && value <= field.high;
      EXPECT_EQ(!read_iso8601(text).starts_with(fmt::format("{}: ", field.at)), good) << text;
    }
  }
  for (const auto& [text, outcome] : {std::pair{"+12026-11-21", "12026-11-21"},
                                      {"2026-11-21t14:05:09.5+02", "2026-11-21 14h5m9s +7200"},
                                      {"2026-11-21T14:05:09 -0330", "2026-11-21 14h5m9s -12600"},
                                      {"20001-01-01", "0: a year from 1582 to 20000"},
                                      {"9:05", "0: an hour of two digits"},
                                      {"2026-11-21T14:05:09.", "20: decimals of a second"}}) {
    EXPECT_EQ(read_iso8601(text), outcome) << text;
  }
  for (const auto& [offset, text] : {std::pair{20700, "+05:45"}, {-12600, "-03:30"}, {-75, "-00:01:15"}}) {
    EXPECT_EQ(iso8601::write_offset(offset), text);
  }
}

/// The characters of a text; "?" for a fault.
std::string decoded(const Coding& coding, std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const Step step = coding.decode({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
    shown += step.outcome == Step::Outcome::character ? fmt::format("U+{} ", uint32_t{step.code_point}) : "? ";
    text.remove_prefix(step.outcome == Step::Outcome::wanting ? text.size() : step.bytes);
  }
  return shown;
}

TEST(Coding, EveryCharacterThereAndBackAndFaults) {
  for (const Coding& coding : codings()) {
    for (uint32_t c = 0; c <= 0x10FFFF; ++c) {
      if (c >= 0xD800 && c <= 0xDFFF) continue;
      std::string text;
      coding.encode(c, text);
      coding.encode('x', text);
      ASSERT_EQ(decoded(coding, text), fmt::format("U+{} U+120 ", c)) << coding.name;
    }
  }
  static const struct {
    const char* coding;
    std::string text;
    const char* expected;
  } faults[] = {
      {"utf-8", "\xED\xA0\x80", "? ? ? "},        // a surrogate
      {"utf-8", "\xF4\x90\x80\x80", "? ? ? ? "},  // above U+10FFFF
      {"utf-8", "\xC0\x80\xE2\x82", "? ? ? "},    // overlong; cut off by the end
      {"modified-utf-8", "\xC0\x80", "U+0 "},
      {"modified-utf-8", "\xED\xA0\xBD\x41\xED\xB8\x80", "? U+65 ? "},
      {"modified-utf-8", "\xF0\x9F\x98\x80", "? ? ? ? "},
      {"utf-16be", "\xDE\0\0\x41\0"s, "? U+65 ? "},
      {"utf-32le", "\0\xD8\0\0"s, "? "},
  };
  for (const auto& c : faults) {
    EXPECT_EQ(decoded(*find_coding(c.coding), c.text), c.expected) << c.coding;
    for (size_t before = 0; c.coding == "utf-8"s && before < 20; ++before) {
      const std::string good = std::string(before, 'x') + "é😀\0"s;
      EXPECT_EQ(invalid_utf8(good + c.text + good), good.size());
    }
  }
}

const std::vector<Column> columns = {
    {.name = "a", .index = 0}, {.name = "b", .index = 1}, {.name = "c", .index = 2}, {.name = "d", .index = 3}};

/// "line:place [value|value] fault@place;" for each record; the kinds of JSON as n, l, x before a value.
std::string described(const Dialect& dialect, std::string_view text, size_t expected = 0) {
  Splitter splitter(dialect, columns, expected);
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
      {Format::csv, "a\rb\r,\r\r\nc\r", "1:0 [a\rb\r|\r];2:8 [c\r];"},  // a CR is a byte, but for the one before LF
      {Format::csv, "\"a,\"\"b\"\"\r\n\",\"\"\r\n\"\"\"\"", "1:0 [a,\"b\"\r\n|];3:16 [\"];"},
      {Format::csv, "a\"b,c\"\n \"a,b\"", "1:0 [a\"b|c\"];2:7 [ \"a|b\"];"},  // opens at the start of a cell only
      {Format::csv, "\"a\"b\"\",\"c\" \n", "1:0 [ab\"\"|c ] 1@3 1@10;"},
      {Format::csv, "a,\"b,\nc\n", "1:0 [a|b,\nc\n] 0@2;"},
      {Format::csv, "a,b\n\na\r\na,b,c,d\n", "1:0 [a|b];2:4 [];3:5 [a] 2@1;4:8 [a|b|c|d] 3@4;", 2},
      {Format::tsv, "\"a\t\"\r\n\\t,\tb", "1:0 [\"a|\"];2:6 [\\t,|b];"},
      {Format::tsv_escaped, "\\t\\n\t\\r\\\\n\n\\N\\\t\\", "1:0 [\t\n|\r\\n];2:11 [\\N\\|\\];"},
      {Format::json_lines, "{\"b\": \"x\", \"q\":[{\"a\":1},\"]\"],\"a\":-1.5e3}\r\n", "1:0 [bx|an-1.5e3];"},
      {Format::json_lines, "{}\n\n \t\n{\"a\":null,\"b\":{\"a\":[1]},\"c\":true}",
       "1:0 [];2:3 [];3:4 [];4:7 [alnull|bx{\"a\":[1]}|cltrue];"},
      // A lone surrogate has no value: the bytes stay.
      {Format::json_lines, R"({"\u0061":"\"\\\u00e9\ud83d\ude00","b":"\ud800"})", "1:0 [a\"\\é😀|b\\ud800];"},
      {Format::json_lines, R"({"a":1,"b":2,"a":"3"})", "1:0 [bn2|a3] 5@17;"},
      {Format::json_lines, R"({"a":0,"b":{"c":[1}})", "1:0 [] 4@18;"},
  };
  for (const auto& c : cases) EXPECT_EQ(described(Dialect::of(c.format), c.text, c.expected), c.described) << c.text;
}

TEST(Splitter, ObjectsAreWhatAJsonReaderTakes) {
  // Without nested values, of which only brackets and strings are looked at.
  static constexpr std::string_view parts[] = {"",  "}", "]",  "\"a\":", "\"\\n\"", "\"\t\"", ",",   "1",
                                               "-", "e", ".0", "null",   " ",       "+",      "\"\\"};
  for (size_t number = 0; number < size_t{15} * 15 * 15 * 15 * 15; ++number) {  // up to five of them
    std::string line = "{";
    for (size_t left = number; left > 0; left /= 15) line += parts[left % 15];
    const bool taken = described(Dialect::of(Format::json_lines), line).find(" 4@") == std::string::npos;
    ASSERT_EQ(taken, nlohmann::json::accept(line)) << line;
  }
}

struct Rewritten {
  std::string text;
  std::vector<std::string> old_values;
};

/// Gives every cell its new value, or its own when there is none for it.
Rewritten rewritten(const Dialect& dialect, std::string_view text, const std::vector<std::string>& values = {}) {
  Splitter splitter(dialect, columns);
  const Block block{.text = text};
  Rewritten result;
  std::string scratch;
  Rewriter rewriter(splitter, block, result.text);
  splitter.start(block);
  for (Record record; splitter.next(record);) {
    rewriter.begin(record);
    for (const Cell& cell : record.cells) {
      result.old_values.emplace_back(splitter.value(record, cell, scratch));
      EXPECT_TRUE(rewriter.put(cell, values.empty() ? result.old_values.back() : values[cell.column]));
    }
  }
  rewriter.finish();
  return result;
}

TEST(Rewriter, NewValuesAreWhatIsReadAgain) {
  static constexpr struct {
    Format format;
    std::string_view text;       // a record of four cells
    std::string_view forbidden;  // bytes that the format cannot write
  } cases[] = {{Format::csv, "a,\"b\",,\"\"\"d\"\r\n", ""},
               {Format::tsv, "a\tb\t\td\r\n", "\t\r\n"},
               {Format::tsv_escaped, "a\t\\t\t\td", ""},
               {Format::json_lines, R"({"a": "x", "b" :"\n","c":1 ,"d":-2.50e7})", "\x80\xC3"}};
  std::mt19937 random(1);
  for (const auto& c : cases) {
    const Dialect dialect = Dialect::of(c.format);
    for (int i = 0; i < 3000; ++i) {
      std::vector<std::string> values(4);
      for (std::string& value : values) {
        for (size_t size = random() % 6; size > 0; --size) {
          const char byte = "ab,\"\"\t\\\n\r 1\0\x80\xC3"[random() % 14];
          if (c.forbidden.find(byte) == std::string_view::npos) value += byte;
        }
      }
      const std::string text = rewritten(dialect, c.text, values).text;
      SCOPED_TRACE(testing::PrintToString(text));
      const auto again = rewritten(dialect, text);  // and writing has one form
      ASSERT_EQ(again.old_values, values);
      ASSERT_EQ(again.text, text);
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
  for (const auto& c : cases) EXPECT_EQ(rewritten(Dialect::of(c.format), c.text, c.values).text, c.rewritten);
  std::string out;
  EXPECT_FALSE(Splitter(Dialect::of(Format::tsv)).encode({}, "\t", out));
  EXPECT_FALSE(Splitter(Dialect::of(Format::lines)).encode({}, "a\nb", out));
}

}  // namespace
