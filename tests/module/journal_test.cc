#include "vxnls/journal.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "tests/support/failing_host.h"

namespace {

/// A journal that keeps what it was told last, and takes two ints from the variable list.
struct Recorder : VXJournal {
  std::vector<uint64_t> words;
  int rest[2] = {};

  void take(std::vector<uint64_t> fixed, va_list list) {
    words = std::move(fixed);
    rest[0] = va_arg(list, int);
    rest[1] = va_arg(list, int);
  }
};

Recorder& recorder(VXJournal* journal) { return *static_cast<Recorder*>(journal); }

constexpr VXJournalOps ops = {
    [](VXJournal* j, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5, va_list list) -> VXStatus {
      recorder(j).take({a1, a2, a3, a4, a5}, list);
      return 101;
    },
    [](VXJournal* j, uint32_t level, const VXChar* message, uint64_t extra, va_list list) -> VXStatus {
      recorder(j).take({level, message[0], extra}, list);
      return 102;
    },
    [](VXJournal* j, int64_t status, uint64_t a1, uint64_t a2, uint64_t a3, va_list list) -> VXStatus {
      recorder(j).take({static_cast<uint64_t>(status), a1, a2, a3}, list);
      return 103;
    },
    [](VXJournal* j, uint32_t level, int64_t status, va_list list) -> VXStatus {
      recorder(j).take({level, static_cast<uint64_t>(status)}, list);
      return 104;
    },
    {},
    [](VXJournal* j, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5) -> void* {
      recorder(j).words = {a1, a2, a3, a4, a5};
      return j;
    },
};

using Words = std::vector<uint64_t>;

TEST(Journal, PassesEverythingOn) {
  Recorder journal{{&ops}, {}, {}};
  const VXChar message[] = {'M', 0};
  const auto rest_is = [&](int first, int second) {
    EXPECT_EQ(journal.rest[0], first);
    EXPECT_EQ(journal.rest[1], second);
  };
  const uint64_t wide = 0xFEDCBA9876543210;
  EXPECT_EQ(vxlMessageToBuf(&journal, wide, 2, 3, 4, 5, 11, 12), 101u);
  EXPECT_EQ(journal.words, (Words{wide, 2, 3, 4, 5}));
  rest_is(11, 12);
  EXPECT_EQ(vxlMessageToJnl(&journal, 0xFFFFFFFF, message, 7, 13, 14), 102u);
  EXPECT_EQ(journal.words, (Words{0xFFFFFFFF, 'M', 7}));
  rest_is(13, 14);
  // A status is signed and keeps its sign when it gets wider; a level is not.
  EXPECT_EQ(vxlStatusToBuf(&journal, static_cast<int32_t>(0x803fc002), 1, 2, wide, 15, 16), 103u);
  EXPECT_EQ(journal.words, (Words{0xFFFFFFFF803fc002, 1, 2, wide}));
  rest_is(15, 16);
  EXPECT_EQ(vxlStatusToJnl(&journal, 0x80000004, static_cast<int32_t>(0x803fc002), 17, 18), 104u);
  EXPECT_EQ(journal.words, (Words{0x80000004, 0xFFFFFFFF803fc002}));
  rest_is(17, 18);
  EXPECT_EQ(vxlStatusToJnl(&journal, 4, 0x12345678, 19, 20), 104u);
  EXPECT_EQ(journal.words, (Words{4, 0x12345678}));
  EXPECT_EQ(vxlGetLocale(&journal, 1, 2, 3, 4, wide), &journal);
  EXPECT_EQ(journal.words, (Words{1, 2, 3, 4, wide}));
}

TEST(Journal, NullObjectDoesNothing) {
  EXPECT_EQ(vxlMessageToBuf(nullptr, 1, 2, 3, 4, 5), 0u);
  EXPECT_EQ(vxlMessageToJnl(nullptr, 3, nullptr, 0), 0u);
  EXPECT_EQ(vxlStatusToBuf(nullptr, 1, 2, 3, 4), 0u);
  EXPECT_EQ(vxlStatusToJnl(nullptr, 4, 5), 0u);
  EXPECT_EQ(vxlGetLocale(nullptr, 1, 2, 3, 4, 5), nullptr);
}

TEST(Reversal, OfEveryShortLength) {
  for (int64_t n : {INT64_MIN, int64_t{-1}, int64_t{0}, int64_t{1}, int64_t{2}, int64_t{4}, int64_t{5}, int64_t{33}}) {
    SCOPED_TRACE(n);
    std::vector<uint8_t> bytes(40);
    std::iota(bytes.begin(), bytes.end(), uint8_t{0});
    std::vector<VXChar> units(bytes.begin(), bytes.end());
    std::vector<uint8_t> expected = bytes;
    for (int64_t i = 0; i < n; ++i) expected[static_cast<size_t>(i)] = bytes[static_cast<size_t>(n - 1 - i)];
    EXPECT_EQ(vxzbytrv(bytes.data(), n), 0u);
    vxztchrv(units.data(), n);
    EXPECT_EQ(bytes, expected);
    EXPECT_EQ(units, std::vector<VXChar>(expected.begin(), expected.end()));
  }
  EXPECT_EQ(vxzbytrv(nullptr, 5), 0u);
  vxztchrv(nullptr, 5);
}

TEST(Conversions, LieBehindTheStoredHandle) {
  vxtest::FailingHost host;
  EXPECT_EQ(vxGetBDConv(), nullptr);  // no handle
  vxextent(host.stored());
  EXPECT_EQ(vxGetBDConv(), &host.stored()->runtime->bdconv);
  vxextent(host.kernel());
  EXPECT_EQ(vxGetBDConv(), nullptr);  // a handle without
  vxextent(nullptr);
}

}  // namespace
