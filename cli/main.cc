// vxnls: dates, times and numbers in every locale and time zone.
#include <csignal>

#include "cli/output.h"
#include "cli/run.h"

int main(int argc, char** argv) {
  vxcli::occupy_standard_descriptors();
  // A closed pipe is a failure to write like any other, with a message and an exit code.
  std::signal(SIGPIPE, SIG_IGN);
  return static_cast<int>(vxcli::run({argv + (argc > 0 ? 1 : 0), argv + argc}));
}
