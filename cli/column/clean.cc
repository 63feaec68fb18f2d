#include "cli/column/clean.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>

namespace vxcli::column {

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool is_ascii_letter(char32_t c) { return (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z'); }

constexpr char32_t left_out = 0xFFFFFFFF;

/// What stands for a character in a cleaned text.
char32_t cleaned(char32_t c) {
  if (c < 0x80) return c == U'\t' || c == U'\r' || c == U'\n' ? U' ' : c;
  if (c >= 0xFF01 && c <= 0xFF5E) return c - 0xFEE0;
  switch (c) {
    case 0x00A0:
    case 0x2007:
    case 0x2008:
    case 0x2009:
    case 0x200A:
    case 0x202F:
    case 0x205F:
    case 0x3000: return U' ';
    case 0x061C:
    case 0x200B:
    case 0x200C:
    case 0x200D:
    case 0x200E:
    case 0x200F:
    case 0x202A:
    case 0x202B:
    case 0x202C:
    case 0x202D:
    case 0x202E:
    case 0x2060:
    case 0x2066:
    case 0x2067:
    case 0x2068:
    case 0x2069:
    case 0xFEFF: return left_out;
    case 0x2010:
    case 0x2011:
    case 0x2012:
    case 0x2013:
    case 0x2212:
    case 0xFE63: return U'-';
    case 0x2019: return U'\'';
    case 0x066A: return U'%';
    case 0x060C: return U',';
    default: break;
  }
  const int32_t digit = u_charDigitValue(static_cast<UChar32>(c));
  return digit >= 0 && u_charType(static_cast<UChar32>(c)) == U_DECIMAL_DIGIT_NUMBER
             ? U'0' + static_cast<char32_t>(digit)
             : c;
}

}  // namespace

void Cleaned::set(std::string_view text, bool raw) {
  changed_ = false;
  begin_ = 0;
  end_ = text.size();
  text_ = text;
  if (raw) return;
  while (begin_ < end_ && is_blank(text[begin_])) ++begin_;
  while (end_ > begin_ && is_blank(text[end_ - 1])) --end_;
  text_ = text.substr(begin_, end_ - begin_);
  bool plain = true;
  char before = 0;
  for (const char c : text_) {
    const bool dotted_name = c == '.' && is_ascii_letter(static_cast<unsigned char>(before));
    if (static_cast<unsigned char>(c) >= 0x80 || c < ' ' || dotted_name) {
      plain = false;
      break;
    }
    before = c;
  }
  if (!plain) clean(text);
}

void Cleaned::clean(std::string_view text) {
  scratch_.clear();
  from_.clear();
  const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
  const auto end = static_cast<int32_t>(end_);
  bool after_letter = false;
  for (auto at = static_cast<int32_t>(begin_); at < end;) {
    const int32_t begin = at;
    UChar32 c;
    U8_NEXT(bytes, at, end, c);
    const size_t length = static_cast<size_t>(at - begin);
    const char32_t to = c < 0 ? left_out : cleaned(static_cast<char32_t>(c));
    if (c >= 0 && to == left_out) continue;
    if (c >= 0 && to == U'.' && after_letter) continue;
    if (c >= 0 && to == U' ' && scratch_.empty()) continue;
    if (c >= 0 && to < 0x80) {
      scratch_ += static_cast<char>(to);
      from_.push_back(static_cast<uint32_t>(begin));
    } else {  // as it is, also what is not UTF-8: the readers refuse it
      scratch_.append(text.substr(static_cast<size_t>(begin), length));
      for (size_t i = 0; i < length; ++i) from_.push_back(static_cast<uint32_t>(static_cast<size_t>(begin) + i));
    }
    after_letter =
        c >= 0 && (is_ascii_letter(to) || (to >= 0x80 && (u_isalpha(c) || u_charType(c) == U_NON_SPACING_MARK ||
                                                          u_charType(c) == U_COMBINING_SPACING_MARK)));
  }
  while (scratch_.ends_with(' ')) {
    scratch_.pop_back();
    from_.pop_back();
  }
  text_ = scratch_;
  changed_ = true;
}

size_t Cleaned::original(size_t at) const {
  if (!changed_) return std::min(begin_ + at, end_);
  return at < from_.size() ? from_[at] : end_;
}

}  // namespace vxcli::column
