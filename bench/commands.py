#!/usr/bin/env python3
"""The command as a whole process beside the tools that people use: throughput, memory, start-up. Prints a section of
docs/performance.md. Usage: bench/commands.py FOLDER_OF_VXNLS [MEGABYTES ...]

Runs are interleaved: every tool once, then every tool again; medians. A tool that needs more than a minute for a file is
measured once on the small one and left out of larger ones.
"""
import os
import pathlib
import random
import statistics
import subprocess
import sys
import tempfile
import time

BINARIES = pathlib.Path(sys.argv[1]).resolve()
SIZES = [int(size) for size in sys.argv[2:]] or [10, 100]
RUNS = 5
SLOW = 6.0  # seconds for the small file: too long for the others

MILLER = """mlr --csv put '$when=strftime(strptime($when,"%d.%m.%Y"),"%Y-%m-%d");
$amount=sub(gsub($amount,"\\.",""),",",".")' FILE"""
TASKS = (
    ("A date and a number column of a CSV file to ISO 8601 and plain numbers", "orders.csv", {
        "vxnls": "vxnls normalise -q -c when:date,amount:number -l de_DE FILE",
        "vxnls, 1 thread": "vxnls normalise -q -j 1 -c when:date,amount:number -l de_DE FILE",
        "miller": MILLER,
        "csvkit": "in2csv -L de_DE --date-format %d.%m.%Y FILE"}),
    ("The date column alone", "orders.csv", {
        "vxnls": "vxnls normalise -q -c when:date -l de_DE FILE",
        "miller": """mlr --csv put '$when=strftime(strptime($when,"%d.%m.%Y"),"%Y-%m-%d")' FILE""",
        "dateutils": "dateutils.dconv -S -i %d.%m.%Y -f %F < FILE"}),
    ("A file of dates, one a line", "days.txt", {
        "vxnls": "vxnls normalise -q --format lines -c 1:date -l de_DE FILE",
        "date": "date -f FILE +%F",
        "dateutils": "dateutils.dconv -i %d.%m.%Y -f %F < FILE"}),
    ("UTF-8 to UTF-16, little end first", "orders.csv", {
        "vxnls": "vxnls transcode --to utf-16le FILE",
        "iconv": "iconv -f utf-8 -t utf-16le FILE",
        "uconv": "uconv -f utf-8 -t utf-16le FILE"}),
)
STARTS = {
    "vxnls": "vxnls format date 2026-11-21 -l de_DE",
    "vxnls with a zone": "vxnls format datetime 2026-11-21T14:05:09Z -l de_DE -z Asia/Tokyo",
    "date": "date -d 2026-11-21 +%d.%m.%Y",
    "dateutils": "dateutils.dconv -f %d.%m.%Y 2026-11-21",
    "miller": "mlr -n put 'end{print 1}'",
    "uconv": "uconv -x upper < /dev/null",
}


def write_files(folder, megabytes):
    rows = random.Random(1)
    with (folder / "orders.csv").open("w") as orders, (folder / "days.txt").open("w") as days:
        orders.write("id,when,amount,note\n")
        written, number = 0, 0
        while written < megabytes * 1_000_000:
            day = f"{rows.randint(1, 28):02}.{rows.randint(1, 12):02}.{rows.randint(1970, 2030)}"
            amount = f"{rows.randint(1, 999)}.{rows.randint(0, 999):03},{rows.randint(0, 99):02}"
            number += 1
            written += orders.write(f'{number},{day},"{amount}",Straße nach Süden, {rows.randint(1, 99)}\n'
                                    .replace("Süden, ", "Süden "))
            days.write(day + "\n")


def run(command, folder):
    environment = dict(os.environ, PATH=f"{BINARIES}:{os.environ['PATH']}", LC_ALL="C.UTF-8", TZ="UTC")
    start = time.perf_counter()
    process = subprocess.Popen(["bash", "-c", "exec " + command], cwd=folder, env=environment,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = 0
    return time.perf_counter() - start, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024, status


def measure(commands, folder, runs):
    seen = {tool: [] for tool in commands}
    for _ in range(runs):
        for tool, command in commands.items():
            seen[tool].append(run(command, folder))
            if seen[tool][-1][0] > SLOW and len(seen[tool]) == 1 and runs > 1:
                commands = {name: each for name, each in commands.items() if name != tool}
    return {tool: tuple(statistics.median(value[i] for value in values) for i in range(3))
            for tool, values in seen.items() if values}


def main():
    print("\n## The command as a whole process\n")
    print("Medians of interleaved runs; time by the clock, processor time over all threads, peak memory. The ratio is the")
    print("time of vxnls by that of the fastest other tool: below 1 is ahead.\n")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        slow = set()
        for megabytes in SIZES:
            write_files(folder, megabytes)
            for title, file, commands in TASKS:
                size = (folder / file).stat().st_size / 1e6
                chosen = {tool: command.replace("FILE", file) for tool, command in commands.items()
                          if (title, tool) not in slow}
                figures = measure(chosen, folder, RUNS)
                slow |= {(title, tool) for tool, values in figures.items() if values[0] > SLOW}
                print(f"### {title}, {size:.0f} MB\n")
                print("| Tool | Seconds | MB a second | Processor seconds | Peak MB |\n|---|---:|---:|---:|---:|")
                for tool, (seconds, processor, memory) in figures.items():
                    print(f"| {tool} | {seconds:.2f} | {size / seconds:.0f} | {processor:.2f} | {memory:.0f} |")
                peers = [values for tool, values in figures.items() if not tool.startswith("vxnls")]
                if peers:
                    best = min(peers)
                    print(f"\nRatio {figures['vxnls'][0] / best[0]:.2f}; memory {figures['vxnls'][2]:.0f} MB beside "
                          f"{best[2]:.0f} MB.\n", flush=True)
        figures = measure(STARTS, folder, 41)
        print("### One value, from start to end\n")
        print("| Tool | Milliseconds | Processor milliseconds | Peak MB |\n|---|---:|---:|---:|")
        for tool, (seconds, processor, memory) in figures.items():
            print(f"| {tool} | {seconds * 1000:.1f} | {processor * 1000:.1f} | {memory:.0f} |")


main()
