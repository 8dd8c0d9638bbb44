#!/usr/bin/env bash
# draw.sh VELL FOLDER: draws the pictures of docs/ into FOLDER: each .dot beside this script, and the sample
# character as the command VELL shows it.
set -euo pipefail

vell=$1
folder=$2
pictures=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$folder"
for source in "$pictures"/*.dot; do
    dot -Tsvg "$source" -o "$folder/$(basename "$source" .dot).svg"
done
"$vell" graph "$pictures/../../samples/character.json" --format svg -o "$folder/character.svg"
