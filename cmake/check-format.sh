#!/usr/bin/env bash
# Checks that every source is formatted as clang-format 14 does it; with --fix, formats it.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(--dry-run -Werror)
[[ "${1:-}" != "--fix" ]] || mode=(-i)

mapfile -t files < <(git ls-files --cached --others --exclude-standard '*.h' '*.cpp')
if ((${#files[@]} < 5)); then
    echo "check-format: found only ${#files[@]} sources" >&2
    exit 1
fi
printf '%s\0' "${files[@]}" | xargs -0 -n 16 -P "$(nproc)" clang-format-14 "${mode[@]}"
echo "${#files[@]} sources are formatted"
