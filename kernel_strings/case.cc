#include "kernel_strings/units.h"
#include "module/host_services.h"
#include "unicode/case_mapping.h"
#include "vxnls/strings.h"

namespace {

/// Maps every character of a caller's text in place.
template <class Map>
void map_units(VXChar* text, int64_t length, Map map) {
  if (text == nullptr) return;
  for (int64_t i = 0; i < length; ++i) text[i] = map(text[i]);
}

using HostMap = uint32_t(VXCharData*, uint32_t, uint32_t);

/// The host knows newer characters than the tables; ASCII needs nobody.
template <VXChar by_tables(VXChar), HostMap by_host>
void change_case(VXChar* text, int64_t length) {
  VXCharData* const characters = vxnls::host::characters();
  if (characters == nullptr) return map_units(text, length, by_tables);
  map_units(text, length, [=](VXChar c) { return c < 0x80 ? by_tables(c) : by_host(characters, c, 1); });
}

}  // namespace

void vxzstlo(VXChar* text, int64_t length) { change_case<vxnls::lower_by_tables, vxnls::host::lower>(text, length); }
void vxzstup(VXChar* text, int64_t length) { change_case<vxnls::upper_by_tables, vxnls::host::upper>(text, length); }

void vxzstmin(VXChar* text, int64_t length) { map_units(text, length, vxnls::smallest_by_case); }
void vxzstmax(VXChar* text, int64_t length) { map_units(text, length, vxnls::largest_by_case); }
