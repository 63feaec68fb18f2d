// Records as a whole: every byte defined; names, numbers, patterns and blocks as ICU's own formatters have them; and
// the extension as a host meets it.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/regex.h>
#include <unicode/smpdtfmt.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <span>

#include "host/extension.h"
#include "host/locale_database/text.h"
#include "host/locale_database_ops.h"
#include "tests/locale_database/every_locale.h"
#include "tests/support/plain_locale.h"
#include "vxnls/locale_blocks.h"

using namespace vxnlsldb;
using icu::DateFormat;
using icu::SimpleDateFormat;
using icu::UnicodeString;
using vxtest::FilledLocale;

namespace {

template <class Block>
Block block_of(const void* at) {
  Block block;
  std::memcpy(&block, at, sizeof block);
  return block;
}

std::string text(const NLSName& name) { return utf8(text_of(name)); }

bool same(const VXLocaleData& a, const VXLocaleData& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Once more, while the process lives in another locale, over memory full of rubbish.
TEST(Record, EveryByteIsDefinedByTheNameAlone) {
  const std::string before = uloc_getDefault();
  UErrorCode status = U_ZERO_ERROR;
  const auto record = std::make_unique<VXLocaleData>();
  const auto expect_again = [&](const FilledLocale& locale) {
    uloc_setDefault("ja_JP", &status);
    std::memset(static_cast<void*>(record.get()), 0xA5, sizeof *record);
    fill_record(locale.name.c_str(), record.get(), nullptr);
    uloc_setDefault(before.c_str(), &status);
    EXPECT_TRUE(same(*record, *locale.data)) << locale.name;
  };
  for (const auto& locale : vxtest::every_locale()) expect_again(locale);
  for (const char* const name : {"root", "qqq", "qqq_JP", "de_QQ"}) expect_again(FilledLocale(name));
}

TEST(Record, LocalesWithoutDataOfTheirOwn) {
  const struct {
    const char *name, *like;
    VXStatus status;
  } cases[] = {{"root", "root", 0},        {"zh_TW", "zh_Hant_TW", 0},  // an alias is data
               {"de_QQ", "de", VX_W_FILL}, {"de_Latn_DE_BERLIN", "de", VX_W_FILL},
               {"qqq", "root", VX_W_FILL}, {"qqq_QQ", "root", VX_W_FILL}};  // never the locale that the process runs in
  for (const auto& c : cases) {
    const FilledLocale got(c.name), like(c.like);
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
    EXPECT_TRUE(version.layout == 1 && version.cldr >= 42 && (version.fallbacks == 0) == locale.fallbacks.empty());
    const auto own = [&](uint32_t entry) { return (version.fallbacks & entry) == 0; };
    UErrorCode status = U_ZERO_ERROR;
    const Dates dates(icu::Locale(locale.name.c_str()), status);
    const auto expect_names = [](std::span<const NLSName> stored, const UnicodeString* names) {
      for (const NLSName& name : stored) EXPECT_EQ(text(name), utf8(clean(utf32(names[&name - stored.data()]))));
    };
    int32_t n = 0;
    expect_names(data.dayNames, dates.getWeekdays(n, Dates::FORMAT, Dates::WIDE) + 1);  // ICU counts days from 1
    expect_names(data.altDayNames, dates.getWeekdays(n, Dates::FORMAT, Dates::ABBREVIATED) + 1);
    expect_names(data.monthNames, dates.getMonths(n, Dates::FORMAT, Dates::WIDE));
    expect_names(data.altMonthNames, dates.getMonths(n, Dates::FORMAT, Dates::ABBREVIATED));
    expect_names(data.names14336, dates.getQuarters(n, Dates::FORMAT, Dates::WIDE));
    const auto* const quarters = dates.getQuarters(n, Dates::FORMAT, Dates::ABBREVIATED);
    if (own(VX_ENTRY_QUARTER_NAMES)) expect_names(data.quarterNames, quarters);
    if (own(VX_ENTRY_MARKERS)) expect_names({&data.amMarker, 2}, dates.getAmPmStrings(n));

    const icu::Locale latin((locale.name + "@numbers=latn").c_str());
    const std::unique_ptr<icu::NumberFormat> format(icu::NumberFormat::createInstance(latin, UNUM_DECIMAL, status));
    const auto& decimal = dynamic_cast<const icu::DecimalFormat&>(*format);
    for (const auto& [stored, which] : {std::pair(data.decimalPoint, Numbers::kDecimalSeparatorSymbol),
                                        std::pair(data.groupSeparator, Numbers::kGroupingSeparatorSymbol)}) {
      const std::u32string sign = utf32(decimal.getDecimalFormatSymbols()->getConstSymbol(which));
      EXPECT_EQ(std::u32string(1, stored), sign == U"\u202F" ? U"\u00A0" : sign);
    }
    const int32_t first = decimal.getGroupingSize(), second = decimal.getSecondaryGroupingSize();
    const bool alike = second == 0 || second == first;
    const std::string sizes = std::to_string(first) + (alike ? "" : ';' + std::to_string(second));
    EXPECT_TRUE(!own(VX_ENTRY_GROUPING_PATTERN) || text(data.groupingPattern) == sizes);

    const auto identity = block_of<VXLocaleIdentity>(data.block2);
    icu::Locale likely(identity.canonical);  // an alias has the money of what it stands for
    likely.addLikelySubtags(status);
    const icu::Locale here((std::string(likely.getName()) + "@numbers=latn").c_str());
    const std::unique_ptr<icu::NumberFormat> money(icu::NumberFormat::createInstance(here, UNUM_CURRENCY, status));
    UnicodeString amount;
    money->setMaximumFractionDigits(0);
    const std::u32string one = clean(utf32(money->format(int32_t{1}, amount)));
    EXPECT_TRUE(!own(VX_ENTRY_CURRENCY_SYMBOL) || one.find(text_of(data.currencySymbol)) != one.npos);

    if (identity.region[0] == 0) continue;
    const std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(identity.canonical, status));
    const auto customs = block_of<VXLocaleCustoms>(data.block6);
    EXPECT_EQ(customs.firstWeekDay, calendar->getFirstDayOfWeek(status));
    EXPECT_EQ(customs.minimalDays, calendar->getMinimalDaysInFirstWeek());
    EXPECT_EQ(text(data.weekPattern1) == "W%U %Y", customs.firstWeekDay == 1);
    for (int32_t day = 1; day <= 7; ++day) {
      const bool behind = day >= customs.weekendFirst, before = day <= customs.weekendLast;
      const bool stored = customs.weekendFirst <= customs.weekendLast ? behind && before : behind || before;
      EXPECT_EQ(stored, calendar->getDayOfWeekType(static_cast<UCalendarDaysOfWeek>(day), status) != UCAL_WEEKDAY);
    }
  }
}

/// A field of ICU's pattern that the mapping changes on purpose.
struct Adjustment {
  const char16_t *field, *becomes;
  const char* reason;
};
constexpr Adjustment main_date[] = {{u"yy", u"y", "four-digit year"}, {u"M", u"MM", "padded"}, {u"d", u"dd", "padded"}};
constexpr Adjustment other_date[] = {{u"M", u"MM", "month always in two digits"}};
constexpr Adjustment main_time[] = {{u"m", u"mm", "R2: padded"}, {u"s", u"ss", "R2: padded"}};

struct Entry {
  const char* name;
  const NLSName VXLocaleData::*pattern;
  DateFormat::EStyle date, time;
  std::span<const Adjustment> adjustments;
  const char* skeleton;  // of the locale's 24-hour clock, where the entry falls back to it
};
const Entry entries[] = {
    {"datePattern", &VXLocaleData::datePattern, DateFormat::kShort, DateFormat::kNone, main_date, ""},
    {"datePattern1", &VXLocaleData::datePattern1, DateFormat::kMedium, DateFormat::kNone, other_date, ""},
    {"datePattern2", &VXLocaleData::datePattern2, DateFormat::kLong, DateFormat::kNone, other_date, ""},
    {"timePattern", &VXLocaleData::timePattern, DateFormat::kNone, DateFormat::kMedium, main_time, "Hms"},
    {"timePattern1", &VXLocaleData::timePattern1, DateFormat::kNone, DateFormat::kShort, {}, "Hm"},
    {"datetimePattern", &VXLocaleData::datetimePattern, DateFormat::kShort, DateFormat::kMedium, {}, ""},
};

SimpleDateFormat in_utc(SimpleDateFormat format) {
  format.adoptTimeZone(icu::TimeZone::getGMT()->clone());
  return format;
}
SimpleDateFormat formatter(const std::string& locale, const Entry& entry) {
  const std::unique_ptr<DateFormat> styled(
      DateFormat::createDateTimeInstance(entry.date, entry.time, icu::Locale(locale.c_str())));
  return in_utc(dynamic_cast<SimpleDateFormat&>(*styled));
}

/// The pattern that ICU would need to write what the record writes, and why it is another than ICU's own.
UnicodeString needed_pattern(const FilledLocale& locale, const std::string& gregorian, const Entry& entry,
                             std::string& reasons) {
  UErrorCode status = U_ZERO_ERROR;
  UnicodeString pattern;
  formatter(gregorian, entry).toPattern(pattern);
  if (entry.date != DateFormat::kNone && entry.time != DateFormat::kNone) {
    const auto date = needed_pattern(locale, gregorian, entries[0], reasons);
    UnicodeString icus_date, icus_time;
    formatter(gregorian, entries[0]).toPattern(icus_date), formatter(gregorian, entries[3]).toPattern(icus_time);
    if (pattern != icus_date + u' ' + icus_time) reasons += "; R5: joined by one blank";
    return date + u' ' + needed_pattern(locale, gregorian, entries[3], reasons);
  }
  std::string told;  // of another entry
  for (const auto& [name, used, reason] : locale.fallbacks) {
    if (name != entry.name || !reason.starts_with('R') || reason.starts_with("R2")) continue;
    reasons += "; " + reason.substr(0, reason.find("; CLDR has"));
    if (entry.date != DateFormat::kNone) return needed_pattern(locale, gregorian, entries[0], told);
    const std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(icu::Locale(gregorian.c_str()), status));
    pattern = generator->getPatternForSkeleton(UnicodeString(entry.skeleton));
  }
  for (const auto& [field, becomes, reason] : entry.adjustments) {
    const UnicodeString letter_or_quote(u"[A-Za-z']"), before = pattern;
    icu::RegexMatcher alone(u"(?<!" + letter_or_quote + u")" + field + u"(?!" + letter_or_quote + u")", 0, status);
    alone.reset(before);
    pattern = alone.replaceAll(becomes, status);
    if (pattern != before && reasons.find(reason) == reasons.npos) reasons += std::string("; ") + reason;
  }
  return pattern;
}

