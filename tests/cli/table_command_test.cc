// The commands over columns as a user runs them: their input cut anywhere, and each of their calls made to fail.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
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

/// Quotes, a line end within them, values that cannot be read, an empty line, a last line without its end.
constexpr std::string_view table =
    "\xEF\xBB\xBFid,when,\"a\r\nb\",amount\r\n1,31.12.2021,\"\"\"\",\"1.234,50\"\r\n\"2\",\"1.2.2022\","
    "\"y\n\"\"z\"\"\",x\n"
    "3,??,,\"1,5\"\r\n\r\n4,13.1.2022,q,9";

class TableCommand : public testing::Test {
 protected:
  TableCommand() {
    std::string name = (fs::temp_directory_path() / "vxnls-XXXXXX").string();
    folder_ = mkdtemp(name.data());
    put("dates", "31.12.2021\nx\n1.2.2022\n");
    put("table.csv", table);
    EXPECT_LE(run("vxnls recognise -q -l de_DE --emit-profile @/profile @/table.csv", {}).code, 1);
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

TEST_F(TableCommand, TheSameBytesHoweverTheInputIsCut) {
  static const struct {
    std::string line;
    std::vector<std::vector<int>> threads;  // taken in turn by the places of the cut
  } cases[] = {
      {"vxnls normalise --profile @/profile --rejects @/rejects < @/table.csv", {{1, 2, 4}}},
      {"vxnls normalise -l de_DE -c when:date,amount:number --rejects @/rejects < @/table.csv", {{1}, {2}, {4}}},
      {"vxnls recognise -l de_DE --json < @/table.csv", {{4}, {1}, {2}}}};
  for (const auto& c : cases) {
    const ProcessResult whole = run(c.line + " -j 1", {});
    const std::string rejects = content(folder_ / "rejects");
    EXPECT_EQ(whole.code, 1) << whole.err;
    EXPECT_NE(rejects, "");
    for (size_t most = 1; most <= table.size(); ++most) {
      for (const int threads : c.threads[most % c.threads.size()]) {
        SCOPED_TRACE(fmt::format("{} by {} bytes, {} threads", c.line, most, threads));
        const ProcessResult cut = run(fmt::format("{} -j {}", c.line, threads), {.most = most});
        ASSERT_EQ(cut.out, whole.out);
        ASSERT_EQ(cut.err, whole.err);
        ASSERT_EQ(cut.code, 1);
        ASSERT_EQ(content(folder_ / "rejects"), rejects);
      }
    }
  }
}

TEST(TableOfJson, NumbersHaveAPointWhateverTheStringsHave) {
  static constexpr vxtest::CommandCase cases[] = {
      {"vxnls normalise -q --format jsonl -c n:number -l de_DE",
       "{\"n\":\"1234.5\"}\n{\"n\":\"2.25\"}\n{\"n\":1.500}\n", "", 0,
       "{\"n\":\"1.234,5\"}\n{\"n\":\"2,25\"}\n{\"n\":1.500}\n"},
      {"vxnls normalise -q --format jsonl -c n:number -l de_DE --to-locale de_DE",
       "{\"n\":\"1.234,5\"}\n{\"n\":\"2,25\"}\n{\"n\":\"1,500\"}\n", "", 0,
       "{\"n\":\"1.234,5\"}\n{\"n\":\"2,25\"}\n{\"n\":1.500}\n"}};
  vxtest::expect(cases);
}

TEST_F(TableCommand, TheSameBytesThroughParallel) {
  std::string text;
  for (int i = 0; i < 2000; ++i)
    text += fmt::format("{},{:02}.{:02}.{},\"{},5\"\n", i, i % 28 + 1, i % 13, 1990 + i % 40, i);
  put("bare.csv", text);
  const ProcessResult profiled = run("vxnls recognise -q --no-header -l de_DE --emit-profile @/bare @/bare.csv", {});
  ASSERT_LE(profiled.code, 1) << profiled.err;
  const ProcessResult whole = run("vxnls normalise -q --no-header --profile @/bare @/bare.csv", {});
  EXPECT_EQ(whole.code, 1) << whole.err;
  EXPECT_EQ(std::count(whole.out.begin(), whole.out.end(), '\n'), 2000);
  EXPECT_NE(whole.out, text);
  const ProcessResult parallel =
      run_line(fmt::format("HOME={0} parallel --pipe --keep-order --block 3k --jobs 3 vxnls normalise -q --no-header "
                           "--profile {0}/bare < {0}/bare.csv",
                           folder_.string()));
  EXPECT_EQ(parallel.out, whole.out) << parallel.err;
}

struct Sweep {
  const char* line;
  size_t most;                    // bytes a read, so that there are a few
  const char* written = nullptr;  // a file that it writes
};
constexpr Sweep sweeps[] = {
    {"vxnls parse date -l de_DE < @/dates", 10},
    {"vxnls transcode --to utf-16le @/dates", 10},
    {"vxnls normalise -c when:date,amount:number -l de_DE --rejects @/rejects @/table.csv", 40, "rejects"},
    {"vxnls normalise --profile @/profile --invalid mark -j 2 < @/table.csv", 2000},
    {"vxnls recognise -l de_DE --emit-profile @/again @/table.csv", 40, "again"},
    {"vxnls recognise -l de_DE --html @/page --json < @/table.csv", 50, "page"},
};

TEST_F(TableCommand, EveryCallThatFailsIsTold) {
  for (const Sweep& sweep : sweeps) {
    const auto written = [&] { return sweep.written == nullptr ? "" : content(folder_ / sweep.written); };
    const ProcessResult plain = run(sweep.line, {});
    const std::string file = written();
    ASSERT_LE(plain.code, 1) << plain.err;
    for (const auto& [call, errors] : {std::pair<const char*, std::vector<int>>{"read", {0, EINTR, EIO}},
                                       {"write", {0, EINTR, ENOSPC, EPIPE}},
                                       {"close", {EIO}}}) {
      Faulty faulty{.call = call, .most = sweep.most};
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
