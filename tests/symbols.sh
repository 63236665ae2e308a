#!/bin/bash
# SPDX-License-Identifier: Apache-2.0

# What the dynamic linker sees of a shared library, one symbol a line.
#
#   symbols.sh exported LIBRARY           the symbols that LIBRARY shows to others
#   symbols.sh needed LIBRARY PROVIDER    those that LIBRARY leaves undefined and PROVIDER shows
#   symbols.sh called LIBRARY PATTERN     those that LIBRARY leaves undefined and the extended regular expression matches
#   symbols.sh check LIST exported|needed|called ...
#                                         status 1 and the differences when they are not those in the file LIST
set -euo pipefail
shopt -s inherit_errexit
export LC_ALL=C

# The names alone, in order, without their versions and the names of these. A library without any is no library.
names() {
    nm -D -P "$@" | sed '/ A /d; s/[@ ].*//' | sort -u | grep .
}

exported() {
    names --defined-only "$1"
}

needed() {
    local undefined provided
    undefined=$(names --undefined-only "$1")
    provided=$(exported "$2")
    comm -12 <(echo "$undefined") <(echo "$provided")
}

called() {
    local undefined
    undefined=$(names --undefined-only "$1")
    grep -E "$2" <<<"$undefined" || true
}

# Adds what a mangled name says.
readable() {
    local symbol meaning
    while read -r symbol; do
        meaning=$(c++filt "$symbol")
        [ "$meaning" = "$symbol" ] && echo "$symbol" || echo "$symbol  # $meaning"
    done
}

check() {
    local list=$1 wanted found
    shift
    wanted=$(sed 's/ .*//' "$list")
    found=$("$@")
    if [ "$wanted" != "$found" ]; then
        diff -U 0 --label "$list" --label "$*" <(echo "$wanted" | readable) <(echo "$found" | readable) || true
        [ "$list" = /dev/null ] || printf '\nIf that is meant:%s > %q\n' "$(printf ' %q' "$0" "$@")" "$list"
        return 1
    fi
}

case ${1-} in
    exported | needed | called)
        "$@" | readable
        ;;
    check)
        shift
        check "$@"
        ;;
    *)
        sed -n '/^# What/,/^set/s/^# \{0,1\}//p' "$0" >&2
        exit 2
        ;;
esac
