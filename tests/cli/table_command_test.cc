// The commands over columns as a user runs them: their input cut anywhere, and each of their calls made to fail.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/command_line.h"

namespace {

namespace fs = std::filesystem;
using vxtest::ProcessResult;
using vxtest::run_line;

std::string content(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

/// How one call is made faulty.
struct Faulty {
  const char* call = "read";
  long at = 0;
  int error = 0;
  size_t most = 0;
};

class TableCommand : public testing::Test {
 protected:
  TableCommand() {
    std::string name = (fs::temp_directory_path() / "vxnls-XXXXXX").string();
    folder_ = mkdtemp(name.data());
    put("dates", "31.12.2021\nx\n1.2.2022\n");
  }
  ~TableCommand() override { fs::remove_all(folder_); }

  void put(const char* name, std::string_view text) { std::ofstream(folder_ / name, std::ios::binary) << text; }
  /// A line of the shell, "@" standing for the folder; "vxnls" with a faulty call.
  ProcessResult run(std::string line, const Faulty& faulty, std::string_view input = {}) {
    const std::string command = fmt::format(
        "env LD_PRELOAD={} FAULTY_FOLDER={} FAULTY_COUNT={}/../{} FAULTY_CALL={} FAULTY_AT={} "
        "FAULTY_ERROR={} FAULTY_MOST={} vxnls",
        VXNLS_FAULTY_CALLS, folder_.string(), folder_.string(), count_name(), faulty.call, faulty.at, faulty.error,
        faulty.most);
    for (size_t at = 0; (at = line.find('@', at)) != std::string::npos;) line.replace(at, 1, folder_.string());
    line.replace(line.find("vxnls"), 5, command);
    return run_line(line, input);
  }

  /// Runs a line without a fault, and tells how many of these calls it makes.
  long calls_of(const std::string& line, const Faulty& faulty) {
    run(line, faulty);
    const fs::path file = folder_.parent_path() / count_name();
    const long calls = std::atol(content(file).c_str());
    fs::remove(file);
    return calls;
  }

  fs::path folder_;

 private:
  std::string count_name() const { return folder_.filename().string() + ".count"; }
};

struct Sweep {
  const char* line;
  const char* written = nullptr;  // a file that it writes
};
constexpr Sweep sweeps[] = {{"vxnls parse date -l de_DE < @/dates"}};

TEST_F(TableCommand, EveryCallThatFailsIsTold) {
  for (const Sweep& sweep : sweeps) {
    const auto written = [&] { return sweep.written == nullptr ? "" : content(folder_ / sweep.written); };
    const ProcessResult plain = run(sweep.line, {});
    const std::string file = written();
    ASSERT_LE(plain.code, 1) << plain.err;
    for (const auto& [call, errors] : {std::pair<const char*, std::vector<int>>{"read", {0, EINTR, EIO}},
                                       {"write", {0, EINTR, ENOSPC, EPIPE}},
                                       {"close", {EIO}}}) {
      Faulty faulty{.call = call, .most = 16};
      const long calls = calls_of(sweep.line, faulty);
      ASSERT_GT(calls, 0) << call;
      int told = 0;
      for (const int error : errors) {
        for (faulty.at = 1, faulty.error = error; faulty.at <= calls; ++faulty.at) {
          SCOPED_TRACE(fmt::format("{}: {} number {}: {}", sweep.line, call, faulty.at, std::strerror(error)));
          const ProcessResult result = run(sweep.line, faulty);
          if (result.code == 3) {
            ++told;
            EXPECT_NE(result.err.find(std::strerror(error)), std::string::npos) << result.err;
            EXPECT_TRUE(plain.out.starts_with(result.out));
          } else {
            EXPECT_EQ(result.code, plain.code);
            EXPECT_EQ(result.out, plain.out);
            EXPECT_EQ(result.err, plain.err);
            EXPECT_EQ(written(), file);
          }
        }
      }
      // Only that an input cannot be closed may be passed over.
      if (std::string_view(call) == "close") EXPECT_GT(told, 0);
      else EXPECT_EQ(told, calls * static_cast<long>(errors.size() - 2));
    }
  }
}

}  // namespace
