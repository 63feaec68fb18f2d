// How every command ends, whatever it is.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/arguments.h"
#include "tests/cli/command_line.h"

namespace {

using namespace vxcli;
namespace fs = std::filesystem;

struct Way {
  std::string options;  // behind those of the line
  std::string target;   // standard output: 1 as it is, 4 a pipe that nobody reads, 5 a full disk
  std::string end;      // the exit code, and the beginning of the first message
  std::string setting = "";
};

/// Runs a line in each way. Where "vxnls" stands in it more than once, the highest exit code counts.
void expect_ends(const std::string& line, const std::vector<Way>& ways) {
  SCOPED_TRACE(line);
  std::string script =
      "d=$(mktemp -d); mkfifo $d/pipe; exec 3<>$d/pipe 4>$d/pipe 3<&- 5>/dev/full\n"
      "vxnls() { env $setting vxnls \"$@\" -q $options >&$target; echo $? >&8; }\n";
  for (const Way& way : ways) {
    script += fmt::format("options='{}' target={} setting='{}'; {{ {}; }} >/dev/null 2>$d/told 8>$d/codes\n",
                          way.options, way.target, way.setting, line);
    script += "echo $(sort -rn $d/codes | head -n 1) $(head -n 1 $d/told)\n";
  }
  const std::string told = vxtest::run_line(script + "rm -r $d").out;
  size_t at = 0;
  for (const Way& way : ways) {
    const size_t end = std::min(told.find('\n', at), told.size());
    EXPECT_EQ(told.substr(at, std::min(end - at, way.end.size())), way.end) << way.options << ' ' << way.setting;
    at = std::min(end + 1, told.size());
  }
}

const std::string closed = "3 vxnls: cannot write standard output: Broken pipe";
const std::string full = "3 vxnls: cannot write standard output: No space left on device";

/// A folder with the libraries, but none of the extensions that the host needs.
class BrokenHost {
 public:
  BrokenHost() {
    fs::create_directories(folder_);
    for (const char* name : {"libvxhost.so.6", "libvxnlsloc.so.6"}) {
      fs::copy_file(fs::path(VXNLS_COMMAND_FOLDER).parent_path() / "lib" / name, folder_ / name);
    }
  }
  ~BrokenHost() { fs::remove_all(folder_); }
  BrokenHost(const BrokenHost&) = delete;
  BrokenHost& operator=(const BrokenHost&) = delete;
  std::string setting() const { return fmt::format("LD_LIBRARY_PATH={}", folder_.string()); }

 private:
  const fs::path folder_ = fs::temp_directory_path() / fmt::format("vxnls-exit-codes-{}", getpid());
};

TEST(ExitCodes, OfEveryCommand) {
  const BrokenHost broken_host;
  for_each_command([&](const CommandPath& path) {
    for (const std::string option : {"--help", "-h", "--version"}) {
      expect_ends(full_name(path) + ' ' + option, {{"", "1", "0"}, {"", "4", closed}, {"", "5", full}});
    }
    const auto examples = path.back()->examples;
    const auto open_to_options = [](const Example& one) { return one.line.find(" -- ") == std::string_view::npos; };
    expect_ends(std::string(std::find_if(examples.begin(), examples.end(), open_to_options)->line),
                {{"", "1", "0"},
                 {"", "4", closed},
                 {"", "5", full},
                 {"--nonsense", "5", "2 vxnls: "},
                 {"--locale qq_XX", "5", "2 vxnls: there is no locale \"qq_XX\""},
                 {"--zone No/Where", "5", "2 vxnls: there is no time zone \"No/Where\""},
                 {"--locale C --zone UTC", "5", "4 vxnls: the host cannot start:", broken_host.setting()}});
  });
}

}  // namespace
