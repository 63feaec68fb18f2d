// Dates read without asking why.
#ifndef VXNLS_CLI_DATE_AT_ONCE_H
#define VXNLS_CLI_DATE_AT_ONCE_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "cli/iso8601.h"
#include "vxnls/types.h"

namespace vxcli {

/// The date of a text that is one and nothing else, blanks behind it apart, as NLSBufToDateU reads it by `kind`.
/// Nothing for any other text: what is wrong with it takes longer to find out, as vxnlsExplain tries every form to the
/// end.
std::optional<iso8601::Date> date_at_once(VXLocale* locale, std::string_view text, uint32_t kind);

}  // namespace vxcli

#endif
