// vxnls recognise and vxnls normalise, as a user runs them.
#include "tests/cli/command_line.h"

namespace vxtest {
namespace {

constexpr std::string_view orders =
    "id,when,amount\r\n1,31.12.2021,\"1.234,50\"\r\n\"2\",05.03.2021,\"-99,9\"\r\n3,32.01.2021,12\r\n4,,x\r\n5";

TEST(Normalise, ChangesTheChosenCellsAndNoOtherByte) {
  expect({
      {"vxnls normalise -c when:date,amount:number -q",
       "id,when,amount\r\n1,2021-12-31,\"1234.50\"\r\n\"2\",2021-03-05,\"-99.9\"\r\n3,32.01.2021,12\r\n4,,x\r\n5", "",
       1, orders},
      {"vxnls normalise -c when:date --invalid blank -q",
       "id,when,amount\r\n1,2021-12-31,\"1.234,50\"\r\n\"2\",2021-03-05,\"-99,9\"\r\n3,,12\r\n4,,x\r\n5", "", 1,
       orders},
      {"vxnls normalise -c 2:date --to '%#d %B %Y' --invalid mark --mark '!' -q",
       "id,when,amount\r\n1,31 December 2021,\"1.234,50\"\r\n\"2\",5 March "
       "2021,\"-99,9\"\r\n3,!32.01.2021,12\r\n4,,x\r\n5",
       "", 1, orders},
      {"vxnls normalise -c amount:number --to-locale de_CH --invalid drop -q",
       "id,when,amount\r\n1,31.12.2021,\"1’234.50\"\r\n\"2\",05.03.2021,\"-99.9\"\r\n3,32.01.2021,12\r\n5", "", 1,
       orders},
      {"vxnls normalise -c when:date --invalid fail -q",
       "id,when,amount\r\n1,2021-12-31,\"1.234,50\"\r\n\"2\",2021-03-05,\"-99,9\"\r\n",
       "vxnls: standard input: line 4, byte 67: when: \"32.01.2021\": \"32\" is not a day of a month (1 to 31), "
       "reading "
       "%#d\n",
       1, orders},
      {"vxnls normalise --format lines -q", "2021-12-25\n2021-04-03\n", "", 0, "25/12/21\n03/04/21\n"},
      {"vxnls normalise -q --format jsonl -c n:number -l de_DE",
       "{\"n\":\"1234.5\"}\n{\"n\":\"2.25\"}\n{\"n\":1.500}\n", "", 0,
       "{\"n\":\"1.234,5\"}\n{\"n\":\"2,25\"}\n{\"n\":1.500}\n"},
      {"vxnls normalise -q --format jsonl -c n:number -l de_DE --to-locale de_DE",
       "{\"n\":\"1.234,5\"}\n{\"n\":\"2,25\"}\n{\"n\":\"1,500\"}\n", "", 0,
       "{\"n\":\"1.234,5\"}\n{\"n\":\"2,25\"}\n{\"n\":1.500}\n"},
      {"vxnls normalise --format tsv-escaped -c b:date -q", "a\tb\nx\\ty\t2021-12-25\n", "", 0,
       "a\tb\nx\\ty\t25/12/21\n"},
      {"vxnls normalise --format jsonl -c n,w:date -q",
       "{ \"n\": \"1234.5\", \"w\":\"2021-12-25\" }\n[1]\n{\"w\":null}\n", "", 1,
       "{ \"n\": \"1.234,5\", \"w\":\"25\\/12\\/21\" }\n[1]\n{\"w\":null}\n"},
  });
}

TEST(Normalise, TellsWhatWasNotReadAndEndsAccordingly) {
  expect({
      {"vxnls normalise -c when:date,amount:number --rejects /dev/stderr -q > /dev/null", "",
       "{\"file\":\"standard input\",\"line\":4,\"record\":3,\"byte\":67,\"column\":\"when\",\"kind\":\"date\","
       "\"value\":\"32.01.2021\",\"outcome\":\"unread\",\"position\":0,\"length\":2,"
       "\"expected\":\"\\\"32\\\" is not a day of a month (1 to 31), reading %#d\",\"status\":\"0x803fe80b\"}\n"
       "{\"file\":\"standard input\",\"line\":5,\"record\":4,\"byte\":85,\"column\":\"amount\",\"kind\":\"number\","
       "\"value\":\"x\",\"outcome\":\"unread\",\"position\":0,\"length\":1,"
       "\"expected\":\"\\\"x\\\" stands where a digit is wanted\",\"status\":\"0x803fe810\"}\n",
       1, orders},
      {"vxnls normalise -c when:date,amount:number -q --max-unread 2 > /dev/null", "", "", 0, orders},
      {"vxnls normalise -c when:date,amount:number -q --max-unread 1 > /dev/null", "", "", 1, orders},
      {"vxnls normalise -c when:date,amount:number -q --max-unread 29% > /dev/null", "", "", 0, orders},
      {"vxnls normalise -c when:date,amount:number -q --max-unread 28% > /dev/null", "", "", 1, orders},
      {"vxnls normalise -c when:date,amount:number -q --ok-unread > /dev/null", "", "", 0, orders},
      {"vxnls normalise --format lines -c 1:date", "03/04/21\n",
       "vxnls: note: 1: date, locale en_US (LANG); 0 read, 1 ambiguous; the first on line 1, byte 0: \"03/04/21\": it "
       "reads differently with the day and with the month first, and nothing in the column decides; --day-first or "
       "--month-first does\n",
       1, "03/04/21\n"},
  });
}

/// A decision is held: what comes later and contradicts stays as it is.
TEST(Normalise, HoldsItsDecision) {
  expect({
      {"vxnls normalise --format lines -c 1:date --sample 1 -q", "2021-12-25\n12/25/21\n2021-04-03\n", "", 1,
       "25/12/21\n12/25/21\n03/04/21\n"},
      {"d=$(mktemp -d) && cd $d && printf '25/12/21\\n' | vxnls recognise --format lines --emit-profile p > /dev/null "
       "&& "
       "printf '03/04/21\\n12/25/21\\n' | vxnls normalise --format lines --profile p -q",
       "2021-04-03\n12/25/21\n", "", 1},
      {"d=$(mktemp -d) && cd $d && printf '03/04/21\\n25/12/21\\n' > f && "
       "vxnls normalise --format lines --sample all -q f",
       "2021-04-03\n2021-12-25\n"},
      {"vxnls normalise --format lines --day-first -q", "2021-04-03\n", "", 0, "03/04/21\n"},
      {"vxnls normalise --format lines -l en_GB -q", "2021-04-03\n", "", 0, "03/04/21\n"},
      {"vxnls normalise --format lines -c 1:number --decimal comma -q", "1.234\n", "", 0, "1,234\n"},
      {"vxnls normalise --format lines -c 1:number --decimal point -q", "1234\n", "", 0, "1,234\n"},
  });
}

TEST(Normalise, RefusesWhatCannotBeMeant) {
  expect({
      {"vxnls normalise", "", "vxnls: say which columns with -c, as -c when:date,amount:number, or with --profile\n", 2,
       orders},
      {"vxnls normalise -c wen", "", "vxnls: no column \"wen\"; did you mean when?\n", 2, orders},
      {"vxnls normalise -c note", "",
       "vxnls: column \"note\": most of its values are neither dates nor numbers; say what it should be, as -c "
       "note:date\n",
       2, "note\nhello\nworld\n"},
      {"vxnls normalise -c when --day-first --month-first", "",
       "vxnls: --day-first and --month-first exclude each other\n", 2, orders},
      {"d=$(mktemp -d) && cd $d && printf 'a\\n1\\n' > f && vxnls normalise -c a f >> f; cat f", "a\n1\n",
       "vxnls: f is both the input and the output\n"},
      {"vxnls normalise -c a /nowhere", "", "vxnls: /nowhere: No such file or directory\n", 3},
      {"vxnls normalise -c id --rejects /nowhere/r", "", "vxnls: /nowhere/r: No such file or directory\n", 3, orders},
  });
}

TEST(Normalise, TheSameBytesThroughParallel) {
  expect(
      {{"d=$(mktemp -d) && cd $d && export HOME=$d\n"
        "for i in $(seq 2000); do echo \"$i,$((i % 28 + 1)).$((i % 13)).$((1990 + i % 40)),\\\"$i,5\\\"\"; done > f\n"
        "vxnls recognise -q --no-header -l de_DE --emit-profile p f > report\n"
        "run='vxnls normalise -q --no-header --profile p'; $run f > whole\n"
        "LC_ALL=C parallel --pipe --keep-order --block 3k --jobs 3 $run < f > parts\n"
        "wc -l < whole; cmp whole parts && echo same; cmp -s f whole || echo rewritten; rm -r $d",
        "2000\nsame\nrewritten\n"}});
}

TEST(Normalise, AFileTakesItsPlaceWhenItIsWhole) {
  expect(
      {{"d=$(mktemp -d) && cd $d && echo old > f && chmod 640 f && ln -s f link && umask 077\n"
        "vxnls normalise -q -c when:date --rejects link > out; stat -c '%N %a' f link; wc -l < f\n"
        "vxnls normalise -q -c when:date --rejects new < out > out2; stat -c %a new; rm -r $d",
        "'f' 640\n'link' -> 'f' 777\n1\n600\n", "", 0, orders},
       // What is beside it goes with a signal, too.
       {"d=$(mktemp -d) && cd $d && echo old > f && mkfifo pipe\n"
        "vxnls normalise -q -c a:date --sample 1 --rejects f < pipe > out & exec 3> pipe; printf 'a\\nx\\ny\\n' >&3\n"
        "until [ $(ls | wc -l) = 4 ]; do sleep 0.02; done\n"
        "kill -TERM $!; wait $! 2> /dev/null; echo $?; ls; cat f; rm -r $d",
        "143\nf\nout\npipe\nold\n"}});
}

TEST(Recognise, TellsKindFormsAndWhatDecides) {
  expect({
      {"vxnls recognise -c when", R"(standard input: csv, 5 records
1 record is not as expected; the first: line 6, byte 89: fewer cells than expected

when  date, day-first (decided by values of the column), locale en_US (LANG)
  read    2  50.0 %
  unread  1  25.0 %
  empty   1  25.0 %
  1 value reads only with the day first (the first "31.12.2021" on line 2)
  1 value could be read with the day or the month first
forms
  %d.%m.%Y  2  66.7 %  as "31.12.2021" on line 2
unread
  line 4  byte 67  "32.01.2021"  "32" is not a day of a month (1 to 31), reading %#d
)",
       "", 1, orders},
      {"vxnls recognise --json -j 3 | grep -E '\"(records|kind|read|unread)\":' | tr -d ' \\n'",
       "\"records\":5,\"kind\":\"integer\",\"read\":5,\"unread\":0,\"kind\":\"date\",\"read\":2,\"unread\":1,"
       "\"kind\":\"date\",\"kind\":\"number\",\"read\":3,\"unread\":1,",
       "", 0, orders},
      {"vxnls recognise --format lines -l auto --locales de_DE,fr_FR | grep -A2 locales",
       "locales\n  fr_FR  2  100 %\n  de_DE  0  0.0 %\n", "", 0, "5 mars 2021\n6 avril 2021\n"},
      {"vxnls recognise -l autto", "", "vxnls: there is no locale \"autto\"; \"vxnls locale list\" lists them\n", 2},
      {"vxnls recognise --html /dev/full -q", "", "vxnls: cannot write /dev/full: No space left on device\n", 3,
       orders},
  });
}

}  // namespace
}  // namespace vxtest
