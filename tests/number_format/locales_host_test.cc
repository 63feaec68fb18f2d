// Numbers in every locale of the database: written with its separators in both flavours, and read back.
#include <gtest/gtest.h>

#include <vector>

#include "tests/support/plain_locale.h"
#include "vxnls/vxhost.h"

namespace vxtest {

namespace {

TEST(NumbersOfLocales, AreWrittenWithTheirSeparatorsAndReadBack) {
  VXHost* host = nullptr;
  ASSERT_EQ(vxhostOpen(nullptr, &host), 0u);
  std::vector<std::string> names;
  vxhostForEachLocale(
      host,
      [](void* user, const char* name) { return static_cast<std::vector<std::string>*>(user)->emplace_back(name), 0; },
      &names);
  ASSERT_GT(names.size(), 700u);
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    VXLocale* locale = nullptr;
    ASSERT_EQ(vxhostLocale(host, name.c_str(), "UTC", 0, &locale), 0u);
    const VXLocaleData& data = *locale->localeData;
    const NLSOps& ops = locale->ops;
    VXChar wide[128];
    uint8_t narrow[128];
    int64_t length = 0, bytes = 0, consumed = 0, whole = 0;
    uint64_t read = 0;
    double value = 0;
    const auto units = [&] { return utf8(std::u32string{wide, wide + length}); };
    const auto text = [&] { return std::string(narrow, narrow + bytes); };
    const auto write = [&](int32_t width, uint32_t flags, double number) {
      return ops.NLSDoubleFormatUWithExOpts(locale, width, 2, flags, narrow, 128, &bytes, nullptr, number);
    };
    // As the record says, put together by hand.
    constexpr double number = 12345678.25;
    constexpr uint32_t plain = NLS_FORMAT_PLAIN | NLS_FORMAT_GROUP, fixed = NLS_FORMAT_FIXED | NLS_FORMAT_GROUP;
    const bool indian = data.groupingPattern.length == 3;  // "3;2"
    const std::string separator = utf8(std::u32string{data.groupSeparator}),
                      point = utf8(std::u32string{data.decimalPoint});
    const std::string grouped =
        (indian ? "1" + separator + "23" + separator + "45" : "12" + separator + "345") + separator + "678";
    const std::string expected = grouped + point + "25";

    EXPECT_EQ(ops.NLSDoubleFormat(locale, 0, 2, plain, wide, 128, &length, number), 0u);
    EXPECT_EQ(units(), expected);
    EXPECT_EQ(ops.NLSBufToDouble(locale, wide, static_cast<int32_t>(length), &value, &consumed), 0u);
    EXPECT_EQ(std::pair(value, consumed), std::pair(number, length));
    EXPECT_EQ(write(0, plain, number), 0u);
    EXPECT_EQ(text(), expected);
    EXPECT_EQ(ops.NLSBufToDoubleU(locale, narrow, static_cast<int32_t>(bytes), &value, &consumed), 0u);
    EXPECT_EQ(std::pair(value, consumed), std::pair(number, bytes));
    // A field of exactly that width holds it, one unit less loses the separators.
    const auto fits = static_cast<int32_t>(bytes);
    EXPECT_EQ(write(fits, fixed, number), 0u);
    EXPECT_EQ(text(), expected);
    EXPECT_EQ(write(fits - 1, fixed, number), VX_E_GROUPING);
    EXPECT_EQ(bytes, fits - 1);

    EXPECT_EQ(ops.NLSIntmaxFormatU(locale, -12345678, 0, 1, NLS_FORMAT_GROUP, narrow, 128, &bytes), 0u);
    EXPECT_EQ(text(), "-" + grouped);
    EXPECT_EQ(ops.NLSBufToIntmaxU(locale, narrow, bytes, 0, &whole, &read), 0u);
    EXPECT_EQ(whole, -12345678);

    // The symbol right before the number; the percent sign right behind it; a missing value's letter.
    EXPECT_EQ(ops.NLSCurrencyFormat(locale, 100, 2, 0, wide, 128, &length, number), 0u);
    const VXChar* const symbol = data.currencySymbol.text;
    const std::string wanted = utf8(std::u32string{symbol, symbol + data.currencySymbol.length}) + expected;
    EXPECT_EQ(units().substr(units().find_first_not_of(' ')), wanted.substr(wanted.find_first_not_of(' ')));
    EXPECT_EQ(ops.NLSPercentFormat(locale, 0, 1, 1, wide, 128, &length, -0.125), 0u);
    EXPECT_EQ(units(), "(12" + point + "5%)");
    EXPECT_EQ(write(6, NLS_FORMAT_FIXED, qmMissVal('k')), 0u);
    EXPECT_EQ(text(), "   K  ");
  }
  vxhostClose(host);
}

}  // namespace

}  // namespace vxtest
