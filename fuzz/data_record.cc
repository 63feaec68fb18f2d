// Any bytes as a locale's record, any text, any length: nothing outside the buffers is touched, counts stay within what
// they count, the record stays as it is, and what is told of a text agrees with what reads it.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "tests/support/plain_locale.h"
#include "vxnls/explain.h"
#include "vxnls/explain_number.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

struct Bytes {
  const uint8_t* data;
  size_t left;

  template <class Value>
  Value take() {
    Value value{};
    const size_t count = std::min(left, sizeof value);
    if (count > 0) std::memcpy(&value, data, count);
    data += count;
    left -= count;
    return value;
  }
};

/// Writes single words over the record: lengths, code points, separators, whatever stands there.
void patch(VXLocaleData& record, Bytes& in) {
  auto* const bytes = reinterpret_cast<uint8_t*>(&record);
  for (int patches = in.take<uint8_t>() % 32; patches > 0; --patches) {
    const size_t at = in.take<uint16_t>() % (sizeof record / 8) * 8;
    const auto value = in.take<uint64_t>();
    std::memcpy(bytes + at, &value, sizeof value);
  }
}

/// Calls `write(buffer, room, &length)` and looks at what lies around the buffer.
template <class Unit, class Write>
void with_buffer(int64_t room, Write write) {
  constexpr size_t guard = 64;
  constexpr auto untouched = static_cast<Unit>(0x5A5A5A5A);
  const auto size = static_cast<size_t>(std::max<int64_t>(room, 0));
  static std::vector<Unit> area;
  area.assign(size + 2 * guard, untouched);
  int64_t length = 0;
  write(area.data() + guard, room, &length);
  require(length >= 0 && length <= static_cast<int64_t>(size));
  const auto is_untouched = [&](Unit unit) { return unit == untouched; };
  require(std::all_of(area.begin(), area.begin() + guard, is_untouched));
  require(std::all_of(area.end() - guard, area.end(), is_untouched));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Bytes in{data, size};
  const auto plain = std::make_unique<vxtest::PlainLocale>();
  if (in.take<uint8_t>() % 2 == 0) std::memset(&plain->data, in.take<uint8_t>(), sizeof plain->data);
  patch(plain->data, in);
  VXLocale* const locale = plain->get();
  const auto before = std::make_unique<VXLocaleData>(plain->data);

  const auto kind = in.take<uint32_t>();
  const auto flags = in.take<uint32_t>();
  const auto value = in.take<double>();
  const auto whole = in.take<int64_t>();
  const int32_t width = (in.take<uint8_t>() ^ 0x80) - 0x80;  // -128 to 127
  const int32_t decimals = (in.take<uint8_t>() ^ 0x80) - 0x80;
  const auto month = static_cast<uint32_t>(whole & 0xF), day = static_cast<uint32_t>(whole >> 4 & 0x3F);
  const auto year = static_cast<uint32_t>(whole >> 10 & 0xFFFFF);
  const int64_t room = static_cast<int64_t>(in.take<uint16_t>() % 600) - 2;
  const auto style = static_cast<int32_t>(kind % 4);

  with_buffer<VXChar>(
      room, [&](VXChar* b, int64_t n, int64_t* l) { NLSDateFormat(locale, month, day, year, style, b, n, l); });
  with_buffer<uint8_t>(
      room, [&](uint8_t* b, int64_t n, int64_t* l) { NLSDateFormatU(locale, month, day, year, style, b, n, l); });
  with_buffer<VXChar>(room, [&](VXChar* b, int64_t n, int64_t* l) { NLSTimeFormat(locale, style, b, n, l, value); });
  with_buffer<uint8_t>(room, [&](uint8_t* b, int64_t n, int64_t* l) { NLSTimeFormatU(locale, style, b, n, l, value); });
  with_buffer<VXChar>(room, [&](VXChar* b, int64_t n, int64_t* l) { NLSDatetimeFormat(locale, 0, b, n, l, value); });
  with_buffer<uint8_t>(room, [&](uint8_t* b, int64_t n, int64_t* l) { NLSDatetimeFormatU(locale, 0, b, n, l, value); });

  // After some failures these count what they did not write.
  with_buffer<VXChar>(room, [&](VXChar* b, int64_t n, int64_t* l) {
    int64_t counted = 0;
    for (const auto write : {NLSDoubleFormat, NLSPercentFormat, NLSCurrencyFormat}) {
      if (write(locale, width, decimals, flags, b, n, &counted, value) == 0) *l = counted;
    }
    if (NLSLongFormat(locale, whole, width, decimals, flags, b, n, &counted) == 0) *l = counted;
  });
  with_buffer<uint8_t>(room, [&](uint8_t* b, int64_t n, int64_t* l) {
    int64_t counted = 0;
    if (NLSDoubleFormatUWithExOpts(locale, width, decimals, flags, b, n, &counted, nullptr, value) == 0) *l = counted;
    if (NLSULongFormatU(locale, static_cast<uint64_t>(whole), width, decimals, flags, b, n, &counted) == 0)
      *l = counted;
  });

  std::vector<uint8_t> text(in.data, in.data + in.left);
  const auto length = static_cast<int64_t>(text.size());
  const std::unique_ptr<uint8_t[]> exact(new uint8_t[text.size()]);  // so that a byte read behind it is noticed
  std::copy(text.begin(), text.end(), exact.get());
  for (const uint32_t what : {VX_EXPLAIN_DATE, VX_EXPLAIN_TIME, VX_EXPLAIN_DATETIME}) {
    VXExplanation told;
    told.size = sizeof told;
    require(vxnlsExplain(locale, what, kind, exact.get(), length, &told) == 0);
    require(told.consumed >= 0 && told.consumed <= length);
    require(told.refusal.position >= 0 && told.refusal.length >= 0 &&
            told.refusal.position + told.refusal.length <= length);
    require((told.refusal.reason == VX_REASON_NONE) == (told.status == 0));
  }
  for (const uint32_t what : {VX_NUMBER_DOUBLE, VX_NUMBER_INT32, VX_NUMBER_UINT32, VX_NUMBER_INT64, VX_NUMBER_UINT64}) {
    VXNumberReading reading;
    const VXStatus status = vxnlsExplainNumber(locale, exact.get(), length, what, flags, &reading);
    require(status == reading.status && reading.consumed >= 0 && reading.consumed <= length);
    require(reading.fault_offset >= 0 && reading.fault_length >= 0 &&
            reading.fault_offset + reading.fault_length <= length);
  }
  require(std::memcmp(before.get(), &plain->data, sizeof plain->data) == 0);
  return 0;
}
