#!/usr/bin/env bash
# Runs every line of the pages' sh blocks that begins with `vell ` with the command of this system and with
# vell.exe, and expects the same output, exit codes and files of both, byte for byte:
#     compare-commands.sh VELL VELL_EXE FOLDER
# There is no Graphviz for Wine: on both sides a stand-in gives back what it is to draw.
set -euo pipefail
root=$(realpath "$(dirname "$0")/../..")
vell=$(realpath "$1")
exe=$(realpath "$2")
folder=$3
minimum=8

rm -rf "${folder}"
for system in here windows; do
    mkdir -p "${folder}/${system}/bin"
    for part in "${root}"/*; do
        [[ -d "${part}" && "$(basename "${part}")" != build ]] && ln -s "${part}" "${folder}/${system}/"
    done
done
folder=$(realpath "${folder}")
ln -s "${vell}" "${folder}/here/bin/vell"
printf '#!/bin/sh\ncat "$2"\n' >"${folder}/here/bin/dot"
printf '@type %%2\r\n' >"${folder}/windows/bin/dot.bat"
printf '#!/bin/sh\nexec "%s" "%s" "$@"\n' "${root}/cmake/run-wine.sh" "${exe}" >"${folder}/windows/bin/vell"
chmod +x "${folder}"/windows/bin/* "${folder}/here/bin/dot"
export WINEPATH=${folder}/windows/bin

# Runs the line $2 in the folder of the system $1, and keeps what it says and how it ends.
run()
{
    local code=0
    (cd "${folder}/$1" && PATH=${folder}/$1/bin:${PATH} bash -c "$2") </dev/null \
        >"${folder}/$1/output-${count}.txt" 2>"${folder}/$1/errors-${count}.txt" || code=$?
    echo "${code} $2" >>"${folder}/$1/codes.txt"
}

count=0
while IFS= read -r line; do
    count=$((count + 1))
    run here "${line}"
    run windows "${line}"
done < <(awk '/^```sh$/ {inside = 1; next} /^```$/ {inside = 0} inside && /^vell /' \
             "${root}"/README.md "${root}"/CONTRIBUTING.md "${root}"/docs/*.md)

diff --recursive --no-dereference --exclude=bin "${folder}/here" "${folder}/windows" | head -n 100
if ((count < minimum)); then
    echo "found only ${count} commands" >&2
    exit 1
fi
echo "${count} commands give the same bytes"