// What the record's patterns write is what ICU's formatters of the same styles write, or the reasons for the difference
// account for it whole. The document has the first difference of each pattern of widely used locales.
TEST(Record, PatternsAreIcusOrTheDifferenceHasItsReasons) {
  using namespace std::chrono;
  vxtest::PlainLocale plain;
  const auto by = [](const SimpleDateFormat& format, double moment) {
    UnicodeString text;
    std::string bytes;
    return format.format(moment * 1000, text).toUTF8String(bytes);
  };
  const auto cleaned = [](const std::string& text) { return utf8(clean(utf32(UnicodeString::fromUTF8(text)))); };
  const std::string_view in_document =
      "ar_EG cs_CZ de_DE en_GB en_US es_ES fa_IR fr_CA fr_FR he_IL hi_IN it_IT "
      "ja_JP ko_KR nl_NL pl_PL pt_BR ru_RU sv_SE th_TH tr_TR vi_VN zh_CN zh_TW";
  std::string table;
  for (const auto& locale : vxtest::every_locale()) {
    plain.data = *locale.data;
    const std::string gregorian = locale.name + "@calendar=gregorian", plainest = gregorian + ";numbers=latn";
    for (const Entry& entry : entries) {
      UErrorCode status = U_ZERO_ERROR;
      std::string reasons, row;
      const UnicodeString pattern = needed_pattern(locale, gregorian, entry, reasons);
      const SimpleDateFormat own = formatter(locale.name, entry), in_calendar = formatter(gregorian, entry),
                             in_digits = formatter(plainest, entry),
                             needed = in_utc({pattern, icu::Locale(plainest.c_str()), status});
      const std::string why[] = {"; Gregorian calendar", "; ASCII digits", "; R9: plain blanks, no marks", reasons};
      bool applies[4] = {};
      plain.data.datetimePattern = (*locale.data).*entry.pattern;
      for (int i = 0; i < 24; ++i) {  // every month, both halves of the day, numbers of one and two digits
        const sys_seconds at = i < 12 ? sys_days{2021y / (i + 1) / 5} + hours{i} + seconds{307}
                                      : sys_days{2000y / (i - 11) / 23} + hours{i} + seconds{2459};
        const auto moment = static_cast<double>(at.time_since_epoch().count());
        uint8_t buffer[512];
        int64_t length = 0;
        EXPECT_EQ(NLSDatetimeFormatU(plain.get(), 0, buffer, 512, &length, moment + 3653.0 * 86400), 0u);
        const std::string record(buffer, buffer + length), icu = by(own, moment), last = cleaned(by(needed, moment));
        ASSERT_EQ(last, record) << locale.name << ' ' << entry.name;
        if (icu == record) continue;
        const std::string in_ascii = by(in_digits, moment);
        const std::string steps[] = {icu, by(in_calendar, moment), in_ascii, cleaned(in_ascii), last};
        for (int step = 0; step < 4; ++step) applies[step] |= steps[step] != steps[step + 1];
        if (row.empty()) row = "| " + locale.name + " | `" + entry.name + "` | " + icu + " | " + record + " | ";
      }
      if (row.empty()) continue;
      std::string all;
      for (int step = 0; step < 4; ++step) all += applies[step] ? why[step] : "";
      ASSERT_NE(all, "") << row;
      if (locale.name.size() == 5 && in_document.find(locale.name) != in_document.npos)
        table += row + all.substr(2) + " |\n";
    }
  }
  std::ifstream file(VXNLS_LOCALE_DOCUMENT);
  const std::string document{std::istreambuf_iterator<char>(file), {}};
  if (document.find("measured with ICU " U_ICU_VERSION ",") == document.npos) GTEST_SKIP() << "with another ICU";
  EXPECT_NE(document.find("|---|---|---|---|---|\n" + table + '\n'), document.npos) << "to be pasted there:\n" << table;
}

