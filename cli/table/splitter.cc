#include "cli/table/splitter.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

#include "cli/table/json_members.h"

namespace vxcli::table {

namespace {

constexpr size_t nowhere = std::string_view::npos;

char separator_in(const Dialect& dialect) { return dialect.delimited() ? dialect.separator : '\n'; }
char quote_in(const Dialect& dialect) { return dialect.format == Format::csv ? '"' : separator_in(dialect); }

constexpr struct {
  char byte;
  char letter;
} tsv_escapes[] = {{'\t', 't'}, {'\n', 'n'}, {'\r', 'r'}, {'\\', '\\'}};

void append_unescaped(std::string_view token, std::string& out) {
  for (size_t i = 0; i < token.size(); ++i) {
    const auto meant = std::find_if(std::begin(tsv_escapes), std::end(tsv_escapes), [&](const auto& escape) {
      return token[i] == '\\' && i + 1 < token.size() && token[i + 1] == escape.letter;
    });
    if (meant != std::end(tsv_escapes)) ++i;
    out += meant != std::end(tsv_escapes) ? meant->byte : token[i];
  }
}

void append_escaped(std::string_view value, std::string& out) {
  for (const char byte : value) {
    const auto escape = std::find_if(std::begin(tsv_escapes), std::end(tsv_escapes),
                                     [&](const auto& candidate) { return candidate.byte == byte; });
    if (escape != std::end(tsv_escapes)) out += '\\';
    out += escape != std::end(tsv_escapes) ? escape->letter : byte;
  }
}

void append_unquoted(std::string_view token, std::string& out) {
  token.remove_prefix(1);
  for (;;) {
    const size_t quote = token.find('"');
    if (quote == nowhere) break;  // nothing closes it
    out += token.substr(0, quote);
    token.remove_prefix(quote + 1);
    if (!token.starts_with('"')) break;  // closed; what follows stands for itself
    out += '"';
    token.remove_prefix(1);
  }
  out += token;
}

void append_quoted(std::string_view value, std::string& out) {
  out += '"';
  for (size_t at = 0; at < value.size();) {
    const size_t behind = std::min(value.find('"', at), value.size() - 1) + 1;
    out += value.substr(at, behind - at);
    if (out.back() == '"') out += '"';
    at = behind;
  }
  out += '"';
}

Kind kind_of(char first) {
  if (first == '"') return Kind::text;
  if (first == '{' || first == '[') return Kind::nested;
  return first == '-' || (first >= '0' && first <= '9') ? Kind::number : Kind::literal;
}

/// The key of a member, in `scratch` when it was escaped.
std::string_view key_of(std::string_view token, std::string& scratch) {
  const std::string_view between = token.substr(1, token.size() - 2);
  if (between.find('\\') == nowhere || !decode_json_string(token, scratch)) return between;
  return scratch;
}

}  // namespace

uint64_t Record::line_of(size_t at) const {
  const std::string_view before = text.substr(0, at);
  return line + static_cast<uint64_t>(std::count(before.begin(), before.end(), '\n'));
}

Splitter::Splitter(const Dialect& dialect, std::vector<Column> columns, size_t expected)
    : dialect_(dialect),
      separator_(separator_in(dialect)),
      columns_(std::move(columns)),
      in_order_(columns_.size()),
      expected_(expected),
      marks_(separator_, quote_in(dialect)) {
  std::iota(in_order_.begin(), in_order_.end(), size_t{0});
  std::stable_sort(in_order_.begin(), in_order_.end(),
                   [&](size_t a, size_t b) { return columns_[a].index < columns_[b].index; });
}

void Splitter::start(const Block& block) {
  block_ = block;
  at_ = 0;
  line_ = block.line;
  number_ = block.record;
  marks_.start(block.text);
}

bool Splitter::next(Record& record) {
  if (at_ == block_.text.size()) return false;
  record.number = number_++;
  record.line = line_;
  record.offset = block_.offset + at_;
  record.cell_count = 0;
  record.cells.clear();
  record.flaws.clear();
  return dialect_.format == Format::json_lines ? next_object(record) : next_delimited(record);
}

/// The record ends before `end` in the block. `complete`: with a line feed that ends it.
void Splitter::end_record(Record& record, size_t end, bool complete) {
  record.text = block_.text.substr(at_, end - at_);
  at_ = end;
  size_t length = complete ? 1 : 0;
  if (complete && record.text.ends_with("\r\n")) length = 2;
  record.line_end = record.text.substr(record.text.size() - length);
}

void Splitter::take_cell(Record& record, size_t begin, size_t end, Quotes quotes) const {
  const std::string_view token = block_.text.substr(begin, end - begin);
  const bool escaped = quotes != Quotes::none ? quotes == Quotes::with_escapes
                                              : dialect_.format == Format::tsv_escaped && token.find('\\') != nowhere;
  for (size_t i = record.cells.size(); i < in_order_.size() && index_at(i) == record.cell_count; ++i) {
    record.cells.push_back({.column = in_order_[i],
                            .begin = begin - at_,
                            .end = end - at_,
                            .quoted = quotes != Quotes::none,
                            .escaped = escaped});
  }
}

bool Splitter::next_delimited(Record& record) {
  const std::string_view text = block_.text;
  const char* const bytes = text.data();
  Marks marks = marks_;  // a copy stays in registers
  size_t begin = at_;    // of the cell
  size_t count = 0;      // of cells
  size_t chosen = index_at(0);
  for (;; ++count) {
    size_t at = marks.next();
    Quotes quotes = Quotes::none;
    size_t closed = nowhere;
    if (at == begin && at < text.size() && bytes[at] == '"' && dialect_.format == Format::csv) {
      quotes = Quotes::plain;
      for (at = marks.next(); at < text.size(); at = marks.next()) {
        if (bytes[at] == '\n') ++line_;
        if (bytes[at] != '"') continue;
        if (at + 1 == text.size() || bytes[at + 1] != '"') {
          closed = at;
          at = marks.next();
          break;
        }
        marks.next();
        quotes = Quotes::with_escapes;
      }
    }
    while (at < text.size() && bytes[at] != separator_ && bytes[at] != '\n') at = marks.next();  // a quote

    const bool last = at == text.size() || bytes[at] == '\n';
    size_t end = at;
    if (last && at < text.size() && at > begin && bytes[at - 1] == '\r') --end;
    if (quotes != Quotes::none && closed + 1 != end) {
      quotes = Quotes::with_escapes;
      if (closed == nowhere) {
        record.flaws.push_back({Fault::unterminated_quote, begin - at_});
      } else {
        record.flaws.push_back({Fault::text_after_quote, closed + 1 - at_});
      }
    }
    if (count == expected_ && count != 0) record.flaws.push_back({Fault::too_many_cells, begin - at_});
    if (count == chosen) {
      record.cell_count = count;
      take_cell(record, begin, end, quotes);
      chosen = index_at(record.cells.size());
    }
    if (last) {
      const bool complete = at < text.size();
      line_ += complete ? 1 : 0;
      end_record(record, complete ? at + 1 : at, complete);
      break;
    }
    begin = at + 1;
  }
  marks_ = marks;
  record.cell_count = count + 1;
  const size_t filled = record.text.size() - record.line_end.size();
  if (record.cell_count < expected_ && filled > 0) record.flaws.push_back({Fault::too_few_cells, filled});
  return true;
}

bool Splitter::next_object(Record& record) {
  const void* const line_feed = std::memchr(block_.text.data() + at_, '\n', block_.text.size() - at_);
  const size_t end = line_feed == nullptr
                         ? block_.text.size()
                         : static_cast<size_t>(static_cast<const char*>(line_feed) - block_.text.data()) + 1;
  if (line_feed != nullptr) ++line_;
  end_record(record, end, line_feed != nullptr);
  JsonMembers members(record.text);
  std::string scratch;
  for (JsonMember member; members.next(member);) {
    ++record.cell_count;
    const std::string_view key =
        key_of(record.text.substr(member.key_begin, member.key_end - member.key_begin), scratch);
    const auto column =
        std::find_if(columns_.begin(), columns_.end(), [&](const Column& chosen) { return chosen.name == key; });
    if (column == columns_.end()) continue;
    Cell cell{.column = static_cast<size_t>(column - columns_.begin()), .begin = member.begin, .end = member.end};
    const std::string_view token = record.token(cell);
    cell.kind = kind_of(token[0]);
    cell.quoted = cell.kind == Kind::text;
    cell.escaped = cell.quoted && token.find('\\') != nowhere;
    const auto before = std::find_if(record.cells.begin(), record.cells.end(),
                                     [&](const Cell& other) { return other.column == cell.column; });
    if (before != record.cells.end()) {
      record.cells.erase(before);
      record.flaws.push_back({Fault::repeated_key, member.begin});
    }
    record.cells.push_back(cell);
  }
  if (!members.well_formed()) {
    record.cells.clear();
    record.cell_count = 0;
    record.flaws.assign(1, {Fault::not_an_object, members.broken_at()});
  }
  return true;
}

std::string_view Splitter::value(const Record& record, const Cell& cell, std::string& scratch) const {
  const std::string_view token = record.token(cell);
  if (!cell.escaped) return cell.quoted ? token.substr(1, token.size() - 2) : token;
  scratch.clear();
  if (dialect_.format == Format::json_lines) return key_of(token, scratch);
  if (cell.quoted) {
    append_unquoted(token, scratch);
  } else {
    append_unescaped(token, scratch);
  }
  return scratch;
}

bool Splitter::encode(const Cell& cell, std::string_view value, std::string& out) const {
  const auto breaks = [&](char byte) { return byte == separator_ || byte == '\r' || byte == '\n'; };
  switch (dialect_.format) {
    case Format::csv:
      if (cell.quoted || std::any_of(value.begin(), value.end(), [&](char b) { return b == '"' || breaks(b); })) {
        append_quoted(value, out);
      } else {
        out += value;
      }
      return true;
    case Format::tsv:
    case Format::lines:
      if (std::any_of(value.begin(), value.end(), breaks)) return false;
      out += value;
      return true;
    case Format::tsv_escaped:
      if (separator_ != '\t' && value.find(separator_) != nowhere) return false;
      append_escaped(value, out);
      return true;
    case Format::json_lines:
      if (cell.kind != Kind::text && is_json_number(value)) {
        out += value;
      } else {
        append_json_string(value, out);
      }
      return true;
  }
  return false;
}

std::vector<std::string> Splitter::names(std::string_view text) const {
  std::vector<std::string> names;
  std::string scratch;
  if (dialect_.format == Format::json_lines) {
    JsonMembers members(text);
    for (JsonMember member; members.next(member);) {
      names.emplace_back(key_of(text.substr(member.key_begin, member.key_end - member.key_begin), scratch));
    }
    return names;
  }
  Record record;
  Splitter counter(dialect_);
  counter.start({.text = text});
  if (!counter.next(record)) return names;
  std::vector<Column> all(record.cell_count);
  for (size_t i = 0; i < all.size(); ++i) all[i].index = i;
  Splitter splitter(dialect_, std::move(all));
  splitter.start({.text = text});
  splitter.next(record);
  for (const Cell& cell : record.cells) names.emplace_back(value(record, cell, scratch));
  return names;
}

Rewriter::Rewriter(const Splitter& splitter, const Block& block, std::string& out)
    : splitter_(splitter), text_(block.text), out_(out) {}

void Rewriter::copy_to(size_t end) {
  out_ += text_.substr(copied_, end - copied_);
  copied_ = end;
}

void Rewriter::begin(const Record& record) {
  record_ = record.text;
  record_begin_ = static_cast<size_t>(record.text.data() - text_.data());
  out_before_ = out_.size();
  copied_before_ = copied_;
}

bool Rewriter::put(const Cell& cell, std::string_view value) {
  copy_to(record_begin_ + cell.begin);
  if (!splitter_.encode(cell, value, out_)) return false;
  copied_ = record_begin_ + cell.end;
  return true;
}

void Rewriter::drop() {
  out_.resize(out_before_);
  copied_ = copied_before_;
  copy_to(record_begin_);
  copied_ = record_begin_ + record_.size();
}

void Rewriter::finish() { copy_to(text_.size()); }

void Rewriter::finish_before() {
  drop();
  copied_ = text_.size();
}

size_t invalid_utf8(std::string_view text) {
  constexpr uint64_t high_bits = 0x8080808080808080;
  const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
  for (size_t at = 0; at < text.size();) {
    uint64_t eight = 0;
    for (; at + sizeof eight <= text.size(); at += sizeof eight) {
      std::memcpy(&eight, bytes + at, sizeof eight);
      if ((eight & high_bits) != 0) break;
    }
    for (const size_t stop = std::min(at + sizeof eight, text.size()); at < stop;) {
      const size_t begin = at;
      UChar32 code_point = 0;
      U8_NEXT(bytes, at, text.size(), code_point);
      if (code_point < 0) return begin;
    }
  }
  return nowhere;
}

}  // namespace vxcli::table
