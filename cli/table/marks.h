// Where the bytes stand that split a text.
#ifndef VXNLS_CLI_TABLE_MARKS_H
#define VXNLS_CLI_TABLE_MARKS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vxcli::table {

/// The places of separators, line feeds and quotes in a text, in order.
class Marks {
 public:
  /// `quote` may be the same as the separator where there are no quotes, and the separator LF where there is none.
  Marks(char separator, char quote) : separator_(separator), quote_(quote) {}

  void start(std::string_view text) {
    text_ = text;
    chunk_ = 0;
    mask_ = 0;
    ahead_ = 0;
  }

  /// The place of the next mark; the size of the text when there are no more.
  size_t next() {
    while (mask_ == 0) {
      if (ahead_ >= text_.size()) return text_.size();
      chunk_ = ahead_;
      ahead_ += chunk_size;
      mask_ = marks_in(text_.substr(chunk_), separator_, quote_);
    }
    const size_t at = chunk_ + static_cast<size_t>(__builtin_ctzll(mask_));
    mask_ &= mask_ - 1;
    return at;
  }

 private:
  static constexpr size_t chunk_size = 64;

  /// Of the first chunk of a text.
  static uint64_t marks_in(std::string_view text, char separator, char quote);

  char separator_;
  char quote_;
  std::string_view text_;
  size_t chunk_ = 0;   // place of the bytes that mask_ stands for
  size_t ahead_ = 0;   // place of the next ones
  uint64_t mask_ = 0;  // bit i: a mark at chunk_ + i that was not given out yet
};

}  // namespace vxcli::table

#endif
