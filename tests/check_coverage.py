#!/usr/bin/env python3
# VELL: data-driven hierarchical state machines.
# tests/check_coverage.py: whether the marks of lines that no test reaches are true.
"""Fails when a test reaches a line that GCOVR_EXCL_LINE marks, or one between GCOVR_EXCL_START and
GCOVR_EXCL_STOP. make coverage runs it after the tests. That every other line is reached, gcovr
checks itself. With --figures, writes the table of docs/coverage.md.
"""

import argparse
import collections
import datetime
import json
import os
import pathlib
import re
import subprocess
import sys

PAGE = pathlib.Path("docs/coverage.md")


def counted_lines():
    """Each line of code, marked or not, as (file, number, times it ran)."""
    report = subprocess.run(["gcovr", "--no-markers", "--fail-under-line", "0", "--json", "-"],
                            check=True, stdout=subprocess.PIPE, text=True).stdout
    return [(file["file"], line["line_number"], line["count"])
            for file in json.loads(report)["files"]
            for line in file["lines"] if not line["gcovr/noncode"]]


def marked_ranges(file):
    """The ranges of lines that a source marks."""
    first = None
    for number, line in enumerate(pathlib.Path(file).read_text().splitlines(), 1):
        mark = re.search(r"// GCOVR_EXCL_(LINE|START|STOP)", line)
        if mark is None:
            continue
        if mark[1] == "LINE":
            yield range(number, number + 1)
        elif mark[1] == "START":
            first = number
        else:
            yield range(first, number + 1)


def table(lines, marked):
    """The figures of each folder, as rows of a table."""
    total, left = collections.Counter(), collections.Counter()
    for file, number, _ in lines:
        for name in (f"`{file.partition('/')[0]}/`", "All"):
            total[name] += 1
            left[name] += (file, number) in marked
    rows = ["| Folder | Lines | Reached | Marked |", "|---|---|---|---|"]
    for name in sorted(total.keys() - {"All"}) + ["All"]:
        rows.append(f"| {name} | {total[name]} | {total[name] - left[name]} | {left[name]} |")
    return "\n".join(rows) + "\n"


def write_figures(lines, marked):
    today = datetime.datetime.now(datetime.timezone.utc).date()
    text = re.sub(r"(?<=^Figures of )[0-9-]+", str(today), PAGE.read_text(), flags=re.MULTILINE)
    PAGE.write_text(re.sub(r"^\| Folder .*\n(?:\|.*\n)+", table(lines, marked), text,
                           flags=re.MULTILINE))


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n\n")[0])
    parser.add_argument("--figures", action="store_true", help="write the table of the page")
    arguments = parser.parse_args()
    os.chdir(pathlib.Path(__file__).resolve().parent.parent)

    lines = counted_lines()
    counts = {(file, number): count for file, number, count in lines}
    marked = set()
    reached = []
    for file in sorted({file for file, *_ in lines}):
        for numbers in marked_ranges(file):
            places = [(file, number) for number in numbers if (file, number) in counts]
            marked.update(places)
            reached += [f"{file}:{number}: marked, but a test reaches it"
                        for _, number in places if counts[file, number] > 0]
    if arguments.figures:
        write_figures(lines, marked)
    print(*reached, sep="\n", file=sys.stderr, end="\n" if reached else "")
    print(f"{len(marked)} of {len(lines)} lines are marked as not reached by any test")
    return 1 if reached else 0


if __name__ == "__main__":
    sys.exit(main())
