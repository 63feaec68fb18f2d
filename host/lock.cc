#include "host/lock.h"

namespace vxhost {

namespace {

constexpr VXLockOps operations = {
    [](VXLock* self, uint32_t, uint32_t) -> VXStatus {
      return guarded<VXStatus>(VX_E_MEMORY, [self] {
        static_cast<Lock*>(self)->acquire();
        return 0u;
      });
    },
    [](VXLock* self) -> VXStatus {
      static_cast<Lock*>(self)->release();
      return 0;
    },
    [](VXLock* self) -> VXStatus {
      auto* const lock = static_cast<Lock*>(self);
      if (lock->held()) return VX_E_RANGE;  // somebody is inside: it stays, and stays counted
      delete lock;
      return 0;
    },
};

}  // namespace

Lock::Lock() noexcept : VXLock{&operations} {}

void Lock::acquire() {
  if (!held_here()) {
    mutex_.lock();
    holder_.store(std::this_thread::get_id(), std::memory_order_relaxed);
  }
  ++depth_;
}

void Lock::release() noexcept {
  if (!held_here()) return count_stray_release();
  if (--depth_ > 0) return;
  holder_.store(std::thread::id(), std::memory_order_relaxed);
  mutex_.unlock();
}

}  // namespace vxhost
