// The host's normaliser, handed on: it checks what it is given.
#include "module/host_services.h"
#include "vxnls/utf8.h"

using namespace vxnls;

VXStatus vxzsu8ICUNormalize(const uint8_t* in, int64_t length, uint32_t form, uint64_t a1, uint64_t a2, uint64_t a3,
                            VXStatus* status) {
  VXStatus unwanted = 0;
  VXStatus* const out = status != nullptr ? status : &unwanted;
  VXNormaliser* const normaliser = host::normaliser();
  if (normaliser == nullptr) return *out = VX_E_MEMORY;
  *out = 0;
  return normaliser->ops->normalise(normaliser, in, length, form, a1, a2, a3, out);
}

int32_t vxzsu8ICUNormCompare(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint32_t options,
                             VXStatus* status) {
  VXStatus unwanted = 0;
  VXStatus* const out = status != nullptr ? status : &unwanted;
  VXNormaliser* const normaliser = host::normaliser();
  if (normaliser == nullptr) {
    *out = VX_E_MEMORY;
    return 0;
  }
  *out = 0;
  return normaliser->ops->compare(normaliser, a, length_a, b, length_b, options, out);
}

int32_t vxzsu8ICUNormEqual(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint32_t options,
                           VXStatus* status) {
  VXStatus outcome = 0;
  const int32_t order = vxzsu8ICUNormCompare(a, length_a, b, length_b, options, &outcome);
  if (status != nullptr) *status = outcome;
  return order == 0 && outcome == 0;
}
