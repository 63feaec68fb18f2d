// The command as a user runs it: lines of the shell, what they print and how the command ends.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/command_line.h"
#include "tests/host/temporary_folder.h"

namespace {

/// Notes how each vxnls ended, and shows "\r", the lack of a last line end, and messages behind "! ".
constexpr const char* frame = R"~(cd {0}; mkdir work notes; cd work; VXNLS={1}/vxnls LIBRARIES={1}/../lib
cat >../notes/vxnls <<'end'
#!/bin/sh
{1}/vxnls "$@"
code=$?
printf ' %d' $code >>$0.codes
exit $code
end
chmod +x ../notes/vxnls; : >../notes/vxnls.codes
printf 'id,when,amount\r\n1,31.12.2021,"1.234,50"\r\n"2",05.03.2021,"-99,9"\r\n3,32.01.2021,12\r\n4,,x\r\n5' >orders
(PATH={0}/notes:$PATH
{2}) >../out 2>../err
sed 's/\r/\\r/g' ../out; [ -z "$(tail -c 1 ../out)" ] || echo '<end>'
sed 's/^/! /' ../err; grep -q '[1-9]' ../notes/vxnls.codes && echo "=$(cat ../notes/vxnls.codes)")~";

/// Runs what stands behind "$ " and "> ", in a folder that holds `orders` and nothing else. Below it stands what that
/// shows, and behind "=" how each vxnls ended, unless all were 0.
void expect(const char* transcript) {
  struct Step {
    std::string line, shown;
  };
  std::vector<Step> steps;
  std::istringstream lines(transcript);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("$ ")) steps.push_back({line.substr(2), ""});
    else if (line.starts_with("> ")) steps.back().line += '\n' + line.substr(2);
    else if (!steps.empty()) steps.back().shown += line + '\n';
  }
  EXPECT_FALSE(steps.empty());
  for (const Step& step : steps) {
    const vxtest::TemporaryFolder folder;
    const auto result =
        vxtest::run_line(fmt::format(fmt::runtime(frame), folder.path(), VXNLS_COMMAND_FOLDER, step.line));
    EXPECT_EQ(result.out + result.err, step.shown) << step.line;
  }
}

TEST(Commands, Format) {
  expect(R"~(
$ vxnls format date --pattern %Y-%m-%d 0 -1 -138061 6589335 2026-07-01T23:30 \
>   2026-07-01T23:30Z -z Asia/Tokyo | paste -sd,
> vxnls format time --pattern %H:%M:%S 14:05 86399.9 86400 -1 -0.5 2026-11-21T14:05:09.9 | paste -sd,
> vxnls format datetime --pattern '%Y-%m-%d %H:%M:%S' 2110889109 @-0.5 2026-11-21 ' 2026-11-21T10:00 ' | paste -sd,
> # The second of two equal local times keeps its offset, also when the pattern writes it in other ways.
> vxnls format datetime --pattern '%H:%M %z %?Z %#z' -z Europe/Berlin 2026-10-25T00:30Z 2026-10-25T01:30Z
1960-01-01,1959-12-31,1582-01-01,0000-12-31,2026-07-01,2026-07-02
14:05:00,23:59:59,00:00:00,23:59:59,23:59:59,14:05:09
2026-11-21 14:05:09,1969-12-31 23:59:59,2026-11-21 00:00:00,2026-11-21 10:00:00
02:30 +0200 +0200 Europe/Berlin
02:30 +0100 +0100 Europe/Berlin
$ vxnls format datetime 2026-11-05T09:05:07 -l en_US --style long --time-style short
> for p in "$(printf '\377')" '日%Q' "$(printf %061d 0)"; do vxnls format date 0 --pattern "$p" 2>&1 | cut -c 1-62; done
November 5, 2026 9:05 AM
vxnls: --pattern "\xFF": it is not UTF-8
vxnls: --pattern "日%Q": at byte 3: "%Q" is no directive; "vx
vxnls: --pattern "00000000000000000000000000000000000000000000
= 0 2 2 2
$ printf '\357\273\2770\r\nx\n\n2026-02-30\0\n1' | vxnls format date -l en_GB
> (head -c 65536 /dev/zero; echo; head -c 200000 /dev/zero) | tr '\0' 1 | vxnls format date 2>&1 | sed 's/1\{60\}/.../'
> printf '0\nx\377\n' | vxnls format date -l en_GB --json
01/01/1960



02/01/1960
vxnls: line 1: "..."...: a day number is -138061 (1582-01-01) to 6589335 (20000-12-31)

vxnls: line 2: "..."...: longer than 65536 bytes

{"value":"0","text":"01/01/1960","date":"1960-01-01","day":0,"offset":"+00:00","locale":"en_GB","zone":"Etc/UTC"}
{"value":"x�","line":2,"error":"a date is 2026-11-21, a day number or now"}
! vxnls: line 2: "x": a date is 2026-11-21, a day number or now
! vxnls: line 3: "": no value
! vxnls: line 4: "2026-02-30\u{0000}": at byte 10: "T" and a time, or the end is expected, not "\u{0000}"
! vxnls: line 2: "x\xFF": a date is 2026-11-21, a day number or now
= 1 1 1
)~");
}

