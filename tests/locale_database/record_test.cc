// Records as a whole: every byte defined, names and numbers as ICU's own formatters have them.
#include <gtest/gtest.h>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/gregocal.h>

#include <cstring>
#include <span>
#include <thread>

#include "host/locale_database/text.h"
#include "tests/locale_database/every_locale.h"
#include "vxnls/locale_blocks.h"

using namespace vxnlsldb;

TEST(Record, EveryByteIsDefined) {
  auto a = std::make_unique<VXLocaleData>(), b = std::make_unique<VXLocaleData>();
  for (const auto& locale : vxtest::every_locale()) {
    std::memset(static_cast<void*>(a.get()), 0xA5, sizeof *a);
    std::memset(static_cast<void*>(b.get()), 0x5A, sizeof *b);
    fill_record(locale.name.c_str(), a.get(), nullptr);
    fill_record(locale.name.c_str(), b.get(), nullptr);
    EXPECT_EQ(std::memcmp(a.get(), b.get(), sizeof *a), 0) << locale.name;
    EXPECT_EQ(std::memcmp(a.get(), locale.data.get(), sizeof *a), 0) << locale.name;
  }
}

TEST(Record, TheLocaleOfTheProcessDoesNotMatter) {
  const std::string before = uloc_getDefault();
  std::vector<std::string> names = vxtest::available_locales();
  names.insert(names.end(), {"root", "qqq", "qqq_JP", "de_QQ"});
  for (const std::string& name : names) {
    UErrorCode status = U_ZERO_ERROR;
    uloc_setDefault("en_US", &status);
    const auto english = vxtest::filled(name);
    uloc_setDefault("ja_JP", &status);
    const auto japanese = vxtest::filled(name);
    EXPECT_EQ(std::memcmp(english.data.get(), japanese.data.get(), sizeof *english.data), 0) << name;
    uloc_setDefault(before.c_str(), &status);
  }
}

