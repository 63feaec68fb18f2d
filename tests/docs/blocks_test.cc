// The blocks of C++ and C in the documents are compiled; here they are run, and print what they say.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <ranges>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vxnls/vxnls.hpp"

namespace {

using namespace std::chrono;
using namespace std::chrono_literals;
using vxnls::form;

// What the blocks may use without saying so.
vxnls::host host = vxnls::host::open().value();
const vxnls::locale german = host.locale("de_DE", "Europe/Berlin").value();
const vxnls::locale english = host.locale("en_US", "America/New_York").value();

struct Block {
  const char* place;
  void (*run)();
  const char* printed;
};
#include "README_md.inc"
#include "docs_cpp_md.inc"
#include "docs_guide_md.inc"

TEST(Documents, BlocksPrintWhatTheySay) {
  setenv("TZ", "UTC", 1);
  std::vector<Block> blocks(std::begin(README_md), std::end(README_md));
  blocks.insert(blocks.end(), std::begin(docs_cpp_md), std::end(docs_cpp_md));
  blocks.insert(blocks.end(), std::begin(docs_guide_md), std::end(docs_guide_md));
  EXPECT_GT(blocks.size(), 15u) << "where are the documents?";
  for (const Block& block : blocks) {
    SCOPED_TRACE(block.place);
    testing::internal::CaptureStdout();
    try {
      block.run();
    } catch (const std::exception& failure) {
      std::cout << failure.what();
    }
    std::cout.flush();
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), block.printed);
  }
}

}  // namespace
