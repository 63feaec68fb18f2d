// Times of day of every kind: the flavours and the explanation agree, and what was read is read again after it was
// written by the pattern that matched.
#include "fuzz/parse_property.h"

using namespace vxfuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in{data, size};
  constexpr uint32_t kinds[] = {4, 0, 1, 5};
  const uint32_t kind = kinds[in.byte() % 4];
  const uint8_t options = in.byte();
  vxtest::PlainLocale plain;
  NLSName main = plain.data.timePattern, other = plain.data.timePattern1;
  Locale locale(in, options, {&main, &other});
  locale.data.timePattern = main;
  locale.data.timePattern1 = other;
  if ((options & 4) != 0) locale.data.amMarker.length = 0;
  if ((options & 8) != 0) locale.data.pmMarker.length = 0;

  const Texts text(in);
  double seconds = -1, seconds_u = -1;
  int64_t units = -1, bytes = -1;
  const VXStatus status = NLSBufToTime(locale.get(), text.units.data(), text.length(), kind, &seconds, &units);
  require(NLSBufToTimeU(locale.get(), text.bytes.data(), text.byte_length(), kind, &seconds_u, &bytes) == status);
  require(seconds == seconds_u);
  const VXExplanation out = require_explained(locale.get(), VX_EXPLAIN_TIME, kind, text, status, bytes);
  if (status != 0) {
    require(status == VX_E_NOMATCH && seconds == -1 && units == -1 && bytes == -1);
    return 0;
  }
  text.require_same(units, bytes);
  require(out.value == seconds && seconds >= 0);  // each strict PM adds 12 hours, so there is no upper end
  const bool own_markers = (options & 12) == 0;
  // Read leniently by a kind other than 4, a marker is not applied.
  if (own_markers && (kind == 4 || kind == 0 || kind == 1)) require_read_back(locale, out.match);
  return 0;
}
