// Locks whose release by somebody else does nothing.
#ifndef VXNLS_HOST_LOCK_H
#define VXNLS_HOST_LOCK_H

#include <atomic>
#include <mutex>
#include <thread>

#include "host/accounting.h"
#include "vxnls/host.h"

namespace vxhost {

/// A lock that its holder may take again; each acquire wants a release. A release by a thread that does not hold the
/// lock is counted and does nothing: locale creation releases its lock on one road before it has taken it.
class Lock final : public VXLock, Counted<Kind::lock> {
 public:
  Lock() noexcept;

  void acquire();
  void release() noexcept;
  bool held() const noexcept { return holder_.load(std::memory_order_relaxed) != std::thread::id(); }

 private:
  bool held_here() const noexcept { return holder_.load(std::memory_order_relaxed) == std::this_thread::get_id(); }

  std::mutex mutex_;
  std::atomic<std::thread::id> holder_{};  // compared by other threads; only the holder's own answer matters
  int64_t depth_ = 0;                      // of the holder
};

}  // namespace vxhost

#endif
