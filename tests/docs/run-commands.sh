#!/usr/bin/env bash
# run-commands.sh VELL FOLDER: runs every line of the pages' sh blocks that begins with `vell `, in their order, as
# a reader of the repository would; each has to end well. A block that names a file, such as ```jsonc guard.hsm.json,
# is written to it before what follows is run. FOLDER stands for the repository's root, so that what the commands
# write does not land there.
set -euo pipefail

vell=$(realpath "$1")
folder=$2
root=$(cd "$(dirname "$0")/../.." && pwd)
minimum=8

rm -rf "$folder"
mkdir -p "$folder/bin" "$folder/blocks"
ln -s "$vell" "$folder/bin/vell"
for part in "$root"/*; do
    [[ -d "$part" && "$(basename "$part")" != build ]] && ln -s "$part" "$folder/"
done

cd "$folder"
PATH=$folder/bin:$PATH
count=0
while IFS= read -r line; do
    count=$((count + 1))
    if [[ "$line" == *"format svg"* ]] && ! command -v dot >/dev/null; then
        echo "not run without Graphviz: $line"
        continue
    fi
    if ! bash -c "$line" >"$folder/output.txt" 2>&1 </dev/null; then
        echo "failed: $line" >&2
        cat "$folder/output.txt" >&2
        exit 1
    fi
done < <(awk -v blocks="$folder/blocks" '
             /^```sh$/ {inside = 1; next}
             /^```[a-z]+ [A-Za-z0-9_.\/-]+$/ {block = blocks "/" ++count; name = $2; printf "" > block; next}
             /^```$/ && block {close(block); print "mkdir -p $(dirname " name ") && cp " block " " name; block = ""}
             /^```$/ {inside = 0}
             block {print > block}
             inside && /^vell /' \
             "$root"/README.md "$root"/CONTRIBUTING.md "$root"/docs/*.md)
if ((count < minimum)); then
    echo "found only $count commands" >&2
    exit 1
fi
echo "$count commands ran"
