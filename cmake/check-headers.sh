#!/usr/bin/env bash
# Compiles every header alone, with the project's warnings, and checks that <vell/vell.h> includes each
# public header of its folder: check-headers.sh BUILD_FOLDER
set -euo pipefail
cd "$(dirname "$0")/.."

failed=0
for header in include/vell/*.h; do
    name=vell/$(basename "${header}")
    if [[ "${name}" != vell/vell.h ]] && ! grep -qF "#include <${name}>" include/vell/vell.h; then
        echo "include/vell/vell.h: does not include <${name}>" >&2
        failed=1
    fi
done

cmake --build "$1" --target all_verify_interface_header_sets || failed=1

# A folder that cmake/VellChecks.cmake does not know shows up here.
list_headers()
{
    find . \( -path ./build -o -path './.*' \) -prune -o -name '*.h' -print | sed 's|^\./||' | LC_ALL=C sort
}
list_compiled()
{
    sed -nE 's|^ *"file": ".*/(public\|private)_headers_verify_interface_header_sets/(.*)\.cxx".*|\1/\2|p' \
        "$1/compile_commands.json" | sed -e 's|^public/|include/|' -e 's|^private/||' | LC_ALL=C sort
}
diff --label headers --label compiled -u <(list_headers) <(list_compiled "$1") || failed=1

((failed == 0)) && echo "$(list_headers | wc -l) headers compile alone"
exit "${failed}"
