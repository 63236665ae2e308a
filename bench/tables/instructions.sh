# SPDX-License-Identifier: Apache-2.0

# shellcheck shell=bash disable=SC2154  # scripts/bench sets what is not set here

# What steps and commands do, in instructions: the same every time.

# Of one more time in a process that did it once: neither the start of the process nor anything made once counts.
instructions_of() {
    local twice once
    twice=$(callgrind "$@" --times 2)
    once=$(callgrind "$@" --times 1)
    echo $((twice - once))
}

instructions() {
    local between file plain step now
    echo "Instructions on one server's file (callgrind; rows, log lines and the marker command dropped)"
    printf '%-12s %8s %-10s %14s %10s\n' 'white space' bytes step instructions 'to plain'
    for between in tabs blanks none; do
        file=$(cds_file 1 $between)
        plain=$(instructions_of "$programs/load_once_dropping" plain "$file")
        for step in plain document tree load; do
            now=$(instructions_of "$programs/load_once_dropping" $step "$file")
            printf '%-12s %8d %-10s %14d %10s\n' $between "$(stat -c %s "$file")" $step "$now" "$(quotient "$now" "$plain")"
        done
    done
}

# The same every time, unlike times, so this is what tells whether the cost of a component depends on their number.
linearity() {
    local step servers components first now components_a_server=118
    echo "Instructions a component, from 1 to 100 servers (callgrind; rows, log lines and the marker command dropped)"
    printf '%-14s %8s %16s %12s\n' step servers instructions 'to 1 server'
    for step in document load; do
        first=
        for servers in 1 10 100; do
            components=$((servers * components_a_server))
            now=$(($(instructions_of "$programs/load_once_dropping" $step "$(cds_file "$servers")") / components))
            first=${first:-$now}
            printf '%-14s %8d %16d %12s\n' $step "$servers" "$now" "$(quotient "$now" "$first")"
        done
    done
}

# Of one export of many servers' files, the start of the process with it, and of a load of each of them.
export_of_many() {
    local number exported loaded
    rm -rf servers
    mkdir servers
    for number in $(seq 1000 1099); do
        "$programs/generate_cds" --seed "$number" "servers/$number.xml"
    done
    exported=$(callgrind "$zebdb_cds" export servers)
    loaded=$(instructions_of "$programs/load_once_dropping" load servers/*.xml)
    echo "Instructions of an export of 100 servers' files in one call (callgrind; the loads with rows dropped)"
    printf '%16s %16s %14s\n' export loads export/loads
    printf '%16d %16d %14s\n' "$exported" "$loaded" "$(quotient "$exported" "$loaded")"
}
