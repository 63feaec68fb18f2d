// What engines that run the command as a filter count on: one line out for each line in, wherever the input is cut,
// with nothing kept from line to line, flushed when the input pauses, and an exit code that tells the truth.
#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/host/temporary_folder.h"
#include "tests/support/process.h"

namespace {

const vxtest::Environment environment{
    {"PATH", VXNLS_COMMAND_FOLDER ":/usr/bin:/bin"}, {"LC_ALL", "C.UTF-8"}, {"TZ", "UTC"}, {"HOME", "/tmp"}};

vxtest::ProcessResult run(const std::string& line, std::string_view input = {}) {
  return vxtest::run_shell(line, input, environment);
}

/// The stand-in for an engine: a filter that is fed and read step by step, as by Hadoop streaming or a pool of
/// executable functions.
class Filter {
 public:
  explicit Filter(const std::string& line) {
    std::signal(SIGPIPE, SIG_IGN);
    std::array<int, 2> in{}, out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::array<std::string, 3> words{"sh", "-c", "exec " + line};
    std::array<char*, 4> arguments{words[0].data(), words[1].data(), words[2].data(), nullptr};
    std::vector<std::string> texts;
    for (const auto& [name, value] : environment) texts.push_back(name + '=' + value);
    std::vector<char*> variables;
    for (std::string& text : texts) variables.push_back(text.data());
    variables.push_back(nullptr);
    const int failed = posix_spawn(&process_, "/bin/sh", &actions, nullptr, arguments.data(), variables.data());
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    to_ = in[1];
    from_ = out[0];
    if (failed != 0) throw std::runtime_error("no shell");
  }
  ~Filter() { end(); }
  Filter(const Filter&) = delete;
  Filter& operator=(const Filter&) = delete;

  void write(std::string_view text) {
    while (!text.empty()) {
      const ssize_t count = ::write(to_, text.data(), text.size());
      if (count < 0) return;
      text.remove_prefix(static_cast<size_t>(count));
    }
  }
  /// Returns when the filter has taken all that was written.
  void wait_until_taken() const {
    for (int waiting = 1; ioctl(to_, FIONREAD, &waiting) == 0 && waiting > 0;) usleep(100);
  }
  /// As many lines as are wanted, no byte more; fewer at the end of the output.
  std::string read_lines(size_t count) {
    std::string text;
    for (char c = 0; count > 0 && read(from_, &c, 1) == 1;) {
      text += c;
      if (c == '\n') --count;
    }
    return text;
  }
  /// Closes the input; gives what is left of the output.
  std::string finish() {
    close_input();
    std::string text;
    std::array<char, 65536> block;
    for (ssize_t count; (count = read(from_, block.data(), block.size())) > 0;) {
      text.append(block.data(), static_cast<size_t>(count));
    }
    return text;
  }
  int end() {
    if (process_ > 0) {
      close_input();
      close(from_);
      int status = 0;
      waitpid(process_, &status, 0);
      code_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      process_ = -1;
    }
    return code_;
  }

 private:
  void close_input() {
    if (to_ >= 0) close(to_);
    to_ = -1;
  }
  pid_t process_ = -1;
  int to_ = -1, from_ = -1, code_ = -1;
};

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line + '\n');
  return lines;
}

std::string joined(const std::vector<std::string>& lines, size_t begin, size_t end) {
  std::string text;
  for (size_t i = begin; i < end; ++i) text += lines[i];
  return text;
}

struct Case {
  const char* line;
  const char* input;
  const char* output;
};
constexpr Case cases[] = {
    {"vxnls parse date --locale de_DE --lenient", "31.12.2021\n3. März 2021\n\nheute\n31.02.2021\r\n1.1.70 \n",
     "2021-12-31\n2021-03-03\n\n\n\n1970-01-01\n"},
    {"vxnls parse number --locale fr_FR --spaces --unread '\\N'", "1 234,5\n-\n\u00A01\u00A0000\n",
     "1234.5\n\\N\n\\N\n"},
    {"vxnls parse datetime --locale en_US --lenient --json", "3/4/2021 2:05 PM\nx\n", nullptr},
    {"vxnls format date --locale ja_JP --style long", "2021-03-05\n9\n2021-02-30\n",
     "2021年03月5日\n1960年01月10日\n\n"},
    {"vxnls format number --locale de_DE --group --decimals 2", "1234567.891\n-1\nx\n", "1.234.567,89\n-1,00\n\n"},
};

