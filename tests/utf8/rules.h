// The rules of UTF-8 text in plain words, for the models of the tests.
#ifndef VXNLS_TESTS_UTF8_RULES_H
#define VXNLS_TESTS_UTF8_RULES_H

#include <algorithm>
#include <bit>
#include <string>
#include <vector>

#include "tests/unicode/texts.h"
#include "vxnls/types.h"

namespace vxtest {

inline int64_t count_characters(std::string_view text, Step step) {
  int64_t count = 0;
  for (; !text.empty(); ++count) text.remove_prefix(next(text, step).size());
  return count;
}
/// What a text becomes, piece by piece. A room holds whole pieces up to the first that does not fit.
struct Pieces {
  std::string text = {};
  std::vector<size_t> ends = {};
  bool replaced = false;

  void clear() {
    text.clear();
    ends.clear();
    replaced = false;
  }
  void put(std::string_view piece) {
    text += piece;
    ends.push_back(text.size());
  }
  void replace() {
    replaced = true;
    put("\uFFFD");
  }
  /// Whether that and nothing else is what `call(out, room, &written)` writes, and tells, at a page that may not be
  /// touched or away from it.
  template <class Call>
  bool are_written(Call call, size_t room, size_t away = 0) const {
    static GuardedBuffer<uint8_t> memory(512);
    uint8_t* const out = memory.at(room, Guard::behind, away);
    std::fill_n(out, room, uint8_t{0xAA});
    int64_t written = -1;
    const VXStatus status = call(out, static_cast<int64_t>(room), &written);
    const auto held = std::upper_bound(ends.begin(), ends.end(), room);
    return status == (held != ends.end() ? VX_E_ROOM
                      : replaced         ? VX_E_SEQUENCE
                                         : 0) &&
           written == (held == ends.begin() ? 0 : static_cast<int64_t>(held[-1])) &&
           std::equal(out, out + written, bytes(text)) &&
           std::count(out + written, out + room, 0xAA) == static_cast<int64_t>(room) - written;
  }
};

}  // namespace vxtest

#endif
