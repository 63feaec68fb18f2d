// Tells what a column of values holds: one value a line in, a profile out.
//   column_profile [LOCALE] < values
#include <iostream>
#include <map>
#include <string>

#include "vxnls/vxnls.hpp"

namespace {

using namespace std::chrono;
using vxnls::form;

/// How many values are of a type, and the least and the greatest of them.
template <class T>
struct Type {
  const char* name;
  int count = 0;
  T least{}, greatest{};

  bool take(const vxnls::locale& locale, std::string_view text, vxnls::reading how) {
    how.explain = false;
    const auto read = locale.parse<T>(text, how);
    if (!read || *read != *read) return false;  // a missing value is not equal to itself
    if (count == 0 || *read < least) least = *read;
    if (count == 0 || greatest < *read) greatest = *read;
    return ++count, true;
  }
  template <class... Style>
  void tell(const vxnls::locale& locale, Style... style) const {
    if (count == 0) return;
    std::cout << name << ": " << count << ", " << locale.format(least, style...).value() << " to "
              << locale.format(greatest, style...).value() << '\n';
  }
};

/// Whether group separators, if there are any, stand where the locale sets them; the readers take them anywhere, and
/// 13.13.2026 for a number.
bool grouped(const vxnls::locale& locale, std::string_view text) {
  const auto whole = locale.parse<std::int64_t>(text, {.fraction = true, .explain = false});
  const auto as_written = locale.format(*whole, {.group = true});
  return text.starts_with(*as_written) || text.starts_with(*locale.format(*whole)) || *whole == 0;
}

}  // namespace

int main(int count, char** arguments) {
  auto host = vxnls::host::open().value();
  const auto locale = host.locale(count > 1 ? arguments[1] : "en_US", "UTC").value();
  Type<std::int64_t> integers{"whole numbers"};
  Type<double> numbers{"numbers"};
  Type<year_month_day> dates{"dates"};
  Type<local_seconds> datetimes{"datetimes"};
  int missing = 0, texts = 0;
  std::map<std::string, int> reasons;  // why texts are no dates

  for (std::string line; std::getline(std::cin, line);) {
    if (std::ranges::all_of(vxnls::code_points(line), vxnls::is_space) || vxnls::equal_caseless(line, "n/a")) {
      ++missing;
    } else if (!datetimes.take(locale, line, {.as = form::any}) && !dates.take(locale, line, {.as = form::any}) &&
               !(grouped(locale, line) && (integers.take(locale, line, {}) || numbers.take(locale, line, {})))) {
      ++texts;
      ++reasons[locale.parse<year_month_day>(line, form::any).why().what];
    }
  }
  integers.tell(locale, vxnls::number_style{.group = true});
  numbers.tell(locale, vxnls::number_style{.group = true});
  dates.tell(locale);
  datetimes.tell(locale);
  if (missing != 0) std::cout << "missing: " << missing << '\n';
  if (texts != 0) std::cout << "other texts: " << texts << '\n';
  for (const auto& [reason, times] : reasons) std::cout << "  no date: " << reason << ": " << times << '\n';
  return 0;
}
