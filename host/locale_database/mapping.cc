#include "host/locale_database/mapping.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <span>

#include "host/locale_database/blocks.h"
#include "host/locale_database/cldr.h"
#include "host/locale_database/cldr_pattern.h"
#include "host/locale_database/rules.h"
#include "host/locale_database/text.h"
#include "vxnls/locale_blocks.h"

namespace vxnlsldb {

namespace {

using Texts = std::vector<std::u32string>;

constexpr size_t long_date = 5, medium_date = 6, short_date = 7, medium_time = 2, short_time = 3;  // DateTimePatterns

/// A text that an entry may take, the next one standing in when it breaks a rule.
struct Candidate {
  std::u32string cldr;  // what CLDR has; empty for one that does not come from there
  Translation translation;
};

Candidate given(std::u32string_view stored) { return {U"", {std::u32string(stored), "", ""}}; }

class Filler {
 public:
  Filler(const char* name, const Cldr& cldr, VXLocaleData& record, std::vector<Fallback>* fallbacks)
      : name_(name), cldr_(cldr), record_(record), fallbacks_(fallbacks) {}

  void fill() {
    names();
    dates();
    times();
    store(record_.datetimePattern, text_of(record_.datePattern) + U' ' + text_of(record_.timePattern));
    periods();
    numbers();
    currency();
    fill_blocks(name_.c_str(), cldr_, record_);
    const VXLocaleDataVersion version = {1, static_cast<uint16_t>(cldr_version()), fallen_};
    std::memcpy(&record_.block7, &version, sizeof version);
  }

 private:
  void report(VXLocaleEntry bit, const char* entry, std::u32string_view used, const std::string& reason) {
    fallen_ |= bit;
    if (fallbacks_ != nullptr) fallbacks_->push_back({entry, utf8(used), reason});
  }

  Texts list(const char* names, const char* width) const {
    return cldr_.list({"calendar", "gregorian", names, "format", width});
  }

  // Names. ---------------------------------------------------------------------------------------------------------

  void names() {
    put_names("dayNames", list("dayNames", "wide"), VX_ENTRY_DAY_NAMES, record_.dayNames);
    put_names("altDayNames", list("dayNames", "abbreviated"), VX_ENTRY_ALT_DAY_NAMES, record_.altDayNames);
    put_names("monthNames", list("monthNames", "wide"), VX_ENTRY_MONTH_NAMES, record_.monthNames);
    put_names("altMonthNames", list("monthNames", "abbreviated"), VX_ENTRY_ALT_MONTH_NAMES, record_.altMonthNames);

    Texts quarters = list("quarters", "abbreviated");
    std::transform(quarters.begin(), quarters.end(), quarters.begin(), clean);
    std::optional<Violation> hidden = list_violation(quarters);
    if (quarters.size() != std::size(record_.quarterNames)) hidden = {Rule::texts_are_clean, "CLDR has no names"};
    if (hidden) {
      quarters = {U"Q1", U"Q2", U"Q3", U"Q4"};
      report(VX_ENTRY_QUARTER_NAMES, "quarterNames", U"Q1 Q2 Q3 Q4", explain(*hidden));
    }
    put_names("quarterNames", quarters, VX_ENTRY_QUARTER_NAMES, record_.quarterNames);

    std::array<std::u32string, 2> markers;
    const Texts own = cldr_.list({"calendar", "gregorian", "AmPmMarkers"});
    std::transform(own.begin(), own.begin() + std::min<ptrdiff_t>(std::ssize(own), 2), markers.begin(), clean);
    if (const auto wrong = marker_violation(markers[0], markers[1])) {
      markers = {U"AM", U"PM"};
      report(VX_ENTRY_MARKERS, "amMarker, pmMarker", U"AM PM", explain(*wrong));
    }
    store(record_.amMarker, markers[0]);
    store(record_.pmMarker, markers[1]);

    const auto folded = [](const NLSName& name) { return fold(text_of(name)); };
    std::transform(std::begin(record_.dayNames), std::end(record_.dayNames), folded_.days.begin(), folded);
    std::transform(std::begin(record_.monthNames), std::end(record_.monthNames), folded_.months.begin(), folded);
    std::transform(std::begin(record_.altMonthNames), std::end(record_.altMonthNames), folded_.alt_months.begin(),
                   folded);
  }

