#include "vxnls/bytes.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <string>

namespace {

TEST(Bytes, NullAndCountsBelowOneDoNothing) {
  VXChar units[2] = {7, 8};
  for (const int64_t n : {INT64_C(0), INT64_C(-1), INT64_MIN}) {
    EXPECT_EQ(qmMemCpy(units, "xxxx", n), units);
    EXPECT_EQ(qmMemMove(units, "xxxx", n), units);
    EXPECT_EQ(qmMemSet(units, 1, n), units);
    EXPECT_EQ(qmzMemCpy(units, units + 1, n), units);
    EXPECT_EQ(qmzMemMove(units, units + 1, n), units);
    EXPECT_EQ(qmzMemSet(units, 1, n), units);
    EXPECT_EQ(qmMemCmp(units, "xxxx", n), 0);
    EXPECT_EQ(qmzMemCmp(units, units + 1, n), 0);
    EXPECT_EQ(qmMemScan(units, n, 7), -1);
    EXPECT_EQ(qmzMemScan(units, n, 7), -1);
  }
  EXPECT_EQ(qmMemCpy(units, nullptr, 4), units);
  EXPECT_EQ(qmMemMove(nullptr, units, 4), nullptr);
  EXPECT_EQ(qmzMemMove(nullptr, units, 1), nullptr);
  EXPECT_EQ(qmMemSet(nullptr, 1, 4), nullptr);
  EXPECT_EQ(qmzMemSet(nullptr, 1, 1), nullptr);
  EXPECT_EQ(qmMemCmp(nullptr, units, 4), 0);
  EXPECT_EQ(qmzMemCmp(units, nullptr, 1), 0);
  EXPECT_EQ(qmMemScan(nullptr, 4, 7), -1);
  EXPECT_EQ(qmzMemScan(nullptr, 1, 7), -1);
  EXPECT_EQ(qmStrLen(nullptr), 0);
  EXPECT_EQ(qmzStrLen(nullptr), 0);
  EXPECT_EQ(units[0], 7u);
  EXPECT_EQ(units[1], 8u);
}

TEST(Bytes, TwinsDoTheSameToUnits) {
  char bytes[] = "abcdef";
  VXChar units[] = {'a', 'b', 'c', 'd', 'e', 'f', 0};
  const auto same = [&](const char* text) {
    for (size_t i = 0; i < sizeof bytes; ++i) {
      if (static_cast<VXChar>(bytes[i]) != units[i]) return false;
    }
    return std::string(bytes) == text;
  };
  EXPECT_EQ(qmStrLen(bytes), 6);
  EXPECT_EQ(qmzStrLen(units), 6);
  qmMemMove(bytes + 1, bytes, 4);
  qmzMemMove(units + 1, units, 4);
  EXPECT_TRUE(same("aabcdf"));
  qmMemCpy(bytes, bytes + 3, 2);
  qmzMemCpy(units, units + 3, 2);
  EXPECT_TRUE(same("cdbcdf"));
  qmMemSet(bytes + 4, 'x', 2);
  qmzMemSet(units + 4, 'x', 2);
  EXPECT_TRUE(same("cdbcxx"));
  for (const char wanted : std::string("cdbx?")) {
    EXPECT_EQ(qmMemScan(bytes, 6, static_cast<uint8_t>(wanted)), qmzMemScan(units, 6, static_cast<VXChar>(wanted)));
  }
  EXPECT_EQ(qmzMemScan(units, 6, 'x'), 4);
  EXPECT_EQ(qmzMemScan(units, 4, 'x'), -1);
}

TEST(Bytes, OrderOfBytesIsUnsignedAndOfUnitsSigned) {
  EXPECT_EQ(qmMemCmp("\x7F", "\x80", 1), -1);
  EXPECT_EQ(qmMemCmp("b\x01", "a\xFF", 2), 1);
  EXPECT_EQ(qmMemCmp("ab", "ac", 1), 0);
  static constexpr VXChar low[] = {5, 0x80000000}, high[] = {5, 0x7FFFFFFF};
  EXPECT_EQ(qmzMemCmp(low, high, 2), -1);
  EXPECT_EQ(qmzMemCmp(high, low, 2), 1);
  EXPECT_EQ(qmzMemCmp(high, low, 1), 0);
}

TEST(Missing, LetterToCodeToBits) {
  for (VXChar letter = 0; letter < 0x200; ++letter) {
    const uint64_t code = letter == '_'                    ? 1
                          : letter >= 'A' && letter <= 'Z' ? letter - 'A' + 3
                          : letter >= 'a' && letter <= 'z' ? letter - 'a' + 3
                                                           : 2;
    const auto bits = std::bit_cast<uint64_t>(qmMissVal(letter));
    EXPECT_EQ(bits, qmmissv_struct[code]) << letter;
    EXPECT_EQ((0x100 - (bits >> 40 & 0xFF)) & 0xFF, code) << letter;
    EXPECT_EQ(bits & UINT64_C(0xFFFF00FFFFFFFFFF), UINT64_C(0xFFFF000000000000)) << letter;
    EXPECT_TRUE(std::isnan(qmMissVal(letter)));
  }
  EXPECT_EQ(qmmissv_struct[2], UINT64_C(0xFFFFFE0000000000));
  EXPECT_EQ(qmmissv_struct[0], qmmissv_struct[2]);
}

TEST(Missing, Array) {
  double values[] = {1, 2, 3};
  qmMissArray(values, 2, 'z');
  EXPECT_EQ(std::bit_cast<uint64_t>(values[0]), qmmissv_struct[28]);
  EXPECT_EQ(std::bit_cast<uint64_t>(values[1]), qmmissv_struct[28]);
  EXPECT_EQ(values[2], 3);
  qmMissArray(values, -1, 'z');
  qmMissArray(nullptr, 2, 'z');
  EXPECT_EQ(values[2], 3);
}

}  // namespace
