// Text as the command needs it: UTF-8 and units, quoting, columns.
#ifndef VXNLS_CLI_TEXT_H
#define VXNLS_CLI_TEXT_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vxnls/types.h"

namespace vxcli {

std::string utf8(VXChar code_point);
/// A text of a locale's record, whatever length is stored there.
std::string utf8(const NLSName& name);
/// Nothing when the text is not well-formed UTF-8.
std::optional<std::u32string> utf32(std::string_view text);

/// A text of somebody else's, a column's or a file's name, on one line and with nothing that a terminal would act upon.
std::string visible(std::string_view text);
/// The same in quotes, and long ones cut: a value as messages show it.
std::string in_quotes(std::string_view text);

std::string_view without_blanks(std::string_view text);  // at both ends: blanks and tabs

/// Whether `part` stands in the text, upper and lower case being the same.
bool contains(std::string_view text, std::string_view part);

/// "a, b or c"
std::string alternatives(const std::vector<std::string>& words);

/// Columns that a terminal shows the text in: 2 for wide East Asian characters, 0 for combining ones and for paint.
size_t display_width(std::string_view text);

/// Lines of cells, each column as wide as its widest cell; the last column is not filled up.
class Table {
 public:
  explicit Table(std::string indent = {}) : indent_(std::move(indent)) {}
  void row(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  std::string text() const;

 private:
  std::string indent_;
  std::vector<std::vector<std::string>> rows_;
};

/// Breaks lines at blanks so that none has more than `width` columns; line ends in the text stay. Continued lines are
/// indented by `indent` columns.
std::string wrapped(std::string_view text, size_t width, size_t indent = 0);

}  // namespace vxcli

#endif
