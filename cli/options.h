// Options that several commands have.
#ifndef VXNLS_CLI_OPTIONS_H
#define VXNLS_CLI_OPTIONS_H

#include "cli/command.h"

namespace vxcli::options {

inline constexpr Option locale{.name = "locale",
                               .letter = 'l',
                               .value = "NAME",
                               .help =
                                   "locale, as de_DE or sr-Latn-RS; else that of VXNLS_LOCALE, LC_ALL, LC_TIME or "
                                   "LANG, the first one that is set",
                               .completes = Completes::locales};
inline constexpr Option zone{.name = "zone",
                             .letter = 'z',
                             .value = "NAME",
                             .help = "time zone, as Europe/Berlin; else that of VXNLS_ZONE or TZ, or the system's",
                             .completes = Completes::zones};
inline constexpr Option quiet{.name = "quiet", .letter = 'q', .help = "no notes on standard error"};
inline constexpr Option short_help{.name = "", .letter = 'h', .help = "this help, in short"};
inline constexpr Option help{.name = "help", .help = "this help, with examples"};
inline constexpr Option version{.name = "version", .help = "the versions of the command and of what stands behind it"};

inline constexpr Option json{.name = "json", .help = "JSON: an object a line for values, else one document"};

}  // namespace vxcli::options

#endif
