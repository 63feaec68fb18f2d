// Finds out what a column is.
#ifndef VXNLS_CLI_COLUMN_PROFILER_H
#define VXNLS_CLI_COLUMN_PROFILER_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/column/kind.h"
#include "cli/column/profile.h"
#include "vxnls/table.h"

namespace vxcli::column {

/// Gives a private locale by canonical name, one that nobody else uses or changes. Its zone counts only where a
/// datetime with an offset is written by a pattern. Called by constructors and Profiler::report only.
using LocaleMaker = std::function<VXLocale*(const std::string& name)>;

/// The locales that "auto" tries, most spoken first.
const std::vector<std::string>& auto_locales();

struct ProfilerOptions {
  std::vector<std::string> locales;  ///< canonical; more than one: they are ranked, and the best is taken
  std::string locale_source;         ///< for the decision: "--locale", "LANG", "auto"
  bool locale_given = false;         ///< by the command line: its order and decimal point count where no value decides
  std::optional<Kind> kind;          ///< what the column must be
  Order order = Order::none;         ///< --day-first, --month-first
  std::string decimal_point;         ///< "." or ",": given by option
  int32_t first_year = 1960;
  bool strict = false;
  size_t shown = 20;  ///< examples of each sort that are kept
};

/// Is fed the values of a column, keeps counts and a bounded number of examples, and decides.
///
/// The rules, in the order in which they apply:
///   Kind. Every value is tried as a number, a time, a date, a datetime and a period. The kind that most values have
///     is the column's if at least half of those that are not empty have it; else it is text. Integers and numbers
///     count together: one value with a fraction makes the column numbers. 20210304 is a date only where a date was
///     asked for.
///   Locale. Of several, the one by which most values are read; of equals the one that stands first.
///   Order. A value such as 25/12/21 is evidence for the order that alone reads it; 03/04/21 is none, nor is 03/03/21.
///     1. An option decides. 2. Evidence for one order alone decides for it; of evidence for several, at least 95 in a
///     hundred. The others contradict and are reported, never read. 3. Without any evidence the locale's order, if the
///     command line named the locale; an environment never decides. 4. Otherwise nothing is decided: what reads
///     differently in two orders is ambiguous, and not read. What reads in one order alone is still read.
///     Year first (99/12/31) is considered for two-digit years when option or locale say so, when more than 5 in a
///     hundred begin with what is no day, or when all but 5 in a hundred could be read so and the first numbers vary
///     less than the last.
///   Decimal point. The same rules: 1.234,50 and 1,5 and 1.234.567 are evidence, 1,234 and 1.234 are none.
///   Unit. A percent sign is taken off if at least 95 in a hundred numbers carry it; with fewer, those that do
///     contradict, and with more, those that do not. A currency is taken off numbers in any share; a second currency
///     contradicts.
class Profiler {
 public:
  Profiler(const LocaleMaker& make_locale, ProfilerOptions options);
  ~Profiler();
  Profiler(Profiler&&) noexcept;
  Profiler& operator=(Profiler&&) noexcept;

  /// Values in their order.
  void add(std::string_view value, const Place& place);
  /// Forgets all values, as if nothing had been added.
  void clear();
  /// Adds what another one, made with the same options, was fed with: values that come after all of this one's. The
  /// result is the same however the values are split.
  void merge(const Profiler& later);

  /// Decides and counts. May be called at any time.
  ColumnReport report(const std::string& column) const;

  struct State;  ///< inside only

 private:
  std::unique_ptr<State> state_;
};

}  // namespace vxcli::column

#endif
