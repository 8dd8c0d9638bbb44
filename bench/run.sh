#!/usr/bin/env bash
# Measures the release build: several runs of the benchmark programs, the counted instructions and the
# bytes of a node. Prints the figures beside the goals, writes build/bench.csv and draws
# build/performance.svg. RUNS=5 sets the number of runs, PROGRAMS=... the folder of the programs.
# --page puts the figures and the picture into docs/, see bench/page.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
programs=${PROGRAMS:-build/release/bin}
out=build/bench-runs
runs=${RUNS:-5}
mkdir -p "${out}"
rm -f "${out}"/*

# Runs the program $1 into files named $2; what is left are arguments.
measure()
{
    local program=$1 name=$2
    shift 2
    [[ -x "${programs}/${program}" ]] || return 0
    "${programs}/${program}" --benchmark_enable_random_interleaving=true --benchmark_repetitions=3 \
        --benchmark_min_time=0.02 --benchmark_out="${out}/${name}.csv" --benchmark_out_format=csv \
        "$@" >"${out}/log" 2>&1
}

# Each group beside its limits in a process of its own: a heap that ten thousand machines have left in
# pieces makes every later load slower, and no limit.
for ((run = 1; run <= runs; ++run)); do
    echo "run ${run} of ${runs}"
    measure vell_bench "frames-${run}" --benchmark_filter='OfMany'
    measure vell_bench "many-${run}" --benchmark_filter='^Many'
    measure vell_bench "load-${run}" --benchmark_filter='Load'
    measure vell_bench "spawn-${run}" --benchmark_filter='Spawn'
    measure vell_bench "resident-${run}" --benchmark_filter='Resident'
    measure vell_bench "rest-${run}" --benchmark_filter='-(OfMany|^Many|Load|Spawn|Resident)'
    measure vell_bench_peers "peers-resident-${run}" --benchmark_filter='Resident'
    measure vell_bench_peers "peers-${run}" --benchmark_filter='-Resident'
done
: >"${out}/instructions"
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
compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[^=]*=//p' "${programs}/../CMakeCache.txt")
compiler=$("${compiler}" --version | head -n 1)

awk -v commit="${commit}" -v date="$(date +%F)" -v machine="${machine}, $(nproc) processors" \
    -v compiler="${compiler}" -v states="${states}" -f bench/collect.awk "${out}"/*.csv \
    "${out}/memory" "${out}/table-memory" "${out}/instructions" >build/bench.csv
awk -f bench/report.awk build/bench.csv
bench/draw.sh build/bench.csv build/performance.svg
if [[ "${1:-}" == --page ]]; then
    cp build/bench.csv bench/figures.csv
    bench/page.sh
fi
