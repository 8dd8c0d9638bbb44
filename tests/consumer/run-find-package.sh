#!/usr/bin/env bash
# Builds and runs the consumer through find_package: COMPILER INSTALLED_TREE FOLDER_TO_WORK_IN
set -euo pipefail
rm -rf "$3"
cmake -G Ninja -S "$(dirname "$0")" -B "$3" -DCMAKE_CXX_COMPILER="$1" -DCMAKE_PREFIX_PATH="$2" \
    -DVELLLibX64_ROOT="$2"
cmake --build "$3"
"$3/consumer"
