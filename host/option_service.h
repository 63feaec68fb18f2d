// Integer options, preset by the environment.
#ifndef VXNLS_HOST_OPTION_SERVICE_H
#define VXNLS_HOST_OPTION_SERVICE_H

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "vxnls/host.h"

namespace vxhost {

/// An option is set by a call, or else by the environment variable of its name, which is read once, when the option is
/// first asked for. Only names that begin with "VX_" are options; a variable that is no integer sets nothing.
class OptionService final : public VXOptionService {
 public:
  OptionService() noexcept;

  std::optional<int64_t> read(std::string_view name);
  /// False when the name is no option's.
  bool set(std::string_view name, int64_t value);

 private:
  std::mutex mutex_;
  std::map<std::string, std::optional<int64_t>, std::less<>> values_;
};

}  // namespace vxhost

#endif
