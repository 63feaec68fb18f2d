#include "host/locale_database/rules.h"

#include <algorithm>
#include <span>

#include "host/locale_database/text.h"

namespace vxnlsldb {

namespace {

/// Directives that mean the same when they are written and when they are read.
struct Allowed {
  char32_t directive;
  bool unpadded_too;
};
constexpr Allowed date_directives[] = {{'d', true},  {'m', false}, {'b', false},
                                       {'B', false}, {'Y', false}, {'A', false}};
constexpr Allowed time_directives[] = {{'H', true}, {'I', true}, {'M', true}, {'S', false}, {'p', false}};

bool allowed(const Step& step, std::span<const Allowed> directives) {
  return std::any_of(directives.begin(), directives.end(), [&](const Allowed& row) {
    return row.directive == step.directive && (row.unpadded_too || !step.unpadded);
  });
}

std::string quoted(std::u32string_view text) { return '"' + utf8(text) + '"'; }

Violation broken(Rule rule, std::string text) { return {rule, std::move(text)}; }

/// The first directive that may not stand in a pattern of this kind.
std::optional<Violation> directive_violation(const Pattern& pattern, std::span<const Allowed> directives) {
  for (const Step& step : pattern) {
    if (step.directive != 0 && !allowed(step, directives)) {
      return broken(Rule::directives_go_both_ways, quoted(spelled(step)) + " does not mean the same written and read");
    }
  }
  return std::nullopt;
}

bool bare(const Pattern& pattern, char32_t directive) {
  return std::find(pattern.begin(), pattern.end(), Step{directive, 0, false}) != pattern.end();
}

}  // namespace

std::string label(Rule rule) {
  std::string text = "R";
  return text += std::to_string(static_cast<int>(rule));
}

std::string explain(const Violation& violation) { return label(violation.rule) + ": " + violation.text; }

std::optional<Violation> text_violation(std::u32string_view text) {
  if (text.empty()) return broken(Rule::texts_are_clean, "empty");
  if (!fits(text)) return broken(Rule::texts_fit, quoted(text) + " is longer than 60 characters or 180 bytes");
  if (clean(text) != text)
    return broken(Rule::texts_are_clean, quoted(text) + " has blanks or marks that nobody types");
  return std::nullopt;
}

std::optional<Violation> date_violation(std::u32string_view stored, DateRole role, const FoldedNames& names,
                                        const std::vector<std::u32string>& earlier) {
  if (auto wrong = text_violation(stored)) return wrong;
  const std::optional<Pattern> pattern = take_apart(stored);
  if (!pattern) return broken(Rule::directives_go_both_ways, "a stray %");
  if (count(*pattern, 'a') > 0) return broken(Rule::no_week_day, "the reader takes %a for a full name");
  if (auto wrong = directive_violation(*pattern, date_directives)) return wrong;
  const int months = count(*pattern, 'm') + count(*pattern, 'b') + count(*pattern, 'B');
  if (count(*pattern, 'd') != 1 || months != 1 || count(*pattern, 'Y') != 1) {
    return broken(Rule::directives_go_both_ways, "not one day, one month and one year");
  }
  if (role == DateRole::main && !(bare(*pattern, 'd') && bare(*pattern, 'm') && bare(*pattern, 'Y'))) {
    return broken(Rule::main_date_is_padded, "the main date pattern has %d, %m and %Y");
  }
  if (const char32_t number = number_before_digit(*pattern, names)) {
    return broken(Rule::names_read_back, "a digit follows %" + std::string(1, static_cast<char>(number)) + " at once");
  }
  if (const auto misread = misread_name(*pattern, names)) {
    return broken(Rule::names_read_back, quoted(misread->written) + " reads as " + quoted(misread->taken));
  }
  for (const std::u32string& other : earlier) {
    const std::optional<Pattern> before = take_apart(other);
    if (!before) continue;
    switch (overlap(*before, *pattern)) {
      case Overlap::none: break;
      case Overlap::blanks:
        return broken(Rule::dates_stay_apart, quoted(stored) + " differs from " + quoted(other) + " only in blanks");
      case Overlap::part:
        return broken(Rule::dates_stay_apart, quoted(other) + " reads the beginning of " + quoted(stored));
      case Overlap::order:
        return broken(Rule::dates_stay_apart,
                      quoted(other) + " reads day and month of " + quoted(stored) + " exchanged");
    }
  }
  return std::nullopt;
}

std::optional<Violation> time_violation(std::u32string_view stored, TimeRole role) {
  if (auto wrong = text_violation(stored)) return wrong;
  const std::optional<Pattern> pattern = take_apart(stored);
  if (!pattern) return broken(Rule::directives_go_both_ways, "a stray %");
  if (auto wrong = directive_violation(*pattern, time_directives)) return wrong;
  const int hours_24 = count(*pattern, 'H'), hours_12 = count(*pattern, 'I'), markers = count(*pattern, 'p');
  if (hours_24 + hours_12 != 1 || count(*pattern, 'M') != 1) {
    return broken(Rule::directives_go_both_ways, "not one hour and one minute");
  }
  if (hours_12 != markers) return broken(Rule::period_follows_hour, "%I and %p stand together or not at all");
  if (markers == 1 && position(*pattern, 'p') < position(*pattern, 'I')) {
    return broken(Rule::period_follows_hour, "%p stands before the hour");
  }
  if (role == TimeRole::main && !(bare(*pattern, 'M') && count(*pattern, 'S') == 1)) {
    return broken(Rule::time_patterns_are_complete, "the main time pattern has %M and %S");
  }
  if (role == TimeRole::kind_1 && count(*pattern, 'S') > 1) {
    return broken(Rule::time_patterns_are_complete, "seconds twice");
  }
  if (const char32_t number = number_before_digit(*pattern, {})) {
    return broken(Rule::time_patterns_are_complete,
                  "a digit follows %" + std::string(1, static_cast<char>(number)) + " at once");
  }
  return std::nullopt;
}

std::optional<Violation> marker_violation(std::u32string_view am, std::u32string_view pm) {
  for (const std::u32string_view marker : {am, pm}) {
    if (auto wrong = text_violation(marker)) return broken(Rule::markers_differ, wrong->text);
    if (is_digit(marker[0])) return broken(Rule::markers_differ, quoted(marker) + " begins with a digit");
  }
  if (fold(pm).starts_with(fold(am))) {
    return broken(Rule::markers_differ, quoted(pm) + " begins with " + quoted(am));
  }
  return std::nullopt;
}

std::optional<Violation> separator_violation(char32_t decimal_point, char32_t group_separator) {
  for (const char32_t separator : {decimal_point, group_separator}) {
    if (separator == 0 || is_digit(separator) || separator == '-' || separator == '+' || separator == 0x202F) {
      return broken(Rule::separators_differ, quoted(std::u32string(1, separator)) + " separates nothing");
    }
  }
  if (decimal_point == group_separator) {
    return broken(Rule::separators_differ, "decimal point and group separator are the same");
  }
  return std::nullopt;
}

std::optional<Violation> symbol_violation(std::u32string_view symbol) {
  if (auto wrong = text_violation(symbol)) return wrong;
  if (std::all_of(symbol.begin(), symbol.end(), is_invisible)) {
    return broken(Rule::texts_are_clean, "the symbol cannot be seen");
  }
  return std::nullopt;
}

std::optional<Violation> list_violation(const std::vector<std::u32string>& names) {
  for (size_t i = 0; i < names.size(); ++i) {
    for (size_t j = 0; j < i; ++j) {
      if (fold(names[i]).starts_with(fold(names[j]))) {
        return broken(Rule::names_read_back, quoted(names[i]) + " begins with " + quoted(names[j]));
      }
    }
  }
  return std::nullopt;
}

std::u32string quarter_pattern(int which) { return which == 1 ? U"%q %Y" : U"%Y %q"; }

std::u32string month_year_pattern() { return U"%b %Y"; }

std::u32string week_pattern(int which, bool sunday_weeks) {
  if (which == 1) return sunday_weeks ? U"W%U %Y" : U"W%V %Y";
  return sunday_weeks ? U"%Y-W%U" : U"%Y-W%V";
}

std::optional<Violation> month_year_violation(std::u32string_view stored) {
  if (auto wrong = text_violation(stored)) return wrong;
  const std::optional<Pattern> pattern = take_apart(stored);
  const auto directives = [](const Step& step) { return step.directive != 0; };
  if (!pattern || !bare(*pattern, 'm') || !bare(*pattern, 'Y') ||
      std::count_if(pattern->begin(), pattern->end(), directives) != 2) {
    return broken(Rule::periods_are_as_listed, "not one %m and one %Y");
  }
  if (number_before_digit(*pattern, {}) != 0) return broken(Rule::periods_are_as_listed, "a digit follows %m at once");
  return std::nullopt;
}

namespace {

/// Holds one record against the rules; stops as soon as the receiver has had enough.
class Check {
 public:
  Check(const VXLocaleData& record, const std::function<bool(const std::string&, const Violation&)>& each)
      : record_(record), each_(each) {}

