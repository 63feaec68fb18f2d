// Dates, times and datetimes read from text.
//
// Every function exists over VXChar and, with a U at the end, over UTF-8; lengths and `consumed` count VXChars there
// and bytes here. Both flavours read alike: UTF-8 that is broken where it is read is a refusal. A text is never
// terminated; a length below 0 counts as 0, and the text may be null when it is empty. `consumed` counts from the start
// of the text, leading blanks included. Blank means U+0020. Nothing is kept between calls; threads may share a locale.
// Only a text that names a time zone touches the locale, namely its zone cache. Any other null argument gives
// 0x803fe831, and nothing is written.
//
// Patterns. What is read is led by patterns of the locale's record, or by built-in ones: "%" and a letter is a
// directive, any other character stands for itself. Between the two may stand "#", "0" and "?", of which only "#" has a
// meaning. A pattern is held against the text from its first character on that is not a blank. When the pattern ends,
// text may be left; when the text ends first, it does not match.
//
// The strict reader. A literal must stand there exactly. Numbers have a fixed width: blanks and then digits fill it,
// fewer only where the text ends ("5/" is no %d; "05/" and " 5/" are). With "#" they have one digit up to that width,
// after any blanks, and no further digit behind. Names may have any case and come after any blanks; the first that
// matches in the order of the list is taken.
//
//   %Y %y    year, four positions, 1582 to 9999        %p       AM or PM marker; PM adds 12 to the hour so far
//   %m %o    month, two positions                      %A %a %F name of the week day (full), checked, not kept
//   %d %e    day, two positions                        %B %C    name of the month (full)
//   %H       hour 0 to 23                              %b       name of the month (abbreviated)
//   %I       hour 1 to 12; 12 is hour 0                %u %w    week day 1 to 7, 0 to 6, one position, not kept
//   %k       hour 0 to 23; %#k also 24, which is 0     %z       offset: + or - or nothing, hours to 12, ":", minutes
//   %l       hour 0 to 11                              %Z       zone: all up to and with the next blank; "XST" at
//   %M %S    minute, second                                     the end of the text is the locale's own zone
//   %s       milliseconds, three positions             %%       the character "%"
//
// The lenient reader. Literals may have any case, and a blank of the pattern may be missing in the text. All numbers
// but the year read as with "#". Differences in the directives:
//
//   %Y %y %G when no year of four positions stands there, one of two: 60 to 99 are 1960 to 1999, 00 to 59 2000 to 2059
//   %H %I    hour 0 to 23; %I keeps 12 as 12
//   %k       hour 0 to 24; 24 is 0                     %B %C %b a full or an abbreviated name of the month
//   %l       hour 0 to 24; 0 and 24 are 12             %A %a %F %f  a full or an abbreviated name of the week day
//   %p       the marker alone; the hour is left        %q %Q    name of a quarter
//   %U %V %W number of a week, 0 to 53, of weeks that begin on Sunday, of ISO weeks, of weeks that begin on Monday
//
// Kinds. The bits 0x1fc of a kind ask for the lenient reader.
#ifndef VXNLS_DATETIME_PARSE_H
#define VXNLS_DATETIME_PARSE_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Reads a date.
///   locale    from NLSLocaleCreate
///   buffer    the text, `length` units
///   kind      what is read:
///     1, 2    the locale's date pattern of kind 1, 2, strictly; text may be left
///     4       any common date, leniently: the locale's three patterns, then 17 forms of day, month and year (such as
///             2020-03-04, 4.3.2020, Mar 4 2020, 3/4/99), day first or month first as the locale's main pattern has it.
///             The first that matches is taken, also when it leaves text
///     8       a quarter: the locale's two quarter patterns, "Q3 2021", "Qtr3, 2021", "Quarter3 2021"; its first day
///     16      a month: the locale's two month patterns, "Month7, 2022", "M7 2022", "Jul/2022", "7-2022"; its first day
///     32      a week as the locale counts: its two week patterns, then "Week7 2021", "W7, 2021"; its first day
///     64      a Sunday week (week 1 begins on the first Sunday), 128 an ISO week, 256 a Monday week: "W7 2021" and so
///             on first, then the locale's two week patterns
///     other   the locale's main date pattern, leniently when a bit of 0x1fc is set; text may be left
///             Kinds 8 to 256 must use the whole text; trailing blanks may stand there, except behind a text that the
///             locale's own quarter pattern matches
///   month, day, year  written always: the date, or three zeros on refusal and where no full date was read. That the
///             month has such a day is not checked: 2020-02-31 is read as it stands
///   consumed  written on status 0 only: units used, for kinds 8 to 256 all but the trailing blanks
/// Returns 0, also with three zeros when the pattern matched but held no year, month or day; or
///   0x803fe80b  the text does not match (why: vxnlsExplain)
/// Example: "12/25/2020 and more" by "%m/%d/%Y" gives 12, 25, 2020, consumed 10.
VX_API VXStatus NLSBufToDate(VXLocale* locale, const VXChar* buffer, int64_t length, uint32_t kind, uint32_t* month,
                             uint32_t* day, uint32_t* year, int64_t* consumed);

