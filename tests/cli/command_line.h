// Lines of the shell in which "vxnls" is the command that was built.
#ifndef VXNLS_TESTS_CLI_COMMAND_LINE_H
#define VXNLS_TESTS_CLI_COMMAND_LINE_H

#include <cstdlib>
#include <string>
#include <string_view>

#include "tests/support/process.h"

namespace vxtest {

/// In English and UTC, unless the line says otherwise.
inline ProcessResult run_line(const std::string& line, std::string_view input = {}) {
  Environment variables{
      {"PATH", std::string(VXNLS_COMMAND_FOLDER) + ":/usr/bin:/bin"}, {"LANG", "en_US.UTF-8"}, {"TZ", "UTC"}};
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS"}) {
    if (const char* value = std::getenv(name); value != nullptr) variables.emplace_back(name, value);
  }
  return run_shell(line, input, variables);
}

}  // namespace vxtest

#endif
