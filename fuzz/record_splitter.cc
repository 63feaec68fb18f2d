// A text in any format: its cells tile the records and the records the text, what is written reads back, and the blocks
// that the input is cut into hold the same records wherever it is cut.
#include <cerrno>

#include "cli/table/block_reader.h"
#include "cli/table/splitter.h"
#include "fuzz/input.h"

namespace {

using namespace vxcli::table;
using vxfuzz::require;

std::string_view left;     // of the input that is being read
size_t bytes_a_call = 1;   // and how it comes
bool interrupted = false;  // every second call

ssize_t give(int, void* bytes, size_t count) {
  interrupted = !interrupted;
  if (interrupted) {
    errno = EINTR;
    return -1;
  }
  const size_t taken = std::min({count, bytes_a_call, left.size()});
  std::memcpy(bytes, left.data(), taken);
  left.remove_prefix(taken);
  return static_cast<ssize_t>(taken);
}

struct Place {
  std::string_view text;
  uint64_t number, line, offset;
  bool operator==(const Place&) const = default;
};

/// Goes through a block. `all`: the text that it is a piece of.
void split(Splitter& splitter, const Block& block, std::string_view all, std::vector<Place>& places) {
  splitter.start(block);
  for (Record record; splitter.next(record);) {
    require(all.substr(record.offset, record.text.size()) == record.text);
    places.push_back({all.substr(record.offset, record.text.size()), record.number, record.line, record.offset});
  }
}

std::vector<Column> all_columns(const Dialect& dialect, std::string_view record) {
  std::vector<Column> columns;
  for (const std::string& name : Splitter(dialect).names(record)) columns.push_back({name, columns.size()});
  return columns;
}

/// Every cell in its place, and every value written and read again.
void require_cells(const Dialect& dialect, std::string_view text) {
  Splitter splitter(dialect, all_columns(dialect, text));
  const Block block{.text = text};
  Record record;
  splitter.start(block);
  require(splitter.next(record) && record.text == text);
  const bool json = dialect.format == Format::json_lines;
  std::vector<std::string> values;
  std::string scratch, written;
  Rewriter rewriter(splitter, block, written);
  rewriter.begin(record);
  size_t at = 0;
  for (const Cell& cell : record.cells) {
    require(cell.begin >= at && cell.end >= cell.begin && cell.end <= text.size() - record.line_end.size());
    if (!json && cell.column > 0) require(cell.begin == at + 1);
    at = cell.end;
    values.emplace_back(splitter.value(record, cell, scratch));
    if (!rewriter.put(cell, values.back())) {
      require(dialect.format != Format::csv && !json && values.back().find_first_of("\t\r\n") != std::string::npos);
    }
  }
  rewriter.finish();
  if (!json) require(record.cells.size() == record.cell_count && at + record.line_end.size() == text.size());
  if (record.cells.empty()) require(written == text);

  splitter.start({.text = written});
  Record again;
  require(splitter.next(again) && again.text.size() == written.size());
  if (record.flaws.empty()) require(again.flaws.empty());
  require(again.cells.size() == record.cells.size());
  // JSON is UTF-8: beside other bytes an escape is left as it is.
  if (json && invalid_utf8(text) != std::string_view::npos) return;
  for (size_t i = 0; i < values.size(); ++i) require(splitter.value(again, again.cells[i], scratch) == values[i]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  static constexpr Format formats[] = {Format::csv, Format::tsv, Format::tsv_escaped, Format::json_lines,
                                       Format::lines};
  const uint8_t format = data[0] % 5, separator = data[0] / 5 % 4;
  const Dialect dialect{.format = formats[format], .separator = ",;|\t"[separator], .header = data[0] >= 128};
  const size_t block_size = size_t{data[1]} + 1;
  bytes_a_call = data[2] % 32 + 1u;
  const uint64_t sampled = data[2] / 32;
  const std::string_view text(reinterpret_cast<const char*>(data) + 3, size - 3);
  if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) return 0;

  left = text;
  BlockReader reader(-1, "input", dialect, give, block_size);
  const size_t head = reader.head().bytes.size();
  require(text.starts_with(reader.head().bytes));
  std::string together;
  Splitter splitter(dialect);
  std::vector<Place> in_sample, in_blocks, in_whole;
  for (const Block& block : reader.sample(sampled)) split(splitter, block, text, in_sample);
  HeldBlock held;
  for (auto got = reader.next(held); got != BlockReader::Got::end; got = reader.next(held)) {
    if (got == BlockReader::Got::pause) {
      reader.wait();
      continue;
    }
    together += held.block.text;
    split(splitter, held.block, text, in_blocks);
  }
  require(together == text.substr(head));

  const auto lines = static_cast<uint64_t>(std::count(text.begin(), text.begin() + static_cast<long>(head), '\n'));
  split(splitter, {.text = text.substr(head), .offset = head, .line = 1 + lines}, text, in_whole);
  require(in_blocks == in_whole);
  require(in_sample.size() == std::min<size_t>(sampled, in_whole.size()));
  require(std::equal(in_sample.begin(), in_sample.end(), in_whole.begin()));
  size_t at = head;
  for (const Place& place : in_whole) {
    require(place.offset == at && !place.text.empty());
    at += place.text.size();
    require_cells(dialect, place.text);
  }
  require(at == text.size());
  return 0;
}
