// What the records of all locales hold beside what ICU's own formatters write: fails on a difference without a reason,
// and writes the parts of docs/locale-data.md that come from a run over all locales, or checks that they are its own.
//
//   locale_data_report DOCUMENT           rewrites the parts in place
//   locale_data_report --check DOCUMENT   0: up to date; 1: not; 77: the document was written with another ICU
#include <unicode/dtptngen.h>
#include <unicode/smpdtfmt.h>
#include <unicode/uversion.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <set>
#include <span>
#include <stdexcept>

#include "host/locale_database/blocks.h"
#include "host/locale_database/rules.h"
#include "host/locale_database/text.h"
#include "tests/locale_database/every_locale.h"
#include "tests/support/plain_locale.h"
#include "vxnls/locale_blocks.h"

namespace {

using icu::DateFormat;
using icu::SimpleDateFormat;
using vxtest::FilledLocale;

/// One entry of one locale, at the first moment where the two texts differ.
struct Difference {
  std::string entry;  // "datePattern1"
  std::string icu, record;
  std::vector<std::string> reasons;
  std::string unexplained;  // not empty: what ICU writes once every reason is allowed for, still not the record's text
};

struct Moment {
  int32_t year, month, day, hour, minute, second;
};

std::vector<Moment> moments() {
  std::vector<Moment> all;
  for (int32_t month = 1; month <= 12; ++month) {
    all.push_back({2021, month, 5, month - 1, 5, 7});
    all.push_back({2000, month, 23, month + 11, 40, 59});
  }
  return all;
}

UDate icu_date(const Moment& m) {
  using namespace std::chrono;
  const sys_days day = year{m.year} / m.month / m.day;
  return static_cast<double>(day.time_since_epoch().count()) * 86400e3 + (m.hour * 60 + m.minute) * 60e3 +
         m.second * 1e3;
}

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what); }

std::unique_ptr<SimpleDateFormat> styled(const std::string& locale, DateFormat::EStyle date, DateFormat::EStyle time) {
  const icu::Locale where(locale.c_str());
  DateFormat* const format = date == DateFormat::kNone   ? DateFormat::createTimeInstance(time, where)
                             : time == DateFormat::kNone ? DateFormat::createDateInstance(date, where)
                                                         : DateFormat::createDateTimeInstance(date, time, where);
  auto* const simple = dynamic_cast<SimpleDateFormat*>(format);
  if (simple == nullptr) fail(locale + ": no formatter");
  simple->adoptTimeZone(icu::TimeZone::getGMT()->clone());
  return std::unique_ptr<SimpleDateFormat>(simple);
}

std::unique_ptr<SimpleDateFormat> by_pattern(const std::string& locale, const icu::UnicodeString& pattern) {
  UErrorCode status = U_ZERO_ERROR;
  auto format = std::make_unique<SimpleDateFormat>(pattern, icu::Locale(locale.c_str()), status);
  if (U_FAILURE(status)) fail(locale + ": no formatter for a pattern");
  format->adoptTimeZone(icu::TimeZone::getGMT()->clone());
  return format;
}

std::string text_by(const DateFormat& format, const Moment& moment) {
  icu::UnicodeString text;
  format.format(icu_date(moment), text);
  std::string result;
  return text.toUTF8String(result);
}

std::string cleaned(const std::string& text) {
  return vxnlsldb::utf8(vxnlsldb::clean(vxnlsldb::utf32(icu::UnicodeString::fromUTF8(text))));
}

/// How the text of an entry is written by the library.
using Writer = VXStatus(VXLocale*, const Moment&, uint8_t*, int64_t*);

/// A change of ICU's pattern that the mapping makes on purpose.
struct Adjustment {
  char16_t letter;
  int32_t run, becomes;
  const char* reason;
};

constexpr Adjustment main_date_adjustments[] = {
    {u'y', 2, 1, "four-digit year"},
    {u'M', 1, 2, "padded"},
    {u'd', 1, 2, "padded"},
};
constexpr Adjustment other_date_adjustments[] = {{u'M', 1, 2, "month always in two digits"}};
constexpr Adjustment main_time_adjustments[] = {
    {u'm', 1, 2, "R2: minutes padded"},
    {u's', 1, 2, "R2: seconds padded"},
};

