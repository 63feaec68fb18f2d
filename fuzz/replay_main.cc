// Runs every file of the folders and files that are named through a fuzz target, in order of name.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

void replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  // A copy of exactly this size, so that a read past the end is seen.
  const std::vector<uint8_t> input(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int count, char** arguments) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < count; ++i) {
    if (std::filesystem::is_directory(arguments[i])) {
      for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) files.push_back(entry.path());
    } else {
      files.emplace_back(arguments[i]);
    }
  }
  std::sort(files.begin(), files.end());
  for (const auto& file : files) replay(file);
  std::printf("%zu inputs replayed\n", files.size());
  return files.empty() ? 1 : 0;
}
