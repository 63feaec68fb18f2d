// Dates: by one pattern of the locale, by the common forms, or as the first day of a month, a quarter or a week.
#ifndef VXNLS_DATETIME_PARSE_RECOGNISE_DATE_H
#define VXNLS_DATETIME_PARSE_RECOGNISE_DATE_H

#include "calendar/civil.h"
#include "datetime_parse/candidates.h"
#include "datetime_parse/walk.h"

namespace vxnls {

/// Kinds of dates, times and datetimes. Any other kind reads by the locale's main pattern.
enum Kind : uint32_t {
  kind_first = 1,
  kind_second = 2,
  kind_common = 4,
  kind_quarter = 8,
  kind_month = 16,
  kind_locale_week = 32,
  kind_sunday_week = 64,
  kind_iso_week = 128,
  kind_monday_week = 256,
};

/// What a search over candidates gives: the first match, also where a trace wants to see the others.
struct Finding {
  bool found = false;
  VXStatus status = VX_E_NOMATCH;
  NLSParseFields fields = cleared_fields;
  int64_t consumed = 0;  // units from the start of the text

  void keep(const NLSParseFields& read, int64_t units, VXStatus result) {
    found = true;
    status = result;
    fields = read;
    consumed = units;
  }
};

/// One pattern of the locale; text may be left.
template <class Text, class Trace>
Finding read_by_pattern(VXLocale* locale, Input<Text> text, uint32_t source, Part part, uint32_t kind, Trace& trace) {
  Finding finding;
  Input<Text> rest = text;
  if (matches(locale, rest, view(locale_pattern(*locale->localeData, source)), is_lenient(kind), {source, 0},
              finding.fields, trace)) {
    finding.found = true;
    finding.status = 0;
    finding.consumed = text.left - rest.left;
    trace.matched(part, finding.fields, rest);
  }
  return finding;
}

/// The front of a text, and what stands behind the first part of a common date, for each of the parts that there are.
/// Tells of most patterns that they cannot match, and need not be tried.
template <class Text>
class Front {
 public:
  Front(VXLocale* locale, Input<Text> text, bool lenient) : locale_(locale), text_(text), lenient_(lenient) {
    Input<Text> rest = text;
    while (stands_at_digit(rest)) rest.skip(1);
    digits_ = text.left - rest.left;
    if (digits_ > 0) after_digits_ = first_of(rest);
  }

  /// False when the number with which a pattern begins does not stand here. The strict reader takes the digits that it
  /// wants, and leaves others.
  bool may_begin(TextView pattern) const {
    if (!lenient_ || pattern.length < 3 || pattern.text[0] != '%') return true;
    const QuickNumber& number = quick_lenient_numbers.of(pattern.text[1] == '#' ? pattern.text[2] : pattern.text[1]);
    if (number.width == 2) return digits_ == 1 || digits_ == 2;
    return number.width != 4 || digits_ > 0;  // a year has four or two digits, whatever follows
  }

  bool may_match(const Row& row) {
    if (row.begins_with_digits()) return row.text[2] == after_digits_ && may_begin(row.view());
    if (row.text[1] != 'b') return true;
    if (after_month_ == unknown) after_month_ = after_month();
    return after_month_ != nothing && (row.text[2] == after_month_ || row.text[2] == ' ');  // a blank may be missing
  }

 private:
  static constexpr VXChar nothing = 0xFFFFFFFF;  // the part itself does not stand there
  static constexpr VXChar unknown = 0xFFFFFFFE;

  static VXChar first_of(const Input<Text>& rest) { return rest.empty() ? 0 : *rest.at; }
  VXChar after_month() const {
    const Directive* const month = (lenient_ ? lenient_directives : strict_directives).find('b');
    Input<Text> rest = text_;
    int32_t index = 0;
    return read_name(locale_, rest, *month, &index) == VX_REASON_NONE ? first_of(rest) : nothing;
  }

