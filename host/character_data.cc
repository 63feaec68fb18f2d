#include "host/character_data.h"

#include <unicode/uchar.h>

#include "host/accounting.h"

namespace vxhost {

namespace {

constexpr VXCharDataOps operations = {
    [](VXCharData*, uint32_t c, uint32_t) { return static_cast<uint32_t>(u_tolower(static_cast<UChar32>(c))); },
    [](VXCharData*, uint32_t c, uint32_t) { return static_cast<uint32_t>(u_toupper(static_cast<UChar32>(c))); },
    [](VXCharData* self) {
      return guarded<VXNormaliser*>(nullptr, [&] { return static_cast<CharacterData*>(self)->create_normaliser(); });
    },
};

}  // namespace

CharacterData::CharacterData() noexcept : VXCharData{&operations, nullptr, nullptr} {}

CharacterData::~CharacterData() {
  if (database == nullptr) return;
  auto* const extension = reinterpret_cast<VXExtension*>(database);
  extension->ops->destroy(extension);
}

VXNormaliser* CharacterData::create_normaliser() {
  const std::lock_guard guard(mutex_);
  return &normalisers_.emplace_back();
}

}  // namespace vxhost
