#include "host/locale_database/blocks.h"

#include <unicode/localpointer.h>
#include <unicode/ucurr.h>
#include <unicode/uloc.h>
#include <unicode/ulocdata.h>
#include <unicode/unumsys.h>
#include <unicode/ures.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "host/locale_database/cldr_pattern.h"
#include "host/locale_database/stored_pattern.h"
#include "host/locale_database/text.h"
#include "vxnls/locale_blocks.h"

namespace vxnlsldb {

namespace {

/// A block is composed as a structure of its own and then copied: in the record it is bytes.
template <class Block>
void put(const Block& block, void* at) {
  std::memcpy(at, &block, sizeof block);
}

template <size_t N>
void put_ascii(std::string_view text, char (&field)[N]) {
  std::memset(field, 0, N);
  text.copy(field, N - 1);
}

/// Calls one of ICU's functions that write a text and give its length; empty on any failure.
template <class Function, class... Arguments>
std::string ascii_of(Function function, Arguments... arguments) {
  char buffer[ULOC_FULLNAME_CAPACITY];
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = function(arguments..., buffer, static_cast<int32_t>(sizeof buffer), &status);
  return U_FAILURE(status) || length < 0 ? std::string() : std::string(buffer, static_cast<size_t>(length));
}

template <class Function>
std::u32string display(Function function, const char* name, const char* language) {
  UChar buffer[256];
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = function(name, language, buffer, 256, &status);
  return U_FAILURE(status) ? std::u32string() : utf32(icu::UnicodeString(buffer, std::min(length, 256)));
}

std::string with_likely_subtags(const char* name) {
  std::string full = ascii_of(uloc_addLikelySubtags, name);
  return full.empty() ? std::string(name) : full;
}

std::string region_of(const char* name) { return ascii_of(uloc_getCountry, with_likely_subtags(name).c_str()); }

icu::LocalUResourceBundlePointer region_data(const char* table, const std::string& region) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::LocalUResourceBundlePointer supplemental(ures_openDirect(nullptr, "supplementalData", &status));
  const icu::LocalUResourceBundlePointer regions(ures_getByKey(supplemental.getAlias(), table, nullptr, &status));
  icu::LocalUResourceBundlePointer found(ures_getByKey(regions.getAlias(), region.c_str(), nullptr, &status));
  if (U_SUCCESS(status)) return found;
  status = U_ZERO_ERROR;
  return icu::LocalUResourceBundlePointer(ures_getByKey(regions.getAlias(), "001", nullptr, &status));
}

/// First day, minimal days, the day and millisecond at which the weekend begins, and those at which it ends.
struct Week {
  int32_t first, minimal, weekend_day, weekend_at, working_day, working_at;
};

Week week_of(const std::string& region) {
  Week week{2, 1, 7, 0, 1, 86400000};
  const icu::LocalUResourceBundlePointer data = region_data("weekData", region);
  UErrorCode status = U_ZERO_ERROR;
  int32_t length = 0;
  const int32_t* const values = ures_getIntVector(data.getAlias(), &length, &status);
  if (U_SUCCESS(status) && length == 6) std::memcpy(&week, values, sizeof week);
  return week;
}

std::string preferred_calendar(const std::string& region) {
  const icu::LocalUResourceBundlePointer data = region_data("calendarPreferenceData", region);
  UErrorCode status = U_ZERO_ERROR;
  int32_t length = 0;
  const UChar* const first = ures_getStringByIndex(data.getAlias(), 0, &length, &status);
  return U_FAILURE(status) ? "gregorian" : utf8(utf32(icu::UnicodeString(first, length)));
}

VXChar single(std::u32string_view text) {
  const std::u32string sign = clean(text);
  return sign.size() == 1 ? sign[0] : 0;
}

void put_list(const std::vector<std::u32string>& texts, std::span<NLSName> names) {
  for (size_t i = 0; i < names.size() && i < texts.size(); ++i) store(names[i], clean(texts[i]));
}

using CurrencyUnits = std::array<UChar, 4>;  // NUL-terminated, as ICU wants it

CurrencyUnits units_of(const std::string& code) {
  CurrencyUnits units{};
  std::copy_n(code.begin(), std::min<size_t>(code.size(), 3), units.begin());
  return units;
}

std::u32string currency_text(const char* language, const std::string& code, UCurrNameStyle style) {
  UErrorCode status = U_ZERO_ERROR;
  int32_t length = 0;
  const CurrencyUnits units = units_of(code);  // what ICU gives back for a currency without a symbol
  const UChar* const text = ucurr_getName(units.data(), language, style, nullptr, &length, &status);
  return U_FAILURE(status) ? std::u32string() : utf32(icu::UnicodeString(text, length));
}

int32_t fraction_digits(const std::string& code, UCurrencyUsage usage) {
  UErrorCode status = U_ZERO_ERROR;
  const int32_t digits = ucurr_getDefaultFractionDigitsForUsage(units_of(code).data(), usage, &status);
  return U_FAILURE(status) ? 2 : digits;
}

VXLocaleIdentity identity(const char* name, const Cldr& cldr) {
  VXLocaleIdentity block{};
  const std::string full = with_likely_subtags(name);
  put_ascii(ascii_of(uloc_getLanguage, name), block.language);
  put_ascii(ascii_of(uloc_getScript, full.c_str()), block.script);
  put_ascii(ascii_of(uloc_getCountry, full.c_str()), block.region);
  put_ascii(ascii_of(uloc_getVariant, name), block.variant);
  UErrorCode status = U_ZERO_ERROR;
  char tag[ULOC_FULLNAME_CAPACITY];
  const int32_t length = uloc_toLanguageTag(name, tag, sizeof tag, false, &status);
  if (U_SUCCESS(status)) put_ascii({tag, static_cast<size_t>(length)}, block.languageTag);
  put_ascii(cldr.canonical(), block.canonical);
  put_ascii(uloc_getISO3Language(name), block.language3);
  put_ascii(uloc_getISO3Country(full.c_str()), block.region3);
  block.rightToLeft = uloc_isRightToLeft(name) ? 1 : 0;
  return block;
}

VXLocaleClock clock(const Cldr& cldr) {
  const std::vector<std::u32string> patterns = cldr.list({"calendar", "gregorian", "DateTimePatterns"});
  const Clock own = clock_of(patterns.size() > 2 ? std::u32string_view(patterns[2]) : U"");
  return {own.twelve_hours ? 12 : 24, own.day_period_first ? 1 : 0};
}

int32_t date_order(const VXLocaleData& record) {
  const std::optional<Pattern> main = take_apart(text_of(record.datePattern));
  if (!main) return 3;
  const int day = position(*main, 'd'), month = position(*main, 'm'), year = position(*main, 'Y');
  if (day < month && month < year) return 0;
  if (month < day && day < year) return 1;
  if (year < month && month < day) return 2;
  return 3;
}

VXLocaleCustoms customs(const char* name, const Cldr& cldr, const VXLocaleData& record) {
  VXLocaleCustoms block{};
  const std::string region = region_of(name);
  const Week week = week_of(region);
  block.firstWeekDay = week.first;
  block.minimalDays = week.minimal;
  block.weekendFirst = week.weekend_day;
  // A weekend that ends at the first millisecond of a day ends with the day before.
  block.weekendLast = week.working_at == 0 ? (week.working_day + 5) % 7 + 1 : week.working_day;
  UErrorCode status = U_ZERO_ERROR;
  const std::string full = with_likely_subtags(name);
  block.measurementSystem = ulocdata_getMeasurementSystem(full.c_str(), &status);
  ulocdata_getPaperSize(full.c_str(), &block.paperHeight, &block.paperWidth, &status);
  block.dateOrder = date_order(record);
  put_ascii(preferred_calendar(region), block.calendar);
  put_ascii(utf8(cldr.text({"NumberElements", "default"})), block.numbering);
  return block;
}

std::u32string native_digits(const Cldr& cldr) {
  UErrorCode status = U_ZERO_ERROR;
  const std::string numbering = utf8(cldr.text({"NumberElements", "native"}));
  const icu::LocalUNumberingSystemPointer system(unumsys_openByName(numbering.c_str(), &status));
  if (U_FAILURE(status) || unumsys_isAlgorithmic(system.getAlias()) || unumsys_getRadix(system.getAlias()) != 10) {
    return {};
  }
  UChar digits[32];
  const int32_t length = unumsys_getDescription(system.getAlias(), digits, 32, &status);
  return U_FAILURE(status) ? std::u32string() : utf32(icu::UnicodeString(digits, length));
}

VXLocaleNumberForm number_form(const Cldr& cldr) {
  VXLocaleNumberForm block{};
  const auto symbol = [&](const char* which) { return cldr.text({"NumberElements", "latn", "symbols", which}); };
  store(block.decimalPattern, cldr.text({"NumberElements", "latn", "patterns", "decimalFormat"}));
  store(block.percentPattern, cldr.text({"NumberElements", "latn", "patterns", "percentFormat"}));
  store(block.exponent, symbol("exponential"));
  store(block.notANumber, symbol("nan"));
  block.plusSign = single(symbol("plusSign"));
  block.perMilleSign = single(symbol("perMille"));
  block.infinity = single(symbol("infinity"));
  const std::u32string digits = cldr.text({"NumberElements", "minimumGroupingDigits"});
  block.minimumGroupingDigits = digits.empty() ? 1 : static_cast<int32_t>(digits[0] - U'0');
  return block;
}

VXLocaleCurrencyForm currency_form(const std::string& code, const Cldr& cldr, const VXLocaleData& record) {
  VXLocaleCurrencyForm block{};
  store(block.pattern, cldr.text({"NumberElements", "latn", "patterns", "currencyFormat"}));
  block.fractionDigits = fraction_digits(code, UCURR_USAGE_STANDARD);
  block.cashFractionDigits = fraction_digits(code, UCURR_USAGE_CASH);
  const VXChar decimal = single(cldr.text({"NumberElements", "latn", "symbols", "currencyDecimal"}));
  const VXChar group = single(cldr.text({"NumberElements", "latn", "symbols", "currencyGroup"}));
  block.decimalPoint = decimal != 0 ? decimal : record.decimalPoint;
  block.groupSeparator = group != 0 ? group : record.groupSeparator;
  return block;
}

void put_texts(const char* name, const Cldr& cldr, VXLocaleTexts& block) {
  const std::string own = cldr.canonical();
  store(block.ownName, clean(display(uloc_getDisplayName, name, own.c_str())));
  store(block.ownLanguage, clean(display(uloc_getDisplayLanguage, name, own.c_str())));
  store(block.ownScript, clean(display(uloc_getDisplayScript, name, own.c_str())));
  store(block.ownRegion, clean(display(uloc_getDisplayCountry, name, own.c_str())));
  store(block.englishLanguage, display(uloc_getDisplayLanguage, name, "en"));
  store(block.englishScript, display(uloc_getDisplayScript, name, "en"));
  store(block.englishRegion, display(uloc_getDisplayCountry, name, "en"));
  const struct {
    const char *list, *width;
    std::span<NLSName> names;
  } standalone[] = {
      {"monthNames", "wide", block.standaloneMonths},       {"monthNames", "abbreviated", block.standaloneAltMonths},
      {"monthNames", "narrow", block.narrowMonths},         {"dayNames", "wide", block.standaloneDays},
      {"dayNames", "abbreviated", block.standaloneAltDays}, {"dayNames", "narrow", block.narrowDays},
      {"quarters", "wide", block.standaloneQuarters},
  };
  for (const auto& row : standalone) {
    put_list(cldr.list({"calendar", "gregorian", row.list, "stand-alone", row.width}), row.names);
  }
  put_list(cldr.list({"calendar", "gregorian", "eras", "wide"}), block.eras);
  put_list(cldr.list({"calendar", "gregorian", "eras", "abbreviated"}), block.altEras);
  const std::vector<std::u32string> patterns = cldr.list({"calendar", "gregorian", "DateTimePatterns"});
  for (size_t i = 0; i < 4 && patterns.size() >= 8; ++i) {
    store(block.cldrTimePatterns[i], patterns[i]);
    store(block.cldrDatePatterns[i], patterns[i + 4]);
  }
  const char* const quotation[] = {"quotationStart", "quotationEnd", "alternateQuotationStart",
                                   "alternateQuotationEnd"};
  for (size_t i = 0; i < 4; ++i) store(block.quotation[i], cldr.text({"delimiters", quotation[i]}));
}

}  // namespace

