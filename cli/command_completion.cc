// vxnls completion
#include "cli/commands.h"
#include "cli/completion.h"
#include "cli/locale_database.h"
#include "cli/session.h"

namespace vxcli {

namespace {

/// The kind of what follows in the first line, then a candidate a line with its help.
void answer(Invocation& invocation, std::span<const std::string> words) {
  Completion next = complete(words);
  std::vector<std::string> names;
  if (next.what == Completes::locales) names = LocaleDatabase(invocation.session.host()).names();
  if (next.what == Completes::zones) names = zone_ids(invocation.session.host());
  for (const std::string& name : names) next.candidates.push_back({next.prefix + name, ""});

  if (next.what == Completes::files) {
    invocation.out.line(fmt::format("files\t{}", next.prefix));
    return;
  }
  invocation.out.line("words");
  for (const Candidate& one : next.candidates) invocation.out.line(fmt::format("{}\t{}", one.word, one.help));
}

ExitCode run(Invocation& invocation) {
  const std::vector<std::string>& values = invocation.arguments.values();
  if (values[0] == "next") {
    answer(invocation, std::span(values).subspan(1));
  } else if (values.size() > 1) {
    fail(ExitCode::usage, "\"vxnls completion {}\" takes no words", values[0]);
  } else {
    invocation.out.put(completion_script(values[0]));
  }
  return ExitCode::done;
}

constexpr std::string_view shells[] = {"bash", "zsh", "fish", "next"};
constexpr Argument arguments[] = {
    {.name = "SHELL",
     .help = "whose script is printed; next answers the scripts",
     .required = true,
     .completes = Completes::choices,
     .choices = shells},
    {.name = "WORD",
     .help = "behind next: the words of a command line up to the one that is to be completed, which may be empty",
     .repeats = true}};
constexpr Example examples[] = {{"vxnls completion bash | tail -n 1", "complete -F _vxnls vxnls"},
                                {"vxnls completion next -- calendar --from ''",
                                 "words\n"
                                 "date\t\n"
                                 "day\t\n"
                                 "julian\t"},
                                {"vxnls completion next -- format date --locale=de_ | grep -c '^--locale=de_'", "7"}};

}  // namespace

const Command completion{
    .name = "completion",
    .summary = "Prints the completion script of a shell",
    .description =
        "For commands, options, their values, locales, time zones and files. bash: source <(vxnls completion bash) in "
        "~/.bashrc. zsh: source <(vxnls completion zsh) in ~/.zshrc, behind compinit. fish: vxnls completion fish | "
        "source in ~/.config/fish/config.fish. A package installs the scripts where the shells look for them.",
    .arguments = arguments,
    .examples = examples,
    .run = run};

}  // namespace vxcli
