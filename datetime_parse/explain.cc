#include "vxnls/explain.h"

#include <string.h>

#include "calendar/work_area.h"
#include "datetime_parse/recognise_datetime.h"

namespace vxnls {

namespace {

using Bytes = Input<Utf8Text>;

/// Where a number was read. The explanation of a match that is refused afterwards points there.
struct Span {
  int64_t position = 0, length = 0;
};

struct NumberSpans {
  Span month, day, hour;
};

void set_candidate(VXExplainCandidate& out, Candidate candidate, TextView pattern, bool lenient) {
  out.source = candidate.source;
  out.row = candidate.row;
  out.lenient = lenient;
  out.reserved = 0;
  out.pattern.length = pattern.length;
  for (int64_t i = 0; i < longest_name; ++i) out.pattern.text[i] = i < pattern.length ? pattern.text[i] : 0;
}

VXExplainFields public_fields(const NLSParseFields& f) {
  return {f.year,         f.month,  f.day,    f.hour,    f.minute, f.second,
          f.milliseconds, f.offset, f.marker, f.quarter, f.week,   f.zone != nullptr};
}

bool same_date(const VXExplainFields& a, const VXExplainFields& b) {
  return a.year == b.year && a.month == b.month && a.day == b.day;
}

bool same_time(const VXExplainFields& a, const VXExplainFields& b) {
  return a.hour == b.hour && a.minute == b.minute && a.second == b.second && a.milliseconds == b.milliseconds &&
         a.offset == b.offset && a.zone_given == b.zone_given;
}

/// Watches every attempt and keeps the first match of each part, the other results, and the attempt that came furthest.
class ExplainTrace {
 public:
  static constexpr bool watches = true;

  ExplainTrace(Bytes text, uint32_t what, VXExplanation* out) : text_(text), what_(what), out_(out) {}

  void begin(Candidate candidate, TextView pattern, bool lenient, const void* at) {
    candidate_ = candidate;
    pattern_ = pattern;
    lenient_ = lenient;
    start_ = static_cast<const uint8_t*>(at) - text_.at;
    spans_ = {};
    ++out_->refusal.attempts;
  }

  void read(Step step, const Bytes& before, const Bytes& after) {
    const Directive* const directive = step.is_directive ? directives().find(step.letter) : nullptr;
    if (directive == nullptr || directive->number.width == 0) return;
    const Span span = digits_before(after, position(before), directive->number.width);
    if (directive->field == &NLSParseFields::month) spans_.month = span;
    if (directive->field == &NLSParseFields::day) spans_.day = span;
    if (directive->field == &NLSParseFields::hour) spans_.hour = span;
  }

  void failed(Step step, VXReason reason, const Bytes& before, const Bytes& after) {
    if (!counts(position(after), reason, after)) return;
    VXExplainRefusal& refusal = begin_refusal(reason, position(after));
    refusal.is_directive = step.is_directive && step.letter != 0;
    refusal.letter = step.letter;
    refusal.modifier = step.modifier;
    Span span{position(after), 0};
    switch (reason) {
      case VX_REASON_RANGE:
      case VX_REASON_WIDTH: span = digits_before(after, position(before), step.letter == 'z' ? 2 : 9); break;
      case VX_REASON_TOO_MANY_DIGITS: {
        span = digits_before(after, position(before), 9);
        while (digit_at(span.position + span.length)) ++span.length;
        break;
      }
      case VX_REASON_BLANK_FIELD: span = {position(before), position(after) - position(before)}; break;
      case VX_REASON_NO_DIGIT:
      case VX_REASON_NO_NAME: span.length = word_length(after); break;
      case VX_REASON_LITERAL: span = {position(before), character_length(before)}; break;
      case VX_REASON_TRAILING_TEXT: span.length = after.left; break;
      case VX_REASON_ZONE_UNKNOWN:
        while (span.length < after.left && after.at[span.length] != ' ') ++span.length;
        break;
      default: break;
    }
    set_span(refusal, span);
    set_number(refusal, step, position(before), span);
    if (span.position < text_.left && broken_at(span.position)) {
      refusal.reason = VX_REASON_BROKEN_TEXT;
      refusal.length = 1;
    }
  }

