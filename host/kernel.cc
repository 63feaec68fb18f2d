#include "host/kernel.h"

#include <cstdio>
#include <new>

#include "host/lock.h"
#include "host/message_ops.h"
#include "host/pool.h"
#include "host/text.h"
#include "host/track.h"

namespace vxhost {

namespace {

constexpr uint32_t failure = 4;  // the level of a journal entry

constexpr VXHandleOps operations = {
    [](VXHandle*, const VXPoolAttributes*, VXJournal*, const char*) -> VXPool* { return new (std::nothrow) Pool; },
    [](VXHandle*, const VXLockAttributes*, VXJournal*, const char*) -> VXLock* { return new (std::nothrow) Lock; },
    [](VXHandle*, const VXTrackAttributes*, VXJournal*, const char*) -> VXTrack* { return new (std::nothrow) Track; },
    [](VXHandle* self, const VXJournalAttributes*, uint64_t, const char* name) {
      return guarded<VXJournal*>(nullptr, [&] { return static_cast<Kernel*>(self)->create_journal(name); });
    },
    [](VXHandle* self, const VXChar* name, int64_t length, uint64_t) {
      char bytes[32];
      if (!ascii_name(name, length, bytes, sizeof bytes)) return static_cast<VXExtension*>(nullptr);
      return guarded<VXExtension*>(nullptr, [&] {
        return static_cast<Kernel*>(self)->load_extension({bytes, static_cast<size_t>(length)});
      });
    },
};

}  // namespace

Kernel::Kernel(Services& services)
    : VXHandle{&operations, &services.loggers, &services.options, &services.characters, &services.runtime},
      services_(services) {}

Kernel::~Kernel() {
  if (messages_ != nullptr) messages_->ops->destroy(messages_);
}

VXJournal* Kernel::create_journal(const char* name) {
  const std::lock_guard guard(mutex_);
  return &journals_.emplace_back(
      sink, [this](VXStatus status) { return status_text(status); }, name != nullptr ? name : "");
}

VXExtension* Kernel::load_extension(std::string_view name) {
  std::string why;
  VXExtension* const loaded = services_.extensions.load(name, services_.extension_owner, why);
  if (loaded == nullptr) sink.write(failure, "host", why);
  return loaded;
}

VXExtension* Kernel::messages() {
  const std::lock_guard guard(mutex_);
  std::string why;
  if (messages_ == nullptr) messages_ = services_.extensions.load("vxemsg", services_.extension_owner, why);
  return messages_;
}

std::string Kernel::status_text(VXStatus status) {
  char number[16];
  static_cast<void>(std::snprintf(number, sizeof number, "0x%08x", status));
  VXExtension* const extension = messages();
  if (extension == nullptr) return number;
  const auto* const table = reinterpret_cast<const VXHostMessageOps*>(extension->ops);
  const char* const text = table->text(extension, status);
  return text != nullptr ? std::string(number) + ": " + text : number;
}

}  // namespace vxhost
