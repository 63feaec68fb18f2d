/// Coders between UTF-8, UTF-16 and UTF-32, one character a call, and two drivers that run them over whole buffers.
///
/// All lengths, counts and rooms are bytes unless it says otherwise. No coder allocates, terminates its output or keeps
/// anything between calls; any thread may call any of them at any time. Pointers to results are never null, except
/// where it is said. The coders and `Byte2DWord`, `Byte2DWord_swap` may be handed to the drivers; a program that links
/// the library sees them at the same addresses as the library does.
///
/// Statuses:
///   0                                 done
///   0x803fe807  VX_E_ROOM             the output room is too small; nothing was written (COPY_UTF: what fits was)
///   0x803fe808  VX_E_SEQUENCE         not a character
///   0x803fe814  VX_E_INCOMPLETE       the input ends inside a character
///
/// The byte orders of the names are uneven: the plain decoders and `COPY_UTF32` are big-endian and their `_SWAP` forms
/// little-endian, but the plain UTF-16 encoders are little-endian and their `_SWAP` forms big-endian.
#ifndef VXNLS_UNICODE_H
#define VXNLS_UNICODE_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Reads one character.
///   in         `remaining` bytes
///   remaining  bytes that are left; with 0 or less nothing is read: U+FFFD, consumed 0, VX_E_INCOMPLETE
///   code_point the character; U+FFFD whenever the status is not 0
///   consumed   the bytes that it took, on failure too: a caller who steps over them can go on behind the fault
typedef VXStatus (*VXDecoder)(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);

/// Writes one character.
///   out      room for `room` bytes
///   written  the bytes written; 0 when the status is not 0
typedef VXStatus (*VXEncoder)(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);

/// Reads the 32-bit unit that starts at a byte.
typedef uint32_t (*VXReader)(const uint8_t* bytes);

/* decoders -------------------------------------------------------------------------------------------- */

/// Reads one character of UTF-8.
/// The lead byte tells the length: 00-7F one byte, C2-DF two, E0-EF three, F0-F4 four. The bytes behind it are not
/// looked at closely: any byte gives its low six bits, and overlong forms, surrogates and values above U+10FFFF come
/// out as they stand. Whoever wants to refuse them asks `isLegalUTF8` first.
///   0                            consumed: the length
///   0x803fe814 VX_E_INCOMPLETE   fewer bytes remain than the lead announces; consumed: `remaining`
///   0x803fe808 VX_E_SEQUENCE     80-C1 and F5-FF cannot begin a character; consumed: this byte and the continuation
///                                bytes (80-BF) behind it, up to the length it announces (80-BF 1, C0-DF 2, E0-EF 3,
///                                F0-F7 4, F8-FB 5, FC-FF 6)
/// After such a byte the count does not look at `remaining`: up to 5 bytes behind it must be readable. The drivers
/// never read past their input, also when they are given this decoder.
/// Example: C3 A9 is U+00E9, consumed 2; C3 alone is U+FFFD, consumed 1, 0x803fe814; C0 80 is U+FFFD, consumed 2,
/// 0x803fe808.
VX_API VXStatus UTF8_UTF32(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);

/// Reads one character of UTF-8 as one or two UTF-16 units in the machine's order.
///   units     room for 2; a character below U+10000 writes the first only
///   consumed  as UTF8_UTF32 says, but never more than `remaining`
/// Returns 0; or 0x803fe808 with U+FFFD as the first unit when the bytes are no character or end inside one.
VX_API VXStatus UTF8_UTF16(const uint8_t* in, int64_t remaining, uint16_t* units, int64_t* consumed);

/// Reads one character of UTF-16, big-endian (`_SWAP`: little-endian).
///   0                            consumed: 2, or 4 for a pair
///   0x803fe808 VX_E_SEQUENCE     a low surrogate stands alone, consumed 2; or a high one has no low one behind it,
///                                consumed 4
///   0x803fe814 VX_E_INCOMPLETE   a single byte, or a high surrogate and fewer than 4 bytes; consumed: `remaining`
VX_API VXStatus UTF16_UTF32(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);
VX_API VXStatus UTF16_UTF32_SWAP(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);

/// Reads one unit of UTF-32, big-endian (`_SWAP`: little-endian), whatever its value.
///   0                            consumed: 4
///   0x803fe814 VX_E_INCOMPLETE   fewer than 4 bytes; consumed: `remaining`
VX_API VXStatus COPY_UTF32b(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);
VX_API VXStatus COPY_UTF32b_SWAP(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed);

/* encoders -------------------------------------------------------------------------------------------- */

/// Writes one character as UTF-8. Surrogates are written as three bytes; values above U+10FFFF are not refused, they
/// are written as four bytes of which the first has lost its high bits. A character below U+0080 is written without
/// looking at `room`: one byte must be there. Otherwise 0x803fe807 when `room` is below the 2 (below U+0800), 3 (below
/// U+10000) or 4 bytes that it takes.
VX_API VXStatus UTF32_UTF8(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);

/// The same for the low 16 bits of the argument: a lone surrogate becomes three bytes.
VX_API VXStatus UTF16_UTF8(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);

