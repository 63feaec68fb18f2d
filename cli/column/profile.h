// What was found out about columns, and the file that keeps it. docs/columns.md describes the file.
#ifndef VXNLS_CLI_COLUMN_PROFILE_H
#define VXNLS_CLI_COLUMN_PROFILE_H

#include <string>
#include <string_view>
#include <vector>

#include "cli/column/kind.h"
#include "cli/json.h"
#include "vxnls/types.h"

namespace vxcli::column {

/// Limits of Decision::first_year: the last of the hundred years has four digits.
inline constexpr int32_t earliest_first_year = 1582, latest_first_year = 9900;

/// How every value of a column is read: decided once, held for all of them. This is all that a Reader needs.
struct Decision {
  std::string column;
  Kind kind = Kind::text;
  std::string locale;         ///< canonical name: its names of months and days, its markers
  std::string locale_source;  ///< "--locale", "VXNLS_LOCALE", "auto", "profile" ...

  Order order = Order::none;  ///< none: values that read differently in two orders are ambiguous
  Source order_by = Source::nothing;
  std::vector<std::string> forms;  ///< patterns, tried in order; see docs/columns.md
  int32_t first_year = 1960;       ///< first of the hundred years that two-digit years mean

  std::string decimal_point;  ///< "." or ","; empty: values that read differently with the two are ambiguous
  Source decimal_by = Source::nothing;
  std::string group_separators;  ///< each may stand between groups: " .'"; one kind in one number
  std::string unit;  ///< a percent sign or currency that the numbers carry and that is taken off; empty: none

  bool strict = false;  ///< values are taken as they stand: nothing is cleaned, numbers have full width
};

/// A value that is shown.
struct Example {
  Place place;
  std::string value;  ///< cut to 200 bytes
};

struct FormShare {
  std::string pattern;
  Kind kind = Kind::text;
  uint64_t count = 0;
  Example example;  ///< the first
};

/// Values that decide a question for one side.
struct Evidence {
  uint64_t count = 0;
  std::vector<Example> first;
};

/// Values that are not read, or not by the decision.
struct Unread {
  Place place;
  std::string value;
  size_t position = 0;  ///< bytes from the start of the value to what cannot stand there
  size_t length = 0;    ///< bytes of that; 0 at the end of the value
  std::string expected;
  VXStatus status = 0;
};

struct LocaleRank {
  std::string locale;
  uint64_t explained = 0;  ///< values that are read with its names, order and separators
};

struct ColumnReport {
  Decision decision;

  /// values = empty + read + ambiguous + contradicting + unread
  uint64_t values = 0;
  uint64_t empty = 0;                     ///< nothing, or blanks only
  uint64_t read = 0;                      ///< by the decision
  uint64_t ambiguous = 0;                 ///< two readings, and nothing that decides
  uint64_t contradicting = 0;             ///< read only against the decided order, decimal point or unit
  uint64_t unread = 0;                    ///< all else
  std::array<uint64_t, kinds> by_kind{};  ///< of the values that are not empty, each taken by itself

  std::vector<FormShare> forms;  ///< the most frequent first

  Evidence day_first, month_first, year_first;  ///< values that one order alone reads
  uint64_t either_order = 0;                    ///< values that read differently in two orders, decided or not
  Evidence point, comma;                        ///< values that tell which is the decimal point
  uint64_t either_decimal = 0;                  ///< 1,234 and 1.234, decided or not

  std::vector<Unread> first_ambiguous;
  std::vector<Unread> first_contradicting;
  std::vector<Unread> first_unread;

  std::vector<LocaleRank> locales;  ///< the best first
};

/// The columns of a file.
struct Profile {
  std::vector<ColumnReport> columns;
};

/// One report, as it stands in the file; the decision alone is what is read back.
Json to_json(const ColumnReport& report);
/// The whole file.
std::string write_profile(const Profile& profile);
/// The decisions of a file, in order. Throws Failure (ExitCode::usage) that names the file, the column and the member,
/// or line and column where it is no JSON. Members that a newer version may have are ignored where they are not part of
/// a decision; within one they are refused, since a misspelled member would silently change nothing.
std::vector<Decision> read_profile(std::string_view text, const std::string& file_name);

}  // namespace vxcli::column

#endif
