// The fixed field of doubles, both flavours, against a slow model on random values, widths, decimals and options.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <random>

#include "tests/number_format/fixed_field_model.h"
#include "tests/support/plain_locale.h"

namespace {

using vxtest::Field;
using vxtest::FixedFieldModel;

constexpr size_t room = 40;

template <class Unit, class Function>
Field call(Function function, int64_t size) {
  Unit buffer[room];
  std::fill(std::begin(buffer), std::end(buffer), Unit{'~'});
  int64_t length = -7;
  const VXStatus status = function(buffer, size, &length);
  for (size_t i = size < 0 ? 0 : static_cast<size_t>(size); i < room; ++i) {
    if (buffer[i] != '~') return {status, "written outside"};
  }
  if (length == -7) return {status, buffer[0] == '~' ? "" : "text without a length", false};
  if (length < 0 || length > static_cast<int64_t>(room)) return {status, "bad length"};
  std::string text;
  for (int64_t i = 0; i < length; ++i) {
    if (buffer[i] < 0x80 || sizeof(Unit) == 1) text += static_cast<char>(buffer[i]);
    else text += vxtest::utf8(std::u32string(1, static_cast<char32_t>(buffer[i])));
  }
  return {status, text};
}

class Values {
 public:
  explicit Values(uint64_t seed) : random_(seed) {}

  uint64_t next() { return random_(); }
  int64_t between(int64_t low, int64_t high) {
    return low + static_cast<int64_t>(random_() % static_cast<uint64_t>(high - low + 1));
  }

  double value() {
    double value = kind();
    for (int64_t steps = between(0, 7) ? 0 : between(1, 3); steps > 0; --steps) value = std::nextafter(value, HUGE_VAL);
    return random_() % 3 == 0 ? -value : value;
  }

 private:
  double kind() {
    switch (random_() % 10) {
      case 0: return std::bit_cast<double>(random_());
      case 1: return static_cast<double>(between(0, 9'999'999)) / power(between(0, 10));
      case 2:  // halves of a unit of some decimal
        return (static_cast<double>(between(0, 9999)) + 0.5) / power(between(0, 12));
      case 3: return decimal(between(1, 17), between(-20, 34));
      case 4: return decimal(between(1, 4), between(-324, 308));
      case 5: {  // next to a power of ten, from below: nines
        const std::string nines(static_cast<size_t>(between(1, 17)), '9');
        return std::strtod((nines + "e" + std::to_string(between(-24, 16))).c_str(), nullptr);
      }
      case 6: return std::strtod(("1e" + std::to_string(between(-324, 308))).c_str(), nullptr);
      case 7: return static_cast<double>(random_() >> between(0, 63));
      case 8:  // random digits, magnitudes of everyday
        return std::ldexp(static_cast<double>(random_() >> 11), static_cast<int>(between(-80, 40)));
      default: return random_() % 8 == 0 ? special() : std::bit_cast<double>(random_() >> between(12, 63));
    }
  }

  double decimal(int64_t digits, int64_t exponent) {
    return std::strtod(
        (std::to_string(random_() % static_cast<uint64_t>(power(digits))) + "e" + std::to_string(exponent - digits))
            .c_str(),
        nullptr);
  }

