#!/usr/bin/env bash
# Builds and installs static libraries, moves the tree, and builds the consumer with it by find_package and
# by pkg-config; it then needs none of our shared libraries: COMPILER FOLDER_TO_WORK_IN LIBDIR
set -euo pipefail
here=$(realpath "$(dirname "$0")")
rm -rf "$2"
cmake -G Ninja -S "${here}/../.." -B "$2/build" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER="$1" \
    -DBUILD_SHARED_LIBS=OFF -DVELL_BUILD_TESTS=OFF -DVELL_BUILD_TOOLS=OFF -DVELL_BUILD_SAMPLES=OFF \
    -DCMAKE_INSTALL_LIBDIR="$3"
cmake --build "$2/build"
cmake --install "$2/build" --prefix "$2/first" >/dev/null
mv "$2/first" "$2/moved"

installed=$(find "$2/moved" -name 'lib*X64*' ! -path '*/cmake/*' -printf '%f\n' | LC_ALL=C sort | xargs)
if [[ "${installed}" != "libDURMBaseX64.a libTesselX64.a libVELLLibX64.a" ]]; then
    echo "installed: ${installed}" >&2
    exit 1
fi
"${here}/run-find-package.sh" "$1" "$2/moved" "$2/find_package"
"${here}/run-pkg-config.sh" "$1" "$2/moved" "$2/pkg_config" "$3"
for consumer in "$2/find_package/consumer" "$2/pkg_config/consumer--static"; do
    if ldd "${consumer}" | grep X64; then
        echo "${consumer} loads a shared library of ours" >&2
        exit 1
    fi
done
