// Services over UTF-8 text: lengths, stepping, modified UTF-8, case, comparison, normalisation, searching, and the
// number and date entry points under UTF-8 names.
//
// A text is a pointer and a length in bytes, or, where it says so, a NUL-terminated text. A null text, or one with a
// negative length, is an empty text; a room below 0 is no room. Nothing is read or written outside the bytes given,
// also when a lead byte announces more of them than there are. Nothing is terminated. Everything may run in any number
// of threads, as far as the host's own services may.
//
// Steps. Two families of functions walk by different rules, which give different results for ill-formed text only:
//   trusting   a character is as long as its lead byte announces, whatever the bytes behind it are:
//              00-BF 1, C0-DF 2, E0-EF 3, F0-F7 4, F8-FB 5, FC-FF 6 bytes, as far as there are any
//   checking   a character is its lead byte and the continuation bytes (80-BF) that are really there, at most as many
//   as
//              the lead announces; so a broken character never swallows the start of the next one
// Strict well-formedness is the matter of isLegalUTF8 in unicode.h.
#ifndef VXNLS_UTF8_H
#define VXNLS_UTF8_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* lengths and steps ----------------------------------------------------------------------------------- */

/// The bytes that a lead byte announces, 1 to 6 as above; 0 for null.
VX_API int32_t utf8_len(const uint8_t* lead);

/// Counts characters by trusting steps: of a NUL-terminated text, of n bytes. The last one may be cut off by the end.
/// Example: 61 C3 A9 gives 2; E2 41 42 gives 1.
VX_API int64_t UTF8_SLEN(const uint8_t* text);
VX_API int64_t UTF8_SLENB(const uint8_t* text, int64_t n);

/// The length in bytes of the longest beginning that ends with a whole character: of a NUL-terminated text, of n bytes.
/// Only the last character is looked at: from the end back over continuation bytes to the first other byte, or to the
/// start. What is found there must be able to begin a character (00-7F, C2-F4); otherwise the result is 0, that is, the
/// whole text is refused.
/// Example: 61 C3 gives 1, 61 C3 A9 gives 3, C0 80 gives 0, 61 80 gives 1.
VX_API int64_t UTF8_BLEN(const uint8_t* text);
VX_API int64_t UTF8_BLENB(const uint8_t* text, int64_t n);

/// The size in bytes of the character at `ch`, by a checking step; 0 for null. The bytes of the character, and of one
/// that is broken one more, must be readable; any byte that is no continuation byte, such as a NUL, ends it.
///   valid   null, or receives 1 when all bytes that the lead announces are there and the lead is 00-7F or C2-F4, else
///   0.
///           Overlong three-byte forms and encoded surrogates count as valid
/// Example: C3 41 gives 1, not valid; E0 80 80 gives 3, valid; a lone 80 gives 1, not valid.
VX_API int64_t vxzsu8CharSize(const uint8_t* ch, uint8_t* valid);

/// Where the next character starts: `ch` and its size by vxzsu8CharSize; null for null.
VX_API uint8_t* vxzsu8NextChar(const uint8_t* ch);

/// Counts the characters of n bytes by checking steps. Example: E2 41 42 gives 3.
VX_API int64_t vxzsu8NumChars(const uint8_t* text, int64_t n);

/// The bytes that the first `characters` characters take, by checking steps; 0 for a count below 1. The text must hold
/// as many characters, a NUL being one of them, and for the last one the bytes that vxzsu8CharSize reads.
VX_API int64_t vxzsu8ByteLength(const uint8_t* text, int64_t characters);

/// Measures a NUL-terminated text.
///   characters   null, or receives the count of characters by checking steps
///   bytes        null, or receives the length in bytes
/// Nothing is written for a null text.
VX_API void vxzsu8Lengths(const uint8_t* text, int64_t* characters, int64_t* bytes);

/// 1 when the character at `ch` is a combining one, else 0; 0 for null.
/// U+200C and U+200D are, without asking. For every other character the host's Unicode database is asked for the
/// general categories Mn, Mc and Me; without a host or its database the answer is 0. The bytes that the lead announces
/// must be readable, or a NUL before; what cannot be decoded counts as U+FFFD.
VX_API int32_t vxzsu8IsCombining(const uint8_t* ch);

/* modified UTF-8 -------------------------------------------------------------------------------------- */

/// Encode turns UTF-8 into modified UTF-8, in which a supplementary character is two three-byte surrogates; Decode
/// turns it back. The walk is by checking steps.
///   in, length    the input
///   out, room     room for `room` bytes; must not overlap the input. Null is no room
///   written       null, or receives the bytes written, on failure too
///   options       0x1: a NUL is C0 80 in modified UTF-8
///                 0x4 (without 0x1): no supplementary characters: Encode replaces each by U+FFFD, Decode copies bytes
///                 as they stand, cut at the room
/// Each of these becomes U+FFFD (EF BF BD): a sequence of which a continuation byte is missing; a stray continuation
/// byte; in Encode a surrogate (ED A0-BF xx); in Decode a surrogate without a partner, and a sequence with an invalid
/// lead (C0, C1, F5-FF). In Encode complete sequences with such leads pass as they are. In Decode two surrogates in a
/// row make one character, also in the wrong order; what follows a single one is copied as it is. Returns 0, or:
///   0x803fe807 VX_E_ROOM       the room is too small; what fits whole characters (both halves of a pair) was written
///   0x803fe808 VX_E_SEQUENCE   something was replaced; everything was written
/// Example: F0 9F 98 80 is encoded as ED A0 BD ED B8 80.
VX_API VXStatus vxzsu8Encode(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written,
                             uint32_t options);
