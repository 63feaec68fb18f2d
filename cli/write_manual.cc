// Writes the manual pages of all commands into a folder: write_manual FOLDER
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include "cli/manual.h"

int main(int argc, char** argv) try {
  if (argc != 2) throw std::runtime_error("usage: write_manual FOLDER");
  vxcli::for_each_command([&](const vxcli::CommandPath& path) {
    const std::string file = std::string(argv[1]) + '/' + vxcli::manual_name(path) + ".1";
    std::ofstream out(file, std::ios::binary);
    out << vxcli::manual_page(path);
    out.close();
    if (!out) throw std::runtime_error("cannot write " + file);
  });
  return 0;
} catch (const std::exception& error) {
  static_cast<void>(std::fprintf(stderr, "%s\n", error.what()));
  return 1;
}
