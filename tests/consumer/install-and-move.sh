#!/usr/bin/env bash
# Installs the build tree $1 below $2, moves the result to $2/moved, and checks what came.
set -euo pipefail
build=$1
scratch=$2

rm -rf "${scratch}"
cmake --install "${build}" --prefix "${scratch}/first" >/dev/null
mv "${scratch}/first" "${scratch}/moved"

if grep -rlIF "${build}" "${scratch}/moved"; then
    echo "these files name the build tree" >&2
    exit 1
fi
headers=$(cd "${scratch}/moved/include" && find . -name '*.h' | LC_ALL=C sort)
ours=$(cd "$(dirname "$0")/../../include" && find . -name '*.h' | LC_ALL=C sort)
diff <(echo "${ours}") <(echo "${headers}")
for name in VELLLibX64 DURMBaseX64 TesselX64; do
    compgen -G "${scratch}/moved/lib*/lib${name}.so" >/dev/null ||
        compgen -G "${scratch}/moved/lib/*/lib${name}.so" >/dev/null ||
        { echo "lib${name}.so was not installed" >&2; exit 1; }
done

# The command stands on its own.
if [[ -x "${build}/bin/vell" ]]; then
    "${scratch}/moved/bin/vell" --version
    for file in man/man1/vell.1 bash-completion/completions/vell zsh/site-functions/_vell \
        fish/vendor_completions.d/vell.fish; do
        [[ -s "${scratch}/moved/share/${file}" ]] || { echo "${file} was not installed" >&2; exit 1; }
    done
fi
