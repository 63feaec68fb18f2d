// Records and their cells, as places in the text: nothing is copied, and what is not rewritten stays as it was.
#ifndef VXNLS_CLI_TABLE_SPLITTER_H
#define VXNLS_CLI_TABLE_SPLITTER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cli/table/dialect.h"
#include "cli/table/marks.h"

namespace vxcli::table {

/// Whole records, a piece of the input.
struct Block {
  std::string_view text;
  uint64_t offset = 0;  ///< of its first byte in the input, from 0
  uint64_t line = 1;    ///< on which it begins, from 1; a line ends with LF, also within quotes
  uint64_t record = 1;  ///< number of its first record, from 1; a header line does not count
};

enum class Kind : uint8_t {
  text,     ///< a cell of CSV, TSV or lines; a JSON string
  number,   ///< a JSON number: its decimal point is a dot whatever the locale
  literal,  ///< JSON true, false or null
  nested    ///< a JSON object or array, its brackets included
};

/// A chosen column's place in a record.
struct Cell {
  size_t column = 0;  ///< index into the chosen columns
  size_t begin = 0;   ///< in bytes from the start of the record, quotes included
  size_t end = 0;
  Kind kind = Kind::text;
  bool quoted = false;   ///< begins with a quote
  bool escaped = false;  ///< the value is not simply the bytes, or those between the quotes
};

/// One record. The views lead into the block; everything is valid until the next one.
struct Record {
  std::string_view text;      ///< the whole record with its line end
  std::string_view line_end;  ///< its last bytes: "\n", "\r\n", or nothing at the end of the input
  uint64_t number = 0;        ///< from 1; a header line does not count
  uint64_t line = 0;          ///< on which it begins
  uint64_t offset = 0;        ///< of its first byte in the input
  size_t cell_count = 0;      ///< cells or members that it has, chosen or not
  std::vector<Cell> cells;    ///< the chosen ones that are there, in order of place
  std::vector<Flaw> flaws;    ///< mostly empty

  std::string_view token(const Cell& cell) const { return text.substr(cell.begin, cell.end - cell.begin); }
  /// The line on which a byte stands: more than `line` behind a line end in quotes.
  uint64_t line_of(size_t at) const;
};

/// Goes through the records of blocks. One object a thread.
class Splitter {
 public:
  /// `expected`: cells that a record should have; 0 where that is not known or, as in JSON lines, makes no difference.
  explicit Splitter(const Dialect& dialect, std::vector<Column> columns = {}, size_t expected = 0);

  /// Begins with a block, which stays where it is until the last record was taken.
  void start(const Block& block);
  /// False behind the last record. Reuses the memory of `record`.
  bool next(Record& record);

  /// What a cell says, without quotes and escapes; of a JSON number, literal or nested value the bytes. Leads into the
  /// record, or into `scratch` where something was escaped. An escape of JSON that means nothing (a lone surrogate),
  /// or one beside bytes that are not UTF-8, leaves the whole string as it was written.
  std::string_view value(const Record& record, const Cell& cell, std::string& scratch) const;

  /// Appends `value` as the cell should have it: in quotes if it was so, or if it must be; a JSON string stays a
  /// string, anything else of JSON becomes a number when the value is one by JSON's grammar, else a string. False, and
  /// nothing appended, where the format has no way to write the value: a line end in lines, that or a
  /// separator in plain TSV, a separator other than the tab in escaped TSV.
  [[nodiscard]] bool encode(const Cell& cell, std::string_view value, std::string& out) const;

  /// The names in a record: the values of its cells, or the keys of its members.
  std::vector<std::string> names(std::string_view record) const;

  const std::vector<Column>& columns() const { return columns_; }

 private:
  enum class Quotes : uint8_t { none, plain, with_escapes };

  /// The place of the i-th chosen column in a record, in order of place.
  size_t index_at(size_t i) const { return i < in_order_.size() ? columns_[in_order_[i]].index : SIZE_MAX; }
  void take_cell(Record& record, size_t begin, size_t end, Quotes quotes) const;
  void end_record(Record& record, size_t end, bool complete);
  bool next_delimited(Record& record);
  bool next_object(Record& record);

  Dialect dialect_;
  char separator_;
  std::vector<Column> columns_;
  std::vector<size_t> in_order_;  // indices of columns_, by their place in the record
  size_t expected_;
  Block block_;
  size_t at_ = 0;  // in the block: what was not given out yet
  uint64_t line_ = 0;
  uint64_t number_ = 0;
  Marks marks_;
};

/// Copies a block, with some cells rewritten: what is not touched in whole stretches, byte for byte. Cells are given in
/// order of place.
class Rewriter {
 public:
  /// Appends to `out`.
  Rewriter(const Splitter& splitter, const Block& block, std::string& out);

  /// Before the cells of each record that has any to rewrite or that may be dropped.
  void begin(const Record& record);
  /// Rewrites a cell of the record that was begun last. False, and the cell stays, where Splitter::encode refuses.
  [[nodiscard]] bool put(const Cell& cell, std::string_view value);
  /// Leaves out the record that was begun last, what was put in it too.
  void drop();
  /// Copies up to the end of the block.
  void finish();
  /// Copies up to the record that was begun last, which and whose successors are left out.
  void finish_before();

 private:
  void copy_to(size_t end);

  const Splitter& splitter_;
  const std::string_view text_;
  std::string& out_;
  size_t copied_ = 0;        // of text_
  std::string_view record_;  // begun last
  size_t record_begin_ = 0;
  size_t out_before_ = 0;  // the state when it was begun
  size_t copied_before_ = 0;
};

/// The place of the first byte that is not well-formed UTF-8, npos when all is.
size_t invalid_utf8(std::string_view text);

}  // namespace vxcli::table

#endif
