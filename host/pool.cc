#include "host/pool.h"

#include <cstdlib>

namespace vxhost {

namespace {

constexpr VXPoolOps operations = {
    [](VXPool* self, int64_t bytes, uint32_t flags) -> void* {
      return static_cast<Pool*>(self)->allocate(bytes, (flags & VX_ZERO_FILL) != 0);
    },
    [](VXPool* self, void* block) -> VXStatus { return static_cast<Pool*>(self)->free(block); },
    [](VXPool* self) -> VXStatus {
      delete static_cast<Pool*>(self);
      return 0;
    },
};

}  // namespace

Pool::Pool() noexcept : VXPool{&operations} {}

Pool::~Pool() {
  count(Kind::block, -blocks_);
  for (Header* header = first_; header != nullptr;) {
    Header* const next = header->next;
    std::free(header);
    header = next;
  }
}

void* Pool::allocate(int64_t bytes, bool zero_filled) noexcept {
  if (bytes < 0 || bytes > INT64_MAX - static_cast<int64_t>(sizeof(Header))) return nullptr;
  const size_t whole = sizeof(Header) + static_cast<size_t>(bytes);
  auto* const header = static_cast<Header*>(zero_filled ? std::calloc(1, whole) : std::malloc(whole));
  if (header == nullptr) return nullptr;
  const std::lock_guard guard(mutex_);
  *header = {this, nullptr, first_};
  if (first_ != nullptr) first_->previous = header;
  first_ = header;
  ++blocks_;
  count(Kind::block, 1);
  return header + 1;
}

VXStatus Pool::free(void* block) noexcept {
  if (block == nullptr) return 0;
  Header* const header = static_cast<Header*>(block) - 1;
  if (header->owner != this) return VX_E_RANGE;
  {
    const std::lock_guard guard(mutex_);
    unlink(header);
  }
  std::free(header);
  return 0;
}

int64_t Pool::blocks() noexcept {
  const std::lock_guard guard(mutex_);
  return blocks_;
}

void Pool::unlink(Header* header) noexcept {
  (header->previous != nullptr ? header->previous->next : first_) = header->next;
  if (header->next != nullptr) header->next->previous = header->previous;
  header->owner = nullptr;
  --blocks_;
  count(Kind::block, -1);
}

}  // namespace vxhost