/// Reads a time of day. An offset or a zone in the text is read and not applied.
///   kind      what is read:
///     1       the locale's time pattern of kind 1, strictly; text may be left
///     4       any common time, leniently, with nothing but blanks after it: the locale's two time patterns,
///             "10:30:15", "10:30:15Z", and the locale's patterns without their seconds. An AM or PM marker is applied
///             to an hour up to 12. A locale whose AM marker is empty has it found everywhere
///     other   the locale's main time pattern, leniently when a bit of 0x1fc is set; text may be left. A marker that is
///             read leniently is not applied here
///   seconds   seconds since midnight, milliseconds as a fraction; written on status 0 only
///   consumed  written on status 0 only; for kind 4 all but trailing blanks
/// Returns 0, or
///   0x803fe80b  the text does not match
/// Example: "12:05 am" of kind 4 by "%I:%M:%S %p" gives 300.
VX_API VXStatus NLSBufToTime(VXLocale* locale, const VXChar* buffer, int64_t length, uint32_t kind, double* seconds,
                             int64_t* consumed);

/// Reads a datetime.
///   kind      a kind without bit 4: the locale's datetime pattern, strictly or, with a bit of 0x1fc, leniently; text
///             may be left. Where that does not match, and for a kind with bit 4: a date as NLSBufToDate reads it by
///             kind 4, then "T", blanks and punctuation, which are skipped, then a time as NLSBufToTime reads it by
///             kind 4; both strictly when the kind has no bit of 0x1fc
///   datetime  seconds since 1960-01-01 00:00, always in the locale's zone: a text that gives an offset or names a zone
///             is converted; one whose pattern reads no year is of the year 2000. Written on status 0 only
///   consumed  written on status 0 only
/// Returns 0, or
///   0x803fe80b  the text does not match: no date, no time after it, or no such day (31 February)
/// Example: "2021-03-04T10:20:30" of kind 4 gives 1930472430 (4 March 2021, 10:20:30); "2021-03-04" alone is refused.
VX_API VXStatus NLSBufToDatetime(VXLocale* locale, const VXChar* buffer, int64_t length, uint32_t kind,
                                 double* datetime, int64_t* consumed);

/// The same over UTF-8: `length` and `consumed` count bytes. The name of a zone is taken byte by byte, not decoded.
VX_API VXStatus NLSBufToDateU(VXLocale* locale, const uint8_t* buffer, int64_t length, uint32_t kind, uint32_t* month,
                              uint32_t* day, uint32_t* year, int64_t* consumed);
VX_API VXStatus NLSBufToTimeU(VXLocale* locale, const uint8_t* buffer, int64_t length, uint32_t kind, double* seconds,
                              int64_t* consumed);
VX_API VXStatus NLSBufToDatetimeU(VXLocale* locale, const uint8_t* buffer, int64_t length, uint32_t kind,
                                  double* datetime, int64_t* consumed);

#ifdef __cplusplus
}
#endif

#endif