  double special() {
    switch (random_() % 4) {
      case 0: return HUGE_VAL;
      case 1: return 0;
      case 2: return std::nextafter(0.95, 0);  // rounds to just 1 with one decimal
      default:
        return std::bit_cast<double>(uint64_t{0xFFFF0000'00000000} ^ (random_() % 32 << 40) ^ 0x0000'FF00'00000000);
    }
  }

  static double power(int64_t n) { return std::pow(10.0, static_cast<double>(n)); }

  std::mt19937_64 random_;
};

constexpr uint32_t options[] = {NLS_FORMAT_BEST,        NLS_FORMAT_FIXED,    NLS_FORMAT_FIXED_EXPONENT,
                                NLS_FORMAT_SIGNIFICANT, NLS_FORMAT_GROUP,    NLS_FORMAT_PLUS,
                                NLS_FORMAT_LEFT,        NLS_FORMAT_ZERO_PAD, NLS_FORMAT_BLANK};
constexpr uint32_t field_options =
    NLS_FORMAT_BEST | NLS_FORMAT_FIXED | NLS_FORMAT_FIXED_EXPONENT | NLS_FORMAT_SIGNIFICANT;

struct Patterns {
  const char32_t* text;
  std::vector<int> groups;
  char32_t point, separator;
};

const Patterns patterns[] = {
    {U"3", {3}, U'.', U','},      {U"3;2", {3, 2}, U'.', U','},     {U"2;3;4", {2, 3, 4}, U',', U'.'},
    {U"-", {3}, U',', U' '},      {U"3;-", {3, -1}, U'.', U'\''},   {U"3", {3}, U',', U'\u00A0'},
    {U"", {0}, U'.', U','},       {U"0", {0}, U'.', U','},          {U"1", {1}, U'\u066B', U'\u066C'},
    {U"x", {3}, U'\u2396', U'.'}, {U"3", {3}, U'.', U'\U0001F600'}, {U"12", {12}, U'.', U','},
};

// FIXED_FIELD_TUPLES in the environment: how many calls to compare, 5 million otherwise.
TEST(FixedField, AgreesWithTheModel) {
  const char* const wanted = std::getenv("FIXED_FIELD_TUPLES");
  const int64_t tuples = wanted ? std::atoll(wanted) : 5'000'000;
  Values random(20240611);
  int failures = 0;
  int64_t checked = 0;
  while (checked < tuples) {
    const Patterns& pattern = patterns[random.next() % std::size(patterns)];
    vxtest::PlainLocale locale;
    vxtest::set_name(locale.data.groupingPattern, pattern.text);
    locale.data.decimalPoint = static_cast<VXChar>(pattern.point);
    locale.data.groupSeparator = static_cast<VXChar>(pattern.separator);
    const vxtest::FieldConventions conventions = {vxtest::utf8(std::u32string(1, pattern.point)),
                                                  vxtest::utf8(std::u32string(1, pattern.separator)), pattern.groups};
    FixedFieldModel units(conventions, false), bytes(conventions, true);
    const bool all_ascii = pattern.point < 0x80 && pattern.separator < 0x80;
    for (int i = 0; i < 50'000 && checked < tuples; ++i) {
      const double value = random.value();
      const auto width = static_cast<int32_t>(random.between(-2, 34));
      const auto decimals = static_cast<int32_t>(random.between(0, 15) ? random.between(-3, 20) : NLS_BEST_DECIMALS);
      const uint64_t choice = random.next();
      uint32_t flags = 0;
      for (size_t bit = 0; bit < std::size(options); ++bit) {
        // The bits of the field singly for the most part, each of the others in a quarter of the calls.
        if (bit < 4 ? (choice >> 60) % 4 == bit || choice >> 56 == bit : (choice >> (bit * 4)) % 4 == 0) {
          flags |= options[bit];
        }
      }
      // Without a width, best decimals alone are the free mode's.
      const bool best = decimals == NLS_BEST_DECIMALS && width != 0;
      if (!(flags & ~(width == 0 ? NLS_FORMAT_BEST : 0) & field_options) && !best) flags |= NLS_FORMAT_FIXED;
      const int64_t size = random.between(0, 7) ? static_cast<int64_t>(room) : random.between(-1, 34);
      ++checked;

      const Field expected = units.format(value, width, decimals, flags, size);
      const Field expected_utf8 = all_ascii ? expected : bytes.format(value, width, decimals, flags, size);
      const Field utf32 = call<VXChar>(
          [&](VXChar* buffer, int64_t room_given, int64_t* length) {
            return NLSDoubleFormatWithExOpts(locale.get(), width, decimals, flags, buffer, room_given, length, nullptr,
                                             value);
          },
          size);
      const Field utf8 = call<uint8_t>(
          [&](uint8_t* buffer, int64_t room_given, int64_t* length) {
            return NLSDoubleFormatUWithExOpts(locale.get(), width, decimals, flags, buffer, room_given, length, nullptr,
                                              value);
          },
          size);
      if (utf32 == expected && utf8 == expected_utf8) continue;
      char text[64];
      std::snprintf(text, sizeof text, "%.17g (%a)", value, value);
      ADD_FAILURE() << text << " width " << width << " decimals " << decimals << " flags 0x" << std::hex << flags
                    << std::dec << " size " << size << "\n  model  " << std::hex << expected.status << " ["
                    << expected.text << "], " << expected_utf8.status << " [" << expected_utf8.text << "]\n  UTF-32 "
                    << utf32.status << " [" << utf32.text << "]\n  UTF-8  " << utf8.status << " [" << utf8.text << "]";
      if (++failures == 20) return;
    }
  }
}

}  // namespace