TEST(Record, ThreadsFillTheSame) {
  std::vector<std::thread> threads;
  std::vector<int> differences(4);
  for (int& different : differences) {
    threads.emplace_back([&different] {
      auto record = std::make_unique<VXLocaleData>();
      for (size_t i = 0; i < vxtest::every_locale().size(); i += 8) {
        const auto& locale = vxtest::every_locale()[i];
        fill_record(locale.name.c_str(), record.get(), nullptr);
        different += std::memcmp(record.get(), locale.data.get(), sizeof *record) != 0;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(differences, std::vector<int>(4, 0));
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
    SCOPED_TRACE(c.name);
    const auto got = vxtest::filled(c.name), like = vxtest::filled(c.like);
    EXPECT_EQ(got.status, c.status);
    EXPECT_EQ(utf8(text_of(got.data->localeName)), c.name);
    const size_t patterns = offsetof(VXLocaleData, quarterPattern2), days = offsetof(VXLocaleData, dayNames);
    EXPECT_EQ(std::memcmp(got.data->dayNames, like.data->dayNames, patterns - days), 0);
  }
}

namespace {

void expect_list(std::span<const NLSName> stored, const icu::UnicodeString* icu_names, int32_t count,
                 const std::string& what) {
  ASSERT_EQ(static_cast<size_t>(count), stored.size());
  for (size_t i = 0; i < stored.size(); ++i) {
    EXPECT_EQ(utf8(text_of(stored[i])), utf8(clean(utf32(icu_names[i])))) << what << ' ' << i;
  }
}

bool fell_back(const vxtest::FilledLocale& locale, uint32_t entry) {
  VXLocaleDataVersion version;
  std::memcpy(&version, &locale.data->block7, sizeof version);
  return (version.fallbacks & entry) != 0;
}

}  // namespace

TEST(Record, NamesAreIcus) {
  using Symbols = icu::DateFormatSymbols;
  for (const auto& locale : vxtest::every_locale()) {
    UErrorCode status = U_ZERO_ERROR;
    const Symbols symbols(icu::Locale(locale.name.c_str()), status);
    ASSERT_TRUE(U_SUCCESS(status));
    const VXLocaleData& data = *locale.data;
    int32_t count = 0;
    const auto weekdays = [&](Symbols::DtWidthType width) {
      const icu::UnicodeString* const names = symbols.getWeekdays(count, Symbols::FORMAT, width);
      --count;  // the first one is empty: ICU counts from 1
      return names + 1;
    };
    const auto months = [&](Symbols::DtWidthType width) { return symbols.getMonths(count, Symbols::FORMAT, width); };
    const icu::UnicodeString* names = weekdays(Symbols::WIDE);
    expect_list(data.dayNames, names, count, locale.name);
    names = weekdays(Symbols::ABBREVIATED);
    expect_list(data.altDayNames, names, count, locale.name);
    names = months(Symbols::WIDE);
    expect_list(data.monthNames, names, count, locale.name);
    names = months(Symbols::ABBREVIATED);
    expect_list(data.altMonthNames, names, count, locale.name);
    if (!fell_back(locale, VX_ENTRY_QUARTER_NAMES)) {
      names = symbols.getQuarters(count, Symbols::FORMAT, Symbols::ABBREVIATED);
      expect_list(data.quarterNames, names, count, locale.name);
    }
    names = symbols.getQuarters(count, Symbols::FORMAT, Symbols::WIDE);
    expect_list(data.names14336, names, count, locale.name);
    if (!fell_back(locale, VX_ENTRY_MARKERS)) {
      names = symbols.getAmPmStrings(count);
      expect_list({&data.amMarker, 2}, names, count, locale.name);
    }
  }
}

TEST(Record, NumbersAreIcus) {
  for (const auto& locale : vxtest::every_locale()) {
    SCOPED_TRACE(locale.name);
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale latin((locale.name + "@numbers=latn").c_str());
    const std::unique_ptr<icu::NumberFormat> format(icu::NumberFormat::createInstance(latin, UNUM_DECIMAL, status));
    const auto* const decimal = dynamic_cast<const icu::DecimalFormat*>(format.get());
    ASSERT_NE(decimal, nullptr);
    const icu::DecimalFormatSymbols& symbols = *decimal->getDecimalFormatSymbols();
    const auto symbol = [&](icu::DecimalFormatSymbols::ENumberFormatSymbol which) {
      const std::u32string text = utf32(symbols.getConstSymbol(which));
      return text == U"\u202F" ? std::u32string(U"\u00A0") : text;
    };
    const VXLocaleData& data = *locale.data;
    EXPECT_EQ(std::u32string(1, data.decimalPoint), symbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol));
    EXPECT_EQ(std::u32string(1, data.groupSeparator), symbol(icu::DecimalFormatSymbols::kGroupingSeparatorSymbol));
    if (!fell_back(locale, VX_ENTRY_GROUPING_PATTERN)) {
      const int32_t first = decimal->getGroupingSize(), second = decimal->getSecondaryGroupingSize();
      const std::string sizes =
          second == 0 || second == first ? std::to_string(first) : std::to_string(first) + ';' + std::to_string(second);
      EXPECT_EQ(utf8(text_of(data.groupingPattern)), sizes);
    }
    VXLocaleIdentity identity;
    std::memcpy(&identity, data.block2, sizeof identity);
    if (fell_back(locale, VX_ENTRY_CURRENCY_SYMBOL)) continue;
    icu::Locale likely(identity.canonical);  // an alias has the money of what it stands for
    likely.addLikelySubtags(status);
    const std::unique_ptr<icu::NumberFormat> money(icu::NumberFormat::createInstance(
        icu::Locale((std::string(likely.getName()) + "@numbers=latn").c_str()), UNUM_CURRENCY, status));
    icu::UnicodeString text;
    money->setMaximumFractionDigits(0);
    money->format(int32_t{1}, text);
    EXPECT_NE(clean(utf32(text)).find(text_of(data.currencySymbol)), std::u32string::npos)
        << utf8(text_of(data.currencySymbol)) << " in " << utf8(utf32(text));
  }
}
