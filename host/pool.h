// Memory pools that know every block they gave out.
#ifndef VXNLS_HOST_POOL_H
#define VXNLS_HOST_POOL_H

#include <mutex>

#include "host/accounting.h"
#include "vxnls/host.h"

namespace vxhost {

/// A pool over the C heap. Each block lies in an allocation of its own, so that memory checkers see its exact end.
class Pool final : public VXPool, Counted<Kind::pool> {
 public:
  Pool() noexcept;
  ~Pool();

  /// Null when memory is exhausted or `bytes` is negative. 0 bytes give a block of its own.
  void* allocate(int64_t bytes, bool zero_filled) noexcept;
  /// `block` is null or came from this pool and was not freed since; a block of another pool is refused.
  VXStatus free(void* block) noexcept;
  int64_t blocks() noexcept;

 private:
  struct alignas(16) Header {
    Pool* owner;
    Header* previous;
    Header* next;
  };
  void unlink(Header* header) noexcept;

  std::mutex mutex_;
  Header* first_ = nullptr;
  int64_t blocks_ = 0;
};

}  // namespace vxhost

#endif
