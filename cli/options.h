// Options that several commands have.
#ifndef VXNLS_CLI_OPTIONS_H
#define VXNLS_CLI_OPTIONS_H

#include "cli/command.h"

namespace vxcli::options {

/// The name that stands for the locale that explains most, for commands that rank them.
inline constexpr std::string_view ranked_locale = "auto";
inline constexpr Option locale{.name = "locale",
                               .letter = 'l',
                               .value = "NAME",
                               .help =
                                   "locale, as de_DE or sr-Latn-RS; else that of VXNLS_LOCALE, LC_ALL, LC_TIME (for "
                                   "numbers LC_NUMERIC) or LANG, the first one that is set",
                               .completes = Completes::locales};
inline constexpr Option zone{.name = "zone",
                             .letter = 'z',
                             .value = "NAME",
                             .help = "time zone, as Europe/Berlin; else that of VXNLS_ZONE or TZ, or the system's",
                             .completes = Completes::zones};
inline constexpr Option quiet{.name = "quiet", .letter = 'q', .help = "no notes on standard error"};
inline constexpr std::string_view color_choices[] = {"auto", "always", "never"};
inline constexpr Option color{.name = "color",
                              .value = "WHEN",
                              .help =
                                  "colours; auto, as when not given, is on a terminal, and goes by NO_COLOR and "
                                  "CLICOLOR_FORCE",
                              .choices = color_choices,
                              .completes = Completes::choices};
inline constexpr Option short_help{.name = "", .letter = 'h', .help = "this help, in short"};
inline constexpr Option help{.name = "help", .help = "this help, with examples"};
inline constexpr Option version{.name = "version", .help = "the versions of the command and of what stands behind it"};

inline constexpr Option json{.name = "json", .help = "JSON: an object a line for values, else one document"};

// Of commands that read values from standard input, for programs that run them as a filter.
inline constexpr Option unread{
    .name = "unread",
    .value = "TEXT",
    .help = "the line for a value of standard input that is not read, in place of an empty one"};
inline constexpr Option ok_unread{.name = "ok-unread",
                                  .help = "the exit code is 0 however many values of standard input are not read"};
inline constexpr Option chunk_header{
    .name = "chunk-header",
    .help = "standard input comes in blocks: a line with the number of values, then so many lines"};

/// The one argument of commands that read a file.
inline constexpr Argument file{
    .name = "FILE", .help = "what is read; standard input when there is none, or -", .completes = Completes::files};

}  // namespace vxcli::options

#endif
