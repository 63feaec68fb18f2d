#include "host/locale_database/text.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace vxnlsldb {

namespace {

size_t utf8_length(char32_t c) { return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4; }

bool is_mark(char32_t c) { return c == 0x200E || c == 0x200F || c == 0x061C; }

bool is_blank(char32_t c) { return c == ' ' || c == 0x00A0 || c == 0x202F || c == 0x2009; }

bool continues_character(char32_t c) {
  return (U_GET_GC_MASK(static_cast<UChar32>(c)) & (U_GC_M_MASK | U_GC_CF_MASK)) != 0;
}

/// How many characters of the text fit.
size_t fitting_length(std::u32string_view text) {
  size_t bytes = 0, length = 0;
  while (length < text.size() && length < longest_text) {
    bytes += utf8_length(text[length]);
    if (bytes > longest_utf8_text) break;
    ++length;
  }
  return length;
}

}  // namespace

std::u32string utf32(const icu::UnicodeString& text) {
  std::u32string result;
  result.reserve(static_cast<size_t>(text.length()));
  for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
    result += static_cast<char32_t>(text.char32At(i));
  }
  return result;
}

std::u32string from_ascii(std::string_view text) { return {text.begin(), text.end()}; }

std::string utf8(std::u32string_view text) {
  icu::UnicodeString units;
  for (const char32_t c : text) units.append(static_cast<UChar32>(c));
  std::string result;
  return units.toUTF8String(result);
}

std::u32string clean(std::u32string_view text) {
  std::u32string result;
  for (const char32_t c : text) {
    if (is_mark(c)) continue;
    if (!is_blank(c)) {
      result += c;
    } else if (!result.empty() && result.back() != ' ') {
      result += ' ';
    }
  }
  if (!result.empty() && result.back() == ' ') result.pop_back();
  return result;
}

std::u32string fold(std::u32string_view text) {
  std::u32string result(text);
  for (char32_t& c : result) c = static_cast<char32_t>(u_tolower(static_cast<UChar32>(c)));
  return result;
}

bool is_digit(char32_t c) { return c >= '0' && c <= '9'; }

bool is_invisible(char32_t c) { return (U_GET_GC_MASK(static_cast<UChar32>(c)) & (U_GC_Z_MASK | U_GC_C_MASK)) != 0; }

bool fits(std::u32string_view text) { return fitting_length(text) == text.size(); }

std::u32string text_of(const NLSName& name) {
  return {name.text, name.text + std::clamp<int64_t>(name.length, 0, static_cast<int64_t>(longest_text))};
}

bool store(NLSName& name, std::u32string_view text) {
  size_t length = fitting_length(text);
  const bool whole = length == text.size();
  while (!whole && length > 0 && continues_character(text[length])) --length;
  name.length = static_cast<int64_t>(length);
  std::fill(std::copy_n(text.begin(), length, name.text), name.text + longest_text, VXChar{0});
  return whole;
}

}  // namespace vxnlsldb
