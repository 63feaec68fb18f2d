// Order of VXChar text: code-point order, with blank padding on request. No locale, no weights, no case.
#ifndef VXNLS_COLLATION_H
#define VXNLS_COLLATION_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Compares two texts unit by unit, as signed 32-bit values.
///   locale    not used; may be null
///   a, b      the texts; a null one, or one with a negative length, is empty
///   length_a, length_b   in VXChars
///   mode      1: the shorter text counts as padded with blanks (U+0020);
///             any other value: a text that continues another one is greater
/// Returns -1, 0 or 1. May run in any number of threads.
/// Example: "abc" against "abc  " gives 0 in mode 1 and -1 in mode 0; against "abc" and a tab, which is below the
/// blank, 1 in mode 1 and -1 in mode 0.
VX_API int32_t NLSSSOrderCompare(VXLocale* locale, const VXChar* a, int64_t length_a, const VXChar* b, int64_t length_b,
                                 uint32_t mode);

/// Sort keys are not made: these three exist so that callers of the whole interface link and run. All arguments are
/// ignored, nothing is written. NLSKeyCreate returns 0 (success), the comparisons return 0 (equal).
VX_API VXStatus NLSKeyCreate(VXLocale* locale, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5);
VX_API int32_t NLSKKOrderCompare(VXLocale* locale, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5);
VX_API int32_t NLSKSOrderCompare(VXLocale* locale, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5);

#ifdef __cplusplus
}
#endif

#endif
