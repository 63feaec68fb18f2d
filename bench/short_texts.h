// Short texts in both flavours, one behind the other in memory, so that reading them measures no waiting for memory.
#ifndef VXNLS_BENCH_SHORT_TEXTS_H
#define VXNLS_BENCH_SHORT_TEXTS_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/common.h"

namespace vxbench {

template <class Unit>
struct Units {
  const Unit* at;
  size_t size;
  int64_t length() const { return static_cast<int64_t>(size); }
};

class ShortTexts {
 public:
  /// Well-formed text of characters of one or two bytes.
  void add(std::string_view text) {
    places_.push_back({bytes_.size(), units_.size()});
    bytes_.append(text).push_back('\0');
    for (size_t i = 0; i < text.size(); ++i) {
      const auto c = static_cast<uint8_t>(text[i]);
      units_.push_back(c < 0x80 ? c : (c & 0x1Fu) << 6 | (static_cast<uint8_t>(text[++i]) & 0x3Fu));
    }
  }
  /// Ends the texts, which can be read from here on.
  std::shared_ptr<const ShortTexts> finished() && {
    places_.push_back({bytes_.size(), units_.size()});
    return std::make_shared<const ShortTexts>(std::move(*this));
  }

  Units<uint8_t> utf8(size_t i) const {
    return {reinterpret_cast<const uint8_t*>(bytes_.data()) + places_[i].byte,
            places_[i + 1].byte - places_[i].byte - 1};
  }
  Units<VXChar> utf32(size_t i) const {
    return {units_.data() + places_[i].unit, places_[i + 1].unit - places_[i].unit};
  }
  /// The bytes as the C and C++ libraries take them, with a NUL behind.
  std::string_view view(size_t i) const {
    const Units<uint8_t> bytes = utf8(i);
    return {reinterpret_cast<const char*>(bytes.at), bytes.size};
  }

 private:
  struct Place {
    size_t byte, unit;
  };
  std::string bytes_;
  std::vector<VXChar> units_;
  std::vector<Place> places_;
};

using Texts = std::shared_ptr<const ShortTexts>;

}  // namespace vxbench

#endif
