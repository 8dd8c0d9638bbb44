#!/usr/bin/env bash
# Builds VELL for Windows by Debian's cross compiler and proves it under Wine: `make windows`. First installs
# the packages that only this needs.
set -euo pipefail
cd "$(dirname "$0")/../.."
jobs=${JOBS:-$(nproc)}
scratch=$(pwd)/build/mingw/proof
export CTEST_OUTPUT_ON_FAILURE=1 GTEST_COLOR=no

VELL_FOR_WINDOWS=1 cmake/install-packages.sh
cmake --preset mingw
cmake --build build/mingw -j "${jobs}" --target VELLLibX64 vell vell_texts unit_tests host_tests
cmake --preset dev
cmake --build build/dev -j "${jobs}" --target vell

ctest --preset mingw -j "${jobs}" -L 'unit_tests|host_tests'

cmake/check-symbols.sh --dll build/mingw/bin
tests/windows/compare-commands.sh build/dev/bin/vell build/mingw/bin/vell.exe "${scratch}/commands"

# A host of the installed DLLs, and one of static libraries built along with it.
rm -rf "${scratch}/installed"
cmake --install build/mingw --prefix "${scratch}/installed" >/dev/null
for way in installed static; do
    arguments=(-DCMAKE_FIND_ROOT_PATH="${scratch}/installed")
    [[ "${way}" == installed ]] || arguments=(-DVELL_SOURCES="$(pwd)" -DBUILD_SHARED_LIBS=OFF)
    rm -rf "${scratch}/${way}-consumer"
    cmake -G Ninja -S tests/consumer -B "${scratch}/${way}-consumer" -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_TOOLCHAIN_FILE="$(pwd)/cmake/mingw.cmake" "${arguments[@]}"
    cmake --build "${scratch}/${way}-consumer" -j "${jobs}"
    WINEPATH=${scratch}/installed/bin cmake/run-wine.sh "${scratch}/${way}-consumer/consumer.exe"
done
cmake/run-wine.sh "${scratch}/installed/bin/vell.exe" --version
