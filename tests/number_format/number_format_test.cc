// Numbers written in both flavours, between pages that may not be touched: each as the model writes it.
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <random>

#include "tests/number_format/models.h"
#include "tests/support/guard_page.h"
#include "tests/support/null_arguments.h"
#include "tests/support/plain_locale.h"
#include "vxnls/bytes.h"
#include "vxnls/number_parse.h"

namespace vxtest {

namespace {

/// The locales of these tests: marks, and a pattern as doubles and as integers read it.
struct Convention {
  const char32_t* pattern;
  std::vector<int> groups, groups_of_integers;
  char32_t point = U'.', separator = U',';
};

const Convention conventions[] = {
    {U"3", {3}, {3}},
    {U"3;2", {3, 2}, {3, 2}},
    {U"2;3;4", {2, 3, 4}, {2, 3, 4}, U',', U'.'},
    {U"-", {3}, {-1}, U',', U'\u00A0'},
    {U"3;-", {3, -1}, {3, -1}, U'.', U'\''},
    {U"", {0}, {-1}},
    {U"3;0", {3}, {3, -1}},  // to integers a size of 0 never comes, so the rest is one group
    {U"1", {1}, {1}, U'\u066B', U'\u066C'},
    {U"x", {3}, {-1}, U'\u2396', U'.'},
    {U"12", {12}, {1, 2}, U'.', U'\U0001F600'},
    {U"/98:", {3}, {9, 8}},  // the neighbours of the digits are passed over
    {U"111111111111111111111111111111111111111111111111111111111111", {3}, {1}},
};

constexpr int64_t most_room = 1100;

struct Call {
  double value;
  int32_t width, decimals;
  uint32_t flags;
  int64_t size = most_room;
};

template <class Unit>
constexpr auto pick(auto in_utf32, auto in_utf8) {
  if constexpr (sizeof(Unit) == 1) return in_utf8;
  else return in_utf32;
}

class Writer {
 public:
  explicit Writer(const Convention& convention = conventions[0]) : convention_(convention) {
    set_name(locale.data.groupingPattern, convention.pattern);
    locale.data.decimalPoint = convention.point;
    locale.data.groupSeparator = convention.separator;
  }

  /// What a call writes between the pages. Only a missing value may leave blanks behind its text.
  template <class Unit>
  Written call(int64_t size, auto function, bool may_blank = false) const {
    static GuardedBuffer<Unit> memory(most_room);
    static unsigned turn = 0;
    const auto room = static_cast<size_t>(std::max<int64_t>(size, 0));
    Unit* const buffer = memory.at(room, ++turn % 2 == 0 ? Guard::before : Guard::behind);
    std::fill_n(buffer, room, Unit{'~'});
    int64_t length = -7;
    const VXStatus status = function(buffer, size, &length);
    const size_t end = length == -7 ? 0 : static_cast<size_t>(length);
    if (end > room) return {status, "bad length"};
    const auto is_free = [&](Unit unit) { return unit == '~' || (may_blank && unit == ' '); };
    if (!std::all_of(buffer + end, buffer + room, is_free)) return {status, "written behind the text"};
    return {status, length == -7 ? untouched : std::string(buffer, buffer + end)};
  }

  template <class Unit>
  Written write(const Call& c, const NLSDoubleExOpts* extended = nullptr) const {
    const auto by = [&](Unit* buffer, int64_t size, int64_t* length) {
      const auto function = pick<Unit>(NLSDoubleFormatWithExOpts, NLSDoubleFormatUWithExOpts);
      return function(locale.get(), c.width, c.decimals, c.flags, buffer, size, length, extended, c.value);
    };
    return call<Unit>(c.size, by, std::isnan(c.value));
  }

  /// Both flavours of a double, as the model says; gives what that says of UTF-32.
  Written check(const Call& c) const {
    const auto as_modelled = [&]<class Unit>(Unit) {
      Written expected =
          DoubleModel(marks<Unit>(convention_.groups)).format(c.value, c.width, c.decimals, c.flags, c.size);
      EXPECT_EQ(write<Unit>(c), expected)
          << fmt::format("{:a} width {} decimals {} flags {:x} size {}", c.value, c.width, c.decimals, c.flags, c.size);
      return expected;
    };
    as_modelled(uint8_t{});
    return as_modelled(VXChar{});
  }