TEST(Commands, LocalesAndZones) {
  expect(R"~(
$ for settings in 'LC_TIME=fr_CA LANG=de_DE.UTF-8' 'LC_ALL=ja_JP LC_TIME=fr_CA LC_NUMERIC=de_DE' \
>   'VXNLS_LOCALE=sv LC_ALL=ja_JP' 'LC_ALL= LC_TIME=pl'; do
>   export $settings
>   echo $(vxnls format date 0; vxnls format number 1.5; echo 1 | vxnls recognise --format lines | grep -o ' loc.*')
>   unset LANG LC_ALL LC_TIME LC_NUMERIC VXNLS_LOCALE
> done
> LANG=xyzzy_YY TZ=xyzzy vxnls locale list de_DE; vxnls format date 0 -l de_US; LANG=xyzzy_YY vxnls format date 0
1960-01-01 1,5 locale fr_CA (LC_TIME)
1960/01/01 1.5 locale ja_JP (LC_ALL)
1960-01-01 1,5 locale sv (VXNLS_LOCALE)
01.01.1960 1.5 locale pl (LC_TIME)
de_DE
01.01.1960
! vxnls: note: there is no locale "de_US"; de stands in for it
! vxnls: LANG: there is no locale "xyzzy_YY"; "vxnls locale list" lists them
= 0 0 0 0 0 0 0 0 0 0 0 0 0 0 2
$ zone() { echo $(vxnls $* zone | head -n 1); }
> (zone; export TZ=:Asia/Tokyo; zone; export VXNLS_ZONE=europe/berlin; zone; zone -z Asia/Calcutta) | paste -sd,
> vxnls format date 0 -z Berlin; VXNLS_ZONE=Nowhere vxnls format date 0; TZ=Asia/Tokio vxnls format date 0
> # Names are looked up and never opened, and what a file says never reaches the terminal as it stands.
> vxnls format date -z /usr/share/zoneinfo/UTC 0; vxnls recognise "$(printf 'no\033[2Jthing')"
> a=$(printf %010000d 0); (vxnls format date -l $a 0; vxnls zone $a) 2>&1 | sed 's/0\{60\}/.../'
> vxnls zone Europe/Berlin 2026-03-29T02:30 | grep note
> vxnls locale show pl_PL --json | grep -E 'ownName|weekPattern1|isoCode|firstWeekDay' | tr -d '\n '; echo
> vxnls locale check > checked; sed -n 's/^[0-9][0-9][0-9]* \(.*\), [0-9]* have/\1/p' checked; grep BROKEN checked
> vxnls --version | grep -Eo '^vxnls 6.1.0 .libvxnlsloc V0601R0D|; (ICU|CLDR|Unicode|tz) ' | tr -d '\n'
zone Etc/UTC,zone Asia/Tokyo,zone Europe/Berlin,zone Asia/Kolkata
vxnls: there is no locale "..."...; "vxnls locale list" lists them
vxnls: there is no time zone "..."...; "vxnls zone list" lists them
note          the clocks skip this local time; shown is what was in force before
"ownName":"polski(Polska)","weekPattern1":"W%V%Y","isoCode":"PLN","firstWeekDay":"Monday",
locales checked: 0 break a rule entries that fell back
vxnls 6.1.0 (libvxnlsloc V0601R0D; ICU ; CLDR ; Unicode ; tz <end>
! vxnls: there is no time zone "Berlin"; did you mean Europe/Berlin?
! vxnls: VXNLS_ZONE: there is no time zone "Nowhere"; "vxnls zone list" lists them
! vxnls: TZ: there is no time zone "Asia/Tokio"; did you mean Asia/Tokyo?
! vxnls: there is no time zone "/usr/share/zoneinfo/UTC"; "vxnls zone list" lists them
! vxnls: no\u{001B}[2Jthing: No such file or directory
= 0 0 0 0 2 2 2 2 3 2 2 0 0 0 0
)~");
}

TEST(Commands, ParseAndNumbers) {
  expect(R"~(
$ vxnls parse date 'Dec 31, 2021' --style medium --to-locale ja_JP; vxnls parse time 1:2.250 --pattern '%#H:%#M.%s'
> vxnls parse date 31.12. -l de_DE; vxnls parse time '13:00 pm' -l en_US --lenient
> vxnls parse datetime '1582-01-01 00:30 +0200' --pattern '%Y-%m-%d %H:%M %z'
2021/12/31
01:02:00.250
! vxnls: "31.12.": at byte 6: the text ends where a year is wanted, reading %Y
! vxnls: "13:00 pm": at byte 0: hour 13 does not go with AM or PM (1 to 12 would)
! vxnls: "1582-01-01 00:30 +0200": outside of 1582-01-01 to 20000-12-31
= 0 0 1 1 1
$ vxnls parse date 03/04/2021 -l en_GB --json | grep -o '"ambiguous.*' | cut -c 1-116
> vxnls parse date 'Q0 2021' --as quarter; vxnls parse date '100%' --pattern '%d%%'
"ambiguous":true,"others":[{"pattern":"%m/%d/%Y","source":"a common form of dates","lenient":true,"start":0,"end":10
! vxnls: "Q0 2021": at byte 1: "0" is not a quarter (1 to 4), reading %o
! vxnls: "100%": at byte 2: "0" stands where "%" is wanted
= 0 1 1
$ vxnls format number 0.1 .A . inf -- -inf | paste -sd,
> (vxnls format number 3.14159 --decimals 2 --width 10 --zero-pad --plus; vxnls format number 0.00012345 --best --width 12
>  vxnls format number 1.5 --flags 0x1000 --width 8 --decimals 3
>  vxnls format number 12345.678 --exponent --decimals 3) | paste -sd,
> (vxnls format integer 18446744073709551615 --group; vxnls format integer -- -9223372036854775808
>  vxnls parse number .A ._; vxnls parse integer 0xFF --hex
>  vxnls parse integer 18446744073709551615 --type uint64) | paste -sd,
> vxnls parse integer 2147483648 --type int32
0.1,A,.,Inf,-Inf
+000003.14,  0.00012345,   1.500,1.235E+04
18,446,744,073,709,551,615,-9223372036854775808,.A,._,255,18446744073709551615
! vxnls: "2147483648": at byte 0: "2147483648" is too large
= 0 0 0 0 0 0 0 0 0 0 1
)~");
}

TEST(Commands, Texts) {
  expect(R"~(
$ printf 'a\377z' | vxnls transcode --on-error skip -q; vxnls transcode /dev/null > /dev/full
> vxnls compare abc 'abc  ' --mode code-points; vxnls compare é é --mode normalised
> vxnls compare grün grüz | tail -n 1; vxnls compare "$(printf '\377')" grün
> yes 'Grüße 😀 日' | head -n 100000 > text; from=utf-8
> for to in utf-16le modified-utf-8 utf-32be utf-16be utf-32le utf-8; do
>   vxnls transcode --from $from --to $to text > new; mv new text; from=$to; done; uniq -c text
az-1
0
they part at character 4 (byte 4): U+006E "n" and U+007A "z"
 100000 Grüße 😀 日
! vxnls: "\xFF": it is not UTF-8
= 1 0 0 0 0 1 0 0 0 0 0 0
)~");
}

TEST(Commands, Normalise) {
  expect(R"~(
$ vxnls normalise -c when:date,amount:number -q < orders
> echo; vxnls normalise -c when:date --invalid blank -q orders | sed -n 4p
> vxnls normalise -c 2:date --to '%#d %B %Y' --invalid mark --mark '!' -q orders | sed -n 4p
> # A record that is dropped, or that ends all, has nothing of it, also when a cell was rewritten already.
> sed 's/4,,x/4,1.1.2021,x/; s/32.01/31.01/' orders > changed
> vxnls normalise -c when:date,amount:number --invalid drop -q changed | tail -n 2; echo
> vxnls normalise -c when:date,amount:number --invalid fail -q -j 2 changed | tail -n 1
> printf '{"n":"1.234,5", "w" :"25\\/12\\/21"}\n[1]\n{"n":1.500,"w":null}\n' > n
> vxnls normalise -q --format jsonl -c n:number,w:date n
> printf 'a\tb\nx\\ty\t25/12/21\n' | vxnls normalise --format tsv-escaped -c b:date -q
id,when,amount\r
1,2021-12-31,"1234.50"\r
"2",2021-03-05,"-99.9"\r
3,32.01.2021,12\r
4,,x\r
5
3,,12\r
3,!32.01.2021,12\r
3,2021-01-31,12\r
5
3,2021-01-31,12\r
{"n":"1234.5", "w" :"2021-12-25"}
[1]
{"n":1.500,"w":null}
a	b
x\ty	2021-12-25
! vxnls: changed: line 5, byte 93: amount: "x": "x" stands where a digit is wanted
= 1 1 1 1 1 1 0
$ vxnls normalise -c when:date,amount:number --rejects rejects -q < orders > out; fold -w 118 rejects
> for limit in 2 29% 28%; do vxnls normalise -c when:date,amount:number -q --max-unread=$limit orders > out; done
> # A decision is held: what comes later and contradicts stays as it is.
> printf '25/12/21\n12/25/21\n03/04/21\n' > f
> vxnls normalise --format lines -c 1:date --sample 1 -q f | paste -sd,
> head -n 1 f | vxnls recognise --format lines --emit-profile p > out
> tail -n 2 f | vxnls normalise --format lines --profile p --rejects q -q | paste -sd,
> sed -i 's/"locale": ".*"/"locale": "xx"/' p; vxnls normalise --format lines --profile p f
> (echo 12/25/21; head -n 2 f; echo 03/04/21) | vxnls normalise --format lines -c 1:date --rejects r -q > out
> grep -ho '"value[^,]*,"outcome[^,]*' q r
> (tail -n 1 f; head -n 1 f) > g; vxnls normalise --format lines --sample all -q g | paste -sd,
> for o in comma point; do
>   echo 1,234 | vxnls normalise --format lines -c 1:number --decimal $o --to-locale de_CH -q; done | paste -sd,
> echo '2021년 3월 5일 오후 2:05' | vxnls recognise --format lines -l auto | grep -o 'locale [^ ]*'
{"file":"standard input","line":4,"record":3,"byte":67,"column":"when","kind":"date","value":"32.01.2021","outcome":"u
nread","position":0,"length":2,"expected":"\"32\" is not a day of a month (1 to 31), reading %#d","status":"0x803fe80b
"}
{"file":"standard input","line":5,"record":4,"byte":85,"column":"amount","kind":"number","value":"x","outcome":"unread
","position":0,"length":1,"expected":"\"x\" stands where a digit is wanted","status":"0x803fe810"}
2021-12-25,12/25/21,2021-04-03
12/25/21,2021-04-03
"value":"12/25/21","outcome":"contradicts"
"value":"03/04/21","outcome":"ambiguous"
2021-04-03,2021-12-25
1.234,1’234
locale ko_KR
! vxnls: p: there is no locale "xx"; "vxnls locale list" lists them
= 1 0 0 1 1 0 1 2 1 0 0 0 0
$ printf 'note\nhello\nworld\n' | vxnls normalise -c note; printf 'a\n1\n' > f; vxnls normalise -c a f >> f; wc -l < f
> for o in '--html f' '--emit-profile p --html p'; do vxnls recognise $o f; done; cp f log
> vxnls normalise -qc a:date --rejects /dev/stderr f > out 2>> log; wc -l < log
> printf 'when,2,amount,amount,\n1,2,3,4,5\n' > f; names() { vxnls recognise --json $* | grep '"column"'; }
> (names -c 4,when,2 f; names --no-header -c 7,1 f; names --format jsonl -c any,1 f) | tr -d '\n '; echo
> printf '\377\376,' | vxnls recognise --format csv
> # A record may have any length.
> (printf 'when,n\n1.2.2022,"'; yes 'x""' | head -n 700000; printf '"\n3.4.2022,5') > f
> vxnls normalise -c when:date -l de_DE -q -j 2 f > out; tail -n 1 out; echo; wc -lc < out
> # A file takes its place when it is whole, and what is beside it goes with a signal, too.
> echo old > old; chmod 640 old; ln -s old link; umask 077; vxnls normalise -q -c when:date --rejects link orders > out
> stat -c '%N %a' old link; wc -l < old; vxnls normalise -q -c when:date --rejects new out > out2; stat -c %a new
2
3
"column":"amount","column":"when","column":"2","column":"7","column":"1","column":"any","column":"1",
2022-04-03,5
 700002 2800033
'old' 640
'link' -> 'old' 777
1
600
! vxnls: column "note": most of its values are neither dates nor numbers; say what it should be, as -c note:date
! vxnls: f is both the input and the output
! vxnls: f is both the input and the file of --html
! vxnls: p is both the file of --emit-profile and the file of --html
! vxnls: standard input is in UTF-16: convert it to UTF-8 first
= 2 2 2 2 1 0 1 1 2 0 1 1
$ echo old > f; mkfifo pipe; $VXNLS normalise -q -c a:date --sample 1 --rejects f < pipe > out & exec 3> pipe
> printf 'a\nx\ny\n' >&3; until [ $(ls | wc -l) = 5 ]; do sleep 0.02; done
> kill -TERM $!; wait $! 2> /dev/null; echo $?; echo *; cat f
143
f orders out pipe
old
)~");
}

TEST(Commands, Words) {
  expect(R"~(
$ json() { vxnls $* --json | sed 's/,.*locale/ locale/'; }  # a value may begin with "-", and the last option counts
> json -l de_DE --zone Japan format date 1; json -lde_DE format --zone=Japan date -5 2
> json -l fr_FR format date --locale de_DE -qzJapan 1; vxnls format date -l -z; vxnls format date -lC -- -l
> vxnls zone -- list; vxnls calendar --from nothing --help | head -n 1
{"value":"1" locale":"de_DE","zone":"Asia/Tokyo"}
{"value":"-5" locale":"de_DE","zone":"Asia/Tokyo"}
{"value":"2" locale":"de_DE","zone":"Asia/Tokyo"}
{"value":"1" locale":"de_DE","zone":"Asia/Tokyo"}
Usage: vxnls calendar [OPTION...] [VALUE...]
! vxnls: there is no locale "-z"; "vxnls locale list" lists them
! vxnls: "-l": a date is 2026-11-21, a day number or now
! vxnls: there is no time zone "list"; "vxnls zone list" lists them
= 0 0 0 2 1 2 0
$ for w in '' fromat datetime 'format date --patern x' '--from day calendar 1' 'locale show C de' \
>   'parse number --chunk-header 1'; do vxnls $w; done 2>&1 | cut -c 1-118
vxnls: "vxnls" wants a command: format, parse, recognise, normalise, locale, calendar, zone, transcode, case, compare,
vxnls: "vxnls" has no command "fromat"; did you mean format?
vxnls: "vxnls" has no command "datetime"; did you mean "vxnls format datetime" or "vxnls parse datetime"?
vxnls: "vxnls format date" has no option "--patern"; did you mean --pattern?
vxnls: option --from belongs to "vxnls calendar" or "vxnls transcode" and stands behind the command
vxnls: "vxnls locale show" takes no "de" behind LOCALE
vxnls: --chunk-header goes with standard input, not with values
= 2 2 2 2 2 2 2
$ # Refused, and nothing beside it: by usage, for a value, by the system.
> sed 's/id,when/id,id/' orders > twice; try() { vxnls $1 < /dev/null > out 2> err; wc -l < err; cat out; }
> for w in 'help calendar x' 'format integer 1 --hex --octal' 'format number 1 --exponent --integer' \
>   'normalise --profile p -l C orders' 'format date -x' 'format date --pattern' 'calendar --json=maybe' 'compare a' \
>   'format number 1 --fixed' 'parse date 21/11 --pattern %d/%m' 'format number 1 --width 513' \
>   'parse date 1 --pattern %Q' 'parse date 1 --pattern %d --as month' 'format date 0 --pattern %Y%#H' 'locale show ../de' \
>   'locale list qqq' 'zone list tokio' 'recognise -c id twice' 'recognise -c id,1 orders' \
>   'recognise --no-header -c when orders' 'recognise --separator ;; orders' 'normalise orders' \
>   'recognise --first-year 9901 orders' 'normalise -c wen orders' 'calendar --from julian 2001366' \
>   'format date today' 'format date 20261121' 'format date 4000-02-29' 'format time 2026-11-21' \
>   'format time 10:00Z' 'parse time 13PM --pattern %H%p' 'format datetime 99999999999999999999999999' \
>   'format datetime 1582-01-01T00:30+01' 'format datetime @x' 'parse integer 1.5' 'format number abc' \
>   'transcode /no/file' 'normalise -c id --rejects /nowhere/r orders' \
>   'recognise --html /dev/full orders'; do try "$w"; done | uniq -c
     39 1
= 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 2 1 1 1 1 1 1 1 1 1 1 1 1 3 3 3
)~");
}

/// What engines that run the command as a filter count on: one line out for each line in, nothing kept from line to
/// line, output flushed when the input pauses, and an exit code that tells the truth.
TEST(Commands, Filters) {
  expect(R"~(
$ printf '31.12.2021\n3. März 2021\n\nheute\n31.02.2021\r\n1.1.70 \n' > lines
> filter() { $VXNLS parse date -l de_DE --lenient --unread '\N' $*; }
> filter < lines 2> /dev/null; echo $?; filter --ok-unread < lines > whole 2> /dev/null; echo $?; filter < /dev/null
> while IFS= read -r line; do echo "$line" | filter 2> /dev/null; done < lines | cmp - whole
> for b in '1\n2\n1\n3' '2\n5\n' '1 \n5\n' '99999999999999999999\n'; do
>   printf -- "$b" | vxnls parse number --chunk-header; echo .; done 2>&1 |
>   sed 's/.*input: line //; s/the.*wanted, //' | paste -sd ' '
2021-12-31
2021-03-03
\N
\N
\N
1970-01-01
1
0
2 3 . 5 vxnls: standard input ends 1 values before its last block does . 1: not "1 " . 1: not "99999999999999999999" .
= 0 3 3 3
$ # The lines of a block are wanted before the next one is sent.
> mkfifo in out; seq 20000 | sed 's/$/,5/; s/^3/x3/' > all; sed 's/,/./; s/^x.*/\\N/' all > read
> for header in --chunk-header --quiet; do
>   $VXNLS parse number -l de_DE --unread '\N' --ok-unread $header < in > out 2> /dev/null & exec 3> in 4< out
>   first=1; for size in 1 0 3 5000 1 2 0 500; do
>     [ $header = --quiet ] || echo $size >&3
>     tail -n +$first all | head -n $size >&3; head -n $size <&4 >> got; first=$((first + size))
>   done
>   exec 3>&-; cat <&4; wait $!; echo $?
> done
> head -n 5507 read > half; cat half half | cmp - got
0
0
$ # And so are records, by the decisions of a profile: 3/4/2021 alone could be either day.
> mkfifo in out; printf '1,3/4/21\n2,13/4/21\n' | vxnls recognise --format csv --no-header --emit-profile p > report
> for threads in 1 2 4; do
>   $VXNLS normalise --format csv --no-header --profile p -q --ok-unread -j $threads < in > out & exec 3> in 4< out
>   for i in 1 2 3 4 5 6 7 8 9; do
>     printf 7,3/ >&3; printf '4/21\r\n' >&3; head -n 1 <&4; printf '1,"Feber\n21"\n' >&3; head -n 2 <&4
>   done | paste -d ' ' - - - | uniq -c; exec 3>&-; cat <&4; wait $!; echo $?
> done
      9 7,2021-04-03\r 1,"Feber 21"
0
      9 7,2021-04-03\r 1,"Feber 21"
0
      9 7,2021-04-03\r 1,"Feber 21"
0
)~");
}

TEST(Terminal, CompletesInTheShellsThemselves) {
  expect(R"~(
$ export PATH=${VXNLS%/*}:/usr/bin:/bin LANG=C.UTF-8 HOME=$PWD TERM=dumb
> mkdir 'some folder'; echo 1234.5 > 'some folder/new file'; mkfifo keys
> press() {  # keys, and what a line of the screen begins with before a minute is over
>   printf %b "$1" >&3
>   for i in $(seq 600); do tr -d '\r' < screen | grep -aq "^$2" && return; sleep 0.1; done; echo "$shell: $1"
> }
> for shell in 'bash --norc --noprofile -i' 'zsh -f -i' 'fish --no-config --private'; do
>   command -v ${shell%% *} > program || continue
>   : > screen; script -qfc "$shell" screen < keys > out & exec 3> keys
>   case $shell in
>     bash*) press 'source <(vxnls completion bash); echo ready\n' ready ;;
>     zsh*) press 'autoload -U compinit; compinit -D -u; source <(vxnls completion zsh); echo ready\n' ready ;;
>     fish*) press 'vxnls completion fish | source; echo ready\n' ready ;;
>   esac
>   press 'vxnls form\tnumb\t1234.5 --gro\t --loca\tde_D\t\n' 1.234,5
>   press 'vxnls format date 2026-11-21 --locale=de_D\t --sty\tlon\t\n' '21. November 2026'
>   press 'vxnls normalise -qc 1:number --no-head\t some\tnew\t\n' 1234.5
>   press 'vxnls normalise --profile=some\tnew\t </dev/null\n' 'vxnls: some folder/new file: '
>   press 'vxnls help loc\tlis\t| head -n 1\n' 'Usage: vxnls locale list'
>   printf 'exit\n' >&3; exec 3>&-; wait $!
> done
)~");
}

TEST(Terminal, ShowsColors) {
  expect(R"~(
$ export TERM=xterm; while read -r line; do script -qec "$line" /dev/null < /dev/null | head -n 1; done << 'end' 2>&1 |
> vxnls format date x
> vxnls --color always nonsense 2>&1 | cat
> vxnls --color=never nonsense
> NO_COLOR=1 vxnls --color always -h
> vxnls format date 0 -l de_US
> vxnls parse date 03/04/2021 -l en_US --explain --color always | grep 2021-04
> end
>   tr -d '\r' | tr '\033' E | cut -c 1-42
E[1;31mvxnls:E[0m "x": a date is 2026-11-2
E[1;31mvxnls:E[0m "vxnls" has no command "
vxnls: "vxnls" has no command "nonsense"
E[1mUsage:E[0m vxnls COMMAND ...
vxnls: E[1;36mnote:E[0m there is no locale
  E[33mambiguousE[0m  2021-04-03 by %d/%m/
= 1 2 2 0 0 0
)~");
}

TEST(Descriptors, FailuresOfReadingAndWriting) {
  expect(R"~(
$ vxnls zone list >&-; mkfifo pipe; exec 3<> pipe 4> pipe 3<&-; vxnls zone list >&4; vxnls -h > /dev/full
> vxnls format date <&-; vxnls format date </
> vxnls format date nonsense 2>&-; vxnls format date nonsense 2>/dev/full
> ulimit -f 8; trap '' XFSZ; seq 1 10000 | vxnls format date > disk
! vxnls: cannot write standard output: Bad file descriptor
! vxnls: cannot write standard output: Broken pipe
! vxnls: cannot write standard output: No space left on device
! vxnls: cannot read standard input: Bad file descriptor
! vxnls: cannot read standard input: Is a directory
! vxnls: cannot write standard output: File too large
= 3 3 3 3 3 1 1 3
$ mkdir host; cp $LIBRARIES/libvxhost.so.6 host; export LD_LIBRARY_PATH=$PWD/host
> vxnls format date 0 2>&1 | cut -c 1-29; cp $LIBRARIES/libvxnlsloc.so.6 $LIBRARIES/vxemsg.so host
> vxnls format date 0 2>&1 | cut -c 1-29
vxnls: the host cannot start:
vxnls: the host cannot start:
= 4 4
)~");
}

}  // namespace
