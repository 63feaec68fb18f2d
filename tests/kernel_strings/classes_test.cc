#include "vxnls/classes.h"

#include <gtest/gtest.h>

#include "tests/support/character_host.h"

namespace {

constexpr struct {
  int32_t (*test)(uint32_t);
  uint32_t bits;
} tests[] = {
    {vxnlsisdigit, 0x40},       {vxnlsislower, 0x2},        {vxnlsisupper, 0x1},   {vxnlsisalpha, 0x60007},
    {vxnlsisalnum, 0x60047},    {vxnlsisprint, 0x3FFE0FFF}, {vxnlsisxdigit, 0x40}, {vxnlsispunct, 0x3F80000},
    {vxnlsisgraph, 0xFFFE81FF}, {vxnlsiscntrl, 0x3C00},
};

TEST(Classes, HostIsAskedBeyondAscii) {
  vxtest::CharacterHost host;
  int32_t answer = 0;
  host.test_class = [&answer](uint32_t, uint32_t) { return answer; };
  for (const auto& t : tests) {
    for (uint32_t c = 0; c < 0x80; ++c) t.test(c);
    EXPECT_EQ(host.asked.size(), 0u) << "ASCII never calls the host";
    for (answer = -5; answer <= 64; answer += 23) {
      EXPECT_EQ(t.test(0x391), answer != 0) << "whatever the host's truth looks like, the answer is 1 or 0";
    }
    EXPECT_EQ(t.test(0xFFFFFFFF), 1);
    for (const auto& question : host.asked) EXPECT_EQ(question.argument, t.bits);
    EXPECT_EQ(host.asked.size(), 5u);
    host.asked.clear();
  }
  EXPECT_EQ(host.loads, 1) << "the database is loaded once and kept";
}

TEST(Classes, SomeAreNeverAsked) {
  vxtest::CharacterHost host;
  for (const uint32_t c : {0x41u, 0x46u, 0x61u, 0x66u, 0xFF21u, 0xFF26u, 0xFF41u, 0xFF46u})
    EXPECT_EQ(vxnlsisxdigit(c), 1) << c;
  for (const uint32_t c : {0x40u, 0x47u, 0x60u, 0x67u}) EXPECT_EQ(vxnlsisxdigit(c), 0) << c;
  for (const uint32_t c : {0xA0u, 0x3000u}) EXPECT_EQ(vxnlsisspace(c), 1) << c;
  for (const uint32_t c : {0x200Bu, 0x3001u}) EXPECT_EQ(vxnlsisspace(c), 0) << c;
  EXPECT_EQ(host.asked.size(), 0u);
  for (const uint32_t c : {0xFF20u, 0xFF27u, 0xFF40u, 0xFF47u}) EXPECT_EQ(vxnlsisxdigit(c), 0) << c;
  EXPECT_EQ(host.asked.size(), 4u);
}

TEST(Classes, RangesStandInForADatabaseThatCannotBeHad) {
  vxtest::CharacterHost host;
  host.has_database = false;
  EXPECT_EQ(vxnlsisupper(0x391), 1);
  EXPECT_EQ(vxnlsisupper(0x3B1), 0);
  EXPECT_EQ(vxnlsisalnum(0x660), 1);
  host.has_database = true;
  EXPECT_EQ(vxnlsisupper(0x391), 0) << "a later call tries again";
}

}  // namespace
