// vxnls recognise
#include <unistd.h>

#include <utility>

#include "cli/columns.h"
#include "cli/commands.h"
#include "cli/number.h"
#include "cli/options.h"
#include "cli/report.h"

namespace vxcli {

namespace {

constexpr Option emit_profile{.name = "emit-profile",
                              .value = "FILE",
                              .help = "write the decisions to a file that \"vxnls normalise --profile\" reads",
                              .completes = Completes::files};
constexpr Option html{.name = "html",
                      .value = "FILE",
                      .help = "write the report as a page that needs nothing else",
                      .completes = Completes::files};
constexpr Option show{.name = "show", .value = "N", .help = "examples of each sort that are listed; 5"};

void write_file(const std::string& path, const std::string& text) {
  NewFile file(path);
  file.out().put(text);
  file.finish();
}

ExitCode run(Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  columns::Input input(invocation);
  input.refuse_to_overwrite(arguments, {&emit_profile, &html});
  const std::vector<table::Column> chosen = input.choose(columns::names_of(input.wanted()));
  std::vector<column::ProfilerOptions> options(chosen.size(), columns::profiler_options(invocation));
  constexpr int32_t usual_examples = 5;
  constexpr int32_t page_examples = 50;
  constexpr int32_t most_examples = 1000;
  int32_t shown = arguments.has(html) ? page_examples : usual_examples;
  if (const auto given = arguments.value(show)) shown = option_number("--show", *given, 1, most_examples);
  for (size_t i = 0; i < options.size(); ++i) {
    options[i].shown = static_cast<size_t>(shown);
    if (i < input.wanted().size()) options[i].kind = input.wanted()[i].kind;
  }
  columns::Profiled profiled = columns::profile(invocation, input, chosen, options);
  if (const auto path = arguments.value(emit_profile)) {
    write_file(*path, column::write_profile(column::Profile{profiled.columns}));
  }
  const FileReport report{.file = input.name(),
                          .format = std::string(table::name_of(input.dialect().format)),
                          .columns = std::move(profiled.columns),
                          .findings = std::move(profiled.findings)};
  if (const auto path = arguments.value(html)) write_file(*path, report_page(report));
  if (arguments.has(options::json)) {
    invocation.out.line(json_page(report_json(report)));
  } else {
    invocation.out.put(report_text(report, invocation.colors, isatty(STDOUT_FILENO) != 0));
  }
  if (report.findings.lost != 0) return ExitCode::some_unread;
  for (const column::ColumnReport& column : report.columns) {
    if (column.unread + column.ambiguous + column.contradicting != 0) return ExitCode::some_unread;
  }
  return ExitCode::done;
}

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
                                             &emit_profile,
                                             &html,
                                             &show,
                                             &options::json,
                                             &columns::jobs};
constexpr Example examples[] = {
    {"printf 'when\\n03/04/21\\n25/12/21\\n2021-03-05\\n' | vxnls recognise",
     "standard input: csv, 3 records\n"
     "\n"
     "when  date, day-first (decided by values of the column), locale en_US (LANG)\n"
     "  read  3  100 %\n"
     "  1 value reads only with the day first (the first \"25/12/21\" on line 3)\n"
     "  1 value could be read with the day or the month first\n"
     "forms\n"
     "  %d/%m/%y  2  66.7 %  as \"03/04/21\" on line 2\n"
     "  %Y-%m-%d  1  33.3 %  as \"2021-03-05\" on line 4"},
    {"printf '5 mars 2021\\n6 avril 2021\\n' | vxnls recognise --format lines -l auto --locales de_DE,fr_FR | tail -n "
     "2",
     "  fr_FR  2  100 %\n"
     "  de_DE  0  0.0 %"},
    {"printf '1.234,50\\n99,90\\n1.234\\n' | vxnls recognise --format lines",
     "standard input: lines, 3 records\n"
     "\n"
     "1  number, decimal comma (decided by values of the column), locale en_US (LANG)\n"
     "  read  3  100 %\n"
     "  2 values read only with a decimal comma (the first \"1.234,50\" on line 1)\n"
     "  1 value could be read with a decimal point or a decimal comma\n"
     "  groups of digits are separated by \".\""}};

}  // namespace

const Command recognise{
    .name = "recognise",
    .summary = "Tells what the columns of a file are: dates, times, numbers, and how they are written",
    .description =
        "For each column its kind, the share of each form, how many values could be read with the day or the month "
        "first and which ones decide it, the decimal point, and the first values that are not read, with line, byte "
        "and reason. Without -c all columns are looked at. --locale auto tries a list of locales and ranks them.\n"
        "\n"
        "The exit code is 1 when a column has values that were not read. \"vxnls normalise\" rewrites columns by such "
        "a decision; --emit-profile keeps it in a file for that.",
    .arguments = arguments,
    .options = command_options,
    .examples = examples,
    .run = run,
    .category = LocaleCategory::both,
    .ranks_locales = true};

}  // namespace vxcli