  void run() {
    texts();
    const FoldedNames names = folded_names();
    const std::u32string main = text_of(record_.datePattern), first = text_of(record_.datePattern1);
    report("datePattern", date_violation(main, DateRole::main, names, {}));
    report("datePattern1", date_violation(first, DateRole::kind_1, names, {main}));
    report("datePattern2", date_violation(text_of(record_.datePattern2), DateRole::kind_2, names, {main, first}));
    report("timePattern", time_violation(text_of(record_.timePattern), TimeRole::main));
    report("timePattern1", time_violation(text_of(record_.timePattern1), TimeRole::kind_1));
    report("amMarker", marker_violation(text_of(record_.amMarker), text_of(record_.pmMarker)));
    if (text_of(record_.datetimePattern) != main + U' ' + text_of(record_.timePattern)) {
      report("datetimePattern", broken(Rule::datetime_is_date_and_time, "not the main date, a blank, the main time"));
    }
    report("quarterNames", list_violation(all(record_.quarterNames)));
    periods();
    numbers();
  }

 private:
  void report(const char* entry, const std::optional<Violation>& violation) {
    if (violation && going_on_) going_on_ = each_(entry, *violation);
  }

  template <size_t N>
  static std::vector<std::u32string> all(const NLSName (&list)[N]) {
    std::vector<std::u32string> names;
    std::transform(std::begin(list), std::end(list), std::back_inserter(names), text_of);
    return names;
  }

