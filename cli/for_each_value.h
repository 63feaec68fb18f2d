// The loop that commands over values share.
#ifndef VXNLS_CLI_FOR_EACH_VALUE_H
#define VXNLS_CLI_FOR_EACH_VALUE_H

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "cli/session.h"

namespace vxcli {

/// What to print for a value: one line without its end. Throws ValueError when the value cannot be read.
using Convert = std::function<std::string(std::string_view value)>;

/// Converts `values`; where there are none, every line of standard input.
/// Values of the command line are all read before anything is printed, and nothing is printed when one cannot be read.
/// Of standard input every line gives a line: an empty one (that of --unread; with --json an object with "error") for a
/// value that cannot be read. Each such value is named on standard error. Output is flushed whenever the input pauses.
/// With --chunk-header the lines that announce a block give none; input that does not keep to them throws Failure
/// (ExitCode::io). The options of options.h that are meant for standard input are refused with `values`.
ExitCode for_each_value(Invocation& invocation, std::span<const std::string> values, const Convert& convert);

}  // namespace vxcli

#endif
