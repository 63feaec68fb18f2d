#!/usr/bin/env python3
"""Breaks the library on purpose, a condition or a constant at a time, and counts how often the tests notice.

Each worker has a copy of the last commit and a build of its own. A mutant is compiled and given to the tests of its
room, the quick ones first; what they let pass goes to the tests of the other rooms, and what those let pass to the
tests of the whole: host, locale data, corpora. The first failure ends it, and so does a test that takes many times as
long as with the library unbroken. A mutant that leaves every object of the library as it was, to the byte,
is no mutant; one that does not compile neither. Both are told, and not counted.

The sample is spread over the rooms in proportion to their places; a larger --count adds to a smaller one. Results go
to a file of JSON lines, from which a run that was interrupted goes on; what is given with --again is tried anew.

Usage: tools/mutate.py [--count 300] [--seed 1] [--rooms calendar,utf8] [--jobs 2] [--out build/mutants/results.jsonl]
                       [--again FILE:LINE] [--list]
"""
import argparse
import collections
import copy
import hashlib
import json
import os
import pathlib
import re
import resource
import shutil
import subprocess
import sys
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ("calendar", "collation", "datetime_format", "datetime_parse", "kernel_strings", "module", "number_format",
         "number_parse", "unicode", "utf8")
WHOLE = re.compile(r"locale_database_test|host_test|corpus_(?!record_splitter|command_arguments).*")
COUNTED = ("caught", "survived", "waiting")
OWN_RUN, SLOW = 0.5, 2  # seconds of the processor from which a case runs alone, and after the quick ones of its room
DATA = ("number_format/powers.cc",)  # each value is compared by a test

SWAPS = tuple((re.compile(old), new) for old, new in (
    (r"<=(?!>)", "<"), (r">=", ">"), (r"==", "!="), (r"!=", "=="), (r"(?<=\s)&&(?=\s|$)", "||"),
    (r"(?<=\s)\|\|(?=\s|$)", "&&"), (r"(?<= )<(?= )", "<="), (r"(?<= )>(?= )", ">="), (r"(?<= )\+(?= )", "-"),
    (r"(?<= )-(?= )", "+"), (r"\+\+", "--"), (r"(?<=\w )&(?= )", "|"), (r"(?<= )<<(?= )", ">>"),
    (r"\btrue\b", "false"), (r"\bfalse\b", "true")))
NUMBER = re.compile(r"(?<![\w.'])(0[xX][0-9A-Fa-f]+|\d+)(?=[uUlL]{0,3}(?![\w.']))")
# Declarations, and rows of tables.
SKIPPED = re.compile(r"^[\s\dxXA-Fa-f,{}]*(//.*)?$|^\s*(//|#|static_assert|template|using|namespace|\[\[)|^\s*\*|"
                     r"concept |VX_API|template <|alignas")

Place = collections.namedtuple("Place", "room file line column old new code")


def places_of(path, room, name):
    """Every place of a file that makes a mutant."""
    for number, line in enumerate(path.read_text().split("\n")):
        if SKIPPED.search(line):
            continue
        code = re.sub(r"//.*", "", line)
        # Texts and letters are left alone; a ' between digits is neither.
        code = re.sub(r'"(\\.|[^"\\])*"|(?<!\w)\'(\\.|[^\'\\])+\'', lambda quoted: "_" * len(quoted[0]), code)
        for old, new in SWAPS:
            for found in old.finditer(code):
                yield Place(room, name, number, found.start(), found[0], new, line.strip())
        for found in NUMBER.finditer(code):
            more = int(found[1], 0) + 1
            new = f"0x{more:X}" if found[1][:2] in ("0x", "0X") else str(more)
            yield Place(room, name, number, found.start(), found[1], new, line.strip())
        for found in re.finditer(r"\bif (\()", code):
            depth = 0
            for end in range(found.start(1), len(code)):
                depth += {"(": 1, ")": -1}.get(code[end], 0)
                if depth == 0:
                    condition = line[found.start(1):end + 1]
                    if not re.search(r";|[=!<>]=| [<>] |&&|\|\|", condition):  # those have their own places
                        yield Place(room, name, number, found.start(1), condition, f"(!{condition})", line.strip())
                    break


