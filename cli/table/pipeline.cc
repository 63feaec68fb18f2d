#include "cli/table/pipeline.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace vxcli::table {

namespace {

/// A block on its way; slots are used in turn.
struct Slot {
  HeldBlock held;
  std::exception_ptr failure;
  bool done = false;
};

/// The workers and the blocks between them and the caller. Slots are numbered by block, without end, and lie in a ring.
class Crew {
 public:
  Crew(unsigned threads, const SlotStages& stages) : stages_(stages), slots_(slots_for(threads)) {
    if (threads == 1) return;
    try {
      for (unsigned i = 0; i < threads; ++i) threads_.emplace_back([this, i] { work(i); });
    } catch (...) {
      stop();
      throw;
    }
  }
  ~Crew() { stop(); }
  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;

  bool has_room() const { return given_ - consumed_ < slots_.size(); }
  bool idle() const { return given_ == consumed_; }
  HeldBlock& free_block() { return slots_[given_ % slots_.size()].held; }

  void give() {
    Slot& slot = slots_[given_ % slots_.size()];
    slot.failure = nullptr;
    slot.done = false;
    if (threads_.empty()) {
      run(slot, given_ % slots_.size(), 0);
      ++given_;
      return;
    }
    {
      const std::lock_guard lock(mutex_);
      ++given_;
    }
    to_do_.notify_one();
  }

  /// Waits for the oldest block and consumes its result.
  bool consume() {
    const size_t index = consumed_ % slots_.size();
    Slot& slot = slots_[index];
    {
      std::unique_lock lock(mutex_);
      finished_.wait(lock, [&] { return slot.done; });
    }
    ++consumed_;
    if (slot.failure != nullptr) std::rethrow_exception(slot.failure);
    return stages_.consume(index);
  }

 private:
  void run(Slot& slot, size_t index, unsigned thread) {
    try {
      stages_.work(thread, slot.held.block, index);
    } catch (...) {
      slot.failure = std::current_exception();
    }
    {
      const std::lock_guard lock(mutex_);
      slot.done = true;
    }
    finished_.notify_one();
  }

  void work(unsigned thread) {
    for (;;) {
      size_t index = 0;
      {
        std::unique_lock lock(mutex_);
        to_do_.wait(lock, [&] { return stopped_ || taken_ < given_; });
        if (stopped_) return;
        index = taken_++ % slots_.size();
      }
      run(slots_[index], index, thread);
    }
  }

  void stop() {
    {
      const std::lock_guard lock(mutex_);
      stopped_ = true;
    }
    to_do_.notify_all();
    for (std::thread& thread : threads_) thread.join();
    threads_.clear();
  }

  const SlotStages& stages_;
  std::vector<Slot> slots_;
  std::vector<std::thread> threads_;
  std::mutex mutex_;
  std::condition_variable to_do_;
  std::condition_variable finished_;
  size_t given_ = 0;     // written by the caller under the lock
  size_t taken_ = 0;     // by the workers
  size_t consumed_ = 0;  // the caller's own
  bool stopped_ = false;
};

}  // namespace

size_t slots_for(unsigned threads) { return threads <= 1 ? 1 : threads + 2; }

void run_slots(BlockReader& reader, unsigned threads, const SlotStages& stages) {
  Crew crew(threads, stages);
  std::exception_ptr failure;  // of reading: its turn comes after all that was read before
  bool ended = false;
  while (!ended || !crew.idle()) {
    while (!ended && crew.has_room()) {
      if (crew.idle() && !reader.ready()) {
        if (stages.before_waiting) stages.before_waiting();
        reader.wait();
      }
      BlockReader::Got got = BlockReader::Got::end;
      try {
        got = reader.next(crew.free_block());
      } catch (...) {
        failure = std::current_exception();
      }
      if (got == BlockReader::Got::pause) break;
      ended = got == BlockReader::Got::end;
      if (!ended) crew.give();
    }
    if (!crew.idle() && !crew.consume()) return;
  }
  if (failure != nullptr) std::rethrow_exception(failure);
}

}  // namespace vxcli::table
