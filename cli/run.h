// The command as a function.
#ifndef VXNLS_CLI_RUN_H
#define VXNLS_CLI_RUN_H

#include <span>

#include "cli/errors.h"

namespace vxcli {

/// Runs the command that the words (the program's own name apart) name, on the standard descriptors. Standard output is
/// closed in the end. Whatever goes wrong is told on standard error, an exhausted memory too.
ExitCode run(std::span<char* const> words) noexcept;

}  // namespace vxcli

#endif
