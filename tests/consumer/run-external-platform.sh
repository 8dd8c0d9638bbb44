#!/usr/bin/env bash
# Builds the library against a site's own platform libraries and checks that a consumer loads those:
# COMPILER INSTALLED_TREE FOLDER_TO_WORK_IN. The site's vocabulary is that of the installed tree; its
# tables are those of tests/support/ListedTables.cpp, which lack what a table library need not have.
set -euo pipefail
site=$(realpath "$2")
rm -rf "$3"
mkdir -p "$3/site"
cp -a "${site}"/lib* "$3/site/"
find "$3/site" -name '*VELLLibX64*' -prune -exec rm -rf {} +
site=$(realpath "$3/site")
root=$(realpath "$(dirname "$0")/../..")
tables=$(realpath "$(find "${site}" -name libTesselX64.so)")
soname=$(objdump -p "${tables}" | sed -n 's/ *SONAME *//p')
"$1" -std=c++17 -shared -fPIC -fvisibility=hidden -DTESSEL_BUILDING -I"${root}/include" -I"${root}" \
    -Wl,-soname,"${soname}" -o "${tables}" "${root}/tests/support/ListedTables.cpp"

cmake -G Ninja -S "${root}" -B "$3/build" -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_COMPILER="$1" -DVELL_PLATFORM_ROOT="${site}" \
    -DVELL_BUILD_TESTS=OFF -DVELL_BUILD_TOOLS=OFF -DVELL_BUILD_SAMPLES=OFF
cmake --build "$3/build"
cmake --install "$3/build" --prefix "$3/tree" >/dev/null

if find "$3/build" "$3/tree" -name 'libDURMBaseX64*' -o -name 'libTesselX64*' | grep .; then
    echo "ours were built although the site has its own" >&2
    exit 1
fi

# What the page says that a replacement must export is what the library asks for.
library=$(find "$3/tree" -name libVELLLibX64.so)
needed=$(nm -DC --undefined-only "${library}" | sed -nE 's/.* (Tessel::\w+)\(.*/\1/p' | LC_ALL=C sort)
stated=$(sed -n 's/^| `TesselX64` |//p' "${root}/docs/platform-libraries.md" |
    grep -o 'Tessel::[A-Za-z]*' | LC_ALL=C sort)
if [[ -z "${needed}" ]] || ! diff <(echo "${stated}") <(echo "${needed}"); then
    echo "docs/platform-libraries.md and what the library needs of TesselX64 differ" >&2
    exit 1
fi
if ! nm -D "${library}" | grep ' w TesselGetSlotOperations$' >/dev/null; then
    echo "the library does not ask whether the site's TesselX64 has TesselGetSlotOperations" >&2
    exit 1
fi
"$(dirname "$0")/run-find-package.sh" "$1" "$3/tree" "$3/consumer"
for name in DURMBaseX64 TesselX64; do
    if ! ldd "$3/consumer/consumer" | grep -F "lib${name}.so" | grep -F "${site}"; then
        echo "the consumer does not load the site's ${name}" >&2
        ldd "$3/consumer/consumer" >&2
        exit 1
    fi
done
