#!/usr/bin/env bash
# Measures the release build: several runs of the benchmark program, the counted instructions and the
# bytes a node. Prints the goals with the figures beside them and writes build/bench.csv and
# build/performance.svg, which --picture puts into docs/. RUNS=5 sets the number of runs.
set -euo pipefail
cd "$(dirname "$0")/.."
programs=build/release/bin
out=build/bench
runs=${RUNS:-5}
mkdir -p "${out}"
rm -f "${out}"/*

# Runs the program $1 into files named $2; what is left are arguments.
measure()
{
    local program=$1 name=$2
    shift 2
    "${programs}/${program}" --benchmark_enable_random_interleaving=true --benchmark_repetitions=3 \
        --benchmark_min_time=0.02 --benchmark_out="${out}/${name}.csv" --benchmark_out_format=csv \
        "$@" >"${out}/log"
}

# Each group beside its limits in a process of its own: a heap that ten thousand machines have left in
# pieces makes every later load slower, and no limit.
for ((run = 1; run <= runs; ++run)); do
    echo "run ${run} of ${runs}"
    measure vell_bench "load-${run}" --benchmark_filter='Load'
    measure vell_bench "many-${run}" --benchmark_filter='Many'
    measure vell_bench "rest-${run}" --benchmark_filter='-(Load|Many)'
    if [[ -x "${programs}/vell_bench_peers" ]]; then
        measure vell_bench_peers "peers-${run}"
    fi
done
if command -v valgrind >/dev/null; then
    echo "instructions"
    bench/check-instructions.sh "${programs}" >"${out}/instructions" || true
fi
states=10000
"${programs}/vell_count" memory "${states}" >"${out}/memory"
"${programs}/vell_count" table-memory 100000 >"${out}/table-memory"

commit=$(git rev-parse --short HEAD 2>/dev/null || echo unknown)
git diff --quiet HEAD 2>/dev/null || commit+="-changed"
machine=$(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1)
compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[^=]*=//p' build/release/CMakeCache.txt)
compiler=$("${compiler}" --version | head -n 1)

awk -v commit="${commit}" -v machine="${machine}, $(nproc) processors" -v compiler="${compiler}" \
    -v states="${states}" -f bench/collect.awk "${out}"/*.csv "${out}/memory" \
    "${out}/table-memory" $([[ ! -f "${out}/instructions" ]] || echo "${out}/instructions") \
    >build/bench.csv
printf '\n%s\n%s\ncommit %s\n\n' "${machine}, $(nproc) processors" "${compiler}" "${commit}"
awk -f bench/report.awk build/bench.csv
awk -f bench/picture.awk build/bench.csv >build/performance.svg
if [[ "${1:-}" == --picture ]]; then
    cp build/performance.svg docs/performance.svg
fi
