#!/usr/bin/env bash
# Targets that VELL is not for are refused when a build is configured, with the reason:
#     check-target.sh COMPILER FOLDER_TO_WORK_IN
# Big-endian ones are tried where the compiler is clang, which has every target in it.
set -euo pipefail
sources=$(realpath "$(dirname "$0")/../..")

# Expects the end of a configuration with the arguments after $2, and the words $2 in it.
refused()
{
    local words=$2
    rm -rf "$1"
    if said=$(cmake -G Ninja -S "${sources}" -B "$1" -DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY \
        "${@:3}" 2>&1) || [[ "${said}" != *"VELL needs a 64-bit little-endian target"*"${words}"* ]]; then
        echo "${said}" >&2
        exit 1
    fi
}

refused "$2" "32-bit" -DCMAKE_CXX_COMPILER="$1" -DCMAKE_CXX_FLAGS=-m32
if "$1" --version | grep -q clang; then
    refused "$2" "BIG_ENDIAN" -DCMAKE_CXX_COMPILER="$1" -DCMAKE_CXX_COMPILER_TARGET=s390x-linux-gnu
fi