// Of the blocks that the library does not read.
TEST(Record, BlocksWhereLocalesDiffer) {
  const std::pair<const char*, const char*> cases[] = {
      {"sr_Latn_RS",
       "sr|Latn|RS|sr-Latn-RS|sr_Latn_RS|srp|SRB|Serbian (Latin, Serbia)|RSD|srpski dinar|0123456789|"
       "srpski (latinica, Srbija)|d.M.yy.|„|gregorian|latn|0|0|24|0|297|0"},
      {"en_US",
       "en|Latn|US|en-US|en_US|eng|USA|English (United States)|USD|US Dollar|0123456789|"
       "English (United States)|M/d/yy|“|gregorian|latn|2|0|12|1|279|1"},
      {"fa_IR",
       "fa|Arab|IR|fa-IR|fa_IR|fas|IRN|Persian (Iran)|IRR|ریال ایران|۰۱۲۳۴۵۶۷۸۹|فارسی (ایران)|y/M/d|«|"
       "persian|arabext|0|1|24|2|297|0"},
      {"eo", "eo|Latn|001|eo|eo|epo||Esperanto|XXX|XXX|0123456789|esperanto|yy-MM-dd|“|gregorian|latn|2|0|24|2|297|0"}};
  for (const auto& [name, wanted] : cases) {
    const FilledLocale locale(name);
    const VXLocaleData& data = *locale.data;
    const auto identity = block_of<VXLocaleIdentity>(data.block2);
    const auto texts = block_of<VXLocaleTexts>(data.block9);
    const auto customs = block_of<VXLocaleCustoms>(data.block6);
    std::ostringstream told;
    for (const char* const code : {identity.language, identity.script, identity.region, identity.languageTag,
                                   identity.canonical, identity.language3, identity.region3})
      told << code << '|';
    for (const NLSName& entry : {data.block1, data.block3Names[0], data.block3Names[1], data.block4Name, texts.ownName,
                                 texts.cldrDatePatterns[3], texts.quotation[0]})
      told << text(entry) << '|';
    told << customs.calendar << '|' << customs.numbering << '|'
         << block_of<VXLocaleCurrencyForm>(data.block3Rest).fractionDigits << '|' << identity.rightToLeft << '|'
         << block_of<VXLocaleClock>(&data.word11848).hourCycle << '|' << customs.dateOrder << '|' << customs.paperHeight
         << '|' << customs.measurementSystem;
    EXPECT_EQ(told.str(), wanted);
  }
}