VX_API VXStatus vxzsu8Decode(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written,
                             uint32_t options);

/* case ------------------------------------------------------------------------------------------------ */

// ASCII never calls the host. Other characters are mapped by the host, one to one, when it offers character data;
// otherwise by the built-in tables (simple mappings of Unicode 3.0, nothing from U+10000 on). The walk is by trusting
// steps. Bytes that are no character stay as they are, with all the bytes that their lead announces.

/// Lower-cases, upper-cases n bytes in place. What got shorter is followed by blanks up to n bytes.
/// A character that grows (U+023A becomes U+2C65: two bytes, three) overwrites the input behind it before that is read;
/// what would lie past the n bytes is dropped, and a grown character that does not fit there is left out. Where that
/// matters use the forms with a `2`.
VX_API void vxzsu8Lower(uint8_t* text, int64_t n);
VX_API void vxzsu8Upper(uint8_t* text, int64_t n);

/// Lower-cases, upper-cases into another buffer.
///   out, room   must not overlap the input; with a null `out`, or no room, the call only measures
///   written     null, or receives the bytes written; when measuring, the bytes that are needed
/// Returns 0; or 0x803fe807 VX_E_ROOM when a character did not fit: the characters before it were written.
VX_API VXStatus vxzsu8Lower2(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written);
VX_API VXStatus vxzsu8Upper2(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written);

/* comparison ------------------------------------------------------------------------------------------ */

/// Compares byte by byte, unsigned, which for well-formed text is the order of code points; a text that continues
/// another is greater. The fifth argument is ignored; the short form passes 20. Returns -1, 0 or 1.
VX_API int32_t vxzsu8CompareText(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b,
                                 uint64_t ignored);
VX_API int32_t vxzsu8Compare(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b);

/// Compares ignoring case and trailing blanks, with the case as a tie-break. Lower case is that of the casing
/// functions; the host is told that texts are being compared. The fifth argument is ignored; the short form passes 20.
/// Returns  0       equal but for trailing blanks
///          -1, 1   they differ in case alone; the sign is that of the first such character, by code point
///          -2, 2   they differ otherwise: by the first characters whose lower-case forms differ, or because the longer
///                  text (b: -2, a: 2) goes on with something other than blanks
/// A text that goes on is the greater one whatever comes, so the order is transitive only among texts without bytes
/// below the blank. Example: "abc" and "ABC" give 1, "abc" and "abd" -2, "abc  " and "abc" 0, "abcx" and "abc" 2.
VX_API int32_t vxzsu8NormCompareText(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b,
                                     uint64_t ignored);
VX_API int32_t vxzsu8NormCompare(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b);

/// 1 when vxzsu8NormCompareText gives -1, 0 or 1, that is, when the texts are equal but for case and trailing blanks;
/// else 0.
VX_API int32_t vxzsu8NormEqualText(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b,
                                   uint64_t ignored);
VX_API int32_t vxzsu8NormEqual(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b);

/* normalisation --------------------------------------------------------------------------------------- */

// The host's normaliser is made on first use and kept. Forms and options are the host's. Without character data, or
// when the normaliser cannot be had, the status is 0x803fc002 VX_E_MEMORY.

/// Hands a text to the host's normaliser.
///   form, a1, a2, a3   passed on. The reference host knows the forms 0 NFC, 1 NFD, 2 NFKC and 3 NFKD, and takes the
///                      output buffer, its room in bytes and where to store the length (int64_t) as the three words
///   status             null, or receives the normaliser's status
/// Returns the normaliser's result; VX_E_MEMORY, also as `status`, when there is none.
VX_API VXStatus vxzsu8ICUNormalize(const uint8_t* in, int64_t length, uint32_t form, uint64_t a1, uint64_t a2,
                                   uint64_t a3, VXStatus* status);

/// Compares two texts by the host's normaliser.
///   options   passed on. The reference host knows bit 0: case is ignored
///   status    null, or receives the normaliser's status
/// Returns the normaliser's result; 0 when there is none.
VX_API int32_t vxzsu8ICUNormCompare(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b,
                                    uint32_t options, VXStatus* status);

/// 1 when vxzsu8ICUNormCompare gives 0 with status 0, else 0.
VX_API int32_t vxzsu8ICUNormEqual(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b,
                                  uint32_t options, VXStatus* status);

/* finding, trimming, copying -------------------------------------------------------------------------- */

