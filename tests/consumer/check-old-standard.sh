#!/usr/bin/env bash
# Under C++14 the public headers say what they need in one error and nothing else:
#     check-old-standard.sh COMPILER
set -euo pipefail
include=$(realpath "$(dirname "$0")/../../include")

failed=0
for header in "${include}"/vell/*.h; do
    name=vell/$(basename "${header}")
    said=$("$1" -std=c++14 -fsyntax-only -I"${include}" -x c++ - 2>&1 <<<"#include <${name}>" |
        grep -E '(error|warning): ' || true)
    if [[ -z "${said}" ]] && ! grep -q '<vell/Export.h>' "${header}"; then
        continue
    fi
    if [[ "${said}" != *"VELL needs C++17"* || "${said}" == *$'\n'* ]]; then
        echo "${name}: ${said:-no error}" >&2
        failed=1
    fi
done
exit "${failed}"
