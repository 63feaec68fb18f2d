// Why a text was, or was not, understood as a date, a time or a datetime.
#ifndef VXNLS_EXPLAIN_H
#define VXNLS_EXPLAIN_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// What is read, the argument `what` of vxnlsExplain: as NLSBufToDateU, NLSBufToTimeU or NLSBufToDatetimeU reads it.
enum { VX_EXPLAIN_DATE = 1, VX_EXPLAIN_TIME = 2, VX_EXPLAIN_DATETIME = 3 };

/// Where a candidate pattern came from.
enum {
  VX_SOURCE_NONE = 0,      /* no candidate: the member is not filled */
  VX_SOURCE_DATE = 1,      /* the locale's main date pattern */
  VX_SOURCE_DATE_1 = 2,    /* its date pattern of kind 1 */
  VX_SOURCE_DATE_2 = 3,    /* its date pattern of kind 2 */
  VX_SOURCE_DATETIME = 4,  /* its datetime pattern */
  VX_SOURCE_TIME = 5,      /* its main time pattern */
  VX_SOURCE_TIME_1 = 6,    /* its time pattern of kind 1 */
  VX_SOURCE_QUARTER_1 = 7, /* its first and second quarter pattern, in the order in which they are tried */
  VX_SOURCE_QUARTER_2 = 8,
  VX_SOURCE_MONTH_1 = 9, /* its first and second month-year pattern */
  VX_SOURCE_MONTH_2 = 10,
  VX_SOURCE_WEEK_1 = 11, /* its first and second week pattern */
  VX_SOURCE_WEEK_2 = 12,
  VX_SOURCE_COMMON_DATE = 13,    /* a row of the common dates, in the order that the locale calls for */
  VX_SOURCE_COMMON_MONTH = 14,   /* a row of the common months of a year */
  VX_SOURCE_COMMON_QUARTER = 15, /* a row of the common quarters */
  VX_SOURCE_SUNDAY_WEEK = 16,    /* a row of the common weeks that begin on Sunday */
  VX_SOURCE_ISO_WEEK = 17,       /* ... of the ISO weeks */
  VX_SOURCE_MONDAY_WEEK = 18,    /* ... of the weeks that begin on Monday */
  VX_SOURCE_COMMON_TIME = 19,    /* a row of the common times */
  VX_SOURCE_SHORT_TIME = 20,     /* the locale's main time pattern without its seconds, see `row` */
  VX_SOURCE_SHORT_TIME_1 = 21    /* its time pattern of kind 1 without its seconds, see `row` */
};

/// Why a candidate was refused.
typedef enum VXReason {
  VX_REASON_NONE = 0,       /* not refused */
  VX_REASON_TEXT_ENDED = 1, /* the text ended, the pattern wants more */
  VX_REASON_NO_DIGIT = 2,   /* a number is wanted and no digit stands there */
  VX_REASON_WIDTH = 3, /* strict: fewer positions are filled than `width`; with # before the letter they would do */
  VX_REASON_BLANK_FIELD = 4,      /* strict: blanks fill all `width` positions */
  VX_REASON_TOO_MANY_DIGITS = 5,  /* lenient: another digit follows the `width` that are read */
  VX_REASON_RANGE = 6,            /* `value` lies outside `minimum` to `maximum` */
  VX_REASON_NO_NAME = 7,          /* no name of the list matches */
  VX_REASON_LITERAL = 8,          /* another character stands where the pattern has `letter` itself */
  VX_REASON_TRAILING_TEXT = 9,    /* the pattern ended; the form must use the whole text, and some is left */
  VX_REASON_ZONE_UNKNOWN = 10,    /* the host knows no zone of this name */
  VX_REASON_BROKEN_TEXT = 11,     /* no well-formed UTF-8 stands there */
  VX_REASON_DIRECTIVE = 12,       /* the pattern holds a directive that is not read (or not by this reader) */
  VX_REASON_PATTERN_ENDED = 13,   /* the pattern ends in "%" or in a modifier */
  VX_REASON_MARKER = 14,          /* hour `value` does not go with AM or PM (`minimum` to `maximum` would) */
  VX_REASON_NO_YEAR = 15,         /* the week form that matched read no year or no week */
  VX_REASON_NO_QUARTER = 16,      /* the quarter form that matched read no quarter */
  VX_REASON_BEFORE_CALENDAR = 17, /* the first day of the period lies before 1582-01-01 */
  VX_REASON_NO_SUCH_DAY = 18      /* the month has no such day (datetimes only; for dates see `day_exists`) */
} VXReason;

/// Offset of VXExplainFields when the text gave none. No offset that can be read has this value.
#define VX_NO_OFFSET 72123

/// How many matches with another result are described; all are counted.
#define VX_EXPLAIN_OTHERS 4

/// A pattern that was tried.
typedef struct VXExplainCandidate {
  uint32_t source;  ///< VX_SOURCE_...
  uint32_t row;  ///< common forms: the row, from 0. Short times: 5 to 10, the place in the order of attempts. Else 0.
  uint32_t lenient;   ///< 1: read leniently, 0: strictly
  uint32_t reserved;  ///< 0
  NLSName pattern;    ///< its text
} VXExplainCandidate;

