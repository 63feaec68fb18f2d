// Blocks of units: the body that is used against the plain one, and copies against the ends of memory.
#include "unicode/eight_units.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

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
    vxnls_plain::put_eight(units, eight);
    vxnls::put_eight(memory.at(8, guard), eight);
    ASSERT_TRUE(std::equal(units, units + 8, memory.at(8, guard)));
    vxnls_plain::put_four(units + 8, eight);
    vxnls::put_four(memory.at(4, guard), eight);
    ASSERT_TRUE(std::equal(units + 8, units + 12, memory.at(4, guard)) && std::equal(units, units + 4, units + 8));
  }
}

template <class Unit>
void expect_exact_copies() {
  GuardedBuffer<Unit> memory(512);
  Unit text[400];
  for (size_t i = 0; i < 400; ++i) text[i] = static_cast<Unit>(i % 100 + 1);
  for (const auto put : {vxnls::put_units<20, Unit>, vxnls_plain::put_units<20, Unit>}) {
    for (int64_t count = 0; count <= 300; ++count) {
      for (const int64_t room : {count, count + 1, count + 7, count + 20, count + 40}) {
        for (const Guard guard : {Guard::before, Guard::behind}) {
          Unit* const out = memory.at(static_cast<size_t>(room), guard);
          std::fill_n(out, room, Unit{0x7E});
          put(out, room, text, count);
          ASSERT_TRUE(std::equal(out, out + count, text)) << count;
          ASSERT_EQ(std::count(out + count, out + room, Unit{0x7E}), room - count) << count;
        }
      }
    }
  }
}

TEST(Blocks, CopiesLeaveTheRestAlone) {
  expect_exact_copies<VXChar>();
  expect_exact_copies<uint8_t>();
}

}  // namespace
