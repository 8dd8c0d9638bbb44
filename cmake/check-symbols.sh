#!/usr/bin/env bash
# Compares what the three libraries export with the lists in cmake/symbols/:
#     check-symbols.sh [--update] FOLDER_OF_THE_LIBRARIES
# Weak symbols are left out but for the virtual tables of our classes, which hosts derive from: which
# inline functions, templates and tables of interfaces a library contains is the compiler's choice.
# With --update, writes the lists again.
set -euo pipefail
cd "$(dirname "$0")/.."

update=0
if [[ "$1" == "--update" ]]; then
    update=1
    shift
fi

# The symbols of library $1, demangled, a line each.
exported()
{
    nm --dynamic --defined-only --demangle --format=posix "$1" |
        sed -nE -e '/^typeinfo (name )?for /d' -e 's/^(.*) [ABDRT] [0-9a-f]+( [0-9a-f]+)?$/\1/p' \
            -e 's/^(vtable for (vell|Tessel)::([A-HJ-Z]|I[a-z])[A-Za-z0-9_]*) V .*$/\1/p' |
        LC_ALL=C sort -u
}

failed=0
for name in VELLLibX64 DURMBaseX64 TesselX64; do
    library=$1/lib${name}.so
    list=cmake/symbols/${name}.txt
    if ((update)); then
        exported "${library}" >"${list}"
        continue
    fi
    symbols=$(exported "${library}")
    if [[ -z "${symbols}" ]]; then
        echo "${library}: exports nothing" >&2
        failed=1
    elif ! diff -u --label "${list}" --label "${library}" "${list}" - <<<"${symbols}"; then
        echo "${name}: exports differ from ${list}; \`make symbols\` writes it again" >&2
        failed=1
    fi
done

((failed == 0)) && wc -l cmake/symbols/*.txt
exit "${failed}"
