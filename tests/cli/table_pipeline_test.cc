// The input in blocks, through threads: the same bytes and places however it is cut, and no failure that is lost.
#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "cli/errors.h"
#include "cli/table/pipeline.h"
#include "cli/table/progress.h"

namespace {

using namespace vxcli;
using namespace vxcli::table;

/// A descriptor that gives so many bytes a call, and fails at one of them.
struct Device {
  std::string_view text;
  size_t bytes_a_call = 1;
  int failing_call = -1;
  bool interrupts = false;  // every second call
  int calls = 0;
} device;

ssize_t give(int, void* bytes, size_t count) {
  ++device.calls;
  if (device.calls == device.failing_call || (device.interrupts && device.calls % 2 == 0)) {
    errno = device.calls == device.failing_call ? EIO : EINTR;
    return -1;
  }
  const size_t taken = std::min({count, device.bytes_a_call, device.text.size()});
  std::memcpy(bytes, device.text.data(), taken);
  device.text.remove_prefix(taken);
  return static_cast<ssize_t>(taken);
}

constexpr int always_waiting = -1;  // no descriptor: each read looks like one to wait for
const int never_waiting = open("/dev/null", O_RDONLY);

struct Result {
  std::string copy, places;
};

/// Copies the records of a block, and notes where each is and what its first column says.
void copy_block(const Block& block, Splitter& splitter, Result& result) {
  result = {};
  std::string scratch;
  splitter.start(block);
  for (Record record; splitter.next(record);) {
    result.copy += record.text;
    result.places += fmt::format("{} line {} byte {}:", record.number, record.line, record.offset);
    for (const Cell& cell : record.cells) result.places += fmt::format(" {}", splitter.value(record, cell, scratch));
    for (const Flaw& flaw : record.flaws) result.places += fmt::format(" {}@{}", describe(flaw.fault), flaw.at);
    result.places += '\n';
  }
}

struct Way {
  unsigned threads = 1;
  size_t block_size = BlockReader::usual_block;
  size_t bytes_a_call = size_t{1} << 20;
  int descriptor = never_waiting;
  uint64_t sampled = 0;
};

struct Outcome {
  std::string copy, places;
  std::string failure;
};

Outcome run(const Dialect& dialect, std::string_view text, const Way& way) {
  const int failing_call = device.failing_call;
  device = {.text = text, .bytes_a_call = way.bytes_a_call, .failing_call = failing_call};
  device.interrupts = way.block_size % 2 == 0 && failing_call < 0;
  BlockReader reader(way.descriptor, "device", dialect, give, way.block_size);
  Outcome outcome;
  try {
    outcome.copy = reader.head().bytes;
    for (const Block& block : reader.sample(way.sampled)) EXPECT_FALSE(block.text.empty());
    run_pipeline<Result>(reader, way.threads,
                         {.make_worker =
                              [&] {
                                return [splitter = Splitter(dialect, {{.name = "a", .index = 0}}, 2)](
                                           const Block& block, Result& result) mutable {
                                  copy_block(block, splitter, result);
                                };
                              },
                          .consume =
                              [&](Result& result) {
                                outcome.copy += result.copy;
                                outcome.places += result.places;
                                return true;
                              },
                          .before_waiting = {}});
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), ExitCode::io);
    outcome.failure = failure.what();
  }
  return outcome;
}

const struct Sample {
  Format format;
  bool header;
  std::string_view text;
} samples[] = {
    {Format::csv, true,
     "\xEF\xBB\xBFwhen,\"a\r\nb\"\r\n1,\"2,\n\"\"3\"\"\"\r\n\"\",\"\"\r\n\r\n4,x\"5\n\"6\"\"\",7\n8"},
    {Format::csv, false, "\"a\"x\",1\n\"\"\"\",2\n3\n4,\"5\n6\n\"\"7\n"},
    {Format::csv, false, "\"a\"\"\nb\",\"\"\"\n\"\"\"\n1,2"},
    {Format::csv, true, "a,b\r\n"},
    {Format::csv, true, "\"a,b\n1,2\n"},
    {Format::csv, true, ""},
    {Format::csv, false, "\xEF\xBB\xBF"},
    {Format::tsv, true, "a\tb\n\"1\t2\n3\t\r\n"},
    {Format::json_lines, true, "\xEF\xBB\xBF{\"a\":\"\\n\"}\n\n{\"b\":{\"a\":2},\"a\":1}\r\nx\n{}"},
    {Format::lines, true, "\n\r\n\"a\nb"},
};

