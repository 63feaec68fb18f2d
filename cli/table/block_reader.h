// The input, cut into blocks of whole records.
#ifndef VXNLS_CLI_TABLE_BLOCK_READER_H
#define VXNLS_CLI_TABLE_BLOCK_READER_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/input.h"
#include "cli/table/dialect.h"
#include "cli/table/splitter.h"

namespace vxcli::table {

/// Memory that grows without being filled first.
class Buffer {
 public:
  char* data() { return bytes_.get(); }
  const char* data() const { return bytes_.get(); }
  size_t capacity() const { return capacity_; }
  /// Keeps the first `held` bytes.
  void reserve(size_t capacity, size_t held);

 private:
  std::unique_ptr<char[]> bytes_;
  size_t capacity_ = 0;
};

/// A block with the memory that it lies in.
struct HeldBlock {
  Block block;
  Buffer buffer;
};

/// Follows quotes from one piece of a text to the next, to know which line feeds end records.
class RecordEnds {
 public:
  explicit RecordEnds(const Dialect& dialect);

  struct Seen {
    size_t end = 0;        // behind the last line feed that ends a record, 0 when there is none
    uint64_t records = 0;  // that end before it
    uint64_t lines = 0;    // line feeds before it, those within quotes too
  };
  /// Goes over `text` from `from` on, where the call before left off; before it stands what was seen already.
  void follow(std::string_view text, size_t from, Seen& seen);

 private:
  char separator_;
  Marks marks_;
  bool in_quotes_ = false;
  bool just_closed_ = false;  // the last byte seen is a quote that closed a cell, or the first of two
  uint64_t open_lines_ = 0;   // line feeds behind the last record's end
};

/// Reads a descriptor. Memory: each block has about 1 MiB, or its one record when that is longer; one block more is
/// being read.
class BlockReader {
 public:
  static constexpr size_t usual_block = size_t{1} << 20;

  /// `name` as messages should have it. Blocks of about `block_size` bytes; results never depend on it.
  BlockReader(int descriptor, std::string name, const Dialect& dialect, Read read = nullptr,
              size_t block_size = usual_block);
  BlockReader(const BlockReader&) = delete;
  BlockReader& operator=(const BlockReader&) = delete;

  /// What stands before the first record; reads it when it was not read yet. Throws Failure: ExitCode::io, or
  /// ExitCode::usage for a text in UTF-16.
  const Head& head();

  /// The first `records` records, or all when there are fewer, waiting for them as long as it takes. They are held in
  /// memory, and next() gives them again. Before the first next(), as often as it is wanted; each call begins at
  /// the first record, and its views stay until the next call, or next(). When reading fails there are fewer, and
  /// next() throws after having given them.
  std::span<const Block> sample(uint64_t records);

  enum class Got { block, pause, end };
  /// The next block, in the memory of `held`. `pause`, and `held` is left alone, where no whole record is there yet and
  /// the input would have to be waited for. A failure to read comes after all whole records that were read before it:
  /// throws Failure (ExitCode::io), also from head().
  Got next(HeldBlock& held);

  /// Whether next() would give something else than a pause.
  bool ready() const;
  /// Waits for the input and reads some of it; what next() gives after it may still be a pause.
  void wait() { read_more(); }

  uint64_t bytes_read() const { return read_bytes_; }
  /// Of a regular file, from where reading began; else 0.
  uint64_t size() const { return size_; }
  const std::string& name() const { return name_; }

 private:
  Got read_block(HeldBlock& held);
  bool sample_more();
  void read_more();
  void follow();
  bool input_ready() const;
  void forget(size_t bytes, const RecordEnds::Seen& of_them);
  void cut(HeldBlock& held, size_t end, const RecordEnds::Seen& of_them);

  const int descriptor_;
  const std::string name_;
  const Dialect dialect_;
  const Read read_;
  const size_t block_size_;
  const uint64_t size_;
  uint64_t read_bytes_ = 0;

  Buffer buffer_;        // what was read and not cut off yet
  size_t held_ = 0;      // bytes in it
  size_t followed_ = 0;  // of them seen by ends_
  RecordEnds ends_;
  RecordEnds::Seen seen_;
  Block next_;  // where the next block begins
  bool at_end_ = false;
  std::exception_ptr failure_;  // of reading, until it is its turn

  bool head_read_ = false;
  Head head_;
  std::deque<HeldBlock> sampled_;
  std::vector<Block> sample_;
};

}  // namespace vxcli::table

#endif
