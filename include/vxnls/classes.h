// Character classes of one code point.
//
// Each test takes a code point (any 32-bit value) and returns 1 or 0. ASCII is answered from a built-in table. From
// U+0080 on the host's Unicode database "vxnlsudb" answers when the host offers character data; it is loaded on first
// use and kept. Without character data, or when the database cannot be had, built-in ranges of Unicode 9.0 answer.
// The tests may run in any number of threads when the host's database may.
#ifndef VXNLS_CLASSES_H
#define VXNLS_CLASSES_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// A decimal digit of any script (general category Nd).
VX_API int32_t vxnlsisdigit(uint32_t code_point);

/// A lower-case letter (Ll), an upper-case letter (Lu).
VX_API int32_t vxnlsislower(uint32_t code_point);
VX_API int32_t vxnlsisupper(uint32_t code_point);

/// A letter (Lu Ll Lt Lm Lo).
VX_API int32_t vxnlsisalpha(uint32_t code_point);

/// A letter or a decimal digit.
VX_API int32_t vxnlsisalnum(uint32_t code_point);

/// White space. One fixed list, never the host: U+0009 to 000D, 0020, 0085, 00A0, 1680, 2000 to 200A, 2028, 2029, 202F,
/// 205F and 3000.
VX_API int32_t vxnlsisspace(uint32_t code_point);

/// Letters, marks, numbers, punctuation, symbols and separators.
VX_API int32_t vxnlsisprint(uint32_t code_point);

/// Letters, marks, numbers, punctuation and symbols; by the host's database private-use characters as well.
VX_API int32_t vxnlsisgraph(uint32_t code_point);

/// Punctuation (Pc Pd Ps Pe Pi Pf Po); symbols such as "$" and "+" are none.
VX_API int32_t vxnlsispunct(uint32_t code_point);

/// A decimal digit of any script, or one of the letters A to F and a to f, their full-width forms included.
VX_API int32_t vxnlsisxdigit(uint32_t code_point);

/// Controls, format characters, and the line and paragraph separators (Cc Cf Zl Zp).
VX_API int32_t vxnlsiscntrl(uint32_t code_point);

#ifdef __cplusplus
}
#endif

#endif
