# SPDX-License-Identifier: Apache-2.0

# shellcheck shell=bash disable=SC2154  # scripts/bench sets what is not set here

# How much memory steps need.

memory() {
    local file name command plain peak
    file=$(cds_file 10)
    plain=$("$programs/load_once" plain "$file" 2>>log | cut -d ' ' -f 1)
    echo "Peak memory at 10 servers (VmHWM of a fresh process, nothing taken off)"
    printf '%-22s %10s %12s\n' step kB 'to plain'
    while read -r name command; do
        # shellcheck disable=SC2086  # one word an argument
        peak=$("$programs"/$command "$file" 2>>log | cut -d ' ' -f 1)
        printf '%-22s %10d %12s\n' "$name" "$peak" "$(quotient "$peak" "$plain")"
    done <<END
plain load_once plain
document load_once document
tree load_once tree
load,-rows-dropped load_once_dropping load
load load_once load
END
}
