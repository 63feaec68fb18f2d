// The integer readers in both flavours against the model, and the explanation against them.
//   byte 0   the conventions: decimal point and group separator
//   byte 1   the flags
//   then     the text
#include "fuzz/number_record.h"

namespace {

using vxfuzz::require;
using vxtest::Reading;

constexpr vxtest::Signs conventions[] = {
    {'.', ','}, {',', '.'}, {',', 0xA0}, {'.', 0x2019}, {0x66B, 0x66C}, {'.', '.'},
    {'5', '7'}, {' ', ' '}, {'-', '+'},  {0, 0},        {0x80, 0xFF},   {'x', 0x1F600},
};

template <class Unit, class Integer>
using Reader = VXStatus (*)(VXLocale*, const Unit*, int64_t, uint32_t, Integer*, uint64_t*);

struct Text {
  vxtest::Signs signs;
  uint32_t flags;
  const uint8_t* bytes;
  int64_t length;
  vxfuzz::Spelled spelled{bytes, length};
  vxtest::PlainLocale& locale;

  template <class Unit, class Integer>
  Reading read(Reader<Unit, Integer> reader, const Unit* text, int64_t n) const {
    Integer value = 0;
    uint64_t consumed = 0;
    const VXStatus status = reader(locale.get(), text, n, flags, &value, &consumed);
    return {status, static_cast<uint64_t>(value), static_cast<int64_t>(consumed)};
  }

  template <class Integer>
  void check(Reader<VXChar, Integer> plain, Reader<uint8_t, Integer> utf8, uint32_t kind) const {
    const Reading got = read(utf8, bytes, length);
    vxfuzz::require_told(locale.get(), bytes, length, kind, flags, got);
    if (!spelled.is_utf8) return;
    const Reading expected = vxtest::read_integer<Integer>(spelled.units, signs, flags);
    require(read(plain, vxtest::units(spelled.units), spelled.size()) == expected);
    require(got == spelled.in_bytes(expected));
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2 || size > 4096) return -1;
  const vxtest::Signs signs = conventions[data[0] % std::size(conventions)];
  static vxtest::PlainLocale locale;
  locale.data.decimalPoint = signs.point;
  locale.data.groupSeparator = signs.separator;
  const Text text{.signs = signs,
                  .flags = (data[1] & 1u) | (data[1] & 0x0Eu) << 11,
                  .bytes = data + 2,
                  .length = static_cast<int64_t>(size - 2),
                  .locale = locale};
  text.check<int32_t>(NLSBufToInt, NLSBufToIntU, VX_NUMBER_INT32);
  text.check<int64_t>(NLSBufToIntmax, NLSBufToIntmaxU, VX_NUMBER_INT64);
  text.check<uint32_t>(NLSBufToUintfast, NLSBufToUintfastU, VX_NUMBER_UINT32);
  text.check<uint64_t>(NLSBufToULong, NLSBufToULongU, VX_NUMBER_UINT64);
  return 0;
}
