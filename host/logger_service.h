// Named loggers.
#ifndef VXNLS_HOST_LOGGER_SERVICE_H
#define VXNLS_HOST_LOGGER_SERVICE_H

#include <map>
#include <mutex>
#include <string>

#include "host/accounting.h"
#include "vxnls/host.h"

/// What a VXLogger is in this host: a name that says that its subject is logged.
struct VXLogger : vxhost::Counted<vxhost::Kind::logger> {};

namespace vxhost {

/// Keeps the loggers that were created, until the service ends.
class LoggerService final : public VXLoggerService {
 public:
  LoggerService() noexcept;

  VXLogger* find(const std::u32string& name);
  /// The logger of that name; made when there is none.
  VXLogger* create(const std::u32string& name);

 private:
  std::mutex mutex_;
  std::map<std::u32string, VXLogger> loggers_;
};

}  // namespace vxhost

#endif
