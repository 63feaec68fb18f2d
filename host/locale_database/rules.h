// The rules that a stored record keeps, so that what its patterns write reads back. docs/locale-data.md explains each.
#ifndef VXNLS_HOST_LOCALE_DATABASE_RULES_H
#define VXNLS_HOST_LOCALE_DATABASE_RULES_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/locale_database/stored_pattern.h"
#include "vxnls/locale.h"

namespace vxnlsldb {

enum class Rule : int {
  directives_go_both_ways,     // R0
  main_date_is_padded = 1,     // R1
  time_patterns_are_complete,  // R2
  markers_differ,              // R3
  period_follows_hour,         // R4
  datetime_is_date_and_time,   // R5
  names_read_back,             // R6
  dates_stay_apart,            // R7
  no_week_day,                 // R8
  texts_are_clean,             // R9
  texts_fit,                   // R10
  separators_differ,           // R11
  periods_are_as_listed        // R12
};

/// "R0" and so on.
std::string label(Rule rule);

struct Violation {
  Rule rule;
  std::string text;  // "names do not read back: "juin" is taken for "jui""
};

/// "R6: ..."
std::string explain(const Violation& violation);

enum class DateRole { main, kind_1, kind_2 };
enum class TimeRole { main, kind_1 };

/// What a date pattern does wrong, alone and after the patterns that readers try before it.
std::optional<Violation> date_violation(std::u32string_view stored, DateRole role, const FoldedNames& names,
                                        const std::vector<std::u32string>& earlier);
std::optional<Violation> time_violation(std::u32string_view stored, TimeRole role);
std::optional<Violation> marker_violation(std::u32string_view am, std::u32string_view pm);
std::optional<Violation> separator_violation(char32_t decimal_point, char32_t group_separator);
/// R9 and R10 of the currency symbol, which must also be seen: CLDR writes the escudo with an invisible character.
std::optional<Violation> symbol_violation(std::u32string_view symbol);
/// A name that another one of the list hides; for lists that are only read.
std::optional<Violation> list_violation(const std::vector<std::u32string>& names);
/// R9 and R10, of any text of the record.
std::optional<Violation> text_violation(std::u32string_view text);

/// The R12 forms.
std::u32string quarter_pattern(int which);  // 1, 2
std::u32string month_year_pattern();        // the first
std::u32string week_pattern(int which, bool sunday_weeks);
std::optional<Violation> month_year_violation(std::u32string_view stored);

/// Calls `each` with the entry ("datePattern1", "monthNames") for every rule that a filled record breaks, until it
/// gives false.
void check_record(const VXLocaleData& record,
                  const std::function<bool(const std::string& entry, const Violation&)>& each);

}  // namespace vxnlsldb

#endif
