// vxnls normalise
#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <utility>

#include "cli/column/reader.h"
#include "cli/columns.h"
#include "cli/commands.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/number.h"
#include "cli/options.h"
#include "cli/table/pipeline.h"
#include "cli/table/progress.h"
#include "cli/text.h"

namespace vxcli {

namespace {

using column::Outcome;

constexpr std::string_view invalid_words[] = {"keep", "blank", "mark", "drop", "fail"};

constexpr Option profile_file{.name = "profile",
                              .value = "FILE",
                              .help = "columns and decisions of a file that \"vxnls recognise --emit-profile\" wrote",
                              .completes = Completes::files};
constexpr Option sample{.name = "sample",
                        .value = "N",
                        .help =
                            "records that the decisions come from, 10000 when not given; all: the whole file, which "
                            "is read twice"};
constexpr Option to_pattern{
    .name = "to", .value = "PATTERN", .help = "write dates and times by this pattern instead of ISO 8601"};
constexpr Option to_locale{.name = "to-locale",
                           .value = "NAME",
                           .help = "write as this locale does instead of ISO 8601 and plain numbers",
                           .completes = Completes::locales};
constexpr Option invalid{.name = "invalid",
                         .value = "WHAT",
                         .help =
                             "a value that is not read: keep it, leave the cell blank, put a mark before it, drop "
                             "its record, or fail at it",
                         .choices = invalid_words,
                         .completes = Completes::choices};
constexpr Option mark{.name = "mark", .value = "TEXT", .help = "what --invalid mark puts before a value; \"?\""};
constexpr Option rejects{.name = "rejects",
                         .value = "FILE",
                         .help = "a line of JSON for each value that was not read",
                         .completes = Completes::files};
constexpr Option max_unread{
    .name = "max-unread", .value = "N", .help = "the exit code is 0 with up to so many unread values, or N% of them"};
constexpr Option ok_unread{.name = "ok-unread", .help = "the exit code is 0 however many values are not read"};

enum class Invalid { keep, blank, mark, drop, fail };

constexpr size_t outcomes = 5;

struct Counts {
  std::array<uint64_t, outcomes> of{};

  uint64_t& operator[](Outcome outcome) { return of[static_cast<size_t>(outcome)]; }
  uint64_t operator[](Outcome outcome) const { return of[static_cast<size_t>(outcome)]; }
  uint64_t not_read() const {
    return (*this)[Outcome::unread] + (*this)[Outcome::ambiguous] + (*this)[Outcome::contradicts];
  }
  uint64_t values() const { return not_read() + (*this)[Outcome::read]; }
  void add(const Counts& other) {
    for (size_t i = 0; i < outcomes; ++i) of[i] += other.of[i];
  }
};

std::string_view word_of(Outcome outcome) {
  switch (outcome) {
    case Outcome::ambiguous: return "ambiguous";
    case Outcome::contradicts: return "contradicts";
    default: return "unread";
  }
}

constexpr size_t no_column = static_cast<size_t>(-1);

struct Reject {
  column::Place place;
  size_t column = no_column;  // none: the whole record is none of its format
  std::string value;
  Outcome outcome = Outcome::unread;
  column::Refusal refusal;
};

/// What becomes of a block.
struct Result {
  std::string output;
  std::vector<Reject> rejects;
  std::vector<Counts> counts;
  columns::Findings findings;
  bool failed = false;  // the output ends before the record of the last reject
};

/// What to do, the same for every thread.
struct Plan {
  table::Dialect dialect;
  std::vector<table::Column> columns;
  std::vector<column::Decision> decisions;
  column::OutputChoice output;
  Invalid invalid = Invalid::keep;
  std::string mark = "?";
  size_t expected_cells = 0;
};

/// Rewrites blocks; one a thread.
class Rewriting {
 public:
  Rewriting(const Plan& plan, const column::LocaleMaker& maker)
      : plan_(plan), splitter_(plan.dialect, plan.columns, plan.expected_cells) {
    for (column::Decision decision : plan.decisions) {
      readers_.emplace_back(maker, decision, plan.output);
      if (plan.dialect.format != table::Format::json_lines) continue;
      // The numbers of JSON have a decimal point whatever its strings have.
      decision.decimal_point = ".";
      decision.group_separators.clear();
      decision.unit.clear();
      number_readers_.emplace_back(maker, decision, plan.output);
    }
  }

