#!/usr/bin/env bash
# Runs every line of the pages' sh blocks that begins with `vell `, and every line of commands.txt, with the
# command of this system and with vell.exe, and expects the same output, exit codes and files of both, byte for
# byte:
#     compare-commands.sh VELL VELL_EXE FOLDER
# There is no Graphviz for Wine: on both sides a stand-in gives back what it is to draw. Beside the folders of
# the sources there is a folder heroes: documents with mistakes, with carriage returns, in a folder inside, and
# with names in other alphabets.
set -euo pipefail
root=$(realpath "$(dirname "$0")/../..")
vell=$(realpath "$1")
exe=$(realpath "$2")
folder=$3
minimum=55

rm -rf "${folder}"
for system in here windows; do
    mkdir -p "${folder}/${system}/bin" "${folder}/${system}/heroes/the second/.hidden"
    for part in "${root}"/*; do
        [[ -d "${part}" && "$(basename "${part}")" != build ]] && ln -s "${part}" "${folder}/${system}/"
    done
    heroes=${folder}/${system}/heroes
    cp "${root}/samples/guard.script" "${heroes}"
    sed 's/$/\r/' "${root}/samples/guard.json" >"${heroes}/the second/héros.json"
    sed -e 's/748117223/5/' -e 's/"less"/"lesser"/' "${root}/samples/guard.json" |
        tee "${heroes}/wrong.json" "${heroes}/the second/.hidden/wrong.json" >"${heroes}/the second/wróng #1.json"
done
folder=$(realpath "${folder}")
ln -s "${vell}" "${folder}/here/bin/vell"
printf '#!/bin/sh\ncat "$2"\n' >"${folder}/here/bin/dot"
printf '@type %%2\r\n' >"${folder}/windows/bin/dot.bat"
printf '#!/bin/sh\nexec "%s" "%s" "$@"\n' "${root}/cmake/run-wine.sh" "${exe}" >"${folder}/windows/bin/vell"
chmod +x "${folder}"/windows/bin/* "${folder}/here/bin/dot"
export WINEPATH=${folder}/windows/bin

# Runs the line $2, which stands for the line $3, in the folder of the system $1, and keeps what it says and how
# it ends.
run()
{
    local code=0 output
    output=${folder}/$1/output-$(printf '%03d' "${count}").txt
    (cd "${folder}/$1" && PATH=${folder}/$1/bin:${PATH} bash -c "$2") </dev/null \
        >"${output}" 2>"${output/output/errors}" || code=$?
    # No two loads take the same time.
    sed -i -E '/^load  |Milliseconds":/d' "${output}"
    if [[ "$2" != "$3" ]]; then
        # What names a file is written as the line writes it.
        sed -i 's,\\\\,/,g; s,\\,/,g' "${output}" "${output/output/errors}"
    fi
    echo "${count}: ${code} $3" >>"${folder}/$1/codes.txt"
}

count=0
while IFS= read -r line; do
    count=$((count + 1))
    run here "${line//'{/}'//}" "${line}"
    run windows "${line//'{/}'/'\'}" "${line}"
done < <(awk '/^```sh$/ {inside = 1; next} /^```$/ {inside = 0} inside && /^vell /' \
             "${root}"/README.md "${root}"/CONTRIBUTING.md "${root}"/docs/*.md
         grep -v '^#' "${root}/tests/windows/commands.txt")

if ! diff --recursive --no-dereference --exclude=bin "${folder}/here" "${folder}/windows" >"${folder}/differences.txt"
then
    head -n 100 "${folder}/differences.txt" >&2
    exit 1
fi
if ((count < minimum)); then
    echo "found only ${count} commands" >&2
    exit 1
fi
echo "${count} commands give the same bytes"
