// The integer formatters against a printer of their rules that works on strings, forwards, without arithmetic tricks.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/plain_locale.h"
#include "vxnls/number_format.h"
#include "vxnls/number_parse.h"

namespace {

using vxtest::PlainLocale;

__extension__ using Wide = __int128;
__extension__ using UWide = unsigned __int128;

struct Printed {
  VXStatus status;
  std::u32string text;
  bool operator==(const Printed&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Printed& printed) {
  return out << std::hex << printed.status << " [" << vxtest::utf8(printed.text) << "]";
}

/// Digits of the magnitude, in the base that the flags ask of an unsigned type.
std::string digits_of(UWide magnitude, uint32_t flags, bool is_signed) {
  const bool hex = !is_signed && (flags & (NLS_FORMAT_HEX_LOWER | NLS_FORMAT_HEX_UPPER)) != 0;
  const unsigned base = hex ? 16 : !is_signed && (flags & NLS_FORMAT_OCTAL) != 0 ? 8 : 10;
  const char* alphabet = (flags & NLS_FORMAT_HEX_LOWER) != 0 ? "0123456789abcdef" : "0123456789ABCDEF";
  std::string digits;
  for (; magnitude != 0; magnitude /= base) digits.insert(0, 1, alphabet[magnitude % base]);
  return digits;
}

/// `widths` gives the units of a character in the flavour that is printed: sizes are held against it.
Printed expected(Wide value, bool is_signed, int width, int precision, uint32_t flags, int64_t size,
                 const std::vector<int>& groups, char32_t separator, int64_t separator_units) {
  const bool negative = value < 0;
  const int64_t least = precision < 0 ? 6 : precision;
  const int64_t field = std::abs(static_cast<int64_t>(width));
  if (least > size || field > size) return {VX_E_TRUNCATED, U""};
  const std::string digits =
      digits_of(negative ? -static_cast<UWide>(value) : static_cast<UWide>(value), flags, is_signed);
  std::u32string text(digits.begin(), digits.end());
  const uint32_t bases = NLS_FORMAT_HEX_LOWER | NLS_FORMAT_HEX_UPPER | NLS_FORMAT_OCTAL;
  int64_t separators = 0;
  if ((flags & NLS_FORMAT_GROUP) != 0 && (flags & bases) == 0 && !groups.empty()) {
    size_t group = 0;
    auto at = static_cast<int64_t>(text.size());
    while (groups[group] > 0 && at > groups[group]) {
      at -= groups[group];
      text.insert(static_cast<size_t>(at), 1, separator);
      ++separators;
      if (group + 1 < groups.size()) ++group;
    }
  }
  const auto units = [&] { return static_cast<int64_t>(text.size()) + separators * (separator_units - 1); };
  const auto shown = static_cast<int64_t>(digits.size());
  if (shown < least) text.insert(0, static_cast<size_t>(least - shown), U'0');
  std::u32string sign;
  std::u32string prefix;
  if (is_signed) {
    sign = negative ? U"-" : (flags & NLS_FORMAT_PLUS) != 0 ? U"+" : (flags & NLS_FORMAT_BLANK) != 0 ? U" " : U"";
  } else if ((flags & (NLS_FORMAT_HEX_LOWER | NLS_FORMAT_HEX_UPPER)) != 0) {
    if ((flags & NLS_FORMAT_HEX_PREFIX) != 0) prefix = (flags & NLS_FORMAT_HEX_LOWER) != 0 ? U"0x" : U"0X";
  } else if ((flags & NLS_FORMAT_OCTAL) != 0 && (flags & NLS_FORMAT_OCTAL_PREFIX) != 0) {
    prefix = U"0";
  }
  const bool left = (flags & NLS_FORMAT_LEFT) != 0;
  if ((flags & NLS_FORMAT_ZERO_PAD) != 0 && !left && least == 0) {
    const int64_t missing = field - units() - static_cast<int64_t>(sign.size());
    if (missing > 0) text.insert(0, static_cast<size_t>(missing), U'0');
  }
  text = sign + prefix + text;
  const int64_t blanks = field - units();
  if (blanks > 0) text.insert(left ? text.size() : 0, static_cast<size_t>(blanks), U' ');
  if (units() > size) return {VX_E_TRUNCATED, U""};
  return {0, text};
}

constexpr int64_t room = 64;

template <class Unit, class Function, class Value>
Printed print(Function function, PlainLocale& locale, Value value, int width, int precision, uint32_t flags,
              int64_t size) {
  Unit buffer[room + 1];
  std::fill(std::begin(buffer), std::end(buffer), Unit{0x7E});
  int64_t length = -7;
  const VXStatus status = function(locale.get(), value, width, precision, flags, buffer, size, &length);
  for (int64_t i = status == 0 ? length : 0; i <= room; ++i) {
    if (buffer[i] != 0x7E) return {status, U"(written outside)"};
  }
  if (status != 0) return {status, length == -7 ? U"" : U"(length written)"};
  if constexpr (sizeof(Unit) == 1) {
    return {status, vxtest::utf32(std::string(reinterpret_cast<char*>(buffer), static_cast<size_t>(length)))};
  } else {
    return {status, std::u32string(buffer, buffer + length)};
  }
}

/// Both flavours of one member over one row; false after the first difference.
template <class Plain, class Utf8, class Value>
bool agrees(Plain plain, Utf8 utf8, PlainLocale& locale, Value value, int width, int precision, uint32_t flags,
            int64_t size, const std::vector<int>& groups) {
  const char32_t separator = locale.data.groupSeparator;
  const int64_t separator_units = separator < 0x80 ? 1 : separator < 0x800 ? 2 : 3;
  const bool is_signed = std::is_signed_v<Value>;
  const Printed wide = print<VXChar>(plain, locale, value, width, precision, flags, size);
  const Printed narrow = print<uint8_t>(utf8, locale, value, width, precision, flags, size);
  const Printed wide_expected = expected(value, is_signed, width, precision, flags, size, groups, separator, 1);
  const Printed narrow_expected = separator_units == 1 ? wide_expected
                                                       : expected(value, is_signed, width, precision, flags, size,
                                                                  groups, separator, separator_units);
  if (wide == wide_expected && narrow == narrow_expected) return true;
  SCOPED_TRACE(testing::Message() << "width " << width << " precision " << precision << " flags " << std::hex << flags
                                  << " size " << std::dec << size << " value " << static_cast<double>(value));
  EXPECT_EQ(wide, wide_expected);
  EXPECT_EQ(narrow, narrow_expected);
  return false;
}

constexpr uint32_t signed_flags[] = {0,
                                     NLS_FORMAT_PLUS,
                                     NLS_FORMAT_BLANK,
                                     NLS_FORMAT_GROUP,
                                     NLS_FORMAT_LEFT | NLS_FORMAT_PLUS,
                                     NLS_FORMAT_ZERO_PAD,
                                     NLS_FORMAT_ZERO_PAD | NLS_FORMAT_BLANK | NLS_FORMAT_GROUP,
                                     NLS_FORMAT_ZERO_PAD | NLS_FORMAT_LEFT | NLS_FORMAT_GROUP,
                                     NLS_FORMAT_OCTAL | NLS_FORMAT_OCTAL_PREFIX};
constexpr uint32_t unsigned_flags[] = {0,
                                       NLS_FORMAT_PLUS | NLS_FORMAT_BLANK,
                                       NLS_FORMAT_GROUP,
                                       NLS_FORMAT_HEX_LOWER | NLS_FORMAT_HEX_PREFIX | NLS_FORMAT_GROUP,
                                       NLS_FORMAT_HEX_UPPER | NLS_FORMAT_HEX_PREFIX | NLS_FORMAT_ZERO_PAD,
                                       NLS_FORMAT_HEX_LOWER | NLS_FORMAT_HEX_UPPER | NLS_FORMAT_HEX_PREFIX,
                                       NLS_FORMAT_OCTAL,
                                       NLS_FORMAT_OCTAL | NLS_FORMAT_OCTAL_PREFIX | NLS_FORMAT_LEFT,
                                       NLS_FORMAT_OCTAL | NLS_FORMAT_HEX_PREFIX | NLS_FORMAT_ZERO_PAD};

TEST(IntegerFormat, EverySixteenBitValueWithEveryWidth) {
  PlainLocale locale;
  for (int32_t value = -32768; value <= 65535; ++value) {
    for (int width = 0; width <= 24; ++width) {
      for (size_t i = 0; i < std::size(signed_flags); ++i) {
        // Precision 0, which lets zeros pad, and one other by turns: 6 (asked for by -1), 2, 5, 8.
        const int precision = (value + width) % 2 == 0 ? 0 : std::abs(value + width) / 2 % 4 * 3 - 1;
        if (!agrees(NLSIntFormat, NLSIntFormatU, locale, value, width, precision, signed_flags[i], room, {3})) return;
        if (value >= 0 && !agrees(NLSUIntFormat, NLSUIntFormatU, locale, static_cast<uint32_t>(value), width, precision,
                                  unsigned_flags[i], room, {3})) {
          return;
        }
      }
    }
  }
}

/// The borders of a type, and every power of ten, two less to two more.
template <class Value>
std::vector<Value> border_values() {
  std::vector<Value> values;
  const auto around = [&](Wide centre) {
    for (int i = -2; i <= 2; ++i) {
      const Wide value = centre + i;
      if (value >= std::numeric_limits<Value>::min() && value <= std::numeric_limits<Value>::max()) {
        values.push_back(static_cast<Value>(value));
      }
    }
  };
  around(std::numeric_limits<Value>::min());
  around(std::numeric_limits<Value>::max());
  for (Wide power = 1; power <= std::numeric_limits<Value>::max(); power *= 10) {
    around(power);
    around(-power);
  }
  return values;
}

template <class Value, class Plain, class Utf8, class Reader>
void check_borders(Plain plain, Utf8 utf8, Reader reader) {
  PlainLocale locale;
  locale.data.groupSeparator = 0x2019;  // three bytes
  for (const Value value : border_values<Value>()) {
    for (const uint32_t flags : std::is_signed_v<Value> ? signed_flags : unsigned_flags) {
      for (const int width : {0, 1, -19, 20, 33, -40, 64, 65}) {
        for (const int precision : {0, 1, 25, -3}) {
          for (const int64_t size : {int64_t{0}, int64_t{19}, int64_t{26}, room}) {
            if (!agrees(plain, utf8, locale, value, width, precision, flags, size, {3})) return;
          }
        }
      }
    }
    VXChar text[room];
    int64_t length = 0;
    Value read{};
    uint64_t consumed = 0;
    ASSERT_EQ(plain(locale.get(), value, 0, 1, NLS_FORMAT_GROUP, text, room, &length), 0u);
    EXPECT_EQ(reader(locale.get(), text, length, 0, &read, &consumed), 0u);
    EXPECT_EQ(read, value);
  }
}

TEST(IntegerFormat, BordersOfEveryMember) {
  check_borders<int32_t>(NLSIntFormat, NLSIntFormatU, NLSBufToInt);
  check_borders<int32_t>(NLSIntfastFormat, NLSIntfastFormatU, NLSBufToIntfast);
  check_borders<uint32_t>(NLSUIntFormat, NLSUIntFormatU, NLSBufToUInt);
  check_borders<uint32_t>(NLSUintfastFormat, NLSUintfastFormatU, NLSBufToUintfast);
  check_borders<int64_t>(NLSLongFormat, NLSLongFormatU, NLSBufToLong);
  check_borders<int64_t>(NLSIntmaxFormat, NLSIntmaxFormatU, NLSBufToIntmax);
  check_borders<uint64_t>(NLSULongFormat, NLSULongFormatU, NLSBufToULong);
  check_borders<uint64_t>(NLSUintmaxFormat, NLSUintmaxFormatU, NLSBufToUintmax);
  check_borders<uint64_t>(NLSPointerFormat, NLSPointerFormatU, NLSBufToUintmax);
}

TEST(IntegerFormat, GroupingPatterns) {
  const struct {
    std::u32string pattern;
    std::vector<int> sizes;
  } cases[] = {
      {U"3", {3}},       {U"3;2", {3, 2}},
      {U"/98:", {9, 8}},  // the neighbours of the digits are passed over
      {U"2", {2}},       {U"-", {-1}},
      {U"3-", {3, -1}},  {U"1234", {1, 2, 3, 4}},
      {U"3;0", {3, 0}},  // a size of 0 never comes, so the rest is one group
      {U"", {}},         {std::u32string(60, U'1'), std::vector<int>(60, 1)},
  };
  for (const auto& c : cases) {
    PlainLocale locale;
    vxtest::set_name(locale.data.groupingPattern, c.pattern);
    for (const int64_t value : {int64_t{0}, int64_t{123}, int64_t{1234}, int64_t{-12345678}, INT64_MIN}) {
      SCOPED_TRACE(vxtest::utf8(c.pattern));
      if (!agrees(NLSLongFormat, NLSLongFormatU, locale, value, 0, 1, NLS_FORMAT_GROUP, room, c.sizes)) return;
    }
  }
}

TEST(IntegerFormat, NullPointersAndNegativeSizes) {
  PlainLocale locale;
  VXChar text[4];
  int64_t length = 0;
  EXPECT_EQ(NLSIntFormat(locale.get(), 1, 0, 0, 0, nullptr, 4, &length), VX_E_NULL);
  EXPECT_EQ(NLSIntFormat(locale.get(), 1, 0, 0, 0, text, 4, nullptr), VX_E_NULL);
  EXPECT_EQ(NLSIntFormat(locale.get(), 1, 0, 0, 0, text, -1, &length), VX_E_TRUNCATED);
  EXPECT_EQ(NLSIntFormat(locale.get(), 1, std::numeric_limits<int32_t>::min(), 0, 0, text, 4, &length), VX_E_TRUNCATED);
  VXLocale without_data{};
  for (VXLocale* const none : {static_cast<VXLocale*>(nullptr), &without_data}) {
    EXPECT_EQ(NLSIntFormat(none, 1234, 0, 0, NLS_FORMAT_GROUP, text, 4, &length), 0u);  // no locale, no groups
    EXPECT_EQ(length, 4);
  }
}

}  // namespace
