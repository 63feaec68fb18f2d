/// What a number reader saw in a text, and where and why it stopped.
///
/// For programs that tell a person what is wrong with a number: the readers of number_parse.h give a status alone. The
/// explanation comes from the very same reader, so the two never disagree.
#ifndef VXNLS_EXPLAIN_NUMBER_H
#define VXNLS_EXPLAIN_NUMBER_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Which reader is asked.
enum {
  VX_NUMBER_DOUBLE = 0, /* NLSBufToDoubleUWithOpts */
  VX_NUMBER_INT32 = 1,  /* NLSBufToIntU */
  VX_NUMBER_UINT32 = 2, /* NLSBufToUIntU */
  VX_NUMBER_INT64 = 3,  /* NLSBufToLongU */
  VX_NUMBER_UINT64 = 4  /* NLSBufToULongU */
};

/// What stood in the way. "Place" is what `fault_offset` and `fault_length` show.
enum {
  VX_FAULT_NONE = 0,                     /* nothing; the offset is the end of what was read, the length 0 */
  VX_FAULT_EMPTY = 1,                    /* double: blanks and tabs only; place: the end of the text */
  VX_FAULT_NO_DIGIT = 2,                 /* something else stands where the first digit should; place: that */
  VX_FAULT_SIGN_ALONE = 3,               /* no digit follows the sign; place: what follows it */
  VX_FAULT_SIGN_REFUSED = 4,             /* "-" for an unsigned type, "+" before hexadecimal digits; place: the sign */
  VX_FAULT_LEADING_SEPARATOR = 5,        /* a group separator before the first digit; place: the separator */
  VX_FAULT_WRONG_POINT = 6,              /* "." before the first digit, where it is not the point; place: "." */
  VX_FAULT_POINT_ALONE = 7,              /* no digit before or after the decimal point; place: the point */
  VX_FAULT_MISSING_LETTER = 8,           /* "." followed by no digit, letter or "_"; place: "." */
  VX_FAULT_SECOND_POINT = 9,             /* a second decimal point; place: that */
  VX_FAULT_SEPARATOR_IN_FRACTION = 10,   /* a group separator after the decimal point; place: the separator */
  VX_FAULT_EXPONENT_WITHOUT_DIGITS = 11, /* no digit after "E" and its sign; place: what stands there */
  VX_FAULT_EXPONENT_RANGE = 12,          /* an exponent outside -30800 .. 30800; place: its digits */
  VX_FAULT_POINT_IN_INTEGER = 13,        /* a decimal point in an integer that may have none; place: the point */
  VX_FAULT_FRACTION_DISCARDED = 14,      /* status 0x803fe80e; place: the first digit that was lost */
  VX_FAULT_TEXT_AFTER = 15,              /* more text after the number or missing value; place: its first character */
  VX_FAULT_OVERFLOW = 16,                /* the magnitude exceeds the type; place: the number, sign included */
  VX_FAULT_UNDERFLOW = 17                /* double: the number is not 0, but the nearest double is; place: as above */
};

/// The explanation of one text. All offsets and lengths are bytes, offsets from the start of the text.
typedef struct VXNumberReading {
  VXStatus status;          /* as the reader returns it */
  uint32_t fault;           /* VX_FAULT_... */
  int64_t consumed;         /* as the reader writes it */
  int64_t fault_offset;     /* where the fault stands; the length of the text when the text ended too early */
  int64_t fault_length;     /* of what stands there; 0 at the end of the text */
  union {                   /* as the reader writes it: on a fault a missing value, or 0 or what was read before it */
    double number;          /* VX_NUMBER_DOUBLE */
    int64_t signed_integer; /* VX_NUMBER_INT32, VX_NUMBER_INT64 */
    uint64_t unsigned_integer; /* VX_NUMBER_UINT32, VX_NUMBER_UINT64 */
  } value;
} VXNumberReading;

/// Reads a number from UTF-8 text and says how it went.
///   locale   as for the reader; null: "." and ","
///   text     `length` bytes; may be null when `length` is 0
///   kind     VX_NUMBER_...
///   flags    the option bits of the reader, NLS_READ_... in number_parse.h
///   reading  the caller's record
/// Returns what the reader returns, which also stands in the record; or, with nothing written:
///   0x803fe831  VX_E_NULL    `reading` is null, or `text` is null and `length` is above 0
///   0x803fe818  VX_E_LENGTH  `length` is negative
///   0x803fe817  VX_E_KIND    no such kind
/// Any thread may call it at any time.
/// Example: "1.2,3" as a double where "," separates groups: status 0x803fe810, VX_FAULT_SEPARATOR_IN_FRACTION, consumed
/// 3, fault_offset 3, fault_length 1.
VX_API VXStatus vxnlsExplainNumber(VXLocale* locale, const uint8_t* text, int64_t length, uint32_t kind, uint32_t flags,
                                   VXNumberReading* reading);

#ifdef __cplusplus
}
#endif

#endif
