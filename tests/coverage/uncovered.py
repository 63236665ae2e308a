#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0

"""usage: uncovered.py BUILD_FOLDER LIST

Prints the lines of the library and of the platform that were never reached, or have a branch that was never taken, as
far as LIST does not have them, and what LIST has although it was. LIST is Markdown with a heading "## FILE" and behind it
an item "- `TEXT`" for each such line of that file. The exit status is 1 when anything of that kind was printed.

Each instance of a template counts by itself, which is why gcov is asked and not gcovr, which adds them up. What only the
compiler puts into a line does not count: the branches by which exceptions leave calls and find their handlers, and the
end of a block, where objects are destroyed.
"""

import collections
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
MEASURED = ("cds_parser/", "include/", "inventory/", "platform/")


def reports(build):
    """What gcov tells of each object."""
    for notes in sorted(build.rglob("*.gcno")):
        told = subprocess.run(["gcov", "--branch-probabilities", "--json-format", "--stdout", notes], check=True,
                              capture_output=True)
        yield json.loads(told.stdout)


def measured_files(build):
    for report in reports(build):
        for file in report["files"]:
            path = pathlib.Path(report["current_working_directory"], file["file"]).resolve()
            name = str(path.relative_to(ROOT)) if path.is_relative_to(ROOT) else ""
            if name.startswith(MEASURED):
                yield name, file


def count(build):
    """By file, line and function: how often the line ran and each of its branches was taken, in all objects together."""
    counts = {}
    for name, file in measured_files(build):
        texts = (ROOT / name).read_text().splitlines()
        functions = {function["name"]: function["demangled_name"] for function in file["functions"]}
        for line in file["lines"]:
            text = texts[line["line_number"] - 1].strip()
            if re.fullmatch(r"[{}();\s]*", text):
                continue
            function = functions.get(line.get("function_name"), "no function")
            branches = [] if "catch (" in text else [each["count"] for each in line["branches"] if not each["throw"]]
            now = [line["count"], *branches]
            key = (name, line["line_number"], text, function)
            counts[key] = [a + b for a, b in zip(counts.get(key, [0] * len(now)), now, strict=True)]
    return counts


def find_misses(counts):
    """By file and text, which outlive changes elsewhere in the file, and line: how the line was missed."""
    misses = collections.defaultdict(lambda: collections.defaultdict(list))
    for (name, number, text, function), (runs, *branches) in sorted(counts.items()):
        if runs == 0:
            misses[name, text][number].append(f"not reached in {function}")
        elif 0 in branches:
            misses[name, text][number].append(f"{branches.count(0)} of {len(branches)} branches not taken in {function}")
    return misses


def read_list(path):
    """How many lines are listed by file and text."""
    listed = collections.Counter()
    name = ""
    for line in path.read_text().splitlines():
        if line.startswith("## "):
            name = line.removeprefix("## ")
        elif item := re.fullmatch("- `(.*)`", line):
            listed[name, item[1]] += 1
    return listed


def print_difference(misses, listed):
    """True when there is none."""
    found = collections.Counter({miss: len(lines) for miss, lines in misses.items()})
    for name, text in found - listed:
        print(f"MISSED {name}: {text}")
        for number, ways in misses[name, text].items():
            print(*(f"       line {number}: {way}" for way in ways), sep="\n")
    for name, text in listed - found:
        print(f"TAKEN  {name}: {text}")
    return found == listed


def main():
    build, listed = pathlib.Path(sys.argv[1]), read_list(pathlib.Path(sys.argv[2]))
    counts = count(build)
    if not counts:
        sys.exit(f"nothing was counted in {build}")
    as_listed = print_difference(find_misses(counts), listed)
    branches = [branch for _, *branches in counts.values() for branch in branches]
    reached = sum(runs > 0 for runs, *_ in counts.values())
    taken = sum(branch > 0 for branch in branches)
    print(f"lines: {reached} of {len(counts)} reached; branches: {taken} of {len(branches)} taken; "
          f"lines with a miss: {listed.total()} listed")
    sys.exit(not as_listed)


if __name__ == "__main__":
    main()
