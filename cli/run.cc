#include "cli/run.h"

#include <unistd.h>

#include <utility>

#include "cli/arguments.h"
#include "cli/help.h"
#include "cli/options.h"
#include "cli/session.h"

namespace vxcli {

namespace {

ExitCode run_command(const Arguments& arguments, const Messages& messages, Output& out) {
  if (arguments.has(options::help) || arguments.has(options::short_help)) {
    const HelpLength length = arguments.has(options::help) ? HelpLength::whole : HelpLength::in_short;
    out.put(help_text(arguments.path(), length));
    return ExitCode::done;
  }
  Session session(arguments, messages);
  if (arguments.has(options::version)) {
    out.line(fmt::format("vxnls {} ({})", VXNLS_VERSION, vxhostVersions(session.host())));
    return ExitCode::done;
  }
  // What was asked for by name is never wrong in silence, also where the command has no use for it.
  if (arguments.has(options::locale)) session.locale_name();
  if (arguments.has(options::zone)) session.zone();
  Invocation invocation{arguments, session, out, messages};
  return arguments.command().run(invocation);
}

}  // namespace

ExitCode run(std::vector<std::string> words) {
  Messages messages;
  Output out(STDOUT_FILENO, "standard output");
  try {
    const Arguments arguments(std::move(words));
    if (arguments.has(options::quiet)) messages.be_quiet();
    const ExitCode code = run_command(arguments, messages, out);
    out.finish();
    return code;
  } catch (const Failure& failure) {
    messages.error(failure.what());
    return failure.code();
  }
}

}  // namespace vxcli
