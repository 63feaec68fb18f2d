// The command as a user runs it: a line of the shell, what it prints and how it ends.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "cli/json.h"
#include "tests/cli/command_line.h"

namespace {

using vxtest::run_line;
using Case = vxtest::CommandCase;
using vxtest::expect;

TEST(Format, SixLocales) {
  static constexpr Case cases[] = {
      {"vxnls format datetime 2026-11-21T14:05:09 -l de_DE -z Europe/Berlin", "21.11.2026 14:05:09\n", "", 0},
      {"vxnls format datetime 2026-11-21T14:05:09 -l ja_JP -z Asia/Tokyo", "2026/11/21 14:05:09\n", "", 0},
      {"vxnls format datetime 2026-11-21T14:05:09 -l ar_EG -z Africa/Cairo", "21/11/2026 2:05:09 م\n", "", 0},
      {"vxnls format datetime 2026-11-21T14:05:09 -l hi_IN -z Asia/Kolkata", "21/11/2026 2:05:09 pm\n", "", 0},
      {"vxnls format datetime 2026-11-21T14:05:09 -l en_US -z America/Chicago", "11/21/2026 2:05:09 PM\n", "", 0},
      {"vxnls format datetime 2026-11-21T14:05:09 -l fr_CA -z America/Toronto", "2026-11-21 14 h 05 min 09 s\n", "", 0},
      {"vxnls format date 2026-11-21 -l de_DE --style medium", "21.11.2026\n", "", 0},
      {"vxnls format date 2026-11-21 -l ja_JP --style long", "2026年11月21日\n", "", 0},
      {"vxnls format date 2026-11-21 -l ar_EG --style long", "21 نوفمبر 2026\n", "", 0},
      {"vxnls format date 2026-11-21 -l hi_IN --style long", "21 नवंबर 2026\n", "", 0},
      {"vxnls format date 2026-11-21 -l en_US --style long", "November 21, 2026\n", "", 0},
      {"vxnls format date 2026-11-21 -l fr_CA --style long", "21 novembre 2026\n", "", 0},
  };
  expect(cases);
}

TEST(Format, WhatAValueMayBe) {
  static constexpr Case cases[] = {
      {"vxnls format date --pattern %Y-%m-%d 0 -1 22345 -138061 6589335",
       "1960-01-01\n1959-12-31\n2021-03-06\n1582-01-01\n0000-12-31\n", "", 0},  // four digits of a year
      {"vxnls format date --pattern %Y-%m-%d 2026-07-01T23:30 2026-07-01T23:30Z -z Asia/Tokyo",
       "2026-07-01\n2026-07-02\n", "", 0},
      {"vxnls format time --pattern %H:%M:%S 14:05 86399.9 86400 -1 -0.5 2026-11-21T14:05:09.9",
       "14:05:00\n23:59:59\n00:00:00\n23:59:59\n23:59:59\n14:05:09\n", "", 0},
      {"vxnls format datetime --pattern '%Y-%m-%d %H:%M:%S' 0 2110889109 @0 @-0.5 2026-11-21 ' 2026-11-21T10:00 '",
       "1960-01-01 00:00:00\n2026-11-21 14:05:09\n1970-01-01 00:00:00\n1969-12-31 23:59:59\n2026-11-21 00:00:00\n"
       "2026-11-21 10:00:00\n",
       "", 0},
      {"vxnls format datetime --pattern '%Y-%m-%d %H:%M %z' -z America/St_Johns 2026-11-21T14:05+02 @1795269909",
       "2026-11-21 08:35 -0330\n2026-11-21 10:35 -0330\n", "", 0},
      // The second of two equal local times keeps its offset, also when the pattern writes it in other ways.
      {"vxnls format datetime --pattern '%H:%M %z %?Z %#z' -z Europe/Berlin 2026-10-25T00:30Z 2026-10-25T01:30Z "
       "2026-10-25T02:30",
       "02:30 +0200 +0200 Europe/Berlin\n02:30 +0100 +0100 Europe/Berlin\n02:30 +0200 +0200 Europe/Berlin\n", "", 0},
  };
  expect(cases);
}

TEST(Format, Styles) {
  static constexpr Case cases[] = {
      {"for s in short main medium 1 long 2; do vxnls format date 2026-11-05 -l en_GB --style $s; done",
       "05/11/2026\n05/11/2026\n5 Nov 2026\n5 Nov 2026\n5 November 2026\n5 November 2026\n", "", 0},
      {"for s in medium main short 1; do vxnls format time 9:05:07 -l en_US --style $s || vxnls format time 09:05:07 "
       "-l en_US --style $s -q; done 2>/dev/null",
       "9:05:07 AM\n9:05:07 AM\n9:05 AM\n9:05 AM\n", "", 0},
      {"vxnls format datetime 2026-11-05T09:05:07 -l en_US --style long --time-style short",
       "November 5, 2026 9:05 AM\n", "", 0},
      {"vxnls format datetime 2026-11-05T09:05:07 -l en_US --time-style short", "11/05/2026 9:05 AM\n", "", 0},
      {"vxnls format time 9 --style long", "", "vxnls: --style \"long\": it is short, medium, main or 1\n", 2},
      {"vxnls format date 9 --style long --pattern %Y", "",
       "vxnls: --pattern replaces the locale's patterns, so there is no style to choose\n", 2},
  };
  expect(cases);
}

TEST(Format, Patterns) {
  static constexpr Case cases[] = {
      {"vxnls format datetime 2026-07-04T00:07:09 -l en_US -z Europe/Berlin --pattern "
       "'%Y %m %B %b %d %A %a %W %E%O %K'",
       "2026 07 July Jul 04 Saturday Sat 6  4 7 24\n", "", 0},
      {"vxnls format datetime 2026-07-04T00:07:09 -l en_US -z Europe/Berlin --pattern '%H %I %p %M %S %z %Z %L %U %% "
       "%#d "
       "%#m'",
       "00 12 AM 07 09 +0200 Europe/Berlin 00 7 % 4 7\n", "", 0},
      {"vxnls format date 1 --pattern ''", "\n", "", 0},
      {"vxnls format date 0 --pattern '日%d'", "日01\n", "", 0},
      {"vxnls format date 0 --pattern 123456789012345678901234567890123456789012345678901234567890",
       "123456789012345678901234567890123456789012345678901234567890\n", "", 0},
      {"vxnls format date 0 --pattern 1234567890123456789012345678901234567890123456789012345678901", "",
       "vxnls: --pattern \"123456789012345678901234567890123456789012345678901234567890\"...: it has 61 characters, at "
       "most 60 are possible\n",
       2},
      {"vxnls format date 0 --pattern \"$(printf '\\377')\"", "", "vxnls: --pattern \"\\xFF\": it is not UTF-8\n", 2},
      {"vxnls format date 0 --pattern '日%Q'", "",
       "vxnls: --pattern \"日%Q\": at byte 3: \"%Q\" is no directive; \"vxnls format datetime --help\" lists them\n",
       2},
      {"vxnls format date 0 --pattern '%Y%#H'", "",
       "vxnls: --pattern \"%Y%#H\": at byte 2: \"%#H\" writes a time, and a date has none\n", 2},
      {"vxnls format time 0 --pattern '%H%?'", "",
       "vxnls: --pattern \"%H%?\": at byte 2: the pattern ends within a directive; \"%%\" writes a percent sign\n", 2},
      {"vxnls format datetime 0 --pattern '%Y %é'", "",
       "vxnls: --pattern \"%Y %é\": at byte 3: \"%é\" is no directive; \"vxnls format datetime --help\" lists them\n",
       2},
  };
  expect(cases);
}

TEST(Format, LinesOfStandardInput) {
  using namespace std::string_view_literals;
  static constexpr Case cases[] = {
      {"vxnls format date -l en_GB", "", "", 0, ""},
      {"vxnls format date -l en_GB", "01/01/1960\n02/01/1960\n", "", 0, "0\r\n1"},
      {"vxnls format date -l en_GB", "01/01/1960\n\n\n\n02/01/1960\n",
       "vxnls: line 2: \"x\": a date is 2026-11-21, a day number or now\n"
       "vxnls: line 3: \"\": no value\n"
       "vxnls: line 4: \"2026-02-30\\u{0000}\": at byte 10: \"T\" and a time, or the end is expected, not "
       "\"\\u{0000}\"\n",
       1,
       "\xEF\xBB\xBF"
       "0\nx\n\n2026-02-30\0\n1\n"sv},
      {"vxnls format date -l en_GB --json",
       "{\"value\":\"0\",\"text\":\"01/01/1960\",\"date\":\"1960-01-01\",\"day\":0,\"offset\":\"+00:00\",\"locale\":"
       "\"en_GB\",\"zone\":\"Etc/UTC\"}\n"
       "{\"value\":\"x\uFFFD\",\"line\":2,\"error\":\"a date is 2026-11-21, a day number or now\"}\n",
       "vxnls: line 2: \"x\\xFF\": a date is 2026-11-21, a day number or now\n", 1, "0\nx\xFF\n"},
      {"head -c 70000 /dev/zero | tr '\\0' 1 | vxnls format date | wc -l", "1\n",
       "vxnls: line 1: \"111111111111111111111111111111111111111111111111111111111111\"...: longer than 65536 bytes\n",
       0},
  };
  expect(cases);
}

TEST(Format, OneLineOutForEachLineInWithoutWaiting) {
  // The second line is only sent when the answer to the first one has come.
  const auto result = run_line(
      "d=$(mktemp -d); mkfifo $d/in $d/out; vxnls format date -l en_GB <$d/in >$d/out & exec 3>$d/in 4<$d/out; "
      "for i in 1 2; do echo $i >&3; read -r answer <&4; echo \"got $answer\"; done; exec 3>&-; wait; rm -r $d");
  EXPECT_EQ(result.out, "got 02/01/1960\ngot 03/01/1960\n");
}

TEST(Format, WrongValues) {
  static constexpr Case cases[] = {
      {"vxnls format date today", "", "vxnls: \"today\": a date is 2026-11-21, a day number or now\n", 1},
      {"vxnls format date 2026-13-01", "",
       "vxnls: \"2026-13-01\": at byte 5: a month from 01 to 12 is expected, not \"13\"\n", 1},
      {"vxnls format date ' 2026-11-1'", "",
       "vxnls: \" 2026-11-1\": at byte 9: a day of two digits is expected, not \"1\"\n", 1},
      {"vxnls format date 1 2026-02-29 x 2", "",  // nothing is printed unless all can be read
       "vxnls: \"2026-02-29\": 2026-02 has 28 days\nvxnls: \"x\": a date is 2026-11-21, a day number or now\n", 1},
      {"vxnls format date 20261121", "",
       "vxnls: \"20261121\": too large for a day number; the date is written 2026-11-21\n", 1},
      {"vxnls format date 6589336", "",
       "vxnls: \"6589336\": a day number is -138061 (1582-01-01) to 6589335 (20000-12-31)\n", 1},
      {"vxnls format date -138062", "",
       "vxnls: \"-138062\": a day number is -138061 (1582-01-01) to 6589335 (20000-12-31)\n", 1},
      {"vxnls format date 1.5", "", "vxnls: \"1.5\": a day number is an integer\n", 1},
      {"vxnls format time 2026-11-21", "", "vxnls: \"2026-11-21\": a date without a time; write 2026-11-21T14:05\n", 1},
      {"vxnls format datetime 10:00Z", "", "vxnls: \"10:00Z\": a time without a date; write 2026-11-21T10:00Z\n", 1},
      {"vxnls format time 10:00Z", "", "vxnls: \"10:00Z\": an offset without a date; write 2026-11-21T10:00Z\n", 1},
      {"vxnls format datetime 569318630400", "", "vxnls: \"569318630400\": outside of 1582-01-01 to 20000-12-31\n", 1},
      {"vxnls format datetime 99999999999999999999999999", "",
       "vxnls: \"99999999999999999999999999\": outside of 1582-01-01 to 20000-12-31\n", 1},
      {"vxnls format datetime @-99999999999999999999999999", "",
       "vxnls: \"@-99999999999999999999999999\": outside of 1582-01-01 to 20000-12-31\n", 1},
      {"vxnls format datetime 1582-01-01T00:30+01:00", "",
       "vxnls: \"1582-01-01T00:30+01:00\": outside of 1582-01-01 to 20000-12-31\n", 1},
      {"vxnls format datetime @x", "",
       "vxnls: \"@x\": digits are expected behind \"@\": seconds since 1970-01-01 00:00 UTC\n", 1},
  };
  expect(cases);
}

TEST(Locales, WhereTheyComeFrom) {
  static constexpr Case cases[] = {
      {"vxnls format date 0", "01/01/1960\n", "", 0},
      {"LANG=de_DE.UTF-8 vxnls format date 0", "01.01.1960\n", "", 0},
      {"LC_TIME=fr_CA LANG=de_DE vxnls format date 0", "1960-01-01\n", "", 0},
      {"LC_ALL=ja_JP LC_TIME=fr_CA vxnls format date 0", "1960/01/01\n", "", 0},
      {"LC_NUMERIC=de_DE vxnls format date 0; LC_TIME=de_DE vxnls format number 1.5", "01/01/1960\n1.5\n"},
      {"export LC_TIME=fr_CA LC_NUMERIC=de_DE; vxnls format date 0; vxnls format number 1.5; vxnls parse number 1,5",
       "1960-01-01\n1,5\n1.5\n"},
      {"LC_ALL=ja_JP LC_NUMERIC=de_DE vxnls format number 1.5", "1.5\n"},
      {"LC_NUMERIC=xyzzy vxnls format percent 1", "",
       "vxnls: LC_NUMERIC: there is no locale \"xyzzy\"; \"vxnls locale list\" lists them\n", 2},
      {"VXNLS_LOCALE=de_DE LC_ALL=ja_JP vxnls format date 0", "01.01.1960\n", "", 0},
      {"VXNLS_LOCALE=de_DE vxnls format date 0 -l ja-JP", "1960/01/01\n", "", 0},
      {"VXNLS_LOCALE= LC_ALL= LANG= vxnls format date 0", "01/01/1960\n", "", 0},
      {"vxnls format date 0 -l de_US", "01.01.1960\n",
       "vxnls: note: there is no locale \"de_US\"; de stands in for it\n", 0},
      {"vxnls -q format date 0 -l de_US", "01.01.1960\n", "", 0},
      {"vxnls format date 0 -l qq_DE", "", "vxnls: there is no locale \"qq_DE\"; \"vxnls locale list\" lists them\n",
       2},
      {"vxnls format date 0 -l ''", "", "vxnls: there is no locale \"\"; \"vxnls locale list\" lists them\n", 2},
      {"vxnls zone UTC 0 -l xyzzy", "", "vxnls: there is no locale \"xyzzy\"; \"vxnls locale list\" lists them\n", 2},
      {"LANG=xyzzy_YY TZ=xyzzy vxnls locale list de_DE", "de_DE\n", "", 0},
      {"LANG=xyzzy_YY vxnls format date 0", "",
       "vxnls: LANG: there is no locale \"xyzzy_YY\"; \"vxnls locale list\" lists them\n", 2},
  };
  expect(cases);
}

TEST(Zones, WhereTheyComeFrom) {
  static constexpr Case cases[] = {
      {"vxnls format datetime @0 --pattern '%z %Z'", "+0000 Etc/UTC\n", "", 0},
      {"TZ=:Asia/Tokyo vxnls format datetime @0 --pattern '%z %Z'", "+0900 Asia/Tokyo\n", "", 0},
      {"VXNLS_ZONE=europe/berlin TZ=Asia/Tokyo vxnls format datetime @0 --pattern '%z %Z'", "+0100 Europe/Berlin\n", "",
       0},
      {"VXNLS_ZONE=Europe/Berlin vxnls -z Asia/Calcutta format datetime @0 --pattern '%z %Z'", "+0530 Asia/Kolkata\n",
       "", 0},
      {"vxnls format date 0 -z Berlin", "", "vxnls: there is no time zone \"Berlin\"; did you mean Europe/Berlin?\n",
       2},
      {"VXNLS_ZONE=Nowhere vxnls format date 0", "",
       "vxnls: VXNLS_ZONE: there is no time zone \"Nowhere\"; \"vxnls zone list\" lists them\n", 2},
      {"TZ=Asia/Tokio vxnls format date 0", "",
       "vxnls: TZ: there is no time zone \"Asia/Tokio\"; did you mean Asia/Tokyo?\n", 2},
  };
  expect(cases);
}

// Names are looked up and never opened; what a file says never reaches the terminal as it stands.
TEST(Hostile, NamesAndCells) {
  using namespace std::string_view_literals;
  static const std::string cut = fmt::format("\"{}\"...", std::string(60, 'a'));
  static const std::string no_locale = "vxnls: there is no locale " + cut + "; \"vxnls locale list\" lists them\n";
  static const std::string no_zone = "vxnls: there is no time zone " + cut + "; \"vxnls zone list\" lists them\n";
  const Case cases[] = {
      {"vxnls zone ../../etc/passwd", "",
       "vxnls: there is no time zone \"../../etc/passwd\"; \"vxnls zone list\" lists them\n", 2},
      {"vxnls format date -z /usr/share/zoneinfo/Europe/Berlin 0", "",
       "vxnls: there is no time zone \"/usr/share/zoneinfo/Europe/Berlin\"; \"vxnls zone list\" lists them\n", 2},
      {"TZ=Europe/../Europe/Berlin vxnls format datetime 0", "",
       "vxnls: TZ: there is no time zone \"Europe/../Europe/Berlin\"; \"vxnls zone list\" lists them\n", 2},
      {"vxnls locale show ../de", "", "vxnls: there is no locale \"../de\"; \"vxnls locale list\" lists them\n", 2},
      {"vxnls format date --locale $(printf a%.0s $(seq 10000)) 0", "", no_locale.c_str(), 2},
      {"vxnls zone $(printf a%.0s $(seq 10000))", "", no_zone.c_str(), 2},
      {"vxnls recognise --format csv", R"(standard input: csv, 2 records

n\u{0000}a\u{001B}[31m\n  integer, locale en_US (LANG)
  read    1  50.0 %
  unread  1  50.0 %
unread
  line 4  byte 14  "1\u{0000}"  "\u{0000}" follows the number
)",
       "", 1, "\"n\0a\x1B[31m\n\"\n1\n\"1\0\"\n"sv},
      {"vxnls normalise -q --format csv -c 1:date | tr '\\0' @", "d\n2020-01-02\n2020-01-0@3\n", "", 0,
       "d\n2020-01-02\n2020-01-0\0003\n"sv},
      {"vxnls recognise \"$(printf 'no\\033[2Jthing')\"", "", "vxnls: no\\u{001B}[2Jthing: No such file or directory\n",
       3},
  };
  expect(cases);
}

TEST(Calendar, EveryForm) {
  static constexpr Case cases[] = {
      {"vxnls calendar 2000-02-29 1582-01-01 1582-01-10 20000-12-31",
       "2000-02-29\t14669\t2000060\t60\t3\tTuesday\n"
       "1582-01-01\t-138061\t1582001\t1\t-1\tFriday\n"  // the number is the library's, the name is true
       "1582-01-10\t-138052\t1582010\t10\t1\tSunday\n"
       "20000-12-31\t6589335\t20000365\t365\t3\tTuesday\n",
       "", 0},
      {"vxnls calendar --from julian", "2000-02-29\t14669\t2000060\t60\t3\tTuesday\n\n",
       "vxnls: line 2: \"2001366\": a Julian date is the year, 1582 to 20000, and three digits for the day of the "
       "year: "
       "2000060\n",
       1, "2000060\n2001366\n"},
      {"vxnls calendar --from day 2000-02-29", "", "vxnls: \"2000-02-29\": a day number is an integer\n", 1},
      {"vxnls calendar --from date 14669", "", "vxnls: \"14669\": a date is written 2000-02-29\n", 1},
  };
  expect(cases);
  const auto page = vxcli::Json::parse(run_line("vxnls calendar 14669 --json").out);
  EXPECT_EQ(page["date"], "2000-02-29");
  EXPECT_EQ(page["back"]["day_from_julian"], 14669);
}

TEST(Calendar, DaysInAndOut) {
  // Every 7th day to the end, as day numbers in and dates out, and back.
  std::string numbers;
  std::string dates;
  for (int64_t day = -138061; day <= 745094; day += 7) {  // to the last day of 3999
    const std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::year(1960) / std::chrono::January / 1} +
                                           std::chrono::days(day)};
    numbers += fmt::format("{}\n", day);
    dates += fmt::format("{:04}-{:02}-{:02}\n", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                         static_cast<unsigned>(date.day()));
  }
  EXPECT_EQ(run_line("vxnls format date --pattern %Y-%m-%d", numbers).out, dates);
  EXPECT_EQ(run_line("vxnls calendar | cut -f 2", dates).out, numbers);
}

