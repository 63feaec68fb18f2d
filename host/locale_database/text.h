// Texts of the locale database: UTF-32, as the record has them.
#ifndef VXNLS_HOST_LOCALE_DATABASE_TEXT_H
#define VXNLS_HOST_LOCALE_DATABASE_TEXT_H

#include <unicode/unistr.h>

#include <string>
#include <string_view>

#include "vxnls/types.h"

namespace vxnlsldb {

inline constexpr size_t longest_text = 60;        // units of a counted name
inline constexpr size_t longest_utf8_text = 180;  // bytes of it that the UTF-8 formatters write

std::u32string utf32(const icu::UnicodeString& text);
std::u32string from_ascii(std::string_view text);
std::string utf8(std::u32string_view text);

/// The text without what cannot be typed back: no-break and thin spaces become U+0020, runs of blanks one, the marks
/// U+200E, U+200F and U+061C and blanks at the ends are dropped.
std::u32string clean(std::u32string_view text);

/// Lower case, character by character: names that differ only in case are one name to the readers.
std::u32string fold(std::u32string_view text);

bool is_digit(char32_t c);
/// Format characters, controls and blanks.
bool is_invisible(char32_t c);

/// Whether the text fits a counted name, and the 180 bytes of it that the UTF-8 formatters write.
bool fits(std::u32string_view text);

/// The text of an entry, whatever length it claims.
std::u32string text_of(const NLSName& name);

/// Writes a counted name, the rest of its room zero. A text that does not fit is cut between two characters as people
/// count them; false then.
bool store(NLSName& name, std::u32string_view text);

}  // namespace vxnlsldb

#endif
