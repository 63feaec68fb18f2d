/// Dates, times and datetimes written by the patterns of a locale.
///
/// A pattern is literal text with directives: `%`, perhaps a modifier, and a letter. The letter counts in either case.
/// After `?` any letter, and without a modifier a small one, has the lower form; after `#` a letter never has it, and
/// numbers drop their leading zero. `%%` writes one `%`. Only the letters A-Z and a-z are letters here.
///
///   A  week day's full name; lower form: its short name      M  minute; lower form: month, as N
///   B  month's full name; lower form: its short name         N  month, two digits
///   C  month's full name, any form                           O  month, two places, a blank for a leading zero
///   D  day of the month, two digits                          P  AM marker for hours below 12, else PM marker
///   E  day of the month, two places, a blank for a zero      S  second, two digits, fraction dropped
///   F  week day's full name, any form                        U  always the digit 7
///   H  hour 0-23, two digits                                 W  week day, one digit, 0 = Sunday
///   I  hour 12, 1-11, two digits                             Y  year: its two digits of hundreds, its last two digits
///   K  hour 1-24; 24 stays for what follows                  Z  zone's name; lower form: its offset as +hhmm or -hhmm
///   L  hour 0-12, two digits
///
/// `#` drops the leading zero of D, H, I, K, L, M, N, S and of each half of Y: `%#Y` of 2005 is 205, and `%#m` is the
/// minute. Years above 9999 keep their last four digits. Any other letter, and `%` at the end of a pattern, ends the
/// call with 0x803fe806; a date alone takes A, B, C, D, E, F, N, O, U, W, Y, Z and the lower form of M.
///
/// The zone is the locale's current one, asked once a directive for its state at the local time that is written (for a
/// date, its midnight). Its name is written when it is not empty and the text stays below 512 units with it, otherwise
/// XST; without a zone service the name is XST and the offset +0000.
///
/// The functions ending in U write UTF-8 and count bytes where the others count VXChars; the text is the same but for
/// two things: patterns and names count up to 180 bytes, cut before the character that would pass them, and a zone's
/// name is written as the low eight bits of each unit. On truncation bytes are cut wherever the capacity ends.
///
/// In all functions:
///   locale    from NLSLocaleCreate; only read: threads may share it as far as the host's zone service allows
///   buffer    the caller's memory, room for `capacity` units; never terminated; may be null when `capacity` is 0
///   capacity  in units, below 0 counts as 0
///   length    units written; trailing blanks (U+0020) are dropped
/// Returns 0, or:                                         written then:
///   0x803fe80c  VX_E_MISSING    the value is a NaN       nothing
///   0x803fe80d  VX_E_RANGE      not a date or datetime   nothing
///   0x803fe806  VX_E_DIRECTIVE  see above                nothing; what follows in the pattern is not looked at
///   0x803fe80e  VX_E_TRUNCATED  longer than `capacity`   the first `capacity` units; *length = capacity
///                               or than 512 units        at most the first 512 units, trailing blanks dropped
///   0x803fe831  VX_E_NULL       locale, buffer or length is null   nothing
/// An empty pattern writes an empty text, also with capacity 0.
#ifndef VXNLS_DATETIME_FORMAT_H
#define VXNLS_DATETIME_FORMAT_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Writes a date by one of the locale's three date patterns.
///   year   1582-20000; 0-99 stand for 1950-2049
///   style  1, 2: the date patterns 1 and 2 of the locale; anything else: its main one
/// 0x803fe80d: there is no such day, or it lies outside 1582-01-01 .. 20000-12-31.
/// Example: 2, 29, 24 by "%Y-%m-%d" writes "2024-02-29", *length = 10.
VX_API VXStatus NLSDateFormat(VXLocale* locale, uint32_t month, uint32_t day, uint32_t year, int32_t style,
                              VXChar* buffer, int64_t capacity, int64_t* length);
VX_API VXStatus NLSDateFormatU(VXLocale* locale, uint32_t month, uint32_t day, uint32_t year, int32_t style,
                               uint8_t* buffer, int64_t capacity, int64_t* length);

/// Writes a time, or a date and time, by one of the locale's two time patterns.
///   flag   nonzero: time pattern 1 of the locale; zero: its main one
///   value  seconds since midnight, or since 1960-01-01 00:00: -11928470400 to before 569318630400
/// 0x803fe80d: outside 1582-01-01 .. 20000-12-31.
/// Example: 45296.0 by "%H:%M:%S" writes "12:34:56", *length = 8.
VX_API VXStatus NLSTimeFormat(VXLocale* locale, int32_t flag, VXChar* buffer, int64_t capacity, int64_t* length,
                              double value);
VX_API VXStatus NLSTimeFormatU(VXLocale* locale, int32_t flag, uint8_t* buffer, int64_t capacity, int64_t* length,
                               double value);

/// Writes a datetime by the locale's datetime pattern. `value` as for NLSTimeFormat; `ignored` is not looked at.
/// Example: 0.0 by "%Y-%m-%d %H:%M:%S" writes "1960-01-01 00:00:00", *length = 19.
VX_API VXStatus NLSDatetimeFormat(VXLocale* locale, uint64_t ignored, VXChar* buffer, int64_t capacity, int64_t* length,
                                  double value);
VX_API VXStatus NLSDatetimeFormatU(VXLocale* locale, uint64_t ignored, uint8_t* buffer, int64_t capacity,
                                   int64_t* length, double value);

#ifdef __cplusplus
}
#endif

#endif
