// Unicode normalisation of UTF-8 text.
#ifndef VXNLS_HOST_NORMALISER_H
#define VXNLS_HOST_NORMALISER_H

#include <string_view>

#include "host/accounting.h"
#include "vxnls/host.h"

namespace vxhost {

/// normalise: form 0 NFC, 1 NFD, 2 NFKC, 3 NFKD; its three words are the destination (uint8_t*, null to measure only),
/// the room in bytes (int64_t) and the length (int64_t*), which receives the bytes that the result needs. Nothing is
/// written to a destination that is too small (VX_E_ROOM).
///
/// compare: -1, 0 or 1 by code points of the canonically decomposed texts; option bit 0: case is ignored (full case
/// folding). The result is 0 with a status that is not 0 when the texts cannot be compared.
///
/// Statuses of both: VX_E_SEQUENCE malformed UTF-8, VX_E_LENGTH a negative length, VX_E_NULL a null text,
/// VX_E_KIND an unknown form or option, VX_E_RANGE a text of 2 GiB or more, VX_E_MEMORY.
class Normaliser final : public VXNormaliser, Counted<Kind::normaliser> {
 public:
  Normaliser() noexcept;
};

}  // namespace vxhost

#endif