TEST(Pipeline, AnyCutAndAnyNumberOfThreads) {
  for (const Sample& sample : samples) {
    Dialect dialect = Dialect::of(sample.format);
    dialect.header = sample.header;
    device = {};
    const Outcome whole = run(dialect, sample.text, {});
    EXPECT_EQ(whole.copy, sample.text);
    for (const unsigned threads : {1u, 2u, 4u}) {
      for (size_t block_size = 1; block_size <= sample.text.size() + 1; ++block_size) {
        for (const size_t bytes : {size_t{1}, size_t{3}, size_t{1000}}) {
          for (const int descriptor : {never_waiting, always_waiting}) {
            const Way way{threads, block_size, bytes, descriptor, block_size % 5};
            SCOPED_TRACE(fmt::format("{} threads, blocks of {}, reads of {}, descriptor {}", threads, block_size, bytes,
                                     descriptor));
            const Outcome cut = run(dialect, sample.text, way);
            ASSERT_EQ(cut.copy, sample.text);
            ASSERT_EQ(cut.places, whole.places);
          }
        }
      }
    }
  }
}

TEST(Pipeline, PlacesOfRecords) {
  device = {};
  const Outcome run_of_first = run(Dialect::of(Format::csv), samples[0].text, {});
  EXPECT_EQ(run_of_first.places,
            "1 line 3 byte 16: 1\n"
            "2 line 5 byte 30: \n"
            "3 line 6 byte 37: \n"
            "4 line 7 byte 39: 4\n"
            "5 line 8 byte 45: 6\"\n"
            "6 line 9 byte 53: 8 fewer cells than expected@1\n");
}

TEST(Pipeline, EveryFailureOfReadingComesAfterWhatWasRead) {
  const Dialect dialect = Dialect::of(Format::csv);
  const std::string_view text = "a,b\n1,2\n\"3\n\",4\n5,6\n7";
  for (const unsigned threads : {1u, 4u}) {
    for (const size_t block_size : {size_t{1}, size_t{7}, size_t{100}}) {
      for (const uint64_t sampled : {0u, 1u, 2u, 10u}) {
        int failures = 0;
        for (int call = 1;; ++call) {
          device = {.text = {}, .failing_call = call};
          const Outcome failed = run(dialect, text, {threads, block_size, 1, never_waiting, sampled});
          if (failed.failure.empty()) {
            EXPECT_EQ(failed.copy, text);
            break;
          }
          ++failures;
          EXPECT_EQ(failed.failure, "cannot read device: Input/output error");
          // What is whole of the first call - 1 bytes: nothing more, and nothing less.
          const std::string_view read = text.substr(0, static_cast<size_t>(call) - 1);
          size_t whole = read.rfind('\n') + 1;
          if (whole == 11) whole = 8;  // the one within quotes
          EXPECT_EQ(failed.copy, text.substr(0, whole)) << call;
        }
        EXPECT_EQ(failures, static_cast<int>(text.size()) + 1);
      }
    }
  }
}

TEST(Pipeline, EverythingIsConsumedBeforeTheInputIsWaitedFor) {
  // Each record is written into the pipe only when the one before has come out.
  for (const unsigned threads : {1u, 2u, 4u}) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const std::vector<std::string> pieces = {"a,b\n", "1,2\n3,4\n", "5,\"", "\n\"\n", "6"};
    const size_t whole[] = {0, 4, 12, 12, 18, 18};  // bytes of whole records before each piece
    std::string written, copy;
    size_t pauses = 0;
    const auto write_next = [&] {
      ASSERT_LE(pauses, pieces.size());
      EXPECT_EQ(copy.size(), whole[pauses]);
      if (pauses == pieces.size()) {
        close(ends[1]);
      } else {
        const std::string& piece = pieces[pauses];
        written += piece;
        EXPECT_EQ(write(ends[1], piece.data(), piece.size()), static_cast<ssize_t>(piece.size()));
      }
      ++pauses;
    };
    Dialect dialect = Dialect::of(Format::csv);
    dialect.header = false;
    BlockReader reader(ends[0], "pipe", dialect);
    run_pipeline<Result>(reader, threads,
                         {.make_worker = [&] { return [](const Block& block, Result& r) { r.copy = block.text; }; },
                          .consume = [&](Result& result) { return copy += result.copy, true; },
                          .before_waiting = write_next});
    close(ends[0]);
    EXPECT_EQ(copy, written);
    EXPECT_EQ(pauses, pieces.size() + 1);
  }
}

