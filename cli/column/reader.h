// Reads the values of a column by its decision, and writes them anew.
#ifndef VXNLS_CLI_COLUMN_READER_H
#define VXNLS_CLI_COLUMN_READER_H

#include <memory>
#include <string>
#include <string_view>

#include "cli/column/outcome.h"
#include "cli/column/profile.h"
#include "cli/column/profiler.h"

namespace vxcli::column {

/// How values are written.
///   neither      ISO 8601: 2021-03-04, 10:20:30.5, 2021-03-04T10:20:30+02:00 (an offset stays as it was given),
///   2021-W09,
///                2021-03, 2021-Q1. Numbers plain: a sign, all digits that were given, "." and an exponent with "E"
///   to_pattern   dates, times and datetimes by this pattern and the names of `to_locale`, or else of the decision's
///                locale. What carries an offset is written as the clock showed it
///   to_locale    by this locale's main patterns; numbers by its decimal point and group separator, all digits kept
struct OutputChoice {
  std::string to_pattern;
  std::string to_locale;  ///< canonical
};

/// Of anything but `read` and `empty`: where and why.
struct Refusal {
  size_t position = 0;   ///< bytes from the start of the original value
  size_t length = 0;     ///< bytes of what cannot stand there; 0 at the end
  std::string expected;  ///< for people: "\"13\" is not a month (1 to 12), reading %m"
  VXStatus status = 0;   ///< as the library gives it; 0 where its readers took the text and the decision did not
};

/// One object a thread. Nothing that was read changes what comes later: the decision is held.
class Reader {
 public:
  /// Throws Failure (ExitCode::usage) for a form or an output pattern that cannot be used.
  Reader(const LocaleMaker& make_locale, const Decision& decision, const OutputChoice& output = {});
  ~Reader();
  Reader(Reader&&) noexcept;
  Reader& operator=(Reader&&) noexcept;

  /// Reads a value. On `read`, text() is what to write. The value must stay where it is until refusal() is done.
  Outcome read(std::string_view value);
  /// Until the next read. Of `text` columns the value itself.
  std::string_view text() const;
  /// The pattern by which the last value was read; empty for numbers and text.
  std::string_view form() const;
  /// Why the last value was refused. Worked out when it is asked for.
  const Refusal& refusal();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vxcli::column

#endif
