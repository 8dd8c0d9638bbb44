#!/usr/bin/env python3
"""Checks that every include points to a folder of the same rank or a lower one.

The ranks are in cmake/layers.txt. Hosts (samples, tests/host, tests/consumer) and the public headers
see public headers alone, and the library reaches the two platform folders through their public
headers alone. Fails when it finds too few includes to have looked at anything.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]')
FEWEST_INCLUDES = 500
PROGRAMS = ("tools", "samples", "bench", "tests", "tests/support")
HOSTS = ("samples", "tests/host", "tests/consumer")


def read_layers():
    """Gives the rank of each folder, and the folder of each public header."""
    ranks, owners = {}, {}
    for line in (ROOT / "cmake/layers.txt").read_text().splitlines():
        words = line.split("#")[0].split()
        if words:
            ranks[words[0]] = len(ranks)
            owners.update(dict.fromkeys(words[1:], words[0]))
    return ranks, owners


def find_folder(path, ranks):
    """Gives the ranked folder that a path is in, or None."""
    return max((folder for folder in ranks if path.startswith(folder + "/")), key=len, default=None)


def find_fault(source, target, ranks, owners):
    """Tells what is wrong with an include, or None."""
    is_public = source.startswith("include/")
    own = owners.get(source.removeprefix("include/")) if is_public else find_folder(source, ranks)
    if own is None:
        return "is in no folder of cmake/layers.txt"
    wanted = owners.get(target) or find_folder(target, ranks)
    if wanted is None:
        return None
    is_private = target not in owners
    if ranks[wanted] > ranks[own]:
        return f"{own} is below {wanted}"
    if is_private and wanted not in PROGRAMS and (is_public or source.startswith(HOSTS)):
        return "a public header or a host sees public headers alone"
    if is_private and wanted.startswith("platform/") and own != wanted and own not in PROGRAMS:
        return "the platform is reached through its public headers alone"
    if own == "platform/tessel" and wanted == "platform/durm":
        return "the tables do not need the vocabulary"
    return None


def main():
    ranks, owners = read_layers()
    faults, looked = [], 0
    folders = ["include"] + [folder.split("/")[0] for folder in ranks]
    for path in sorted(path for folder in set(folders) for path in (ROOT / folder).rglob("*.[ch]*")):
        source = path.relative_to(ROOT).as_posix()
        if path.suffix not in (".h", ".cpp"):
            continue
        for number, line in enumerate(path.read_text().splitlines(), 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            looked += 1
            fault = find_fault(source, match[1], ranks, owners)
            if fault:
                faults.append(f"{source}:{number}: includes {match[1]}: {fault}")
    for header in sorted((ROOT / "include").rglob("*.h")):
        name = header.relative_to(ROOT / "include").as_posix()
        if name not in owners:
            faults.append(f"include/{name}: no folder of cmake/layers.txt implements it")
    if looked < FEWEST_INCLUDES:
        faults.append(f"looked at only {looked} includes")
    print("\n".join(faults) if faults else f"{looked} includes, none of them upward")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
