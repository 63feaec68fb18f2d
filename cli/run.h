// The command as a function.
#ifndef VXNLS_CLI_RUN_H
#define VXNLS_CLI_RUN_H

#include <string>
#include <vector>

#include "cli/errors.h"

namespace vxcli {

/// Runs the command that the words (the program's own name apart) name, on the standard descriptors. Standard output is
/// closed in the end. Throws nothing but what memory exhaustion throws.
ExitCode run(std::vector<std::string> words);

}  // namespace vxcli

#endif
