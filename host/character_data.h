// Case mapping of single characters, and the normalisers.
#ifndef VXNLS_HOST_CHARACTER_DATA_H
#define VXNLS_HOST_CHARACTER_DATA_H

#include <list>
#include <mutex>

#include "host/normaliser.h"
#include "vxnls/host.h"

namespace vxhost {

/// Simple case mapping by ICU, the same for casing and for comparing. The Unicode database that the library keeps here
/// is destroyed with it, so it must go before the loader that the database came from.
class CharacterData final : public VXCharData {
 public:
  CharacterData() noexcept;
  ~CharacterData();
  CharacterData(const CharacterData&) = delete;
  CharacterData& operator=(const CharacterData&) = delete;

  VXNormaliser* create_normaliser();

 private:
  std::mutex mutex_;
  std::list<Normaliser> normalisers_;  // their table has no destroy: they live as long as this
};

}  // namespace vxhost

#endif
