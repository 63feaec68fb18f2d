// The command line, read by the table of commands.
#ifndef VXNLS_CLI_ARGUMENTS_H
#define VXNLS_CLI_ARGUMENTS_H

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command.h"

namespace vxcli {

/// Commands from the root down to the one that is meant.
using CommandPath = std::vector<const Command*>;

class Arguments {
 public:
  /// Finds the command and reads its options, which may stand before or behind its values. Everything behind "--" is a
  /// value. Throws Failure (ExitCode::usage).
  explicit Arguments(std::vector<std::string> words);

  const CommandPath& path() const { return path_; }
  const Command& command() const { return *path_.back(); }

  bool has(const Option& option) const { return options_.contains(&option); }
  /// The last one given.
  std::optional<std::string> value(const Option& option) const;
  std::vector<std::string> all_values(const Option& option) const;
  const std::vector<std::string>& values() const { return values_; }

 private:
  void read_level(std::vector<std::string>& words, bool stop_at_first_word);
  void check_choices() const;
  void check_count() const;
  void adopt(const Option& option, const std::vector<std::string>& texts);

  CommandPath path_;
  std::map<const Option*, std::vector<std::string>> options_;
  std::vector<std::string> values_;
};

constexpr std::string_view end_of_options = "--";

/// Negative numbers are values.
bool looks_like_option(std::string_view word);
/// Those of every command of a path, each once.
std::vector<const Option*> options_of(const CommandPath& path);
/// Null: `parent` has no command of this name.
const Command* find_command(const Command& parent, std::string_view name);

/// Every command, each before those below it.
void for_each_command(const std::function<void(const CommandPath&)>& each);

/// "vxnls format date"
std::string full_name(const CommandPath& path);
/// "--locale" or "-h"
std::string spelled(const Option& option);

}  // namespace vxcli

#endif
