// Columns with known answers: text as people and programs of ten countries write it, and dirt.
//
// Days are known by std::chrono, texts come from ICU's own formatter by patterns that stand here, numbers from their
// digits: nothing of what is tested takes part.
#ifndef VXNLS_TESTS_CLI_COLUMN_GENERATOR_H
#define VXNLS_TESTS_CLI_COLUMN_GENERATOR_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vxtest {

/// What a cell of the column means: the text that it is to become. Nothing: it cannot be read, or only against the rest
/// of the column.
struct Cell {
  std::string text;
  std::optional<std::string> answer;
  bool against = false;  ///< it can be read in one way, which is not that of the column
  bool hard = false;     ///< people understand it, by what is in no locale: "March 5th, 2021", "2O21-03-05", "1,5 mio"
};

struct ColumnSource {
  const char* locale;
  std::vector<const char*> dates;  ///< ICU patterns; the numeric ones all in one order
  const char* other_order;         ///< the same with day and month exchanged; null: none
  char16_t zero;                   ///< of its digits
  const char* decimal_point;
  const char* group_separator;
};
const std::vector<ColumnSource>& column_sources();

/// `rows` dates of a country, always the same for a seed. About 6 in 100 are empty or unreadable, and 1 in 200 has day
/// and month exchanged where that shows; 1 in 100 is hard.
std::vector<Cell> date_column(const ColumnSource& source, size_t rows, uint32_t seed);
/// Likewise numbers, whole and with fractions; 1 in 100 is hard, 1 in 200 has "." and "," exchanged where that shows.
std::vector<Cell> number_column(const ColumnSource& source, size_t rows, uint32_t seed);

}  // namespace vxtest

#endif
