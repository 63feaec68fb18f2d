// Numbers in every locale of the database: written with its separators in both flavours, and read back.
#include <gtest/gtest.h>

#include "tests/number_format/models.h"
#include "tests/support/plain_locale.h"
#include "vxnls/vxnls.hpp"

namespace vxtest {

namespace {

TEST(NumbersOfLocales, AreWrittenWithTheirSeparatorsAndReadBack) {
  const vxnls::host host = vxnls::host::open().value();
  const auto names = host.locales();
  ASSERT_GT(names.size(), 700u);
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const vxnls::locale locale = host.locale(name, "UTC").value();
    const VXLocaleData& data = locale.data();
    const auto mark = [](char32_t c) { return utf8(std::u32string(1, c)); };
    const bool indian = data.groupingPattern.length == 3;  // "3;2"
    const Marks marks{mark(data.decimalPoint), mark(data.groupSeparator), {3, indian ? 2 : 3}};
    const std::string whole = "-" + *grouped("12345678", marks), all = whole + marks.point + "25";

    const auto expect = [&](auto value, const vxnls::number_style& style, const std::string& text) {
      EXPECT_EQ(locale.format(value, style).value(), text);
      EXPECT_EQ(utf8(locale.format<std::u32string>(value, style).value()), text);
    };
    const std::string amount = vxnls::to_string(data.currencySymbol) + all;
    expect(-12345678.25, {.decimals = 2, .group = true}, all);
    expect(-12345678, {.group = true}, whole);
    expect(vxnls::money{-12345678.25}, {}, amount.substr(amount.find_first_not_of(' ')));
    expect(vxnls::percent{-0.125}, {.decimals = 1, .parentheses = true}, "(12" + marks.point + "5%)");
    expect(vxnls::missing('K'), {.width = 6, .flags = NLS_FORMAT_FIXED}, "     K");
    EXPECT_EQ(locale.parse<double>(all).value(), -12345678.25);
    EXPECT_EQ(locale.parse<double>(utf32(all)).value(), -12345678.25);
    EXPECT_EQ(locale.parse<int>(whole).value(), -12345678);
    EXPECT_EQ(locale.parse<int>(utf32(whole)).value(), -12345678);
  }
}

}  // namespace

}  // namespace vxtest
