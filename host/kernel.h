// The kernel handle: it makes pools, locks, tracks and journals, loads extensions, and leads to the services.
#ifndef VXNLS_HOST_KERNEL_H
#define VXNLS_HOST_KERNEL_H

#include <list>
#include <mutex>
#include <string>
#include <string_view>

#include "host/character_data.h"
#include "host/extension_loader.h"
#include "host/journal.h"
#include "host/logger_service.h"
#include "host/option_service.h"
#include "vxnls/host.h"

namespace vxhost {

/// What all kernel handles over one loaded library share. The extensions come first, so that they go last: the
/// character data holds one.
struct Services {
  explicit Services(const std::string& folder) : extensions(folder, SearchPath::of_environment()) {}

  ExtensionLoader extensions;
  VXHandle* extension_owner = nullptr;  // the handle that outlives every extension
  LoggerService loggers;
  OptionService options;
  CharacterData characters;
  VXRuntime runtime{};  // no conversions of its own: the library formats
};

class Kernel final : public VXHandle {
 public:
  explicit Kernel(Services& services);
  ~Kernel();
  Kernel(const Kernel&) = delete;
  Kernel& operator=(const Kernel&) = delete;

  VXJournal* create_journal(const char* name);
  /// Null when it cannot be had; the reason goes to the journal.
  VXExtension* load_extension(std::string_view name);
  /// "0x803fc002: memory is exhausted", or the number alone when "vxemsg" cannot be had.
  std::string status_text(VXStatus status);

  JournalSink sink;

 private:
  VXExtension* messages();

  Services& services_;
  std::mutex mutex_;
  std::list<Journal> journals_;  // their table has no destroy: they live as long as the kernel
  VXExtension* messages_ = nullptr;
};

}  // namespace vxhost

#endif