  void put_names(const char* entry, const Texts& texts, VXLocaleEntry bit, std::span<NLSName> names) {
    for (size_t i = 0; i < names.size(); ++i) {
      std::u32string text = i < texts.size() ? clean(texts[i]) : U"";
      if (text.empty()) {
        text = from_ascii(std::to_string(i + 1));
        report(bit, entry, text, "R9: CLDR has no name");
      }
      if (!store(names[i], text)) {
        report(bit, entry, text_of(names[i]), "R10: " + utf8(text) + " is longer than 60 characters or 180 bytes");
      }
    }
  }

  // Patterns. ------------------------------------------------------------------------------------------------------

  Candidate translated(const std::u32string& cldr, Padding padding) const {
    const Texts eras = cldr_.list({"calendar", "gregorian", "eras", "abbreviated"});
    return {cldr, translate(cldr, padding, eras.size() > 1 ? std::u32string_view(eras[1]) : U"")};
  }

  Candidate by_skeleton(const char* skeleton, Padding padding) const {
    return translated(cldr_.text({"calendar", "gregorian", "availableFormats", skeleton}), padding);
  }

  /// Stores the first candidate that breaks no rule; the last one is taken as it is. What speaks against the first
  /// is the reason that is reported.
  void choose(const char* entry, VXLocaleEntry bit, NLSName& name, const std::vector<Candidate>& candidates,
              const std::function<std::optional<Violation>(std::u32string_view)>& violation) {
    std::string reason;
    for (size_t i = 0; i < candidates.size(); ++i) {
      const Translation& translation = candidates[i].translation;
      std::string against = translation.obstacle;
      if (against.empty()) {
        if (const auto wrong = violation(translation.stored)) against = explain(*wrong);
      }
      const bool taken = against.empty() || i + 1 == candidates.size();
      if (taken) {
        store(name, translation.stored);
        if (reason.empty()) reason = translation.change;
        if (!reason.empty()) {
          report(bit, entry, translation.stored, reason + "; CLDR has \"" + utf8(candidates[0].cldr) + '"');
        }
        return;
      }
      if (reason.empty()) reason = against;
    }
  }

  void dates() {
    const Texts patterns = cldr_.list({"calendar", "gregorian", "DateTimePatterns"});
    const auto pattern = [&](size_t i) { return i < patterns.size() ? patterns[i] : std::u32string(); };
    Texts earlier;
    const auto rule = [&](DateRole role) {
      return [&, role](std::u32string_view stored) { return date_violation(stored, role, folded_, earlier); };
    };
    choose("datePattern", VX_ENTRY_DATE_PATTERN, record_.datePattern,
           {translated(pattern(short_date), Padding::all), by_skeleton("yMd", Padding::all), given(U"%Y-%m-%d")},
           rule(DateRole::main));
    earlier.push_back(text_of(record_.datePattern));
    choose("datePattern1", VX_ENTRY_DATE_PATTERN_1, record_.datePattern1,
           {translated(pattern(medium_date), Padding::as_cldr), given(earlier[0])}, rule(DateRole::kind_1));
    earlier.push_back(text_of(record_.datePattern1));
    choose("datePattern2", VX_ENTRY_DATE_PATTERN_2, record_.datePattern2,
           {translated(pattern(long_date), Padding::as_cldr), given(earlier[0])}, rule(DateRole::kind_2));
  }

  void times() {
    const Texts patterns = cldr_.list({"calendar", "gregorian", "DateTimePatterns"});
    const auto pattern = [&](size_t i) { return i < patterns.size() ? patterns[i] : std::u32string(); };
    choose("timePattern", VX_ENTRY_TIME_PATTERN, record_.timePattern,
           {translated(pattern(medium_time), Padding::all), by_skeleton("Hms", Padding::all), given(U"%H:%M:%S")},
           [](std::u32string_view stored) { return time_violation(stored, TimeRole::main); });
    choose("timePattern1", VX_ENTRY_TIME_PATTERN_1, record_.timePattern1,
           {translated(pattern(short_time), Padding::as_cldr), by_skeleton("Hm", Padding::as_cldr), given(U"%H:%M")},
           [](std::u32string_view stored) { return time_violation(stored, TimeRole::kind_1); });
  }

