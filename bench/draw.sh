#!/usr/bin/env bash
# Draws the picture of the figures $1, a CSV of bench/run.sh, into the file $2, with gnuplot.
set -euo pipefail
cd "$(dirname "$0")/.."
if ! command -v gnuplot >/dev/null; then
    echo "There is no picture: gnuplot is not installed (Debian's gnuplot-nox)." >&2
    exit 0
fi
scratch=$(mktemp -d)
trap 'rm -rf "${scratch}"' EXIT
awk -f bench/series.awk "$1" >"${scratch}/series.gp"
gnuplot -e "target = '${scratch}/picture'" "${scratch}/series.gp" bench/picture.gp

# Without the empty groups and the fonts that gnuplot writes twice, it is half as long.
sed -z -e 's|<g [^>]*>\n</g>\n||g' -e 's|<tspan font-family="[^"]*" >\([^<]*\)</tspan>|\1|g' \
    -e 's|<title>Gnuplot</title>|<title>What VELL costs</title>|' -e 's|[ \t]*\n|\n|g' \
    "${scratch}/picture" >"$2"
