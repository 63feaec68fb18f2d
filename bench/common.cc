#include "bench/common.h"

#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>

#include "vxnls/vxhost.h"

namespace vxbench {

Random random_of(std::string_view seed) {
  uint64_t hash = 14695981039346656037u;  // FNV-1a
  for (const char c : seed) hash = (hash ^ static_cast<uint8_t>(c)) * 1099511628211u;
  return Random(hash);
}

Row::Row(std::string id, std::string title, Target target) : id_(std::move(id)) {
  static int rows = 0;
  // How bench/report.cc learns about the row, in the order of declaration.
  ::benchmark::AddCustomContext(fmt::format("row {:03} {}", rows++, id_),
                                fmt::format("{}\t{}\t{}", title, target.reach, target.bytes));
}

void require(bool holds, const char* what) {
  if (holds) return;
  static_cast<void>(std::fprintf(stderr, "bench: %s\n", what));
  std::exit(1);
}

namespace {

VXHost* host() {
  static VXHost* const opened = [] {
    VXHost* made = nullptr;
    require(vxhostOpen(nullptr, &made) == 0, vxhostOpenFailure());
    return made;
  }();
  return opened;
}

}  // namespace

VXLocale* locale(const char* name, const char* zone) {
  VXLocale* made = nullptr;
  require(vxhostLocale(host(), name, zone, 0, &made) == 0, name);
  return made;
}

HostContext* host_context() { return vxhostContext(host()); }

int run(const char* family, int argc, char** argv) {
  std::vector<std::string> arguments = {argv[0], "--benchmark_enable_random_interleaving=true",
                                        "--benchmark_repetitions=11", "--benchmark_min_time=0.02",
                                        "--benchmark_display_aggregates_only=true"};
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  int count = static_cast<int>(pointers.size());
  pointers.push_back(nullptr);
  ::benchmark::AddCustomContext("family", family);
  ::benchmark::Initialize(&count, pointers.data());
  if (::benchmark::ReportUnrecognizedArguments(count, pointers.data())) return 2;
  ::benchmark::RunSpecifiedBenchmarks();
  ::benchmark::Shutdown();
  return 0;
}

}  // namespace vxbench
