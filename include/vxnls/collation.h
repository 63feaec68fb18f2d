// Order of VXChar text.
#ifndef VXNLS_COLLATION_H
#define VXNLS_COLLATION_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

VX_API int32_t NLSSSOrderCompare(VXLocale*, const VXChar* a, int64_t length_a, const VXChar* b, int64_t length_b, uint32_t mode);
VX_API VXStatus NLSKeyCreate(VXLocale*, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5);
VX_API int32_t NLSKKOrderCompare(VXLocale*, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5);
VX_API int32_t NLSKSOrderCompare(VXLocale*, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5);

#ifdef __cplusplus
}
#endif

#endif
