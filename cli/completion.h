// What may come next on a command line, by the table of commands; the shells ask through their scripts.
#ifndef VXNLS_CLI_COMPLETION_H
#define VXNLS_CLI_COMPLETION_H

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command.h"

namespace vxcli {

struct Candidate {
  std::string word;
  std::string help;
};

struct Completion {
  /// Locales, zones and files are the caller's to add to the candidates.
  Completes what = Completes::nothing;
  /// What stands in the word before the part that is to be completed: "--locale=".
  std::string prefix;
  std::vector<Candidate> candidates;
};

/// `words` are those behind the program's name; the last one is to be completed and may be empty. Candidates are all
/// that may stand there, whatever the last word begins with.
Completion complete(std::span<const std::string> words);

/// The script that makes a shell ask; "bash", "zsh" or "fish".
std::string_view completion_script(std::string_view shell);

}  // namespace vxcli

#endif
