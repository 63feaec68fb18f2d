#include "cli/run.h"

#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "cli/arguments.h"
#include "cli/file.h"
#include "cli/help.h"
#include "cli/options.h"
#include "cli/session.h"
#include "vxnls/module.h"

namespace vxcli {

namespace {

constexpr std::string_view no_memory = "memory is exhausted";

/// What follows --color in a command line that may turn out to be wrong.
std::string_view color_asked_for(const std::vector<std::string>& words) {
  static constexpr std::string_view option = "--color";
  std::string_view choice;
  for (size_t i = 0; i < words.size() && words[i] != "--"; ++i) {
    const std::string_view word = words[i];
    if (word.starts_with("--color=")) choice = word.substr(option.size() + 1);
    if (word == option && i + 1 < words.size()) choice = words[i + 1];
  }
  return choice;
}

std::string version_line(VXHost* host) {
  VXBuildRecord library;
  vxvercn1(&library);
  return fmt::format("vxnls {} (libvxnlsloc {}; {})", VXNLS_VERSION, library.label, vxhostVersions(host));
}

ExitCode run_command(const Arguments& arguments, const Messages& messages, Output& out) {
  const Colors colors = colors_for(arguments.value(options::color).value_or(""), STDOUT_FILENO);
  if (arguments.has(options::help) || arguments.has(options::short_help)) {
    const HelpLength length = arguments.has(options::help) ? HelpLength::whole : HelpLength::in_short;
    out.put(help_text(arguments.path(), length, colors));
    return ExitCode::done;
  }
  Session session(arguments, messages);
  if (arguments.has(options::version)) {
    out.line(version_line(session.host()));
    return ExitCode::done;
  }
  // What was asked for by name is never wrong in silence, also where the command has no use for it.
  const bool ranked = arguments.command().ranks_locales && arguments.value(options::locale) == options::ranked_locale;
  if (arguments.has(options::locale) && !ranked) session.locale_name();
  if (arguments.has(options::zone)) session.zone();
  Invocation invocation{arguments, session, out, messages, colors};
  return arguments.command().run(invocation);
}

ExitCode run_words(std::vector<std::string> words, Messages& messages) {
  messages.use_colors(colors_for(color_asked_for(words), STDERR_FILENO));
  Output out(STDOUT_FILENO, "standard output");
  const Arguments arguments(std::move(words));
  messages.use_colors(colors_for(arguments.value(options::color).value_or(""), STDERR_FILENO));
  if (arguments.has(options::quiet)) messages.be_quiet();
  const ExitCode code = run_command(arguments, messages, out);
  out.finish();
  return code;
}

std::terminate_handler usual_end = nullptr;

[[noreturn]] void end() noexcept {
  try {
    if (const std::exception_ptr cause = std::current_exception()) std::rethrow_exception(cause);
  } catch (const std::bad_alloc&) {
    discard_unfinished_file();
    Messages().error(no_memory);
    _exit(static_cast<int>(ExitCode::host));
  } catch (...) {
    usual_end();
  }
  std::abort();
}

}  // namespace

void tell_exhausted_memory() noexcept {
  if (usual_end == nullptr) usual_end = std::set_terminate(end);
}

ExitCode run(std::span<char* const> given) noexcept {
  tell_exhausted_memory();
  Messages messages;
  try {
    return run_words({given.begin(), given.end()}, messages);
  } catch (const Failure& failure) {
    messages.error(failure.what());
    return failure.code();
  } catch (const std::bad_alloc&) {
    messages.error(no_memory);
  } catch (const std::exception& error) {
    messages.error(error.what());
  }
  return ExitCode::host;
}

}  // namespace vxcli
