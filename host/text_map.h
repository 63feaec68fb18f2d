// Maps by text or bytes that are searched without making a string.
#ifndef VXNLS_HOST_TEXT_MAP_H
#define VXNLS_HOST_TEXT_MAP_H

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace vxhost {

struct TextHash {
  using is_transparent = void;
  size_t operator()(std::string_view key) const noexcept { return std::hash<std::string_view>()(key); }
};

template <class Value>
using TextMap = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;

}  // namespace vxhost

#endif
