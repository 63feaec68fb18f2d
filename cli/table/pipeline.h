// Blocks of records through threads: worked on at once, their results taken in order.
#ifndef VXNLS_CLI_TABLE_PIPELINE_H
#define VXNLS_CLI_TABLE_PIPELINE_H

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "cli/table/block_reader.h"

namespace vxcli::table {

/// The same without the type of the results; they lie in `threads + 2` slots (one, when there is one thread).
struct SlotStages {
  std::function<void(unsigned thread, const Block& block, size_t slot)> work;
  std::function<bool(size_t slot)> consume;
  std::function<void()> before_waiting;
};
size_t slots_for(unsigned threads);
void run_slots(BlockReader& reader, unsigned threads, const SlotStages& stages);

template <class Result>
struct Stages {
  using Work = std::function<void(const Block& block, Result& result)>;
  /// Makes a thread's own worker. Called `threads` times, one after the other, on the caller's thread before any work.
  /// A worker fills a result, which is fresh or was consumed before: it clears what it finds. What a worker throws is
  /// thrown to the caller in the block's turn, after everything before it was consumed.
  std::function<Work()> make_worker;
  /// Takes the results strictly in the order of the blocks, on the caller's thread. False ends the run; the rest of the
  /// input is not read.
  std::function<bool(Result& result)> consume;
  /// Before the input is waited for, when all that was read before is consumed: the time to flush. May be empty.
  std::function<void()> before_waiting;
};

/// Reads blocks until the end and gives each to a worker. Blocks are cut anywhere between records: a command whose work
/// looks at one record at a time has the same output whatever the blocks and however many the threads.
/// With one thread all is done on the caller's. Memory: `threads + 2` blocks and results.
/// Throws what reading, a worker or `consume` throws; all threads have ended then.
template <class Result>
void run_pipeline(BlockReader& reader, unsigned threads, const Stages<Result>& stages) {
  if (threads == 0) threads = 1;
  std::vector<Result> results(slots_for(threads));
  std::vector<typename Stages<Result>::Work> workers;
  for (unsigned i = 0; i < threads; ++i) workers.push_back(stages.make_worker());
  run_slots(reader, threads,
            {.work = [&](unsigned thread, const Block& block, size_t slot) { workers[thread](block, results[slot]); },
             .consume = [&](size_t slot) { return stages.consume(results[slot]); },
             .before_waiting = stages.before_waiting});
}

}  // namespace vxcli::table

#endif
