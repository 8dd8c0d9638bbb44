#!/usr/bin/env bash
# Installs from Debian's packages what building VELL needs and the machine lacks, and nothing else.
# `CI=true` adds the tools of the checks, `VELL_FOR_WINDOWS=1` those of tests/windows/run.sh,
# `VELL_FOR_BENCH=1` what draws the picture of `make bench`.
# `VELL_NO_INSTALL=1` leaves the machine as it is.
set -euo pipefail

packages=(g++ cmake ninja-build rapidjson-dev zlib1g-dev libcli11-dev libgtest-dev libgmock-dev
          libbenchmark-dev graphviz patch pkg-config python3 python3-jsonschema)
if [[ -n "${CI:-}" && "${CI}" != "false" ]]; then
    packages+=(clang-14 clang-format-14 clang-tidy-14 libclang-rt-14-dev valgrind gcovr xz-utils
               abigail-tools)
fi
if [[ -n "${VELL_FOR_WINDOWS:-}" ]]; then
    packages+=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev googletest wine64)
fi
if [[ -n "${VELL_FOR_BENCH:-}" ]]; then
    packages+=(gnuplot-nox)
fi

[[ -z "${VELL_NO_INSTALL:-}" ]] || exit 0

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "This is not a Debian system; going on with what is installed." >&2
    echo "VELL needs: ${packages[*]} (Debian's names)" >&2
    exit 0
fi

missing=()
for package in "${packages[@]}"; do
    state=$(dpkg-query -W -f '${db:Status-Status}' "${package}" 2>/dev/null || true)
    [[ "${state}" == "installed" ]] || missing+=("${package}")
done
((${#missing[@]} > 0)) || exit 0

as_root=()
if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
        echo "Missing packages, and neither root nor sudo to install them. As root, type:" >&2
        echo "    apt-get install --no-install-recommends ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi

# apt's own output is shown only when it fails, and then in full.
log=$(mktemp)
trap 'rm -f "${log}"' EXIT
apt_get()
{
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get "$@" </dev/null >>"${log}" 2>&1 ||
        { cat "${log}" >&2 && exit 1; }
}

echo "Installing ${#missing[@]} packages: ${missing[*]}"
apt_get update
apt_get install -y --no-install-recommends "${missing[@]}"
