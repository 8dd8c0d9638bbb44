#!/usr/bin/env bash
# Puts the figures of bench/figures.csv, those of the last run for the page, into docs/performance.md:
# the tables between its two marks, and the picture. --check changes nothing and fails when the tables
# on the page are others.
set -euo pipefail
cd "$(dirname "$0")/.."
page=docs/performance.md
from='<!-- figures: written by bench/page.sh -->'
to='<!-- end of the figures -->'

for mark in "${from}" "${to}"; do
    if [[ $(grep -cxF -e "${mark}" "${page}") != 1 ]]; then
        echo "page.sh: ${page} needs one line '${mark}'" >&2
        exit 1
    fi
done
scratch=$(mktemp -d)
trap 'rm -rf "${scratch}"' EXIT
awk -f bench/report.awk bench/figures.csv >"${scratch}/tables"
if grep '^|[^|]*|  |' "${scratch}/tables" >&2; then
    echo "page.sh: these have no figure in bench/figures.csv" >&2
    exit 1
fi
awk -v from="${from}" -v to="${to}" -v tables="${scratch}/tables" '
    $0 == to { print ""; inside = 0 }
    !inside { print }
    $0 == from { inside = 1; print ""; while ((getline line < tables) > 0) print line }
    ' "${page}" >"${scratch}/page"

if [[ "${1:-}" == --check ]]; then
    diff -u "${page}" "${scratch}/page" && exit 0
    echo "${page} does not show bench/figures.csv: run bench/page.sh" >&2
    exit 1
fi
cp "${scratch}/page" "${page}"
bench/draw.sh bench/figures.csv docs/performance.svg
