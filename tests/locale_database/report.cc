// Writes the parts of docs/locale-data.md that come from a run over all locales, or checks that they are what a run
// gives.
//
//   locale_data_report DOCUMENT           rewrites the parts in place
//   locale_data_report --check DOCUMENT   0: up to date; 1: not; 77: the document was written with another ICU
#include <unicode/uversion.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <set>

#include "host/locale_database/blocks.h"
#include "host/locale_database/rules.h"
#include "host/locale_database/text.h"
#include "tests/locale_database/icu_comparison.h"
#include "vxnls/locale_blocks.h"

namespace {

using vxtest::FilledLocale;

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
    const std::vector<vxtest::Difference> all = vxtest::differences_from_icu(vxtest::filled(name));
    if (all.empty()) same.push_back(name);
    for (const vxtest::Difference& difference : all) {
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
