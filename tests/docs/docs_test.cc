// What the documents show: blocks of C++ and C, which are compiled and here run, and commands. They print what they
// say.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <ranges>
#include <regex>
#include <span>

#include "tests/cli/command_line.h"
#include "tests/host/temporary_folder.h"
#include "vxnls/vxnls.hpp"

namespace {

using namespace std::chrono;
using namespace std::chrono_literals;
using vxnls::form;

// What the blocks may use without saying so.
vxnls::host host = vxnls::host::open().value();
const vxnls::locale german = host.locale("de_DE", "Europe/Berlin").value();
const vxnls::locale english = host.locale("en_US", "America/New_York").value();

struct Block {
  const char* place;
  void (*run)();
  const char* printed;
};
#include "README_md.inc"
#include "docs_cpp_md.inc"
#include "docs_guide_md.inc"

TEST(Documents, BlocksPrintWhatTheySay) {
  setenv("TZ", "UTC", 1);
  size_t count = 0;
  for (const auto& blocks : std::initializer_list<std::span<const Block>>{README_md, docs_cpp_md, docs_guide_md}) {
    for (const Block& block : blocks) {
      SCOPED_TRACE(block.place);
      testing::internal::CaptureStdout();
      EXPECT_NO_THROW(block.run());
      std::cout.flush();
      EXPECT_EQ(testing::internal::GetCapturedStdout(), block.printed);
      ++count;
    }
  }
  EXPECT_GT(count, 15u) << "where are the documents?";
}

/// Each line behind "$ " of a console block is run by a shell, and prints what stands below it. The blocks of one
/// document share a folder of their own, so that a block may read what an earlier one wrote.
void run_commands(const std::filesystem::path& document, size_t& count) {
  struct Step {
    std::string command, output;
  };
  std::vector<Step> steps;
  std::ifstream in(document);
  std::string block;
  bool continued = false;
  for (std::string text; std::getline(in, text);) {
    const bool fence = text.starts_with("```");
    if (fence) block = block.empty() ? text : "";
    if (fence || block != "```console") continue;  // "console measured": timings, and other people's programs
    const bool starts = !continued && text.starts_with("$ ");
    if (starts) steps.push_back({text.substr(2), ""});
    else if (continued) steps.back().command += '\n' + text;
    else if (!steps.empty()) steps.back().output += text + '\n';
    continued = (continued || starts) && text.ends_with('\\');
  }
  const vxtest::TemporaryFolder folder;
  folder.link(VXNLS_SOURCE_DIR "/examples", "examples");
  const std::string frame = fmt::format("export HERE='{0}' HOME='{0}' LIB='{1}' PERL_BADLANG=0; cd '{0}'; exec 2>&1\n",
                                        folder.path(), VXNLS_LIBRARIES);  // LANG's locale need not be installed
  for (const auto& [command, output] : steps) {
    const char* const extension = VXNLS_LIBRARIES "/vxnls_sqlite.so";  // which not every build has
    if (command.find("$LIB/vxnls_sqlite.so") != std::string::npos && !std::filesystem::exists(extension)) continue;
    EXPECT_EQ(vxtest::run_line(frame + command).out, output) << document << ": " << command;
    ++count;
  }
}

TEST(Documents, CommandsPrintWhatTheySayAndLinksLeadSomewhere) {
  const std::filesystem::path root = VXNLS_SOURCE_DIR;
  std::vector<std::filesystem::path> documents{root / "README.md", root / "examples/README.md"};
  for (const auto& entry : std::filesystem::directory_iterator(root / "docs")) {
    if (entry.path().extension() == ".md") documents.push_back(entry.path());
  }
  const std::regex link("\\]\\(([^)#: ]+)(#[^)]*)?\\)");
  size_t commands = 0;
  for (const auto& document : documents) {
    run_commands(document, commands);
    std::ifstream in(document);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    for (std::sregex_iterator found(text.begin(), text.end(), link), end; found != end; ++found)
      EXPECT_TRUE(std::filesystem::exists(document.parent_path() / found->str(1))) << document << found->str();
  }
  EXPECT_GT(commands, 90u) << "where are the documents?";
}

}  // namespace
