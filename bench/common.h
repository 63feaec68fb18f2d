// The frame of the benchmarks. A family is one program, bench/FAMILY.cc; its main() declares rows and runs them:
//
//   int main(int argc, char** argv) {
//     const auto values = vxbench::values<double>("write a datetime", [](auto& random) { return ...(random); });
//     vxbench::Row("write-datetime", "write `2024-03-07 14:05:09` from seconds", {.reach = 0.65})
//         .ours([=](size_t i) { return NLSDatetimeFormat(locale, 0, out, 64, &length, values[i]); })
//         .peer("fmt, pattern compiled in", [=](size_t i) { return fmt::format_to(...); });
//     return vxbench::run("datetime", argc, argv);
//   }
//
// - A contender is called with i = 0, 1, ... 65,535, 0, ...: `values()` makes inputs for exactly that many, so that
//   nothing repeats within 50,000 calls. What it returns counts as used, and all memory counts as read.
// - `reach` is the time ratio (ours / the row's fastest peer) that is to be reached; vxbench::times(10) is "ten times
// the
//   rate". A target against one certain peer is a row of its own.
// - With `.bytes` the row is shown in GB/s of that many bytes a call, otherwise in ns a call.
// - Every contender of every row runs in one process in repetitions that are interleaved at random; medians of
//   processor time are compared. bench/report.cc makes the tables from the JSON of the programs; a row that is not
//   reached has its paragraph in bench/notes.md under `## ROW-ID`.
//
// In bench/CMakeLists.txt: vx_benchmark(FAMILY LIBRARY...). Run: script/bench FAMILY, or the program itself with
// --benchmark_filter=ROW-ID.
#ifndef VXNLS_BENCH_COMMON_H
#define VXNLS_BENCH_COMMON_H

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "vxnls/vxnls.h"

namespace vxbench {

inline constexpr size_t value_count = 65536;

using Random = std::mt19937_64;

/// Seeded by a text, the same on every machine and in every run.
Random random_of(std::string_view seed);

/// Inputs for all the calls of a row before they repeat.
template <class T, class Make>
std::vector<T> values(std::string_view seed, Make make) {
  Random random = random_of(seed);
  std::vector<T> all;
  all.reserve(value_count);
  for (size_t i = 0; i < value_count; ++i) all.push_back(make(random));
  return all;
}

/// Uniform from `low` to `high`, both included.
inline int64_t between(Random& random, int64_t low, int64_t high) {
  const uint64_t span = static_cast<uint64_t>(high) - static_cast<uint64_t>(low) + 1;
  return static_cast<int64_t>(static_cast<uint64_t>(low) + (span == 0 ? random() : random() % span));
}

/// The time ratio of a rate that is `rate` times as high.
constexpr double times(double rate) { return 1 / rate; }

struct Target {
  double reach = 0;   // 0: the row is shown without a target
  int64_t bytes = 0;  // that one call works on; 0: the row counts calls
};

class Row {
 public:
  Row(std::string id, std::string title, Target target);

  template <class Contender>
  Row& ours(Contender contender) {
    return add("vxnlsloc", std::move(contender));
  }
  template <class Contender>
  Row& peer(const std::string& name, Contender contender) {
    return add(name, std::move(contender));
  }

 private:
  template <class Contender>
  Row& add(const std::string& name, Contender contender) {
    ::benchmark::RegisterBenchmark((id_ + "/" + name).c_str(), [contender](::benchmark::State& state) mutable {
      size_t i = 0;
      for (auto _ : state) {
        if constexpr (std::is_void_v<decltype(contender(i))>) {
          contender(i);
        } else {
          ::benchmark::DoNotOptimize(contender(i));
        }
        ::benchmark::ClobberMemory();
        i = (i + 1) % value_count;
      }
    });
    return *this;
  }

  std::string id_;
};

/// A locale of the reference host, which stays open to the end of the program. Ends the program when there is none.
VXLocale* locale(const char* name, const char* zone = "UTC");
HostContext* host_context();

/// Ends the program unless `holds`: contenders are compared only when they do the same.
void require(bool holds, const char* what);

/// Runs all rows; the arguments are Google Benchmark's. `family` heads their table.
int run(const char* family, int argc, char** argv);

}  // namespace vxbench

#endif
