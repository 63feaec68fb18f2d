// Blocks of units: the body that is used against the plain one, and copies against the ends of memory.
#include "tests/unicode/blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "tests/support/guard_page.h"
#include "unicode/eight_units.h"

namespace vxtest {

const Blocks usual_blocks = {vxnls::take_four,
                             vxnls::take_eight,
                             vxnls::put_four,
                             vxnls::put_eight,
                             vxnls::narrow<16>,
                             vxnls::put_units<20, VXChar>,
                             vxnls::put_units<20, uint8_t>};

namespace {

TEST(Blocks, BodiesAgree) {
  std::mt19937_64 random(5);
  GuardedBuffer<VXChar> memory(64);
  for (int round = 0; round < 50000; ++round) {
    VXChar units[16];
    for (VXChar& unit : units) {
      unit = static_cast<VXChar>(random());
      if (random() % 32 != 0) unit %= round % 2 == 0 ? 0x80 : 0x180;
    }
    const auto guard = round % 3 == 0 ? Guard::before : Guard::behind;
    // What is no byte may come out differently, but never as ASCII.
    const auto ascii = [](uint64_t bytes) {
      for (int i = 0; i < 64; i += 8) {
        if ((bytes >> i & 0xFF) >= 0x80) bytes &= ~(UINT64_C(0xFF) << i);
      }
      return bytes;
    };
    ASSERT_EQ(ascii(usual_blocks.take_four(memory.copy(units, 4, guard))), ascii(plain_blocks.take_four(units)));
    ASSERT_EQ(ascii(usual_blocks.take_eight(memory.copy(units, 8, guard))), ascii(plain_blocks.take_eight(units)));
    uint8_t bytes[16] = {}, plain_bytes[16] = {};
    const bool is_ascii = usual_blocks.narrow(memory.copy(units, 16, guard), bytes);
    ASSERT_EQ(is_ascii, plain_blocks.narrow(units, plain_bytes));
    if (is_ascii) {
      ASSERT_TRUE(std::equal(bytes, bytes + 16, plain_bytes));
    }
    const uint64_t eight = random();
    VXChar eight_units[8], plain_units[8];
    plain_blocks.put_eight(plain_units, eight);
    usual_blocks.put_eight(memory.at(8, guard), eight);
    ASSERT_TRUE(std::equal(plain_units, plain_units + 8, memory.at(8, guard)));
    plain_blocks.put_four(eight_units, eight);
    usual_blocks.put_four(memory.at(4, guard), eight);
    ASSERT_TRUE(std::equal(eight_units, eight_units + 4, memory.at(4, guard)));
  }
}

template <class Unit>
void expect_exact_copies(void (*put)(Unit*, int64_t, const Unit*, int64_t)) {
  GuardedBuffer<Unit> memory(512);
  std::vector<Unit> text(400);
  for (size_t i = 0; i < text.size(); ++i) text[i] = static_cast<Unit>(i % 100 + 1);
  for (int64_t count = 0; count <= 300; ++count) {
    for (const int64_t more : {0, 1, 7, 20, 40}) {
      for (const Guard guard : {Guard::before, Guard::behind}) {
        const int64_t room = count + more;
        Unit* const out = memory.at(static_cast<size_t>(room), guard);
        std::fill_n(out, room, Unit{0x7E});
        put(out, room, text.data(), count);
        ASSERT_TRUE(std::equal(out, out + count, text.data())) << count;
        ASSERT_EQ(std::count(out + count, out + room, Unit{0x7E}), more) << count;
      }
    }
  }
}

TEST(Blocks, CopiesLeaveTheRestAlone) {
  for (const Blocks& blocks : {usual_blocks, plain_blocks}) {
    expect_exact_copies(blocks.put_units);
    expect_exact_copies(blocks.put_bytes);
  }
}

}  // namespace

}  // namespace vxtest