def sample(source, rooms, seed):
    """All places, so ordered that each beginning of the list is spread over the rooms in proportion to their places.

    A place stands where it stands whatever else changes in the file."""
    order = []
    for room in rooms:
        found = []
        for path in sorted((source / room).glob("*.cc")) + sorted((source / room).glob("*.h")):
            if f"{room}/{path.name}" not in DATA:
                found += places_of(path, room, f"{room}/{path.name}")
        twins = collections.Counter()
        ranked = []
        for place in found:
            text = f"{seed} {place.file} {place.code} {place.column} {place.new}"
            twins[text] += 1
            ranked.append((hashlib.sha256(f"{text} {twins[text]}".encode()).digest(), place))
        ranked.sort()
        order += [((i + 0.5) / len(ranked), room, place) for i, (_, place) in enumerate(ranked)]
    return [place for *_, place in sorted(order)]


class Test:
    def __init__(self, name, ninja):
        self.name = name
        self.target = "bin/" + name.replace("corpus_", "fuzz_")
        self.command, self.folder, self.environment, self.filter = [], "", {}, None
        rule = re.search(rf"^build {self.target}: .*", ninja, re.MULTILINE)
        self.hosted = bool(rule and "libvxhost.so" in rule[0])
        room = rule and re.search(r"\btests/(\w+)/CMakeFiles/", rule[0])
        self.room = room[1] if room else ""
        self.seconds = None  # of the processor, with the library unbroken
        self.kills = 0

    @property
    def quick(self):
        return self.filter is None or self.filter[0] == "-" or self.seconds < SLOW

    def listed(self, entry):
        properties = {part["name"]: part["value"] for part in entry["properties"]}
        self.command, self.folder = entry["command"], properties["WORKING_DIRECTORY"]
        self.environment = dict(part.split("=", 1) for part in properties.get("ENVIRONMENT", []))

    def part(self, cases, seconds):
        """The same program with some of its cases."""
        part = copy.copy(self)
        part.filter, part.seconds, part.kills = cases, seconds, 0
        return part

    def run(self, report=None):
        """Whether it passed, and the seconds of the processor that it took."""
        most = 5 + 4 * self.seconds if self.seconds is not None else 300

        def limits():
            resource.setrlimit(resource.RLIMIT_CPU, (int(most), int(most) + 2))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            resource.setrlimit(resource.RLIMIT_DATA, (6 << 30, 6 << 30))

        before = time.monotonic()
        environment = dict(os.environ, GTEST_BREAK_ON_FAILURE="1", GTEST_FAIL_FAST="1", GTEST_BRIEF="1",
                           **self.environment)
        if self.filter is not None:
            environment["GTEST_FILTER"] = self.filter
        if report is not None:
            environment["GTEST_OUTPUT"] = f"json:{report}"
        process = subprocess.Popen(self.command, cwd=self.folder, env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, preexec_fn=limits,
                                   start_new_session=True)
        while True:
            pid, status, used = os.wait4(process.pid, os.WNOHANG)
            if pid:
                process.returncode = os.waitstatus_to_exitcode(status)
                return process.returncode == 0, used.ru_utime + used.ru_stime
            if time.monotonic() - before > 60 + 20 * most:  # waits for something
                os.killpg(process.pid, 9)
                process.wait()
                return False, most
            time.sleep(0.01)


