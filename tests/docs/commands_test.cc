// The commands in the documents: each line behind "$ " of a console block is run by a shell, and prints what stands
// below it. The blocks of one document share a folder of their own, so that a block may read what an earlier one wrote.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/cli/command_line.h"
#include "tests/host/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
const fs::path root = VXNLS_SOURCE_DIR;

std::set<fs::path> documents() {
  std::set<fs::path> all{root / "README.md", root / "examples/README.md"};
  for (const auto& entry : fs::directory_iterator(root / "docs")) {
    if (entry.path().extension() == ".md") all.insert(entry.path());
  }
  return all;
}

/// A line of a document, and what stands behind ``` before the block that it is in; "-" outside of blocks.
struct Line {
  std::string block, text;
};
std::vector<Line> lines_of(const fs::path& document) {
  std::ifstream in(document);
  std::vector<Line> lines;
  std::string block = "-";
  for (std::string text; std::getline(in, text);) {
    const bool fence = text.starts_with("```");
    lines.push_back({fence ? "-" : block, text});
    if (fence) block = block == "-" ? text.substr(3) : "-";
  }
  return lines;
}

TEST(Documents, CommandsPrintWhatTheySay) {
  size_t count = 0;
  for (const fs::path& document : documents()) {
    struct Step {
      size_t line;
      std::string command, output;
    };
    std::vector<Step> steps;
    const std::vector<Line> lines = lines_of(document);
    bool continued = false;
    for (size_t i = 0; i < lines.size(); ++i) {
      const auto& [block, text] = lines[i];
      if (block != "console") continue;  // "console measured": timings, and other people's programs
      if (continued) steps.back().command += '\n' + text;
      else if (text.starts_with("$ ")) steps.push_back({i + 1, text.substr(2), ""});
      else if (!steps.empty()) steps.back().output += text + '\n';
      continued = (continued || text.starts_with("$ ")) && text.ends_with('\\');
    }
    const vxtest::TemporaryFolder folder;
    folder.link(root / "examples", "examples");
    const std::string frame = fmt::format("export HERE={0} HOME={0} LIB={1} PERL_BADLANG=0; cd {0}; exec 2>&1\n",
                                          folder.path(), VXNLS_LIBRARIES);  // LANG's locale need not be installed
    for (const Step& step : steps) {
      const char* const extension = VXNLS_LIBRARIES "/vxnls_sqlite.so";  // which not every build has
      if (step.command.find("$LIB/vxnls_sqlite.so") != std::string::npos && !fs::exists(extension)) continue;
      const auto result = vxtest::run_line(frame + step.command);
      EXPECT_EQ(result.out, step.output) << document << ':' << step.line << ": " << step.command;
      ++count;
    }
  }
  EXPECT_GT(count, 90u) << "where are the documents?";
}

/// The anchors of headings: small letters, blanks as hyphens, no punctuation.
std::set<std::string> anchors_of(const fs::path& document) {
  std::set<std::string> anchors;
  for (const auto& [block, text] : lines_of(document)) {
    if (block != "-" || !text.starts_with('#')) continue;
    std::string anchor =
        std::regex_replace(text.substr(text.find(' ') + 1), std::regex("[^ A-Za-z0-9_\x80-\xFF-]"), "");
    for (char& c : anchor) c = c == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    anchors.insert(anchor);
  }
  return anchors;
}

TEST(Documents, LinksLeadSomewhere) {
  const std::regex link("\\]\\(([^)#]*)#?([^)]*)\\)");
  size_t count = 0;
  for (const fs::path& document : documents()) {
    for (const auto& [block, text] : lines_of(document)) {
      if (block != "-") continue;
      for (std::sregex_iterator found(text.begin(), text.end(), link), end; found != end; ++found) {
        const std::string name = found->str(1), target = found->str(2);
        if (name.find("://") != std::string::npos) continue;
        const fs::path file = name.empty() ? document : document.parent_path() / name;
        EXPECT_TRUE(fs::exists(file)) << document << ": " << name;
        EXPECT_TRUE(target.empty() || anchors_of(file).contains(target)) << document << ": " << name << '#' << target;
        ++count;
      }
    }
  }
  EXPECT_GT(count, 50u);
}

}  // namespace
