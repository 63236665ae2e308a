#!/bin/bash
# SPDX-License-Identifier: Apache-2.0

# usage: callers.sh INSTALLED CONTROLLER WORK
#
# Compiles and runs callers of the tree that is installed in the folder INSTALLED, as callers are made: by CMake and by
# pkg-config, in C++ and in C, with each linker. CONTROLLER is an installed tree without the workstation platform. All
# that is made stands in the folder WORK.
set -euo pipefail
shopt -s inherit_errexit
here=$(dirname "$(readlink -f "$0")")
installed=$(readlink -f "$1")
controller=$(readlink -f "$2")
work=$3
mkdir -p "$work"

export PKG_CONFIG_PATH=$installed/lib/pkgconfig
# shellcheck disable=SC2162  # pkg-config writes a blank in a path as \ and a blank
read -a includes <<<"$(pkg-config --cflags zebdb_cds_parser)"
# shellcheck disable=SC2162
read -a libraries <<<"$(pkg-config --libs zebdb_cds_parser)"

# Each header that says that it is for C and C++, by itself.
headers_in_c() {
    local header headers
    headers=$(cd "$installed/include" && grep -rlF 'For C and C++' .)
    for header in $headers; do
        "${CC:-cc}" -std=c11 -Wall -Wextra -Wpedantic -Wstrict-prototypes -Werror "${includes[@]}" -fsyntax-only -x c - \
            <<<"#include <$header>"
    done
    echo "C compiles ${headers//$'\n'/ }"
}

callers_by_cmake() {
    "$here/../../scripts/quietly" "$work/configure.log" cmake -S "$here" -B "$work" -G Ninja \
        -DCMAKE_PREFIX_PATH="$installed"
    cmake --build "$work"
    "$work/caller"
}

# A library that is loaded finds what it needs of a platform in the process first: the function that this has, else the
# library of the platform that it brings.
callers_with() {
    export LD_LIBRARY_PATH=$1
    in_sandbox "$work/c_caller" "$here/../../samples/minimal.xml" | diff "$here/c_caller.expected" -
    in_sandbox "$work/own_function" "$here/../../samples/minimal.xml"
    unset LD_LIBRARY_PATH
}

# A load leaves a file in /tmp.
in_sandbox() {
    "$installed/libexec/zebdb-cds/sandbox" --keep "$work" "$work/sandbox" "$@" 2>"$work/log"
}

# The examples of the reference do what they say.
examples() {
    local server=$here/../../samples/two-socket-server.xml
    rm -f "$work"/*.db
    in_sandbox "$work/load_inventory" "$work/one.db" "$server"
    in_sandbox "$work/load_inventory_in_c" "$work/other.db" "$server"
    "$installed/bin/zebdb-cds" diff "$work/one.db" "$server"
    "$installed/bin/zebdb-cds" diff "$work/other.db" "$server"
    diff <(printf 'CPU %s: 20 cores\n' 1 2) <("$work/walk_tree" "$server")
    if "$work/walk_tree" "$here/../../samples/errors/setting-without-name.xml"; then return 1; fi
}

# Every linker makes a caller that starts, also when it drops the libraries that the caller does not name.
callers_by_linker() {
    local linker program
    for linker in bfd gold lld; do
        if ! command -v ld.$linker >/dev/null; then
            echo "NOT TRIED: there is no ld.$linker here"
            continue
        fi
        program=$work/library_only.$linker
        "${CXX:-g++}" -std=c++17 "$here/library_only.cpp" -o "$program" -fuse-ld=$linker -Wl,--as-needed \
            -Wl,-rpath,"$installed/lib" "${includes[@]}" "${libraries[@]}"
        [ "$(needed_by "$program")" = libzebdb_cds_parser.so.1 ] || { needed_by "$program" >&2; return 1; }
        echo "linked by $linker: $("$program")"
    done
}

# What of this project a program or a library names as needed.
needed_by() {
    readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(libzebdb_.*\)\]$/\1/p'
}

headers_in_c
callers_by_cmake
callers_with "$installed/lib"
callers_with "$controller/lib:$installed/lib"
[ -z "$(needed_by "$controller/lib/libzebdb_cds_parser.so")" ]
callers_by_linker
examples