class Worker:
    def __init__(self, folder, commit):
        self.source, self.build, self.times = folder / "source", folder / "build", folder.parent / "times.json"
        self.environment = dict(os.environ, CCACHE_BASEDIR=str(folder), CCACHE_DIR=str(folder.parent / "ccache"),
                                CCACHE_NOHASHDIR="1", CCACHE_DEPEND="1")
        fresh = folder / "fresh"
        shutil.rmtree(fresh, ignore_errors=True)
        fresh.mkdir(parents=True)
        archive = subprocess.run(["git", "archive", commit], cwd=ROOT, check=True, capture_output=True).stdout
        subprocess.run(["tar", "x", "-m"], cwd=fresh, input=archive, check=True)
        # Files that did not change keep their time, so that they are not compiled again.
        for path in fresh.rglob("*"):
            old = self.source / path.relative_to(fresh)
            if path.is_file() and old.is_file() and path.read_bytes() == old.read_bytes():
                os.utime(path, ns=(old.stat().st_atime_ns, old.stat().st_mtime_ns))
        shutil.rmtree(self.source, ignore_errors=True)
        fresh.rename(self.source)
        subprocess.run(["cmake", "-G", "Ninja", "-S", self.source, "-B", self.build, "-DCMAKE_BUILD_TYPE=Release",
                        "-DVXNLS_TESTS=ON", "-DVXNLS_WERROR=OFF", "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG -w",
                        "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld"], check=True, stdout=subprocess.DEVNULL)
        ninja = (self.build / "build.ninja").read_text()
        tests = [Test(name, ninja) for name in self.listed()]
        self.rooms = [test for test in tests if test.room in ROOMS and test.name.endswith("_test")]
        self.whole = [test for test in tests if WHOLE.fullmatch(test.name)]
        self.measured = set()
        self.ready(self.rooms)
        self.plain = self.objects()

    def listed(self):
        """What ctest knows of each test; the command of one whose program is not built yet is missing."""
        listed = subprocess.run(["ctest", "--test-dir", self.build, "--show-only=json-v1"], check=True,
                                capture_output=True).stdout
        return {entry["name"]: entry for entry in json.loads(listed)["tests"]}

    def ninja(self, tests):
        command = ["ninja", "-C", self.build, "-j", "2", *sorted({test.target for test in tests})]
        return subprocess.run(command, env=self.environment, capture_output=True, check=False)

    def ready(self, tests):
        """Builds tests with the library unbroken, and sees them pass."""
        made = self.ninja(tests)
        if made.returncode:
            sys.exit(made.stdout.decode())
        listed = self.listed()
        known = json.loads(self.times.read_text()) if self.times.exists() else {}
        for test in list(tests):
            test.listed(listed[test.name])
            program = (self.build / test.target).read_bytes() + repr(self.objects()).encode()
            program = hashlib.sha256(program).hexdigest()
            if program not in known:
                report = self.build / "report.json"
                report.unlink(missing_ok=True)
                passed, seconds = test.run(report)
                slow = []
                if report.exists():
                    suites = json.loads(report.read_text())["testsuites"]
                    cases = {f"{suite['name']}.{case['name']}": float(case["time"][:-1])
                             for suite in suites for case in suite["testsuite"]}
                    factor = seconds / max(sum(cases.values()), 1e-3)  # the clock's seconds to the processor's
                    slow = [(name, time * factor) for name, time in cases.items() if time * factor > OWN_RUN]
                known[program] = {"passed": passed, "seconds": seconds, "slow": slow}
                self.times.write_text(json.dumps(known))
            test.seconds, slow = known[program]["seconds"], known[program]["slow"]
            for group in (self.rooms, self.whole):
                if test in group:
                    group.remove(test)
                    if not known[program]["passed"]:
                        print(f"{test.name} fails with the library unbroken and is left out", flush=True)
                    elif not slow or "GTEST_FILTER" in test.environment:
                        group.append(test)
                    else:
                        names, times = zip(*slow)
                        group.append(test.part("-" + ":".join(names), max(test.seconds - sum(times), 0)))
                        group += [test.part(name, time) for name, time in slow]
        self.measured.update(test.name for test in tests)

    def objects(self):
        folder = self.build / "CMakeFiles/vxnlsloc_objects.dir"
        return {str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).digest()
                for path in sorted(folder.rglob("*.o"))}

    def stages(self, room):
        """The quick tests of the room and its slow ones, the quick ones of the other rooms, and those of the whole.

        The slow ones of another room go through all values of what that room alone does."""
        own = [test for test in self.rooms if test.room == room]
        others = [test for test in self.rooms if test.room != room]
        for stage in ([test for test in own if test.quick and not test.hosted],
                      [test for test in own if not test.quick and not test.hosted],
                      [test for test in others if test.quick and not test.hosted],
                      [test for test in own + others + self.whole if test.quick and test.hosted or test in self.whole]):
            yield sorted(stage, key=lambda test: (test.seconds or 0) / (1 + test.kills))

    def broken(self, place):
        path = self.source / place.file
        lines = path.read_text().split("\n")
        line = lines[place.line]
        lines[place.line] = line[:place.column] + place.new + line[place.column + len(place.old):]
        return path, "\n".join(lines)

    def judge(self, place, quick):
        """What became of a mutant, and the test that caught it."""
        path, text = self.broken(place)
        whole = path.read_text()
        try:
            path.write_text(text)
            for number, tests in enumerate(self.stages(place.room)):
                if number == 1 and quick:
                    return "waiting", ""
                if not tests:
                    continue
                if number == 3 and not self.measured.issuperset(test.name for test in tests):
                    path.write_text(whole)
                    self.ready([test for test in self.whole if test.name not in self.measured])
                    tests = list(self.stages(place.room))[3]
                    path.write_text(text)
                if self.ninja(tests).returncode:
                    return "no program", ""
                if number == 0 and self.objects() == self.plain:
                    return "same objects", ""
                for test in tests:
                    if not test.run()[0]:
                        test.kills += 1
                        return "caught", test.name
            return "survived", ""
        finally:
            path.write_text(whole)


