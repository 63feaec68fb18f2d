#include "cli/completion.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "cli/arguments.h"
#include "cli/options.h"
#include "tests/cli/command_line.h"
#include "tests/support/terminal.h"

namespace {

using namespace vxcli;
using Words = std::vector<std::string>;

Words words_of(const Completion& completion) {
  Words words;
  for (const Candidate& one : completion.candidates) words.push_back(one.word);
  return words;
}

TEST(Completion, OffersTheTableOfCommandsAndNothingElse) {
  for_each_command([](const CommandPath& path) {
    SCOPED_TRACE(full_name(path));
    Words typed;
    for (const Command* command : path) typed.emplace_back(command->name);
    typed[0] = "-q";
    const auto offered_behind = [&](Words more) {
      more.insert(more.begin(), typed.begin(), typed.end());
      return complete(more);
    };
    Words wanted;
    for (const Option* option : options_of(path)) {
      if (!option->name.empty()) wanted.push_back("--" + std::string(option->name));
      if (option->letter != 0) wanted.push_back(fmt::format("-{}", option->letter));
      if (option->is_flag()) continue;
      for (const Words& behind : {Words{spelled(*option), ""}, Words{spelled(*option) + "="}}) {
        if (option->name.empty() && behind.size() == 1) continue;
        const Completion values = offered_behind(behind);
        const std::string prefix = behind.size() == 1 ? behind[0] : "";
        EXPECT_EQ(values.what, option->completes) << behind[0];
        EXPECT_EQ(values.prefix, prefix);
        Words choices;
        for (const std::string_view choice : option->choices) choices.push_back(prefix + std::string(choice));
        if (option == &options::locale && path.back()->ranks_locales) choices.push_back(prefix + "auto");
        EXPECT_EQ(words_of(values), choices) << behind[0];
      }
    }
    Words offered = words_of(offered_behind({"-"}));
    std::sort(offered.begin(), offered.end());
    std::sort(wanted.begin(), wanted.end());
    EXPECT_EQ(offered, wanted);

    const Completion first = offered_behind({""});
    offered = words_of(first);
    for (const Command* child : path.back()->commands) {
      EXPECT_EQ(std::count(offered.begin(), offered.end(), child->name), 1) << child->name;
    }
    for (size_t i = 0; i < path.back()->arguments.size(); ++i) {
      const Argument& argument = path.back()->arguments[i];
      Words before(i, "1");
      before.emplace_back("");
      EXPECT_EQ(offered_behind(before).what, argument.completes) << argument.name;
      EXPECT_EQ(argument.name.starts_with("FILE"), argument.completes == Completes::files) << argument.name;
    }
  });
}

TEST(Completion, WhereTheCursorStands) {
  static const struct {
    Words words;
    Completes what;
    std::string prefix;
    std::string first;  // candidate
    size_t count;
  } cases[] = {
      {{"format", "date", "-l", ""}, Completes::locales, "", "", 0},
      {{"format", "date", "-qlde"}, Completes::locales, "-ql", "", 0},
      {{"format", "date", "-ql", "de"}, Completes::locales, "", "", 0},
      {{"-l", "format", "calendar", "--from", ""}, Completes::choices, "", "date", 3},  // "format" is a locale here
      {{"calendar", "x", "list", ""}, Completes::nothing, "", "", 0},
      {{"zone", "list", "--", "-"}, Completes::nothing, "", "", 0},
      {{"zone", "UTC", "li"}, Completes::nothing, "", "", 0},
      {{"help", "format", ""}, Completes::commands, "", "date", 7},
      {{"help", "nonsense", ""}, Completes::commands, "", "", 0},
      {{"nonsense", ""}, Completes::nothing, "", "", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.words));
    const Completion completion = complete(c.words);
    EXPECT_EQ(completion.what, c.what);
    EXPECT_EQ(completion.prefix, c.prefix);
    EXPECT_EQ(completion.candidates.size(), c.count);
    EXPECT_EQ(completion.candidates.empty() ? "" : completion.candidates[0].word, c.first);
  }
}

struct Shell {
  const char* name;
  std::vector<std::string> words;
  const char* preparation;
};

/// What people type, and what stands on the screen then: the shells' own completion at work.
TEST(Completion, InTheShellsThemselves) {
  static const Shell shells[] = {
      {"bash", {"bash", "--norc", "--noprofile", "-i"}, "cd; PS1='ready> '; source <(vxnls completion bash)\n"},
      {"zsh",
       {"zsh", "-f", "-i"},
       "cd; autoload -U compinit; compinit -D -u; source <(vxnls completion zsh); PS1='ready> '\n"},
      {"fish",
       {"fish", "--no-config", "--private"},
       "cd; function fish_prompt; echo -n 'ready> '; end; vxnls completion fish | source\n"},
  };
  static const struct {
    const char* typed;
    const char* shown;
  } cases[] = {
      {"vxnls form\tnumb\t1234.5 --gro\t --loca\tde_D\t\n", "1.234,5"},
      {"vxnls format date 2026-11-21 --locale=de_D\t --sty\tlon\t\n", "21. November 2026"},
      {"vxnls -z Europe/Berl\t format datetime @0 --patt\t%Z\n", "Europe/Berlin"},
      {"vxnls normalise -qc 1:number --no-head\t some\tnew\t\n", "1234.5"},
      {"vxnls normalise --profile=some\tnew\t </dev/null\n", "vxnls: some folder/new file: "},
      {"vxnls help loc\tlis\t| head -n 1\n", "Usage: vxnls locale list [OPTION...] [TEXT]"},
  };
  const std::string home = std::filesystem::temp_directory_path() / fmt::format("vxnls-completion-{}", getpid());
  std::filesystem::create_directories(home + "/some folder");
  for (const Shell& shell : shells) {
    if (vxtest::run_line(fmt::format("command -v {}", shell.name)).code != 0) continue;
    SCOPED_TRACE(shell.name);
    vxtest::Terminal terminal(shell.words, {{"PATH", std::string(VXNLS_COMMAND_FOLDER) + ":/usr/bin:/bin"},
                                            {"HOME", home},
                                            {"LANG", "C.UTF-8"},
                                            {"TZ", "UTC"},
                                            {"TERM", "dumb"}});
    std::ofstream(home + "/some folder/new file") << "1234.5\n";
    terminal.type(shell.preparation);
    terminal.until("ready> ");
    for (const auto& c : cases) {
      terminal.type(c.typed);
      const std::string wanted = fmt::format("\r\n{}", c.shown);
      const std::string screen = terminal.until(wanted);
      EXPECT_NE(screen.find(wanted), std::string::npos) << screen;
      if (testing::Test::HasFailure()) break;
    }
  }
  std::filesystem::remove_all(home);
}

}  // namespace
