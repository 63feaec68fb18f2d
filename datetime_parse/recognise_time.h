// Times of day: by one pattern of the locale, or by its patterns with and without seconds and the common forms.
#ifndef VXNLS_DATETIME_PARSE_RECOGNISE_TIME_H
#define VXNLS_DATETIME_PARSE_RECOGNISE_TIME_H

#include "datetime_parse/recognise_date.h"

namespace vxnls {

/// A time pattern of the locale and the copies of it that leave the seconds out.
class ShortTimes {
 public:
  /// `also_hash`: "%#M" may stand for "%M".
  // cppcheck-suppress uninitMemberVar ; the copy is written before it is read
  ShortTimes(TextView pattern, bool also_hash)
      : pattern_(pattern), minutes_(place_of(pattern, "%M")), seconds_(place_of(pattern, "%S")) {
    marker_ = place_of(pattern, "%p");
    if (minutes_ < 0 && also_hash) {
      minutes_ = place_of(pattern, "%#M");
      minutes_length_ = 3;
    }
  }
  ShortTimes(const ShortTimes&) = delete;
  ShortTimes& operator=(const ShortTimes&) = delete;

  bool exist() const { return minutes_ >= 0 && seconds_ >= 0; }
  bool keep_marker() const { return exist() && marker_ >= 0; }

  /// Cut right after the minutes, or right before the seconds, which keeps the separator between the two.
  TextView cut(bool before_seconds) const {
    return {pattern_.text, before_seconds ? seconds_ : minutes_ + minutes_length_};
  }

  /// The same two, with the AM or PM marker: after a blank where it stood behind the minutes; otherwise it stays where
  /// it is, and only the seconds go, in the first copy with all that lies between them and the minutes.
  TextView with_marker(bool before_seconds) {
    copied_ = 0;
    const int32_t after_seconds = seconds_ + 2;
    if (marker_ > minutes_) {
      copy(0, cut(before_seconds).length);
      for (const char c : {' ', '%', 'p'}) append(static_cast<VXChar>(c));
    } else {
      const int64_t first = cut(before_seconds).length;
      copy(0, first < seconds_ ? first : seconds_);
      copy(after_seconds, pattern_.length);
    }
    return {copy_, copied_};
  }

 private:
  void append(VXChar c) {
    if (copied_ < longest_name) copy_[copied_++] = c;
  }
  void copy(int64_t from, int64_t to) {
    for (int64_t i = from; i < to; ++i) append(pattern_.text[i]);
  }

  TextView pattern_;
  int32_t minutes_, seconds_, marker_;
  int32_t minutes_length_ = 2;
  int64_t copied_ = 0;
  VXChar copy_[longest_name];
};

/// Applies the AM or PM marker. A candidate without "%p" looks for one in the text that it left, which is none: an
/// empty marker is found there all the same, so that a locale whose AM marker is empty reads such times as AM. Kept on
/// purpose.
inline VXReason apply_marker(const VXLocaleData& data, TextView candidate, NLSParseFields& read) {
  if (place_of(candidate, "%p") < 0) {
    read.marker = view(data.amMarker).length == 0 ? 1 : view(data.pmMarker).length == 0 ? 2 : 0;
  }
  if (read.marker == 0) return VX_REASON_NONE;
  if (read.hour > 12) return VX_REASON_MARKER;
  if (read.marker == 1) {
    if (read.hour == 12) read.hour = 0;
  } else {
    if (read.hour == 0) return VX_REASON_MARKER;
    if (read.hour < 12) read.hour += 12;
  }
  return VX_REASON_NONE;
}

/// Up to ten candidates, each of which must use the whole text but for trailing blanks.
template <class Text, class Trace>
Finding lenient_Time(VXLocale* locale, Input<Text> text, uint32_t kind, Trace& trace) {
  const VXLocaleData& data = *locale->localeData;
  const Input<Text> start = without_trailing_blanks(text);
  Finding finding;
  const auto ends_search = [&](Candidate candidate, TextView pattern) {
    Input<Text> rest = start;
    NLSParseFields read;
    if (!matches_whole(locale, rest, pattern, is_lenient(kind), candidate, read, trace)) return false;
    const VXReason reason = apply_marker(data, pattern, read);
    const bool first = !finding.found;
    if (first) finding.keep(read, start.left, reason == VX_REASON_NONE ? 0 : VX_E_NOMATCH);
    if (reason == VX_REASON_NONE) return trace.matched(Part::time, read, rest);
    if (first) trace.refused(reason, read);
    return first;
  };

  const TextView main = view(data.timePattern), other = view(data.timePattern1);
  if (ends_search({VX_SOURCE_TIME, 0}, main) || ends_search({VX_SOURCE_TIME_1, 0}, other)) return finding;
  for (uint32_t i = 0; i < 2; ++i) {
    if (ends_search({VX_SOURCE_COMMON_TIME, i}, time_rows[i].view())) return finding;
  }
  ShortTimes of_main(main, false);
  if (of_main.keep_marker() && (ends_search({VX_SOURCE_SHORT_TIME, 5}, of_main.with_marker(false)) ||
                                ends_search({VX_SOURCE_SHORT_TIME, 6}, of_main.with_marker(true)))) {
    return finding;
  }
  if (of_main.exist() && (ends_search({VX_SOURCE_SHORT_TIME, 7}, of_main.cut(false)) ||
                          ends_search({VX_SOURCE_SHORT_TIME, 8}, of_main.cut(true)))) {
    return finding;
  }
  const ShortTimes of_other(other, true);
  if (of_other.exist()) {
    ends_search({VX_SOURCE_SHORT_TIME_1, 9}, of_other.cut(false)) ||
        ends_search({VX_SOURCE_SHORT_TIME_1, 10}, of_other.cut(true));
  }
  return finding;
}

template <class Text, class Trace>
Finding read_time(VXLocale* locale, Input<Text> text, uint32_t kind, Trace& trace) {
  switch (kind) {
    case kind_first: return read_by_pattern(locale, text, VX_SOURCE_TIME_1, Part::time, kind, trace);
    case kind_common: return lenient_Time(locale, text, kind, trace);
    default: return read_by_pattern(locale, text, VX_SOURCE_TIME, Part::time, kind, trace);
  }
}

/// Seconds since midnight. Always a number; a PM that was added to an hour past noon gives more than a day has.
inline double seconds_of(const NLSParseFields& fields) {
  return static_cast<double>((fields.hour * 60 + fields.minute) * 60 + fields.second) + fields.milliseconds / 1000.0;
}

}  // namespace vxnls

#endif
