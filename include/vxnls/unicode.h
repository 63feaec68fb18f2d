// Coders between UTF-8, UTF-16 and UTF-32, one character a call, and two drivers over whole buffers.
#ifndef VXNLS_UNICODE_H
#define VXNLS_UNICODE_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef VXStatus (*VXDecoder)(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);
typedef VXStatus (*VXEncoder)(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
typedef uint32_t (*VXReader)(const uint8_t*);
VX_API VXStatus UTF8_UTF32(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);
VX_API VXStatus UTF8_UTF16(const uint8_t* in, int64_t remaining, uint16_t* units /* 2 */, int64_t* consumed);
VX_API VXStatus UTF16_UTF32(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);
VX_API VXStatus UTF16_UTF32_SWAP(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);
VX_API VXStatus COPY_UTF32b(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);
VX_API VXStatus COPY_UTF32b_SWAP(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);
VX_API VXStatus UTF32_UTF8(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus UTF16_UTF8(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus UTF32_UTF16(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus UTF32_UTF16_SWAP(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus UTF32_UTF16s(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus UTF32_UTF16s_SWAP(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus COPY_UTF32(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus COPY_UTF32_SWAP(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus COPY_UTF(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* copied);
VX_API uint32_t Byte2DWord(const uint8_t*);
VX_API uint32_t Byte2DWord_swap(const uint8_t*);
VX_API uint16_t Byte2Word(const uint8_t*);
VX_API uint16_t Byte2Word_swap(const uint8_t*);
VX_API uint16_t BYTE_UTF16_UTF32(const uint8_t*);
VX_API uint16_t BYTE_UTF16_UTF32_SWAP(const uint8_t*);
VX_API VXStatus ConvertToUTF32(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written /* or null */, VXDecoder, VXEncoder);
VX_API VXStatus ConvertFromUTF32(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written, VXEncoder, VXReader);
VX_API int32_t  isLegalUTF8(const uint8_t* bytes, int64_t length, int64_t* good_length);
VX_API int64_t  GET_UTF8_LEN_FROM_VXCHAR(const VXChar* text, int64_t count);

#ifdef __cplusplus
}
#endif

#endif
