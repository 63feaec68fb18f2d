// The manual pages against the table of commands, as the programs show them that people read them with.
#include "cli/manual.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <regex>
#include <string>

#include "cli/column/kind.h"
#include "cli/commands.h"
#include "cli/help.h"
#include "cli/json.h"
#include "tests/cli/command_line.h"

namespace {

using namespace vxcli;
namespace fs = std::filesystem;

const fs::path build_folder = fs::path(VXNLS_COMMAND_FOLDER).parent_path();

/// In UTF-8, and wide enough that nothing is broken into lines but what has to be.
std::string shown(const fs::path& page) {
  const auto result = vxtest::run_line(fmt::format(
      R"(export LC_ALL=C.UTF-8 MANWIDTH=2000 MAN_KEEP_FORMATTING=1
         man --warnings=w --nh --nj -E UTF-8 -P cat -l {} | sed -E 's/\x1b\[[0-9;]*m//g; s/.\x08//g')",
      page.string()));
  EXPECT_EQ(result.err, "");
  return result.out;
}

/// Blanks of every kind are one, and so are texts that are canonically equivalent: the formatter takes U+1F75 for
/// U+03AE.
std::string in_one_line(std::string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  std::string line;
  icu::StringByteSink<std::string> sink(&line);
  icu::Normalizer2::getNFCInstance(error)->normalizeUTF8(0, text, sink, nullptr, error);
  const auto is_blank = [](char c) { return c == ' ' || c == '\n' || c == '\t'; };
  std::replace_if(line.begin(), line.end(), is_blank, ' ');
  line.erase(std::unique(line.begin(), line.end(), [](char a, char b) { return a == ' ' && b == ' '; }), line.end());
  return line;
}

TEST(Manual, SaysWhatTheTableOfCommandsSays) {
  const fs::path folder = fs::temp_directory_path() / fmt::format("vxnls-manual-{}", getpid());
  fs::create_directory(folder);
  for_each_command([&](const CommandPath& path) {
    SCOPED_TRACE(full_name(path));
    const fs::path file = folder / (manual_name(path) + ".1");
    std::ofstream(file) << manual_page(path);
    const std::string page = shown(file);
    const std::string text = in_one_line(page);
    const auto expect = [&](std::string_view wanted) {
      EXPECT_NE(text.find(in_one_line(wanted)), std::string::npos) << wanted << " is not in\n" << page;
    };
    const Command& command = *path.back();
    expect(fmt::format("{} - {}", manual_name(path), command.summary));
    expect(command.description);
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
  const auto lint = vxtest::run_line(
      fmt::format("mandoc -Tlint -W warning {}/*.1 {}/man/man[35]/*", folder.string(), build_folder.string()));
  EXPECT_EQ(lint.out + lint.err, "");
  fs::remove_all(folder);
}

TEST(Manual, OfTheLibraryNamesWhatTheHeadersHave) {
  const std::string page = shown(build_folder / "man/man3/vxnlsloc.3");
  std::string headers;
  for (const auto& entry : fs::directory_iterator(fs::path(VXNLS_SOURCE_FOLDER) / "include/vxnls")) {
    if (entry.path().extension() != ".h") continue;  // the C++ face stands on these
    const std::string name = entry.path().filename();
    EXPECT_NE(page.find(fmt::format("<vxnls/{}>", name)), std::string::npos) << name;
    std::ifstream file(entry.path());
    headers.append(std::istreambuf_iterator<char>(file), {});
  }
  const std::regex function("([A-Za-z0-9_]+)\\(\\)");
  size_t functions = 0;
  for (std::sregex_iterator found(page.begin(), page.end(), function), end; found != end; ++found, ++functions) {
    EXPECT_TRUE(std::regex_search(headers, std::regex(fmt::format("\\b{}\\b", found->str(1))))) << found->str(1);
  }
  EXPECT_GT(functions, 20U);
  const std::regex status("#define (VX_[EW]_[A-Z]+) .*(0x[0-9a-f]{8})");
  for (std::sregex_iterator found(headers.begin(), headers.end(), status), end; found != end; ++found) {
    EXPECT_NE(page.find(fmt::format("{}  {}\n", found->str(1), found->str(2))), std::string::npos) << found->str(1);
  }
  EXPECT_EQ(vxtest::run_line(VXNLS_MANUAL_EXAMPLE).out, "21.11.2026 14:05:09\n");
}

/// Every name that an emitted profile has, wherever it stands.
void for_each_member(const Json& json, const std::function<void(const std::string&)>& each) {
  for (const auto& [name, value] : json.items()) {
    if (json.is_object()) each(name);
    if (value.is_structured()) for_each_member(value, each);
  }
}

TEST(Manual, OfTheProfileNamesWhatTheFileHolds) {
  const fs::path source = fs::path(VXNLS_SOURCE_FOLDER) / "docs/man/vxnls-profile.5.in";
  const std::string page = shown(build_folder / "man/man5/vxnls-profile.5");
  const auto expect_word = [&](std::string_view word) {
    EXPECT_TRUE(std::regex_search(page, std::regex(fmt::format("(^|[ \\[]){}[\n ,;:.\\]]", word)))) << word;
  };
  const auto emitted =
      vxtest::run_line("vxnls recognise -q --emit-profile /dev/fd/9 - 9>&1 >/dev/null", "d,n\n03/04/21,1\nx,\"1,5\"\n");
  for_each_member(Json::parse(emitted.out), expect_word);
  for (const std::string_view word : column::kind_words) expect_word(word);
  for (const std::string_view word : column::order_words) expect_word(word);
  for (const std::string_view word : column::source_words) expect_word(word);

  const std::string script = fmt::format(
      "p=$(mktemp); sed -n -f {}/tests/cli/manual_example.sed {} > $p; "
      "vxnls normalise -q --profile $p -; rm $p",
      VXNLS_SOURCE_FOLDER, source.string());
  EXPECT_EQ(vxtest::run_line(script, "when,amount\n3.4.2021,\"1.234,5\"\n31. März 2020,7\n").out,
            "when,amount\n2021-04-03,\"1234.5\"\n2020-03-31,7\n");
}

}  // namespace
