// What the commands over columns share: their options, the file with its columns, how a column is profiled.
#ifndef VXNLS_CLI_COLUMNS_H
#define VXNLS_CLI_COLUMNS_H

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/column/profile.h"
#include "cli/column/profiler.h"
#include "cli/command.h"
#include "cli/file.h"
#include "cli/session.h"
#include "cli/table/block_reader.h"
#include "cli/table/dialect.h"
#include "cli/table/splitter.h"

namespace vxcli::columns {

extern const Option chosen;       // -c
extern const Option format;       // --format
extern const Option separator;    // --separator
extern const Option no_header;    // --no-header
extern const Option locales;      // --locales
extern const Option day_first;    // --day-first
extern const Option month_first;  // --month-first
extern const Option decimal;      // --decimal
extern const Option first_year;   // --first-year
extern const Option strict;       // --strict
extern const Option jobs;         // -j

struct Wanted {
  std::string name;
  std::optional<column::Kind> kind;
};

std::vector<std::string> names_of(const std::vector<Wanted>& wanted);

/// The file that the arguments name, and the columns that they choose.
class Input {
 public:
  explicit Input(Invocation& invocation);

  const std::string& name() const { return file_.name(); }
  const File& file() const { return file_; }
  const table::Dialect& dialect() const { return dialect_; }
  table::BlockReader& reader() { return *reader_; }
  /// What is written anew while it is read would be lost, and so would one of two things that go into one file.
  /// `options` name files that are written. Throws Failure (ExitCode::usage).
  void refuse_to_overwrite(const Arguments& arguments, std::initializer_list<const Option*> options) const;
  /// Goes back to the start, for another pass over a file that can_rewind().
  void rewind();

  /// Of -c. Empty: not given.
  const std::vector<Wanted>& wanted() const { return wanted_; }
  /// Finds the columns `names`, or, when it is empty, all that the file has. For JSON lines the latter looks at the
  /// first records, and so does a file without a header line. Throws Failure (ExitCode::usage).
  std::vector<table::Column> choose(const std::vector<std::string>& names);
  /// Cells that a record should have; 0 where nothing says so.
  size_t expected_cells() { return dialect_.has_header() ? reader_->head().names.size() : 0; }

 private:
  File file_;
  table::Dialect dialect_;
  std::unique_ptr<table::BlockReader> reader_;
  std::vector<Wanted> wanted_;
};

/// Threads to work with: -j, or as many as the machine has processors, at most 4.
unsigned threads(const Invocation& invocation);

/// How the columns are to be understood, from the options.
column::ProfilerOptions profiler_options(Invocation& invocation);
column::LocaleMaker locale_maker(Session& session);

/// What a look at the records found, besides the columns' reports.
struct Findings {
  uint64_t records = 0;
  uint64_t flaws = 0;  // records that are not as they should be
  uint64_t lost = 0;   // of them, those that have no cells at all
  std::string first_flaw;
  std::optional<uint64_t> broken_at;  // the first such byte, from the start of the input

  /// False when the record has no cells because it is no record of its format.
  bool add_flaws(const table::Record& record);
  void add_broken(const table::Block& block);
  /// What a later piece of the input found.
  void merge(const Findings& later);
  /// A line for each sort of trouble.
  std::vector<std::string> notes() const;
};

column::Place place_of(const table::Record& record, const table::Cell& cell);

/// Profiles columns from the reader's next record to the end.
struct Profiled {
  std::vector<column::ColumnReport> columns;
  Findings findings;
};
Profiled profile(Invocation& invocation, Input& input, const std::vector<table::Column>& chosen_columns,
                 const std::vector<column::ProfilerOptions>& options);

/// The decision in a few words: "date, day-first (decided by values of the column), locale de_DE (--locale)".
std::string describe(const column::Decision& decision);

}  // namespace vxcli::columns

#endif
