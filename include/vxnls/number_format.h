// Integers and floating-point numbers written by the conventions of a locale.
#ifndef VXNLS_NUMBER_FORMAT_H
#define VXNLS_NUMBER_FORMAT_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Option bits of the integer formatters (I), of the formatters of doubles (D), and of both.
#define NLS_FORMAT_GENERAL 0x0001u   /* D  general form, like %g; also when no other form is asked for */
#define NLS_FORMAT_PLAIN 0x0002u     /* D  plain notation with the given decimals */
#define NLS_FORMAT_FRACTION 0x0004u  /* D  the fraction part alone, behind a "0" */
#define NLS_FORMAT_INTEGER 0x0008u   /* D  no decimals */
#define NLS_FORMAT_EXPONENT 0x0010u  /* D  exponent form; 0x0020 means the same */
#define NLS_FORMAT_HEX_LOWER 0x0080u /* I  unsigned members: hexadecimal, "0123456789abcdef"; wins over HEX_UPPER */
#define NLS_FORMAT_HEX_UPPER 0x0100u /* I  unsigned members: hexadecimal, "0123456789ABCDEF" */
#define NLS_FORMAT_OCTAL 0x0200u     /* I  unsigned members: octal, when not hexadecimal */
#define NLS_FORMAT_BEST 0x0800u      /* D  as many decimals as fit, the same as decimals 99 */
#define NLS_FORMAT_FIXED 0x1000u     /* D  fixed field: exactly `width` units, right-aligned */
#define NLS_FORMAT_FIXED_EXPONENT 0x2000u /* D  exponent form in a fixed field */
#define NLS_FORMAT_SIGNIFICANT 0x4000u    /* D  decimals >= 1: as 0x2000; 0: integer digits; < 0: as 0x1000, absolute */
#define NLS_FORMAT_PLUS 0x10000u          /* ID "+" before values that are not negative (I: signed members) */
#define NLS_FORMAT_GROUP 0x20000u         /* ID group separators (I: decimal only; D: fixed field and free mode) */
#define NLS_FORMAT_LEFT 0x40000u          /* ID left-justified, blanks on the right */
#define NLS_FORMAT_ZERO_PAD 0x80000u      /* ID zeros up to the width (not with LEFT; I: only with precision 0) */
#define NLS_FORMAT_BLANK 0x200000u        /* ID a blank where "+" could stand (D: not with LEFT or ZERO_PAD) */
#define NLS_FORMAT_KEEP_ZEROS 0x400000u   /* D  the general form keeps trailing zeros */
#define NLS_FORMAT_HEX_PREFIX 0x800000u   /* I  "0x", or "0X" before upper-case digits */
#define NLS_FORMAT_OCTAL_PREFIX 0x1000000u /* I  a leading "0" */
#define NLS_BEST_DECIMALS 99

/// Extended options of the formatters of doubles.
struct NLSDoubleExOpts {
  uint8_t options; /* bit 0: `missing` is set */
  uint8_t pad[3];
  VXChar missing; /* shown for the ordinary missing value in place of "." */
};

/// Writes a double by the decimal point, group separator and grouping pattern of a locale.
///   width     of the field in units (bytes in the U flavour). Fixed field: 1 to 32. Otherwise the least width, 0 for
///             none; negative left-justifies in the absolute value
///   decimals  digits after the point; 99: as many as fit; negative: 6. At most 350 in the free mode
///   flags     NLS_FORMAT_... bits marked D
///   buffer    room for `size` units; nothing outside it is written
///   length    units written
/// Fixed field (FIXED, FIXED_EXPONENT, SIGNIFICANT; BEST or decimals 99 when a width is given): at most 15 significant
/// digits of the value are shown as decimals, zeros beyond; what does not fit loses decimals, then turns to exponent
/// form, then to "*". Half a unit of the last place is added and the sum raised by 2^-52 of itself before it is cut, so
/// that 0.285 with 2 decimals gives 0.29. The exponent form has 7 digits less than the field has units, at least 1 and
/// without trailing zeros. Free mode: the exact decimal expansion, rounded half up.
/// A missing value is written as ".", "_" or a letter; with FIXED at the place of the units digit, `size` units being
/// blank-filled; an infinity as "Inf" or "-Inf" in a field of at least 3 or 4 units.
/// When the host offers a conversion table that is enabled (vxGetBDConv), the call is handed to it.
/// Returns                                                    written then
///   0            done                                        the text
///   0x803fe806   free mode: over 350 digits of a fraction    *length = 0
///   0x803fe80e   does not fit                                "*" in the whole field, *length = its width
///   0x803fe815   width below 1 in a fixed field              nothing
///                width above 32, below 7 for exponent form   "*" in the field
///   0x803fe816   FIXED: fewer decimals than asked, or exponent form, to make it fit    the text
///   0x803fe831   buffer or length is null                    nothing
///   0x803fe83a   `missing` is NUL                            "."
///   0x803fe85b   separators or a sign did not fit            the text without them
/// Example: 1234567.891, width 14, 2 decimals, FIXED | GROUP in en_US writes "  1,234,567.89".
VX_API VXStatus NLSDoubleFormat(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                                int64_t size, int64_t* length, double value);
/// As NLSDoubleFormat, with extended options (null: none).
VX_API VXStatus NLSDoubleFormatWithExOpts(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags,
                                          VXChar* buffer, int64_t size, int64_t* length,
                                          const NLSDoubleExOpts* extended, double value);
