#!/usr/bin/env bash
# Tries whether the tests can fail: takes each check statement of the library away in turn and
# expects that at least one unit test then fails. Those that no call can reach are listed, each with
# its reason, in tests/check-checks-exceptions.txt. Writes the outcome to docs/check-statements.md.
# Usage: tests/check-checks.sh [--resume] [--workers N] [--only PATTERN]
#   --resume   keep what the last run found, and try again only what survived or was not tried
#   --workers  how many programs run at once; 2 when not given
#   --only     try only the statements whose line "file: function: statement" matches PATTERN; the
#              table is not written
# All statements are tried in one build of their own, build/check-checks: a copy of the sources
# whose statements ask first whether they are the one taken away. A statement taken away does not
# evaluate its expression.
set -euo pipefail
cd "$(dirname "$0")/.."

resume=0
workers=2
only=
while (($#)); do
    case "$1" in
    --resume) resume=1 ;;
    --workers) workers=${2:?--workers needs a number} && shift ;;
    --only) only=${2:?--only needs a pattern} && shift ;;
    *) sed -n '5,9s/^# \{0,1\}//p' "$0" >&2 && exit 2 ;;
    esac
    shift
done

folders=(machine document idle states transitions definitions parameters introspection)
exceptions=tests/check-checks-exceptions.txt
work=build/check-checks
statements=${work}/statements.tsv # place, key
results=${work}/results.tsv       # key, killed or survived, how
mkdir -p "${work}"

# Lists every check statement as "file:line" and its key: "file: function: statement", with a number
# behind it from the second of the same kind on.
list_statements()
{
    grep -lE '^ *(ERROR|ASSERT)_(BREAK|GOTO|ASSERT)\(' -r "${folders[@]}" | LC_ALL=C sort |
        xargs awk '
            FNR == 1 { name = "" }
            /^[A-Za-z].*\(/ {
                name = $0
                sub(/\(.*/, "", name)
                sub(/^.*[ *&]/, "", name)
            }
            match($0, /^ *(ERROR|ASSERT)_(BREAK|GOTO|ASSERT)\(/) {
                statement = $0
                sub(/^ */, "", statement)
                sub(/;.*$/, "", statement)
                key = FILENAME ": " name ": " statement
                if (++seen[key] > 1) { key = key " (" seen[key] ")" }
                print FILENAME ":" FNR "\t" key
            }'
}

# Copies the sources and makes their check statements ask whether they are taken away.
copy_sources()
{
    local header=${work}/source/foundation/Checks.h
    rm -rf "${work}/source"
    mkdir -p "${work}/source"
    git ls-files -z --cached --others --exclude-standard |
        xargs -0 cp --parents --preserve=mode,timestamps -t "${work}/source"
    if (($(grep -cE '^    if \(!\(expr\)\) +\\$' "${header}") != 4)); then
        echo "check-checks: ${header} does not hold the four statements as this script knows them" >&2
        exit 1
    fi
    sed -i -E -e 's/^    if \(!\(expr\)\) +\\$/    if (!::vell::IsTakenAway(__FILE__, __LINE__) \&\& !(expr)) \\/' \
        -e '/^#include "foundation\/LogStream.h"$/r '<(
        cat <<'CODE'
#include <cstdlib>
#include <cstring>
namespace vell
{
inline bool IsTakenAway(const char* file, int line)
{
    static const char* const place = std::getenv("VELL_CHECK_TAKEN_AWAY");
    if (place == nullptr)
    {
        return false;
    }
    const char* const colon = std::strrchr(place, ':');
    const std::size_t wanted = static_cast<std::size_t>(colon - place);
    const std::size_t length = std::strlen(file);
    return line == std::atoi(colon + 1) && length >= wanted &&
           std::strncmp(file + length - wanted, place, wanted) == 0;
}
} // namespace vell
CODE
    ) "${header}"
    touch -r foundation/Checks.h "${header}" # what has not changed is not built again
}

build()
{
    local linker=()
    ! command -v ld.gold >/dev/null || linker=(-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold)
    cmake -S "${work}/source" -B "${work}/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DVELL_WARNINGS_AS_ERRORS=OFF -DVELL_INSTALL=OFF \
        "${linker[@]}" >"${work}/configure.log"
    cmake --build "${work}/build" --target unit_tests -j "${workers}" >"${work}/build.log" ||
        { tail -n 30 "${work}/build.log" >&2 && exit 1; }
}

# Runs the tests that the filter `$3` names without the statement at `$1`; the log stands in `$2`.
run_tests()
{
    mkdir -p "$2.tmp"
    TMPDIR=${PWD}/$2.tmp VELL_CHECK_TAKEN_AWAY=$1 timeout 120 "${work}/build/bin/unit_tests" \
        --gtest_brief=1 --gtest_fail_fast --gtest_filter="$3" >"$2" 2>&1
}

# Gives the filter of the tests that stand in the folder of the place `$1`.
filter_of()
{
    sed -nE 's/^(TYPED_)?TEST(_F|_P)?\((\w+),.*/\3.*:*\/\3.*:\3\/*/p' tests/"${1%%/*}"/*.cpp |
        sort -u | paste -sd :
}

# Tries every `workers`-th statement from the `$1`-th on, and adds a line to the results for each.
try_statements()
{
    local first=$1 number=0 place key status how log=${work}/run.$1.log
    while IFS=$'\t' read -r place key <&3; do
        ((number++ % workers == first)) || continue
        status=0
        # The folder's own tests first: they mostly tell, and quickly.
        run_tests "${place}" "${log}" "$(filter_of "${place}")" || status=$?
        ((status)) || run_tests "${place}" "${log}" '*' || status=$?
        how=$(sed -n 's/^\[  FAILED  \] \([^ ,]*\).*/\1/p' "${log}" | head -n 1)
        case "${status}" in
        0) printf '%s\tsurvived\t-\n' "${key}" ;;
        124) printf '%s\tkilled\thangs\n' "${key}" ;;
        *) printf '%s\tkilled\t%s\n' "${key}" "${how:-crashes}" ;;
        esac >>"${results}"
    done 3<"${work}/todo.tsv"
}

