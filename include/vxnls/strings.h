// Blank-padded VXChar text: joining, searching, trimming, case, comparison.
//
// A text is a pointer and a length in VXChars. Nothing is terminated, trailing blanks (U+0020) are insignificant where
// a function says so. In every function a null text, or one with a negative length, is an empty text. All of them may
// run in any number of threads at once; only vxzstlo and vxzstup may call the host.
#ifndef VXNLS_STRINGS_H
#define VXNLS_STRINGS_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Joins texts into a field, with a separator between each two of them, empty ones included.
///   out        where the field goes; null: nothing is done and the result is 0. The first text may lie here already;
///              no other text may overlap it
///   room       not negative: VXChars of the field, filled up with blanks;
///              negative: -room - 1 VXChars at most, then a NUL, so that `out` holds -room VXChars
///   separator  0xFFFF: none
///   count      how many pairs follow; below 1: none
///   ...        count times a text (const VXChar*) and its length (int64_t, so write INT64_C(1) or a cast: a plain 1 is
///              undefined behaviour in a variable argument list)
/// Returns the VXChars written, cut at the room; padding and NUL are not counted.
/// Example: room -11, a blank, "ab", "cd" writes "ab cd" and a NUL, and returns 5; room 4 writes "ab c" and returns 4.
VX_API int64_t vxzscat(VXChar* out, int64_t room, VXChar separator, int32_t count, ...);

/// Finds a text in a text, unit by unit.
/// Returns the index of the first occurrence; 0 for an empty pattern, also in an empty text; else -1.
VX_API int64_t vxzsndx(const VXChar* text, int64_t length, const VXChar* pattern, int64_t pattern_length);

/// Finds a character. Returns the index of the first occurrence, or -1.
VX_API int64_t vxzspos(const VXChar* text, int64_t length, VXChar ch);

/// Returns the length of the text without its trailing blanks; 0 when it is all blanks.
VX_API int64_t vxzstrp(const VXChar* text, int64_t length);

/// Lower-cases, upper-cases a text in place, character by character; the length stays.
/// ASCII goes by the built-in tables. From U+0080 on the host maps each character when it offers character data;
/// otherwise the built-in tables do, which know the simple mappings of Unicode 3.0 below U+10000.
/// Example: the tables make "ÀŸ" of "àÿ", and leave "ß" and U+10428 as they are.
VX_API void vxzstlo(VXChar* text, int64_t length);
VX_API void vxzstup(VXChar* text, int64_t length);

/// Compares ignoring case: 1 when the lengths are equal and so is each character after lower-casing it by the built-in
/// tables, else 0. Two empty texts are equal. Trailing blanks count. The host is never asked.
VX_API int32_t vxzseqn(const VXChar* a, int64_t length_a, const VXChar* b, int64_t length_b);

/// Orders two texts ignoring case and trailing blanks, with the case as a tie-break. Never asks the host.
/// Returns  0        the texts are equal but for trailing blanks
///         -1, 1     they differ in case alone; the sign is that of the first such character
///         -2, 2     they differ otherwise: by the first characters whose lower-case forms differ, taken as signed
///                   32-bit values, or because the longer text (b: -2, a: 2) goes on with something other than blanks
/// A text that goes on is the greater one whatever comes, so the order is transitive only among texts without
/// characters below U+0020.
/// Example: "Ab" and "ab" give -1; "ab " and "ab" give 0.
VX_API int32_t vxzsncmp(const VXChar* a, int64_t length_a, const VXChar* b, int64_t length_b);

/// Maps each character in place to the smallest, the largest character below U+10000 that simple case mappings connect
/// it with, directly or through others (Unicode 9.0). Characters from U+10000 on stay. Never asks the host.
/// Example: vxzstmin makes "K" of each of "K", "k" and U+212A (Kelvin sign), vxzstmax U+212A.
VX_API void vxzstmin(VXChar* text, int64_t length);
VX_API void vxzstmax(VXChar* text, int64_t length);

#ifdef __cplusplus
}
#endif

#endif
