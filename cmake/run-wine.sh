#!/usr/bin/env bash
# Runs a Windows program on this machine, with Wine: run-wine.sh PROGRAM [ARGUMENTS...]
# Debian puts wine64 where PATH does not reach. The compiler's own DLLs stay in its folders, Wine's files in
# build/wine. Nothing is shown on a screen, and Wine's own messages are left out.
set -euo pipefail

folder_of()
{
    dirname "$(realpath "$(x86_64-w64-mingw32-g++-posix -print-file-name="$1")")"
}

wine=$(PATH=${PATH}:/usr/lib/wine command -v wine64)
export WINEPREFIX=${WINEPREFIX:-$(realpath "$(dirname "$0")/..")/build/wine}
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml=" DISPLAY=
export WINEPATH="${WINEPATH:+${WINEPATH};}$(folder_of libstdc++-6.dll);$(folder_of libwinpthread-1.dll)"
# The first program would create these files, with messages of its own.
(
    mkdir -p "${WINEPREFIX}"
    flock 9
    [[ -d ${WINEPREFIX}/drive_c ]] || "${wine}" wineboot --init >/dev/null 2>&1
) 9>"${WINEPREFIX}.lock"
exec "${wine}" "$@"