TEST(Zone, Pages) {
  static constexpr Case cases[] = {
      {"vxnls zone europe/berlin 2026-10-25T02:30",
       "zone          Europe/Berlin\nasked for     europe/berlin\nlocal time    2026-10-25T02:30:00\n"
       "UTC           2026-10-25T00:30:00Z\noffset        +02:00\nabbreviation  CEST\nsummer time   yes\n"
       "note          this local time occurs twice; shown is the first\n",
       "", 0},
      {"vxnls zone Europe/Berlin 2026-03-29T02:30",
       "zone          Europe/Berlin\nlocal time    2026-03-29T02:30:00\nUTC           2026-03-29T01:30:00Z\n"
       "offset        +01:00\nabbreviation  CET\nsummer time   no\n"
       "note          the clocks skip this local time; shown is what was in force before\n",
       "", 0},
      {"vxnls zone Asia/Tokyo 2026-07-01 2026-07-01Z", "",
       "vxnls: \"2026-07-01Z\": at byte 10: \"T\" and a time, or the end is expected, not \"Z\"\n", 1},
      {"vxnls zone Asia/Tokio", "", "vxnls: there is no time zone \"Asia/Tokio\"; did you mean Asia/Tokyo?\n", 2},
      {"vxnls zone list tokio", "", "vxnls: no time zone has \"tokio\" in its name\n", 2},
  };
  expect(cases);
  EXPECT_EQ(run_line("vxnls zone").out.substr(0, 22), "zone          Etc/UTC\n");
  const auto list = vxcli::Json::parse(run_line("vxnls zone list --json").out);
  EXPECT_GT(list.size(), 500U);
  EXPECT_EQ(run_line("vxnls zone list | sort -c").code, 0);  // in byte order
}

