// Datetimes: by the locale's datetime pattern, or as a date and then a time, in the locale's time zone.
#ifndef VXNLS_DATETIME_PARSE_RECOGNISE_DATETIME_H
#define VXNLS_DATETIME_PARSE_RECOGNISE_DATETIME_H

#include "datetime_parse/recognise_time.h"
#include "vxnls/classes.h"

namespace vxnls {

struct DatetimeFinding {
  VXStatus status = VX_E_NOMATCH;
  double value = 0;  // seconds since 1960-01-01 00:00 in the locale's zone
  int64_t consumed = 0;
};

/// What may stand between a date and its time: one "T" right after the date, then blanks and punctuation.
template <class Text>
void skip_separators(Input<Text>& in) {
  if (in.stands_at('T')) in.skip(1);
  while (!in.empty()) {
    const Character here = character_at(in);
    if (here.units == 0 || (vxnlsisspace(here.code_point) == 0 && vxnlsispunct(here.code_point) == 0)) return;
    in.skip(here.units);
  }
}

/// A local time of the zone or offset that was read, as local time of the locale's zone.
inline double in_zone_of_locale(VXLocale* locale, const NLSParseFields& time, double value) {
  if (time.zone == nullptr && time.offset == no_offset) return value;
  const int32_t offset =
      time.zone != nullptr ? host::zone_offset(locale, time.zone, VX_ZONE_FROM_LOCAL, value) : time.offset;
  const double utc = value - offset;
  return utc + host::zone_offset(locale, host::current_zone(locale), VX_ZONE_FROM_UTC, utc);
}

/// The value of a date and a time, which a pattern for both has read together or two patterns apart.
template <class Trace>
DatetimeFinding datetime_of(VXLocale* locale, const NLSParseFields& date, const NLSParseFields& time, int64_t consumed,
                            Trace& trace) {
  int32_t day = 0;
  if (!day_of(date, &day)) {
    trace.refused(VX_REASON_NO_SUCH_DAY, date);
    return {};
  }
  const int64_t seconds = ((int64_t{day} * 24 + time.hour) * 60 + time.minute) * 60 + time.second;
  double value = static_cast<double>(seconds);
  if (time.milliseconds != 0) value += time.milliseconds / 1000.0;
  return {0, in_zone_of_locale(locale, time, value), consumed};
}

/// A common date, then a common time with nothing after it.
template <class Text, class Trace>
DatetimeFinding read_date_and_time(VXLocale* locale, Input<Text> text, uint32_t kind, Trace& trace) {
  const Finding date = lenient_Date(locale, text, kind, trace);
  if (date.status != 0) return {};
  Input<Text> rest = text;
  rest.skip(date.consumed);
  skip_separators(rest);
  const Finding time = lenient_Time(locale, rest, kind, trace);
  if (time.status != 0) return {};
  return datetime_of(locale, date.fields, time.fields, text.left - rest.left + time.consumed, trace);
}

template <class Text, class Trace>
DatetimeFinding read_datetime(VXLocale* locale, Input<Text> text, uint32_t kind, Trace& trace) {
  if ((kind & kind_common) == 0) {
    const Finding whole = read_by_pattern(locale, text, VX_SOURCE_DATETIME, Part::datetime, kind, trace);
    if (whole.found) {
      if constexpr (Trace::watches) {
        const DatetimeFinding result = datetime_of(locale, whole.fields, whole.fields, whole.consumed, trace);
        read_date_and_time(locale, text, kind, trace);  // what else it could have been
        return result;
      } else {
        return datetime_of(locale, whole.fields, whole.fields, whole.consumed, trace);
      }
    }
  }
  return read_date_and_time(locale, text, kind, trace);
}

}  // namespace vxnls

#endif
