#!/usr/bin/env bash
# Checks that each folder includes only what stands below it. Fails when it finds too few includes to
# have looked at anything.
set -euo pipefail
cd "$(dirname "$0")/.."

subsystems='machine|idle|states|transitions|definitions|parameters|introspection|foundation'
failed=0
looked=0

# No source in $1 may include what the pattern $2 matches; $3 says so to a person.
forbid()
{
    local folder=$1 pattern=$2 rule=$3 includes offences
    [[ -d "${folder}" ]] || return 0
    includes=$(grep -rnE --include='*.h' --include='*.cpp' '^ *# *include *[<"]' "${folder}" || true)
    [[ -n "${includes}" ]] || return 0
    looked=$((looked + $(wc -l <<<"${includes}")))
    offences=$(grep -E "# *include *[<\"](${pattern})" <<<"${includes}" || true)
    if [[ -n "${offences}" ]]; then
        printf '%s\n%s\n' "${rule}:" "${offences}" >&2
        failed=1
    fi
}

forbid platform "vell/|(${subsystems})/" "platform/ stands alone"
forbid platform/durm "tessel/|platform/tessel/" "platform/durm/ stands without the tables"
forbid platform/tessel "durm/|platform/durm/" "platform/tessel/ stands without the vocabulary"
forbid include/durm "vell/|tessel/" "include/durm/ stands alone"
forbid include/tessel "vell/|durm/" "include/tessel/ stands alone"
forbid include "(${subsystems}|platform)/" "include/ shows nothing private"
forbid foundation "(${subsystems/|foundation/}|platform)/" "foundation/ stands below the subsystems"
for folder in ${subsystems//|/ }; do
    forbid "${folder}" "platform/|tools/|tests/|samples/|bench/" \
        "${folder}/ reaches the platform through include/ alone, and no program"
done
for folder in samples tests/host tests/consumer; do
    forbid "${folder}" "(${subsystems}|platform)/" "${folder}/ is a host: it uses include/ alone"
done

if ((looked < 20)); then
    echo "check-layers: looked at only ${looked} includes" >&2
    failed=1
fi
((failed == 0)) && echo "${looked} includes point downwards"
exit "${failed}"
