// One walk over a pattern. The strict and the lenient reader are its two receivers; a trace may watch it.
#ifndef VXNLS_DATETIME_PARSE_WALK_H
#define VXNLS_DATETIME_PARSE_WALK_H

#include "datetime_parse/readers.h"
#include "datetime_parse/triples.h"

namespace vxnls {

/// Bits of a kind that ask for the lenient reader.
inline constexpr uint32_t lenient_kinds = 0x1fc;
constexpr bool is_lenient(uint32_t kind) { return (kind & lenient_kinds) != 0; }

/// A place in a pattern: a literal character, or a directive with its modifier. A pattern that breaks off has letter 0.
struct Step {
  VXChar letter, modifier;
  bool is_directive;
};

constexpr bool is_modifier(VXChar c) { return c == '#' || c == '0' || c == '?'; }

/// The step at `at`, which moves past it. Of several modifiers the last one counts.
constexpr Step next_step(TextView pattern, int64_t& at) {
  const VXChar c = pattern.text[at++];
  if (c != '%') return {c, 0, false};
  Step step{0, 0, true};
  while (at < pattern.length && is_modifier(pattern.text[at])) step.modifier = pattern.text[at++];
  if (at < pattern.length) step.letter = pattern.text[at++];
  return step;
}

/// Where a candidate came from, for whoever watches.
struct Candidate {
  uint32_t source, row;  // VX_SOURCE_..., and the row of a table
};

/// What a candidate is for.
enum class Part : uint32_t { date, time, datetime };

/// Watches nothing. The recognisers are templates over what watches them: this costs them nothing, and a trace that
/// does watch sees the very same attempts.
struct NoTrace {
  /// Whether attempts may be left out that cannot succeed.
  static constexpr bool watches = false;
  /// A candidate is about to be held against the text at `in`.
  void begin(Candidate, TextView, bool /*lenient*/, const void* /*at*/) {}
  /// One step of the pattern read the text from `before` to `after`, or refused it there.
  template <class Text>
  void read(Step, const Input<Text>& /*before*/, const Input<Text>& /*after*/) {}
  template <class Text>
  void failed(Step, VXReason, const Input<Text>& /*before*/, const Input<Text>& /*after*/) {}
  /// A candidate matched up to `rest`. Answers whether the search ends here.
  template <class Text>
  bool matched(Part, const NLSParseFields&, const Input<Text>& /*rest*/) {
    return true;
  }
  /// The candidate used the whole text, but what it read is out of range, and the search goes on.
  void passed_over(const NLSParseFields&) {}
  /// The first match is refused all the same, and no further candidate is asked.
  void refused(VXReason, const NLSParseFields&) {}
};

/// How a walk ended: the units that it left, and why it went no further; where nobody watches, some reason.
struct Walked {
  int64_t left;
  VXReason reason;
};

/// Holds the whole pattern against the text, from its first character that is not a blank on. On success text may be
/// left. The text is given and the end told by value, in registers: a place that was stored in pieces just before is
/// waited for.
template <class Reader, class Text, class Trace>
[[gnu::noinline]] Walked walk(VXLocale* locale, Input<Text> in, TextView pattern, NLSParseFields& fields,
                              Trace& trace) {
  fields = cleared_fields;
  skip_blanks(in);
  for (int64_t at = 0; at < pattern.length;) {
    if constexpr (!Trace::watches) {
      at = take_plain_steps<Reader>(locale, in, pattern, at, fields);
      if (at == refused) return {in.left, VX_REASON_LITERAL};
      if (at == pattern.length) break;
    }
    const Step step = next_step(pattern, at);
    const Input<Text> before = in;
    VXReason reason = VX_REASON_NONE;
    if (in.empty()) {
      reason = VX_REASON_TEXT_ENDED;
    } else if (!step.is_directive) {
      reason = Reader::literal(in, step.letter);
    } else if (step.letter == 0) {
      reason = VX_REASON_PATTERN_ENDED;
    } else {
      fields.modifier = static_cast<int32_t>(step.modifier);
      reason = extractformat<Reader>(locale, in, step.letter, fields);
    }
    if (reason != VX_REASON_NONE) {
      trace.failed(step, reason, before, in);
      return {in.left, reason};
    }
    trace.read(step, before, in);
  }
  return {in.left, VX_REASON_NONE};
}

template <class Text, class Trace>
bool matches(VXLocale* locale, Input<Text>& in, TextView pattern, bool lenient, Candidate candidate,
             NLSParseFields& fields, Trace& trace) {
  if constexpr (!Trace::watches) {
    if (reads_quickly(pattern, in, lenient, fields)) return true;
  }
  trace.begin(candidate, pattern, lenient, in.at);
  const Walked walked = lenient ? walk<LenientReader>(locale, in, pattern, fields, trace)
                                : walk<StrictReader>(locale, in, pattern, fields, trace);
  in.skip(in.left - walked.left);
  return walked.reason == VX_REASON_NONE;
}

/// A match that leaves nothing of the text.
template <class Text, class Trace>
bool matches_whole(VXLocale* locale, Input<Text>& in, TextView pattern, bool lenient, Candidate candidate,
                   NLSParseFields& fields, Trace& trace) {
  if (!matches(locale, in, pattern, lenient, candidate, fields, trace)) return false;
  if (in.empty()) return true;
  trace.failed(Step{0, 0, false}, VX_REASON_TRAILING_TEXT, in, in);
  return false;
}

}  // namespace vxnls

#endif
