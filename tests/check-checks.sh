#!/usr/bin/env bash
# Takes the library's check statements (ERROR_BREAK, ASSERT_BREAK, ERROR_GOTO, ERROR_ASSERT) out one at a
# time and shows those without which no test fails. docs/check-statements.md lists the ones that no call
# reaches, with the reason; the script fails for any other.
# Usage: tests/check-checks.sh [FIRST [LAST]]: statements by number, all of them without.
#
# It builds the tests once, from a copy of the sources whose checks ask the environment whether they stand:
# VELL_REMOVED_CHECK=FILE:LINE takes one out.
set -euo pipefail
cd "$(dirname "$0")/.."

first=${1:-1}
last=${2:-100000}
root=$(pwd)
copy=${root}/build/check-checks
jobs=${JOBS:-$(nproc)}
seconds=${VELL_CHECK_SECONDS:-120}
folders=(machine states transitions definitions parameters introspection)

mkdir -p "${copy}/source"
git ls-files -z | tar --null --files-from=- -cf - | tar -xf - -C "${copy}/source"
cat >>"${copy}/source/foundation/Checks.h" <<'END'

#include <cstdlib>
#include <cstring>

namespace vell
{
inline bool IsCheckRemoved(const char* file, int line)
{
    static const char* const removed = std::getenv("VELL_REMOVED_CHECK");
    static const char* const colon = removed == nullptr ? nullptr : std::strchr(removed, ':');
    static const int removedLine = colon == nullptr ? 0 : std::atoi(colon + 1);
    if (line != removedLine)
    {
        return false;
    }
    const std::size_t length = static_cast<std::size_t>(colon - removed);
    const std::size_t whole = std::strlen(file);
    return whole >= length && std::strncmp(file + whole - length, removed, length) == 0;
}
} // namespace vell

#undef ERROR_BREAK
#undef ASSERT_BREAK
#undef ERROR_GOTO
#undef ERROR_ASSERT
#define VELL_FAILS(expr) (!::vell::IsCheckRemoved(__FILE__, __LINE__) && !(expr))
#define ERROR_BREAK(expr)                                                                          \
    if (VELL_FAILS(expr))                                                                          \
    {                                                                                              \
        ::vell::LogErrorBreak((expr), __LINE__, VELL_FUNCTION);                                    \
        break;                                                                                     \
    }                                                                                              \
    static_assert(true, "a semicolon follows")
#define ASSERT_BREAK(expr)                                                                         \
    if (VELL_FAILS(expr))                                                                          \
    {                                                                                              \
        ::vell::LogAssertBreak(__LINE__, VELL_FUNCTION);                                           \
        break;                                                                                     \
    }                                                                                              \
    static_assert(true, "a semicolon follows")
#define ERROR_GOTO(expr, label)                                                                    \
    if (VELL_FAILS(expr))                                                                          \
    {                                                                                              \
        ::vell::LogErrorGoto(__LINE__, VELL_FUNCTION);                                             \
        goto label;                                                                                \
    }                                                                                              \
    static_assert(true, "a semicolon follows")
#define ERROR_ASSERT(expr)                                                                         \
    if (VELL_FAILS(expr))                                                                          \
    {                                                                                              \
        ::vell::LogErrorAssert(__LINE__, VELL_FUNCTION);                                           \
    }                                                                                              \
    static_assert(true, "a semicolon follows")
END
cmake -S "${copy}/source" -B "${copy}/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
      -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g0" -DVELL_BUILD_SAMPLES=OFF -DVELL_INSTALL=OFF >"${copy}/configure.log"
cmake --build "${copy}/build" -j "${jobs}" --target unit_tests >"${copy}/build.log"
tests=${copy}/build/bin/unit_tests

# Tests of what else lies in the repository, and the longest ones, do not speak of checks.
export GTEST_FILTER="-*Doc.*:*Snippets*:TableThreads.*:HSMMemory.IsGivenBack*:*Explain*:*Graph*"
if ! "${tests}" >"${copy}/whole.log" 2>&1; then
    tail -n 20 "${copy}/whole.log" >&2
    echo "check-checks: the tests fail with every check in place" >&2
    exit 1
fi

# NUMBER <tab> FILE:LINE <tab> FILE <tab> FUNCTION <tab> STATEMENT
mapfile -t files < <(find "${folders[@]}" -name '*.cpp' -o -name '*.h' | LC_ALL=C sort)
awk '
    /^[A-Za-z].*[A-Za-z0-9_]\(/ {
        name = $0
        sub(/\(.*/, "", name)
        sub(/.*[ *&]/, "", name)
        function_name = name
    }
    /^ *(ERROR_BREAK|ASSERT_BREAK|ERROR_GOTO|ERROR_ASSERT)\(/ {
        statement = $0
        sub(/^ */, "", statement)
        sub(/; *(\/\/.*)?$/, "", statement)
        printf "%d\t%s:%d\t%s\t%s\t%s\n", ++number, FILENAME, FNR, FILENAME, function_name, statement
    }
' "${files[@]}" >"${copy}/checks.txt"
found=$(wc -l <"${copy}/checks.txt")
if ((found < 250)); then
    echo "check-checks: found only ${found} check statements" >&2
    exit 1
fi

# Says "caught" or "missed" of the check in the line $1.
try_check()
{
    local number place file function statement outcome=caught
    IFS=$'\t' read -r number place file function statement <<<"$1"
    # A fault or a hang is a failure as well; the shell's word on it is nothing to show.
    if { VELL_REMOVED_CHECK=${place} timeout "${seconds}" "${tests}" --gtest_fail_fast --gtest_brief=1; } \
        >/dev/null 2>&1; then
        outcome=missed
    fi
    printf '%s\t%s\t%s\t%s\t%s\t%s\n' "${outcome}" "${number}" "${place}" "${file}" "${function}" "${statement}"
}
export -f try_check
export tests seconds

awk -F'\t' -v first="${first}" -v last="${last}" '$1 >= first && $1 <= last' "${copy}/checks.txt" |
    xargs -d '\n' -P "${jobs}" -I{} bash -c 'try_check "$1"' _ {} | sort -t $'\t' -k2n >"${copy}/result.txt"

# The rows of the document: | `FILE` | `FUNCTION` | `STATEMENT` | reason |
failed=0
listed=0
missed=0
while IFS=$'\t' read -r outcome number place file function statement; do
    [[ "${outcome}" == missed ]] || continue
    missed=$((missed + 1))
    if grep -qF "| \`${file}\` | \`${function}\` | \`${statement}\` |" docs/check-statements.md 2>/dev/null; then
        listed=$((listed + 1))
    else
        printf '%s: %s: no test fails without %s\n' "${place}" "${function}" "${statement}" >&2
        failed=1
    fi
done <"${copy}/result.txt"
echo "$(wc -l <"${copy}/result.txt") of ${found} check statements taken out: $((missed)) missed, ${listed} of them listed"
exit "${failed}"