  VXLocale* locale_;
  Input<Text> text_;
  bool lenient_;
  int64_t digits_ = 0;
  VXChar after_digits_ = nothing, after_month_ = unknown;
};

/// The locale's three date patterns, then the common dates; the first match wins, however much it leaves.
template <class Text, class Trace>
Finding lenient_Date(VXLocale* locale, Input<Text> text, uint32_t kind, Trace& trace) {
  const VXLocaleData& data = *locale->localeData;
  Finding finding;
  Input<Text> start = text;
  skip_blanks(start);
  const auto ends_search = [&](Candidate candidate, TextView pattern) {
    Input<Text> rest = start;
    NLSParseFields read;
    if (!matches(locale, rest, pattern, is_lenient(kind), candidate, read, trace)) return false;
    if (!finding.found) finding.keep(read, text.left - rest.left, 0);
    return trace.matched(Part::date, read, rest);
  };

  Front<Text> front(locale, start, is_lenient(kind));
  for (const uint32_t source : {VX_SOURCE_DATE, VX_SOURCE_DATE_1, VX_SOURCE_DATE_2}) {
    const TextView pattern = view(locale_pattern(data, source));
    if (!Trace::watches && !front.may_begin(pattern)) continue;
    if (ends_search({source, 0}, pattern)) return finding;
  }
  const Row(&rows)[17] = writes_month_first(view(data.datePattern)) ? month_first_dates : day_first_dates;
  for (uint32_t i = 0; i < 17; ++i) {
    if (!Trace::watches && !front.may_match(rows[i])) continue;
    if (ends_search({VX_SOURCE_COMMON_DATE, i}, rows[i].view())) return finding;
  }
  return finding;
}

/// A search for a period: a candidate must use the whole text, and what it read is completed to the period's first day.
template <class Text, class Trace>
struct PeriodSearch {
  VXLocale* locale;
  Trace& trace;
  Finding finding = {};

  /// Answers whether the search ends. `complete` gives why the match is refused, which ends it too; a VX_REASON_RANGE
  /// only passes over this candidate.
  template <class Complete>
  bool ends(const Input<Text>& text, Candidate candidate, TextView pattern, Complete complete) {
    Input<Text> rest = text;
    NLSParseFields read;
    if (!matches_whole(locale, rest, pattern, true, candidate, read, trace)) return false;
    const VXReason reason = complete(read);
    if (reason == VX_REASON_RANGE) {
      trace.passed_over(read);
      return false;
    }
    const bool first = !finding.found;
    if (first) finding.keep(read, text.left, reason == VX_REASON_NONE ? 0 : VX_E_NOMATCH);
    if (reason == VX_REASON_NONE) return trace.matched(Part::date, read, rest);
    if (first) trace.refused(reason, read);
    return first;
  }

  template <class Complete>
  bool ends(Input<Text> text, uint32_t source, Complete complete) {
    return ends(text, {source, 0}, view(locale_pattern(*locale->localeData, source)), complete);
  }