  template <class Value>
  void check_integer(auto in_utf32, auto in_utf8, Value value, int width, int precision, uint32_t flags,
                     int64_t size) const {
    const auto as_modelled = [&]<class Unit>(Unit) {
      const auto by = [&](Unit* buffer, int64_t room, int64_t* length) {
        return pick<Unit>(in_utf32, in_utf8)(locale.get(), value, width, precision, flags, buffer, room, length);
      };
      EXPECT_EQ(call<Unit>(size, by),
                integer_model(marks<Unit>(convention_.groups_of_integers), value, width, precision, flags, size))
          << fmt::format("{} width {} precision {} flags {:x} size {}", value, width, precision, flags, size);
    };
    as_modelled(VXChar{});
    as_modelled(uint8_t{});
  }

  mutable PlainLocale locale;

 private:
  /// In UTF-32 the low byte stands for a mark; tests/number_format/locales_host_test.cc looks at them whole.
  template <class Unit>
  Marks marks(const std::vector<int>& groups) const {
    const auto mark = [](char32_t c) {
      return sizeof(Unit) == 1 ? utf8({&c, 1}) : std::string(1, static_cast<char>(c));
    };
    return {mark(convention_.point), mark(convention_.separator), groups};
  }

  const Convention& convention_;
};

/// Decimals of everyday magnitudes and of all, halves of a unit of some place, next to powers of ten; and anything.
double any_value(std::mt19937_64& random) {
  const auto below = [&](uint64_t n) { return random() % n; };
  const std::string any = std::to_string(random());
  const std::string digits = std::array{any.substr(0, 1 + below(17)), any.substr(0, 1 + below(4)) + "5",
                                        std::string(1 + below(17), '9'), std::string("1")}[below(4)];
  const int64_t exponent = static_cast<int64_t>(below(4) != 0 ? below(34) : 300 - below(632)) - 13 - ssize(digits);
  const double rare[] = {HUGE_VAL, 0, std::nextafter(0.95, 0), std::nextafter(1e15, 0),
                         std::bit_cast<double>(0xFFFFFF0000000000 ^ below(32) << 40)};
  const double others[] = {static_cast<double>(random() >> below(64)), std::bit_cast<double>(random() >> below(64)),
                           std::ldexp(static_cast<double>(random() >> 11), -static_cast<int>(below(120))),
                           rare[below(5)]};
  double value =
      below(3) != 0 ? std::strtod(fmt::format("{}e{}", digits, exponent).c_str(), nullptr) : others[below(4)];
  for (uint64_t steps = below(24); steps > 20; --steps) value = std::nextafter(value, HUGE_VAL);
  return below(3) == 0 ? -value : value;
}

constexpr uint32_t fixed = NLS_FORMAT_FIXED, in_plain = NLS_FORMAT_PLAIN, plus = NLS_FORMAT_PLUS,
                   blank = NLS_FORMAT_BLANK, left = NLS_FORMAT_LEFT, pad = NLS_FORMAT_ZERO_PAD,
                   groups = NLS_FORMAT_GROUP, octal = NLS_FORMAT_OCTAL, octal_0 = NLS_FORMAT_OCTAL_PREFIX,
                   lower = NLS_FORMAT_HEX_LOWER, upper = NLS_FORMAT_HEX_UPPER, prefix = NLS_FORMAT_HEX_PREFIX;

/// Five million fixed fields, and a million numbers in free mode: in room for just the text, in more and in less.
TEST(DoubleFormat, AgreesWithTheModel) {
  constexpr uint32_t fields[] = {fixed, NLS_FORMAT_BEST, NLS_FORMAT_FIXED_EXPONENT, NLS_FORMAT_SIGNIFICANT};
  constexpr uint32_t free_forms[] = {0,        0x0400,   NLS_FORMAT_GENERAL,  NLS_FORMAT_KEEP_ZEROS, 0x0020,
                                     in_plain, in_plain, NLS_FORMAT_FRACTION, NLS_FORMAT_INTEGER};
  std::mt19937_64 random(20240611);
  const auto one_of = [&](const auto& from) { return from[random() % std::size(from)]; };
  const auto between = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
  for (int turn = 0; turn < 120; ++turn) {
    const Writer writer(conventions[static_cast<size_t>(turn) % std::size(conventions)]);
    for (int i = 0; i < 50'000; ++i) {
      const bool is_free = i % 6 == 0;
      Call c{any_value(random), between(-2, 34), random() % 16 == 0 ? NLS_BEST_DECIMALS : between(-3, 20), 0};
      if (is_free && random() % 8 == 0) c.width = between(-300, 300);
      if (is_free && random() % 32 == 0) c.decimals = between(0, 360);
      if (random() % 8 != 0) c.size = 400;
      for (const uint32_t option : {groups, plus, left, pad, blank}) c.flags |= random() % 4 == 0 ? option : 0;
      c.flags |= is_free ? one_of(free_forms) : one_of(fields) | (random() % 16 == 0 ? one_of(fields) : 0);
      // Now and then in room for just what is written, or in any.
      if (random() % 16 == 0) c.size = static_cast<int64_t>(writer.check(c).second.size());
      else if (random() % 8 == 0) c.size = between(-1, 34);
      writer.check(c);
      if (testing::Test::HasFailure()) return;
    }
  }
}

// What stands for the ordinary missing value: never a part of its bytes. And quirks kept on purpose.
TEST(DoubleFormat, Texts) {
  const Writer writer;
  const NLSDoubleExOpts star{1, {}, '*'}, none{1, {}, 0}, unset{0, {}, '*'}, dash{1, {}, 0x2014};
  const double ordinary = qmMissVal('.');
  EXPECT_EQ(writer.write<VXChar>({ordinary, 0, 0, 0}, &star), Written(0, "*"));
  EXPECT_EQ(writer.write<VXChar>({qmMissVal('B'), 0, 0, 0}, &star), Written(0, "B"));
  EXPECT_EQ(writer.write<VXChar>({ordinary, 0, 0, 0}, &none), Written(VX_E_MISSCHAR, "."));
  EXPECT_EQ(writer.write<VXChar>({ordinary, 0, 0, 0}, &unset), Written(0, "."));
  EXPECT_EQ(writer.write<uint8_t>({ordinary, 4, 0, fixed}, &dash), Written(0, " —"));
  EXPECT_EQ(writer.write<uint8_t>({ordinary, 1, 0, fixed}, &dash), Written(0, "—"));
  EXPECT_EQ(writer.check({0.9499999999999999, 5, 1, fixed}), Written(0, "  1.0"));  // rounded up, to just 1
  EXPECT_EQ(writer.check({5e-324, 0, 350, NLS_FORMAT_EXPONENT}), Written(VX_E_DIRECTIVE, ""));
  EXPECT_EQ(writer.check({-HUGE_VAL, 3, 2, fixed}), Written(VX_E_TRUNCATED, "***"));
}

TEST(DoubleFormat, PercentagesAndCurrency) {
  const Writer writer;
  const std::string dollars(60, '$');
  // The text, and what of it was added to the number.
  const std::tuple<decltype(NLSPercentFormat)*, Call, std::string, std::string> rows[] = {
      {NLSPercentFormat, {-0.125, 0, 1, 1}, "(12.5%)", ")%"},
      {NLSPercentFormat, {-0.125, 10, 1, 1}, "(   12.5%)", ")%"},
      {NLSPercentFormat, {-0.125, 10, 1, 0xFFFFFFFE}, "    -12.5%", "%"},
      {NLSCurrencyFormat, {-1234.5, 12, 2, 0}, "  $-1,234.50", "$"},
      {NLSCurrencyFormat, {1234.5, 0, 2, 0}, "$1234.50", "$"},  // no separators in what the symbol leaves of nothing
      {NLSCurrencyFormat, {1234.5, 8, 2, 0}, "$1234.50", "$"},  // they do not fit: no failure
      {NLSCurrencyFormat, {1234.5, 12, 2, 1}, "      $1,235", "$"},
      {NLSCurrencyFormat, {5, -8, 1, 0}, "$5.0      ", "$"},
      {NLSCurrencyFormat, {7.5, 0, 2, 0}, "7.50", ""},
      {NLSCurrencyFormat, {1.5, 64, 2, 0}, dollars + "1.50", dollars}};
  for (const auto& [function, c, text, added] : rows) {
    set_name(writer.locale.data.currencySymbol, utf32(added));
    for (int64_t size = -1; size <= ssize(text); ++size) {
      int64_t told = 0;
      const auto write = std::bind_front(function, writer.locale.get(), c.width, c.decimals, c.flags);
      const auto [status, shown] =
          writer.call<VXChar>(size, [&, value = c.value](VXChar* to, int64_t room, int64_t* length) {
            const VXStatus of_call = write(to, room, &told, value);
            *length = of_call == 0 ? told : std::max<int64_t>(room, 0);
            return of_call;
          });
      // After a failure what is added counts, but is not written.
      EXPECT_EQ(std::pair(status, told),
                std::pair(size < ssize(text) ? VX_E_TRUNCATED : 0, std::max(size, ssize(added))));
      EXPECT_TRUE(status != 0 || shown == text) << shown;
    }
  }
}

/// Signed integers pass over other bases, unsigned ones over signs.
constexpr uint32_t of_integers[][7] = {{0, groups, plus, blank, left | plus, pad, pad | blank | groups},
                                       {pad | left | groups, octal, octal | octal_0 | left, octal | prefix | pad,
                                        lower | prefix | groups, upper | prefix | pad, lower | upper | prefix}};

TEST(IntegerFormat, EverySixteenBitValueWithEveryWidth) {
  const Writer writer;
  for (int32_t value = -32768; value <= 65535 && !testing::Test::HasFailure(); ++value) {
    for (int width = 0; width <= 24; ++width) {
      // Precision 0, which lets zeros pad, and one other by turns: 6 (asked for by -1), 2, 5, 8.
      const int precision = (value + width) % 2 == 0 ? 0 : std::abs(value + width) / 2 % 4 * 3 - 1;
      const auto whole = static_cast<uint32_t>(value);
      for (const auto& row : of_integers)
        for (const uint32_t flags : row) {
          if (value < 32768) writer.check_integer(NLSIntFormat, NLSIntFormatU, value, width, precision, flags, 40);
          if (value >= 0) writer.check_integer(NLSUIntFormat, NLSUIntFormatU, whole, width, precision, flags, 40);
        }
    }
  }
}

/// The borders of a type, and every power of ten and two, +-2; in every convention, as wide and precise as it may be,
/// in little room; and read back.
template <class Value>
void check_borders(auto in_utf32, auto in_utf8, auto reader) {
  __extension__ using Wide = __int128;
  std::mt19937_64 random(1);
  const auto one_of = [&](std::initializer_list<int> from) { return *(from.begin() + random() % from.size()); };
  for (const Convention& convention : conventions) {
    const Writer writer(convention);
    const auto check_around = [&](Wide centre) {
      for (Wide wanted = centre - 2; wanted <= centre + 2; ++wanted) {
        const auto value = static_cast<Value>(wanted);
        if (value != wanted) continue;
        for (const auto& row : of_integers)
          for (const uint32_t flags : row)
            for (const int width : {0, 1, -19, 20, 33, -40, 64, 65, 300, INT32_MIN})
              writer.check_integer(in_utf32, in_utf8, value, width, one_of({0, 0, 1, 25, -3, INT32_MAX}), flags,
                                   one_of({-1, 0, 19, 26, 64, 64, 300, 301}));
        VXChar text[128];
        int64_t length = 0;
        Value read{};
        uint64_t consumed = 0;
        in_utf32(writer.locale.get(), value, 0, 1, NLS_FORMAT_GROUP, text, 128, &length);
        EXPECT_EQ(reader(writer.locale.get(), text, length, 0, &read, &consumed), 0u);
        EXPECT_EQ(read, value);
      }
    };
    check_around(std::numeric_limits<Value>::min());
    for (const int base : {2, 10})
      for (Wide power = 1; power <= Wide{std::numeric_limits<Value>::max()} + 1; power *= base)
        for (const int sign : {1, -1}) check_around(power * sign);
    if (testing::Test::HasFailure()) return;
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

TEST(NumberFormat, NullsAndNoLocale) {
  PlainLocale plain;
  VXChar units[16];
  uint8_t bytes[16];
  int64_t length = 0;
  VX_EXPECT_NULLS_REFUSED(std::bind_front(NLSDoubleFormat, plain.get()), 9, 1, 0u, units, 16, &length, 1234.5);
  VX_EXPECT_NULLS_REFUSED(std::bind_front(NLSPercentFormat, plain.get()), 9, 1, 0u, units, 16, &length, 1234.5);
  VX_EXPECT_NULLS_REFUSED(NLSCurrencyFormat, plain.get(), 9, 1, 0u, units, 16, &length, 1234.5);
  VX_EXPECT_NULLS_REFUSED(std::bind_front(NLSIntFormat, plain.get()), 1, 0, 0, 0u, units, 4, &length);
  VX_EXPECT_NULLS_REFUSED(vxzFDblToBuff, units, 8, &length, &length, 0.5);
  const auto integer_digits = [](VXChar* to, int64_t* digits) { return vxzIDblToBuff(12, to, 8, digits, nullptr); };
  VX_EXPECT_NULLS_REFUSED(integer_digits, units, &length);
  EXPECT_EQ(integer_digits(units, &length), 0u);
  VXLocale without_data{};
  for (VXLocale* const none : {static_cast<VXLocale*>(nullptr), &without_data}) {
    for (const uint32_t flags : {in_plain | groups, fixed | groups}) {
      EXPECT_EQ(NLSDoubleFormatUWithExOpts(none, 9, 1, flags, bytes, 16, &length, nullptr, 1234.5), 0u);
      EXPECT_EQ(std::string(bytes, bytes + length), "  1,234.5");
    }
    EXPECT_EQ(NLSIntFormat(none, 1234, 0, 0, groups, units, 4, &length), 0u);  // no locale, no groups
    EXPECT_EQ(length, 4);
  }
}

/// Both parts of a value, of its fraction as many digits as there is room for.
void check_digits(double value, int64_t room) {
  static const Writer writer;
  const Exact exact(value);
  int64_t needed = -1, zeros = -1;
  const auto whole = [&](VXChar* buffer, int64_t size, int64_t* count) {
    return vxzIDblToBuff(value, buffer, size, count, &needed);
  };
  const auto fraction = [&](VXChar* buffer, int64_t size, int64_t* count) {
    return vxzFDblToBuff(buffer, size, count, &zeros, value);
  };
  const int64_t count = ssize(exact.whole);
  EXPECT_EQ(writer.call<VXChar>(count, whole), Written(0, exact.whole)) << value;
  EXPECT_EQ(needed, count);
  if (count > 0) {
    EXPECT_EQ(writer.call<VXChar>(count - 1, whole), Written(VX_E_DIGITS, "")) << value;
  }
  const std::string expected =
      value == 0 ? "0" : exact.fraction.substr(static_cast<size_t>(exact.zeros), static_cast<size_t>(room));
  EXPECT_EQ(writer.call<VXChar>(room, fraction), Written(0, expected)) << value;
  EXPECT_EQ(zeros, room > 0 ? exact.zeros : 0);
}

/// Five million, and every power of two and ten with its neighbours.
TEST(Digits, AgreeWithExactArithmeticOverAllExponents) {
  std::mt19937_64 random(20240307);
  for (int i = 0; i < 5'000'000 && !testing::Test::HasFailure(); ++i) {
    // Every exponent in turn; a random mantissa, one in four with few bits.
    const uint64_t few = i % 4 == 3 ? ~uint64_t{0} << random() % 52 : ~uint64_t{0};
    const uint64_t mantissa = random() >> 12 & few;
    // The whole expansion of a subnormal has 1074 digits; most uses ask for few.
    check_digits(std::bit_cast<double>(static_cast<uint64_t>(i % 2047) << 52 | mantissa), i % 16 == 0 ? most_room : 20);
  }
  for (int e = -1074; e < 1024; ++e)
    for (const double value :
         {std::ldexp(1.0, e), std::strtod(fmt::format("1e{}", std::min(e % 324, 308)).c_str(), nullptr)})
      for (const double near : {std::nextafter(value, 0), value, -std::nextafter(value, 1e300)})
        check_digits(near, most_room);
  for (const int64_t room : {0, 1, 4}) check_digits(0.0009765625, room);
  VXChar buffer[1];
  int64_t count = 0, zeros = 0;
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    EXPECT_EQ(vxzIDblToBuff(bad, buffer, 1, &count, nullptr), VX_E_RANGE);
    EXPECT_EQ(vxzFDblToBuff(buffer, 1, &count, &zeros, bad), VX_E_RANGE);
  }
}

}  // namespace

}  // namespace vxtest
