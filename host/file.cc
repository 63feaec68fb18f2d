#include "host/file.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <new>

namespace vxhost {

std::string contents(const std::string& file) {
  errno = 0;
  std::ifstream in(file, std::ios::binary);
  if (!in && (errno == EMFILE || errno == ENFILE || errno == ENOMEM)) throw std::bad_alloc();
  std::string text;
  std::array<char, 1 << 14> block;
  do {
    in.read(block.data(), block.size());
    text.append(block.data(), static_cast<size_t>(in.gcount()));
  } while (in);
  return text;
}

}  // namespace vxhost