  void work(const table::Block& block, Result& result) {
    result.output.clear();
    result.rejects.clear();
    result.counts.assign(plan_.columns.size(), {});
    result.findings = {};
    result.failed = false;
    result.findings.add_broken(block);
    table::Rewriter rewriter(splitter_, block, result.output);
    for (splitter_.start(block); splitter_.next(record_);) {
      bool drop = false;
      if (!result.findings.add_flaws(record_)) {
        result.rejects.push_back(whole_record());
        drop = plan_.invalid == Invalid::drop || plan_.invalid == Invalid::fail;
      }
      if (record_.cells.empty() && !drop) continue;
      rewriter.begin(record_);
      for (const table::Cell& cell : record_.cells) drop |= !rewrite(cell, rewriter, result);
      if (drop && plan_.invalid == Invalid::fail) {
        result.failed = true;
        rewriter.finish_before();
        return;
      }
      if (drop) rewriter.drop();
    }
    rewriter.finish();
  }

 private:
  Reject whole_record() const {
    const table::Flaw& flaw = record_.flaws.front();
    const size_t size = record_.text.size() - record_.line_end.size();
    return {.place = {record_.line, record_.number, record_.offset},
            .value = std::string(record_.text.substr(0, size)),
            .refusal = {.position = flaw.at, .expected = std::string(table::describe(flaw.fault))}};
  }

  /// False when the record cannot stay.
  bool rewrite(const table::Cell& cell, table::Rewriter& rewriter, Result& result) {
    // Numbers, true and null of JSON are values already; what is nested is none.
    if (cell.kind == table::Kind::literal || cell.kind == table::Kind::nested) return true;
    const column::Kind kind = plan_.decisions[cell.column].kind;
    const bool json_number =
        cell.kind == table::Kind::number && (kind == column::Kind::number || kind == column::Kind::integer);
    if (json_number && plan_.output.to_locale.empty()) {
      ++result.counts[cell.column][Outcome::read];
      return true;
    }
    column::Reader& reader = (json_number ? number_readers_ : readers_)[cell.column];
    const std::string_view value = splitter_.value(record_, cell, scratch_);
    const Outcome outcome = reader.read(value);
    ++result.counts[cell.column][outcome];
    if (outcome == Outcome::empty) return true;
    if (outcome == Outcome::read) {
      if (reader.text() == value || rewriter.put(cell, reader.text())) return true;
      fail(ExitCode::usage, "line {}: this format has no way to write {}", record_.line, in_quotes(reader.text()));
    }
    result.rejects.push_back(
        {columns::place_of(record_, cell), cell.column, std::string(value), outcome, reader.refusal()});
    switch (plan_.invalid) {
      case Invalid::keep: return true;
      case Invalid::blank: return rewriter.put(cell, "");
      case Invalid::mark: return rewriter.put(cell, plan_.mark + std::string(value));
      default: return false;
    }
  }

  const Plan& plan_;
  table::Splitter splitter_;
  std::vector<column::Reader> readers_, number_readers_;
  table::Record record_;
  std::string scratch_;
};

/// Up to how many unread values the exit code is 0.
struct Allowance {
  double share = 0;  // of the values
  uint64_t count = 0;

  bool covers(const Counts& counts) const {
    const uint64_t unread = counts.not_read();
    return unread <= count || static_cast<double>(unread) <= share * static_cast<double>(counts.values());
  }
};

Allowance allowance_of(const Arguments& arguments) {
  if (arguments.has(ok_unread)) return {.share = 1};
  const auto given = arguments.value(max_unread);
  if (!given) return {};
  std::string text = *given;
  const bool percent = text.ends_with('%');
  if (percent) text.pop_back();
  try {
    const double number = plain_number(text);
    constexpr double hundred = 100;
    if (percent && number >= 0 && number <= hundred) return {.share = number / hundred};
    if (!percent && number >= 0 && number < 1e18 && number == std::floor(number)) {
      return {.count = static_cast<uint64_t>(number)};
    }
  } catch (const ValueError&) {
  }
  fail(ExitCode::usage, "--max-unread is a count or a share from 0% to 100%, not {}", in_quotes(*given));
}

/// The file of --rejects.
class Rejects {
 public:
  Rejects(const std::string& path, const std::string& input_name, const Plan& plan)
      : file_(path), input_name_(input_name), plan_(plan) {}

