// The short roads of the number formatters against the long ones, which the same numbers take with left justification
// or with a grouping pattern that says the same in more words.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "tests/support/guard_page.h"
#include "tests/support/plain_locale.h"
#include "vxnls/number_format.h"

namespace {

constexpr int64_t most_room = 400;

/// What is written between pages that may not be touched; blanks around it do not count.
template <class Unit, class Write>
std::u32string written(int64_t size, Write write) {
  static vxtest::GuardedBuffer<Unit> memory(most_room);
  static unsigned turn = 0;
  Unit* const buffer =
      memory.at(static_cast<size_t>(size), ++turn % 2 == 0 ? vxtest::Guard::before : vxtest::Guard::behind);
  std::fill_n(buffer, size, Unit{0x7E});
  int64_t length = 0;
  const VXStatus status = write(buffer, size, &length);
  if (status != 0) return U"status";
  if (std::count(buffer + length, buffer + size, Unit{0x7E}) != size - length) return U"written behind the text";
  std::u32string text(buffer, buffer + length);
  text.erase(text.find_last_not_of(U' ') + 1);
  return text.erase(0, text.find_first_not_of(U' '));
}

/// One member in the flavour of the buffer.
template <class Plain, class Utf8>
auto either(Plain to_utf32, Utf8 to_utf8) {
  return [=](auto* buffer, auto... rest) {
    if constexpr (sizeof *buffer == 1) return to_utf8(buffer, rest...);
    else return to_utf32(buffer, rest...);
  };
}

struct Locales {
  Locales() { vxtest::set_name(same_groups.data.groupingPattern, U"3;3"); }
  vxtest::PlainLocale plain, same_groups;
};

/// In both flavours, in room for just the text and in more; blanks around it do not count.
template <class Write>
testing::AssertionResult is_the_same(Locales& locales, int64_t width, uint32_t flags, Write write) {
  const auto by = [&](vxtest::PlainLocale& locale, uint32_t more) {
    return [&locale, flags = flags | more, write](auto* buffer, int64_t size, int64_t* length) {
      return write(buffer, locale.get(), flags, size, length);
    };
  };
  const std::u32string wanted = written<VXChar>(most_room, by(locales.same_groups, NLS_FORMAT_LEFT));
  if (wanted == U"status") return testing::AssertionSuccess();  // what does not fit is refused in different ways
  for (const int64_t size : {std::max(width, static_cast<int64_t>(wanted.size())), most_room}) {
    for (const auto& text :
         {written<VXChar>(size, by(locales.plain, 0)), written<uint8_t>(size, by(locales.plain, 0))}) {
      if (text == wanted) continue;
      return testing::AssertionFailure() << "[" << vxtest::utf8(text) << "], not [" << vxtest::utf8(wanted)
                                         << "], width " << width << " size " << size << " flags " << std::hex << flags;
    }
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult double_is_the_same(Locales& locales, double value, int32_t width, int32_t decimals,
                                            uint32_t flags) {
  return is_the_same(locales, width, flags,
                     either(
                         [=](VXChar* buffer, VXLocale* locale, uint32_t all_flags, int64_t size, int64_t* length) {
                           return NLSDoubleFormat(locale, width, decimals, all_flags, buffer, size, length, value);
                         },
                         [=](uint8_t* buffer, VXLocale* locale, uint32_t all_flags, int64_t size, int64_t* length) {
                           return NLSDoubleFormatUWithExOpts(locale, width, decimals, all_flags, buffer, size, length,
                                                             nullptr, value);
                         }));
}

template <class Integer, class Plain, class Utf8>
testing::AssertionResult integer_is_the_same(Locales& locales, Integer value, int32_t width, uint32_t flags,
                                             Plain to_utf32, Utf8 to_utf8) {
  const auto call = [=](auto function) {
    return [=](auto* buffer, VXLocale* locale, uint32_t all_flags, int64_t size, int64_t* length) {
      return function(locale, value, width, 0, all_flags, buffer, size, length);
    };
  };
  return is_the_same(locales, width, flags, either(call(to_utf32), call(to_utf8)));
}

TEST(ShortRoad, GivesWhatTheLongOneGives) {
  Locales locales;
  std::mt19937_64 random{8};
  for (int i = 0; i < 60000; ++i) {
    const auto number = static_cast<int64_t>(random()) >> random() % 64;
    const int places = static_cast<int>(random() % 20);
    const auto above = static_cast<double>(number);
    const double short_value = above / std::pow(10.0, places);
    const double power = std::pow(10.0, static_cast<double>(places) - 6);
    const double values[] = {
        short_value,
        above + 0.5,
        std::nextafter(short_value, 0),
        std::nextafter(power, places % 2 == 0 ? 0 : INFINITY),
        std::ldexp(above, static_cast<int>(random() % 2100) - 1100),
        std::bit_cast<double>(random() & 0x000FFFFFFFFFFFFF),  // subnormal
        std::nextafter(1e15, 0),                               // has 15 digits, and 16 when it is rounded
    };
    const double value = values[static_cast<size_t>(i) % std::size(values)];
    const auto decimals = static_cast<int32_t>(random() % 18);
    const auto width = static_cast<int32_t>(random() % (i % 8 == 0 ? 301 : 33));
    for (const uint32_t flags : {NLS_FORMAT_FIXED, NLS_FORMAT_FIXED | NLS_FORMAT_GROUP, NLS_FORMAT_PLAIN,
                                 NLS_FORMAT_PLAIN | NLS_FORMAT_GROUP, 0u, NLS_FORMAT_GENERAL}) {
      ASSERT_TRUE(double_is_the_same(locales, value, width, decimals, flags)) << value << " decimals " << decimals;
    }
    for (const uint32_t flags : {0u, NLS_FORMAT_GROUP, NLS_FORMAT_PLUS | NLS_FORMAT_GROUP}) {
      const auto narrow = static_cast<int32_t>(number);
      ASSERT_TRUE(integer_is_the_same(locales, narrow, width, flags, NLSIntFormat, NLSIntFormatU));
      ASSERT_TRUE(
          integer_is_the_same(locales, static_cast<uint32_t>(narrow), width, flags, NLSUIntFormat, NLSUIntFormatU));
      ASSERT_TRUE(integer_is_the_same(locales, number, width, flags, NLSLongFormat, NLSLongFormatU));
      ASSERT_TRUE(
          integer_is_the_same(locales, static_cast<uint64_t>(number), width, flags, NLSULongFormat, NLSULongFormatU));
    }
  }
}

}  // namespace
