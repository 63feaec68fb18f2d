#include "host/logger_service.h"

namespace vxhost {

namespace {

std::u32string name_of(const VXChar* name, int64_t length) {
  return length > 0 && name != nullptr ? std::u32string(name, name + length) : std::u32string();
}

constexpr VXLoggerServiceOps operations = {
    [](VXLoggerService* self, const VXChar* name, int64_t length) {
      return guarded<VXLogger*>(nullptr,
                                [&] { return static_cast<LoggerService*>(self)->find(name_of(name, length)); });
    },
    [](VXLoggerService* self, const VXChar* name, int64_t length) {
      return guarded<VXLogger*>(nullptr,
                                [&] { return static_cast<LoggerService*>(self)->create(name_of(name, length)); });
    },
};

}  // namespace

LoggerService::LoggerService() noexcept : VXLoggerService{&operations} {}

VXLogger* LoggerService::find(const std::u32string& name) {
  const std::lock_guard guard(mutex_);
  const auto at = loggers_.find(name);
  return at != loggers_.end() ? &at->second : nullptr;
}

VXLogger* LoggerService::create(const std::u32string& name) {
  const std::lock_guard guard(mutex_);
  return &loggers_.try_emplace(name).first->second;
}

}  // namespace vxhost
