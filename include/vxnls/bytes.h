// Byte and memory primitives, their twins over VXChar, and missing values.
//
// The primitives are the C library's behind signed 64-bit counts: a count below 1, or a null pointer, means that there
// is nothing to do. `qm...` counts bytes, `qmz...` counts VXChars of 4 bytes each. All may run in any number of
// threads.
#ifndef VXNLS_BYTES_H
#define VXNLS_BYTES_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The length of a NUL-terminated text, the NUL not counted: bytes, VXChars. 0 for null.
VX_API int64_t qmStrLen(const char* text);
VX_API int64_t qmzStrLen(const VXChar* text);

/// Copies n bytes, n VXChars. The two places must not overlap for Cpy and may overlap for Move. Returns `out`.
VX_API void* qmMemCpy(void* out, const void* in, int64_t n);
VX_API void* qmMemMove(void* out, const void* in, int64_t n);
VX_API VXChar* qmzMemCpy(VXChar* out, const VXChar* in, int64_t n);
VX_API VXChar* qmzMemMove(VXChar* out, const VXChar* in, int64_t n);

/// Sets n bytes to `byte`, n VXChars to `ch`. Returns `out`.
VX_API void* qmMemSet(void* out, uint8_t byte, int64_t n);
VX_API VXChar* qmzMemSet(VXChar* out, VXChar ch, int64_t n);

/// Compares n bytes as unsigned, n VXChars as signed 32-bit values.
/// Returns -1, 0 or 1 by the first difference; 0 when there is nothing to compare.
VX_API int32_t qmMemCmp(const void* a, const void* b, int64_t n);
VX_API int32_t qmzMemCmp(const VXChar* a, const VXChar* b, int64_t n);

/// Finds a byte in n bytes, a character in n VXChars. Returns the index of the first one, or -1.
VX_API int64_t qmMemScan(const void* bytes, int64_t n, uint8_t byte);
VX_API int64_t qmzMemScan(const VXChar* text, int64_t n, VXChar ch);

/// The bit patterns of the missing values by code: 1 "_", 2 "." (the ordinary one), 3 to 28 "A" to "Z". They are NaNs
/// whose bits 40 to 47 hold the two's complement of the code. There is no code 0: entry 0 is the ordinary pattern.
/// As integers, since a load as a double may change a NaN's bits. Example: entry 2 is 0xFFFFFE0000000000.
extern VX_API const uint64_t qmmissv_struct[29];

/// The missing value that is written as `letter`: '_', '.', 'A' to 'Z' or 'a' to 'z'. Any other character gives the
/// ordinary one.
VX_API double qmMissVal(VXChar letter);

/// Sets n doubles to the missing value of `letter`. Nothing is done for a null array or an n below 1.
VX_API void qmMissArray(double* out, int64_t n, VXChar letter);

#ifdef __cplusplus
}
#endif

#endif
