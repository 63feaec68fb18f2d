// Byte and memory primitives, and missing values.
#ifndef VXNLS_BYTES_H
#define VXNLS_BYTES_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

VX_API int64_t qmStrLen(const char* text);                                  /* null: 0 */
VX_API void*   qmMemCpy(void* out, const void* in, int64_t n);
VX_API int64_t qmMemScan(const void* bytes, int64_t n, uint8_t byte);       /* index or -1 */
VX_API double  qmMissVal(VXChar letter);                                    /* '_', '.', 'A'..'Z', 'a'..'z'; else ordinary */
VX_API void    qmMissArray(double* out, int64_t n, VXChar letter);
extern VX_API const uint64_t qmmissv_struct[29];                            /* bit patterns; entry c = code c, entry 2 ordinary */

#ifdef __cplusplus
}
#endif

#endif