/// One line out for each line in; the same when the input is cut into parts between lines, as Spark cuts partitions.
TEST(Filter, LinesStandForThemselves) {
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    const auto whole = run(c.line, c.input);
    if (c.output != nullptr) {
      EXPECT_EQ(whole.out, c.output);
    }
    EXPECT_EQ(whole.code, 1);
    const auto lines = lines_of(c.input);
    ASSERT_EQ(lines_of(whole.out).size(), lines.size());
    for (size_t cut = 0; cut <= lines.size(); ++cut) {
      const auto first = run(c.line, joined(lines, 0, cut));
      const auto second = run(c.line, joined(lines, cut, lines.size()));
      // --json counts lines.
      if (c.output != nullptr) {
        EXPECT_EQ(first.out + second.out, whole.out) << cut;
      }
      EXPECT_EQ(std::max(first.code, second.code), 1) << cut;
    }
    const auto nothing = run(c.line);
    EXPECT_EQ(nothing.out + nothing.err, "");
    EXPECT_EQ(nothing.code, 0);
    EXPECT_EQ(run(std::string(c.line) + " --ok-unread", c.input).code, 0);
  }
}

/// The same at every byte, with a pause at the cut: nothing depends on how much a read gives.
TEST(Filter, AnyCut) {
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    const std::string input = c.input;
    const std::string whole = run(c.line, input).out;
    for (size_t cut = 1; cut < input.size(); ++cut) {
      Filter filter(c.line);
      filter.write(input.substr(0, cut));
      filter.wait_until_taken();
      filter.write(input.substr(cut));
      EXPECT_EQ(filter.finish(), whole) << cut;
      EXPECT_EQ(filter.end(), 1) << cut;
    }
  }
}

