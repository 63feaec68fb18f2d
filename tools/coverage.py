#!/usr/bin/env python3
"""Reports what gcov counted: what was not run, and a table with a line a room. Fails when a room is below its limit.

Usage: tools/coverage.py BUILD [ROOM...]

Instances of a template count together: a line is run, a branch is taken, when it is in one of them. Instances whose line
branches differently (`if constexpr`) are held apart. The places into which an always_inline function goes count together
as well. It reads the JSON of gcov, as the text of gcov 12 leaves out the branches of the last template of a header, and
takes no count of the branches that exceptions would take.

A line that no input reaches is marked GCOV_EXCL_LINE, one with a branch that none takes GCOV_EXCL_BR_LINE, with the reason.
"""
import json
import os
import subprocess
import sys

LIBRARY = ("unicode kernel_strings utf8 calendar number_parse number_format datetime_format datetime_parse "
           "collation module").split()
LIMITS = {room: (100, 98) for room in LIBRARY}  # percent of the lines and of the branches
# Their templates come from other libraries, and bring branches that are not theirs: lines alone.
LIMITS |= {"host": (95, 0), "cli": (95, 0)}


def instances_at(functions, line):
    """How many instances there are of the innermost function around a line."""
    starts = [(function["start_line"], function["start_column"]) for function in functions
              if function["start_line"] <= line <= function["end_line"]]
    return starts.count(max(starts)) if starts else 1


def lines_inlined(source):
    """The numbers of the lines of always_inline functions: up to the closing brace below the first line's begin."""
    numbers, indent = set(), None
    for number, text in enumerate(source, 1):
        if "gnu::always_inline" in text:
            indent = len(text) - len(text.lstrip())
        if indent is not None:
            numbers.add(number)
            if text.startswith(" " * indent + "}"):
                indent = None
    return numbers


def folded(shapes):
    """The branches of places that stand one behind the other, as one place's, which the shortest row is."""
    one = min((length for length in shapes if length > 0), default=1)
    sums = {}
    for length, counts in shapes.items():
        step = one if length % one == 0 else length
        before = sums.get(step, [0] * step)
        sums[step] = [before[at] + sum(counts[at::step]) for at in range(step)] if length else []
    return sums


def counted(build, root, rooms):
    """Of each line of each file: how often it ran, and for each way to branch how often each branch was taken."""
    notes = [os.path.join(folder, name) for folder, _, names in os.walk(build) for name in names
             if name.endswith(".gcda") and not set(rooms).isdisjoint(os.path.relpath(folder, build).split(os.sep))]
    files = {}
    gcov = subprocess.run([os.environ.get("GCOV", "gcov-12"), "--json-format", "--stdout", "--branch-probabilities", *notes],
                          cwd=build, check=False, capture_output=True, text=True)
    if gcov.returncode != 0 or not notes:
        sys.exit(f"{gcov.stderr.strip()}\ncounted by another build, or by none: script/coverage counts anew")
    for unit in map(json.loads, gcov.stdout.splitlines()):
        for file in unit["files"]:
            path = os.path.relpath(os.path.join(unit["current_working_directory"], file["file"]), root)
            if path.split(os.sep)[0] not in rooms or path.endswith(".inc"):  # generated tables
                continue
            lines = files.setdefault(path, {})
            for line in file["lines"]:
                runs, shapes = lines.get(line["line_number"], (0, {}))
                taken = [branch["count"] for branch in line["branches"] if not branch["throw"]]
                # Where gcov names no function, the branches of all that share the line stand one behind the other.
                instances = 1 if line.get("function_name") else instances_at(file["functions"], line["line_number"])
                if len(taken) % instances == 0:
                    step = len(taken) // instances
                    taken = [sum(taken[at::step]) for at in range(step)]
                before = shapes.get(len(taken), [0] * len(taken))
                shapes[len(taken)] = [a + b for a, b in zip(before, taken)]
                lines[line["line_number"]] = (runs + line["count"], shapes)
    return files


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    build, rooms = os.path.abspath(sys.argv[1]), sys.argv[2:] or list(LIMITS)
    if unknown := [room for room in rooms if room not in LIMITS]:
        sys.exit(f"no room {unknown[0]}; there are: {' '.join(LIMITS)}")
    sums = {room: [0, 0, 0, 0] for room in rooms}
    for path, lines in sorted(counted(build, root, rooms).items()):
        with open(os.path.join(root, path), encoding="utf-8") as file:
            source = file.read().splitlines()
        of_room, inlined = sums[path.split(os.sep)[0]], lines_inlined(source)
        for number, (runs, shapes) in sorted(lines.items()):
            text = source[number - 1].strip()
            # A closing brace that never ran holds what only an exception undoes.
            if "GCOV_EXCL_LINE" in text or (runs == 0 and not text.strip("{}(); ")):
                continue
            if number in inlined:
                shapes = folded(shapes)
            branches = [] if "GCOV_EXCL_BR_LINE" in text else [count for shape in shapes.values() for count in shape]
            of_room[0] += 1
            of_room[1] += runs > 0
            of_room[2] += len(branches)
            of_room[3] += sum(count > 0 for count in branches)
            if runs == 0:
                print(f"{path}:{number}: not run: {text}")
            elif 0 in branches:
                print(f"{path}:{number}: branches taken {' '.join(map(str, branches))} times: {text}")
    print(f"\n{'room':<16} {'lines':>6} {'run':>6} {'%':>7} {'branches':>9} {'taken':>6} {'%':>7}")
    low = 0
    for room, (lines, run, branches, taken) in sums.items():
        of_lines, of_branches = 100 * run / (lines or 1), 100 * taken / (branches or 1)
        below = of_lines < LIMITS[room][0] or of_branches < LIMITS[room][1] and branches > 0
        low += below
        print(f"{room:<16} {lines:>6} {run:>6} {of_lines:>7.2f} {branches:>9} {taken:>6} {of_branches:>7.2f}"
              f"{'  below the limit' if below else ''}")
    sys.exit(low > 0)


if __name__ == "__main__":
    main()
