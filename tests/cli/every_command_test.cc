// What holds for every command: the table of commands against help, manual pages, completion, and the command itself.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/completion.h"
#include "cli/help.h"
#include "cli/json.h"
#include "cli/manual.h"
#include "cli/options.h"
#include "cli/text.h"
#include "tests/cli/command_line.h"
#include "tests/host/temporary_folder.h"

namespace {

using namespace vxcli;
using vxtest::run_line;
namespace fs = std::filesystem;
using Words = std::vector<std::string>;

const fs::path build_folder = fs::path(VXNLS_COMMAND_FOLDER).parent_path();
const fs::path source_folder = VXNLS_SOURCE_FOLDER;

TEST(EveryCommand, HelpSaysEverythingWithin80Columns) {
  for_each_command([](const CommandPath& path) {
    SCOPED_TRACE(full_name(path));
    const Command& command = *path.back();
    const std::string in_short = help_text(path, HelpLength::in_short), whole = help_text(path, HelpLength::whole);
    for (const Option* option : command.options) EXPECT_THAT(in_short, testing::HasSubstr(spelled(*option)));
    EXPECT_TRUE(command.run != nullptr || !command.commands.empty());
    std::istringstream lines(whole.substr(0, whole.find("\nExamples:")));
    for (std::string line; std::getline(lines, line);) EXPECT_LE(display_width(line), 80U) << line;
  });
  EXPECT_EQ(run_line("vxnls --help; vxnls help").out,
            fmt::format("{0}{0}", help_text({&root_command}, HelpLength::whole)));
  EXPECT_EQ(run_line("vxnls -h").out, help_text({&root_command}, HelpLength::in_short));
  EXPECT_EQ(run_line("vxnls format --help date nonsense").out, run_line("vxnls help format date").out);
}

TEST(EveryCommand, HasThreeExamplesThatPrintWhatTheySay) {
  for_each_command([](const CommandPath& path) {
    EXPECT_GE(path.back()->examples.size(), 3U) << full_name(path);
    for (const Example& example : path.back()->examples) {
      SCOPED_TRACE(example.line);
      const auto result = run_line(std::string(example.line));
      const std::string_view out = result.out;
      EXPECT_EQ(out.substr(0, out.size() - (out.ends_with('\n') ? 1 : 0)), example.output);
      EXPECT_TRUE(result.err.empty() || result.err.starts_with("vxnls: note: ")) << result.err;
    }
  });
}

TEST(EveryCommand, CompletionOffersTheTableAndNothingElse) {
  for_each_command([](const CommandPath& path) {
    SCOPED_TRACE(full_name(path));
    const auto offered_behind = [&](const Words& more) {
      Words words{"-q"};
      for (size_t i = 1; i < path.size(); ++i) words.emplace_back(path[i]->name);
      words.insert(words.end(), more.begin(), more.end());
      return complete(words);
    };
    const auto words_of = [](const Completion& completion) {
      Words words;
      for (const Candidate& one : completion.candidates) words.push_back(one.word);
      return words;
    };
    Words wanted;
    for (const Option* option : options_of(path)) {
      if (!option->name.empty()) wanted.push_back("--" + std::string(option->name));
      if (option->letter != 0) wanted.push_back(fmt::format("-{}", option->letter));
      if (option->is_flag()) continue;
      Words choices(option->choices.begin(), option->choices.end());
      if (option == &options::locale && path.back()->ranks_locales) choices.emplace_back("auto");
      const Completion values = offered_behind({spelled(*option), ""});
      EXPECT_EQ(std::tuple(values.what, words_of(values)), std::tuple(option->completes, choices)) << spelled(*option);
    }
    EXPECT_THAT(words_of(offered_behind({"-"})), testing::UnorderedElementsAreArray(wanted));
    for (const Command* child : path.back()->commands) {
      EXPECT_THAT(words_of(offered_behind({""})), testing::Contains(child->name).Times(1));
    }
    Words before;
    for (const Argument& argument : path.back()->arguments) {
      before.emplace_back("");
      EXPECT_EQ(offered_behind(before).what, argument.completes) << argument.name;
      before.back() = "1";
    }
  });
}

/// A manual page in UTF-8, and wide enough that nothing is broken into lines but what has to be. The formatter takes
/// U+1F75 and U+1FCB for their equals, U+03AE and U+0389.
std::string manual(const fs::path& page) {
  const auto result = run_line(fmt::format(
      R"(export LC_ALL=C.UTF-8 MANWIDTH=2000 MAN_KEEP_FORMATTING=1
         man --warnings=w --nh --nj -E UTF-8 -P cat -l {} | sed -E 's/\x1b\[[0-9;]*m//g; s/.\x08//g; y/ήΉ/ήΉ/')",
      page.string()));
  EXPECT_EQ(result.err, "");
  return result.out;
}

