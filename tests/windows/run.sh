#!/usr/bin/env bash
# Builds VELL for Windows by Debian's cross compiler and proves it under Wine: `make windows`. First installs
# the packages that only this needs. docs/platforms.md says what is left out.
set -euo pipefail
cd "$(dirname "$0")/../.."
jobs=${JOBS:-$(nproc)}
scratch=$(pwd)/build/mingw/proof
programs=(unit_tests host_tests robustness_tests model_tests)
export CTEST_OUTPUT_ON_FAILURE=1 GTEST_COLOR=no

step()
{
    printf -- '-- %3d s: %s\n' "${SECONDS}" "$1"
}

step "packages"
VELL_FOR_WINDOWS=1 cmake/install-packages.sh
step "build"
cmake --preset mingw >/dev/null
cmake --build build/mingw -j "${jobs}" --target VELLLibX64 vell vell_texts "${programs[@]}"
cmake --preset dev >/dev/null
cmake --build build/dev -j "${jobs}" --target vell

# Each write and each page costs many times more under Wine: the tests that take a minute and more run
# elsewhere.
step "tests"
GTEST_FILTER="-ArenaRunsOut.AtEverySize*:LargeDocument.Of100000Nodes*:LargeDocument.Of10000Layers*"
GTEST_FILTER+=":DeepMachine.Of10000Levels*:DeepMachine.OfManyLevels*"
labels=$(IFS='|' && echo "^(${programs[*]})$")
GTEST_FILTER=${GTEST_FILTER} VELL_MODEL_MACHINES=100 ctest --preset mingw -j "${jobs}" -L "${labels}"

step "exports"
cmake/check-symbols.sh --dll build/mingw/bin
step "commands"
tests/windows/compare-commands.sh build/dev/bin/vell build/mingw/bin/vell.exe "${scratch}/commands"

# A host of the installed DLLs, and one of static libraries built along with it.
rm -rf "${scratch}/installed"
cmake --install build/mingw --prefix "${scratch}/installed" >/dev/null
for way in installed static; do
    step "consumer: ${way}"
    arguments=(-DCMAKE_FIND_ROOT_PATH="${scratch}/installed")
    [[ "${way}" == installed ]] || arguments=(-DVELL_SOURCES="$(pwd)" -DBUILD_SHARED_LIBS=OFF)
    rm -rf "${scratch}/${way}-consumer"
    cmake -G Ninja -S tests/consumer -B "${scratch}/${way}-consumer" -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_CXX_FLAGS_DEBUG= -DCMAKE_TOOLCHAIN_FILE="$(pwd)/cmake/mingw.cmake" "${arguments[@]}" >/dev/null
    cmake --build "${scratch}/${way}-consumer" -j "${jobs}"
    WINEPATH=${scratch}/installed/bin cmake/run-wine.sh "${scratch}/${way}-consumer/consumer.exe"
done
cmake/run-wine.sh "${scratch}/installed/bin/vell.exe" --version
step "done"
