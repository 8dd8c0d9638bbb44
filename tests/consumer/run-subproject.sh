#!/usr/bin/env bash
# Builds and runs the consumer with VELL as a part of its own build:
#     run-subproject.sh COMPILER FOLDER_TO_WORK_IN [CMAKE_ARGUMENTS...]
set -euo pipefail
compiler=$1
scratch=$2
shift 2
rm -rf "${scratch}"
launcher=$(command -v ccache || true)
cmake -G Ninja -S "$(dirname "$0")" -B "${scratch}" -DCMAKE_CXX_COMPILER="${compiler}" \
    -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_COMPILER_LAUNCHER="${launcher}" -DVELL_SOURCES="$(realpath "$(dirname "$0")/../..")" "$@"
cmake --build "${scratch}"
"${scratch}/consumer"
