# SPDX-License-Identifier: Apache-2.0

# shellcheck shell=bash disable=SC2154  # scripts/bench sets what is not set here

# Whether commands do more than they did.

# Fails where a command does over 3 % more than it did when bench/instructions.txt was written, beside libxml2's document
# of the same file as it comes. That holds for one release of Debian, processor and compiler.
gate() {
    local figures=$sources/bench/instructions.txt sample=two-socket-server.xml
    local here plain command now ratio load kept status=0
    here="$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release) $(uname -m) $(basename "${CXX:-g++}")"
    if ! grep -q "^$here " "$figures"; then
        echo "bench/instructions.txt has no figures of '$here', so that nothing is held against them"
    fi
    ln -sf "$sources/samples/$sample" .
    plain=$(($(callgrind "$programs/load_once" plain "$sample" --times 20) / 20))  # one alone varies by 1 %
    echo "Instructions of whole processes on $sample (callgrind)"
    printf '%-10s %14s %10s %10s %10s\n' command instructions 'to load' 'to plain' kept
    for command in "load $sample" "tree $sample" "explain $sample" "diff $sample inventory.db" "dump $sample"; do
        # shellcheck disable=SC2086  # one word an argument
        now=$(callgrind "$zebdb_cds" $command)
        ratio=$(quotient "$now" "$plain")
        kept=$(awk -v key="$here ${command%% *}" '$1 " " $2 " " $3 " " $4 == key { print $5 }' "$figures")
        load=${load:-$now}
        printf '%-10s %14d %10s %10s %10s\n' "${command%% *}" "$now" "$(quotient "$now" "$load")" "$ratio" "${kept:--}"
        awk -v now="$ratio" -v kept="${kept:-$ratio}" 'BEGIN { exit now > 1.03 * kept }' || status=1
    done
    [ $status -eq 0 ] || echo "a command takes over 3 % more instructions than bench/instructions.txt allows it" >&2
    return $status
}
