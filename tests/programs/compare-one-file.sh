#!/usr/bin/env bash
# compare-one-file.sh EXPECTED PROGRAM [ARGUMENT...]: runs the program with standard output and standard error
# on one file and compares it with EXPECTED. Line numbers of the sources read LINE.
set -euo pipefail

expected=$1
shift
output=$(mktemp)
trap 'rm -f "${output}"' EXIT
"$@" >"${output}" 2>&1
diff -u "${expected}" <(sed -E 's/ at [0-9]+ in / at LINE in /' "${output}")
