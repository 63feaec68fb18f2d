#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "cli/errors.h"
#include "cli/input.h"
#include "cli/output.h"

namespace {

using namespace vxcli;

// A descriptor that gives or takes so many bytes a call, and fails at a given call.
struct Device {
  std::string text;
  size_t at = 0;
  size_t bytes_a_call = 1;
  int calls = 0;
  int failing_call = -1;
  int error = 0;
  bool interrupts = false;  // every second call fails with EINTR

  int failure() {
    ++calls;
    if (calls == failing_call) return error;
    return interrupts && calls % 2 == 0 ? EINTR : 0;
  }
} device;

ssize_t give(int, void* bytes, size_t count) {
  if (const int error = device.failure(); error != 0) {
    errno = error;
    return -1;
  }
  const size_t taken = std::min({count, device.bytes_a_call, device.text.size() - device.at});
  std::memcpy(bytes, device.text.data() + device.at, taken);
  device.at += taken;
  return static_cast<ssize_t>(taken);
}

ssize_t take(int, const void* bytes, size_t count) {
  if (const int error = device.failure(); error != 0) {
    errno = error;
    return -1;
  }
  const size_t taken = std::min(count, device.bytes_a_call);
  device.text.append(static_cast<const char*>(bytes), taken);
  return static_cast<ssize_t>(taken);
}

struct Read {
  std::vector<std::string> lines;
  std::vector<uint64_t> too_long;
  int waits = 0;
};

Read read_all(const std::string& text, size_t bytes_a_call, bool interrupts = false) {
  device = {};
  device.text = text;
  device.bytes_a_call = bytes_a_call;
  device.interrupts = interrupts;
  Read result{};
  LineReader reader(
      0, "device", [&] { ++result.waits; }, give);
  LineReader::Line line;
  while (reader.next(line)) {
    result.lines.emplace_back(line.text);
    EXPECT_EQ(line.number, result.lines.size());
    if (line.too_long) result.too_long.push_back(line.number);
  }
  EXPECT_FALSE(reader.next(line));
  return result;
}

TEST(LineReader, LinesHoweverTheyArrive) {
  using Lines = std::vector<std::string>;
  using namespace std::string_literals;
  static const struct {
    std::string text;
    Lines lines;
  } cases[] = {{"", {}},
               {"a", {"a"}},
               {"a\n", {"a"}},
               {"\n", {""}},
               {"a\n\nb", {"a", "", "b"}},
               {"a\r\nb\r\n", {"a", "b"}},
               {"a\rb\n\r\r\n\r", {"a\rb", "\r", "\r"}},
               {"a\0b\n\0\n"s, {"a\0b"s, "\0"s}}};
  for (const auto& c : cases) {
    for (const size_t bytes : {size_t{1}, size_t{2}, size_t{3}, size_t{100000}}) {
      SCOPED_TRACE(testing::PrintToString(c.text) + " by " + std::to_string(bytes));
      EXPECT_EQ(read_all(c.text, bytes).lines, c.lines);
      EXPECT_EQ(read_all(c.text, bytes, true).lines, c.lines);
    }
  }
}

TEST(LineReader, LongLinesAreCutAndCounted) {
  const std::string whole(LineReader::longest_line, 'x');
  const std::string text = whole + "\nshort\n" + whole + "y\nshort\n" + whole + whole + whole;
  for (const size_t bytes : {size_t{1000}, size_t{65536}, size_t{65537}, size_t{1} << 20}) {
    const Read result = read_all(text, bytes);
    EXPECT_EQ(result.lines, (std::vector<std::string>{whole, "short", whole, "short", whole})) << bytes;
    EXPECT_EQ(result.too_long, (std::vector<uint64_t>{3, 5})) << bytes;
    EXPECT_EQ(result.waits, device.calls);
  }
}

TEST(LineReader, EveryFailureOfReadingIsReported) {
  for (int call = 1; call <= 4; ++call) {
    device = {};
    device.text = "a\nb";
    device.failing_call = call;
    device.error = EIO;
    LineReader reader(0, "device", {}, give);
    LineReader::Line line;
    try {
      while (reader.next(line)) {
      }
      ADD_FAILURE() << "call " << call;
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.code(), ExitCode::io);
      EXPECT_STREQ(failure.what(), "cannot read device: Input/output error");
    }
  }
}

TEST(Output, WholeHoweverItIsTaken) {
  const std::string text(200000, 'x');
  for (const size_t bytes : {size_t{1} << 12, size_t{65537}, size_t{1} << 20}) {
    device = {};
    device.bytes_a_call = bytes;
    device.interrupts = true;
    Output out(1, "device", take);
    out.put("a");
    EXPECT_EQ(device.calls, 0);  // nothing is written before there is a reason to
    out.line(text);
    out.put("b");
    out.flush();
    EXPECT_EQ(device.text, "a" + text + "\nb");
  }
}

TEST(Output, EveryFailureOfWritingIsReported) {
  int failures = 0;
  for (int call = 1;; ++call) {
    device = {};
    device.bytes_a_call = 10;
    device.failing_call = call;
    device.error = ENOSPC;
    Output out(1, "device", take);
    try {
      out.put("twelve bytes, and some more");
      out.flush();
      break;
    } catch (const Failure& failure) {
      ++failures;
      EXPECT_EQ(failure.code(), ExitCode::io);
      EXPECT_STREQ(failure.what(), "cannot write device: No space left on device");
    }
  }
  EXPECT_EQ(failures, 3);
}

}  // namespace