/// Writes the low 16 bits, low byte first (`_SWAP`: high byte first). Always 0: the room is not looked at, two bytes
/// must be there. Code points above U+FFFF lose their high bits.
VX_API VXStatus UTF32_UTF16(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus UTF32_UTF16_SWAP(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);

/// Writes one character as UTF-16, each unit low byte first (`_SWAP`: high byte first). Below U+10000 one unit, without
/// looking at `room`: two bytes must be there. Otherwise a surrogate pair, or 0x803fe807 when `room` is below 4.
/// Example: U+1F600 is 3D D8 00 DE, with `_SWAP` D8 3D DE 00.
VX_API VXStatus UTF32_UTF16s(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus UTF32_UTF16s_SWAP(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);

/// Writes four bytes, big-endian (`_SWAP`: little-endian); 0x803fe807 when `room` is below 4.
VX_API VXStatus COPY_UTF32(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus COPY_UTF32_SWAP(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written);

/* bytes ----------------------------------------------------------------------------------------------- */

/// Copies the first `room` bytes of `length`, or all of them; the buffers do not overlap. `*copied` is their count.
/// Returns 0, or 0x803fe807 when the input was longer than the room (what fits is copied then too). A length or room
/// below 0 counts as 0.
VX_API VXStatus COPY_UTF(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* copied);

/// The 32-bit value of four bytes in the machine's order (little-endian); `_swap`: big-endian. Any alignment.
VX_API uint32_t Byte2DWord(const uint8_t* bytes);
VX_API uint32_t Byte2DWord_swap(const uint8_t* bytes);
/// The 16-bit value of two bytes in the machine's order; `_swap`: big-endian.
VX_API uint16_t Byte2Word(const uint8_t* bytes);
VX_API uint16_t Byte2Word_swap(const uint8_t* bytes);
/// The 16-bit value of two bytes, big-endian; `_SWAP`: little-endian.
VX_API uint16_t BYTE_UTF16_UTF32(const uint8_t* bytes);
VX_API uint16_t BYTE_UTF16_UTF32_SWAP(const uint8_t* bytes);

/* whole buffers --------------------------------------------------------------------------------------- */

/// Turns bytes into four-byte characters: decodes a character, encodes it, until the input is used up or `room` / 4
/// characters are written, or a coder fails.
///   in       `length` bytes
///   out      room for `room` bytes; each character starts four bytes behind the one before it
///   written  null, or four times the characters written, on failure too
///   decoder  any, the library's or the caller's; usually UTF8_UTF32, UTF16_UTF32, UTF16_UTF32_SWAP
///   encoder  usually COPY_UTF32_SWAP (the machine's order) or COPY_UTF32
/// Returns 0 (also when the output is full before the input ends), 0x803fe831 when a needed pointer is null, or the
/// status of the coder that failed. Nothing outside the buffers is read or written with the library's own coders; a
/// length or room below 0 counts as 0. Pairs of the library's own coders are converted many characters at a time.
/// Example: 41 C3 A9 by UTF8_UTF32 and COPY_UTF32_SWAP gives 41 00 00 00 E9 00 00 00, *written = 8.
VX_API VXStatus ConvertToUTF32(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written,
                               VXDecoder decoder, VXEncoder encoder);

/// Turns four-byte characters into bytes: reads one, encodes it, until `length` / 4 are done or the room is used up to
/// the last byte, or the encoder fails.
///   in       `length` bytes of UTF-32, any alignment; up to 3 bytes at the end are ignored
///   out      room for `room` bytes
///   written  null, or the bytes written, on failure too
///   encoder  any; usually UTF32_UTF8, UTF32_UTF16s, UTF32_UTF16s_SWAP
///   reader   Byte2DWord for the machine's order, Byte2DWord_swap for big-endian, or the caller's
/// Returns 0 (also when the room is used up exactly before the input ends), 0x803fe831 when a needed pointer is null,
/// or the status of the encoder: with the library's own, 0x803fe807 when the next character does not fit, UTF-16 units
/// included.
VX_API VXStatus ConvertFromUTF32(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written,
                                 VXEncoder encoder, VXReader reader);

/// Tells whether the 1 to 4 bytes of one sequence are well-formed: 1, or 0.
///   good_length  `length`, or the bytes before the first byte from the second on that is no continuation byte (80-BF).
///                A second byte that its lead does not allow (E0 80-9F, ED A0-BF, F0 80-8F) and a bad lead (80-C1,
///                F5-FF) leave it as it is.
/// The lead is not held against the length, and F4 allows every second byte, U+110000 and above included. Any other
/// length answers 1. Example: E0 80 80 gives 0, good length 3; C3 41 gives 0, good length 1; F4 90 80 80 gives 1.
VX_API int32_t isLegalUTF8(const uint8_t* bytes, int64_t length, int64_t* good_length);

/// The bytes that `count` VXChars take as UTF-8: one below U+0080, two below U+0800, three below U+10000, four
/// otherwise. 0 for a count of 0 or less.
VX_API int64_t GET_UTF8_LEN_FROM_VXCHAR(const VXChar* text, int64_t count);

#ifdef __cplusplus
}
#endif

#endif
