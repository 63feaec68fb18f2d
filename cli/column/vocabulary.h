// The words of locales, so that a text with any other word need not be tried.
#ifndef VXNLS_CLI_COLUMN_VOCABULARY_H
#define VXNLS_CLI_COLUMN_VOCABULARY_H

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vxcli::column {

/// Words are runs of letters, in lower case. Locales are known by their numbers; those from 63 on share the last bit.
class Vocabulary {
 public:
  using Locales = uint64_t;
  static constexpr Locales all = ~Locales{0};
  static Locales bit(size_t locale) { return Locales{1} << (locale < 63 ? locale : 63); }

  void add(std::string_view text, Locales locales);
  /// Every name as it can stand in a pattern: by itself, and run together with the letters of the pattern on either
  /// side of it, as in Hebrew, or where a blank is missing.
  void add_names(std::string_view pattern, std::string_view directive, const std::vector<std::string>& names,
                 Locales locales);

  /// The locales that have all words of the text. A text with combining marks may be any locale's: the library compares
  /// composed and decomposed names as equal.
  Locales which(std::string_view text) const;

 private:
  std::unordered_map<std::string, Locales> words_;
};

}  // namespace vxcli::column

#endif
