#!/usr/bin/env python3
"""Runs the same tasks with vxnls and with the tools that people use for them, and writes docs/compare.md.

Every cell of the page comes from a command that this script ran: its output, whether that is the right answer, and the
median time of several runs. Needs the packages that `script/bootstrap compare` installs. Usage: tools/compare.py
[FOLDER_OF_VXNLS]
"""
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
BINARIES = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build/release/bin").resolve()
RUNS = 5
LOCALES = ("de_DE", "fr_FR", "tr_TR", "en_US", "hi_IN", "ja_JP")

ORDERS = 'id,when,amount,note\r\n1,31.12.2021,"1.234,50","a ""b"""\r\n2,05.03.2021,"99,90",\r\n3,32.01.2021,"12,x0",c\r\n'
MIXED = "when\n03/04/21\n2021-03-05\n25/12/21\n5 March 2021\nsoon\n"
LINES = '{"id":1,"when":"31.12.2021","more":[1,  2]}\n{"id":2,"when":"5.3.2021"}\n'


def big_file(path: pathlib.Path, rows: int) -> None:
    with path.open("w") as out:
        out.write("id,when,amount,note\n")
        for i in range(rows):
            day, month, year = i % 28 + 1, i // 28 % 12 + 1, 1990 + i % 35
            out.write(f'{i},{day:02}.{month:02}.{year},"{i % 900 + 1}.{i * 7 % 1000:03},{i % 100:02}",some text here\n')