std::string in_one_line(const std::string& text) { return std::regex_replace(text, std::regex("[ \n\t]+"), " "); }

TEST(EveryCommand, ManualPagesSayWhatTheTableSays) {
  const vxtest::TemporaryFolder folder;
  for_each_command([&](const CommandPath& path) {
    SCOPED_TRACE(full_name(path));
    const fs::path file = folder.file(manual_name(path) + ".1");
    std::ofstream(file) << manual_page(path);
    const std::string text = in_one_line(manual(file));
    const auto expect = [&](const std::string& wanted) { EXPECT_THAT(text, testing::HasSubstr(in_one_line(wanted))); };
    const Command& command = *path.back();
    expect(fmt::format("{} - {}", manual_name(path), command.summary));
    expect(std::string(command.description));
    for (const Option* option : options_of(path)) {
      std::string head = option->letter == 0 ? "" : fmt::format("-{}", option->letter);
      if (!option->name.empty()) head += fmt::format("{}--{}", head.empty() ? "" : ", ", option->name);
      if (!option->is_flag()) head += fmt::format(" {}", option->value);
      expect(fmt::format(" {} {}{} ", head, option->help, one_of(option->choices)));
    }
    for (const Argument& argument : command.arguments) {
      expect(fmt::format(" {} {}{} ", argument.name, argument.help, one_of(argument.choices)));
    }
    for (const Command* child : command.commands) expect(fmt::format(" {} {} ", child->name, child->summary));
    for (const auto& list : {environment, exit_codes}) {
      for (const Definition& one : list) expect(fmt::format(" {} {} ", one.name, one.meaning));
    }
    for (const Example& example : command.examples) expect(fmt::format("$ {}\n{}", example.line, example.output));
  });
  const auto lint =
      run_line(fmt::format("mandoc -Tlint -W warning {}/*.1 {}/man/man[35]/*", folder.path(), build_folder.string()));
  EXPECT_EQ(lint.out + lint.err, "");
}

TEST(Manual, OfTheLibraryNamesEachStatusAndItsExampleRuns) {
  const std::string page = manual(build_folder / "man/man3/vxnlsloc.3");
  const std::string header = run_line(fmt::format("cat {}/include/vxnls/*.h", source_folder.string())).out;
  const std::regex status("#define (VX_[EW]_[A-Z]+) .*(0x[0-9a-f]{8})");
  for (std::sregex_iterator found(header.begin(), header.end(), status), end; found != end; ++found) {
    EXPECT_THAT(page, testing::HasSubstr(fmt::format("{}  {}\n", found->str(1), found->str(2))));
  }
  EXPECT_EQ(run_line(VXNLS_MANUAL_EXAMPLE).out, "21.11.2026 14:05:09\n");
}

TEST(Manual, OfTheProfileNamesEachMemberAndItsExampleIsRead) {
  const std::string page = manual(build_folder / "man/man5/vxnls-profile.5");
  const char* const emit = "vxnls recognise -q --emit-profile /dev/fd/9 - 9>&1 >/dev/null";
  const Json profile = Json::parse(run_line(emit, "d,n\n03/04/21,1\nx,\"1,5\"\n").out);
  for (const Json& members : {profile["columns"][0], profile["columns"][0]["decision"]}) {
    for (const auto& [name, value] : members.items()) EXPECT_THAT(page, testing::HasSubstr(name));
  }
  const std::string script = fmt::format(
      "p=$(mktemp); sed -n -f {0}/tests/cli/manual_example.sed {0}/docs/man/vxnls-profile.5.in > $p; "
      "vxnls normalise -q --profile $p -; rm $p",
      source_folder.string());
  EXPECT_EQ(run_line(script, "when,amount\n3.4.2021,\"1.234,5\"\n31. März 2020,7\n").out,
            "when,amount\n2021-04-03,\"1234.5\"\n2020-03-31,7\n");
}

}  // namespace
