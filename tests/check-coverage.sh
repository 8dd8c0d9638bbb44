#!/usr/bin/env bash
# Holds docs/coverage.md to what the tests reach: every line of the library that no test reaches
# stands there, under its file and with a reason, and no other line does. A line is known by its
# text, so that it may move. With --figures, writes the page's table of figures anew.
# Usage: tests/check-coverage.sh [--figures] [BUILD_FOLDER], after the tests of the preset coverage
# ran there; make coverage does both.
set -euo pipefail
cd "$(dirname "$0")/.."

figures=0
[[ "${1:-}" != "--figures" ]] || { figures=1 && shift; }
build=${1:-build/coverage}
page=docs/coverage.md
folders='machine|document|idle|states|transitions|definitions|parameters|introspection|foundation|platform|include'

gcovr --root . --object-directory "${build}" --filter "(${folders})/" \
    --xml-pretty --output "${build}/coverage.xml" "${build}"

# "file line hits" for each line of code, in the order of the files.
awk -F'"' '/<class / { for (i = 1; i < NF; ++i) { if ($i ~ / filename=$/) { file = $(i + 1) } } }
           /<methods/ { methods = 1 } /<\/methods>|<methods\/>/ { methods = 0 }
           /<line / && !methods {
               for (i = 1; i < NF; ++i) {
                   if ($i ~ / number=$/) { line = $(i + 1) }
                   if ($i ~ / hits=$/) { hits = $(i + 1) }
               }
               print file, line, hits
           }' "${build}/coverage.xml" | LC_ALL=C sort -k1,1 -k2,2n >"${build}/lines.txt"
if (($(wc -l <"${build}/lines.txt") < 2000)); then
    echo "check-coverage: found only $(wc -l <"${build}/lines.txt") lines of code" >&2
    exit 1
fi

# Both lists as "file: text of the line".
while read -r file line hits; do
    ((hits == 0)) || continue
    printf '%s: %s\n' "${file}" "$(sed -n "${line}{s/^ *//;s/ *\$//;p}" "${file}")"
done <"${build}/lines.txt" | LC_ALL=C sort >"${build}/unreached.txt"
awk '/^### `/ { file = $0; gsub(/^### `|`$/, "", file) }
     /^- `.*`$/ && file != "" { print file ": " substr($0, 4, length($0) - 4) }' "${page}" |
    LC_ALL=C sort >"${build}/listed.txt"

if ((figures)); then
    {
        echo '| Folder | Lines | Reached | Not reached |'
        echo '|---|---|---|---|'
        awk '{ split($1, part, "/"); ++all[part[1]]; if ($3 == 0) { ++left[part[1]] } }
             END { for (folder in all) {
                 printf "| `%s/` | %d | %d | %d |\n", folder, all[folder],
                     all[folder] - left[folder], left[folder] } }' "${build}/lines.txt" | LC_ALL=C sort
        awk '{ ++all; if ($3 == 0) { ++left } }
             END { printf "| All | %d | %d | %d |\n", all, all - left, left }' "${build}/lines.txt"
    } >"${build}/figures.md"
    awk -v table="${build}/figures.md" -v date="$(date -u +%Y-%m-%d)" '
        /^Figures of / { sub(/[0-9]+-[0-9]+-[0-9]+/, date) }
        /^\| Folder / { while ((getline row < table) > 0) { print row } skip = 1 }
        !/^\|/ { skip = 0 }
        !skip' "${page}" >"${build}/page.md"
    cp "${build}/page.md" "${page}"
fi

failed=0
LC_ALL=C comm -23 "${build}/unreached.txt" "${build}/listed.txt" |
    sed 's/^/no test reaches /' | tee "${build}/left.txt" >&2
LC_ALL=C comm -13 "${build}/unreached.txt" "${build}/listed.txt" |
    sed 's/^/listed, yet reached or gone: /' | tee "${build}/stale.txt" >&2
[[ ! -s ${build}/left.txt && ! -s ${build}/stale.txt ]] || failed=1
awk '{ ++all; if ($3 == 0) { ++left } }
     END { printf "%d of %d lines are reached, %.1f %%\n", all - left, all, 100 * (all - left) / all }' \
    "${build}/lines.txt"
exit "${failed}"