// One symbol, a table of operations, C at the border.
TEST(Extension, FillsAndRefuses) {
  void* const library = dlopen(VXNLSLDB_FILE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  const auto* const description = static_cast<const VXHostExtension*>(dlsym(library, "vxhost_extension"));
  ASSERT_TRUE(description != nullptr && description->version == VXHOST_EXTENSION_VERSION);
  VXHostExtensionOwner owner{nullptr, [](VXHostExtensionOwner*) {}};
  VXExtension* const extension = description->open(&owner);
  auto* const database = reinterpret_cast<VXLocaleDatabase*>(extension);
  const auto& ops = *reinterpret_cast<const VXHostLocaleDatabaseOps*>(database->ops);
  const auto record = std::make_unique<VXLocaleData>();
  const auto fill = [&](const std::u32string& name, int64_t length) {
    return ops.base.fill(database, record.get(), reinterpret_cast<const VXChar*>(name.data()), length);
  };
  EXPECT_EQ(fill(U"pl_PL", 5), 0u);
  EXPECT_TRUE(same(*record, *FilledLocale("pl_PL").data));
  EXPECT_EQ(fill(U"pl_XX", 5), VX_W_FILL);
  for (const auto* const name : {U"pl/PL", U"pl.UT", U"pł_PL"}) EXPECT_EQ(fill(name, 5), VX_E_NOMATCH);
  for (const int64_t length : {INT64_MIN, int64_t{0}, int64_t{61}}) {
    EXPECT_EQ(fill(std::u32string(61, U'a'), length), VX_E_NOMATCH) << length;
  }
  EXPECT_EQ(ops.base.fill(database, record.get(), nullptr, 1), VX_E_NULL);
  EXPECT_EQ(ops.base.fill(database, nullptr, record->datePattern.text, 1), VX_E_NULL);
  EXPECT_EQ(ops.check(database, nullptr, nullptr, nullptr), VX_E_NULL);
  EXPECT_EQ(ops.for_each_fallback(database, nullptr, nullptr, nullptr), VX_E_NULL);
  EXPECT_EQ(extension->ops->destroy(extension), 0u);
  dlclose(library);
}

}  // namespace
