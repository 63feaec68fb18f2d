// How a file holds records: its format, its separator, its header line; and which columns are meant.
#ifndef VXNLS_CLI_TABLE_DIALECT_H
#define VXNLS_CLI_TABLE_DIALECT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vxcli::table {

/// In every format LF ends a record, and a CR right before it belongs to the line end. A CR anywhere else, and NUL, are
/// bytes of a cell. A last record needs no line end.
enum class Format {
  csv,          ///< RFC 4180: cells in quotes may hold separators, line ends, and quotes that are doubled
  tsv,          ///< cells between tabs, nothing quoted: a quote is a byte like any other
  tsv_escaped,  ///< the same with \t \n \r \\ in cells; a backslash before anything else stands for itself
  json_lines,   ///< one object a line; its members are the cells
  lines         ///< the whole line is the one cell
};

struct Dialect {
  Format format = Format::csv;
  char separator = ',';  ///< of CSV and TSV
  bool header = true;    ///< the first record names the columns; CSV and TSV only

  /// The dialect that a format has when nothing else is said: tabs in TSV, commas in CSV.
  static Dialect of(Format format);
  bool delimited() const;
  bool has_header() const { return header && delimited(); }
};

/// The words for the formats: csv, tsv, tsv-escaped, jsonl, lines.
std::string_view name_of(Format format);
std::vector<std::string> format_names();
/// By its word. Throws Failure (ExitCode::usage) with a guess at what was meant.
Format format_of(std::string_view name);
/// By the end of a file's name, capitals or not: .csv, .tsv, .tab, .jsonl, .ndjson, .txt.
std::optional<Format> format_of_file(std::string_view file);

/// One byte of ASCII, or "\t"; no line end, no quote, no letter or digit. Throws Failure (ExitCode::usage).
char separator_of(std::string_view text);

/// A column that was chosen.
struct Column {
  std::string name;  ///< from the header line or the key; without both the number, from 1
  size_t index = 0;  ///< from 0; nothing for JSON lines, whose members have no fixed place
};

/// What is wrong with a record. All its bytes are still there, and its cells are as below.
enum class Fault : uint8_t {
  unterminated_quote,  ///< at a quote that nothing closes: the cell goes on to the end of the input
  text_after_quote,  ///< at a byte behind a closing quote: it and what follows belong to the value, quotes as they are
  too_few_cells,     ///< at the end of the record: fewer than expected. An empty line is no fault
  too_many_cells,    ///< at the first cell that is too much
  not_an_object,     ///< at the byte at which a line stops being a JSON object; it has no cells then
  repeated_key       ///< at the value of a chosen key that stood before: this cell, the last one, counts
};
std::string_view describe(Fault fault);

struct Flaw {
  Fault fault;
  size_t at;  ///< bytes from the start of the record; of the input for a header line
};

/// What stands before the first record of data.
struct Head {
  std::string bytes;               ///< as they are: the byte order mark, then the header line with its line end
  std::vector<std::string> names;  ///< of the header line; empty where there is none
  std::vector<Flaw> flaws;         ///< of the header line
};

/// Finds columns by the names of the header line, or else by number from 1; for JSON lines every name is a key. In the
/// order of `wanted`. Throws Failure (ExitCode::usage): no such column, a name that several columns have, a column
/// twice.
std::vector<Column> choose_columns(const Dialect& dialect, const Head& head, std::span<const std::string> wanted);

}  // namespace vxcli::table

#endif
