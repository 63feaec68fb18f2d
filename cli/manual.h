// Manual pages, written from the table of commands.
#ifndef VXNLS_CLI_MANUAL_H
#define VXNLS_CLI_MANUAL_H

#include <string>

#include "cli/arguments.h"

namespace vxcli {

/// "vxnls-format-date"
std::string manual_name(const CommandPath& path);

/// The page of section 1, for man(7) macros, in UTF-8. Its date is the one in the library's build record.
std::string manual_page(const CommandPath& path);

}  // namespace vxcli

#endif
