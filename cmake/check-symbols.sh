#!/usr/bin/env bash
# Compares what the three libraries export with the lists in cmake/symbols/:
#     check-symbols.sh [--update|--dll] FOLDER_OF_THE_LIBRARIES
# Weak symbols are left out but for the virtual tables of our classes, which hosts derive from: which
# inline functions, templates and tables of interfaces a library contains is the compiler's choice.
# With --update, writes the lists again. With --dll, the libraries are DLLs. A DLL exports a class as a whole,
# so it has more names: the private members of the same classes, tables and type information.
set -euo pipefail
cd "$(dirname "$0")/.."

update=0
dll=0
case "$1" in
--update) update=1 && shift ;;
--dll) dll=1 && shift ;;
esac

# The symbols of library $1, demangled, a line each.
exported()
{
    nm --dynamic --defined-only --demangle --format=posix "$1" |
        sed -nE -e '/^typeinfo (name )?for /d' -e 's/^(.*) [ABDRT] [0-9a-f]+( [0-9a-f]+)?$/\1/p' \
            -e 's/^(vtable for (vell|Tessel)::([A-HJ-Z]|I[a-z])[A-Za-z0-9_]*) V .*$/\1/p' |
        LC_ALL=C sort -u
}

# The same of the DLL $1, all of them.
exported_by_dll()
{
    x86_64-w64-mingw32-objdump --private-headers "$1" |
        sed -nE 's/^\t\[ *[0-9]+\] (\+base\[ *[0-9]+\] +[0-9a-f]+ +)?(\S+)$/\2/p' |
        x86_64-w64-mingw32-c++filt | one_size | LC_ALL=C sort -u
}

# std::size_t is another type on Windows.
one_size()
{
    sed 's/unsigned long long/unsigned long/g'
}

# The classes of ours whose members, virtual tables aside, standard input names.
classes()
{
    sed -nE 's/^(vell::([A-HJ-Z]|I[a-z])[A-Za-z0-9_]*)::.*/\1/p' | LC_ALL=C sort -u
}

failed=0
for name in VELLLibX64 DURMBaseX64 TesselX64; do
    library=$1/lib${name}.so
    list=cmake/symbols/${name}.txt
    if ((update)); then
        exported "${library}" >"${list}"
        continue
    fi
    if ((dll)); then
        library=$1/${name}.dll
        symbols=$(exported_by_dll "${library}")
        missing=$(LC_ALL=C comm -23 <(one_size <"${list}" | LC_ALL=C sort -u) - <<<"${symbols}")
        more=$(LC_ALL=C comm -13 <(classes <"${list}") <(classes <<<"${symbols}"))
        if [[ -n "${missing}${more}" ]]; then
            printf '%s\nmissing: %s\nclasses that are not listed: %s\n' "${library}" "${missing}" "${more}" >&2
            failed=1
        fi
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
