/// Integers and floating-point numbers read by the conventions of a locale.
///
/// Of a locale the readers use its decimal point and its group separator, nothing else. Plain readers take VXChars and
/// count VXChars; readers whose names end in U, A or E take bytes and count bytes. A text is `length` units; no
/// terminator is needed and nothing past the end is read: a separator that the end of the text cuts off is not found.
/// `consumed` counts from the start of the text, leading blanks included. Nothing is allocated or kept between calls;
/// any thread may call any reader at any time. vxnlsExplainNumber (explain_number.h) says where and why a text was
/// refused.
#ifndef VXNLS_NUMBER_PARSE_H
#define VXNLS_NUMBER_PARSE_H

#include "vxnls/host.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Option bits. Bits that a reader does not know are ignored.
#define NLS_READ_HEXADECIMAL 0x0001u     /* unsigned integers: hexadecimal digits, with or without "0x" */
#define NLS_READ_TRAILING_BLANKS 0x1000u /* integers: blanks may follow; then only the end or a NUL may */
#define NLS_READ_FRACTION 0x2000u        /* integers: a decimal point and digits may follow and are discarded */
#define NLS_READ_SPACE_SEPARATOR 0x4000u /* where U+00A0 separates groups, U+0020 does so too */

/// Reads one double. The text is
///
///     blanks  sign  digits  point digits  exponent  blanks
///
/// of which the digits before or after the point are needed, and nothing may follow. Blanks are U+0020 and U+0009; the
/// sign is "+" or "-"; the exponent is "E", "e", "D" or "d", perhaps a sign, and digits. Group separators may stand
/// anywhere after the first digit of the integer part, and after the first digit of the exponent; where they stand is
/// not compared with the locale's grouping. A text that begins with the point needs a digit right after it.
///
/// A "." that no digit follows is a missing value, whatever the decimal point is: ".A" to ".Z" (or small letters) and
/// "._" are the special ones, blanks may surround them, and a sign before them has no effect. A text of length 0 is the
/// ordinary missing value, with status 0.
///
///   locale    from NLSLocaleCreate, only read; null: "." and ","
///   text      `length` VXChars, or UTF-8 bytes in the `U` readers
///   flags     NLS_READ_SPACE_SEPARATOR or 0; the readers without flags pass 0
///   value     the number; on every failure the ordinary missing value (the NaN 0xFFFFFE0000000000)
///   consumed  units read; on a failure those before the unit where reading stopped
/// Returns 0, or:                                                          consumed then:
///   0x803fe80d  VX_E_RANGE      an exponent outside -30800 to 30800         up to the end of the exponent
///   0x803fe810  VX_E_NOTNUMBER  not a number; blanks only                   up to the unit that cannot stand there
///   0x803fe810  VX_E_NOTNUMBER  `length` is negative                        0
///   0x803fe811  VX_E_OVERFLOW   the magnitude exceeds the largest double    the whole text
///   0x803fe812  VX_E_UNDERFLOW  not 0, but the result is 0                  the whole text
///   0x803fe831  VX_E_NULL       `text` is null and `length` above 0         0
///   0x803fe831  VX_E_NULL       `value` or `consumed` is null               nothing is written
/// Precision: digits after the thirtieth are not used. The first 15 digits, or two runs of 15, are multiplied or
/// divided by a power of ten in extended precision (64-bit significand) and the result is rounded to double. That is
/// nearly always the correctly rounded value; how nearly, and when it is certain, says docs/numbers.md. A zero with an
/// exponent outside -22 to 22 (digits after the point lower it) loses its minus. Example: "1.234.567,89" in a German
/// locale reads 1234567.89; "1.2,3" in an English one fails with consumed 3; "1E309" overflows; ".a " is the missing
/// value A.
VX_API VXStatus NLSBufToDouble(VXLocale* locale, const VXChar* text, int32_t length, double* value, int64_t* consumed);
VX_API VXStatus NLSBufToDoubleWithOpts(VXLocale* locale, const VXChar* text, int32_t length, uint32_t flags,
                                       double* value, int64_t* consumed);
VX_API VXStatus NLSBufToDoubleU(VXLocale* locale, const uint8_t* text, int32_t length, double* value,
                                int64_t* consumed);
VX_API VXStatus NLSBufToDoubleUWithOpts(VXLocale* locale, const uint8_t* text, int32_t length, uint32_t flags,
                                        double* value, int64_t* consumed);

