// The commands in the documents: each line behind "$ " of a console block is run by a shell, and prints what stands
// below it. The blocks of one document share a folder of their own, so that a block may read what an earlier one wrote.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "tests/support/process.h"

namespace {

namespace fs = std::filesystem;
const fs::path root = VXNLS_SOURCE_DIR;

std::vector<fs::path> documents() {
  std::vector<fs::path> all{root / "README.md", root / "examples/README.md"};
  for (const auto& entry : fs::directory_iterator(root / "docs")) {
    if (entry.path().extension() == ".md") all.push_back(entry.path());
  }
  std::sort(all.begin(), all.end());
  return all;
}

std::vector<std::string> lines_of(const fs::path& path) {
  std::ifstream in(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

/// A command with the text that is shown below it.
struct Step {
  size_t line;
  std::string command, output;
};

/// Whether a step asks for an extension in $LIB that this build does not have.
bool cannot_be_run(const Step& step) {
  const size_t at = step.command.find("$LIB/");
  if (at == std::string::npos) return false;
  const size_t begin = at + 5;
  const size_t end = step.command.find_first_of(" \"'", begin);
  return !fs::exists(fs::path(VXNLS_LIBRARIES) / step.command.substr(begin, end - begin));
}

/// The steps of a document's console blocks, but those of "console measured": timings, and other people's programs.
std::vector<Step> steps_of(const std::vector<std::string>& lines) {
  std::vector<Step> steps;
  bool inside = false, continued = false;
  for (size_t i = 0; i < lines.size(); ++i) {
    const std::string& line = lines[i];
    if (!inside) {
      inside = line == "```console";
      continued = false;
      if (!inside && line.starts_with("```") && line.size() > 3) {  // another block: nothing in it is a command
        while (++i < lines.size() && lines[i] != "```") {
        }
      }
    } else if (line == "```") {
      inside = false;
    } else if (continued) {
      steps.back().command += '\n' + line;
      continued = line.ends_with('\\');
    } else if (line.starts_with("$ ")) {
      steps.push_back({i + 1, line.substr(2), ""});
      continued = line.ends_with('\\');
    } else if (!steps.empty()) {
      steps.back().output += line + '\n';
    }
  }
  return steps;
}

TEST(Documents, CommandsPrintWhatTheySay) {
  size_t count = 0;
  for (const fs::path& document : documents()) {
    const std::string name = fs::relative(document, root);
    const fs::path folder = fs::path(testing::TempDir()) / ("vxnls_documents" + std::to_string(getpid()));
    fs::create_directories(folder);
    fs::create_directory_symlink(root / "examples", folder / "examples");
    vxtest::Environment variables{{"PATH", std::string(VXNLS_PROGRAMS) + ":/usr/bin:/bin"},
                                  {"LANG", "en_US.UTF-8"},
                                  {"TZ", "UTC"},
                                  {"HERE", folder},
                                  {"HOME", folder},
                                  {"PERL_BADLANG", "0"},  // the locale of LANG need not be installed
                                  {"LIB", VXNLS_LIBRARIES}};
    for (const char* variable : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS"}) {
      if (const char* value = std::getenv(variable); value != nullptr) variables.emplace_back(variable, value);
    }
    for (const Step& step : steps_of(lines_of(document))) {
      if (cannot_be_run(step)) continue;
      SCOPED_TRACE(name + ":" + std::to_string(step.line) + ": " + step.command);
      const auto result = vxtest::run_shell("cd \"$HERE\" && exec 2>&1\n" + step.command, "", variables);
      EXPECT_EQ(result.out, step.output);
      ++count;
    }
    fs::remove_all(folder);
  }
  EXPECT_GT(count, 50u) << "where are the documents?";
}

/// The anchor that a heading gets: small letters, blanks as hyphens, no punctuation.
std::string anchor(std::string_view heading) {
  std::string result;
  for (const char c : heading) {
    if (c == ' ') result.push_back('-');
    else if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_' ||
             static_cast<signed char>(c) < 0)
      result.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
  }
  return result;
}

std::set<std::string> anchors_of(const fs::path& document) {
  std::set<std::string> result;
  bool inside = false;
  for (const std::string& line : lines_of(document)) {
    if (line.starts_with("```")) inside = !inside;
    if (!inside && line.starts_with("#")) result.insert(anchor(line.substr(std::min(line.find(' ') + 1, line.size()))));
  }
  return result;
}

TEST(Documents, LinksLeadSomewhere) {
  size_t count = 0;
  for (const fs::path& document : documents()) {
    bool inside = false;
    for (const std::string& line : lines_of(document)) {
      if (line.starts_with("```")) inside = !inside;
      for (size_t at = inside ? std::string::npos : line.find("]("); at != std::string::npos;
           at = line.find("](", at + 2)) {
        const std::string target = line.substr(at + 2, line.find(')', at) - at - 2);
        if (target.find("://") != std::string::npos) continue;
        const size_t hash = std::min(target.find('#'), target.size());
        const fs::path file = hash == 0 ? document : document.parent_path() / target.substr(0, hash);
        EXPECT_TRUE(fs::exists(file)) << document << ": " << target;
        if (hash < target.size() && fs::exists(file)) {
          EXPECT_TRUE(anchors_of(file).contains(target.substr(hash + 1))) << document << ": " << target;
        }
        ++count;
      }
    }
  }
  EXPECT_GT(count, 20u);
}

TEST(Documents, TheReaderOfBlocksItself) {
  const auto steps =
      steps_of({"```console",          "$ a \\", "  b", "x",     "$ c",  "```", "$ no",       "```cpp", "$ no", "```",
                "```console measured", "$ no",   "```", "```sh", "$ no", "```", "```console", "$ d",    "",     "```"});
  ASSERT_EQ(steps.size(), 3u);
  EXPECT_EQ(steps[0].command, "a \\\n  b");
  EXPECT_EQ(steps[0].output, "x\n");
  EXPECT_EQ(steps[1].command + steps[1].output, "c");
  EXPECT_EQ(steps[2].command + steps[2].output, "d\n");
  EXPECT_EQ(anchor("Read a column: dates, times"), "read-a-column-dates-times");
}

}  // namespace
