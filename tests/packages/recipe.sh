#!/bin/bash
# SPDX-License-Identifier: Apache-2.0

# usage: recipe.sh INSTALLED WORK
#
# Does by hand what the recipe for a controller's image has done, in the folder WORK, with the platform that is installed
# in the folder INSTALLED in the place of the controller's.
set -euo pipefail
sources=$(readlink -f "$(dirname "$0")/../..")
platform=$(readlink -f "$1")/lib
recipe=$(ls "$sources"/packaging/yocto/*.bb)
rm -rf "$2"
mkdir -p "$2"
work=$(readlink -f "$2")

# The value of a variable of the recipe, which is written in one line.
value_of() {
    sed -n "s/^$1 = \"\(.*\)\"$/\1/p" "$recipe" | grep .
}

# The body of a function of the recipe, with the variables that a build has replaced.
body_of() {
    sed -n "/^$1() {/,/^}/p" "$recipe" | sed '1d;$d' | grep . |
        sed -e "s|\${S}|'$sources'|g; s|\${B}|'$work'|g; s|\${D}\${PTEST_PATH}|'$work/ptest'|g" \
            -e "s|\${WORKDIR}|'$sources/packaging/yocto/files'|g; s|\${CXX}|${CXX:-g++}|; s|\${ZEBDB_PLATFORM_LIBRARIES}|-L'$platform' -lzebdb_platform|" \
            -e 's/\${[A-Z]*FLAGS}//g'
}

version=$(sed -n 's/^#define ZEBDB_CDS_PARSER_VERSION_[A-Z]* \([0-9][0-9]*\).*/\1/p' \
    "$sources/include/zebdb_cds_parser/version.h" | paste -sd .)
[[ $recipe == *_$version.bb ]] || { echo "$recipe is not named after version $version" >&2; exit 1; }
license=$(value_of LIC_FILES_CHKSUM)
license=${license#file://}
echo "${license#*;md5=}  $sources/${license%%;*}" | md5sum --check
read -r -a options <<<"$(value_of EXTRA_OECMAKE)"
"$sources/scripts/quietly" "$work/configure.log" cmake -S "$sources" -B "$work" -G Ninja "${options[@]}"
"$sources/scripts/quietly" "$work/build.log" cmake --build "$work"
"$sources/scripts/quietly" "$work/install.log" env DESTDIR="$work/image" cmake --install "$work" --prefix /usr
mkdir "$work/ptest"
cd "$work"
eval "$(body_of do_compile_ptest)"
eval "$(body_of do_install_ptest)"
cd ptest
results=$(LD_LIBRARY_PATH=$work/image/usr/lib:$platform sh "$sources/packaging/yocto/files/run-ptest")
echo "$results"
[[ $results == *PASS* && $results != *FAIL* ]]
