#!/usr/bin/env bash
# Builds and runs the consumer through pkg-config, called as a host does that links shared libraries, and
# as one that links static ones (--static), with exceptions and type information and without:
# COMPILER INSTALLED_TREE FOLDER_TO_WORK_IN LIBDIR
set -euo pipefail
rm -rf "$3"
mkdir -p "$3"
export PKG_CONFIG_PATH=$2/$4/pkgconfig
pkg-config --validate vell
for way in "" --static; do
    read -ra cflags < <(pkg-config ${way:+"${way}"} --cflags vell)
    read -ra libs < <(pkg-config ${way:+"${way}"} --libs vell)
    for set in "" "-fno-exceptions -fno-rtti"; do
        read -ra flags <<<"${set}"
        "$1" -std=c++17 -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Werror \
            "${flags[@]}" "${cflags[@]}" "$(dirname "$0")/main.cpp" -o "$3/consumer${way}" "${libs[@]}" \
            -Wl,-rpath,"$(pkg-config --variable=libdir vell)"
        "$3/consumer${way}"
    done
done
