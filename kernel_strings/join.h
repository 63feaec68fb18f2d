// Texts joined into a field: the rule behind vxzscat, and the typed form of it for the library's own calls.
#ifndef VXNLS_KERNEL_STRINGS_JOIN_H
#define VXNLS_KERNEL_STRINGS_JOIN_H

#include <initializer_list>

#include "kernel_strings/units.h"

namespace vxnls {

inline constexpr VXChar no_separator = 0xFFFF;

/// Takes texts one by one and writes what fits, a separator between each two.
class Joiner {
 public:
  /// A negative room r means -r - 1 units and a NUL after them; otherwise what is left over becomes blank.
  Joiner(VXChar* out, int64_t room, VXChar separator)
      : out_(out),
        room_(out == nullptr ? 0 : std::max(room, ~room)),  // ~room is -room - 1
        terminated_(room < 0),
        separator_(separator) {}

  void add(TextView text) {
    if (!first_ && separator_ != no_separator) append({&separator_, 1});
    first_ = false;
    append(text);
  }

  /// Ends the field; gives the units written, the NUL and the padding not counted.
  int64_t finish() {
    if (out_ == nullptr) return 0;
    if (terminated_) {
      out_[written_] = 0;
    } else {
      fill_units(out_ + written_, blank, room_ - written_);
    }
    return written_;
  }

 private:
  void append(TextView text) {
    const int64_t count = std::min(text.length, room_ - written_);
    move_units(out_ + written_, text.text, count);
    written_ += count;
  }

  VXChar* out_;
  int64_t room_;
  bool terminated_;
  VXChar separator_;
  bool first_ = true;
  int64_t written_ = 0;
};

/// vxzscat with types that the compiler checks. Lengths of the texts must not be negative; `view()` sees to that.
inline int64_t join(VXChar* out, int64_t room, VXChar separator, std::initializer_list<TextView> texts) {
  Joiner joiner(out, room, separator);
  for (const TextView text : texts) joiner.add(text);
  return joiner.finish();
}

}  // namespace vxnls

#endif
