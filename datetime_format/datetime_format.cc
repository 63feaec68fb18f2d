#include <algorithm>

#include "calendar/triples.h"
#include "calendar/work_area.h"
#include "datetime_format/expansion.h"
#include "vxnls/vxnls.h"

using namespace vxnls;

namespace {

/// Where a text goes, in units of its flavour.
template <class Text>
struct Destination {
  typename Text::Unit* buffer;
  int64_t capacity;
  int64_t* length;

  bool is_null() const { return length == nullptr || (buffer == nullptr && capacity > 0); }
};

bool is_null(const VXLocale* locale) { return locale == nullptr || locale->localeData == nullptr; }

template <class Text>
[[gnu::noinline]] VXStatus write_by_walk(const VXLocale* locale, TextView pattern, bool of_date, const Moment& moment,
                                         const Destination<Text>& to) {
  Scratch<Text> scratch;
  Expansion<Text> expansion(locale, moment, scratch);
  auto* end = scratch.text;
  if (const VXStatus status = walk_pattern(Expansion<Text>::cut(pattern), of_date, expansion, end)) return status;
  end = expansion.within_room(end);
  while (end > scratch.text && end[-1] == ' ') --end;  // trailing blanks do not count
  const int64_t whole = end - scratch.text;
  const int64_t count = std::clamp<int64_t>(to.capacity, 0, whole);
  constexpr int64_t usual = 20;
  put_units<usual>(to.buffer, to.capacity, scratch.text, count);
  *to.length = count;
  return count < whole || expansion.outgrown() ? VX_E_TRUNCATED : 0;
}

/// Writes by any pattern.
template <class Text>
[[gnu::noinline]] VXStatus write_any(const VXLocale* locale, const NLSName& pattern, bool of_date, const Moment& moment,
                                     const Destination<Text>& to) {
  if (to.capacity >= short_road_units && may_be_numbers(pattern, of_date)) {
    typename Text::Unit before[short_road_units];
    copy_block<short_road_units>(before, to.buffer);
    if (auto* const end = write_numbers<Text>(pattern, of_date, moment, to.buffer)) {
      *to.length = end - to.buffer;
      return 0;
    }
    copy_block<short_road_units>(to.buffer, before);
  }
  return write_by_walk(locale, view(pattern), of_date, moment, to);
}

template <class Text>
[[gnu::always_inline]] inline VXStatus write_date(const VXLocale* locale, uint32_t month, uint32_t day, uint32_t year,
                                                  int32_t style, typename Text::Unit* buffer, int64_t capacity,
                                                  int64_t* length) {
  const Destination<Text> to{buffer, capacity, length};
  if (is_null(locale) || to.is_null()) return VX_E_NULL;
  const int64_t whole_year = year <= 99 ? widened_year(year, default_cutoff) : year;
  const CivilDate date{static_cast<int32_t>(whole_year), static_cast<int32_t>(month), static_cast<int32_t>(day)};
  if (!is_valid(date)) return VX_E_RANGE;
  const VXLocaleData& data = *locale->localeData;
  const NLSName& pattern = style == 1 ? data.datePattern1 : style == 2 ? data.datePattern2 : data.datePattern;
  if (pattern.length == triple_length && capacity >= date_length) [[likely]] {
    const Triple triple = triple_at<false>(pattern.text);
    if (triple.order != Order::none) [[likely]] {
      put_date<Text>(buffer, triple, century_date(date));
      *length = date_length;
      return 0;
    }
  }
  return write_any(locale, pattern, true, Moment(date), to);
}

/// What a datetime must be.
constexpr VXStatus checked(double value) {
  if (value != value) return VX_E_MISSING;
  return is_valid_datetime(value) ? 0 : VX_E_RANGE;
}

template <class Text>
[[gnu::always_inline]] inline VXStatus write_time(const VXLocale* locale, int32_t flag, double value,
                                                  typename Text::Unit* buffer, int64_t capacity, int64_t* length) {
  const Destination<Text> to{buffer, capacity, length};
  if (is_null(locale) || to.is_null()) return VX_E_NULL;
  if (const VXStatus status = checked(value)) return status;
  const NLSName& pattern = flag != 0 ? locale->localeData->timePattern1 : locale->localeData->timePattern;
  if (pattern.length == triple_length && capacity >= time_length) [[likely]] {
    const Triple triple = triple_at<true>(pattern.text);
    if (triple.order != Order::none) [[likely]] {
      put_time<Text>(buffer, triple, time_of_day(day_and_second(value).second));
      *length = time_length;
      return 0;
    }
  }
  return write_any(locale, pattern, false, Moment(value), to);
}

template <class Text>
[[gnu::always_inline]] inline VXStatus write_datetime(const VXLocale* locale, double value, typename Text::Unit* buffer,
                                                      int64_t capacity, int64_t* length) {
  const Destination<Text> to{buffer, capacity, length};
  if (is_null(locale) || to.is_null()) return VX_E_NULL;
  if (const VXStatus status = checked(value)) return status;
  const NLSName& pattern = locale->localeData->datetimePattern;
  if (pattern.length == two_triples_length && capacity >= date_and_time_length) [[likely]] {
    const TwoTriples triples = two_triples_at(pattern.text);
    if (triples) [[likely]] {
      const DayAndSecond at = day_and_second(value);
      put_time<Text>(buffer + date_length + 1, triples.time, time_of_day(at.second));
      put_date<Text>(buffer, triples.date, century_date_from_day(at.day));
      buffer[date_length] = static_cast<typename Text::Unit>(triples.between);
      *length = date_and_time_length;
      return 0;
    }
  }
  return write_any(locale, pattern, false, Moment(value), to);
}

}  // namespace

VXStatus NLSDateFormat(VXLocale* locale, uint32_t month, uint32_t day, uint32_t year, int32_t style, VXChar* buffer,
                       int64_t capacity, int64_t* length) {
  return write_date<Utf32Text>(locale, month, day, year, style, buffer, capacity, length);
}

VXStatus NLSDateFormatU(VXLocale* locale, uint32_t month, uint32_t day, uint32_t year, int32_t style, uint8_t* buffer,
                        int64_t capacity, int64_t* length) {
  return write_date<Utf8Text>(locale, month, day, year, style, buffer, capacity, length);
}

VXStatus NLSTimeFormat(VXLocale* locale, int32_t flag, VXChar* buffer, int64_t capacity, int64_t* length,
                       double value) {
  return write_time<Utf32Text>(locale, flag, value, buffer, capacity, length);
}

VXStatus NLSTimeFormatU(VXLocale* locale, int32_t flag, uint8_t* buffer, int64_t capacity, int64_t* length,
                        double value) {
  return write_time<Utf8Text>(locale, flag, value, buffer, capacity, length);
}

VXStatus NLSDatetimeFormat(VXLocale* locale, uint64_t, VXChar* buffer, int64_t capacity, int64_t* length,
                           double value) {
  return write_datetime<Utf32Text>(locale, value, buffer, capacity, length);
}

VXStatus NLSDatetimeFormatU(VXLocale* locale, uint64_t, uint8_t* buffer, int64_t capacity, int64_t* length,
                            double value) {
  return write_datetime<Utf8Text>(locale, value, buffer, capacity, length);
}
