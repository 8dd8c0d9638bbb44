#!/usr/bin/env python3
# VELL: data-driven hierarchical state machines.
# tests/check_checks.py: whether a unit test fails without each check statement of the library.
"""Removes each check statement of the library in turn and expects that a unit test then fails.

The statements are the macros of foundation/Checks.h. Those that no call can reach are listed, each
with its reason, in tests/check-checks-exceptions.txt. The result goes to docs/check-statements.md.

All statements are tried in one build of their own, build/check-checks: a copy of the sources whose
macros first ask whether they are the statement that is removed. A removed statement does not
evaluate its expression.
"""

import argparse
import concurrent.futures
import dataclasses
import datetime
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import textwrap

HEADER = "foundation/Checks.h"
EXCEPTIONS = pathlib.Path("tests/check-checks-exceptions.txt")
PAGE = pathlib.Path("docs/check-statements.md")
WORK = pathlib.Path("build/check-checks")
RESULTS = WORK / "results.tsv"  # key, "killed" or "survived", the test that failed
PROGRAMS = ("bench/", "docs/", "samples/", "tests/", "tools/")  # what is not the library
FEWEST_STATEMENTS = 200
TIME_LIMIT = 120  # seconds, for all unit tests

INTRODUCTION = """
`tests/check_checks.py` removes each check statement of the library in turn and runs the unit tests.
If no test fails, the tests have a gap, unless no call can make the check fail; those statements are
listed below with the reason, from `tests/check-checks-exceptions.txt`. The program is run by hand
and writes this page.
"""

MACRO = re.compile(r"^#define ((?:ERROR|ASSERT)_\w+)\((\w+)[^)]*\)((?:.*\\\n)*.*\n)", re.MULTILINE)

IS_REMOVED = r"""
#include <cstdlib>
#include <cstring>
namespace vell
{
// Whether the statement at `line` is the one that VELL_REMOVED_CHECK names as "file:first-last".
inline bool IsRemovedCheck(const char* file, int line)
{
    static const char* const place = std::getenv("VELL_REMOVED_CHECK");
    if (place == nullptr)
    {
        return false;
    }
    const char* const colon = std::strrchr(place, ':');
    char* dash = nullptr;
    const long first = std::strtol(colon + 1, &dash, 10);
    const long last = std::strtol(dash + 1, nullptr, 10);
    const std::size_t wanted = static_cast<std::size_t>(colon - place);
    const std::size_t length = std::strlen(file);
    return line >= first && line <= last && length >= wanted &&
           std::strncmp(file + length - wanted, place, wanted) == 0;
}
} // namespace vell
"""


class Failure(Exception):
    """What stops the program; its text is all that a user needs."""


@dataclasses.dataclass
class Statement:
    """A check statement. `key` is "file: function: statement", with a number from the second of a
    kind on; it stays the same when the statement moves within its function."""

    file: str
    first: int  # its first and last line
    last: int
    key: str

    @property
    def place(self):
        return f"{self.file}:{self.first}-{self.last}"


def tracked_files():
    """The paths of all sources that belong to the repository, new ones included."""
    listed = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        check=True, capture_output=True, text=True).stdout
    return sorted(name for name in set(listed.split("\0")) if name and os.path.isfile(name))


def macro_names():
    """The names of the check statements, as the header defines them."""
    names = [match[1] for match in MACRO.finditer(pathlib.Path(HEADER).read_text())]
    if len(names) < 4:
        raise Failure(f"{HEADER} defines only {len(names)} check statements")
    return names


def statements_of(file, text, names):
    """The check statements of the source `text`, in its order."""
    start = re.compile(r"^ *((?:" + "|".join(names) + r")\(.*)")
    function = ""
    seen = {}
    found = []
    lines = text.splitlines()
    for index, line in enumerate(lines):
        if re.match(r"[A-Za-z].*\(", line):
            function = re.sub(r"^.*[ *&]", "", line.partition("(")[0])
        match = start.match(line)
        if match is None:
            continue
        last = index
        statement = match[1]
        while ";" not in statement and last + 1 < len(lines):
            last += 1
            statement += " " + lines[last].strip()
        key = f"{file}: {function}: {statement.partition(';')[0]}"
        seen[key] = seen.get(key, 0) + 1
        if seen[key] > 1:
            key += f" ({seen[key]})"
        found.append(Statement(file, index + 1, last + 1, key))
    return found


