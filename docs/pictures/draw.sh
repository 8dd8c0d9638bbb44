#!/usr/bin/env bash
# draw.sh VELL FOLDER: draws the pictures of docs/ into FOLDER: each .dot beside this script, and the samples as the
# command VELL shows them.
set -euo pipefail

vell=$1
folder=$2
pictures=$(cd "$(dirname "$0")" && pwd)
samples=$pictures/../../samples
mkdir -p "$folder"
for source in "$pictures"/*.dot; do
    dot -Tsvg "$source" -o "$folder/$(basename "$source" .dot).svg"
done

draw()
{
    "$vell" graph "$samples/$2.json" --format svg -o "$folder/$1.svg" "${@:3}"
}

draw locomotion locomotion
draw character character
draw guard guard
draw guard-combat guard --level Combat
draw guard-levels guard --collapse
draw character-hit character --after "$pictures/hit.script"
