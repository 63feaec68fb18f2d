// What the records of all locales hold beside what ICU's own formatters write: fails on a difference without a reason,
// and writes the parts of docs/locale-data.md that come from a run over all locales, or checks that they are its own.
//
//   locale_data_report DOCUMENT           rewrites the parts in place
//   locale_data_report --check DOCUMENT   0: up to date; 1: not; 77: the document was written with another ICU
#include <unicode/dtptngen.h>
#include <unicode/regex.h>
#include <unicode/smpdtfmt.h>
#include <unicode/uversion.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <span>
#include <stdexcept>

#include "host/locale_database/blocks.h"
#include "host/locale_database/text.h"
#include "tests/locale_database/every_locale.h"
#include "tests/support/plain_locale.h"
#include "vxnls/locale_blocks.h"

namespace {

using icu::DateFormat;
using icu::SimpleDateFormat;
using icu::UnicodeString;
using vxtest::FilledLocale;

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what); }

std::string joined(const std::vector<std::string>& texts, const char* between) {
  std::string all;
  for (const std::string& text : texts) all += (all.empty() ? "" : between) + text;
  return all;
}

std::string code(const std::string& text) { return '`' + text + '`'; }

/// In seconds since 1970: every month, both halves of the day, numbers of one and two digits.
std::vector<double> moments() {
  using namespace std::chrono;
  std::vector<double> all;
  for (int m = 1; m <= 12; ++m) {
    const sys_days early = year{2021} / m / 5, late = year{2000} / m / 23;
    for (const sys_seconds at : {early + hours{m - 1} + seconds{307}, late + hours{m + 11} + seconds{2459}}) {
      all.push_back(static_cast<double>(at.time_since_epoch().count()));
    }
  }
  return all;
}

std::unique_ptr<SimpleDateFormat> in_utc(DateFormat* format) {
  auto* const simple = dynamic_cast<SimpleDateFormat*>(format);
  if (simple == nullptr) fail("no formatter");
  simple->adoptTimeZone(icu::TimeZone::getGMT()->clone());
  return std::unique_ptr<SimpleDateFormat>(simple);
}

std::unique_ptr<SimpleDateFormat> styled(const std::string& locale, DateFormat::EStyle date, DateFormat::EStyle time) {
  return in_utc(DateFormat::createDateTimeInstance(date, time, icu::Locale(locale.c_str())));
}

std::string text_by(const DateFormat& format, double moment) {
  UnicodeString text;
  format.format(moment * 1000, text);
  std::string result;
  return text.toUTF8String(result);
}

std::string cleaned(const std::string& text) {
  return vxnlsldb::utf8(vxnlsldb::clean(vxnlsldb::utf32(UnicodeString::fromUTF8(text))));
}

/// A field of ICU's pattern that the mapping changes on purpose.
struct Adjustment {
  const char16_t *field, *becomes;
  const char* reason;
};
constexpr Adjustment main_date_adjustments[] = {
    {u"yy", u"y", "four-digit year"}, {u"M", u"MM", "padded"}, {u"d", u"dd", "padded"}};
constexpr Adjustment other_date_adjustments[] = {{u"M", u"MM", "month always in two digits"}};
constexpr Adjustment main_time_adjustments[] = {{u"m", u"mm", "R2: minutes padded"},
                                                {u"s", u"ss", "R2: seconds padded"}};

struct Entry {
  const char* name;
  const NLSName VXLocaleData::*pattern;
  DateFormat::EStyle date, time;
  std::span<const Adjustment> adjustments;
  const char* skeleton;  // of the locale's 24-hour clock, where the entry falls back to it
};
const Entry entries[] = {
    {"datePattern", &VXLocaleData::datePattern, DateFormat::kShort, DateFormat::kNone, main_date_adjustments, ""},
    {"datePattern1", &VXLocaleData::datePattern1, DateFormat::kMedium, DateFormat::kNone, other_date_adjustments, ""},
    {"datePattern2", &VXLocaleData::datePattern2, DateFormat::kLong, DateFormat::kNone, other_date_adjustments, ""},
    {"timePattern", &VXLocaleData::timePattern, DateFormat::kNone, DateFormat::kMedium, main_time_adjustments, "Hms"},
    {"timePattern1", &VXLocaleData::timePattern1, DateFormat::kNone, DateFormat::kShort, {}, "Hm"},
};