TEST(Pipeline, ResultsInOrderUntilTheConsumerOrAWorkerEndsIt) {
  std::string text;
  for (int i = 0; i < 2000; ++i) text += fmt::format("{}\n", i);
  for (const unsigned threads : {1u, 2u, 8u}) {
    for (const bool throws : {false, true}) {
      device = {.text = text, .bytes_a_call = 50};
      BlockReader reader(never_waiting, "device", Dialect::of(Format::lines), give, 50);
      std::string copy;
      const Stages<std::string> stages{
          .make_worker =
              [&] {
                return [&](const Block& block, std::string& result) {
                  if (block.text.front() % 2 == 0) usleep(50);
                  if (throws && block.text.find("1000\n") != std::string::npos) throw std::runtime_error("1000");
                  result = block.text;
                };
              },
          .consume = [&](std::string& result) { return (copy += result).find("1000\n") == std::string::npos; },
          .before_waiting = {}};
      if (throws) {
        EXPECT_THROW(run_pipeline(reader, threads, stages), std::runtime_error);
      } else {
        run_pipeline(reader, threads, stages);
      }
      EXPECT_EQ(copy, text.substr(0, copy.size()));
      const size_t end = text.find("1000\n");
      EXPECT_EQ(copy.size() > end, !throws);
      EXPECT_LE(copy.size(), end + 50);
      EXPECT_GE(copy.size(), end - 50);
      EXPECT_GT(device.text.size(), 1000u);  // of the rest no more was read than was on its way
    }
  }
}

TEST(BlockReader, ARecordOfAnyLength) {
  std::string text = "a\n\"";
  for (int i = 0; i < 3'000'000; ++i) text += i % 1000 == 0 ? "\n" : i % 1001 == 0 ? "\"\"" : "x";
  text += "\"\nb\n";
  device = {};
  const Outcome long_run = run({.format = Format::csv, .separator = ',', .header = false}, text, {2, 1000, 30'000});
  EXPECT_EQ(long_run.copy, text);
  EXPECT_NE(long_run.places.find(fmt::format("\n3 line 3003 byte {}: b", text.size() - 2)), std::string::npos);
}

TEST(BlockReader, HeadAndSample) {
  device = {.text = "\xEF\xBB\xBF\"a \"\"b\"\"\",c\r\n1,2\n3,4\n5,6"};
  BlockReader reader(never_waiting, "device", Dialect::of(Format::csv), give, 10);
  EXPECT_EQ(reader.head().names, (std::vector<std::string>{"a \"b\"", "c"}));
  const auto sampled = [&](uint64_t records) {
    std::string all;
    for (const Block& block : reader.sample(records)) all += block.text;
    return all;
  };
  EXPECT_EQ(sampled(1), "1,2\n");
  EXPECT_EQ(sampled(2), "1,2\n3,4\n");
  EXPECT_GT(device.text.size(), 0u);
  EXPECT_EQ(sampled(1), "1,2\n");
  EXPECT_EQ(sampled(9), "1,2\n3,4\n5,6");

  for (const std::string_view utf16 : {"\xFF\xFE,", "\xFE\xFF,"}) {
    device = {.text = utf16};
    BlockReader wide(never_waiting, "device", Dialect::of(Format::csv), give);
    EXPECT_THROW(wide.head(), Failure);
  }
}

TEST(Progress, Text) {
  using std::chrono::seconds;
  EXPECT_EQ(progress_text(12'340'000, 100'000'000, seconds(2)), "12.3 MB of 100.0 MB, 12%, 6.2 MB/s");
  EXPECT_EQ(progress_text(500'000, 0, seconds(0)), "0.5 MB");
  EXPECT_EQ(progress_text(200, 100, seconds(1)), "0.0 MB of 0.0 MB, 100%, 0.0 MB/s");
}

}  // namespace
