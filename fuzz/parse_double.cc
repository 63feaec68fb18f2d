// The four readers of doubles against the model, the explanation against them, and the value against strtod.
//   byte 0   the conventions: decimal point, group separator, and whether a space separates groups
//   then     the text
#include <cmath>
#include <iterator>

#include "fuzz/number_record.h"
#include "number_parse/ebcdic.h"

namespace {

using vxfuzz::require;
using vxtest::Reading;

constexpr struct {
  vxtest::Signs signs;
  uint32_t flags = 0;
} conventions[] = {
    {{'.', ','}},     {{',', '.'}},           {{',', 0xA0}},  {{',', 0xA0}, NLS_READ_SPACE_SEPARATOR},
    {{'.', 0x2019}},  {{0x66B, 0x66C}},       {{'.', '.'}},   {{',', ','}},
    {{'5', '7'}},     {{' ', '\t'}},          {{'e', '-'}},   {{0, 0}},
    {{'.', 0x1F600}}, {{0xFFFFFFFF, 0xD800}}, {{0x80, 0x85}}, {{'_', 'A'}},
};

/// What `reader(&value, &consumed)` gives.
Reading reading_of(auto reader) {
  double value = 0;
  int64_t consumed = 0;
  const VXStatus status = reader(&value, &consumed);
  return {status, std::bit_cast<uint64_t>(value), consumed};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1 || size > 4096) return -1;
  const auto& convention = conventions[data[0] % std::size(conventions)];
  const vxtest::Signs signs = convention.signs;
  const uint32_t flags = convention.flags;
  const uint8_t* const text = data + 1;
  const auto length = static_cast<int32_t>(size - 1);
  static vxtest::PlainLocale plain;
  plain.data.decimalPoint = signs.point;
  plain.data.groupSeparator = signs.separator;
  VXLocale* const locale = plain.get();

  const Reading got =
      reading_of([&](auto... to) { return NLSBufToDoubleUWithOpts(locale, text, length, flags, to...); });
  const VXNumberReading told = vxfuzz::require_told(locale, text, length, VX_NUMBER_DOUBLE, flags, got);

  const vxfuzz::Spelled spelled(text, length);
  if (!spelled.is_utf8 || signs.point > 0x10FFFF) return 0;
  vxtest::Decimal decimal;
  const Reading expected = vxtest::read_double(spelled.units, signs, flags, decimal);
  require(got == spelled.in_bytes(expected));
  require(expected == reading_of([&](auto... to) {
            return NLSBufToDoubleWithOpts(locale, vxtest::units(spelled.units), static_cast<int32_t>(spelled.size()),
                                          flags, to...);
          }));
  if (spelled.is_ascii && signs.separator < 0x80) {
    std::vector<uint8_t> ebcdic;
    std::transform(text, text + length, std::back_inserter(ebcdic), [](uint8_t c) { return vxnls::a2e[c]; });
    require(got == reading_of([&](auto... to) { return NLSBufToDoubleA(locale, text, length, to..., nullptr); }));
    require(got ==
            reading_of([&](auto... to) { return NLSBufToDoubleE(locale, ebcdic.data(), length, to..., nullptr); }));
  }
  // The value is the correctly rounded one or next to it.
  if (told.status == 0 && !decimal.digits.empty()) {
    const std::string number = decimal.digits + 'e' + std::to_string(decimal.exponent);
    const double read = std::fabs(told.value.number), wanted = std::strtod(number.c_str(), nullptr);
    require(read == wanted || std::nextafter(read, wanted) == wanted);
  }
  return 0;
}