TEST(Locale, ListShowCheck) {
  const auto list = vxcli::Json::parse(run_line("vxnls locale list --json").out);
  EXPECT_GT(list.size(), 700U);
  const auto pl = vxcli::Json::parse(run_line("vxnls locale show pl_PL --json").out);
  EXPECT_EQ(pl["locale"]["ownName"], "polski (Polska)");
  EXPECT_EQ(pl["patterns"]["datePattern"], "%d.%m.%Y");
  EXPECT_EQ(pl["examples"]["datePattern2"], "21 listopada 2026");
  EXPECT_EQ(pl["days"]["dayNames"][0], "niedziela");
  EXPECT_EQ(pl["months"]["altMonthNames"][11], "gru");
  EXPECT_EQ(pl["numbers"]["decimalPoint"], ",");
  EXPECT_EQ(pl["currency"]["isoCode"], "PLN");
  EXPECT_EQ(pl["customs"]["firstWeekDay"], "Monday");
  EXPECT_EQ(pl["periods"]["weekPattern1"], "W%V %Y");
  static constexpr Case cases[] = {
      {"vxnls locale list qqq", "",
       "vxnls: no locale has \"qqq\" in its name; with --details the names of languages and regions are searched, "
       "too\n",
       2},
      {"vxnls locale show de-AT | head -n 1", "de_AT  German (Austria)\n", "", 0},
      {"vxnls locale show xyzzy", "", "vxnls: there is no locale \"xyzzy\"; \"vxnls locale list\" lists them\n", 2},
      {"vxnls locale check de_DE xyzzy", "", "vxnls: there is no locale \"xyzzy\"; \"vxnls locale list\" lists them\n",
       2},
  };
  expect(cases);
}

