// The short roads of the readers against the explanation, which always takes the long one: numbers of every length,
// whole and damaged in one place, up against an untouchable page.
#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <string>

#include "tests/support/guard_page.h"
#include "tests/support/plain_locale.h"
#include "vxnls/number_parse.h"

namespace {

struct Text {
  std::string bytes;
  const uint8_t* utf8;
  const VXChar* utf32;
  auto length() const { return static_cast<int64_t>(bytes.size()); }
};

struct Outcome {
  VXStatus status;
  uint64_t value, consumed;
  bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& o) {
  return out << std::hex << o.status << ' ' << o.value << " consumed " << std::dec << o.consumed;
}

Outcome explained(VXLocale* locale, const Text& text, uint32_t kind, uint32_t flags) {
  VXNumberReading reading{};
  const VXStatus status = vxnlsExplainNumber(locale, text.utf8, text.length(), kind, flags, &reading);
  return {status, reading.value.unsigned_integer, static_cast<uint64_t>(reading.consumed)};
}

template <class Integer, auto plain, auto bytewise>
void expect_same_integer(VXLocale* locale, const Text& text, uint32_t kind, uint32_t flags) {
  const auto read = [&](auto function, auto at) {
    Integer value{};
    uint64_t consumed = 0;
    const VXStatus status = function(locale, at, text.length(), flags, &value, &consumed);
    // The explanation holds 64 bits, of a negative number with its sign.
    return Outcome{status, static_cast<uint64_t>(static_cast<int64_t>(value)), consumed};
  };
  Outcome wanted = explained(locale, text, kind, flags);
  wanted.value = static_cast<uint64_t>(static_cast<int64_t>(static_cast<Integer>(wanted.value)));
  EXPECT_EQ(read(bytewise, text.utf8), wanted) << text.bytes;
  EXPECT_EQ(read(plain, text.utf32), wanted) << text.bytes;
}

void expect_same_double(VXLocale* locale, const Text& text) {
  const auto read = [&](auto function, auto at) {
    double value = 0;
    int64_t consumed = 0;
    const VXStatus status = function(locale, at, static_cast<int32_t>(text.length()), &value, &consumed);
    return Outcome{status, std::bit_cast<uint64_t>(value), static_cast<uint64_t>(consumed)};
  };
  const Outcome wanted = explained(locale, text, VX_NUMBER_DOUBLE, 0);
  EXPECT_EQ(read(NLSBufToDoubleU, text.utf8), wanted) << text.bytes;
  EXPECT_EQ(read(NLSBufToDouble, text.utf32), wanted) << text.bytes;
}

/// Both flavours of a text, before or behind a page that may not be touched, through all readers.
void expect_same(VXLocale* locale, const std::string& text, uint32_t flags, vxtest::Guard guard) {
  static vxtest::GuardedBuffer<uint8_t> bytes(512);
  static vxtest::GuardedBuffer<VXChar> units(512);
  const std::u32string wide(text.begin(), text.end());
  const Text both{text, bytes.copy(reinterpret_cast<const uint8_t*>(text.data()), text.size(), guard),
                  units.copy(reinterpret_cast<const VXChar*>(wide.data()), wide.size(), guard)};
  expect_same_double(locale, both);
  expect_same_integer<int32_t, NLSBufToInt, NLSBufToIntU>(locale, both, VX_NUMBER_INT32, flags);
  expect_same_integer<uint32_t, NLSBufToUInt, NLSBufToUIntU>(locale, both, VX_NUMBER_UINT32, flags);
  expect_same_integer<int64_t, NLSBufToLong, NLSBufToLongU>(locale, both, VX_NUMBER_INT64, flags);
  expect_same_integer<uint64_t, NLSBufToULong, NLSBufToULongU>(locale, both, VX_NUMBER_UINT64, flags);
}

// Digits, groups, decimals and leading zeros of every length, with another unit at every place.
TEST(ShortRoad, EveryLengthWithAFaultAtEveryPlace) {
  vxtest::PlainLocale locale;
  std::mt19937_64 random(300);
  constexpr std::string_view faults = "09.,-+ eE:/x\x7F";
  enum { digits, groups, decimals, zeros };
  for (size_t length = 0; length <= 300; ++length) {
    for (size_t turn = 0; turn < 4 * (length + 1); ++turn) {
      const size_t form = turn % 4, place = turn / 4;
      std::string text;
      for (size_t behind = length; behind-- > 0;) {
        if (form == groups && behind % 4 == 3) text += ',';
        else if (form == decimals && behind == length / 2) text += '.';
        else text += form == zeros && behind > 12 ? '0' : static_cast<char>('0' + random() % 10);
      }
      if (place < length) text[place] = faults[random() % faults.size()];
      expect_same(locale.get(), text, 0, random() % 2 == 0 ? vxtest::Guard::before : vxtest::Guard::behind);
      if (HasFailure()) return;
    }
  }
}

TEST(ShortRoad, ReadsWhatTheLongOneReads) {
  vxtest::PlainLocale locale;
  std::mt19937_64 random(12);
  const auto one_of = [&](std::string_view from) { return from[random() % from.size()]; };
  constexpr struct {
    VXChar point, separator;
  } conventions[] = {{'.', ','}, {',', '.'}, {'.', '.'}, {'5', '7'}, {' ', '-'}, {'e', '+'}, {'.', 0xA0}, {0, 0}};
  for (int i = 0; i < 300000; ++i) {
    const auto& convention = conventions[i % 3 == 0 ? random() % std::size(conventions) : 0];
    locale.data.decimalPoint = convention.point;
    locale.data.groupSeparator = convention.separator;
    std::string text;
    for (auto n = random() % 22; n > 0; --n) text += one_of(i % 5 == 0 ? "09" : "0123456789");
    if (random() % 2 == 0) {
      for (size_t at = text.size(); at > 3; text.insert(at -= 3, 1, ',')) {
      }
    }
    if (random() % 2 == 0) {
      text += '.';
      for (auto n = random() % 20; n > 0; --n) text += one_of("0123456789");
    }
    if (random() % 4 == 0) text += one_of("eEdDx") + std::to_string(static_cast<int>(random() % 700) - 350);
    if (random() % 3 == 0) text = std::string(1, one_of("-+ ")) + text;
    if (random() % 3 == 0 && !text.empty()) text[random() % text.size()] = one_of("0123456789.,-+ e:/\x7F");
    const auto flags = static_cast<uint32_t>(i % 4 == 0 ? random() & 0x7001 : 0);
    expect_same(locale.get(), text, flags, random() % 2 == 0 ? vxtest::Guard::before : vxtest::Guard::behind);
    if (HasFailure()) return;
  }
}

}  // namespace
