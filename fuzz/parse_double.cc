// The four readers of doubles, the explanation and strtod over one text.
//   byte 0   the conventions: decimal point, group separator, and whether a space separates groups
//   then     the text
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

#include "number_parse/calc_double.h"
#include "number_parse/ebcdic.h"
#include "number_parse/number_text.h"
#include "tests/support/plain_locale.h"

namespace {

constexpr struct {
  VXChar point, separator;
  uint32_t flags;
} conventions[] = {
    {'.', ',', 0},     {',', '.', 0},           {',', 0xA0, 0},  {',', 0xA0, NLS_READ_SPACE_SEPARATOR},
    {'.', 0x2019, 0},  {0x66B, 0x66C, 0},       {'.', '.', 0},   {',', ',', 0},
    {'5', '7', 0},     {' ', '\t', 0},          {'e', '-', 0},   {0, 0, 0},
    {'.', 0x1F600, 0}, {0xFFFFFFFF, 0xD800, 0}, {0x80, 0x85, 0}, {'_', 'A', 0},
};

void require(bool condition) {
  if (!condition) std::abort();
}

struct Got {
  VXStatus status;
  double value;
  int64_t consumed;
  bool operator==(const Got& other) const {
    return status == other.status && consumed == other.consumed &&
           std::bit_cast<uint64_t>(value) == std::bit_cast<uint64_t>(other.value);
  }
};

/// The text as strtod reads it: no blanks, no separators, "." and "e". For texts of ASCII digits that were accepted.
std::string plain(const std::string& text, VXChar point) {
  std::string result;
  for (const char c : text) {
    if ((c >= '0' && c <= '9') || ((c == '-' || c == '+') && static_cast<uint8_t>(c) != point)) result += c;
    else if (static_cast<uint8_t>(c) == point) result += '.';
    else if ((c | 0x20) == 'e' || (c | 0x20) == 'd') result += 'e';
  }
  return result;
}

bool are_neighbours(double a, double b) { return a == b || std::nextafter(a, b) == b; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1 || size > 4096) return -1;
  const size_t choice = data[0] % std::size(conventions);
  const auto [point, separator, flags] = conventions[choice];
  const uint8_t* const text = data + 1;
  const auto length = static_cast<int32_t>(size - 1);
  static vxtest::PlainLocale locale;
  locale.data.decimalPoint = point;
  locale.data.groupSeparator = separator;

  Got utf8{};
  utf8.status = NLSBufToDoubleUWithOpts(locale.get(), text, length, flags, &utf8.value, &utf8.consumed);
  require(utf8.consumed >= 0 && utf8.consumed <= length);
  if (utf8.status == 0) require(utf8.consumed == length);
  else require(std::bit_cast<uint64_t>(utf8.value) == qmmissv_struct[2]);
  require(!std::isinf(utf8.value));

  VXNumberReading reading{};
  vxnlsExplainNumber(locale.get(), text, length, VX_NUMBER_DOUBLE, flags, &reading);
  require(Got{reading.status, reading.value.number, reading.consumed} == utf8);
  require((reading.fault == VX_FAULT_NONE) == (utf8.status == 0));
  require(reading.fault_offset >= 0 && reading.fault_length >= 0 &&
          reading.fault_offset + reading.fault_length <= length);

  // UTF-32, where the bytes are the UTF-8 of something.
  std::vector<VXChar> units;
  int64_t units_consumed = 0;
  bool is_ascii = true, is_utf8 = true;
  for (int64_t at = 0; at < length;) {
    const auto c = vxnls::Utf8Text::decode(text + at, length - at);
    uint8_t again[4];
    is_utf8 = is_utf8 && c.status == 0 && vxnls::Utf8Text::append(c.code_point, again) == c.consumed &&
              std::equal(again, again + c.consumed, text + at);
    is_ascii = is_ascii && c.code_point < 0x80;
    if (at < utf8.consumed) ++units_consumed;
    units.push_back(c.code_point);
    at += c.consumed;
  }
  if (is_utf8 && point < 0x110000) {
    Got got{};
    got.status = NLSBufToDoubleWithOpts(locale.get(), units.data(), static_cast<int32_t>(units.size()), flags,
                                        &got.value, &got.consumed);
    require(got == Got{utf8.status, utf8.value, units_consumed});
  }
  if (is_ascii && separator < 0x80) {
    Got got{};
    got.status = NLSBufToDoubleA(locale.get(), text, length, &got.value, &got.consumed, nullptr);
    require(got == utf8);
    std::vector<uint8_t> ebcdic;
    std::transform(text, text + length, std::back_inserter(ebcdic), [](uint8_t c) { return vxnls::a2e[c]; });
    got.status = NLSBufToDoubleE(locale.get(), ebcdic.data(), length, &got.value, &got.consumed, nullptr);
    require(got == utf8);
  }

  // The value: both forms of extended precision give it, and it is the correctly rounded one or next to it.
  const vxnls::Marks<vxnls::Utf8Code> marks(vxnls::conventions_of(locale.get(), flags));
  const auto number = vxnls::NumberRecogniser<vxnls::Utf8Code>(marks, text, length).recognise();
  if (number.fault.reason == VX_FAULT_NONE && number.missing == 0) {
    double soft = 0;
    require(vxnls::calc_double<vxnls::SoftExtended>(number.high, number.low, static_cast<int32_t>(number.digits),
                                                    static_cast<int32_t>(number.exponent), number.negative,
                                                    &soft) == utf8.status);
    require(std::bit_cast<uint64_t>(soft) == std::bit_cast<uint64_t>(utf8.value));
    if (utf8.status == 0 && choice < 4) {
      const std::string bytes(reinterpret_cast<const char*>(text), static_cast<size_t>(length));
      require(are_neighbours(utf8.value, std::strtod(plain(bytes, point).c_str(), nullptr)));
    }
  }
  return 0;
}