def list_statements():
    """Every check statement of the library."""
    names = macro_names()
    found = []
    for file in tracked_files():
        if file.endswith((".cpp", ".h")) and not file.startswith(PROGRAMS):
            found += statements_of(file, pathlib.Path(file).read_text(), names)
    if len(found) < FEWEST_STATEMENTS:
        raise Failure(f"found only {len(found)} check statements")
    return found


def asking_header(text):
    """The text of the header, its macros asking first whether they are removed."""
    def ask(match):
        name, parameter, body = match.groups()
        condition = f"if (!({parameter}))"
        if body.count(condition) != 1:
            raise Failure(f"{HEADER}: {name} does not hold `{condition}` once")
        asking = f"if (!::vell::IsRemovedCheck(__FILE__, __LINE__) && !({parameter}))"
        return match[0].replace(condition, asking)

    end_of_includes = text.rindex("#include ")
    end_of_includes = text.index("\n", end_of_includes) + 1
    return text[:end_of_includes] + IS_REMOVED + MACRO.sub(ask, text[end_of_includes:])


def copy_sources():
    """Copies the sources. They keep their times: what has not changed is not built again."""
    copy = WORK / "source"
    shutil.rmtree(copy, ignore_errors=True)
    for file in tracked_files():
        (copy / file).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(file, copy / file)
    header = copy / HEADER
    header.write_text(asking_header(header.read_text()))
    shutil.copystat(HEADER, header)


def build(workers):
    """Builds the unit tests of the copy."""
    configure = ["cmake", "-S", WORK / "source", "-B", WORK / "build", "-G", "Ninja",
                 "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
                 "-DVELL_WARNINGS_AS_ERRORS=OFF", "-DVELL_INSTALL=OFF", "-DVELL_PRECOMPILE=ON"]
    if shutil.which("clang++-14"):  # compiles in half the time
        configure.append("-DCMAKE_CXX_COMPILER=clang++-14")
    if shutil.which("ld.gold"):
        configure.append("-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold")
    compile_tests = ["cmake", "--build", WORK / "build", "--target", "unit_tests",
                     "-j", str(workers)]
    for command in (configure, compile_tests):
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if done.returncode != 0:
            raise Failure("the copy does not build:\n" + last_lines(done.stdout))


def last_lines(text):
    return "\n".join(text.splitlines()[-30:])


def run_tests(place, test_filter="*"):
    """Runs the tests without the statement at `place`. Gives how they failed, or None, and what
    they wrote."""
    with tempfile.TemporaryDirectory(dir=WORK) as folder:
        environment = dict(os.environ, TMPDIR=os.path.abspath(folder), VELL_REMOVED_CHECK=place)
        try:
            done = subprocess.run(
                [WORK / "build/bin/unit_tests", "--gtest_brief=1", "--gtest_fail_fast",
                 "--gtest_filter=" + test_filter],
                env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                stderr=subprocess.STDOUT, timeout=TIME_LIMIT, text=True, errors="replace")
        except subprocess.TimeoutExpired:
            return "hangs", ""
    if done.returncode == 0:
        return None, done.stdout
    failed = re.search(r"^\[  FAILED  \] ([^ ,\n]*)", done.stdout, re.MULTILINE)
    return (failed[1] if failed else "crashes"), done.stdout


def filter_of(folder):
    """The filter of the tests in tests/`folder`/."""
    names = set()
    for source in pathlib.Path("tests", folder).glob("*.cpp"):
        names.update(re.findall(r"^(?:TYPED_)?TEST(?:_F|_P)?\((\w+),", source.read_text(),
                                re.MULTILINE))
    return ":".join(f"{name}.*:*/{name}.*:{name}/*" for name in sorted(names))


def try_statement(statement):
    """A row of the results: the key, the outcome, and the test that failed."""
    # The folder's own tests first: they mostly tell, and quickly.
    how, _ = run_tests(statement.place, filter_of(statement.file.partition("/")[0]))
    if how is None:
        how, _ = run_tests(statement.place)
    return (statement.key, "survived", "-") if how is None else (statement.key, "killed", how)


def kept_results(statements):
    """What an earlier run found killed, of the statements that are still there."""
    keys = {statement.key for statement in statements}
    rows = [tuple(line.split("\t")) for line in RESULTS.read_text().splitlines()]
    return [row for row in rows if row[1] == "killed" and row[0] in keys]