# A task: what is wanted, the right output or what it must hold, and a command a tool.
TASKS = [
    dict(title="A German date to ISO 8601", right="2021-12-31",
         vxnls="vxnls parse date 31.12.2021 -l de_DE",
         date="date -d 31.12.2021 +%F",
         dateutils="dateutils.dconv -i %d.%m.%Y 31.12.2021",
         miller="""mlr -n put 'end{print strftime(strptime("31.12.2021","%d.%m.%Y"),"%Y-%m-%d")}'"""),
    dict(title="The same with the month's name", right="2021-03-05",
         vxnls="vxnls parse date '5. März 2021' -l de_DE --lenient",
         date="LC_ALL=de_DE.UTF-8 date -d '5. März 2021' +%F",
         dateutils="dateutils.dconv --from-locale de_DE -i '%d. %B %Y' '5. März 2021'",
         miller="""LC_ALL=de_DE.UTF-8 mlr -n put 'end{print strftime(strptime("5. März 2021","%d. %B %Y"),"%Y-%m-%d")}'"""),
    dict(title="The first day of an ISO week", right="2020-12-28",
         vxnls="vxnls parse date 'W53 2020' --as week-iso",
         dateutils="dateutils.dconv -i '%G-W%V-%u' -f %F 2020-W53-1",
         date="date -d 2020-W53-1 +%F",
         miller="""mlr -n put 'end{print strftime(strptime("2020-W53-1","%G-W%V-%u"),"%Y-%m-%d")}'"""),
    dict(title="A date that does not exist is refused, and the message says why", has="day",
         fails=True,
         vxnls="vxnls parse date 2021-02-31 -l sv_SE",
         date="date -d 2021-02-31 +%F",
         dateutils="dateutils.dconv 2021-02-31",
         miller="""mlr -n put 'end{print strptime("2021-02-31","%Y-%m-%d")}'"""),
    dict(title="A long date in Turkish", right="21 Kasım 2026",
         vxnls="vxnls format date 2026-11-21 -l tr_TR --style long",
         date="LC_ALL=tr_TR.UTF-8 date -d 2026-11-21 '+%-d %B %Y'",
         dateutils="dateutils.dconv --locale tr_TR -f '%-d %B %Y' 2026-11-21",
         miller="""LC_ALL=tr_TR.UTF-8 mlr -n put 'end{print strftime(strptime("2026-11-21","%Y-%m-%d"),"%d %B %Y")}'"""),
    dict(title="A date as Japanese people write it", right="2026年11月21日",
         vxnls="vxnls format date 2026-11-21 -l ja_JP --style long",
         date="LC_ALL=ja_JP.UTF-8 date -d 2026-11-21 +%x",
         dateutils="dateutils.dconv --locale ja_JP -f %x 2026-11-21"),
    dict(title="A New York time on the clocks of Berlin", right="2026-07-01T18:00:00+0200",
         vxnls="vxnls format datetime 2026-07-01T12:00:00-04:00 -z Europe/Berlin --pattern '%Y-%m-%dT%H:%M:%S%z'",
         date="TZ=Europe/Berlin date -d 'TZ=\"America/New_York\" 2026-07-01 12:00' +%FT%T%z",
         dateutils="dateutils.dzone 2026-07-01T12:00:00 --from-zone America/New_York Europe/Berlin",
         miller="""mlr -n put 'end{print strftime_local(strptime_local("2026-07-01 12:00:00","%Y-%m-%d %H:%M:%S",
"America/New_York"),"%Y-%m-%dT%H:%M:%S%z","Europe/Berlin")}'"""),
    dict(title="A number in German, grouped, two decimals", right="1.234.567,89",
         vxnls="vxnls format number 1234567.891 -l de_DE --decimals 2 --group",
         printf="""LC_ALL=de_DE.UTF-8 /usr/bin/printf "%'.2f\\n" 1234567,891""",
         numfmt="LC_ALL=de_DE.UTF-8 numfmt --grouping --format %.2f 1234567,891",
         miller="""LC_ALL=de_DE.UTF-8 mlr -n put 'end{print fmtnum(1234567.891,"%.2lf")}'"""),
    dict(title="A number in Hindi, grouped by lakh", right="12,34,567.89",
         vxnls="vxnls format number 1234567.891 -l hi_IN --decimals 2 --group",
         printf="""LC_ALL=hi_IN.UTF-8 /usr/bin/printf "%'.2f\\n" 1234567.891""",
         numfmt="LC_ALL=hi_IN.UTF-8 numfmt --grouping --format %.2f 1234567.891"),
    dict(title="A German number to a plain one", right="1234567.89",
         vxnls="vxnls parse number 1.234.567,89 -l de_DE",
         numfmt="LC_ALL=de_DE.UTF-8 numfmt 1.234.567,89",
         miller="""mlr -n put 'end{print sub(gsub("1.234.567,89","\\.",""),",",".")}'""",
         csvkit="printf 'n\\n\"1.234.567,89\"\\n' | in2csv -f csv -L de_DE | tail -n 1"),
    dict(title="A price in France", right="1\u202f234,50\u00a0€",
         vxnls="vxnls format currency 1234.5 -l fr_FR"),
    dict(title="Upper case of Turkish text", right="ISPARTA İZMİR",
         vxnls="echo 'ısparta izmir' | vxnls case upper -l tr_TR",
         uconv="echo 'ısparta izmir' | uconv -x tr-Upper",
         miller="""echo 'x=ısparta izmir' | mlr --onidx put '$x=toupper($x)'"""),
    dict(title="UTF-8 to UTF-16, little end first", right="4700fc00",
         vxnls="printf 'Gü' | vxnls transcode --to utf-16le | xxd -p",
         iconv="printf 'Gü' | iconv -f utf-8 -t utf-16le | xxd -p",
         uconv="printf 'Gü' | uconv -f utf-8 -t utf-16le | xxd -p"),
    dict(title="Where a file stops being UTF-8", has="6", fails=True,
         vxnls="printf 'Grüß\\xfft' | vxnls transcode",
         iconv="printf 'Grüß\\xfft' | iconv -f utf-8 -t utf-8",
         uconv="printf 'Grüß\\xfft' | uconv -f utf-8 -t utf-8"),
    dict(title="A date column to ISO 8601, all else byte for byte, the bad cell named", file=ORDERS, name="orders.csv",
         right=ORDERS.replace("31.12.2021", "2021-12-31").replace("05.03.2021", "2021-03-05"), has="32.01.2021",
         vxnls="vxnls normalise -c when:date -l de_DE orders.csv",
         miller="""mlr --csv put '$when=strftime(strptime($when,"%d.%m.%Y"),"%Y-%m-%d")' orders.csv""",
         csvkit="in2csv --date-format %d.%m.%Y orders.csv",
         dateutils="dateutils.dconv -S -i %d.%m.%Y -f %F < orders.csv"),
    dict(title="A number column to plain numbers, all else byte for byte, the bad cell named", file=ORDERS,
         name="orders.csv",
         right=ORDERS.replace('"1.234,50"', '"1234.50"').replace('"99,90"', '"99.90"'), has="12,x0",
         vxnls="vxnls normalise -c amount:number -l de_DE orders.csv",
         miller="""mlr --csv put '$amount=sub(gsub($amount,"\\.",""),",",".")' orders.csv""",
         csvkit="in2csv -L de_DE orders.csv"),
    dict(title="A column of mixed forms: what is in it, which value decides day against month, what cannot be read",
         file=MIXED, name="mixed.csv", has="25/12/21",
         vxnls="vxnls recognise mixed.csv",
         miller="mlr --icsv --oxtab summary mixed.csv",
         csvkit="csvstat mixed.csv"),
    dict(title="The same column to ISO 8601 under one decision", file=MIXED, name="mixed.csv",
         right="when\n2021-04-03\n2021-03-05\n2021-12-25\n2021-03-05\nsoon\n",
         vxnls="vxnls normalise -c when:date -l en_GB mixed.csv",
         date="tail -n +2 mixed.csv | date -f - +%F",
         dateutils="dateutils.dconv -S -i %d/%m/%y -i %F -i '%d %B %Y' -f %F < mixed.csv",
         csvkit="in2csv mixed.csv"),
    dict(title="JSON lines, spacing kept", file=LINES, name="events.jsonl",
         right=LINES.replace("31.12.2021", "2021-12-31").replace("5.3.2021", "2021-03-05"),
         vxnls="vxnls normalise -c when:date -l de_DE events.jsonl",
         miller="""mlr --ijsonl --ojsonl put '$when=strftime(strptime($when,"%d.%m.%Y"),"%Y-%m-%d")' events.jsonl"""),
    dict(title="Date and number column of a file of 20 MB", rows=450_000, name="big.csv",
         pieces=("1990-01-01", "1000", "450001"),
         vxnls="vxnls normalise -c when:date,amount:number -l de_DE big.csv | sed -n '2p;$='",
         miller="""mlr --csv put '$when=strftime(strptime($when,"%d.%m.%Y"),"%Y-%m-%d");
$amount=sub(gsub($amount,"\\.",""),",",".")' big.csv | sed -n '2p;$='""",
         csvkit="in2csv -L de_DE --date-format %d.%m.%Y big.csv | sed -n '2p;$='",
         dateutils="dateutils.dconv -S -i %d.%m.%Y -f %F < big.csv | sed -n '2p;$='"),
]
TOOLS = ("vxnls", "date", "printf", "numfmt", "dateutils", "miller", "csvkit", "uconv", "iconv")


