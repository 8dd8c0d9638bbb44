#!/usr/bin/env bash
# compare-readme.sh README SOURCE: compares the first C++ block of README with SOURCE, without the two comment
# lines at its head.
set -euo pipefail
diff -u <(awk '/^```cpp$/ {inside = 1; next} /^```$/ && inside {exit} inside' "$1") <(tail -n +3 "$2")
