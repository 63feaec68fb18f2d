#include "host/accounting.h"

#include <array>
#include <atomic>

namespace vxhost {

namespace {

struct Row {
  const char* singular;
  const char* plural;
};
// In the order of Kind.
constexpr Row names[] = {
    {"pool", "pools"},       {"block", "blocks"},           {"lock", "locks"},
    {"track", "tracks"},     {"entry", "entries"},          {"reference to an entry", "references to entries"},
    {"journal", "journals"}, {"logger", "loggers"},         {"extension", "extensions"},
    {"zone", "zones"},       {"normaliser", "normalisers"},
};

constinit std::array<std::atomic<int64_t>, std::size(names)> counts{};
constinit std::atomic<int64_t> strays{0};

}  // namespace

void count(Kind kind, int64_t change) noexcept {
  counts[static_cast<size_t>(kind)].fetch_add(change, std::memory_order_relaxed);
}

int64_t alive() noexcept {
  int64_t sum = 0;
  for (const auto& cell : counts) sum += cell.load(std::memory_order_relaxed);
  return sum;
}

std::string alive_text() {
  std::string text;
  for (size_t kind = 0; kind < counts.size(); ++kind) {
    const int64_t n = counts[kind].load(std::memory_order_relaxed);
    if (n == 0) continue;
    if (!text.empty()) text += ", ";
    text += std::to_string(n) + ' ' + (n == 1 ? names[kind].singular : names[kind].plural);
  }
  return text;
}

void count_stray_release() noexcept { strays.fetch_add(1, std::memory_order_relaxed); }
int64_t stray_releases() noexcept { return strays.load(std::memory_order_relaxed); }

}  // namespace vxhost
