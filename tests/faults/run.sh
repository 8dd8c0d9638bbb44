#!/usr/bin/env bash
# Plants the faults of this folder one at a time and expects the unit tests to notice each.
# Usage: tests/faults/run.sh [--check] [--random N] [--keep-going] [NAME...]
#   NAME          plant only these; all when none is given
#   --check       plant nothing; only see that each applies to the sources as they are
#   --random N    plant N of them, drawn again for each run
#   --keep-going  go on after a fault that is missed or cannot be planted
# A fault is a file NAME.patch: a sentence that says what is wrong, then the difference. It is
# planted in a copy of the checkout, build/faults/source, which has a build of its own. Exits with 1
# when a fault is missed, does not apply or does not compile.
set -euo pipefail
cd "$(dirname "$0")/../.."

check=0
random=0
keep_going=0
names=()
while (($#)); do
    case "$1" in
    --check) check=1 ;;
    --random) random=${2:?--random needs a number} && shift ;;
    --keep-going) keep_going=1 ;;
    -*) sed -n '3,7s/^# \{0,1\}//p' "$0" >&2 && exit 2 ;;
    *) names+=("$1") ;;
    esac
    shift
done

faults=tests/faults
work=build/faults
source=${work}/source
log=${work}/run.log
limit=600 # seconds for one run of the tests

if ((${#names[@]} == 0)); then
    mapfile -t names < <(cd "${faults}" && printf '%s\n' *.patch | sed 's/\.patch$//')
    if ((${#names[@]} < 30)); then
        echo "faults: found only ${#names[@]} patches" >&2
        exit 1
    fi
fi
failed=()

if ((check)); then
    for name in "${names[@]}"; do
        patch=${faults}/${name}.patch
        if ! head -n 1 "${patch}" | grep -qE '^[A-Za-z].*\.$'; then
            echo "${patch}: begins with no sentence" >&2
        elif ! patch -p1 -F0 -s -f --dry-run -i "${patch}" >/dev/null; then
            echo "${patch}: does not apply; change it with its source" >&2
        else
            continue
        fi
        failed+=("${name}")
    done
    echo "${#names[@]} patches, $((${#names[@]} - ${#failed[@]})) apply"
    exit $((${#failed[@]} > 0))
fi

if ((random > 0)); then
    mapfile -t names < <(printf '%s\n' "${names[@]}" | shuf -n "${random}")
fi

# Brings the copy up to date. Only files that differ are written, so that only they are built again;
# a fault that an interrupted run left behind is one of them.
copy_sources()
{
    local file
    git ls-files --cached --others --exclude-standard | LC_ALL=C sort >"${work}/files.txt"
    (cd "${source}" && find . -type f | sed 's|^\./||' | LC_ALL=C sort) |
        LC_ALL=C comm -13 "${work}/files.txt" - | while read -r file; do
        rm "${source}/${file}"
    done
    while read -r file; do
        if [[ -f ${file} ]] && ! cmp -s "${file}" "${source}/${file}"; then
            cp --parents -t "${source}" "${file}"
        fi
    done <"${work}/files.txt"
}

# clang compiles in half the time.
configure()
{
    local tools=()
    ! command -v clang++-14 >/dev/null || tools+=(-DCMAKE_CXX_COMPILER=clang++-14)
    ! command -v ld.gold >/dev/null || tools+=(-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold)
    cmake -S "${source}" -B "${work}/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DVELL_WARNINGS_AS_ERRORS=OFF -DVELL_INSTALL=OFF \
        -DVELL_PRECOMPILE=ON "${tools[@]}" >"${work}/configure.log"
}

build()
{
    cmake --build "${work}/build" --target unit_tests -j "$(nproc)" >"${work}/build.log" 2>&1
}

# Runs the tests up to the first that fails. A fault may make them hang, or take all memory.
run_tests()
{
    (ulimit -c 0 -v 8000000 && TMPDIR=${PWD}/${work}/tmp timeout "${limit}" \
        "${work}/build/bin/unit_tests" --gtest_brief=1 --gtest_fail_fast) >"${log}" 2>&1
}

plant()
{
    patch -d "${source}" -p1 -F0 -s -r - --no-backup-if-mismatch <"$1" >"${work}/patch.log" 2>&1
}

# Takes the fault of the patch `$1` out.
take_out()
{
    local file
    sed -n 's|^+++ b/\([^[:blank:]]*\).*|\1|p' "$1" | while read -r file; do
        [[ ! -f ${file} ]] || cp "${file}" "${source}/${file}"
    done
}

# Plants the fault `$1`, runs the tests and says what came of it. Fails unless a test noticed.
try_fault()
{
    local patch=${faults}/$1.patch status=0 test
    if [[ ! -f ${patch} ]] || ! plant "${patch}"; then
        status="does not apply"
    elif ! build; then
        status="does not compile"
    else
        run_tests 2>/dev/null || status=$? # the shell need not tell of a crash
    fi
    take_out "${patch}"
    test=$(sed -n 's/^\[  FAILED  \] \([^ ,]*\).*/\1/p' "${log}" | head -n 1)
    case "${status}" in
    0) echo "missed   $1: $(head -n 1 "${patch}")" ;;
    124) echo "caught   $1 (the tests hang)" && return 0 ;;
    [1-9]*) echo "caught   $1 (${test:-the tests crash})" && return 0 ;;
    *) echo "${status}   $1" ;;
    esac
    return 1
}

mkdir -p "${source}" "${work}/tmp"
copy_sources
configure
started=${SECONDS}
if ! build || ! { started=${SECONDS} && run_tests; }; then
    tail -n 30 "${work}/build.log" "${log}" >&2
    echo "faults: the tests do not pass without a fault" >&2
    exit 1
fi
limit=$((60 + 10 * (SECONDS - started)))

tried=0
for name in "${names[@]}"; do
    tried=$((tried + 1))
    if ! try_fault "${name}"; then
        failed+=("${name}")
        ((keep_going)) || break
    fi
done
echo "${tried} faults planted, $((tried - ${#failed[@]})) caught"
((${#failed[@]} == 0)) || echo "not caught: ${failed[*]}" >&2
((${#failed[@]} == 0))
