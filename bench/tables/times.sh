# SPDX-License-Identifier: Apache-2.0

# shellcheck shell=bash disable=SC2154  # scripts/bench sets what is not set here

# How long steps take, beside one another in one process.

# Runs a benchmark program, its benchmarks interleaved, and leaves the aggregates in results.csv.
interleaved() {
    local program=$1
    shift
    "$programs/$program" --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true \
        --benchmark_format=csv "$@" >results.csv 2>>log
}

# Column $3 of the aggregate $2 of the benchmark $1: 3 is the real time and 4 the processor's, 11 the time a component.
result() {
    awk -F , -v name="\"$1/real_time_$2\"" -v column="$3" '$1 == name { print $column; found = 1 } END { exit !found }' \
        results.csv || { echo "there is no $2 of $1 in results.csv" >>log; return 1; }
}

times() {
    local file step
    file=$(cds_file 10)
    interleaved load_benchmark --benchmark_repetitions=15 --benchmark_min_time=0.3 "$file"
    echo "Times at 10 servers, $(stat -c %s "$file") bytes (medians of 15 interleaved repetitions)"
    printf '%-10s %10s %10s %10s\n' step 'real ms' 'CPU ms' 'spread'
    for step in plain document tree load inserts marker; do
        printf '%-10s %10.2f %10.2f %9.1f%%\n' $step "$(result "$step:$file" median 3)" \
            "$(result "$step:$file" median 4)" "$(awk -v cv="$(result "$step:$file" cv 3)" 'BEGIN { print cv }')"
    done
    awk -v plain="$(result "plain:$file" median 3)" -v inserts="$(result "inserts:$file" median 3)" \
        -v load="$(result "load:$file" median 3)" -v marker="$(result "marker:$file" median 3)" 'BEGIN {
            printf "load / (plain + inserts):                     %.3f\n", load / (plain + inserts)
            printf "the same without the marker command:          %.3f\n", (load - marker) / (plain + inserts)
        }'
}

# Prints the time a component of the benchmark $1 for each number of servers that follows.
per_component() {
    local step=$1 servers first now
    shift
    printf '%-14s %8s %16s %12s\n' step servers 'us a component' 'to 1 server'
    for servers in "$@"; do
        now=$(result "$step:$(cds_file "$servers")" median 11)
        first=${first:-$now}
        printf '%-14s %8d %16s %12s\n' "$step" "$servers" "$(awk -v s="$now" 'BEGIN { printf "%.2f", 1e6 * s }')" \
            "$(quotient "$now" "$first")"
    done
}

scale() {
    echo "Time a component, from 1 to 400 servers (medians of 9 interleaved repetitions, real time)"
    interleaved dropped_rows_benchmark --benchmark_repetitions=9 --benchmark_min_time=0.2 \
        "$(cds_file 1)" "$(cds_file 10)" "$(cds_file 100)" "$(cds_file 400)"
    per_component document 1 10 100 400
    per_component load_dropping 1 10 100 400
    interleaved load_benchmark --benchmark_repetitions=9 --benchmark_min_time=0.2 --benchmark_filter='^(load|dump)' \
        "$(cds_file 1)" "$(cds_file 10)" "$(cds_file 100)" "$(cds_file 400)"
    per_component load 1 10 100 400
    per_component dump 1 10 100 400
}