icu::UnicodeString adjusted(const icu::UnicodeString& pattern, std::span<const Adjustment> adjustments,
                            std::vector<std::string>& reasons) {
  icu::UnicodeString result;
  bool quoted = false;
  for (int32_t i = 0; i < pattern.length();) {
    int32_t run = 1;
    while (i + run < pattern.length() && pattern[i + run] == pattern[i]) ++run;
    int32_t length = run;
    if (pattern[i] == u'\'') quoted ^= (run & 1) != 0;
    for (const Adjustment& adjustment : adjustments) {
      if (quoted || adjustment.letter != pattern[i] || adjustment.run != run) continue;
      length = adjustment.becomes;
      if (std::find(reasons.begin(), reasons.end(), adjustment.reason) == reasons.end()) {
        reasons.push_back(adjustment.reason);
      }
    }
    for (int32_t k = 0; k < length; ++k) result += pattern[i];
    i += run;
  }
  return result;
}

struct Entry {
  const char* name;
  DateFormat::EStyle date, time;
  std::span<const Adjustment> adjustments;
  const char* skeleton;  // of the locale's 24-hour clock, where the entry falls back to it
  Writer* write;
};

template <int32_t style>
VXStatus write_date(VXLocale* locale, const Moment& m, uint8_t* out, int64_t* length) {
  return NLSDateFormatU(locale, static_cast<uint32_t>(m.month), static_cast<uint32_t>(m.day),
                        static_cast<uint32_t>(m.year), style, out, 512, length);
}

template <int32_t flag>
VXStatus write_time(VXLocale* locale, const Moment& m, uint8_t* out, int64_t* length) {
  return NLSTimeFormatU(locale, flag, out, 512, length, (m.hour * 60 + m.minute) * 60 + m.second);
}

const Entry entries[] = {
    {"datePattern", DateFormat::kShort, DateFormat::kNone, main_date_adjustments, "", write_date<0>},
    {"datePattern1", DateFormat::kMedium, DateFormat::kNone, other_date_adjustments, "", write_date<1>},
    {"datePattern2", DateFormat::kLong, DateFormat::kNone, other_date_adjustments, "", write_date<2>},
    {"timePattern", DateFormat::kNone, DateFormat::kMedium, main_time_adjustments, "Hms", write_time<0>},
    {"timePattern1", DateFormat::kNone, DateFormat::kShort, {}, "Hm", write_time<1>},
};

std::string fallback_reason(const FilledLocale& locale, const std::string& entry) {
  for (const auto& fallback : locale.fallbacks) {
    if (fallback.entry == entry && fallback.reason[0] == 'R' && fallback.reason.substr(0, 2) != "R2") {
      return fallback.reason.substr(0, fallback.reason.find("; CLDR has"));
    }
  }
  return "";
}

icu::UnicodeString pattern_of(const DateFormat& format) {
  icu::UnicodeString pattern;
  dynamic_cast<const SimpleDateFormat&>(format).toPattern(pattern);
  return pattern;
}

/// The pattern that ICU would need to write what the record writes.
icu::UnicodeString expected_pattern(const FilledLocale& locale, const std::string& gregorian, const Entry& entry,
                                    std::vector<std::string>& reasons) {
  const std::string fallback = fallback_reason(locale, entry.name);
  if (fallback.empty())
    return adjusted(pattern_of(*styled(gregorian, entry.date, entry.time)), entry.adjustments, reasons);
  reasons.push_back(fallback);
  std::vector<std::string> told;  // with the main pattern
  if (entry.date != DateFormat::kNone) return expected_pattern(locale, gregorian, entries[0], told);
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::DateTimePatternGenerator> generator(
      icu::DateTimePatternGenerator::createInstance(icu::Locale(gregorian.c_str()), status));
  return adjusted(generator->getPatternForSkeleton(icu::UnicodeString(entry.skeleton)), entry.adjustments, reasons);
}

