// The text that is still to be read, in either flavour, and the smallest steps over it.
#ifndef VXNLS_DATETIME_PARSE_INPUT_H
#define VXNLS_DATETIME_PARSE_INPUT_H

#include "unicode/text_flavour.h"

namespace vxnls {

/// Advances over the caller's text. A place is kept by copying it.
template <class Text>
struct Input {
  using Unit = typename Text::Unit;

  const Unit* at;
  int64_t left;  // units

  bool empty() const { return left == 0; }
  // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): a text that is null has no units
  bool stands_at(VXChar ascii) const { return left > 0 && *at == ascii; }
  void skip(int64_t units) {
    at += units;
    left -= units;
  }
};

/// A caller's buffer; a length below 0 counts as 0.
template <class Text>
Input<Text> input_of(const typename Text::Unit* buffer, int64_t length) {
  return {buffer, length > 0 ? length : 0};
}

/// Blank means U+0020 alone, in this room.
template <class Text>
void skip_blanks(Input<Text>& in) {
  while (in.stands_at(' ')) in.skip(1);
}

template <class Text>
Input<Text> without_trailing_blanks(Input<Text> in) {
  while (in.left > 0 && in.at[in.left - 1] == ' ') --in.left;
  return in;
}

template <class Text>
bool stands_at_digit(const Input<Text>& in) {
  return in.left > 0 && *in.at >= '0' && *in.at <= '9';
}

/// One character of the text and the units that it takes; 0 units when the text is broken there.
struct Character {
  VXChar code_point;
  int64_t units;
};

inline Character character_at(const Input<Utf32Text>& in) { return {*in.at, 1}; }

/// The decoder lets broken sequences pass that begin well; a name must not match those, so the bytes are held against
/// what the code point is written as.
inline Character character_at(const Input<Utf8Text>& in) {
  if (*in.at < 0x80) return {*in.at, 1};
  const Decoded decoded = Utf8Text::decode(in.at, in.left);
  const VXChar c = decoded.code_point;
  const bool is_character = c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
  if (decoded.status != 0 || !is_character || Utf8Text::units(c) != decoded.consumed) return {replacement_character, 0};
  for (int64_t i = 1; i < decoded.consumed; ++i) {
    if (!Utf8Text::is_continuation(in.at[i])) return {replacement_character, 0};
  }
  return {c, decoded.consumed};
}

}  // namespace vxnls

#endif