TEST(Locale, EveryLocaleKeepsTheRules) {
  const auto result = run_line("vxnls locale check | grep -v ' fallback '");
  EXPECT_NE(result.out.find(" locales checked: 0 break a rule, "), std::string::npos) << result.out;
  EXPECT_EQ(result.out.find("BROKEN"), std::string::npos) << result.out;
  EXPECT_EQ(run_line("vxnls locale check >/dev/null").code, 0);
}

TEST(Descriptors, FailuresOfReadingAndWriting) {
  static constexpr Case cases[] = {
      {"vxnls format date 0 >/dev/full", "", "vxnls: cannot write standard output: No space left on device\n", 3},
      {"vxnls zone list >&-", "", "vxnls: cannot write standard output: Bad file descriptor\n", 3},
      {"vxnls format date <&-", "", "vxnls: cannot read standard input: Bad file descriptor\n", 3},
      {"vxnls format date </", "", "vxnls: cannot read standard input: Is a directory\n", 3},
      {"vxnls format date nonsense 2>&-", "", "", 1},
      {"vxnls format date nonsense 2>/dev/full", "", "", 1},
      {"(yes 0 | head -n 100000 | vxnls format date; echo $? >&2) | head -n 1", "01/01/1960\n",
       "vxnls: cannot write standard output: Broken pipe\n3\n", 0},
      // A disk that is full in the middle.
      {"ulimit -f 8; seq 1 10000 | (trap '' XFSZ; vxnls format date >\"$(mktemp)\")", "",
       "vxnls: cannot write standard output: File too large\n", 3},
  };
  expect(cases);
}

