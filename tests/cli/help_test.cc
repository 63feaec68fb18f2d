#include "cli/help.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/arguments.h"
#include "cli/text.h"
#include "tests/cli/command_line.h"

namespace {

using namespace vxcli;
TEST(Help, SaysEverythingWithin80Columns) {
  for_each_command([](const CommandPath& path) {
    SCOPED_TRACE(full_name(path));
    const Command& command = *path.back();
    const std::string in_short = help_text(path, HelpLength::in_short);
    const std::string whole = help_text(path, HelpLength::whole);
    for (const Option* option : command.options) {
      EXPECT_NE(in_short.find(spelled(*option)), std::string::npos) << spelled(*option);
      EXPECT_FALSE(option->help.empty());
    }
    for (const Argument& argument : command.arguments) EXPECT_FALSE(argument.help.empty()) << argument.name;
    EXPECT_FALSE(command.summary.empty() || command.summary.ends_with('.'));
    EXPECT_TRUE(command.run != nullptr || !command.commands.empty());

    const std::string text = whole.substr(0, whole.find("\nExamples:"));
    for (size_t at = 0; at < text.size();) {
      const size_t end = std::min(text.find('\n', at), text.size());
      EXPECT_LE(display_width(text.substr(at, end - at)), 80U) << text.substr(at, end - at);
      at = end + 1;
    }
  });
}

TEST(Help, EveryCommandHasThreeExamplesThatPrintWhatTheySay) {
  for_each_command([](const CommandPath& path) {
    EXPECT_GE(path.back()->examples.size(), 3U) << full_name(path);
    for (const Example& example : path.back()->examples) {
      SCOPED_TRACE(example.line);
      const auto result = vxtest::run_line("TZ=UTC " + std::string(example.line));
      const std::string_view out = result.out;
      EXPECT_EQ(out.substr(0, out.size() - (out.ends_with('\n') ? 1 : 0)), example.output);
      EXPECT_TRUE(result.err.empty() || result.err.starts_with("vxnls: note: ")) << result.err;
    }
  });
}

TEST(Help, IsPrintedByEveryRoadToIt) {
  const std::string whole = help_text({&root_command}, HelpLength::whole);
  EXPECT_EQ(vxtest::run_line("vxnls --help").out, whole);
  EXPECT_EQ(vxtest::run_line("vxnls help").out, whole);
  EXPECT_EQ(vxtest::run_line("vxnls format --help date nonsense").out, vxtest::run_line("vxnls help format date").out);
  EXPECT_EQ(vxtest::run_line("vxnls -h").out, help_text({&root_command}, HelpLength::in_short));
}

}  // namespace
