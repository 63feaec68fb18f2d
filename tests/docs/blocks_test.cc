// The blocks of C++ and C in the documents are compiled; here they are run, and print what they say.
#include "tests/docs/blocks.h"

#include <gtest/gtest.h>

#include <exception>

namespace vxtest {

std::vector<Block>& all_blocks() {
  static std::vector<Block> blocks;
  return blocks;
}

}  // namespace vxtest

namespace {

TEST(Documents, BlocksPrintWhatTheySay) {
  setenv("TZ", "UTC", 1);
  EXPECT_GT(vxtest::all_blocks().size(), 15u) << "where are the documents?";
  for (const vxtest::Block& block : vxtest::all_blocks()) {
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
