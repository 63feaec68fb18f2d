#include <algorithm>

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

template <class Text>
VXStatus write(const VXLocale* locale, const NLSName& pattern, bool of_date, const Moment& moment,
               const Destination<Text>& to) {
  if (to.capacity >= short_road_units) {
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
VXStatus write_date(const VXLocale* locale, uint32_t month, uint32_t day, uint32_t year, int32_t style,
                    Destination<Text> to) {  // cppcheck-suppress passedByValue ; three words, kept in registers
  if (is_null(locale) || to.is_null()) return VX_E_NULL;
  const int64_t whole_year = year <= 99 ? widened_year(year, default_cutoff) : year;
  const CivilDate date{static_cast<int32_t>(whole_year), static_cast<int32_t>(month), static_cast<int32_t>(day)};
  if (!is_valid(date)) return VX_E_RANGE;
  const VXLocaleData& data = *locale->localeData;
  const NLSName& pattern = style == 1 ? data.datePattern1 : style == 2 ? data.datePattern2 : data.datePattern;
  return write(locale, pattern, true, Moment::of_date(date), to);
}

template <class Text>
VXStatus write_datetime(const VXLocale* locale, const NLSName VXLocaleData::*pattern, double value,
                        Destination<Text> to) {  // cppcheck-suppress passedByValue ; three words, kept in registers
  if (is_null(locale) || to.is_null()) return VX_E_NULL;
  if (value != value) return VX_E_MISSING;
  if (!is_valid_datetime(value)) return VX_E_RANGE;
  return write(locale, locale->localeData->*pattern, false, Moment::of_datetime(value), to);
}

constexpr NLSName VXLocaleData::*time_pattern(int32_t flag) {
  return flag != 0 ? &VXLocaleData::timePattern1 : &VXLocaleData::timePattern;
}

}  // namespace

VXStatus NLSDateFormat(VXLocale* locale, uint32_t month, uint32_t day, uint32_t year, int32_t style, VXChar* buffer,
                       int64_t capacity, int64_t* length) {
  return write_date<Utf32Text>(locale, month, day, year, style, {buffer, capacity, length});
}

VXStatus NLSDateFormatU(VXLocale* locale, uint32_t month, uint32_t day, uint32_t year, int32_t style, uint8_t* buffer,
                        int64_t capacity, int64_t* length) {
  return write_date<Utf8Text>(locale, month, day, year, style, {buffer, capacity, length});
}

VXStatus NLSTimeFormat(VXLocale* locale, int32_t flag, VXChar* buffer, int64_t capacity, int64_t* length,
                       double value) {
  return write_datetime<Utf32Text>(locale, time_pattern(flag), value, {buffer, capacity, length});
}

VXStatus NLSTimeFormatU(VXLocale* locale, int32_t flag, uint8_t* buffer, int64_t capacity, int64_t* length,
                        double value) {
  return write_datetime<Utf8Text>(locale, time_pattern(flag), value, {buffer, capacity, length});
}

VXStatus NLSDatetimeFormat(VXLocale* locale, uint64_t, VXChar* buffer, int64_t capacity, int64_t* length,
                           double value) {
  return write_datetime<Utf32Text>(locale, &VXLocaleData::datetimePattern, value, {buffer, capacity, length});
}

VXStatus NLSDatetimeFormatU(VXLocale* locale, uint64_t, uint8_t* buffer, int64_t capacity, int64_t* length,
                            double value) {
  return write_datetime<Utf8Text>(locale, &VXLocaleData::datetimePattern, value, {buffer, capacity, length});
}
