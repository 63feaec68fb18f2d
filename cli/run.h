// The command as a function.
#ifndef VXNLS_CLI_RUN_H
#define VXNLS_CLI_RUN_H

#include <span>

#include "cli/errors.h"

namespace vxcli {

/// Destructors that need memory and have none, as there are in libraries, end the program from now on with a message
/// and the exit code of the host.
void tell_exhausted_memory() noexcept;

/// Runs the command that the words (the program's own name apart) name, on the standard descriptors. Standard output is
/// closed in the end. Whatever goes wrong is told on standard error, an exhausted memory too.
ExitCode run(std::span<char* const> words) noexcept;

}  // namespace vxcli

#endif
