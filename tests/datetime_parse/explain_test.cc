// What vxnlsExplain tells beyond what the entry points give, which every reading of these tests compares.
#include "tests/datetime_parse/reading.h"
#include "tests/support/null_arguments.h"

namespace vxtest {

namespace {

constexpr const char* reasons[] = {
    "understood", "text_ended", "no_digit",      "width",           "blank_field", "too_many_digits", "range",
    "no_name",    "literal",    "trailing_text", "zone_unknown",    "broken_text", "directive",       "pattern_ended",
    "marker",     "no_year",    "no_quarter",    "before_calendar", "no_such_day"};

std::string text_of(const VXExplainCandidate& candidate) {
  return utf8(std::u32string(candidate.pattern.text, candidate.pattern.text + candidate.pattern.length));
}

/// Of a refusal: the reason, the directive or literal, position+length, the number, its limits and width, the pattern.
/// Of a match: source, row, pattern, and how many others there are.
std::string described(const VXExplanation& out) {
  std::ostringstream text;
  const VXExplainRefusal& r = out.refusal;
  const VXExplainCandidate& by = out.match.candidate;
  if (out.status == 0) {
    text << by.source << '.' << by.row << ' ' << text_of(by) << ", " << out.other_count << " others";
    return text.str();
  }
  text << reasons[r.reason] << ' ' << (r.is_directive != 0 ? "%" : "");
  for (const VXChar c : {r.modifier, r.letter}) {
    if (c != 0) text << static_cast<char>(c);
  }
  text << ' ' << r.position << '+' << r.length << ' ' << r.value << " of " << r.minimum << '-' << r.maximum << " in "
       << r.width << " by " << text_of(r.candidate) << (out.day_exists != 0 ? "" : ", no day");
  return text.str();
}

void expect_explained(const std::string& script) {
  run(script, [](uint32_t, const Read&, const VXExplanation& out) { return described(out); });
}

TEST(Explain, Refusals) {
  expect_explained(R"(
    date 4; 2021-13-05 = range %m 5+2 13 of 1-12 in 2 by %Y-%m-%d; 13/32/2020 = range %m 3+2 32 of 1-12 in 2 by %Y/%m/%d
    date 0; datePattern %d/%m; 5/6 = width %d 0+1 0 of 1-31 in 2 by %d/%m; x = no_digit %d 0+1 0 of 1-31 in 2 by %d/%m
    _05-6 = literal / 3+1 0 of 0-0 in 0 by %d/%m; 05/ = text_ended %m 3+0 0 of 1-12 in 2 by %d/%m
    datePattern %d/%#m; 05/123, = too_many_digits %#m 3+3 0 of 1-12 in 2 by %d/%#m
    datePattern %d%m; 05  7 = blank_field %m 2+2 0 of 1-12 in 2 by %d%m
    datePattern %#k; 25 = range %#k 0+2 25 of 0-24 in 2 by %#k
    datePattern %#Y; date 5; 1581x = range %#Y 0+4 1581 of 1582-20000 in 4 by %#Y
    datePattern %e %B %Y; date 0; 03 März 2021 = no_name %B 3+5 0 of 0-0 in 0 by %e %B %Y
    03__ = no_name %B 4+0 0 of 0-0 in 0 by %e %B %Y
    datePattern %d.%m; date 4; 3.Foo-2021 = no_digit %m 2+3 0 of 1-12 in 2 by %d.%m
    2021-Foo-3 = no_name %b 5+3 0 of 0-0 in 0 by %Y-%b-%d
    datePattern %D; date 0; 05 = directive %D 0+0 0 of 0-0 in 0 by %D
    datePattern %#; 05 = pattern_ended # 0+0 0 of 0-0 in 0 by %#; datePattern %; 05 = pattern_ended  0+0 0 of 0-0 in 0 by %
    datePattern %z; +13 = range %z 1+2 13 of 0-12 in 2 by %z; +0560 = range %z 3+2 60 of 0-59 in 2 by %z
    datePattern %Z; _Nowhere 5 = zone_unknown %Z 1+7 0 of 0-0 in 0 by %Z
    Nowhere = zone_unknown %Z 0+7 0 of 0-0 in 0 by %Z
    date 16; 7/2021 x = trailing_text  6+2 0 of 0-0 in 0 by %m/%Y; date 8; Q5 2021 = range %o 1+1 5 of 1-4 in 2 by Q%o %Y
    date 256; W0 1582 = before_calendar  0+7 0 of 0-0 in 0 by W%W %Y
    time 4; 10:30:15 trailing = no_name %p 9+8 0 of 0-0 in 0 by %I:%M:%S %p
    13:00 pm = marker  0+2 13 of 1-12 in 0 by %#I:%M %p; 00:00 pm = marker  0+2 0 of 1-12 in 0 by %#I:%M %p
    timePattern %M:%S %p; 05:03 pm = marker  0+8 0 of 1-12 in 0 by %M:%S %p
    timePattern %I:%M:%S %p
    // What is tried after the day was refused is not told, be it another refusal or an attempt that came further.
    datetime 4; 2021-02-31 10:30 = no_such_day  8+2 31 of 1-28 in 0 by %Y-%m-%d, no day
    datetimePattern %d/%m/%Y; datetime 8; 31/02/2021 13:00 pm = no_such_day  0+2 31 of 1-28 in 0 by %d/%m/%Y, no day
    datetimePattern %m/%Y; datetime 0; 02/2021 = no_such_day  0+7 0 of 1-28 in 0 by %m/%Y, no day
    datetimePattern %d/%m; 30/02 = no_such_day  0+2 30 of 1-29 in 0 by %d/%m, no day
    datetimePattern %d %Y; 05 2021 = no_such_day  0+2 5 of 1-31 in 0 by %d %Y, no day
    datetime 4; 2021-03-04 = text_ended %I 10+0 0 of 0-23 in 2 by %I:%M:%S %p
    2021-03-04 10:61 = range %M 14+2 61 of 0-59 in 2 by %I:%M:%S %p
  )");
}

// The derived patterns of times by texts that no earlier candidate takes. Another result is one that differs in any
// part and would not be refused, and each counts once.
TEST(Explain, CandidatesAndOthers) {
  expect_explained(R"(
    time 4; timePattern1 x; 1:05 pm = 20.5 %I:%M %p, 0 others; 1:05: pm = 20.6 %I:%M: %p, 0 others
    1:05 = 20.7 %I:%M, 0 others; 1:05: = 20.8 %I:%M:, 0 others
    timePattern %p %I:%M:%S h; am 1:05 h = 20.5 %p %I:%M h, 0 others; am 1:05:h = 20.6 %p %I:%M: h, 0 others
    timePattern %p %S-%M %H; am -5 3 = 20.5 %p -%M %H, 0 others
    timePattern x; timePattern1 %H.%#M.%S; 1.05 = 21.9 %H.%#M, 0 others; timePattern1 %H.%M.%S; 1.05. = 21.10 %H.%M., 0 others
    timePattern %H.%M.%S; timePattern1 %M.%H.%S; 01.02.03 = 5.0 %H.%M.%S, 1 others
    timePattern1 %H.%S.%M; 01.02.03 = 5.0 %H.%M.%S, 1 others; timePattern1 %H.%M.%s; 01.02.03 = 5.0 %H.%M.%S, 1 others
    timePattern %H.%M.%s; timePattern1 %H.%M.03; 01.02.03 = 5.0 %H.%M.%s, 1 others
    timePattern %H%z; timePattern1 %H+02; 01+02 = 5.0 %H%z, 1 others
    timePattern %H%Z; timePattern1 %HZone/East; 01Zone/East = 5.0 %H%Z, 1 others
    timePattern %M:%H:%S; timePattern1 %H:%M:%S; 01:02:03 = 5.0 %M:%H:%S, 1 others
    timePattern %H:%M pm; timePattern1 %I:%M %p; 13:00 pm = 5.0 %H:%M pm, 0 others
    date 4; datePattern %m-%Y-%d; datePattern1 %d-%Y-%m; datePattern2 %Y-%d-%m; 01-02-03 = 1.0 %m-%Y-%d, 5 others
    datePattern2 %d-%Y-%m; 01-02-03 = 1.0 %m-%Y-%d, 4 others; datePattern %d/%m/%Y; 13/04/2021 = 1.0 %d/%m/%Y, 0 others
    datetime 0; datetimePattern %d/%m/%Y %H:%M:%S; 03/04/2021 01:05:00 = 4.0 %d/%m/%Y %H:%M:%S, 1 others
  )");
}

TEST(Explain, MatchesInFull) {
  ZonedLocale locale;
  set_name(locale.data.datePattern, U"%d/%m/%Y");
  set_name(locale.data.timePattern1, U"%M:%H:%S");
  set_name(locale.data.quarterPattern2, U"Q1 2021");  // names no quarter
  VXExplanation out;
  read(VX_EXPLAIN_DATE, locale.get(), U" 03/04/2021 x", 4, &out);
  EXPECT_TRUE(out.match.start == 1 && out.match.end == 11 && out.value == 22373);  // 3 April 2021
  ASSERT_EQ(out.other_count, 1);  // the row that equals the locale's pattern gives the same date and does not count
  EXPECT_EQ(text_of(out.others[0].candidate), "%m/%d/%Y");
  EXPECT_TRUE(out.others[0].candidate.row == 14 && out.others[0].fields.month == 3 && out.refusal.attempts == 20);
  read(VX_EXPLAIN_DATE, locale.get(), U"31/02/2021", 4, &out);
  EXPECT_TRUE(out.day_exists == 0 && out.value != out.value);
  read(VX_EXPLAIN_DATE, locale.get(), U"Q1 2021", 8, &out);
  EXPECT_EQ(out.match.fields.month, 1);
  read(VX_EXPLAIN_DATETIME, locale.get(), U"03/04/2021 01:05:00 AM", 0, &out);
  EXPECT_EQ(out.time.candidate.source, 0u);
  read(VX_EXPLAIN_DATETIME, locale.get(), U"03/04/2021 01:05:00", 4, &out);
  EXPECT_TRUE(out.time.start == 11 && out.time.end == 19 && out.time.fields.minute == 1);
  EXPECT_TRUE(out.other_count == 2 && out.others[1].fields.hour == 1);
  // A date that was understood is told also when its time was not.
  read(VX_EXPLAIN_DATETIME, locale.get(), U"03/04/2021 x", 4, &out);
  EXPECT_EQ(out.match.fields.year, 2021);
}

TEST(Explain, RefusesBadArguments) {
  PlainLocale locale;
  VXExplanation out{};
  const uint8_t text[] = {'5'};
  out.size = sizeof out - 1;
  EXPECT_EQ(vxnlsExplain(locale.get(), 1, 4, text, 1, &out), VX_E_LENGTH);
  out.size = sizeof out + 8;
  for (const uint32_t what : {0u, 4u}) EXPECT_EQ(vxnlsExplain(locale.get(), what, 4, text, 1, &out), VX_E_KIND);
  VX_EXPECT_NULLS_REFUSED(vxnlsExplain, locale.get(), 1u, 4u, text, 1, &out);
  EXPECT_EQ(vxnlsExplain(locale.get(), 1, 4, nullptr, -1, &out), 0u);
  EXPECT_EQ(out.size, static_cast<int64_t>(sizeof out));
}

}  // namespace

}  // namespace vxtest