TEST(Host, Failures) {
  namespace fs = std::filesystem;
  const fs::path libraries = fs::path(VXNLS_COMMAND_FOLDER).parent_path() / "lib";
  const auto in_folder = [&](const char* kept) {
    return fmt::format(
        "d=$(mktemp -d); for f in {}; do cp {}/$f $d; done; LD_LIBRARY_PATH=$d vxnls format date 0 2>&1 | sed "
        "\"s,$d,D,g\"; "
        "LD_LIBRARY_PATH=$d vxnls format date 0 2>/dev/null; echo $?; rm -r $d",
        kept, libraries.string());
  };
  EXPECT_EQ(run_line(in_folder("libvxhost.so.6")).out.substr(0, 29), "vxnls: the host cannot start:");
  EXPECT_TRUE(run_line(in_folder("libvxhost.so.6")).out.ends_with("\n4\n"));
  EXPECT_TRUE(run_line(in_folder("libvxhost.so.6 libvxnlsloc.so vxemsg.so")).out.ends_with("\n4\n"));
}

TEST(Version, NamesEverything) {
  const std::string text = run_line("vxnls --version").out;
  EXPECT_TRUE(text.starts_with("vxnls 6.1.0 (libvxnlsloc V0601R0D")) << text;
  for (const char* part : {"; ICU ", "; CLDR ", "; Unicode ", "; tz 20"})
    EXPECT_NE(text.find(part), std::string::npos) << part;
}

}  // namespace