  bool matched(Part part, const NLSParseFields& fields, const Bytes& rest) {
    const VXExplainFields read = public_fields(fields);
    const bool is_time = part == Part::time;
    VXExplainMatch& first = is_time && what_ == VX_EXPLAIN_DATETIME ? out_->time : out_->match;
    bool& known = is_time ? time_known_ : date_known_;
    if (!known) {
      fill(first, read, rest);
      if (!is_time) matched_spans_ = spans_;
      known = true;
      if (part == Part::datetime) whole_known_ = time_known_ = true;
      return false;
    }
    if (!is_time && !is_full_date(fields)) return false;
    const VXExplainMatch& against = is_time && whole_known_ ? out_->match : first;
    if (is_time ? same_time(against.fields, read) : same_date(against.fields, read)) return false;
    const int64_t listed = out_->other_count < VX_EXPLAIN_OTHERS ? out_->other_count : VX_EXPLAIN_OTHERS;
    for (int64_t i = 0; i < listed; ++i) {
      const VXExplainMatch& other = out_->others[i];
      if (is_time_source(other.candidate.source) != is_time) continue;
      if (is_time ? same_time(other.fields, read) : same_date(other.fields, read)) return false;
    }
    if (out_->other_count < VX_EXPLAIN_OTHERS) fill(out_->others[out_->other_count], read, rest);
    ++out_->other_count;
    return false;
  }

  void passed_over(const NLSParseFields& fields) {
    VXExplainRefusal& refusal = begin_refusal(VX_REASON_RANGE, text_.left);
    refusal.is_directive = 1;
    refusal.letter = 'o';
    set_span(refusal, spans_.month);
    set_limits(refusal, fields.month, 1, 4);
    refusal.width = 2;
  }

  void refused(VXReason reason, const NLSParseFields& fields) {
    if (settled_) return;
    VXExplainRefusal& refusal = begin_refusal(reason, text_.left);
    settled_ = true;
    Span span{start_, text_.left - start_};
    if (reason == VX_REASON_MARKER) {
      if (spans_.hour.length > 0) span = spans_.hour;
      set_limits(refusal, fields.hour, fields.marker == 2 ? 1 : 0, 12);
    } else if (reason == VX_REASON_NO_SUCH_DAY) {
      refusal.candidate = out_->match.candidate;
      span = {out_->match.start, out_->match.end - out_->match.start};
      if (matched_spans_.day.length > 0) span = matched_spans_.day;
      set_limits(refusal, fields.day, 1, fields.month != 0 ? days_in_month(year_of(fields), fields.month) : 31);
    }
    set_span(refusal, span);
  }

 private:
  static bool is_time_source(uint32_t source) {
    return source == VX_SOURCE_TIME || source == VX_SOURCE_TIME_1 || source == VX_SOURCE_COMMON_TIME ||
           source == VX_SOURCE_SHORT_TIME || source == VX_SOURCE_SHORT_TIME_1;
  }

  const DirectiveSet& directives() const { return lenient_ ? lenient_directives : strict_directives; }
  int64_t position(const Bytes& in) const { return in.at - text_.at; }
  Bytes from(int64_t place) const { return {text_.at + place, text_.left - place}; }
  bool digit_at(int64_t place) const { return stands_at_digit(from(place)); }
  bool broken_at(int64_t place) const { return character_at(from(place)).units == 0; }

  /// The digits that end where `after` stands; at most `most` of them, none before `from`.
  Span digits_before(const Bytes& after, int64_t from, int32_t most) const {
    Span span{position(after), 0};
    while (span.length < most && span.position > from && digit_at(span.position - 1)) {
      --span.position;
      ++span.length;
    }
    return span;
  }

  static int64_t character_length(const Bytes& in) {
    if (in.empty()) return 0;
    const int64_t units = character_at(in).units;
    return units > 0 ? units : 1;
  }

  /// One character at least, and those after it up to a blank, a punctuation mark or broken text.
  static int64_t word_length(Bytes in) {
    const int64_t whole = in.left;
    in.skip(character_length(in));
    while (!in.empty()) {
      const Character here = character_at(in);
      if (here.units == 0 || vxnlsisspace(here.code_point) != 0 || vxnlsispunct(here.code_point) != 0) break;
      in.skip(here.units);
    }
    return whole - in.left;
  }

  /// Whether an attempt that ended at `place` is the one to tell of. Where a letter stands, the lack of a name says
  /// more than the lack of a digit.
  bool counts(int64_t place, VXReason reason, const Bytes& after) const {
    if (settled_ || (date_known_ && !is_time_source(candidate_.source))) return false;
    const VXExplainRefusal& best = out_->refusal;
    if (best.reason == VX_REASON_NONE || place > best.furthest) return true;
    if (place < best.furthest || reason != VX_REASON_NO_NAME || best.reason != VX_REASON_NO_DIGIT) return false;
    // A character that is no digit stands there: the end and broken text have reasons of their own.
    return vxnlsisalpha(character_at(after).code_point) != 0;
  }

  VXExplainRefusal& begin_refusal(VXReason reason, int64_t furthest) {
    VXExplainRefusal& refusal = out_->refusal;
    const int64_t attempts = refusal.attempts;
    refusal = {};
    refusal.attempts = attempts;
    refusal.reason = reason;
    refusal.furthest = furthest;
    set_candidate(refusal.candidate, candidate_, pattern_, lenient_);
    return refusal;
  }

