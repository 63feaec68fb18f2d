// The command line, read by the table of commands.
#ifndef VXNLS_CLI_ARGUMENTS_H
#define VXNLS_CLI_ARGUMENTS_H

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command.h"

namespace vxcli {

class Arguments {
 public:
  /// Finds the command and reads its options, which may stand before or behind its values. Everything behind "--" is a
  /// value. Throws Failure (ExitCode::usage).
  explicit Arguments(std::vector<std::string> words);

  /// From the root down.
  const std::vector<const Command*>& path() const { return path_; }
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

  std::vector<const Command*> path_;
  std::map<const Option*, std::vector<std::string>> options_;
  std::vector<std::string> values_;
};

/// "vxnls format date"
std::string full_name(const std::vector<const Command*>& path);
/// "--locale" or "-h"
std::string spelled(const Option& option);

}  // namespace vxcli

#endif