/// What a match read. Members that it did not read are 0, or VX_NO_OFFSET.
typedef struct VXExplainFields {
  int32_t year, month, day;  ///< of a period form: its first day
  int32_t hour, minute, second, milliseconds;
  int32_t offset;      ///< seconds east of UTC
  int32_t marker;      ///< 0 none, 1 AM, 2 PM
  int32_t quarter;     ///< 1 to 4, when a quarter name was read
  int32_t week;        ///< week number plus 100 (Sunday weeks), 200 (ISO weeks) or 300 (Monday weeks)
  int32_t zone_given;  ///< 1: the text named a zone
} VXExplainFields;

/// A candidate that matched.
typedef struct VXExplainMatch {
  VXExplainCandidate candidate;
  VXExplainFields fields;
  int64_t start;  ///< first byte that it was held against
  int64_t end;    ///< first byte that it left
} VXExplainMatch;

/// Why no candidate matched: the attempt that came furthest, the first of several that came equally far. A match that
/// is refused afterwards (VX_REASON_MARKER to VX_REASON_NO_SUCH_DAY) ends all attempts and is told instead.
typedef struct VXExplainRefusal {
  uint32_t reason;        ///< VXReason
  uint32_t is_directive;  ///< 1: `letter` is a directive, 0: a literal character, or 0 for neither
  VXChar letter;          ///< the directive letter, or the literal, that was wanted; 0: none
  VXChar modifier;        ///< '#', '0', '?' between "%" and the letter, or 0
  int64_t position;       ///< bytes from the start of the text to the offending part
  int64_t length;         ///< bytes of the offending part (digits, a word, one character); 0 at the end of the text
  int64_t furthest;       ///< bytes from the start of the text to the first byte that was not understood
  int32_t value;          ///< the number that stands there (RANGE, MARKER, NO_SUCH_DAY)
  int32_t minimum;        ///< smallest and largest number wanted; both 0 when no number is wanted
  int32_t maximum;
  int32_t width;     ///< positions of a number; 0 when no number is wanted
  int64_t attempts;  ///< candidates that were tried
  VXExplainCandidate candidate;
} VXExplainRefusal;

/// The whole answer. All positions and lengths count bytes from the start of the text, leading blanks included.
typedef struct VXExplanation {
  int64_t size;       ///< set by the caller to sizeof(VXExplanation); comes back as the bytes that this library filled
  VXStatus status;    ///< what the entry point returns for this text
  uint32_t complete;  ///< 1: year, month and day were all read (dates; NLSBufToDateU gives zeros otherwise); other: 1
  int64_t consumed;   ///< what the entry point gives; 0 on refusal
  /// Date: its day number, the missing value when there is no such day. Time: seconds since midnight. Datetime: seconds
  /// since 1960-01-01 00:00, in the locale's zone. The missing value on refusal.
  double value;
  uint32_t day_exists;  ///< 0: the month that was read has no such day (31 February passes NLSBufToDateU)
  uint32_t reserved;    ///< 0
  /// The date, the time, or the date of a datetime. A match of the locale's datetime pattern stands here alone.
  /// Filled also on refusal when a datetime's date was understood and its time was not.
  VXExplainMatch match;
  VXExplainMatch time;  ///< the time of a datetime, when its date was matched by a candidate of its own
  /// Candidates that were not reached, because an earlier one matched, and that would have given another result:
  /// another full date for the date, another time for the time. Each result counts once.
  int64_t other_count;
  VXExplainMatch others[VX_EXPLAIN_OTHERS];  ///< the first of them
  VXExplainRefusal refusal;                  ///< reason VX_REASON_NONE when the text was understood
} VXExplanation;

/// Tells how a text is understood by NLSBufToDateU, NLSBufToTimeU or NLSBufToDatetimeU, or why it is not. The same code
/// reads it, but every candidate is tried, also after one has matched.
///   locale       only read (its zone cache grows when the text names a zone)
///   what         VX_EXPLAIN_DATE, VX_EXPLAIN_TIME or VX_EXPLAIN_DATETIME
///   kind         as the entry point takes it
///   text         UTF-8, `length` bytes; a length below 0 counts as 0
///   explanation  its `size` set; everything else is written, whatever the text
/// Returns 0, whether the text is understood or not (that is `explanation->status`), or, with nothing written:
///   0x803fe831  locale, its data or explanation is null, or text is null and length is above 0
///   0x803fe818  `size` is below sizeof(VXExplanation) of this library
///   0x803fe817  `what` is none of the three
/// Example: "2021-13-05" as a date of kind 4 in an American locale: status 0x803fe80b, refusal.reason VX_REASON_RANGE,
/// position 5, length 2, value 13, minimum 1, maximum 12, letter 'm', candidate "%Y-%m-%d".
VX_API VXStatus vxnlsExplain(VXLocale* locale, uint32_t what, uint32_t kind, const uint8_t* text, int64_t length,
                             VXExplanation* explanation);

#ifdef __cplusplus
}
#endif

#endif