/// The length in bytes without trailing blanks (U+0020); 0 when the text is all blanks.
VX_API int64_t vxzsu8StripBlanks(const uint8_t* text, int64_t n);

/// Copies as many bytes as there are and as fit; a character may be cut. The two places may overlap.
/// Returns the bytes copied.
VX_API int64_t vxzsu8Copy(const uint8_t* in, int64_t length, uint8_t* out, int64_t room);

/// Finds a code point, a text, in n bytes. Returns the index in bytes of the first occurrence, or -1. An empty pattern
/// is found at 0, also in an empty text; a value above U+10FFFF nowhere. Bytes are compared as they are, so in
/// well-formed text a well-formed pattern is found at the start of a character only.
VX_API int64_t vxzsu8Index(const uint8_t* text, int64_t n, VXChar ch);
VX_API int64_t vxzsu8Find(const uint8_t* text, int64_t n, const uint8_t* pattern, int64_t pattern_length);

/// Moves leading blanks (U+0020) of n bytes to the end, trailing ones to the start. The length stays; what stands
/// between them is moved as a whole.
VX_API void vxzsu8LeftJustify(uint8_t* text, int64_t n);
VX_API void vxzsu8RightJustify(uint8_t* text, int64_t n);

/* dates, times and numbers under UTF-8 names ---------------------------------------------------------- */

/// Hands its arguments to the entry point that is named beside it and returns that one's status. What they mean, and
/// what is written when, is said there.
VX_API VXStatus vxzsu8DateFormat(VXLocale* locale, uint32_t month, uint32_t day, uint32_t year, int32_t style,
                                 uint8_t* buffer, int64_t capacity, int64_t* length); /* NLSDateFormatU */
VX_API VXStatus vxzsu8TimeFormat(VXLocale* locale, int32_t flag, uint8_t* buffer, int64_t capacity, int64_t* length,
                                 double value); /* NLSTimeFormatU */
VX_API VXStatus vxzsu8DatetimeFormat(VXLocale* locale, uint64_t ignored, uint8_t* buffer, int64_t capacity,
                                     int64_t* length, double value); /* NLSDatetimeFormatU */
VX_API VXStatus vxzsu8ToDate(VXLocale* locale, const uint8_t* buffer, int64_t length, uint32_t kind, uint32_t* month,
                             uint32_t* day, uint32_t* year, int64_t* consumed); /* NLSBufToDateU */
VX_API VXStatus vxzsu8ToTime(VXLocale* locale, const uint8_t* buffer, int64_t length, uint32_t kind, double* seconds,
                             int64_t* consumed); /* NLSBufToTimeU */
VX_API VXStatus vxzsu8ToDatetime(VXLocale* locale, const uint8_t* buffer, int64_t length, uint32_t kind,
                                 double* datetime, int64_t* consumed); /* NLSBufToDatetimeU */
VX_API VXStatus vxzsu8DoubleFormat(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags, uint8_t* buffer,
                                   int64_t size, int64_t* length, const NLSDoubleExOpts* options,
                                   double value); /* NLSDoubleFormatUWithExOpts */
VX_API VXStatus vxzsu8ToDouble(VXLocale* locale, const uint8_t* text, int32_t length, double* value,
                               int64_t* consumed); /* NLSBufToDoubleU */
VX_API VXStatus vxzsu8ToDoubleWithOpts(VXLocale* locale, const uint8_t* text, int32_t length, uint32_t flags,
                                       double* value, int64_t* consumed); /* NLSBufToDoubleUWithOpts */

/// vxzsu8<name>Format: NLS<name>FormatU; vxzsu8To<name>: NLSBufTo<name>U.
#define VXZSU8_INTEGER_FORMAT(name, type)                                                                              \
  VX_API VXStatus vxzsu8##name##Format(VXLocale* locale, type value, int32_t width, int32_t precision, uint32_t flags, \
                                       uint8_t* buffer, int64_t size, int64_t* length);
#define VXZSU8_INTEGER(name, type)                                                                                   \
  VXZSU8_INTEGER_FORMAT(name, type)                                                                                  \
  VX_API VXStatus vxzsu8To##name(VXLocale* locale, const uint8_t* text, int64_t length, uint32_t flags, type* value, \
                                 uint64_t* consumed);
VXZSU8_INTEGER(Int, int32_t)
VXZSU8_INTEGER(Intfast, int32_t)
VXZSU8_INTEGER(UInt, uint32_t)
VXZSU8_INTEGER(Uintfast, uint32_t)
VXZSU8_INTEGER(Long, int64_t)
VXZSU8_INTEGER(Intmax, int64_t)
VXZSU8_INTEGER(ULong, uint64_t)
VXZSU8_INTEGER(Uintmax, uint64_t)
VXZSU8_INTEGER_FORMAT(Pointer, uint64_t)
#undef VXZSU8_INTEGER
#undef VXZSU8_INTEGER_FORMAT

#ifdef __cplusplus
}
#endif

#endif
