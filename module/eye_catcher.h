// The mark by which a host recognises the objects of this library.
#ifndef VXNLS_MODULE_EYE_CATCHER_H
#define VXNLS_MODULE_EYE_CATCHER_H

#include <cstdint>

namespace vxnls {

/// The first four bytes of a module and of a locale: "nevo", little-endian.
inline constexpr uint32_t eye_catcher = 0x6f76656e;

}  // namespace vxnls

#endif
