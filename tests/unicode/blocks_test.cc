// Blocks of units: the body that is used against the plain one, and copies against the ends of memory.
#include "unicode/eight_units.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "tests/support/guard_page.h"

// The plain body once more, under a name of its own.
#undef VXNLS_UNICODE_EIGHT_UNITS_H
#undef VXNLS_BLOCKS_BY_SSE2
#define VXNLS_BLOCKS_BY_SSE2 0
#define vxnls vxnls_plain
#include "unicode/eight_units.h"
#undef vxnls

namespace {

using vxtest::Guard;
using vxtest::GuardedBuffer;

TEST(Blocks, BodiesAgree) {
  std::mt19937_64 random(5);
  GuardedBuffer<VXChar> memory(64);
  // What is no byte may come out differently, but never as ASCII.
  const auto ascii = [](uint64_t bytes) {
    for (int i = 0; i < 64; i += 8) {
      if ((bytes >> i & 0xFF) >= 0x80) bytes &= ~(UINT64_C(0xFF) << i);
    }
    return bytes;
  };
  for (int round = 0; round < 50000; ++round) {
    VXChar units[16];
    for (VXChar& unit : units) {
      unit = static_cast<VXChar>(random());
      if (random() % 32 != 0) unit %= round % 2 == 0 ? 0x80 : 0x180;
    }
    const auto guard = round % 3 == 0 ? Guard::before : Guard::behind;
    ASSERT_EQ(ascii(vxnls::take_four(memory.copy(units, 4, guard))), ascii(vxnls_plain::take_four(units)));
    ASSERT_EQ(ascii(vxnls::take_eight(memory.copy(units, 8, guard))), ascii(vxnls_plain::take_eight(units)));
    uint8_t bytes[16] = {}, plain_bytes[16] = {};
    const bool is_ascii = vxnls::narrow<16>(memory.copy(units, 16, guard), bytes);
    ASSERT_EQ(is_ascii, vxnls_plain::narrow<16>(units, plain_bytes));
    ASSERT_TRUE(!is_ascii || std::equal(bytes, bytes + 16, plain_bytes));
    const uint64_t eight = random();
    vxnls_plain::put_eight(units, eight), vxnls_plain::put_four(units + 8, eight);
    vxnls::put_eight(memory.at(8, guard), eight);
    ASSERT_TRUE(std::equal(units, units + 8, memory.at(8, guard)));
    vxnls::put_four(memory.at(4, guard), eight);
    ASSERT_TRUE(std::equal(units, units + 4, memory.at(4, guard)) && std::equal(units, units + 4, units + 8));
  }
}

// What stands in the room behind the text stays, however much room there is.
TEST(Blocks, CopiesLeaveTheRestAlone) {
  const auto check = [](auto put, auto unit) {
    using Unit = decltype(unit);
    GuardedBuffer<Unit> memory(512);
    std::vector<Unit> text(400);
    std::iota(text.begin(), text.end(), Unit{1});
    for (size_t count = 0; count <= 300; ++count) {
      for (const size_t more : {0u, 1u, 7u, 20u, 40u}) {
        Unit* const out = memory.at(count + more, count % 2 == 0 ? Guard::before : Guard::behind);
        std::vector<Unit> expected(text.begin(), text.begin() + static_cast<ptrdiff_t>(count));
        expected.resize(count + more, Unit{0x7E});
        std::fill_n(out, count + more, Unit{0x7E});
        put(out, static_cast<int64_t>(count + more), text.data(), static_cast<int64_t>(count));
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), out)) << count;
      }
    }
  };
  check(vxnls::put_units<20, VXChar>, VXChar{}), check(vxnls_plain::put_units<20, VXChar>, VXChar{});
  check(vxnls::put_units<20, uint8_t>, uint8_t{}), check(vxnls_plain::put_units<20, uint8_t>, uint8_t{});
}

}  // namespace
