// What a command is: one constant that the parsing of arguments, the help and everything generated from it share.
//
// A command lives in a file of its own, command_NAME.cc, and stands in the table of commands.cc.
#ifndef VXNLS_CLI_COMMAND_H
#define VXNLS_CLI_COMMAND_H

#include <span>
#include <string_view>

#include "cli/errors.h"

namespace vxcli {

struct Invocation;

/// What the values of an option or argument are, for completion.
enum class Completes { nothing, choices, locales, zones, files, commands };

/// An option is known by its address: commands that share one refer to the same constant.
struct Option {
  std::string_view name;        // without dashes; empty: it has a letter only
  char letter = 0;              // 0: none
  std::string_view value = {};  // stands for the value in help; empty: a flag
  std::string_view help = {};
  std::span<const std::string_view> choices = {};  // where there are any, nothing else is accepted
  Completes completes = Completes::nothing;

  constexpr bool is_flag() const { return value.empty(); }
};

struct Argument {
  std::string_view name;  // "VALUE"
  std::string_view help;
  bool required = false;
  bool repeats = false;  // only the last
  Completes completes = Completes::nothing;
  std::span<const std::string_view> choices = {};  // where there are any, nothing else is accepted
};

/// As typed behind a prompt, and what that prints. The tests run them.
struct Example {
  std::string_view line;
  std::string_view output;
};

/// The variable that names the locale of a command between LC_ALL and LANG: LC_TIME, LC_NUMERIC, or the first of the
/// two.
enum class LocaleCategory { time, numeric, both };

struct Command {
  std::string_view name;
  std::string_view summary;           // a line, without a full stop
  std::string_view description = {};  // paragraphs
  std::span<const Argument> arguments = {};
  std::span<const Option* const> options = {};
  std::span<const Example> examples = {};
  std::span<const Command* const> commands = {};
  ExitCode (*run)(Invocation&) = nullptr;  // null: only its commands do something
  LocaleCategory category = LocaleCategory::time;
  bool ranks_locales = false;  // "--locale auto" is understood
};

/// The command `vxnls` itself: all others stand below it. Its options are understood by every command.
extern const Command root_command;

}  // namespace vxcli

#endif
