// What vxnlsExplain tells, and that it agrees with the entry points.
#include <cmath>
#include <random>

#include "tests/datetime_parse/both_flavours.h"
#include "tests/support/null_arguments.h"

namespace vxtest {

namespace {

VXExplanation explain(VXLocale* locale, uint32_t what, uint32_t kind, std::string_view text) {
  static GuardedBuffer<uint8_t> buffer(4096);
  const auto* const at = buffer.copy(reinterpret_cast<const uint8_t*>(text.data()), text.size());
  VXExplanation out;
  std::memset(&out, 0xAA, sizeof out);  // cppcheck-suppress memsetClassFloat ; whatever that is as a double
  out.size = sizeof out;
  EXPECT_EQ(vxnlsExplain(locale, what, kind, at, static_cast<int64_t>(text.size()), &out), 0u);
  return out;
}

std::string pattern_of(const VXExplainCandidate& candidate) {
  std::u32string text(candidate.pattern.text, candidate.pattern.text + candidate.pattern.length);
  return utf8(text);
}

struct RefusalCase {
  const char32_t* main;
  uint32_t what, kind;
  const char* text;
  VXReason reason;
  VXChar letter, modifier;
  int64_t position, length;
  int32_t value, minimum, maximum, width;
  const char* pattern;
};

constexpr uint32_t date = VX_EXPLAIN_DATE, time_of_day = VX_EXPLAIN_TIME, datetime = VX_EXPLAIN_DATETIME;

TEST(Explain, Refusals) {
  static constexpr RefusalCase cases[] = {
      {U"%m/%d/%Y", date, 4, "2021-13-05", VX_REASON_RANGE, 'm', 0, 5, 2, 13, 1, 12, 2, "%Y-%m-%d"},
      {U"%m/%d/%Y", date, 4, "13/32/2020", VX_REASON_RANGE, 'm', 0, 3, 2, 32, 1, 12, 2, "%Y/%m/%d"},
      {U"%d/%m", date, 0, "5/6", VX_REASON_WIDTH, 'd', 0, 0, 1, 0, 1, 31, 2, "%d/%m"},
      {U"%d/%m", date, 0, "x", VX_REASON_NO_DIGIT, 'd', 0, 0, 1, 0, 1, 31, 2, "%d/%m"},
      {U"%d/%m", date, 0, " 05-6", VX_REASON_LITERAL, '/', 0, 3, 1, 0, 0, 0, 0, "%d/%m"},
      {U"%d/%#m", date, 0, "05/123,", VX_REASON_TOO_MANY_DIGITS, 'm', '#', 3, 3, 0, 1, 12, 2, "%d/%#m"},
      {U"%d/%m", date, 0, "05/", VX_REASON_TEXT_ENDED, 'm', 0, 3, 0, 0, 1, 12, 2, "%d/%m"},
      {U"%d%m", date, 0, "05  7", VX_REASON_BLANK_FIELD, 'm', 0, 2, 2, 0, 1, 12, 2, "%d%m"},
      {U"%#k", date, 0, "25", VX_REASON_RANGE, 'k', '#', 0, 2, 25, 0, 24, 2, "%#k"},
      {U"%Y", date, 5, "1581x", VX_REASON_NONE, 0, 0, 0, 0, 0, 0, 0, 0, ""},
      {U"%#Y", date, 5, "1581x", VX_REASON_RANGE, 'Y', '#', 0, 4, 1581, 1582, 20000, 4, "%#Y"},
      {U"%e %B %Y", date, 0, "03 M\xC3\xA4rz 2021", VX_REASON_NO_NAME, 'B', 0, 3, 5, 0, 0, 0, 0, "%e %B %Y"},
      {U"%e %B %Y", date, 0, "03  ", VX_REASON_NO_NAME, 'B', 0, 4, 0, 0, 0, 0, 0, "%e %B %Y"},
      {U"%d.%m", date, 4, "3.Foo-2021", VX_REASON_NO_DIGIT, 'm', 0, 2, 3, 0, 1, 12, 2, "%d.%m"},
      {U"%d.%m", date, 4, "2021-Foo-3", VX_REASON_NO_NAME, 'b', 0, 5, 3, 0, 0, 0, 0, "%Y-%b-%d"},
      {U"%d.%m", date, 4, "2021-02-\xC3", VX_REASON_BROKEN_TEXT, 'd', 0, 8, 1, 0, 1, 31, 2, "%Y-%m-%d"},
      {U"%d.%m", date, 4, "2021-\xFF-3", VX_REASON_BROKEN_TEXT, 'm', 0, 5, 1, 0, 1, 12, 2, "%Y-%m-%d"},
      {U"%D", date, 0, "05", VX_REASON_DIRECTIVE, 'D', 0, 0, 0, 0, 0, 0, 0, "%D"},
      {U"%#", date, 0, "05", VX_REASON_PATTERN_ENDED, 0, '#', 0, 0, 0, 0, 0, 0, "%#"},
      {U"%", date, 0, "05", VX_REASON_PATTERN_ENDED, 0, 0, 0, 0, 0, 0, 0, 0, "%"},
      {U"%z", date, 0, "+13", VX_REASON_RANGE, 'z', 0, 1, 2, 13, 0, 12, 2, "%z"},
      {U"%z", date, 0, "+0560", VX_REASON_RANGE, 'z', 0, 3, 2, 60, 0, 59, 2, "%z"},
      {U"%Z", date, 0, " Nowhere 5", VX_REASON_ZONE_UNKNOWN, 'Z', 0, 1, 7, 0, 0, 0, 0, "%Z"},
      {U"%Z", date, 0, "Nowhere", VX_REASON_ZONE_UNKNOWN, 'Z', 0, 0, 7, 0, 0, 0, 0, "%Z"},
      {U"%d", date, 16, "7/2021 x", VX_REASON_TRAILING_TEXT, 0, 0, 6, 2, 0, 0, 0, 0, "%m/%Y"},
      {U"%d", date, 8, "Q5 2021", VX_REASON_RANGE, 'o', 0, 1, 1, 5, 1, 4, 2, "Q%o %Y"},
      {U"%d", date, 256, "W0 1582", VX_REASON_BEFORE_CALENDAR, 0, 0, 0, 7, 0, 0, 0, 0, "W%W %Y"},
      {U"%I:%M:%S %p", time_of_day, 4, "10:30:15 trailing", VX_REASON_NO_NAME, 'p', 0, 9, 8, 0, 0, 0, 0, "%I:%M:%S %p"},
      {U"%d", time_of_day, 4, "13:00 pm", VX_REASON_MARKER, 0, 0, 0, 2, 13, 1, 12, 0, "%#I:%M %p"},
      {U"%d", time_of_day, 4, "00:00 pm", VX_REASON_MARKER, 0, 0, 0, 2, 0, 1, 12, 0, "%#I:%M %p"},
      {U"%M:%S %p", time_of_day, 4, "05:03 pm", VX_REASON_MARKER, 0, 0, 0, 8, 0, 1, 12, 0, "%M:%S %p"},
      {U"%d", datetime, 4, "2021-02-31 10:30", VX_REASON_NO_SUCH_DAY, 0, 0, 8, 2, 31, 1, 28, 0, "%Y-%m-%d"},
      // What is tried after the day was refused is not told, be it another refusal or an attempt that came further.
      {U"%d/%m/%Y", datetime, 8, "31/02/2021 13:00 pm", VX_REASON_NO_SUCH_DAY, 0, 0, 0, 2, 31, 1, 28, 0, "%d/%m/%Y"},
      {U"%m/%Y", datetime, 0, "02/2021", VX_REASON_NO_SUCH_DAY, 0, 0, 0, 7, 0, 1, 28, 0, "%m/%Y"},
      {U"%d/%m", datetime, 0, "30/02", VX_REASON_NO_SUCH_DAY, 0, 0, 0, 2, 30, 1, 29, 0, "%d/%m"},  // of the year 2000
      {U"%d %Y", datetime, 0, "05 2021", VX_REASON_NO_SUCH_DAY, 0, 0, 0, 2, 5, 1, 31, 0, "%d %Y"},
      {U"%m/%d/%Y", datetime, 4, "2021-03-04", VX_REASON_TEXT_ENDED, 'I', 0, 10, 0, 0, 0, 23, 2, "%I:%M:%S %p"},
      {U"%m/%d/%Y", datetime, 4, "2021-03-04 10:61", VX_REASON_RANGE, 'M', 0, 14, 2, 61, 0, 59, 2, "%I:%M:%S %p"},
  };
  for (const RefusalCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.text << " by " << utf8(c.main));
    ZonedLocale locale;
    set_name(c.what == time_of_day ? locale.data.timePattern : locale.data.datePattern, c.main);
    set_name(locale.data.datetimePattern, c.main);
    const VXExplanation out = explain(locale.get(), c.what, c.kind, c.text);
    const VXExplainRefusal& r = out.refusal;
    EXPECT_EQ(out.status, c.reason == VX_REASON_NONE ? 0 : VX_E_NOMATCH);
    EXPECT_EQ(r.reason, static_cast<uint32_t>(c.reason));
    EXPECT_EQ(r.letter, c.letter);
    EXPECT_EQ(r.modifier, c.modifier);
    EXPECT_EQ(r.position, c.position);
    EXPECT_EQ(r.length, c.length);
    EXPECT_EQ(r.value, c.value);
    EXPECT_EQ(r.minimum, c.minimum);
    EXPECT_EQ(r.maximum, c.maximum);
    EXPECT_EQ(r.width, c.width);
    EXPECT_EQ(pattern_of(r.candidate), c.pattern);
    if (c.what == datetime) {
      EXPECT_EQ(out.day_exists, c.reason == VX_REASON_NO_SUCH_DAY ? 0u : 1u);
    }
    EXPECT_EQ(r.is_directive, (c.letter != 0 && c.reason != VX_REASON_LITERAL) ? 1u : 0u);
  }
}

TEST(Explain, MatchesAndOthers) {
  PlainLocale locale;
  set_name(locale.data.datePattern, U"%d/%m/%Y");
  VXExplanation out = explain(locale.get(), date, 4, " 03/04/2021 x");
  EXPECT_EQ(out.status, 0u);
  EXPECT_EQ(out.consumed, 11);
  EXPECT_EQ(out.match.candidate.source, static_cast<uint32_t>(VX_SOURCE_DATE));
  EXPECT_EQ(out.match.end, 11);
  EXPECT_EQ(out.match.fields.month, 4);
  EXPECT_EQ(out.value, 22373);    // 3 April 2021
  ASSERT_EQ(out.other_count, 1);  // the row that equals the locale's pattern gives the same date and does not count
  EXPECT_EQ(out.others[0].candidate.row, 14u);
  EXPECT_EQ(pattern_of(out.others[0].candidate), "%m/%d/%Y");
  EXPECT_EQ(out.others[0].fields.month, 3);
  EXPECT_EQ(out.refusal.reason, static_cast<uint32_t>(VX_REASON_NONE));
  EXPECT_EQ(out.refusal.attempts, 20);

  EXPECT_EQ(explain(locale.get(), date, 4, "13/04/2021").other_count, 0);
  out = explain(locale.get(), date, 4, "31/02/2021");
  EXPECT_EQ(out.day_exists, 0u);
  EXPECT_TRUE(std::isnan(out.value));
  set_name(locale.data.datePattern1, U"%d");
  out = explain(locale.get(), date, 1, "31");
  EXPECT_EQ(out.status, 0u);
  EXPECT_EQ(out.complete, 0u);

  set_name(locale.data.datetimePattern, U"%d/%m/%Y %H:%M:%S");
  out = explain(locale.get(), datetime, 0, "03/04/2021 01:05:00");
  EXPECT_EQ(out.match.candidate.source, static_cast<uint32_t>(VX_SOURCE_DATETIME));
  EXPECT_EQ(out.time.candidate.source, static_cast<uint32_t>(VX_SOURCE_NONE));
  EXPECT_EQ(out.other_count, 1);
  set_name(locale.data.timePattern1, U"%M:%H:%S");
  out = explain(locale.get(), datetime, 4, "03/04/2021 01:05:00");
  EXPECT_EQ(out.time.start, 11);
  EXPECT_EQ(out.time.end, 19);
  EXPECT_EQ(out.time.fields.minute, 1);
  ASSERT_EQ(out.other_count, 2);
  EXPECT_EQ(out.others[1].fields.hour, 1);

  // A date that was understood is told also when its time was not.
  out = explain(locale.get(), datetime, 4, "03/04/2021 x");
  EXPECT_EQ(out.status, VX_E_NOMATCH);
  EXPECT_EQ(out.match.fields.year, 2021);
  EXPECT_EQ(out.refusal.position, 11);
}

// Another result is one that differs in any part, and each counts once; the first four are told.
TEST(Explain, EachOtherResultOnce) {
  static constexpr struct {
    const char32_t *main, *other;
    const char* text;
    int64_t count;
  } times[] = {
      {U"%H.%M.%S", U"%M.%H.%S", "01.02.03", 1}, {U"%H.%M.%S", U"%H.%S.%M", "01.02.03", 1},
      {U"%H.%M.%S", U"%H.%M.%s", "01.02.03", 1}, {U"%H.%M.%s", U"%H.%M.03", "01.02.03", 1},
      {U"%H%z", U"%H+02", "01+02", 1},           {U"%H%Z", U"%HZone/East", "01Zone/East", 1},
      {U"%M:%H:%S", U"%H:%M:%S", "01:02:03", 1},  // the common row reads what the other pattern has read
      {U"%H:%M pm", U"%I:%M %p", "13:00 pm", 0},  // what would be refused is no result
  };
  for (const auto& c : times) {
    ZonedLocale locale;
    set_name(locale.data.timePattern, c.main);
    set_name(locale.data.timePattern1, c.other);
    const VXExplanation out = explain(locale.get(), time_of_day, 4, c.text);
    EXPECT_EQ(out.status, 0u) << c.text;
    EXPECT_EQ(out.other_count, c.count) << utf8(c.main) << " and " << utf8(c.other);
  }
  PlainLocale locale;
  set_name(locale.data.datePattern, U"%m-%Y-%d");
  set_name(locale.data.datePattern1, U"%d-%Y-%m");
  set_name(locale.data.datePattern2, U"%Y-%d-%m");
  EXPECT_EQ(explain(locale.get(), date, 4, "01-02-03").other_count, 5);
  set_name(locale.data.datePattern2, U"%d-%Y-%m");
  EXPECT_EQ(explain(locale.get(), date, 4, "01-02-03").other_count, 4);
  set_name(locale.data.quarterPattern2, U"Q1 2021");  // names no quarter
  EXPECT_EQ(explain(locale.get(), date, 8, "Q1 2021").match.fields.month, 1);
}

// Each derived time pattern by a text that no earlier candidate takes.
TEST(Explain, ShortTimes) {
  static constexpr struct {
    const char32_t *main, *other;
    const char* text;
    uint32_t row;
    const char* pattern;
  } cases[] = {
      {U"%I:%M:%S %p", U"x", "1:05 pm", 5, "%I:%M %p"},
      {U"%I:%M:%S %p", U"x", "1:05: pm", 6, "%I:%M: %p"},
      {U"%I:%M:%S %p", U"x", "1:05", 7, "%I:%M"},
      {U"%I:%M:%S %p", U"x", "1:05:", 8, "%I:%M:"},
      {U"x", U"%H.%#M.%S", "1.05", 9, "%H.%#M"},
      {U"x", U"%H.%M.%S", "1.05.", 10, "%H.%M."},
      {U"%p %I:%M:%S h", U"x", "am 1:05 h", 5, "%p %I:%M h"},
      {U"%p %I:%M:%S h", U"x", "am 1:05:h", 6, "%p %I:%M: h"},
      {U"%p %S-%M %H", U"x", "am -5 3", 5, "%p -%M %H"},
  };
  for (const auto& c : cases) {
    PlainLocale locale;
    set_name(locale.data.timePattern, c.main);
    set_name(locale.data.timePattern1, c.other);
    const VXExplanation out = explain(locale.get(), time_of_day, 4, c.text);
    EXPECT_EQ(out.match.candidate.row, c.row) << c.text;
    EXPECT_EQ(pattern_of(out.match.candidate), c.pattern) << c.text;
  }
}

TEST(Explain, RefusesBadArguments) {
  PlainLocale locale;
  VXExplanation out{};
  const uint8_t text[] = {'5'};
  out.size = sizeof out - 1;
  EXPECT_EQ(vxnlsExplain(locale.get(), date, 4, text, 1, &out), VX_E_LENGTH);
  out.size = sizeof out + 8;
  EXPECT_EQ(vxnlsExplain(locale.get(), 0, 4, text, 1, &out), VX_E_KIND);
  EXPECT_EQ(vxnlsExplain(locale.get(), 4, 4, text, 1, &out), VX_E_KIND);
  VX_EXPECT_NULLS_REFUSED(vxnlsExplain, locale.get(), date, 4u, text, 1, &out);
  EXPECT_EQ(vxnlsExplain(locale.get(), date, 4, nullptr, -1, &out), 0u);
  EXPECT_EQ(out.size, static_cast<int64_t>(sizeof out));
}

// Texts near to good ones: the explanation has the status and the result of the entry point, and a place for a refusal.
TEST(Explain, AgreesWithTheEntryPoints) {
  ZonedLocale locale;
  locale.use(U"Zone/East");
  std::mt19937 random(1960);
  constexpr std::string_view good[] = {"2021-03-04",  "03/04/2021 01:05:00 PM",    "Mar 4, 2021", "1:05 pm",
                                       "10:30:15Z",   "Thu, Mar 5, 2020 12:05 am", "W53 2020",    "Q3 2021",
                                       "Month7, 2022"};
  constexpr std::string_view marks = "0123456789/-.: ,TZapmQW\xC3\xA4\xFF";
  for (int i = 0; i < 40000; ++i) {
    std::string text(good[random() % 9]);
    for (auto n = random() % 3; n > 0; --n) text[random() % text.size()] = marks[random() % marks.size()];
    constexpr uint32_t kinds[] = {0, 1, 2, 4, 5, 8, 16, 32, 128};
    const uint32_t kind = kinds[random() % 9], what = 1 + static_cast<uint32_t>(random() % 3);
    const VXExplanation out = explain(locale.get(), what, kind, text);
    const auto* const at = reinterpret_cast<const uint8_t*>(text.data());
    const auto length = static_cast<int64_t>(text.size());
    int64_t consumed = 0;
    double value = 0;
    VXStatus status = 0;
    if (what == date) {
      uint32_t m = 0, d = 0, y = 0;
      status = NLSBufToDateU(locale.get(), at, length, kind, &m, &d, &y, &consumed);
      if (status == 0 && out.complete != 0) {
        const VXExplainFields& f = out.match.fields;
        EXPECT_EQ(std::tie(f.year, f.month, f.day),
                  std::tuple(static_cast<int32_t>(y), static_cast<int32_t>(m), static_cast<int32_t>(d)));
      }
      EXPECT_EQ(status == 0 && y == 0, status == 0 && out.complete == 0);
    } else {
      status =
          (what == datetime ? NLSBufToDatetimeU : NLSBufToTimeU)(locale.get(), at, length, kind, &value, &consumed);
      if (status == 0) {
        EXPECT_EQ(out.value, value) << text;
      }
    }
    ASSERT_EQ(out.status, status) << text << " kind " << kind << " what " << what;
    ASSERT_EQ(out.consumed, consumed) << text;
    ASSERT_EQ(out.refusal.reason != VX_REASON_NONE, status != 0) << text;
    const VXExplainRefusal& r = out.refusal;
    ASSERT_TRUE(r.position >= 0 && r.length >= 0 && r.position + r.length <= length && r.furthest <= length) << text;
  }
}

}  // namespace

}  // namespace vxtest