  void texts() {
    const struct {
      const char* entry;
      std::span<const NLSName> names;
    } entries[] = {
        {"dayNames", record_.dayNames},         {"altDayNames", record_.altDayNames},
        {"monthNames", record_.monthNames},     {"altMonthNames", record_.altMonthNames},
        {"quarterNames", record_.quarterNames}, {"datetimePattern", {&record_.datetimePattern, 1}},
    };
    for (const auto& [entry, names] : entries) {
      for (const NLSName& name : names) {
        report(entry, name.length < 0 || name.length > static_cast<int64_t>(longest_text)
                          ? broken(Rule::texts_fit, "a length of " + std::to_string(name.length))
                          : text_violation(text_of(name)));
      }
    }
  }

  FoldedNames folded_names() const {
    FoldedNames names;
    const auto folded = [](const NLSName& name) { return fold(text_of(name)); };
    std::transform(std::begin(record_.dayNames), std::end(record_.dayNames), names.days.begin(), folded);
    std::transform(std::begin(record_.monthNames), std::end(record_.monthNames), names.months.begin(), folded);
    std::transform(std::begin(record_.altMonthNames), std::end(record_.altMonthNames), names.alt_months.begin(),
                   folded);
    return names;
  }

  void periods() {
    const auto hold = [&](const char* entry, const NLSName& stored, std::initializer_list<std::u32string> forms) {
      if (std::find(forms.begin(), forms.end(), text_of(stored)) == forms.end()) {
        report(entry, broken(Rule::periods_are_as_listed, quoted(text_of(stored)) + " is not one of the forms"));
      }
    };
    hold("quarterPattern1", record_.quarterPattern1, {quarter_pattern(1)});
    hold("quarterPattern2", record_.quarterPattern2, {quarter_pattern(2)});
    hold("monthYearPattern1", record_.monthYearPattern1, {month_year_pattern()});
    report("monthYearPattern2", month_year_violation(text_of(record_.monthYearPattern2)));
    hold("weekPattern1", record_.weekPattern1, {week_pattern(1, false), week_pattern(1, true)});
    const bool sunday_weeks = text_of(record_.weekPattern1) == week_pattern(1, true);
    hold("weekPattern2", record_.weekPattern2, {week_pattern(2, sunday_weeks)});
  }

  void numbers() {
    report("currencySymbol", symbol_violation(text_of(record_.currencySymbol)));
    report("decimalPoint", separator_violation(record_.decimalPoint, record_.groupSeparator));
    const std::u32string grouping = text_of(record_.groupingPattern);
    if (grouping != U"3" && grouping != U"3;2") {
      report("groupingPattern", broken(Rule::texts_fit, quoted(grouping) + " is neither 3 nor 3;2"));
    }
  }

  const VXLocaleData& record_;
  const std::function<bool(const std::string&, const Violation&)>& each_;
  bool going_on_ = true;
};

}  // namespace

void check_record(const VXLocaleData& record, const std::function<bool(const std::string&, const Violation&)>& each) {
  Check(record, each).run();
}

}  // namespace vxnlsldb
