#!/usr/bin/env bash
# Builds a host whose machine is compiled with it, changes a file that the machine includes, and builds again:
# COMPILER INSTALLED_TREE FOLDER_TO_WORK_IN
set -euo pipefail
[[ -x "$2/bin/vell" ]] || { echo "the command is not installed"; exit 77; }
rm -rf "$3"
mkdir -p "$3"
cp -r "$(dirname "$0")/machine" "$3/source"

build()
{
    cmake --build "$1/build" >"$1/log.txt" || { cat "$1/log.txt" >&2; exit 1; }
    "$1/build/machine" 2>/dev/null | grep -E '^(open|closed)$'
}

cmake -G Ninja -S "$3/source" -B "$3/build" -DCMAKE_CXX_COMPILER="$1" -DCMAKE_PREFIX_PATH="$2" \
    -DVELLLibX64_ROOT="$2" >/dev/null
[[ $(build "$3") == closed ]]
sleep 1.1 # a file system may keep times by the second
sed -i 's/false/true/' "$3/source/parts/parameters.hsm.json"
[[ $(build "$3") == open ]] || { echo "the machine was not compiled again" >&2; exit 1; }
cmake --build "$3/build" | grep -q 'no work to do' || { echo "it is compiled every time" >&2; exit 1; }

sed -i 's/"open"/"opne"/' "$3/source/parts/parameters.hsm.json"
if cmake --build "$3/build" >"$3/log.txt"; then
    echo "a wrong source was compiled" >&2
    exit 1
fi
grep -q "door.hsm.json:7:[0-9]*: error VELL161: unknown parameter 'open'; did you mean 'opne'?" "$3/log.txt"
