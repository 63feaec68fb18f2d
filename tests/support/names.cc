#include "tests/support/plain_locale.h"
#include "unicode/text_flavour.h"

namespace vxtest {

std::u32string utf32(std::string_view text) {
  const own::Text units = own::decoded(text);
  return {units.begin(), units.end()};
}

std::string utf8(std::u32string_view text) {
  std::string result;
  for (const char32_t c : text) {
    uint8_t bytes[4];
    result.append(bytes, bytes + vxnls::Utf8Text::append(c, bytes));
  }
  return result;
}

void set_name(NLSName& name, std::u32string_view text) {
  name.length = static_cast<int64_t>(text.size());
  for (size_t i = 0; i < text.size() && i < 60; ++i) name.text[i] = text[i];
  if (text.size() < 60) name.text[text.size()] = '#';  // shows where a pattern is read behind its end
}

}  // namespace vxtest
