// What the blocks of the documents may use without saying so, and the list that they are run from.
#ifndef VXNLS_TESTS_DOCS_BLOCKS_H
#define VXNLS_TESTS_DOCS_BLOCKS_H

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <ranges>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vxnls/vxnls.hpp"

using namespace std::chrono;
using namespace std::chrono_literals;
using vxnls::form;

inline vxnls::host host = vxnls::host::open().value();
inline const vxnls::locale german = host.locale("de_DE", "Europe/Berlin").value();
inline const vxnls::locale english = host.locale("en_US", "America/New_York").value();

namespace vxtest {

/// One block: where it stands, how it is run, what it prints.
struct Block {
  const char* place;
  void (*run)();
  const char* printed;
};
std::vector<Block>& all_blocks();
struct Blocks {
  Blocks(std::initializer_list<Block> blocks) { all_blocks().insert(all_blocks().end(), blocks); }
};

}  // namespace vxtest

#endif
