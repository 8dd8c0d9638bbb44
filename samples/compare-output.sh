#!/usr/bin/env bash
# compare-output.sh EXPECTED PROGRAM [ARGUMENT...]: runs the program and compares what it prints to standard
# output, line by line, with the file EXPECTED.
set -euo pipefail

expected=$1
shift
diff -u "$expected" <("$@" 2>/dev/null)
