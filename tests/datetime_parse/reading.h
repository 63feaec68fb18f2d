// Every text is read as VXChars and as UTF-8, each up against an untouchable page, the quick way and as the explanation
// reads it, step by step. All must agree.
#ifndef VXNLS_TESTS_DATETIME_PARSE_READING_H
#define VXNLS_TESTS_DATETIME_PARSE_READING_H

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "datetime_parse/walk.h"
#include "tests/support/guard_page.h"
#include "tests/support/zoned_locale.h"

namespace vxtest {

/// What a text gave; -1 where it is refused. A date is 20210304 for 4 March 2021, and 0 unless all of it was read.
struct Read {
  double value = -1;
  int64_t consumed = -1;
  bool operator==(const Read&) const = default;
};

inline void PrintTo(const Read& r, std::ostream* out) { *out << std::fixed << r.value << " consumed " << r.consumed; }

constexpr double date_value(auto year, auto month, auto day) { return year * 10000. + month * 100. + day; }

/// Reads a text as what the explanation calls `what`.
inline Read read(uint32_t what, VXLocale* locale, std::u32string_view text, uint32_t kind,
                 VXExplanation* explanation = nullptr) {
  static GuardedBuffer<VXChar> units(4096);
  static GuardedBuffer<uint8_t> octets(16384);
  static unsigned turn = 0;
  const Guard guard = ++turn % 4 == 0 ? Guard::before : Guard::behind;
  const std::string bytes = utf8(text);
  const auto length = static_cast<int64_t>(bytes.size());
  const auto* const narrow = octets.copy(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), guard);
  const auto* const wide = units.copy(reinterpret_cast<const VXChar*>(text.data()), text.size(), guard);
  const auto by = [&](const auto* at, size_t left, auto date, auto time, auto datetime) {
    Read read;
    VXStatus status = 0;
    if (what == VX_EXPLAIN_DATE) {
      uint32_t month = 99, day = 99, year = 99;
      status = date(locale, at, static_cast<int64_t>(left), kind, &month, &day, &year, &read.consumed);
      EXPECT_TRUE(status == 0 || (month == 0 && day == 0 && year == 0)) << bytes;
      if (status == 0) read.value = date_value(year, month, day);
    } else {
      const auto call = what == VX_EXPLAIN_TIME ? time : datetime;
      status = call(locale, at, static_cast<int64_t>(left), kind, &read.value, &read.consumed);
    }
    EXPECT_EQ(status, read.consumed < 0 ? VX_E_NOMATCH : 0) << bytes;
    return read;
  };
  const Read of_units = by(wide, text.size(), NLSBufToDate, NLSBufToTime, NLSBufToDatetime);
  const Read of_bytes = by(narrow, bytes.size(), NLSBufToDateU, NLSBufToTimeU, NLSBufToDatetimeU);
  Read same = of_units;
  if (same.consumed > 0) same.consumed = std::ssize(utf8(text.substr(0, static_cast<size_t>(same.consumed))));
  EXPECT_EQ(same, of_bytes) << bytes << " kind " << kind;

  VXExplanation own, &out = explanation != nullptr ? *explanation : own;
  std::memset(&out, 0xAA, sizeof out);  // cppcheck-suppress memsetClassFloat ; whatever that is as a double
  out.size = sizeof out;
  EXPECT_EQ(vxnlsExplain(locale, what, kind, narrow, length, &out), 0u);
  const VXExplainRefusal& r = out.refusal;
  EXPECT_EQ(r.reason == VX_REASON_NONE, out.status == 0) << bytes;
  EXPECT_TRUE(r.position >= 0 && r.length >= 0 && r.position + r.length <= length && r.furthest <= length) << bytes;
  const VXExplainFields& f = out.match.fields;
  const double date = out.complete != 0 ? date_value(f.year, f.month, f.day) : 0;
  const Read told{what == VX_EXPLAIN_DATE ? date : out.value, out.consumed};
  EXPECT_EQ(out.status == 0 ? told : Read(), of_bytes) << bytes << " kind " << kind;
  return of_units;
}

/// What one pattern reads of a text, be it that of dates or that of times; consumed is 0 unless the status is.
inline VXExplanation read_by(PlainLocale& locale, std::u32string_view pattern, std::u32string_view text, bool lenient) {
  for (NLSName* const entry : {&locale.data.datePattern, &locale.data.timePattern}) set_name(*entry, pattern);
  const uint32_t kind = lenient ? 5 : 0;
  read(VX_EXPLAIN_DATE, locale.get(), text, kind);
  VXExplanation out;
  read(VX_EXPLAIN_TIME, locale.get(), text, kind, &out);
  return out;
}

}  // namespace vxtest

#endif
