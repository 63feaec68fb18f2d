#include "vxnls/datetime_parse.h"

#include "datetime_parse/recognise_datetime.h"
#include "datetime_parse/triples.h"

namespace vxnls {

namespace {

/// Whether an argument is missing that a reading needs; `text` may be null when it is empty.
bool lacks(const VXLocale* locale, const void* text, int64_t length) {
  return locale == nullptr || locale->localeData == nullptr || (text == nullptr && length > 0);
}

inline constexpr TextView no_pattern{nullptr, 0};

/// The pattern that is held strictly against the text; none for kinds that read leniently.
TextView date_pattern(const VXLocaleData& data, uint32_t kind) {
  if (is_lenient(kind)) return no_pattern;
  return view(kind == kind_first ? data.datePattern1 : kind == kind_second ? data.datePattern2 : data.datePattern);
}

TextView time_pattern(const VXLocaleData& data, uint32_t kind) {
  if (is_lenient(kind)) return no_pattern;
  return view(kind == kind_first ? data.timePattern1 : data.timePattern);
}

constexpr int32_t second_of_day(TimeOfDay time) { return (time.hour * 60 + time.minute) * 60 + time.second; }

template <class Text>
VXStatus buffer_to_date(VXLocale* locale, const typename Text::Unit* buffer, int64_t length, uint32_t kind,
                        uint32_t* month, uint32_t* day, uint32_t* year, int64_t* consumed) {
  if (lacks(locale, buffer, length) || !month || !day || !year || !consumed) return VX_E_NULL;
  CivilDate quick;
  if (reads_quickly<Text>(date_pattern(*locale->localeData, kind), input_of<Text>(buffer, length), quick)) [[likely]] {
    *month = static_cast<uint32_t>(quick.month);
    *day = static_cast<uint32_t>(quick.day);
    *year = static_cast<uint32_t>(quick.year);
    *consumed = date_length;
    return 0;
  }
  NoTrace trace;
  const Finding finding = read_date(locale, input_of<Text>(buffer, length), kind, trace);
  const bool full = finding.status == 0 && is_full_date(finding.fields);
  *month = full ? static_cast<uint32_t>(finding.fields.month) : 0;
  *day = full ? static_cast<uint32_t>(finding.fields.day) : 0;
  *year = full ? static_cast<uint32_t>(finding.fields.year) : 0;
  if (finding.status == 0) *consumed = finding.consumed;
  return finding.status;
}

template <class Text>
VXStatus buffer_to_time(VXLocale* locale, const typename Text::Unit* buffer, int64_t length, uint32_t kind,
                        double* seconds, int64_t* consumed) {
  if (lacks(locale, buffer, length) || !seconds || !consumed) return VX_E_NULL;
  TimeOfDay quick;
  if (reads_quickly<Text>(time_pattern(*locale->localeData, kind), input_of<Text>(buffer, length), quick)) [[likely]] {
    *seconds = second_of_day(quick);
    *consumed = time_length;
    return 0;
  }
  NoTrace trace;
  const Finding finding = read_time(locale, input_of<Text>(buffer, length), kind, trace);
  if (finding.status != 0) return finding.status;
  *seconds = seconds_of(finding.fields);
  *consumed = finding.consumed;
  return 0;
}

template <class Text>
VXStatus buffer_to_datetime(VXLocale* locale, const typename Text::Unit* buffer, int64_t length, uint32_t kind,
                            double* datetime, int64_t* consumed) {
  if (lacks(locale, buffer, length) || !datetime || !consumed) return VX_E_NULL;
  CivilDate date;
  TimeOfDay time;
  const TextView pattern = is_lenient(kind) ? no_pattern : view(locale->localeData->datetimePattern);
  if (reads_quickly<Text>(pattern, input_of<Text>(buffer, length), date, time) && is_valid(date)) [[likely]] {
    *datetime = static_cast<double>(day_number(date) * seconds_per_day + second_of_day(time));
    *consumed = date_and_time_length;
    return 0;
  }
  NoTrace trace;
  const DatetimeFinding finding = read_datetime(locale, input_of<Text>(buffer, length), kind, trace);
  if (finding.status != 0) return finding.status;
  *datetime = finding.value;
  *consumed = finding.consumed;
  return 0;
}

}  // namespace

}  // namespace vxnls

using vxnls::Utf32Text;
using vxnls::Utf8Text;

VXStatus NLSBufToDate(VXLocale* locale, const VXChar* buffer, int64_t length, uint32_t kind, uint32_t* month,
                      uint32_t* day, uint32_t* year, int64_t* consumed) {
  return vxnls::buffer_to_date<Utf32Text>(locale, buffer, length, kind, month, day, year, consumed);
}

VXStatus NLSBufToDateU(VXLocale* locale, const uint8_t* buffer, int64_t length, uint32_t kind, uint32_t* month,
                       uint32_t* day, uint32_t* year, int64_t* consumed) {
  return vxnls::buffer_to_date<Utf8Text>(locale, buffer, length, kind, month, day, year, consumed);
}

VXStatus NLSBufToTime(VXLocale* locale, const VXChar* buffer, int64_t length, uint32_t kind, double* seconds,
                      int64_t* consumed) {
  return vxnls::buffer_to_time<Utf32Text>(locale, buffer, length, kind, seconds, consumed);
}

VXStatus NLSBufToTimeU(VXLocale* locale, const uint8_t* buffer, int64_t length, uint32_t kind, double* seconds,
                       int64_t* consumed) {
  return vxnls::buffer_to_time<Utf8Text>(locale, buffer, length, kind, seconds, consumed);
}

VXStatus NLSBufToDatetime(VXLocale* locale, const VXChar* buffer, int64_t length, uint32_t kind, double* datetime,
                          int64_t* consumed) {
  return vxnls::buffer_to_datetime<Utf32Text>(locale, buffer, length, kind, datetime, consumed);
}

VXStatus NLSBufToDatetimeU(VXLocale* locale, const uint8_t* buffer, int64_t length, uint32_t kind, double* datetime,
                           int64_t* consumed) {
  return vxnls::buffer_to_datetime<Utf8Text>(locale, buffer, length, kind, datetime, consumed);
}
