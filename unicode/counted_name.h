// Counted names of the locale record, read with their length held to the room that they have.
#ifndef VXNLS_UNICODE_COUNTED_NAME_H
#define VXNLS_UNICODE_COUNTED_NAME_H

#include "vxnls/types.h"

namespace vxnls {

inline constexpr int64_t longest_name = 60;

/// A text that somebody else owns.
struct TextView {
  const VXChar* text;
  int64_t length;
};

/// The text of an entry. Whatever length a database stored, it is read as one from 0 to 60.
constexpr TextView view(const NLSName& name) {
  return {name.text, name.length < 0 ? 0 : name.length > longest_name ? longest_name : name.length};
}

/// A counted name from a literal, for constant tables.
template <int64_t N>
constexpr NLSName counted(const char32_t (&text)[N]) {
  static_assert(N - 1 <= longest_name);
  NLSName name{N - 1, {}};
  for (int64_t i = 0; i < N - 1; ++i) name.text[i] = static_cast<VXChar>(text[i]);
  return name;
}

}  // namespace vxnls

#endif