def try_statements(statements, results, workers):
    """Tries the statements and adds their rows to `results` and, as they come, to the file."""
    with concurrent.futures.ThreadPoolExecutor(workers) as pool, RESULTS.open("w") as file:
        for row in results:
            print(*row, sep="\t", file=file)
        running = [pool.submit(try_statement, statement) for statement in statements]
        for future in concurrent.futures.as_completed(running):
            results.append(future.result())
            print(*results[-1], sep="\t", file=file, flush=True)


def list_exceptions():
    """The reason of each exception, by its key: a line at the margin, its reason indented below."""
    reasons = {}
    key = None
    for line in EXCEPTIONS.read_text().splitlines():
        if line.startswith(" "):
            reasons[key] = (reasons[key] + " " + line.strip()).strip()
        elif line and not line.startswith("#"):
            key = line
            reasons[key] = ""
    return reasons


def page(results, missed, exceptions):
    """The page about a whole run."""
    killed = [key for key, outcome, _ in results if outcome == "killed"]
    by_file = {}
    for key, outcome, _ in sorted(results):
        counts = by_file.setdefault(key.partition(": ")[0], [0, 0])
        counts[0] += 1
        counts[1] += outcome == "killed"
    today = datetime.datetime.now(datetime.timezone.utc).date()
    lines = [
        "# Check statements",
        "",
        *textwrap.wrap(INTRODUCTION.strip(), 100),
        "",
        "| Last run | Statements | A test fails without it | Cannot fail | No test fails |",
        "|---|---|---|---|---|",
        f"| {today} | {len(results)} | {len(killed)} | "
        f"{len(results) - len(killed) - len(missed)} | {len(missed)} |",
        "",
        "## By file",
        "",
        "| File | Statements | A test fails without it |",
        "|---|---|---|",
        *(f"| `{file}` | {all_of_it} | {its_killed} |"
          for file, (all_of_it, its_killed) in by_file.items()),
        "",
        "## No test fails",
        "",
        *([f"- `{key}`" for key in missed] or ["None."]),
        "",
        "## Cannot fail",
    ]
    for key, reason in exceptions.items():
        lines += ["", f"- `{key}`", ""]
        lines += textwrap.wrap(reason, 100, initial_indent="  ", subsequent_indent="  ")
    return "\n".join(lines) + "\n"


def report(results, whole):
    """Says what was found, writes the page of a whole run, and tells whether all is well."""
    exceptions = list_exceptions()
    survived = {key for key, outcome, _ in results if outcome == "survived"}
    missed = sorted(survived - exceptions.keys())
    stale = sorted(exceptions.keys() - survived) if whole else []
    for key in missed:
        print(f"no test fails without {key}", file=sys.stderr)
    for key in stale:
        print(f"excepted, but gone or killed by a test: {key}", file=sys.stderr)
    if whole:
        PAGE.write_text(page(results, missed, exceptions))
    print(f"{len(results)} check statements: {len(survived)} survive, "
          f"{len(survived & exceptions.keys())} of them excepted")
    return not missed and not stale


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--resume", action="store_true",
                        help="keep what the last run found; try what survived or was not tried")
    parser.add_argument("--workers", type=int, default=2, metavar="N",
                        help="how many programs run at once (2)")
    parser.add_argument("--only", default="", metavar="PATTERN",
                        help='try only statements whose line "file: function: statement" matches; '
                             "the page is not written")
    parser.add_argument("--list", action="store_true", help="print the statements; try none")
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    os.chdir(pathlib.Path(__file__).resolve().parent.parent)
    statements = list_statements()
    if arguments.list:
        print(*(f"{statement.place}\t{statement.key}" for statement in statements), sep="\n")
        return 0
    WORK.mkdir(parents=True, exist_ok=True)
    copy_sources()
    build(arguments.workers)
    how, output = run_tests("nowhere:0-0")
    if how is not None:
        raise Failure("the tests fail with every statement in place:\n" + last_lines(output))
    results = kept_results(statements) if arguments.resume and RESULTS.exists() else []
    done = {key for key, *_ in results}
    try_statements([statement for statement in statements if statement.key not in done
                    and re.search(arguments.only, statement.key)], results, arguments.workers)
    return 0 if report(results, whole=not arguments.only) else 1


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Failure as failure:
        sys.exit(f"check_checks: {failure}")
