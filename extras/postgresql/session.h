// The host of one server process, and its locales. Knows nothing of the server: no function here leaves but by its
// return, and what needs a destructor stays inside, so that an error of the server may jump over the callers.
#ifndef VXNLS_EXTRAS_POSTGRESQL_SESSION_H
#define VXNLS_EXTRAS_POSTGRESQL_SESSION_H

#include <cstdint>
#include <string_view>

namespace vxpg {

enum class Problem {
  none,
  missing,         // the text is a missing value
  not_understood,  // the text is no value
  too_long,        // the text is longer than `longest_text`
  no_such_day,     // a date that the calendar has not
  out_of_range,    // the value is beyond what can be read or written
  locale,          // no such locale
  form,            // no such form, pattern or number of decimals
  memory,
  host  // the host cannot start, or failed
};

inline constexpr size_t longest_text = size_t{1} << 16;  // bytes; the command's longest line

struct Date {
  int32_t year, month, day;
};

/// Texts are UTF-8. What a function hands out as text is good until the next call of any of them.
Problem parse_date(std::string_view text, std::string_view locale, std::string_view form, Date& date) noexcept;
Problem format_date(const Date& date, std::string_view locale, std::string_view form, std::string_view& text) noexcept;
Problem parse_number(std::string_view text, std::string_view locale, double& number) noexcept;
/// `decimals` below 0: the general form.
inline constexpr int32_t general_form = -1;
Problem format_number(double number, std::string_view locale, int32_t decimals, std::string_view& text) noexcept;
Problem versions(std::string_view& text) noexcept;

/// What the last problem was, as a sentence without its full stop: At character 4: "13" is not a month (1 to 12).
std::string_view problem_text() noexcept;
/// The value that it was about, as messages show it: in quotes, on one line, long ones cut.
std::string_view quoted(std::string_view text) noexcept;
/// A locale that was asked for by a name that another one stands in for, told once a name; empty: nothing to tell.
std::string_view take_remark() noexcept;

/// Gives everything back. The objects of the host that are still alive then, which is none.
int64_t close() noexcept;

}  // namespace vxpg

#endif
