// Records of CSV split, with two columns rewritten and all else copied.
#include "cli/table/splitter.h"

#include <csv.h>
#include <fmt/format.h>

#include <utility>

#include "bench/common.h"

namespace {

using namespace vxcli::table;

constexpr size_t block_size = size_t{1} << 20;

/// Blocks of eight columns: a date is the second, an amount the fifth, a name in quotes with a comma the third.
std::vector<std::string> blocks_of(bool all_quoted) {
  vxbench::Random random = vxbench::random_of("csv");
  const auto number = [&](int64_t high) { return vxbench::between(random, 1, high); };
  std::vector<std::string> blocks(4);
  for (std::string& block : blocks) {
    while (block.size() < block_size) {
      block += all_quoted ? fmt::format("\"{}\",\"{:02}/{:02}/{}\",\"Smith, A\",\"a\",\"{}\",\"x\",\"\",\"DE\"\n",
                                        number(99999), number(28), number(12), 1990 + number(30), number(9999))
                          : fmt::format("{},{:02}/{:02}/{},\"Smith, Anna\",some words of text,{}.{:02},yy,0.{},DE\n",
                                        number(99999), number(28), number(12), 1990 + number(30), number(9999),
                                        number(99), number(999999));
    }
  }
  return blocks;
}

constexpr std::string_view new_value = "2021-03-04";

class Ours {
 public:
  Ours() : splitter_(Dialect::of(Format::csv), {{.name = "when", .index = 1}, {.name = "amount", .index = 4}}, 8) {}

  const std::string& rewritten(std::string_view text) {
    out_.clear();
    const Block block{.text = text};
    Rewriter rewriter(splitter_, block, out_);
    for (splitter_.start(block); splitter_.next(record_);) {
      rewriter.begin(record_);
      for (const Cell& cell : record_.cells) {
        if (splitter_.value(record_, cell, scratch_) == new_value || !rewriter.put(cell, new_value)) std::abort();
      }
    }
    rewriter.finish();
    return out_;
  }

 private:
  Splitter splitter_;
  Record record_;
  std::string out_, scratch_;
};

/// The same with libcsv, which has no places: every cell is written anew, in quotes.
class Libcsv {
 public:
  const std::string& rewritten(std::string_view text) {
    out_.resize(2 * text.size() + block_size);
    at_ = column_ = 0;
    csv_parser parser;
    csv_init(&parser, 0);
    csv_parse(&parser, text.data(), text.size(), cell, end, this);
    csv_fini(&parser, cell, end, this);
    csv_free(&parser);
    out_.resize(at_);
    return out_;
  }

 private:
  static void cell(void* bytes, size_t count, void* to) {
    Libcsv& self = *static_cast<Libcsv*>(to);
    if (self.column_ > 0) self.out_[self.at_++] = ',';
    const bool chosen = self.column_ == 1 || self.column_ == 4;
    ++self.column_;
    const void* const from = chosen ? new_value.data() : bytes;
    const size_t length = chosen ? new_value.size() : count;
    self.at_ += csv_write(self.out_.data() + self.at_, self.out_.size() - self.at_, from, length);
  }
  static void end(int, void* to) {
    Libcsv& self = *static_cast<Libcsv*>(to);
    self.out_[self.at_++] = '\n';
    self.column_ = 0;
  }

  std::string out_;
  size_t at_ = 0, column_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  for (const bool all_quoted : {false, true}) {
    const std::vector<std::string> blocks = blocks_of(all_quoted);
    const auto block = [=](size_t i) -> const std::string& { return blocks[i % blocks.size()]; };
    Ours ours;
    Libcsv libcsv;
    vxbench::require(libcsv.rewritten(block(0)) == libcsv.rewritten(ours.rewritten(block(0))), "the same records");
    vxbench::Row(all_quoted ? "csv-quoted" : "csv",
                 all_quoted ? "CSV with every cell in quotes, two columns of eight rewritten"
                            : "CSV, two columns of eight rewritten",
                 {.bytes = static_cast<int64_t>(block_size)})
        .ours([=](size_t i) mutable { return ours.rewritten(block(i)).size(); })
        .peer("libcsv", [=](size_t i) mutable { return libcsv.rewritten(block(i)).size(); });
  }
  return vxbench::run("table", argc, argv);
}
