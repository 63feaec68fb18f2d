// Help, written from the table of commands.
#ifndef VXNLS_CLI_HELP_H
#define VXNLS_CLI_HELP_H

#include <string>

#include "cli/arguments.h"
#include "cli/color.h"

namespace vxcli {

enum class HelpLength { in_short, whole };

/// The help of the last command of a path that begins at the root.
std::string help_text(const CommandPath& path, HelpLength length, Colors colors = Colors());

/// ": a, b or c", or nothing.
std::string one_of(std::span<const std::string_view> choices);

}  // namespace vxcli

#endif
