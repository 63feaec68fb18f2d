// The blocks that the library does not read, through the structures of vxnls/locale_blocks.h.
#include <gtest/gtest.h>
#include <unicode/calendar.h>
#include <unicode/numfmt.h>

#include <cstring>

#include "host/locale_database/text.h"
#include "tests/locale_database/every_locale.h"
#include "vxnls/locale_blocks.h"

using namespace vxnlsldb;

namespace {

template <class Block>
Block block_of(const VXLocaleData& data, const void* at) {
  static_assert(std::is_trivially_copyable_v<Block>);
  EXPECT_GE(at, static_cast<const void*>(&data));
  Block block;
  std::memcpy(&block, at, sizeof block);
  return block;
}

std::string text(const NLSName& name) { return utf8(text_of(name)); }

}  // namespace

TEST(Blocks, WhatTheySayOfALocale) {
  const auto locale = vxtest::filled("sr_Latn_RS");
  const VXLocaleData& data = *locale.data;
  const auto identity = block_of<VXLocaleIdentity>(data, data.block2);
  EXPECT_STREQ(identity.language, "sr");
  EXPECT_STREQ(identity.script, "Latn");
  EXPECT_STREQ(identity.region, "RS");
  EXPECT_STREQ(identity.languageTag, "sr-Latn-RS");
  EXPECT_STREQ(identity.canonical, "sr_Latn_RS");
  EXPECT_STREQ(identity.language3, "srp");
  EXPECT_STREQ(identity.region3, "SRB");
  EXPECT_EQ(identity.rightToLeft, 0);
  EXPECT_EQ(text(data.block1), "Serbian (Latin, Serbia)");
  EXPECT_EQ(text(data.block3Names[0]), "RSD");
  EXPECT_EQ(text(data.block3Names[1]), "srpski dinar");
  EXPECT_EQ(text(data.names14336[0]), "prvi kvartal");
  const auto texts = block_of<VXLocaleTexts>(data, data.block9);
  EXPECT_EQ(text(texts.ownName), "srpski (latinica, Srbija)");
  EXPECT_EQ(text(texts.cldrDatePatterns[3]), "d.M.yy.");
  EXPECT_EQ(text(texts.quotation[0]), "„");
}

TEST(Blocks, WhereLocalesDiffer) {
  const struct {
    const char *name, *currency, *digits, *calendar, *numbering;
    int32_t right_to_left, hour_cycle, date_order, paper_height, measurement, fraction_digits;
  } cases[] = {
      {"en_US", "USD", "0123456789", "gregorian", "latn", 0, 12, 1, 279, 1, 2},
      {"en_GB", "GBP", "0123456789", "gregorian", "latn", 0, 24, 0, 297, 2, 2},
      {"ar_EG", "EGP", "٠١٢٣٤٥٦٧٨٩", "gregorian", "arab", 1, 12, 0, 297, 0, 2},
      {"fa_IR", "IRR", "۰۱۲۳۴۵۶۷۸۹", "persian", "arabext", 1, 24, 2, 297, 0, 0},
      {"hi_IN", "INR", "०१२३४५६७८९", "gregorian", "latn", 0, 12, 0, 297, 0, 2},
      {"th_TH", "THB", "๐๑๒๓๔๕๖๗๘๙", "buddhist", "latn", 0, 24, 0, 297, 0, 2},
      {"ja_JP", "JPY", "0123456789", "gregorian", "latn", 0, 24, 2, 297, 0, 0},
      {"sv", "SEK", "0123456789", "gregorian", "latn", 0, 24, 2, 297, 0, 2},
      {"eo", "XXX", "0123456789", "gregorian", "latn", 0, 24, 2, 297, 0, 2},
      {"sh", "RSD", "0123456789", "gregorian", "latn", 0, 24, 0, 297, 0, 0},  // an alias of sr_Latn
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto locale = vxtest::filled(c.name);
    const VXLocaleData& data = *locale.data;
    const auto customs = block_of<VXLocaleCustoms>(data, data.block6);
    EXPECT_EQ(text(data.block3Names[0]), c.currency);
    EXPECT_EQ(text(data.block4Name), c.digits);
    EXPECT_STREQ(customs.calendar, c.calendar);
    EXPECT_STREQ(customs.numbering, c.numbering);
    EXPECT_EQ(block_of<VXLocaleIdentity>(data, data.block2).rightToLeft, c.right_to_left);
    EXPECT_EQ(block_of<VXLocaleClock>(data, &data.word11848).hourCycle, c.hour_cycle);
    EXPECT_EQ(customs.dateOrder, c.date_order);
    EXPECT_EQ(customs.paperHeight, c.paper_height);
    EXPECT_EQ(customs.measurementSystem, c.measurement);
    EXPECT_EQ(block_of<VXLocaleCurrencyForm>(data, data.block3Rest).fractionDigits, c.fraction_digits);
  }
}

TEST(Blocks, WeeksAreIcus) {
  for (const auto& locale : vxtest::every_locale()) {
    SCOPED_TRACE(locale.name);
    const auto identity = block_of<VXLocaleIdentity>(*locale.data, locale.data->block2);
    if (identity.region[0] == 0) continue;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(icu::Locale(identity.canonical), status));
    ASSERT_TRUE(U_SUCCESS(status));
    const auto customs = block_of<VXLocaleCustoms>(*locale.data, locale.data->block6);
    EXPECT_EQ(customs.firstWeekDay, calendar->getFirstDayOfWeek(status));
    EXPECT_EQ(customs.minimalDays, calendar->getMinimalDaysInFirstWeek());
    for (int32_t day = 1; day <= 7; ++day) {
      const bool weekend = calendar->getDayOfWeekType(static_cast<UCalendarDaysOfWeek>(day), status) != UCAL_WEEKDAY;
      const bool stored = customs.weekendFirst <= customs.weekendLast
                              ? day >= customs.weekendFirst && day <= customs.weekendLast
                              : day >= customs.weekendFirst || day <= customs.weekendLast;
      EXPECT_EQ(stored, weekend) << day;
    }
    const bool sunday_weeks = text(locale.data->weekPattern1) == "W%U %Y";
    EXPECT_EQ(sunday_weeks, customs.firstWeekDay == 1);
  }
}

TEST(Blocks, FallbackBitsTellTheFallbacks) {
  for (const auto& locale : vxtest::every_locale()) {
    const auto version = block_of<VXLocaleDataVersion>(*locale.data, &locale.data->block7);
    EXPECT_EQ(version.layout, 1);
    EXPECT_GE(version.cldr, 42);
    EXPECT_EQ(version.fallbacks == 0, locale.fallbacks.empty()) << locale.name;
    for (const auto& fallback : locale.fallbacks) {
      EXPECT_NE(fallback.used, "") << locale.name;
      EXPECT_NE(fallback.reason, "") << locale.name;
    }
  }
}