# The exceptions as "key<TAB>reason". A key stands at the margin, its reason indented below.
list_exceptions()
{
    awk '/^#/ || /^$/ { next }
         /^ / { sub(/^ +/, ""); reason = reason (reason == "" ? "" : " ") $0; next }
         { if (key != "") { print key "\t" reason } key = $0; reason = "" }
         END { if (key != "") { print key "\t" reason } }' "${exceptions}"
}

write_table()
{
    local total killed left
    total=$(wc -l <"${statements}")
    killed=$(awk -F'\t' '$2 == "killed"' "${results}" | wc -l)
    left=$(wc -l <"${work}/left.txt")
    cat <<END
# Check statements that tests would miss

\`tests/check-checks.sh\` takes each check statement of the library away in turn and runs the unit
tests. A statement whose absence no test notices is a hole in the tests, unless no call can reach it;
those stand below with the reason, from \`tests/check-checks-exceptions.txt\`. The script runs by hand
and wrote this page.

| Last run | Statements | A test fails without it | No call reaches it | Missed |
|---|---|---|---|---|
| $(date -u +%Y-%m-%d) | ${total} | ${killed} | $((total - killed - left)) | ${left} |

## By file

| File | Statements | A test fails without it |
|---|---|---|
END
    awk -F'\t' '{ split($1, part, ": "); ++all[part[1]]; if ($2 == "killed") { ++killed[part[1]] } }
        END { for (file in all) { printf "| `%s` | %d | %d |\n", file, all[file], killed[file] } }' \
        "${results}" | LC_ALL=C sort
    printf '\n## Missed\n\n'
    ((left > 0)) && sed 's/.*/- `&`/' "${work}/left.txt" || echo "None."
    printf '\n## No call reaches it\n'
    list_exceptions | while IFS=$'\t' read -r key reason; do
        printf '\n- `%s`\n\n' "${key}"
        fold -s -w 98 <<<"${reason}" | sed -e 's/ *$//' -e 's/^/  /'
    done
}

list_statements >"${statements}"
if (($(wc -l <"${statements}") < 200)); then
    echo "check-checks: found only $(wc -l <"${statements}") check statements" >&2
    exit 1
fi
copy_sources
build
if ! run_tests "nowhere:0" "${work}/run.all.log" '*'; then
    tail -n 30 "${work}/run.all.log" >&2
    echo "check-checks: the tests fail with every statement in place" >&2
    exit 1
fi

touch "${results}"
((resume)) || : >"${results}"
awk -F'\t' 'FILENAME == ARGV[1] { now[$2] = 1; next } $2 == "killed" && ($1 in now)' \
    "${statements}" "${results}" >"${results}.kept"
mv "${results}.kept" "${results}"
awk -F'\t' 'FILENAME == ARGV[1] { done[$1] = 1; next } !($2 in done)' "${results}" "${statements}" |
    { grep -E -- "${only:-.}" || true; } >"${work}/todo.tsv"
running=()
for ((worker = 0; worker < workers; ++worker)); do
    try_statements "${worker}" &
    running+=($!)
done
wait "${running[@]}"
LC_ALL=C sort -o "${results}" "${results}"

failed=0
list_exceptions | cut -f 1 | LC_ALL=C sort >"${work}/excepted.txt"
awk -F'\t' '$2 == "survived" { print $1 }' "${results}" | LC_ALL=C sort >"${work}/survived.txt"
LC_ALL=C comm -23 "${work}/survived.txt" "${work}/excepted.txt" >"${work}/left.txt"
if [[ -s ${work}/left.txt ]]; then
    sed 's/^/no test misses /' "${work}/left.txt" >&2
    failed=1
fi
if [[ -z ${only} ]]; then
    LC_ALL=C comm -13 "${work}/survived.txt" "${work}/excepted.txt" >"${work}/stale.txt"
    if [[ -s ${work}/stale.txt ]]; then
        sed 's/^/excepted, yet gone or missed by a test: /' "${work}/stale.txt" >&2
        failed=1
    fi
    write_table >docs/check-statements.md
fi
echo "$(wc -l <"${results}") check statements: $(wc -l <"${work}/survived.txt") survive," \
    "$(wc -l <"${work}/excepted.txt") of them excepted"
exit "${failed}"
