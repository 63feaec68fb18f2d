#include "cli/columns.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <thread>
#include <utility>

#include "cli/number.h"
#include "cli/options.h"
#include "cli/table/pipeline.h"
#include "cli/table/progress.h"
#include "cli/text.h"

namespace vxcli::columns {

namespace {

constexpr std::string_view format_words[] = {"csv", "tsv", "tsv-escaped", "jsonl", "lines"};
constexpr std::string_view decimal_words[] = {"point", "comma"};
constexpr uint64_t records_for_names = 100;

}  // namespace

constexpr Option chosen{.name = "columns",
                        .letter = 'c',
                        .value = "COLUMNS",
                        .help =
                            "names of the header line, keys of JSON lines, or numbers from 1, with commas between "
                            "them, each with its kind behind a colon if that is known: when:date,amount:number"};
constexpr Option format{.name = "format",
                        .value = "FORMAT",
                        .help = "how the file holds records; else by the file's name, or CSV",
                        .choices = format_words,
                        .completes = Completes::choices};
constexpr Option separator{
    .name = "separator", .value = "CHARACTER", .help = "between the cells of CSV, as ';' or '\\t'; else a comma"};
constexpr Option no_header{.name = "no-header", .help = "the first record is data; columns go by their numbers"};
constexpr Option locales{.name = "locales",
                         .value = "NAMES",
                         .help = "the locales that --locale auto tries, with commas between them",
                         .completes = Completes::locales};
constexpr Option day_first{.name = "day-first", .help = "03/04/21 is 3 April"};
constexpr Option month_first{.name = "month-first", .help = "03/04/21 is March 4"};
constexpr Option decimal{.name = "decimal",
                         .value = "MARK",
                         .help = "the decimal mark of numbers: point (1,234.5) or comma (1.234,5)",
                         .choices = decimal_words,
                         .completes = Completes::choices};
constexpr Option first_year{
    .name = "first-year", .value = "YEAR", .help = "the first of the hundred years that 00 to 99 mean; 1960"};
constexpr Option strict{.name = "strict",
                        .help = "values as they stand: other blanks, minus signs and digits than ASCII's are not read"};
constexpr Option jobs{
    .name = "jobs", .letter = 'j', .value = "N", .help = "threads; else one for each processor, at most 4"};

namespace {

table::Dialect dialect_of(const Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  const std::string* const path = file_named(invocation.arguments.values());
  table::Format chosen_format = table::Format::csv;
  if (const auto word = arguments.value(format)) chosen_format = table::format_of(*word);
  else if (path != nullptr) chosen_format = table::format_of_file(*path).value_or(table::Format::csv);
  table::Dialect dialect = table::Dialect::of(chosen_format);
  if (const auto mark = arguments.value(separator)) {
    if (!dialect.delimited()) fail(ExitCode::usage, "--separator is for CSV and TSV");
    dialect.separator = table::separator_of(*mark);
  }
  if (arguments.has(no_header)) dialect.header = false;
  return dialect;
}

Wanted wanted_of(std::string_view text) {
  const size_t colon = text.rfind(':');
  if (colon == std::string_view::npos) return {std::string(text), std::nullopt};
  const auto kind = column::by_word<column::Kind>(column::kind_words, text.substr(colon + 1));
  // A colon may also belong to the column's name.
  if (!kind) return {std::string(text), std::nullopt};
  return {std::string(text.substr(0, colon)), kind};
}

std::vector<Wanted> wanted_of(const Invocation& invocation, const table::Head& head) {
  std::vector<Wanted> wanted;
  for (const std::string& value : invocation.arguments.all_values(chosen)) {
    const Wanted whole = wanted_of(value);
    if (std::find(head.names.begin(), head.names.end(), whole.name) != head.names.end()) {
      wanted.push_back(whole);  // also when there is a comma in the name
      continue;
    }
    std::string_view rest = value;
    for (bool more = true; more;) {
      const size_t comma = rest.find(',');
      more = comma != std::string_view::npos;
      const std::string_view name = rest.substr(0, comma);
      if (name.empty()) fail(ExitCode::usage, "--columns: there is a name missing in {}", in_quotes(value));
      wanted.push_back(wanted_of(name));
      if (more) rest.remove_prefix(comma + 1);
    }
  }
  return wanted;
}

}  // namespace

std::vector<std::string> names_of(const std::vector<Wanted>& wanted) {
  std::vector<std::string> names;
  names.reserve(wanted.size());
  for (const Wanted& each : wanted) names.push_back(each.name);
  return names;
}

Input::Input(Invocation& invocation)
    : file_(file_named(invocation.arguments.values())),
      dialect_(dialect_of(invocation)),
      reader_(std::make_unique<table::BlockReader>(file_.descriptor(), file_.name(), dialect_)) {
  if (file_.descriptor() == STDIN_FILENO && isatty(STDIN_FILENO) != 0) {
    invocation.messages.note("reading records from the terminal; Ctrl-D ends them");
  }
  wanted_ = wanted_of(invocation, reader_->head());
}

namespace {

/// Something that is read or written.
struct Place {
  std::string name;  // in messages
  std::string path;  // of an option; empty: open already
  struct stat status {};
  bool regular = false;

