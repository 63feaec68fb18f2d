// vxnls: dates, times and numbers in every locale and time zone.
#include <csignal>

#include "cli/file.h"
#include "cli/output.h"
#include "cli/run.h"

namespace {

void end_by(int signal) {
  vxcli::discard_unfinished_file();
  static_cast<void>(std::signal(signal, SIG_DFL));
  static_cast<void>(std::raise(signal));
}

/// First of all: constants of a library need memory before main() begins.
[[gnu::constructor(101)]] void prepare() { vxcli::tell_exhausted_memory(); }

}  // namespace

int main(int argc, char** argv) {
  vxcli::occupy_standard_descriptors();
  // A closed pipe is a failure to write like any other, with a message and an exit code.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    const auto before = std::signal(signal, end_by);
    if (before == SIG_IGN) static_cast<void>(std::signal(signal, before));  // as nohup(1) wants it
  }
  return static_cast<int>(vxcli::run({argv + (argc > 0 ? 1 : 0), argv + argc}));
}