  void put(const Reject& reject) {
    Json name;
    Json kind;
    if (reject.column != no_column) {
      name = plan_.columns[reject.column].name;
      kind = column::word_of(column::kind_words, plan_.decisions[reject.column].kind);
    }
    file_.out().line(json_line({{"file", input_name_},
                                {"line", reject.place.line},
                                {"record", reject.place.record},
                                {"byte", reject.place.offset},
                                {"column", name},
                                {"kind", kind},
                                {"value", reject.value},
                                {"outcome", word_of(reject.outcome)},
                                {"position", reject.refusal.position},
                                {"length", reject.refusal.length},
                                {"expected", reject.refusal.expected},
                                {"status", fmt::format("0x{:08x}", reject.refusal.status)}}));
  }
  void flush() { file_.out().flush(); }
  void finish() { file_.finish(); }

 private:
  NewFile file_;
  const std::string& input_name_;
  const Plan& plan_;
};

std::vector<column::Decision> decisions_of_profile(const std::string& path) {
  const File file(&path);
  std::string text;
  std::array<char, 1 << 16> bytes{};
  while (const size_t count = read_some(file.descriptor(), path, bytes.data(), bytes.size(), ::read)) {
    text.append(bytes.data(), count);
  }
  return column::read_profile(text, path);
}

class Normaliser {
 public:
  explicit Normaliser(Invocation& invocation)
      : invocation_(invocation),
        input_(invocation),
        maker_(columns::locale_maker(invocation.session)),
        allowance_(allowance_of(invocation.arguments)) {
    const Arguments& arguments = invocation.arguments;
    plan_.dialect = input_.dialect();
    const std::string word = arguments.value(invalid).value_or("keep");
    for (size_t i = 0; i < std::size(invalid_words); ++i) {
      if (invalid_words[i] == word) plan_.invalid = static_cast<Invalid>(i);
    }
    if (const auto text = arguments.value(mark)) plan_.mark = *text;
    if (plan_.mark.find_first_of("\t\r\n") != std::string::npos) {
      fail(ExitCode::usage, "--mark: a tab or line end would break the record");
    }
    if (arguments.has(to_pattern) && arguments.has(to_locale)) {
      fail(ExitCode::usage, "--to and --to-locale exclude each other");
    }
    if (const auto pattern = arguments.value(to_pattern)) plan_.output.to_pattern = *pattern;
    if (const auto name = arguments.value(to_locale)) {
      plan_.output.to_locale = invocation.session.resolve_locale(*name, spelled(to_locale));
    }
    input_.refuse_to_overwrite(arguments, {&profile_file, &rejects});
    plan_.expected_cells = input_.expected_cells();
    if (const auto path = arguments.value(profile_file)) use_profile(*path);
    else decide();
  }

  ExitCode run() {
    std::optional<Rejects> rejected;
    if (const auto path = invocation_.arguments.value(rejects)) rejected.emplace(*path, input_.name(), plan_);
    std::vector<Counts> counts(plan_.columns.size());
    std::vector<Reject> first(plan_.columns.size());
    columns::Findings findings;
    std::optional<Reject> failed;
    Output& out = invocation_.out;
    out.put(input_.reader().head().bytes);
    table::Progress progress(invocation_.arguments.has(options::quiet), table::Meanwhile::output);
    table::Stages<Result> stages;
    stages.make_worker = [&] {
      auto rewriting = std::make_shared<Rewriting>(plan_, maker_);
      return [rewriting](const table::Block& block, Result& result) { rewriting->work(block, result); };
    };
    stages.consume = [&](Result& result) {
      out.put(result.output);
      for (const Reject& reject : result.rejects) {
        if (reject.column != no_column && first[reject.column].value.empty()) first[reject.column] = reject;
        if (rejected) rejected->put(reject);
      }
      for (size_t i = 0; i < counts.size(); ++i) counts[i].add(result.counts[i]);
      findings.merge(result.findings);
      if (result.failed) failed = result.rejects.back();
      progress.show(input_.reader().bytes_read(), input_.reader().size());
      return !result.failed;
    };
    stages.before_waiting = [&] {
      out.flush();
      if (rejected) rejected->flush();
    };
    table::run_pipeline(input_.reader(), columns::threads(invocation_), stages);
    progress.wipe();
    if (rejected) rejected->finish();
    out.flush();
    if (failed) {
      fail(ExitCode::some_unread, "{}: line {}, byte {}: {}", input_.name(), failed->place.line, failed->place.offset,
           told(*failed));
    }
    return report(counts, first, findings);
  }

