// Numbers in every locale of the database: written with its separators in both flavours, and read back.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "unicode/text_flavour.h"
#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

std::string utf8(const VXChar* text, int64_t length) {
  std::string result;
  for (int64_t i = 0; i < length; ++i) {
    uint8_t bytes[4];
    result.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(vxnls::Utf8Text::append(text[i], bytes)));
  }
  return result;
}

/// 12345678.25 as the locale's record says, put together by hand.
std::string grouped(const VXLocaleData& data) {
  const bool indian = data.groupingPattern.length == 3;  // "3;2"
  const std::string separator = utf8(&data.groupSeparator, 1);
  const std::string point = utf8(&data.decimalPoint, 1);
  return indian ? "1" + separator + "23" + separator + "45" + separator + "678" + point + "25"
                : "12" + separator + "345" + separator + "678" + point + "25";
}

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
    int64_t length = 0;
    int64_t bytes = 0;
    double value = 0;
    int64_t consumed = 0;
    constexpr double number = 12345678.25;
    const std::string expected = grouped(data);

    ASSERT_EQ(ops.NLSDoubleFormat(locale, 0, 2, NLS_FORMAT_PLAIN | NLS_FORMAT_GROUP, wide, 128, &length, number), 0u);
    EXPECT_EQ(utf8(wide, length), expected);
    ASSERT_EQ(ops.NLSDoubleFormatUWithExOpts(locale, 0, 2, NLS_FORMAT_PLAIN | NLS_FORMAT_GROUP, narrow, 128, &bytes,
                                             nullptr, number),
              0u);
    EXPECT_EQ(std::string(narrow, narrow + bytes), expected);
    EXPECT_EQ(ops.NLSBufToDouble(locale, wide, static_cast<int32_t>(length), &value, &consumed), 0u);
    EXPECT_EQ(value, number);
    EXPECT_EQ(consumed, length);
    EXPECT_EQ(ops.NLSBufToDoubleU(locale, narrow, static_cast<int32_t>(bytes), &value, &consumed), 0u);
    EXPECT_EQ(value, number);
    EXPECT_EQ(consumed, bytes);

    // A field of exactly that width holds it, one unit less loses the separators.
    const auto fits = static_cast<int32_t>(bytes);
    EXPECT_EQ(ops.NLSDoubleFormatUWithExOpts(locale, fits, 2, NLS_FORMAT_FIXED | NLS_FORMAT_GROUP, narrow, 128, &bytes,
                                             nullptr, number),
              0u);
    EXPECT_EQ(std::string(narrow, narrow + bytes), expected);
    EXPECT_EQ(ops.NLSDoubleFormatUWithExOpts(locale, fits - 1, 2, NLS_FORMAT_FIXED | NLS_FORMAT_GROUP, narrow, 128,
                                             &bytes, nullptr, number),
              VX_E_GROUPING);
    EXPECT_EQ(bytes, fits - 1);

    // Integers, in both flavours.
    int64_t whole = 0;
    uint64_t read = 0;
    ASSERT_EQ(ops.NLSIntmaxFormatU(locale, -12345678, 0, 1, NLS_FORMAT_GROUP, narrow, 128, &bytes), 0u);
    EXPECT_EQ(std::string(narrow, narrow + bytes) + utf8(&data.decimalPoint, 1) + "25", "-" + expected);
    EXPECT_EQ(ops.NLSBufToIntmaxU(locale, narrow, bytes, 0, &whole, &read), 0u);
    EXPECT_EQ(whole, -12345678);
    ASSERT_EQ(ops.NLSIntmaxFormat(locale, -12345678, 0, 1, NLS_FORMAT_GROUP, wide, 128, &length), 0u);
    EXPECT_EQ(ops.NLSBufToIntmax(locale, wide, length, 0, &whole, &read), 0u);
    EXPECT_EQ(whole, -12345678);

    // The symbol right before the number; the percent sign right behind it; a missing value's letter.
    ASSERT_EQ(ops.NLSCurrencyFormat(locale, 100, 2, 0, wide, 128, &length, number), 0u);
    const std::string money = utf8(wide, length);
    const std::string wanted = utf8(data.currencySymbol.text, data.currencySymbol.length) + expected;
    EXPECT_EQ(length, 100);
    EXPECT_EQ(money.substr(money.find_first_not_of(' ')), wanted.substr(wanted.find_first_not_of(' ')));
    ASSERT_EQ(ops.NLSPercentFormat(locale, 0, 1, 1, wide, 128, &length, -0.125), 0u);
    EXPECT_EQ(utf8(wide, length), "(12" + utf8(&data.decimalPoint, 1) + "5%)");
    ASSERT_EQ(
        ops.NLSDoubleFormatUWithExOpts(locale, 6, 2, NLS_FORMAT_FIXED, narrow, 128, &bytes, nullptr, qmMissVal('k')),
        0u);
    EXPECT_EQ(std::string(narrow, narrow + bytes), "   K  ");
  }
  vxhostClose(host);
  EXPECT_EQ(vxhostAlive(), 0);
}

}  // namespace
