// What is told about the columns of a file: in a terminal, as a page, as JSON.
#ifndef VXNLS_CLI_REPORT_H
#define VXNLS_CLI_REPORT_H

#include <string>
#include <string_view>
#include <vector>

#include "cli/color.h"
#include "cli/column/profile.h"
#include "cli/columns.h"
#include "cli/json.h"

namespace vxcli {

struct FileReport {
  std::string file;
  std::string format;  // "csv"
  std::vector<column::ColumnReport> columns;
  columns::Findings findings;
};

/// A part of a column's values, and how it is named and told apart.
struct Share {
  std::string_view name;     // "read"
  std::string_view meaning;  // "by the decision"
  uint64_t count = 0;
  Tint tint = Tint::faint;
};
/// Of the values that are not empty: read, ambiguous, against the decision, unread; then the empty ones.
std::vector<Share> shares_of(const column::ColumnReport& report);

/// "12.5 %", with as many digits as tell it from 0 % and 100 %.
std::string percent(uint64_t part, uint64_t whole);

/// A sentence for each thing that was decided or left open, and why.
std::vector<std::string> reasons_of(const column::ColumnReport& report);

/// With bars where `bars`, and colours.
std::string report_text(const FileReport& report, Colors colors, bool bars);
/// A page of HTML that needs nothing else.
std::string report_page(const FileReport& report);
Json report_json(const FileReport& report);

}  // namespace vxcli

#endif