  template <size_t N, class Complete>
  bool ends(Input<Text> text, uint32_t source, const Row (&rows)[N], Complete complete) {
    for (uint32_t i = 0; i < N; ++i) {
      if (ends(text, {source, i}, rows[i].view(), complete)) return true;
    }
    return false;
  }
};

template <class Text, class Trace>
Finding read_month(VXLocale* locale, Input<Text> text, Trace& trace) {
  PeriodSearch<Text, Trace> search{locale, trace};
  const Input<Text> stripped = without_trailing_blanks(text);
  const auto complete = [](NLSParseFields& read) {
    read.day = 1;
    return VX_REASON_NONE;
  };
  search.ends(stripped, VX_SOURCE_MONTH_1, complete) || search.ends(stripped, VX_SOURCE_MONTH_2, complete) ||
      search.ends(stripped, VX_SOURCE_COMMON_MONTH, month_rows, complete);
  return search.finding;
}

/// The first day of a quarter.
inline void set_quarter(NLSParseFields& read, int32_t quarter) {
  read.month = 3 * quarter - 2;
  read.day = 1;
}

/// The locale's own patterns name the quarter and are held against the text with its trailing blanks; the common rows
/// number it, and the number stands where a month would.
template <class Text, class Trace>
Finding read_quarter(VXLocale* locale, Input<Text> text, Trace& trace) {
  PeriodSearch<Text, Trace> search{locale, trace};
  const auto by_name = [](NLSParseFields& read) {
    if (read.quarter == 0) return VX_REASON_NO_QUARTER;
    set_quarter(read, read.quarter);
    return VX_REASON_NONE;
  };
  const auto by_number = [](NLSParseFields& read) {
    if (read.month > 4) return VX_REASON_RANGE;
    set_quarter(read, read.month);
    return VX_REASON_NONE;
  };
  search.ends(text, VX_SOURCE_QUARTER_1, by_name) || search.ends(text, VX_SOURCE_QUARTER_2, by_name) ||
      search.ends(without_trailing_blanks(text), VX_SOURCE_COMMON_QUARTER, quarter_rows, by_number);
  return search.finding;
}

/// From the week code to the first day of that week; week 0 is the one before week 1.
inline VXReason week_to_day(NLSParseFields& read) {
  if (read.year == 0 || read.week == 0) return VX_REASON_NO_YEAR;
  const WeekFamily& family = read.week < iso_weeks.code      ? sunday_weeks
                             : read.week < monday_weeks.code ? iso_weeks
                                                             : monday_weeks;
  const int32_t new_year = day_number({read.year, 1, 1});
  const int32_t day = new_year + family.offset[week_day(new_year)] + 7 * (read.week - family.code - 1);
  if (day < first_day) return VX_REASON_BEFORE_CALENDAR;
  const CivilDate date = civil_from_day(day);
  read.year = date.year;
  read.month = date.month;
  read.day = date.day;
  return VX_REASON_NONE;
}

/// The family whose weeks a locale counts, by its first week pattern.
inline const WeekFamily& week_family(const VXLocaleData& data) {
  const TextView pattern = view(data.weekPattern1);
  return place_of(pattern, "%V") >= 0 ? iso_weeks : place_of(pattern, "%W") >= 0 ? monday_weeks : sunday_weeks;
}

template <class Text, class Trace>
Finding read_week(VXLocale* locale, Input<Text> text, uint32_t kind, Trace& trace) {
  PeriodSearch<Text, Trace> search{locale, trace};
  const Input<Text> stripped = without_trailing_blanks(text);
  const auto by_locale = [&] {
    return search.ends(stripped, VX_SOURCE_WEEK_1, week_to_day) || search.ends(stripped, VX_SOURCE_WEEK_2, week_to_day);
  };
  const auto by_family = [&](const WeekFamily& family) {
    return search.ends(stripped, family.source, family.rows, week_to_day);
  };
  if (kind == kind_locale_week) {
    by_locale() || by_family(week_family(*locale->localeData));
  } else {
    const bool sunday = kind == kind_sunday_week, iso = kind == kind_iso_week;
    by_family(sunday ? sunday_weeks : iso ? iso_weeks : monday_weeks) || by_locale();
  }
  return search.finding;
}

template <class Text, class Trace>
Finding read_date(VXLocale* locale, Input<Text> text, uint32_t kind, Trace& trace) {
  switch (kind) {
    case kind_first: return read_by_pattern(locale, text, VX_SOURCE_DATE_1, Part::date, kind, trace);
    case kind_second: return read_by_pattern(locale, text, VX_SOURCE_DATE_2, Part::date, kind, trace);
    case kind_common: return lenient_Date(locale, text, kind, trace);
    case kind_quarter: return read_quarter(locale, text, trace);
    case kind_month: return read_month(locale, text, trace);
    case kind_locale_week:
    case kind_sunday_week:
    case kind_iso_week:
    case kind_monday_week: return read_week(locale, text, kind, trace);
    default: return read_by_pattern(locale, text, VX_SOURCE_DATE, Part::date, kind, trace);
  }
}

/// Whether year, month and day were all read. A match without them is no refusal: it gives zeros.
inline bool is_full_date(const NLSParseFields& fields) {
  return fields.year != 0 && fields.month != 0 && fields.day != 0;
}

/// The year of what was read; 2000 of what has none.
inline int32_t year_of(const NLSParseFields& fields) {
  constexpr int64_t cutoff = 1950;  // of the calendar's work area
  return fields.year <= 99 ? static_cast<int32_t>(widened_year(fields.year, cutoff)) : fields.year;
}

/// The day number of what was read; false when there is no such day.
inline bool day_of(const NLSParseFields& fields, int32_t* day) {
  const CivilDate date{year_of(fields), fields.month, fields.day};
  if (!is_valid(date)) return false;
  *day = day_number(date);
  return true;
}

}  // namespace vxnls

#endif