/// The pattern that ICU would need to write what the record writes.
UnicodeString expected_pattern(const FilledLocale& locale, const std::string& gregorian, const Entry& entry,
                               std::vector<std::string>& reasons) {
  UErrorCode status = U_ZERO_ERROR;
  UnicodeString pattern;
  styled(gregorian, entry.date, entry.time)->toPattern(pattern);
  for (const auto& [name, used, reason] : locale.fallbacks) {
    if (name != entry.name || !reason.starts_with('R') || reason.starts_with("R2")) continue;
    reasons.push_back(reason.substr(0, reason.find("; CLDR has")));
    std::vector<std::string> told;  // with the main pattern
    if (entry.date != DateFormat::kNone) return expected_pattern(locale, gregorian, entries[0], told);
    const std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(icu::Locale(gregorian.c_str()), status));
    pattern = generator->getPatternForSkeleton(UnicodeString(entry.skeleton));
  }
  for (const auto& [field, becomes, reason] : entry.adjustments) {
    const UnicodeString letter_or_quote(u"[A-Za-z']"), before = pattern;
    icu::RegexMatcher alone(u"(?<!" + letter_or_quote + u")" + field + u"(?!" + letter_or_quote + u")", 0, status);
    alone.reset(before);
    pattern = alone.replaceAll(becomes, status);
    if (pattern != before) reasons.emplace_back(reason);
  }
  return pattern;
}

/// Compares the date, time and datetime patterns of a locale with ICU's formatters of the same styles. Gives the rows
/// of a table: the first moment where the two texts differ, and all that accounts for the differences.
std::vector<std::string> differences_from_icu(const FilledLocale& locale) {
  std::vector<std::string> rows;
  const auto add = [&](const char* entry, const std::string& icu, const std::string& record,
                       const std::vector<std::string>& reasons) {
    rows.push_back("| " + joined({locale.name, code(entry), icu, record, joined(reasons, "; ")}, " | ") + " |\n");
  };
  vxtest::PlainLocale plain;
  plain.data = *locale.data;
  const auto record_text = [&](const NLSName& pattern, double moment) {
    uint8_t buffer[512];
    int64_t length = 0;
    plain.data.datetimePattern = pattern;
    const double since_1960 = moment + 3653.0 * 86400;
    if (NLSDatetimeFormatU(plain.get(), 0, buffer, 512, &length, since_1960) != 0) fail(locale.name + ": not written");
    return std::string(buffer, buffer + length);
  };
  const std::string gregorian = locale.name + "@calendar=gregorian", plainest = gregorian + ";numbers=latn";

  for (const Entry& entry : entries) {
    std::vector<std::string> pattern_reasons, reasons;
    UErrorCode status = U_ZERO_ERROR;
    const auto expected = in_utc(new SimpleDateFormat(expected_pattern(locale, gregorian, entry, pattern_reasons),
                                                      icu::Locale(plainest.c_str()), status));
    const auto as_it_is = styled(locale.name, entry.date, entry.time);
    const auto in_calendar = styled(gregorian, entry.date, entry.time);
    const auto in_digits = styled(plainest, entry.date, entry.time);
    std::string first_icu, first_record;
    const auto because = [&](bool changed, const std::string& reason) {
      if (changed && std::ranges::count(reasons, reason) == 0) reasons.push_back(reason);
    };
    for (const double moment : moments()) {
      const std::string record = record_text((*locale.data).*entry.pattern, moment), icu = text_by(*as_it_is, moment);
      if (record == icu) continue;
      if (first_icu.empty()) first_icu = icu, first_record = record;
      const std::string calendar = text_by(*in_calendar, moment), digits = text_by(*in_digits, moment);
      because(icu != calendar, "Gregorian calendar");
      because(calendar != digits, "ASCII digits");
      because(digits != cleaned(digits), "R9: plain blanks, no marks");
      const std::string last = cleaned(text_by(*expected, moment));
      for (const std::string& reason : pattern_reasons) because(cleaned(digits) != last, reason);
      if (last != record || reasons.empty()) {
        fail(joined({locale.name, entry.name, "ICU", icu, "record", record, "explained", last}, " "));
      }
    }
    if (!first_icu.empty()) add(entry.name, first_icu, first_record, reasons);
  }

  const double moment = moments().front();
  const auto plainly = [&](DateFormat::EStyle date, DateFormat::EStyle time) {
    return text_by(*styled(plainest, date, time), moment);
  };
  const std::string both = plainly(DateFormat::kShort, DateFormat::kMedium);
  if (cleaned(both) != cleaned(plainly(DateFormat::kShort, DateFormat::kNone)) + ' ' +
                           cleaned(plainly(DateFormat::kNone, DateFormat::kMedium))) {
    add("datetimePattern", both, record_text(locale.data->datetimePattern, moment), {"R5: joined by one blank"});
  }
  return rows;
}

/// All locales but those that are older names of others.
const std::vector<const FilledLocale*>& locales() {
  static const std::vector<const FilledLocale*> all = [] {
    std::vector<const FilledLocale*> own;
    for (const FilledLocale& locale : vxtest::every_locale()) {
      VXLocaleIdentity identity;
      std::memcpy(&identity, locale.data->block2, sizeof identity);
      if (locale.name == identity.canonical) own.push_back(&locale);
    }
    return own;
  }();
  return all;
}

