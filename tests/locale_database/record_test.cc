// Records as a whole: every byte defined, names, numbers and blocks as ICU's own formatters have them; and the
// extension as a host meets it.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/gregocal.h>

#include <cstring>
#include <span>

#include "host/extension.h"
#include "host/locale_database/text.h"
#include "host/locale_database_ops.h"
#include "tests/locale_database/every_locale.h"
#include "tests/support/plain_locale.h"
#include "vxnls/locale_blocks.h"

using namespace vxnlsldb;

namespace {

template <class Block>
Block block_of(const void* at) {
  Block block;
  std::memcpy(&block, at, sizeof block);
  return block;
}

std::string text(const NLSName& name) { return utf8(text_of(name)); }

bool same(const VXLocaleData& a, const VXLocaleData& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace

// Once more, while the process lives in another locale, over memory full of rubbish.
TEST(Record, EveryByteIsDefinedByTheNameAlone) {
  const std::string before = uloc_getDefault();
  UErrorCode status = U_ZERO_ERROR;
  const auto record = std::make_unique<VXLocaleData>();
  const auto expect_again = [&](const vxtest::FilledLocale& locale) {
    uloc_setDefault("ja_JP", &status);
    std::memset(static_cast<void*>(record.get()), 0xA5, sizeof *record);
    fill_record(locale.name.c_str(), record.get(), nullptr);
    uloc_setDefault(before.c_str(), &status);
    EXPECT_TRUE(same(*record, *locale.data)) << locale.name;
  };
  for (const auto& locale : vxtest::every_locale()) expect_again(locale);
  for (const char* const name : {"root", "qqq", "qqq_JP", "de_QQ"}) expect_again(vxtest::filled(name));
}

TEST(Record, LocalesWithoutDataOfTheirOwn) {
  const struct {
    const char *name, *like;
    VXStatus status;
  } cases[] = {
      {"root", "root", 0},        {"de_DE", "de", 0},
      {"zh_TW", "zh_Hant_TW", 0},  // an alias is data
      {"de_QQ", "de", VX_W_FILL}, {"de_Latn_DE_BERLIN", "de", VX_W_FILL},
      {"qqq", "root", VX_W_FILL}, {"qqq_QQ", "root", VX_W_FILL},  // never the locale that the process runs in
  };
  for (const auto& c : cases) {
    const auto got = vxtest::filled(c.name), like = vxtest::filled(c.like);
    EXPECT_EQ(got.status, c.status) << c.name;
    EXPECT_EQ(text(got.data->localeName), c.name);
    const size_t patterns = offsetof(VXLocaleData, quarterPattern2), days = offsetof(VXLocaleData, dayNames);
    EXPECT_EQ(std::memcmp(got.data->dayNames, like.data->dayNames, patterns - days), 0) << c.name;
  }
}

TEST(Record, NamesNumbersAndWeeksAreIcus) {
  using Dates = icu::DateFormatSymbols;
  using Numbers = icu::DecimalFormatSymbols;
  for (const auto& locale : vxtest::every_locale()) {
    SCOPED_TRACE(locale.name);
    const VXLocaleData& data = *locale.data;
    const auto version = block_of<VXLocaleDataVersion>(&data.block7);
    EXPECT_TRUE(version.layout == 1 && version.cldr >= 42);
    EXPECT_EQ(version.fallbacks == 0, locale.fallbacks.empty());
    const auto own = [&](uint32_t entry) { return (version.fallbacks & entry) == 0; };
    UErrorCode status = U_ZERO_ERROR;
    const Dates dates(icu::Locale(locale.name.c_str()), status);
    ASSERT_TRUE(U_SUCCESS(status));
    // ICU counts days from 1.
    const auto expect_names = [&](std::span<const NLSName> stored, const icu::UnicodeString* names,
                                  int32_t skipped = 0) {
      for (const NLSName& name : stored)
        EXPECT_EQ(text(name), utf8(clean(utf32(names[skipped + (&name - stored.data())]))));
    };
    int32_t n = 0;
    expect_names(data.dayNames, dates.getWeekdays(n, Dates::FORMAT, Dates::WIDE), 1);
    expect_names(data.altDayNames, dates.getWeekdays(n, Dates::FORMAT, Dates::ABBREVIATED), 1);
    expect_names(data.monthNames, dates.getMonths(n, Dates::FORMAT, Dates::WIDE));
    EXPECT_EQ(n, 12);
    expect_names(data.altMonthNames, dates.getMonths(n, Dates::FORMAT, Dates::ABBREVIATED));
    expect_names(data.names14336, dates.getQuarters(n, Dates::FORMAT, Dates::WIDE));
    if (own(VX_ENTRY_QUARTER_NAMES)) {
      expect_names(data.quarterNames, dates.getQuarters(n, Dates::FORMAT, Dates::ABBREVIATED));
    }
    if (own(VX_ENTRY_MARKERS)) expect_names({&data.amMarker, 2}, dates.getAmPmStrings(n));

    const icu::Locale latin((locale.name + "@numbers=latn").c_str());
    const std::unique_ptr<icu::NumberFormat> format(icu::NumberFormat::createInstance(latin, UNUM_DECIMAL, status));
    const auto* const decimal = dynamic_cast<const icu::DecimalFormat*>(format.get());
    ASSERT_NE(decimal, nullptr);
    for (const auto& [stored, which] : {std::pair(data.decimalPoint, Numbers::kDecimalSeparatorSymbol),
                                        std::pair(data.groupSeparator, Numbers::kGroupingSeparatorSymbol)}) {
      const std::u32string sign = utf32(decimal->getDecimalFormatSymbols()->getConstSymbol(which));
      EXPECT_EQ(std::u32string(1, stored), sign == U"\u202F" ? U"\u00A0" : sign);
    }
    const int32_t first = decimal->getGroupingSize(), second = decimal->getSecondaryGroupingSize();
    const bool alike = second == 0 || second == first;
    const std::string sizes = std::to_string(first) + (alike ? "" : ';' + std::to_string(second));
    EXPECT_TRUE(!own(VX_ENTRY_GROUPING_PATTERN) || text(data.groupingPattern) == sizes);

    const auto identity = block_of<VXLocaleIdentity>(data.block2);
    icu::Locale likely(identity.canonical);  // an alias has the money of what it stands for
    likely.addLikelySubtags(status);
    const icu::Locale here((std::string(likely.getName()) + "@numbers=latn").c_str());
    const std::unique_ptr<icu::NumberFormat> money(icu::NumberFormat::createInstance(here, UNUM_CURRENCY, status));
    icu::UnicodeString amount;
    money->setMaximumFractionDigits(0);
    money->format(int32_t{1}, amount);
    EXPECT_TRUE(!own(VX_ENTRY_CURRENCY_SYMBOL) ||
                clean(utf32(amount)).find(text_of(data.currencySymbol)) != std::u32string::npos)
        << text(data.currencySymbol);

    if (identity.region[0] == 0) continue;
    const std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(icu::Locale(identity.canonical), status));
    const auto customs = block_of<VXLocaleCustoms>(data.block6);
    EXPECT_EQ(customs.firstWeekDay, calendar->getFirstDayOfWeek(status));
    EXPECT_EQ(customs.minimalDays, calendar->getMinimalDaysInFirstWeek());
    EXPECT_EQ(text(data.weekPattern1) == "W%U %Y", customs.firstWeekDay == 1);
    for (int32_t day = 1; day <= 7; ++day) {
      const bool behind = day >= customs.weekendFirst, before = day <= customs.weekendLast;
      const bool stored = customs.weekendFirst <= customs.weekendLast ? behind && before : behind || before;
      EXPECT_EQ(stored, calendar->getDayOfWeekType(static_cast<UCalendarDaysOfWeek>(day), status) != UCAL_WEEKDAY)
          << day;
    }
  }
}

// Of the blocks that the library does not read.
TEST(Record, BlocksWhereLocalesDiffer) {
  const auto serbian = vxtest::filled("sr_Latn_RS");
  const VXLocaleData& data = *serbian.data;
  const auto identity = block_of<VXLocaleIdentity>(data.block2);
  const auto texts = block_of<VXLocaleTexts>(data.block9);
  std::string entries;
  for (const std::string& entry : std::initializer_list<std::string>{
           identity.language, identity.script, identity.region, identity.languageTag, identity.canonical,
           identity.language3, identity.region3, text(data.block1), text(data.block3Names[1]), text(data.names14336[0]),
           text(texts.ownName), text(texts.cldrDatePatterns[3]), text(texts.quotation[0])}) {
    entries += entry + '|';
  }
  EXPECT_EQ(entries,
            "sr|Latn|RS|sr-Latn-RS|sr_Latn_RS|srp|SRB|Serbian (Latin, Serbia)|srpski dinar|prvi kvartal|srpski "
            "(latinica, Srbija)|d.M.yy.|„|");
  // Currency and its decimals, digits, calendar, numbering, right to left, clock, order of dates, paper, measures.
  const std::pair<const char*, const char*> cases[] = {
      {"en_US", "USD 2 0123456789 gregorian latn 0 12 1 279 1"},
      {"ar_EG", "EGP 2 ٠١٢٣٤٥٦٧٨٩ gregorian arab 1 12 0 297 0"},
      {"fa_IR", "IRR 0 ۰۱۲۳۴۵۶۷۸۹ persian arabext 1 24 2 297 0"},
      {"th_TH", "THB 2 ๐๑๒๓๔๕๖๗๘๙ buddhist latn 0 24 0 297 0"},
      {"ja_JP", "JPY 0 0123456789 gregorian latn 0 24 2 297 0"},
      {"eo", "XXX 2 0123456789 gregorian latn 0 24 2 297 0"},
      {"sh", "RSD 0 0123456789 gregorian latn 0 24 0 297 0"}};  // an alias of sr_Latn
  for (const auto& [name, wanted] : cases) {
    const auto locale = vxtest::filled(name);
    const VXLocaleData& record = *locale.data;
    const auto customs = block_of<VXLocaleCustoms>(record.block6);
    std::ostringstream told;
    told << text(record.block3Names[0]) << ' ' << block_of<VXLocaleCurrencyForm>(record.block3Rest).fractionDigits
         << ' ' << text(record.block4Name) << ' ' << customs.calendar << ' ' << customs.numbering << ' '
         << block_of<VXLocaleIdentity>(record.block2).rightToLeft << ' '
         << block_of<VXLocaleClock>(&record.word11848).hourCycle << ' ' << customs.dateOrder << ' '
         << customs.paperHeight << ' ' << customs.measurementSystem;
    EXPECT_EQ(told.str(), wanted) << name;
  }
}

// One symbol, a table of operations, C at the border.
TEST(Extension, FillsRefusesAndTells) {
  void* const library = dlopen(VXNLSLDB_FILE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  const auto* const description = static_cast<const VXHostExtension*>(dlsym(library, "vxhost_extension"));
  ASSERT_NE(description, nullptr);
  EXPECT_EQ(description->version, VXHOST_EXTENSION_VERSION);
  EXPECT_STREQ(description->name, "vxnlsldb");
  static int closed = 0;
  VXHostExtensionOwner owner{nullptr, [](VXHostExtensionOwner*) { ++closed; }};
  VXExtension* const extension = description->open(&owner);
  auto* const database = reinterpret_cast<VXLocaleDatabase*>(extension);
  const auto& ops = *reinterpret_cast<const VXHostLocaleDatabaseOps*>(database->ops);
  const auto record = std::make_unique<VXLocaleData>();
  const auto fill = [&](const std::u32string& name, int64_t length) {
    return ops.base.fill(database, record.get(), reinterpret_cast<const VXChar*>(name.data()), length);
  };
  EXPECT_EQ(fill(U"pl_PL", 5), 0u);
  EXPECT_TRUE(same(*record, *vxtest::filled("pl_PL").data));
  EXPECT_EQ(fill(U"pl_XX", 5), VX_W_FILL);
  for (const auto* const name : {U"pl/PL", U"pl.UT", U"../pl", U"pł_PL", U"pl PL"}) {
    EXPECT_EQ(fill(name, 5), VX_E_NOMATCH) << utf8(name);
  }
  for (const int64_t length : {INT64_MIN, int64_t{0}, int64_t{61}}) {
    EXPECT_EQ(fill(std::u32string(61, U'a'), length), VX_E_NOMATCH) << length;
  }
  EXPECT_EQ(ops.base.fill(database, record.get(), nullptr, 1), VX_E_NULL);
  EXPECT_EQ(ops.base.fill(database, nullptr, record->datePattern.text, 1), VX_E_NULL);

  std::string told;
  const auto hear = [](void* user, const char* a, const char* b, const char* c) {
    ((((*static_cast<std::string*>(user) += a) += ' ') += b) += ' ') += std::string(c).substr(0, 4);
    return 1;  // enough
  };
  EXPECT_EQ(ops.for_each_fallback(database, "vi_VN", hear, &told), 0u);
  vxtest::PlainLocale plain;
  EXPECT_EQ(ops.check(database, &plain.data, hear, &told), 0u);
  plain.data.pmMarker.length = plain.data.groupingPattern.length = 0;
  EXPECT_EQ(ops.check(database, &plain.data, hear, &told), 0u);
  EXPECT_EQ(told, "datePattern1 %d/%m/%Y R6: R3 amMarker empt");
  EXPECT_EQ(ops.check(database, nullptr, hear, &told), VX_E_NULL);
  EXPECT_EQ(ops.for_each_fallback(database, nullptr, hear, &told), VX_E_NULL);
  EXPECT_EQ(extension->ops->destroy(extension), 0u);
  EXPECT_EQ(closed, 1);
  dlclose(library);
}