  static void set_span(VXExplainRefusal& refusal, Span span) {
    refusal.position = span.position;
    refusal.length = span.length;
  }

  static void set_limits(VXExplainRefusal& refusal, int32_t value, int32_t minimum, int32_t maximum) {
    refusal.value = value;
    refusal.minimum = minimum;
    refusal.maximum = maximum;
  }

  void set_number(VXExplainRefusal& refusal, Step step, int64_t from, Span span) const {
    const Directive* const directive = step.is_directive ? directives().find(step.letter) : nullptr;
    if (directive == nullptr) return;
    int32_t value = 0;
    for (int64_t i = 0; refusal.reason == VX_REASON_RANGE && i < span.length; ++i) {
      value = value * 10 + (text_.at[span.position + i] - '0');
    }
    if (directive->rule == Rule::offset) {
      bool hours = true;
      for (int64_t i = from; i < span.position; ++i) hours = hours && !digit_at(i);
      set_limits(refusal, value, 0, hours ? greatest_offset_hours : greatest_offset_minutes);
      refusal.width = 2;
    } else if (directive->number.width > 0) {
      const bool hash = step.modifier == '#' && directive->maximum_under_hash != 0;
      set_limits(refusal, value, directive->number.minimum,
                 hash ? directive->maximum_under_hash : directive->number.maximum);
      refusal.width = directive->number.width;
    }
  }

  void fill(VXExplainMatch& match, const VXExplainFields& read, const Bytes& rest) const {
    set_candidate(match.candidate, candidate_, pattern_, lenient_);
    match.fields = read;
    match.start = start_;
    match.end = position(rest);
  }

  Bytes text_;
  uint32_t what_;
  VXExplanation* out_;
  Candidate candidate_{};
  TextView pattern_{};
  bool lenient_ = false;
  int64_t start_ = 0;
  NumberSpans spans_, matched_spans_;
  bool date_known_ = false, time_known_ = false, whole_known_ = false;
  bool settled_ = false;  // a match was refused: nothing else is told
};

void explain_date(VXLocale* locale, Bytes text, uint32_t kind, ExplainTrace& trace, VXExplanation& out) {
  const Finding finding = read_date(locale, text, kind, trace);
  out.status = finding.status;
  if (finding.status != 0) return;
  out.consumed = finding.consumed;
  int32_t day = 0;
  out.complete = is_full_date(finding.fields);
  out.day_exists = out.complete != 0 && day_of(finding.fields, &day);
  if (out.day_exists != 0) out.value = day;
}

void explain_time(VXLocale* locale, Bytes text, uint32_t kind, ExplainTrace& trace, VXExplanation& out) {
  const Finding finding = read_time(locale, text, kind, trace);
  out.status = finding.status;
  if (finding.status != 0) return;
  out.consumed = finding.consumed;
  out.value = seconds_of(finding.fields);
}

void explain_datetime(VXLocale* locale, Bytes text, uint32_t kind, ExplainTrace& trace, VXExplanation& out) {
  const DatetimeFinding finding = read_datetime(locale, text, kind, trace);
  out.status = finding.status;
  out.day_exists = out.refusal.reason != VX_REASON_NO_SUCH_DAY;
  if (finding.status != 0) return;
  out.consumed = finding.consumed;
  out.value = finding.value;
}

}  // namespace

}  // namespace vxnls

VXStatus vxnlsExplain(VXLocale* locale, uint32_t what, uint32_t kind, const uint8_t* text, int64_t length,
                      VXExplanation* explanation) {
  if (locale == nullptr || locale->localeData == nullptr || explanation == nullptr || (text == nullptr && length > 0)) {
    return VX_E_NULL;
  }
  if (explanation->size < static_cast<int64_t>(sizeof(VXExplanation))) return VX_E_LENGTH;
  if (what < VX_EXPLAIN_DATE || what > VX_EXPLAIN_DATETIME) return VX_E_KIND;
  VXExplanation& out = *explanation;
  memset(&out, 0, sizeof out);  // cppcheck-suppress memsetClassFloat ; 0.0 is all zeros, and nothing is left between
  out.size = static_cast<int64_t>(sizeof out);
  out.complete = out.day_exists = 1;
  out.value = vxnls::ordinary_missing;
  const vxnls::Bytes input = vxnls::input_of<vxnls::Utf8Text>(text, length);
  vxnls::ExplainTrace trace(input, what, &out);
  switch (what) {
    case VX_EXPLAIN_DATE: vxnls::explain_date(locale, input, kind, trace, out); break;
    case VX_EXPLAIN_TIME: vxnls::explain_time(locale, input, kind, trace, out); break;
    default: vxnls::explain_datetime(locale, input, kind, trace, out); break;
  }
  if (out.status == 0) {
    const int64_t attempts = out.refusal.attempts;
    out.refusal = {};
    out.refusal.attempts = attempts;
  }
  return 0;
}