def run(command: str, folder: pathlib.Path, environment: dict, runs: int):
    times, result = [], None
    for _ in range(runs):
        start = time.perf_counter()
        result = subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=folder, env=environment,
                                stdin=subprocess.DEVNULL, capture_output=True, check=False)
        times.append(time.perf_counter() - start)
        if times[-1] > 5:
            break
    return result, statistics.median(times)


def verdict(task: dict, result) -> str:
    out, err = result.stdout.decode(errors="replace"), result.stderr.decode(errors="replace")
    if "pieces" in task:
        found = sum(piece in out for piece in task["pieces"])
        return "yes" if found == len(task["pieces"]) else "in part: the dates alone"
    if task.get("fails"):
        if result.returncode == 0:
            return "no: it succeeds"
        return "yes" if task["has"] in err else "refused, without the reason"
    if "right" in task and out.rstrip("\n") != task["right"].rstrip("\n"):
        return "no"
    if "has" in task and task["has"] not in (err if "right" in task else out):
        return "in part: the bad cell passes without a word" if "right" in task else "no"
    return "yes"


def shown(result) -> str:
    text = (result.stdout + result.stderr).decode(errors="replace").rstrip("\n")
    lines = text.replace("\r", "").split("\n")
    if len(lines) > 24:
        lines = lines[:24] + [f"… and {len(lines) - 24} more lines"]
    return "\n".join(line[:118] for line in lines) or "(nothing)"


def anchor(title: str) -> str:
    return "".join(letter for letter in title.lower().replace(" ", "-") if letter.isalnum() or letter in "-_")


def main() -> None:
    environment = dict(os.environ, PATH=f"{BINARIES}:{os.environ['PATH']}", LC_ALL="C.UTF-8", TZ="UTC")
    for name in ("VXNLS_LOCALE", "VXNLS_ZONE", "LANG"):
        environment.pop(name, None)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for locale in LOCALES:
            subprocess.run(["localedef", "-i", locale, "-f", "UTF-8", folder / f"{locale}.UTF-8"], check=False,
                           capture_output=True)
        environment["LOCPATH"] = str(folder)
        pages, table = [], []
        for number, task in enumerate(TASKS, 1):
            if "file" in task:
                (folder / task["name"]).write_text(task["file"], newline="")
            if "rows" in task:
                big_file(folder / task["name"], task["rows"])
            cells = {}
            page = [f"## {number}. {task['title']}\n"]
            for tool in TOOLS:
                if tool not in task:
                    continue
                result, seconds = run(task[tool], folder, environment, RUNS)
                cells[tool] = (verdict(task, result), seconds)
                page.append(f"{tool}: {verdict(task, result)}; {seconds * 1000:.0f} ms; exit code {result.returncode}\n")
                page.append(f"```text\n$ {task[tool]}\n{shown(result)}\n```\n")
            pages.append("\n".join(page))
            def cell(tool):
                if tool not in cells:
                    return "–"
                answer, seconds = cells[tool]
                return f"{answer.split(':')[0]}, {seconds * 1000:.0f} ms"
            others = ["printf", "numfmt", "date"]
            core = next((tool for tool in others if tool in cells and cells[tool][0] == "yes"),
                        next((tool for tool in others if tool in cells), "date"))
            coders = "uconv" if "uconv" in cells else "iconv"
            table.append(f"| [{number}](#{anchor(f'{number} ' + task['title'])}) {task['title']} | " + " | ".join(
                cell(tool) for tool in ("vxnls", core, "dateutils", "miller", "csvkit", coders, "iconv")) + " |")
            print(f"{number}/{len(TASKS)} {task['title']}: "
                  + ", ".join(f"{tool} {answer}" for tool, (answer, _) in cells.items()), file=sys.stderr)
        versions = []
        for command in ("vxnls --version", "date --version | head -n 1", "dateutils.dconv --version", "mlr --version",
                        "in2csv --version 2>&1", "uconv --version", "iconv --version | head -n 1"):
            result, _ = run(command, folder, environment, 1)
            versions.append(f"- {result.stdout.decode().strip()}")
        text = (ROOT / "tools/compare_head.md").read_text()
        text = text.replace("@VERSIONS@", "\n".join(versions)).replace("@TABLE@", "\n".join(table))
        (ROOT / "docs/compare.md").write_text(text + "\n" + "\n".join(pages))


main()
