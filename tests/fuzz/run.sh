#!/usr/bin/env bash
# Runs every fuzzer of a build: its corpus once, then new inputs for SECONDS.
# Usage: tests/fuzz/run.sh SECONDS [BUILD_FOLDER]. A failing input is in BUILD_FOLDER/found/.
set -euo pipefail
cd "$(dirname "$0")/../.."

seconds=${1:?usage: tests/fuzz/run.sh SECONDS [BUILD_FOLDER]}
build=${2:-build/fuzz}
fuzzers=(document grammar calls tables source)
export UBSAN_OPTIONS=print_stacktrace=1
mkdir -p "${build}/found"

# Runs the fuzzer $1 and keeps its words in a file; a failing one shows them.
run_fuzzer()
{
    local name=$1 found=${build}/found/$1 corpus=tests/fuzz/corpus/$1
    local inputs log=${build}/found/$1.log
    # The library's lines go nowhere; the fuzzer's own still come out. libFuzzer adds what is new to
    # the first folder.
    local options=(-close_fd_mask=2 -max_len=8000 -timeout=20 -rss_limit_mb=2000
                   -artifact_prefix="${found}/" -print_final_stats=1)
    case "${name}" in
    document) options+=(-dict=tests/fuzz/vell.dict) ;;
    source) options+=(-dict=tests/fuzz/source.dict) ;;
    *) options+=(-len_control=0) ;;
    esac
    inputs=$(find "${corpus}" -type f | wc -l)
    if ((inputs < 5)); then
        echo "fuzz_${name}: found only ${inputs} inputs in ${corpus}" >&2
        return 1
    fi
    rm -rf "${found}"
    mkdir -p "${found}/new"
    if ! { "${build}/bin/fuzz_${name}" "${options[@]}" -runs=0 "${corpus}" &&
           "${build}/bin/fuzz_${name}" "${options[@]}" -max_total_time="${seconds}" \
               "${found}/new" "${corpus}"; } >"${log}" 2>&1; then
        tail -n 60 "${log}" >&2
        echo "fuzz_${name}: FAILED; the input is in ${found}" >&2
        return 1
    fi
    awk -v name="${name}" -v inputs="${inputs}" '
        /number_of_executed_units/ { runs = $2 }
        /DONE/ { for (i = 1; i < NF; ++i) { if ($i == "cov:") { cov = $(i + 1) } } }
        END { printf "fuzz_%s: %d inputs of the corpus, %d runs, %d edges\n", name, inputs, runs, cov }
    ' "${log}"
}

failed=0
running=()
for name in "${fuzzers[@]}"; do
    run_fuzzer "${name}" &
    running+=($!)
    if ((${#running[@]} >= $(nproc))); then
        wait "${running[0]}" || failed=1
        running=("${running[@]:1}")
    fi
done
for process in "${running[@]}"; do
    wait "${process}" || failed=1
done
exit "${failed}"
