#!/usr/bin/env bash
# Builds and runs the consumer through pkg-config: COMPILER INSTALLED_TREE FOLDER_TO_WORK_IN LIBDIR
set -euo pipefail
rm -rf "$3"
mkdir -p "$3"
export PKG_CONFIG_PATH=$2/$4/pkgconfig
pkg-config --validate vell
read -ra cflags < <(pkg-config --cflags vell)
read -ra libs < <(pkg-config --libs vell)
"$1" -std=c++17 -Wall -Wextra -Wpedantic -Werror "${cflags[@]}" "$(dirname "$0")/main.cpp" \
    -o "$3/consumer" "${libs[@]}" -Wl,-rpath,"$(pkg-config --variable=libdir vell)"
"$3/consumer"
