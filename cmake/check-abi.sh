#!/usr/bin/env bash
# Compares the binary interface of the three libraries - functions, classes, their virtual tables and the
# layout of their fields - with the baselines in cmake/abi/:
#     check-abi.sh [--update] FOLDER_OF_THE_LIBRARIES
# The libraries are those of the preset dev: the description comes from the debugging information. With
# --update, writes the baselines.
set -euo pipefail
cd "$(dirname "$0")/.."

update=0
if [[ "$1" == "--update" ]]; then
    update=1
    shift
fi

scratch=$(mktemp -d)
trap 'rm -rf "${scratch}"' EXIT

# Describes the interface of library $1 in file $2. Types that no public header defines are left out.
describe()
{
    abidw --allow-non-exported-interfaces --headers-dir include --drop-private-types \
        --suppressions cmake/abi/suppressions.ini --no-corpus-path --no-comp-dir-path --no-show-locs \
        --out-file "$2" "$1"
    if ! grep -q '<class-decl' "$2" || ! grep -q '<function-decl' "$2"; then
        echo "$1: no interface found; is it built with -g?" >&2
        exit 1
    fi
}

failed=0
for name in VELLLibX64 DURMBaseX64 TesselX64; do
    baseline=cmake/abi/${name}.abi.xz
    now=${scratch}/${name}.abi
    describe "$1/lib${name}.so" "${now}"
    if ((update)); then
        xz --compress --stdout "${now}" >"${baseline}"
        continue
    fi
    xz --decompress --stdout "${baseline}" >"${scratch}/baseline.abi"
    if ! abidiff --leaf-changes-only "${scratch}/baseline.abi" "${now}"; then
        echo "${name}: its binary interface differs from ${baseline}; see CONTRIBUTING.md" >&2
        failed=1
    fi
done

((failed || update)) || echo "The binary interfaces are those of cmake/abi/"
exit "${failed}"
