#include "host/option_service.h"

#include <charconv>
#include <cstdlib>

#include "host/accounting.h"
#include "host/text.h"

namespace vxhost {

namespace {

constexpr int64_t longest_name = 64;

bool is_option(std::string_view name) {
  return name.starts_with("VX_") && name.size() <= static_cast<size_t>(longest_name) &&
         name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_") == std::string_view::npos;
}

std::optional<int64_t> preset(const std::string& name) {
  const char* const text = std::getenv(name.c_str());
  if (text == nullptr) return std::nullopt;
  const std::string_view digits(text);
  int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return value;
}

constexpr VXOptionServiceOps operations = {
    [](VXOptionService* self, const VXChar* name, int64_t length, uint32_t kind, int64_t* cell) -> VXStatus {
      if (cell == nullptr) return VX_E_NULL;
      if (kind != VX_OPTION_INTEGER) return VX_E_KIND;
      char bytes[longest_name];
      if (!ascii_name(name, length, bytes, longest_name)) return 0;
      return guarded<VXStatus>(VX_E_MEMORY, [&] {
        const auto value = static_cast<OptionService*>(self)->read({bytes, static_cast<size_t>(length)});
        if (value) *cell = *value;
        return 0u;
      });
    },
};

}  // namespace

OptionService::OptionService() noexcept : VXOptionService{&operations} {}

std::optional<int64_t> OptionService::read(std::string_view name) {
  if (!is_option(name)) return std::nullopt;
  const std::lock_guard guard(mutex_);
  const auto known = values_.find(name);
  if (known != values_.end()) return known->second;
  const std::string text(name);
  return values_.emplace(text, preset(text)).first->second;
}

bool OptionService::set(std::string_view name, int64_t value) {
  if (!is_option(name)) return false;
  const std::lock_guard guard(mutex_);
  values_.insert_or_assign(std::string(name), value);
  return true;
}

}  // namespace vxhost
