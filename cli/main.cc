// vxnls: dates, times and numbers in every locale and time zone.
#include <csignal>
#include <exception>
#include <string>
#include <vector>

#include "cli/output.h"
#include "cli/run.h"

int main(int argc, char** argv) {
  vxcli::occupy_standard_descriptors();
  // A closed pipe is a failure to write like any other, with a message and an exit code.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return static_cast<int>(vxcli::run({argv + (argc > 0 ? 1 : 0), argv + argc}));
  } catch (const std::exception& error) {
    vxcli::Messages().error(error.what());
    return static_cast<int>(vxcli::ExitCode::host);
  }
}
