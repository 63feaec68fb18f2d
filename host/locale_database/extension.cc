// The extension "vxnlsldb": the locale database as the host loads it.
#include "host/extension.h"

#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "host/locale_database/cldr.h"
#include "host/locale_database/mapping.h"
#include "host/locale_database/rules.h"
#include "host/locale_database/text.h"
#include "host/locale_database_ops.h"

namespace {

using namespace vxnlsldb;

struct Database : VXLocaleDatabase {
  VXHostExtensionOwner* owner;
};

/// Nothing escapes into C: what fails here is memory.
template <class Function>
VXStatus guarded(Function function) {
  try {
    return function();
  } catch (const std::bad_alloc&) {
    return VX_E_MEMORY;
  }
}

std::optional<std::string> ascii_name(const VXChar* name, int64_t length) {
  if (length < 1 || length > static_cast<int64_t>(longest_text)) return std::nullopt;
  std::string text;
  for (int64_t i = 0; i < length; ++i) {
    const VXChar c = name[i];
    const bool plain =
        (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
    if (!plain) return std::nullopt;
    text += static_cast<char>(c);
  }
  return text;
}

VXStatus destroy(VXExtension* self) {
  auto* const database = static_cast<Database*>(reinterpret_cast<VXLocaleDatabase*>(self));
  VXHostExtensionOwner* const owner = database->owner;
  delete database;
  owner->closed(owner);
  return 0;
}

VXStatus fill(VXLocaleDatabase*, VXLocaleData* record, const VXChar* name, int64_t length) {
  if (record == nullptr || name == nullptr) return VX_E_NULL;
  return guarded([&] {
    const std::optional<std::string> text = ascii_name(name, length);
    return text ? fill_record(text->c_str(), record, nullptr) : VX_E_NOMATCH;
  });
}

VXStatus for_each_fallback(VXLocaleDatabase*, const char* name,
                           int (*each)(void* user, const char* entry, const char* used, const char* reason),
                           void* user) {
  if (name == nullptr || each == nullptr) return VX_E_NULL;
  return guarded([&] {
    const auto record = std::make_unique<VXLocaleData>();
    std::vector<Fallback> fallbacks;
    const VXStatus status = fill_record(name, record.get(), &fallbacks);
    for (const Fallback& fallback : fallbacks) {
      if (each(user, fallback.entry.c_str(), fallback.used.c_str(), fallback.reason.c_str()) != 0) break;
    }
    return status;
  });
}

VXStatus check(VXLocaleDatabase*, const VXLocaleData* record,
               int (*each)(void* user, const char* rule, const char* entry, const char* text), void* user) {
  if (record == nullptr || each == nullptr) return VX_E_NULL;
  return guarded([&] {
    check_record(*record, [&](const std::string& entry, const Violation& violation) {
      return each(user, label(violation.rule).c_str(), entry.c_str(), violation.text.c_str()) == 0;
    });
    return VXStatus{0};
  });
}

constexpr VXHostLocaleDatabaseOps operations = {{&destroy, &fill}, &for_each_fallback, &check};

VXExtension* open(VXHostExtensionOwner* owner) {
  VXLocaleDatabase* const database = new (std::nothrow) Database{{&operations.base}, owner};
  // The loader knows every extension by its table's first operation, and casts back by name.
  return reinterpret_cast<VXExtension*>(database);
}

}  // namespace

VXHOST_EXTENSION("vxnlsldb", open);
