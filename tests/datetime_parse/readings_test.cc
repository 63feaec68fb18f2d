// Dates, periods, times and datetimes of every kind, what single patterns take, and what is told of all of them.
#include <cmath>
#include <ctime>
#include <map>
#include <regex>
#include <sstream>
#include <vector>

#include "examples/own_host/locale_file.h"
#include "tests/datetime_parse/reading.h"
#include "tests/support/day_counter.h"
#include "tests/support/null_arguments.h"

namespace vxtest {

namespace {

/// "2021-03-04", "10:20:30.25" or both.
std::string written(uint32_t what, double value) {
  const auto whole = static_cast<int64_t>(std::floor(value));
  const time_t since_1970 = whole - 315619200;
  const long base = what == VX_EXPLAIN_DATE ? 100 : 60, first = whole / (base * base), second = whole / base % base;
  tm fields{};
  char text[64];
  if (what == VX_EXPLAIN_DATE) (void)std::snprintf(text, sizeof text, "%04ld-%02ld-%02ld", first, second, whole % base);
  if (what == VX_EXPLAIN_TIME) (void)std::snprintf(text, sizeof text, "%02ld:%02ld:%02ld", first, second, whole % base);
  if (what == VX_EXPLAIN_DATETIME) (void)std::strftime(text, sizeof text, "%F %T", gmtime_r(&since_1970, &fields));
  const std::string fraction = std::to_string(value - static_cast<double>(whole)).substr(1, 3);
  return text + (fraction == ".00" ? "" : fraction);
}

constexpr const char* reasons[] = {
    "understood", "text_ended", "no_digit",      "width",           "blank_field", "too_many_digits", "range",
    "no_name",    "literal",    "trailing_text", "zone_unknown",    "broken_text", "directive",       "pattern_ended",
    "marker",     "no_year",    "no_quarter",    "before_calendar", "no_such_day"};

/// Of a match: the value, the units that were read, source and row of the candidate, its pattern, and how many others
/// there are; of a single pattern the units and the fields. Of a refusal: the reason, the directive or literal,
/// position+length, the number, its limits and width, the pattern.
std::string told(uint32_t what, const Read& got, const VXExplanation& out) {
  std::ostringstream text;
  const VXExplainRefusal& r = out.refusal;
  const VXExplainFields& f = out.match.fields;
  const VXExplainCandidate& by = out.status == 0 ? out.match.candidate : r.candidate;
  const std::string pattern = utf8(std::u32string(by.pattern.text, by.pattern.text + by.pattern.length));
  if (out.status != 0) {
    EXPECT_EQ(out.day_exists == 0, r.reason == VX_REASON_NO_SUCH_DAY);
    text << "no " << reasons[r.reason] << ' ' << (r.is_directive != 0 ? "%" : "");
    for (const VXChar c : {r.modifier, r.letter}) text << std::string(c != 0, static_cast<char>(c));
    text << ' ' << r.position << '+' << r.length << ' ' << r.value << " of " << r.minimum << '-' << r.maximum << " in "
         << r.width << " by " << pattern;
  } else if (what != 0) {
    text << written(what, got.value) << ' ' << got.consumed << " by " << by.source << '.' << by.row << ' ' << pattern
         << " and " << out.other_count << " others";
  } else {
    text << out.consumed;
    const std::pair<const char*, int32_t> fields[] = {
        {"month", f.month},   {"day", f.day},         {"hour", f.hour},      {"offset", f.offset % VX_NO_OFFSET},
        {"marker", f.marker}, {"quarter", f.quarter}, {"zone", f.zone_given}};
    for (const auto& [field, number] : fields) {
      if (number != 0) text << ' ' << field << ' ' << number;
    }
    text << " end";
  }
  return text.str();
}

std::string trimmed(const std::string& text) { return std::regex_replace(text, std::regex("^ +| +$"), ""); }

/// Runs a script of statements. "datePattern %d/%m" and "monthNames.2 März" change the record, "zone Zone/East" the
/// locale's zone; "date 4" says what is read, and by which kind, "by %d" that a single pattern reads, be it of dates or
/// of times. "TEXT = RESULT" is a case: what is told of it begins so; nothing stands for a refusal. A single pattern
/// reads strictly and, where that is something else, leniently: "TEXT = RESULT | RESULT". "each DATE by SOURCE: TEXT |
/// TEXT" are cases for row after row. "_" is a blank.
void run(const std::string& script) {
  static const std::map<std::string, uint32_t> subjects = {
      {"by", 0}, {"date", VX_EXPLAIN_DATE}, {"time", VX_EXPLAIN_TIME}, {"datetime", VX_EXPLAIN_DATETIME}};
  ZonedLocale locale;
  uint32_t what = 0;
  std::u32string argument;  // of what is read: the pattern or the kind
  const auto text_of = [](const std::string& from) {
    return utf32(std::regex_replace(trimmed(from), std::regex("_"), " "));
  };
  const auto expect = [&](const std::u32string& text, bool leniently, const std::string& result) {
    VXExplanation out;
    Read got;
    if (what == 0) out = read_by(locale, argument, text, leniently);
    else got = read(what, locale.get(), text, static_cast<uint32_t>(std::stoul(utf8(argument), nullptr, 0)), &out);
    const std::string end = what == 0 && result[0] != 'n' ? " end " : " ",
                      wanted = result.empty() ? "no " : result + end;
    EXPECT_EQ((told(what, got, out) + ' ').substr(0, wanted.size()), wanted) << utf8(argument + U": " + text);
  };
  std::istringstream statements(std::regex_replace(script, std::regex("//[^\n]*|\n"), " "));
  for (std::string statement; std::getline(statements >> std::ws, statement, ';');) {
    std::smatch parts;
    std::regex_match(statement, parts, std::regex("(\\w*)(?:\\.(\\d+))? ?(.*)"));
    const std::string head = parts[1], index = parts[2], rest = parts[3];
    const auto* const entry = std::ranges::find(own::entries, head, [](auto& e) { return e.key; });
    const size_t equals = statement.find('='), bar = statement.find('|');
    if (equals != statement.npos) {
      const std::u32string text = text_of(statement.substr(0, equals));
      const std::string result = trimmed(statement.substr(equals + 1, bar - equals - 1));
      expect(text, false, result);
      if (what == 0) expect(text, true, bar == statement.npos ? result : trimmed(statement.substr(bar + 1)));
    } else if (subjects.contains(head)) {
      what = subjects.at(head), argument = text_of(rest);
    } else if (head == "zone") {
      locale.use(text_of(rest));
    } else if (std::regex_match(rest, parts, std::regex("(\\S+) by (\\d+): (.*)"))) {
      std::istringstream texts(parts[3]);
      int row = 0;
      for (std::string text; std::getline(texts, text, '|'); ++row) {
        const std::string size = std::to_string(trimmed(text).size());
        expect(text_of(text), false, parts[1].str() + ' ' + size + " by " + parts[2].str() + '.' + std::to_string(row));
      }
    } else {
      ASSERT_NE(entry, std::end(own::entries)) << statement;
      auto* const names = reinterpret_cast<NLSName*>(reinterpret_cast<uint8_t*>(&locale.data) + entry->offset);
      set_name(names[index.empty() ? 0 : std::stoul(index)], text_of(rest));
    }
  }
}

/// No text holds "~": a pattern with it is out of the way.
const std::string no_pattern_of_its_own = R"(
  datePattern ~; datePattern1 ~; datePattern2 ~; quarterPattern1 ~; quarterPattern2 ~;
  monthYearPattern1 ~; monthYearPattern2 ~; weekPattern1 ~; weekPattern2 ~;
)";

TEST(ParseDate, ByOnePattern) {
  run(R"(
    datePattern %Y-%m-%d; datePattern1 %m/%d/%Y; datePattern2 %#d. %B %Y;
    date 1; 12/25/2020 and more = 2020-12-25 10; 1/25/2020 =; date 2; 3. march 2020 = 2020-03-03 13;
    // Any other kind reads by the main pattern, leniently where it has one of the lenient bits.
    date 0; 2020-02-03 = 2020-02-03 10; =; ____ =; date 3; 2020-2-03 =; 2020-02-03 = 2020-02-03 10;
    date 5; 2020-2-3 = 2020-02-03 8; date 12; 20-2-3! = 2020-02-03 6; date 0x7FFFFE03; 2020-2-03 =;
    date 0x80000004; 20-2-3 = 2020-02-03 6; date 257; 59-2-3 = 2059-02-03 6; 1581-2-3 =;
    // The month's length is not checked. A match that holds no full date succeeds with zeros.
    date 0; 2020-02-31 = 2020-02-31 10; datePattern %m/%d; 12/25 = 0000-00-00 5;
    datePattern %m/%Y; 12/2020 = 0000-00-00 7; datePattern; = 0000-00-00 0;
  )");
}

// Each row of the common forms by a text that no earlier candidate takes.
TEST(ParseDate, EveryCommonRow) {
  run(no_pattern_of_its_own + R"(
    date 4; each 1999-12-31 by 13: 31/12/1999 | 31-12-1999 | 31.12.1999 | 1999/12/31 | 1999-12-31 | 1999.12.31 |
        1999/dec/31 | 1999-Dec-31 | 1999.December.31 | DEC 31 1999 | dec/31/99 | Dec.31.1999 | Dec-31-1999 |
        Fri, Dec 31, 1999 | 12/31/99 | 12-31-99 | 12.31.99;
    datePattern %m%d%Y~; each 1999-12-31 by 13: 12/31/1999 | 12-31-1999 | 12.31.1999 | 1999/12/31 | 1999-12-31 |
        1999.12.31 | 1999/dec/31 | 1999-Dec-31 | 1999.December.31 | DEC 31 1999 | dec/31/99 | Dec.31.1999 |
        Dec-31-1999 | Fri, Dec 31, 1999 | 31.12.99 | 31-12-99 | 31/12/99;
    date 16; each 2022-07-01 by 14: Month7, 2022 | month 7 2022 | m7,2022 | M7 2022 | jul-2022 | july/22 | 7/2022 |
        07-2022 | 7.2022 | Jul.2022;
    date 8; each 2021-07-01 by 15: quarter3 2021 | quarter3, 2021 | QTR 3 2021 | qtr3,2021 | Q3 2021 | q3, 2021;
    date 64; each 2021-01-03 by 16: Week1 2021 | week1, 2021 | w1 2021 | W1,2021;
    date 128; each 2020-12-28 by 17: Week53 2020 | Week 53, 2020 | W53 2020 | W53, 2020;
    date 256; each 2020-12-28 by 18: WEEK0 2021 | WEEK0, 2021 | W0 2021 | W0, 2021;
    // A period must use the whole text but for blanks.
    date 4; 2020-13-40 =; 5/ =; date 16; _7/2022__ = 2022-07-01 7; 7/2022 x = no trailing_text  6+2; =; 7/1581 =;
    date 8; Q5 2021 = no range %o 1+1 5 of 1-4 in 2 by Q%o %Y; Q12 2021 =; Q0 2021 =; Q3 2021 x =; =;
    date 32; W54 2021 =; 2021 =; date 64; W54 2021 =; date 128; W1 2021 x =; W1 1581 =; date 256; 2021 =;
    W0 1582 = no before_calendar  0+7;
  )");
}

// Month first only when the month stands before both others; what has no "%m" stands before all others.
TEST(ParseDate, OrderOfTheLocale) {
  run(no_pattern_of_its_own + R"(
    date 4; datePattern %m/%d/%Y~; 03/04/2020 = 2020-03-04 10; datePattern %d/%m/%Y~; 03/04/2020 = 2020-04-03 10;
    datePattern %Y/%m/%d~; 03/04/2020 = 2020-04-03 10; datePattern %o %e %y~; 03/04/2020 = 2020-03-04 10;
    datePattern %m %b %Y~; 03/04/2020 = 2020-03-04 10; datePattern %m %Y~; 03/04/2020 = 2020-04-03 10;
    datePattern ~; 03/04/2020 = 2020-04-03 10; datePattern %Y %d~; 03/04/2020 = 2020-03-04 10;
    datePattern %#m %d %Y~; 03/04/2020 = 2020-03-04 10; datePattern %d %b %Y~; 03/04/2020 = 2020-03-04 10;
  )");
  ZonedLocale locale;
  set_name(locale.data.datePattern, U"%Y %d~%m");
  locale.data.datePattern.length -= 1;  // a letter behind the pattern is no part of it
  EXPECT_EQ(read(VX_EXPLAIN_DATE, locale.get(), U"03/04/2020", 4).value, 20200304);
  set_name(locale.data.datePattern, U"%Y%#");
  locale.data.datePattern.length -= 1;  // nor is a modifier
  VXExplanation out;
  read(VX_EXPLAIN_DATE, locale.get(), U"2020/", 0, &out);
  EXPECT_TRUE(out.refusal.reason == VX_REASON_PATTERN_ENDED && out.refusal.modifier == 0) << out.refusal.reason;
}

TEST(ParseDate, OwnPatternsComeFirst) {
  // The first match wins, though it has no year. The locale's own quarters meet the text with its trailing blanks, the
  // common rows without them. Of a family of weeks, the rows come before the patterns.
  run(R"(
    datePattern %Y/%d/%m; datePattern1 %d %b; datePattern2 %b %d%#Y !; monthYearPattern1 %Y年%m月;
    date 4; 2020/3/4 = 2020-04-03 8 by 1.0; 3 may 2020 = 0000-00-00 5 by 2.0; may 3 2020 ! = 2020-05-03 12 by 3.0;
    may 3 2020 = 2020-05-03 10 by 13.9; date 16; 2022年7月_ = 2022-07-01 7 by 9.0; 7/2022 = 2022-07-01 6 by 10.0;
    date 8; Q1 2021 = 2021-01-01 7 by 7.0; 2021 Q4 = 2021-10-01 7 by 8.0; Q4 2021__ = 2021-10-01 7 by 15.4;
    date 32; W1 2021 = 2021-01-03 7 by 11.0; 2021-W1 = 2021-01-03 7 by 12.0; W1, 2021 = 2021-01-03 8 by 16.3;
    date 128; 2021-W1 = 2021-01-03 7 by 12.0; W1 2021 = 2021-01-04 7 by 17.2;
    // The family that the locale counts is told by its first week pattern.
    date 32; weekPattern1 %V~; W1 2021 = 2021-01-04 7 by 17.2; weekPattern1 %W~; W1 2021 = 2021-01-04 7 by 18.2;
    weekPattern1 %W%V~; W1 2021 = 2021-01-04 7 by 17.2; weekPattern1 ~; W1 2021 = 2021-01-03 7 by 16.2;
    // Patterns that match, but read no quarter, no week or no year.
    date 8; 2021 Q4_ =; quarterPattern1 %m %Y; 4 2021 = no no_quarter; date 32; weekPattern1 W%U; W5 = no no_year;
    weekPattern1 %Y; 2021 =;
  )");
}

TEST(ParseTime, ByPatternsAndCommonForms) {
  run(R"(
    timePattern %H:%M:%S; timePattern1 %H.%M; time 1; 10.30 x = 10:30:00 5; 9.30 =;
    time 0; 10:30:15 trailing = 10:30:15 8; =; time 2; _10:30:15 = 10:30:15 9; 9:5:1 =; time 5; 9:5:1 = 09:05:01 5;
    time 4; __ =; 10:30 = 10:30:00 5; 10:30:__ = 10:30:00 6; 10:30:15 trailing =; 24:00:00 =;
    timePattern ~; timePattern1 ~; _10:30:15Z = 10:30:15 10; 10:30:15z = 10:30:15 9; 10:30 =;
    // Patterns cut to nothing match nothing but nothing.
    timePattern %S%M; = 00:00:00 0;
    time 0; timePattern %H:%M:%S.%s; 01:02:03.250 = 01:02:03.25 12; timePattern; x = 00:00:00 0; = 00:00:00 0;
  )");
}

// The derived patterns of times by texts that no earlier candidate takes.
TEST(ParseTime, MarkersAndShortForms) {
  run(R"(
    // Read leniently by one pattern, the marker is not applied. Strictly, 12 is added to whatever stands.
    timePattern %I:%M:%S %p; timePattern1 ~; time 0; 01:00:00 PM = 13:00:00 11; time 8; 01:00:00 PM = 01:00:00 11;
    time 4; 12:05:00 am = 00:05:00 11; 12:05 am = 00:05:00 8 by 20.5 %I:%M %p and 0 others; 12:05pm__ = 12:05:00 7;
    12:05: am = 00:05:00 9 by 20.6 %I:%M: %p; 11:59 PM = 23:59:00 8; 1:00 pm = 13:00:00 7; 00:05 pm =;
    00:05 am = 00:05:00 8; 13:00 pm =; 13:00 am =; 1:05: = 01:05:00 5 by 20.8 %I:%M:;
    // The copy without "%p" keeps hours up to 23. "%#p" is not "%p".
    13:00 = 13:00:00 5 by 20.7 %I:%M; timePattern %H %p; time 0; 13 PM = 25:00:00 5; time 4; timePattern %H %#p;
    01 PM = 01:00:00 5;
    // "%p" before the minutes: one copy loses all from the minutes to the seconds, the other the seconds only.
    timePattern %p %I:%M:%S Uhr; pm 1:05 uhr = 13:05:00 11 by 20.5 %p %I:%M Uhr;
    pm 1:05:uhr = 13:05:00 11 by 20.6 %p %I:%M: Uhr; timePattern %p %S-%M %H; am -5 3 = 03:05:00 7 by 20.5 %p -%M %H;
    // The pattern of kind 1 is cut after "%M" or "%#M" and before "%S", without a marker. The main one needs "%M".
    timePattern %H-%#M %S; 10-3 =; timePattern ~; timePattern1 %H-%#M %S; 10-3 = 10:03:00 4 by 21.9 %H-%#M;
    timePattern1 %H.%M.%S; 10.30 = 10:30:00 5; 10.30. = 10:30:00 6 by 21.10 %H.%M.; timePattern1 %I.%M.%S %p;
    1.30 pm =;
    // An empty marker is found in the nothing that follows the text.
    timePattern %H:%M:%S; timePattern1 ~; 12:05 = 12:05:00 5; amMarker; 12:05 = 00:05:00 5; 13:05 =;
    pmMarker; 12:05 = 00:05:00 5; amMarker AM; 1:05 = 13:05:00 4; 00:05 =;
  )");
  // Copies of a pattern of full length do not outgrow it; one that ends in "%" matches nothing.
  const std::string x(51, 'x');
  run("time 4; timePattern " + x + "%H:%M%S%p; " + x + "1:05 pm = 13:05:00 58");
  // Cut before the seconds, 58 units and " %p" are one too many: what is left ends in "%".
  run("time 4; timePattern xxx" + x + "%M%p%S; xxx" + x + "05am am =; xxx" + x + "05am = 00:05:00 58");
}

TEST(ParseDatetime, ByPatternAndByParts) {
  run(R"(
    datetimePattern %Y%m%d-%H%M%S.%s; datetime 0; 20210304-102030.250 rest = 2021-03-04 10:20:30.25 19;
    _19590304-000000.000 = 1959-03-04 00:00:00 20; 03/04/2021 12:20:30 PM = 2021-03-04 12:20:30 22;
    // A pattern that matched asks for no other form. The strict reader has added 12, and 13 PM is refused.
    20210231-102030.250 =; 03/04/2021 01:20:30 PM =; 3/4/2021 10:20:30 AM =;
    datetime 8; 3/4/2021 10:20:30 AM = 2021-03-04 10:20:30 20;
    // Bit 4 does not ask the pattern. One "T" right after the date, then blanks and punctuation.
    datetime 4; 20210304-102030.250 =; 2021-03-04T10:20:30 = 2021-03-04 10:20:30 19; 2021-03-0410:20:30 =;
    2021-03-04T, - 10:20:30_ = 2021-03-04 10:20:30 23; 2021-03-04 —　10:20:30 = 2021-03-04 10:20:30 21;
    2021-03-04TT10:20:30 =; 2021-03-04 T10:20:30 =; 2021-03-04t10:20:30 =; 10:20:30 =; =;
    mar 4 2021 1:20 pm = 2021-03-04 13:20:00 18; 12/31/99 0:00:00 = 1999-12-31 00:00:00 16;
    // 4000 and 8000 are common years.
    datetime 12; 12/31/9999 23:59:59 = 9999-12-29 23:59:59 19;
    // A date alone is a datetime only where an empty time pattern is tried. Without a year, the year is 2000.
    datetime 4; 2021-03-04 =; timePattern; 2021-03-04_ = 2021-03-04 00:00:00 11;
    datetime 0; datetimePattern %d.%m; 29.02 = 2000-02-29 00:00:00 5;
    // The locale's own offset is that of the moment in UTC. Of a zone and an offset, the zone counts. A "Z" that is a
    // literal says nothing.
    zone Zone/Summer; datetimePattern %Y-%m-%d %H:%M:%S %z, %Z; timePattern %H:%M:%S %z;
    1960-01-01 02:00:00 -01:00, Zone/East = 1960-01-01 02:00:00 37;
    1960-01-01 01:59:59 -01:00, Zone/East = 1960-01-01 00:59:59 37; datetime 4;
    1960-01-01 01:59:59 +02:00 = 1960-01-01 00:59:59 26; 1960-01-01 10:20:30Z = 1960-01-01 10:20:30 20;
  )");
}

TEST(ParsePatterns, NamesOffsetsZonesAndLiterals) {
  run(R"(
    zone Zone/West; monthNames.2 März; monthNames.5 Jun; monthNames.6 June7;
    quarterNames.3 ἈЖ𐐀;  // no case above U+FFFF
    // Strictly either the full or the abbreviated names are read; the first that stands there, not the longest.
    by %B; __DECEMBER 5 = 10 month 12; dec = | 3 month 12; mÄrz = 5 month 3; mÄr =; june7 = 3 month 6;
    by %b; december = 3 month 12 | 8 month 12; by %C; decembe = | 3 month 12; by %A; sun = | 3;
    by %F; SATURDAY! = 8; by %a; Someday =; Thursday = 8; Mon = | 3; by %f; Fri = | 3; sunday = | 6; by %p;
    Am = 2 marker 1; p =; by %C; December = 8 month 12; by %q; Q1 = | 2 quarter 1; Q4 =;
    by %q; q2 = | 2 quarter 2; by %Q; ἀж𐐀_ = | 9 quarter 4; ἀж𐐨 =;
    // Strictly the marker adds 12 to the hour so far, whatever that is; an hour read later replaces it.
    by %p; _pM = 3 hour 12 marker 2 | 3 marker 2; by %p %I; PM 01 = 5 hour 1 marker 2;
    by %I %p; 12 AM = 5 marker 1 | 5 hour 12 marker 1; 12 PM = 5 hour 12 marker 2;
    by %H %p; 13 PM = 5 hour 25 marker 2 | 5 hour 13 marker 2;
    // A sign, hours, minutes: one or two positions each, of which the first may be a blank.
    by %#z; +5:30 = 5 offset 19800; by %z; +0000 = 5; -0530 = 5 offset -19800; +05:30 = 6 offset 19800;
    0530 = 4 offset 19800; +1259x = 5 offset 46740; +5 = 2 offset 18000; +05: = 4 offset 18000; -x =; + =; Z =; −05 =;
    +05:__ = 6 offset 18000; +05___:30 = 9 offset 19800; + 5:30 = 6 offset 19800; +5 30 = 5 offset 19800;
    +05: 3 = 6 offset 18180; +05:3x = 5 offset 18180; +05__ = 5 offset 18000; __-1 = 4 offset -3600; +__5 =; +05 x =;
    +05:___3 =; +13 = no range %z 1+2 13 of 0-12 in 2; +0560 = no range %z 3+2 60 of 0-59 in 2;
    // The name of a zone ends with a blank, which it takes; the locale's own one stands at the end alone.
    by %Z; __Zone/East = 11 zone 1; Zone/East rest = 10 zone 1; _Nowhere 5 = no zone_unknown %Z 1+7; zone/east =;
    Zöne = no zone_unknown %Z 0+5; xSt = 3 zone 1; XST 2000 =; XS =; XSA =; zone; XST =;
    // Blanks are passed over before a step, even at the end of the pattern; not before "%%". Case counts strictly.
    by; = 0; __x = 2; by %d; = no text_ended; by %d/%m; 05/06 more = 5 month 6 day 5; by /; - =; by %%; _%% = 2;
    by %#0?%; % = 1; by %#d %m; 5__6 = 4 month 6 day 5; by 日%d; 日05 = 5 day 5; by %H%%; 05 % =;
    by %; % = no pattern_ended; by %H%#; 055 =; by %Ö; Ö = no directive; by x; X = | 1; by Ж; ж = | 2;
    // Leniently a blank of the pattern may be missing, but none may be too many. Strictly a text that ends in the
    // blanks of a field reads as 0.
    by %d %m; 0506 =; by %d_; 05 =; by a b; ab = | 2; by a__b; a b = | 3; by ab; a b =;
    by %H%M; 12_ = 3 hour 12 | no; by %d%m; 12_ =;
    // An empty name or marker stands everywhere, and hides all that follow it in its list.
    amMarker; by %H%p!; 05__! = 5 hour 5 marker 1; by %H%p; 05 PM = 3 hour 5 marker 1;
  )");
  ZonedLocale locale;
  EXPECT_NE(read_by(locale, U"%Z", std::u32string(2000, U'Z'), false).status, 0u);
}

TEST(Explain, Refusals) {
  run(R"(
    date 4; 2021-13-05 = no range %m 5+2 13 of 1-12 in 2 by %Y-%m-%d; 13/32/2020 = no range %m 3+2 32 of 1-12;
    date 0; datePattern %d/%m; 5/6 = no width %d 0+1 0 of 1-31 in 2 by %d/%m; x = no no_digit %d 0+1 0 of 1-31 in 2;
    _05-6 = no literal / 3+1 0 of 0-0 in 0; 05/ = no text_ended %m 3+0 0 of 1-12;
    datePattern %d/%#m; 05/123, = no too_many_digits %#m 3+3 0; datePattern %d%m; 05__7 = no blank_field %m 2+2 0;
    datePattern %#k; 25 = no range %#k 0+2 25 of 0-24 in 2; datePattern %#Y; date 5;
    1581x = no range %#Y 0+4 1581 of 1582-20000 in 4; datePattern %e %B %Y; date 0;
    03 März 2021 = no no_name %B 3+5 0 of 0-0; 03__ = no no_name %B 4+0;
    datePattern %d.%m; date 4; 3.Foo-2021 = no no_digit %m 2+3 0; 2021-Foo-3 = no no_name %b 5+3 0 of 0-0 in 0;
    time 4; 10:30:15 trailing = no no_name %p 9+8; 13:00 pm = no marker  0+2 13 of 1-12 in 0 by %#I:%M %p;
    00:00 pm = no marker  0+2 0 of 1-12; timePattern %M:%S %p; 05:03 pm = no marker  0+8 0 of 1-12 in 0 by %M:%S %p;
    timePattern %I:%M:%S %p;
    // What is tried after the day was refused is not told, be it another refusal or an attempt that came further.
    datetime 4; 2021-02-31 10:30 = no no_such_day  8+2 31 of 1-28 in 0 by %Y-%m-%d; 2021-03-04 = no text_ended %I 10+0;
    2021-03-04 10:61 = no range %M 14+2 61 of 0-59 in 2 by %I:%M:%S %p;
    datetimePattern %d/%m/%Y; datetime 8; 31/02/2021 13:00 pm = no no_such_day  0+2 31 of 1-28 in 0 by %d/%m/%Y;
    datetimePattern %m/%Y; datetime 0; 02/2021 = no no_such_day  0+7 0 of 1-28; datetimePattern %d/%m;
    30/02 = no no_such_day  0+2 30 of 1-29; datetimePattern %d %Y; 05 2021 = no no_such_day  0+2 5 of 1-31;
  )");
}

// Another result is one that differs in any part and would not be refused, and each counts once.
TEST(Explain, OtherResults) {
  run(R"(
    time 4; timePattern %H.%M.%S; timePattern1 %M.%H.%S; 01.02.03 = 01:02:03 8 by 5.0 %H.%M.%S and 1 others;
    timePattern1 %H.%S.%M; 01.02.03 = 01:02:03 8 by 5.0 %H.%M.%S and 1 others;
    timePattern1 %H.%M.%s; 01.02.03 = 01:02:03 8 by 5.0 %H.%M.%S and 1 others;
    timePattern %H.%M.%s; timePattern1 %H.%M.03; 01.02.03 = 01:02:00 8 by 5.0 %H.%M.%s and 1 others;
    timePattern %H%z; timePattern1 %H+02; 01+02 = 01:00:00 5 by 5.0 %H%z and 1 others;
    timePattern %H%Z; timePattern1 %HZone/East; 01Zone/East = 01:00:00 11 by 5.0 %H%Z and 1 others;
    timePattern %M:%H:%S; timePattern1 %H:%M:%S; 01:02:03 = 02:01:03 8 by 5.0 %M:%H:%S and 1 others;
    timePattern %H:%M pm; timePattern1 %I:%M %p; 13:00 pm = 13:00:00 8 by 5.0 %H:%M pm and 0 others;
    date 4; datePattern %m-%Y-%d; datePattern1 %d-%Y-%m; datePattern2 %Y-%d-%m;
    01-02-03 = 2002-01-03 8 by 1.0 %m-%Y-%d and 5 others; datePattern2 %d-%Y-%m;
    01-02-03 = 2002-01-03 8 by 1.0 %m-%Y-%d and 4 others;
    datePattern %d/%m/%Y; 13/04/2021 = 2021-04-13 10 by 1.0 %d/%m/%Y and 0 others;
    datetime 0; datetimePattern %d/%m/%Y %H:%M:%S;
    03/04/2021 01:05:00 = 2021-04-03 01:05:00 19 by 4.0 %d/%m/%Y %H:%M:%S and 1 others;
  )");
}

TEST(Explain, MatchesInFull) {
  ZonedLocale locale;
  VXExplanation out;
  set_name(locale.data.datePattern, U"%d/%m/%Y");
  set_name(locale.data.timePattern1, U"%M:%H:%S");
  read(VX_EXPLAIN_DATE, locale.get(), U" 03/04/2021 x", 4, &out);
  EXPECT_TRUE(out.match.start == 1 && out.match.end == 11 && out.value == 22373);  // 3 April 2021
  ASSERT_EQ(out.other_count, 1);  // the row that equals the locale's pattern gives the same date and does not count
  EXPECT_TRUE(out.others[0].candidate.pattern.text[1] == 'm' && out.others[0].candidate.row == 14);
  EXPECT_TRUE(out.others[0].fields.month == 3 && out.refusal.attempts == 20);
  read(VX_EXPLAIN_DATE, locale.get(), U"31/02/2021", 4, &out);
  EXPECT_TRUE(out.day_exists == 0 && out.value != out.value);
  read(VX_EXPLAIN_DATETIME, locale.get(), U"03/04/2021 01:05:00", 4, &out);
  EXPECT_TRUE(out.time.start == 11 && out.time.end == 19 && out.time.fields.minute == 1);
  EXPECT_TRUE(out.other_count == 2 && out.others[1].fields.hour == 1);
  read(VX_EXPLAIN_DATETIME, locale.get(), U"03/04/2021 x", 4, &out);  // told also when the time was not understood
  EXPECT_EQ(out.match.fields.year, 2021);
}

TEST(ParseArguments, LengthsBelowZeroAndNulls) {
  PlainLocale locale;
  VXLocale* const l = locale.get();
  uint32_t m = 1, d = 1, y = 1;
  double value = -1;
  int64_t consumed = -1;
  VXExplanation out{};
  const VXChar units[] = {'5'};
  const uint8_t bytes[] = {'5'};
  EXPECT_EQ(NLSBufToDateU(l, nullptr, INT64_MIN, 0, &m, &d, &y, &consumed), VX_E_NOMATCH);
  EXPECT_EQ(NLSBufToTime(l, nullptr, 0, 4, &value, &consumed), VX_E_NOMATCH);  // empty, not missing
  VX_EXPECT_NULLS_REFUSED(NLSBufToDateU, l, bytes, 1, 4u, &m, &d, &y, &consumed);
  VX_EXPECT_NULLS_REFUSED(NLSBufToTime, l, units, 1, 4u, &value, &consumed);
  VX_EXPECT_NULLS_REFUSED(NLSBufToDatetime, l, units, 1, 4u, &value, &consumed);
  EXPECT_EQ(value + static_cast<double>(consumed), -2);
  out.size = sizeof out - 1;
  EXPECT_EQ(vxnlsExplain(l, 1, 4, bytes, 1, &out), VX_E_LENGTH);
  out.size = sizeof out + 8;
  for (const uint32_t what : {0u, 4u}) EXPECT_EQ(vxnlsExplain(l, what, 4, bytes, 1, &out), VX_E_KIND);
  VX_EXPECT_NULLS_REFUSED(vxnlsExplain, l, 1u, 4u, bytes, 1, &out);
  EXPECT_EQ(vxnlsExplain(l, 1, 4, nullptr, -1, &out), 0u);
  EXPECT_EQ(out.size, static_cast<int64_t>(sizeof out));
}

// Up to the last year of four digits; the days are counted, not computed.
TEST(ParseDate, EveryPeriodOfEveryYear) {
  ZonedLocale locale;
  std::vector<DayCounter> days;
  for (int32_t day = 22; day <= 31; ++day) days.push_back({1581, 12, day});
  for (DayCounter at; at.year < 10001; at.next()) days.push_back(at);
  for (size_t new_year = 10; days[new_year].year < 10000; new_year += days[new_year].leap() ? 366 : 365) {
    const int32_t y = days[new_year].year, w = days[new_year].week_day;
    const auto expect = [&](uint32_t kind, char letter, int number, const DayCounter& day) {
      const std::string text = letter + std::to_string(number) + ' ' + std::to_string(y);
      const Read wanted{date_value(day.year, day.month, day.day), static_cast<int64_t>(text.size())};
      ASSERT_EQ(read(VX_EXPLAIN_DATE, locale.get(), utf32(text), kind), day.year < 1582 ? Read() : wanted) << text;
    };
    // Week 1 holds the first Sunday, the first Thursday from its Monday on, the first Monday; week 0 is before it.
    const std::pair<uint32_t, int32_t> families[] = {{64, (7 - w) % 7}, {128, (11 - w) % 7 - 3}, {256, (8 - w) % 7}};
    for (const auto& [kind, first] : families) {
      for (int week = 0; week <= 53; ++week) {
        expect(kind, 'W', week, days[new_year + static_cast<size_t>(first + 7 * week - 7)]);
      }
    }
    for (int m = 1; m <= 12; ++m) expect(16, 'M', m, {y, m, 1});
    for (int q = 1; q <= 4; ++q) expect(8, 'Q', q, {y, 3 * q - 2, 1});
    if (HasFatalFailure()) return;
  }
}

}  // namespace

}  // namespace vxtest