 private:
  void use_profile(const std::string& path) {
    const Arguments& arguments = invocation_.arguments;
    for (const Option* option : {&columns::day_first, &columns::month_first, &columns::decimal, &columns::first_year,
                                 &columns::strict, &columns::locales, &sample, &options::locale}) {
      if (arguments.has(*option)) fail(ExitCode::usage, "{} and --profile exclude each other", spelled(*option));
    }
    std::vector<column::Decision> decisions = decisions_of_profile(path);
    std::vector<std::string> names;
    for (const columns::Wanted& wanted : input_.wanted()) {
      const auto found = std::find_if(decisions.begin(), decisions.end(),
                                      [&](const column::Decision& each) { return each.column == wanted.name; });
      if (found == decisions.end()) fail(ExitCode::usage, "{} has no column {}", path, in_quotes(wanted.name));
      if (wanted.kind && *wanted.kind != found->kind) {
        fail(ExitCode::usage, "{} has the column {} as {}", path, in_quotes(wanted.name),
             column::word_of(column::kind_words, found->kind));
      }
      plan_.decisions.push_back(*found);
    }
    if (plan_.decisions.empty()) {
      for (column::Decision& decision : decisions) {
        if (decision.kind != column::Kind::text) plan_.decisions.push_back(std::move(decision));
      }
    }
    if (plan_.decisions.empty()) fail(ExitCode::usage, "{} has no column of dates, times or numbers", path);
    for (column::Decision& decision : plan_.decisions) {
      decision.locale = invocation_.session.resolve_locale(decision.locale, path);
      names.push_back(decision.column);
    }
    plan_.columns = input_.choose(names);
  }

  void decide() {
    const std::vector<columns::Wanted>& wanted = input_.wanted();
    if (wanted.empty() && plan_.dialect.format != table::Format::lines) {
      fail(ExitCode::usage, "say which columns with -c, as -c when:date,amount:number, or with --profile");
    }
    plan_.columns = input_.choose(columns::names_of(wanted));
    std::vector<column::ProfilerOptions> options(plan_.columns.size(), columns::profiler_options(invocation_));
    for (size_t i = 0; i < wanted.size(); ++i) options[i].kind = wanted[i].kind;
    for (const column::ColumnReport& report : sampled(options)) plan_.decisions.push_back(report.decision);
    for (size_t i = 0; i < plan_.decisions.size(); ++i) {
      const bool asked = i < wanted.size() && wanted[i].kind.has_value();
      if (plan_.decisions[i].kind == column::Kind::text && !asked) {
        fail(ExitCode::usage,
             "column {}: most of its values are neither dates nor numbers; say what it should be, as -c {}:date",
             in_quotes(plan_.columns[i].name), plan_.columns[i].name);
      }
    }
  }

  std::vector<column::ColumnReport> sampled(const std::vector<column::ProfilerOptions>& options) {
    const auto given = invocation_.arguments.value(sample);
    if (given == "all") {
      if (!input_.file().can_rewind()) {
        fail(ExitCode::usage, "--sample all needs a file that can be read twice");
      }
      columns::Profiled profiled = columns::profile(invocation_, input_, plan_.columns, options);
      input_.rewind();
      return profiled.columns;
    }
    constexpr int32_t usual = 10'000;
    constexpr int32_t most = 100'000'000;
    const int32_t records = given ? option_number("--sample", *given, 1, most) : usual;
    std::vector<column::Profiler> profilers;
    profilers.reserve(options.size());
    for (const column::ProfilerOptions& each : options) profilers.emplace_back(maker_, each);
    table::Splitter splitter(plan_.dialect, plan_.columns, plan_.expected_cells);
    table::Record record;
    std::string scratch;
    for (const table::Block& block : input_.reader().sample(static_cast<uint64_t>(records))) {
      for (splitter.start(block); splitter.next(record);) {
        for (const table::Cell& cell : record.cells) {
          profilers[cell.column].add(splitter.value(record, cell, scratch), columns::place_of(record, cell));
        }
      }
    }
    std::vector<column::ColumnReport> reports;
    for (size_t i = 0; i < profilers.size(); ++i) reports.push_back(profilers[i].report(plan_.columns[i].name));
    return reports;
  }

