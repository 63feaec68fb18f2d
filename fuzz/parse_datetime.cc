// Datetimes of every kind, with zones and offsets: the flavours and the explanation agree, and what was read is read
// again after it was written by the patterns that matched.
#include "fuzz/parse_property.h"

using namespace vxfuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in{data, size};
  constexpr uint32_t kinds[] = {4, 0, 8, 12};
  const uint32_t kind = kinds[in.byte() % 4];
  const uint8_t options = in.byte();
  vxtest::PlainLocale plain;
  NLSName whole = plain.data.datetimePattern, date = plain.data.datePattern, time = plain.data.timePattern;
  Locale locale(in, options, {&whole, &date, &time});
  locale.data.datetimePattern = whole;
  locale.data.datePattern = date;
  locale.data.timePattern = time;

  const Texts text(in);
  double value = -1, value_u = -1;
  int64_t units = -1, bytes = -1;
  const VXStatus status = NLSBufToDatetime(locale.get(), text.units.data(), text.length(), kind, &value, &units);
  require(NLSBufToDatetimeU(locale.get(), text.bytes.data(), text.byte_length(), kind, &value_u, &bytes) == status);
  require(value == value_u);
  const VXExplanation out = require_explained(locale.get(), VX_EXPLAIN_DATETIME, kind, text, status, bytes);
  if (status != 0) {
    require(status == VX_E_NOMATCH && value == -1 && units == -1 && bytes == -1);
    return 0;
  }
  text.require_same(units, bytes);
  require(out.value == value);
  const bool by_parts = out.match.candidate.source != VX_SOURCE_DATETIME;
  // The datetime pattern read leniently keeps a marker and does not apply it.
  if (by_parts || kind == 0) require_read_back(locale, out.match);
  if (by_parts) require_read_back(locale, out.time);
  const VXExplainFields& clock = by_parts ? out.time.fields : out.match.fields;
  if (clock.offset == VX_NO_OFFSET && clock.zone_given == 0) {
    const double day =
        (value - clock.milliseconds / 1000.0 - clock.second - 60 * clock.minute - 3600 * clock.hour) / 86400;
    require(day == static_cast<double>(static_cast<int64_t>(day)));
  }
  return 0;
}
