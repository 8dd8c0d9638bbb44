#!/usr/bin/env bash
# Runs clang-tidy 14 over the library and the command, as the preset dev compiles them:
#     check-tidy.sh [SOURCE...]
# Without sources, over all of them. .clang-tidy says what is checked.
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ ! -f build/dev/compile_commands.json ]]; then
    echo "check-tidy: type \`cmake --preset dev\` first" >&2
    exit 1
fi
sources=("$@")
if (($# == 0)); then
    mapfile -t sources < <(git ls-files '*.cpp' ':!bench' ':!samples' ':!tests' ':!*Windows.cpp')
    if ((${#sources[@]} < 50)); then
        echo "check-tidy: found only ${#sources[@]} sources" >&2
        exit 1
    fi
fi

# Prints what clang-tidy says of source $1, but for its count of warnings in the headers of others.
check()
{
    clang-tidy-14 -p build/dev --quiet "$1" 2> >(grep -vE '^[0-9]+ warnings? (generated|treated)' >&2)
}
export -f check
printf '%s\0' "${sources[@]}" | xargs -0 -n 1 -P "$(nproc)" bash -c 'check "$1"' check
echo "clang-tidy finds nothing in ${#sources[@]} sources"
