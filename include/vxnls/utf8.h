// Services over UTF-8 text: lengths, stepping, modified UTF-8, case, comparison.
#ifndef VXNLS_UTF8_H
#define VXNLS_UTF8_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

VX_API int32_t utf8_len(const uint8_t* lead);
VX_API int64_t UTF8_SLEN(const uint8_t* text);
VX_API int64_t UTF8_SLENB(const uint8_t* text, int64_t n);
VX_API int64_t UTF8_BLEN(const uint8_t* text);
VX_API int64_t UTF8_BLENB(const uint8_t* text, int64_t n);
VX_API int64_t vxzsu8CharSize(const uint8_t* ch, uint8_t* valid /* or null */);
VX_API uint8_t* vxzsu8NextChar(const uint8_t* ch);
VX_API int64_t vxzsu8NumChars(const uint8_t* text, int64_t n);
VX_API int64_t vxzsu8ByteLength(const uint8_t* text, int64_t characters);
VX_API void    vxzsu8Lengths(const uint8_t* text, int64_t* characters /* or null */, int64_t* bytes /* or null */);
VX_API int32_t vxzsu8IsCombining(const uint8_t* ch);
VX_API VXStatus vxzsu8Encode(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written /* or null */, uint32_t options);
VX_API VXStatus vxzsu8Decode(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written /* or null */, uint32_t options);

VX_API void vxzsu8Lower(uint8_t* text, int64_t n);
VX_API void vxzsu8Upper(uint8_t* text, int64_t n);
VX_API VXStatus vxzsu8Lower2(const uint8_t* in, int64_t length, uint8_t* out /* or null */, int64_t room, int64_t* written /* or null */);
VX_API VXStatus vxzsu8Upper2(const uint8_t* in, int64_t length, uint8_t* out /* or null */, int64_t room, int64_t* written /* or null */);
VX_API int32_t vxzsu8CompareText(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint64_t ignored);
VX_API int32_t vxzsu8Compare(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b);
VX_API int32_t vxzsu8NormCompareText(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint64_t ignored);
VX_API int32_t vxzsu8NormCompare(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b);
VX_API int32_t vxzsu8NormEqualText(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint64_t ignored);
VX_API int32_t vxzsu8NormEqual(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b);
VX_API VXStatus vxzsu8ICUNormalize(const uint8_t* in, int64_t length, uint32_t form, uint64_t a1, uint64_t a2, uint64_t a3, VXStatus* status);
VX_API int32_t vxzsu8ICUNormCompare(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint32_t options, VXStatus* status /* or null */);
VX_API int32_t vxzsu8ICUNormEqual(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint32_t options, VXStatus* status /* or null */);
VX_API int64_t vxzsu8StripBlanks(const uint8_t* text, int64_t n);                 /* length without trailing U+0020 */
VX_API int64_t vxzsu8Copy(const uint8_t* in, int64_t length, uint8_t* out, int64_t room);   /* bytes copied */

#ifdef __cplusplus
}
#endif

#endif
