// Blank-padded VXChar text: joining, searching, trimming, case, comparison.
#ifndef VXNLS_STRINGS_H
#define VXNLS_STRINGS_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

VX_API int64_t vxzscat(VXChar* out, int64_t room, VXChar separator, int32_t count, ... /* count x (const VXChar*, int64_t) */);
VX_API int64_t vxzsndx(const VXChar* text, int64_t length, const VXChar* pattern, int64_t pattern_length);
VX_API int64_t vxzspos(const VXChar* text, int64_t length, VXChar ch);
VX_API int64_t vxzstrp(const VXChar* text, int64_t length);
VX_API void    vxzstlo(VXChar* text, int64_t length);
VX_API void    vxzstup(VXChar* text, int64_t length);
VX_API int32_t vxzseqn(const VXChar* a, int64_t length_a, const VXChar* b, int64_t length_b);
VX_API int32_t vxzsncmp(const VXChar* a, int64_t length_a, const VXChar* b, int64_t length_b);
VX_API void    vxzstmin(VXChar* text, int64_t length);
VX_API void    vxzstmax(VXChar* text, int64_t length);

#ifdef __cplusplus
}
#endif

#endif
