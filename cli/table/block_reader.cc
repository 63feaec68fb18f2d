#include "cli/table/block_reader.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "cli/errors.h"

namespace vxcli::table {

namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

}  // namespace

void Buffer::reserve(size_t capacity, size_t held) {
  if (capacity <= capacity_) return;
  auto bytes = std::make_unique_for_overwrite<char[]>(capacity);
  if (held > 0) std::memcpy(bytes.get(), bytes_.get(), held);
  bytes_ = std::move(bytes);
  capacity_ = capacity;
}

RecordEnds::RecordEnds(const Dialect& dialect)
    : separator_(dialect.separator),
      // Without quotes in the dialect only line feeds count.
      marks_('\n', dialect.format == Format::csv ? '"' : '\n') {}

void RecordEnds::follow(std::string_view text, size_t from, Seen& seen) {
  if (from == text.size()) return;
  size_t closed = just_closed_ ? from - 1 : std::string_view::npos;
  const std::string_view unseen = text.substr(from);
  marks_.start(unseen);
  for (size_t mark = marks_.next(); mark < unseen.size(); mark = marks_.next()) {
    const size_t at = from + mark;
    if (text[at] == '\n') {
      ++open_lines_;
      if (in_quotes_) continue;
      seen.end = at + 1;
      ++seen.records;
      seen.lines += std::exchange(open_lines_, 0);
    } else if (in_quotes_) {
      in_quotes_ = false;
      closed = at;
    } else if (at == 0 || text[at - 1] == separator_ || text[at - 1] == '\n' || closed == at - 1) {
      in_quotes_ = true;  // at the start of a cell, or doubled
    }
  }
  just_closed_ = closed == text.size() - 1;
}

BlockReader::BlockReader(int descriptor, std::string name, const Dialect& dialect, Read read, size_t block_size)
    : descriptor_(descriptor),
      name_(std::move(name)),
      dialect_(dialect),
      read_(read != nullptr ? read : ::read),
      block_size_(std::max<size_t>(block_size, 1)),
      size_(bytes_left(descriptor)),
      ends_(dialect) {}

bool BlockReader::input_ready() const { return size_ > 0 || is_readable(descriptor_); }

bool BlockReader::ready() const {
  return !sampled_.empty() || seen_.end > 0 || at_end_ || failure_ != nullptr || input_ready();
}

/// Reads once, behind what is held.
void BlockReader::read_more() {
  if (held_ >= block_size_ && held_ == buffer_.capacity()) {
    buffer_.reserve(2 * held_, held_);
  } else {
    buffer_.reserve(block_size_, held_);
  }
  const size_t room = (held_ < block_size_ ? block_size_ : buffer_.capacity()) - held_;
  try {
    const size_t count = read_some(descriptor_, name_, buffer_.data() + held_, room, read_);
    held_ += count;
    read_bytes_ += count;
    at_end_ = count == 0;
  } catch (const Failure&) {
    failure_ = std::current_exception();
  }
}

void BlockReader::follow() {
  ends_.follow({buffer_.data(), held_}, followed_, seen_);
  followed_ = held_;
}

/// Forgets the first bytes, whole records.
void BlockReader::forget(size_t bytes, const RecordEnds::Seen& of_them) {
  std::memmove(buffer_.data(), buffer_.data() + bytes, held_ - bytes);
  held_ -= bytes;
  followed_ -= std::min(followed_, bytes);
  next_.offset += bytes;
  next_.line += of_them.lines;
  next_.record += of_them.records;
  seen_.end -= std::min(seen_.end, bytes);
  seen_.records -= std::min(seen_.records, of_them.records);
  seen_.lines -= std::min(seen_.lines, of_them.lines);
}

const Head& BlockReader::head() {
  if (std::exchange(head_read_, true)) return head_;
  while (held_ < byte_order_mark.size() && !at_end_ && failure_ == nullptr) read_more();
  const auto held = [&] { return std::string_view(buffer_.data(), held_); };
  if (held().starts_with("\xFF\xFE") || held().starts_with("\xFE\xFF")) {
    fail(ExitCode::usage, "{} is in UTF-16: convert it to UTF-8 first", name_);
  }
  if (held().starts_with(byte_order_mark)) {
    head_.bytes = byte_order_mark;
    forget(byte_order_mark.size(), {});
  }
  follow();
  if (!dialect_.has_header()) return head_;

  for (; seen_.records == 0 && !at_end_ && failure_ == nullptr; follow()) read_more();
  if (seen_.records == 0 && failure_ != nullptr) std::rethrow_exception(failure_);
  Splitter splitter(dialect_);
  Record record;
  splitter.start({.text = held(), .offset = next_.offset});
  if (!splitter.next(record)) return head_;
  head_.names = splitter.names(record.text);
  head_.bytes += record.text;
  head_.flaws = record.flaws;
  for (Flaw& flaw : head_.flaws) flaw.at += next_.offset;
  const uint64_t lines = record.line_of(record.text.size()) - record.line;
  forget(record.text.size(), {.records = 1, .lines = lines});
  next_.record = 1;
  return head_;
}

/// Cuts off the first bytes of the buffer as a block.
void BlockReader::cut(HeldBlock& held, size_t end, const RecordEnds::Seen& of_them) {
  const size_t rest = held_ - end;
  const size_t wanted = std::max(block_size_, rest);
  if (held.buffer.capacity() / 4 > wanted) held.buffer = {};  // it had a record of unusual length
  held.buffer.reserve(wanted, 0);
  std::memcpy(held.buffer.data(), buffer_.data() + end, rest);
  std::swap(held.buffer, buffer_);
  held.block = next_;
  held.block.text = {held.buffer.data(), end};
  held_ = followed_ = rest;
  seen_ = {};
  next_.offset += end;
  next_.line += of_them.lines;
  next_.record += of_them.records;
}

BlockReader::Got BlockReader::read_block(HeldBlock& held) {
  head();
  for (;;) {
    follow();
    const bool done = at_end_ || failure_ != nullptr;
    if (seen_.end > 0 && (held_ >= block_size_ || done || !input_ready())) {
      cut(held, seen_.end, RecordEnds::Seen(seen_));
      return Got::block;
    }
    if (failure_ != nullptr) std::rethrow_exception(failure_);
    if (at_end_) {
      if (held_ == 0) return Got::end;
      cut(held, held_, {.records = 1});
      return Got::block;
    }
    if (!input_ready()) return Got::pause;
    read_more();
  }
}

BlockReader::Got BlockReader::next(HeldBlock& held) {
  if (sampled_.empty()) return read_block(held);
  held = std::move(sampled_.front());
  sampled_.pop_front();
  return Got::block;
}

std::span<const Block> BlockReader::sample(uint64_t records) {
  head();
  sample_.clear();
  Splitter splitter(dialect_);
  Record record;
  for (size_t i = 0; records > 0; ++i) {
    if (i == sampled_.size() && !sample_more()) break;
    Block counted = sampled_[i].block;
    splitter.start(counted);
    size_t bytes = 0;
    for (; records > 0 && splitter.next(record); --records) bytes += record.text.size();
    counted.text = counted.text.substr(0, bytes);
    sample_.push_back(counted);
  }
  return sample_;
}

/// Adds a block to the sample, waiting for it. False at the end, and where reading fails: next() tells it in its turn.
bool BlockReader::sample_more() {
  HeldBlock held;
  try {
    Got got = read_block(held);
    for (; got == Got::pause; got = read_block(held)) wait();
    if (got == Got::end) return false;
  } catch (const Failure&) {
    return false;
  }
  sampled_.push_back(std::move(held));
  return true;
}

}  // namespace vxcli::table
