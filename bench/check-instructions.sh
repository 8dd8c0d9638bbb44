#!/usr/bin/env bash
# Counts the instructions of each line of bench/instructions.txt and fails when one takes more than its
# limit. The counts repeat to the digit, where the clock does not. Prints name, count and limit.
#
#     bench/check-instructions.sh [folder of vell_count]
set -euo pipefail
cd "$(dirname "$0")/.."
programs=${1:-build/release/bin}

if ! command -v valgrind >/dev/null; then
    echo "valgrind is not installed: nothing was counted" >&2
    exit 77
fi
scratch=$(mktemp -d)
trap 'rm -rf "${scratch}"' EXIT

declare -A counted

# The instructions of the work $1, $2 times, in `collected`.
collect()
{
    local key="$1 $2"
    if [[ -z "${counted[${key}]:-}" ]]; then
        valgrind --tool=callgrind --callgrind-out-file="${scratch}/out" --log-file="${scratch}/log" \
            "${programs}/vell_count" "$1" "$2" >/dev/null
        counted[${key}]=$(sed -n 's/.*Collected : //p' "${scratch}/log")
    fi
    collected=${counted[${key}]}
}

# The instructions that one more time of the work $1 takes, between $2 and $3 times, in `each`.
count_each()
{
    local low
    collect "$1" "$2"
    low=${collected}
    collect "$1" "$3"
    each=$(((collected - low) / ($3 - $2)))
}

failed=0
lines=0
while read -r name work less divide from to limit; do
    [[ -n "${name}" && "${name}" != \#* ]] || continue
    count_each "${work}" "${from}" "${to}"
    figure=${each}
    if [[ "${less}" != - ]]; then
        count_each "${less}" "${from}" "${to}"
        figure=$((figure - each))
    fi
    figure=$((figure / divide))
    verdict=
    if ((figure > limit)); then
        verdict="  too many"
        failed=1
    fi
    printf '%-20s %8d %8d%s\n' "${name}" "${figure}" "${limit}" "${verdict}"
    lines=$((lines + 1))
done <bench/instructions.txt

if ((lines < 5)); then
    echo "check-instructions: found only ${lines} lines to check" >&2
    failed=1
fi
exit "${failed}"