/// As NLSDoubleFormatWithExOpts, in UTF-8: widths, sizes and the length count bytes. When the host's conversion table
/// does the work, the length counts the characters that it wrote.
VX_API VXStatus NLSDoubleFormatUWithExOpts(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags,
                                           uint8_t* buffer, int64_t size, int64_t* length,
                                           const NLSDoubleExOpts* extended, double value);

/// Writes value * 100 and "%" in plain notation. Of `flags` only bit 0x0001 is used: a negative value stands in
/// parentheses, without "-". The number gets `width` less what is added.
/// Statuses are those of NLSDoubleFormat; after a failure neither "%" nor parentheses are written, but *length counts
/// it as if they were: the number and 1, or the number and 2 with parentheses.
/// Example: -0.125 with 1 decimal and bit 0x0001 writes "(12.5%)", *length = 7.
VX_API VXStatus NLSPercentFormat(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                                 int64_t size, int64_t* length, double value);

/// Writes a grouped number with the locale's currency symbol right before it. Of `flags` only bit 0x0001 is used: no
/// decimals. Separators that do not fit are left out with status 0. After another failure *length counts the symbol,
/// too. 0x803fe831: a null locale, buffer or length.
/// Example: 1234.5, width 12, 2 decimals in en_US writes "   $1,234.50".
VX_API VXStatus NLSCurrencyFormat(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                                  int64_t size, int64_t* length, double value);

/// Writes the exact digits of the integer part of |value|, without leading zeros: none below 1, at most 309.
///   count  digits written      aux  digits needed (null: not wanted)
/// Returns 0; 0x803fc0c9 `size` is too small (*count = 0, nothing in the buffer); 0x803fe80d not a finite number;
/// 0x803fe831 a null buffer or count.
VX_API VXStatus vxzIDblToBuff(double value, VXChar* buffer, int64_t size, int64_t* count, int64_t* aux);

/// Writes the exact digits of the fraction part of |value| from the first that is not zero, at most `size`, cut and not
/// rounded; *leading_zeros counts the zeros before it. An integral value has none, but 0 itself gives one digit "0".
/// Returns 0; 0x803fe80d not a finite number; 0x803fe831 a null pointer.
VX_API VXStatus vxzFDblToBuff(VXChar* buffer, int64_t size, int64_t* count, int64_t* leading_zeros, double value);

/// The integer formatters: one for each type, and a U twin that writes UTF-8 and counts bytes.
///   width      least width in units; its absolute value counts
///   precision  least number of digits; negative: 6. A value of 0 with precision 0 has no digits
///   flags      NLS_FORMAT_... bits marked I
///   buffer     room for `size` units
///   length     units written
/// Returns 0; 0x803fe80e precision, width or text exceed `size` (nothing is written, not the length either);
/// 0x803fe831 buffer or length is null.
/// Example: -1234567, width 12, precision 0, GROUP in de_DE writes "  -1.234.567".
#define NLS_INT_FORMAT(name, type)                                                                                     \
  VX_API VXStatus name(VXLocale* locale, type value, int32_t width, int32_t precision, uint32_t flags, VXChar* buffer, \
                       int64_t size, int64_t* length);                                                                 \
  VX_API VXStatus name##U(VXLocale* locale, type value, int32_t width, int32_t precision, uint32_t flags,              \
                          uint8_t* buffer, int64_t size, int64_t* length);
NLS_INT_FORMAT(NLSIntFormat, int32_t)
NLS_INT_FORMAT(NLSIntfastFormat, int32_t)
NLS_INT_FORMAT(NLSUIntFormat, uint32_t)
NLS_INT_FORMAT(NLSUintfastFormat, uint32_t)
NLS_INT_FORMAT(NLSLongFormat, int64_t)
NLS_INT_FORMAT(NLSIntmaxFormat, int64_t)
NLS_INT_FORMAT(NLSULongFormat, uint64_t)
NLS_INT_FORMAT(NLSUintmaxFormat, uint64_t)
NLS_INT_FORMAT(NLSPointerFormat, uint64_t)

#ifdef __cplusplus
}
#endif

#endif
