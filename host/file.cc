#include "host/file.h"

#include <array>
#include <fstream>

namespace vxhost {

std::string contents(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  std::string text;
  std::array<char, 1 << 14> block;
  do {
    in.read(block.data(), block.size());
    text.append(block.data(), static_cast<size_t>(in.gcount()));
  } while (in);
  return text;
}

}  // namespace vxhost
