#include "cli/text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace vxcli;

TEST(Text, QuotesShowEverythingOnOneLine) {
  using namespace std::string_view_literals;
  EXPECT_EQ(in_quotes("a b"), R"("a b")");
  EXPECT_EQ(in_quotes("grün 日"), R"("grün 日")");
  EXPECT_EQ(in_quotes("\t\r\n\0\x7F"sv), R"("\t\r\n\u{0000}\u{007F}")");
  EXPECT_EQ(in_quotes("\u202E\u200B\uFEFF"), R"("\u{202E}\u{200B}\u{FEFF}")");
  EXPECT_EQ(in_quotes("a\xFF\xC3(\xED\xA0\x80"), R"("a\xFF\xC3(\xED\xA0\x80")");
  EXPECT_EQ(visible("a\x1B[31m\xFF\n\u009B日" + std::string(61, 'x')),
            "a\\u{001B}[31m\\xFF\\n\\u{009B}日" + std::string(61, 'x'));
  EXPECT_EQ(in_quotes(std::string(61, 'x')), '"' + std::string(60, 'x') + "\"...");
  EXPECT_EQ(in_quotes(std::string(60, 'x')), '"' + std::string(60, 'x') + '"');
}

TEST(Text, NamesWithAnyStoredLength) {
  NLSName name{3, {U'ä', 0xD800, 0x110000, U'x'}};
  EXPECT_EQ(utf8(name), "ä\uFFFD\uFFFD");
  name.length = -1;
  EXPECT_EQ(utf8(name), "");
  name.length = 61;
  for (VXChar& unit : name.text) unit = U'日';
  EXPECT_EQ(utf8(name).size(), 180U);
}

TEST(Text, ColumnsOfATerminal) {
  EXPECT_EQ(display_width("abc"), 3U);
  EXPECT_EQ(display_width("日曜日"), 6U);
  EXPECT_EQ(display_width("ｶﾅ"), 2U);       // halfwidth
  EXPECT_EQ(display_width("e\u0301"), 1U);  // combining acute
  EXPECT_EQ(display_width("\u200E1\u200F"), 1U);
  EXPECT_EQ(display_width("\xFF"), 1U);
  Table table(" ");
  table.row({"", "日", "x"});
  table.row({"ab", "c"});
  table.row({"a", "", "y"});
  EXPECT_EQ(table.text(), "     日  x\n ab  c\n a       y\n");
}

TEST(Text, Wrapping) {
  EXPECT_EQ(wrapped("aa bb cc", 5), "aa bb\ncc");
  EXPECT_EQ(wrapped("aa bb cc", 8, 3), "aa bb\n   cc");
  EXPECT_EQ(wrapped("a\n\n  b c", 80), "a\n\n  b c");
  EXPECT_EQ(wrapped("longer than that", 4), "longer\nthan\nthat");
}

TEST(Text, Pieces) {
  EXPECT_EQ(without_blanks(" \t a b \t"), "a b");
  EXPECT_EQ(without_blanks(" "), "");
  EXPECT_EQ(alternatives({"a"}), "a");
  EXPECT_EQ(alternatives({"a", "b", "c"}), "a, b or c");
  EXPECT_TRUE(contains("Norsk Bokmål", "BOKMÅL"));
  EXPECT_FALSE(contains("ab", "abc"));
  EXPECT_EQ(utf32("a日"), U"a日");
  EXPECT_EQ(utf32("a\xC0\x80"), std::nullopt);
}

}  // namespace
