#include "tests/support/plain_locale.h"

#include "examples/own_host/locale_file.h"

namespace vxtest {

namespace {

// A zone that a text names is not there.
constexpr HostContextOps knows_no_zone = {
    nullptr,
    [](HostContext*, const VXChar*, int64_t, VXZoneIdOptions, VXChar*, int64_t*, uint64_t*) { return VX_E_ZONE; },
    nullptr};

VXLocaleData english() {
  VXLocaleData data = own::Data(VX_EXAMPLE_LOCALES).locales.at(own::decoded("en_US"));
  set_name(data.localeName, U"en_US");
  for (const auto& entry : own::entries) {
    auto* const names = reinterpret_cast<NLSName*>(reinterpret_cast<uint8_t*>(&data) + entry.offset);
    for (size_t i = 0; i < entry.names; ++i) names[i].text[names[i].length] = '#';  // as set_name does it
  }
  return data;
}

}  // namespace

struct PlainLocale::Parts {
  VXLocaleData data;
  VXLocale locale;
  HostContext context;
  VXZoneService zones;
};

PlainLocale::~PlainLocale() = default;

PlainLocale::PlainLocale()
    : parts(new Parts{}), data(parts->data), locale(parts->locale), context(parts->context), zones(parts->zones) {
  static const VXLocaleData as_read = english();
  data = as_read;
  locale.eyeCatcher = 0x6f76656eu;
  locale.typeName = "VXLocale handle";
  context.ops = &knows_no_zone;
  locale.host = &context;
  locale.localeData = &data;
}

}  // namespace vxtest
