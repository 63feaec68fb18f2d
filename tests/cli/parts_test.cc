// The parts of the command that know nothing of commands: words, suggestions, ISO 8601, text and codings.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "cli/coding.h"
#include "cli/errors.h"
#include "cli/suggest.h"
#include "cli/table/splitter.h"
#include "cli/text.h"
#include "cli/value.h"

namespace {

using namespace vxcli;
using namespace std::string_literals;
using Words = std::vector<std::string>;

TEST(Suggest, NearestOnly) {
  EXPECT_EQ(edit_distance("de_DE", "de-de"), 0U);
  EXPECT_EQ(edit_distance("kitten", "sitting"), 3U);
  const Words names{"America/New_York", "Europe/Berlin", "Europe/Dublin", "Asia/Tokyo"};
  static const std::pair<std::string, const char*> guesses[] = {{"New York", "America/New_York?"},
                                                                {"Europe/Berlni", "Europe/Berlin?"},
                                                                {"dubl", "Europe/Dublin?"},
                                                                {"eur", "Europe/Berlin or Europe/Dublin?"},
                                                                {"du", nullptr},
                                                                {"Munich", nullptr},
                                                                {"", nullptr},
                                                                {std::string(100000, 'x'), nullptr}};
  for (const auto& [text, guess] : guesses) {
    EXPECT_EQ(did_you_mean(text, names), guess == nullptr ? "" : "; did you mean "s + guess);
  }
  EXPECT_EQ(nearest("abx", {"abc", "abd", "abe", "abf", "ab"}), (Words{"abc", "abd", "abe"}));
}

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

TEST(Iso8601, EveryDayAgreesWithTheStandardLibrary) {
  using namespace std::chrono;
  constexpr sys_days epoch{year(1960) / January / 1}, end{year(4000) / January / 1};  // where the calendars part
  for (sys_days day{year(1582) / January / 1}; day < end; day += days(1)) {
    const year_month_day date(day);
    const std::string text = fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                                         static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    ASSERT_EQ(read_iso8601(text), text);
    const auto number = (day - epoch).count();
    ASSERT_EQ(iso8601::write(date_of(number)), text);
    ASSERT_EQ(day_number(date_of(number)), number);
  }
  EXPECT_EQ(iso8601::write(date_of(last_day)), "20000-12-31");
  EXPECT_EQ(day_number({20000, 12, 31}), last_day);
  for (const iso8601::Date& date : {iso8601::Date{2026, 2, 29}, {4000, 2, 29}, {2026, 4, 31}, {2000, 2, 30}}) {
    EXPECT_THROW(day_number(date), ValueError) << date.year;  // 4000 is a common year here
  }
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
  static const std::pair<std::string, const char*> cases[] = {
      {"+12026-11-21", "12026-11-21"},
      {"14:05:09,999999999999999999999999", " 14h5m9s"},
      {"2026-11-21t14:05:09.5+02", "2026-11-21 14h5m9s +7200"},
      {"2026-11-21T14:05:09 -0330", "2026-11-21 14h5m9s -12600"},
      {"", "0: a date as 2026-11-21, or a time as 14:05"},
      {"1581-12-31", "0: a year from 1582 to 20000"},
      {"20001-01-01", "0: a year from 1582 to 20000"},
      {"-99999999999-01-01", "0: a year from 1582 to 20000"},
      {"2026/11/21", "4: \"-\""},
      {"2026-011-21", "5: a month of two digits"},
      {"2026-11-21\0"s, "10: \"T\" and a time, or the end"},
      {"2026-11-21T14:05:09.", "20: decimals of a second"},
      {"2026-11-21T14:05:09+02:", "23: minutes of two digits"},
      {"2026-11-21T14:05:09Z1", "20: the end"},
  };
  for (const auto& [text, outcome] : cases) EXPECT_EQ(read_iso8601(text), outcome) << text;
  for (const auto& [offset, text] : {std::pair{20700, "+05:45"}, {-12600, "-03:30"}, {-75, "-00:01:15"}}) {
    EXPECT_EQ(iso8601::write_offset(offset), text);
  }
}

TEST(Text, IsShownOnOneLineInColumns) {
  EXPECT_EQ(in_quotes("\t\r\n\0\x7F 日\u202E\u200B"s), R"("\t\r\n\u{0000}\u{007F} 日\u{202E}\u{200B}")");
  EXPECT_EQ(in_quotes("a\xFF\xC3(\xED\xA0\x80"), R"("a\xFF\xC3(\xED\xA0\x80")");
  EXPECT_EQ(in_quotes(std::string(61, 'x')), '"' + std::string(60, 'x') + "\"...");
  EXPECT_EQ(in_quotes(std::string(60, 'x')), '"' + std::string(60, 'x') + '"');
  EXPECT_EQ(visible("\x1B[31m" + std::string(61, 'x')), "\\u{001B}[31m" + std::string(61, 'x'));
  NLSName name{3, {U'ä', 0xD800, 0x110000, U'x'}};
  EXPECT_EQ(utf8(name), "ä\uFFFD\uFFFD");
  for (VXChar& unit : name.text) unit = U'日';
  for (const auto& [length, bytes] : {std::pair{-1, 0U}, {61, 180U}}) {  // whatever is stored there
    name.length = length;
    EXPECT_EQ(utf8(name).size(), bytes);
  }
  for (const auto& [text, width] :
       {std::pair{"日曜日", 6U}, {"ｶﾅ", 2U}, {"e\u0301", 1U}, {"\u200E1\u200F", 1U}, {"\xFF", 1U}}) {
    EXPECT_EQ(display_width(text), width) << text;
  }
  Table table(" ");
  table.row({"", "日", "x"});
  table.row({"ab", "c"});
  EXPECT_EQ(table.text(), "     日  x\n ab  c\n");
  EXPECT_EQ(wrapped("aa bb cc", 8, 3), "aa bb\n   cc");
  EXPECT_EQ(wrapped("a\n\n  b c longer", 6), "a\n\n  b c\nlonger");
  EXPECT_TRUE(contains("Norsk Bokmål", "BOKMÅL"));
  EXPECT_EQ(utf32("a\xC0\x80"), std::nullopt);
}

/// Decodes a text that arrives in two blocks, as the command does; "?" for a fault.
std::string decoded(const Coding& coding, const std::string& text, size_t cut) {
  std::string shown;
  size_t at = 0;
  for (const size_t end : {cut, text.size()}) {
    while (at < end) {
      const Step step = coding.decode({reinterpret_cast<const uint8_t*>(text.data()) + at, end - at});
      if (step.outcome == Step::Outcome::wanting && end < text.size()) break;
      shown += step.outcome == Step::Outcome::character ? "U+" + std::to_string(step.code_point) + " " : "? ";
      at += step.outcome == Step::Outcome::wanting ? end - at : step.bytes;
    }
  }
  return shown;
}

TEST(Coding, EveryCharacterThereAndBackAndFaultsWhereverTheBlockEnds) {
  for (const Coding& coding : codings()) {
    for (uint32_t c = 0; c <= 0x10FFFF; c += c < 0x3000 ? 1 : 251) {
      if (c >= 0xD800 && c <= 0xDFFF) continue;
      std::string text;
      coding.encode(c, text);
      coding.encode('x', text);
      for (size_t cut = 0; cut <= text.size(); ++cut) {
        ASSERT_EQ(decoded(coding, text, cut), fmt::format("U+{} U+120 ", c)) << coding.name << " cut at " << cut;
      }
    }
  }
  static const struct {
    const char* coding;
    std::string text;
    const char* expected;
  } faults[] = {
      {"utf-8", "\xE2\x82\x41", "? U+65 "},
      {"utf-8", "\xED\xA0\x80", "? ? ? "},        // a surrogate
      {"utf-8", "\xF4\x90\x80\x80", "? ? ? ? "},  // above U+10FFFF
      {"utf-8", "\xC0\x80\xE2\x82", "? ? ? "},    // overlong; cut off by the end
      {"modified-utf-8", "\xC0\x80", "U+0 "},
      {"modified-utf-8", "\xED\xA0\xBD\x41\xED\xB8\x80", "? U+65 ? "},
      {"modified-utf-8", "\xF0\x9F\x98\x80", "? ? ? ? "},
      {"utf-16le", "\x3D\xD8\x41\0"s, "? U+65 "},
      {"utf-16be", "\xDE\0\0\x41\0"s, "? U+65 ? "},
      {"utf-32le", "\0\xD8\0\0"s, "? "},
      {"utf-32be", "\0\x11\0\0"s, "? "},
  };
  for (const auto& c : faults) {
    for (size_t cut = 0; cut <= c.text.size(); ++cut) {
      EXPECT_EQ(decoded(*find_coding(c.coding), c.text, cut), c.expected) << c.coding << " cut at " << cut;
    }
    for (size_t before = 0; c.coding == "utf-8"s && before < 20; ++before) {
      const std::string good = std::string(before, 'x') + "é😀\0"s;
      EXPECT_EQ(table::invalid_utf8(good), std::string::npos);
      EXPECT_EQ(table::invalid_utf8(good + c.text), good.size());
      EXPECT_EQ(table::invalid_utf8(good + c.text + good), good.size());
    }
  }
  EXPECT_EQ(find_coding("UTF_16LE"), find_coding("utf-16le"));
}

}  // namespace
