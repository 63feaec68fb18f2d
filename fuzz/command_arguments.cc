// Any words as a command line: they are understood or refused as wrong usage, never anything else; and what is
// understood has a command whose help can be written.
#include <cstdlib>
#include <string>
#include <vector>

#include "cli/arguments.h"
#include "cli/errors.h"
#include "cli/help.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::string> words(1);
  for (size_t i = 0; i < size; ++i) {
    if (data[i] == 0) words.emplace_back();
    else words.back().push_back(static_cast<char>(data[i]));
  }
  try {
    const vxcli::Arguments arguments(words);
    if (arguments.path().empty() || vxcli::help_text(arguments.path(), vxcli::HelpLength::whole).empty()) std::abort();
    for (const vxcli::Option* option : arguments.command().options) {
      if (arguments.has(*option) != !arguments.all_values(*option).empty() && !option->is_flag()) std::abort();
    }
  } catch (const vxcli::Failure& failure) {
    if (failure.code() != vxcli::ExitCode::usage || std::string(failure.what()).empty()) std::abort();
  }
  return 0;
}
