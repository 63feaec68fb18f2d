// vxnls help
#include "cli/commands.h"
#include "cli/help.h"
#include "cli/manual.h"
#include "cli/session.h"
#include "cli/text.h"

namespace vxcli {

namespace {

constexpr Option man{.name = "man", .help = "the manual page instead, for man(1) to show: vxnls help --man | man -l -"};

/// The words are those of a command line without values, so they are read as one.
ExitCode run(Invocation& invocation) {
  std::vector<std::string> words = invocation.arguments.values();
  words.emplace_back("--help");
  const Arguments named(std::move(words));
  const CommandPath& path = named.path();
  if (!named.values().empty()) {
    fail(ExitCode::usage, "\"{}\" has no command {}", full_name(path), in_quotes(named.values().front()));
  }
  const bool page = invocation.arguments.has(man);
  invocation.out.put(page ? manual_page(path) : help_text(path, HelpLength::whole, invocation.colors));
  return ExitCode::done;
}

constexpr Example examples[] = {
    {"vxnls help calendar | head -n 1", "Usage: vxnls calendar [OPTION...] [VALUE...]"},
    {"vxnls help --man parse date | grep '^.TH' | cut -d ' ' -f 2-3", "VXNLS\\-PARSE\\-DATE 1"},
    {"vxnls help format date | head -n 1", "Usage: vxnls format date [OPTION...] [VALUE...]"},
    {"vxnls help zone list | head -n 3",
     "Usage: vxnls zone list [OPTION...] [TEXT]\n"
     "\n"
     "Lists the time zones, a line each."}};

constexpr Argument arguments[] = {{.name = "COMMAND",
                                   .help = "the words of a command: format date",
                                   .repeats = true,
                                   .completes = Completes::commands}};
constexpr const Option* command_options[] = {&man};

}  // namespace

const Command help{.name = "help",
                   .summary = "Shows the help of a command",
                   .arguments = arguments,
                   .options = command_options,
                   .examples = examples,
                   .run = run};

}  // namespace vxcli
