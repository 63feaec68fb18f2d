#!/usr/bin/env python3
"""Breaks the library on purpose, a condition or a constant at a time, and counts how often the tests notice.

Works in a copy of the last commit. Each mutant is built into the tests of its room, which run until one fails; what
they let pass is given to the tests of the whole. Prints the mutants that nothing noticed, and writes all to a file of
JSON lines, from which a run that was interrupted goes on.

Usage: tools/mutate.py [--count 300] [--seed 1] [--rooms calendar,utf8] [--jobs 2] [--out build/mutants.jsonl]
"""
import argparse
import json
import pathlib
import random
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ("calendar", "collation", "datetime_format", "datetime_parse", "kernel_strings", "module", "number_format",
         "number_parse", "unicode", "utf8")
# Tables that a generator writes are data: their tests compare every value.
GENERATED = re.compile(r"table|generated|powers", re.IGNORECASE)
TIME_LIMIT = 240

SWAPS = (("<=", "<"), (">=", ">"), ("==", "!="), ("!=", "=="), ("&&", "||"), ("||", "&&"), (" < ", " <= "),
         (" > ", " >= "), (" + ", " - "), (" - ", " + "), ("++", "--"), (" & ", " | "), (" << ", " >> "))
NUMBER = re.compile(r"(?<![\w.'])(\d+)(?![\w.'])")
SKIPPED = re.compile(r"^\s*(//|#|static_assert|template|using|namespace|\[\[)|^\s*\*|concept |VX_API")


def places(path):
    """Every (line, column, old, new) of a file that makes a mutant."""
    found = []
    for number, line in enumerate(path.read_text().split("\n")):
        code = line.split("//")[0]
        if SKIPPED.search(line) or "template <" in line:
            continue
        inside = [False] * (len(code) + 1)  # in quotes
        quote = ""
        for i, letter in enumerate(code):
            inside[i] = bool(quote)
            if quote and letter == quote and code[i - 1] != "\\":
                quote = ""
            elif not quote and letter in "\"'" and not (letter == "'" and i and code[i - 1].isalnum()):
                quote = letter
                inside[i] = True
        for old, new in SWAPS:
            at = code.find(old)
            while at >= 0:
                if not inside[at] and (old != "&&" or code[at:at + 3] == "&& "):
                    found.append((number, at, old, new))
                at = code.find(old, at + 1)
        for match in NUMBER.finditer(code):
            if not inside[match.start()] and "alignas" not in code:
                found.append((number, match.start(), match[1], str(int(match[1]) + 1)))
    return found


def run(command, folder, limit=TIME_LIMIT):
    try:
        return subprocess.run(command, cwd=folder, capture_output=True, timeout=limit, check=False).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--rooms", default=",".join(ROOMS))
    parser.add_argument("--jobs", default="2")
    parser.add_argument("--out", type=pathlib.Path, default=ROOT / "build/mutants.jsonl")
    options = parser.parse_args()

    copy = ROOT / "build/mutants-source"
    build = ROOT / "build/mutants-build"
    shutil.rmtree(copy, ignore_errors=True)
    copy.mkdir(parents=True)
    archive = subprocess.run(["git", "archive", "HEAD"], cwd=ROOT, check=True, capture_output=True).stdout
    subprocess.run(["tar", "x"], cwd=copy, input=archive, check=True)
    subprocess.run(["cmake", "-G", "Ninja", "-S", copy, "-B", build, "-DCMAKE_BUILD_TYPE=Release", "-DVXNLS_TESTS=ON"],
                   check=True, stdout=subprocess.DEVNULL)
    listed = json.loads(subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], check=True,
                                       capture_output=True).stdout)["tests"]
    # A room's own tests are those whose sources stand in its folder of tests/; the build's targets have their names.
    names = {test["name"] for test in listed}
    ninja = (build / "build.ninja").read_text()
    own = {room: sorted(name for name in names if f"tests/{room}/CMakeFiles/{name}.dir" in ninja) for room in ROOMS}
    wide = [name for name in ("round_trip_test", "cli_test", "host_test", "faults_test") if name in names]

    everything = []
    for room in options.rooms.split(","):
        for path in sorted((copy / room).glob("*.cc")) + sorted((copy / room).glob("*.h")):
            if not GENERATED.search(path.name):
                everything += [(room, path.relative_to(copy), *place) for place in places(path)]
    random.Random(options.seed).shuffle(everything)

    done = {}
    if options.out.exists():
        for line in options.out.read_text().splitlines():
            record = json.loads(line)
            done[(record["file"], record["line"], record["column"], record["new"])] = record
    counts = {"caught": 0, "survived": 0}
    with options.out.open("a") as out:
        for room, name, number, column, old, new in everything:
            if counts["caught"] + counts["survived"] >= options.count:
                break
            key = (str(name), number + 1, column, new)
            record = done.get(key)
            if record is None:
                path = copy / name
                text = path.read_text()
                lines = text.split("\n")
                line = lines[number]
                lines[number] = line[:column] + new + line[column + len(old):]
                path.write_text("\n".join(lines))
                outcome, by = "no program", ""
                for tests in (own[room], wide):
                    if not run(["ninja", "-C", build, "-j", options.jobs, *tests], copy, 600):
                        break
                    outcome = "survived"
                    by = next((test for test in tests
                               if not run(["ctest", "--test-dir", build, "-R", f"^{test}$", "--timeout", str(TIME_LIMIT)],
                                          copy, TIME_LIMIT + 10)), "")
                    if by:
                        outcome = "caught"
                        break
                path.write_text(text)
                record = dict(file=str(name), line=number + 1, column=column, old=old.strip(), new=new,
                              code=line.strip(), outcome=outcome, by=by)
                out.write(json.dumps(record) + "\n")
                out.flush()
            if record["outcome"] in counts:
                counts[record["outcome"]] += 1
            if record["outcome"] == "survived":
                print(f"{name}:{number + 1}: {old.strip()} -> {new.strip()}: {record['code']}", flush=True)
    total = sum(counts.values())
    print(f"{counts['caught']} of {total} mutants caught, {100 * counts['caught'] / max(total, 1):.1f} %")
    return 0 if total else 1


sys.exit(main())
