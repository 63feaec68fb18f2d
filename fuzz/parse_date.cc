// Dates and periods of every kind: the flavours and the explanation agree, periods begin on their first day, and what
// was read is read again after it was written by the pattern that matched.
#include "fuzz/parse_property.h"

using namespace vxfuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in{data, size};
  constexpr uint32_t kinds[] = {4, 0, 1, 2, 5, 8, 16, 32, 64, 128, 256, 0x1fc};
  const uint32_t kind = kinds[in.byte() % 12];
  const uint8_t options = in.byte();
  vxtest::PlainLocale names;
  NLSName first = names.data.datePattern, second = names.data.datePattern1, third = names.data.datePattern2;
  if (kind >= 8) first = second = third = NLSName{0, {}};
  Locale locale(in, options, {&first, &second, &third});
  VXLocaleData& record = locale.data;
  const auto place = [&](NLSName& entry, const NLSName& pattern) {
    if (pattern.length > 0) entry = pattern;
  };
  place(kind == 8 ? record.quarterPattern1 : kind == 16 ? record.monthYearPattern1 : record.datePattern, first);
  place(kind == 8 ? record.quarterPattern2 : kind == 16 ? record.monthYearPattern2 : record.datePattern1, second);
  place(record.datePattern2, third);
  if (kind >= 32) {
    place(record.weekPattern1, first);
    place(record.weekPattern2, second);
  }

  const Texts text(in);
  uint32_t m = 77, d = 77, y = 77, mu = 77, du = 77, yu = 77;
  int64_t units = -1, bytes = -1;
  const VXStatus status = NLSBufToDate(locale.get(), text.units.data(), text.length(), kind, &m, &d, &y, &units);
  require(NLSBufToDateU(locale.get(), text.bytes.data(), text.byte_length(), kind, &mu, &du, &yu, &bytes) == status);
  require(m == mu && d == du && y == yu);
  const VXExplanation out = require_explained(locale.get(), VX_EXPLAIN_DATE, kind, text, status, bytes);
  if (status != 0) {
    require(status == VX_E_NOMATCH && m + d + y == 0 && units == -1 && bytes == -1);
    return 0;
  }
  text.require_same(units, bytes);
  require((out.complete != 0) == (y != 0));
  if (y == 0) return 0;
  const VXExplainFields& fields = out.match.fields;
  require(static_cast<uint32_t>(fields.year) == y && static_cast<uint32_t>(fields.month) == m);
  if (kind == 8) require(d == 1 && m % 3 == 1);
  if (kind == 16) require(d == 1);
  if (kind >= 32 && kind <= 256) {
    require(out.value >= vxnls::first_day);
    require(vxnls::week_day(static_cast<int32_t>(out.value)) == (fields.week < 200 ? 0 : 1));
  }
  if (kind < 32 || kind > 256) require_read_back(locale, out.match);
  return 0;
}