std::string versions() {
  return "This page was measured with ICU " U_ICU_VERSION ", which carries CLDR " +
         std::to_string(vxnlsldb::cldr_version()) + ": " + std::to_string(locales().size()) + " locales, and " +
         std::to_string(vxtest::every_locale().size() - locales().size()) +
         " older names (`zh_TW` for `zh_Hant_TW`), which are filled as what they stand for and not counted below.\n";
}

/// The names of the locales by what `key` tells of their fallbacks.
std::map<std::vector<std::string>, std::vector<std::string>> fallbacks_by(auto key) {
  std::map<std::vector<std::string>, std::vector<std::string>> groups;
  for (const FilledLocale* const locale : locales()) {
    for (const auto& fallback : locale->fallbacks) groups[key(fallback)].push_back(locale->name);
  }
  return groups;
}

std::string statistics() {
  std::string table = "| Entry | Why | Locales | Languages |\n|---|---|---:|---:|\n";
  const auto groups = fallbacks_by([](const vxnlsldb::Fallback& fallback) {
    const std::string reason = fallback.reason.substr(0, fallback.reason.find("; CLDR has"));
    return std::vector{fallback.entry, std::regex_replace(reason, std::regex("\"[^\"]*\""), "…")};
  });
  for (const auto& [what, names] : groups) {
    std::set<std::string> languages;
    for (const std::string& name : names) languages.insert(name.substr(0, name.find('_')));
    table += "| " + code(what[0]) + " | " + what[1] + " | " + std::to_string(names.size()) + " | " +
             std::to_string(languages.size()) + " |\n";
  }
  const auto as_in_cldr = [](const FilledLocale* locale) { return locale->fallbacks.empty(); };
  return table + "\nNothing at all fell back in " + std::to_string(std::ranges::count_if(locales(), as_in_cldr)) +
         " locales.\n";
}

std::string fallbacks() {
  std::string table = "| Entry | Stands there | Why | Locales |\n|---|---|---|---|\n";
  const auto groups = fallbacks_by([](const auto& f) { return std::vector{f.entry, f.reason, f.used}; });
  for (const auto& [what, names] : groups) {
    table += "| " + joined({code(what[0]), code(what[2]), what[1], joined(names, " ")}, " | ") + " |\n";
  }
  return table;
}

std::string differences() {
  std::string table = "| Locale | Entry | ICU | Record | Why |\n|---|---|---|---|---|\n";
  std::vector<std::string> same;
  for (const char* const name :
       {"ar_EG", "cs_CZ", "de_DE", "en_GB", "en_US", "es_ES", "fa_IR", "fr_CA", "fr_FR", "he_IL", "hi_IN", "it_IT",
        "ja_JP", "ko_KR", "nl_NL", "pl_PL", "pt_BR", "ru_RU", "sv_SE", "th_TH", "tr_TR", "vi_VN", "zh_CN", "zh_TW"}) {
    const std::vector<std::string> rows = differences_from_icu(vxtest::filled(name));
    if (rows.empty()) same.emplace_back(name);
    table += joined(rows, "");
  }
  return table + "\nNo difference at all: " + joined(same, ", ") + ".\n";
}

/// The document with its parts renewed.
std::string renewed(std::string document) {
  const std::pair<std::string, std::string (*)()> parts[] = {
      {"versions", &versions}, {"statistics", &statistics}, {"fallbacks", &fallbacks}, {"differences", &differences}};
  for (const auto& [name, text] : parts) {
    const std::string begin = "<!-- begin " + name + ", written by locale_data_report -->\n";
    const size_t from = document.find(begin), to = document.find("<!-- end " + name + " -->\n");
    if (from == std::string::npos || to == std::string::npos) fail("no place for " + name);
    document.replace(from + begin.size(), to - from - begin.size(), '\n' + text() + '\n');
  }
  return document;
}

}  // namespace

int main(int count, char** arguments) {
  const bool check = count == 3 && std::strcmp(arguments[1], "--check") == 0;
  if (count != (check ? 3 : 2)) {
    std::cerr << "usage: locale_data_report [--check] DOCUMENT\n";
    return 2;
  }
  for (const FilledLocale& locale : vxtest::every_locale()) differences_from_icu(locale);
  const char* const path = arguments[count - 1];
  std::ifstream file(path);
  const std::string document{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (check && document.find("measured with ICU " U_ICU_VERSION ",") == std::string::npos) return 77;
  const std::string now = renewed(document);
  if (!check) return std::ofstream(path) << now ? 0 : 1;
  if (now != document) std::cerr << path << ": run locale_data_report on it\n";
  return now == document ? 0 : 1;
}