  bool same(const Place& other) const {
    if (!path.empty() && path == other.path) return true;
    return regular && other.regular && status.st_dev == other.status.st_dev && status.st_ino == other.status.st_ino;
  }
};

Place open_place(std::string name, int descriptor) {
  Place place{.name = std::move(name), .path = ""};
  place.regular = fstat(descriptor, &place.status) == 0 && S_ISREG(place.status.st_mode);
  return place;
}

}  // namespace

void Input::refuse_to_overwrite(const Arguments& arguments, std::initializer_list<const Option*> options) const {
  std::vector<Place> places{open_place("the input", file_.descriptor()), open_place("the output", STDOUT_FILENO)};
  for (const Option* option : options) {
    const auto path = arguments.value(*option);
    if (!path) continue;
    Place place{.name = fmt::format("the file of {}", spelled(*option)), .path = *path};
    place.regular = stat(path->c_str(), &place.status) == 0 && S_ISREG(place.status.st_mode);
    places.push_back(std::move(place));
  }
  for (size_t i = 0; i < places.size(); ++i) {
    for (size_t j = i + 1; j < places.size(); ++j) {
      // What is written to an output that is open already does not take its place.
      const bool through = i == 1 && open_already(places[j].path);
      if (through || !places[i].same(places[j])) continue;
      fail(ExitCode::usage, "{} is both {} and {}", i == 0 ? name() : places[j].path, places[i].name, places[j].name);
    }
  }
}

void Input::rewind() {
  file_.rewind();
  reader_ = std::make_unique<table::BlockReader>(file_.descriptor(), file_.name(), dialect_);
  reader_->head();
}

std::vector<table::Column> Input::choose(const std::vector<std::string>& names) {
  std::vector<std::string> all = names;
  if (all.empty() && dialect_.has_header()) {
    // Columns of one name can be told apart by their numbers alone, so all are meant by number.
    std::vector<table::Column> columns;
    const auto& header = reader_->head().names;
    for (size_t i = 0; i < header.size(); ++i) columns.push_back({header[i], i});
    return columns;
  }
  if (all.empty()) {
    std::set<std::string> known;
    const table::Splitter splitter(dialect_);
    table::Splitter records(dialect_);
    for (const table::Block& block : reader_->sample(records_for_names)) {
      table::Record record;
      for (records.start(block); records.next(record);) {
        const auto cells = splitter.names(record.text);
        for (size_t i = 0; i < cells.size(); ++i) {
          std::string name = dialect_.format == table::Format::json_lines ? cells[i] : std::to_string(i + 1);
          if (known.insert(name).second) all.push_back(std::move(name));
        }
      }
    }
  }
  return table::choose_columns(dialect_, reader_->head(), all);
}

unsigned threads(const Invocation& invocation) {
  constexpr unsigned usual_most = 4;
  constexpr int32_t most = 256;
  if (const auto given = invocation.arguments.value(jobs)) {
    return static_cast<unsigned>(option_number("--jobs", *given, 1, most));
  }
  return std::clamp(std::thread::hardware_concurrency(), 1U, usual_most);
}

column::LocaleMaker locale_maker(Session& session) {
  session.zone();  // here, not by several threads at once
  return [&session](const std::string& name) { return session.locale_called(name); };
}

column::ProfilerOptions profiler_options(Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  column::ProfilerOptions options;
  const auto named = arguments.value(options::locale);
  if (named == options::ranked_locale) {
    options.locale_source = options::ranked_locale;
    if (const auto list = arguments.value(locales)) {
      std::string_view rest = *list;
      for (bool more = true; more;) {
        const size_t comma = rest.find(',');
        more = comma != std::string_view::npos;
        options.locales.push_back(
            invocation.session.resolve_locale(std::string(rest.substr(0, comma)), spelled(columns::locales)));
        if (more) rest.remove_prefix(comma + 1);
      }
    } else {
      options.locales = column::auto_locales();
    }
  } else {
    if (arguments.has(locales)) fail(ExitCode::usage, "--locales goes with --locale auto");
    options.locales = {invocation.session.locale_name()};
    options.locale_source = invocation.session.locale_source();
    options.locale_given = named.has_value();
  }
  if (arguments.has(day_first) && arguments.has(month_first)) {
    fail(ExitCode::usage, "--day-first and --month-first exclude each other");
  }
  if (arguments.has(day_first)) options.order = column::Order::day_first;
  if (arguments.has(month_first)) options.order = column::Order::month_first;
  if (const auto mark = arguments.value(decimal)) options.decimal_point = std::string(1, *mark == "comma" ? ',' : '.');
  if (const auto year = arguments.value(first_year)) {
    options.first_year = option_number("--first-year", *year, column::earliest_first_year, column::latest_first_year);
  }
  options.strict = arguments.has(strict);
  return options;
}

bool Findings::add_flaws(const table::Record& record) {
  ++records;
  if (record.flaws.empty()) return true;
  ++flaws;
  const table::Flaw& flaw = record.flaws.front();
  const bool readable = flaw.fault != table::Fault::not_an_object;
  if (!readable) ++lost;
  if (!first_flaw.empty()) return readable;
  first_flaw = fmt::format("line {}, byte {}: {}", record.line_of(flaw.at), record.offset + flaw.at,
                           table::describe(flaw.fault));
  return readable;
}

void Findings::add_broken(const table::Block& block) {
  const size_t at = table::invalid_utf8(block.text);
  if (at == std::string_view::npos) return;
  if (!broken_at) broken_at = block.offset + at;
}

void Findings::merge(const Findings& later) {
  records += later.records;
  if (flaws == 0) first_flaw = later.first_flaw;
  flaws += later.flaws;
  lost += later.lost;
  if (!broken_at) broken_at = later.broken_at;
}

std::vector<std::string> Findings::notes() const {
  std::vector<std::string> lines;
  if (flaws != 0) {
    lines.push_back(fmt::format("{} not as expected; the first: {}",
                                flaws == 1 ? "1 record is" : fmt::format("{} records are", flaws), first_flaw));
  }
  if (broken_at) lines.push_back(fmt::format("not all is UTF-8; the first such byte is byte {}", *broken_at));
  return lines;
}

column::Place place_of(const table::Record& record, const table::Cell& cell) {
  return {record.line_of(cell.begin), record.number, record.offset + cell.begin};
}

Profiled profile(Invocation& invocation, Input& input, const std::vector<table::Column>& chosen_columns,
                 const std::vector<column::ProfilerOptions>& options) {
  struct Result {
    std::vector<column::Profiler> profilers;
    Findings findings;
  };
  const column::LocaleMaker maker = locale_maker(invocation.session);
  const auto make_profilers = [&] {
    std::vector<column::Profiler> made;
    made.reserve(options.size());
    for (const column::ProfilerOptions& each : options) made.emplace_back(maker, each);
    return made;
  };
  const size_t expected = input.expected_cells();
  std::vector<column::Profiler> total = make_profilers();
  Findings findings;
  table::Progress progress(invocation.arguments.has(options::quiet));
  table::Stages<Result> stages;
  stages.make_worker = [&] {
    auto splitter = std::make_shared<table::Splitter>(input.dialect(), chosen_columns, expected);
    return [&, splitter](const table::Block& block, Result& result) {
      if (result.profilers.empty()) result.profilers = make_profilers();
      for (column::Profiler& profiler : result.profilers) profiler.clear();
      result.findings = {};
      result.findings.add_broken(block);
      table::Record record;
      std::string scratch;
      for (splitter->start(block); splitter->next(record);) {
        result.findings.add_flaws(record);
        for (const table::Cell& cell : record.cells) {
          result.profilers[cell.column].add(splitter->value(record, cell, scratch), place_of(record, cell));
        }
      }
    };
  };
  stages.consume = [&](Result& result) {
    for (size_t i = 0; i < total.size(); ++i) total[i].merge(result.profilers[i]);
    findings.merge(result.findings);
    progress.show(input.reader().bytes_read(), input.reader().size());
    return true;
  };
  table::run_pipeline(input.reader(), threads(invocation), stages);
  progress.wipe();
  Profiled profiled;
  for (size_t i = 0; i < total.size(); ++i) profiled.columns.push_back(total[i].report(chosen_columns[i].name));
  profiled.findings = findings;
  return profiled;
}

std::string describe(const column::Decision& decision) {
  using column::Kind;
  using column::Source;
  const auto by = [](Source source) -> std::string_view {
    switch (source) {
      case Source::evidence: return "decided by values of the column";
      case Source::option: return "by option";
      case Source::locale: return "the locale's custom";
      case Source::profile: return "by the profile";
      default: return "undecided";
    }
  };
  std::string text(column::word_of(column::kind_words, decision.kind));
  if (decision.kind == Kind::text) return text;
  if (decision.kind == Kind::integer || decision.kind == Kind::number) {
    if (decision.decimal_by != Source::nothing) {
      text +=
          fmt::format(", decimal {} ({})", decision.decimal_point == "," ? "comma" : "point", by(decision.decimal_by));
    }
    if (!decision.unit.empty()) text += fmt::format(", in {}", decision.unit);
  } else if (decision.order_by != Source::nothing) {
    text += fmt::format(", {} ({})", column::word_of(column::order_words, decision.order), by(decision.order_by));
  }
  return text + fmt::format(", locale {} ({})", decision.locale, decision.locale_source);
}

}  // namespace vxcli::columns