/// A pool of executable functions keeps a filter alive and wants the lines of a block before it sends the next one.
TEST(Filter, BlocksAreAnsweredAtOnce) {
  for (const bool with_header : {true, false}) {
    Filter filter(fmt::format("vxnls parse number --locale de_DE --unread '\\N' --ok-unread{}",
                              with_header ? " --chunk-header" : ""));
    int64_t number = 0;
    for (const size_t size : {1U, 0U, 3U, 10'000U, 1U, 2U, 0U, 500U}) {
      std::string block = with_header ? fmt::format("{}\n", size) : "";
      std::string expected;
      for (size_t i = 0; i < size; ++i, ++number) {
        const bool readable = number % 7 != 3;
        block += fmt::format("{}{},5\n", readable ? "" : "x", number);
        expected += readable ? fmt::format("{}.5\n", number) : "\\N\n";
      }
      filter.write(block);
      ASSERT_EQ(filter.read_lines(size), expected) << "block of " << size;
    }
    EXPECT_EQ(filter.finish(), "");
    EXPECT_EQ(filter.end(), 0);
  }
}

TEST(Filter, BlocksThatAreNone) {
  static constexpr struct {
    const char* input;
    const char* out;
    const char* err;
    int code;
  } inputs[] = {
      {"", "", "", 0},
      {"0\n0\n", "", "", 0},
      {"1\n2\n1\n3", "2\n3\n", "", 0},
      {"2\n5\n", "5\n", "vxnls: standard input ends 1 values before its last block does\n", 3},
      {"1\n5\nx\n", "5\n", "vxnls: standard input: line 3: the number of values of a block is wanted, not \"x\"\n", 3},
      {"1 \n5\n", "", "vxnls: standard input: line 1: the number of values of a block is wanted, not \"1 \"\n", 3},
      {"-1\n5\n", "", "vxnls: standard input: line 1: the number of values of a block is wanted, not \"-1\"\n", 3},
      {"99999999999999999999\n", "",
       "vxnls: standard input: line 1: the number of values of a block is wanted, not \"99999999999999999999\"\n", 3},
  };
  for (const auto& c : inputs) {
    SCOPED_TRACE(c.input);
    const auto result = run("vxnls parse number --locale en_US --chunk-header", c.input);
    EXPECT_EQ(result.err, c.err);
    EXPECT_EQ(result.out, c.out);
    EXPECT_EQ(result.code, c.code);
  }
  static constexpr const char* misused[] = {"--chunk-header 1", "--ok-unread 1", "--unread x 1", "--unread x --json"};
  for (const char* words : misused) EXPECT_EQ(run(std::string("vxnls parse number ") + words, "1\n").code, 2) << words;
}

/// GNU parallel cuts a stream or a file into blocks and runs a filter on each.
TEST(Filter, GnuParallel) {
  if (run("parallel --version").code != 0) GTEST_SKIP() << "GNU parallel is not installed";
  const vxtest::TemporaryFolder folder;
  std::string lines;
  for (int i = 0; i < 20'000; ++i) lines += fmt::format("{}.{}.{}\n", i % 29 + 1, i % 13 + 1, 1900 + i % 150);
  folder.write("dates", lines);
  const std::string filter = "vxnls parse date --locale de_DE --lenient";
  const auto alone = run(filter, lines);
  EXPECT_EQ(alone.code, 1);  // there is no 13th month
  for (const std::string& how : {std::string("--pipe --block 64k -j 2 -k"),
                                 fmt::format("--pipepart -a {} --block 64k -j 2 -k", folder.file("dates"))}) {
    SCOPED_TRACE(how);
    // The exit code of parallel is the number of jobs that failed.
    const auto result = run(fmt::format("parallel --will-cite {} {} 2>/dev/null", how, filter), lines);
    EXPECT_EQ(result.out, alone.out);
    EXPECT_GT(result.code, 1);
    EXPECT_EQ(run(fmt::format("parallel --will-cite {} {} --ok-unread 2>/dev/null", how, filter), lines).code, 0);
  }
}

// --- columns by a profile -----------------------------------------------------------------------------------

/// Columns are read by the decisions of a profile, so that every part of the data is read alike.
class Columns : public testing::Test {
 protected:
  void SetUp() override {
    std::string body;
    for (int i = 0; i < 6; ++i) body += record(i);
    folder.write("body", body);
    const auto told =
        run(fmt::format("vxnls recognise --format csv --no-header -c 2:date,3:number --emit-profile {} {}",
                        folder.file("profile"), folder.file("body")));
    ASSERT_LE(told.code, 1) << told.err;
  }
  /// 3/4/2021 alone could be either day; the profile knows.
  static std::string record(int i) {
    if (i % 5 == 4) return fmt::format("{},\"Feber\n2021\",n/a\r\n", i);
    return fmt::format("{},{}/{}/2021,\"1.{:03},5\"\n", i, i % 3 == 0 ? 13 + i % 9 : 3, 4 + i % 9, i % 1000);
  }
  static std::string normalised(int i) {
    if (i % 5 == 4) return record(i);
    return fmt::format("{},2021-{:02}-{:02},\"1{:03}.5\"\n", i, 4 + i % 9, i % 3 == 0 ? 13 + i % 9 : 3, i % 1000);
  }
  std::string command() const {
    return fmt::format("vxnls normalise --format csv --no-header --profile {} -q", folder.file("profile"));
  }
  const vxtest::TemporaryFolder folder;
};

TEST_F(Columns, AnyCut) {
  std::string input, expected;
  for (int i = 0; i < 6; ++i) {
    input += record(i);
    expected += normalised(i);
  }
  EXPECT_EQ(run(command(), input).out, expected);
  for (size_t cut = 1; cut < input.size(); ++cut) {
    Filter filter(command());
    filter.write(input.substr(0, cut));
    filter.wait_until_taken();
    filter.write(input.substr(cut));
    EXPECT_EQ(filter.finish(), expected) << cut;
    EXPECT_EQ(filter.end(), 1) << cut;
  }
}

TEST_F(Columns, EachRecordIsAnsweredAtOnce) {
  Filter filter(command() + " --ok-unread");
  for (int i = 0; i < 20; ++i) {
    filter.write(record(i));
    const size_t lines = i % 5 == 4 ? 2 : 1;
    ASSERT_EQ(filter.read_lines(lines), normalised(i));
  }
  EXPECT_EQ(filter.finish(), "");
  EXPECT_EQ(filter.end(), 0);
}

TEST_F(Columns, GnuParallel) {
  if (run("parallel --version").code != 0) GTEST_SKIP() << "GNU parallel is not installed";
  std::string input, expected;
  for (int i = 0; i < 20'000; ++i) {
    if (i % 5 == 4) continue;  // a line end within a record is no place to cut
    input += record(i);
    expected += normalised(i);
  }
  const auto result = run(fmt::format("parallel --will-cite --pipe --block 100k -j 2 -k {}", command()), input);
  EXPECT_EQ(result.out, expected);
  EXPECT_EQ(result.code, 0) << result.err;
}

}  // namespace
