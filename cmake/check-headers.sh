#!/usr/bin/env bash
# Compiles every header alone, with the project's warnings: check-headers.sh COMPILER FLOOR [FLAG...]
# Public headers see include/ and nothing else of ours. Fails when it finds fewer headers than FLOOR,
# or when <vell/vell.h> leaves a public header of its folder out.
set -euo pipefail
cd "$(dirname "$0")/.."

compiler=$1
floor=$2
shift 2
flags=(-std=c++17 -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror "$@")

folders=()
for folder in include machine document idle states transitions definitions parameters introspection foundation \
              platform tools tests/support bench; do
    [[ ! -d "${folder}" ]] || folders+=("${folder}")
done
mapfile -t headers < <(find "${folders[@]}" -name '*.h' | sort)

failed=0
if ((${#headers[@]} < floor)); then
    echo "check-headers: found ${#headers[@]} headers; at least ${floor} were to be here" >&2
    failed=1
fi

for header in include/vell/*.h; do
    name=vell/$(basename "${header}")
    if [[ "${name}" != vell/vell.h ]] && ! grep -qF "#include <${name}>" include/vell/vell.h; then
        echo "include/vell/vell.h: does not include <${name}>" >&2
        failed=1
    fi
done

compile()
{
    local header=$1
    shift
    if [[ "${header}" == include/* ]]; then
        printf '#include <%s>\n' "${header#include/}" | "$@" -Iinclude -x c++ -
    else
        printf '#include "%s"\n' "${header}" | "$@" -Iinclude -I. -x c++ -
    fi || { echo "${header}: does not compile alone" >&2; return 1; }
}
export -f compile
printf '%s\0' "${headers[@]}" |
    xargs -0 -I{} -P "$(nproc)" bash -c 'compile "$@"' compile {} "${compiler}" "${flags[@]}" ||
    failed=1

((failed == 0)) && echo "${#headers[@]} headers compile alone"
exit "${failed}"
