// The integer readers in both flavours against each other, and the explanation.
//   byte 0   the conventions: decimal point and group separator
//   byte 1   the flags
//   then     the text
#include <cstdlib>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/plain_locale.h"
#include "unicode/text_flavour.h"

namespace {

constexpr struct {
  VXChar point, separator;
} conventions[] = {
    {'.', ','}, {',', '.'}, {',', 0xA0}, {'.', 0x2019}, {0x66B, 0x66C}, {'.', '.'},
    {'5', '7'}, {' ', ' '}, {'-', '+'},  {0, 0},        {0x80, 0xFF},   {'x', 0x1F600},
};

void require(bool condition) {
  if (!condition) std::abort();
}

template <class Integer>
struct Got {
  VXStatus status = 0;
  Integer value = 0;
  uint64_t consumed = 0;
  bool operator==(const Got&) const = default;
};

struct Text {
  VXLocale* locale;
  const uint8_t* bytes;
  int64_t length;
  uint32_t flags;
  std::vector<VXChar> units;          // empty when the bytes are no UTF-8
  std::vector<uint64_t> first_bytes;  // of each unit, and of the end
};

template <class Integer>
Got<Integer> read(const Text& text, VXStatus (*plain)(VXLocale*, const VXChar*, int64_t, uint32_t, Integer*, uint64_t*),
                  VXStatus (*bytes)(VXLocale*, const uint8_t*, int64_t, uint32_t, Integer*, uint64_t*), uint32_t kind) {
  Got<Integer> got, other;
  got.status = bytes(text.locale, text.bytes, text.length, text.flags, &got.value, &got.consumed);
  require(got.consumed <= static_cast<uint64_t>(text.length));
  if (got.status == VX_E_OVERFLOW) require(got.value == 0);

  VXNumberReading reading{};
  other.status = vxnlsExplainNumber(text.locale, text.bytes, text.length, kind, text.flags, &reading);
  other.value = static_cast<Integer>(reading.value.unsigned_integer);
  other.consumed = static_cast<uint64_t>(reading.consumed);
  require(other == got);
  require((reading.fault == VX_FAULT_NONE) == (got.status == 0));
  require(reading.fault_offset >= 0 && reading.fault_length >= 0 &&
          reading.fault_offset + reading.fault_length <= text.length);

  if (!text.units.empty()) {
    other.status = plain(text.locale, text.units.data(), static_cast<int64_t>(text.units.size()), text.flags,
                         &other.value, &other.consumed);
    require(other.consumed < text.first_bytes.size());
    other.consumed = text.first_bytes[other.consumed];
    require(other == got);
  }

  // What was read is read again from its digits.
  const std::string again = std::to_string(got.value);
  Got<Integer> second;
  second.status = bytes(nullptr, reinterpret_cast<const uint8_t*>(again.data()), static_cast<int64_t>(again.size()), 0,
                        &second.value, &second.consumed);
  require(second == Got<Integer>{0, got.value, again.size()});
  return got;
}

/// The narrow type gives what the wide one gives, as far as it fits.
template <class Narrow, class Wide>
void require_same_where_it_fits(const Got<Narrow>& narrow, const Got<Wide>& wide) {
  using Limits = std::numeric_limits<Narrow>;
  if (wide.status == VX_E_OVERFLOW || wide.value < Limits::min() || wide.value > Limits::max())
    require(narrow.status == VX_E_OVERFLOW);
  else require(narrow.status == wide.status && narrow.value == wide.value && narrow.consumed == wide.consumed);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2 || size > 4096) return -1;
  const auto [point, separator] = conventions[data[0] % std::size(conventions)];
  static vxtest::PlainLocale locale;
  locale.data.decimalPoint = point;
  locale.data.groupSeparator = separator;
  const uint32_t flags = (data[1] & 1u) | (data[1] & 0x0Eu) << 11;
  Text text{locale.get(), data + 2, static_cast<int64_t>(size - 2), flags, {}, {}};
  for (int64_t at = 0; at < text.length;) {
    const auto c = vxnls::Utf8Text::decode(text.bytes + at, text.length - at);
    uint8_t again[4];
    if (c.status != 0 || vxnls::Utf8Text::append(c.code_point, again) != c.consumed ||
        !std::equal(again, again + c.consumed, text.bytes + at)) {
      text.units.clear();
      break;
    }
    text.units.push_back(c.code_point);
    text.first_bytes.push_back(static_cast<uint64_t>(at));
    at += c.consumed;
  }
  text.first_bytes.push_back(static_cast<uint64_t>(text.length));

  const auto i32 = read<int32_t>(text, NLSBufToInt, NLSBufToIntU, VX_NUMBER_INT32);
  const auto i64 = read<int64_t>(text, NLSBufToIntmax, NLSBufToIntmaxU, VX_NUMBER_INT64);
  const auto u32 = read<uint32_t>(text, NLSBufToUintfast, NLSBufToUintfastU, VX_NUMBER_UINT32);
  const auto u64 = read<uint64_t>(text, NLSBufToULong, NLSBufToULongU, VX_NUMBER_UINT64);
  require_same_where_it_fits(i32, i64);
  require_same_where_it_fits(u32, u64);
  const bool is_signed_in_text =
      text.length > 0 && std::string(text.bytes, text.bytes + text.length).find_first_of("+-") != std::string::npos;
  if ((flags & NLS_READ_HEXADECIMAL) == 0 && !is_signed_in_text && u64.value <= INT64_MAX &&
      u64.status != VX_E_OVERFLOW)
    require(i64.status == u64.status && static_cast<uint64_t>(i64.value) == u64.value && i64.consumed == u64.consumed);
  return 0;
}
