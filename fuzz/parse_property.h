// What the targets that read dates and times share: texts in both flavours, and the way back through the formatter.
#ifndef VXNLS_FUZZ_PARSE_PROPERTY_H
#define VXNLS_FUZZ_PARSE_PROPERTY_H

#include "calendar/civil.h"
#include "datetime_parse/recognise_time.h"
#include "fuzz/input.h"
#include "tests/support/zoned_locale.h"

namespace vxfuzz {

/// What stands for a broken byte in the text of VXChars: no pattern here has it, so that it refuses there as well.
inline constexpr VXChar broken = 0x10FFFE;

/// A text of bytes as VXChars, and the byte at which each of them begins.
struct Texts {
  explicit Texts(Input from) : bytes(from.data, from.data + from.left) {
    for (size_t at = 0; at < bytes.size();) {
      starts.push_back(static_cast<int64_t>(at));
      const vxnls::Input<vxnls::Utf8Text> in{bytes.data() + at, static_cast<int64_t>(bytes.size() - at)};
      const vxnls::Character here = vxnls::character_at(in);
      units.push_back(here.units == 0 ? broken : here.code_point);
      at += static_cast<size_t>(here.units == 0 ? 1 : here.units);
    }
    starts.push_back(static_cast<int64_t>(bytes.size()));
  }
  int64_t length() const { return static_cast<int64_t>(units.size()); }
  int64_t byte_length() const { return static_cast<int64_t>(bytes.size()); }
  /// The same place in both.
  void require_same(int64_t unit, int64_t byte) const {
    require(unit >= 0 && unit <= length() && starts[static_cast<size_t>(unit)] == byte);
  }

  std::vector<uint8_t> bytes;
  std::vector<VXChar> units;
  std::vector<int64_t> starts;
};

inline bool has(const char* letters, VXChar c) {
  return c != 0 && c < 128 && std::strchr(letters, static_cast<int>(c)) != nullptr;
}

/// Which parts of a date and time a pattern holds, and whether it means the same to the formatter and to a reader, with
/// English names: what it writes reads back.
struct TwoWay {
  bool holds = true;
  bool year = false, month = false, day = false, hour = false, minute = false, second = false, marker = false;
  bool bare_year_only = true;  // no "%#Y", which writes 2005 as 205

  TwoWay(vxnls::TextView pattern, bool lenient) {
    bool dial = false, after_number = false, after_loose_number = false;
    for (int64_t at = 0; at < pattern.length;) {
      const int64_t start = at;
      const vxnls::Step step = vxnls::next_step(pattern, at);
      const VXChar c = step.letter;
      if (!step.is_directive) {
        holds = holds && !has("0123456789", c) && !(c < 128 && vxnlsisalpha(c)) && c != broken;
        holds = holds && !(c == ' ' && (start == 0 || at == pattern.length));
        after_number = after_loose_number = false;
        continue;
      }
      const bool hash = step.modifier == '#';
      const bool number = has(lenient ? "dHMSmYyIeo" : "dHMSmYyI", c);
      const bool name = has(lenient ? "AFBCbaf" : "AFBCb", c);
      holds = holds && (number || name || c == 'p' || c == '%');
      holds = holds && at - start == (step.modifier == 0 ? 2 : 3);  // the formatter takes one modifier
      holds = holds && (step.modifier == 0 || (hash && has("dHIMSYy", c)));
      holds = holds && !(number && (after_loose_number || (after_number && (lenient || hash))));
      after_number = number;
      after_loose_number = number && (lenient || hash);
      if (c == 'p') {
        holds = holds && dial && !marker;
        marker = true;
      }
      if (has("HI", c)) {
        holds = holds && !hour;
        hour = true;
        dial = c == 'I';
      }
      year |= has("Yy", c);
      bare_year_only &= !(has("Yy", c) && hash);
      month |= has("moBCb", c);
      day |= has("de", c);
      minute |= c == 'M';
      second |= c == 'S';
    }
    holds = holds && dial == marker;
  }
};

/// Writes what a pattern read by that pattern, and reads it again the same way. `fields` have the marker applied.
inline void require_read_back(vxtest::PlainLocale& locale, const NLSName& name, bool lenient, VXExplainFields fields) {
  const vxnls::TextView pattern = vxnls::view(name);
  const TwoWay two_way(pattern, lenient);
  if (!two_way.holds || fields.milliseconds != 0 || fields.hour > 23) return;
  if (fields.year == 0) fields.year = 2000;
  if (fields.month == 0) fields.month = 1;
  if (fields.day == 0) fields.day = 1;
  const vxnls::CivilDate date{fields.year, fields.month, fields.day};
  if (!vxnls::is_valid(date) || (!two_way.bare_year_only && fields.year % 100 < 10)) return;
  const int64_t seconds =
      ((int64_t{vxnls::day_number(date)} * 24 + fields.hour) * 60 + fields.minute) * 60 + fields.second;

  const NLSName kept = locale.data.datetimePattern;
  locale.data.datetimePattern = name;
  VXChar text[512];
  int64_t length = 0;
  require(NLSDatetimeFormat(locale.get(), 0, text, 512, &length, static_cast<double>(seconds)) == 0);
  locale.data.datetimePattern = kept;

  vxnls::NoTrace trace;
  vxnls::NLSParseFields again;
  auto in = vxnls::input_of<vxnls::Utf32Text>(text, length);
  require(vxnls::matches_whole(locale.get(), in, pattern, lenient, {0, 0}, again, trace));
  if (lenient && two_way.marker) require(vxnls::apply_marker(locale.data, pattern, again) == VX_REASON_NONE);
  require(!two_way.year || again.year == fields.year);
  require(!two_way.month || again.month == fields.month);
  require(!two_way.day || again.day == fields.day);
  require(!two_way.hour || again.hour == fields.hour);
  require(!two_way.minute || again.minute == fields.minute);
  require(!two_way.second || again.second == fields.second);
}

/// A match that the explanation tells of.
inline void require_read_back(vxtest::PlainLocale& locale, const VXExplainMatch& match) {
  require_read_back(locale, match.candidate.pattern, match.candidate.lenient != 0, match.fields);
}

/// What is told of a text agrees with what its entry point gave.
inline VXExplanation require_explained(VXLocale* locale, uint32_t what, uint32_t kind, const Texts& text,
                                       VXStatus status, int64_t consumed) {
  VXExplanation out;
  out.size = sizeof out;
  require(vxnlsExplain(locale, what, kind, text.bytes.data(), text.byte_length(), &out) == 0);
  require(out.status == status && (status != 0 || out.consumed == consumed));
  require((out.refusal.reason == VX_REASON_NONE) == (status == 0));
  require(out.refusal.position >= 0 && out.refusal.length >= 0);
  require(out.refusal.position + out.refusal.length <= text.byte_length());
  return out;
}

/// The locale of these targets: up to three lines of the input replace its patterns; a bit chooses names beyond ASCII.
struct Locale : vxtest::ZonedLocale {
  Locale(Input& in, uint8_t options, std::initializer_list<NLSName*> patterns) {
    if ((options & 1) != 0) use(U"Zone/West");
    if ((options & 2) != 0) {
      vxtest::set_name(data.monthNames[2], U"März");
      vxtest::set_name(data.altMonthNames[2], U"Mär.");
      vxtest::set_name(data.dayNames[0], U"Κυριακή");
    }
    for (NLSName* const pattern : patterns) {
      const std::u32string text = vxtest::utf32(in.line()).substr(0, 60);
      if (!text.empty()) vxtest::set_name(*pattern, text);
    }
  }
};

}  // namespace vxfuzz

#endif
