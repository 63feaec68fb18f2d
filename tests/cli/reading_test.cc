// vxnls parse, and the formats of numbers: what is printed, and how refusals are told.
#include <gtest/gtest.h>

#include "cli/json.h"
#include "tests/cli/command_line.h"

namespace {

using vxtest::run_line;
using Case = vxtest::CommandCase;
using vxtest::expect;

TEST(ParseCommand, DatesTimesAndPeriods) {
  static constexpr Case cases[] = {
      {"vxnls parse date 31.12.2021 -l de_DE", "2021-12-31\n"},
      {"vxnls parse date 'Dec 31, 2021' -l en_US --style medium", "2021-12-31\n"},
      {"vxnls parse date 'Q3 2021' --as quarter", "2021-07-01\n"},
      {"vxnls parse date '3月 2022' --as month -l ja_JP", "2022-03-01\n"},
      {"vxnls parse date 'Week1 2021' --as week-sunday", "2021-01-03\n"},
      {"vxnls parse date 31.12.2021 -l de_DE --to-locale ja_JP", "2021/12/31\n"},
      {"vxnls parse date '31.12.2021 x' -l de_DE --rest", "2021-12-31\n"},
      {"vxnls parse time 10:30:15.250 --pattern '%H:%M:%S.%s'", "10:30:15.250\n"},
      {"vxnls parse datetime '2021-03-28 03:30:00 +0000' -z Europe/Berlin --pattern '%Y-%m-%d %H:%M:%S %z'",
       "2021-03-28T05:30:00\n"},
      {"vxnls parse date --lenient -l de_DE", "2021-12-31\n\n2022-05-01\n",
       "vxnls: line 2: \"nonsense\": at byte 0: \"nonsense\" is not the name of a month, reading %b\n", 1,
       "31.12.2021\nnonsense\n1. Mai 2022"},
  };
  expect(cases);
}

TEST(ParseCommand, RefusalsSayWhereAndWhy) {
  static constexpr Case cases[] = {
      {"vxnls parse date 2021-13-05 --lenient", "",
       "vxnls: \"2021-13-05\": at byte 5: \"13\" is not a month (1 to 12), reading %m\n", 1},
      {"vxnls parse date 5/ --pattern %d/%m/%Y", "",
       "vxnls: \"5/\": at byte 0: \"5\" stands where %d wants 2 positions; %#d takes one\n", 1},
      {"vxnls parse date 2021-02-31 --lenient", "", "vxnls: \"2021-02-31\": there is no day 2021-02-31\n", 1},
      {"vxnls parse date '31.12.2021 x' -l de_DE", "",
       "vxnls: \"31.12.2021 x\": at byte 10: \" x\" follows what was read; --rest allows it\n", 1},
      {"vxnls parse date 31.12. -l de_DE", "",
       "vxnls: \"31.12.\": at byte 6: the text ends where a year is wanted, reading %Y\n", 1},
      {"vxnls parse time '13:00 pm' -l en_US --lenient", "",
       "vxnls: \"13:00 pm\": at byte 0: hour 13 does not go with AM or PM (1 to 12 would)\n", 1},
      {"vxnls parse date 1 --pattern %Q", "", "vxnls: --pattern: the pattern holds %Q, which reads nothing here\n", 2},
      {"vxnls parse date 1 --pattern %d --as month", "", "vxnls: --pattern and --as exclude each other\n", 2},
  };
  expect(cases);
}

TEST(ParseCommand, AmbiguityIsTold) {
  const auto json = [](const char* line) { return vxcli::Json::parse(run_line(line).out); };
  const auto british = json("vxnls parse date 03/04/2021 -l en_GB --json");
  EXPECT_EQ(british["text"], "2021-04-03");
  EXPECT_EQ(british["ambiguous"], true);
  EXPECT_EQ(british["others"][0]["text"], "2021-03-04");
  EXPECT_EQ(british["others"][0]["pattern"], "%m/%d/%Y");
  EXPECT_EQ(british["consumed"], 10);
  EXPECT_EQ(json("vxnls parse date 13/04/2021 -l en_GB --json")["ambiguous"], false);
  EXPECT_NE(run_line("vxnls parse date 03/04/2021 -l en_GB --explain").out.find("ambiguous  2021-03-04"),
            std::string::npos);
}

TEST(NumberCommands, EveryForm) {
  static constexpr Case cases[] = {
      {"vxnls format number 1234567.891 -l de_DE --decimals 2 --group", "1.234.567,89\n"},
      {"vxnls format number 1234567.891 -l hi_IN --decimals 2 --group", "12,34,567.89\n"},
      {"vxnls format number 0.1 .A . -l en_US", "0.1\nA\n.\n"},
      {"vxnls format number inf -- -inf", "Inf\n-Inf\n"},
      {"vxnls format number 3.14159 --decimals 2 --width 10 --zero-pad --plus", "+000003.14\n"},
      {"vxnls format number 3.14159 --flags 0x1000 --width 8 --decimals 3", "   3.142\n"},
      {"vxnls format number 0.00012345 --best --width 12", "  0.00012345\n"},
      {"vxnls format number 12345.678 --exponent --decimals 3", "1.235E+04\n"},
      {"vxnls format number . --missing -", "-\n"},
      {"vxnls format percent 0.5 -l de_DE", "50%\n"},
      {"vxnls format percent --parentheses --decimals 1 -- -0.125", "(12.5%)\n"},
      {"vxnls format currency 1234.5 -l fr_FR", "€1\u00A0234,50\n"},
      {"vxnls format integer 255 --hex --prefix", "0xff\n"},
      {"vxnls format integer 18446744073709551615 --group", "18,446,744,073,709,551,615\n"},
      {"vxnls format integer -- -9223372036854775808", "-9223372036854775808\n"},
      {"vxnls parse number 1.234.567,89 -l de_DE", "1234567.89\n"},
      {"vxnls parse number .A ._", ".A\n._\n"},
      {"vxnls parse number 0.1 --bits", "0x3fb999999999999a\n"},
      {"vxnls parse integer 0xFF --hex", "255\n"},
      {"vxnls parse integer 18446744073709551615 --type uint64", "18446744073709551615\n"},
      {"vxnls parse number 1.2,3", "", "vxnls: \"1.2,3\": at byte 3: a group separator after the decimal point\n", 1},
      {"vxnls parse number 12abc", "", "vxnls: \"12abc\": at byte 2: \"a\" follows the number\n", 1},
      {"vxnls parse number 1e999", "", "vxnls: \"1e999\": at byte 0: \"1e999\" is too large\n", 1},
      {"vxnls parse integer 2147483648 --type int32", "",
       "vxnls: \"2147483648\": at byte 0: \"2147483648\" is too large\n", 1},
      {"vxnls parse integer 1.5 -l en_US", "",
       "vxnls: \"1.5\": at byte 1: a decimal point in a whole number; --fraction drops what follows it\n", 1},
      {"vxnls format number abc", "",
       "vxnls: \"abc\": not a number as 1234567.891, 1e6, inf, or a missing value as . or .A\n", 1},
      {"vxnls format number 1 --fixed", "", "vxnls: a fixed field wants --width, 1 to 32\n", 2},
      {"vxnls format number 1 --width x", "", "vxnls: --width \"x\": a number from 0 to 512 is wanted\n", 2},
  };
  expect(cases);
}

}  // namespace