/// Compares the date, time and datetime patterns of a locale with ICU's formatters of the same styles, at moments that
/// show every month, both halves of the day and numbers of one and two digits.
std::vector<Difference> differences_from_icu(const FilledLocale& locale) {
  std::vector<Difference> differences;
  vxtest::PlainLocale plain;
  plain.data = *locale.data;
  const auto record_text = [&](Writer* write, const Moment& moment) {
    uint8_t buffer[512];
    int64_t length = 0;
    if (write(plain.get(), moment, buffer, &length) != 0) fail(locale.name + ": a pattern cannot be written");
    return std::string(buffer, buffer + length);
  };
  const std::string gregorian = locale.name + "@calendar=gregorian", plainest = gregorian + ";numbers=latn";

  for (const Entry& entry : entries) {
    std::vector<std::string> pattern_reasons;
    const icu::UnicodeString pattern = expected_pattern(locale, gregorian, entry, pattern_reasons);
    const auto as_it_is = styled(locale.name, entry.date, entry.time);
    const auto in_calendar = styled(gregorian, entry.date, entry.time);
    const auto in_digits = styled(plainest, entry.date, entry.time);
    const auto expected = by_pattern(plainest, pattern);
    Difference found{entry.name, "", "", {}, ""};
    const auto because = [&](bool changed, const std::string& reason) {
      if (changed && std::find(found.reasons.begin(), found.reasons.end(), reason) == found.reasons.end()) {
        found.reasons.push_back(reason);
      }
    };
    for (const Moment& moment : moments()) {
      const std::string record = record_text(entry.write, moment), icu = text_by(*as_it_is, moment);
      if (record == icu) continue;
      if (found.icu.empty()) found.icu = icu, found.record = record;
      const std::string calendar = text_by(*in_calendar, moment), digits = text_by(*in_digits, moment);
      because(icu != calendar, "Gregorian calendar");
      because(calendar != digits, "ASCII digits");
      because(digits != cleaned(digits), "R9: plain blanks, no marks");
      const std::string last = cleaned(text_by(*expected, moment));
      for (const std::string& reason : pattern_reasons) because(cleaned(digits) != last, reason);
      if (last != record) found.unexplained = last;
    }
    if (!found.icu.empty()) differences.push_back(found);
  }

  const Moment moment = moments().front();
  const auto both = styled(plainest, DateFormat::kShort, DateFormat::kMedium);
  const std::string joined = cleaned(text_by(*styled(plainest, DateFormat::kShort, DateFormat::kNone), moment)) + ' ' +
                             cleaned(text_by(*styled(plainest, DateFormat::kNone, DateFormat::kMedium), moment));
  const auto write_datetime = [](VXLocale* l, const Moment& m, uint8_t* out, int64_t* length) {
    return NLSDatetimeFormatU(l, 0, out, 512, length, icu_date(m) / 1000 + 3653.0 * 86400);
  };
  const std::string record = record_text(write_datetime, moment);
  const std::string parts = record_text(entries[0].write, moment) + ' ' + record_text(entries[3].write, moment);
  if (cleaned(text_by(*both, moment)) != joined || record != parts) {
    differences.push_back(
        {"datetimePattern", text_by(*both, moment), record, {"R5: joined by one blank"}, record == parts ? "" : parts});
  }
  return differences;
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

constexpr const char* widely_used[] = {"ar_EG", "cs_CZ", "de_DE", "en_GB", "en_US", "es_ES", "fa_IR", "fr_CA",
                                       "fr_FR", "he_IL", "hi_IN", "it_IT", "ja_JP", "ko_KR", "nl_NL", "pl_PL",
                                       "pt_BR", "ru_RU", "sv_SE", "th_TH", "tr_TR", "vi_VN", "zh_CN", "zh_TW"};

std::string code(const std::string& text) { return '`' + text + '`'; }

std::string joined(const std::vector<std::string>& texts, const char* between) {
  std::string all;
  for (const std::string& text : texts) all += (all.empty() ? "" : between) + text;
  return all;
}

/// The reason without its example: what many locales share.
std::string kind_of(const std::string& reason) {
  std::string kind;
  bool quoted = false;
  for (const char c : reason.substr(0, reason.find("; CLDR has"))) {
    if (c == '"') quoted = !quoted;
    if (c == '"' && quoted) kind += "…";
    if (!quoted && c != '"') kind += c;
  }
  return kind;
}

std::string versions() {
  return "This page was measured with ICU " U_ICU_VERSION ", which carries CLDR " +
         std::to_string(vxnlsldb::cldr_version()) + ": " + std::to_string(locales().size()) + " locales, and " +
         std::to_string(vxtest::every_locale().size() - locales().size()) +
         " older names (`zh_TW` for `zh_Hant_TW`), which are filled as what they stand for and not counted below.\n";
}

template <class Predicate>
std::string locales_where(Predicate predicate) {
  return std::to_string(std::count_if(locales().begin(), locales().end(),
                                      [&](const FilledLocale* locale) { return predicate(*locale); }));
}

std::string statistics() {
  std::map<std::pair<std::string, std::string>, std::pair<int, std::set<std::string>>> counts;
  for (const FilledLocale* const locale : locales()) {
    for (const auto& fallback : locale->fallbacks) {
      auto& [times, languages] = counts[{fallback.entry, kind_of(fallback.reason)}];
      ++times;
      languages.insert(locale->name.substr(0, locale->name.find('_')));
    }
  }
  std::string table = "| Entry | Why | Locales | Languages |\n|---|---|---:|---:|\n";
  for (const auto& [what, count] : counts) {
    table += "| " + code(what.first) + " | " + what.second + " | " + std::to_string(count.first) + " | " +
             std::to_string(count.second.size()) + " |\n";
  }
  const auto texts_of = [](const FilledLocale& locale) {
    VXLocaleTexts texts;
    std::memcpy(&texts, locale.data->block9, sizeof texts);
    return texts;
  };
  const auto hidden = [](const NLSName* names, size_t count) {
    std::vector<std::u32string> list;
    std::transform(names, names + count, std::back_inserter(list), vxnlsldb::text_of);
    return vxnlsldb::list_violation(list).has_value();
  };
  table += "\nNothing at all fell back in " +
           locales_where([](const FilledLocale& locale) { return locale.fallbacks.empty(); }) + " locales. In " +
           locales_where([&](const FilledLocale& locale) {
             const VXLocaleTexts texts = texts_of(locale);
             const NLSName* const stored[] = {&texts.cldrTimePatterns[2], &texts.cldrTimePatterns[3],
                                              &texts.cldrDatePatterns[1], &texts.cldrDatePatterns[2],
                                              &texts.cldrDatePatterns[3]};
             return std::any_of(std::begin(stored), std::end(stored), [](const NLSName* pattern) {
               const std::u32string text = vxnlsldb::text_of(*pattern);
               return vxnlsldb::clean(text) != text;
             });
           }) +
           " locales R9 cleaned a pattern. A name that hides another one stands in the full month names of " +
           locales_where([&](const FilledLocale& locale) { return hidden(locale.data->monthNames, 12); }) +
           " locales, in the abbreviated ones of " +
           locales_where([&](const FilledLocale& locale) { return hidden(locale.data->altMonthNames, 12); }) +
           ", in the full day names of " +
           locales_where([&](const FilledLocale& locale) { return hidden(locale.data->dayNames, 7); }) +
           ": those lists are stored as they are and only patterns keep away from them.\n";
  return table;
}

std::string fallbacks() {
  std::map<std::vector<std::string>, std::vector<std::string>> groups;
  for (const FilledLocale* const locale : locales()) {
    for (const auto& fallback : locale->fallbacks) {
      groups[{fallback.entry, fallback.reason, fallback.used}].push_back(locale->name);
    }
  }
  std::string table = "| Entry | Stands there | Why | Locales |\n|---|---|---|---|\n";
  for (const auto& [what, names] : groups) {
    table += "| " + code(what[0]) + " | " + code(what[2]) + " | " + what[1] + " | " + joined(names, " ") + " |\n";
  }
  return table;
}

std::string differences() {
  std::string table = "| Locale | Entry | ICU | Record | Why |\n|---|---|---|---|---|\n";
  std::vector<std::string> same;
  for (const char* const name : widely_used) {
    const std::vector<Difference> all = differences_from_icu(vxtest::filled(name));
    if (all.empty()) same.push_back(name);
    for (const Difference& difference : all) {
      table += std::string("| ") + name + " | " + code(difference.entry) + " | " + difference.icu + " | " +
               difference.record + " | " + joined(difference.reasons, "; ") +
               (difference.unexplained.empty() ? "" : "; UNEXPLAINED: " + difference.unexplained) + " |\n";
    }
  }
  return table + "\nNo difference at all: " + joined(same, ", ") + ".\n";
}

struct Part {
  const char* name;
  std::string (*text)();
};
constexpr Part parts[] = {
    {"versions", &versions}, {"statistics", &statistics}, {"fallbacks", &fallbacks}, {"differences", &differences}};

/// The document with its parts renewed; empty when a part has no place in it.
std::string renewed(std::string document) {
  for (const Part& part : parts) {
    const std::string begin = std::string("<!-- begin ") + part.name + ", written by locale_data_report -->\n";
    const std::string end = std::string("<!-- end ") + part.name + " -->\n";
    const size_t from = document.find(begin), to = document.find(end);
    if (from == std::string::npos || to == std::string::npos) return "";
    document.replace(from + begin.size(), to - from - begin.size(), '\n' + part.text() + '\n');
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
  for (const FilledLocale& locale : vxtest::every_locale()) {
    for (const Difference& found : differences_from_icu(locale)) {
      if (found.unexplained.empty() && !found.reasons.empty()) continue;
      std::cerr << locale.name << ' ' << found.entry << ": ICU " << found.icu << ", record " << found.record
                << ", unexplained " << found.unexplained << '\n';
      return 1;
    }
  }
  const char* const path = arguments[count - 1];
  std::ifstream file(path);
  const std::string document{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (check && document.find("measured with ICU " U_ICU_VERSION ",") == std::string::npos) return 77;
  const std::string now = renewed(document);
  if (now.empty()) {
    std::cerr << path << ": cannot be read, or a part has no place in it\n";
    return 1;
  }
  if (check) {
    if (now != document) std::cerr << path << ": run locale_data_report on it\n";
    return now == document ? 0 : 1;
  }
  return std::ofstream(path) << now ? 0 : 1;
}
