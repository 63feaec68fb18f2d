// What the values of a column can be, and where they stand.
#ifndef VXNLS_CLI_COLUMN_KIND_H
#define VXNLS_CLI_COLUMN_KIND_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vxcli::column {

enum class Kind : uint8_t { date, time, datetime, period, integer, number, text };
inline constexpr std::array<std::string_view, 7> kind_words = {"date",    "time",   "datetime", "period",
                                                               "integer", "number", "text"};
inline constexpr size_t kinds = kind_words.size();

/// What is longer is text.
inline constexpr size_t longest_value = 1000;  // bytes

/// What stands first in a date whose numbers alone do not tell: 03/04/21.
enum class Order : uint8_t { none, day_first, month_first, year_first };
inline constexpr std::array<std::string_view, 4> order_words = {"none", "day-first", "month-first", "year-first"};

/// By what a question was decided.
enum class Source : uint8_t {
  nothing,   ///< not decided
  evidence,  ///< values of the column that can be read in one way only
  option,    ///< the command line
  locale,    ///< the customs of the locale that the command line names
  profile    ///< a file that a person may have written
};
inline constexpr std::array<std::string_view, 5> source_words = {"nothing", "evidence", "option", "locale", "profile"};

template <class Enum, size_t size>
constexpr std::optional<Enum> by_word(const std::array<std::string_view, size>& words, std::string_view word) {
  for (size_t i = 0; i < size; ++i) {
    if (words[i] == word) return static_cast<Enum>(i);
  }
  return std::nullopt;
}
template <class Enum, size_t size>
constexpr std::string_view word_of(const std::array<std::string_view, size>& words, Enum value) {
  return words[static_cast<size_t>(value)];
}

/// Where a value stands. Values come in the order of `record`.
struct Place {
  uint64_t line = 0;    ///< from 1
  uint64_t record = 0;  ///< from 1, the header not counted
  uint64_t offset = 0;  ///< of the cell's first byte in the input
};

}  // namespace vxcli::column

#endif
