#include "cli/column/vocabulary.h"

#include <fmt/format.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace vxcli::column {

namespace {

void append(std::string& word, UChar32 c) {
  uint8_t bytes[U8_MAX_LENGTH];
  int32_t length = 0;
  U8_APPEND_UNSAFE(bytes, length, c);
  word.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
}

/// Calls `each` for every word until it says false. False at a combining mark.
template <class Each>
bool for_each_word(std::string_view text, Each each) {
  const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
  const auto size = static_cast<int32_t>(text.size());
  std::string word;
  for (int32_t at = 0; at < size;) {
    UChar32 c = bytes[at];
    bool letter = false;
    if (c < 0x80) {
      ++at;
      const UChar32 small = c | 0x20;
      letter = small >= 'a' && small <= 'z';
      if (letter) word += static_cast<char>(small);
    } else {
      U8_NEXT(bytes, at, size, c);
      if (c >= 0 && u_charType(c) == U_NON_SPACING_MARK) return false;
      letter = c >= 0 && u_isalpha(c);
      if (letter) append(word, u_tolower(c));
    }
    if (letter && at < size) continue;
    if (!word.empty() && !each(word)) return true;
    word.clear();
  }
  return true;
}

/// The letters of a pattern right before or behind a place, blanks passed over.
std::string letters_before(std::string_view pattern, size_t at) {
  while (at > 0 && pattern[at - 1] == ' ') --at;
  size_t begin = at;
  while (begin > 0 && (static_cast<unsigned char>(pattern[begin - 1]) >= 0x80 || (pattern[begin - 1] | 0x20) >= 'a')) {
    --begin;
  }
  if (begin > 0 && pattern[begin - 1] == '%') ++begin;  // the letter of a directive
  return begin < at ? std::string(pattern.substr(begin, at - begin)) : std::string();
}

std::string letters_behind(std::string_view pattern, size_t at) {
  while (at < pattern.size() && pattern[at] == ' ') ++at;
  size_t end = at;
  while (end < pattern.size() && (static_cast<unsigned char>(pattern[end]) >= 0x80 || (pattern[end] | 0x20) >= 'a')) {
    ++end;
  }
  return std::string(pattern.substr(at, end - at));
}

}  // namespace

void Vocabulary::add(std::string_view text, Locales locales) {
  for_each_word(text, [&](const std::string& word) {
    words_[word] |= locales;
    return true;
  });
}

void Vocabulary::add_names(std::string_view pattern, std::string_view directive, const std::vector<std::string>& names,
                           Locales locales) {
  const size_t at = pattern.find(directive);
  if (at == std::string_view::npos) return;
  const std::string before = letters_before(pattern, at), behind = letters_behind(pattern, at + directive.size());
  for (const std::string& name : names) {
    add(name, locales);
    if (!before.empty()) add(before + name, locales);
    if (!behind.empty()) add(name + behind, locales);
    if (!before.empty() && !behind.empty()) add(fmt::format("{}{}{}", before, name, behind), locales);
  }
}

Vocabulary::Locales Vocabulary::which(std::string_view text) const {
  Locales locales = all;
  const bool plain = for_each_word(text, [&](const std::string& word) {
    const auto found = words_.find(word);
    locales &= found == words_.end() ? Locales{0} : found->second;
    return locales != 0;
  });
  return plain ? locales : all;
}

}  // namespace vxcli::column
