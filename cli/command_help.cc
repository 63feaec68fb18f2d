// vxnls help
#include "cli/commands.h"
#include "cli/help.h"
#include "cli/session.h"

namespace vxcli {

namespace {

/// The words are those of a command line without values, so they are read as one.
ExitCode run(Invocation& invocation) {
  std::vector<std::string> words = invocation.arguments.values();
  words.emplace_back("--help");
  invocation.out.put(help_text(Arguments(std::move(words)).path(), HelpLength::whole));
  return ExitCode::done;
}

constexpr Example examples[] = {
    {"vxnls help calendar | head -n 1", "Usage: vxnls calendar [OPTION...] [VALUE...]"},
    {"vxnls help format date | head -n 1", "Usage: vxnls format date [OPTION...] [VALUE...]"},
    {"vxnls help zone list | head -n 3",
     "Usage: vxnls zone list [OPTION...] [TEXT]\n"
     "\n"
     "Lists the time zones, a line each."}};

constexpr Argument arguments[] = {{.name = "COMMAND",
                                   .help = "the words of a command: format date",
                                   .repeats = true,
                                   .completes = Completes::commands}};

}  // namespace

const Command help{
    .name = "help", .summary = "Shows the help of a command", .arguments = arguments, .examples = examples, .run = run};

}  // namespace vxcli