def key_of(record):
    return tuple(record[name] for name in ("file", "code", "column", "new"))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--count", type=int, default=300, help="mutants that compile and change the library")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--rooms", default=",".join(ROOMS))
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--folder", type=pathlib.Path, default=ROOT / "build/mutants", help="copies and builds")
    parser.add_argument("--out", type=pathlib.Path, default=ROOT / "build/mutants/results.jsonl")
    parser.add_argument("--commit", default="HEAD")
    parser.add_argument("--again", action="append", default=[], help="try the survivors of FILE or FILE:LINE anew")
    parser.add_argument("--quick", action="store_true", help="leave what the quick tests let pass to a later run")
    parser.add_argument("--list", action="store_true", help="tell the results without trying more")
    options = parser.parse_args()
    folder = options.folder.resolve()
    folder.mkdir(parents=True, exist_ok=True)
    options.out.parent.mkdir(parents=True, exist_ok=True)

    done = {}
    if options.out.exists():
        done = {key_of(record): record for record in map(json.loads, options.out.read_text().splitlines())}
    commit = subprocess.run(["git", "rev-parse", options.commit], cwd=ROOT, check=True, capture_output=True,
                            text=True).stdout.strip()
    lock, building = threading.Lock(), threading.Lock()
    again = [key for key, record in done.items() if record["outcome"] in ("survived", "waiting")
             and any(f"{record['file']}:{record['line']}".startswith(part) for part in options.again)]
    shared = {"order": None, "counted": 0}

    def next_place(worker):
        with lock:
            if shared["order"] is None:
                shared["order"] = iter(sample(worker.source, options.rooms.split(","), options.seed))
            for place in shared["order"]:
                key = key_of(place._asdict())
                if options.again:
                    if key in again:
                        return place
                    continue
                if shared["counted"] >= options.count:
                    return None
                if key not in done or (done[key]["outcome"] == "waiting" and not options.quick):
                    return place
                shared["counted"] += done[key]["outcome"] in COUNTED
            return None

    def work(number):
        with building:  # the first fills the cache of the compiler for the others
            worker = Worker(folder / str(number), commit)
        while (place := next_place(worker)) is not None:
            before = time.monotonic()
            outcome, by = worker.judge(place, options.quick)
            with lock, options.out.open("a") as out:
                record = dict(place._asdict(), line=place.line + 1, outcome=outcome, by=by, commit=commit[:7],
                              seconds=round(time.monotonic() - before, 1))
                done[key_of(record)] = record
                out.write(json.dumps(record) + "\n")
                shared["counted"] += outcome in COUNTED

    if not options.list:
        threads = [threading.Thread(target=work, args=(number,)) for number in range(options.jobs)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()

    by_room = collections.defaultdict(collections.Counter)
    for record in done.values():
        by_room[record["room"]][record["outcome"]] += 1
        by_room["all"][record["outcome"]] += 1
        if record["outcome"] in ("survived", "waiting"):
            print(f"{record['file']}:{record['line']}:{record['column'] + 1}: {record['old']} -> {record['new']}: "
                  f"{record['code']} ({record['outcome']})")
    columns = (*COUNTED, "same objects", "no program")
    print(" ".join([f"{'':16}", f"{'tried':>6}", *(f"{column:>12}" for column in columns)]))
    for room in (*sorted(set(by_room) - {"all"}), "all"):
        counts = by_room[room]
        tried = sum(counts[column] for column in COUNTED)
        print(" ".join([f"{room:16}", f"{tried:6}", *(f"{counts[column]:12}" for column in columns)]))
    times = [record["seconds"] for record in done.values()]
    if times:
        print(f"{sum(times) / len(times):.1f} seconds a mutant in each of the workers")


if __name__ == "__main__":
    main()
