// What engines that run the command as a filter count on: one line out for each line in, wherever the input is cut,
// with nothing kept from line to line, flushed when the input pauses, and an exit code that tells the truth.
#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
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
    std::array<int, 2> in{}, out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    process_ = fork();
    if (process_ == 0) {
      dup2(in[0], STDIN_FILENO);
      dup2(out[1], STDOUT_FILENO);
      for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
      execl("/bin/sh", "sh", "-c", ("exec 2>/dev/null " + line).c_str(), nullptr);
      _exit(127);
    }
    close(in[0]);
    close(out[1]);
    to_ = in[1];
    from_ = out[0];
  }
  Filter(const Filter&) = delete;
  Filter& operator=(const Filter&) = delete;

  void write(std::string_view text) const {
    EXPECT_EQ(::write(to_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  /// As many lines as are wanted, no byte more; fewer at the end of the output.
  std::string read_lines(size_t count) const {
    std::string text;
    for (char c = 0; count > 0 && read(from_, &c, 1) == 1;) {
      text += c;
      if (c == '\n') --count;
    }
    return text;
  }
  /// Closes the input; gives what is left of the output, and behind it the exit code.
  std::string finish() const {
    close(to_);
    const std::string text = read_lines(SIZE_MAX);
    close(from_);
    int status = 0;
    waitpid(process_, &status, 0);
    return fmt::format("{}{}", text, WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
  }

 private:
  pid_t process_ = -1;
  int to_ = -1, from_ = -1;
};

/// One line out for each line in, whatever stands before it, as Spark cuts partitions and parallel cuts blocks.
TEST(Filter, LinesStandForThemselves) {
  static constexpr struct {
    const char *line, *input, *output;
  } cases[] = {
      {"vxnls parse date --locale de_DE --lenient", "31.12.2021\n3. März 2021\n\nheute\n31.02.2021\r\n1.1.70 \n",
       "2021-12-31\n2021-03-03\n\n\n\n1970-01-01\n"},
      {"vxnls parse number --locale fr_FR --spaces --unread '\\N'", "1 234,5\n-\n\u00A01\u00A0000\n",
       "1234.5\n\\N\n\\N\n"},
      {"vxnls format date --locale ja_JP --style long", "2021-03-05\n9\n2021-02-30\n",
       "2021年03月5日\n1960年01月10日\n\n"},
      {"vxnls format number --locale de_DE --group --decimals 2", "1234567.891\n-1\nx\n", "1.234.567,89\n-1,00\n\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    const auto whole = run(c.line, c.input);
    EXPECT_EQ(whole.out, c.output);
    EXPECT_EQ(whole.code, 1);
    std::istringstream lines(c.input);
    std::string together;
    for (std::string line; std::getline(lines, line);) together += run(c.line, line + '\n').out;
    EXPECT_EQ(together, c.output);
    const auto nothing = run(c.line);
    EXPECT_EQ(fmt::format("{}{}{}", nothing.out, nothing.err, nothing.code), "0");
    EXPECT_EQ(run(std::string(c.line) + " --ok-unread", c.input).code, 0);
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
    EXPECT_EQ(filter.finish(), "0");
  }
}

TEST(Filter, BlocksThatAreNone) {
  const std::string none = "vxnls: standard input: line {}: the number of values of a block is wanted, not \"{}\"\n";
  const struct {
    const char *input, *out;
    std::string err = "";
  } inputs[] = {{"0\n0\n", ""},
                {"1\n2\n1\n3", "2\n3\n"},
                {"2\n5\n", "5\n", "vxnls: standard input ends 1 values before its last block does\n"},
                {"1\n5\nx\n", "5\n", fmt::format(fmt::runtime(none), 3, "x")},
                {"1 \n5\n", "", fmt::format(fmt::runtime(none), 1, "1 ")},
                {"-1\n5\n", "", fmt::format(fmt::runtime(none), 1, "-1")},
                {"99999999999999999999\n", "", fmt::format(fmt::runtime(none), 1, "99999999999999999999")}};
  for (const auto& c : inputs) {
    const auto result = run("vxnls parse number --locale en_US --chunk-header", c.input);
    EXPECT_EQ(result.err, c.err) << c.input;
    EXPECT_EQ(result.out, c.out) << c.input;
    EXPECT_EQ(result.code, c.err.empty() ? 0 : 3) << c.input;
  }
  static constexpr const char* misused[] = {"--chunk-header 1", "--ok-unread 1", "--unread x 1", "--unread x --json"};
  for (const char* words : misused) EXPECT_EQ(run(std::string("vxnls parse number ") + words, "1\n").code, 2) << words;
}

/// Columns are read by the decisions of a profile, so that every part of the data is read alike, and each record is
/// answered at once, whatever the threads.
TEST(Filter, RecordsAreAnsweredAtOnce) {
  // 3/4/2021 alone could be either day; the profile knows.
  const auto record = [](int i) {
    if (i % 5 == 4) return fmt::format("{},\"Feber\n2021\",n/a\r\n", i);
    return fmt::format("{},{}/{}/2021,\"1.{:03},5\"\n", i, i % 3 == 0 ? 13 + i % 9 : 3, 4 + i % 9, i % 1000);
  };
  const auto normalised = [&](int i) {
    if (i % 5 == 4) return record(i);
    return fmt::format("{},2021-{:02}-{:02},\"1{:03}.5\"\n", i, 4 + i % 9, i % 3 == 0 ? 13 + i % 9 : 3, i % 1000);
  };
  const vxtest::TemporaryFolder folder;
  std::string body;
  for (int i = 0; i < 6; ++i) body += record(i);
  const std::string profile = folder.file("profile");
  run("vxnls recognise --format csv --no-header -c 2:date,3:number --emit-profile " + profile, body);
  for (const int threads : {1, 2, 4}) {
    Filter filter(
        fmt::format("vxnls normalise --format csv --no-header --profile {} -q --ok-unread -j {}", profile, threads));
    for (int i = 0; i < 20; ++i) {
      const std::string text = record(i);
      filter.write(text.substr(0, 7));
      filter.write(text.substr(7));
      ASSERT_EQ(filter.read_lines(i % 5 == 4 ? 2 : 1), normalised(i));
    }
    EXPECT_EQ(filter.finish(), "0");
  }
}

}  // namespace