  std::string told(const Reject& reject) const {
    const std::string why = fmt::format("{}: {}", in_quotes(reject.value), reject.refusal.expected);
    return reject.column == no_column ? why : fmt::format("{}: {}", plan_.columns[reject.column].name, why);
  }

  ExitCode report(const std::vector<Counts>& counts, const std::vector<Reject>& first,
                  const columns::Findings& findings) const {
    Counts all;
    for (size_t i = 0; i < counts.size(); ++i) {
      const Counts& of = counts[i];
      all.add(of);
      std::string line = fmt::format("{}: {}; {} read", plan_.columns[i].name, columns::describe(plan_.decisions[i]),
                                     of[Outcome::read]);
      const auto add = [&](Outcome outcome, std::string_view word) {
        if (of[outcome] != 0) line += fmt::format(", {} {}", of[outcome], word);
      };
      add(Outcome::empty, "empty");
      add(Outcome::unread, "not read");
      add(Outcome::ambiguous, "ambiguous");
      add(Outcome::contradicts, "against the decision");
      if (of.not_read() != 0) {
        line += fmt::format("; the first on line {}, byte {}: {}: {}", first[i].place.line, first[i].place.offset,
                            in_quotes(first[i].value), first[i].refusal.expected);
      }
      invocation_.messages.note(line);
    }
    all[Outcome::unread] += findings.lost;
    for (const std::string& note : findings.notes())
      invocation_.messages.note(fmt::format("{}: {}", input_.name(), note));
    return allowance_.covers(all) ? ExitCode::done : ExitCode::some_unread;
  }

  Invocation& invocation_;
  columns::Input input_;
  column::LocaleMaker maker_;
  Plan plan_;
  Allowance allowance_;
};

ExitCode run(Invocation& invocation) { return Normaliser(invocation).run(); }

constexpr Argument arguments[] = {options::file};
constexpr const Option* command_options[] = {&columns::chosen,
                                             &columns::format,
                                             &columns::separator,
                                             &columns::no_header,
                                             &columns::day_first,
                                             &columns::month_first,
                                             &columns::decimal,
                                             &columns::first_year,
                                             &columns::locales,
                                             &columns::strict,
                                             &profile_file,
                                             &sample,
                                             &to_pattern,
                                             &to_locale,
                                             &invalid,
                                             &mark,
                                             &rejects,
                                             &max_unread,
                                             &ok_unread,
                                             &columns::jobs};
constexpr Example examples[] = {
    {"printf 'when,amount\\n31.12.2021,\"1.234,50\"\\n' | vxnls normalise -c when:date,amount:number -l de_DE -q",
     "when,amount\n2021-12-31,\"1234.50\""},
    {"printf '25/12/21\\n03/04/21\\n' | vxnls normalise --format lines -c 1:date -q", "2021-12-25\n2021-04-03"},
    {"printf '{\"at\":\"5 March 2021\",\"n\":1}\\n' | vxnls normalise --format jsonl -c at --to '%d.%m.%Y' -q",
     "{\"at\":\"05.03.2021\",\"n\":1}"}};

}  // namespace

const Command normalise{
    .name = "normalise",
    .summary = "Rewrites columns of dates and numbers in one form, all else byte for byte",
    .description =
        "Dates and times become ISO 8601 and numbers plain, or what --to or --to-locale says; these write no decimals "
        "of a second. Every other byte of the file stays: quotes, line ends, a byte order mark, a last line without "
        "its end. Each record in gives one out, and what was read is written whenever the input pauses.\n"
        "\n"
        "How a column is read is decided once, from a sample or a profile, and held: day before month or after it, "
        "decimal point or comma. A later value that contradicts is reported, never read another way; nor is a value "
        "that can mean two things where nothing decides. What --locale names decides where values do not; the locale "
        "of the environment lends its names of months, and decides nothing.\n"
        "\n"
        "Decisions, counts and the first unread value of each column are told on standard error. The exit code is 1 "
        "when values were not read, unless --max-unread or --ok-unread allows them.",
    .arguments = arguments,
    .options = command_options,
    .examples = examples,
    .run = run,
    .category = LocaleCategory::both,
    .ranks_locales = true};

}  // namespace vxcli
