#!/usr/bin/env bash
# compare.sh VELL FOLDER: draws the pictures into FOLDER and compares them with those beside this script. Ends
# with 77, for a test that is passed over, where Graphviz is missing or is of another version.
#
# Where text is measured by other fonts every place in a picture moves; then shapes and texts are compared alone.
set -euo pipefail

vell=$1
folder=$2
pictures=$(cd "$(dirname "$0")" && pwd)
minimum=9

version()
{
    grep -o -m 1 'graphviz version [0-9.]*' "$1" || true
}

# The picture without numbers that depend on the width of a text.
without_places()
{
    sed -E 's/ (x|y|cx|cy|rx|ry|d|points|width|height|viewBox|transform|textLength)="[^"]*"//g' "$1"
}

if ! command -v dot >/dev/null; then
    echo "Graphviz is not installed"
    exit 77
fi

rm -rf "$folder"
"$pictures/draw.sh" "$vell" "$folder"
count=0
for drawn in "$folder"/*.svg; do
    kept=$pictures/$(basename "$drawn")
    if [[ "$(version "$drawn")" != "$(version "$kept")" ]]; then
        echo "$kept was drawn by $(version "$kept"), which is not installed"
        exit 77
    fi
    cmp -s "$kept" "$drawn" || diff -u <(without_places "$kept") <(without_places "$drawn")
    count=$((count + 1))
done
if ((count < minimum)); then
    echo "only $count pictures were drawn" >&2
    exit 1
fi
if [[ "$(ls "$pictures"/*.svg | wc -l)" != "$count" ]]; then
    echo "a picture beside this script has no source" >&2
    exit 1
fi
