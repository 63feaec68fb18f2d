#include "cli/text.h"

#include <fmt/format.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <iterator>

namespace vxcli {

namespace {

constexpr size_t longest_quote = 60;  // characters

/// The code point at `at`, which moves behind it; negative for a byte that begins none.
UChar32 next_code_point(std::string_view text, size_t& at) {
  const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
  UChar32 code_point = 0;
  U8_NEXT(bytes, at, text.size(), code_point);
  return code_point;
}

bool shows_nothing(UChar32 c) {
  switch (u_charType(c)) {
    case U_CONTROL_CHAR:
    case U_FORMAT_CHAR:
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
    case U_PRIVATE_USE_CHAR:
    case U_UNASSIGNED: return true;
    default: return false;
  }
}

/// Adds the character at `at`, which moves behind it.
void append_visible(std::string& shown, std::string_view text, size_t& at) {
  const size_t start = at;
  const UChar32 c = next_code_point(text, at);
  if (c < 0) {
    at = start + 1;
    shown += fmt::format("\\x{:02X}", static_cast<uint8_t>(text[start]));
  } else if (c == '\t') {
    shown += "\\t";
  } else if (c == '\n') {
    shown += "\\n";
  } else if (c == '\r') {
    shown += "\\r";
  } else if (shows_nothing(c)) {
    shown += fmt::format("\\u{{{:04X}}}", static_cast<uint32_t>(c));
  } else {
    shown += text.substr(start, at - start);
  }
}

size_t width_of(UChar32 c) {
  switch (u_charType(c)) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR: return c == 0xAD ? 1 : 0;
    default: break;
  }
  switch (u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH)) {
    case U_EA_FULLWIDTH:
    case U_EA_WIDE: return 2;
    default: return 1;
  }
}

}  // namespace

std::string utf8(VXChar code_point) {
  uint8_t bytes[U8_MAX_LENGTH];
  size_t length = 0;
  if (code_point > 0x10FFFF || U_IS_SURROGATE(code_point)) code_point = 0xFFFD;
  U8_APPEND_UNSAFE(bytes, length, code_point);
  return {reinterpret_cast<const char*>(bytes), length};
}

std::string utf8(const NLSName& name) {
  const auto length = std::clamp<int64_t>(name.length, 0, std::ssize(name.text));
  std::string text;
  for (int64_t i = 0; i < length; ++i) text += utf8(name.text[i]);
  return text;
}

std::optional<std::u32string> utf32(std::string_view text) {
  std::u32string units;
  for (size_t at = 0; at < text.size();) {
    const UChar32 c = next_code_point(text, at);
    if (c < 0) return std::nullopt;
    units += static_cast<char32_t>(c);
  }
  return units;
}

std::string visible(std::string_view text) {
  std::string shown;
  for (size_t at = 0; at < text.size();) append_visible(shown, text, at);
  return shown;
}

std::string in_quotes(std::string_view text) {
  std::string shown = "\"";
  size_t count = 0;
  for (size_t at = 0; at < text.size();) {
    if (++count > longest_quote) {
      shown += "\"...";
      return shown;
    }
    append_visible(shown, text, at);
  }
  return shown + '"';
}

std::string_view without_blanks(std::string_view text) {
  constexpr std::string_view blanks = " \t";
  const size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

bool contains(std::string_view text, std::string_view part) {
  const auto folded = [](std::string_view given) {
    std::u32string result;
    for (size_t at = 0; at < given.size();) {
      const size_t start = at;
      const UChar32 c = next_code_point(given, at);
      if (c < 0) at = start + 1;
      result += static_cast<char32_t>(u_foldCase(c, U_FOLD_CASE_DEFAULT));
    }
    return result;
  };
  return folded(text).find(folded(part)) != std::u32string::npos;
}

std::string alternatives(const std::vector<std::string>& words) {
  std::string text;
  for (size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " or " : ", ";
    text += words[i];
  }
  return text;
}

size_t display_width(std::string_view text) {
  size_t width = 0;
  for (size_t at = 0; at < text.size();) {
    if (text.substr(at).starts_with("\x1b[")) {
      at = std::min(text.find('m', at), text.size() - 1) + 1;
      continue;
    }
    const size_t start = at;
    const UChar32 c = next_code_point(text, at);
    if (c < 0) at = start + 1;
    width += c < 0 ? 1 : c < 0x7F ? 1 : width_of(c);
  }
  return width;
}

std::string Table::text() const {
  std::vector<size_t> widths;
  for (const auto& cells : rows_) {
    if (widths.size() < cells.size()) widths.resize(cells.size());
    for (size_t i = 0; i < cells.size(); ++i) widths[i] = std::max(widths[i], display_width(cells[i]));
  }
  std::string text;
  for (const auto& cells : rows_) {
    std::string line = indent_;
    for (size_t i = 0; i < cells.size(); ++i) {
      line += cells[i];
      if (i + 1 < cells.size()) line.append(widths[i] - display_width(cells[i]) + 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line;
    text += '\n';
  }
  return text;
}

std::string wrapped(std::string_view text, size_t width, size_t indent) {
  std::string out;
  size_t column = indent;
  bool first_of_line = true;
  for (size_t at = 0; at < text.size();) {
    if (text[at] == '\n') {
      out += '\n';
      column = 0;
      first_of_line = true;
      ++at;
      continue;
    }
    const size_t end = std::min(text.find_first_of(" \n", at), text.size());
    const std::string_view word = text.substr(at, end - at);
    const size_t word_width = display_width(word);
    if (!first_of_line && column + 1 + word_width > width) {
      out += '\n';
      out.append(indent, ' ');
      column = indent;
    } else if (!first_of_line) {
      out += ' ';
      ++column;
    }
    out += word;
    column += word_width;
    first_of_line = false;
    at = end < text.size() && text[end] == ' ' ? end + 1 : end;
  }
  return out;
}

}  // namespace vxcli