std::string currency_code(const char* name) {
  UChar code[4];
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = ucurr_forLocale(with_likely_subtags(name).c_str(), code, 4, &status);
  return U_FAILURE(status) || length != 3 ? "XXX" : utf8(utf32(icu::UnicodeString(code, length)));
}

std::u32string currency_symbol(const char* name, const Cldr& cldr) {
  return currency_text(cldr.canonical().c_str(), currency_code(name), UCURR_SYMBOL_NAME);
}

int32_t first_week_day(const char* name) { return week_of(region_of(name)).first; }

void fill_blocks(const char* name, const Cldr& cldr, VXLocaleData& record) {
  put(identity(name, cldr), record.block2);
  put(clock(cldr), &record.word11848);
  put(VXLocaleSigns{single(cldr.text({"NumberElements", "latn", "symbols", "minusSign"})),
                    single(cldr.text({"NumberElements", "latn", "symbols", "percentSign"}))},
      &record.word15832);
  put_list(cldr.list({"calendar", "gregorian", "quarters", "format", "wide"}), record.names14336);
  store(record.block4Name, native_digits(cldr));
  const std::string code = currency_code(name), language = cldr.canonical();
  store(record.block3Names[0], from_ascii(code));
  store(record.block3Names[1], clean(currency_text(language.c_str(), code, UCURR_LONG_NAME)));
  store(record.block3Names[2], clean(currency_text(language.c_str(), code, UCURR_NARROW_SYMBOL_NAME)));
  put(currency_form(code, cldr, record), record.block3Rest);
  put(customs(name, cldr, record), record.block6);
  store(record.block1, display(uloc_getDisplayName, name, "en"));
  put(number_form(cldr), record.block8);
  VXLocaleTexts texts{};
  put_texts(name, cldr, texts);
  put(texts, record.block9);
}

int cldr_version() {
  UVersionInfo version = {};
  UErrorCode status = U_ZERO_ERROR;
  ulocdata_getCLDRVersion(version, &status);
  return version[0];
}

}  // namespace vxnlsldb