  void periods() {
    store(record_.quarterPattern1, quarter_pattern(1));
    store(record_.quarterPattern2, quarter_pattern(2));
    store(record_.monthYearPattern1, month_year_pattern());
    const std::optional<Pattern> main = take_apart(text_of(record_.datePattern));
    const bool year_first = main && position(*main, 'Y') < position(*main, 'm');
    choose("monthYearPattern2", VX_ENTRY_MONTH_YEAR_PATTERN_2, record_.monthYearPattern2,
           {by_skeleton("yM", Padding::all), given(year_first ? U"%Y-%m" : U"%m/%Y")}, month_year_violation);
    const bool sunday_weeks = first_week_day(name_.c_str()) == 1;
    store(record_.weekPattern1, week_pattern(1, sunday_weeks));
    store(record_.weekPattern2, week_pattern(2, sunday_weeks));
  }

  // Numbers. -------------------------------------------------------------------------------------------------------

  /// One separator; what CLDR has must be one character once it is clean.
  VXChar separator(const char* symbol) const {
    const std::u32string text = cldr_.text({"NumberElements", "latn", "symbols", symbol});
    if (text == U"\u202F") return 0xA0;
    return text.size() == 1 ? text[0] : 0;
  }

  void numbers() {
    record_.decimalPoint = separator("decimal");
    if (record_.decimalPoint == 0) {
      record_.decimalPoint = U'.';
      report(VX_ENTRY_DECIMAL_POINT, "decimalPoint", U".", "R11: CLDR has not one character");
    }
    record_.groupSeparator = separator("group");
    if (const auto wrong = separator_violation(record_.decimalPoint, record_.groupSeparator)) {
      record_.groupSeparator = record_.decimalPoint == U',' ? U'.' : U',';
      report(VX_ENTRY_GROUP_SEPARATOR, "groupSeparator", std::u32string(1, record_.groupSeparator), explain(*wrong));
    }
    const std::u32string pattern = cldr_.text({"NumberElements", "latn", "patterns", "decimalFormat"});
    const std::u32string grouping = grouping_of(pattern);
    store(record_.groupingPattern, grouping.empty() ? U"3" : grouping);
    if (grouping.empty()) {
      report(VX_ENTRY_GROUPING_PATTERN, "groupingPattern", U"3", "R10: CLDR does not group \"" + utf8(pattern) + '"');
    }
  }

  /// "#,##,##0.###" is "3;2"; empty when nothing is grouped.
  static std::u32string grouping_of(std::u32string_view pattern) {
    const std::u32string_view whole = pattern.substr(0, pattern.find(U'.'));
    const size_t last = whole.rfind(U',');
    if (last == std::u32string_view::npos) return U"";
    const size_t before = whole.substr(0, last).rfind(U',');
    std::u32string first = from_ascii(std::to_string(whole.size() - last - 1));
    if (before == std::u32string_view::npos) return first;
    const std::u32string second = from_ascii(std::to_string(last - before - 1));
    return first == second ? first : first + U';' + second;
  }

  void currency() {
    const std::string code = currency_code(name_.c_str());
    const std::u32string symbol = clean(currency_symbol(name_.c_str(), cldr_));
    std::string reason;
    if (code == "XXX") reason = "no country, no currency";
    if (const auto wrong = symbol_violation(symbol)) {
      store(record_.currencySymbol, from_ascii(code));
      reason = explain(*wrong);
    } else {
      store(record_.currencySymbol, symbol);
    }
    if (!reason.empty()) {
      report(VX_ENTRY_CURRENCY_SYMBOL, "currencySymbol", text_of(record_.currencySymbol), reason);
    }
  }

  const std::string name_;  // aliases resolved
  const Cldr& cldr_;
  VXLocaleData& record_;
  std::vector<Fallback>* const fallbacks_;
  FoldedNames folded_;
  uint32_t fallen_ = 0;
};

}  // namespace

VXStatus fill_record(const char* name, VXLocaleData* record, std::vector<Fallback>* fallbacks) {
  // Whatever a block leaves out is zero.
  std::memset(static_cast<void*>(record), 0, sizeof *record);
  const Cldr cldr(name);
  if (cldr.found() == Found::nothing) return VX_E_NOMATCH;
  store(record->localeName, from_ascii(name));
  // An alias is filled as what it stands for: zh_TW as zh_Hant_TW.
  const std::string known = cldr.found() == Found::exactly ? cldr.canonical() : std::string(name);
  Filler(known.c_str(), cldr, *record, fallbacks).fill();
  return cldr.found() == Found::exactly ? VXStatus{0} : VX_W_FILL;
}

}  // namespace vxnlsldb
