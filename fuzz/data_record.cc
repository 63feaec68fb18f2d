// Any bytes as a locale's record, any text, any length: nothing outside the buffers is touched, counts stay within what
// they count, the record stays as it is, and what is told of a text agrees with what reads it.
#include "fuzz/input.h"
#include "tests/support/plain_locale.h"
#include "vxnls/explain.h"
#include "vxnls/explain_number.h"

namespace {

using namespace vxfuzz;

/// Writes single words over the record: lengths, code points, separators, whatever stands there.
void patch(VXLocaleData& record, Input& in) {
  auto* const bytes = reinterpret_cast<uint8_t*>(&record);
  for (int patches = in.take<uint8_t>() % 32; patches > 0; --patches) {
    const size_t at = in.take<uint16_t>() % (sizeof record / 8) * 8;
    const auto value = in.take<uint64_t>();
    std::memcpy(bytes + at, &value, sizeof value);
  }
}

/// After some failures the writers of numbers count what they did not write.
enum class Of { moments, numbers };

template <class Unit, Of of = Of::moments>
void with_buffer(int64_t room, auto write) {
  const Written written = call<Unit>(room, write);
  require(written.length <= std::max<int64_t>(room, 0) || (of == Of::numbers && written.status != 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in{data, size};
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

  with_buffer<VXChar>(room, [&](auto... to) { return NLSDateFormat(locale, month, day, year, style, to...); });
  with_buffer<uint8_t>(room, [&](auto... to) { return NLSDateFormatU(locale, month, day, year, style, to...); });
  with_buffer<VXChar>(room, [&](auto... to) { return NLSTimeFormat(locale, style, to..., value); });
  with_buffer<uint8_t>(room, [&](auto... to) { return NLSTimeFormatU(locale, style, to..., value); });
  with_buffer<VXChar>(room, [&](auto... to) { return NLSDatetimeFormat(locale, 0, to..., value); });
  with_buffer<uint8_t>(room, [&](auto... to) { return NLSDatetimeFormatU(locale, 0, to..., value); });
  for (const auto write : {NLSDoubleFormat, NLSPercentFormat, NLSCurrencyFormat}) {
    with_buffer<VXChar, Of::numbers>(room,
                                     [&](auto... to) { return write(locale, width, decimals, flags, to..., value); });
  }
  with_buffer<VXChar, Of::numbers>(
      room, [&](auto... to) { return NLSLongFormat(locale, whole, width, decimals, flags, to...); });
  with_buffer<uint8_t, Of::numbers>(room, [&](auto... to) {
    return NLSDoubleFormatUWithExOpts(locale, width, decimals, flags, to..., nullptr, value);
  });
  with_buffer<uint8_t, Of::numbers>(room, [&](auto... to) {
    return NLSULongFormatU(locale, static_cast<uint64_t>(whole), width, decimals, flags, to...);
  });

  const Text text({reinterpret_cast<const char*>(in.data), in.left});
  const int64_t length = text.size();
  for (const uint32_t what : {VX_EXPLAIN_DATE, VX_EXPLAIN_TIME, VX_EXPLAIN_DATETIME}) {
    VXExplanation told;
    told.size = sizeof told;
    require(vxnlsExplain(locale, what, kind, text.at(), length, &told) == 0);
    require(told.consumed >= 0 && told.consumed <= length);
    require(told.refusal.position >= 0 && told.refusal.length >= 0 &&
            told.refusal.position + told.refusal.length <= length);
    require((told.refusal.reason == VX_REASON_NONE) == (told.status == 0));
  }
  for (const uint32_t what : {VX_NUMBER_DOUBLE, VX_NUMBER_INT32, VX_NUMBER_UINT32, VX_NUMBER_INT64, VX_NUMBER_UINT64}) {
    VXNumberReading reading;
    const VXStatus status = vxnlsExplainNumber(locale, text.at(), length, what, flags, &reading);
    require(status == reading.status && reading.consumed >= 0 && reading.consumed <= length);
    require(reading.fault_offset >= 0 && reading.fault_length >= 0 &&
            reading.fault_offset + reading.fault_length <= length);
  }
  require(std::memcmp(before.get(), &plain->data, sizeof plain->data) == 0);
  return 0;
}
