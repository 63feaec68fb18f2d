// From what people call a locale to the name of the locale whose data is used.
#ifndef VXNLS_HOST_LOCALE_LOOKUP_H
#define VXNLS_HOST_LOCALE_LOOKUP_H

#include <string>
#include <string_view>
#include <vector>

#include "vxnls/types.h"

namespace vxhost {

struct ResolvedLocale {
  std::string name;  // canonical: "sr_Latn_RS", "root"; empty when the status is VX_E_NOMATCH
  VXStatus status;   // 0, VX_W_SUBSTITUTE or VX_E_NOMATCH
};

/// Accepts ICU names (de_DE), language tags (de-DE), POSIX names (de_DE.UTF-8, sr_RS@latin, C) and old codes (iw_IL).
///   exact       the locales are the same: ICU has it, or it differs in spelling only ("zh_TW" is zh_Hant_TW, "de_Latn"
///               is de, "C" and "POSIX" are en_US_POSIX, "und" is root)
///   substitute  a wider locale stands in, found by leaving out variant, region and then script, but never one in
///               another script ("de_US" gives de, "az_Arab" root); also when a keyword ("@calendar=...") is left out
///   no match    no locale at all, or a language that ICU has no locale of: a user should be told rather than served
ResolvedLocale resolve_locale(std::string_view name);

/// Every name that resolves to itself, in byte order ("root" apart). Each ends in NUL. They are listed by the first
/// call, which throws std::bad_alloc when it cannot.
const std::vector<std::string_view>& available_locales();

}  // namespace vxhost

#endif
