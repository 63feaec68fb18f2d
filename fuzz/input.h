// What the targets share: an input taken apart from its front, memory of exactly a text's size, and buffers that show
// what is written outside.
#ifndef VXNLS_FUZZ_INPUT_H
#define VXNLS_FUZZ_INPUT_H

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vxnls/types.h"

namespace vxfuzz {

inline void require(bool holds) {
  if (!holds) std::abort();
}

/// Values off the front of the input; zeros once it is used up.
struct Input {
  const uint8_t* data;
  size_t left;

  template <class Value>
  Value take() {
    Value value{};
    const size_t taken = std::min(left, sizeof value);
    if (taken > 0) std::memcpy(&value, data, taken);
    skip(taken);
    return value;
  }
  uint8_t byte() { return take<uint8_t>(); }
  /// Up to the next line end.
  std::string_view line() {
    const std::string_view text(reinterpret_cast<const char*>(data), left);
    const std::string_view first = text.substr(0, text.find('\n'));
    skip(std::min(first.size() + 1, left));
    return first;
  }

 private:
  void skip(size_t count) {
    data += count;
    left -= count;
  }
};

/// Bytes in memory of exactly their size, so that a sanitizer sees a step past either end.
class Text {
 public:
  explicit Text(std::string_view bytes) : Text(static_cast<int64_t>(bytes.size())) {
    std::copy(bytes.begin(), bytes.end(), at());
  }
  explicit Text(int64_t size) : size_(size), bytes_(new uint8_t[static_cast<size_t>(size)]) {}
  uint8_t* at() const { return bytes_.get(); }
  int64_t size() const { return size_; }
  std::string str() const { return {at(), at() + size_}; }

 private:
  int64_t size_;
  std::unique_ptr<uint8_t[]> bytes_;
};

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
  const auto units = static_cast<size_t>(std::max<int64_t>(size, 0));
  static std::vector<Unit> area;
  area.assign(units + 2 * guard, Unit{0x7E});
  Unit* const buffer = area.data() + guard;
  Written written{0, untouched, {}};
  written.status = function(buffer, size, &written.length);
  for (size_t i = 0; i < guard; ++i) require(area[i] == 0x7E && buffer[units + i] == 0x7E);
  require(written.length == untouched || written.length >= 0);
  const auto used = std::clamp<int64_t>(written.length, 0, static_cast<int64_t>(units));
  written.text.assign(buffer, buffer + used);
  return written;
}

}  // namespace vxfuzz

#endif