/// Reads one double from a single-byte code by the rules above: A from a code that extends ASCII, E from EBCDIC.
///   converter  gives the byte of a group separator that is neither below U+0080 nor U+00A0; where it fails, or is
///   null,
///              the separator is ","
/// The A reader takes the decimal point, and U+00A0 as separator, as bytes of the same number; a decimal point above
/// U+00FF is never found. The E reader maps them, and its letters, by code page 1047.
VX_API VXStatus NLSBufToDoubleA(VXLocale* locale, const uint8_t* text, int32_t length, double* value, int64_t* consumed,
                                VXConverter* converter);
VX_API VXStatus NLSBufToDoubleE(VXLocale* locale, const uint8_t* text, int32_t length, double* value, int64_t* consumed,
                                VXConverter* converter);

/// Each reads one integer; the type of `value` is the type of the integer. The names of a pair are the same reader. The
/// text is blanks, a sign, blanks, digits with group separators among them, and what the flags allow after them. A
/// blank is U+0020 only. The sign is "+" or "-"; unsigned integers take "+" only. Separators may stand anywhere among
/// the digits, also straight after the sign, but not first; where they stand is not compared with the locale's
/// grouping. The number ends at the first other unit. A text of blanks only is 0.
///
///   locale    from NLSLocaleCreate, only read; null: "." and ","
///   text      `length` VXChars, or UTF-8 bytes in the `U` readers
///   flags     NLS_READ_...; the bits may be combined:
///     NLS_READ_HEXADECIMAL      unsigned integers only: hexadecimal digits of both cases, "0x" or "0X" before them;
///                               no sign, no separators, no fraction; "0x" alone is 0
///     NLS_READ_TRAILING_BLANKS  blanks after the number are consumed; only the end of the text or a NUL may follow
///     NLS_READ_FRACTION         the decimal point and the digits after it are consumed and discarded; with trailing
///                               blanks allowed, blanks may stand among these digits
///   value     the integer; on an overflow 0; where the text after the digits is wrong, what was read before that
///   consumed  units read
/// Returns 0, or:                                                          consumed then:
///   0x803fe80e  VX_E_TRUNCATED  a fraction that is not 0 was discarded      as for 0
///   0x803fe810  VX_E_NOTNUMBER  not a number: nothing after a sign, a        up to the unit that cannot stand there
///                               separator first, a sign that the type
///                               does not take, or a unit after the digits
///                               that is neither a blank nor a NUL
///   0x803fe811  VX_E_OVERFLOW   the digits exceed the type                  up to the end of digits and separators
///   0x803fe818  VX_E_LENGTH     `length` is negative                        nothing is written
///   0x803fe831  VX_E_NULL       `text` is null and `length` above 0         0; value 0
///   0x803fe831  VX_E_NULL       `value` or `consumed` is null               nothing is written
/// Status 0 does not mean that the whole text was read: without NLS_READ_TRAILING_BLANKS the number may be followed by
/// a blank and anything after it, and a NUL always ends it; neither is consumed.
/// Example: "1,234" reads 1234; "12a" gives 12, consumed 2, 0x803fe810; "12.50" with NLS_READ_FRACTION gives 12,
/// consumed 5, 0x803fe80e.
#define NLS_BUF_TO_INT(name, type)                                                                            \
  VX_API VXStatus name(VXLocale* locale, const VXChar* text, int64_t length, uint32_t flags, type* value,     \
                       uint64_t* consumed);                                                                   \
  VX_API VXStatus name##U(VXLocale* locale, const uint8_t* text, int64_t length, uint32_t flags, type* value, \
                          uint64_t* consumed);
NLS_BUF_TO_INT(NLSBufToInt, int32_t)
NLS_BUF_TO_INT(NLSBufToIntfast, int32_t)
NLS_BUF_TO_INT(NLSBufToUInt, uint32_t)
NLS_BUF_TO_INT(NLSBufToUintfast, uint32_t)
NLS_BUF_TO_INT(NLSBufToLong, int64_t)
NLS_BUF_TO_INT(NLSBufToIntmax, int64_t)
NLS_BUF_TO_INT(NLSBufToULong, uint64_t)
NLS_BUF_TO_INT(NLSBufToUintmax, uint64_t)

#ifdef __cplusplus
}
#endif

#endif
