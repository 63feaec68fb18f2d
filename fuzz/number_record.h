// Fuzzer bytes as a locale record of numbers, as hostile as they come, and buffers that show what is written outside.
#ifndef VXNLS_FUZZ_NUMBER_RECORD_H
#define VXNLS_FUZZ_NUMBER_RECORD_H

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "tests/support/plain_locale.h"

namespace vxfuzz {

inline void require(bool condition) {
  if (!condition) std::abort();
}

/// Values off the front of the input; zeros once it is used up.
class Bytes {
 public:
  Bytes(const uint8_t* data, size_t size) : data_(data), left_(size) {}

  template <class Value>
  Value take() {
    Value value{};
    const size_t taken = left_ < sizeof value ? left_ : sizeof value;
    if (taken > 0) std::memcpy(&value, data_, taken);
    data_ += taken;
    left_ -= taken;
    return value;
  }

  /// A small count most of the time, and any at all when its first byte says so.
  int64_t take_length() {
    const auto small = take<uint8_t>();
    return small < 0xF0 ? small % 64 : take<int64_t>();
  }

  /// A character: a byte, or a unit of 32 bits after 0xFF.
  VXChar take_char() {
    const auto c = take<uint8_t>();
    return c == 0xFF ? take<VXChar>() : c;
  }

 private:
  const uint8_t* data_;
  size_t left_;
};

/// Sets a name to characters and a length that need not go together.
inline void take_name(Bytes& bytes, NLSName& name) {
  name.length = bytes.take_length();
  const size_t count = bytes.take<uint8_t>() % 61;
  for (size_t i = 0; i < std::size(name.text); ++i) name.text[i] = i < count ? bytes.take_char() : U' ';
}

inline void take_number_record(Bytes& bytes, VXLocaleData& data) {
  data.decimalPoint = bytes.take_char();
  data.groupSeparator = bytes.take_char();
  take_name(bytes, data.groupingPattern);
}

/// What a call gave; `text` is what lies within the length.
struct Written {
  VXStatus status;
  int64_t length;
  std::u32string text;
  bool operator==(const Written&) const = default;
};

constexpr int64_t untouched = INT64_MIN;

/// Calls `function(buffer, size, &length)` with a buffer of exactly `size` units between guards.
template <class Unit, class Function>
Written call(int64_t size, Function function) {
  constexpr size_t guard = 80;
  const auto units = static_cast<size_t>(size > 0 ? size : 0);
  static std::vector<Unit> area;
  area.assign(units + 2 * guard, Unit{0x7E});
  Written written{0, untouched, {}};
  written.status = function(area.data() + guard, size, &written.length);
  for (size_t i = 0; i < guard; ++i) require(area[i] == 0x7E && area[guard + units + i] == 0x7E);
  if (written.length != untouched) {
    require(written.length >= 0);
    for (size_t i = 0; i < units && i < static_cast<size_t>(written.length); ++i) {
      written.text += static_cast<char32_t>(area[guard + i]);
    }
  }
  return written;
}

}  // namespace vxfuzz

#endif
